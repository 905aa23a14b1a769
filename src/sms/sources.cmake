# The SMS codec: SMS-DELIVER decoding, messages and parts, the GSM 7-bit
# packer for USSD, and the PDU toolkit with its reader of stored messages.
target_sources(zelmodemslib_objects PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/smspart.cpp
    ${CMAKE_CURRENT_LIST_DIR}/sms.cpp
    ${CMAKE_CURRENT_LIST_DIR}/smspdudecoder_p.h
    ${CMAKE_CURRENT_LIST_DIR}/smspdudecoder.cpp
    ${CMAKE_CURRENT_LIST_DIR}/smspduencoder.cpp
    ${CMAKE_CURRENT_LIST_DIR}/pdu_p.h
    ${CMAKE_CURRENT_LIST_DIR}/gsm7_p.h
    ${CMAKE_CURRENT_LIST_DIR}/gsm7.cpp
    ${CMAKE_CURRENT_LIST_DIR}/tpdufields.cpp
    ${CMAKE_CURRENT_LIST_DIR}/pdu.cpp
    ${CMAKE_CURRENT_LIST_DIR}/pdusubmit.cpp
    ${CMAKE_CURRENT_LIST_DIR}/pduexplain.cpp
    ${CMAKE_CURRENT_LIST_DIR}/gsm7tables_p.h
    ${CMAKE_CURRENT_LIST_DIR}/shortmessage.cpp
    ${CMAKE_CURRENT_LIST_DIR}/joinedmessage.cpp)
zml_public_headers(
    ${CMAKE_CURRENT_LIST_DIR}/smspart.h
    ${CMAKE_CURRENT_LIST_DIR}/sms.h
    ${CMAKE_CURRENT_LIST_DIR}/smspdudecoder.h
    ${CMAKE_CURRENT_LIST_DIR}/smspduencoder.h
    ${CMAKE_CURRENT_LIST_DIR}/pdu.h
    ${CMAKE_CURRENT_LIST_DIR}/shortmessage.h
    ${CMAKE_CURRENT_LIST_DIR}/joinedmessage.h)
