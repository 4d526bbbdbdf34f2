// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: the case flag and the name to find, one per line, then one entry per line; "(null)" means
// for a null entry.
#include <deque>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "qvxcs/param_vector.h"

#include "fuzz/fuzz_support.h"
#include "reference/param_vector_model.h"

namespace {

using qvx::fuzz::Block;
using qvx::fuzz::Input;
using qvx::fuzz::Require;
using qvx::fuzz::Text;
using qvx::test::ModelEntry;

constexpr s32 kMostEntries = 50;
constexpr char kNoEntry[] = "(null)";

// Owns the entries' texts, each in its own block, and knows the model's view of them.
template <typename Unit>
class Vector {
 public:
  void Add(const std::string& entry) {
    if (entry == kNoEntry) {
      pointers_.push_back(nullptr);
      entries.emplace_back(std::nullopt);
      return;
    }
    Block<Unit>& block = blocks_.emplace_back(entry.size() + 1);
    for (size_t at = 0; at < entry.size(); ++at) {
      block[at] = static_cast<Unit>(static_cast<u8>(entry[at]));
    }
    block[entry.size()] = 0;
    pointers_.push_back(block.data());
    entries.emplace_back(Modelled(entry));
  }
  static std::u32string Modelled(const std::string& text) {
    std::u32string units;
    for (const char each : text) {
      units += static_cast<u8>(each);
    }
    return units;
  }
  Unit** data() { return pointers_.data(); }
  [[nodiscard]] s32 Count() const { return static_cast<s32>(pointers_.size()); }
  [[nodiscard]] Unit* At(size_t index) const { return pointers_[index]; }

  std::vector<ModelEntry> entries;

 private:
  std::deque<Block<Unit>> blocks_;
  std::vector<Unit*> pointers_;
};

void CheckLookUp(Vector<astring>& vector, const std::string& sought, booln ignoreCase) {
  Text name(sought);
  const s32 expected = qvx::test::ModelParamIndex8(vector.Count(), vector.entries,
                                                   Vector<astring>::Modelled(sought), ignoreCase);
  Require(PXTGetParamIndexByAStrName(vector.Count(), vector.data(), name.data(), ignoreCase) ==
              expected,
          "the first entry of the name is found");
  astring* const value =
      PXTGetAStrParamValueByAStrName(vector.Count(), vector.data(), name.data(), ignoreCase);
  Require((value == nullptr) == (expected == -1), "a value is given where an entry is found");
  Require(
      value == nullptr || value == PXTGetAStrParamValue(vector.At(static_cast<size_t>(expected))),
      "the value is the entry's own");
}

void CheckWideLookUp(Vector<ustring>& vector, const std::string& sought, booln ignoreCase) {
  Vector<ustring> name;
  name.Add(sought);
  if (name.At(0) == nullptr) return;
  Require(PXTGetParamIndexByUStrName(vector.Count(), vector.data(), name.At(0), ignoreCase) == -1,
          "no 16-bit name is found");
  Require(PXTGetUStrParamValueByUStrName(vector.Count(), vector.data(), name.At(0), ignoreCase) ==
              nullptr,
          "nor its value");
}

// The functions of one width.
template <typename Unit>
struct Calls {
  u32 (*isValid)(const Unit* entry);
  Unit* (*name)(Unit* entry);
  Unit* (*value)(Unit* entry);
};

constexpr Calls<astring> kCalls8 = {PXTIsValidParam, PXTGetAStrParamName, PXTGetAStrParamValue};
constexpr Calls<ustring> kCalls16 = {PXTIsValidUParam, PXTGetUStrParamName, PXTGetUStrParamValue};

template <typename Unit>
bool Is(const Unit* text, const std::u32string& expected) {
  for (const char32_t unit : expected) {
    if (static_cast<std::make_unsigned_t<Unit>>(*text++) != unit) return false;
  }
  return *text == 0;
}

template <typename Unit>
void CheckEntry(Unit* entry, const ModelEntry& expected, const Calls<Unit>& calls) {
  const ModelEntry name = qvx::test::ModelParamName(expected);
  const ModelEntry value = qvx::test::ModelParamValue(expected);
  Require(calls.isValid(entry) == (name ? 1 : 0), "an entry is well formed as in the model");
  Unit* const found = calls.value(entry);
  Require((found != nullptr) == value.has_value(), "a well-formed entry has a value");
  Require(!value || Is(found, *value), "the value is the model's");
  Unit* const cut = calls.name(entry);
  Require((cut != nullptr) == name.has_value(), "a well-formed entry has a name");
  if (cut == nullptr) return;
  Require(cut == entry && Is(cut, *name), "the entry is cut after its name");
  Require(calls.isValid(entry) == 0 && calls.value(entry) == nullptr, "then it has no value");
}

template <typename Unit>
void CheckEntries(const Vector<Unit>& vector, const Calls<Unit>& calls) {
  for (size_t at = 0; at < vector.entries.size(); ++at) {
    CheckEntry(vector.At(at), vector.entries[at], calls);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  const auto ignoreCase = static_cast<booln>(input.Number());
  const std::string sought = input.Word();
  Vector<astring> vector;
  Vector<ustring> wide;
  while (!input.AtEnd() && vector.Count() < kMostEntries) {
    const std::string entry = input.Word();
    vector.Add(entry);
    wide.Add(entry);
  }
  CheckLookUp(vector, sought, ignoreCase);
  CheckWideLookUp(wide, sought, ignoreCase);
  CheckEntries(vector, kCalls8);
  CheckEntries(wide, kCalls16);
  return 0;
}
