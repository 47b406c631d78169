# clang-cl 19 in Visual C++'s mode on Linux, for checking sources only: no library to link with.
# Visual C++'s own headers are replaced by those of libc++ and Wine, and a few lines of stand-ins
# (tools/msvc-headers) for what neither has. Used by tools/check-msvc.sh, with CHECK_TARGET set.
set(CMAKE_SYSTEM_NAME Windows)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CHECK_TARGET)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_C_COMPILER clang-cl-19)
set(CMAKE_CXX_COMPILER clang-cl-19)
set(CMAKE_C_COMPILER_TARGET ${CHECK_TARGET})
set(CMAKE_CXX_COMPILER_TARGET ${CHECK_TARGET})
set(CMAKE_LINKER lld-link-19)
set(CMAKE_AR llvm-lib-19)
set(CMAKE_MT llvm-mt-19)
set(CMAKE_RC_COMPILER llvm-rc-19)

set(llvm /usr/lib/llvm-19)
set(wine /usr/include/wine/wine)
get_filename_component(stand_ins ${CMAKE_CURRENT_LIST_DIR}/../../tools/msvc-headers ABSOLUTE)
# The order matters: each of them includes the next one of the same name.
# -Wconversion: Visual C++ warns of narrowing at /W4, clang-cl does not.
set(flags "/clang:-nobuiltininc -D_UCRT -DWINE_UNICODE_NATIVE -fmsc-version=1940 -Wconversion")
foreach(folder ${llvm}/include/c++/v1 ${stand_ins} ${llvm}/lib/clang/19/include ${wine}/msvcrt ${wine}/windows)
  string(APPEND flags " \"-imsvc${folder}\"")
endforeach()
set(CMAKE_CXX_FLAGS_INIT "${flags}")
set(CMAKE_C_FLAGS_INIT "/clang:-nobuiltininc \"-imsvc${stand_ins}\" \"-imsvc${wine}/msvcrt\"")

# Packages of this machine are for programs of this machine.
set(CMAKE_FIND_ROOT_PATH ${llvm}/no-such-folder)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
