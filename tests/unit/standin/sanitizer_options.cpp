// By default the address sanitizer aborts on a request that is too large and delays the reuse of
// addresses. These tests need both: refused requests and reused addresses.

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
