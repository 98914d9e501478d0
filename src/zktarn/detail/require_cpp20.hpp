#pragma once

/// Stops an older language with one sentence instead of the errors that would follow. No part of the
/// interface.

#if __cplusplus <= 201703L
#error "zktarn needs C++20: compile with -std=c++20 or later"
#endif
