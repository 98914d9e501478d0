cmake_minimum_required(VERSION 3.24)
# cmake -DGOLDEN=file -DEXPORTS=file -P covers_all.cmake: fails when a procedure that the numeric modules
# export has no hash, and names it. EXPORTS lists mangled names.
file(STRINGS "${EXPORTS}" exports REGEX "^_ZN6zktarn(4util|10vector_mod|11sorting_mod|6random)[0-9]")
file(STRINGS "${GOLDEN}" hashes)
if(NOT exports OR NOT hashes)
  message(FATAL_ERROR "there is nothing in '${EXPORTS}' or in '${GOLDEN}'")
endif()
list(TRANSFORM hashes REPLACE " [0-9a-f]+$" "")

# A mangled name has the module and the procedure, each after the number of its characters.
set(missing "")
foreach(export IN LISTS exports)
  string(REGEX MATCH "^_ZN6zktarn[0-9]+([a-z_]+)([0-9]+)(.*)$" matched "${export}")
  set(module "${CMAKE_MATCH_1}")
  string(SUBSTRING "${CMAKE_MATCH_3}" 0 ${CMAKE_MATCH_2} procedure)
  if(NOT "${module}.${procedure}" IN_LIST hashes)
    list(APPEND missing "${module}.${procedure}")
  endif()
endforeach()
if(missing)
  message(FATAL_ERROR "no hash of ${missing}")
endif()
