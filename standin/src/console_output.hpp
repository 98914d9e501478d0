#pragma once

#include <string_view>

namespace zktarn::standin {

void write_to_console(std::string_view text);
void flush_console();

} // namespace zktarn::standin
