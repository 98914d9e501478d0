#!/usr/bin/env bash
# source.sh FOLDER: writes the source tarball zktarn_util-VERSION.tar.gz and its checksum,
# zktarn_util-VERSION.tar.gz.sha256, into FOLDER. The tarball has every tracked file, with uncommitted
# changes, and no untracked file. Without changes, a commit always gives the same bytes.
set -euo pipefail

fail() { echo "source.sh: $*" >&2 && exit 1; }
[ -d "${1-}" ] || fail "name the folder to write into"
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
into=$(cd "$1" && pwd)

# The checkout may belong to another user.
git() { command git -c safe.directory="$root" -c user.name=source -c user.email=source@localhost -C "$root" "$@"; }
part() { sed -n "s/^#define ZKTARN_VERSION_$1 \([0-9]*\)$/\1/p" "$root/src/zktarn/version.hpp"; }
name=zktarn_util-$(part MAJOR).$(part MINOR).$(part PATCH)

commit=$(git stash create)
git archive --format=tar --prefix="$name/" "${commit:-HEAD}" | gzip -9n >"$into/$name.tar.gz"
cd "$into"
if command -v sha256sum >/dev/null; then sha256sum "$name.tar.gz"; else shasum -a 256 "$name.tar.gz"; fi \
    >"$name.tar.gz.sha256"
echo "$into/$name.tar.gz"
