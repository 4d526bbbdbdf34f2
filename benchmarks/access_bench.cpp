// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Rights beside the bare questions to the system, a role map of 10,000 lines beside a plain parser,
// and the whole request (login, rights, answer, record) beside PAM and a bare append.
#include <arpa/inet.h>
#include <fcntl.h>
#include <grp.h>
#include <ifaddrs.h>
#include <pwd.h>
#include <security/pam_appl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "qvxcs/qvxcs.h"

#include "benchmarks/job.h"

namespace {

constexpr char kRoleMap[] = "/etc/cim/zarn/plinthos/qvxrolemap";
constexpr char kUser[] = "bencher";
constexpr char kPassword[] = "a long enough password";
const ustring kRoot[] = {'r', 'o', 'o', 't', 0};
const ustring kBencher[] = {'b', 'e', 'n', 'c', 'h', 'e', 'r', 0};

void Date(time_t time) {
  const timespec times[] = {{time, 0}, {time, 0}};
  Require(utimensat(AT_FDCWD, kRoleMap, times, 0) == 0, "date the role map");
}

// A map whose lines name users that do not exist, except for the last line.
void WriteMap(int lines, const std::string& last) {
  std::ofstream map(kRoleMap);
  for (int line = 1; line < lines; ++line) {
    map << "user" << line << " *.lab,srv poweruser\n";
  }
  map << last << "\n";
  map.close();
  Require(chmod(kRoleMap, 0640) == 0, "the role map's mode");
}

void Load(time_t time) {
  Date(time);
  Require(PXTOpenRolemapFile() == 0 && PXTGetRightsUsingRolemap() != 0, "load the role map");
}

// The same grammar, read into a map: users, hosts and role, the lists split at their commas.
void LoadPlain(size_t lines) {
  std::ifstream file(kRoleMap);
  std::map<std::string, std::map<std::string, u32>> entries;
  std::string line;
  while (std::getline(file, line)) {
    std::istringstream fields(line);
    std::string users;
    std::string hosts;
    std::string role;
    if (!(fields >> users >> hosts >> role) || users[0] == '#') continue;
    const u32 rights = role == "administrator" ? 7 : role == "poweruser" ? 3 : 1;
    std::istringstream userList(users);
    for (std::string user; std::getline(userList, user, ',');) {
      std::istringstream hostList(hosts);
      for (std::string host; std::getline(hostList, host, ',');) {
        entries[user][host] = rights;
      }
    }
  }
  Require(entries.size() == lines, "plain role map");
}

// The questions that rights rest on: the account, its groups, the host's names and addresses.
void AskBare(const char* user) {
  std::vector<char> room(4096);
  struct passwd record = {};
  struct passwd* found = nullptr;
  Require(getpwnam_r(user, &record, room.data(), room.size(), &found) == 0 && found != nullptr,
          "account");
  gid_t groups[64];
  int count = 64;
  Require(getgrouplist(user, found->pw_gid, groups, &count) >= 0, "groups");
  char name[256];
  Require(gethostname(name, sizeof(name)) == 0 && getdomainname(name, sizeof(name)) == 0, "names");
  ifaddrs* addresses = nullptr;
  Require(getifaddrs(&addresses) == 0, "addresses");
  for (const ifaddrs* at = addresses; at != nullptr; at = at->ifa_next) {
    if (at->ifa_addr == nullptr || at->ifa_addr->sa_family != AF_INET) continue;
    char text[INET_ADDRSTRLEN];
    benchmark::DoNotOptimize(
        inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(at->ifa_addr)->sin_addr, text,
                  sizeof(text)));
  }
  freeifaddrs(addresses);
}

int Answer(int count, const pam_message** messages, pam_response** answers, void* password) {
  (void)messages;
  *answers = static_cast<pam_response*>(calloc(static_cast<size_t>(count), sizeof(pam_response)));
  (*answers)[0].resp = strdup(static_cast<const char*>(password));
  return PAM_SUCCESS;
}

void LoginBare() {
  std::string password = kPassword;
  const pam_conv conversation = {Answer, password.data()};
  pam_handle_t* handle = nullptr;
  Require(pam_start("qvauth", kUser, &conversation, &handle) == PAM_SUCCESS, "pam_start");
  int status = pam_authenticate(handle, PAM_DISALLOW_NULL_AUTHTOK);
  if (status == PAM_SUCCESS) status = pam_acct_mgmt(handle, PAM_DISALLOW_NULL_AUTHTOK);
  pam_end(handle, status);
  Require(status == PAM_SUCCESS, "login");
}

void AppendBare() {
  const int file = open("/tmp/bench/bare.log", O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0664);
  const std::string entry(400, 'e');
  Require(write(file, entry.data(), entry.size()) == 400, "append");
  close(file);
}

void Request() {
  ustring password[sizeof(kPassword)];
  for (size_t at = 0; at < sizeof(kPassword); ++at) {
    password[at] = static_cast<ustring>(kPassword[at]);
  }
  const u32 rights = PXTAuthenticateUser(nullptr, kBencher, password);
  Require(rights != 0, "authenticate");
  void* const answer = PXTXAllocBuf(256, 0);
  (void)PXTXBufCatNode(answer, "Rights", nullptr, QVX_TYPE_U32, &rights);
  PXTXFreeBufContent(PXTXFreeBufGetContent(answer));
  Require(PXTAppendToCmdLog(QVX_CMDLOG_FIRST_ID, kUser, "BENCH", "login", QVX_LOG_INFORMATION) ==
              SM_STATUS_SUCCESS,
          "record");
}

void MakeAccount() {
  (void)mkdir("/tmp/bench", 0755);
  const std::string add = std::string("useradd -M -p \"$(openssl passwd -6 '") + kPassword +
                          "')\" " + kUser + " 2>/dev/null";
  Require(system(add.c_str()) == 0, "useradd");
  std::ofstream("/etc/pam.d/qvauth") << "auth required pam_unix.so\naccount required pam_unix.so\n";
}

// A time that no map had before, so that the map is read anew.
time_t NextTime() {
  static time_t time = 1000000;
  return ++time;
}

// A new map is opened, but a login comes before its first reading: then the built-in lines are in
// force, which the reading leaves as they are.
void UseBuiltInLines() {
  WriteMap(1, "* * user");
  Date(NextTime());
  Require(PXTOpenRolemapFile() == 0 && PXTAuthorizeUser(nullptr, kRoot) != 0, "a login");
  Require(PXTGetRightsUsingRolemap() == 7, "built-in lines");
}

// The first login frees the map's records, which the built-in lines replace.
void UseMap(int lines, const std::string& last) {
  WriteMap(lines, last);
  Load(NextTime());
  Require(PXTAuthorizeUser(nullptr, kRoot) != 0, "a login");
}

template <typename Prepare>
void CompareRights(const std::string& map, Prepare prepare) {
  Compare(
      "rights of root, " + map, "account, groups, names and addresses bare",
      [] { benchmark::DoNotOptimize(PXTAuthorizeUser(nullptr, kRoot)); }, [] { AskBare("root"); },
      prepare);
  Compare(
      "rights of a user, " + map, "account, groups, names and addresses bare",
      [] { benchmark::DoNotOptimize(PXTAuthorizeUser(nullptr, kBencher)); }, [] { AskBare(kUser); },
      prepare);
}

// The user is the `many`-th member of as many groups, the last of which the map names.
void CompareGroups(int many) {
  const std::string user = "member" + std::to_string(many);
  const auto login = std::make_shared<std::vector<ustring>>(user.begin(), user.end());
  login->push_back(0);
  Compare(
      "rights of a user in " + std::to_string(many) + " groups", "his groups bare",
      [login] { Require(PXTAuthorizeUser(nullptr, login->data()) == 3, "a member's rights"); },
      [user, many] {
        std::vector<gid_t> groups(static_cast<size_t>(many) + 8);
        int count = many + 8;
        Require(getgrouplist(user.c_str(), 60000, groups.data(), &count) > many, "groups");
      },
      [many] { UseMap(100, "+group" + std::to_string(many - 1) + " * poweruser"); });
}

void MakeGroups() {
  std::ofstream accounts("/etc/passwd", std::ios::app);
  std::ofstream groups("/etc/group", std::ios::app);
  for (const int many : {20, 100, 500}) {
    accounts << "member" << many << ":x:" << 60000 + many << ":60000::/:/bin/false\n";
  }
  groups << "members:x:60000:\n";
  for (int group = 0; group < 500; ++group) {
    groups << "group" << group << ":x:" << 61000 + group << ":member500"
           << (group < 100 ? ",member100" : "") << (group < 20 ? ",member20" : "") << "\n";
  }
}

void CompareLoad(int lines) {
  Compare(
      "role map of " + std::to_string(lines) + " lines, load", "a plain parser into std::map",
      [] { Load(NextTime()); }, [lines] { LoadPlain(static_cast<size_t>(lines)); },
      [lines] { WriteMap(lines, "* * user"); });
}

// A login takes milliseconds: a repetition of the usual length would be one or two of them.
void CompareRequest() {
  constexpr double kSeconds = 0.5;
  constexpr char kJob[] = "the whole request: login, rights, answer, record";
  const auto bare = [] {
    LoginBare();
    AskBare(kUser);
    AppendBare();
  };
  Register(kJob, kOurs, Request, UseBuiltInLines)->MinTime(kSeconds);
  Register(kJob, "PAM and a bare append", bare, UseBuiltInLines)->MinTime(kSeconds);
}

const bool kRegistered = [] {
  MakeAccount();
  MakeGroups();
  CompareRights("built-in lines", UseBuiltInLines);
  CompareRights("map of 10,000 lines", [] { UseMap(10000, "* * user"); });
  CompareRights("map with an address", [] { UseMap(100, "bencher 10.9.8.7 poweruser"); });
  for (const int many : {20, 100, 500}) {
    CompareGroups(many);
  }
  for (const int lines : {100, 1000, 10000}) {
    CompareLoad(lines);
  }
  CompareRequest();
  return true;
}();

}  // namespace
