// The host under check and the plug-in, loaded into this process.
#pragma once

#include <string>

#include "aceconv/host/bounded_append.h"
#include "aceconv/host/debug.h"
#include "aceconv/hostcheck.h"
#include "aceconv/plugin.h"

namespace aceconv::hostcheck {

// clang-format off
#define ACECONV_HOST_FUNCTIONS(X) \
    X(ccv_yang_iter_create) X(ccv_yang_iter_is_active) X(ccv_yang_iter_first) \
    X(ccv_yang_iter_is_finished) X(ccv_yang_iter_next) X(ccv_yang_iter_destroy) \
    X(ccv_yang_get_node_name) X(ccv_yang_get_enum) X(ccv_yang_get_enum_or_uint32) \
    X(ccv_yang_get_bits) X(ccv_yang_get_uint8) X(ccv_yang_get_uint16) X(ccv_yang_get_uint32) \
    X(ccv_yang_get_bool) X(ccv_yang_get_ipv4) X(ccv_yang_get_string) \
    X(ccv_yang_get_list_entry_count) \
    X(ccv_yang_container_begin) X(ccv_yang_container_end) X(ccv_yang_presence) \
    X(ccv_yang_list_begin) X(ccv_yang_list_entry_begin) X(ccv_yang_list_entry_end) \
    X(ccv_yang_list_end) X(ccv_yang_enum) X(ccv_yang_enum_or_uint32) X(ccv_yang_bits) \
    X(ccv_yang_uint32) X(ccv_yang_bool) X(ccv_yang_ipv4) X(ccv_yang_string) X(ccv_yang_empty) \
    X(bag_register_start) X(bag_register) X(bag_register_abort) X(bag_register_end) \
    X(bag_definition_init) X(bag_definition_free) X(bag_encode_v3) X(bag_decode_v3) \
    X(bag_decode) X(bag_free_indirections) \
    X(ipv4_acl_debug_get_dll_event_type) X(ipv4_acl_get_dll_func_regexec) \
    X(ipv4_acl_get_dll_func_regexp) X(buginf) X(__strncat_to_buf) \
    X(hostcheck_tree_create) X(hostcheck_tree_free) X(hostcheck_output_create) \
    X(hostcheck_output_status) X(hostcheck_output_show) X(hostcheck_output_free) \
    X(hostcheck_encoding_create) X(hostcheck_encoding_bytes) X(hostcheck_encoding_free)
#define ACECONV_PLUGIN_SYMBOLS(X) \
    X(bag_register_all_ipv4_acl_bags) X(ipv4_acl_config_ace_bag_getfn) \
    X(ccv_custom_encoder_ipv4_acl_ace) X(ccv_custom_decoder_ipv4_acl_ace) \
    X(ccv_custom_encoder_ipv4_acl_ace_um) X(ccv_custom_decoder_ipv4_acl_ace_um)
// clang-format on

/// The functions under their names.
struct Functions {
#define DECLARE(name) decltype(&::name) name;
    ACECONV_HOST_FUNCTIONS(DECLARE)
    ACECONV_PLUGIN_SYMBOLS(DECLARE)
#undef DECLARE
};

/// Loads both for good. Returns why that failed, or nothing.
std::string load(const std::string &host, const std::string &plugin, Functions &functions);

} // namespace aceconv::hostcheck
