# cmake --install: the programs, what a desktop needs to know about them, their man pages and the samples.
include(GNUInstallDirs)

set(packaging "${PROJECT_SOURCE_DIR}/packaging")

# install_compressed(<file> <directory> <name>): Debian wants man pages and change logs compressed, without a time in
# them, so that a build gives the same package again.
find_program(RELIEVO_GZIP gzip REQUIRED)
mark_as_advanced(RELIEVO_GZIP)
function(install_compressed file directory name)
  set(compressed "${PROJECT_BINARY_DIR}/packaging/${name}.gz")
  add_custom_command(OUTPUT "${compressed}"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${PROJECT_BINARY_DIR}/packaging"
    COMMAND sh -c "\"$1\" -9nc \"$2\" > \"$3\"" sh "${RELIEVO_GZIP}" "${file}" "${compressed}"
    DEPENDS "${file}" VERBATIM)
  set_property(GLOBAL APPEND PROPERTY relievo_compressed "${compressed}")
  install(FILES "${compressed}" DESTINATION "${directory}")
endfunction()

# A desktop must not offer what this build does not read.
file(READ "${packaging}/relievo.desktop" desktop_entry)
if(NOT RELIEVO_HEIF)
  string(REPLACE "image/heic;image/heif;image/avif;" "" desktop_entry "${desktop_entry}")
endif()
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/packaging/relievo.desktop" CONTENT "${desktop_entry}" @ONLY)

if(TARGET relievo)
  install(TARGETS relievo)
  install(FILES "${PROJECT_BINARY_DIR}/packaging/relievo.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
  install(FILES "${packaging}/io.github.relievo.relievo.metainfo.xml"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
  install(FILES "${packaging}/relievo.svg"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
  install_compressed("${packaging}/relievo.1" "${CMAKE_INSTALL_MANDIR}/man1" relievo.1)
endif()
if(TARGET relievo-batch)
  install(TARGETS relievo-batch)
  install_compressed("${packaging}/relievo-batch.1" "${CMAKE_INSTALL_MANDIR}/man1" relievo-batch.1)
endif()
if(TARGET relievo-picture)
  install(TARGETS relievo-picture)
  install(FILES "${packaging}/relievo.thumbnailer" DESTINATION "${CMAKE_INSTALL_DATADIR}/thumbnailers")
  install_compressed("${packaging}/relievo-picture.1" "${CMAKE_INSTALL_MANDIR}/man1" relievo-picture.1)
endif()

install(FILES "${packaging}/relievo-mime.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/mime/packages" RENAME relievo.xml)
install(FILES "${packaging}/copyright" README.md DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install_compressed("${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${CMAKE_INSTALL_DOCDIR}" changelog)
install(DIRECTORY docs DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY samples/ DESTINATION "${CMAKE_INSTALL_DATADIR}/relievo/samples")

get_property(compressed GLOBAL PROPERTY relievo_compressed)
add_custom_target(relievo_documents ALL DEPENDS ${compressed})
