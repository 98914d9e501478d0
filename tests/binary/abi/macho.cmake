# Checks the installed library for macOS, on any system.
set(check ${Python3_EXECUTABLE} "${CMAKE_CURRENT_SOURCE_DIR}/check_macho.py")
set(installed "${CMAKE_CURRENT_BINARY_DIR}/installed")

abi_test(install ${CMAKE_COMMAND} --install "${PROJECT_BINARY_DIR}"
  --component util --prefix "${installed}")
abi_test(macos_library ${check} table
  "${installed}/${CMAKE_INSTALL_LIBDIR}/$<TARGET_FILE_NAME:zktarn_util>" ${ZKTARN_SOVERSION})
set_tests_properties(abi.install PROPERTIES FIXTURES_SETUP installed)
set_tests_properties(abi.macos_library PROPERTIES FIXTURES_REQUIRED installed)

# Libraries that break one rule each, to prove that each check fails. They look up undefined names in
# every library, because other systems have only a part of libc++ to link with.
function(broken_library name flaw)
  abi_broken(zktarn_broken_${name} SHARED ${flaw})
  target_link_options(zktarn_broken_${name} PRIVATE LINKER:-undefined,dynamic_lookup ${ARGN})
endfunction()

# under_the_name(flaw name): gives the library another file name, in its own folder.
function(under_the_name flaw name)
  set_target_properties(zktarn_broken_${flaw} PROPERTIES
    OUTPUT_NAME ${name} LIBRARY_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/${flaw}")
endfunction()

# breaks(flaw check sentence): the check refuses the library of that flaw.
function(breaks flaw check_name sentence)
  abi_refuses(${flaw}_is_refused "${sentence}"
    ${check} ${check_name} $<TARGET_FILE:zktarn_broken_${flaw}> ${ZKTARN_SOVERSION})
endfunction()

foreach(flaw IN ITEMS one_name_too_many aborts prints throws streams process_memory starts_up
    thread_local too_large)
  broken_library(${flaw} ${flaw})
endforeach()
breaks(aborts imports "imports _abort: the library never ends the process")
breaks(prints imports "imports _printf: the library never prints")
breaks(streams imports "imports __ZNSt[^ ]*: the library never prints")
breaks(throws imports "imports ___cxa_throw: the library never throws")
breaks(process_memory imports "imports _calloc: array storage comes from the host's memory manager")
breaks(one_name_too_many exports "missing: .*tarnassert.*extra: .*mallocate_quickly")
breaks(starts_up startup "runs code when it is loaded")
breaks(thread_local threads "has thread-local variables")
breaks(too_large size "bytes, not less than 102400")

abi_broken(zktarn_broken_bundle MODULE never_fuses)
breaks(bundle kind "is not a dynamic library")
broken_library(other_processor never_fuses)
set_target_properties(zktarn_broken_other_processor PROPERTIES OSX_ARCHITECTURES x86_64)
breaks(other_processor kind "is not for 64-bit Arm")
broken_library(newer_system never_fuses -mmacosx-version-min=12.0)
breaks(newer_system kind "needs macOS 12.0.0, not 11.0.0")

broken_library(other_name never_fuses)
breaks(other_name name "its name is @rpath/libzktarn_broken_other_name.dylib")
broken_library(version_below never_fuses)
under_the_name(version_below zktarn_util)
set_target_properties(zktarn_broken_version_below PROPERTIES
  SOVERSION ${ZKTARN_SOVERSION} MACHO_COMPATIBILITY_VERSION 1.0 MACHO_CURRENT_VERSION 0.1)
breaks(version_below name "version 0.1.0 is below 1.0.0")
abi_refuses(run_path_of_the_build_is_refused "looks for libraries in /.*, not in @loader_path"
  ${check} run_path ${library} ${ZKTARN_SOVERSION})

broken_library(no_host never_fuses)
breaks(no_host loads "does not load @rpath/libqv.dylib, @rpath/libqvx.dylib")
broken_library(one_load_too_many never_fuses)
target_link_libraries(zktarn_broken_one_load_too_many PRIVATE zktarn_broken_aborts
  zktarn_standin_qv zktarn_standin_qvx zktarn_standin_ut zktarn_standin_zkoptimutil)
breaks(one_load_too_many loads "it loads @rpath/libzktarn_broken_aborts.dylib")

broken_library(looks_everywhere takes_interrupt)
breaks(looks_everywhere bindings "_utIsInterruptPending is looked up in every library")
broken_library(flat takes_interrupt LINKER:-flat_namespace)
breaks(flat bindings "its imports are looked up in every library")
broken_library(false_owner other_owner)
under_the_name(false_owner qv)
broken_library(other_owner takes_interrupt)
target_link_libraries(zktarn_broken_other_owner PRIVATE zktarn_broken_false_owner)
breaks(other_owner bindings "_utIsInterruptPending is taken from libqv, not from libut")

broken_library(unsigned never_fuses LINKER:-no_adhoc_codesign)
breaks(unsigned signature "is not signed")

# refuses_damaged(flaw what check sentence library): the check refuses a copy with one change.
function(refuses_damaged flaw what check_name sentence source)
  set(damaged "${CMAKE_CURRENT_BINARY_DIR}/${flaw}.dylib")
  add_custom_command(OUTPUT "${damaged}" DEPENDS ${source} broken/damage.py macho.py
    COMMAND ${Python3_EXECUTABLE} "${CMAKE_CURRENT_SOURCE_DIR}/broken/damage.py"
      ${what} $<TARGET_FILE:${source}> "${damaged}"
    VERBATIM)
  add_custom_target(zktarn_broken_${flaw} ALL DEPENDS "${damaged}")
  abi_refuses(${flaw}_is_refused "${sentence}"
    ${check} ${check_name} "${damaged}" ${ZKTARN_SOVERSION})
endfunction()

refuses_damaged(damaged code signature "signature does not match its contents" zktarn_util)
refuses_damaged(arm64e subtype kind "is for arm64e, not for every 64-bit Arm" zktarn_util)
refuses_damaged(ios platform kind "is for iOS, not for macOS" zktarn_util)

# Copies with a correct symbol table whose loader tables bind a name to the wrong library.
refuses_damaged(lazy_from_elsewhere _utIsInterruptPending=libqv bindings
  "_utIsInterruptPending is taken from libqv, not from libut .lazy bindings" zktarn_util)
refuses_damaged(eager_from_elsewhere __ZSt7nothrow=libqv bindings
  "__ZSt7nothrow is taken from libqv, not from libc.. .ordinary bindings" zktarn_util)

# Chained fixups, which newer linkers write in place of bind opcodes.
broken_library(chained takes_interrupt LINKER:-fixup_chains)
target_link_libraries(zktarn_broken_chained PRIVATE zktarn_standin_qv zktarn_standin_ut)
abi_test(chained_bindings_are_read
  ${check} bindings $<TARGET_FILE:zktarn_broken_chained> ${ZKTARN_SOVERSION})
refuses_damaged(chained_from_elsewhere _utIsInterruptPending=libqv bindings
  "_utIsInterruptPending is taken from libqv, not from libut .chained bindings"
  zktarn_broken_chained)

# No table of bindings, and one without the names of the symbol table.
refuses_damaged(no_table loader_table bindings "it has nothing to bind names by" zktarn_util)
refuses_damaged(empty_table bindings bindings "is imported and never bound" zktarn_util)
broken_library(replaceable replaceable)
breaks(replaceable bindings "replaceable.* can be replaced by any library of the process")

# A file of another kind is refused with a sentence.
abi_refuses(other_file_is_refused "^check_macho: .* is not a 64-bit Mach-O file"
  ${check} table "${CMAKE_CURRENT_SOURCE_DIR}/README.md" ${ZKTARN_SOVERSION})

if(TARGET zktarn_python_host)
  include("${PROJECT_SOURCE_DIR}/tests/bindings/python/macos/python_host.cmake")
endif()

# The interface of both libraries against that of the last release.
find_program(DWARFDUMP NAMES llvm-dwarfdump-${ZKTARN_LLVM_VERSION} llvm-dwarfdump dwarfdump)
if(NOT DWARFDUMP)
  abi_test(interface_unbroken_since_release ${CMAKE_COMMAND} -E echo
    "skipped: comparing with the last release needs llvm-dwarfdump")
  set_tests_properties(abi.interface_unbroken_since_release PROPERTIES
    SKIP_REGULAR_EXPRESSION "^skipped")
  return()
endif()

set(interface ${Python3_EXECUTABLE} "${CMAKE_CURRENT_SOURCE_DIR}/macho_interface.py")
set(items ${library} $<TARGET_OBJECTS:zktarn_util_objects>)
if(TARGET zktarn_util_c)
  list(APPEND items $<TARGET_FILE:zktarn_util_c> $<TARGET_OBJECTS:zktarn_util_c_objects>)
endif()
last_release(last libzktarn_util.${ZKTARN_SOVERSION}.dylib interface)
abi_test(interface_unbroken_since_release ${interface} compare ${DWARFDUMP} "${last}" ${items})
add_custom_target(abi_baseline
  COMMAND ${interface} describe ${DWARFDUMP}
    "${CMAKE_CURRENT_SOURCE_DIR}/released/libzktarn_util.${ZKTARN_SOVERSION}.dylib-${PROJECT_VERSION}.interface"
    ${items}
  COMMAND_EXPAND_LISTS VERBATIM)
add_dependencies(abi_baseline zktarn_util zktarn_util_c)

# Proves that the comparison fails: descriptions of other interfaces, each with one line changed.
foreach(case IN ITEMS
    "export=s/^export _zktarn_sort/export _zktarn_sort_quickly/=export _zktarn_sort_quickly"
    "argument=s/zktarn_epsilon_floor.double, double/zktarn_epsilon_floor(double, float/=function double zktarn_epsilon_floor"
    "component=s/ 8 int64_t iterations/ 8 float iterations/=record zktarn::callbacks_type_util::cbstatusdata"
    "size=s/^record zktarn_vector 80/record zktarn_vector 88/=record zktarn_vector 88"
    "type=s/^type zktarn_flag = int64_t/type zktarn_flag = int32_t/=type zktarn_flag")
  string(REPLACE "=" ";" parts "${case}")
  list(GET parts 0 name)
  list(GET parts -1 change)
  string(REGEX REPLACE "^[a-z]+=(.*/)=[^=]*$" "\\1" edit "${case}")
  set(changed "${CMAKE_CURRENT_BINARY_DIR}/changed_${name}.interface")
  if(EXISTS "${last}")
    execute_process(COMMAND sed "${edit}" "${last}" OUTPUT_FILE "${changed}")
    abi_refuses(changed_${name}_is_refused "the binary interface is broken: ${change}"
      ${interface} compare ${DWARFDUMP} "${changed}" ${items})
  endif()
endforeach()
