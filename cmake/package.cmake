# The files installed beside the program, for the desktop's menu and software
# centre, man and bash.

install(FILES data/io.github.tavrelune.Tavrelune.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES data/io.github.tavrelune.Tavrelune.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES src/ui/icons/tavrelune.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES data/tavrelune.bash-completion DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME tavrelune)

# Debian wants manual pages compressed, without a time stamp.
set(TAVRELUNE_GZIPPED)
foreach(file tavrelune.1)
  set(gzipped ${CMAKE_CURRENT_BINARY_DIR}/data/${file}.gz)
  add_custom_command(OUTPUT ${gzipped}
    COMMAND sh -c "gzip -9n < '${CMAKE_CURRENT_SOURCE_DIR}/data/${file}' > '${gzipped}'"
    DEPENDS data/${file} VERBATIM)
  list(APPEND TAVRELUNE_GZIPPED ${gzipped})
endforeach()
add_custom_target(tavrelune_gzipped_docs ALL DEPENDS ${TAVRELUNE_GZIPPED})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/data/tavrelune.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
