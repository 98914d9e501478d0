# shellcheck shell=bash
# What the two commands share: finding the project, and setting a machine up.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
export root
log_dir=$root/build/logs
mkdir -p "$log_dir"

# Ends the script with one sentence on standard error.
fail() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        fail "installing packages takes root or sudo, and there is neither; as root: $*"
    fi
}

# Installs the Debian packages that are not there yet; without any, apt is not touched.
install_debian() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' ||
            missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing ${missing[*]}"
    { as_root apt-get update -q &&
        as_root env DEBIAN_FRONTEND=noninteractive \
            apt-get install -q -y --no-install-recommends "${missing[@]}"; } >"$log_dir/setup.log" 2>&1 ||
        { tail -n 20 "$log_dir/setup.log" >&2 && fail "apt-get could not install ${missing[*]}"; }
}

# install_npm MANIFEST FOLDER: installs into FOLDER the npm packages that the lock file in the folder
# MANIFEST pins, unless they are there. It runs nothing of theirs, and needs no node but npm's own.
install_npm() {
    local lock=package-lock.json log=$log_dir/setup.log
    cmp -s "$1/$lock" "$2/installed.json" && return
    command -v npm >/dev/null || install_debian npm
    echo "Installing npm packages of ${1#"$root"/}"
    mkdir -p "$2"
    cp "$1/package.json" "$1/$lock" "$2"
    (cd "$2" && npm ci --ignore-scripts --no-audit --no-fund --cache "$2/cache") >"$log" 2>&1 ||
        { tail -n 20 "$log" >&2 && fail "npm could not install the packages of ${1#"$root"/}"; }
    rm -rf "$2/cache"
    cp "$1/$lock" "$2/installed.json"
}

# Installs the Homebrew packages that are not there yet.
install_homebrew() {
    local missing=() package
    command -v brew >/dev/null || fail "on a Mac this needs Homebrew"
    for package in "$@"; do
        brew list --versions "$package" >/dev/null 2>&1 || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing ${missing[*]}"
    brew install "${missing[@]}" >"$log_dir/setup.log" 2>&1 ||
        { tail -n 20 "$log_dir/setup.log" >&2 && fail "brew could not install ${missing[*]}"; }
}

# set_up DEBIAN_PACKAGES HOMEBREW_PACKAGES: each a list in one word.
set_up() {
    local packages
    if command -v apt-get >/dev/null; then
        read -r -a packages <<<"$1"
        install_debian "${packages[@]}"
    elif [ "$(uname)" = Darwin ]; then
        read -r -a packages <<<"$2"
        install_homebrew "${packages[@]}"
    else
        fail "only Debian and macOS are known here; elsewhere build with cmake --preset release"
    fi
}

jobs_available() {
    nproc 2>/dev/null || sysctl -n hw.ncpu
}
