// The address sanitizer ends a process that asks for more than there can be, and keeps addresses
// from being handed out again. These tests are about exactly that.

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZKTARN_ADDRESS_SANITIZER
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#define ZKTARN_ADDRESS_SANITIZER
#endif

#ifdef ZKTARN_ADDRESS_SANITIZER
extern "C" const char* __asan_default_options();

const char* __asan_default_options() {
    return "allocator_may_return_null=1:quarantine_size_mb=0:thread_local_quarantine_size_kb=0";
}
#endif
