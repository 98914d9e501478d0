#pragma once

#include "zktarn_conformance/check_host.hpp"

/// The checks, by subject: each function checks some operations of the host.

namespace zktarn::host_conformance {

void check_memory();
void check_generators();
void check_arrays();
void check_function(const settings& wanted);
void check_console(const settings& wanted);
void check_interrupts_and_assertions();

/// Null addresses. A host that does not accept them may end the process, so this comes last.
void check_nulls();

} // namespace zktarn::host_conformance
