# Read by the tool for mutations right after project(): mediatool's own sources are compiled one by
# one, as one of them changes at a time; its tests stay joined.
function(compile_one_by_one)
  set_target_properties(mediatool_lib mediatool_markers PROPERTIES UNITY_BUILD OFF)
endfunction()
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL compile_one_by_one)
