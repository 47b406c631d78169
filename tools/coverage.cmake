# Read by tools/coverage.sh right after project(): the product's libraries and the launcher count
# their lines and branches; tests and their helpers stay as they are. The counts go to COVERAGE_DATA
# on the drive where Wine shows the machine's files: a launcher may run on any other drive, and
# nothing may appear on its media.
function(count_product)
  foreach(target fs platform launcher_base media installer launcher setup)
    target_compile_options(${target} PRIVATE
      "$<$<COMPILE_LANGUAGE:CXX>:--coverage;-O0;-fprofile-abs-path;-fprofile-dir=Z:${COVERAGE_DATA}>")
  endforeach()
  target_link_options(launcher_settings INTERFACE --coverage)
endfunction()
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL count_product)
