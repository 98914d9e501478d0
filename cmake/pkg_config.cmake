# install_pkg_config(NAME COMPONENT FOLDER DESCRIPTION FIELD...): installs NAME.pc for libraries in FOLDER, with
# these fields. The prefix is relative to the file, so that the installed tree can be moved.
function(install_pkg_config name component folder description)
  file(RELATIVE_PATH to_prefix "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
  string(REGEX REPLACE "/$" "" to_prefix "${to_prefix}")
  list(JOIN ARGN "\n" fields)
  set(file "${CMAKE_CURRENT_BINARY_DIR}/${name}.pc")
  file(CONFIGURE OUTPUT "${file}" @ONLY CONTENT
"prefix=\${pcfiledir}/${to_prefix}
libdir=\${prefix}/${folder}
includedir=\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}

Name: ${name}
Description: ${description}
Version: ${PROJECT_VERSION}
${fields}
")
  install(FILES "${file}" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT ${component})
endfunction()

set(pkg_config_cflags "Cflags: -I\${includedir}")
if(ZKTARN_CHECKED)
  string(APPEND pkg_config_cflags " -DZKTARN_CHECKED")
endif()
