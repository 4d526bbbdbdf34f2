/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_XML_BUFFER_H
#define QVXCS_XML_BUFFER_H

/**
 * @file
 * XML text built in memory, one element at a time.
 *
 * A buffer is an opaque handle over a growing UTF-8 text. A caller opens an element, appends
 * children, closes it, and at the end takes the text or discards everything. Nothing is parsed or
 * checked: names and attribute texts are written as they stand, and it is the caller who matches
 * opening and closing tags.
 *
 * The value of an element is given by a pointer and a type code. Values behind a pointer need no
 * alignment; exactly their bytes are read.
 *
 * | code | the pointer points to     | written between the tags                              |
 * |-----:|---------------------------|-------------------------------------------------------|
 * |    1 | `astring` text            | the text as it stands                                 |
 * |    2 | `ustring` text            | the text as UTF-8, not escaped                        |
 * |    4 | `booln`                   | "true" for exactly 1, else "false"                    |
 * |    5 | `u32`                     | a number                                              |
 * |    7 | `s32`                     | a number                                              |
 * |    9 | `u64`                     | a decimal number                                      |
 * |   11 | `s64`                     | a decimal number                                      |
 * |   13 | `d64`                     | eight decimal places, cut at 31 characters            |
 * |   15 | `s32`, seconds since 1970 | local time, "Thu Jan  1 00:00:01 1970"; below 1: "-1" |
 * |   16 | `SSAStr`                  | its text as it stands; empty without one              |
 * |   17 | `SSUStr`                  | its text as UTF-8, not escaped; empty without one     |
 * |   18 | nothing, may be NULL      | the opening tag alone                                 |
 * |   19 | nothing, may be NULL      | the closing tag alone, without attributes             |
 * |   20 | unsigned 8 bits           | a number                                              |
 * |   21 | signed 8 bits             | a number                                              |
 * |   22 | unsigned 16 bits          | a number                                              |
 * |   23 | signed 16 bits            | a number                                              |
 * |   25 | `PXTTypedValue`           | its value, by its own type and format                 |
 * |   26 | `astring` text            | the text, escaped for XML                             |
 * |   27 | `ustring` text            | the text as UTF-8, escaped for XML                    |
 *
 * The gaps are no types and are refused; the codes never change. A "number" is decimal unless a
 * `PXTTypedValue` asks for radix 16.
 *
 * Memory: a buffer starts with 64 bytes or what is asked for and grows as the growable strings do.
 * When it cannot grow, the piece at hand is dropped and the call still succeeds; memory that
 * lacks before anything is appended is reported, and the buffer is then as it was.
 *
 * Nothing here takes a lock. A buffer belongs to one thread at a time; different buffers may be
 * built on different threads.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** A value that describes itself, for type code 25. */
typedef struct PXTTypedValue {
  qvx_s32 type;   /**< type code of `value`; 25 is refused here */
  qvx_s32 format; /**< 5, 7, 20 to 23: radix, 0 and 10 decimal, 16 as "%#x" prints it, no other;
                   26, 27: number of times the text is escaped, below 1 once; else ignored */
  void* value;    /**< as the type code says */
} PXTTypedValue;

/**
 * Starts an XML buffer.
 *
 * @param[in] initialSize  bytes of room to begin with; at least 64 are taken
 * @param[in] stylesheet   exactly 1: the text starts with the processing instruction
 *                         `<?xml-stylesheet type="text/xsl" version="1.0" encoding="UTF-8"?>`
 * @return the buffer, or NULL without memory
 * @par Memory
 * Ends with PXTXFreeBuf or PXTXFreeBufGetContent.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT void* PXTXAllocBuf(qvx_u32 initialSize, qvx_booln stylesheet);

/**
 * Frees a buffer and its text.
 *
 * @param[in] buffer  the buffer, or NULL to do nothing
 * @return always NULL
 * @par Memory
 * The handle is invalid afterwards.
 * @par Threads
 * The buffer belongs to the calling thread.
 */
QVX_EXPORT qvx_astring* PXTXFreeBuf(void* buffer);

/**
 * Frees a buffer and hands out its text.
 *
 * @param[in] buffer  the buffer, or NULL
 * @return the text, which is empty when nothing was appended; NULL for a NULL buffer
 * @par Memory
 * The text is the caller's and is freed with PXTXFreeBufContent. The handle is invalid afterwards.
 * @par Threads
 * The buffer belongs to the calling thread.
 */
QVX_EXPORT qvx_astring* PXTXFreeBufGetContent(void* buffer);

/**
 * Frees a text taken from a buffer.
 *
 * @param[in] text  the text, or NULL to do nothing
 * @par Memory
 * PXTFreeMem does the same.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT void PXTXFreeBufContent(qvx_astring* text);

/**
 * Appends an element with a value: `<name attributes>value</name>`.
 *
 * @param[in,out] buffer  the buffer
 * @param[in] name        the element's name, written as it stands
 * @param[in] attributes  written as it stands after one blank; NULL without any, and an empty text
 *                        still gets its blank
 * @param[in] type        type code of the value
 * @param[in] value       the value; may be NULL for the codes 18 and 19 only
 * @retval SM_STATUS_SUCCESS also where the buffer could not grow, or where a text of the codes 2
 *         and 17 could not be converted and the element stays empty
 * @retval SM_STATUS_INVALID_PARAMETER when `buffer`, `name` or a needed value is NULL, and for a
 *         type code or radix that is none; the buffer stays as it was
 * @retval SM_STATUS_NO_MEMORY without memory for the element, and when a text of the codes 26 and
 *         27 cannot be converted; the buffer stays as it was
 * @par Memory
 * Name, attributes and value are copied.
 * @par Threads
 * The buffer belongs to the calling thread.
 */
QVX_EXPORT qvx_u32 PXTXBufCatNode(void* buffer, const qvx_astring* name,
                                  const qvx_astring* attributes, qvx_s32 type, const void* value);

/**
 * Appends an opening tag: `<name attributes>`.
 *
 * @param[in,out] buffer  the buffer
 * @param[in] name        the element's name, written as it stands
 * @param[in] attributes  written as it stands after one blank; NULL without any
 * @retval SM_STATUS_SUCCESS also where the buffer could not grow
 * @retval SM_STATUS_INVALID_PARAMETER when `buffer` or `name` is NULL
 * @retval SM_STATUS_NO_MEMORY without memory for the tag; the buffer stays as it was
 * @par Memory
 * Name and attributes are copied.
 * @par Threads
 * The buffer belongs to the calling thread.
 */
QVX_EXPORT qvx_u32 PXTXBufCatBeginNode(void* buffer, const qvx_astring* name,
                                       const qvx_astring* attributes);

/**
 * Appends a closing tag: `</name>`.
 *
 * @param[in,out] buffer  the buffer
 * @param[in] name        the element's name, written as it stands
 * @retval SM_STATUS_SUCCESS also where the buffer could not grow
 * @retval SM_STATUS_INVALID_PARAMETER when `buffer` or `name` is NULL
 * @retval SM_STATUS_NO_MEMORY without memory for the tag; the buffer stays as it was
 * @par Memory
 * The name is copied.
 * @par Threads
 * The buffer belongs to the calling thread.
 */
QVX_EXPORT qvx_u32 PXTXBufCatEndNode(void* buffer, const qvx_astring* name);

/**
 * Appends an empty element: `<name attributes/>`.
 *
 * @param[in,out] buffer  the buffer
 * @param[in] name        the element's name, written as it stands
 * @param[in] attributes  written as it stands after one blank; NULL without any
 * @retval SM_STATUS_SUCCESS also where the buffer could not grow
 * @retval SM_STATUS_INVALID_PARAMETER when `buffer` or `name` is NULL
 * @retval SM_STATUS_NO_MEMORY without memory for the element; the buffer stays as it was
 * @par Memory
 * Name and attributes are copied.
 * @par Threads
 * The buffer belongs to the calling thread.
 */
QVX_EXPORT qvx_u32 PXTXBufCatEmptyNode(void* buffer, const qvx_astring* name,
                                       const qvx_astring* attributes);

QVX_END_DECLS

#endif
