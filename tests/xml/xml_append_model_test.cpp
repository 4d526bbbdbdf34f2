// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/xml_append_model.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "qvxcs/memory.h"
#include "qvxcs/xml_log.h"

#include "frame/module.h"
#include "reference/text_model.h"
#include "support/files.h"
#include "support/guard_buffer.h"
#include "xml/log_files.h"

namespace {

using qvx::test::GuardBuffer;
using qvx::test::HostileTexts;
using qvx::test::kLogHead;
using qvx::test::kLogTail;
using qvx::test::ModelAppended;
using qvx::test::ModelBackup;
using qvx::test::ModelBackupName;
using qvx::test::ModelLogEntry;
using qvx::test::ModelLogEntryText;
using qvx::test::ModelLogFiles;
using qvx::test::ModelNode;

using Text = std::optional<std::string>;

constexpr u32 kInputs = 5000;
const char* const kHost = "qvxtest";
const char* const kRoot = "/tmp/logs";

const astring* Given(const Text& text) { return text ? text->c_str() : nullptr; }

u32 Append(const Text& path, const ModelLogEntry& entry, u32 maxSize) {
  return PXTAppendToXMLLog(Given(path), static_cast<u16>(entry.type), entry.id, Given(entry.user),
                           Given(entry.source), Given(entry.description), Given(entry.data),
                           entry.dataSize, maxSize);
}

// Logs that look for trouble, the same on every run.
class HostileLogs {
 public:
  explicit HostileLogs(u32 seed) : texts_(seed) {}
  u32 Below(u32 limit) { return texts_.Below(limit); }

  // A file: from nothing to whole logs, with tags that are whole, cut, doubled or misplaced.
  std::string File() {
    switch (Below(8)) {
      case 0:
        return Short();
      case 1:
        return Log() + Junk();
      case 2:
        return TagAcrossABlock();
      case 3:
        return CutShort();
      case 4:
        return std::string(55 + Below(14), 'x') + kLogTail + Junk();
      default:
        return Pieces();
    }
  }
  // About the size below which a file is not yet a log.
  std::string Short() {
    std::string file = Bytes(20);
    file.resize(Below(2) == 0 ? 63 + Below(4) : Below(90), '\0');
    return file;
  }
  Text Name() { return Limited(1023); }
  Text Description() { return Limited(16383); }
  ModelLogEntry Entry() {
    ModelLogEntry entry;
    entry.type = Below(3) == 0 ? Below(0x10000) : Below(5);
    entry.id = Below(3) == 0 ? Below(0xFFFFFFFF) : Below(3);
    entry.user = Name();
    entry.source = Name();
    entry.description = Description();
    AddData(&entry);
    return entry;
  }

 private:
  std::string Bytes(u32 longest) {
    const std::vector<u8> bytes = texts_.Bytes(longest);
    return {bytes.begin(), bytes.end()};
  }
  std::string Log() { return kLogHead + Pieces() + kLogTail; }
  std::string Pieces() {
    const std::string tail = kLogTail;
    const std::string pieces[] = {kLogHead,
                                  "<EventLog>",
                                  tail,
                                  tail,
                                  tail.substr(0, Below(11)),
                                  tail.substr(1 + Below(10)),
                                  "<" + tail,
                                  "</eventlog>",
                                  "</EventLog >",
                                  "\r\n",
                                  "\n",
                                  std::string(1 + Below(3), '\0'),
                                  "\xFF\xFE",
                                  "<LogEntry></LogEntry>",
                                  std::string(Below(100), ' '),
                                  Bytes(6)};
    std::string file = Below(4) == 0 ? "" : kLogHead;
    for (u32 left = Below(9); left > 0; --left) {
      file += pieces[Below(16)];
    }
    return file;
  }
  std::string Junk() {
    const std::string kinds[] = {"\n", "\r\n", std::string(1, '\0'), " ", "</EventLog", "\xFF"};
    std::string junk;
    for (u32 left = Below(4); left > 0; --left) {
      junk += kinds[Below(6)];
    }
    if (Below(12) == 0) junk += std::string(Below(4100), "x\n<"[Below(3)]);
    return junk;
  }
  // The tag begins within its own length of a multiple of 4096, from the start or from the end.
  std::string TagAcrossABlock() {
    std::string file = kLogHead;
    file.resize(4096 * (1 + Below(3)) - Below(12), 'y');
    file += kLogTail;
    if (Below(6) == 0) file.resize(file.size() + 4096 - Below(24), 'z');
    return file + Junk();
  }
  std::string CutShort() {
    const std::string log = Log();
    return log.substr(0, log.size() - Below(static_cast<u32>(log.size())));
  }
  Text Limited(u32 longest) {
    switch (Below(40)) {
      case 0:
        return std::string();
      case 1:
        return std::string(longest, '&');
      case 2:
        return std::string(longest + 1, 'n');
      case 3:
      case 4:
      case 5:
      case 6:
      case 7:
        return std::nullopt;
      case 8:
        return kLogTail;
      default:
        return "t" + Bytes(12);
    }
  }
  void AddData(ModelLogEntry* entry) {
    if (Below(3) == 0) return;
    entry->data = Bytes(30) + '\0' + Bytes(2);
    entry->dataSize = Below(static_cast<u32>(entry->data->size()) + 1);
    if (Below(60) == 0) {
      entry->dataSize = 32766 + Below(4);
      entry->data->resize(entry->dataSize, 'D');
    }
    if (Below(40) == 0) entry->data = std::nullopt;
  }

  HostileTexts texts_;
};

void Begin() {
  qvx::test::RequireSandbox();
  // An offset of an hour and a half, which no summer time adds, shows that it is local time.
  ASSERT_EQ(setenv("TZ", "QVX-1:30", 1), 0);
  ASSERT_EQ(mkdir(kRoot, 0755), 0);
  ASSERT_EQ(qvx::ModuleAttach(), 1);
}

// Files on disk beside their model; both get the same calls.
class Pair {
 public:
  explicit Pair(u32 seed) : inputs_(seed) {
    model_.nodes[kRoot] = {true, "", 0};
    MakeFolder("/folder");
    MakeFolder("/full.xm_");
    Write("/plain", "no folder");
  }

  void Step() {
    if (inputs_.Below(3) == 0) Disturb();
    switch (inputs_.Below(12)) {
      case 0:
        return ForceExists();
      case 1:
        return Clear();
      case 2:
        return ReadContent();
      default:
        return AppendOne();
    }
  }
  [[nodiscard]] u32 moves() const { return moves_; }
  [[nodiscard]] u32 faults() const { return faults_; }
  [[nodiscard]] u32 successes() const { return successes_; }

 private:
  static std::string At(const std::string& name) { return kRoot + name; }
  void MakeFolder(const std::string& name) {
    ASSERT_EQ(mkdir(At(name).c_str(), 0755), 0);
    model_.nodes[At(name)] = {true, "", 0};
  }
  void Write(const std::string& name, const std::string& bytes) {
    const u32 mode = inputs_.Below(2) == 0 ? 01664 : 0600 + inputs_.Below(0200);
    qvx::test::WriteFile(At(name), bytes);
    ASSERT_EQ(chmod(At(name).c_str(), mode), 0);
    model_.nodes[At(name)] = {false, bytes, mode};
  }

  // Ordinary logs, two that share a backup, one that would be its own, one whose backup cannot be
  // replaced, and some that cannot be.
  Text Path() {
    const std::string names[] = {"/cmd.xml",     "/cmd.xml",  "/cmd.xml",     "/cmd.xmx",
                                 "/own_",        "/full.xml", "/new/log.xml", "/no/deep/log.xml",
                                 "/plain/l.xml", "/folder",   "/folder/",     "/plain/"};
    const u32 which = inputs_.Below(16);
    if (which == 15 && inputs_.Below(8) == 0) return std::nullopt;
    if (which == 14) return At("/folder/" + std::string(255 - 17, 'l') + "ong");  // 258 bytes
    return At(names[which < 12 ? which : 0]);
  }
  // A log, or a backup, that somebody else has left, or deleted.
  void Disturb() {
    const std::string names[] = {"/cmd.xml", "/cmd.xml", "/cmd.xmx",
                                 "/cmd.xm_", "/own_",    "/full.xml"};
    const std::string name = names[inputs_.Below(6)];
    if (inputs_.Below(6) != 0) return Write(name, inputs_.File());
    (void)unlink(At(name).c_str());
    model_.nodes.erase(At(name));
    if (inputs_.Below(2) == 0) {
      (void)std::filesystem::remove_all(At("/new"));
      model_.nodes.erase(At("/new/log.xml"));
      model_.nodes.erase(At("/new/log.xm_"));
      model_.nodes.erase(At("/new"));
    }
  }
  // Mostly far away; otherwise about the size at which the log moves.
  u32 MaxSize(const Text& path, const ModelLogEntry& entry) {
    if (inputs_.Below(4) != 0 || !path || !model_.nodes.contains(*path)) {
      return (const u32[]){131072, 131072, 0xFFFFFFFF, 0, 1}[inputs_.Below(5)];
    }
    const size_t entrySize = ModelLogEntryText(entry, time(nullptr), kHost).size();
    return static_cast<u32>(model_.nodes.at(*path).bytes.size() + entrySize) + inputs_.Below(3) - 1;
  }

  void AppendOne() {
    const Text path = Path();
    const ModelLogEntry entry = inputs_.Entry();
    const u32 maxSize = MaxSize(path, entry);
    Compare([&] { return Append(path, entry, maxSize); },
            [&](ModelLogFiles& model, s64 now, s64 later) {
              return model.Append(path, entry, maxSize, now, later);
            });
    if (model_.moved()) ++moves_;
  }
  void ForceExists() {
    if (inputs_.Below(2) == 0) Write("/cmd.xml", inputs_.Short());
    const Text path = Path();
    const Text user = inputs_.Name();
    const Text source = inputs_.Name();
    Compare([&] { return PXTForceXMLLogExists(Given(path), Given(user), Given(source)); },
            [&](ModelLogFiles& model, s64 now, s64 /*later*/) {
              return model.ForceExists(path, user, source, now);
            });
  }
  void Clear() {
    const Text path = Path();
    const Text user = inputs_.Name();
    const Text source = inputs_.Name();
    Compare([&] { return PXTClearXMLLog(Given(path), Given(user), Given(source)); },
            [&](ModelLogFiles& model, s64 now, s64 /*later*/) {
              return model.Clear(path, user, source, now);
            });
  }
  void ReadContent() {
    const Text path = Path();
    const Text expected = model_.Content(path);
    astring* const content = PXTCmdGetXMLLogContent(Given(path));
    ASSERT_EQ(content != nullptr, expected.has_value()) << path.value_or("(null)");
    if (content != nullptr) {
      ASSERT_TRUE(content == *expected) << *path;
    }
    PXTFreeMem(content);
    ASSERT_EQ(Difference(model_.nodes, OnDisk()), "");
  }

  // The clock may move on while the library runs: any time within the call will do.
  template <typename Call, typename ModelCall>
  void Compare(Call call, ModelCall modelCall) {
    const s64 before = time(nullptr);
    const u32 status = call();
    const s64 after = time(nullptr);
    const std::map<std::string, ModelNode> disk = OnDisk();
    std::string difference;
    for (s64 now = before; now <= after; ++now) {
      for (s64 later = now; later <= after; ++later) {
        ModelLogFiles tried = model_;
        const u32 expected = modelCall(tried, now, later);
        ASSERT_EQ(status, expected);
        difference = Difference(tried.nodes, disk);
        if (!difference.empty()) continue;
        model_ = tried;
        (status == 0 ? successes_ : faults_) += 1;
        return;
      }
    }
    FAIL() << difference;
  }
  static std::map<std::string, ModelNode> OnDisk() {
    std::map<std::string, ModelNode> nodes;
    nodes[kRoot] = {true, "", 0};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kRoot)) {
      const std::string path = entry.path();
      ModelNode& node = nodes[path];
      node.isFolder = entry.is_directory();
      if (!node.isFolder) node.bytes = qvx::test::ReadFile(path);
      if (!node.isFolder || path == At("/new")) node.mode = qvx::test::ModeOf(path);
    }
    return nodes;
  }
  static std::string Difference(const std::map<std::string, ModelNode>& expected,
                                const std::map<std::string, ModelNode>& found) {
    for (const auto& [path, node] : expected) {
      if (!found.contains(path)) return path + " is missing";
      const ModelNode& other = found.at(path);
      if (node.isFolder != other.isFolder) return path + " is of another kind";
      if (node.bytes != other.bytes) {
        return path + ": expected\n" + node.bytes + "\nfound\n" + other.bytes;
      }
      if (node.mode != other.mode) return path + ": mode";
    }
    for (const auto& [path, node] : found) {
      if (!expected.contains(path)) return path + " is left over";
    }
    return "";
  }

  HostileLogs inputs_;
  ModelLogFiles model_{kHost};
  u32 moves_ = 0;
  u32 faults_ = 0;
  u32 successes_ = 0;
};

// --- The model itself ---

const char* const kEntryOfTheEpoch =
    "<LogEntry><TimeStamp>0</TimeStamp><DateTime>Thu Jan  1 00:00:00 1970</DateTime>"
    "<ComputerName>h</ComputerName><Type>4</Type><ID>0</ID><UserInfo>a&lt;b</UserInfo>"
    "<Source></Source><Description>a<b</Description><Data></Data></LogEntry>";

ModelLogEntry SmallEntry() {
  ModelLogEntry entry;
  entry.type = 4;
  entry.user = "a<b";
  entry.description = "a<b";
  return entry;
}

TEST(XmlAppendModel, ModelWritesItsWorkedEntry) {
  ASSERT_EQ(setenv("TZ", "UTC0", 1), 0);
  EXPECT_EQ(ModelLogEntryText(SmallEntry(), 0, "h"), kEntryOfTheEpoch);
  ModelLogEntry withData = SmallEntry();
  withData.data = "A\x7F!";
  withData.dataSize = 2;
  const std::string text = ModelLogEntryText(withData, 0, "h");
  const size_t at = text.find("<Data>");
  EXPECT_EQ(text.substr(at),
            "<Data>0x00000000: 41 7F                                              A.               "
            "\r\n</Data></LogEntry>");
}

TEST(XmlAppendModel, ModelAppendsAsItsWorkedExamples) {
  const std::string head = kLogHead;
  EXPECT_EQ(head.size(), 75u);
  EXPECT_EQ(ModelAppended("", "E"), head + "E</EventLog>");
  EXPECT_EQ(ModelAppended(std::string(64, 'x'), "E"), head + "E</EventLog>");
  EXPECT_EQ(ModelAppended(std::string(65, 'x'), "E"), std::nullopt);
  EXPECT_EQ(ModelAppended(std::string(100, 'x'), "E"), std::nullopt);
  EXPECT_EQ(ModelAppended(std::string(64, 'x') + kLogTail, "E"), std::nullopt);
  const std::string filler(65, 'x');
  EXPECT_EQ(ModelAppended(filler + kLogTail, "E"), filler + "E</EventLog>");
  EXPECT_EQ(ModelAppended(head + "D</EventLog>d</EventLog>\r\n", "E"),
            head + "D</EventLog>dE</EventLog>");
}

TEST(XmlAppendModel, ModelMovesAFullLogAsItsWorkedExample) {
  ModelLogFiles files("h");
  files.nodes["/l"] = {true, "", 0755};
  const std::string full = kLogHead + std::string(990 - 86, 'x') + kLogTail;
  files.nodes["/l/cmd.xml"] = {false, full, 0600};
  const u32 size = static_cast<u32>(ModelLogEntryText(SmallEntry(), 0, "h").size());
  EXPECT_EQ(files.Append("/l/cmd.xml", SmallEntry(), 990 + size + 1, 0, 0), 0u);
  EXPECT_EQ(files.nodes.size(), 2u);
  files.nodes["/l/cmd.xml"].bytes = full;
  EXPECT_EQ(files.Append("/l/cmd.xml", SmallEntry(), 990 + size, 0, 1), 0u);
  EXPECT_EQ(files.nodes.at("/l/cmd.xm_").bytes, full);
  EXPECT_EQ(files.nodes.at("/l/cmd.xm_").mode, 01664u);
  ModelLogEntry created = SmallEntry();
  created.id = 1;
  created.description = "Log backup created";
  EXPECT_EQ(files.nodes.at("/l/cmd.xml").bytes, kLogHead + ModelLogEntryText(created, 1, "h") +
                                                    ModelLogEntryText(SmallEntry(), 0, "h") +
                                                    kLogTail);
}

TEST(XmlAppendModel, ModelRefusesAsItsWorkedExamples) {
  ModelLogFiles files("h");
  files.nodes["/l"] = {true, "", 0755};
  ModelLogEntry entry = SmallEntry();
  entry.user = std::string(1024, 'u');
  EXPECT_EQ(files.Append("/l/c", entry, 9, 0, 0), 2u);
  entry.user = "";
  EXPECT_EQ(files.Append("/l/c", entry, 9, 0, 0), 2u);
  entry.user = std::string(1023, 'u');
  entry.data = std::string(32769, 'd');
  entry.dataSize = 32769;
  EXPECT_EQ(files.Append("/l/c", entry, 9, 0, 0), 2u);
  EXPECT_EQ(files.Clear("/l/c", std::nullopt, std::nullopt, 0), 0xFFFFFFFFu);
  EXPECT_EQ(files.nodes.size(), 1u);
  EXPECT_EQ(ModelBackupName("a").status, 0x010Fu);
  EXPECT_EQ(ModelBackupName("ab").name, "a_");
  EXPECT_EQ(ModelBackupName("ab").size, 3u);
}

// --- The library beside it ---

TEST(XmlAppendModel, CallsOnHostileLogsLeaveTheFilesThatTheModelLeaves) {
  ASSERT_NO_FATAL_FAILURE(Begin());
  Pair pair(71);
  const int descriptors = qvx::test::OpenDescriptors();
  for (u32 step = 0; step < kInputs; ++step) {
    ASSERT_NO_FATAL_FAILURE(pair.Step()) << step;
  }
  EXPECT_EQ(qvx::test::OpenDescriptors(), descriptors);
  EXPECT_TRUE(qvx::test::LockIsFree());
  // Every outcome is common, or the comparison says little.
  EXPECT_GT(pair.moves(), kInputs / 20);
  EXPECT_GT(pair.faults(), kInputs / 10);
  EXPECT_GT(pair.successes(), kInputs / 4);
}

TEST(XmlAppendModel, OneEntryOnAHostileFileLeavesTheBytesThatTheModelLeaves) {
  ASSERT_NO_FATAL_FAILURE(Begin());
  HostileLogs logs(72);
  const std::string path = std::string(kRoot) + "/log.xml";
  const ModelLogEntry entry = SmallEntry();
  u32 refused = 0;
  for (u32 input = 0; input < kInputs; ++input) {
    const std::string before = logs.File();
    qvx::test::WriteFile(path, before);
    const s64 began = time(nullptr);
    const u32 status = Append(path, entry, 0xFFFFFFFF);
    const std::string found = qvx::test::ReadFile(path);
    const s64 ended = time(nullptr);
    bool same = false;
    Text expected;
    for (s64 now = began; now <= ended; ++now) {
      expected = ModelAppended(before, ModelLogEntryText(entry, now, kHost));
      same = same || found == expected.value_or(before);
    }
    ASSERT_EQ(status, expected ? 0u : 0x0101u) << input;
    ASSERT_TRUE(same) << input;
    ASSERT_EQ(qvx::test::ModeOf(path), 01664u) << input;
    if (!expected) ++refused;
  }
  EXPECT_GT(refused, kInputs / 10);
  EXPECT_LT(refused, kInputs / 2);
}

TEST(XmlAppendModel, BackupNamesAgreeWithTheModel) {
  HostileTexts texts(73);
  for (u32 input = 0; input < kInputs; ++input) {
    const u32 lengths[] = {texts.Below(6), 250 + texts.Below(10), texts.Below(600)};
    std::string path;
    for (u32 left = lengths[texts.Below(3)]; left > 0; --left) {
      path += static_cast<char>(1 + texts.Below(255));
    }
    GuardBuffer<astring> given(path.size() + 1);
    memcpy(given.data(), path.c_str(), path.size() + 1);
    GuardBuffer<astring> room(256);
    const bool query = texts.Below(4) == 0;
    const u32 unset = texts.Below(300);
    u32 size = unset;
    const ModelBackup expected = ModelBackupName(path);
    ASSERT_EQ(PXTGetBackupXMLLogPathFileName(given.data(), query ? nullptr : room.data(), &size),
              expected.status)
        << input;
    ASSERT_EQ(size, expected.size.value_or(unset)) << input;
    const bool written = expected.name && !query;
    if (written) {
      ASSERT_EQ(std::string(room.data()), *expected.name) << input;
    }
    ASSERT_TRUE(room.UntouchedFrom(written ? expected.name->size() + 1 : 0)) << input;
    ASSERT_TRUE(room.FrontUntouched()) << input;
  }
}

}  // namespace
