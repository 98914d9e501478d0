// The host's interrupts, in a library that does not own them.
extern "C" bool utIsInterruptPending() noexcept {
    return false;
}
