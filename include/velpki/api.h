/* velpki/api.h: how the names of both libraries are declared.
 *
 * What holds for every function (null, failure, ownership, threads) is said once in docs/conventions.md. */
#ifndef VELPKI_API_H
#define VELPKI_API_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#error "velPKI is written for Linux"
#endif

#define VELPKI_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define VELPKI_BEGIN extern "C" {
#define VELPKI_END }
#define VELPKI_NOEXCEPT noexcept
#else
#define VELPKI_BEGIN
#define VELPKI_END
#define VELPKI_NOEXCEPT
#endif

#endif
