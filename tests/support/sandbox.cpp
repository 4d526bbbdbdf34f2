// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// sandbox PROGRAM [ARGUMENT ...]
//
// Enters new mount, UTS, IPC and network namespaces, lays private, writable copies over the
// folders that the library and its tests write to, and becomes the program. The machine outside
// sees nothing of it. The file /run/qvx-sandbox shows the program where it is. A build for another
// machine than this one brings its own root, which is entered first, and maybe an emulator.
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

[[noreturn]] void Fail(const std::string& what) {
  fprintf(stderr, "sandbox: %s: %s\n", what.c_str(), strerror(errno));
  exit(125);
}

void Check(int result, const std::string& what) {
  if (result != 0) {
    Fail(what);
  }
}

void MakeDirectories(const std::string& path) {
  for (size_t at = path.find('/', 1);; at = path.find('/', at + 1)) {
    const std::string part = path.substr(0, at);
    if (mkdir(part.c_str(), 0755) != 0 && errno != EEXIST) {
      Fail(part);
    }
    if (at == std::string::npos) return;
  }
}

void MakeFile(const std::string& path, mode_t mode) {
  const int file = open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, mode);
  if (file < 0) {
    Fail(path);
  }
  close(file);
}

// A writable copy of the folder whose changes stay in the sandbox's memory.
void OverlayFolder(const std::string& folder) {
  const std::string base = "/run/.overlay" + folder;
  MakeDirectories(base + "/upper");
  MakeDirectories(base + "/work");
  struct stat status = {};
  Check(stat(folder.c_str(), &status), folder);
  Check(chmod((base + "/upper").c_str(), status.st_mode & 07777), folder);
  const std::string options =
      "lowerdir=" + folder + ",upperdir=" + base + "/upper,workdir=" + base + "/work";
  Check(mount("overlay", folder.c_str(), "overlay", 0, options.c_str()), "overlay " + folder);
}

// The machine's own files in /tmp are not the tests': theirs have plain names.
void EmptyTmp() { Check(mount("tmpfs", "/tmp", "tmpfs", 0, "mode=1777"), "/tmp"); }

void PrivateDevices() {
  const std::string base = "/run/.dev";
  MakeDirectories(base);
  Check(mount("tmpfs", base.c_str(), "tmpfs", MS_NOSUID, "mode=755"), base);
  for (const char* name : {"null", "zero", "full", "random", "urandom", "tty"}) {
    MakeFile(base + "/" + name, 0666);
    Check(mount((std::string("/dev/") + name).c_str(), (base + "/" + name).c_str(), nullptr,
                MS_BIND, nullptr),
          name);
  }
  MakeDirectories(base + "/shm");
  Check(symlink("/proc/self/fd", (base + "/fd").c_str()), "fd");
  Check(mount(base.c_str(), "/dev", nullptr, MS_MOVE, nullptr), "/dev");
}

// What an installed library has left on the machine is not the tests'.
void HideInstalled() {
  MakeDirectories("/etc/cim");
  Check(mount("tmpfs", "/etc/cim", "tmpfs", MS_NOSUID, "mode=755"), "/etc/cim");
  for (const char* file : {"/etc/qvx.conf", "/etc/pam.d/qvauth"}) {
    (void)unlink(file);
  }
}

void ProductFolders() {
  for (const char* folder :
       {"/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot/qvx/docs",
        "/etc/cim/zarn/plinthos/var/lib/vexilon/cliroot/qvx/docs",
        "/etc/cim/zarn/plinthos/var/lib/vexilon/xslroot",
        "/etc/cim/zarn/plinthos/var/lib/vexilon/iws", "/etc/cim/zarn/plinthos/var/log/vexilon",
        "/etc/cim/zarn/plinthos/vexilon/qvx/ini", "/etc/cim/zarn/plinthos/vexilon/wwwroot/oem",
        "/opt/zarn/plinthos"}) {
    MakeDirectories(folder);
  }
}

int OpenFolder(const std::string& path) {
  const int folder = open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) {
    Fail(path);
  }
  return folder;
}

void BindOver(int folder, const std::string& place) {
  MakeDirectories(place);
  const std::string held = "/proc/self/fd/" + std::to_string(folder);
  Check(mount(held.c_str(), place.c_str(), nullptr, MS_BIND, nullptr), place);
}

void EnterRoot([[maybe_unused]] int build) {
#ifdef QVX_ROOT
  const std::string root = QVX_ROOT;
  for (const char* folder : {"/proc", "/dev"}) {
    Check(mount(folder, (root + folder).c_str(), nullptr, MS_BIND | MS_REC, nullptr), folder);
  }
  BindOver(build, root + QVX_BUILD_DIR);
  Check(chroot(root.c_str()), root);
  Check(chdir("/"), "/");
#endif
}

void Enter() {
  Check(unshare(CLONE_NEWNS | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWNET),
        "unshare (needs root, in a container --privileged)");
  Check(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr),
        "/ (a chroot must be a mount: bind it over itself first)");
  // The sources and the build folder may be in one of the folders that are about to be covered.
  const int source = OpenFolder(QVX_SOURCE_DIR);
  const int build = OpenFolder(QVX_BUILD_DIR);
  EnterRoot(build);
  Check(mount("tmpfs", "/run", "tmpfs", MS_NOSUID, "mode=755"), "/run");
  for (const char* folder : {"/etc", "/usr", "/opt"}) {
    OverlayFolder(folder);
  }
  (void)unlink("/usr/sbin/shutdown");  // a test brings its own, or nothing is run
  EmptyTmp();
  BindOver(source, QVX_SOURCE_DIR);
  BindOver(build, QVX_BUILD_DIR);
  HideInstalled();
  PrivateDevices();
  Check(sethostname("qvxtest", 7), "host name");
  Check(setdomainname("example", 7), "domain name");
  ProductFolders();
  MakeFile("/run/qvx-sandbox", 0644);
}

// A program that only lists its tests changes nothing; one of another root runs nowhere else.
bool OnlyLists([[maybe_unused]] int count, [[maybe_unused]] char** arguments) {
#ifndef QVX_ROOT
  for (int at = 1; at < count; ++at) {
    if (strcmp(arguments[at], "--gtest_list_tests") == 0) return true;
  }
#endif
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    fputs("usage: sandbox PROGRAM [ARGUMENT ...]\n", stderr);
    return 125;
  }
  if (!OnlyLists(argc, argv)) {
    const std::string folder = [] {
      char* const path = getcwd(nullptr, 0);
      std::string result = path == nullptr ? "/" : path;
      free(path);
      return result;
    }();
    umask(022);
    Enter();
    Check(chdir(folder.c_str()), folder);
  }
#ifdef QVX_EMULATOR
  Check(setenv("QVX_EMULATOR", QVX_EMULATOR, 1), "setenv");
  // Takes the place of this program's own name, in front of the other program's.
  argv[0] = const_cast<char*>(QVX_EMULATOR);
  execv(argv[0], argv);
#else
  execvp(argv[1], argv + 1);
#endif
  Fail(argv[1]);
}
