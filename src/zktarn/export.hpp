#pragma once

/// Attributes of exported procedures. All other symbols of the shared library are hidden.

/// An exported procedure.
#define ZKTARN_API [[gnu::visibility("default")]]

#ifdef ZKTARN_BUILDING
#define ZKTARN_API_INLINE [[gnu::visibility("default"), gnu::used]] inline
#else
/// An exported procedure whose body is in the header: callers inline it, and the library emits it
/// as a symbol too.
#define ZKTARN_API_INLINE [[gnu::visibility("default")]] inline
#endif
