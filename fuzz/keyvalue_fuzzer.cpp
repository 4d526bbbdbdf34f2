// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: index, key and value of the entry to set, one a line, then the file.
#include <optional>
#include <string>
#include <vector>

#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"

#include "fuzz/fuzz_support.h"
#include "reference/keyvalue_model.h"
#include "support/files.h"

namespace {

using qvx::fuzz::Input;
using qvx::fuzz::Require;
using qvx::fuzz::Text;
using qvx::test::ModelKeyValue;
using qvx::test::ReadFile;
using qvx::test::WriteFile;

constexpr char kPath[] = "/run/fuzz/keyvalue";

void CheckLookUp(PXTKeyValue* entries, const std::vector<ModelKeyValue>& expected,
                 const std::string& key, u32 index) {
  const auto count = static_cast<u32>(expected.size());
  const astring* const value = PXTCFGGetKeyValue(entries, count, key.c_str(), index);
  const std::optional<std::string> wanted = qvx::test::ModelValueOf(expected, key, index);
  Require((value != nullptr) == wanted.has_value(), "an occurrence is found where there is one");
  Require(value == nullptr || *wanted == value, "its value is the model's");
}

void CheckEntries(const std::string& file, const std::string& key, u32 index) {
  const std::vector<ModelKeyValue> expected = qvx::test::ModelKeyValues(file);
  u32 count = 12345;
  PXTKeyValue* const entries = PXTCFGGetKeyValueEntries(kPath, &count);
  Require((entries == nullptr) == expected.empty(), "entries are given where there are any");
  Require(count == expected.size(), "all entries are given");
  for (u32 at = 0; at < count; ++at) {
    Require(expected[at].first == entries[at].key, "an entry's key is cleaned");
    Require(expected[at].second == entries[at].value, "an entry's value is cleaned");
  }
  CheckLookUp(entries, expected, key, index);
  if (count != 0) CheckLookUp(entries, expected, expected.back().first, 0);
  PXTCFGFreeKeyValueEntries(entries, count);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  const auto index = static_cast<u32>(input.Number());
  const std::string key = input.Word();
  const std::string value = input.Word();
  const std::string file = input.Rest();
  WriteFile(kPath, file);
  CheckEntries(file, key, index);

  Text keyText(key);
  Text valueText(value);
  const PXTKeyValue pair = {keyText.data(), valueText.data()};
  const auto expected = qvx::test::ModelSetKeyValue(file, {key, value}, index);
  Require(PXTCFGSetKeyValue(kPath, &pair, index) == expected.status, "the status is the model's");
  Require(ReadFile(kPath) == expected.text, "the file is the model's, byte by byte");
  CheckEntries(expected.text, key, index);
  return 0;
}
