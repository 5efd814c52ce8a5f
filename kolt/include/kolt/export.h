/* The one macro that makes a KOLT symbol part of the library's interface. */
#ifndef KOLT_EXPORT_H
#define KOLT_EXPORT_H

#if defined(__GNUC__)
#define KOLT_EXPORT __attribute__((visibility("default")))
#else
#define KOLT_EXPORT
#endif

#ifdef __cplusplus
#define KOLT_EXTERN_C_BEGIN extern "C" {
#define KOLT_EXTERN_C_END }
#else
#define KOLT_EXTERN_C_BEGIN
#define KOLT_EXTERN_C_END
#endif

#endif /* KOLT_EXPORT_H */
