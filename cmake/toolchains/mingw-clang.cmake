# Clang as the compiler, with the headers and libraries of MinGW-w64 and its GCC.
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)

set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER_TARGET ${triplet})
set(CMAKE_C_COMPILER_TARGET ${triplet})

# Clang does not find a GCC whose thread model is part of its folder's name.
execute_process(COMMAND ${triplet}-g++-posix -print-libgcc-file-name
  OUTPUT_VARIABLE libgcc OUTPUT_STRIP_TRAILING_WHITESPACE)
get_filename_component(gcc_folder ${libgcc} DIRECTORY)
set(headers ${gcc_folder}/include/c++)
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES
  ${headers} ${headers}/${triplet} ${headers}/backward)
# As GCC's library has its thread-local variables.
set(CMAKE_CXX_FLAGS_INIT -femulated-tls)
set(linker_flags "-fuse-ld=lld -pthread -L${gcc_folder}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT ${linker_flags})
# Without optimisation, each use of an inline function of GCC's <typeinfo> leaves a definition, beside
# the library's ordinary one: GNU's linker takes that for one and the same, LLVM's for two.
set(CMAKE_EXE_LINKER_FLAGS_INIT "${linker_flags} -Wl,--allow-multiple-definition")
