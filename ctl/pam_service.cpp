// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/pam_service.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace qvx::ctl {
namespace {

constexpr int kMostIncludes = 16;
constexpr const char* kDirectories[] = {"/etc/pam.d/", "/usr/lib/pam.d/"};

// Modules that send messages in the phases that a login runs; some have an argument that silences
// them, others send messages only with an argument.
struct Talker {
  const char* module;
  const char* silencedBy;
  const char* talksWith;
};

constexpr Talker kTalkers[] = {
    {"pam_echo.so", nullptr, nullptr},     {"pam_issue.so", nullptr, nullptr},
    {"pam_motd.so", nullptr, nullptr},     {"pam_mail.so", "quiet", nullptr},
    {"pam_lastlog.so", "silent", nullptr}, {"pam_faillock.so", "silent", nullptr},
    {"pam_exec.so", nullptr, "stdout"},
};

using Words = std::vector<std::string>;

// Without the comment; "[success=1 default=ignore]" is one word.
Words WordsOf(const std::string& line) {
  std::istringstream text(line.substr(0, line.find('#')));
  Words words;
  for (std::string word; text >> word;) {
    const bool isOpen = !words.empty() && words.back().front() == '[' && words.back().back() != ']';
    if (isOpen) {
      words.back() += " " + word;
    } else {
      words.push_back(word);
    }
  }
  return words;
}

bool Has(const Words& words, const char* argument) {
  return argument != nullptr && std::find(words.begin(), words.end(), argument) != words.end();
}

bool Talks(const Words& words) {
  const std::string& path = words[2];
  const std::string module = path.substr(path.rfind('/') + 1);
  for (const Talker& talker : kTalkers) {
    if (module != talker.module) continue;
    return !Has(words, talker.silencedBy) &&
           (talker.talksWith == nullptr || Has(words, talker.talksWith));
  }
  return false;
}

class Searcher {
 public:
  std::vector<PamFinding> Search(const std::string& service) {
    Read(service, "");
    return std::move(findings_);
  }

 private:
  // In a file that is included for one phase, only the lines of that phase count.
  void Read(const std::string& service, const std::string& phase) {
    const std::string path = FindPamService(service);
    if (path.empty() || depth_ == kMostIncludes) return;
    ++depth_;
    std::ifstream file(path);
    unsigned number = 0;
    for (std::string line; std::getline(file, line);) {
      ++number;
      Check(path, number, phase, WordsOf(line));
    }
    --depth_;
  }

  void Check(const std::string& path, unsigned number, const std::string& phase,
             const Words& words) {
    if (words.size() == 2 && words[0] == "@include") return Read(words[1], phase);
    if (words.size() < 3) return;
    const std::string kind = words[0].substr(words[0].front() == '-' ? 1 : 0);
    if (kind != "auth" && kind != "account") return;
    if (!phase.empty() && kind != phase) return;
    if (words[1] == "include" || words[1] == "substack") return Read(words[2], kind);
    if (Talks(words)) findings_.push_back({path, number, words[2] + " sends messages"});
  }

  std::vector<PamFinding> findings_;
  int depth_ = 0;
};

}  // namespace

std::string FindPamService(const std::string& service) {
  if (service.starts_with('/')) return access(service.c_str(), F_OK) == 0 ? service : "";
  for (const char* directory : kDirectories) {
    std::string path = directory + service;
    if (access(path.c_str(), F_OK) == 0) return path;
  }
  return "";
}

std::vector<PamFinding> FindTalkingModules(const std::string& service) {
  return Searcher().Search(service);
}

}  // namespace qvx::ctl
