# What the program itself does not need is on where the libraries for it are installed, so that the program alone builds
# without them.
find_package(GTest QUIET)
find_package(rapidcheck QUIET)
find_package(benchmark QUIET)
find_package(CLI11 QUIET)
find_package(nlohmann_json QUIET)

set(tests_possible OFF)
if(GTest_FOUND AND rapidcheck_FOUND)
  set(tests_possible ON)
endif()
set(bench_possible OFF)
if(benchmark_FOUND)
  set(bench_possible ON)
endif()
set(batch_possible OFF)
if(CLI11_FOUND AND nlohmann_json_FOUND)
  set(batch_possible ON)
endif()

option(RELIEVO_BUILD_UI "Build the window program (needs FLTK, OpenGL and GLU)" ON)
option(RELIEVO_BUILD_BATCH "Build relievo-batch (needs CLI11 and nlohmann-json)" ${batch_possible})
option(RELIEVO_BUILD_TESTS "Build the tests (needs GoogleTest and RapidCheck)" ${tests_possible})
option(RELIEVO_BUILD_BENCH "Build the benchmarks (needs Google Benchmark)" ${bench_possible})
option(RELIEVO_BUILD_FUZZ "Build the fuzzers (needs clang and its libFuzzer)" OFF)
# Off unless a preset turns it on: a package must build with compilers that warn of other things.
option(RELIEVO_WERROR "Take warnings for errors" OFF)
option(RELIEVO_UNITY_TESTS "Compile the tests of a room together" ON)
