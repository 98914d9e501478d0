# zktarn_restrict_exports(TARGET): hides what the linker would export beside the procedures that are marked
# ZKTARN_API: templates and inline functions of the standard library, which have a visibility of
# their own. Everything else in namespace zktarn is hidden already, by the compiler. The test of the
# exported names compares the result with its list.
function(zktarn_restrict_exports target)
  set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}.exports")
  if(APPLE)
    # The linker exports again what a list of exported names matches in another library, and the stand-in
    # is in namespace zktarn. So this list has what is not exported: functions of std, and new and delete.
    file(CONFIGURE OUTPUT "${script}" CONTENT "__ZNSt*\n__ZNKSt*\n__ZSt*\n__Zn*\n__Zd*\n" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:-unexported_symbols_list,${script}")
  else()
    file(CONFIGURE OUTPUT "${script}" CONTENT "{ global: _ZN6zktarn*; local: *; };\n" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:--version-script,${script}")
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
endfunction()
