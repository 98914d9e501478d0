# Calls of the library from C and Fortran. Each loop is compiled by the compiler of its language.
add_executable(bindings_bench bindings_bench.cpp bindings_calls.c bindings_exported.c)
set_target_properties(bindings_bench PROPERTIES LINKER_LANGUAGE CXX)
target_link_libraries(bindings_bench PRIVATE
  zktarn_bench_support zktarn::util zktarn::c zktarn::standin)
# The loops of two languages may be equal instructions, which take longer across a cache line.
target_compile_options(bindings_bench PRIVATE -falign-functions=64 -falign-loops=64)
if(ZKTARN_FORTRAN)
  target_sources(bindings_bench PRIVATE bindings_calls.f90)
  target_compile_definitions(bindings_bench PRIVATE ZKTARN_BENCH_FORTRAN)
  target_link_libraries(bindings_bench PRIVATE zktarn::fortran)
endif()
