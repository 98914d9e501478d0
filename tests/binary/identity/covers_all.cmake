# cmake -DGOLDEN=file -DEXPORTS=file -P covers_all.cmake: fails when a procedure that the numeric modules
# export has no hash, and names it.
file(STRINGS "${EXPORTS}" exports REGEX "^(util|vector_mod|sorting_mod|random) ")
file(STRINGS "${GOLDEN}" hashes)
if(NOT exports OR NOT hashes)
  message(FATAL_ERROR "there is nothing in '${EXPORTS}' or in '${GOLDEN}'")
endif()
list(TRANSFORM hashes REPLACE " [0-9a-f]+$" "")
list(TRANSFORM exports REPLACE " " ".")
list(REMOVE_ITEM exports ${hashes})
if(exports)
  message(FATAL_ERROR "no hash of ${exports}")
endif()
