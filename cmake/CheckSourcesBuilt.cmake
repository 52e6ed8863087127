# cmake -DCOMPILE_COMMANDS=<compile_commands.json> -DROOT=<repository> -P CheckSourcesBuilt.cmake
#
# The lists of sources are kept by hand. This fails for a source that stands in none of them: a test that is never
# built would otherwise look like one that passes.
cmake_minimum_required(VERSION 3.25)

file(READ "${COMPILE_COMMANDS}" database)
# The sources of a test that are compiled together are named in a file of their own.
string(REGEX MATCHALL "\"file\": \"[^\"]*/unity_[0-9]+_cxx\\.cxx\"" together "${database}")
foreach(file IN LISTS together)
  string(REGEX REPLACE "^\"file\": \"(.*)\"$" "\\1" file "${file}")
  file(READ "${file}" includes)
  string(APPEND database "${includes}")
endforeach()
file(GLOB_RECURSE sources "${ROOT}/src/*.cpp" "${ROOT}/tests/*.cpp" "${ROOT}/bench/*.cpp")
foreach(source IN LISTS sources)
  string(FIND "${database}" "\"${source}\"" at)
  if(at EQUAL -1)
    message(SEND_ERROR "${source} stands in no CMakeLists.txt")
  endif()
endforeach()
