/* The functions of aceconv/host/debug.h and aceconv/host/bounded_append.h. */
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "aceconv/host/bounded_append.h"
#include "aceconv/host/debug.h"
#include "tree.h"

static ipv4_acl_debug_event event;
static const uint32_t filter_set;        /* this host traces every function */
static regex_t *const filter_expression; /* read only while filter_set is not 0 */

void trace_enable(int on) {
    event.enabled = on != 0;
}

const ipv4_acl_debug_event *ipv4_acl_debug_get_dll_event_type(uint32_t event_type) {
    return event_type == 2 ? &event : NULL;
}
const uint32_t *ipv4_acl_get_dll_func_regexec(void) {
    return &filter_set;
}
regex_t *const *ipv4_acl_get_dll_func_regexp(void) {
    return &filter_expression;
}

void buginf(const ipv4_acl_debug_event *traced, uint32_t zero, uint32_t one, const char *format,
            ...) {
    (void)traced, (void)zero, (void)one;
    va_list arguments;
    va_start(arguments, format);
    vfprintf(stderr, format, arguments);
    va_end(arguments);
    fputc('\n', stderr);
}

void __strncat_to_buf(size_t size, char *text, const char *piece, size_t room) {
    const size_t used = strlen(text), free_bytes = size - used - 1;
    strncat(text, piece, room < free_bytes ? room : free_bytes);
}
