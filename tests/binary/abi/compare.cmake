# cmake -DABIDIFF=abidiff -P compare.cmake -- OLD NEW: fails when NEW breaks programs made for OLD.
math(EXPR last "${CMAKE_ARGC} - 1")
math(EXPR last_but_one "${CMAKE_ARGC} - 2")
set(old "${CMAKE_ARGV${last_but_one}}")
set(new "${CMAKE_ARGV${last}}")

execute_process(COMMAND ${ABIDIFF} --no-added-syms "${old}" "${new}"
  RESULT_VARIABLE status OUTPUT_VARIABLE said)
if(NOT status EQUAL 0)
  message("${said}")
  message(FATAL_ERROR "the binary interface is broken")
endif()
