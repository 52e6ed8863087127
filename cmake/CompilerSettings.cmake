# What every target of the project is compiled with.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(RELIEVO_CCACHE ccache)
mark_as_advanced(RELIEVO_CCACHE)
if(RELIEVO_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${RELIEVO_CCACHE}")
endif()

# The compiler walks through all of its memory whenever that has grown by some part, which takes it up to a sixth of the time
# where there are many templates. Below half a gigabyte it need not. What it makes is the same, but a cache takes the option
# for another one, and leaves little to compile.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  add_compile_options($<$<CONFIG:Release,Sanitize>:--param=ggc-min-heapsize=524288>)
endif()

# What is handed out guards its stack and its buffers and fixes its tables before it begins. The macro is undefined first
# because some distributions define it themselves. In its own options, so that a build tree's old flags do not hide them.
set(relievo_release "$<CONFIG:Release>")
add_compile_options(
  "$<${relievo_release}:-fstack-protector-strong;-fPIE;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
add_link_options("$<${relievo_release}:-pie;LINKER:-z,relro,-z,now>")

add_library(relievo_warnings INTERFACE)
target_compile_options(relievo_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${RELIEVO_WERROR}>:-Werror>)
