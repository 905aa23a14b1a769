# Services over one open modem, built on its line dialogue: the SMS store
# read without being emptied, sending with every part accounted for, USSD
# with the reply status.
target_sources(zelmodemslib_objects PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/storedpdu.cpp
    ${CMAKE_CURRENT_LIST_DIR}/storedmessage.cpp
    ${CMAKE_CURRENT_LIST_DIR}/messagestore.cpp
    ${CMAKE_CURRENT_LIST_DIR}/smssender.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ussdtext_p.h
    ${CMAKE_CURRENT_LIST_DIR}/ussdrequest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ownnumber.cpp
    ${CMAKE_CURRENT_LIST_DIR}/modemworker_p.h
    ${CMAKE_CURRENT_LIST_DIR}/modemworker.cpp
    ${CMAKE_CURRENT_LIST_DIR}/modem.cpp)
zml_public_headers(
    ${CMAKE_CURRENT_LIST_DIR}/storedpdu.h
    ${CMAKE_CURRENT_LIST_DIR}/storedmessage.h
    ${CMAKE_CURRENT_LIST_DIR}/messagestore.h
    ${CMAKE_CURRENT_LIST_DIR}/smssender.h
    ${CMAKE_CURRENT_LIST_DIR}/ussdrequest.h
    ${CMAKE_CURRENT_LIST_DIR}/ownnumber.h
    ${CMAKE_CURRENT_LIST_DIR}/modem.h)
