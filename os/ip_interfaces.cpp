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
#include "base/results.h"
#include "os/host_name.h"
#include "os/ip_support.h"

namespace qvx {
namespace {

constexpr u32 kHostNameRoom = 256;
static_assert(INET6_ADDRSTRLEN <= kAddressSlotBytes);

struct InterfaceListFree {
  void operator()(ifaddrs* list) const { freeifaddrs(list); }
};
using InterfaceList = std::unique_ptr<ifaddrs, InterfaceListFree>;

bool CarriesHostAddresses(unsigned int flags) {
  return (flags & IFF_RUNNING) != 0 && (flags & (IFF_LOOPBACK | IFF_POINTOPOINT)) == 0;
}

// The presentation form without a zone; false for a family that has none.
bool AddressText(const sockaddr* address, astring (&text)[kAddressSlotBytes]) {
  const void* bytes = nullptr;
  if (address->sa_family == AF_INET) {
    bytes = &reinterpret_cast<const sockaddr_in*>(address)->sin_addr;
  } else if (address->sa_family == AF_INET6) {
    bytes = &reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr;
  } else {
    return false;
  }
  return inet_ntop(address->sa_family, bytes, text, sizeof(text)) != nullptr;
}

// The machine's interfaces as they were at one moment.
class HostAddresses {
 public:
  HostAddresses() {
    ifaddrs* first = nullptr;
    read_ = getifaddrs(&first) == 0;
    if (read_) list_.reset(first);
  }
  explicit operator bool() const { return read_; }

  // Hands each address of a running interface to `use`, in the system's order; returns their
  // number.
  template <typename Use>
  u32 ForEach(Use use) const {
    u32 count = 0;
    for (const ifaddrs* entry = list_.get(); entry != nullptr; entry = entry->ifa_next) {
      astring text[kAddressSlotBytes];
      if (entry->ifa_addr == nullptr || !CarriesHostAddresses(entry->ifa_flags)) continue;
      if (AddressText(entry->ifa_addr, text)) use(count++, text);
    }
    return count;
  }

  u32 Count() const {
    return ForEach([](u32, const astring*) {});
  }

 private:
  bool read_ = false;
  InterfaceList list_;
};

void CopyToSlot(void* list, u32 slot, const astring* text) {
  memcpy(static_cast<astring*>(list) + size_t{slot} * kAddressSlotBytes, text, strlen(text) + 1);
}

// Room for `count` slots; a count of 0 gets a block too.
HeapArray<astring> AllocSlots(u32 count) {
  const u64 bytes = std::max<u64>(u64{count} * kAddressSlotBytes, 1);
  auto slots = AllocArray<astring>(bytes);
  if (slots) memset(slots.get(), 0, static_cast<size_t>(bytes));
  return slots;
}

}  // namespace

astring* SUPTIntfGetHostNameAStr() {
  astring name[kHostNameRoom] = {};
  u32 size = sizeof(name);
  if (GetIPHostName(name, &size) != SM_STATUS_SUCCESS) return nullptr;
  return CopyText(name).release();
}

u32 GetIPAddrStrList(const astring* /*ignored*/, u32* count, void* list) {
  if (count == nullptr) return SM_STATUS_BAD_ARGUMENT;
  const u32 capacity = *count;
  *count = 0;
  const HostAddresses addresses;
  if (!addresses) return kMinusOne;
  // Deliberate: the count goes on beyond the capacity, so it reports the slots needed.
  // Held by Interfaces.ACapacityOfOneOnTwoAddressesCopiesOneAndCountsBoth.
  *count = addresses.ForEach([list, capacity](u32 slot, const astring* text) {
    if (list != nullptr && slot < capacity) CopyToSlot(list, slot, text);
  });
  return list != nullptr && *count > capacity ? SM_STATUS_BUFFER_TOO_SMALL : SM_STATUS_SUCCESS;
}

// One reading of the interfaces yields both the count and the texts, so a list that changes
// meanwhile causes no failure.
astring* SUPTIntfHostGetHostIPAddrList(u32* count) {
  if (count == nullptr) return nullptr;
  *count = 0;
  if (!IPSuptLoaded()) return nullptr;
  const HostAddresses addresses;
  if (!addresses) return nullptr;
  auto slots = AllocSlots(addresses.Count());
  if (!slots) return nullptr;
  *count = addresses.ForEach(
      [&slots](u32 slot, const astring* text) { CopyToSlot(slots.get(), slot, text); });
  return slots.release();
}

}  // namespace qvx
