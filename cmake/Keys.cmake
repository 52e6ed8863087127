# The list of keys that the program shows, made of docs/keys.md: the source ${keys_source}. CMake runs again when it changes.
set(keys_source "${PROJECT_BINARY_DIR}/generated/KeysText.cpp")
set(keys_file "${PROJECT_SOURCE_DIR}/docs/keys.md")
set_property(DIRECTORY "${PROJECT_SOURCE_DIR}" APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${keys_file}")
file(READ "${keys_file}" keys)
configure_file("${PROJECT_SOURCE_DIR}/src/ui/help/KeysText.cpp.in" "${keys_source}" @ONLY)
