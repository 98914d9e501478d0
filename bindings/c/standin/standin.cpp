/// The control of the stand-in host in C, except for arrays, functions and the call log:
/// operations, memory, objects that have not been released, faults, assertions, console,
/// interrupts.

#include <algorithm>
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

/// `text(element)` of the element that satisfies the condition; empty if none does.
template <class List, class Condition, class Text>
std::string text_of_one(const List& list, Condition condition, Text text) {
    const auto found = std::find_if(list.begin(), list.end(), condition);
    return found == list.end() ? std::string() : text(*found);
}

template <class Text>
std::string text_of_object(const zktarn_standin_live_object& wanted, Text text) {
    return text_of_one(
        standin::live_objects(),
        [&](const standin::live_object& each) {
            return each.number == wanted.number &&
                   static_cast<int>(each.made_by) == static_cast<int>(wanted.made_by);
        },
        text);
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

// Blocks and objects that have not been released

size_t zktarn_standin_block_origin(const zktarn_standin_block* block, char* buffer,
                                   size_t capacity) {
    return text_into(buffer, capacity, [block] {
        return text_of_one(
            standin::live_blocks(),
            [block](const standin::block& each) { return each.address == block->address; },
            [](const standin::block& each) { return lines_of(each.origin); });
    });
}

size_t zktarn_standin_live_objects(zktarn_standin_live_object* objects, size_t capacity) {
    return list_into(objects, capacity, standin::live_objects,
                     [](const standin::live_object& each) {
                         return zktarn_standin_live_object{
                             static_cast<zktarn_standin_operation>(each.made_by), each.number};
                     });
}

size_t zktarn_standin_object_description(const zktarn_standin_live_object* object, char* buffer,
                                         size_t capacity) {
    return text_into(buffer, capacity, [object] {
        return text_of_object(*object,
                              [](const standin::live_object& each) { return each.description; });
    });
}

size_t zktarn_standin_object_origin(const zktarn_standin_live_object* object, char* buffer,
                                    size_t capacity) {
    return text_into(buffer, capacity, [object] {
        return text_of_object(
            *object, [](const standin::live_object& each) { return lines_of(each.origin); });
    });
}

size_t zktarn_standin_report(char* buffer, size_t capacity) {
    return text_into(buffer, capacity, standin::report);
}

bool zktarn_standin_report_at_exit(bool on) {
    return standin::report_at_exit(on);
}

size_t zktarn_standin_call_stack(char* buffer, size_t capacity) {
    return text_into(buffer, capacity, [] { return lines_of(standin::call_stack::current()); });
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
