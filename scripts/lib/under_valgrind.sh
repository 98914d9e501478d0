#!/usr/bin/env bash
# under_valgrind.sh PROGRAM: runs a GoogleTest program under valgrind and prints its output at the end, so
# that parallel runs do not mix their output.
#
# Skips death tests, because they end processes on purpose. Valgrind does not replace the program's own
# operator new.
status=0
output=$(ZKTARN_TEST_SCALE=0.01 valgrind --quiet --leak-check=full --error-exitcode=99 \
    --errors-for-leak-kinds=definite --child-silent-after-fork=yes \
    --soname-synonyms=somalloc=nouserintercepts \
    "$1" --gtest_brief=1 --gtest_filter='-*Death*:*DeathTest*' 2>&1) || status=$?
printf '== %s\n%s\n' "$1" "$output"
exit "$status"
