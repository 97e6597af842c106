enable_language(RC)

# add_windows_resources(PROGRAM MANIFEST DESCRIPTION): icon, version and manifest. An object library of their
# own, since the resource compiler does not understand what the program's sources are compiled with.
function(add_windows_resources program manifest description)
  configure_file(${CMAKE_SOURCE_DIR}/resources/windows/program.rc.in ${CMAKE_BINARY_DIR}/resources/${program}.rc @ONLY)
  add_library(${program}_resources OBJECT ${CMAKE_BINARY_DIR}/resources/${program}.rc)
  set_property(SOURCE ${CMAKE_BINARY_DIR}/resources/${program}.rc PROPERTY OBJECT_DEPENDS
               "${CMAKE_SOURCE_DIR}/resources/windows/${manifest}.manifest;${CMAKE_SOURCE_DIR}/resources/windows/qv5123.ico")
  target_sources(${program} PRIVATE $<TARGET_OBJECTS:${program}_resources>)
endfunction()

add_windows_resources(qv5123ctl console "QV5123 command line")
add_windows_resources(qv5123sim console "Simulated QV512x camera chip")
if(TARGET QV5123)
  add_windows_resources(QV5123 window "${PROJECT_DESCRIPTION}")
endif()
