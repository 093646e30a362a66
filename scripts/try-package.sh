#!/usr/bin/env bash
# try-package.sh DEB: installs the package on a Debian 12 root of its own with nothing but what it
# depends on, runs it there, purges it, and compares the root with what it was. Needs root and the
# package archive. The X server and the tools that look at the program are this system's.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/scripts/packages.sh"
package=$(realpath "${1:?usage: try-package.sh DEB}")
ensure_packages package desktop

work=$(mktemp -d)
clean=$work/root
cleanUp() {
    umount "$clean/dev" "$clean/proc" 2>/dev/null || true
    rm -rf --one-file-system "$work"
}
trap cleanUp EXIT

# What it installs is what it says that it needs: no recommended packages.
within() {
    chroot "$clean" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive "$@"
}
# All files but caches and logs, with what they hold.
listing() {
    (cd "$clean" && find . -xdev \( -path ./var/cache -o -path ./var/log -o -path ./var/lib/dpkg \
        -o -path ./var/lib/apt -o -path ./tmp -o -path ./proc -o -path ./dev \) -prune -o -print |
        LC_ALL=C sort)
}

echo "== A clean Debian 12 root"
sources=$(ls /etc/apt/sources.list /etc/apt/sources.list.d/debian.sources 2>/dev/null || true)
# shellcheck disable=SC2086
mmdebstrap --quiet --variant=minbase bookworm "$clean" $sources
mount --bind /proc "$clean/proc"
mount --bind /dev "$clean/dev"
cp /etc/resolv.conf "$clean/etc/"
cp "$package" "$clean/tmp/kestrove.deb"

echo "== Installing its dependencies, then itself"
dependencies=$(dpkg-deb --field "$package" Depends | tr ',' '\n' |
    sed 's/|.*//; s/(.*//; s/ //g' | tr '\n' ' ')
within apt-get -qq update
# shellcheck disable=SC2086
within apt-get -qq -y -o Dpkg::Use-Pty=0 --no-install-recommends install $dependencies \
    >"$work/apt.log" 2>&1 || { tail -20 "$work/apt.log" >&2; exit 1; }
listing >"$work/before"
within dpkg --install /tmp/kestrove.deb
within dpkg --audit

echo "== Running it"
python3 -B "$root/Tests/Package/installed_program.py" /usr/bin/kestrove "$clean" "$work/logs"

echo "== Purging it"
within dpkg --purge kestrove
listing >"$work/after"
diff "$work/before" "$work/after" || { echo "It left something behind." >&2; exit 1; }
echo "== It ran, and left nothing behind."
