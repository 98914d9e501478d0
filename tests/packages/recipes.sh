#!/usr/bin/env bash
# recipes.sh TARBALL FOLDER [--build]: fills in the Homebrew and vcpkg recipes of a source tarball in FOLDER,
# and checks them without Homebrew and vcpkg. With --build it also builds and installs the library by them.
set -euo pipefail

if [ $# -lt 2 ] || [ ! -f "$1" ]; then
    echo "recipes.sh: usage: recipes.sh TARBALL FOLDER [--build]" >&2
    exit 2
fi
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
