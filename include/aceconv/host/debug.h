/* Debug controls and debug print, as a host supplies them.
 *
 * The plug-in reads the controls afresh at every trace point, without
 * synchronisation, and never lets a trace change a status.
 */
#ifndef ACECONV_HOST_DEBUG_H
#define ACECONV_HOST_DEBUG_H

#include <regex.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The record behind an event type, as far as the plug-in reads it. */
typedef struct ipv4_acl_debug_event {
    uint64_t reserved;
    uint64_t enabled; /* non-zero while the event type is switched on */
} ipv4_acl_debug_event;

/* The plug-in asks for event type 2. A pointer value below 4096, null included,
 * means that there is no such event type. */
const ipv4_acl_debug_event *ipv4_acl_debug_get_dll_event_type(uint32_t event_type);

/* Address of the function-name filter's flag: non-zero limits the trace to
 * functions whose names match the expression. */
const uint32_t *ipv4_acl_get_dll_func_regexec(void);

/* Address of the variable that points at the compiled expression; read only
 * while the flag is set. */
regex_t *const *ipv4_acl_get_dll_func_regexp(void);

/* Prints one line. The second and third arguments are always 0 and 1; the
 * first conversion of `format` is the reporting function's name. */
void buginf(const ipv4_acl_debug_event *event, uint32_t zero, uint32_t one, const char *format, ...)
    __attribute__((format(printf, 4, 5)));

#ifdef __cplusplus
}
#endif

#endif
