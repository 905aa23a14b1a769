# Library registration, and the translations of the library's texts.
target_sources(zelmodemslib_objects PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/zelmodemslib.cpp)
zml_public_headers(
    ${CMAKE_CURRENT_LIST_DIR}/zelmodemslib.h)
# Russian: the operators of the built-in operator table serve Russian speakers.
set(ZML_TS_FILES
    ${CMAKE_CURRENT_LIST_DIR}/translations/zelmodemslib_ru.ts)
