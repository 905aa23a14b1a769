list(APPEND ZML_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/zelmodemslib.cpp)
list(APPEND ZML_PUBLIC_HEADERS
    ${CMAKE_CURRENT_LIST_DIR}/zelmodemslib.h)
# Russian: the operators of the built-in operator table serve Russian speakers.
list(APPEND ZML_TS_FILES
    ${CMAKE_CURRENT_LIST_DIR}/translations/zelmodemslib_ru.ts)
