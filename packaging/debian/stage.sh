#!/usr/bin/env bash
# stage.sh CMAKE BUILD STAGE VERSION RELEASE PACKAGE...: installs BUILD into STAGE, moves each file into
# STAGE/debian/PACKAGE by the list `files`, adds the files that Debian requires in every package, and writes the
# dependencies of its binaries into STAGE/debian/PACKAGE.depends. A file that the list does not name is
# an error, and so is a pattern that matches no file.
set -euo pipefail
shopt -s nullglob

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cmake=$1 build=$2 stage=$3 version=$4 release=$5
shift 5
packages=("$@")
fail() { echo "stage.sh: $*" >&2 && exit 1; }

for tool in dpkg-gensymbols dpkg-parsechangelog dpkg-shlibdeps gzip strip; do
    command -v "$tool" >/dev/null || fail "making Debian packages needs $tool, of the packages dpkg-dev and binutils"
done
newest=$(dpkg-parsechangelog -l "$here/changelog" -S Version)
[ "$newest" = "$version-$release" ] ||
    fail "packaging/debian/changelog begins with $newest, and this is $version-$release"

umask 022
rm -rf "$stage"
mkdir -p "$stage/debian"
everything=$stage/everything
DESTDIR=$everything "$cmake" --install "$build" >/dev/null
# The library in Python's package is that of libzktarn-util1, next to the libraries of the Python host.
python=$everything/usr/lib/python3/dist-packages/zktarn
rm "$python/LICENSE"
ln -sf "../../../../$(dpkg-architecture -qDEB_HOST_MULTIARCH)/libzktarn_util.so.1" "$python/_lib/libzktarn_util.so.1"
find "$everything/usr" -type f \( -name '*.so*' -o -path '*/bin/*' \) ! -name '*.py' \
    -exec strip --strip-unneeded --remove-section=.comment --remove-section=.note {} +
find "$everything/usr" -name '*.a' -exec strip --strip-debug --remove-section=.comment \
    --remove-section=.note --enable-deterministic-archives {} +

# The license and the changelog are in every package, under the names that Debian gives them.
doc=$everything/usr/share/doc/libzktarn-util-dev
rm "$doc/LICENSE"
mkdir "$doc/debugger"
mv "$everything/usr/share/zktarn_util/debugger/README.md" "$doc/debugger/"
# The loader and the compiler search the system's folders without a run path or an option.
find "$everything" -name '*.pc' -exec sed -i 's|^prefix=.*|prefix=/usr|' {} +
find "$everything" -name 'zktarn_util*.pc' -exec sed -i 's| -Wl,-rpath,[$]{libdir}$||' {} +

# sort_files PACKAGE: moves the installed files that the list names for it into its tree.
sort_files() {
    local package=$1 owner pattern path
    while read -r owner pattern; do
        [ "$owner" = "$package:" ] || continue
        # shellcheck disable=SC2206 # the pattern is expanded on purpose
        local found=("$everything"/$pattern)
        # The target of a link may already be in another package.
        [ -e "${found[0]-}" ] || [ -L "${found[0]-}" ] || fail "files: $pattern matches no installed file"
        for path in "${found[@]}"; do
            local target=$stage/debian/$package/${path#"$everything"/}
            mkdir -p "$(dirname "$target")"
            mv "$path" "$target"
        done
    done <"$here/files"
}

# add_documents PACKAGE: copyright, changelogs, overrides and manual pages.
add_documents() {
    local package=$1 tree=$stage/debian/$1 doc=$stage/debian/$1/usr/share/doc/$1 page
    mkdir -p "$doc"
    cp "$here/copyright" "$doc/"
    gzip -9nc "$here/changelog" >"$doc/changelog.Debian.gz"
    gzip -9nc "$here/../../CHANGELOG.md" >"$doc/changelog.gz"
    mkdir -p "$tree/usr/share/lintian/overrides"
    sed -n "s/^ALL:/$package:/; /^$package:/p" "$here/lintian-overrides" >"$tree/usr/share/lintian/overrides/$package"
    for page in "$tree"/usr/bin/*; do
        mkdir -p "$tree/usr/share/man/man1"
        gzip -9nc "$here/$(basename "$page").1" >"$tree/usr/share/man/man1/$(basename "$page").1.gz"
    done
    find "$tree/usr" -type f -exec chmod 644 {} +
    [ ! -d "$tree/usr/bin" ] || chmod 755 "$tree"/usr/bin/*
}

# add_scripts PACKAGE: adds the scripts that run when the package is installed or removed.
add_scripts() {
    local script
    for script in postinst prerm; do
        [ -e "$here/$1.$script" ] || continue
        install -D -m 755 "$here/$1.$script" "$stage/debian/$1/DEBIAN/$script"
    done
}

# describe_library PACKAGE: writes the dependency of packages that link its library.
describe_library() {
    local package=$1 control=$stage/debian/$1/DEBIAN name
    [ -e "$here/$package.symbols" ] || return 0
    mkdir -p "$control"
    echo "activate-noawait ldconfig" >"$control/triggers"
    name=$(sed -n '1s/ .*//p' "$here/$package.symbols") # libzktarn_util.so.1
    echo "${name%.so.*} ${name##*.so.} $package (>= $version)" >"$control/shlibs"
    # A name that was added, removed or changed differs from the list, and that is an error.
    (cd "$stage" && dpkg-gensymbols -c4 -q -p"$package" -v"$version-$release" -P"debian/$package" \
        -I"$here/$package.symbols" -O"$control/symbols") ||
        fail "the exported names differ from packaging/debian/$package.symbols"
    find "$control" -type f -exec chmod 644 {} +
}

# add_python_versions PACKAGE: depends on the versions of Python and NumPy that its modules were built for.
add_python_versions() {
    local minor numpy
    minor=$(find "$stage/debian/$1/usr" -name '*.cpython-3*.so' -print -quit | sed 's/.*[.]cpython-3\([0-9]*\)-.*/\1/')
    [ -n "$minor" ] || return 0
    numpy=$(dpkg-query -W -f '${Provides}' python3-numpy | grep -o 'python3-numpy-abi[0-9]*')
    sed -i "s/\$/, python3 (>= 3.$minor~), python3 (<< 3.$((minor + 1))~), $numpy/" "$stage/debian/$1.depends"
}

# find_dependencies PACKAGE: finds the dependencies of its programs and libraries. The host's libraries are
# none of them, because the host is chosen at run time.
find_dependencies() {
    local package=$1 binaries=()
    while read -r path; do binaries+=("$path"); done < <(cd "$stage" && find "debian/$package/usr" -type f \
        -exec sh -c 'head -c 4 "$1" | grep -q ELF && readelf -d "$1" | grep -q NEEDED' - {} \; -print)
    : >"$stage/debian/$package.depends"
    [ ${#binaries[@]} -gt 0 ] || return 0
    (cd "$stage" && dpkg-shlibdeps -O --ignore-missing-info \
        -l"debian/python3-zktarn/usr/lib/python3/dist-packages/zktarn/_lib" \
        -l"debian/zktarn-standin/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)/zktarn_standin" \
        "${binaries[@]}" 2>"debian/$package.shlibdeps") | sed 's/^shlibs:Depends=//' >"$stage/debian/$package.depends" ||
        { cat "$stage/debian/$package.shlibdeps" >&2 && fail "dpkg-shlibdeps failed for $package"; }
}

{
    echo "Source: zktarn-util"
    printf '\nPackage: %s\nArchitecture: any\n' "${packages[@]}"
} >"$stage/debian/control"
for package in "${packages[@]}"; do
    sort_files "$package"
    add_documents "$package"
    describe_library "$package"
    add_scripts "$package"
done
find "$stage/debian" -depth -type d -empty -delete
left=$(cd "$everything" && find . ! -type d)
[ -z "$left" ] || fail "packaging/debian/files does not name these installed files: $left"
for package in "${packages[@]}"; do
    find_dependencies "$package"
    add_python_versions "$package"
done
