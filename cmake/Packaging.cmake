# Debian packages, one per install component:
#   libzelmodemslib5     runtime: the shared library (and, unless the
#                        appliance's own platform libraries are used, the
#                        qt5ext and zelbus stand-ins it links), translations
#   libzelmodemslib-dev  development: headers, CMake package, pkg-config file,
#                        the unversioned .so links
#   libzelmodemssim5     simulator: the modem simulator library, for the
#                        tests of services built on the library
#   zelmodems-tools      tools: zelmodems and modemsim
#
#   cmake -S . -B build-packages -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr
#   cmake --build build-packages && (cd build-packages && cpack -G DEB)
#
# (tools/make-packages.sh does exactly that.) The packages install below
# CMAKE_INSTALL_PREFIX, the prefix the build was configured with, since the
# libraries have their translation directory compiled in; Debian packages
# want /usr.

set(ZELMODEMS_PACKAGE_MAINTAINER "ZelModemsLib maintainers <maintainers@zelmodemslib.invalid>"
    CACHE STRING "Maintainer field of the Debian packages")

set(CPACK_GENERATOR "DEB")
set(CPACK_PACKAGE_NAME "zelmodemslib")
set(CPACK_PACKAGE_VENDOR "ZelModemsLib")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "${ZELMODEMS_PACKAGE_MAINTAINER}")
# Each package's description starts with its own synopsis line. CPack puts
# a package-wide summary in front of it unless the summary is CPack's
# default text, so that is what the summary is left at.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${CMAKE_PROJECT_NAME} built using CMake")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_STRIP_FILES ON)
# Packages built from the build tree go to its packages/ folder.
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime simulator development)
if(ZELMODEMS_BUILD_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

# Dependencies on the system's libraries come from dpkg-shlibdeps; our own
# libraries are found in the build tree (they belong to no installed
# package, so no dependency is derived from them: the component
# dependencies below supply those, with the exact version).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    "${PROJECT_BINARY_DIR}/src" "${PROJECT_BINARY_DIR}/platform" "${PROJECT_BINARY_DIR}/simulator")
# A shlibs file, so that packages built against the library depend on it.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

# Runtime.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "libzelmodemslib${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DISPLAY_NAME "ZelModemsLib runtime")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "cellular and analog modem library (runtime)
ZelModemsLib finds modems on serial ports (USB modems included), talks to
them in AT commands, recognises their make, reads IMEI, SIM operator,
signal and cells, asks the balance by USSD, reads and sends SMS, and
produces the dial-up connection records of the appliance's dialer.

This package holds the shared library libzelmodemslib.so.${PROJECT_VERSION_MAJOR} and its
translations.")

# Simulator.
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_NAME "libzelmodemssim${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_SIMULATOR_DEPENDS runtime)
set(CPACK_COMPONENT_SIMULATOR_DISPLAY_NAME "ZelModemsLib modem simulator")
set(CPACK_COMPONENT_SIMULATOR_DESCRIPTION
    "simulated modems on pseudo-terminals (library)
Simulated GSM modems of several makes on pseudo-terminals, scriptable
in-process (signal, USSD replies, stored SMS, errors, silence, a device
that disappears), for testing services built on ZelModemsLib without
hardware. Headers and the CMake component Simulator are in
libzelmodemslib-dev.")

# Development.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME "libzelmodemslib-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime simulator)
# The public headers include Qt's, and the CMake package finds Qt.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qtbase5-dev, libqt5serialport5-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DISPLAY_NAME "ZelModemsLib development files")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "cellular and analog modem library (development files)
Headers (include/zelmodemslib/), the CMake package ZelModemsLib
(find_package(ZelModemsLib 5)) and the pkg-config file zelmodemslib.pc
for building programs on ZelModemsLib.")

# Tools.
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME "zelmodems-tools")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime simulator)
# zelmodems wvdialconf runs it; nothing else needs it.
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "wvdial, bash-completion")
set(CPACK_COMPONENT_TOOLS_DISPLAY_NAME "ZelModemsLib tools")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
    "modem command-line tool and modem simulator
zelmodems finds modems on serial ports and queries them: identity,
operator, signal, cells, USSD balance, own number, SMS; explains and
builds SMS PDUs; runs a demonstration against simulated modems.
modemsim starts simulated modems on pseudo-terminals for developing
services without hardware.")

# Every package carries the licence as its Debian copyright file.
set(ZML_PACKAGE_OF_runtime "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME}")
set(ZML_PACKAGE_OF_simulator "${CPACK_DEBIAN_SIMULATOR_PACKAGE_NAME}")
set(ZML_PACKAGE_OF_development "${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME}")
set(ZML_PACKAGE_OF_tools "${CPACK_DEBIAN_TOOLS_PACKAGE_NAME}")
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    install(FILES "${PROJECT_SOURCE_DIR}/cmake/debian/copyright"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${ZML_PACKAGE_OF_${component}}"
        COMPONENT ${component})
endforeach()

include(CPack)
