/* How the functions of the public headers are linked. */
#ifndef ACECONV_LINKAGE_H
#define ACECONV_LINKAGE_H

#ifdef __cplusplus
#define ACECONV_NOEXCEPT noexcept
#else
#define ACECONV_NOEXCEPT
#endif

#if defined(__GNUC__)
#define ACECONV_EXPORT __attribute__((visibility("default")))
#else
#define ACECONV_EXPORT
#endif

#endif
