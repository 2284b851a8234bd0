# The three kinds of target of this tree, each by one function, so that flags, include paths and
# warnings are the same everywhere.

# vq_add_support_library(<folder> SOURCES ... [HEADERS public...] [LINK targets...])
# One static library a support folder, named vq_support_<folder>. HEADERS are installed because a
# public header of the library needs them.
function(vq_add_support_library folder)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;LINK" ${ARGN})
  set(target vq_support_${folder})
  add_library(${target} STATIC ${ARG_SOURCES})
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PUBLIC ${ARG_LINK} PRIVATE vq_warnings)
  foreach(header IN LISTS ARG_HEADERS)
    set_property(GLOBAL APPEND PROPERTY VQ_PUBLIC_HEADERS ${CMAKE_CURRENT_SOURCE_DIR}/${header})
  endforeach()
  set_property(GLOBAL APPEND PROPERTY VQ_SUPPORT_LIBRARIES ${target})
endfunction()

# vq_add_library_folder(<folder> SOURCES ... HEADERS public... [LINK targets...])
# One object library a folder of vq_client_common, named vq_common_<folder>; the shared library and
# its static twin are made of all of them.
function(vq_add_library_folder folder)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;LINK" ${ARGN})
  set(target vq_common_${folder})
  add_library(${target} OBJECT ${ARG_SOURCES})
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PUBLIC ${ARG_LINK} PRIVATE vq_warnings)
  foreach(header IN LISTS ARG_HEADERS)
    set_property(GLOBAL APPEND PROPERTY VQ_PUBLIC_HEADERS ${CMAKE_CURRENT_SOURCE_DIR}/${header})
  endforeach()
  set_property(GLOBAL APPEND PROPERTY VQ_FOLDER_TARGETS ${target})
endfunction()

# vq_add_test(<name> SOURCES ... LINK targets... [LABELS ...] [TIMEOUT seconds] [ARGS ...])
# One GoogleTest program, one CTest entry. Tests make their own directories, ports and environment,
# so they may run side by side.
function(vq_add_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LINK;LABELS;ARGS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gtest GTest::gmock GTest::gtest_main
    vq_warnings)
  add_test(NAME ${name} COMMAND ${name} ${ARG_ARGS})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
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
  set_property(GLOBAL APPEND PROPERTY VQ_BENCHMARK_TARGETS bench_${name})
endfunction()
