// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_ALONE_H
#define QVX_TESTS_SUPPORT_ALONE_H

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "support/files.h"
#include "support/processes.h"

namespace qvx::test {

inline void MakeFolders(const std::string& path) {
  for (size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1)) {
    (void)mkdir(path.substr(0, at).c_str(), 0755);
  }
  (void)mkdir(path.c_str(), 0755);
}

// The product's folders and /run as they are on a machine where nothing has run yet.
inline void FreshFolders() {
  if (unshare(CLONE_NEWNS) != 0 ||
      mount("tmpfs", "/etc/cim", "tmpfs", MS_NOSUID, "mode=755") != 0 ||
      mount("tmpfs", "/run", "tmpfs", MS_NOSUID, "mode=755") != 0) {
    abort();
  }
  (void)unlink("/etc/qvx.conf");
  for (const char* folder :
       {"/etc/cim/zarn/plinthos/var/lib/vexilon", "/etc/cim/zarn/plinthos/var/log/vexilon",
        "/etc/cim/zarn/plinthos/vexilon/qvx/ini"}) {
    MakeFolders(folder);
  }
  close(open("/run/qvx-sandbox", O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
}

// Runs the body of a case in its own process and over its own folders: an image of the library is
// attached for the first time only once.
inline void RunAlone(void (*body)()) {
  RequireSandbox();
  EXPECT_EQ(InChild([body] {
              FreshFolders();
              body();
              return testing::Test::HasFailure() ? 1 : 0;
            }),
            0);
}

}  // namespace qvx::test

// A case whose body runs alone.
#define QVX_ALONE(suite, name)                            \
  void suite##name();                                     \
  TEST(suite, name) { qvx::test::RunAlone(suite##name); } \
  void suite##name()

#endif
