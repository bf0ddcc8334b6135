#!/usr/bin/env bash
# Installs the packages into a Debian 12 that has nothing else, and uses them there as their users
# would: the README's program by find_package and by pkg-config, the command line, its manual.
#
#     fresh_root_test.sh DEBS_DIR [BASE]
#
# BASE is a minimal root, which is copied and stays as it is; without it, or where it is no folder,
# debootstrap makes one there. Needs root and a network; no part of scripts/test.sh therefore.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source_dir=$(cd "$here/../.." && pwd)
debs_dir=$1 base=${2-}
[[ $(id -u) -eq 0 ]] || { echo "fresh_root_test.sh: only root may change its root" >&2; exit 1; }

root=$(mktemp -d)
cleanup() {
  umount -l "$root/dev" "$root/proc" 2>/dev/null || true
  rm -rf --one-file-system "$root"
}
trap cleanup EXIT
if [[ -d $base ]]; then
  cp -a --reflink=auto "$base/." "$root/"
else
  debootstrap --variant=minbase --include=ca-certificates bookworm "$root" http://deb.debian.org/debian
  [[ -z $base ]] || cp -a "$root/." "$base/"
fi
cp /etc/resolv.conf /etc/hosts "$root/etc/"
mount --bind /proc "$root/proc"
mount --bind /dev "$root/dev"
mkdir "$root/root/debs" "$root/root/packages"
cp "$debs_dir"/*orvmodel*.deb "$root/root/debs/"
cp -r "$source_dir/examples" "$source_dir/samples" "$root/root/"
cp "$here/use_packages.sh" "$here/lit.cpp" "$root/root/packages/"
chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 \
  bash /root/packages/use_packages.sh
