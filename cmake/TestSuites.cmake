# Run by ctest before the tests, with PROGRAM, NAME, SEEN_UNDER_WINE and EMULATOR set: one test for each
# suite of a GoogleTest program, NAME.SUITE. A process for each single test would cost ten times the
# time.
if(NOT EXISTS ${PROGRAM})
  add_test([[${NAME} is not built]] [[${PROGRAM}]])
  return()
endif()

get_filename_component(folder ${PROGRAM} DIRECTORY)
set(suites ${folder}/${NAME}_suites.cmake)
if(NOT EXISTS ${suites} OR ${PROGRAM} IS_NEWER_THAN ${suites})
  execute_process(COMMAND ${EMULATOR} ${PROGRAM} --gtest_list_tests
    OUTPUT_VARIABLE listing RESULT_VARIABLE result TIMEOUT 120)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} does not list its tests (${result}):\n${listing}")
  endif()
  # "Suite." or "Instance/Suite.", maybe with a comment, and its tests indented below it.
  string(REGEX MATCHALL "\n[A-Za-z0-9_/]+\\." names "\n${listing}")
  set(command ${EMULATOR} ${PROGRAM})
  list(JOIN command "]] [[" command)
  set(script "")
  set(unknown ${SEEN_UNDER_WINE})
  list(FIND SEEN_UNDER_WINE ${NAME} whole)
  foreach(suite IN LISTS names)
    string(REGEX REPLACE "[\n.]" "" suite "${suite}")
    list(FIND SEEN_UNDER_WINE ${NAME}.${suite} single)
    list(REMOVE_ITEM unknown ${NAME}.${suite})
    set(labels "")
    if(whole GREATER_EQUAL 0 OR single GREATER_EQUAL 0)
      set(labels seen-under-wine)
    endif()
    string(APPEND script
      "add_test([[${NAME}.${suite}]] [[${command}]] [[--gtest_filter=${suite}.*]])\n"
      "set_tests_properties([[${NAME}.${suite}]] PROPERTIES TIMEOUT 600\n"
      "  LABELS \"${labels}\" SKIP_RETURN_CODE 77)\n")
  endforeach()
  list(FILTER unknown INCLUDE REGEX "^${NAME}\\.")
  if(unknown)
    message(FATAL_ERROR "There is no suite ${unknown} to be labelled.")
  endif()
  file(WRITE ${suites} "${script}")
endif()
include(${suites})
