#!/usr/bin/env bash
# Runs on a bare Debian, in a folder with packages/ and examples/: installs the packages, builds and runs
# programs with them, removes the packages, and compares the files of the system before and after.
set -euo pipefail

fail() { echo "inside.sh: $*" >&2 && exit 1; }
# Otherwise Python and gdb would write compiled files beside the sources of other packages.
export DEBIAN_FRONTEND=noninteractive PYTHONDONTWRITEBYTECODE=1
install() { apt-get install -q -y --no-install-recommends "$@" >install.log 2>&1 || { cat install.log && fail "cannot install $*"; }; }
packages=(libzktarn-util1 libzktarn-util-c1 libzktarn-util-dev libzktarn-util-fortran-dev zktarn-standin python3-zktarn)
file() { echo ./packages/"$1"_*.deb; }

# Lists the files of the system, without the state of dpkg, apt and the loader, logs and caches, which may
# differ after a removal.
files() {
    find / -xdev \( -path /proc -o -path /dev -o -path /sys -o -path /root -o -path /tmp -o -path /var/log \
        -o -path /var/cache -o -path /var/lib/dpkg -o -path /var/lib/apt \) -prune -o -print | sort
}
all_removed() {
    dpkg --purge "${packages[@]}" >/dev/null 2>&1 || fail "the packages cannot be purged"
    files >after
    diff before after || fail "purging left files behind or removed files of other packages"
    ! dpkg-query -W -f '${Package} ${Status}\n' '*zktarn*' 2>/dev/null | grep -v 'not-installed$' ||
        fail "dpkg still lists a package"
    ! ldconfig -p | grep zktarn || fail "the loader's cache still has a library"
}

# runs TEXT PROGRAM...: fails unless the program ends with status 0 and prints that text.
runs() {
    local output
    output=$("${@:2}") || fail "${*:2} ended with status $?: $output"
    [[ $output == *"$1"* ]] || fail "${*:2} does not print '$1', but: $output"
    printf 'runs: %s\n' "${*:2}"
}

apt-get update -q >/dev/null

# The libraries and the stand-in, with their dependencies only.
files >before
# shellcheck disable=SC2046 # a file a word
install $(file libzktarn-util1) $(file libzktarn-util-c1) $(file zktarn-standin)
# Without -q, grep reads everything, so that ldconfig can always write its whole output.
ldconfig -p | grep 'libzktarn_util[.]so[.]1 ' >/dev/null || fail "the loader does not find libzktarn_util.so.1"
ldconfig -p | grep 'libzktarn_util_c[.]so[.]1 ' >/dev/null || fail "the loader does not find libzktarn_util_c.so.1"
! ldconfig -p | grep 'libqv[.]so' || fail "the stand-in is in the loader's own folders, before any host"
! ldd -r /usr/lib/*/libzktarn_util{,_c}.so.1 | grep -E 'not found|undefined' || fail "a library has an unresolved symbol or dependency"
runs ", 0 failed" zktarn_host_conformance
all_removed

install g++ gfortran cmake ninja-build pkg-config gdb
# The other dependencies of the Python package are installed before the files are listed, because they stay
# when it is removed.
needed=$(dpkg-deb -f "$(file python3-zktarn)" Depends | tr ',' '\n' | grep -v zktarn | paste -sd ,)
apt-get satisfy -q -y --no-install-recommends "$needed" >install.log 2>&1 || { cat install.log && fail "cannot install $needed"; }
files >before
# shellcheck disable=SC2046
install $(printf '%s\n' "${packages[@]}" | while read -r name; do file "$name"; done)
dpkg --verify "${packages[@]}" | grep . && fail "files differ from what the packages list"

mkdir programs
c=(gcc -std=c11 -Wall -Wextra -Wpedantic -Werror)
cxx=(g++ -std=c++20 -Wall -Wextra -Wpedantic -Werror)
flags() { pkg-config --cflags --libs "$@"; }
no_path() { ! flags "$@" | tr ' ' '\n' | grep -E '^-[IL]/usr/(include|lib/[^/]*)$|pkgconfig' || fail "$* names folders of the system"; }
no_path zktarn_util
no_path zktarn_util_c
# shellcheck disable=SC2046
{
    "${cxx[@]}" examples/minimal/minimal.cpp -o programs/minimal $(flags zktarn_util)
    "${cxx[@]}" examples/separator/separator.cpp -o programs/separator $(flags zktarn_util zktarn_standin)
    "${cxx[@]}" examples/minimal/minimal.cpp -o programs/minimal_static $(flags zktarn_util_static zktarn_standin)
    "${c[@]}" examples/c/vectors.c -o programs/vectors_c $(flags zktarn_util_c zktarn_standin_c) -lm
    gfortran -std=f2018 -Jprograms $(pkg-config --variable=sources zktarn_util_fortran) \
        examples/fortran/text.f90 examples/fortran/separator.f90 -o programs/separator_fortran \
        $(pkg-config --libs zktarn_util_fortran zktarn_standin_c)
}
runs "x2 is odd" programs/minimal
runs "efficacy 0." programs/separator
runs "x2 is odd" programs/minimal_static
! ldd programs/minimal_static | grep libzktarn_util || fail "the static library is not used"
runs "marks  coef ind elm" programs/vectors_c
runs "efficacy 0." programs/separator_fortran

for language in minimal c fortran; do
    { cmake -S examples/$language -B cmake/$language -G Ninja && cmake --build cmake/$language; } \
        >cmake.log 2>&1 || { cat cmake.log && fail "examples/$language does not build"; }
done
runs "x2 is odd" cmake/minimal/minimal
runs "efficacy 0." cmake/c/separator_c
runs "marks  coef ind elm" cmake/fortran/vectors_fortran
runs "zktarn" gdb -batch -ex 'break main' -ex run -ex 'info pretty-printer' cmake/minimal/minimal
runs ", 0 failed" python3 -m zktarn --conformance
runs "{2: 1.0}" python3 -c '
import zktarn, zktarn._zero_half
x = zktarn.Vector(9)
x.add_nz(2, 3.0)
x.add_nz(5, 4.0)
x.mod2(1e-9)
print(x.to_dict())'
all_removed
echo "inside.sh: installed, used and removed on Debian $(cat /etc/debian_version)"
