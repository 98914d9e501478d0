/// The log of host calls, and scripts that answer them, in C.

#include "zktarn_standin/call_log.hpp"

#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "text.hpp"
#include "zktarn_standin.h"
#include "zktarn_standin/call_stack.hpp"

namespace standin = zktarn::standin;

namespace {

// The C types are never complete: an address of one is the address of its C++ counterpart.

const standin::host_call& cpp(const zktarn_standin_call* call) noexcept {
    return *reinterpret_cast<const standin::host_call*>(call);
}

standin::answer& cpp(zktarn_standin_answer* answer) noexcept {
    return *reinterpret_cast<standin::answer*>(answer);
}

template <class Element>
const Element* elements_of(const std::vector<Element>& elements, std::size_t* count) noexcept {
    *count = elements.size();
    return elements.data();
}

} // namespace

bool zktarn_standin_log_calls(bool on) {
    return standin::log_calls(on);
}

size_t zktarn_standin_logged_call_count() {
    try {
        return standin::logged_calls().size();
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

zktarn_standin_call* zktarn_standin_logged_call(size_t number) {
    try {
        const std::vector<standin::host_call> calls = standin::logged_calls();
        if (number < 1 || number > calls.size()) {
            return nullptr;
        }
        return reinterpret_cast<zktarn_standin_call*>(new standin::host_call(calls[number - 1]));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void zktarn_standin_free_call(zktarn_standin_call* call) {
    delete reinterpret_cast<standin::host_call*>(call);
}

void zktarn_standin_clear_call_log() {
    standin::clear_call_log();
}

zktarn_standin_operation zktarn_standin_call_operation(const zktarn_standin_call* call) {
    return static_cast<zktarn_standin_operation>(cpp(call).what);
}

const int64_t* zktarn_standin_call_integers(const zktarn_standin_call* call, size_t* count) {
    return elements_of(cpp(call).integers, count);
}

const double* zktarn_standin_call_reals(const zktarn_standin_call* call, size_t* count) {
    return elements_of(cpp(call).reals, count);
}

const void* const* zktarn_standin_call_addresses(const zktarn_standin_call* call, size_t* count) {
    return elements_of(cpp(call).addresses, count);
}

size_t zktarn_standin_call_text_count(const zktarn_standin_call* call) {
    return cpp(call).texts.size();
}

const char* zktarn_standin_call_characters(const zktarn_standin_call* call, size_t number,
                                           size_t* length) {
    const std::vector<std::string>& texts = cpp(call).texts;
    const bool known = number >= 1 && number <= texts.size();
    *length = known ? texts[number - 1].size() : 0;
    return known ? texts[number - 1].data() : nullptr;
}

int64_t zktarn_standin_call_result(const zktarn_standin_call* call) {
    return cpp(call).result.number;
}

void* zktarn_standin_call_result_address(const zktarn_standin_call* call) {
    return cpp(call).result.address;
}

size_t zktarn_standin_call_in_words(const zktarn_standin_call* call, char* buffer,
                                    size_t capacity) {
    return zktarn::standin_c::text_into(buffer, capacity,
                                        [call] { return standin::text_of(cpp(call)); });
}

void zktarn_standin_answer_number(zktarn_standin_answer* answer, int64_t number) {
    cpp(answer).number = number;
}

void zktarn_standin_answer_address(zktarn_standin_answer* answer, void* address) {
    cpp(answer).address = address;
}

void zktarn_standin_answer_reals(zktarn_standin_answer* answer, const double* values, size_t n) {
    try {
        cpp(answer).reals.assign(values, values + n);
    } catch (const std::bad_alloc&) {
        cpp(answer).reals.clear();
    }
}

void zktarn_standin_answer_handles(zktarn_standin_answer* answer, const int64_t* handles,
                                   size_t n) {
    try {
        cpp(answer).handles.assign(handles, handles + n);
    } catch (const std::bad_alloc&) {
        cpp(answer).handles.clear();
    }
}

bool zktarn_standin_answer_calls(zktarn_standin_operation operation, zktarn_standin_script script,
                                 void* context) {
    standin::call_script called;
    if (script != nullptr) {
        called = [script, context](const standin::host_call& call) {
            std::optional<standin::answer> answer(std::in_place);
            if (!script(reinterpret_cast<const zktarn_standin_call*>(&call),
                        reinterpret_cast<zktarn_standin_answer*>(&*answer), context)) {
                answer.reset();
            }
            return answer;
        };
    }
    return static_cast<bool>(
        standin::answer_calls(static_cast<standin::operation>(operation), std::move(called)));
}

bool zktarn_standin_record_origins(bool on) {
    return standin::record_origins(on);
}
