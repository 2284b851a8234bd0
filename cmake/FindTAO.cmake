# Finds ACE+TAO, in this order:
#
#   1. its own CMake package (TAO-config.cmake, or ACE_TAO-config.cmake), which offers
#      TAO::<library>;
#   2. pkg-config (TAO.pc and its like);
#   3. ACE_ROOT and TAO_ROOT, as variables of CMake or of the environment: a source tree that was
#      built in place, or the prefix where it was installed. TAO_ROOT defaults to ACE_ROOT/TAO.
#
# Sets TAO_FOUND, TAO_VERSION, TAO_FOUND_BY, TAO_LIBRARY_DIR, TAO_IDL_COMMAND (how tao_idl is
# called), TAO_NAMING_PROGRAM (tao_cosnaming, which may be missing) and, for other pkg-config files,
# TAO_PC_MODULES or else TAO_PC_CFLAGS and TAO_PC_LIBS. Makes the targets
#
#   vq::tao          the ORB with what a client needs, and ACE
#   vq::tao_ssliop   TLS; only where TAO's libraries and headers for it are found
#
# An installed package of this project brings this file along.

# From the top down, so that a static linker is content as well.
set(_tao_needed CosNaming Messaging BiDirGIOP PI_Server PortableServer PI CodecFactory Valuetype AnyTypeCode)
set(_tao_missing)
set(TAO_FOUND_BY)
set(TAO_PC_MODULES)
set(TAO_PC_CFLAGS)
set(TAO_PC_LIBS)
set(TAO_LIBRARY_DIR)
set(_tao_only)

foreach(_root ACE_ROOT TAO_ROOT)
  if(NOT ${_root} AND DEFINED ENV{${_root}})
    file(TO_CMAKE_PATH "$ENV{${_root}}" _path)
    # Kept, since the build system configures itself anew in another environment.
    set(${_root} ${_path} CACHE PATH "Where ${_root} of the environment was")
  endif()
endforeach()
if(ACE_ROOT AND NOT TAO_ROOT AND EXISTS "${ACE_ROOT}/TAO")
  set(TAO_ROOT ${ACE_ROOT}/TAO)
elseif(ACE_ROOT AND NOT TAO_ROOT)
  set(TAO_ROOT ${ACE_ROOT})
elseif(TAO_ROOT AND NOT ACE_ROOT)
  set(ACE_ROOT ${TAO_ROOT})
endif()

# ---- 1. its own CMake package -------------------------------------------------------------------
if(NOT TAO_ROOT)
  foreach(_package TAO ACE_TAO)
    if(NOT TARGET TAO::TAO)
      find_package(${_package} CONFIG QUIET)
    endif()
  endforeach()
endif()
if(TARGET TAO::TAO)
  set(_tao_targets)
  foreach(_library IN LISTS _tao_needed)
    foreach(_target TAO::${_library} TAO::TAO_${_library})
      if(TARGET ${_target})
        list(APPEND _tao_targets ${_target})
        break()
      endif()
    endforeach()
    if(NOT TARGET TAO::${_library} AND NOT TARGET TAO::TAO_${_library})
      list(APPEND _tao_missing "the target TAO::${_library} of the CMake package")
    endif()
  endforeach()
  list(APPEND _tao_targets TAO::TAO)
  if(TARGET ACE::ACE)
    list(APPEND _tao_targets ACE::ACE)
  endif()
  # Where the libraries are, for what is no CMake: tao_idl, the naming service, pkg-config.
  foreach(_target IN LISTS _tao_targets)
    foreach(_property IMPORTED_LOCATION IMPORTED_LOCATION_RELEASE IMPORTED_LOCATION_RELWITHDEBINFO
            IMPORTED_LOCATION_NOCONFIG IMPORTED_LOCATION_DEBUG)
      get_target_property(_location ${_target} ${_property})
      if(_location)
        string(APPEND TAO_PC_LIBS " ${_location}")
        get_filename_component(TAO_LIBRARY_DIR ${_location} DIRECTORY)
        break()
      endif()
    endforeach()
  endforeach()
  get_target_property(TAO_INCLUDE_DIRS TAO::TAO INTERFACE_INCLUDE_DIRECTORIES)
  if(NOT TARGET vq::tao)
    add_library(vq::tao INTERFACE IMPORTED)
    target_link_libraries(vq::tao INTERFACE ${_tao_targets})
    if(TARGET TAO::SSLIOP)
      add_library(vq::tao_ssliop INTERFACE IMPORTED)
      target_link_libraries(vq::tao_ssliop INTERFACE TAO::SSLIOP)
    endif()
  endif()
  set(TAO_FOUND_BY "its CMake package")
endif()

# ---- 2. pkg-config ------------------------------------------------------------------------------
if(NOT TAO_FOUND_BY AND NOT TAO_ROOT)
  find_package(PkgConfig QUIET)
  set(_tao_modules)
  foreach(_library IN LISTS _tao_needed)
    list(APPEND _tao_modules TAO_${_library})
  endforeach()
  if(PkgConfig_FOUND)
    pkg_check_modules(TAO_ONE_PC QUIET TAO)
    if(TAO_ONE_PC_FOUND)
      pkg_check_modules(TAO_ALL_PC QUIET IMPORTED_TARGET GLOBAL ${_tao_modules} TAO ACE)
      if(TAO_ALL_PC_FOUND AND NOT TARGET vq::tao)
        add_library(vq::tao INTERFACE IMPORTED)
        target_link_libraries(vq::tao INTERFACE PkgConfig::TAO_ALL_PC)
        pkg_check_modules(TAO_SSLIOP_PC QUIET IMPORTED_TARGET GLOBAL TAO_SSLIOP)
        if(TAO_SSLIOP_PC_FOUND)
          add_library(vq::tao_ssliop INTERFACE IMPORTED)
          target_link_libraries(vq::tao_ssliop INTERFACE PkgConfig::TAO_SSLIOP_PC)
        endif()
      elseif(NOT TAO_ALL_PC_FOUND)
        foreach(_module IN LISTS _tao_modules ITEMS ACE)
          pkg_check_modules(TAO_${_module}_PC QUIET ${_module})
          if(NOT TAO_${_module}_PC_FOUND)
            list(APPEND _tao_missing "the pkg-config module ${_module}, or one that it requires")
          endif()
        endforeach()
      endif()
      set(TAO_FOUND_BY "pkg-config")
      list(JOIN _tao_modules " " TAO_PC_MODULES)
      string(APPEND TAO_PC_MODULES " TAO ACE")
      pkg_get_variable(TAO_LIBRARY_DIR TAO libdir)
      set(TAO_INCLUDE_DIRS ${TAO_ALL_PC_INCLUDE_DIRS})
      if(NOT TAO_INCLUDE_DIRS)
        pkg_get_variable(TAO_INCLUDE_DIRS TAO includedir)
      endif()
    endif()
  endif()
endif()

# ---- 3. ACE_ROOT and TAO_ROOT -------------------------------------------------------------------
if(NOT TAO_FOUND_BY)
  set(_tao_roots ${TAO_ROOT} ${ACE_ROOT})
  set(TAO_INCLUDE_DIRS)
  # Half of another ACE or TAO, which the system may have, is worse than none.
  if(_tao_roots)
    set(_tao_only NO_DEFAULT_PATH)
  endif()
  foreach(_header ace/ACE.h tao/ORB.h orbsvcs/CosNamingC.h)
    string(MAKE_C_IDENTIFIER "TAO_INCLUDE_${_header}" _variable)
    find_path(${_variable} ${_header} HINTS ${_tao_roots}
      PATH_SUFFIXES include TAO orbsvcs TAO/orbsvcs ${_tao_only})
    mark_as_advanced(${_variable})
    if(${_variable})
      list(APPEND TAO_INCLUDE_DIRS ${${_variable}})
    else()
      list(APPEND _tao_missing "the header ${_header}")
    endif()
  endforeach()
  list(REMOVE_DUPLICATES TAO_INCLUDE_DIRS)

  set(_tao_libraries)
  foreach(_library IN LISTS _tao_needed ITEMS TAO ACE)
    set(_name TAO_${_library})
    if(_library STREQUAL "TAO" OR _library STREQUAL "ACE")
      set(_name ${_library})
    endif()
    find_library(TAO_LIBRARY_${_name} ${_name} HINTS ${ACE_ROOT} ${TAO_ROOT}
      PATH_SUFFIXES lib lib64 ${_tao_only})
    mark_as_advanced(TAO_LIBRARY_${_name})
    if(TAO_LIBRARY_${_name})
      list(APPEND _tao_libraries ${TAO_LIBRARY_${_name}})
    else()
      list(APPEND _tao_missing "the library ${_name}")
    endif()
  endforeach()
  if(TAO_LIBRARY_TAO)
    get_filename_component(TAO_LIBRARY_DIR ${TAO_LIBRARY_TAO} DIRECTORY)
  endif()

  if(NOT _tao_missing AND NOT TARGET vq::tao)
    add_library(vq::tao INTERFACE IMPORTED)
    target_include_directories(vq::tao INTERFACE ${TAO_INCLUDE_DIRS})
    target_link_libraries(vq::tao INTERFACE ${_tao_libraries})
    list(JOIN _tao_libraries " " TAO_PC_LIBS)
    # TAO's libraries find each other where they are, when a program is linked and, by a path that
    # holds for what its libraries need as well, when it runs.
    target_link_options(vq::tao INTERFACE
      "LINKER:-rpath-link,${TAO_LIBRARY_DIR}" "LINKER:--disable-new-dtags")
  endif()
  if(TAO_ROOT)
    set(TAO_FOUND_BY "TAO_ROOT=${TAO_ROOT}")
  else()
    set(TAO_FOUND_BY "the usual directories")
  endif()
endif()

# ---- TLS, which may have no CMake target and no pkg-config file of its own ------------------------
set(TAO_TLS_MISSING)
if(TARGET vq::tao AND NOT TARGET vq::tao_ssliop)
  set(_tls)
  foreach(_name TAO_SSLIOP TAO_Security TAO_Svc_Utils ACE_SSL)
    find_library(TAO_LIBRARY_${_name} ${_name} PATHS ${TAO_LIBRARY_DIR} ${ACE_ROOT} ${TAO_ROOT}
      PATH_SUFFIXES lib lib64 NO_DEFAULT_PATH) # not half of another TAO
    mark_as_advanced(TAO_LIBRARY_${_name})
    if(TAO_LIBRARY_${_name})
      list(APPEND _tls ${TAO_LIBRARY_${_name}})
    endif()
  endforeach()
  find_path(TAO_INCLUDE_SSLIOP orbsvcs/SSLIOP/SSLIOP_Factory.h PATHS ${TAO_INCLUDE_DIRS} NO_DEFAULT_PATH)
  mark_as_advanced(TAO_INCLUDE_SSLIOP)
  foreach(_name TAO_SSLIOP ACE_SSL)
    if(NOT TAO_LIBRARY_${_name})
      list(APPEND TAO_TLS_MISSING "the library ${_name}")
    endif()
  endforeach()
  if(NOT TAO_INCLUDE_SSLIOP)
    list(APPEND TAO_TLS_MISSING "the header orbsvcs/SSLIOP/SSLIOP_Factory.h")
  endif()
  if(NOT TAO_TLS_MISSING)
    add_library(vq::tao_ssliop INTERFACE IMPORTED)
    # By name of a service, not by a call: the linker must not think them idle.
    target_link_libraries(vq::tao_ssliop INTERFACE
      "-Wl,--push-state,--no-as-needed" ${_tls} "-Wl,--pop-state")
  endif()
endif()

# ---- version, flags, compiler of interface definitions --------------------------------------------
if(NOT TAO_PC_MODULES)
  list(JOIN TAO_INCLUDE_DIRS " -isystem " TAO_PC_CFLAGS)
  string(PREPEND TAO_PC_CFLAGS "-isystem ")
  string(APPEND TAO_PC_LIBS " -Wl,-rpath-link,${TAO_LIBRARY_DIR}")
endif()
foreach(_directory IN LISTS TAO_INCLUDE_DIRS)
  if(EXISTS ${_directory}/tao/Version.h)
    file(STRINGS ${_directory}/tao/Version.h _line REGEX "define TAO_VERSION ")
    string(REGEX MATCH "[0-9.]+" TAO_VERSION "${_line}")
  endif()
endforeach()

set(_tao_places ${ACE_ROOT} ${TAO_ROOT})
foreach(_directory IN LISTS TAO_LIBRARY_DIR TAO_INCLUDE_DIRS)
  get_filename_component(_directory ${_directory} DIRECTORY)
  list(APPEND _tao_places ${_directory})
endforeach()
find_program(TAO_IDL_PROGRAM tao_idl HINTS ${_tao_places} PATH_SUFFIXES bin TAO_IDL ${_tao_only})
find_program(TAO_GPERF_PROGRAM ace_gperf HINTS ${_tao_places} PATH_SUFFIXES bin ${_tao_only})
find_program(TAO_NAMING_PROGRAM NAMES tao_cosnaming Naming_Service HINTS ${_tao_places}
  PATH_SUFFIXES bin orbsvcs/Naming_Service TAO/orbsvcs/Naming_Service ${_tao_only})
mark_as_advanced(TAO_IDL_PROGRAM TAO_GPERF_PROGRAM TAO_NAMING_PROGRAM)
if(NOT TAO_IDL_PROGRAM)
  list(APPEND _tao_missing "the program tao_idl")
endif()
if(NOT TAO_GPERF_PROGRAM)
  list(APPEND _tao_missing "the program ace_gperf")
endif()
# By itself tao_idl finds neither its libraries nor its gperf where they are in no usual place.
set(TAO_IDL_COMMAND ${CMAKE_COMMAND} -E env)
foreach(_root ACE_ROOT TAO_ROOT)
  if(${_root})
    list(APPEND TAO_IDL_COMMAND "${_root}=${${_root}}")
  endif()
endforeach()
list(APPEND TAO_IDL_COMMAND "LD_LIBRARY_PATH=${TAO_LIBRARY_DIR}:$ENV{LD_LIBRARY_PATH}"
  ${TAO_IDL_PROGRAM} -g ${TAO_GPERF_PROGRAM})

list(JOIN _tao_missing "\n  " _tao_missing_text)
set(_tao_reason "This project needs ACE+TAO 2.2 or later with its naming service's stubs. Searched by "
  "TAO's CMake package, pkg-config (TAO.pc) and the variables ACE_ROOT and TAO_ROOT. Looked at "
  "${TAO_FOUND_BY}.")
list(JOIN _tao_reason "" _tao_reason)
if(_tao_missing)
  string(APPEND _tao_reason "\nNot found:\n  ${_tao_missing_text}\n"
    "Set ACE_ROOT to the directory of ACE, and TAO_ROOT to that of TAO where it is not ACE_ROOT/TAO, "
    "or add the directory of TAO.pc to PKG_CONFIG_PATH, or configure with -DVQ_ORB=omniORB.")
  set(TAO_IS_COMPLETE FALSE)
else()
  set(TAO_IS_COMPLETE TRUE)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(TAO
  REQUIRED_VARS TAO_FOUND_BY TAO_IS_COMPLETE TAO_INCLUDE_DIRS TAO_VERSION
  VERSION_VAR TAO_VERSION
  REASON_FAILURE_MESSAGE "${_tao_reason}")
if(TAO_FOUND AND NOT TAO_FIND_QUIETLY)
  if(TARGET vq::tao_ssliop)
    message(STATUS "TAO ${TAO_VERSION}, found by ${TAO_FOUND_BY}, with TLS")
  else()
    list(JOIN TAO_TLS_MISSING ", " _tao_missing_text)
    message(STATUS "TAO ${TAO_VERSION}, found by ${TAO_FOUND_BY}, without TLS: not found: "
      "${_tao_missing_text}")
  endif()
endif()
