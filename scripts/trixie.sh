#!/usr/bin/env bash
# Builds the last commit and runs its tests on Debian 13: trixie.sh [ARGUMENTS OF ./dev test]
#
# mmdebstrap makes the system, runs ./dev in it and takes it away again, all in namespaces of its
# own: whatever ends this, nothing is left mounted, and no root is needed.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
git clone --quiet . "$tree/aceconv"
# shellcheck disable=SC2016 # expanded where it is run
in_there='chroot "$1" env -i HOME=/root PATH="$PATH" LC_ALL=C.UTF-8 /root/aceconv/dev test'
printf -v arguments ' %q' "$@"
mmdebstrap --quiet --mode=unshare --variant=minbase --include=ca-certificates --format=null \
  --customize-hook="copy-in '$tree/aceconv' /root" \
  --customize-hook="$in_there${arguments# \'\'}" trixie
