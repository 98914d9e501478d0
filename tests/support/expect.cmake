# cmake -DSTATUS=status -DPATTERN=pattern -P expect.cmake -- PROGRAM [ARGUMENT...]: fails when the
# exit status differs or the output does not match.
set(command "")
set(seen_dashes FALSE)
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(i RANGE ${last})
  if(seen_dashes)
    list(APPEND command "${CMAKE_ARGV${i}}")
  elseif(CMAKE_ARGV${i} STREQUAL "--")
    set(seen_dashes TRUE)
  endif()
endforeach()

execute_process(COMMAND ${command} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE error)
# Standard error comes first, because the host may print there and the pattern may end with $.
set(printed "${error}${output}")
if(NOT status STREQUAL STATUS)
  message("${printed}")
  message(FATAL_ERROR "status ${status} instead of ${STATUS}")
endif()
if(NOT printed MATCHES "${PATTERN}")
  message("${printed}")
  message(FATAL_ERROR "this does not match '${PATTERN}'")
endif()
