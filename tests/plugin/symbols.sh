#!/usr/bin/env bash
# Usage: symbols.sh PLUGIN HEADERS_DIR [LIBRARY...]
#
# Checks what the plug-in offers and wants: exactly the names below, only names of
# the host headers, of libc and of libsafec, and those two libraries at run time.
# Of a plug-in for another processor the libraries have to be named, its loader if it is one.
set -eu
export LC_ALL=C
plugin=$1 headers=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

# Dynamic symbols without versions, of any processor; $2 is `defined` or `undefined`.
symbols() {
    readelf -W --dyn-syms "$1" |
        awk -v of="$2" '$5 ~ /GLOBAL|WEAK/ && ($7 == "UND" ? "undefined" : "defined") == of { print $8 }' |
        sed 's/@.*//' | sort -u
}

report() { # text, file with offending lines
    if [ -s "$2" ]; then
        echo "$1:"
        sed 's/^/    /' "$2"
        failed=1
    fi
}

sort > "$work/wanted" << NAMES
acl_yang_ace_common
acl_yang_dest_addr
acl_yang_dscp_fields
acl_yang_fragment_offset
acl_yang_icmp
acl_yang_match_option_common
acl_yang_nexthops
acl_yang_packet_length
acl_yang_police
acl_yang_protocol_common
acl_yang_source_addr
acl_yang_tcp_flags
acl_yang_ttl
acl_yang_udf
bag_register_all_ipv4_acl_bags
ccv_custom_decoder_ipv4_acl_ace
ccv_custom_decoder_ipv4_acl_ace_um
ccv_custom_encoder_ipv4_acl_ace
ccv_custom_encoder_ipv4_acl_ace_um
ipv4_acl_config_ace_bag
ipv4_acl_config_ace_bag_getfn
removeChar
removeNonTcpFlag
NAMES
symbols "$plugin" defined > "$work/offered"
comm -13 "$work/wanted" "$work/offered" > "$work/extra"
comm -23 "$work/wanted" "$work/offered" > "$work/missing"
report "exported, but not part of the interface" "$work/extra"
report "not exported" "$work/missing"

sed -n 's/.*[ *]\([a-z_0-9]*\)(.*/\1/p' "$headers"/host/*.h | grep -v '^ *$' | sort -u > "$work/host"
grep -q '^ccv_yang_iter_first$' "$work/host"
grep -q '^__strncat_to_buf$' "$work/host"
symbols "$plugin" undefined > "$work/undefined"
if [ $# = 0 ]; then
    # shellcheck disable=SC2046 # their names have no blanks
    set -- $(ldd "$plugin" 2> /dev/null | awk '/^\t(libc|libsafec)\.so/ { print $3 }')
fi
cp "$work/host" "$work/allowed"
for library; do
    symbols "$library" defined >> "$work/allowed"
done
sort -u -o "$work/allowed" "$work/allowed"
comm -13 "$work/allowed" "$work/undefined" > "$work/unknown"
report "imported from elsewhere" "$work/unknown"

readelf -d "$plugin" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | sort > "$work/needed"
printf '%s\n' libc.so.6 libsafec.so.3 "${@##*/}" | sort -u > "$work/libraries"
comm -3 "$work/libraries" "$work/needed" > "$work/differing"
report "run-time libraries missing (left) or too many (right)" "$work/differing"
exit $failed
