#!/usr/bin/env bash
# recipes.sh TARBALL ADDRESS FOLDER: fills in the recipes for Homebrew and vcpkg, for a source tarball that
# is published in the folder ADDRESS. Writes the formula zktarn-util.rb and the port zktarn-util.vcpkg.tar.gz
# into FOLDER.
set -euo pipefail

fail() { echo "recipes.sh: $*" >&2 && exit 1; }
[ $# -eq 3 ] || fail "usage: recipes.sh TARBALL ADDRESS FOLDER"
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tarball=$1 address=${2%/} folder=$3
file=$(basename "$tarball")
[ -r "$tarball" ] || fail "cannot read $tarball"
[[ $file =~ ^zktarn_util-([0-9]+[.][0-9]+[.][0-9]+)[.]tar[.]gz$ ]] || fail "$file is not a source tarball"
version=${BASH_REMATCH[1]}
[[ $address =~ ^https://[^[:space:]\"|]+$ ]] || fail "$address is not an address that begins with https://"

sum() { if command -v "sha${1}sum" >/dev/null; then "sha${1}sum" "$2"; else shasum -a "$1" "$2"; fi | cut -d ' ' -f 1; }
# The releases are in a folder of the project's own page.
homepage=${address%%/releases/*}
fill() {
    sed -e "s|@URL@|$address/$file|" -e "s|@FILE@|$file|" -e "s|@VERSION@|$version|" -e "s|@HOMEPAGE@|$homepage|" \
        -e "s|@SHA256@|$(sum 256 "$tarball")|" -e "s|@SHA512@|$(sum 512 "$tarball")|" "$1"
}

mkdir -p "$folder/zktarn-util"
fill "$here/homebrew/zktarn-util.rb.in" >"$folder/zktarn-util.rb"
for name in vcpkg.json portfile.cmake; do
    fill "$here/vcpkg/$name.in" >"$folder/zktarn-util/$name"
done
tar -C "$folder" -czf "$folder/zktarn-util.vcpkg.tar.gz" zktarn-util
rm -r "$folder/zktarn-util"
