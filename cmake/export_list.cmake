# Turns exports.txt into the linker's list of visible symbols: a version script on ELF, a list of
# exported symbols on Mach-O.
#
# A symbol is matched by its mangled qualified name and any parameter list, because the platforms
# spell 64-bit integers differently. The test of the exported names pins the parameters.

function(zktarn_restrict_exports target list_file)
  file(STRINGS "${list_file}" lines REGEX "^[a-z]")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list_file}")

  if(APPLE)
    set(underscore "_")
  endif()
  set(patterns "")
  foreach(line IN LISTS lines)
    string(REPLACE " " ";" parts "${line}")
    set(mangled "${underscore}_ZN6zktarn")
    foreach(part IN LISTS parts)
      string(LENGTH "${part}" length)
      string(APPEND mangled "${length}${part}")
    endforeach()
    list(APPEND patterns "${mangled}E*")
  endforeach()

  set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}.exports")
  if(APPLE)
    list(JOIN patterns "\n" text)
    file(CONFIGURE OUTPUT "${script}" CONTENT "${text}\n" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:-exported_symbols_list,${script}")
  else()
    list(JOIN patterns "; " text)
    file(CONFIGURE OUTPUT "${script}" CONTENT "{ global: ${text}; local: *; };\n" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:--version-script,${script}")
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
endfunction()
