// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: type, identifier, maximum size, user, source, description and data, one a line, then the
// log. "(null)" means a text that is not given, the log "(missing)" for none.
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <optional>
#include <string>

#include "qvxcs/memory.h"
#include "qvxcs/xml_log.h"

#include "fuzz/fuzz_support.h"
#include "reference/xml_append_model.h"
#include "support/files.h"

namespace {

using qvx::fuzz::Block;
using qvx::fuzz::Input;
using qvx::fuzz::Require;
using qvx::fuzz::Text;
using qvx::test::ModelLogEntry;
using qvx::test::ModelLogFiles;

constexpr char kFolder[] = "/run/fuzz";
constexpr char kPath[] = "/run/fuzz/log.xml";
constexpr char kBackupPath[] = "/run/fuzz/log.xm_";
constexpr char kHost[] = "qvxtest";  // as the sandbox sets it

std::optional<std::string> Given(const std::string& line) {
  if (line == "(null)") return std::nullopt;
  return line;
}

// A text argument, or null.
class OptionalText {
 public:
  explicit OptionalText(const std::optional<std::string>& text)
      : text_(text.value_or("")), given_(text.has_value()) {}
  const astring* data() { return given_ ? text_.data() : nullptr; }

 private:
  Text text_;
  bool given_;
};

u32 Append(const ModelLogEntry& entry, u32 maxSize) {
  OptionalText user(entry.user);
  OptionalText source(entry.source);
  OptionalText description(entry.description);
  const std::string bytes = entry.data.value_or("");
  Block<astring> data(bytes.size());
  std::copy(bytes.begin(), bytes.end(), data.data());
  return PXTAppendToXMLLog(kPath, static_cast<u16>(entry.type), entry.id, user.data(),
                           source.data(), description.data(), entry.data ? data.data() : nullptr,
                           entry.dataSize, maxSize);
}

void Prepare(const std::optional<std::string>& log) {
  (void)unlink(kPath);
  (void)unlink(kBackupPath);
  if (log) qvx::test::WriteFile(kPath, *log);
}

ModelLogFiles Modelled(const std::optional<std::string>& log) {
  ModelLogFiles files(kHost);
  files.nodes[kFolder] = {true, "", 0755};
  if (log) files.nodes[kPath] = {false, *log, 0644};
  return files;
}

bool IsAsIn(const ModelLogFiles& files, const char* path) {
  const auto node = files.nodes.find(path);
  if (node == files.nodes.end()) return !qvx::test::Exists(path);
  return qvx::test::Exists(path) && qvx::test::ReadFile(path) == node->second.bytes;
}

bool CameOutAs(const ModelLogFiles& files, u32 expectedStatus, u32 status) {
  return status == expectedStatus && IsAsIn(files, kPath) && IsAsIn(files, kBackupPath);
}

// The clock may advance a second during a call: one of the two times must match.
ModelLogFiles CheckAppend(const std::optional<std::string>& log, const ModelLogEntry& entry,
                          u32 maxSize) {
  const time_t before = time(nullptr);
  const u32 status = Append(entry, maxSize);
  const time_t after = time(nullptr);
  for (time_t now = before; now <= after; ++now) {
    for (time_t later = now; later <= after; ++later) {
      ModelLogFiles files = Modelled(log);
      const u32 expected = files.Append(kPath, entry, maxSize, now, later);
      if (CameOutAs(files, expected, status)) return files;
    }
  }
  Require(false, "status, log and backup are the model's");
  return ModelLogFiles(kHost);
}

void CheckContent(const ModelLogFiles& files) {
  const std::optional<std::string> expected = files.Content(kPath);
  astring* const content = PXTCmdGetXMLLogContent(kPath);
  Require((content != nullptr) == expected.has_value(), "a log that is not empty has a content");
  Require(content == nullptr || *expected == content, "the content is the model's");
  PXTFreeMem(content);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  ModelLogEntry entry;
  entry.type = static_cast<u16>(input.Number());
  entry.id = static_cast<u32>(input.Number());
  const auto maxSize = static_cast<u32>(input.Number());
  entry.user = Given(input.Word());
  entry.source = Given(input.Word());
  entry.description = Given(input.Word());
  entry.data = Given(input.Line());
  entry.dataSize = static_cast<u32>(entry.data.value_or("").size());
  std::optional<std::string> log = input.Rest();
  if (*log == "(missing)") log.reset();

  Prepare(log);
  CheckContent(CheckAppend(log, entry, maxSize));
  return 0;
}
