#!/usr/bin/env bash
# under_valgrind.sh PROGRAM: runs a GoogleTest program under valgrind, and prints its output in one
# piece, so that the output of parallel runs is not mixed.
#
# Death tests are left out, because they end processes on purpose. An operator new of the program is
# not replaced.
status=0
output=$(ZKTARN_TEST_SCALE=0.01 valgrind --quiet --leak-check=full --error-exitcode=99 \
    --errors-for-leak-kinds=definite --child-silent-after-fork=yes \
    --soname-synonyms=somalloc=nouserintercepts \
    "$1" --gtest_brief=1 --gtest_filter='-*Death*:*DeathTest*' 2>&1) || status=$?
printf '== %s\n%s\n' "$1" "$output"
exit "$status"
