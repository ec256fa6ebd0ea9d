# bketc_add_test(NAME [OWN_MAIN] SOURCES src... LIBS lib...)
# One test program per area; every test runs in a process of its own because the engine and the
# host keep process-wide singletons. OWN_MAIN: the sources bring their own main (to read
# arguments of their own), so GoogleTest's is not linked.
# TBB keeps each concurrent queue's page list in its own memory pools, which LeakSanitizer does
# not scan; queues still alive at exit would look leaked without this suppression.
set(BKETC_TEST_ENVIRONMENT "")
if(BKETC_SANITIZE STREQUAL "address")
  set(BKETC_TEST_ENVIRONMENT
      "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/sanitizers/lsan.supp:print_suppressions=0")
endif()

function(bketc_add_test name)
  cmake_parse_arguments(ARG "OWN_MAIN" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  set(main GTest::gtest_main)
  if(ARG_OWN_MAIN)
    set(main GTest::gtest)
  endif()
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gmock ${main} bketc::options)
  target_compile_definitions(${name} PRIVATE BKETC_RESOURCE_DIR="${BKETC_RESOURCE_DIR}"
                             BKETC_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
                       PROPERTIES TIMEOUT 120 ENVIRONMENT "${BKETC_TEST_ENVIRONMENT}")
endfunction()

# bketc_add_scenario(NAME SCRIPT file.lua [ARGS ...])
# A Lua scenario run by the blockara program; it fails when the script raises an error.
function(bketc_add_scenario name)
  cmake_parse_arguments(ARG "" "SCRIPT" "ARGS" ${ARGN})
  add_test(NAME scenario.${name}
           COMMAND blockara --root ${BKETC_RESOURCE_DIR} ${ARG_SCRIPT} ${ARG_ARGS}
           WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
  set_tests_properties(scenario.${name} PROPERTIES TIMEOUT 120
                       ENVIRONMENT "${BKETC_TEST_ENVIRONMENT}")
endfunction()
