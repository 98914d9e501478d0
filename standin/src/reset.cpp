#include "block_table.hpp"
#include "call_counts.hpp"
#include "call_observers.hpp"
#include "function_registry.hpp"
#include "interrupt_poll.hpp"
#include "origin.hpp"
#include "zktarn_standin/control.hpp"

namespace zktarn::standin {

void reset() {
    reset_call_counts();
    reset_call_observers();
    reset_block_table();
    reset_functions();
    reset_interrupts();
    reset_origins();
    clear_console();
    set_fault_handler({});
    set_assertion_handler({});
    report_at_exit(true);
}

} // namespace zktarn::standin
