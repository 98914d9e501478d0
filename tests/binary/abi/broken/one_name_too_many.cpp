namespace zktarn::memory_mod {
void mallocate_quickly() {}
} // namespace zktarn::memory_mod
