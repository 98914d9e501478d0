#!/usr/bin/env bash
# under_valgrind.sh PROGRAM: runs a GoogleTest program under valgrind, and prints what it said at once,
# so that the output of two that run at a time stays apart.
#
# Death tests end other processes on purpose; a program's own operator new is left to it.
status=0
said=$(ZKTARN_TEST_SCALE=0.01 valgrind --quiet --leak-check=full --error-exitcode=99 \
    --errors-for-leak-kinds=definite --child-silent-after-fork=yes \
    --soname-synonyms=somalloc=nouserintercepts \
    "$1" --gtest_brief=1 --gtest_filter='-*Death*:*DeathTest*' 2>&1) || status=$?
printf '== %s\n%s\n' "$1" "$said"
exit "$status"
