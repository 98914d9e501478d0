# cmake -DFIRST=program -DSECOND=program -DWITHOUT=pattern -P same_output.cmake: fails when the
# outputs differ, without lines that match the pattern and blanks at the end of lines.
foreach(which IN ITEMS FIRST SECOND)
  execute_process(COMMAND "${${which}}" OUTPUT_VARIABLE output RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${${which}} ends with status ${status}")
  endif()
  string(REGEX REPLACE "${WITHOUT}[^\n]*\n" "" output "${output}")
  string(REGEX REPLACE " +\n" "\n" ${which}_output "${output}")
endforeach()
string(LENGTH "${FIRST_output}" length)
if(length LESS 100 OR NOT FIRST_output STREQUAL SECOND_output)
  message(FATAL_ERROR "the outputs differ:\n${FIRST_output}\n${SECOND_output}")
endif()
