/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_TYPES_H
#define QVXCS_TYPES_H

/**
 * @file
 * The types by which values cross the interface.
 *
 * Widths are fixed and the same on 64-bit and 32-bit machines; only pointers, `time_t` and
 * `pthread_t` have the machine's width. Every status and every size is a `qvx_u32`.
 *
 * Each type also has a short name without `qvx_`, as in `u32` for `qvx_u32`. A program that has
 * its own names such as `u64` defines `QVXCS_NO_SHORT_TYPES` before it includes any header of
 * this library: the short names are then left out, and everything else works the same.
 */

#include <stdint.h>

#if defined(__GNUC__)
#define QVX_EXPORT __attribute__((visibility("default")))
#else
#define QVX_EXPORT
#endif

#ifdef __cplusplus
#define QVX_BEGIN_DECLS extern "C" {
#define QVX_END_DECLS }
#else
#define QVX_BEGIN_DECLS
#define QVX_END_DECLS
#endif

/** 8-bit text up to a NUL byte: ASCII, UTF-8 or the locale's encoding, as each function says. */
typedef char qvx_astring;
/** One 16-bit unit; as `qvx_ustring*`, text in UCS-2 up to a 0 unit. */
typedef uint16_t qvx_ustring;
/** A 16-bit boolean: exactly 1 is true, any other value counts as false. */
typedef uint16_t qvx_booln;

/** 8 bits, 0 to 255. */
typedef unsigned char qvx_u8;
/** 8 bits with a sign. */
typedef int8_t qvx_s8;
/** 16 bits, 0 to 65,535. */
typedef uint16_t qvx_u16;
/** 16 bits with a sign. */
typedef int16_t qvx_s16;
/** 32 bits, 0 to 4,294,967,295; every status and size. */
typedef uint32_t qvx_u32;
/** 32 bits with a sign. */
typedef int32_t qvx_s32;
/** 64 bits without a sign. */
typedef uint64_t qvx_u64;
/** 64 bits with a sign. */
typedef int64_t qvx_s64;
/** A 64-bit IEEE double. */
typedef double qvx_d64;

/** The values of a boolean. */
enum QVXBoolean {
  QVX_FALSE = 0, /**< false, as is any value but 1 */
  QVX_TRUE = 1   /**< true */
};

/** Number bases, for the calls that take one. */
enum QVXBase {
  QVX_BASE_BINARY = 2,      /**< for writing only, where the text is always empty */
  QVX_BASE_OCTAL = 8,       /**< digits 0 to 7 */
  QVX_BASE_DECIMAL = 10,    /**< digits 0 to 9 */
  QVX_BASE_HEXADECIMAL = 16 /**< digits 0 to 9 and a to f */
};

#ifndef QVXCS_NO_SHORT_TYPES
/** Short for #qvx_astring. */
typedef qvx_astring astring;
/** Short for #qvx_ustring. */
typedef qvx_ustring ustring;
/** Short for #qvx_booln. */
typedef qvx_booln booln;
/** Short for #qvx_u8. */
typedef qvx_u8 u8;
/** Short for #qvx_s8. */
typedef qvx_s8 s8;
/** Short for #qvx_u16. */
typedef qvx_u16 u16;
/** Short for #qvx_s16. */
typedef qvx_s16 s16;
/** Short for #qvx_u32. */
typedef qvx_u32 u32;
/** Short for #qvx_s32. */
typedef qvx_s32 s32;
/** Short for #qvx_u64. */
typedef qvx_u64 u64;
/** Short for #qvx_s64. */
typedef qvx_s64 s64;
/** Short for #qvx_d64. */
typedef qvx_d64 d64;
#endif

#endif
