#!/usr/bin/env bash
# Usage: test_packages.sh FOLDER
#
# Runs debian/tests in a clean Debian that has the packages in FOLDER, and what they and the tests
# depend on. Needs root, for the chroot.
set -euo pipefail
((EUID == 0)) || exec sudo "$0" "$@"
# In a mount namespace of its own, nothing that is mounted below outlives the script.
[[ ${1-} == --unshared ]] || exec unshare --mount "$0" --unshared "$@"
packages=$(realpath "$2")
work=$(mktemp -d)
clean_up() {
  umount -R -l "$work/root/proc" 2>/dev/null || true
  rm -rf --one-file-system "$work"
}
trap clean_up EXIT

mkdir "$work/source"
git archive HEAD | tar -x -C "$work/source"
mmdebstrap --quiet --variant=apt --include=dpkg-dev --dpkgopt=force-unsafe-io \
  --skip=cleanup/apt/lists bookworm "$work/root"
mount -t proc proc "$work/root/proc"
rm -rf "$packages/tests"
# What is set here, a compiler launcher for instance, is not set there.
env -i PATH="$PATH" HOME=/root LC_ALL=C.UTF-8 autopkgtest --no-built-binaries \
  --output-dir="$packages/tests" "$packages"/*.deb "$work/source/" -- chroot "$work/root"
