# mingw_import_library(NAME DLL dll EXPORTS lines...)
#
# Makes the import library target NAME for MinGW from the lines of a .def file. A name is followed
# by ":" and the bytes of its arguments, which decorate it on 32-bit Windows.
function(mingw_import_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "DLL" "EXPORTS")
  set(machine i386:x86-64)
  set(decoration "")
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(machine i386)
    set(decoration "@\\1")
  endif()
  list(TRANSFORM arg_EXPORTS REPLACE ":([0-9]+)" "${decoration}")
  list(JOIN arg_EXPORTS "\n" exports)
  set(definition ${CMAKE_CURRENT_BINARY_DIR}/${name}.def)
  file(CONFIGURE OUTPUT ${definition} CONTENT "LIBRARY ${arg_DLL}\nEXPORTS\n${exports}\n")

  set(library ${CMAKE_CURRENT_BINARY_DIR}/lib${name}.a)
  add_custom_command(OUTPUT ${library}
    COMMAND ${CMAKE_DLLTOOL} -m ${machine} --kill-at -d ${definition} -l ${library}
    DEPENDS ${definition} VERBATIM)
  add_custom_target(${name}_file DEPENDS ${library})
  add_library(${name} INTERFACE)
  add_dependencies(${name} ${name}_file)
  target_link_libraries(${name} INTERFACE ${library})
endfunction()
