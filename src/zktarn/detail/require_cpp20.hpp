#pragma once

/// Stops the compilation in an older standard of C++ with one message, instead of the errors that
/// would follow. Not part of the interface.

#if __cplusplus <= 201703L
#error "zktarn needs C++20: compile with -std=c++20 or later"
#endif
