// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: the sizes by which the log grows, on one line, then the log.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "ctl/log_reader.h"
#include "fuzz/fuzz_support.h"
#include "tests/ctl/text_source.h"

namespace {

using qvx::ctl::LogPart;
using qvx::ctl::LogReader;
using qvx::fuzz::Input;
using qvx::fuzz::Require;
using qvx::test::TextSource;

// Reads on to the current end.
void ReadOn(TextSource* source, LogReader* reader, std::vector<std::string>* entries) {
  for (;;) {
    const u64 before = reader->End();
    const LogPart part = reader->Next();
    if (part != LogPart::kEntry && part != LogPart::kDamage) return;
    const bool isHead = before == 0 && reader->Begin() == qvx::ctl::kFirstEntry;
    Require(reader->Begin() == before || isHead, "nothing is passed in silence");
    Require(reader->End() == reader->Begin() + reader->Text().size(), "a part has its bytes' size");
    Require(!reader->Text().empty(), "reading goes on");
    const std::string bytes =
        source->text.substr(static_cast<size_t>(reader->Begin()), reader->Text().size());
    Require(bytes == reader->Text(), "a part is what is in the file");
    if (part == LogPart::kEntry) entries->push_back(reader->Text());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  const std::string steps = input.Line();
  const std::string log = input.Rest();
  TextSource whole;
  whole.text = log;
  LogReader reader(&whole);
  std::vector<std::string> expected;
  ReadOn(&whole, &reader, &expected);
  for (const std::string& entry : expected) {
    Require(qvx::ctl::ParseLogRecord(entry).has_value(), "an entry can be taken apart");
  }

  // A reader that follows a growing log sees no entry that was not there.
  TextSource growing;
  LogReader follower(&growing);
  std::vector<std::string> seen;
  for (const char step : steps) {
    growing.text = log.substr(0, growing.text.size() + static_cast<u8>(step));
    ReadOn(&growing, &follower, &seen);
  }
  growing.text = log;
  ReadOn(&growing, &follower, &seen);
  for (const std::string& entry : seen) {
    Require(log.find(entry) != std::string::npos, "an entry that was shown is in the log");
  }
  return 0;
}
