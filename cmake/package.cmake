# The files installed beside the program, for the desktop's menu and software
# centre, man and bash, and the Debian package made of them all (cpack).

install(FILES data/io.github.tavrelune.Tavrelune.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES data/io.github.tavrelune.Tavrelune.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES src/ui/icons/tavrelune.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES data/tavrelune.bash-completion DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME tavrelune)

# Debian wants manual pages and changelogs compressed, without a time stamp.
set(TAVRELUNE_GZIPPED)
foreach(file tavrelune.1 changelog)
  set(gzipped ${CMAKE_CURRENT_BINARY_DIR}/data/${file}.gz)
  add_custom_command(OUTPUT ${gzipped}
    COMMAND sh -c "gzip -9n < '${CMAKE_CURRENT_SOURCE_DIR}/data/${file}' > '${gzipped}'"
    DEPENDS data/${file} VERBATIM)
  list(APPEND TAVRELUNE_GZIPPED ${gzipped})
endforeach()
add_custom_target(tavrelune_gzipped_docs ALL DEPENDS ${TAVRELUNE_GZIPPED})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/data/tavrelune.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/data/changelog.gz data/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tavrelune)

set(TAVRELUNE_PACKAGE_MAINTAINER "Tavrelune developers <tavrelune@users.noreply.github.com>"
    CACHE STRING "The Debian package's Maintainer field")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tavrelune)
set(CPACK_PACKAGE_VENDOR "The Tavrelune developers")
set(CPACK_PACKAGE_CONTACT "${TAVRELUNE_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "grade, trim, watermark and convert batches of video clips")
# Lines of the extended description, each under 80 characters.
set(CPACK_PACKAGE_DESCRIPTION [=[Tavrelune prepares a batch of video clips for delivery. Add clips, pick
one .cube look-up table for the batch, grade each clip (exposure,
contrast, saturation, white balance), trim it, place a PNG or SVG
watermark, choose codec, quality, audio and output folder, and convert
every clip to its own MP4 or join them into one.

The selected clip plays graded, with sound, through libmpv. The exports
are made by ffmpeg, in H.264 or HEVC, with a hardware encoder when one
works. The same batch runs without a window (tavrelune convert).]=])
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://github.com/tavrelune/tavrelune)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${TAVRELUNE_PACKAGE_MAINTAINER}")
# The libraries come from dpkg-shlibdeps; ffmpeg is run, not linked.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS ffmpeg)
# VA-API drivers let ffmpeg and mpv decode and encode on the GPU.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS va-driver-all)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
