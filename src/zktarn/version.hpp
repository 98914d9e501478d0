#pragma once

/// The version of the library, for the preprocessor; valid in C and in every C++.
///
///     #if ZKTARN_VERSION_MAJOR == 0 && ZKTARN_VERSION_MINOR < 2
///
/// It follows Semantic Versioning: before 1.0 a minor release may break its callers. This file is
/// the only place that states the version; the build reads it from here.

/// The three numbers of the version.
#define ZKTARN_VERSION_MAJOR 0
#define ZKTARN_VERSION_MINOR 1
#define ZKTARN_VERSION_PATCH 0

/// The same as text, "major.minor.patch".
#define ZKTARN_VERSION_STRING                                                                      \
    ZKTARN_DOTTED(ZKTARN_VERSION_MAJOR, ZKTARN_VERSION_MINOR, ZKTARN_VERSION_PATCH)
/// Parts of ZKTARN_VERSION_STRING, of no other use.
#define ZKTARN_DOTTED(major, minor, patch) ZKTARN_DOTTED_TEXT(major, minor, patch)
#define ZKTARN_DOTTED_TEXT(major, minor, patch) #major "." #minor "." #patch
