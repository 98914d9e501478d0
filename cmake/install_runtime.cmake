# When another project includes this one: installs the shared libraries, so that the project's installed
# programs run. ZKTARN_INSTALL adds headers and packages.

set(standin_libraries zktarn_standin_qv zktarn_standin_qvx zktarn_standin_ut
  zktarn_standin_zkoptimutil)

if(ZKTARN_INSTALL_RUNTIME AND NOT ZKTARN_INSTALL)
  set(runtime zktarn_util)
  if(TARGET zktarn_util_c)
    list(APPEND runtime zktarn_util_c)
  endif()
  install(TARGETS ${runtime}
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT util NAMELINK_SKIP)
  install(TARGETS ${standin_libraries}
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/${ZKTARN_STANDIN_SUBDIR}" COMPONENT standin)
endif()

# Gives the programs that the calling folder defines afterwards a run path to the installed libraries, unless
# the folder sets a run path.
if(ZKTARN_INSTALL_RUNTIME AND NOT DEFINED CMAKE_INSTALL_RPATH)
  file(RELATIVE_PATH to_libraries
    "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  string(REGEX REPLACE "/$" "" to_libraries "${ZKTARN_ORIGIN}/${to_libraries}")
  set(CMAKE_INSTALL_RPATH
    "${to_libraries};${to_libraries}/${ZKTARN_STANDIN_SUBDIR}" PARENT_SCOPE)
endif()
