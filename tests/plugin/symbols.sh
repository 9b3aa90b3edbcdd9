#!/bin/sh
# Usage: symbols.sh PLUGIN HEADERS_DIR
#
# Checks what the plug-in offers and wants: exactly the names below, only names of
# the host headers, of libc and of libsafec, and those two libraries at run time.
set -eu
export LC_ALL=C
plugin=$1 headers=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

# Dynamic symbols without versions; $2 selects defined or undefined.
symbols() {
    nm -D "$2" "$1" | awk '{ print $NF }' | sed 's/@.*//' | sort -u
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
symbols "$plugin" --defined-only > "$work/offered"
comm -13 "$work/wanted" "$work/offered" > "$work/extra"
comm -23 "$work/wanted" "$work/offered" > "$work/missing"
report "exported, but not part of the interface" "$work/extra"
report "not exported" "$work/missing"

sed -n 's/.*[ *]\([a-z_0-9]*\)(.*/\1/p' "$headers"/host/*.h | grep -v '^ *$' | sort -u > "$work/host"
grep -q '^ccv_yang_iter_first$' "$work/host"
grep -q '^__strncat_to_buf$' "$work/host"
symbols "$plugin" --undefined-only > "$work/undefined"
ldd "$plugin" 2> /dev/null | awk '/^\t(libc|libsafec)\.so/ { print $3 }' > "$work/libraries"
cp "$work/host" "$work/allowed"
while read -r library; do
    symbols "$library" --defined-only >> "$work/allowed"
done < "$work/libraries"
sort -u -o "$work/allowed" "$work/allowed"
comm -13 "$work/allowed" "$work/undefined" > "$work/unknown"
report "imported from elsewhere" "$work/unknown"

readelf -d "$plugin" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | sort > "$work/needed"
printf '%s\n' libc.so.6 libsafec.so.3 > "$work/two"
comm -3 "$work/two" "$work/needed" > "$work/differing"
report "run-time libraries missing (left) or too many (right)" "$work/differing"
exit $failed
