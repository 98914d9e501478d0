#!/usr/bin/env bash
# Builds the library with different compilers, options and targets, runs each build on different processors,
# and compares the results with the file of hashes, which none of them may change.
set -euo pipefail

if [ $# -ne 2 ] || ! [[ $2 =~ ^[1-9][0-9]*$ ]]; then
    echo "compare.sh: usage: compare.sh BUILD_FOLDER JOBS" >&2
    exit 1
fi
mkdir -p "$1"
builds=$(cd "$1" && pwd)
jobs=$2
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
golden=tests/binary/identity/results.golden

# build NAME PRESET [CMAKE_ARGUMENT...]: into the folder NAME
build() {
    cmake --preset "$2" -B "$builds/$1" "${@:3}"
    cmake --build "$builds/$1" --parallel "$jobs" --target identity
}

rows=()
unequal=0

# compare COMPILER PROCESSOR NAME [EMULATOR...]
compare() {
    local output status=0 verdict=equal
    output=$("${@:4}" "$builds/$3/tests/binary/identity/identity" "$golden") || status=$?
    echo "$output"
    if [ "$status" -ne 0 ]; then
        unequal=$((unequal + 1))
        verdict=$(sed -n 's/^different: \([^:]*\):.*/\1/p' <<<"$output" | paste -sd ' ' -)
        verdict="different: ${verdict:-all, status $status}"
    fi
    rows+=("$(printf '%-30s  %-34s  %s' "$1" "$2" "$verdict")")
}

# fused PROGRAM...: runs it on this processor if it has FMA and AVX2, else on an emulated one.
fused() {
    if grep -qw avx2 /proc/cpuinfo && grep -qw fma /proc/cpuinfo; then
        "$@"
    else
        qemu-x86_64 -cpu max "$@"
    fi
}

on_x86_64() {
    build identity/gcc-O0 gcc -DCMAKE_BUILD_TYPE=Debug
    build gcc gcc
    build identity/gcc-v3 gcc -DCMAKE_CXX_FLAGS=-march=x86-64-v3
    build identity/clang-O0 clang -DCMAKE_BUILD_TYPE=Debug
    build clang clang
    local name compiler
    for name in identity/gcc-O0 gcc identity/clang-O0 clang; do
        compiler=$(basename "${name%-O0}")
        case $name in *-O0) compiler+=" -O0" ;; *) compiler+=" -O3" ;; esac
        compare "$compiler" "x86-64, fused multiply-add" "$name" fused
        compare "$compiler" "x86-64, neither" "$name" qemu-x86_64 -cpu Nehalem
    done
    # The faster variant needs AVX2 and FMA and must not be chosen on a processor with only one of them.
    compare "gcc -O3" "x86-64, AVX2 without FMA" gcc qemu-x86_64 -cpu max,-fma
    compare "gcc -O3" "x86-64, FMA without AVX2" gcc qemu-x86_64 -cpu max,-avx2
    compare "gcc -O3 -march=x86-64-v3" "x86-64, fused multiply-add" identity/gcc-v3 fused
}

on_arm64_linux() {
    local emulator=scripts/lib/on_arm64.sh
    build arm64-linux arm64-linux
    build identity/arm64-clang arm64-linux \
        -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_COMPILER_TARGET=aarch64-linux-gnu
    compare "gcc -O3" "64-bit Arm" arm64-linux "$emulator"
    compare "clang -O3" "64-bit Arm" identity/arm64-clang "$emulator"
}

on_this_machine() {
    build identity/clang-O0 clang -DCMAKE_BUILD_TYPE=Debug
    build clang clang
    compare "clang -O0" "$(uname -sm)" identity/clang-O0
    compare "clang -O3" "$(uname -sm)" clang
}

if [ "$(uname -sm)" = "Linux x86_64" ]; then
    on_x86_64
    on_arm64_linux
else
    on_this_machine
fi

printf '\n%-30s  %-34s  %s\n' build processor "results of the numeric procedures"
printf '%s\n' "${rows[@]}"
printf '\n%d builds and processors, %d different\n' "${#rows[@]}" "$unequal"
[ "$unequal" -eq 0 ]
