# The libraries that read and write other people's files, as the target relievo_codecs. The configuration files of some ask
# for tools that come in other packages, so that headers and libraries are looked for by name.
add_library(relievo_codecs INTERFACE)

# add_codec(<name> <header> <package> <library>...): one of them; without it the program is not built.
function(add_codec name header package)
  find_path(${name}_HEADERS ${header} PATH_SUFFIXES exempi-2.0)
  mark_as_advanced(${name}_HEADERS)
  if(NOT ${name}_HEADERS)
    message(FATAL_ERROR "${header} was not found. relievo needs it: install ${package}, or its like.")
  endif()
  target_include_directories(relievo_codecs SYSTEM INTERFACE "${${name}_HEADERS}")
  foreach(library IN LISTS ARGN)
    find_library(${name}_${library}_LIBRARY ${library})
    mark_as_advanced(${name}_${library}_LIBRARY)
    if(NOT ${name}_${library}_LIBRARY)
      message(FATAL_ERROR "The library ${library} was not found. relievo needs it: install ${package}, or its like.")
    endif()
    target_link_libraries(relievo_codecs INTERFACE "${${name}_${library}_LIBRARY}")
  endforeach()
endfunction()

add_codec(JPEG jpeglib.h libjpeg62-turbo-dev jpeg)
add_codec(PNG png.h libpng-dev png)
add_codec(TIFF tiffio.h libtiff-dev tiff)
add_codec(WEBP webp/demux.h libwebp-dev webp webpdemux webpmux)
add_codec(LCMS lcms2.h liblcms2-dev lcms2)
add_codec(ZIP zip.h libzip-dev zip)
add_codec(EXEMPI exempi/xmp.h libexempi-dev exempi)

# HEIC and AVIF are read where their library is installed (Options.cmake).
if(RELIEVO_HEIF)
  add_codec(HEIF libheif/heif.h libheif-dev heif)
endif()
