// Defines the host's poll for interrupts in a library that does not own it.
extern "C" bool utIsInterruptPending() noexcept {
    return false;
}
