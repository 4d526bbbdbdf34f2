// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_TORTURE_TORTURE_H
#define QVX_TESTS_TORTURE_TORTURE_H

#include <unistd.h>

#include <string>
#include <vector>

#include "qvxcs/qvxcs.h"

// The parts of scripts/torture: each makes one thing go wrong at every point of every scene, and
// judges what is left. They see the built library only, as a host does.
namespace qvx::torture {

// Where the scenes' files are; a part may mount its own disk over it.
inline constexpr char kPlace[] = "/tmp/torture";

enum class Kind {
  kPure,   // no file
  kWhole,  // a file that is old or new as a whole
  kLog,    // a log whose earlier entries stay
};

struct Scene {
  const char* name;
  Kind kind;
  const char* path;    // of its file, or null
  void (*prepare)();   // puts the file in place
  bool (*act)();       // the calls; whether they report success
  bool again = true;   // a later call in the same process is right whatever happened before
  bool update = true;  // it writes
};

// All scenes, and those that write to files.
std::vector<Scene> AllScenes();
std::vector<Scene> UpdatingScenes();

// Files.
std::string Path(const char* name);
std::string ReadText(const std::string& path);  // "(none)" for a missing file
void WriteText(const std::string& path, const std::string& text);
void MakePlace();  // empty, with the folders that the scenes need

// The heap of this process: allocations are counted, and one may fail.
enum class Failure { kAlone, kFromThenOn };
void FailAllocation(long nth, Failure failure);
void FailNoAllocation();
bool AllocationFailed();  // since FailAllocation
long LiveBlocks();

// A scene's files before, and what is right after it.
class Judge {
 public:
  explicit Judge(const Scene& scene);
  // What is wrong with the file, or nothing. `done`: what the calls reported. `torn`: whether an
  // entry that is not reported may be there, because the process could not take it back.
  [[nodiscard]] std::string File(bool done, bool torn) const;
  // What is wrong in this process after the calls: descriptors, lock, temporary files.
  [[nodiscard]] std::string Process(bool done) const;
  // Calls the scene again, without a fault: its report and file must be right.
  [[nodiscard]] std::string Next() const;

 private:
  const Scene* scene_;
  std::string before_;
  std::string after_;
  int descriptors_;
};

// Runs `body` in a child; returns what it says is wrong, or how it died.
template <typename Body>
std::string InChild(Body body);

struct Tally {
  const char* what;
  unsigned long points = 0;
  unsigned long failed = 0;
  void Add(const std::string& wrong, const std::string& where);
};

// The parts. `goal` asks for the long form.
Tally Allocations(bool goal);
Tally Calls(bool goal);
Tally Kills(bool goal);
Tally Disk(bool goal);
Tally Contention(bool goal);
Tally LongRun(bool goal);

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
