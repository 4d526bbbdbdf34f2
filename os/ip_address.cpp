// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ip_address.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <cstring>

#include "qvxcs/status.h"

#include "base/results.h"
#include "os/ip_support.h"
#include "text/ascii_util.h"

namespace qvx {
namespace {

constexpr u32 kYes = 1;
constexpr u32 kNo = 0;

constexpr u32 kIPv4Bytes = sizeof(in_addr);
constexpr u32 kIPv6Bytes = sizeof(in6_addr);
static_assert(kIPv4Bytes == 4 && kIPv6Bytes == 16);

constexpr astring kLinkLocalPrefix[] = "fe80";
constexpr u32 kLinkLocalPrefixLength = sizeof(kLinkLocalPrefix) - 1;

bool IsDottedDigits(const astring* text) {
  for (const astring* at = text; *at != '\0'; ++at) {
    if ((*at < '0' || *at > '9') && *at != '.') return false;
  }
  return true;
}

// Whether both texts can be addresses of one family.
bool AreComparable(const astring* a, const astring* b) {
  if (IsIPv6(a) == kYes && IsIPv6(b) == kYes) return true;
  return IsIPv4(a) == kYes && IsIPv4(b) == kYes;
}

}  // namespace

u32 IsIPv4(const astring* text) {
  if (text == nullptr) return SM_STATUS_BAD_ARGUMENT;
  // Deliberate: digits and dots in any arrangement count, the empty text too; the dotted form is
  // not checked. Held by IPAddress.AnyDigitsAndDotsCountAsIPv4.
  return IsDottedDigits(text) ? kYes : kNo;
}

u32 IsIPv6(const astring* text) {
  if (text == nullptr) return SM_STATUS_IP_INVALID_PARAMETER;
  return strchr(text, ':') != nullptr ? kYes : kNo;
}

u32 IsLinkLocal(const astring* text) {
  if (text == nullptr) return SM_STATUS_IP_INVALID_PARAMETER;
  // Deliberate: yes is 0 and no is -1, unlike the other two tests.
  // Held by IPAddress.LinkLocalAnswersZeroForYes.
  if (strnlen(text, kLinkLocalPrefixLength) < kLinkLocalPrefixLength) return kMinusOne;
  return AStrnicmp(text, kLinkLocalPrefix, kLinkLocalPrefixLength) == 0 ? 0 : kMinusOne;
}

u32 IPAddrASCIIToNetwork(const astring* address, void* network, u32* size) {
  if (!IPSuptLoaded()) return SM_STATUS_NOT_LOADED;
  if (address == nullptr || network == nullptr || size == nullptr) return SM_STATUS_BAD_ARGUMENT;
  const bool isIPv6 = IsIPv6(address) == kYes;
  const u32 needed = isIPv6 ? kIPv6Bytes : kIPv4Bytes;
  if (*size < needed) {
    *size = needed;
    return SM_STATUS_BUFFER_TOO_SMALL;
  }
  if (inet_pton(isIPv6 ? AF_INET6 : AF_INET, address, network) != 1) return kMinusOne;
  *size = needed;
  return SM_STATUS_SUCCESS;
}

u32 IPAddrNetworkToASCII(const void* network, u32 length, astring* address, s32* size) {
  if (!IPSuptLoaded()) return SM_STATUS_NOT_LOADED;
  if (network == nullptr || address == nullptr || size == nullptr) return SM_STATUS_BAD_ARGUMENT;
  if (length != kIPv4Bytes && length != kIPv6Bytes) return SM_STATUS_BAD_ARGUMENT;
  astring text[INET6_ADDRSTRLEN];
  const int family = length == kIPv6Bytes ? AF_INET6 : AF_INET;
  if (inet_ntop(family, network, text, sizeof(text)) == nullptr) return kMinusOne;
  const auto textLength = static_cast<s32>(strlen(text));
  const bool fits = textLength < *size;
  *size = textLength + 1;
  if (!fits) return SM_STATUS_BUFFER_TOO_SMALL;
  memcpy(address, text, static_cast<size_t>(textLength) + 1);
  return SM_STATUS_SUCCESS;
}

u32 CheckIPEqual(const astring* a, const astring* b) {
  if (a == nullptr || b == nullptr) return SM_STATUS_BAD_ARGUMENT;
  if (!AreComparable(a, b)) return kNo;
  u8 first[kIPv6Bytes] = {};
  u8 second[kIPv6Bytes] = {};
  u32 firstSize = sizeof(first);
  u32 secondSize = sizeof(second);
  if (IPAddrASCIIToNetwork(a, first, &firstSize) != SM_STATUS_SUCCESS) return kNo;
  if (IPAddrASCIIToNetwork(b, second, &secondSize) != SM_STATUS_SUCCESS) return kNo;
  return memcmp(first, second, sizeof(first)) == 0 ? kYes : kNo;
}

}  // namespace qvx
