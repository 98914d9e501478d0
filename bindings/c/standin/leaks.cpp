/// Blocks and objects that have not been released, and the calls that made them, in C.

#include <algorithm>
#include <string>

#include "text.hpp"
#include "zktarn_standin.h"
#include "zktarn_standin/control.hpp"

namespace standin = zktarn::standin;
using zktarn::standin_c::lines_of;
using zktarn::standin_c::list_into;
using zktarn::standin_c::text_into;

namespace {

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
