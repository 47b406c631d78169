# Read by tools/check-undefined.sh's builds right after project(): every program gets memory with
# checks. A test that has its own keeps that, as the linker takes the first.
include_guard(GLOBAL)  # GoogleTest is a project, too
add_library(undefined_heap OBJECT ${CMAKE_CURRENT_LIST_DIR}/heap.cpp)
link_libraries($<TARGET_OBJECTS:undefined_heap>)
