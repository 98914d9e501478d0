# shellcheck shell=bash
# Shared by the scripts: paths of the project and of the build folder, the lock of the build folder, and the
# installation of packages. Uses no feature newer than bash 3.2, the version of macOS.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
command_line="$(basename "$0") $*"
build_dir=${ZKTARN_BUILD_DIR:-$root/build}
[[ $build_dir == /* ]] || build_dir=$PWD/$build_dir
log_dir=$build_dir/logs
packages=$root/scripts/lib/packages
export root build_dir log_dir
# Otherwise Python writes compiled files beside the sources.
export PYTHONPYCACHEPREFIX=$build_dir/pycache

# fail SENTENCE: prints it on standard error and ends the script with status 1.
fail() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

# short PATH: relative to the current folder if the path is inside of it.
short() {
    [[ $1 == "$PWD"/* ]] && echo "${1#"$PWD"/}" || echo "$1"
}

# Creates the build folder and locks it until the script ends. The lock is on an open file, so the
# system releases it in every case. perl takes the lock, because Debian and macOS have perl, but no
# common command for locks.
claim_build_dir() {
    { mkdir -p "$log_dir" && [ -w "$log_dir" ] && : >>"$build_dir/lock"; } 2>/dev/null ||
        fail "cannot write to $build_dir; set ZKTARN_BUILD_DIR to a folder where this user can write"
    exec 9>>"$build_dir/lock"
    perl -e 'use Fcntl ":flock"; open(my $file, ">&=", 9) or exit 1; exit !flock($file, LOCK_EX | LOCK_NB)' ||
        fail "another run is using $build_dir: $(cat "$build_dir/lock"); wait for it, or set ZKTARN_BUILD_DIR"
    echo "$command_line, process $$, since $(date +%H:%M)" >"$build_dir/lock"
}

# packages_of COLUMN PART...: the packages of the parts, each once; column 2 is Debian, 3 Homebrew.
packages_of() {
    local column=$1
    shift
    awk -v column="$column" -v parts=" $* " '
        !/^#/ && index(parts, " " $1 " ") && $column != "-" && !seen[$column]++ { print $column }' "$packages"
}

# as_root COMMAND...: as root, by sudo for any other user.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

can_be_root() {
    [ "$(id -u)" -eq 0 ] && return
    command -v sudo >/dev/null && { sudo -n true 2>/dev/null || [ -t 0 ]; }
}

# install_debian PACKAGE...: installs those that are missing. Runs apt only if one is.
install_debian() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' ||
            missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    can_be_root || fail "packages are missing, and this user is neither root nor allowed to use sudo; root has to run
    apt-get update && apt-get install --no-install-recommends ${missing[*]}"
    echo "Installing ${missing[*]}"
    { as_root apt-get update -q &&
        as_root env DEBIAN_FRONTEND=noninteractive \
            apt-get install -q -y --no-install-recommends "${missing[@]}"; } >"$log_dir/setup.log" 2>&1 9>&- ||
        { tail -n 20 "$log_dir/setup.log" >&2 && fail "apt-get could not install ${missing[*]}"; }
}

# install_npm MANIFEST FOLDER: installs into FOLDER the npm packages that the lock file in the folder
# MANIFEST pins, unless they are installed. Runs no script of the packages.
install_npm() {
    local lock=package-lock.json log=$log_dir/setup.log
    cmp -s "$1/$lock" "$2/installed.json" && return
    command -v npm >/dev/null || install_debian npm
    echo "Installing npm packages of ${1#"$root"/}"
    mkdir -p "$2"
    cp "$1/package.json" "$1/$lock" "$2"
    (cd "$2" && npm ci --ignore-scripts --no-audit --no-fund --cache "$2/cache") >"$log" 2>&1 9>&- ||
        { tail -n 20 "$log" >&2 && fail "npm could not install the packages of ${1#"$root"/}"; }
    rm -rf "$2/cache"
    cp "$1/$lock" "$2/installed.json"
}

# install_homebrew FORMULA...: installs those that are missing.
install_homebrew() {
    local missing=() package
    command -v brew >/dev/null || fail "on a Mac this needs Homebrew"
    for package in "$@"; do
        brew list --versions "$package" >/dev/null 2>&1 || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "Installing ${missing[*]}"
    brew install "${missing[@]}" >"$log_dir/setup.log" 2>&1 9>&- ||
        { tail -n 20 "$log_dir/setup.log" >&2 && fail "brew could not install ${missing[*]}"; }
}

# set_up PART...: installs the packages that scripts/lib/packages lists for these parts.
set_up() {
    local names
    if command -v apt-get >/dev/null; then
        names=$(packages_of 2 "$@")
        # shellcheck disable=SC2086 # one word a package
        install_debian $names
    elif [ "$(uname)" = Darwin ]; then
        names=$(packages_of 3 "$@")
        # shellcheck disable=SC2086
        install_homebrew $names
    else
        fail "packages are installed on Debian and macOS only; elsewhere build with cmake --preset release"
    fi
}

jobs_available() {
    nproc 2>/dev/null || sysctl -n hw.ncpu
}
