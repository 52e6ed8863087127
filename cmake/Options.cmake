# Tests and benchmarks are on where their libraries are installed, so that the program alone builds without them.
find_package(GTest QUIET)
find_package(rapidcheck QUIET)
find_package(benchmark QUIET)

set(tests_possible OFF)
if(GTest_FOUND AND rapidcheck_FOUND)
  set(tests_possible ON)
endif()
set(bench_possible OFF)
if(benchmark_FOUND)
  set(bench_possible ON)
endif()

option(RELIEVO_BUILD_UI "Build the window program (needs FLTK, OpenGL and GLU)" ON)
option(RELIEVO_BUILD_TESTS "Build the tests (needs GoogleTest and RapidCheck)" ${tests_possible})
option(RELIEVO_BUILD_BENCH "Build the benchmarks (needs Google Benchmark)" ${bench_possible})
