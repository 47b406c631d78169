# Read by tools/coverage.sh right after project(): the product's libraries and its two programs count
# their lines and branches; tests and their helpers stay as they are. The counts go to COVERAGE_DATA
# on the drive where Wine shows the machine's files: a launcher may run on any other drive, and
# nothing may appear on its media.
function(count_product)
  foreach(folder fs platform launcher/base media installer launcher mediatool)
    get_property(targets DIRECTORY ${PROJECT_SOURCE_DIR}/${folder} PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target ${targets})
      get_target_property(type ${target} TYPE)
      if(NOT type MATCHES "^(INTERFACE_LIBRARY|UTILITY)$")
        target_compile_options(${target} PRIVATE
          "$<$<COMPILE_LANGUAGE:CXX>:--coverage;-O0;-fprofile-dir=Z:${COVERAGE_DATA}>")
      endif()
    endforeach()
  endforeach()
  # Counting makes the compiler emit more of the standard library into each object, and the linker
  # takes whole objects: where a test has its own version of a product function, its own counts.
  target_link_options(launcher_settings INTERFACE --coverage -Wl,--allow-multiple-definition)
endfunction()
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL count_product)
