// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Escaping beside pugixml, an answer beside fmt's compiled formats, log entries beside the bare
// system calls and beside SQLite, a log's content beside a plain read.
#include <fcntl.h>
#include <fmt/compile.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <iterator>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "qvxcs/qvxcs.h"

#include "benchmarks/job.h"

namespace {

constexpr char kFolder[] = "/tmp/bench";
constexpr u32 kNoMaximum = 0xFFFFFFFF;

struct Collected : pugi::xml_writer {
  void write(const void* data, size_t size) override {
    text.append(static_cast<const char*>(data), size);
  }
  std::string text;
};

void CompareEscape(size_t percent) {
  std::string text(1024, 'x');
  for (size_t at = 0; percent != 0 && at < text.size(); at += 100 / percent) {
    text[at] = '&';
  }
  const auto document = std::make_shared<pugi::xml_document>();
  document->append_child(pugi::node_pcdata).set_value(text.c_str());
  Compare(
      "XML escape, 1 KiB with " + std::to_string(percent) + " % specials", "pugixml",
      [text] {
        astring* const escaped = PXTGetXMLUTF8StrFromAStr(text.c_str(), 1);
        benchmark::DoNotOptimize(escaped);
        PXTFreeMem(escaped);
      },
      [document] {
        Collected collected;
        document->first_child().print(collected, "", pugi::format_raw, pugi::encoding_utf8);
        benchmark::DoNotOptimize(collected.text.data());
      });
}

void CompareAnswer() {
  constexpr u32 kElements = 1000;
  Compare(
      "XML answer of 1,000 typed elements", "fmt, compiled formats",
      [] {
        void* const answer = PXTXAllocBuf(256, 0);
        (void)PXTXBufCatBeginNode(answer, "Answer", nullptr);
        for (u32 number = 0; number < kElements / 2; ++number) {
          (void)PXTXBufCatNode(answer, "Number", nullptr, QVX_TYPE_U32, &number);
          (void)PXTXBufCatNode(answer, "Name", "id=\"7\"", QVX_TYPE_ASTRING,
                               "archive of the laboratory");
        }
        (void)PXTXBufCatEndNode(answer, "Answer");
        PXTXFreeBufContent(PXTXFreeBufGetContent(answer));
      },
      [] {
        std::string answer = "<Answer>";
        for (u32 number = 0; number < kElements / 2; ++number) {
          fmt::format_to(std::back_inserter(answer), FMT_COMPILE("<{}>{}</{}>\n"), "Number", number,
                         "Number");
          fmt::format_to(std::back_inserter(answer), FMT_COMPILE("<{} {}>{}</{}>\n"), "Name",
                         "id=\"7\"", "archive of the laboratory", "Name");
        }
        answer += "</Answer>";
        benchmark::DoNotOptimize(answer.data());
      });
}

std::string LogOf(size_t bytes) {
  const std::string path = std::string(kFolder) + "/log" + std::to_string(bytes) + ".xml";
  Require(PXTForceXMLLogExists(path.c_str(), "bench", "BENCH") == SM_STATUS_SUCCESS, "make a log");
  const std::string filler(14000, 'x');
  for (size_t size = 0; size + 14300 < bytes; size += 14300) {
    Require(PXTAppendToXMLLog(path.c_str(), QVX_LOG_INFORMATION, 1, "bench", "BENCH",
                              filler.c_str(), nullptr, 0, kNoMaximum) == SM_STATUS_SUCCESS,
            "fill a log");
  }
  return path;
}

// The calls that any append must make: open, lock, find the end, write, unlock.
void AppendBare(const std::string& path, const std::string& entry) {
  static const int lock = open("/tmp/bench/lock", O_RDWR | O_CREAT | O_CLOEXEC, 0664);
  struct flock whole = {};
  whole.l_type = F_WRLCK;
  Require(fcntl(lock, F_SETLK, &whole) == 0, "bare lock");
  const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
  struct stat status = {};
  Require(file >= 0 && fstat(file, &status) == 0, "bare open");
  char tail[64];
  Require(pread(file, tail, sizeof(tail), status.st_size - 64) == sizeof(tail), "bare read");
  Require(pwrite(file, entry.data(), entry.size(), status.st_size) ==
              static_cast<ssize_t>(entry.size()),
          "bare write");
  close(file);
  whole.l_type = F_UNLCK;
  (void)fcntl(lock, F_SETLK, &whole);
}

class Database {
 public:
  explicit Database(const char* path) {
    Require(sqlite3_open(path, &database_) == SQLITE_OK, "open a database");
    Run("PRAGMA journal_mode=WAL");
    Run("PRAGMA synchronous=NORMAL");
    Run("CREATE TABLE IF NOT EXISTS log (time, user, source, description)");
    (void)sqlite3_prepare_v2(database_, "INSERT INTO log VALUES (datetime(), ?, ?, ?)", -1,
                             &insert_, nullptr);
  }
  ~Database() {
    (void)sqlite3_finalize(insert_);
    (void)sqlite3_close(database_);
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void Append(const std::string& text) {
    (void)sqlite3_bind_text(insert_, 1, "bench", -1, SQLITE_STATIC);
    (void)sqlite3_bind_text(insert_, 2, "BENCH", -1, SQLITE_STATIC);
    (void)sqlite3_bind_text(insert_, 3, text.c_str(), -1, SQLITE_STATIC);
    Require(sqlite3_step(insert_) == SQLITE_DONE, "insert");
    (void)sqlite3_reset(insert_);
  }

 private:
  void Run(const char* statement) {
    Require(sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) == SQLITE_OK, statement);
  }
  sqlite3* database_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
};

void CompareAppend(size_t bytes, const char* size) {
  const std::string path = LogOf(bytes);
  const std::string bare = path + ".bare";
  const std::string text(180, 't');
  const int file = open(bare.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0664);
  Require(ftruncate(file, static_cast<off_t>(bytes)) == 0, "make a bare log");
  close(file);
  const std::string job = std::string("log append of 400 bytes to ") + size;
  Compare(
      job, "the calls bare",
      [=] {
        Require(PXTAppendToXMLLog(path.c_str(), QVX_LOG_INFORMATION, 1, "bench", "BENCH",
                                  text.c_str(), nullptr, 0, kNoMaximum) == SM_STATUS_SUCCESS,
                "append");
      },
      [=, entry = std::string(400, 'e')] { AppendBare(bare, entry); });
  const auto database = std::make_shared<Database>((path + ".sqlite").c_str());
  Register(job, "SQLite WAL kept open", [=] { database->Append(text); });
}

void CompareContent() {
  const std::string path = LogOf(size_t{100} << 20);
  Compare(
      "a log's content, 100 MiB", "a plain read",
      [path] { PXTFreeMem(PXTCmdGetXMLLogContent(path.c_str())); },
      [path] {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        struct stat status = {};
        Require(file >= 0 && fstat(file, &status) == 0, "open the log");
        std::vector<char> text(static_cast<size_t>(status.st_size));
        Require(read(file, text.data(), text.size()) == status.st_size, "read the log");
        close(file);
        benchmark::DoNotOptimize(text.data());
      });
}

const bool kRegistered = [] {
  (void)mkdir(kFolder, 0755);
  for (const size_t percent : {size_t{0}, size_t{1}, size_t{10}}) {
    CompareEscape(percent);
  }
  CompareAnswer();
  CompareAppend(size_t{1} << 10, "1 KiB");
  CompareAppend(size_t{1} << 20, "1 MiB");
  CompareAppend(size_t{1} << 28, "256 MiB");
  CompareContent();
  return true;
}();

}  // namespace
