// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_reader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <string>

#include "qvxcs/status.h"

#include "base/results.h"
#include "frame/module.h"
#include "os/descriptor.h"
#include "os/file_lock.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/guard_buffer.h"
#include "support/processes.h"
#include "support/small_disk.h"

namespace qvx {
namespace {

using test::GuardBuffer;
using test::LockHolder;
using test::LockIsFree;
using test::WriteFile;

constexpr char kPath[] = "/tmp/a.ini";

// A read with 100 bytes of room.
struct Answer {
  u32 status;
  std::string text;
  u32 size;
};

bool operator==(const Answer& left, const Answer& right) {
  return left.status == right.status && left.text == right.text && left.size == right.size;
}

std::ostream& operator<<(std::ostream& out, const Answer& answer) {
  return out << "{" << answer.status << ", \"" << answer.text << "\", " << answer.size << "}";
}

Answer Found(const std::string& text) {
  return {SM_STATUS_SUCCESS, text, static_cast<u32>(text.size()) + 1};
}

Answer Missing(u32 status) { return {status, "", 0}; }

class IniReader : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(ModuleAttach(), 1); }

  static Answer Read(const char* section, const char* key) {
    GuardBuffer<astring> value(100);
    value[0] = '\0';
    u32 size = 100;
    const u32 status =
        ReadINIFileValue_astring({section, key, value.data(), &size, nullptr, 0, kPath, 0});
    return {status, value.data(), size};
  }

  // Lists into exactly this many bytes of room; the text ends where the list does.
  static Answer List(const char* section, u32 room, u32 given) {
    GuardBuffer<astring> value(room);
    u32 size = given;
    const u32 status =
        ReadINIFileValue_astring({section, nullptr, value.data(), &size, nullptr, 0, kPath, 0});
    std::string text;
    if (status == SM_STATUS_SUCCESS) {
      EXPECT_EQ(value[size], '\0');
      text.assign(value.data(), size);
    }
    return {status, text, size};
  }
};

std::string Names(std::initializer_list<const char*> names) {
  std::string text;
  for (const char* name : names) {
    text += name;
    text += '\0';
  }
  return text;
}

TEST_F(IniReader, ValueIsTheTextBehindTheEqualsSign) {
  WriteFile(kPath, "[Net]\nport=8080\nhost=a=b\nempty=\nlast=x");
  EXPECT_EQ(Read("Net", "port"), Found("8080"));
  EXPECT_EQ(Read("Net", "host"), Found("a=b"));
  EXPECT_EQ(Read("Net", "empty"), Found(""));
  EXPECT_EQ(Read("Net", "last"), Found("x"));
}

TEST_F(IniReader, CaseMatters) {
  WriteFile(kPath, "[Net]\nport=8080\n");
  EXPECT_EQ(Read("Net", "Port"), Missing(SM_STATUS_KEY_NOT_FOUND));
  EXPECT_EQ(Read("NET", "port"), Missing(SM_STATUS_SECTION_NOT_FOUND));
}

TEST_F(IniReader, NothingIsTrimmed) {
  WriteFile(kPath, "[Net]\n  port = 8080\n");
  EXPECT_EQ(Read("Net", "port"), Missing(SM_STATUS_KEY_NOT_FOUND));
  EXPECT_EQ(Read("Net", "port "), Found(" 8080"));
}

TEST_F(IniReader, SectionNamesAreTakenAsWritten) {
  WriteFile(kPath, "[ Net ] more\nport=1\n\t [Log]\nport=2\n");
  EXPECT_EQ(Read("Net", "port"), Missing(SM_STATUS_SECTION_NOT_FOUND));
  EXPECT_EQ(Read(" Net ", "port"), Found("1"));
  EXPECT_EQ(Read("Log", "port"), Found("2"));
}

TEST_F(IniReader, SecondSectionOfTheSameNameIsNeverSearched) {
  WriteFile(kPath, "[A]\nx=1\n[A]\ny=2\n");
  EXPECT_EQ(Read("A", "y"), Missing(SM_STATUS_KEY_NOT_FOUND));
  EXPECT_EQ(List(nullptr, 100, 100), (Answer{SM_STATUS_SUCCESS, Names({"A", "A"}), 4}));
  EXPECT_EQ(List("A", 100, 100), (Answer{SM_STATUS_SUCCESS, Names({"x"}), 2}));
}

TEST_F(IniReader, FirstLineOfAKeyWins) {
  WriteFile(kPath, "[A]\nx=1\nx=2\n");
  EXPECT_EQ(Read("A", "x"), Found("1"));
}

TEST_F(IniReader, CommentsAndBareLinesAreSkipped) {
  WriteFile(kPath, "#[A]\n;[A]\nx=0\n[A]\n#x=1\n;x=2\n\nx\n #x=3\nx=4\n");
  EXPECT_EQ(Read("A", "x"), Found("4"));
  EXPECT_EQ(Read("A", "#x"), Found("3"));
  EXPECT_EQ(List("A", 100, 100), (Answer{SM_STATUS_SUCCESS, Names({"#x", "x"}), 5}));
}

TEST_F(IniReader, KeysBeforeTheFirstSectionBelongToNone) {
  WriteFile(kPath, "x=1\n[A]\ny=2\n");
  EXPECT_EQ(Read("A", "x"), Missing(SM_STATUS_KEY_NOT_FOUND));
  EXPECT_EQ(Read("", "x"), Missing(SM_STATUS_SECTION_NOT_FOUND));
}

TEST_F(IniReader, EmptyNamesAreNames) {
  WriteFile(kPath, "[]\n\n=1\n");
  EXPECT_EQ(Read("", ""), Found("1"));
  EXPECT_EQ(List(nullptr, 100, 100), (Answer{SM_STATUS_SUCCESS, Names({""}), 1}));
  EXPECT_EQ(List("", 100, 100), (Answer{SM_STATUS_SUCCESS, Names({""}), 1}));
}

TEST_F(IniReader, MalformedHeaderBeforeTheSectionIsReported) {
  WriteFile(kPath, "[Bad\n[A]\nx=1\n");
  EXPECT_EQ(Read("A", "x"), Missing(SM_STATUS_BAD_SECTION_HEADER));
  EXPECT_EQ(List("A", 100, 100), (Answer{SM_STATUS_BAD_SECTION_HEADER, "", 100}));
  EXPECT_EQ(List(nullptr, 100, 100), (Answer{SM_STATUS_BAD_SECTION_HEADER, "", 100}));
}

TEST_F(IniReader, MalformedHeaderBehindTheSectionEndsIt) {
  WriteFile(kPath, "[A]\nx=1\n [Bad\ny=2\n");
  EXPECT_EQ(Read("A", "x"), Found("1"));
  EXPECT_EQ(Read("A", "y"), Missing(SM_STATUS_KEY_NOT_FOUND));
  EXPECT_EQ(List("A", 100, 100), (Answer{SM_STATUS_SUCCESS, Names({"x"}), 2}));
}

TEST_F(IniReader, CarriageReturnBelongsToTheValue) {
  WriteFile(kPath, "[A]\r\nx=1\r\n");
  EXPECT_EQ(Read("A", "x"), Found("1\r"));
}

TEST_F(IniReader, LongLinesAreSeveralLines) {
  // 8,449 characters end just before "y=2".
  WriteFile(kPath, "[A]\nx=" + std::string(8447, 'v') + "y=2\n");
  EXPECT_EQ(Read("A", "y"), Found("2"));
  GuardBuffer<astring> value(8448);
  u32 size = 8448;
  EXPECT_EQ(ReadINIFileValue_astring({"A", "x", value.data(), &size, nullptr, 0, kPath, 0}),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 8448u);
  EXPECT_EQ(std::string(value.data()), std::string(8447, 'v'));
}

TEST_F(IniReader, TextEndsAtANulByte) {
  WriteFile(kPath, std::string("[A]\nx=1\0z\ny\0=2\nw=3\n", 19));
  EXPECT_EQ(Read("A", "x"), Found("1"));
  EXPECT_EQ(Read("A", "y"), Missing(SM_STATUS_KEY_NOT_FOUND));
  EXPECT_EQ(Read("A", "w"), Found("3"));
}

TEST_F(IniReader, SectionNamesAbove255CharactersAreNeverFound) {
  const std::string name(255, 'n');
  WriteFile(kPath, "[" + name + "more]\nx=1\n");
  EXPECT_EQ(Read(name.c_str(), "x"), Found("1"));
  EXPECT_EQ(Read((name + "more").c_str(), "x"), Missing(SM_STATUS_SECTION_NOT_FOUND));
  EXPECT_EQ(Read((name + "m").c_str(), "x"), Missing(SM_STATUS_SECTION_NOT_FOUND));
  GuardBuffer<astring> list(257);
  u32 size = 256;
  EXPECT_EQ(ReadINIFileValue_astring({nullptr, nullptr, list.data(), &size, nullptr, 0, kPath, 0}),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 256u);
  EXPECT_EQ(std::string(list.data()), name);
}

TEST_F(IniReader, TooSmallBufferIsLeftAloneAndToldTheSize) {
  WriteFile(kPath, "[A]\nname=abcdef\n");
  GuardBuffer<astring> value(4);
  u32 size = 4;
  EXPECT_EQ(ReadINIFileValue_astring({"A", "name", value.data(), &size, "dflt", 5, kPath, 0}),
            SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 7u);
  EXPECT_TRUE(value.UntouchedFrom(0));
}

TEST_F(IniReader, ValueMayFillTheBuffer) {
  WriteFile(kPath, "[A]\nname=abcdef\n");
  GuardBuffer<astring> value(7);
  u32 size = 6;
  EXPECT_EQ(ReadINIFileValue_astring({"A", "name", value.data(), &size, nullptr, 0, kPath, 0}),
            SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 7u);
  EXPECT_EQ(ReadINIFileValue_astring({"A", "name", value.data(), &size, nullptr, 0, kPath, 0}),
            SM_STATUS_SUCCESS);
  EXPECT_STREQ(value.data(), "abcdef");
}

TEST_F(IniReader, DefaultOfAMissingKeyIsCutAndTheStatusStays) {
  WriteFile(kPath, "[A]\nx=1\n");
  GuardBuffer<astring> value(3);
  u32 size = 3;
  EXPECT_EQ(ReadINIFileValue_astring({"A", "y", value.data(), &size, "dflt", 5, kPath, 0}),
            SM_STATUS_KEY_NOT_FOUND);
  EXPECT_STREQ(value.data(), "df");
  EXPECT_EQ(size, 3u);
}

TEST_F(IniReader, DefaultIsDeliveredWithItsOwnSize) {
  WriteFile(kPath, "[A]\nx=1\n");
  GuardBuffer<astring> value(20);
  u32 size = 20;
  EXPECT_EQ(ReadINIFileValue_astring({"B", "y", value.data(), &size, "dflt", 5, kPath, 0}),
            SM_STATUS_SECTION_NOT_FOUND);
  EXPECT_STREQ(value.data(), "dflt");
  EXPECT_EQ(size, 5u);
  EXPECT_TRUE(value.UntouchedFrom(5));
  // A default that its own size cuts short still ends in a NUL.
  size = 20;
  EXPECT_EQ(ReadINIFileValue_astring({"B", "y", value.data(), &size, "dflt", 4, kPath, 0}),
            SM_STATUS_SECTION_NOT_FOUND);
  EXPECT_STREQ(value.data(), "dfl");
  EXPECT_EQ(size, 4u);
}

TEST_F(IniReader, DefaultMayBeTheValueItself) {
  WriteFile(kPath, "[A]\nx=1\n");
  astring value[10] = "dflt";
  u32 size = 10;
  EXPECT_EQ(ReadINIFileValue_astring({"A", "y", value, &size, value, 5, kPath, 0}),
            SM_STATUS_KEY_NOT_FOUND);
  EXPECT_STREQ(value, "dflt");
  EXPECT_EQ(size, 5u);
}

TEST_F(IniReader, DefaultMayOverlapTheValue) {
  WriteFile(kPath, "[A]\nx=1\n");
  // "bcdefghij" moved to the front, then to the back, past the value's own first character.
  astring text[20] = "abcdefghij";
  u32 size = 10;
  EXPECT_EQ(ReadINIFileValue_astring({"A", "y", text, &size, text + 1, 10, kPath, 0}),
            SM_STATUS_KEY_NOT_FOUND);
  EXPECT_STREQ(text, "bcdefghij");
  EXPECT_EQ(size, 10u);
  memcpy(text, "abcdefghij", 11);
  size = 11;
  EXPECT_EQ(ReadINIFileValue_astring({"A", "y", text + 1, &size, text, 11, kPath, 0}),
            SM_STATUS_KEY_NOT_FOUND);
  EXPECT_STREQ(text, "aabcdefghij");
  EXPECT_EQ(size, 11u);
}

TEST_F(IniReader, WithoutADefaultTheValueIsEmptyAndItsSizeZero) {
  WriteFile(kPath, "[A]\nx=1\n");
  for (const char* given : {static_cast<const char*>(nullptr), "dflt"}) {
    GuardBuffer<astring> value(5);
    u32 size = 5;
    EXPECT_EQ(ReadINIFileValue_astring({"A", "y", value.data(), &size, given, 0, kPath, 0}),
              SM_STATUS_KEY_NOT_FOUND);
    EXPECT_STREQ(value.data(), "");
    EXPECT_EQ(size, 0u);
    EXPECT_TRUE(value.UntouchedFrom(1));
  }
}

TEST_F(IniReader, ListOfSize1IsABadArgument) {
  WriteFile(kPath, "[A]\nx=1\n");
  EXPECT_EQ(List("A", 1, 1), (Answer{SM_STATUS_BAD_ARGUMENT, "", 1}));
  EXPECT_EQ(List(nullptr, 1, 1), (Answer{SM_STATUS_BAD_ARGUMENT, "", 1}));
  EXPECT_TRUE(LockIsFree());
}

TEST_F(IniReader, KeyListEndsOneByteBehindItsTotal) {
  WriteFile(kPath, "[A]\na=1\nbc=2\n");
  // "a", NUL, "bc", NUL are five bytes; the closing NUL is the sixth.
  EXPECT_EQ(List("A", 6, 5), (Answer{SM_STATUS_SUCCESS, Names({"a", "bc"}), 5}));
}

TEST_F(IniReader, ListThatDoesNotFitTellsItsWholeSize) {
  WriteFile(kPath, "[A]\na=1\nbc=2\nd=3\n[B]\n");
  GuardBuffer<astring> keys(5);
  u32 size = 4;
  EXPECT_EQ(ReadINIFileValue_astring({"A", nullptr, keys.data(), &size, nullptr, 0, kPath, 0}),
            SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 7u);
  EXPECT_EQ(memcmp(keys.data(), "a\0\0", 3), 0);
  EXPECT_TRUE(keys.UntouchedFrom(3));
  GuardBuffer<astring> sections(4);
  size = 3;
  EXPECT_EQ(
      ReadINIFileValue_astring({nullptr, nullptr, sections.data(), &size, nullptr, 0, kPath, 0}),
      SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(memcmp(sections.data(), "A\0\0", 3), 0);
  EXPECT_TRUE(sections.UntouchedFrom(3));
}

TEST_F(IniReader, NameThatDoesNotFitHidesLaterOnesThatWould) {
  WriteFile(kPath, "[A]\nlong=1\nb=2\n");
  GuardBuffer<astring> keys(4);
  u32 size = 4;
  EXPECT_EQ(ReadINIFileValue_astring({"A", nullptr, keys.data(), &size, nullptr, 0, kPath, 0}),
            SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 7u);
  EXPECT_EQ(memcmp(keys.data(), "\0\0", 2), 0);
  EXPECT_TRUE(keys.UntouchedFrom(2));
}

TEST_F(IniReader, EmptyListsAreFailuresThatLeaveTheSize) {
  WriteFile(kPath, "[A]\n# x=1\n[B]\nx=1\n");
  EXPECT_EQ(List("A", 100, 100), (Answer{SM_STATUS_KEY_NOT_FOUND, "", 100}));
  EXPECT_EQ(List("C", 100, 100), (Answer{SM_STATUS_SECTION_NOT_FOUND, "", 100}));
  WriteFile(kPath, "x=1\n");
  EXPECT_EQ(List(nullptr, 100, 100), (Answer{SM_STATUS_SECTION_NOT_FOUND, "", 100}));
  GuardBuffer<astring> list(2);
  u32 size = 2;
  EXPECT_EQ(ReadINIFileValue_astring({nullptr, nullptr, list.data(), &size, "d", 2, kPath, 0}),
            SM_STATUS_SECTION_NOT_FOUND);
  EXPECT_EQ(size, 2u);
  EXPECT_EQ(memcmp(list.data(), "\0\0", 2), 0);
}

TEST_F(IniReader, SectionsAreListedInTheFilesOrder) {
  WriteFile(kPath, "[B]\n[A] more\n#[C]\n  [ D ]\n[B]\n");
  EXPECT_EQ(List(nullptr, 100, 100),
            (Answer{SM_STATUS_SUCCESS, Names({"B", "A", " D ", "B"}), 10}));
}

TEST_F(IniReader, ReadErrorIsABadSectionHeader) {
  // Address 0 of a process cannot be read.
  astring value[10];
  u32 size = 10;
  const char* path = "/proc/self/mem";
  EXPECT_EQ(ReadINIFileValue_astring({"A", "x", value, &size, "dflt", 5, path, 0}),
            SM_STATUS_BAD_SECTION_HEADER);
  EXPECT_STREQ(value, "dflt");
  size = 10;
  EXPECT_EQ(ReadINIFileValue_astring({"A", nullptr, value, &size, nullptr, 0, path, 0}),
            SM_STATUS_BAD_SECTION_HEADER);
  EXPECT_EQ(ReadINIFileValue_astring({nullptr, nullptr, value, &size, nullptr, 0, path, 0}),
            SM_STATUS_BAD_SECTION_HEADER);
  EXPECT_EQ(size, 10u);
}

TEST_F(IniReader, MissingArgumentsTouchNothing) {
  WriteFile(kPath, "[A]\nx=1\n");
  GuardBuffer<astring> value(4);
  u32 size = 4;
  EXPECT_EQ(ReadINIFileValue_astring({"A", "y", nullptr, &size, "d", 2, kPath, 0}),
            SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ReadINIFileValue_astring({"A", "y", value.data(), nullptr, "d", 2, kPath, 0}),
            SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ReadINIFileValue_astring({"A", "y", value.data(), &size, "d", 2, nullptr, 0}),
            SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(size, 4u);
  size = 0;
  EXPECT_EQ(ReadINIFileValue_astring({"A", "y", value.data(), &size, "d", 2, kPath, 0}),
            SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(size, 0u);
  EXPECT_TRUE(value.UntouchedFrom(0));
}

TEST_F(IniReader, ScannersRefuseMissingArguments) {
  WriteFile(kPath, "[A]\nx=1\n");
  const Descriptor opened = OpenDescriptor(kPath, O_RDONLY);
  BlockReader file(opened.Number());
  astring text[10];
  u32 size = 10;
  EXPECT_EQ(GetValue(nullptr, "x", text, &size, &file), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(GetValue("A", nullptr, text, &size, &file), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(GetValue("A", "x", nullptr, &size, &file), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(GetValue("A", "x", text, nullptr, &file), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(GetValue("A", "x", text, &size, nullptr), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(GetAllKeys(nullptr, text, &size, &file), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(GetAllKeys("A", nullptr, &size, &file), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(GetAllKeys("A", text, nullptr, &file), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(GetAllKeys("A", text, &size, nullptr), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(GetAllSections(nullptr, &size, &file), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(GetAllSections(text, nullptr, &file), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(GetAllSections(text, &size, nullptr), SM_STATUS_BAD_ARGUMENT);
}

TEST_F(IniReader, FilesThatCannotBeOpenedLeaveValueAndSize) {
  ASSERT_EQ(mkfifo("/tmp/fifo", 0666), 0);
  for (const char* path : {"/tmp/missing.ini", "/tmp", "/tmp/fifo", ""}) {
    GuardBuffer<astring> value(5);
    u32 size = 5;
    EXPECT_EQ(ReadINIFileValue_astring({"A", "x", value.data(), &size, "dflt", 5, path, 0}),
              SM_STATUS_FILE_OPEN_FAILED)
        << path;
    EXPECT_EQ(size, 5u);
    EXPECT_TRUE(value.UntouchedFrom(0));
  }
  EXPECT_TRUE(LockIsFree());
}

TEST_F(IniReader, LockHeldByAnotherProcessRefusesASingleAttempt) {
  WriteFile(kPath, "[A]\nx=1\n");
  const LockHolder holder;
  // Only exactly 1 waits.
  for (const booln flag : {booln{0}, booln{2}, booln{0x101}}) {
    GuardBuffer<astring> value(5);
    u32 size = 5;
    EXPECT_EQ(ReadINIFileValue_astring({"A", "x", value.data(), &size, "dflt", 5, kPath, flag}),
              SM_STATUS_LOCK_FAILED);
    EXPECT_EQ(size, 5u);
    EXPECT_TRUE(value.UntouchedFrom(0));
  }
}

TEST_F(IniReader, WaitingEndsAfter60000Milliseconds) {
  WriteFile(kPath, "[A]\nx=1\n");
  const LockHolder holder;
  astring value[5];
  u32 size = 5;
  const test::CountSleeps sleeps;
  EXPECT_EQ(ReadINIFileValue_astring({"A", "x", value, &size, nullptr, 0, kPath, 1}),
            SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(test::CountSleeps::Count(), 60000u);
  EXPECT_EQ(test::CountSleeps::Microseconds(), 60000000u);
}

TEST_F(IniReader, WaitingReaderGetsTheLockOfAProcessThatEnds) {
  WriteFile(kPath, "[A]\nx=1\n");
  const LockHolder holder(kIPCFilePath, 50000);
  astring value[5];
  u32 size = 5;
  EXPECT_EQ(ReadINIFileValue_astring({"A", "x", value, &size, nullptr, 0, kPath, 1}),
            SM_STATUS_SUCCESS);
  EXPECT_STREQ(value, "1");
}

TEST_F(IniReader, KilledHolderFreesTheLock) {
  WriteFile(kPath, "[A]\nx=1\n");
  LockHolder holder;
  EXPECT_EQ(Read("A", "x").status, SM_STATUS_LOCK_FAILED);
  holder.Kill();
  EXPECT_EQ(Read("A", "x"), Found("1"));
}

TEST_F(IniReader, EveryWayOutReleasesTheLock) {
  WriteFile(kPath, "[Bad\n[A]\nx=1\n");
  (void)Read("A", "x");
  EXPECT_TRUE(LockIsFree());
  WriteFile(kPath, "[A]\nx=1\n");
  for (const char* key : {"x", "y"}) {
    (void)Read("A", key);
    EXPECT_TRUE(LockIsFree());
  }
  (void)List("A", 100, 100);
  (void)List(nullptr, 100, 100);
  EXPECT_TRUE(LockIsFree());
}

TEST_F(IniReader, InnerReadEndsTheOuterHold) {
  WriteFile(kPath, "[A]\nx=1\n");
  const FileLockGuard outer(QVX_LOCK_TRY);
  ASSERT_TRUE(outer);
  EXPECT_FALSE(LockIsFree());
  EXPECT_EQ(Read("A", "x"), Found("1"));
  EXPECT_TRUE(LockIsFree());
}

TEST_F(IniReader, FileIsNeverChanged) {
  const std::string text = "[A]\nx=1\n";
  WriteFile(kPath, text);
  ASSERT_EQ(chmod(kPath, 0400), 0);
  EXPECT_EQ(Read("A", "x"), Found("1"));
  EXPECT_EQ(Read("A", "y"), Missing(SM_STATUS_KEY_NOT_FOUND));
  EXPECT_EQ(test::ReadFile(kPath), text);
  EXPECT_EQ(test::ModeOf(kPath), 0400u);
}

TEST_F(IniReader, WithoutMemoryTheStatusIsMinusOne) {
  WriteFile(kPath, "[A]\nx=1\n");
  const u32 met = test::FailEachAllocation([] { return Read("A", "x"); },
                                           [](const Answer& answer) {
                                             EXPECT_EQ(answer, Missing(kMinusOne));
                                             EXPECT_TRUE(LockIsFree());
                                           });
  EXPECT_EQ(met, 1u);
  for (const char* section : {static_cast<const char*>(nullptr), "A"}) {
    const u32 listed = test::FailEachAllocation([section] { return List(section, 100, 100); },
                                                [](const Answer& answer) {
                                                  EXPECT_EQ(answer, (Answer{kMinusOne, "", 100}));
                                                });
    EXPECT_EQ(listed, 1u);
  }
}

TEST(IniReaderUnattached, ReadingIsRefused) {
  WriteFile(kPath, "[A]\nx=1\n");
  astring value[5];
  u32 size = 5;
  EXPECT_EQ(ReadINIFileValue_astring({"A", "x", value, &size, nullptr, 0, kPath, 0}),
            SM_STATUS_LOCK_FAILED);
}

}  // namespace
}  // namespace qvx
