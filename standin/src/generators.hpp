#pragma once

#include <cstdint>
#include <vector>

#include "zktarn_standin/leaks.hpp"

namespace zktarn::standin {

// Each throws a fault for an address that is not a live generator or snapshot.

void* make_generator(std::int32_t seed);
void draw(void* generator, double* values, std::int64_t count);
void delete_generator(void* generator);
void* save_state(void* generator);
void restore_state(void* generator, void* state);
void delete_state(void* state);

void list_generators(std::vector<live_object>& objects);

} // namespace zktarn::standin
