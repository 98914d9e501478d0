#pragma once

/// ZKTARN_API marks an exported procedure. All other symbols of the shared library are hidden.
///
/// ZKTARN_API_INLINE marks an exported procedure whose body is in the header: callers inline it,
/// and the library emits it as a symbol too.

#define ZKTARN_API [[gnu::visibility("default")]]

#ifdef ZKTARN_BUILDING
#define ZKTARN_API_INLINE [[gnu::visibility("default"), gnu::used]] inline
#else
#define ZKTARN_API_INLINE [[gnu::visibility("default")]] inline
#endif
