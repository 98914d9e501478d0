# The interface against that of the last release.
#
#     cmake --build BUILD --target abi_baseline
#
# describes the interface of a build as that of the current version, in the folder `released`. A name in
# there begins with that of the library, so a library with a new SOVERSION has no release to be compared
# with until it is described.

# last_release(VARIABLE NAME EXTENSION): the newest description of that library. If there is none, the path
# of the one to write.
function(last_release variable name extension)
  set(folder "${CMAKE_CURRENT_SOURCE_DIR}/released")
  file(GLOB found CONFIGURE_DEPENDS "${folder}/${name}-*.${extension}")
  list(SORT found COMPARE NATURAL)
  list(APPEND found "${folder}/${name}-${PROJECT_VERSION}.${extension}")
  list(LENGTH found count)
  if(count GREATER 1)
    list(REMOVE_AT found -1)
  endif()
  list(GET found -1 last)
  set(${variable} "${last}" PARENT_SCOPE)
endfunction()
