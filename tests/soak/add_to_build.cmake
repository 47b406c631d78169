# Given to CMake as CMAKE_PROJECT_media_launcher_INCLUDE, adds the long run to the build: it is no
# test of the suite, and nothing else is built with it.
add_subdirectory(${CMAKE_CURRENT_LIST_DIR} tests/soak EXCLUDE_FROM_ALL)
