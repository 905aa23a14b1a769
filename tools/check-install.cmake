# Run by tools/check-install.sh: installs the build tree into a scratch
# prefix, checks the installed layout, then builds the programs of
# examples/consumer against it (find_package and pkg-config) and runs them.
file(REMOVE_RECURSE "${WORK_DIR}")
set(PREFIX "${WORK_DIR}/prefix")

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT rc EQUAL 0)
        message(FATAL_ERROR "Failed (${rc}): ${ARGN}\n${out}\n${err}")
    endif()
    set(LAST_OUTPUT "${out}" PARENT_SCOPE)
endfunction()

# Runs a program of the install (the command after `pattern`) and fails
# unless what it printed matches `pattern`.
function(run_printing what pattern)
    run(${ARGN})
    message(STATUS "${what}: ${LAST_OUTPUT}")
    if(NOT LAST_OUTPUT MATCHES "${pattern}")
        message(FATAL_ERROR "${what} printed: ${LAST_OUTPUT}")
    endif()
endfunction()

# The version the build tree made, as its library file and programs name it.
if(NOT VERSION MATCHES "^[0-9]+\\.[0-9]+\\.[0-9]+$")
    message(FATAL_ERROR "no version of the build tree given (VERSION=${VERSION})")
endif()
string(REPLACE "." "\\." VERSION_PATTERN "${VERSION}")
string(REGEX REPLACE "\\..*" "" MAJOR "${VERSION}")

run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${PREFIX}")

# Layout of the installed files.
file(GLOB libs "${PREFIX}/lib*/libzelmodemslib.so.${VERSION}" "${PREFIX}/lib/*/libzelmodemslib.so.${VERSION}")
if(NOT libs)
    message(FATAL_ERROR "libzelmodemslib.so.${VERSION} was not installed")
endif()
list(GET libs 0 lib)
get_filename_component(LIBDIR "${lib}" DIRECTORY)
foreach(f libzelmodemslib.so.${MAJOR} libzelmodemslib.so pkgconfig/zelmodemslib.pc
          cmake/ZelModemsLib/ZelModemsLibConfig.cmake cmake/ZelModemsLib/ZelModemsLibConfigVersion.cmake)
    if(NOT EXISTS "${LIBDIR}/${f}")
        message(FATAL_ERROR "${LIBDIR}/${f} was not installed")
    endif()
endforeach()
if(NOT EXISTS "${PREFIX}/include/zelmodemslib/zelmodemslib.h")
    message(FATAL_ERROR "public headers were not installed to include/zelmodemslib")
endif()
run(objdump -p "${lib}")
if(NOT LAST_OUTPUT MATCHES "SONAME +libzelmodemslib\\.so\\.${MAJOR}\n")
    message(FATAL_ERROR "wrong SONAME:\n${LAST_OUTPUT}")
endif()

# Nothing below sets LD_LIBRARY_PATH: installed programs and libraries find
# the project's libraries through their relative run paths.
unset(ENV{LD_LIBRARY_PATH})

# The installed tool starts from the prefix.
if(EXISTS "${PREFIX}/bin/zelmodems")
    run_printing("installed zelmodems --help" "zelmodems" "${PREFIX}/bin/zelmodems" --help)
endif()

# find_package consumer.
run(${CMAKE_COMMAND} -S "${PROJECT_DIR}" -B "${WORK_DIR}/build" -DCMAKE_PREFIX_PATH=${PREFIX}
    -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build "${WORK_DIR}/build")
run_printing("find_package consumer" "zelmodemslib ${VERSION_PATTERN}" "${WORK_DIR}/build/consumer")

# A service's test on the installed simulator: modems found through a
# declared-ports catalogue and queried.
set(ENV{QT5EXT_LOCK_DIR} "${WORK_DIR}/locks")
file(MAKE_DIRECTORY "${WORK_DIR}/locks")
run_printing("simulator consumer" "^found ttyS1 861234567890123\nfound ttyUSB0 866123456789012\nsignal -73\n$"
    "${WORK_DIR}/build/simfinder")

# pkg-config consumer.
set(ENV{PKG_CONFIG_PATH} "${LIBDIR}/pkgconfig")
execute_process(COMMAND pkg-config --cflags --libs zelmodemslib
    RESULT_VARIABLE rc OUTPUT_VARIABLE flags ERROR_VARIABLE err OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "pkg-config failed: ${err}")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
# Outside the linker's own directories a program names the library's place
# itself, as any program built on pkg-config flags does.
run(${CXX} -std=c++17 -fPIC "${PROJECT_DIR}/main.cpp" -o "${WORK_DIR}/consumer-pc" ${flags}
    "-Wl,-rpath,${LIBDIR}")
run_printing("pkg-config consumer" "zelmodemslib ${VERSION_PATTERN}" "${WORK_DIR}/consumer-pc")
