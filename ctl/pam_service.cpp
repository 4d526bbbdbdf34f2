// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/pam_service.h"

#include <strings.h>
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

struct Word {
  std::string text;
  unsigned line;
};

using Words = std::vector<Word>;

// "[success=1 default=ignore]" is one word.
void AppendWords(const std::string& line, unsigned number, Words* words) {
  std::istringstream text(line);
  for (std::string word; text >> word;) {
    const bool isOpen =
        !words->empty() && words->back().text.front() == '[' && words->back().text.back() != ']';
    if (isOpen) {
      words->back().text += " " + word;
    } else {
      words->push_back({word, number});
    }
  }
}

// Reads the words of the next rule, without comments. A backslash at its end continues a line.
bool ReadRule(std::istream* file, unsigned* number, Words* words) {
  words->clear();
  std::string line;
  while (std::getline(*file, line)) {
    ++*number;
    line.erase(std::min(line.find('#'), line.size()));
    line.erase(line.find_last_not_of(" \t\r") + 1);
    const bool goesOn = line.ends_with('\\');
    if (goesOn) line.pop_back();
    AppendWords(line, *number, words);
    if (!goesOn) return true;
  }
  return !words->empty();
}

// PAM ignores the case of all but paths and arguments.
bool IsWord(const std::string& text, const char* word) {
  return strcasecmp(text.c_str(), word) == 0;
}

bool Has(const Words& words, const char* argument) {
  return argument != nullptr && std::any_of(words.begin(), words.end(), [&](const Word& word) {
           return word.text == argument;
         });
}

// The entry of a rule's module that sends messages; null for any other.
const Talker* FindTalker(const Words& words) {
  const std::string& path = words[2].text;
  const std::string module = path.substr(path.rfind('/') + 1);
  for (const Talker& talker : kTalkers) {
    if (module != talker.module) continue;
    const bool talks = !Has(words, talker.silencedBy) &&
                       (talker.talksWith == nullptr || Has(words, talker.talksWith));
    return talks ? &talker : nullptr;
  }
  return nullptr;
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
    for (Words words; ReadRule(&file, &number, &words);) {
      Check(path, phase, words);
    }
    --depth_;
  }

  void Check(const std::string& path, const std::string& phase, const Words& words) {
    if (words.size() == 2 && IsWord(words[0].text, "@include")) return Read(words[1].text, phase);
    if (words.size() < 3) return;
    const std::string kind = words[0].text.substr(words[0].text.front() == '-' ? 1 : 0);
    if (!IsWord(kind, "auth") && !IsWord(kind, "account")) return;
    if (!phase.empty() && !IsWord(kind, phase.c_str())) return;
    const std::string& control = words[1].text;
    if (IsWord(control, "include") || IsWord(control, "substack")) {
      return Read(words[2].text, kind);
    }
    const Talker* const talker = IsWord(control, "optional") ? nullptr : FindTalker(words);
    if (talker == nullptr) return;
    findings_.push_back({path, words[2].line, talker->module,
                         talker->silencedBy == nullptr ? "" : talker->silencedBy});
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
