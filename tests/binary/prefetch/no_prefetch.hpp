// Simulates a compiler that deletes every prefetch.
#define __builtin_prefetch(address, ...) static_cast<void>(address)
