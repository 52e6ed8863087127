# cpack: a Debian package. What it depends on is read off the programs (dpkg-shlibdeps).
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME relievo)
set(CPACK_PACKAGE_VENDOR "relievo")
set(CPACK_PACKAGE_CONTACT "relievo developers <relievo@users.noreply.github.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "make a textured 3D surface out of one photograph")
# CPack puts the summary before it, indents its lines and marks the empty one.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"relievo turns one photograph into a surface in three dimensions that is
shaped by hand: heights and orientations at points, curves that smooth,
crease or tear. The smoothest surface that obeys them converges beside the
photograph while it is edited. It can be relit, filmed and exported.

relievo-batch does the same without a display, and relievo-picture draws a
model without one.")
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
# The window needs a font and software rendering where there is no other.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core, libgl1-mesa-dri")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "ffmpeg")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
