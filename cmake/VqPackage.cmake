# The Debian packages, made by cpack in a build that is configured for the prefix /usr (the preset
# "package", which ./dev package uses).
#
#   libvq-client-common1      what a program needs that was linked with the library
#   libvq-client-common-dev   what is needed to build one
#   vq-client-tools           vqclient
#   vq-simulator              vq_simulator
#   libvq-client-common-doc   the documents and the examples
#
# and, of those with code, the debug symbols (-dbgsym, .ddeb). Files are sorted into packages by the
# component of their install rule: runtime, development, tools, simulator, documentation. What only
# Debian asks for (copyright, changelog, packed manual pages, the symbols file) is made by
# packages/finish.cmake when everything else is in its place. Two builds of one commit give the
# same bytes, in whichever directory and whenever they are made: ./dev reproduce.

set(VQ_PACKAGE_REVISION 1 CACHE STRING "Debian revision of the packages")
set(VQ_PACKAGE_MAINTAINER
  "Seed 13022cd0 maintainers <maintainers@users.noreply.c-seed-13022cd0.example>"
  CACHE STRING "Who answers for the packages, as Debian writes it")

# Installed documents link what is installed.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR
  BASE_DIRECTORY ${CMAKE_INSTALL_FULL_DOCDIR} OUTPUT_VARIABLE headers)
foreach(page IN ITEMS ARCHITECTURE CONTRIBUTING README SECURITY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${page}.md)
  file(READ ${page}.md text)
  foreach(folder IN ITEMS vq_client_common support)
    string(REPLACE "](${folder}/" "](${headers}/vq/${folder}/" text "${text}")
  endforeach()
  string(REPLACE "[Apache-2.0](LICENSE)" "Apache-2.0" text "${text}")
  string(REPLACE "[CHANGELOG.md](CHANGELOG.md)" "the changelog" text "${text}")
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/package-files/${page}.md CONTENT "${text}" @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package-files/${page}.md TYPE DOC COMPONENT documentation)
endforeach()
install(DIRECTORY docs TYPE DOC COMPONENT documentation
  FILES_MATCHING PATTERN "*.md" PATTERN site EXCLUDE)
install(DIRECTORY examples TYPE DOC COMPONENT documentation)
# The site of the target docs, if it was made.
install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html TYPE DOC COMPONENT documentation OPTIONAL)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vq-client-common)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_CONTACT "${VQ_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime development tools simulator documentation)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${VQ_PACKAGE_REVISION})
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE none) # repack.cmake compresses
set(CPACK_VQ_COMPRESSION xz)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON) # which also strips the files
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# The programs need a library that is in no installed package yet.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/vq_client_common)

set(about "A client program of the VELTRA-M/Quorum job-scheduling suite uses this library
to log in to a central server, keep the session alive, ask what the user may
do, hold data centers and convert their times and job fields.")
set(runtime libvq-client-common${PROJECT_VERSION_MAJOR})
set(this_version "(= ${PROJECT_VERSION}-${VQ_PACKAGE_REVISION})")

# vq_package(<component> <package> <section> <first line> [<further text>])
macro(vq_package component package section summary)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${about}\n\n${ARGN}")
  list(APPEND CPACK_VQ_PACKAGES "${component}=${package}")
endmacro()

vq_package(runtime ${runtime} libs "common client library of a job-scheduling suite"
  "This package holds the shared library.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
  "${PROJECT_SOURCE_DIR}/cmake/packages/triggers;${PROJECT_BINARY_DIR}/package-files/symbols")

vq_package(development libvq-client-common-dev libdevel
  "common client library of a job-scheduling suite (development files)"
  "This package holds the headers, the interface definitions, the CMake package
and the pkg-config file.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "${runtime} ${this_version}, libomniorb4-dev, libxerces-c-dev, pkgconf")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libvq-client-common-doc)

vq_package(tools vq-client-tools net "command-line client of a job-scheduling suite"
  "This package holds vqclient, which logs in, asks and finds out why a login
fails.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${runtime} (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS vq-simulator)

vq_package(simulator vq-simulator net "simulated server of a job-scheduling suite"
  "This package holds vq_simulator, a server to try and test clients against.")
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_RECOMMENDS omniorb-nameserver)
# Up to 1.0 it was in vq-client-tools.
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_BREAKS "vq-client-tools (<< ${PROJECT_VERSION})")
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_REPLACES "vq-client-tools (<< ${PROJECT_VERSION})")

vq_package(documentation libvq-client-common-doc doc
  "common client library of a job-scheduling suite (documentation)"
  "This package holds the guides, the pages of the public headers and the
examples.")
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)

# For finish.cmake and repack.cmake.
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/packages/finish.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/packages/repack.cmake)
set(CPACK_VQ_SOURCE ${PROJECT_SOURCE_DIR})
set(CPACK_VQ_SYMBOLS ${PROJECT_BINARY_DIR}/package-files/symbols)
set(CPACK_VQ_RUNTIME ${runtime})
include(CPack)

# At a release: what the symbols file and the recorded interface promise from now on.
add_custom_target(renew_symbols
  COMMAND ${PROJECT_SOURCE_DIR}/cmake/packages/renew_symbols.py $<TARGET_FILE:vq_client_common>
    ${runtime} ${PROJECT_SOURCE_DIR}/cmake/packages/symbols ${PROJECT_VERSION}
  DEPENDS vq_client_common VERBATIM)
