// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ip_support.h"

#include <sys/socket.h>

#include "qvxcs/status.h"

#include "os/descriptor.h"

namespace qvx {
namespace {

constexpr u16 kLoaded = 1;

constexpr u32 kIPv4Only = 1;
constexpr u32 kIPv6Only = 2;

constexpr astring kLoopBackIPv4[] = "127.0.0.1";
constexpr astring kLoopBackIPv6[] = "::1";

// Only the module's first attach writes it, before any other call.
constinit u16 ipSupport = 0;

bool FamilyWorks(int family) {
  return static_cast<bool>(AboveStandard(socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0)));
}

}  // namespace

u32 GetSockType() {
  const u32 ipv6 = FamilyWorks(AF_INET6) ? kIPv6Only : 0;
  const u32 ipv4 = FamilyWorks(AF_INET) ? kIPv4Only : 0;
  return ipv6 + ipv4;
}

const astring* GetLoopBack() {
  const u32 type = GetSockType();
  if (type == 0) return nullptr;
  return type == kIPv6Only ? kLoopBackIPv6 : kLoopBackIPv4;
}

u32 LoadIPSupt() {
  if (IPSuptLoaded()) return SM_STATUS_BAD_ARGUMENT;
  ipSupport = kLoaded;
  return SM_STATUS_SUCCESS;
}

u32 UnLoadIPSupt() {
  // Deliberate: the flag stays set, so that a loaded image is attached for the first time only
  // once. Held by IPSupport.UnloadingLeavesTheSupportLoaded.
  return IPSuptLoaded() ? SM_STATUS_SUCCESS : SM_STATUS_BAD_ARGUMENT;
}

bool IPSuptLoaded() { return ipSupport == kLoaded; }

}  // namespace qvx
