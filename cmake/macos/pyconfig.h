// What Python's headers ask of the machine, for 64-bit macOS. A Mac's Python has a pyconfig.h of
// its own; this one serves where the library for macOS is built with the headers of another system.

#pragma once

#define HAVE_LONG_LONG 1
#define HAVE_PROTOTYPES 1
#define HAVE_PTHREAD_H 1
#define HAVE_STDINT_H 1
#define HAVE_UINTPTR_T 1
#define PTHREAD_KEY_T_IS_COMPATIBLE_WITH_INT 1
#define SIZEOF_DOUBLE 8
#define SIZEOF_FLOAT 4
#define SIZEOF_INT 4
#define SIZEOF_LONG 8
#define SIZEOF_LONG_LONG 8
#define SIZEOF_OFF_T 8
#define SIZEOF_PID_T 4
#define SIZEOF_PTHREAD_T 8
#define SIZEOF_SHORT 2
#define SIZEOF_SIZE_T 8
#define SIZEOF_TIME_T 8
#define SIZEOF_UINTPTR_T 8
#define SIZEOF_VOID_P 8
#define SIZEOF_WCHAR_T 4
#define WITH_DOC_STRINGS 1
#define WITH_PYMALLOC 1
