# Build options, and the private targets that carry compiler flags to this project's own code.

option(BUILD_TESTING "Build the tests" ON)
option(VQ_WERROR "Treat warnings as errors" OFF)
option(VQ_ASSERTIONS "Check the preconditions of the standard library at run time" OFF)
option(VQ_COVERAGE "Instrument for statement coverage" OFF)
option(VQ_BENCHMARKS "Build the benchmarks" OFF)
option(VQ_PRECOMPILED "Compile the ORB's headers once instead of in every source" ON)
option(VQ_FUZZ "Build the libFuzzer targets (needs Clang)" OFF)
set(VQ_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize= takes them")
set(VQ_ORB "omniORB" CACHE STRING "ORB product: omniORB or TAO")
set_property(CACHE VQ_ORB PROPERTY STRINGS omniORB TAO)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON) # no build path in what is built
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

# Linked PRIVATE by every target with hand-written code; never exported, never on generated code.
add_library(vq_warnings INTERFACE)
target_compile_options(vq_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
# g++ 12 sees copies beyond the end in correct uses of std::string once it optimises.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(vq_warnings INTERFACE
    $<$<NOT:$<CONFIG:Debug>>:-Wno-array-bounds -Wno-stringop-overread
      -Wno-stringop-overflow -Wno-restrict>)
endif()
if(VQ_WERROR)
  target_compile_options(vq_warnings INTERFACE -Werror)
endif()

# On everything that is built here, generated code included.
if(VQ_SANITIZE)
  add_compile_options(-fsanitize=${VQ_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VQ_SANITIZE})
else()
  add_compile_options(-fstack-protector-strong -fstack-clash-protection)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    add_compile_options(-fcf-protection=full)
  endif()
  if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
    # No build path in what is built. In a Debug build a debugger needs the path of the sources.
    add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
      -ffile-prefix-map=${PROJECT_BINARY_DIR}=./build)
  endif()
endif()
add_link_options(-Wl,-z,relro,-z,now)
if(VQ_ASSERTIONS)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()
if(VQ_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
