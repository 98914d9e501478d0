extern "C" bool utIsInterruptPending() noexcept;

bool broken() {
    return utIsInterruptPending();
}
