// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: two lines, whose bytes are the units of two texts. The C++ library's 16-bit strings are
// the model.
#include <string>

#include "qvxcs/uni_string.h"

#include "fuzz/fuzz_support.h"

namespace {

using qvx::fuzz::Block;
using qvx::fuzz::Input;
using qvx::fuzz::Require;

using Units = std::u16string;

Units UnitsOf(const std::string& text) {
  Units units;
  for (const char byte : text) {
    units.push_back(static_cast<char16_t>(static_cast<u8>(byte) * 257));
  }
  return units;
}

// The text with its 0 unit, and `more` units after it.
class Wide {
 public:
  explicit Wide(const Units& text, size_t more = 0) : block_(text.size() + 1 + more) {
    for (size_t at = 0; at <= text.size(); ++at) {
      block_[at] = text.c_str()[at];
    }
  }
  ustring* data() { return block_.data(); }
  bool Is(const Units& text) {
    for (size_t at = 0; at <= text.size(); ++at) {
      if (block_[at] != text.c_str()[at]) return false;
    }
    return true;
  }

 private:
  Block<ustring> block_;
};

void CheckFinds(const Units& one, const Units& two) {
  Wide first(one);
  Wide second(two);
  const ustring* const found = PXTUniStrstr(first.data(), second.data());
  const size_t place = one.find(two);
  Require(two.empty() || (found == nullptr) == (place == Units::npos), "a text is found if there");
  Require(two.empty() || found == nullptr || found == first.data() + place, "at its first place");
  if (!two.empty()) {
    const ustring* const unit = PXTUniStrchr(first.data(), two[0]);
    const size_t at = one.find(two[0]);
    Require((unit == nullptr) == (at == Units::npos), "a unit is found if there");
    Require(unit == nullptr || unit == first.data() + at, "the first of its kind");
  }
  const size_t in = one.find_first_not_of(two);
  const size_t notIn = one.find_first_of(two);
  Require(PXTUniStrspn(first.data(), second.data()) == std::min(in, one.size()), "strspn");
  Require(PXTUniStrcspn(first.data(), second.data()) == std::min(notIn, one.size()), "strcspn");
}

void CheckCompare(const Units& one, const Units& two) {
  Wide first(one);
  Wide second(two);
  Require(PXTUniStrlen(first.data()) == one.size(), "a length counts units");
  size_t at = 0;
  while (at < one.size() && one.c_str()[at] == two.c_str()[at]) {
    ++at;
  }
  const auto apart = static_cast<ustring>(one.c_str()[at] - two.c_str()[at]);
  Require(PXTUniStrcmp(first.data(), second.data()) == apart,
          "a comparison is the first difference, modulo 65536");
}

void CheckEdits(const Units& one, const Units& two) {
  Wide first(one, two.size());
  Wide second(two);
  PXTUniStrcat(first.data(), second.data());
  Require(first.Is(one + two), "a text is appended");
  Wide cut(one, two.size());
  PXTUniStrncat(cut.data(), second.data(), static_cast<u32>(two.size() / 2));
  Require(cut.Is(one + two.substr(0, two.size() / 2)), "a part of a text is appended");
  Units backwards(one.rbegin(), one.rend());
  Wide reversed(one);
  Require(PXTUniStrrev(reversed.data()) == reversed.data() && reversed.Is(backwards),
          "a text is reversed in its place");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  const Units one = UnitsOf(input.Word());
  const Units two = UnitsOf(input.Word());
  CheckCompare(one, two);
  CheckFinds(one, two);
  CheckEdits(one, two);
  return 0;
}
