// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// A host in C++17 that is built against an installed library. It prints a path, the host's name and
// an XML element; the name comes only while the library is attached to its lock file.
#include <qvxcs/qvxcs.h>

#include <array>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

static_assert(__cplusplus == 201703L, "to be compiled as C++17");

namespace {

template <auto Free>
struct GiveBack {
  void operator()(astring* text) const { Free(text); }
};

using Answer = std::optional<std::string>;

Answer Path() {
  const std::unique_ptr<astring, GiveBack<PXTFreeMem>> path(PXTGetProductIniPath());
  return path == nullptr ? Answer() : path.get();
}

Answer Host() {
  std::array<astring, 256> name = {};
  u32 size = name.size();
  return PXTGetIPHostName(name.data(), &size) != SM_STATUS_SUCCESS ? Answer() : name.data();
}

Answer Element() {
  void* const buffer = PXTXAllocBuf(64, 0);
  if (buffer == nullptr) return {};
  const u32 answer = 42;
  const u32 status = PXTXBufCatNode(buffer, "Answer", nullptr, QVX_TYPE_U32, &answer);
  const std::unique_ptr<astring, GiveBack<PXTXFreeBufContent>> text(PXTXFreeBufGetContent(buffer));
  return status != SM_STATUS_SUCCESS || text == nullptr ? Answer() : text.get();
}

}  // namespace

int main() {
  for (const Answer& answer : {Path(), Host(), Element()}) {
    if (!answer) return 1;
    std::cout << *answer << '\n';
  }
  return 0;
}
