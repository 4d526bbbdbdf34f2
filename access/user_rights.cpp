// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/user_rights.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>

#include "access/auth_file_reader.h"
#include "access/os_privilege.h"
#include "access/role.h"
#include "access/role_map_algorithm.h"
#include "access/role_map_error.h"
#include "base/heap.h"
#include "cli/param_node.h"
#include "os/host_name.h"
#include "xml/command_log.h"
#include "xml/xml_buffer.h"

namespace qvx {
namespace {

constexpr u32 kDescriptionRoom = 256;
constexpr s32 kEscapedText = 26;
constexpr u16 kFaultEntryType = 2;
constexpr size_t kHostNameRoom = 65;
constexpr size_t kLineNumberRoom = 21;

// Its lock is held from the reading of the role map to the decision, so that logins of several
// threads do not meet half-built maps.
class RoleMap {
 public:
  // A signal handler may end the process within a turn of its own thread.
  using Mutex = std::recursive_mutex;
  using Lock = std::unique_lock<Mutex>;
  RoleMap(const RoleMap&) = delete;
  RoleMap& operator=(const RoleMap&) = delete;

  // Throws once the process's exit takes the reader and the algorithm away: other threads and later
  // exit handlers may still come to log somebody in.
  static Lock Enter() {
    static const RoleMap roleMap;
    Lock lock(mutex_);
    if (gone_) throw std::logic_error("the process ends");
    return lock;
  }

 private:
  RoleMap() = default;
  // Not waited for is a thread that is logging somebody in: in the child of a fork it does not
  // exist. What it works with stays then; nobody else gets in.
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

// By the locale in force; nothing when the text is not in its encoding.
std::optional<std::wstring> Widen(const astring* text) {
  std::wstring wide(strlen(text) + 1, L'\0');
  std::mbstate_t state{};
  const size_t length = std::mbsrtowcs(wide.data(), &text, wide.size(), &state);
  if (length == static_cast<size_t>(-1)) return std::nullopt;
  wide.resize(length);
  return wide;
}

// This machine's name, empty when it is not to be had.
struct HostName {
  HostName() {
    u32 size = sizeof(text);
    if (GetIPHostName(text, &size) != 0) text[0] = '\0';
  }
  astring text[kHostNameRoom] = {};
};

// The buffer's text is the entry's description.
void AppendFault(void* buffer, const QVXRoleMapFileReaderException& fault) {
  astring line[kLineNumberRoom];
  (void)snprintf(line, sizeof(line), "%lu", fault.GetLineNumber());
  (void)NVSuptBufCatSetCmdParam(buffer, "line", nullptr, nullptr, line, kEscapedText);
  astring* description = PXMFreeBuf(buffer, 1);
  (void)SUPTIntfAppendToCmdLog(static_cast<s32>(fault.MapErrorCodeToCmdId()), "root", "QVXSERVER",
                               description, kFaultEntryType);
  PXMFreeBufContent(description);
}

// The default records stand in, also where the fault cannot be logged. Where they cannot be had,
// the lines behind the fault must not be what the next query reads.
void ReportFault(const QVXRoleMapFileReaderException& fault) {
  if (void* buffer = PXMAllocBuf(kDescriptionRoom, 0)) AppendFault(buffer, fault);
  QVAuthFileReader& reader = QVAuthFileReader::GetInstance();
  try {
    QVXRoleMapAlgorithm::GetInstance().Initialize(reader.GetDefaultRecords());
  } catch (...) {
    reader.StopReading();
    throw;
  }
}

// What the role map grants; nothing to a name that cannot be widened.
u32 RoleMapPrivileges(const astring* user, const astring* host) {
  const std::optional<std::wstring> wideUser = Widen(user);
  const std::optional<std::wstring> wideHost = Widen(host);
  if (!wideUser || !wideHost) return QVX_PRIV_NONE;
  QVXRole query{*wideUser, LowerCase(*wideHost), QVX_PRIV_NONE};
  QVXRoleMapAlgorithm::GetInstance().GetUserPrivileges(query);
  return query.privileges;
}

void OpenRolemapFile() {
  const RoleMap::Lock lock = RoleMap::Enter();
  try {
    QVAuthFileReader::GetInstance().Open();
  } catch (const QVXRoleMapFileReaderException& fault) {
    ReportFault(fault);
  }
}

u32 ProcessPrivileges(const astring* user) {
  const RoleMap::Lock lock = RoleMap::Enter();
  try {
    QVXRoleMapAlgorithm::GetInstance().Initialize(QVAuthFileReader::GetInstance().GetRecords());
  } catch (const QVXRoleMapFileReaderException& fault) {
    ReportFault(fault);
  }
  return RoleMapPrivileges(user, HostName().text);
}

u32 GetRightsUsingRolemap() {
  const HeapArray<astring> user(OSGetProcessUser());
  if (!user) return QVX_PRIV_NONE;
  const u32 privileges = ProcessPrivileges(user.get());
  if (privileges != QVX_PRIV_NONE) return privileges;
  return GetOSPrivilege(user.get()) == QVX_PRIV_ADMINISTRATOR ? QVX_PRIV_ADMINISTRATOR
                                                              : QVX_PRIV_NONE;
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

Login Split(astring* login, const HostName& thisHost) {
  Login split{login, thisHost.text};
  if (strchr(login, '@') != nullptr) {
    SplitAt(login, "@", &split.user, &split.host);
  } else if (strchr(login, '\\') != nullptr) {
    SplitAt(login, "\\", &split.host, &split.user);
  }
  return split;
}

}  // namespace

u32 OSOpenRolemapFile() {
  try {
    OpenRolemapFile();
  } catch (...) {
    return 0;  // without memory nothing can be said of the file
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
  RoleMap::Lock lock = RoleMap::Enter();
  QVXRoleMapAlgorithm::GetInstance().Initialize(
      QVAuthFileReader::GetInstance().GetDefaultRecords());
  const HostName thisHost;
  const Login split = Split(login, thisHost);
  const u32 byRoleMap = RoleMapPrivileges(split.user, split.host);
  lock.unlock();
  // Deliberate: the system is asked of the caller's text as the split has left it, so for
  // domain\user of the domain's name. Held by UserRights.TheSystemIsAskedOfTheDomainOfADomainLogin.
  const u32 bySystem = GetOSPrivilege(login);
  if (bySystem == QVX_PRIV_ADMINISTRATOR) return QVX_PRIV_ADMINISTRATOR | QVX_PRIV_ROOT;
  return byRoleMap == QVX_PRIV_NONE ? QVX_PRIV_NONE : std::max(byRoleMap, bySystem);
}

}  // namespace qvx
