# Modem discovery: the parallel port search, the port probe, the port
# catalogue, the on-demand modem info loader and the wvdialconf runner.
target_sources(zelmodemslib_objects PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/unix_modemsfinder.cpp
    ${CMAKE_CURRENT_LIST_DIR}/portprobe_p.h
    ${CMAKE_CURRENT_LIST_DIR}/portprobe.cpp
    ${CMAKE_CURRENT_LIST_DIR}/finderlog_p.h
    ${CMAKE_CURRENT_LIST_DIR}/finderlog.cpp
    ${CMAKE_CURRENT_LIST_DIR}/portcatalogue.cpp
    ${CMAKE_CURRENT_LIST_DIR}/declaredports.cpp
    ${CMAKE_CURRENT_LIST_DIR}/crc_p.h
    ${CMAKE_CURRENT_LIST_DIR}/modeminfoloader.cpp
    ${CMAKE_CURRENT_LIST_DIR}/wvdialconfwrapper.cpp
    ${CMAKE_CURRENT_LIST_DIR}/modemwatcher.cpp)
zml_public_headers(
    ${CMAKE_CURRENT_LIST_DIR}/modemsfinder.h
    ${CMAKE_CURRENT_LIST_DIR}/modeminfoloader.h
    ${CMAKE_CURRENT_LIST_DIR}/wvdialconfwrapper.h
    ${CMAKE_CURRENT_LIST_DIR}/portcatalogue.h
    ${CMAKE_CURRENT_LIST_DIR}/declaredports.h
    ${CMAKE_CURRENT_LIST_DIR}/modemwatcher.h)
