# The AT command transport and the modem driver, its input checks, the port
# locks and the line dialogue the services over one modem run on.
target_sources(zelmodemslib_objects PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/atmodem_p.h
    ${CMAKE_CURRENT_LIST_DIR}/atmodem.cpp
    ${CMAKE_CURRENT_LIST_DIR}/atmodemdialect.cpp
    ${CMAKE_CURRENT_LIST_DIR}/atmodemqueries.cpp
    ${CMAKE_CURRENT_LIST_DIR}/atmodemmessages.cpp
    ${CMAKE_CURRENT_LIST_DIR}/modemanswers_p.h
    ${CMAKE_CURRENT_LIST_DIR}/modemanswers.cpp
    ${CMAKE_CURRENT_LIST_DIR}/atmodemlog_p.h
    ${CMAKE_CURRENT_LIST_DIR}/atmodemlog.cpp
    ${CMAKE_CURRENT_LIST_DIR}/atdialect_p.h
    ${CMAKE_CURRENT_LIST_DIR}/atdialect.cpp
    ${CMAKE_CURRENT_LIST_DIR}/signalquality.cpp
    ${CMAKE_CURRENT_LIST_DIR}/cellrecord.cpp
    ${CMAKE_CURRENT_LIST_DIR}/simidentity.cpp
    ${CMAKE_CURRENT_LIST_DIR}/atinput.cpp
    ${CMAKE_CURRENT_LIST_DIR}/lockfile_p.h
    ${CMAKE_CURRENT_LIST_DIR}/portlock.cpp
    ${CMAKE_CURRENT_LIST_DIR}/linechannel_p.h
    ${CMAKE_CURRENT_LIST_DIR}/linechannel.cpp)
zml_public_headers(
    ${CMAKE_CURRENT_LIST_DIR}/atmodem.h
    ${CMAKE_CURRENT_LIST_DIR}/atcommands.h
    ${CMAKE_CURRENT_LIST_DIR}/failure.h
    ${CMAKE_CURRENT_LIST_DIR}/signalquality.h
    ${CMAKE_CURRENT_LIST_DIR}/cellrecord.h
    ${CMAKE_CURRENT_LIST_DIR}/simidentity.h
    ${CMAKE_CURRENT_LIST_DIR}/atinput.h
    ${CMAKE_CURRENT_LIST_DIR}/portlock.h)
