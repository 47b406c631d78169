# Tests and tools that are Windows programs run under Wine on any other system, in a prefix inside
# the build folder. On Windows this file does nothing.
if(NOT CMAKE_CROSSCOMPILING)
  return()
endif()

set(WINE_RUN ${PROJECT_SOURCE_DIR}/tools/wine-run.sh)
set(WINE_PREFIX ${PROJECT_BINARY_DIR}/wine-prefix)
set(CMAKE_CROSSCOMPILING_EMULATOR ${WINE_RUN} ${WINE_PREFIX})
