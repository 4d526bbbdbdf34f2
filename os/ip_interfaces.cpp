// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ip_interfaces.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "os/host_name.h"

namespace qvx {
namespace {

constexpr u32 kFailed = 0xFFFFFFFF;
constexpr u32 kHostNameRoom = 256;

// An address list is an array of slots of this many bytes, one NUL-terminated text in each.
constexpr u32 kSlotBytes = 65;
static_assert(INET6_ADDRSTRLEN <= kSlotBytes);

struct InterfaceListFree {
  void operator()(ifaddrs* list) const { freeifaddrs(list); }
};
using InterfaceList = std::unique_ptr<ifaddrs, InterfaceListFree>;

bool CarriesHostAddresses(unsigned int flags) {
  return (flags & IFF_RUNNING) != 0 && (flags & (IFF_LOOPBACK | IFF_POINTOPOINT)) == 0;
}

// The presentation form without a zone; false for a family that has none.
bool AddressText(const sockaddr* address, astring (&text)[kSlotBytes]) {
  const void* bytes = nullptr;
  if (address->sa_family == AF_INET) {
    bytes = &reinterpret_cast<const sockaddr_in*>(address)->sin_addr;
  } else if (address->sa_family == AF_INET6) {
    bytes = &reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr;
  } else {
    return false;
  }
  return inet_ntop(address->sa_family, bytes, text, sizeof text) != nullptr;
}

bool HostAddress(const ifaddrs& entry, astring (&text)[kSlotBytes]) {
  if (entry.ifa_addr == nullptr || !CarriesHostAddresses(entry.ifa_flags)) return false;
  return AddressText(entry.ifa_addr, text);
}

// Room for `count` slots; a block of none is a block all the same.
HeapArray<astring> AllocSlots(u32 count) {
  const u64 bytes = std::max<u64>(u64{count} * kSlotBytes, 1);
  auto slots = bytes > UINT32_MAX ? HeapArray<astring>() : AllocArray<astring>(bytes);
  if (slots) memset(slots.get(), 0, static_cast<size_t>(bytes));
  return slots;
}

}  // namespace

astring* SUPTIntfGetHostNameAStr() {
  astring name[kHostNameRoom] = {};
  u32 size = sizeof name;
  if (GetIPHostName(name, &size) != SM_STATUS_SUCCESS) return nullptr;
  return CopyText(name).release();
}

u32 GetIPAddrStrList(const astring* /*ignored*/, u32* count, void* list) {
  if (count == nullptr) return SM_STATUS_BAD_ARGUMENT;
  const u32 capacity = *count;
  *count = 0;
  // Deliberate: the count runs on beyond the capacity, so that it tells the slots needed.
  // Held by Interfaces.ACapacityOfOneOnTwoAddressesCopiesOneAndCountsBoth.
  ifaddrs* first = nullptr;
  if (getifaddrs(&first) != 0) return kFailed;
  const InterfaceList owned(first);
  u32 status = SM_STATUS_SUCCESS;
  for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
    astring text[kSlotBytes];
    if (!HostAddress(*entry, text)) continue;
    if (list != nullptr && *count < capacity) {
      memcpy(static_cast<astring*>(list) + size_t{*count} * kSlotBytes, text, strlen(text) + 1);
    } else if (list != nullptr) {
      status = SM_STATUS_BUFFER_TOO_SMALL;
    }
    ++*count;
  }
  return status;
}

astring* SUPTIntfHostGetHostIPAddrList(u32* count) {
  if (count == nullptr) return nullptr;
  *count = 0;
  const HeapArray<astring> hostName(SUPTIntfGetHostNameAStr());
  if (!hostName) return nullptr;
  u32 found = 0;
  if (GetIPAddrStrList(hostName.get(), &found, nullptr) != SM_STATUS_SUCCESS) return nullptr;
  auto slots = AllocSlots(found);
  if (!slots) return nullptr;
  if (GetIPAddrStrList(hostName.get(), &found, slots.get()) != SM_STATUS_SUCCESS) return nullptr;
  *count = found;
  return slots.release();
}

}  // namespace qvx
