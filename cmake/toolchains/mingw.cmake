# MinGW-w64 as a cross compiler, GCC. MINGW_ARCH: x86_64 (default) or i686. MINGW_THREADS: posix
# (default), or win32, whose library has no std::mutex, which GoogleTest needs, and makes a program
# of one thread smaller by 25 KB.
set(CMAKE_SYSTEM_NAME Windows)
if(NOT MINGW_ARCH)
  set(MINGW_ARCH x86_64)
endif()
if(NOT MINGW_THREADS)
  set(MINGW_THREADS posix)
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MINGW_ARCH MINGW_THREADS)
set(CMAKE_SYSTEM_PROCESSOR ${MINGW_ARCH})
set(triplet ${MINGW_ARCH}-w64-mingw32)

set(CMAKE_CXX_COMPILER ${triplet}-g++-${MINGW_THREADS})
set(CMAKE_C_COMPILER ${triplet}-gcc-${MINGW_THREADS})
set(CMAKE_RC_COMPILER ${triplet}-windres)
set(CMAKE_DLLTOOL ${triplet}-dlltool)

set(CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
