list(APPEND ZML_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/modeminfo.cpp
    ${CMAKE_CURRENT_LIST_DIR}/operatordata.cpp
    ${CMAKE_CURRENT_LIST_DIR}/modemsenvs.cpp
    ${CMAKE_CURRENT_LIST_DIR}/modemsettings.cpp
    ${CMAKE_CURRENT_LIST_DIR}/modemservicestate.cpp
    ${CMAKE_CURRENT_LIST_DIR}/settingslog.h)
list(APPEND ZML_PUBLIC_HEADERS
    ${CMAKE_CURRENT_LIST_DIR}/modeminfo.h
    ${CMAKE_CURRENT_LIST_DIR}/operatordata.h
    ${CMAKE_CURRENT_LIST_DIR}/modemsenvs.h
    ${CMAKE_CURRENT_LIST_DIR}/modemsettings.h
    ${CMAKE_CURRENT_LIST_DIR}/modemservicestate.h)
list(APPEND ZML_RESOURCES
    ${CMAKE_CURRENT_LIST_DIR}/mnctable.qrc)
