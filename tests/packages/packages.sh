#!/usr/bin/env bash
# Makes the source tarball, builds Debian packages from it, and tests them on a bare Debian 12.
set -euo pipefail

usage="Usage: packages.sh [--packages-only] FOLDER [BASE_FOLDER]
Makes the source tarball of this checkout, uncommitted changes included. Fills in the recipes for Homebrew and
vcpkg for it and checks them. Builds the Debian packages from the tarball without git and checks them with
lintian. Installs them on a bare Debian 12 in FOLDER/root, builds and runs programs in C++, C, Fortran and
Python with them, removes them, and fails if a file is left behind.
BASE_FOLDER keeps the base system between runs; default: FOLDER.

  --packages-only  stops before the bare Debian, which needs root

Exit status: 0 every check passed, 1 a check failed, 77 this machine cannot make a bare Debian."

packages_only=false
fail() { echo "packages.sh: $*" >&2 && exit 1; }
while [[ ${1-} == -* ]]; do
    case $1 in
    --packages-only) packages_only=true ;;
    -h | --help) echo "$usage" && exit 0 ;;
    *) fail "unknown option '$1'; see packages.sh --help" ;;
    esac
    shift
done
[ $# -ge 1 ] || fail "name the folder to work in; see packages.sh --help"
mkdir -p "$1" "${2-$1}" || fail "cannot make the folder $1"
folder=$(cd "$1" && pwd)
# shellcheck disable=SC2034 # for debian.sh
work=$(cd "${2-$1}" && pwd)
checkout=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
here=$checkout/tests/packages
root=$folder/root

# shellcheck source=tests/fresh/debian.sh
source "$checkout/tests/fresh/debian.sh"
$packages_only || machine_can
trap 'remove "$root"' EXIT
trap 'exit 1' INT TERM HUP

start=$SECONDS
step() { printf '\n== %s (after %d s)\n' "$*" $((SECONDS - start)); }

step "source tarball"
remove "$folder/source"
mkdir -p "$folder/source"
tarball=$("$checkout/packaging/source.sh" "$folder")
tar -C "$folder/source" --strip-components=1 -xf "$tarball"
[ ! -e "$folder/source/.git" ] || fail "the source tarball contains .git"
cd "$folder/source"
build=$folder/source/build/packages

step "recipes for Homebrew and vcpkg"
"$here/recipes.sh" "$tarball" "$folder/recipes_checked"

step "packages from the tarball"
# No git is found from here on, and no checkout around the unpacked source.
export GIT_DIR=/nonexistent
# A compile cache, if there is one, sees paths relative to this folder.
export CCACHE_BASEDIR=$folder/source
cmake --preset packages
cmake --build --preset packages --parallel "$(nproc)"
(cd "$build" && cpack -G DEB)
unset GIT_DIR

step "lintian"
lintian --allow-root --display-info --fail-on error,warning,info "$build"/packages/*.deb
echo "lintian: no finding"
! $packages_only || exit 0

step "a bare Debian 12"
unpack "$root"
mkdir -p "$root/root/packages"
cp "$build"/packages/*.deb "$root/root/packages/"
cp -r "$folder/source/examples" "$here/inside.sh" "$root/root/"
inside "$root" /root ./inside.sh
step "done"
