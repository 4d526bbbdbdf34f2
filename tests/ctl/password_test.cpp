// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "tests/access/accounts.h"
#include "tests/ctl/run_tool.h"

namespace qvx {
namespace {

constexpr int kLooks = 500;  // of 10 ms each

// `qvxctl login alice` in the foreground of a terminal of its own, as a shell's job.
class Prompt {
 public:
  Prompt() {
    test::MakeTerminals();
    if (openpty(&keys_, &screen_, nullptr, nullptr, nullptr) != 0) abort();
    shell_ = fork();
    if (shell_ == 0) BeShell(screen_);
  }
  ~Prompt() {
    kill(shell_, SIGKILL);
    waitpid(shell_, nullptr, 0);
    if (Tool() > 0) kill(Tool(), SIGKILL);
    close(keys_);
    close(screen_);
  }
  Prompt(const Prompt&) = delete;
  Prompt& operator=(const Prompt&) = delete;

  void Type(const std::string& text) const {
    if (write(keys_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) abort();
  }
  [[nodiscard]] bool Echoes() const {
    termios modes{};
    if (tcgetattr(screen_, &modes) != 0) abort();
    return (modes.c_lflag & ECHO) != 0;
  }
  // Whether the tool asks: then the foreground is its own and nothing is echoed.
  [[nodiscard]] bool Asks() const {
    for (int look = 0; look < kLooks; ++look) {
      if (Tool() > 0 && !Echoes() && Screen().find("Password of alice: ") != std::string::npos) {
        return true;
      }
      usleep(10000);
    }
    return false;
  }
  [[nodiscard]] pid_t Tool() const { return Number(kToolFile); }
  // The signal that ended the tool, or stopped it, else 256 + the exit status; -1 while it runs on.
  [[nodiscard]] int Outcome() const {
    for (int look = 0; look < kLooks; ++look) {
      if (test::Exists(kOutcomeFile)) return Number(kOutcomeFile);
      usleep(10000);
    }
    return -1;
  }
  void Continue() const {
    screenText_.clear();
    unlink(kOutcomeFile);
    kill(shell_, SIGUSR1);
  }

 private:
  static constexpr char kToolFile[] = "/tmp/prompt.tool";
  static constexpr char kOutcomeFile[] = "/tmp/prompt.outcome";

  static int Number(const char* file) {
    return test::Exists(file) ? atoi(test::ReadFile(file).c_str()) : 0;
  }
  static void Tell(const char* file, int number) {
    test::WriteFile("/tmp/prompt.new", std::to_string(number));
    if (rename("/tmp/prompt.new", file) != 0) abort();
  }
  [[nodiscard]] std::string Screen() const {
    char piece[1024];
    pollfd ready{keys_, POLLIN, 0};
    while (poll(&ready, 1, 0) == 1) {
      const ssize_t got = read(keys_, piece, sizeof(piece));
      if (got <= 0) break;
      screenText_.append(piece, static_cast<size_t>(got));
    }
    return screenText_;
  }
  [[noreturn]] static void BeShell(int screen) {
    if (login_tty(screen) != 0) _exit(126);
    (void)signal(SIGTTOU, SIG_IGN);
    sigset_t told;
    sigemptyset(&told);
    sigaddset(&told, SIGUSR1);
    sigprocmask(SIG_BLOCK, &told, nullptr);
    const pid_t tool = fork();
    if (tool == 0) BeTool(told);
    Tell(kToolFile, tool);
    for (;;) {
      int status = 0;
      waitpid(tool, &status, WUNTRACED);
      tcsetpgrp(0, getpgrp());
      Tell(kOutcomeFile, WIFSTOPPED(status)    ? WSTOPSIG(status)
                         : WIFSIGNALED(status) ? WTERMSIG(status)
                                               : 256 + WEXITSTATUS(status));
      int signal = 0;
      sigwait(&told, &signal);
      tcsetpgrp(0, tool);
      kill(tool, SIGCONT);
    }
  }
  [[noreturn]] static void BeTool(const sigset_t& told) {
    setpgid(0, 0);
    tcsetpgrp(0, getpid());
    (void)signal(SIGTTOU, SIG_DFL);
    sigprocmask(SIG_UNBLOCK, &told, nullptr);
    execl(QVX_CTL_PROGRAM, QVX_CTL_PROGRAM, "login", "alice", nullptr);
    _exit(127);
  }

  int keys_ = -1;
  int screen_ = -1;
  pid_t shell_ = 0;
  mutable std::string screenText_;
};

class CtlPassword : public ::testing::Test {
 protected:
  void SetUp() override {
    test::RequireSandbox();
    test::AddGroup("users", 7101);
    test::AddUser("alice", 7001, 7101, test::Hash("Wonder-1and"));
    test::UnixPamService("qvauth");
    test::WriteRoleMap("alice * poweruser\n");
  }
};

TEST_F(CtlPassword, IsReadWithoutEcho) {
  const Prompt prompt;
  ASSERT_TRUE(prompt.Asks());
  prompt.Type("Wonder-1and\n");
  EXPECT_EQ(prompt.Outcome(), 256);
  EXPECT_TRUE(prompt.Echoes());
}

TEST_F(CtlPassword, KeysThatEndTheCommandDoSoAtOnce) {
  const Prompt prompt;
  ASSERT_TRUE(prompt.Asks());
  prompt.Type("sec\003");
  EXPECT_EQ(prompt.Outcome(), SIGINT);
  EXPECT_TRUE(prompt.Echoes());
}

TEST_F(CtlPassword, SignalsEndTheCommandAtOnceWithTheEchoBack) {
  for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
    unlink("/tmp/prompt.tool");
    unlink("/tmp/prompt.outcome");
    const Prompt prompt;
    ASSERT_TRUE(prompt.Asks());
    prompt.Type("sec");
    kill(prompt.Tool(), signal);
    EXPECT_EQ(prompt.Outcome(), signal);
    EXPECT_TRUE(prompt.Echoes());
  }
}

TEST_F(CtlPassword, AStoppedCommandGivesTheEchoBackAndAsksAgain) {
  const Prompt prompt;
  ASSERT_TRUE(prompt.Asks());
  prompt.Type("sec\032");
  EXPECT_EQ(prompt.Outcome(), SIGTSTP);
  EXPECT_TRUE(prompt.Echoes());
  prompt.Continue();
  ASSERT_TRUE(prompt.Asks());
  prompt.Type("Wonder-1and\n");
  EXPECT_EQ(prompt.Outcome(), 256);
  EXPECT_TRUE(prompt.Echoes());
}

TEST_F(CtlPassword, AnIgnoredSignalStaysIgnored) {
  (void)signal(SIGHUP, SIG_IGN);
  const Prompt prompt;
  (void)signal(SIGHUP, SIG_DFL);
  ASSERT_TRUE(prompt.Asks());
  prompt.Type("Wonder");
  kill(prompt.Tool(), SIGHUP);
  prompt.Type("-1and\n");
  EXPECT_EQ(prompt.Outcome(), 256);
}

TEST_F(CtlPassword, OfAPipeASignalEndsItToo) {
  test::RunningTool tool({"login", "alice"});
  tool.Type("sec");
  usleep(200000);
  kill(tool.Process(), SIGTERM);
  EXPECT_EQ(tool.End().code, 256 + SIGTERM);
}

// `qvxctl login alice`, which waits when it reports an error: the pipe is full.
class HeldUp {
 public:
  explicit HeldUp(const std::string& password) {
    int input[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(errors_, O_CLOEXEC | O_NONBLOCK) != 0) abort();
    while (write(errors_[1], "x", 1) == 1) {
    }
    (void)fcntl(errors_[1], F_SETFL, 0);
    tool_ = fork();
    if (tool_ == 0) {
      dup2(input[0], 0);
      dup2(errors_[1], 2);
      execl(QVX_CTL_PROGRAM, QVX_CTL_PROGRAM, "login", "alice", nullptr);
      _exit(127);
    }
    if (write(input[1], password.data(), password.size()) < 0) abort();
    close(input[0]);
    close(input[1]);
  }
  ~HeldUp() {
    kill(tool_, SIGKILL);
    waitpid(tool_, nullptr, 0);
    close(errors_[0]);
    close(errors_[1]);
  }
  HeldUp(const HeldUp&) = delete;
  HeldUp& operator=(const HeldUp&) = delete;

  [[nodiscard]] bool Reports() const {
    const std::string writesErrors = std::to_string(SYS_write) + " 0x2 ";
    for (int look = 0; look < kLooks; ++look) {
      if (test::ReadFile(Proc("syscall")).starts_with(writesErrors)) return true;
      usleep(10000);
    }
    return false;
  }
  // Whether the text is in memory that the tool may write to.
  [[nodiscard]] bool Holds(const std::string& text) const {
    std::istringstream regions(test::ReadFile(Proc("maps")));
    const int memory = open(Proc("mem").c_str(), O_RDONLY | O_CLOEXEC);
    bool found = false;
    for (std::string line; !found && std::getline(regions, line);) {
      unsigned long long begin = 0;
      unsigned long long end = 0;
      char access[8] = {};
      if (sscanf(line.c_str(), "%llx-%llx %7s", &begin, &end, access) != 3) continue;
      // A sanitizer's own memory is terabytes.
      if (!std::string(access).starts_with("rw") || end - begin > kLargest) continue;
      std::string bytes(end - begin, '\0');
      const ssize_t got = pread(memory, bytes.data(), bytes.size(), static_cast<off_t>(begin));
      found = got > 0 && bytes.find(text) != std::string::npos;
    }
    close(memory);
    return found;
  }

 private:
  static constexpr u64 kLargest = u64{1} << 26;

  [[nodiscard]] std::string Proc(const char* name) const {
    return "/proc/" + std::to_string(tool_) + "/" + name;
  }

  int errors_[2] = {-1, -1};
  pid_t tool_ = 0;
};

TEST_F(CtlPassword, OneThatIsRefusedIsWipedToo) {
  const std::string text = "a password of many more letters";
  std::string wide;
  for (const char letter : text.substr(16)) {
    wide.append({letter, '\0'});
  }
  const HeldUp tool(text + "\xff\n");
  ASSERT_TRUE(tool.Reports());
  EXPECT_TRUE(tool.Holds("no UTF-8 text"));
  EXPECT_FALSE(tool.Holds(text.substr(16)));
  EXPECT_FALSE(tool.Holds(wide));
}

}  // namespace
}  // namespace qvx
