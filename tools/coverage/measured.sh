#!/bin/sh
# Runs the compiler that it is given, and takes a boolean expression of the library that is left out
# of MC/DC for an error. Clang only warns of those, and no option makes that warning an error.
said=$("$@" 2>&1)
status=$?
[ -z "$said" ] || printf '%s\n' "$said" >&2
if printf '%s\n' "$said" | grep -q 'src/zktarn/.*unsupported MC/DC boolean expression'; then
    exit 1
fi
exit "$status"
