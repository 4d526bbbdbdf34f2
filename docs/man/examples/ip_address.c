/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <uchar.h>

/* Compare with 1: the tests have a third result for a NULL text. */
static const char* KindOf(const char* text) {
  if (PXTIsIPv4(text) == 1) return "IPv4";
  if (PXTIsIPv6(text) != 1) return "no address";
  return PXTIsLinkLocal(text) == 0 ? "IPv6, link-local" : "IPv6";
}

/* From text to bytes in network order and back. */
static int Convert(const char* text) {
  u8 network[16];
  astring back[65];
  u32 length = sizeof(network);
  s32 size = sizeof(back);
  if (PXTIPAddrASCIIToNetwork(text, network, &length) != SM_STATUS_SUCCESS) return 1;
  if (PXTIPAddrNetworkToASCII(network, length, back, &size) != SM_STATUS_SUCCESS) return 1;
  printf("%s has %u bytes; same address: %u\n", back, length, PXTCheckIPEqual(text, back));
  return 0;
}

/* The name of this machine in 8-bit and 16-bit text, and its domain. */
static int PrintNames(void) {
  astring name[256];
  ustring units[256];
  u32 size = sizeof(name);
  if (PXTGetIPHostName(name, &size) != SM_STATUS_SUCCESS) return 1;
  size = 255;
  if (PXTUniGetIPHostName(units, &size) != SM_STATUS_SUCCESS) return 1;
  astring* const domain = PXTGetComputerDomainName();
  printf("%s (%u units), %s\n", name, PXTUniStrlen(units),
         PXTValidateHostName(name) == SM_STATUS_SUCCESS ? "a valid name" : "not a valid name");
  PXTFreeMem(domain);                                      /* NULL where the machine has none */
  return PXTGetDNSSuffixNameName(name, sizeof(name)) == 0; /* never has a suffix */
}

/* The addresses of the running interfaces: in slots of 65 bytes, or as one new block. */
static int PrintAddresses(void) {
  char slots[16][65];
  u32 count = 16;
  const u32 status = PXTGetIPAddrStrList(NULL, &count, slots);
  if (status != SM_STATUS_SUCCESS) return status != SM_STATUS_BUFFER_TOO_SMALL;
  for (u32 at = 0; at < count; ++at)
    puts(slots[at]);
  PXTFreeMem(PXTHostGetHostIPAddrList(&count));
  return 0;
}

/* What the machine can speak, and its own address. */
static void PrintSupport(void) {
  const astring* const loopBack = PXTGetLoopBack(); /* not to be freed */
  printf("sockets: %s\n", PXTGetSockType() != 0 && loopBack != NULL ? "yes" : "no");
}

/* A checksum for files that are exchanged; it protects nothing. */
static void PrintDigest(const char* text) {
  u8 digest[16];
  if (PXTMD5Hash(text, digest) != 1) return;
  for (int at = 0; at < 16; ++at)
    printf("%02x", digest[at]);
  puts("");
}

int main(void) {
  const char* const texts[] = {"10.1.2.3", "::1", "fe80::1", "ten"};
  for (int at = 0; at < 4; ++at)
    printf("%s: %s\n", texts[at], KindOf(texts[at]));
  if (Convert("0:0:0:0:0:0:0:1") != 0 || PrintNames() != 0 || PrintAddresses() != 0) return 1;
  PrintSupport();
  PrintDigest("abc");
  return 0;
}

/*
 * Prints:
 *   10.1.2.3: IPv4
 *   ::1: IPv6
 *   fe80::1: IPv6, link-local
 *   ten: no address
 *   ::1 has 16 bytes; same address: 1
 *   qvxtest (7 units), a valid name
 *   sockets: yes
 *   900150983cd24fb0d6963f7d28e17f72
 */
