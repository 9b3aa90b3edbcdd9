#!/usr/bin/env bash
# A tour of the command on the example lists: tour.sh BIN_DIR
#
# Shows each call and what it says; tour.txt is what it said last. Works in a folder of its own.
set -euo pipefail

PATH=$(cd "${1:?usage: tour.sh BIN_DIR}" && pwd):$PATH
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$(dirname "${BASH_SOURCE[0]}")"/*.json "$work"
cd "$work"

heading() { printf '\n-- %s\n' "$*"; }

# Runs a command line.
try() {
  printf '$ %s\n' "$1"
  local status=0
  bash -c "$1" 2>&1 || status=$?
  ((status == 0)) || echo "(exit status $status)"
}

heading "Encode a border filter and store it"
try 'aceconv encode border-filter.json -o border.bags'
try 'wc -c border-filter.json border.bags'

heading "Decode what was stored, and compare it with the list by meaning"
try 'aceconv decode border.bags -o border.json'
try 'aceconv diff border-filter.json border.json'
try 'aceconv decode -q border.bags --format text | head -n 5'
try 'aceconv decode -q border.bags --format ndjson | sed -n 2p'
try 'aceconv decode -q border.bags --format xml | sed -n 6p'

heading "One record, as an engineer reads it"
try 'grep -m 1 tcp-bits border.json | sed "s/,$//" > flags.json; aceconv inspect flags.json'
try 'aceconv inspect -q --json flags.json | grep -o "\"name\":\"tcpflags\".*"'

heading "Migrate to the UM schema, and back"
try 'aceconv convert --to um management-plane.json -o management-um.json'
try 'aceconv diff -q management-plane.json management-um.json && echo same'
try 'aceconv convert --to um border-filter.json -o border-um.json'
try 'aceconv convert --to um border.bags -q --no-losses | cmp - border-um.json && echo same'
try 'aceconv convert --to base border-um.json -q --strict -o back.json && echo nothing is lost'

heading "Migrate what the base schema cannot say: every loss is named"
try 'aceconv convert --to base um-only.json -q 2>&1 > base.json | head -n 4'
try 'aceconv convert --to base um-only.json --no-losses --strict --report losses.json -o base.json'
try 'grep -c reason losses.json'
try 'aceconv convert --to base um-only.json -q --no-losses -o base.json --html report.html; grep "class=.verdict" report.html'

heading "Write a list anew: another format, one order of nodes"
try 'aceconv convert --to base border-filter.json --format ndjson -o rules.ndjson'
try 'wc -l rules.ndjson'

heading "Does each entry come back the same?"
try 'aceconv check *-um.json um-only.json'
try "echo '{\"permit\":{\"log\":{},\"log-input\":{}}}' | aceconv check"

heading "What has been changed?"
try "sed '0,/\"deny\"/s//\"permit\"/' border-filter.json > edited.json; aceconv diff border.bags edited.json"

heading "An inserted rule, and new numbers: still one change"
try "sed '4p' rules.ndjson | awk '{ sub(/\"sequence-number\":[0-9]+/, \"\\\"sequence-number\\\":\" 5 * NR); print }' > inserted.ndjson"
try 'aceconv diff --by content rules.ndjson inserted.ndjson'

heading "Bad entries are told with their place; the others can go on"
try "sed '2s/deny/drop/' rules.ndjson > bad.ndjson; aceconv encode bad.ndjson -o bad.bags"
try 'aceconv encode bad.ndjson --keep-going -o bad.bags'

heading "In pipes, on all cores"
try 'aceconv encode -q rules.ndjson | aceconv decode -q --format ndjson | cmp - rules.ndjson && echo same'

heading "What may be written, and what becomes of it"
try 'aceconv explain log-option'
try 'aceconv schema base | grep fragment'
