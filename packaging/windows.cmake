install(FILES ${QV5123_SAMPLES} DESTINATION .)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/resources/help DESTINATION .)
install(FILES ${CMAKE_SOURCE_DIR}/README.md DESTINATION .)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs DESTINATION . FILES_MATCHING PATTERN *.md PATTERN *.png PATTERN *.html)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/licences.txt DESTINATION licences)

# The full texts of what is linked in, as Debian has them.
foreach(package libqt6core6 mingw-w64-x86-64-dev gcc-mingw-w64-x86-64-posix)
  install(FILES /usr/share/doc/${package}/copyright RENAME ${package}.txt DESTINATION licences)
endforeach()
foreach(text GPL-3 LGPL-3)
  install(FILES /usr/share/common-licenses/${text} RENAME ${text}.txt DESTINATION licences)
endforeach()
