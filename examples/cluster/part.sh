#!/usr/bin/env bash
# One part of a list of lines, as a task of a cluster: part.sh LINES PART ARGUMENTS OF aceconv
#
# `split -l LINES -d` made PART and named it by its number. As many empty lines as there are
# lines before it come first: they are passed over but counted, so messages and reports tell
# lines of the whole list. PART.out appears once it is complete.
set -euo pipefail

lines=$1 part=$2
shift 2
before=$((10#${part##*/} * lines))
{
  head -c "$before" /dev/zero | tr '\0' '\n'
  cat "$part"
} | aceconv "$@" --from-format ndjson -q -j 1 -o "$part.out" -
