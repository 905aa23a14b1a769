# Configuration and operator data: the connection record, the operator
# table and its resource, the modems settings, the service state.
target_sources(zelmodemslib_objects PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/modeminfo.cpp
    ${CMAKE_CURRENT_LIST_DIR}/operatordata.cpp
    ${CMAKE_CURRENT_LIST_DIR}/modemsenvs.cpp
    ${CMAKE_CURRENT_LIST_DIR}/modemsettings.cpp
    ${CMAKE_CURRENT_LIST_DIR}/modemservicestate.cpp
    ${CMAKE_CURRENT_LIST_DIR}/settingslog_p.h
    ${CMAKE_CURRENT_LIST_DIR}/mnctable.qrc)
zml_public_headers(
    ${CMAKE_CURRENT_LIST_DIR}/modeminfo.h
    ${CMAKE_CURRENT_LIST_DIR}/operatordata.h
    ${CMAKE_CURRENT_LIST_DIR}/modemsenvs.h
    ${CMAKE_CURRENT_LIST_DIR}/modemsettings.h
    ${CMAKE_CURRENT_LIST_DIR}/modemservicestate.h)
