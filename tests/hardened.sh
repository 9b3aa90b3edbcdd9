#!/bin/sh
# Usage: hardened.sh CONFIG SOURCE_DIR FILE...
#
# Checks the programs and libraries that are shipped: hardened, and with no paths of
# this machine inside. CONFIG is the build type; Debug has no bounded calls, and keeps
# the paths for debuggers.
set -eu
export LC_ALL=C
config=$1 source=$2
shift 2
failed=0

for file; do
    want() { # what, command that finds it
        what=$1
        shift
        "$@" || { echo "${file##*/}: no $what"; failed=1; }
    }
    # shellcheck disable=SC2317
    shows() { # readelf option, expression
        readelf -W "$1" "$file" 2> /dev/null | grep -qE "$2"
    }
    # shellcheck disable=SC2317 # called through want
    imports() {
        readelf -W --dyn-syms "$file" | grep -qE " UND $1"
    }
    want 'position independence' shows -h 'Type: +DYN'
    want 'read-only relocations' shows -l 'GNU_RELRO'
    want 'binding at start' shows -d 'BIND_NOW|FLAGS.* NOW'
    want 'stack without code' shows -l 'GNU_STACK.* RW '
    # Any other folder, the current one for an empty element, could hold somebody else's libraries.
    want 'run path relative to itself' test -z "$(readelf -dW "$file" | sed -nE 's/.*R(UN)?PATH.*\[(.*)\]/\2/p' |
        tr ':' '\n' | grep -vE '^[$]ORIGIN(/|$)' | sed 's/^$/(empty)/')"
    want 'stack protector' imports '__stack_chk_fail'
    if shows -h 'Machine:.*X86-64'; then
        # Not the mark on the file, which start files of the system may not let it have.
        want 'checked branches' test "$(grep -oaP '\xf3\x0f\x1e\xfa' "$file" | wc -l)" -gt 20
    fi
    case $file in
    *.so | *.so.*) ;;
    *) want 'position-independent program' shows -d 'FLAGS_1.* PIE' ;;
    esac
    if [ "$config" != Debug ]; then
        case $file in
        *libipv4_acl_ace*) ;; # bounds its strings itself
        *) want 'bounded calls' imports '__(mem|str|v?s|v?f|read|get).*_chk' ;;
        esac
        if LC_ALL=C grep -qF -- "$source/" "$file"; then
            echo "${file##*/}: paths of $source inside"
            failed=1
        fi
    fi
done
exit $failed
