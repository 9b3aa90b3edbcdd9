#!/bin/sh
# Usage: rooms.sh SOURCE_DIR
#
# Checks that includes point one way: each room knows its own headers, those of the
# rooms below it, and of the host only the headers at its top.
set -eu
cd "$1"
failed=0

check() { # room, expression for what its files may include in quotes
    includes=$(grep -rnoE '^#include "[^"]*"' "$1")
    if wrong=$(printf '%s\n' "$includes" | grep -vE "\"($2)"); then
        printf 'includes that do not belong into %s:\n%s\n' "$1" "$wrong"
        failed=1
    fi
}

host='aceconv/|host/[a-z0-9_]+\.h"'
check include 'aceconv/'
check src/record 'aceconv/|record/'
check src/common 'aceconv/|common/'
check src/base 'aceconv/|record/|common/|base/'
check src/um 'aceconv/|record/|common/|um/'
check host 'aceconv/|host/'
check stream "$host|stream/"
check compare "$host|stream/|compare/"
check tools/hostcheck 'aceconv/|tools/hostcheck/'
check converter "$host|stream/|compare/|converter/"
check tools "$host|stream/|compare/|converter/|tools/"
check fuzz "$host|stream/|compare/|converter/|tools/|fuzz/"
check testing 'aceconv/|testing/'
exit $failed
