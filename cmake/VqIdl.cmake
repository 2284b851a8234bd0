# vq_add_idl_library(<target> <file.idl>...)
#
# Generates stubs and skeletons into the build tree and compiles them into one static library.
# Everything that differs between ORB products in how stubs are made is here. Stubs are included as
# <vq_idl/NameC.h>, skeletons as <vq_idl/NameS.h>, whatever the product. The generated headers are
# SYSTEM headers for the targets that link this one: our warnings do not apply to them.
function(vq_add_idl_library target)
  set(out ${CMAKE_CURRENT_BINARY_DIR}/generated)
  set(stubs ${out}/vq_idl)
  file(MAKE_DIRECTORY ${stubs})
  set(sources)
  set(headers)
  foreach(file IN LISTS ARGN)
    get_filename_component(name ${file} NAME_WE)
    vq_generate_stubs(${stubs} ${file} ${name} "${ARGN}")
    list(APPEND sources ${generated_sources})
    list(APPEND headers ${generated_headers})
  endforeach()
  add_library(${target} STATIC ${sources})
  # The wire types cross the border of the shared library, exceptions among them.
  set_target_properties(${target} PROPERTIES
    CXX_VISIBILITY_PRESET default VISIBILITY_INLINES_HIDDEN OFF
    VQ_GENERATED_HEADERS "${headers}" VQ_GENERATED_ROOT "${out}")
  target_compile_options(${target} PRIVATE -w)
  if(VQ_SANITIZE MATCHES "undefined")
    # omniORB's templates multiply lengths as signed numbers; support/orb/CorbaConversions.h refuses
    # the lengths that overflow.
    target_compile_options(${target} PRIVATE -fno-sanitize=signed-integer-overflow)
  endif()
  # The generated header directory is reached as <vq_idl/NameC.h>, and bare by the stubs themselves.
  target_include_directories(${target} SYSTEM
    PUBLIC $<BUILD_INTERFACE:${out}> PRIVATE ${stubs})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PUBLIC vq::orb_product)
endfunction()

# Sets generated_sources and generated_headers in the caller to what is made of one file.
if(VQ_ORB STREQUAL "omniORB")
  macro(vq_generate_stubs stubs file name all)
    set(generated_sources ${stubs}/${name}C.cpp ${stubs}/${name}DynC.cpp)
    set(generated_headers ${stubs}/${name}C.h ${stubs}/${name}S.h)
    # Stubs and skeletons are in one header.
    file(CONFIGURE OUTPUT ${stubs}/${name}S.h CONTENT "#include \"${name}C.h\"\n")
    add_custom_command(
      OUTPUT ${stubs}/${name}C.h ${generated_sources}
      COMMAND ${VQ_OMNIIDL} -bcxx -Wba -Wbuse-quotes -Wbh=C.h -Wbs=C.cpp -Wbd=DynC.cpp
              -Wbguard-prefix==VQ -I${CMAKE_CURRENT_SOURCE_DIR} -C${stubs}
              ${CMAKE_CURRENT_SOURCE_DIR}/${file}
      DEPENDS ${all}
      COMMENT "Stubs and skeletons of ${file}"
      VERBATIM)
  endmacro()
else()
  macro(vq_generate_stubs stubs file name all)
    set(generated_sources ${stubs}/${name}C.cpp ${stubs}/${name}S.cpp)
    set(generated_headers ${stubs}/${name}C.h ${stubs}/${name}C.inl ${stubs}/${name}S.h)
    add_custom_command(
      OUTPUT ${generated_headers} ${generated_sources}
      # What is generated is exported as our own classes are. Templates of TAO find the operators
      # that they use only where these are declared before, hence the first include.
      COMMAND ${VQ_TAO_IDL} -Wb,export_macro=VQ_CLIENT_COMMON_API
              -Wb,export_include=support/Export.h -Wb,pre_include=support/orb/Corba.h
              -I${CMAKE_CURRENT_SOURCE_DIR} -o ${stubs}
              ${CMAKE_CURRENT_SOURCE_DIR}/${file}
      DEPENDS ${all}
      COMMENT "Stubs and skeletons of ${file}"
      VERBATIM)
  endmacro()
endif()
