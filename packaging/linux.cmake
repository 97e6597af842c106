set(linux ${CMAKE_SOURCE_DIR}/resources/linux)

# The command line describes itself.
add_custom_command(
  OUTPUT qv5123ctl.1 qv5123ctl.bash
  COMMAND qv5123ctl man > qv5123ctl.1
  COMMAND qv5123ctl bash-completion > qv5123ctl.bash
  VERBATIM)
add_custom_target(self_descriptions ALL DEPENDS qv5123ctl.1 qv5123ctl.bash)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qv5123ctl.1 ${linux}/qv5123sim.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qv5123ctl.bash RENAME qv5123ctl
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

install(FILES ${CMAKE_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/qv5123)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/qv5123 FILES_MATCHING
        PATTERN *.md PATTERN *.png PATTERN *.html)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/licences.txt RENAME copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/qv5123)

if(TARGET QV5123)
  install(PROGRAMS ${linux}/qv5123-workspace TYPE BIN)
  install(FILES ${linux}/QV5123.1 ${linux}/qv5123-workspace.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${QV5123_SAMPLES} DESTINATION ${CMAKE_INSTALL_DATADIR}/qv5123)
  install(FILES ${linux}/qv5123.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  string(TIMESTAMP QV5123_RELEASE_DATE "%Y-%m-%d" UTC)
  configure_file(${linux}/qv5123.metainfo.xml.in qv5123.metainfo.xml @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qv5123.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  foreach(size 48 256)
    set(picture ${linux}/qv5123-${size}.png)
    if(size EQUAL 256)
      set(picture ${CMAKE_SOURCE_DIR}/resources/icons/qv5123.png)
    endif()
    install(FILES ${picture} RENAME qv5123.png
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
  endforeach()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qv5123)
set(CPACK_PACKAGE_CONTACT "QV5123 maintainers")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Text in the window needs a font; a minimal system has none.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-dejavu-core | fonts-liberation | fonts-noto-core")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Talks to a camera board over a serial port: registers, exposure, white balance,
gamma, colour matrix, lens shading, on-screen display font, flash images.
A simulated chip with a simulated camera stands in for a board.

Users of real serial ports must be in the group dialout.")
include(CPack)
