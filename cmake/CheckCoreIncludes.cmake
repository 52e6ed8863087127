# cmake -DCOMPILE_COMMANDS=<compile_commands.json> -DSOURCE_ROOT=<src> [-DNINJA=<ninja>] -P CheckCoreIncludes.cmake
#
# Proves that the libraries below the windows know no toolkit. None of the headers that a source of theirs reaches may belong
# to FLTK, OpenGL or X; relievo_drawing, which is OpenGL, may not reach FLTK. Every project header reached that way must also
# compile on its own.
#
# What the build has shown already is not done again. Ninja knows which headers the compiler read for an object; where it
# does not, the source is preprocessed with the very command that compiles it. And a header that is the first thing in a source
# that has been compiled has been compiled on its own.
cmake_minimum_required(VERSION 3.25)

set(libraries core formats editing drawing)
set(core_may_not_reach "/(FL|GL|GLES[0-9]*|EGL|KHR|X11)/")
set(formats_may_not_reach "${core_may_not_reach}")
set(editing_may_not_reach "${core_may_not_reach}")
set(drawing_may_not_reach "/FL/")

function(run_compiler out_variable what)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY "${directory}"
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    message(SEND_ERROR "${what}:\n${errors}")
  endif()
  set(${out_variable} "${output}" PARENT_SCOPE)
endfunction()

# What the compiler read for the source when it made the object; empty if the object is missing or older.
function(headers_in_build source object out_variable)
  set(${out_variable} "" PARENT_SCOPE)
  if(NOT NINJA)
    return()
  endif()
  execute_process(COMMAND "${NINJA}" -t deps "${object}" WORKING_DIRECTORY "${directory}"
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_QUIET)
  if(NOT result EQUAL 0 OR NOT output MATCHES "\\(VALID\\)\n")
    return()
  endif()
  string(REGEX MATCHALL "\n +[^\n]+" files "${output}")
  list(TRANSFORM files STRIP)
  set(absolute_files "")
  foreach(file IN LISTS files)
    # A compiler cache may have made the names relative.
    cmake_path(ABSOLUTE_PATH file BASE_DIRECTORY "${directory}" NORMALIZE)
    if("${file}" IS_NEWER_THAN "${directory}/${object}")
      return()
    endif()
    list(APPEND absolute_files "${file}")
  endforeach()
  list(REMOVE_ITEM absolute_files "${source}")
  set(${out_variable} "${absolute_files}" PARENT_SCOPE)
endfunction()

function(headers_preprocessed source command out_variable)
  run_compiler(rule "${source} does not preprocess" ${command} -M "${source}")
  string(REGEX REPLACE "^[^:]*:" "" rule "${rule}")
  string(REPLACE "\\\n" " " rule "${rule}")
  separate_arguments(files UNIX_COMMAND "${rule}")
  list(REMOVE_ITEM files "${source}")
  set(${out_variable} "${files}" PARENT_SCOPE)
endfunction()

# The project header that stands before all else that the preprocessor sees of a source, or nothing.
function(first_header source out_variable)
  set(header "")
  file(STRINGS "${source}" first REGEX "^ *#" LIMIT_COUNT 1)
  if(first MATCHES "^#include \"(.*)\"$")
    set(header "${SOURCE_ROOT}/${CMAKE_MATCH_1}")
  endif()
  set(${out_variable} "${header}" PARENT_SCOPE)
endfunction()

# The compile command of a source without its "-o <object> -c <source>", and the object.
function(compiler_with_flags command out_variable object_variable)
  separate_arguments(words UNIX_COMMAND "${command}")
  list(FIND words "-o" position)
  math(EXPR after "${position} + 1")
  list(GET words ${after} object)
  list(SUBLIST words 0 ${position} words)
  set(${out_variable} "${words}" PARENT_SCOPE)
  set(${object_variable} "${object}" PARENT_SCOPE)
endfunction()

file(READ "${COMPILE_COMMANDS}" database)
string(JSON count LENGTH "${database}")
math(EXPR last "${count} - 1")
set(project_headers "")
set(compiled_headers "")
set(checked 0)
set(met "")

foreach(i RANGE ${last})
  string(JSON command GET "${database}" ${i} command)
  if(NOT command MATCHES "/relievo_([a-z]+)\\.dir/" OR NOT CMAKE_MATCH_1 IN_LIST libraries)
    continue()
  endif()
  set(library "${CMAKE_MATCH_1}")
  list(APPEND met "${library}")
  string(JSON source GET "${database}" ${i} file)
  string(JSON directory GET "${database}" ${i} directory)
  compiler_with_flags("${command}" compiler object)
  headers_in_build("${source}" "${object}" headers)
  if(headers)
    first_header("${source}" own_header)
    list(APPEND compiled_headers ${own_header})
  else()
    headers_preprocessed("${source}" "${compiler}" headers)
  endif()
  foreach(header IN LISTS headers)
    if(header MATCHES "${${library}_may_not_reach}")
      message(SEND_ERROR "${source} reaches ${header}")
    endif()
    string(FIND "${header}" "${SOURCE_ROOT}/" at)
    if(at EQUAL 0)
      list(APPEND project_headers "${header}")
    endif()
  endforeach()
  math(EXPR checked "${checked} + 1")
endforeach()

foreach(library IN ITEMS core formats editing)
  if(NOT library IN_LIST met)
    message(FATAL_ERROR "${COMPILE_COMMANDS} names no source of relievo_${library}")
  endif()
endforeach()

# Included from an empty file, because "#pragma once" in the file being compiled is a warning of its own.
list(REMOVE_DUPLICATES project_headers)
list(LENGTH project_headers header_count)
list(REMOVE_ITEM project_headers ${compiled_headers} "")
foreach(header IN LISTS project_headers)
  run_compiler(ignored "${header} does not compile on its own"
    ${compiler} -fsyntax-only -include "${header}" -x c++ /dev/null)
endforeach()

list(LENGTH project_headers compiled_here)
message(STATUS "${checked} sources and ${header_count} headers below the windows name no toolkit; ${compiled_here} of these compiled here")
