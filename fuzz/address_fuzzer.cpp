// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: two lines, texts of addresses or host names. The C library's inet_pton is the model.
#include <arpa/inet.h>

#include <cstring>
#include <string>

#include "qvxcs/ip_address.h"
#include "qvxcs/status.h"

#include "fuzz/fuzz_support.h"

namespace {

using qvx::fuzz::Block;
using qvx::fuzz::Input;
using qvx::fuzz::Require;
using qvx::fuzz::Text;

bool IsOf(int family, const std::string& text) {
  u8 address[sizeof(in6_addr)];
  return inet_pton(family, text.c_str(), address) == 1;
}

void CheckKind(const std::string& text) {
  Text given(text);
  const bool digitsAndDots = text.find_first_not_of("0123456789.") == std::string::npos;
  Require((PXTIsIPv4(given.data()) == 1) == digitsAndDots, "IPv4 is digits and dots");
  Require((PXTIsIPv6(given.data()) == 1) == (text.find(':') != std::string::npos),
          "IPv6 is where a colon is");
  (void)PXTIsLinkLocal(given.data());
  (void)PXTValidateHostName(given.data());
}

// Into the network's form and back: the same address.
void CheckForms(const std::string& text) {
  Text given(text);
  for (const u32 room : {0U, 4U, 16U}) {
    Block<u8> network(room);
    u32 size = room;
    const u32 status = PXTIPAddrASCIIToNetwork(given.data(), network.data(), &size);
    if (status == SM_STATUS_BUFFER_TOO_SMALL) {
      Require(size > room, "the size that is needed is returned");
      continue;
    }
    const int family = text.find(':') == std::string::npos ? AF_INET : AF_INET6;
    Require((status == SM_STATUS_SUCCESS) == IsOf(family, text),
            "an address is what inet_pton accepts");
    if (status != SM_STATUS_SUCCESS) continue;
    Require(size <= room, "an address is written only where it has room");
    Block<astring> back(INET6_ADDRSTRLEN + 1);
    auto length = static_cast<s32>(back.size());
    if (PXTIPAddrNetworkToASCII(network.data(), size, back.data(), &length) != SM_STATUS_SUCCESS) {
      continue;
    }
    Require(PXTCheckIPEqual(given.data(), back.data()) == 1, "an address equals its own text");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  const std::string one = input.Word();
  const std::string two = input.Word();
  CheckKind(one);
  CheckForms(one);
  Text first(one);
  Text second(two);
  Require(
      PXTCheckIPEqual(first.data(), second.data()) == PXTCheckIPEqual(second.data(), first.data()),
      "equality has no order");
  return 0;
}
