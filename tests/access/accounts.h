// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_ACCESS_ACCOUNTS_H
#define QVX_TESTS_ACCESS_ACCOUNTS_H

#include <crypt.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "qvxcs/types.h"

#include "support/files.h"

// Users, groups, passwords, PAM services and role maps in the sandbox's own /etc.
namespace qvx::test {

constexpr char kRoleMap[] = "/etc/cim/zarn/plinthos/qvxrolemap";
constexpr char kCommandLog[] = "/etc/cim/zarn/plinthos/var/log/vexilon/qvcmdlog.xml";

inline void Run(const std::string& command) {
  RequireSandbox();
  if (system(command.c_str()) != 0) {
    perror(command.c_str());
    abort();
  }
}

inline void AppendTo(const std::string& path, const std::string& text) {
  WriteFile(path, ReadFile(path) + text);
}

// Only root, whose group is root.
inline void OnlyRoot() {
  WriteFile("/etc/nsswitch.conf", "passwd: files\ngroup: files\nshadow: files\nhosts: files\n");
  WriteFile("/etc/passwd", "root:x:0:0:root:/root:/bin/sh\n");
  WriteFile("/etc/group", "root:x:0:\n");
  WriteFile("/etc/shadow", "root:*:19000:0:99999:7:::\n");
  chmod("/etc/shadow", 0640);
}

// `aging` is the text after the password in the shadow file.
inline void AddUser(const std::string& name, u32 user, u32 group, const std::string& hash = "*",
                    const std::string& aging = "19000:0:99999:7:::") {
  const std::string ids = std::to_string(user) + ":" + std::to_string(group);
  AppendTo("/etc/passwd", name + ":x:" + ids + ":" + name + ":/tmp:/bin/sh\n");
  AppendTo("/etc/shadow", name + ":" + hash + ":" + aging + "\n");
}

inline void AddGroup(const std::string& name, u32 group, const std::string& members = "") {
  AppendTo("/etc/group", name + ":x:" + std::to_string(group) + ":" + members + "\n");
}

inline std::string Hash(const std::string& password) {
  crypt_data data = {};
  const char* const hash = crypt_r(password.c_str(), "$6$rounds=1000$qvxsalt0$", &data);
  const std::string result = hash == nullptr ? "!" : hash;
  explicit_bzero(&data, sizeof(data));
  return result;
}

inline void WritePamService(const std::string& name, const std::string& lines) {
  mkdir("/etc/pam.d", 0755);
  WriteFile("/etc/pam.d/" + name, lines);
}

inline void UnixPamService(const std::string& name) {
  WritePamService(name, "auth required pam_unix.so nodelay\naccount required pam_unix.so\n");
}

inline void SetTime(const std::string& path, time_t time) {
  const timespec times[2] = {{time, 0}, {time, 0}};
  if (utimensat(AT_FDCWD, path.c_str(), times, 0) != 0) {
    abort();
  }
}

// Its modification time is unique among the role maps of a test, as long as `time` differs.
inline void WriteRoleMap(const std::string& text, mode_t mode = 0640, time_t time = 1000000) {
  WriteFile(kRoleMap, text);
  if (chmod(kRoleMap, mode) != 0) {
    abort();
  }
  SetTime(kRoleMap, time);
}

// Two running interfaces with one IPv4 address each.
inline void AddLocalAddresses(const std::string& first, const std::string& second) {
  Run("ip link add qvxa type veth peer name qvxb");
  Run("echo 1 > /proc/sys/net/ipv6/conf/qvxa/disable_ipv6; "
      "echo 1 > /proc/sys/net/ipv6/conf/qvxb/disable_ipv6; true");
  Run("ip addr add " + first + "/24 dev qvxa && ip addr add " + second + "/24 dev qvxb");
  Run("ip link set qvxa up && ip link set qvxb up");
  // An interface counts once it has found its peer.
  for (const char* name : {"qvxa", "qvxb"}) {
    Run("for i in $(seq 1000); do ip -o link show " + std::string(name) +
        " | grep -q 'state UP' && exit 0; sleep .005; done; exit 1");
  }
}

}  // namespace qvx::test

#endif
