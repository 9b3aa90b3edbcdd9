/* Bounded append, as a host supplies it. */
#ifndef ACECONV_HOST_BOUNDED_APPEND_H
#define ACECONV_HOST_BOUNDED_APPEND_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Appends at most `room` characters of `piece` to the NUL-terminated `text`,
 * whose buffer holds `size` bytes, and terminates it. The plug-in has checked
 * that the piece fits. The name is the platform's. */
/* NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp) */
void __strncat_to_buf(size_t size, char *text, const char *piece, size_t room);

#ifdef __cplusplus
}
#endif

#endif
