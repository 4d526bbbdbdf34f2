// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/user_rights.h"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "qvxcs/xml_buffer.h"
#include "qvxcs/xml_log.h"

#include "access/account.h"
#include "access/auth_file_reader.h"
#include "access/os_privilege.h"
#include "access/role.h"
#include "access/role_map_algorithm.h"
#include "access/role_map_error.h"
#include "access/wide_text.h"
#include "base/heap.h"
#include "cli/param_node.h"
#include "os/host_name.h"
#include "xml/command_log.h"
#include "xml/xml_buffer.h"

namespace qvx {
namespace {

constexpr u32 kDescriptionRoom = 256;
constexpr u16 kFaultEntryType = QVX_LOG_WARNING;
constexpr size_t kHostNameRoom = 65;
constexpr size_t kLineNumberRoom = 21;

// The thread that holds it may take it again. Nothing makes or destroys it: it is there before the
// first login and after the last.
class RecursiveMutex {
 public:
  void lock() { (void)pthread_mutex_lock(&mutex_); }
  bool try_lock() { return pthread_mutex_trylock(&mutex_) == 0; }
  void unlock() { (void)pthread_mutex_unlock(&mutex_); }

 private:
  pthread_mutex_t mutex_ = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
};

// Its lock is held from the reading of the role map to the decision, so that logins of several
// threads do not meet half-built maps.
class RoleMap {
 public:
  // A signal handler may end the process while its own thread has the turn.
  using Mutex = RecursiveMutex;
  using Lock = std::unique_lock<Mutex>;
  RoleMap(const RoleMap&) = delete;
  RoleMap& operator=(const RoleMap&) = delete;

  // Throws once the process's exit destroys the reader and the algorithm: other threads and later
  // exit handlers may still try to log somebody in.
  static Lock Enter() {
    static const RoleMap roleMap;
    Lock lock(mutex_);
    if (gone_) throw std::logic_error("the process ends");
    return lock;
  }

 private:
  RoleMap() = default;
  // A thread that is logging somebody in is not waited for: in the child of a fork it does not
  // exist. What it uses then stays; nobody else gets in.
  ~RoleMap() {
    gone_ = true;
    const Lock lock(mutex_, std::try_to_lock);
    if (!lock) return;
    QVAuthFileReader::DeleteInstance();
    QVXRoleMapAlgorithm::DeleteInstance();
  }

  static Mutex mutex_;
  static std::atomic<bool> gone_;
};
constinit RoleMap::Mutex RoleMap::mutex_;
constinit std::atomic<bool> RoleMap::gone_{false};

// This machine's name, empty when it is not available.
struct HostName {
  HostName() {
    u32 size = sizeof(text);
    if (GetIPHostName(text, &size) != 0) text[0] = '\0';
  }
  astring text[kHostNameRoom] = {};
};

// The command log's entry of a fault of the role map. It is written at the end, after the role
// map's turn has been given back: writing may have to wait for the log, and other logins must not
// wait too.
class FaultReport {
 public:
  FaultReport() = default;
  ~FaultReport() {
    if (id_ != 0) Append();
  }
  FaultReport(const FaultReport&) = delete;
  FaultReport& operator=(const FaultReport&) = delete;

  void Note(const QVXRoleMapFileReaderException& fault) {
    id_ = static_cast<s32>(fault.MapErrorCodeToCmdId());
    (void)snprintf(line_, sizeof(line_), "%lu", fault.GetLineNumber());
  }

 private:
  // Without enough memory there is no entry.
  void Append() const {
    XmlBuffer buffer = AllocXmlBuffer(kDescriptionRoom);
    if (!buffer) return;
    (void)NVSuptBufCatSetCmdParam(buffer.get(), "line", nullptr, nullptr, line_,
                                  QVX_TYPE_XML_ASTRING);
    const HeapArray<astring> description(ReleaseContent(std::move(buffer)));
    (void)SUPTIntfAppendToCmdLog(id_, "root", "QVXSERVER", description.get(), kFaultEntryType);
  }

  s32 id_ = 0;
  astring line_[kLineNumberRoom] = {};
};

// The default records are used instead. Where they cannot be made, the next query must not read the
// lines after the fault.
void StandIn() {
  QVAuthFileReader& reader = QVAuthFileReader::GetInstance();
  try {
    QVXRoleMapAlgorithm::GetInstance().Initialize(reader.GetDefaultRecords());
  } catch (...) {
    reader.StopReading();
    throw;
  }
}

// What the role map grants; nothing to a name that cannot be widened. `known` is a user that may
// already have been looked up.
u32 RoleMapPrivileges(const astring* user, const astring* host, SystemUser& known) {
  const std::optional<std::wstring> wideUser = Widen(user);
  const std::optional<std::wstring> wideHost = Widen(host);
  if (!wideUser || !wideHost) return QVX_PRIV_NONE;
  QVXRole query{*wideUser, LowerCase(*wideHost), QVX_PRIV_NONE};
  const QVXRoleMapAlgorithm& algorithm = QVXRoleMapAlgorithm::GetInstance();
  if (Narrow(*wideUser) == std::string_view(known.Name())) {
    algorithm.GetUserPrivileges(query, known);
  } else {
    algorithm.GetUserPrivileges(query);
  }
  return query.privileges;
}

void OpenRolemapFile() {
  FaultReport report;
  const RoleMap::Lock lock = RoleMap::Enter();
  try {
    QVAuthFileReader::GetInstance().Open();
  } catch (const QVXRoleMapFileReaderException& fault) {
    report.Note(fault);
    StandIn();
  }
}

u32 ProcessPrivileges(SystemUser& user) {
  FaultReport report;
  const RoleMap::Lock lock = RoleMap::Enter();
  try {
    QVXRoleMapAlgorithm::GetInstance().Initialize(QVAuthFileReader::GetInstance().GetRecords());
  } catch (const QVXRoleMapFileReaderException& fault) {
    report.Note(fault);
    StandIn();
  }
  return RoleMapPrivileges(user.Name(), HostName().text, user);
}

u32 GetRightsUsingRolemap() {
  const HeapArray<astring> name(OSGetProcessUser());
  if (!name) return QVX_PRIV_NONE;
  SystemUser user(name.get());
  const u32 privileges = ProcessPrivileges(user);
  if (privileges != QVX_PRIV_NONE) return privileges;
  return user.IsSuperuser() ? QVX_PRIV_ADMINISTRATOR : QVX_PRIV_NONE;
}

struct Login {
  const astring* user;
  const astring* host;
};

// The first two tokens, each "" where there is none.
void SplitAt(astring* login, const astring* separator, const astring** first,
             const astring** second) {
  astring* rest = nullptr;
  const astring* token = strtok_r(login, separator, &rest);
  *first = token == nullptr ? "" : token;
  token = token == nullptr ? nullptr : strtok_r(nullptr, separator, &rest);
  *second = token == nullptr ? "" : token;
}

// A host of nullptr is this machine.
Login Split(astring* login) {
  Login split{login, nullptr};
  if (strchr(login, '@') != nullptr) {
    SplitAt(login, "@", &split.user, &split.host);
  } else if (strchr(login, '\\') != nullptr) {
    SplitAt(login, "\\", &split.host, &split.user);
  }
  return split;
}

// Grants the superuser nothing: the superuser's rights do not depend on the map.
u32 LoginPrivileges(const Login& login, SystemUser& user) {
  const RoleMap::Lock lock = RoleMap::Enter();
  QVXRoleMapAlgorithm::GetInstance().Initialize(
      QVAuthFileReader::GetInstance().GetDefaultRecords());
  if (user.IsSuperuser()) return QVX_PRIV_NONE;
  if (login.host != nullptr) return RoleMapPrivileges(login.user, login.host, user);
  return RoleMapPrivileges(login.user, HostName().text, user);
}

}  // namespace

u32 OSOpenRolemapFile() {
  try {
    OpenRolemapFile();
  } catch (...) {
    return 0;  // without enough memory nothing is known about the file
  }
  return 0;
}

u32 OSGetRightsUsingRolemap() {
  try {
    return GetRightsUsingRolemap();
  } catch (...) {
    return QVX_PRIV_NONE;
  }
}

u32 get_user_rights(astring* login) {
  if (login == nullptr) return QVX_PRIV_NONE;
  const Login split = Split(login);
  // Deliberate: the system looks up the caller's text as the split has left it, which for
  // domain\user is the domain's name. Held by UserRights.TheSystemIsAskedOfTheDomainOfADomainLogin.
  SystemUser user(login);
  (void)user.IsKnown();  // looked up before the role map's turn is taken, as this may take long
  const u32 byRoleMap = LoginPrivileges(split, user);
  if (user.IsSuperuser()) return QVX_PRIV_ADMINISTRATOR | QVX_PRIV_ROOT;
  // The system can only raise a user to a power user, by group 0.
  if (byRoleMap != QVX_PRIV_USER) return byRoleMap;
  return std::max(byRoleMap, GetOSPrivilege(user));
}

}  // namespace qvx
