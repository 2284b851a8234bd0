# Finds the ORB product that VQ_ORB names and offers it as the target vq::orb_product. What else
# differs by product in building, installing and testing is decided here and in VqIdl.cmake.

add_library(vq_orb_product INTERFACE)
add_library(vq::orb_product ALIAS vq_orb_product)
# ACE, which with TAO is TAO's own: two of them in one process do not go together.
add_library(vq_ace INTERFACE)
add_library(vq::ace ALIAS vq_ace)
# The product's TLS.
add_library(vq_orb_tls INTERFACE)
add_library(vq::orb_tls ALIAS vq_orb_tls)

if(VQ_ORB STREQUAL "omniORB")
  find_package(PkgConfig REQUIRED)
  set(VQ_ORB_PC_MODULES "omniORB4 omniDynamic4 omnithread4")  # for the installed packages
  pkg_check_modules(OMNIORB REQUIRED IMPORTED_TARGET omniORB4>=4.2 omniDynamic4 omnithread4)
  if(NOT OMNIORB_omniORB4_VERSION MATCHES "^4\\.[23]\\.")
    message(WARNING "omniORB ${OMNIORB_omniORB4_VERSION} is unknown: this library was tried with "
      "4.2.5 and 4.3.3. It uses interfaces that omniORB does not promise to keep, in "
      "support/orb/omniorb. If it compiles, run all tests before you rely on it.")
  endif()
  find_program(VQ_OMNIIDL omniidl REQUIRED)
  target_link_libraries(vq_orb_product INTERFACE PkgConfig::OMNIORB)
  # The network interfaces are asked of ACE.
  pkg_check_modules(ACE REQUIRED IMPORTED_TARGET ACE)
  target_link_libraries(vq_ace INTERFACE PkgConfig::ACE)
  # omniORB's TLS has no pkg-config file. A program that does not call it does not load it.
  find_library(VQ_OMNISSL omnisslTP4 REQUIRED)
  target_link_libraries(vq_orb_tls INTERFACE
    "-Wl,--push-state,--as-needed,${VQ_OMNISSL},--pop-state")
  find_program(VQ_NAMING_PROGRAM omniNames)
  string(CONCAT VQ_NAMING_COMMAND
    "OMNIORB_CONFIG=/dev/null exec \"${VQ_NAMING_PROGRAM}\" -start \"$2\" -always "
    "-datadir \"$3\" -ORBendPoint \"giop:tcp:$1:$2\"")
elseif(VQ_ORB STREQUAL "TAO")
  find_package(TAO 2.2 REQUIRED MODULE)
  target_link_libraries(vq_orb_product INTERFACE vq::tao)
  target_compile_definitions(vq_orb_product INTERFACE VQ_ORB_TAO)
  target_link_libraries(vq_ace INTERFACE vq::tao)
  set(VQ_TAO_IDL ${TAO_IDL_COMMAND})
  set(VQ_ORB_PC_MODULES "${TAO_PC_MODULES}")
  set(VQ_ORB_PC_CFLAGS "-DVQ_ORB_TAO ${TAO_PC_CFLAGS}")
  set(VQ_ORB_PC_LIBS "${TAO_PC_LIBS}")
  if(TARGET vq::tao_ssliop)
    target_link_libraries(vq_orb_tls INTERFACE vq::tao_ssliop)
  endif()
  if(NOT VQ_NAMING_PROGRAM)
    set(VQ_NAMING_PROGRAM ${TAO_NAMING_PROGRAM})
  endif()
  string(CONCAT VQ_NAMING_COMMAND
    "LD_LIBRARY_PATH=\"${TAO_LIBRARY_DIR}:$LD_LIBRARY_PATH\" exec "
    "\"${VQ_NAMING_PROGRAM}\" -ORBSvcConf /dev/null -m 0 "
    "-ORBListenEndpoints \"iiop://$1:$2\${4:+/hostname_in_ior=$4}\"")
else()
  message(FATAL_ERROR "VQ_ORB must be omniORB or TAO, not '${VQ_ORB}'")
endif()

# The product's naming service for trials and tests, under one name: naming-service HOST PORT
# DIRECTORY [PUBLISHED]. The directory exists. Where the service sends its clients on to another
# reference, as TAO's does, that one leads to the host PUBLISHED.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/naming-service CONTENT "#!/bin/sh
# naming-service HOST PORT DIRECTORY [PUBLISHED]
${VQ_NAMING_COMMAND}
" @ONLY)
file(CHMOD ${PROJECT_BINARY_DIR}/naming-service PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
