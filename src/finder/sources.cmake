# Modem discovery: the parallel port search, the port probe, the on-demand
# modem info loader and the wvdialconf runner.
list(APPEND ZML_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/unix_modemsfinder.cpp
    ${CMAKE_CURRENT_LIST_DIR}/portprobe.h
    ${CMAKE_CURRENT_LIST_DIR}/portprobe.cpp
    ${CMAKE_CURRENT_LIST_DIR}/portcatalogue.cpp
    ${CMAKE_CURRENT_LIST_DIR}/declaredports.cpp
    ${CMAKE_CURRENT_LIST_DIR}/crc.h
    ${CMAKE_CURRENT_LIST_DIR}/modeminfoloader.cpp
    ${CMAKE_CURRENT_LIST_DIR}/wvdialconfwrapper.cpp)
list(APPEND ZML_PUBLIC_HEADERS
    ${CMAKE_CURRENT_LIST_DIR}/modemsfinder.h
    ${CMAKE_CURRENT_LIST_DIR}/modeminfoloader.h
    ${CMAKE_CURRENT_LIST_DIR}/wvdialconfwrapper.h
    ${CMAKE_CURRENT_LIST_DIR}/portcatalogue.h
    ${CMAKE_CURRENT_LIST_DIR}/declaredports.h)
