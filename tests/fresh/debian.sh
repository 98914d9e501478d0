# shellcheck shell=bash
# shellcheck disable=SC2154 # the caller sets work
# A minimal Debian in a folder, made by debootstrap. Mirror and network settings are those of this
# machine's apt. The folder $work keeps the base system and the packages, so that the next run downloads
# less.

codename=bookworm
base=$work/base-$codename.tar
archives=$work/archives
skip() { echo "skipped: $*" && exit 77; }
remove() { rm -rf --one-file-system "$@"; }

# machine_can: ends the script with status 77 if this machine cannot make such a system.
machine_can() {
    local tool
    [ "$(uname)" = Linux ] || skip "a bare Debian needs Linux"
    [ "$(id -u)" -eq 0 ] || skip "making a bare Debian needs root"
    for tool in apt-get debootstrap git unshare; do
        command -v "$tool" >/dev/null || skip "making a bare Debian needs $tool"
    done
    unshare --mount --pid --fork true 2>/dev/null || skip "this machine does not allow new mount namespaces"
    [ -n "$(sources)" ] || apt-get update -q
    mirror=$(sources | awk -v name="$codename" '$2 == name { print $1; exit }')
    [ -n "$mirror" ] || skip "this machine's apt has no source of Debian $codename"

    # debootstrap takes proxies from the environment: those of apt's settings.
    eval "$(apt-config shell http_proxy Acquire::http::Proxy https_proxy Acquire::https::Proxy)"
    network=()
    local name
    for name in http_proxy https_proxy no_proxy; do
        [ -z "${!name-}" ] || network+=("$name=${!name}")
    done
}

# The machine's sources of this release: address, suite and component of each.
sources() {
    # shellcheck disable=SC2016 # apt's own variables
    apt-get indextargets --format '$(ORIGIN) $(CODENAME) $(REPO_URI) $(RELEASE) $(COMPONENT)' \
        'Created-By: Packages' |
        awk -v name="$codename" '$1 == "Debian" && index($2, name) == 1 { print $3, $4, $5 }'
}

# unpack ROOT: unpacks a bare system into ROOT. The first run makes the base system.
unpack() {
    if [ ! -s "$base" ]; then
        echo "Making the base system"
        remove "$work/making"
        env ${network[@]+"${network[@]}"} debootstrap --variant=minbase "$codename" "$work/making" "$mirror" ||
            fail "debootstrap could not make Debian $codename from $mirror"
        rm -f "$work"/making/var/cache/apt/archives/*.deb
        tar -C "$work/making" -cf "$base.new" .
        mv "$base.new" "$base"
        remove "$work/making"
    fi
    echo "Unpacking the base system into $1"
    remove "$1"
    mkdir -p "$1" "$archives/partial"
    tar -C "$1" -xf "$base"
    sources | sed 's/^/deb /' >"$1/etc/apt/sources.list"
    apt-config dump | grep -i '^Acquire::' >"$1/etc/apt/apt.conf.d/90machine" || true
    cp -L /etc/resolv.conf /etc/hosts "$1/etc/"
    # The system is temporary, so dpkg need not wait for the disk.
    echo force-unsafe-io >"$1/etc/dpkg/dpkg.cfg.d/unsafe-io"
}

# share_cache ROOT SOURCES: if this machine compiles with a cache of its own in CCACHE_DIR, the commands inside
# ROOT use it too, for the sources in the folder SOURCES there. They still read every header and run every other
# step; only a compilation with the same input is not repeated.
cache=()
share_cache() {
    [[ ${CMAKE_CXX_COMPILER_LAUNCHER-} == ccache && -d ${CCACHE_DIR-} ]] || return 0
    inside "$1" / "apt-get -q update" >/dev/null
    inside "$1" / "apt-get -q -y --no-install-recommends install ccache" >/dev/null
    mkdir "$1/root/ccache"
    # The same settings as outside, with the folder of the sources inside.
    cache=(CCACHE_DIR=/root/ccache "CCACHE_BASEDIR=$2" CCACHE_NOHASHDIR=1 "CCACHE_SLOPPINESS=pch_defines,time_macros"
        CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache)
    echo "Sharing the compile cache $CCACHE_DIR"
}

# inside ROOT FOLDER COMMAND: runs COMMAND in FOLDER of that system, in new namespaces and with an empty
# environment except for the settings of the network and the compile cache.
inside() {
    # shellcheck disable=SC2016 # the inner shell's own
    unshare --mount --pid --fork --kill-child env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root \
        ${network[@]+"${network[@]}"} ${cache[@]+"${cache[@]}"} bash -c '
            set -e
            mount -t proc proc "$1/proc"
            mount --rbind /dev "$1/dev"
            mount --bind "$2" "$1/var/cache/apt/archives"
            [ ! -d "$1/root/ccache" ] || mount --bind "$5" "$1/root/ccache"
            exec chroot "$1" bash -c "cd $3 && exec $4"' \
        - "$1" "$archives" "$2" "$3" "${CCACHE_DIR-}" </dev/null
}
