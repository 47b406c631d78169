# The two libraries of headers that mediatool uses, from the system's own packages. Only their two
# folders are on the include path: the rest of the system's headers must not meet a cross compiler.
function(system_header_library target folder)
  if(TARGET ${target})
    return()
  endif()
  find_path(${folder}_HEADERS ${folder} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/headers/${folder})
  file(CREATE_LINK ${${folder}_HEADERS}/${folder} ${CMAKE_BINARY_DIR}/headers/${folder}/${folder}
    SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/headers/${folder})
endfunction()

system_header_library(CLI11::CLI11 CLI)
system_header_library(nlohmann_json::nlohmann_json nlohmann)
