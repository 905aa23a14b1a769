# The AT command transport and the modem driver; the SMS store and sending;
# USSD with the reply status.
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
    ${CMAKE_CURRENT_LIST_DIR}/storedpdu.cpp
    ${CMAKE_CURRENT_LIST_DIR}/messagestore.cpp
    ${CMAKE_CURRENT_LIST_DIR}/atinput.cpp
    ${CMAKE_CURRENT_LIST_DIR}/smssender.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ussdrequest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/portlock.cpp
    ${CMAKE_CURRENT_LIST_DIR}/linechannel_p.h
    ${CMAKE_CURRENT_LIST_DIR}/linechannel.cpp)
zml_public_headers(
    ${CMAKE_CURRENT_LIST_DIR}/atmodem.h
    ${CMAKE_CURRENT_LIST_DIR}/atcommands.h
    ${CMAKE_CURRENT_LIST_DIR}/storedpdu.h
    ${CMAKE_CURRENT_LIST_DIR}/messagestore.h
    ${CMAKE_CURRENT_LIST_DIR}/atinput.h
    ${CMAKE_CURRENT_LIST_DIR}/smssender.h
    ${CMAKE_CURRENT_LIST_DIR}/ussdrequest.h
    ${CMAKE_CURRENT_LIST_DIR}/portlock.h)
