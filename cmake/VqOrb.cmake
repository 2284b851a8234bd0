# Finds the ORB product that VQ_ORB names and offers it as the target vq::orb_product.

add_library(vq_orb_product INTERFACE)
add_library(vq::orb_product ALIAS vq_orb_product)
# The product's TLS.
add_library(vq_orb_tls INTERFACE)
add_library(vq::orb_tls ALIAS vq_orb_tls)

if(VQ_ORB STREQUAL "omniORB")
  find_package(PkgConfig REQUIRED)
  set(VQ_ORB_PC_MODULES "omniORB4 omniDynamic4 omnithread4")  # for the installed packages
  pkg_check_modules(OMNIORB REQUIRED IMPORTED_TARGET omniORB4>=4.2 omniDynamic4 omnithread4)
  find_program(VQ_OMNIIDL omniidl REQUIRED)
  target_link_libraries(vq_orb_product INTERFACE PkgConfig::OMNIORB)
  # omniORB's TLS has no pkg-config file. A program that does not call it does not load it.
  find_library(VQ_OMNISSL omnisslTP4 REQUIRED)
  target_link_libraries(vq_orb_tls INTERFACE
    "-Wl,--push-state,--as-needed,${VQ_OMNISSL},--pop-state")
elseif(VQ_ORB STREQUAL "TAO")
  message(FATAL_ERROR
    "VQ_ORB=TAO: this version has no TAO implementation file yet. Configure with -DVQ_ORB=omniORB.")
else()
  message(FATAL_ERROR "VQ_ORB must be omniORB or TAO, not '${VQ_ORB}'")
endif()
