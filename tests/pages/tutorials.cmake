# The programs of docs/tutorials, compiled from the pages, and what they print.
set(tutorials "${PROJECT_SOURCE_DIR}/docs/tutorials")

file(GLOB tutorial_pages CONFIGURE_DEPENDS "${tutorials}/*.md")
foreach(page IN LISTS tutorial_pages)
  get_filename_component(name "${page}" NAME_WE)
  add_test(NAME tutorials.${name}_marks COMMAND ${check} marks "${page}")
endforeach()

# extracted PAGE PROGRAM FILE: makes FILE from a program of the page.
function(extracted page program file)
  add_custom_command(OUTPUT "${file}"
    COMMAND ${check} extract "${tutorials}/${page}.md" ${program} "${file}"
    DEPENDS "${tutorials}/${page}.md" "${check_script}"
    VERBATIM)
endfunction()

# tutorial_program PAGE PROGRAM LIBRARY...: the target tutorial_PROGRAM.
function(tutorial_program page program)
  set(code "${CMAKE_CURRENT_BINARY_DIR}/tutorial_${program}.cpp")
  extracted(${page} ${program} "${code}")
  add_executable(tutorial_${program} "${code}")
  zktarn_warnings(tutorial_${program})
  target_link_libraries(tutorial_${program} PRIVATE ${ARGN})
endfunction()

foreach(each IN ITEMS separator/separator decimals/decimals memory/leak memory/owners)
  string(REPLACE "/" ";" each "${each}")
  list(GET each 0 page)
  list(GET each 1 program)
  tutorial_program(${page} ${program} zktarn::util zktarn::standin zktarn_standin_records)
  add_test(NAME tutorials.${program}
    COMMAND ${check} output "${tutorials}/${page}.md" ${program} $<TARGET_FILE:tutorial_${program}>)
endforeach()


# A host of one file, as four libraries. A sanitizer's memory manager ends the process at a request
# that exceeds any memory, which the conformance program makes; on macOS the loader searches other folders.
if(NOT APPLE AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  set(own_host "${CMAKE_CURRENT_BINARY_DIR}/host")
  set(host_code "${CMAKE_CURRENT_BINARY_DIR}/tutorial_host.cpp")
  extracted(host host "${host_code}")
  file(WRITE "${CMAKE_CURRENT_BINARY_DIR}/empty.cpp" "")
  foreach(library IN ITEMS qv qvx ut zkoptimutil)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/empty.cpp")
    if(library STREQUAL qv)
      set(source "${host_code}")
    endif()
    add_library(tutorial_host_${library} SHARED "${source}")
    set_target_properties(tutorial_host_${library} PROPERTIES
      OUTPUT_NAME ${library}
      LIBRARY_OUTPUT_DIRECTORY "${own_host}")
  endforeach()
  zktarn_warnings(tutorial_host_qv)
  target_compile_features(tutorial_host_qv PRIVATE cxx_std_20)
  target_include_directories(tutorial_host_qv PRIVATE "${PROJECT_SOURCE_DIR}/src")
  # Linked to the stand-in; the path of the loader puts the host of the page in its place.
  tutorial_program(host solver zktarn::util zktarn::standin)
  add_dependencies(tutorial_solver
    tutorial_host_qv tutorial_host_qvx tutorial_host_ut tutorial_host_zkoptimutil)

  set(on_own_host "${CMAKE_COMMAND}" -E env "LD_LIBRARY_PATH=${own_host}")
  add_test(NAME tutorials.host
    COMMAND ${check} output "${tutorials}/host.md" host ${on_own_host}
      $<TARGET_FILE:host_conformance> --function sum --answer 20.5)
  add_test(NAME tutorials.solver
    COMMAND ${check} output "${tutorials}/host.md" solver ${on_own_host}
      $<TARGET_FILE:tutorial_solver>)
endif()
