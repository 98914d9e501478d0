#!/usr/bin/env bash
# Runs the static analysers over the library and the stand-in: clang-tidy, cppcheck, and GCC's own;
# clang-tidy and GCC's once more over the library as a checked build has it.
# Fails at the first one that finds something, or that misses what is planted for it.
set -euo pipefail

# shellcheck source=scripts/lib/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

if [ $# -ne 2 ] || ! [[ $1 =~ ^[1-9][0-9]*$ ]]; then
    fail "usage: analysis.sh JOBS CLANG_TIDY"
fi
jobs=$1
tidy=$2
command -v "$tidy" >/dev/null || fail "there is no $tidy"
cd "$root"

build=build/analysis
broken=tools/analysis/broken
flags=(-std=c++20 -I src -I standin/include -I standin/src)
checked=-DZKTARN_CHECKED

# refuses WORD COMMAND...: the command fails on what is planted for it, and names it.
refuses() {
    local word=$1 said
    shift
    if said=$("$@" 2>&1) || [[ $said != *"$word"* ]]; then
        fail "$1 does not find $word in what is planted for it"
    fi
}

# accepts COMMAND...: the command finds nothing in what is sound without checks.
accepts() {
    "$@" >/dev/null 2>&1 || fail "$1 finds something where it is planted for a checked build alone"
}

tidy_one() { "$tidy" --quiet "$@"; }

# tidy_them [OPTION...] < FILES
tidy_them() { xargs -P "$jobs" -n 1 "$tidy" --quiet -p "$build" "$@"; }

cppcheck_them() {
    cppcheck --quiet --std=c++20 --language=c++ --library=posix --error-exitcode=1 \
        --enable=warning,style,performance,portability --inline-suppr \
        --suppressions-list=tools/analysis/cppcheck.suppressions \
        -j "$jobs" -I src -I standin/include "$@"
}

# In C++, GCC 12 follows neither exceptions nor containers, so the stand-in, which has both, is left
# to the others. Nor does it know the width of an element where a vector of them is shifted.
analyzing=("${flags[@]}" -DZKTARN_BUILDING -O2 -fno-exceptions -fno-rtti -fanalyzer -Werror
    -Wno-analyzer-shift-count-overflow -c -o /dev/null)

# analyze_one FILE [OPTION...]
analyze_one() { "$analyzer" "${analyzing[@]}" "$@"; }

# analyze_them [OPTION...] < FILES
analyze_them() { xargs -P "$jobs" -n 1 "$analyzer" "${analyzing[@]}" "$@"; }

# On a Mac g++ is another name of Clang, which has no such option.
analyzer=
if g++ -fanalyzer -x c++ -fsyntax-only /dev/null 2>/dev/null; then
    analyzer=g++
fi
sources=(src/zktarn/*/*.cpp)
# Checks are in the procedures of vectors, and in what these include.
checking=(src/zktarn/vector/*.cpp)
all=("${sources[@]}" standin/src/*.cpp)

refuses bugprone-use-after-move tidy_one "$broken/tidy.cpp" -- "${flags[@]}"
refuses arrayIndexOutOfBounds cppcheck_them "$broken/cppcheck.cpp"
[ -z "$analyzer" ] || refuses use-after-free analyze_one "$broken/analyzer.cpp"
# What is planted in checks is there in a checked build, and only there.
refuses bugprone-integer-division tidy_one "$broken/checked.cpp" -- "${flags[@]}" "$checked"
accepts tidy_one "$broken/checked.cpp" -- "${flags[@]}"
if [ -n "$analyzer" ]; then
    refuses use-after-free analyze_one "$broken/checked.cpp" "$checked"
    accepts analyze_one "$broken/checked.cpp"
fi
echo "planted: each analyser finds its own, and what is in checks"

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
