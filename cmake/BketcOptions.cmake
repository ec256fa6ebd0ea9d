# Compiler settings shared by every target of the project, applied through an interface target
# so that no directory-wide flags are needed.
add_library(bketc_options INTERFACE)
add_library(bketc::options ALIAS bketc_options)
target_compile_features(bketc_options INTERFACE cxx_std_20)
# Warnings and sanitizers are the build's own; an installed package hands on only the standard
# (and the queue allocator choice, which shapes the headers).
target_compile_options(bketc_options INTERFACE
  "$<BUILD_INTERFACE:-Wall;-Wextra;-Wpedantic;-Wno-unused-parameter>")
if(BKETC_WERROR)
  target_compile_options(bketc_options INTERFACE $<BUILD_INTERFACE:-Werror>)
endif()

if(BKETC_SANITIZE STREQUAL "address")
  # The sanitizers' instrumentation makes g++ see uninitialized reads in Boost's optional that
  # are not there; the warning stays on in every other build.
  target_compile_options(bketc_options INTERFACE "$<BUILD_INTERFACE:-fsanitize=address$<COMMA>undefined;\
-fno-omit-frame-pointer;-fno-sanitize-recover=undefined;-Wno-maybe-uninitialized>")
  target_link_options(bketc_options INTERFACE $<BUILD_INTERFACE:-fsanitize=address$<COMMA>undefined>)
  # LeakSanitizer cannot see into TBB's own memory pools; see src/queueallocator.h.
  target_compile_definitions(bketc_options INTERFACE BKETC_PLAIN_QUEUE_ALLOCATOR)
elseif(BKETC_SANITIZE STREQUAL "thread")
  target_compile_options(bketc_options INTERFACE
                         "$<BUILD_INTERFACE:-fsanitize=thread;-fno-omit-frame-pointer;-Wno-maybe-uninitialized>")
  target_link_options(bketc_options INTERFACE $<BUILD_INTERFACE:-fsanitize=thread>)
  # ThreadSanitizer cannot see memory that TBB's pools hand out again: a queue page reused by
  # another thread looks like a race. The standard allocator goes through malloc, which it sees.
  target_compile_definitions(bketc_options INTERFACE BKETC_PLAIN_QUEUE_ALLOCATOR)
elseif(NOT BKETC_SANITIZE STREQUAL "")
  message(FATAL_ERROR "BKETC_SANITIZE must be empty, 'address' or 'thread'")
endif()

# A fuzzing build instruments every library for libFuzzer's coverage feedback, not only the
# fuzz targets' own sources (clang only; scripts/fuzz.sh sets it).
if(BKETC_FUZZ_COVERAGE)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "BKETC_FUZZ_COVERAGE needs clang")
  endif()
  target_compile_options(bketc_options INTERFACE $<BUILD_INTERFACE:-fsanitize=fuzzer-no-link>)
endif()
