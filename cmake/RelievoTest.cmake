# relievo_add_test(<name> <source>...)      tests of the model, label "core": all of them together take a moment
# relievo_add_slow_test(<name> <source>...) the same for tests that solve, search or start programs, label "slow"
# relievo_add_gui_test(<name> <source>...)  tests of windows in their own process, label "gui", each on a display of its own
# relievo_add_run_test(<name> <source>...)  the same for tests that start the built program and watch it
#
# One executable per room. A test finds the builders of tests/support/ as "support/...". Under ctest the properties
# are always tried with the same random cases; the executable started by hand takes new ones.
include(GoogleTest)

# Under the sanitizers properties take most of the time of the slow tests. There each is tried with fewer cases, of the same
# sizes; the other builds try all of them.
set(relievo_properties RC_PARAMS=seed=1)
if(CMAKE_BUILD_TYPE STREQUAL Sanitize)
  string(APPEND relievo_properties " max_success=25")
endif()

# One executable per room means one compilation per room, too: its tests are compiled several at a time, so that the headers
# of the test library are read once for all of them. The files of tests/support/ stay apart: some of them know X11, whose
# macros must not reach a test.
function(add_test_executable name)
  add_executable(${name} ${ARGN})
  set_target_properties(${name} PROPERTIES UNITY_BUILD ${RELIEVO_UNITY_TESTS})
  # Where files are compiled together the compiler takes the name of a fixture for one that two could share. Elsewhere the
  # option would only be one that clang-tidy does not know.
  target_compile_options(${name} PRIVATE
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<BOOL:${RELIEVO_UNITY_TESTS}>>:-Wno-subobject-linkage>)
  list(FILTER ARGN INCLUDE REGEX "^support/")
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

function(add_model_executable name)
  add_test_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(${name} PRIVATE
    relievo_core relievo_warnings rapidcheck_gtest GTest::gtest_main)
endfunction()

# One test of ctest for the whole executable: starting a process for each of its tests would take longer than they do.
function(relievo_add_test name)
  add_model_executable(${name} ${ARGN})
  add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
  set_tests_properties(${name} PROPERTIES LABELS core TIMEOUT 300 ENVIRONMENT "${relievo_properties}")
endfunction()

function(relievo_add_slow_test name)
  add_model_executable(${name} ${ARGN})
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    PROPERTIES LABELS slow TIMEOUT 300 ENVIRONMENT "${relievo_properties}")
endfunction()

function(add_windowed_executable name)
  add_test_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(${name} PRIVATE
    relievo_app relievo_gui_main relievo_gui_support relievo_warnings)
endfunction()

function(relievo_add_run_test name)
  if(NOT RELIEVO_BUILD_UI)
    return()
  endif()
  add_windowed_executable(${name} ${ARGN})
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    PROPERTIES LABELS gui TIMEOUT 120)
endfunction()

# Under the sanitizers a process with toolkit and OpenGL takes several times as long to start, and to be searched for leaks
# at its end, as its test takes. There each executable is one test, whose output names the case that it hangs or ends in. That
# every case also passes by itself is for the other builds to show.
function(relievo_add_gui_test name)
  if(NOT CMAKE_BUILD_TYPE STREQUAL Sanitize)
    relievo_add_run_test(${name} ${ARGN})
  elseif(RELIEVO_BUILD_UI)
    add_windowed_executable(${name} ${ARGN})
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES LABELS gui TIMEOUT 600)
  endif()
endfunction()
