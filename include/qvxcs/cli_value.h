/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_CLI_VALUE_H
#define QVXCS_CLI_VALUE_H

/**
 * @file
 * What command-line programs need around the XML buffer: typed values from and to text, and the
 * elements of settings, statuses and help.
 *
 * A value is a pointer and a type code of xml_buffer.h. Values that a pointer
 * points to need no alignment, and exactly as many bytes as the type has are read or written.
 * Integers are decimal.
 *
 * Nothing here takes a lock or keeps state; any thread may call. Texts returned are new and belong
 * to the caller.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** A type code of PXTNVSASCIIToXVal() beside those of xml_buffer.h. */
enum QVXCliValueType {
  QVX_TYPE_THOUSANDTHS = 99 /**< a count of thousandths, stored divided by 1000 as `s64` */
};

/**
 * A command's entry: takes an argument count and that many name=value texts, returns a new XML text
 * (taken from an XML buffer) or NULL.
 */
typedef qvx_astring* (*PXTCommandFunction)(qvx_s32 count, qvx_astring** vector);

/** An entry of a command table. */
typedef struct PXTCommand {
  qvx_astring* name;           /**< the command's name */
  PXTCommandFunction function; /**< its entry; an entry without one is skipped */
} PXTCommand;

/**
 * Reads a typed value from a text.
 *
 * Types: QVX_TYPE_ASTRING (stores the text pointer itself, nothing is copied), QVX_TYPE_BOOLN, the
 * numbers of 8 to 64 bits, QVX_TYPE_D64, and QVX_TYPE_THOUSANDTHS (divided toward zero). Values of
 * 8 and 16 bits are cut to their width and values beyond 32 bits to their low 32 bits, without a
 * fault. Beyond 64 bits any value may be stored. QVX_TYPE_D64 reads what `strtod` reads in the
 * current locale: "0x10" is 16, "inf" and "nan" are numbers, the decimal point is the locale's; a
 * text that is no number is 0, without a fault.
 *
 * @param[in] text  the text
 * @param[in] type  type code
 * @param[out] out  room for the value
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when `out` is NULL; when the text is no number or boolean
 *         (not for QVX_TYPE_D64), where 0 is stored; when the quotient of QVX_TYPE_THOUSANDTHS
 *         needs more than 32 bits, where nothing is stored
 * @retval SM_STATUS_BAD_ARGUMENT for any other type code; nothing is stored
 * @retval 0xFFFFFFFF when `text` is NULL; nothing is stored
 * @par Memory
 * A value of QVX_TYPE_ASTRING points into the caller's text.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTNVSASCIIToXVal(const qvx_astring* text, qvx_s32 type, void* out);

/**
 * Reads a typed value from a vector of name=value texts.
 *
 * @param[in] count   texts in the vector
 * @param[in] vector  the texts
 * @param[in] name    name whose first value is read; case counts
 * @param[in] type    QVX_TYPE_ASTRING, QVX_TYPE_BOOLN, the code of a number of 8 to 64 bits,
 *                    QVX_TYPE_D64 or QVX_TYPE_THOUSANDTHS, read as PXTNVSASCIIToXVal() does
 * @param[out] out    room for the value
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_INVALID_PARAMETER when a pointer is NULL or there is no such name; when the
 *         text is no number or boolean (not for QVX_TYPE_D64), where 0 is stored; when the quotient
 *         of QVX_TYPE_THOUSANDTHS needs more than 32 bits, where nothing is stored
 * @retval SM_STATUS_BAD_ARGUMENT for any other type code; nothing is stored
 * @par Memory
 * A value of QVX_TYPE_ASTRING points into the vector's text.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTNVSNVPValToXVal(qvx_s32 count, qvx_astring** vector, const qvx_astring* name,
                                      qvx_s32 type, void* out);

/**
 * Turns a typed value into a new text.
 *
 * Types: the texts QVX_TYPE_ASTRING, QVX_TYPE_USTRING (as PXTNVSUstrToAstr converts it) and,
 * escaped once, QVX_TYPE_XML_ASTRING and QVX_TYPE_XML_USTRING; QVX_TYPE_BOOLN; the numbers of 8 to
 * 64 bits; QVX_TYPE_D64 (eight decimals and the current locale's decimal point; of a longer text
 * the first 31 characters); QVX_TYPE_TIME (local time, of any value).
 *
 * @param[in] type   type code
 * @param[in] value  the value
 * @return the text; NULL when `value` is NULL, for any other type code, for a text that cannot be
 *         converted, and without memory
 * @par Memory
 * The caller frees the text with PXTFreeMem.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTNVSXValToASCII(qvx_s32 type, const void* value);

/**
 * Makes an 8-bit copy of a 16-bit text, or of a fallback.
 *
 * Only texts whose characters are all below 0x80 are copied correctly. A text that begins with such
 * a character and has surrogates later becomes a wrong text with SM_STATUS_SUCCESS: each surrogate
 * becomes the first character, as PXTUCS2StrToUTF8Str converts it. 0x0041 0xD83D 0xDE00 becomes
 * "AAA".
 *
 * @param[in] text      the text, or NULL for the fallback
 * @param[in] fallback  copied when `text` is NULL; may be NULL
 * @param[out] status   the outcome; may be NULL. It is one of
 *                      SM_STATUS_SUCCESS;
 *                      SM_STATUS_INVALID_PARAMETER: neither text nor fallback;
 *                      SM_STATUS_BUFFER_TOO_SMALL: the text has a character at or above 0x80 that
 *                      is not a surrogate, or it begins with a pair of surrogates;
 *                      SM_STATUS_BAD_DATA: it begins with an unpaired surrogate;
 *                      SM_STATUS_NO_MEMORY
 * @return the copy, or NULL unless the status is SM_STATUS_SUCCESS
 * @par Memory
 * The caller frees the copy with PXTFreeMem.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTNVSUstrToAstrD(const qvx_ustring* text, const qvx_astring* fallback,
                                          qvx_u32* status);

/**
 * Makes an 8-bit copy of a 16-bit text: PXTNVSUstrToAstrD without a fallback.
 *
 * @param[in] text     the text
 * @param[out] status  the outcome, as PXTNVSUstrToAstrD sets it; may be NULL
 * @return the copy, or NULL unless the status is SM_STATUS_SUCCESS
 * @par Memory
 * The caller frees the copy with PXTFreeMem.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTNVSUstrToAstr(const qvx_ustring* text, qvx_u32* status);

/**
 * Makes a 16-bit copy of a UTF-8 text, or of a fallback.
 *
 * @param[in] text      the text, or NULL for the fallback
 * @param[in] fallback  copied when `text` is NULL; may be NULL
 * @param[out] status   the outcome; may be NULL. It is one of
 *                      SM_STATUS_SUCCESS;
 *                      SM_STATUS_INVALID_PARAMETER: neither text nor fallback;
 *                      SM_STATUS_BAD_DATA: the text is malformed or beyond 0x10FFFF;
 *                      SM_STATUS_NO_MEMORY
 * @return the copy, or NULL unless the status is SM_STATUS_SUCCESS
 * @par Memory
 * The caller frees the copy with PXTFreeMem.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * RFC 2279.
 */
QVX_EXPORT qvx_ustring* PXTNVSAstrToUstrD(const qvx_astring* text, const qvx_ustring* fallback,
                                          qvx_u32* status);

/**
 * Makes a 16-bit copy of a UTF-8 text: PXTNVSAstrToUstrD without a fallback.
 *
 * @param[in] text     the text
 * @param[out] status  the outcome, as PXTNVSAstrToUstrD sets it; may be NULL
 * @return the copy, or NULL unless the status is SM_STATUS_SUCCESS
 * @par Memory
 * The caller frees the copy with PXTFreeMem.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * RFC 2279.
 */
QVX_EXPORT qvx_ustring* PXTNVSAstrToUstr(const qvx_astring* text, qvx_u32* status);

/**
 * Appends the element of a setting to an XML buffer.
 *
 * The element is empty, `<Parameter name="..." oldval="..." newval="..." value="..."/>`, with the
 * attributes of the values given, in this order. A value whose text PXTNVSXValToASCII cannot make
 * is left out. The name is not escaped; values are escaped only with QVX_TYPE_XML_ASTRING and
 * QVX_TYPE_XML_USTRING.
 *
 * @param[in,out] buffer  the XML buffer
 * @param[in] name        the setting's name
 * @param[in] oldValue    value before; may be NULL when `value` is given
 * @param[in] newValue    value after; may be NULL when `value` is given
 * @param[in] value       value that did not change; may be NULL when both others are given
 * @param[in] type        type code of all three
 * @retval SM_STATUS_SUCCESS also where the element could not be appended; it is then missing whole
 * @retval SM_STATUS_INVALID_PARAMETER when `buffer`, `name` or a needed value is NULL
 * @retval SM_STATUS_NO_MEMORY without memory to begin; the buffer stays as it was
 * @par Memory
 * Everything is copied.
 * @par Threads
 * The buffer belongs to the calling thread.
 */
QVX_EXPORT qvx_u32 PXTNVSBufCatSetCmdParam(void* buffer, const qvx_astring* name,
                                           const void* oldValue, const void* newValue,
                                           const void* value, qvx_s32 type);

/**
 * Appends a status element to an XML buffer: `<SMStatus mssg="message">status</SMStatus>`.
 *
 * @param[in,out] buffer  the XML buffer; NULL does nothing
 * @param[in] status      the status, written as a signed decimal number
 * @param[in] message     the attribute's text, not escaped; NULL, or no memory for it: no attribute
 * @par Memory
 * Everything is copied.
 * @par Threads
 * The buffer belongs to the calling thread.
 */
QVX_EXPORT void PXTNVSCatSMStatusNode(void* buffer, qvx_s32 status, const qvx_astring* message);

/**
 * Assembles the help of a table of commands.
 *
 * Every entry but the caller's own is called with the two texts "qvxusrinfo=nvsupt" and
 * "cmdhelp=true", which it may change, and a NULL after them. What it returns becomes an element
 * `<qvxcmd val="name">` within `<CLICmdHelp count="...">`, whose count is that of the table minus
 * one. A command that returns NULL is skipped.
 *
 * @param[in] ignoredCount   not used
 * @param[in] ignoredVector  not used
 * @param[in] table          the commands
 * @param[in] count          entries in the table
 * @param[in] self           the calling command's own entry, not asked for help
 * @return the document; an empty text when `table` or `self` is NULL or `count` is below 1; NULL
 *         without memory for the document or for its opening tag
 * @par Memory
 * The caller frees the document with PXTXFreeBufContent; the commands' texts are freed here.
 * @par Threads
 * The commands run on the calling thread, one after another.
 */
QVX_EXPORT qvx_astring* PXTNVSCMDHelp(qvx_s32 ignoredCount, qvx_astring** ignoredVector,
                                      const PXTCommand* table, qvx_s32 count,
                                      PXTCommandFunction self);

QVX_END_DECLS

#endif
