// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Many writers, in processes and in threads, of one log, one INI file and one key=value file:
// nothing is lost, each writer keeps its order, no call runs out of time.
#include <sys/mman.h>
#include <sys/wait.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <new>
#include <thread>

#include "torture/log_text.h"
#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kLog[] = "/tmp/torture/shared.xml";
constexpr char kBackup[] = "/tmp/torture/shared.xm_";
constexpr char kIni[] = "/tmp/torture/shared.ini";
constexpr char kPairs[] = "/tmp/torture/shared.properties";
constexpr char kOtherSection[] = "[other]\nfixed=value\n";
constexpr qvx_u32 kRoomy = 0x7FFFFFFF;
constexpr unsigned kMostWriters = 32;

// Of each writer, how many of its entries and which of its values were reported as written; shared
// by all processes.
struct Reports {
  std::atomic<unsigned> entries[kMostWriters];
  std::atomic<unsigned> values[kMostWriters];
  std::atomic<unsigned> pairs[kMostWriters];
};

// New for each judgement.
class SharedReports {
 public:
  SharedReports() {
    void* const place =
        mmap(nullptr, sizeof(Reports), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (place == MAP_FAILED) abort();
    reports_ = new (place) Reports{};
  }
  ~SharedReports() { (void)munmap(reports_, sizeof(Reports)); }
  SharedReports(const SharedReports&) = delete;
  SharedReports& operator=(const SharedReports&) = delete;
  Reports* operator->() const { return reports_; }
  Reports& operator*() const { return *reports_; }

 private:
  Reports* reports_;
};

// Writers and readers: so many processes of so many threads (one: without a second thread).
struct Crowd {
  unsigned processes;
  unsigned threads;
  [[nodiscard]] unsigned Size() const { return processes * threads; }
  [[nodiscard]] std::string Name() const {
    return std::to_string(processes) + " processes" +
           (threads == 1 ? "" : " of " + std::to_string(threads) + " threads");
  }
};

// Runs `body(process)` in each process; returns how many did not return true.
template <typename Body>
unsigned InProcesses(unsigned count, Body body) {
  (void)fflush(nullptr);
  for (unsigned at = 0; at < count; ++at) {
    const pid_t child = fork();
    if (child < 0) abort();
    if (child == 0) _exit(body(at) ? 0 : 1);
  }
  unsigned failed = 0;
  int status = 0;
  while (wait(&status) > 0)
    failed += status == 0 ? 0 : 1;
  return failed;
}

// Runs `body(0)` to `body(crowd.Size() - 1)`; returns whether all of them are true.
template <typename Body>
bool Run(const Crowd& crowd, Body body) {
  return InProcesses(crowd.processes, [&crowd, &body](unsigned process) {
           if (crowd.threads == 1) return body(process);
           std::atomic<bool> right = true;
           std::vector<std::thread> threads;
           for (unsigned at = 0; at < crowd.threads; ++at) {
             threads.emplace_back([&right, &body, number = process * crowd.threads + at] {
               if (!body(number)) right = false;
             });
           }
           for (std::thread& thread : threads) {
             thread.join();
           }
           return right.load();
         }) == 0;
}

std::string DescriptionOf(unsigned writer, unsigned nth) {
  return "w" + std::to_string(writer) + "-" + std::to_string(nth) + ";";
}

// The writer's next entry.
bool Append(unsigned writer, qvx_u32 maxSize, Reports* reports) {
  const unsigned nth = reports->entries[writer];
  const std::string text = DescriptionOf(writer, nth);
  if (PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, 7001, "root", "TORTURE", text.c_str(), nullptr,
                        0, maxSize) != SM_STATUS_SUCCESS) {
    return false;
  }
  reports->entries[writer] = nth + 1;
  return true;
}

bool AppendMany(unsigned writer, unsigned count, qvx_u32 maxSize, Reports* reports) {
  for (unsigned at = 0; at < count; ++at) {
    if (!Append(writer, maxSize, reports)) return false;
  }
  return true;
}

// The writer of the entry and its number. A copy, because sscanf() measures the whole text.
bool Parse(const std::string& log, size_t at, unsigned* writer, unsigned* nth) {
  constexpr size_t kLongest = 48;
  const std::string text = log.substr(at, kLongest);
  return sscanf(text.c_str(), "<Description>w%u-%u;<", writer, nth) == 2 && *writer < kMostWriters;
}

// All reported entries, each writer's in their order, and but for those so many of the library's.
std::string LogIsWhole(const std::string& log, const Reports& reports, unsigned own) {
  unsigned next[kMostWriters] = {};
  unsigned others = 0;
  constexpr char kBegin[] = "<Description>";
  for (size_t at = log.find(kBegin); at != std::string::npos; at = log.find(kBegin, at + 1)) {
    unsigned writer = 0;
    unsigned nth = 0;
    if (!Parse(log, at, &writer, &nth)) {
      ++others;
    } else if (nth != next[writer]++) {
      return "lost or out of order before " + DescriptionOf(writer, nth);
    }
  }
  unsigned all = 0;
  for (unsigned writer = 0; writer < kMostWriters; ++writer) {
    const unsigned reported = reports.entries[writer];
    if (next[writer] != reported) {
      return "of writer " + std::to_string(writer) + " " + std::to_string(next[writer]) +
             " entries are there, " + std::to_string(reported) + " were reported";
    }
    all += reported;
  }
  if (all == 0) return "nobody writes an entry";
  return others == own && EntryCount(log) == all + own ? "" : "the log holds other entries, too";
}

std::string LogIsRight(const Reports& reports) {
  const std::string log = ReadText(kLog);
  return WellFormed(log) ? LogIsWhole(log, reports, 0) : "the log is not well-formed";
}

// --- INI and key=value ---

// Writers of odd numbers have another section.
const char* SectionOf(unsigned writer) { return writer % 2 == 0 ? "s" : "other"; }
std::string KeyOf(unsigned writer) { return "k" + std::to_string(writer); }

bool ReadIni(const char* section, const char* key, const std::string& expected) {
  char text[16];
  qvx_u32 size = sizeof(text);
  return PXTReadINIPathFileValue(section, key, QVX_INI_ASTRING, text, &size, nullptr, 0, kIni,
                                 QVX_LOCK_WAIT) == SM_STATUS_SUCCESS &&
         expected == text;
}

// The writer's next value, read back.
bool ChangeIni(unsigned writer, Reports* reports) {
  const std::string key = KeyOf(writer);
  const std::string text = std::to_string(reports->values[writer] + 1);
  if (PXTWriteINIPathFileValue(SectionOf(writer), key.c_str(), QVX_INI_ASTRING, text.c_str(),
                               static_cast<qvx_s32>(text.size() + 1), kIni,
                               QVX_LOCK_WAIT) != SM_STATUS_SUCCESS) {
    return false;
  }
  ++reports->values[writer];
  return ReadIni(SectionOf(writer), key.c_str(), text);
}

bool ReadPair(const char* key, const std::string& expected) {
  qvx_u32 count = 0;
  PXTKeyValue* const entries = PXTCFGGetKeyValueEntries(kPairs, &count);
  const char* const text = entries == nullptr ? nullptr : PXTCFGGetKeyValue(entries, count, key, 0);
  const bool right = text != nullptr && expected == text;
  PXTCFGFreeKeyValueEntries(entries, count);
  return right;
}

bool ChangePair(unsigned writer, Reports* reports) {
  std::string key = KeyOf(writer);
  std::string text = std::to_string(reports->pairs[writer] + 1);
  const PXTKeyValue pair = {key.data(), text.data()};
  if (PXTCFGSetKeyValue(kPairs, &pair, 0) != SM_STATUS_SUCCESS) return false;
  ++reports->pairs[writer];
  return ReadPair(key.c_str(), text);
}

template <typename Once>
bool Until(time_t end, Once once) {
  while (time(nullptr) < end) {
    if (!once()) return false;
  }
  return true;
}

// The last reported values, and nothing else but what was there first.
std::string ValuesAreThere(const std::string& file, const std::string& first,
                           const std::atomic<unsigned>* values) {
  size_t size = first.size();
  for (unsigned writer = 0; writer < kMostWriters; ++writer) {
    if (values[writer] == 0) continue;
    const std::string line = KeyOf(writer) + "=" + std::to_string(values[writer]) + "\n";
    if (file.find("\n" + line) == std::string::npos) return "not there: " + line;
    size += line.size();
  }
  if (size == first.size()) return "nobody writes a value";
  return file.size() == size ? "" : "the file holds more than its keys";
}

std::string IniIsRight(const Reports& reports) {
  return ValuesAreThere(ReadText(kIni), std::string("[s]\nfixed=value\n") + kOtherSection,
                        reports.values);
}
std::string PairsAreRight(const Reports& reports) {
  return ValuesAreThere(ReadText(kPairs), "fixed=value\n", reports.pairs);
}

// Empty but for what readers read.
void Begin() {
  MakePlace();
  WriteText(kIni, std::string("[s]\nfixed=value\n") + kOtherSection);
  WriteText(kPairs, "fixed=value\n");
}

// --- The judgements ---

void OneLog(const Crowd& crowd, unsigned each, Tally* tally) {
  Begin();
  const SharedReports reports;
  const bool right =
      Run(crowd, [&](unsigned writer) { return AppendMany(writer, each, kRoomy, &*reports); });
  tally->Add(right ? LogIsRight(*reports) : "a call fails", crowd.Name() + " on one log");
}

// The log grows to a little more than its maximum, and is moved once: all is in one of the two.
void OverAMove(const Crowd& crowd, unsigned each, Tally* tally) {
  constexpr unsigned kEntrySize = 280;
  Begin();
  const SharedReports reports;
  const qvx_u32 maxSize = crowd.Size() * each * kEntrySize * 2 / 3;
  const bool right =
      Run(crowd, [&](unsigned writer) { return AppendMany(writer, each, maxSize, &*reports); });
  const std::string backup = ReadText(kBackup);
  const std::string log = ReadText(kLog);
  std::string wrong = LogIsWhole(backup + log, *reports, 1);
  if (!WellFormed(backup) || !WellFormed(log)) wrong = "log or backup is not well-formed";
  if (backup == kNone) wrong = "the log was not moved";
  tally->Add(right ? wrong : "a call fails", crowd.Name() + " over a move to the backup");
}

// The first half writes, the other half reads.
void OneIniFile(const Crowd& crowd, int seconds, Tally* tally) {
  Begin();
  const SharedReports reports;
  const time_t end = time(nullptr) + seconds;
  const bool right = Run(crowd, [&](unsigned at) {
    if (at < crowd.Size() / 2) return Until(end, [&] { return ChangeIni(at, &*reports); });
    return Until(end, [] { return ReadIni("s", "fixed", "value"); });
  });
  tally->Add(right ? IniIsRight(*reports) : "a call fails or reads a wrong value",
             crowd.Name() + ", 8 write one INI file and 8 read it");
}

void OnePairsFile(const Crowd& crowd, int seconds, Tally* tally) {
  Begin();
  const SharedReports reports;
  const time_t end = time(nullptr) + seconds;
  const bool right = Run(crowd, [&](unsigned at) {
    if (at < crowd.Size() / 2) return Until(end, [&] { return ChangePair(at, &*reports); });
    return Until(end, [] { return ReadPair("fixed", "value"); });
  });
  tally->Add(right ? PairsAreRight(*reports) : "a call fails or reads a wrong value",
             crowd.Name() + ", 8 write one key=value file and 8 read it");
}

// Of the threads of each process three write the log, two each of the other files, one reads.
void AllFiles(const Crowd& crowd, int seconds, Tally* tally) {
  Begin();
  const SharedReports reports;
  const time_t end = time(nullptr) + seconds;
  const bool right = Run(crowd, [&](unsigned at) {
    return Until(end, [&] {
      const unsigned part = at % 8;
      if (part < 3) return Append(at, kRoomy, &*reports);
      if (part < 5) return ChangeIni(at, &*reports);
      if (part < 7) return ChangePair(at, &*reports);
      return ReadIni("s", "fixed", "value") && ReadPair("fixed", "value");
    });
  });
  std::string wrong = LogIsRight(*reports);
  if (wrong.empty()) wrong = IniIsRight(*reports);
  if (wrong.empty()) wrong = PairsAreRight(*reports);
  tally->Add(right ? wrong : "a call fails, or runs out of time",
             crowd.Name() + " without a pause on log, INI and key=value file");
}

}  // namespace

Tally Contention(Depth depth) {
  Tally tally{"contention of processes and threads"};
  const unsigned each = depth == Depth::kGoal ? 5000 : depth == Depth::kFloor ? 2000 : 100;
  const unsigned eachOverAMove = depth == Depth::kSample ? 50 : 500;
  const int seconds = depth == Depth::kGoal ? 60 : depth == Depth::kFloor ? 10 : 1;
  for (const Crowd& crowd : {Crowd{32, 1}, Crowd{4, 8}, Crowd{1, 32}}) {
    OneLog(crowd, each, &tally);
  }
  for (const Crowd& crowd : {Crowd{16, 1}, Crowd{4, 4}}) {
    OverAMove(crowd, eachOverAMove, &tally);
  }
  for (const Crowd& crowd : {Crowd{16, 1}, Crowd{1, 16}}) {
    OneIniFile(crowd, seconds, &tally);
    OnePairsFile(crowd, seconds, &tally);
  }
  AllFiles({4, 8}, depth == Depth::kSample ? 2 : seconds, &tally);
  return tally;
}

}  // namespace qvx::torture
