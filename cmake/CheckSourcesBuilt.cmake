# cmake -DCOMPILE_COMMANDS=<compile_commands.json> -DROOT=<repository> -P CheckSourcesBuilt.cmake
#
# The lists of sources are kept by hand. This fails for a source that stands in none of them: a test that is never
# built would otherwise look like one that passes.
cmake_minimum_required(VERSION 3.25)

file(READ "${COMPILE_COMMANDS}" database)
file(GLOB_RECURSE sources "${ROOT}/src/*.cpp" "${ROOT}/tests/*.cpp" "${ROOT}/bench/*.cpp")
foreach(source IN LISTS sources)
  string(FIND "${database}" "\"${source}\"" at)
  if(at EQUAL -1)
    message(SEND_ERROR "${source} stands in no CMakeLists.txt")
  endif()
endforeach()
