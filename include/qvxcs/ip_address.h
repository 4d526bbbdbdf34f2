/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_IP_ADDRESS_H
#define QVXCS_IP_ADDRESS_H

/**
 * @file
 * Addresses and names of this machine, address texts, and MD5 digests.
 *
 * An address text is plain `astring`; a network address is 4 bytes (IPv4) or 16 bytes (IPv6) in
 * network byte order. A text with a ":" in it is IPv6, any other is IPv4. An address list is an
 * array of 65-byte slots; each slot has one NUL-terminated text of at most 64 characters. The calls
 * that convert addresses or return the host name need IP support. It is loaded when the library is
 * attached and stays loaded; before that they return `SM_STATUS_NOT_LOADED`. The tests of this
 * family can return values other than 0 and 1: compare a result with the value that you expect. No
 * call takes the lock that the suite's processes share. Only the support flag is kept between
 * calls, so any thread may call at any time.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * Returns the domain name that is set in this machine's operating system (`getdomainname`), which
 * is seldom the DNS domain.
 *
 * The system reports "(none)" when no name is set. A name that begins with these six characters
 * counts as no domain, whatever follows them. For an empty domain name the text is empty.
 *
 * @return the name, or NULL when there is no domain, memory runs out or the system does not report
 *         it
 * @par Memory
 * The caller releases the text with `PXTFreeMem`.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetComputerDomainName(void);

/**
 * Gets this machine's host name.
 *
 * A name that does not fit is cut to the room and terminated there; the call succeeds and the size
 * is unchanged. The size is also unchanged when a whole name fills the room exactly. Provide 65
 * bytes or more, enough for every Linux host name. Start with a zeroed buffer.
 *
 * @param[out] name     room for the name and its NUL
 * @param[in,out] size  bytes of room; then the name's length plus one, or unchanged when the name
 *                      was cut or the system returned none. With 0 nothing is written.
 * @retval SM_STATUS_SUCCESS also when the system did not return the name
 * @retval SM_STATUS_NOT_LOADED when IP support is not loaded; this is checked first
 * @retval SM_STATUS_BAD_ARGUMENT when `name` or `size` is NULL
 * @par Memory
 * `name` stays the caller's.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTGetIPHostName(qvx_astring* name, qvx_u32* size);

/**
 * Gets this machine's host name in UCS-2.
 *
 * The name is treated as UTF-8 and passed to the converter `PXTUTF8StrToUCS2Str` with both
 * arguments, which have the same meaning there.
 *
 * @param[out] name     room for the units and one unit more, or NULL to ask for the size
 * @param[in,out] size  room in 16-bit units; then the bytes written or needed, two for each unit,
 *                      the terminating unit counted
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_NOT_LOADED when IP support is not loaded
 * @retval SM_STATUS_INVALID_PARAMETER when `size` is NULL
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the units do not fit: `name` is left without its
 *         terminating unit
 * @retval SM_STATUS_BAD_DATA when the name is not UTF-8
 * @par Memory
 * `name` stays the caller's. A name that fills the room exactly puts its terminating unit one
 * element beyond it.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * RFC 2279.
 */
QVX_EXPORT qvx_u32 PXTUniGetIPHostName(qvx_ustring* name, qvx_u32* size);

/**
 * Would get the DNS suffix; this platform does not provide it.
 *
 * @param[in] name  never dereferenced
 * @param[in] size  bytes of room
 * @retval SM_STATUS_INVALID_PARAMETER when `size` is 0
 * @retval 0xFFFFFFFF otherwise
 * @par Memory
 * `name` is not touched.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTGetDNSSuffixNameName(void* name, qvx_u32 size);

/**
 * Tests whether a text has the form of a host name.
 *
 * A valid name has at most 255 characters, begins with an ASCII letter or digit and does not end
 * with "-" or ".". Between its first and its last character only letters, digits, "-" and "." are
 * allowed. Nothing else is checked in the last character, so a name that ends with "_" is valid.
 *
 * @param[in] name  the text
 * @retval SM_STATUS_SUCCESS for a valid name
 * @retval SM_STATUS_BAD_ARGUMENT when `name` is NULL
 * @retval SM_STATUS_INVALID_PARAMETER for the empty text, and when the first character is neither a
 *         letter nor a digit
 * @retval 0xFFFFFFFF when the text is too long, ends with "-" or ".", or has another character
 *         inside
 * @par Memory
 * Nothing is allocated or kept.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTValidateHostName(const qvx_astring* name);

/**
 * Finds the address families that this machine supports, by opening a socket of each.
 *
 * @retval 0 neither family
 * @retval 1 IPv4 only
 * @retval 2 IPv6 only
 * @retval 3 both families
 * @par Memory
 * Nothing is allocated; the sockets are closed at once.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTGetSockType(void);

/**
 * Returns the loopback address to use on this machine.
 *
 * @return "127.0.0.1" where IPv4 is supported, "::1" where only IPv6 is, NULL where neither is
 * @par Memory
 * The text is a constant of the library and must not be released.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT const qvx_astring* PXTGetLoopBack(void);

/**
 * Tests whether a text contains only the characters of an IPv4 address.
 *
 * Decimal digits and dots in any order count, and so does the empty text: the result is 1 for
 * "1..2" and "999".
 *
 * @param[in] text  the text
 * @retval 1 every character is a digit or a dot
 * @retval 0 another character is in it
 * @retval SM_STATUS_BAD_ARGUMENT when `text` is NULL
 * @par Memory
 * Nothing is allocated or kept.
 * @par Threads
 * Keeps no state; any thread may call. Needs no IP support.
 */
QVX_EXPORT qvx_u32 PXTIsIPv4(const qvx_astring* text);

/**
 * Tests whether a text is treated as an IPv6 address, that is, whether it contains a ":".
 *
 * @param[in] text  the text
 * @retval 1 a ":" is in it
 * @retval 0 none is
 * @retval SM_STATUS_IP_INVALID_PARAMETER when `text` is NULL
 * @par Memory
 * Nothing is allocated or kept.
 * @par Threads
 * Keeps no state; any thread may call. Needs no IP support.
 */
QVX_EXPORT qvx_u32 PXTIsIPv6(const qvx_astring* text);

/**
 * Tests whether an address text begins with "fe80", in upper or lower case.
 *
 * Unlike the other two tests, this one returns 0 for yes.
 *
 * @param[in] text  the text
 * @retval 0 it begins with "fe80"
 * @retval 0xFFFFFFFF it does not, or has fewer than four characters
 * @retval SM_STATUS_IP_INVALID_PARAMETER when `text` is NULL
 * @par Memory
 * Nothing is allocated or kept.
 * @par Threads
 * Keeps no state; any thread may call. Needs no IP support.
 */
QVX_EXPORT qvx_u32 PXTIsLinkLocal(const qvx_astring* text);

/**
 * Converts an address text to its network form.
 *
 * @param[in] address    the text; with a ":" in it an IPv6 address, else an IPv4 address
 * @param[out] network   room for 16 or 4 bytes
 * @param[in,out] size   bytes of room; then the 16 or 4 that were written or are needed
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_NOT_LOADED when IP support is not loaded; this is checked first
 * @retval SM_STATUS_BAD_ARGUMENT when an argument is NULL
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the room is too small: `*size` is the size needed. The
 *         size is checked before the text.
 * @retval 0xFFFFFFFF when the text is not an address: nothing is changed
 * @par Memory
 * `network` stays the caller's and needs no alignment.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * The text forms are those of `inet_pton` (POSIX.1-2008, RFC 4291), without zones.
 */
QVX_EXPORT qvx_u32 PXTIPAddrASCIIToNetwork(const qvx_astring* address, void* network,
                                           qvx_u32* size);

/**
 * Converts a network address to its text.
 *
 * @param[in] network    the address, which needs no alignment
 * @param[in] length     its bytes: 4 for IPv4 or 16 for IPv6
 * @param[out] address   room for the text and its NUL; 46 bytes are enough for every address
 * @param[in,out] size   bytes of room; then the text's length plus one, written or needed
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_NOT_LOADED when IP support is not loaded; this is checked first
 * @retval SM_STATUS_BAD_ARGUMENT when a pointer is NULL or the length is neither 4 nor 16
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the text and its NUL do not fit: `address` is untouched
 *         and `*size` is the size needed
 * @par Memory
 * `address` stays the caller's.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * The text form is that of `inet_ntop` (POSIX.1-2008).
 */
QVX_EXPORT qvx_u32 PXTIPAddrNetworkToASCII(const void* network, qvx_u32 length,
                                           qvx_astring* address, qvx_s32* size);

/**
 * Tests whether two texts are spellings of one address.
 *
 * Two texts with a ":" are compared as IPv6 addresses, two texts of digits and dots as IPv4
 * addresses; an IPv6 text is never equal to an IPv4 text. The network forms are compared, so "::1"
 * and "0:0:0:0:0:0:0:1" are equal. Before IP support is loaded no texts are equal.
 *
 * @param[in] a  a text
 * @param[in] b  another text
 * @retval 1 both are the same address
 * @retval 0 they are not, or one of them is not an address
 * @retval SM_STATUS_BAD_ARGUMENT when a text is NULL
 * @par Memory
 * Nothing is allocated or kept.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTCheckIPEqual(const qvx_astring* a, const qvx_astring* b);

/**
 * Lists the addresses of this machine's running interfaces, or counts them.
 *
 * Loopback and point-to-point interfaces are skipped. All addresses are counted, even those for
 * which the list has no room. Addresses come and go: there may be more of them after counting and
 * before listing.
 *
 * @param[in] ignored    not used
 * @param[in,out] count  slots of room in `list`; then the number of addresses
 * @param[out] list      room for `*count` slots of 65 bytes, or NULL to count only
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BAD_ARGUMENT when `count` is NULL
 * @retval SM_STATUS_BUFFER_TOO_SMALL when there are more addresses than slots: as many as fit are
 *         listed
 * @retval 0xFFFFFFFF when the system does not report them: the count is 0
 * @par Memory
 * `list` stays the caller's. The bytes after the text in a slot are untouched.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * The text form is that of `inet_ntop` (POSIX.1-2008), without a zone.
 */
QVX_EXPORT qvx_u32 PXTGetIPAddrStrList(const qvx_astring* ignored, qvx_u32* count, void* list);

/**
 * Returns the addresses of this machine's running interfaces in a new block.
 *
 * @param[out] count  the number of addresses; 0 on failure
 * @return the addresses, one in each slot of 65 bytes; NULL when `count` is NULL, memory runs out,
 *         the system does not report them or IP support is not loaded. With no addresses the block
 *         is not NULL.
 * @par Memory
 * The caller releases the block with `PXTFreeMem`.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTHostGetHostIPAddrList(qvx_u32* count);

/**
 * Computes the MD5 digest of a text, its NUL not counted.
 *
 * MD5 is not safe against anyone who wants two texts with the same digest: use it to distinguish
 * texts, not for secrets.
 *
 * @param[in] text     the text
 * @param[out] digest  room for 16 bytes
 * @retval 1 the digest is written
 * @retval 0 a pointer is NULL, or the digest could not be computed
 * @par Memory
 * `digest` stays the caller's.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * RFC 1321.
 */
QVX_EXPORT qvx_s32 PXTMD5Hash(const qvx_astring* text, qvx_u8* digest);

QVX_END_DECLS

#endif
