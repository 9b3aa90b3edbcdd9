#!/usr/bin/env bash
# The main job on a real access list: demo.sh BIN_DIR
#
# Takes the border filter through encoding, storage and decoding, shows one
# record, and migrates lists to the other schema.
set -euo pipefail

bin=${1:?usage: demo.sh BIN_DIR}
examples=$(dirname "${BASH_SOURCE[0]}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

aceconv() { "$bin/aceconv" "$@"; }
heading() { printf '\n-- %s\n' "$*"; }

heading "Encode examples/border-filter.json and store it"
aceconv encode --quiet "$examples/border-filter.json" -o "$work/border.bags"
entries=$(grep -c sequence-number "$examples/border-filter.json")
printf '%s entries: %s bytes of JSON, %s bytes of records\n' "$entries" \
  "$(wc -c <"$examples/border-filter.json")" "$(wc -c <"$work/border.bags")"

heading "Decode what was stored, and compare it with the list by meaning"
aceconv decode "$work/border.bags" -o "$work/border.json"
aceconv diff "$examples/border-filter.json" "$work/border.json" && echo "same: every entry came back"
grep -m 3 '"protocol"' "$work/border.json" | cut -c 1-150

heading "One record, as an engineer reads it"
grep -m 1 tcp-bits "$work/border.json" | sed 's/,$//' | aceconv inspect --schema base -

heading "Migrate examples/management-plane.json to the UM schema"
aceconv convert --to um "$examples/management-plane.json" -o "$work/um.json"
grep -m 2 tcp "$work/um.json" | cut -c 1-150

heading "Migrate examples/um-only.json to the base schema: every loss is named"
aceconv convert --to base "$examples/um-only.json" -o "$work/base.json" \
  2>"$work/losses"
head -n 5 "$work/losses" | sed "s|$examples/||"
echo "..."
tail -n 1 "$work/losses"
