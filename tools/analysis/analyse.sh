#!/usr/bin/env bash
# Runs clang-tidy, cppcheck and GCC's analyser over the library and the stand-in, and clang-tidy and GCC's
# again over the code of a checked build. Fails at the first analyser that reports a finding or misses its
# planted defect.
set -euo pipefail

fail() { echo "analyse.sh: $*" >&2 && exit 1; }

if [ $# -ne 3 ] || ! [[ $2 =~ ^[1-9][0-9]*$ ]]; then
    fail "usage: analyse.sh BUILD_FOLDER JOBS CLANG_TIDY"
fi
build=$1
jobs=$2
tidy=$3
command -v "$tidy" >/dev/null || fail "$tidy is not installed"
[[ $build == /* ]] || build=$PWD/$build
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

planted=tools/analysis/planted.cpp
flags=(-std=c++20 -I src -I standin/include -I standin/src)
checked=-DZKTARN_CHECKED

# refuses WORD COMMAND...: the command must fail on the planted defect and print WORD.
refuses() {
    local word=$1 output
    shift
    if output=$("$@" 2>&1) || [[ $output != *"$word"* ]]; then
        fail "$1 does not find the planted $word"
    fi
}

# accepts COMMAND...: the command must report nothing, because the file has no defect without checks.
accepts() {
    "$@" >/dev/null 2>&1 || fail "$1 reports a defect that only a checked build has"
}

tidy_one() { "$tidy" --quiet "$@"; }

# tidy_them [OPTION...] < FILES
tidy_them() { xargs -P "$jobs" -n 1 "$tidy" --quiet -p "$build" "$@"; }

# The disabled checks of cppcheck, with reasons.
suppressions() {
    cat <<'END'
# optional_ref, function_ref and reply convert from values implicitly by design.
noExplicitConstructor
# A loop of two lines is as clear as an algorithm with a lambda.
useStlAlgorithm
# `name` is both a variable for a field's name and a function for an operation's name.
shadowFunction
# `attempt` catches what the lambda throws.
throwInNoexceptFunction:standin/src/libqv.cpp
# cppcheck mistakes an element of an array of texts for a character.
CastIntegerToAddressAtReturn:standin/src/call_counts.cpp
# C++20 defines the right shift of a negative number: it keeps the sign.
shiftTooManyBitsSigned:src/zktarn/util/detail/binary_gcd.hpp
# System headers are skipped, for speed.
missingIncludeSystem
unmatchedSuppression
END
}

cppcheck_them() {
    cppcheck --quiet --std=c++20 --language=c++ --library=posix --error-exitcode=1 \
        --enable=warning,style,performance,portability --inline-suppr \
        --suppressions-list=<(suppressions) \
        -j "$jobs" -I src -I standin/include "$@"
}

# GCC 12 analyses neither exceptions nor containers of C++, which the stand-in uses, so it analyses only the
# library. Its warning about shift counts confuses the elements of a SIMD vector with the whole vector.
analyzing=("${flags[@]}" -DZKTARN_BUILDING -O2 -fno-exceptions -fno-rtti -fanalyzer -Werror
    -Wno-analyzer-shift-count-overflow -c -o /dev/null)

# analyze_one FILE [OPTION...]
analyze_one() { "$analyzer" "${analyzing[@]}" "$@"; }

# analyze_them [OPTION...] < FILES
analyze_them() { xargs -P "$jobs" -n 1 "$analyzer" "${analyzing[@]}" "$@"; }

# On a Mac g++ is Clang, which has no -fanalyzer.
analyzer=
if g++ -fanalyzer -x c++ -fsyntax-only /dev/null 2>/dev/null; then
    analyzer=g++
fi
sources=(src/zktarn/*/*.cpp)
# Only the procedures of vectors, and the headers that they include, contain checks.
checking=(src/zktarn/vector/*.cpp)
all=("${sources[@]}" standin/src/*.cpp)

refuses bugprone-use-after-move tidy_one "$planted" -- "${flags[@]}" -DCLANG_TIDY
refuses arrayIndexOutOfBounds cppcheck_them -DCPPCHECK "$planted"
[ -z "$analyzer" ] || refuses use-after-free analyze_one "$planted" -DGCC_ANALYZER
# A defect inside a check exists in a checked build only.
refuses bugprone-integer-division tidy_one "$planted" -- "${flags[@]}" "$checked"
accepts tidy_one "$planted" -- "${flags[@]}"
if [ -n "$analyzer" ]; then
    refuses use-after-free analyze_one "$planted" "$checked"
    accepts analyze_one "$planted"
fi
echo "planted: each analyser finds its defect and the one inside a check"

cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null
printf '%s\n' "${all[@]}" | tidy_them
printf '%s\n' "${checking[@]}" | tidy_them --extra-arg="$checked"
checks=$("$tidy" --list-checks "${sources[0]}" -p "$build" | grep -c '^    ')
echo "clang-tidy: ${#all[@]} files, $checks checks, 0 findings"
echo "clang-tidy, checked build: ${#checking[@]} files of the library, $checks checks, 0 findings"

cppcheck_them src/zktarn standin/src
echo "cppcheck: ${#all[@]} files, 0 findings"

if [ -n "$analyzer" ]; then
    printf '%s\n' "${sources[@]}" | analyze_them
    printf '%s\n' "${checking[@]}" | analyze_them "$checked"
    echo "GCC -fanalyzer: ${#sources[@]} files of the library, 0 findings"
    echo "GCC -fanalyzer, checked build: ${#checking[@]} files of the library, 0 findings"
fi
