/** @file velpki/api.h
 * How the names of both libraries are declared; every other header includes it.
 *
 * What holds for every function (null, failure, ownership, threads) is said once in docs/conventions.md. Read asn1.h
 * next. */
#ifndef VELPKI_API_H
#define VELPKI_API_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#error "velPKI is written for Linux"
#endif

/** An exported name. */
#define VELPKI_API __attribute__((visibility("default")))

/** @def VELPKI_BEGIN
 * Begins the declarations of a header, which have C linkage. */
/** @def VELPKI_END
 * Ends them. */
/** @def VELPKI_NOEXCEPT
 * No function throws. */
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
