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
 * checked: names and attribute texts are written unchanged, and the caller matches
 * opening and closing tags.
 *
 * The value of an element is given by a pointer and a type code of `QVXValueType`. Values need no
 * alignment; exactly their bytes are read. Other codes are refused,
 * and the codes never change. A "number" is decimal unless a `PXTTypedValue` asks for base 16.
 *
 * Memory: a buffer starts with 64 bytes or what is asked for and grows as the growable strings do.
 * When it cannot grow, what was to be appended is dropped and the call still succeeds. Only an
 * escaped text for which there is no memory, and an element that no buffer can hold, are reported;
 * the buffer is then as it was.
 *
 * Nothing here takes a lock. A buffer belongs to one thread at a time; different buffers may be
 * built on different threads.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** Type codes: what a value's pointer points to, and what is written between the tags. */
enum QVXValueType {
  QVX_TYPE_ASTRING = 1,      /**< `astring` text: the text, unchanged */
  QVX_TYPE_USTRING = 2,      /**< `ustring` text: the text as UTF-8, not escaped */
  QVX_TYPE_BOOLN = 4,        /**< `booln`: "true" for exactly 1, else "false" */
  QVX_TYPE_U32 = 5,          /**< `u32`: a number */
  QVX_TYPE_S32 = 7,          /**< `s32`: a number */
  QVX_TYPE_U64 = 9,          /**< `u64`: a decimal number */
  QVX_TYPE_S64 = 11,         /**< `s64`: a decimal number */
  QVX_TYPE_D64 = 13,         /**< `d64`: eight decimal places, cut at 31 characters */
  QVX_TYPE_TIME = 15,        /**< `s32`, seconds since 1970: local time, as in
                                  "Thu Jan  1 00:00:01 1970"; "-1" below 1 */
  QVX_TYPE_SSASTR = 16,      /**< `SSAStr`: its text, unchanged; empty without one */
  QVX_TYPE_SSUSTR = 17,      /**< `SSUStr`: its text as UTF-8, not escaped; empty without one */
  QVX_TYPE_BEGIN = 18,       /**< nothing, may be NULL: the opening tag alone */
  QVX_TYPE_END = 19,         /**< nothing, may be NULL: the closing tag alone, no attributes */
  QVX_TYPE_U8 = 20,          /**< `u8`: a number */
  QVX_TYPE_S8 = 21,          /**< `s8`: a number */
  QVX_TYPE_U16 = 22,         /**< `u16`: a number */
  QVX_TYPE_S16 = 23,         /**< `s16`: a number */
  QVX_TYPE_TYPED_VALUE = 25, /**< `PXTTypedValue`: its value, by its own type and format */
  QVX_TYPE_XML_ASTRING = 26, /**< `astring` text: the text, escaped for XML */
  QVX_TYPE_XML_USTRING = 27  /**< `ustring` text: the text as UTF-8, escaped for XML */
};

/** A value that describes itself, for QVX_TYPE_TYPED_VALUE. */
typedef struct PXTTypedValue {
  qvx_s32 type;   /**< type code of `value`; QVX_TYPE_TYPED_VALUE is refused here */
  qvx_s32 format; /**< for numbers of 8, 16 and 32 bits the base: 0 and QVX_BASE_DECIMAL decimal,
                        QVX_BASE_HEXADECIMAL as "%#x" prints it, no other; for
                        QVX_TYPE_XML_ASTRING and QVX_TYPE_XML_USTRING how many times the text is
                        escaped, below 1 once; else ignored */
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
 * @param[in] name        the element's name, written unchanged
 * @param[in] attributes  written unchanged after one blank; NULL without any, and an empty text
 *                        still gets its blank
 * @param[in] type        type code of the value
 * @param[in] value       the value; may be NULL for QVX_TYPE_BEGIN and QVX_TYPE_END only
 * @retval SM_STATUS_SUCCESS also where the buffer could not grow, or where a text of
 *         QVX_TYPE_USTRING or QVX_TYPE_SSUSTR could not be converted and the element stays empty
 * @retval SM_STATUS_INVALID_PARAMETER when `buffer`, `name` or a needed value is NULL, and for a
 *         type code or base that does not exist; the buffer stays as it was
 * @retval SM_STATUS_NO_MEMORY when a text of QVX_TYPE_XML_ASTRING or QVX_TYPE_XML_USTRING cannot
 *         be converted, also for lack of memory, and for an element of 4 GiB; the buffer stays as
 * it was
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
 * @param[in] name        the element's name, written unchanged
 * @param[in] attributes  written unchanged after one blank; NULL without any
 * @retval SM_STATUS_SUCCESS also where the buffer could not grow
 * @retval SM_STATUS_INVALID_PARAMETER when `buffer` or `name` is NULL
 * @retval SM_STATUS_NO_MEMORY for a tag of 4 GiB; the buffer stays as it was
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
 * @param[in] name        the element's name, written unchanged
 * @retval SM_STATUS_SUCCESS also where the buffer could not grow
 * @retval SM_STATUS_INVALID_PARAMETER when `buffer` or `name` is NULL
 * @retval SM_STATUS_NO_MEMORY for a tag of 4 GiB; the buffer stays as it was
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
 * @param[in] name        the element's name, written unchanged
 * @param[in] attributes  written unchanged after one blank; NULL without any
 * @retval SM_STATUS_SUCCESS also where the buffer could not grow
 * @retval SM_STATUS_INVALID_PARAMETER when `buffer` or `name` is NULL
 * @retval SM_STATUS_NO_MEMORY for an element of 4 GiB; the buffer stays as it was
 * @par Memory
 * Name and attributes are copied.
 * @par Threads
 * The buffer belongs to the calling thread.
 */
QVX_EXPORT qvx_u32 PXTXBufCatEmptyNode(void* buffer, const qvx_astring* name,
                                       const qvx_astring* attributes);

QVX_END_DECLS

#endif
