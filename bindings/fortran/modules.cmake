# The sources of the modules, in the order of their dependencies. gfortran 12 and Flang 19 compile them.
set(zktarn_fortran_sources
  zktarn_types.f90
  zktarn_callbacks.f90
  zktarn_memory.f90
  zktarn_numbers.f90
  zktarn_random.f90
  zktarn_vectors.f90
  zktarn_util.f90)

# zktarn_fortran_modules(FOLDER): zktarn::fortran, the module zktarn_util, of the sources there; and,
# where the stand-in's control in C exists, zktarn::fortran_standin, the module zktarn_standin, and
# zktarn::fortran_standin_records, the module zktarn_standin_records.
function(zktarn_fortran_modules folder)
  set(sources ${zktarn_fortran_sources})
  list(TRANSFORM sources PREPEND "${folder}/")
  zktarn_fortran_library(zktarn_fortran zktarn::c ${sources})
  add_library(zktarn::fortran ALIAS zktarn_fortran)
  if(TARGET zktarn::standin_c)
    zktarn_fortran_library(zktarn_fortran_standin zktarn::standin_c "${folder}/zktarn_standin.f90")
    add_library(zktarn::fortran_standin ALIAS zktarn_fortran_standin)
    zktarn_fortran_library(zktarn_fortran_standin_records zktarn::standin_records_c
      "${folder}/zktarn_standin_records.f90")
    add_library(zktarn::fortran_standin_records ALIAS zktarn_fortran_standin_records)
  endif()
endfunction()

function(zktarn_fortran_library target link)
  add_library(${target} STATIC EXCLUDE_FROM_ALL ${ARGN})
  set(modules "${CMAKE_CURRENT_BINARY_DIR}/${target}_modules")
  set_target_properties(${target} PROPERTIES
    Fortran_MODULE_DIRECTORY "${modules}"
    POSITION_INDEPENDENT_CODE ON)
  target_include_directories(${target} PUBLIC "${modules}")
  target_link_libraries(${target} PUBLIC ${link})
endfunction()
