// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/param_vector_model.h"

namespace qvx::test {
namespace {

char32_t Folded(char32_t each) { return each >= U'A' && each <= U'Z' ? each - U'A' + U'a' : each; }

std::u32string Folded(std::u32string text) {
  for (char32_t& each : text) {
    each = Folded(each);
  }
  return text;
}

std::u32string Pairs(std::u32string units, const std::u32string& behind, size_t count) {
  units += U'\0';
  units += behind;
  std::u32string pairs;
  for (size_t at = 0; at < count; ++at) {
    pairs += static_cast<char32_t>(units.at(2 * at) + 65536 * units.at(2 * at + 1));
  }
  return pairs;
}

// Up to a zero, as wide texts end.
std::u32string UpToZero(const std::u32string& text) { return text.substr(0, text.find(U'\0')); }

}  // namespace

ModelEntry ModelParamName(const ModelEntry& entry) {
  if (!entry) return std::nullopt;
  const size_t equals = entry->find(U'=');
  if (equals == 0 || equals == std::u32string::npos) return std::nullopt;
  return entry->substr(0, equals);
}

ModelEntry ModelParamValue(const ModelEntry& entry) {
  if (!ModelParamName(entry)) return std::nullopt;
  return entry->substr(entry->find(U'=') + 1);
}

s32 ModelParamIndex8(s32 count, const std::vector<ModelEntry>& entries, const std::u32string& name,
                     booln ignoreCase) {
  for (s32 at = 0; at < count; ++at) {
    const ModelEntry entryName = ModelParamName(entries[static_cast<size_t>(at)]);
    if (!entryName) continue;
    const std::u32string sought = name.substr(0, name.find(U'='));
    const bool same = ignoreCase == 1 ? Folded(sought) == Folded(*entryName) : sought == *entryName;
    if (same) return at;
  }
  return -1;
}

s32 ModelParamIndex16(s32 count, const std::vector<ModelEntry>& entries, const std::u32string& name,
                      const std::u32string& behind, booln ignoreCase) {
  for (s32 at = 0; at < count; ++at) {
    const ModelEntry& entry = entries[static_cast<size_t>(at)];
    const ModelEntry entryName = ModelParamName(entry);
    if (!entryName || entryName->size() != name.size()) continue;
    std::u32string one = Pairs(name, behind, name.size());
    std::u32string two = Pairs(*entry, behind, name.size());
    if (ignoreCase == 1) {
      one = Folded(one);
      two = Folded(two);
    }
    if (UpToZero(one) == UpToZero(two)) return at;
  }
  return -1;
}

}  // namespace qvx::test
