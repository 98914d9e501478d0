#!/usr/bin/env bash
# Runs the two commands of the project on a bare Debian 12, made by debootstrap in a folder.
set -euo pipefail

usage="Usage: fresh.sh [--without PACKAGE]... [--keep] FOLDER [COMMAND...]
Unpacks a minimal Debian 12 into FOLDER/root, clones this checkout into it, uncommitted changes included, and
runs each COMMAND there: by default scripts/demo and scripts/test. Mirror and network settings are those of this
machine's apt. FOLDER keeps the base system and the packages, so that the next run downloads less.

  --without PACKAGE  removes PACKAGE from the clone's list of packages first, to see that a command that
                     needs it fails
  --keep             keeps FOLDER/root

Exit status: 0 every command succeeded, 1 one failed, 77 this machine cannot make a bare Debian."

without=()
keep=false
fail() { echo "fresh.sh: $*" >&2 && exit 1; }

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

# shellcheck source=tests/fresh/debian.sh
source "$checkout/tests/fresh/debian.sh"
machine_can
root=$work/root
# The commands and their mounts end with this script, because they have their own namespaces. Files stay.
trap '$keep || remove "$root"' EXIT
trap 'exit 1' INT TERM HUP
unpack "$root"

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
    echo "removed $package from scripts/lib/packages"
done
share_cache "$root" /root/project

rows=()
failed=0
for command in "${commands[@]}"; do
    echo
    echo "== $command"
    start=$SECONDS
    verdict=passed
    inside "$root" /root/project "$command" || { verdict=FAILED && failed=$((failed + 1)); }
    rows+=("$(printf '%-30s  %-7s  %5d s' "$command" "$verdict" $((SECONDS - start)))")
done
printf '\n%-30s  %-7s  %7s\n' "on a bare Debian 12" verdict time
printf '%s\n' "${rows[@]}"
[ "$failed" -eq 0 ]
