# cmake -DABIDW=abidw -DABIDIFF=abidiff -P interface.cmake -- describe LIBRARY FILE
# cmake -DABIDW=abidw -DABIDIFF=abidiff -P interface.cmake -- compare FILE LIBRARY
#
# Describes the interface of a library with debug information, or fails when LIBRARY breaks programs that
# were made for the interface in FILE, which is a description or a library. A description has the types of
# the project's headers, and nothing that depends on compiler, processor or folder.
math(EXPR argument "${CMAKE_ARGC} - 3")
foreach(name IN ITEMS action first second)
  set(${name} "${CMAKE_ARGV${argument}}")
  math(EXPR argument "${argument} + 1")
endforeach()
set(here "${CMAKE_CURRENT_LIST_DIR}")

function(describe library file)
  execute_process(COMMAND ${ABIDW} --suppressions "${here}/standard_library.abignore"
      --headers-dir "${here}/../../../src/zktarn" --headers-dir "${here}/../../../bindings/c/include"
      --exported-interfaces-only --no-parameter-names --no-show-locs --no-comp-dir-path
      --no-corpus-path --no-architecture --no-elf-needed --no-write-default-sizes
      --out-file "${file}" "${library}"
    COMMAND_ERROR_IS_FATAL ANY)
endfunction()

if(action STREQUAL "describe")
  describe("${first}" "${second}")
  return()
endif()

if(NOT EXISTS "${first}")
  message(FATAL_ERROR "there is no description of an interface in ${first}; after a change of SOVERSION, "
    "the target abi_baseline writes it")
endif()
# Tests run in parallel, so each has its own file.
string(RANDOM LENGTH 12 suffix)
set(described "${second}-${suffix}.abi")
describe("${second}" "${described}")
if(NOT first MATCHES "[.]abi$")
  describe("${first}" "${described}-first.abi")
  set(first "${described}-first.abi")
endif()
execute_process(COMMAND ${ABIDIFF} --no-added-syms
    --suppressions "${here}/standard_library.abignore" "${first}" "${described}"
  RESULT_VARIABLE status OUTPUT_VARIABLE said ERROR_VARIABLE said)
file(REMOVE "${described}" "${described}-first.abi")
if(NOT status EQUAL 0)
  message("${said}")
  message(FATAL_ERROR "the binary interface is broken")
endif()
