# vq_add_idl_library(<target> <file.idl>...)
#
# Generates stubs and skeletons into the build tree and compiles them into one static library.
# Everything that differs between ORB products in how stubs are made is here. The generated headers
# are named <file>C.h and are SYSTEM for whoever links the target: they answer to no warning of ours.
function(vq_add_idl_library target)
  set(out ${CMAKE_CURRENT_BINARY_DIR}/generated)
  set(stubs ${out}/vq_idl)
  file(MAKE_DIRECTORY ${stubs})
  set(sources)
  set(headers)
  foreach(file IN LISTS ARGN)
    get_filename_component(name ${file} NAME_WE)
    add_custom_command(
      OUTPUT ${stubs}/${name}C.h ${stubs}/${name}C.cpp ${stubs}/${name}DynC.cpp
      COMMAND ${VQ_OMNIIDL} -bcxx -Wba -Wbuse-quotes -Wbh=C.h -Wbs=C.cpp -Wbd=DynC.cpp
              -Wbguard-prefix==VQ -I${CMAKE_CURRENT_SOURCE_DIR} -C${stubs}
              ${CMAKE_CURRENT_SOURCE_DIR}/${file}
      DEPENDS ${ARGN}
      COMMENT "Stubs and skeletons of ${file}"
      VERBATIM)
    list(APPEND sources ${stubs}/${name}C.cpp ${stubs}/${name}DynC.cpp)
    list(APPEND headers ${stubs}/${name}C.h)
  endforeach()
  add_library(${target} STATIC ${sources})
  # The wire types cross the border of the shared library, exceptions among them.
  set_target_properties(${target} PROPERTIES
    CXX_VISIBILITY_PRESET default VISIBILITY_INLINES_HIDDEN OFF
    VQ_GENERATED_HEADERS "${headers}" VQ_GENERATED_ROOT "${out}")
  target_compile_options(${target} PRIVATE -w)
  if(VQ_SANITIZE MATCHES "undefined")
    # omniORB's templates multiply lengths as signed numbers; support/orb/CorbaConversions.h refuses
    # what comes of an overflow.
    target_compile_options(${target} PRIVATE -fno-sanitize=signed-integer-overflow)
  endif()
  # The generated header directory is reached as <vq_idl/NameC.h>, and bare by the stubs themselves.
  target_include_directories(${target} SYSTEM
    PUBLIC $<BUILD_INTERFACE:${out}> PRIVATE ${stubs})
  target_link_libraries(${target} PUBLIC vq::orb_product)
endfunction()
