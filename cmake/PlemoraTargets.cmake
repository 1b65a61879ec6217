# How the targets of this project are made: warnings are errors, and a target sees the headers of
# its own folder and of the folders that it links, no others.

add_library(plemora_options INTERFACE)
target_compile_options(plemora_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
  -Wimplicit-fallthrough -Werror)
# GCC 12 sees uninitialised std::optionals and overlapping std::strings where there are none once it
# inlines a lot (its bugs 80635 and 105651). The dev build keeps these warnings.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND (CMAKE_BUILD_TYPE STREQUAL Release OR PLEMORA_SANITIZE))
  target_compile_options(plemora_options INTERFACE -Wno-maybe-uninitialized -Wno-restrict)
endif()
# What is installed is to be small in memory: nothing is kept that nobody calls.
if(CMAKE_BUILD_TYPE STREQUAL Release)
  target_compile_options(plemora_options INTERFACE -ffunction-sections -fdata-sections)
  target_link_options(plemora_options INTERFACE LINKER:--gc-sections)
endif()
if(PLEMORA_SANITIZE)
  target_compile_options(plemora_options INTERFACE
    -fsanitize=${PLEMORA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(plemora_options INTERFACE -fsanitize=${PLEMORA_SANITIZE})
  # The address sanitizer stops at what these find, and they take a quarter of its build. The fuzz
  # targets keep them.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND PLEMORA_SANITIZE MATCHES "undefined")
    target_compile_options(plemora_options INTERFACE
      -fno-sanitize=null,alignment,object-size,vptr)
  endif()
endif()

# Tests take longest to compile: what they test is what counts, so they are not optimised, and are
# looked into by the sanitizers only as far as they must be.
add_library(plemora_test_options INTERFACE)
target_compile_options(plemora_test_options INTERFACE -O0)
if(PLEMORA_SANITIZE MATCHES "undefined")
  target_compile_options(plemora_test_options INTERFACE -fno-sanitize=undefined)
endif()

# What computes samples, pixels or places in a hurry. A release spends as much code on it as makes it
# faster; of all else, which runs seldom, the memory counts.
set(PLEMORA_FAST plemora_audio_render plemora_controlcenter plemora_glass plemora_pipewire
  plemora_skin)
function(plemora_size target)
  if(CMAKE_BUILD_TYPE STREQUAL Release AND NOT target IN_LIST PLEMORA_FAST)
    target_compile_options(${target} PRIVATE -Os)
  endif()
endfunction()

# plemora_library(<target> FOLDER <folder below src> SOURCES <files> [LINKS <targets>]
#   [PRIVATE_LINKS <targets>] [PRECOMPILE <headers>])
# PRECOMPILE names headers that most of its sources include, besides those of the standard library;
# they are read once where PLEMORA_PRECOMPILE is on.
# The folder is offered to dependents under its own name through a link in the build tree, so that
# #include "folder/file.h" works for those who link the target and for nobody else.
function(plemora_library target)
  cmake_parse_arguments(ARG "" "FOLDER" "SOURCES;LINKS;PRIVATE_LINKS;PRECOMPILE" ${ARGN})
  set(view ${PROJECT_BINARY_DIR}/include/${target})
  cmake_path(GET ARG_FOLDER PARENT_PATH parent)
  file(MAKE_DIRECTORY ${view}/${parent})
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${ARG_FOLDER} ${view}/${ARG_FOLDER} SYMBOLIC)
  if(ARG_SOURCES)
    add_library(${target} STATIC ${ARG_SOURCES})
    target_include_directories(${target} PUBLIC ${view})
    target_link_libraries(${target} PUBLIC ${ARG_LINKS} PRIVATE plemora_options ${ARG_PRIVATE_LINKS})
    plemora_size(${target})
    list(LENGTH ARG_SOURCES count)
    if(PLEMORA_PRECOMPILE AND count GREATER 3)
      target_precompile_headers(${target} PRIVATE <algorithm> <functional> <map> <memory> <optional>
        <string> <utility> <variant> <vector> ${ARG_PRECOMPILE})
    endif()
  else()
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE ${view})
    target_link_libraries(${target} INTERFACE ${ARG_LINKS})
  endif()
endfunction()

# plemora_program(<target> SOURCES <files> LINKS <targets>)
function(plemora_program target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE plemora_options ${ARG_LINKS})
  plemora_size(${target})
endfunction()

# plemora_test(<target> SOURCES <files> LINKS <targets> [TIMEOUT <seconds>] [SERIAL] [LABEL <label>])
# Every test case becomes a test of its own in CTest. SERIAL ones never run beside others. (One label
# only: a list among the properties would be read as further properties.)
function(plemora_test target)
  cmake_parse_arguments(ARG "SERIAL" "TIMEOUT;LABEL" "SOURCES;LINKS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 60)
  endif()
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE plemora_options plemora_test_options ${ARG_LINKS}
    GTest::gmock GTest::gtest_main)
  # What every test includes anyway, read once for each target that is worth it.
  list(LENGTH ARG_SOURCES count)
  if(count GREATER 2)
    target_precompile_headers(${target} PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
  endif()
  set(properties TIMEOUT ${ARG_TIMEOUT})
  if(ARG_SERIAL)
    list(APPEND properties RUN_SERIAL TRUE)
  endif()
  if(ARG_LABEL)
    list(APPEND properties LABELS ${ARG_LABEL})
  endif()
  if(PLEMORA_SANITIZE MATCHES "address")
    list(APPEND properties ENVIRONMENT
      "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0")
  elseif(PLEMORA_SANITIZE MATCHES "thread")
    # Qt, libdbus and libpipewire are not instrumented: what they lock and hand over is invisible to
    # the sanitizer.
    set(options "print_suppressions=0")
    # Qt and libdbus lock in ways that the sanitizer cannot see. The lock of the sound server's loop
    # it can, as long as it looks into the library.
    if(NOT ARG_LABEL STREQUAL "pipewire")
      string(APPEND options ":ignore_noninstrumented_modules=1")
    endif()
    list(APPEND properties ENVIRONMENT
      "TSAN_OPTIONS=${options}:suppressions=${PROJECT_SOURCE_DIR}/tests/support/tsan.supp")
  endif()
  gtest_discover_tests(${target} TEST_PREFIX "${PLEMORA_TEST_PREFIX}" DISCOVERY_TIMEOUT 60
    PROPERTIES ${properties})
endfunction()
