#!/usr/bin/env bash
# on_arm64.sh PROGRAM [ARGUMENT...]: runs a program for 64-bit Arm Linux on an emulator.
#
# A death test may restart its own program, which this kernel cannot run directly. So the program's argv[0]
# is this script, which then runs the same program again.
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

# The emulator supports fork, but not every form of clone.
GTEST_DEATH_TEST_USE_FORK=1
export GTEST_DEATH_TEST_USE_FORK
# No core file for a process that a signal ends.
ulimit -c 0
exec qemu-aarch64 -L /usr/aarch64-linux-gnu -0 "$0" "$ON_ARM64_PROGRAM" "$@"
