// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_CTL_RUN_TOOL_H
#define QVX_TESTS_CTL_RUN_TOOL_H

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pty.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

#include "support/files.h"

// Runs the built qvxctl and returns what an operator sees of it.
namespace qvx::test {

struct Answer {
  int code;  // 256 + the signal when one ended it
  std::string out;
  std::string err;
  bool operator==(const Answer&) const = default;
};

inline void PrintTo(const Answer& answer, std::ostream* stream) {
  *stream << "exit " << answer.code << "\n--- stdout\n"
          << answer.out << "--- stderr\n"
          << answer.err;
}

using Words = std::vector<std::string>;

// The sandbox has no terminals.
inline void MakeTerminals() {
  RequireSandbox();
  if (mkdir("/dev/pts", 0755) != 0) return;
  if (mount("devpts", "/dev/pts", "devpts", MS_NOSUID | MS_NOEXEC, "newinstance,ptmxmode=0666") !=
          0 ||
      symlink("pts/ptmx", "/dev/ptmx") != 0) {
    perror("devpts");
    abort();
  }
}

class RunningTool {
 public:
  // `width` columns make stdout a terminal of that width; a user makes it an ordinary user's.
  explicit RunningTool(const Words& words, unsigned short width = 0, uid_t user = 0) {
    int input[2];
    int output[2];
    int error[2];
    if (width != 0) MakeTerminals();
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(error, O_CLOEXEC) != 0) abort();
    winsize size{24, width, 0, 0};
    if (width != 0 ? openpty(&output[0], &output[1], nullptr, nullptr, &size) != 0
                   : pipe2(output, O_CLOEXEC) != 0) {
      abort();
    }
    child_ = fork();
    if (child_ == 0) {
      close(output[0]);
      Become(words, input[0], output[1], error[1], user);
    }
    close(input[0]);
    close(output[1]);
    close(error[1]);
    input_ = input[1];
    output_ = output[0];
    error_ = error[0];
  }
  ~RunningTool() {
    CloseInput();
    CloseOutput();
    if (error_ >= 0) close(error_);
    if (child_ > 0) {
      kill(child_, SIGKILL);
      waitpid(child_, nullptr, 0);
    }
  }
  RunningTool(const RunningTool&) = delete;
  RunningTool& operator=(const RunningTool&) = delete;

  [[nodiscard]] pid_t Process() const { return child_; }
  void Type(const std::string& text) const {
    if (write(input_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) abort();
  }
  void CloseInput() { CloseOne(&input_); }
  void CloseOutput() { CloseOne(&output_); }

  // What it prints until so many lines have come, or it ends, or 20 s are over.
  std::string Lines(size_t count) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (CountLines(out_) < count && std::chrono::steady_clock::now() < limit) {
      pollfd ready{output_, POLLIN, 0};
      if (poll(&ready, 1, 200) == 1 && !Take(output_, &out_)) break;
    }
    return out_;
  }

  Answer End() {
    CloseInput();
    bool isOut = output_ >= 0;
    bool isErr = true;
    while (isOut || isErr) {
      pollfd ready[2] = {{isOut ? output_ : -1, POLLIN, 0}, {isErr ? error_ : -1, POLLIN, 0}};
      if (poll(ready, 2, 30000) <= 0) break;
      if (ready[0].revents != 0) isOut = Take(output_, &out_);
      if (ready[1].revents != 0) isErr = Take(error_, &err_);
    }
    int status = 0;
    waitpid(child_, &status, 0);
    child_ = 0;
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status);
    return {code, out_, err_};
  }

 private:
  [[noreturn]] static void Become(const Words& words, int input, int output, int error,
                                  uid_t user) {
    dup2(input, 0);
    dup2(output, 1);
    dup2(error, 2);
    if (user != 0 && (setgroups(0, nullptr) != 0 || setgid(user) != 0 || setuid(user) != 0)) {
      _exit(126);
    }
    std::vector<char*> arguments;
    std::string program = QVX_CTL_PROGRAM;
    arguments.push_back(program.data());
    for (const std::string& word : words)
      arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    setenv("TZ", "UTC", 1);
    execv(QVX_CTL_PROGRAM, arguments.data());
    _exit(127);
  }
  static void CloseOne(int* descriptor) {
    if (*descriptor >= 0) close(*descriptor);
    *descriptor = -1;
  }
  static size_t CountLines(const std::string& text) {
    size_t count = 0;
    for (const char character : text)
      count += character == '\n' ? 1 : 0;
    return count;
  }
  // False at the end; a terminal whose other side is closed fails with EIO.
  static bool Take(int descriptor, std::string* text) {
    char piece[65536];
    const ssize_t got = read(descriptor, piece, sizeof(piece));
    if (got > 0) text->append(piece, static_cast<size_t>(got));
    return got > 0;
  }

  pid_t child_ = 0;
  int input_ = -1;
  int output_ = -1;
  int error_ = -1;
  std::string out_;
  std::string err_;
};

inline Answer RunTool(const Words& words, const std::string& input = "") {
  RunningTool tool(words);
  if (!input.empty()) tool.Type(input);
  return tool.End();
}

inline constexpr uid_t kNobody = 65534;

inline Answer RunToolAsNobody(const Words& words) { return RunningTool(words, 0, kNobody).End(); }

}  // namespace qvx::test

#endif
