#!/usr/bin/env bash
# Builds the plug-in alone with Debian's cross compiler for aarch64, and checks what came of it.
# Nothing is run: what can be seen in the file is the processor, the symbols and the libraries.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# The packages of that processor in a folder, not installed.
root=build/cross-root
if [[ ! -e $root/complete ]]; then
  # shellcheck source=/dev/null
  source /etc/os-release
  mkdir -p "$root"
  mmdebstrap --quiet --mode=unshare --variant=extract --architectures=arm64 --include=libsafec-dev \
    "$VERSION_CODENAME" - | tar -C "$root" -x --exclude='./dev/*'
  touch "$root/complete"
fi

cmake --preset cross >/dev/null
cmake --build build/cross -- --quiet
cmake --install build/cross --prefix build/cross/installed --strip >/dev/null

plugin=build/cross/installed/lib/aceconv/libipv4_acl_ace.so
libc=/usr/aarch64-linux-gnu/lib
LC_ALL=C readelf -h "$plugin" | grep -E 'Machine: +AArch64$'
tests/plugin/symbols.sh "$plugin" include/aceconv "$libc"/{libc.so.6,ld-linux-aarch64.so.1} \
  "$root/usr/lib/aarch64-linux-gnu/libsafec.so.3"
tests/hardened.sh RelWithDebInfo "$PWD" "$plugin"
echo "Exports, imports and libraries of $plugin are as they should be"
