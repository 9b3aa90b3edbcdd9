#!/usr/bin/env bash
# Usage: abi.sh BUILD_DIR [--keep]
#
# Compares what the two libraries offer to programs, symbols and the types of the public headers,
# with what abi/ keeps of it; --keep renews that.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
build=$1 keep=${2-}
new=$(mktemp -d)
trap 'rm -rf "$new"' EXIT

failed=0
for library in libipv4_acl_ace libaceconv; do
  abidw --headers-dir include --drop-private-types --exported-interfaces-only --no-parameter-names \
    --no-show-locs --no-corpus-path --no-comp-dir-path --no-elf-needed --no-write-default-sizes \
    --type-id-style hash --out-file "$new/$library.abi" "$(find "$build" -name "$library.so")"
  grep -q class-decl "$new/$library.abi" || {
    echo "$library.so: has no debug info to compare" >&2
    exit 1
  }
  if [[ $keep == --keep ]]; then
    cp "$new/$library.abi" abi/
  else
    abidiff "abi/$library.abi" "$new/$library.abi" || failed=1
  fi
done
((!failed)) || echo "dev: what programs are built against has changed; docs/development.md says what then" >&2
exit $failed
