#pragma once

/// ZKTARN_API marks a procedure of the library's interface: visible outside the shared library,
/// whose other symbols are all hidden.
///
/// ZKTARN_API_INLINE marks one whose body is in the header. A caller's compiler inlines it; the
/// library, while it is built, emits it as well, so that every procedure exists as a symbol.

#define ZKTARN_API [[gnu::visibility("default")]]

#ifdef ZKTARN_BUILDING
#define ZKTARN_API_INLINE [[gnu::visibility("default"), gnu::used]] inline
#else
#define ZKTARN_API_INLINE [[gnu::visibility("default")]] inline
#endif
