# The three kinds of target of this tree, each by one function, so that flags, include paths and
# warnings are the same everywhere.

# vq_precompile(<target>)
# For a target that includes the ORB's headers, which are two thirds of a compilation. A program is
# compiled like the libraries, as the headers were; it is linked the same.
function(vq_precompile target)
  if(NOT VQ_PRECOMPILED)
    return()
  endif()
  if(NOT TARGET vq_precompiled)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/precompiled.cpp CONTENT "")
    add_library(vq_precompiled OBJECT ${PROJECT_BINARY_DIR}/precompiled.cpp)
    target_include_directories(vq_precompiled PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(vq_precompiled PRIVATE vq::orb_product vq_warnings)
    target_precompile_headers(vq_precompiled PRIVATE <algorithm> <chrono> <functional> <map>
      <memory> <optional> <string> <vector> <support/orb/Corba.h>)
  endif()
  target_precompile_headers(${target} REUSE_FROM vq_precompiled)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    target_compile_options(${target} PRIVATE -fPIC)
  endif()
endfunction()

# vq_add_part(<target> <type> <property> SOURCES ... [HEADERS public...] [LINK targets...])
# One library of this tree, whose name joins the list in the global property. HEADERS are installed.
function(vq_add_part target type property)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;LINK" ${ARGN})
  add_library(${target} ${type} ${ARG_SOURCES})
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PUBLIC ${ARG_LINK} PRIVATE vq_warnings)
  foreach(header IN LISTS ARG_HEADERS)
    set_property(GLOBAL APPEND PROPERTY VQ_PUBLIC_HEADERS ${CMAKE_CURRENT_SOURCE_DIR}/${header})
  endforeach()
  if(ARG_LINK MATCHES "vq_idl|vq_support_orb")
    vq_precompile(${target})
  endif()
  set_property(GLOBAL APPEND PROPERTY ${property} ${target})
endfunction()

# vq_add_support_library(<folder> ...), as vq_add_part
# One static library a support folder, named vq_support_<folder>.
function(vq_add_support_library folder)
  vq_add_part(vq_support_${folder} STATIC VQ_SUPPORT_LIBRARIES ${ARGN})
endfunction()

# vq_add_library_folder(<folder> ...), as vq_add_part
# One object library a folder of vq_client_common, named vq_common_<folder>; the shared library and
# its static twin are made of all of them.
function(vq_add_library_folder folder)
  vq_add_part(vq_common_${folder} OBJECT VQ_FOLDER_TARGETS ${ARGN})
endfunction()

# vq_add_test(<name> SOURCES ... LINK targets... [LABELS ...])
# One GoogleTest program, one CTest entry. Tests make their own directories, ports and environment,
# so they may run side by side.
function(vq_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gtest GTest::gmock GTest::gtest_main
    vq_warnings)
  if(ARG_LINK MATCHES "client_common|fixture|remote_functions|simulator|orb|grants|idl")
    vq_precompile(${name})
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 LABELS "${ARG_LABELS}")
  if("threads" IN_LIST ARG_LABELS)
    add_dependencies(vq_tests_with_threads ${name})
  endif()
endfunction()

# vq_add_fuzzer(<name> SOURCES ... LINK targets...)
# With VQ_FUZZ a libFuzzer program; otherwise a program that replays the corpus fuzz/corpus/<name>
# as an ordinary test, so that every finding stays found.
function(vq_add_fuzzer name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  set(target fuzz_${name})
  add_executable(${target} ${ARG_SOURCES})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PRIVATE ${ARG_LINK} vq_warnings)
  if(VQ_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer)
    target_link_options(${target} PRIVATE -fsanitize=fuzzer)
  else()
    target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/fuzz/ReplayMain.cpp)
  endif()
  if(BUILD_TESTING AND NOT VQ_FUZZ)
    add_test(NAME replay_${name} COMMAND ${target} ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
    set_tests_properties(replay_${name} PROPERTIES TIMEOUT 120 LABELS "fuzz")
  endif()
endfunction()

# vq_add_benchmark(<name> SOURCES ... LINK targets...)
# A Google Benchmark program that measures the library beside a peer in the same run.
function(vq_add_benchmark name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(bench_${name} ${ARG_SOURCES})
  target_include_directories(bench_${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(bench_${name} PRIVATE ${ARG_LINK} benchmark::benchmark vq_warnings)
  add_dependencies(benchmarks bench_${name})
endfunction()
