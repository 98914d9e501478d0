/// Operations, memory, faults, assertions, the console and interrupts of the stand-in host, in C.

#include <string>

#include "text.hpp"
#include "zktarn_standin.h"
#include "zktarn_standin/control.hpp"

namespace standin = zktarn::standin;
using zktarn::standin_c::lines_of;
using zktarn::standin_c::list_into;
using zktarn::standin_c::text_into;

static_assert(zktarn_standin_operation_count == standin::operation_count);
static_assert(zktarn_op_qvMallocExOptim == static_cast<int>(standin::operation::qvMallocExOptim));
static_assert(zktarn_op_assertOptim == static_cast<int>(standin::operation::assertOptim));
static_assert(zktarn_op_utIsInterruptPending ==
              static_cast<int>(standin::operation::utIsInterruptPending));
static_assert(zktarn_op_qvcreatestructarray800_ ==
              static_cast<int>(standin::operation::qvcreatestructarray800_));
static_assert(zktarn_op_qvdestroyarray800_ ==
              static_cast<int>(standin::operation::qvdestroyarray800_));
static_assert(zktarn_op_qvxprintf800_ == static_cast<int>(standin::operation::qvxprintf800_));
static_assert(zktarn_fault_bad_request == static_cast<int>(standin::fault_kind::bad_request));
static_assert(zktarn_fault_function_threw == static_cast<int>(standin::fault_kind::function_threw));
static_assert(zktarn_console_show == static_cast<int>(standin::console::show));
static_assert(zktarn_console_capture == static_cast<int>(standin::console::capture));
static_assert(zktarn_console_mirror == static_cast<int>(standin::console::mirror));

namespace {

standin::operation cpp(zktarn_standin_operation operation) {
    return static_cast<standin::operation>(operation);
}

zktarn_standin_block in_c(const standin::block& block) {
    return {block.address, block.nbytes, block.order};
}

} // namespace

// Operations

const char* zktarn_standin_name(zktarn_standin_operation operation) {
    return standin::name(cpp(operation));
}

int64_t zktarn_standin_calls(zktarn_standin_operation operation) {
    return standin::calls(cpp(operation));
}

void zktarn_standin_fail_call(zktarn_standin_operation operation, int64_t k) {
    standin::fail_call(cpp(operation), k);
}

void zktarn_standin_reset() {
    standin::reset();
}

// Memory manager

int64_t zktarn_standin_requests() {
    return standin::requests();
}

void zktarn_standin_fail_request(int64_t k) {
    standin::fail_request(k);
}

void zktarn_standin_fail_requests_from(int64_t k) {
    standin::fail_requests_from(k);
}

void zktarn_standin_fill_new_blocks(int32_t byte) {
    standin::fill_new_blocks(byte);
}

bool zktarn_standin_huge_pages(bool on) {
    return standin::huge_pages(on);
}

size_t zktarn_standin_live_blocks(zktarn_standin_block* blocks, size_t capacity) {
    return list_into(blocks, capacity, standin::live_blocks, in_c);
}

int64_t zktarn_standin_check_blocks() {
    return standin::check_blocks();
}

size_t zktarn_standin_memory_report(char* buffer, size_t capacity) {
    return text_into(buffer, capacity, standin::memory_report);
}

// Faults and assertions

void zktarn_standin_set_fault_handler(zktarn_standin_fault_handler handler, void* context) {
    if (handler == nullptr) {
        standin::set_fault_handler({});
        return;
    }
    standin::set_fault_handler([handler, context](const standin::fault& fault) {
        const std::string origin = lines_of(fault.origin);
        const std::string place = lines_of(fault.place);
        const zktarn_standin_fault seen = {static_cast<zktarn_standin_fault_kind>(fault.kind),
                                           in_c(fault.concerned),
                                           fault.sentence.c_str(),
                                           fault.sentence.size(),
                                           origin.c_str(),
                                           origin.size(),
                                           place.c_str(),
                                           place.size()};
        handler(&seen, context);
    });
}

void zktarn_standin_set_assertion_handler(zktarn_standin_assertion_handler handler, void* context) {
    if (handler == nullptr) {
        standin::set_assertion_handler({});
        return;
    }
    standin::set_assertion_handler([handler, context] { handler(context); });
}

// Console

zktarn_standin_console zktarn_standin_set_console(zktarn_standin_console where) {
    return static_cast<zktarn_standin_console>(
        standin::set_console(static_cast<standin::console>(where)));
}

size_t zktarn_standin_console_text(char* buffer, size_t capacity) {
    return text_into(buffer, capacity, standin::console_text);
}

size_t zktarn_standin_flushed_console_text(char* buffer, size_t capacity) {
    return text_into(buffer, capacity, standin::flushed_console_text);
}

void zktarn_standin_clear_console() {
    standin::clear_console();
}

// Interrupts

void zktarn_standin_raise_interrupt() {
    standin::raise_interrupt();
}

void zktarn_standin_interrupt_at_poll(int64_t k) {
    standin::interrupt_at_poll(k);
}

bool zktarn_standin_listen_for_sigint(bool on) {
    return standin::listen_for_sigint(on);
}
