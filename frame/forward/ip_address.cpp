// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/ip_address.h"

#include "base/cancel_hold.h"
#include "os/host_name.h"
#include "os/ip_address.h"
#include "os/ip_interfaces.h"
#include "os/ip_support.h"
#include "os/md5.h"

astring* PXTGetComputerDomainName() { return qvx::OSGetComputerDomainName(); }
u32 PXTGetIPHostName(astring* name, u32* size) { return qvx::GetIPHostName(name, size); }
u32 PXTUniGetIPHostName(ustring* name, u32* size) { return qvx::UniGetIPHostName(name, size); }
u32 PXTGetDNSSuffixNameName(void* name, u32 size) {
  const qvx::CancelHold hold;
  return qvx::GetDNSSuffixName(name, size);
}
u32 PXTValidateHostName(const astring* name) { return qvx::ValidateHostName(name); }
u32 PXTGetSockType() {
  const qvx::CancelHold hold;
  return qvx::GetSockType();
}
const astring* PXTGetLoopBack() {
  const qvx::CancelHold hold;
  return qvx::GetLoopBack();
}
u32 PXTIsIPv4(const astring* text) { return qvx::IsIPv4(text); }
u32 PXTIsIPv6(const astring* text) { return qvx::IsIPv6(text); }
u32 PXTIsLinkLocal(const astring* text) { return qvx::IsLinkLocal(text); }
u32 PXTIPAddrASCIIToNetwork(const astring* address, void* network, u32* size) {
  return qvx::IPAddrASCIIToNetwork(address, network, size);
}
u32 PXTIPAddrNetworkToASCII(const void* network, u32 length, astring* address, s32* size) {
  return qvx::IPAddrNetworkToASCII(network, length, address, size);
}
u32 PXTCheckIPEqual(const astring* a, const astring* b) { return qvx::CheckIPEqual(a, b); }
u32 PXTGetIPAddrStrList(const astring* ignored, u32* count, void* list) {
  const qvx::CancelHold hold;
  return qvx::GetIPAddrStrList(ignored, count, list);
}
astring* PXTHostGetHostIPAddrList(u32* count) {
  const qvx::CancelHold hold;
  return qvx::SUPTIntfHostGetHostIPAddrList(count);
}
s32 PXTMD5Hash(const astring* text, u8* digest) { return qvx::MD5Hash(text, digest); }
