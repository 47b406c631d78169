# What the launcher's resource script reads beside itself: the icon, and two files that get the
# project's version here, its only place being the root's project() command.

if(NOT PROJECT_VERSION MATCHES "^[0-9]+\\.[0-9]+\\.[0-9]+$")
  message(FATAL_ERROR "project() must state a version of three numbers, not \"${PROJECT_VERSION}\".")
endif()

set(resources ${PROJECT_SOURCE_DIR}/launcher/resources)
set(made_resources ${PROJECT_BINARY_DIR}/launcher/resources)
foreach(file setup.manifest setup_version.h)
  configure_file(${resources}/${file}.in ${made_resources}/${file} @ONLY NEWLINE_STYLE UNIX)
endforeach()

# A property of the source file, so that no C++ source can include these. Resource compilers write
# no list of what they have read.
set_property(SOURCE ${resources}/setup.rc PROPERTY INCLUDE_DIRECTORIES
  ${made_resources} ${resources})
set_property(SOURCE ${resources}/setup.rc PROPERTY OBJECT_DEPENDS
  ${made_resources}/setup.manifest ${made_resources}/setup_version.h ${resources}/setup.ico)
