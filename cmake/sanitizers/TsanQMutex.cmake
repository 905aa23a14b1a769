# Included at the end of project() in the "tsan" preset
# (CMAKE_PROJECT_INCLUDE): builds libzml_tsan_qmutex.so, which the preset's
# tests preload so that ThreadSanitizer sees QMutex locking (see
# tsan_qmutex.cpp). Not part of any other build.
find_package(Qt5 5.15 REQUIRED COMPONENTS Core)
add_library(zml_tsan_qmutex SHARED "${CMAKE_CURRENT_LIST_DIR}/tsan_qmutex.cpp")
set_target_properties(zml_tsan_qmutex PROPERTIES
    LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}"
    AUTOMOC OFF)
target_link_libraries(zml_tsan_qmutex PRIVATE Qt5::Core ${CMAKE_DL_LIBS})
