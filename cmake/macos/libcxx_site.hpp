#pragma once

// How libc++ was configured on macOS. Apple's headers bring this along as <__config_site>; the
// headers used on Linux leave it to whoever uses them, and are made to see it before anything else.

#define _LIBCPP_ABI_VERSION 1
#define _LIBCPP_ABI_NAMESPACE __1
#define _LIBCPP_HAS_FILESYSTEM 1
#define _LIBCPP_HAS_LOCALIZATION 1
#define _LIBCPP_HAS_MONOTONIC_CLOCK 1
#define _LIBCPP_HAS_MUSL_LIBC 0
#define _LIBCPP_HAS_NO_STD_MODULES
#define _LIBCPP_HAS_RANDOM_DEVICE 1
#define _LIBCPP_HAS_TERMINAL 1
#define _LIBCPP_HAS_THREADS 1
#define _LIBCPP_HAS_UNICODE 1
#define _LIBCPP_HAS_WIDE_CHARACTERS 1
#define _LIBCPP_HARDENING_MODE _LIBCPP_HARDENING_MODE_NONE
#define _LIBCPP_PSTL_BACKEND_SERIAL

// What the libc++ of the oldest macOS does not have is not to be used.
#define _LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS 1
