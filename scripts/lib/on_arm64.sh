#!/usr/bin/env bash
# on_arm64.sh PROGRAM [ARGUMENT...]: runs a program for 64-bit Arm Linux on an emulator.
#
# A death test may start its own program anew, which the kernel could not do. So the program is told
# that its name is that of this script, and a start without a program is one of the same program.
case ${1-} in
-* | '') ;;
*)
    ON_ARM64_PROGRAM=$1
    export ON_ARM64_PROGRAM
    shift
    ;;
esac
if [ -z "${ON_ARM64_PROGRAM-}" ]; then
    echo "on_arm64.sh: needs a program to run" >&2
    exit 2
fi

# The emulator knows fork, but not the ways of a clone.
GTEST_DEATH_TEST_USE_FORK=1
export GTEST_DEATH_TEST_USE_FORK
# Processes that are to be ended by a signal leave nothing behind.
ulimit -c 0
exec qemu-aarch64 -L /usr/aarch64-linux-gnu -0 "$0" "$ON_ARM64_PROGRAM" "$@"
