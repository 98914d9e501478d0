#!/usr/bin/env bash
# Runs the two commands of the project on a bare Debian 12, made by debootstrap in a folder.
set -euo pipefail

usage="Usage: fresh.sh [--without PACKAGE]... [--keep] FOLDER [COMMAND...]
Unpacks a minimal Debian 12 into FOLDER/root, clones this checkout into it, uncommitted changes
included, and runs each COMMAND there: scripts/demo and scripts/test when none is given. Mirror and
network settings are those of this machine's apt. FOLDER keeps the base system and the packages, so
that the next run downloads less.

  --without PACKAGE  takes PACKAGE out of the clone's list of packages first; a command that needs it
                     then has to fail
  --keep             leaves FOLDER/root there

Exit status: 0 every command succeeded, 1 one failed, 77 this machine cannot do it."

codename=bookworm
without=()
keep=false
fail() { echo "fresh.sh: $*" >&2 && exit 1; }
skip() { echo "skipped: $*" && exit 77; }

while [[ ${1-} == -* ]]; do
    case $1 in
    --without)
        [[ ${2-} =~ ^[a-z0-9][a-z0-9+.-]+$ ]] || fail "--without takes the name of a package"
        without+=("$2")
        shift
        ;;
    --keep) keep=true ;;
    -h | --help) echo "$usage" && exit 0 ;;
    *) fail "unknown option '$1'; see fresh.sh --help" ;;
    esac
    shift
done
[ $# -ge 1 ] || fail "name the folder to work in; see fresh.sh --help"
mkdir -p "$1" || fail "cannot make the folder $1"
work=$(cd "$1" && pwd)
shift
commands=("$@")
[ $# -gt 0 ] || commands=(scripts/demo scripts/test)
checkout=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

[ "$(uname)" = Linux ] || skip "a bare Debian needs Linux"
[ "$(id -u)" -eq 0 ] || skip "making a bare Debian needs root"
for tool in apt-get debootstrap git unshare; do
    command -v "$tool" >/dev/null || skip "making a bare Debian needs $tool"
done
unshare --mount --pid --fork true 2>/dev/null || skip "this machine does not allow mounts of its own"

# The machine's sources of this release: address, suite and component of each.
sources() {
    # shellcheck disable=SC2016 # apt's own variables
    apt-get indextargets --format '$(ORIGIN) $(CODENAME) $(REPO_URI) $(RELEASE) $(COMPONENT)' \
        'Created-By: Packages' |
        awk -v name="$codename" '$1 == "Debian" && index($2, name) == 1 { print $3, $4, $5 }'
}
[ -n "$(sources)" ] || apt-get update -q
mirror=$(sources | awk -v name="$codename" '$2 == name { print $1; exit }')
[ -n "$mirror" ] || skip "this machine's apt has no source of Debian $codename"

# The proxies of apt's settings serve debootstrap too, which reads the environment.
eval "$(apt-config shell http_proxy Acquire::http::Proxy https_proxy Acquire::https::Proxy)"
network=()
for name in http_proxy https_proxy no_proxy; do
    [ -z "${!name-}" ] || network+=("$name=${!name}")
done

root=$work/root
base=$work/base-$codename.tar
archives=$work/archives
remove() { rm -rf --one-file-system "$@"; }
# Whatever ends this script ends the commands and their mounts as well; only files are left.
trap '$keep || remove "$root"' EXIT
trap 'exit 1' INT TERM HUP

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

echo "Unpacking the base system into $root"
remove "$root"
mkdir -p "$root" "$archives/partial"
tar -C "$root" -xf "$base"
sources | sed 's/^/deb /' >"$root/etc/apt/sources.list"
apt-config dump | grep -i '^Acquire::' >"$root/etc/apt/apt.conf.d/90machine" || true
cp -L /etc/resolv.conf /etc/hosts "$root/etc/"
# The whole system is thrown away, so nothing is gained by waiting for the disk.
echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/unsafe-io"

echo "Cloning $checkout"
export GIT_CONFIG_COUNT=1 GIT_CONFIG_KEY_0=safe.directory GIT_CONFIG_VALUE_0='*'
clone=$root/root/project
git clone -q --no-hardlinks "file://$checkout" "$clone"
git -C "$checkout" diff --binary HEAD >"$work/uncommitted"
[ ! -s "$work/uncommitted" ] || git -C "$clone" apply "$work/uncommitted"
list=$clone/scripts/lib/packages
for package in ${without[@]+"${without[@]}"}; do
    awk -v package="$package" '$2 != package { print } $2 == package { found = 1 } END { exit !found }' \
        "$list" >"$work/packages" || fail "scripts/lib/packages does not list $package"
    cp "$work/packages" "$list"
    echo "$package is taken out of scripts/lib/packages"
done

# inside COMMAND: in namespaces of its own, with nothing of this environment.
inside() {
    # shellcheck disable=SC2016 # the inner shell's own
    unshare --mount --pid --fork --kill-child env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root \
        ${network[@]+"${network[@]}"} bash -c '
            set -e
            mount -t proc proc "$1/proc"
            mount --rbind /dev "$1/dev"
            mount --bind "$2" "$1/var/cache/apt/archives"
            exec chroot "$1" bash -c "cd /root/project && exec $3"' \
        - "$root" "$archives" "$1" </dev/null
}

rows=()
failed=0
for command in "${commands[@]}"; do
    echo
    echo "== $command"
    start=$SECONDS
    verdict=passed
    inside "$command" || { verdict=FAILED && failed=$((failed + 1)); }
    rows+=("$(printf '%-30s  %-7s  %5d s' "$command" "$verdict" $((SECONDS - start)))")
done
printf '\n%-30s  %-7s  %7s\n' "on a bare Debian 12" verdict time
printf '%s\n' "${rows[@]}"
[ "$failed" -eq 0 ]
