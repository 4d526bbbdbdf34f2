// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_TORTURE_TORTURE_H
#define QVX_TESTS_TORTURE_TORTURE_H

#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

#include "qvxcs/qvxcs.h"

// The parts of scripts/torture: each makes one thing go wrong at every point of every scene, and
// judges what is left. They see the built library only, as a host does.
namespace qvx::torture {

// Where most of the scenes' files are.
inline constexpr char kPlace[] = "/tmp/torture";

enum class Kind {
  kPure,      // no file
  kWhole,     // a file that is old or new as a whole
  kAppended,  // a file that is extended in place: a kill may leave a part of what is added
  kLog,       // a log whose earlier entries stay
  kMoved,     // a log whose earlier entries stay, in the log or in its backup
  kCleared,   // a log that is begun anew
};

struct Scene {
  std::string name;
  Kind kind = Kind::kPure;
  const char* path = nullptr;    // of its file
  void (*prepare)() = nullptr;   // puts the file in place
  std::function<qvx_u32()> act;  // the calls; their status
  bool again = true;  // a later call in the same process is right whatever happened before
  // PAM, or the C library, keeps memory after failures of its own: only the library's is counted,
  // and it may end the process.
  bool others = false;
  // The file after it; without a file what it gives; of a log the entry that it gains, a pattern of
  // log_text.h.
  std::string expected = "";
  // The pattern of the library's own entry with which it begins a log.
  std::string begins = "";
};

// Of the scene's file; a part may mount its own disk over it.
std::string FolderOf(const Scene& scene);

std::vector<Scene> UpdatingScenes();  // those that change files
std::vector<Scene> ReadingScenes();
std::vector<Scene> PathScenes();
std::vector<Scene> ValueScenes();
std::vector<Scene> NumberScenes();
std::vector<Scene> AccessScenes();
std::vector<Scene> AllScenes();
// A login by PAM. Its password ends with what is sought: a heap writes over the first bytes of a
// block that is freed.
Scene LoginScene();
inline constexpr size_t kBeforeSecret = 32;
inline constexpr size_t kSecretLength = 11;
// Whether the secret begins here, in characters of so many bytes.
bool IsSecret(const unsigned char* bytes, size_t width);

// For scenes: a status of what has none, and whether a text came, which is freed.
inline qvx_u32 Status(bool done) { return done ? SM_STATUS_SUCCESS : SM_STATUS_FAILURE; }
bool Came(qvx_astring* text);
bool Came(qvx_ustring* text);
bool Came(void* block);
// What a scene's call gave, to be compared with what it gives without a fault.
void Give(const void* bytes, size_t size);
std::string Given();
// Gives the text of an XML buffer. Without memory an element may be missing, but only whole: false
// for a text that is not of the whole length and consists of these pieces.
bool GaveWhole(const char* text, size_t wholeLength, const std::vector<std::string>& pieces);

// Files.
std::string Path(const char* name);
inline constexpr char kNone[] = "(none)";
std::string ReadText(const std::string& path);  // kNone for a missing file
void WriteText(const std::string& path, const std::string& text);
std::vector<std::string> Names(const char* folder);
// The library's lock file, which also holds notes of torn logs.
inline constexpr char kLockFile[] = "/etc/cim/zarn/plinthos/var/lib/vexilon/.qvxipc";
void MakePlace();  // empty, without notes, with the folders that the scenes need

// The heap of this process: allocations are counted, and one may fail.
enum class Failure { kAlone, kFromThenOn };
void FailAllocation(long nth, Failure failure);
void FailNoAllocation();
bool AllocationFailed();  // since FailAllocation
long LiveBlocks();
// Those of the library alone, from WatchOwnBlocks() on.
void WatchOwnBlocks();
long OwnBlocks();

// Whether the process may have been kept from putting things back: it was killed, or every call
// after the first fault failed, too. Or the disk may have lost what was not flushed to it.
enum class Torn { kNo, kYes, kLost };

// Whether the process has made the scene's calls before, without a fault: then it holds the same
// blocks of memory after them.
enum class Start { kCold, kWarm };

struct LogFiles;

// A scene's files before, and what is right after it.
class Judge {
 public:
  explicit Judge(const Scene& scene, Start start = Start::kCold);
  // From here on this process is judged, which began with the descriptors that it has now.
  void BeginHere();
  // What is wrong with the file after this status, or nothing.
  [[nodiscard]] std::string File(qvx_u32 status, Torn torn) const;
  // What is wrong in this process after the calls: descriptors, lock, files left over.
  [[nodiscard]] std::string Process(qvx_u32 status) const;
  // The same when nothing could be put back: copies may be left.
  [[nodiscard]] std::string TornProcess() const;
  // Calls the scene again, without a fault: its report, file and process must be right. A log that
  // could not be put back may be refused after a fault that lasted.
  [[nodiscard]] std::string Next(Torn torn = Torn::kNo) const;

 private:
  [[nodiscard]] std::string WholeFile(const std::string& now, qvx_u32 status, Torn torn) const;
  [[nodiscard]] std::string Gift(qvx_u32 status) const;
  [[nodiscard]] std::string DescriptorsAndLock() const;
  [[nodiscard]] std::string Memory() const;
  [[nodiscard]] std::string NextFile(qvx_u32* status, Torn torn) const;
  [[nodiscard]] std::string NextWholeFile(qvx_u32* status) const;
  [[nodiscard]] std::string NextLog(qvx_u32* status, Torn torn) const;
  [[nodiscard]] bool IsCutSection(const std::string& now) const;

  const Scene* scene_;
  Start start_;
  std::string before_;
  std::string backup_;
  std::string torn_;  // the log as it was, where the library first has to mend it
  std::string folder_;
  std::vector<std::string> names_;
  int descriptors_ = 0;
  long blocks_ = 0;
};

// Runs `body` in a child; returns what it says is wrong, or how it died.
template <typename Body>
std::string InChild(Body body);

struct Tally {
  std::string what;
  unsigned long points = 0;
  unsigned long failed = 0;
  bool possible = true;  // on this machine
  // Throws the tally as soon as QVX_TORTURE_MOST_FAILURES points have failed, if that is set.
  void Add(const std::string& wrong, const std::string& where);
};

// How much is tried: some points of each kind, most, all.
enum class Depth { kSample, kFloor, kGoal };

// The parts.
Tally Allocations(Depth depth);
Tally Calls(Depth depth);
Tally Kills(Depth depth);
Tally RandomKills(Depth depth);
Tally PowerCut(Depth depth);
Tally Disk(Depth depth);
Tally Contention(Depth depth);
Tally LongRun(Depth depth);
Tally Secrets(Depth depth);

// Whether the loader or PAM ended the process for want of memory of their own.
bool IsEndInOthers(const std::string& wrong);
// Ends this process so.
void GiveUpAfter(unsigned seconds);

std::string RunChild(void (*body)(void*, int), void* context);

template <typename Body>
std::string InChild(Body body) {
  struct Context {
    Body* body;
  } context{&body};
  return RunChild(
      [](void* given, int out) {
        const std::string wrong = (*static_cast<Context*>(given)->body)();
        (void)!write(out, wrong.data(), wrong.size());
      },
      &context);
}

}  // namespace qvx::torture

#endif
