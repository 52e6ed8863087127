# The page that a model is written into (RELIEVO_PAGE), put together of its parts and of three.js: the source ${page_source}.
set(page_parts "${PROJECT_SOURCE_DIR}/src/exports/page")
set(page_source "${PROJECT_BINARY_DIR}/generated/Page.cpp")

if(NOT THREE_SCRIPTS)
  message(FATAL_ERROR "three.js was not found. Web pages need it: install libjs-three, or switch RELIEVO_PAGE off.")
endif()

# read_part(<variable> <file>): the text of one of them. CMake runs again when it changes.
function(read_part variable part)
  set_property(DIRECTORY "${PROJECT_SOURCE_DIR}" APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${part}")
  file(READ "${part}" text)
  # Where a script ends is for the page to say.
  if(text MATCHES "</[sS][cC][rR][iI][pP][tT]|<!--|\\)relievo\"" AND NOT part MATCHES "page\\.html$")
    message(FATAL_ERROR "${part} cannot be a script in a page.")
  endif()
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

read_part(THREE "${THREE_SCRIPTS}/three.min.js")
read_part(LOADER "${THREE_SCRIPTS}/examples/js/loaders/GLTFLoader.js")
read_part(CONTROLS "${THREE_SCRIPTS}/examples/js/controls/OrbitControls.js")
read_part(LICENCE "${page_parts}/three-licence.txt")
read_part(STYLE "${page_parts}/style.css")
read_part(VIEWER "${page_parts}/viewer.js")
read_part(page "${page_parts}/page.html")
string(CONFIGURE "${page}" page @ONLY)
configure_file("${page_parts}/Page.cpp.in" "${page_source}" @ONLY)
