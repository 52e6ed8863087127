# Release, Debug and Sanitize. These are seeds for the cache: a preset or a -D on the command line still decides.
# Sanitize stops at the first error either sanitizer finds, so a test cannot pass over one.
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Release, Debug or Sanitize" FORCE)
endif()

set(CMAKE_CXX_FLAGS_RELEASE "-O2 -fno-math-errno -DNDEBUG" CACHE STRING "Flags of the Release build")
set(CMAKE_CXX_FLAGS_DEBUG "-g -O0 -D_GLIBCXX_ASSERTIONS" CACHE STRING "Flags of the Debug build")
set(CMAKE_CXX_FLAGS_SANITIZE
  "-g1 -O1 -D_GLIBCXX_ASSERTIONS -fno-omit-frame-pointer -fsanitize=address,undefined -fno-sanitize-recover=all"
  CACHE STRING "Flags of the Sanitize build")
