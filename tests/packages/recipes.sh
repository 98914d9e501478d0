#!/usr/bin/env bash
# recipes.sh TARBALL FOLDER [--build]: fills in the recipes for Homebrew and vcpkg for that source tarball
# in FOLDER, and checks them as far as that is possible without Homebrew and vcpkg. With --build they
# also build and install the library.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tarball=$(realpath "$1") folder=$2
mkdir -p "$folder/port"
folder=$(realpath "$folder")
"$here/../../packaging/recipes.sh" "$tarball" https://example.org/project/releases/download/v0 "$folder"
tar -C "$folder/port" --strip-components=1 -xf "$folder/zktarn-util.vcpkg.tar.gz"

ruby -c "$folder/zktarn-util.rb" >/dev/null
build=() prefix=()
if [ "${3-}" = --build ]; then
    rm -rf "$folder/source" "$folder/work"
    mkdir -p "$folder/source" "$folder/work"
    tar -C "$folder/source" --strip-components=1 -xf "$tarball"
    build=("-DWORK=$folder/work") prefix=("$folder/prefix")
    cd "$folder/source"
fi
ruby "$here/formula.rb" "$folder/zktarn-util.rb" "$tarball" ${prefix[@]+"${prefix[@]}"}
python3 -m json.tool "$folder/port/vcpkg.json" >/dev/null
TMPDIR=$folder cmake "-DPORT=$folder/port" "-DTARBALL=$tarball" ${build[@]+"${build[@]}"} -P "$here/port.cmake"
