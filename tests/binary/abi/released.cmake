# The comparison of ELF libraries, and seen to tell a break from none.

find_program(ABIDIFF abidiff)
find_program(ABIDW abidw)
if(NOT ABIDIFF OR NOT ABIDW)
  abi_test(unbroken_since_release ${CMAKE_COMMAND} -E echo
    "skipped: comparing with the last release needs abidw and abidiff, of the package abigail-tools")
  set_tests_properties(abi.unbroken_since_release PROPERTIES SKIP_REGULAR_EXPRESSION "^skipped")
  return()
endif()

set(interface ${CMAKE_COMMAND} -DABIDIFF=${ABIDIFF} -DABIDW=${ABIDW}
  -P "${CMAKE_CURRENT_SOURCE_DIR}/interface.cmake" --)
add_custom_target(abi_baseline)
foreach(released IN ITEMS zktarn_util zktarn_util_c)
  if(TARGET ${released})
    set(soversion ${ZKTARN_SOVERSION})
    if(released STREQUAL "zktarn_util_c")
      get_target_property(soversion ${released} SOVERSION)
    endif()
    last_release(last lib${released}.so.${soversion} abi)
    abi_test(${released}_unbroken_since_release
      ${interface} compare "${last}" $<TARGET_FILE:${released}>)
    add_custom_command(TARGET abi_baseline POST_BUILD COMMAND ${interface} describe
      $<TARGET_FILE:${released}>
      "${CMAKE_CURRENT_SOURCE_DIR}/released/lib${released}.so.${soversion}-${PROJECT_VERSION}.abi")
    add_dependencies(abi_baseline ${released})
  endif()
endforeach()

# The same small interface in every state that the comparison has to accept or to refuse.
foreach(change IN ITEMS NONE ADDED_EXPORT REMOVED_EXPORT ARGUMENT COMPONENT)
  string(TOLOWER ${change} name)
  add_library(zktarn_interface_${name} SHARED broken/interface.cpp)
  target_compile_definitions(zktarn_interface_${name} PRIVATE ${change})
  target_compile_options(zktarn_interface_${name} PRIVATE -g)
  set_target_properties(zktarn_interface_${name} PROPERTIES NO_SONAME ON)
endforeach()
set(before $<TARGET_FILE:zktarn_interface_none>)
abi_test(added_export_is_accepted
  ${interface} compare ${before} $<TARGET_FILE:zktarn_interface_added_export>)
abi_refuses(removed_export_is_refused "1 Removed.*removed_later.*the binary interface is broken"
  ${interface} compare ${before} $<TARGET_FILE:zktarn_interface_removed_export>)
abi_refuses(changed_argument_is_refused
  "parameter 2 of type '[^']*' changed.*the binary interface is broken"
  ${interface} compare ${before} $<TARGET_FILE:zktarn_interface_argument>)
abi_refuses(moved_component_is_refused
  "offset changed from 0 to 64.*the binary interface is broken"
  ${interface} compare ${before} $<TARGET_FILE:zktarn_interface_component>)
abi_refuses(missing_description_is_refused "no description of an interface in[ \n]+[^ ]*nothing[.]abi"
  ${interface} compare "${CMAKE_CURRENT_BINARY_DIR}/nothing.abi" ${before})
