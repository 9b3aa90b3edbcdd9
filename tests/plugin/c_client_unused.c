/* Platform functions that the client's conversions never reach. The loader wants
 * all of them; none is called, so none needs its arguments. */
#include <stdlib.h>

#define UNUSED(name)                                                                               \
    void name(void);                                                                               \
    void name(void) {                                                                              \
        abort();                                                                                   \
    }

UNUSED(ccv_yang_get_enum)
UNUSED(ccv_yang_get_enum_or_uint32)
UNUSED(ccv_yang_get_bits)
UNUSED(ccv_yang_get_uint8)
UNUSED(ccv_yang_get_uint16)
UNUSED(ccv_yang_get_uint32)
UNUSED(ccv_yang_get_bool)
UNUSED(ccv_yang_get_ipv4)
UNUSED(ccv_yang_get_list_entry_count)
UNUSED(ccv_yang_presence)
UNUSED(ccv_yang_list_begin)
UNUSED(ccv_yang_list_entry_begin)
UNUSED(ccv_yang_list_entry_end)
UNUSED(ccv_yang_list_end)
UNUSED(ccv_yang_bits)
UNUSED(ccv_yang_bool)
UNUSED(ccv_yang_ipv4)
UNUSED(ccv_yang_empty)
UNUSED(bag_decode)
UNUSED(ipv4_acl_debug_get_dll_event_type)
UNUSED(ipv4_acl_get_dll_func_regexec)
UNUSED(ipv4_acl_get_dll_func_regexp)
UNUSED(buginf)
UNUSED(__strncat_to_buf)
