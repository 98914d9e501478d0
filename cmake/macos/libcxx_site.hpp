#pragma once

// The configuration of libc++ on macOS, which Apple's headers contain as <__config_site>. The
// headers used on Linux lack it, so the toolchain includes this file first.

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

// Makes the compiler refuse functions that the libc++ of the oldest supported macOS lacks.
#define _LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS 1
