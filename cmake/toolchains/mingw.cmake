# MinGW-w64 as a cross compiler, GCC. MINGW_ARCH: x86_64 (default) or i686.
set(CMAKE_SYSTEM_NAME Windows)
if(NOT MINGW_ARCH)
  set(MINGW_ARCH x86_64)
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MINGW_ARCH)
set(CMAKE_SYSTEM_PROCESSOR ${MINGW_ARCH})
set(triplet ${MINGW_ARCH}-w64-mingw32)

# The posix thread model: GoogleTest needs std::mutex.
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)
set(CMAKE_DLLTOOL ${triplet}-dlltool)

set(CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
