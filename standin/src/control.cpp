#include "zktarn_standin/control.hpp"
#include "block_table.hpp"
#include "calls.hpp"
#include "function_registry.hpp"
#include "interrupt_poll.hpp"
#include "origin.hpp"

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

const char* zktarn_standin_version() noexcept {
    return ZKTARN_STANDIN_VERSION;
}
