#pragma once

#include <cstdint>

namespace zktarn::standin {

// Each throws a fault for an address that is no live generator or snapshot.

void* make_generator(std::int32_t seed);
void draw(void* generator, double* values, std::int64_t count);
void delete_generator(void* generator);
void* save_state(void* generator);
void restore_state(void* generator, void* state);
void delete_state(void* state);

} // namespace zktarn::standin
