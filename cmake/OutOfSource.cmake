# A build tree inside the sources would mix its files with theirs.
file(REAL_PATH "${CMAKE_SOURCE_DIR}" source_tree)
file(REAL_PATH "${CMAKE_BINARY_DIR}" build_tree)
if(build_tree STREQUAL source_tree)
  message(FATAL_ERROR
    "relievo is not built among its sources. Remove CMakeCache.txt and CMakeFiles, which this attempt has left here, and "
    "build in a directory of its own: cmake --preset release, or cmake -B build/release")
endif()
