# Read right after project() by the build that shows which functions a test reaches: every program
# but this part of it writes them down.
include_guard(GLOBAL)  # GoogleTest is a project, too
add_library(reached_functions OBJECT ${CMAKE_CURRENT_LIST_DIR}/reached.cpp)
# -fsanitize-coverage=func,trace-pc, past the driver, which would ask for a sanitizer's library.
add_compile_options("SHELL:-Xclang -fsanitize-coverage-type=1"
  "SHELL:-Xclang -fsanitize-coverage-trace-pc" -gline-tables-only)
link_libraries($<TARGET_OBJECTS:reached_functions>)
