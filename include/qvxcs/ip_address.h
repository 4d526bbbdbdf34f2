/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_IP_ADDRESS_H
#define QVXCS_IP_ADDRESS_H

/**
 * @file
 * Addresses and names of this machine, address texts, and MD5 digests.
 *
 * An address text is plain `astring`; a network address is 4 bytes (IPv4) or 16 bytes (IPv6) in
 * network byte order. Which of the two a text is, only a ":" in it decides. An address list is an
 * array of slots of 65 bytes, in each one NUL-terminated text of at most 64 characters. The
 * calls that convert addresses and those that give the host name need IP support, which is loaded
 * when the library is attached and stays so; before that they answer `SM_STATUS_NOT_LOADED`. The
 * tests of this family answer with other values than 0 and 1 as well: compare them with the value
 * that is meant. No call takes the lock that the suite's processes share. Nothing but the support
 * flag is kept between calls, so any thread may call at any time.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * Gives the domain name that the operating system has set for this machine (`getdomainname`), which
 * is seldom that of the DNS.
 *
 * A name that begins with "(none)", which is what the system reports when none is set, is no
 * domain, whatever follows these six characters. A machine whose domain name is empty has an empty
 * text.
 *
 * @return the name, or NULL without a domain, without memory or when the system does not tell
 * @par Memory
 * The text is the caller's, who releases it with `PXTFreeMem`.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTGetComputerDomainName(void);

/**
 * Gives this machine's host name.
 *
 * A name that does not fit is cut at the room and terminated there, which is a success and leaves
 * the size as it was. A whole name that fills the room exactly leaves the size as it was, too: give
 * 65 bytes of room or more, in which every name of Linux fits. Start with a zeroed buffer.
 *
 * @param[out] name     room for the name and its NUL
 * @param[in,out] size  bytes of room; then the name's length plus one, or as it was when the name
 *                      was cut or the system gave none. With 0 nothing is written.
 * @retval SM_STATUS_SUCCESS also when the system did not give the name
 * @retval SM_STATUS_NOT_LOADED when IP support is not loaded; this is looked at first
 * @retval SM_STATUS_BAD_ARGUMENT when `name` or `size` is NULL
 * @par Memory
 * `name` stays the caller's.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_u32 PXTGetIPHostName(qvx_astring* name, qvx_u32* size);

/**
 * Gives this machine's host name in UCS-2.
 *
 * The name is taken to be UTF-8 and handed to the converter `PXTUTF8StrToUCS2Str` together with
 * both arguments, which mean here what they mean there.
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
 * Stands for the DNS suffix, which this platform does not provide.
 *
 * @param[in] name  never followed
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
 * with "-" or ".". Between its first and its last character only letters, digits, "-" and "." may
 * stand. Of the last character nothing else is asked, so a name that ends with "_" is valid.
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
 * Gives the loopback address to use on this machine.
 *
 * @return "127.0.0.1" where IPv4 is supported, "::1" where only IPv6 is, NULL where neither is
 * @par Memory
 * The text is a constant of the library and must not be released.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT const qvx_astring* PXTGetLoopBack(void);

/**
 * Tests whether a text has only the characters of an IPv4 address.
 *
 * Decimal digits and dots in any arrangement count, the empty text too: "1..2" and "999" are
 * answered with yes.
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
 * Tests whether a text is meant as an IPv6 address, which is whether a ":" is in it.
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
 * Unlike the other two tests this one answers 0 for yes.
 *
 * @param[in] text  the text
 * @retval 0 it begins so
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
 * @retval SM_STATUS_NOT_LOADED when IP support is not loaded; this is looked at first
 * @retval SM_STATUS_BAD_ARGUMENT when an argument is NULL
 * @retval SM_STATUS_BUFFER_TOO_SMALL when the room is too small: `*size` is the size needed. The
 *         size is looked at before the text.
 * @retval 0xFFFFFFFF when the text is no address: nothing is changed
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
 * @retval SM_STATUS_NOT_LOADED when IP support is not loaded; this is looked at first
 * @retval SM_STATUS_BAD_ARGUMENT when a pointer is NULL or the length is another one
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
 * and "0:0:0:0:0:0:0:1" are equal. Before IP support is loaded nothing is equal.
 *
 * @param[in] a  a text
 * @param[in] b  another text
 * @retval 1 both are the same address
 * @retval 0 they are not, or one of them is no address
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
 * Loopback and point-to-point interfaces are passed over. All addresses are counted, also those
 * that the list has no room for. Addresses come and go: between counting and listing there may be
 * more of them.
 *
 * @param[in] ignored    not used
 * @param[in,out] count  slots of room in `list`; then the addresses there are
 * @param[out] list      room for `*count` slots of 65 bytes, or NULL to count only
 * @retval SM_STATUS_SUCCESS
 * @retval SM_STATUS_BAD_ARGUMENT when `count` is NULL
 * @retval SM_STATUS_BUFFER_TOO_SMALL when there are more addresses than slots: as many as fit are
 *         listed
 * @retval 0xFFFFFFFF when the system does not tell: the count is 0
 * @par Memory
 * `list` stays the caller's. The bytes of a slot behind its text are untouched.
 * @par Threads
 * Keeps no state; any thread may call.
 * @par Standards
 * The text form is that of `inet_ntop` (POSIX.1-2008), without a zone.
 */
QVX_EXPORT qvx_u32 PXTGetIPAddrStrList(const qvx_astring* ignored, qvx_u32* count, void* list);

/**
 * Gives the addresses of this machine's running interfaces in a new block.
 *
 * @param[out] count  the number of addresses; 0 on failure
 * @return the addresses, one to each slot of 65 bytes, or NULL when `count` is NULL, without
 *         memory, when the system does not tell, when IP support is not loaded or when there came
 *         to be more addresses meanwhile. The block of no addresses is not NULL.
 * @par Memory
 * The block is the caller's, who releases it with `PXTFreeMem`.
 * @par Threads
 * Keeps no state; any thread may call.
 */
QVX_EXPORT qvx_astring* PXTHostGetHostIPAddrList(qvx_u32* count);

/**
 * Computes the MD5 digest of a text, its NUL not counted.
 *
 * MD5 is no protection against anyone who wants two texts of one digest: it is for telling texts
 * apart, not for secrets.
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
