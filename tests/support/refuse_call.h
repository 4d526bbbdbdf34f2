// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_REFUSE_CALL_H
#define QVX_TESTS_SUPPORT_REFUSE_CALL_H

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <iterator>

#include "qvxcs/types.h"

namespace qvx::test {

// From here to the end of this process the system call `number` fails with `error`, where its first
// argument, or the one counted from 0, is `value`. Use it in a child process.
inline void RefuseCall(u32 number, int value, u16 error, u32 argument = 0) {
  // Both machines that the tests run on keep an argument's low half first.
  const u32 place = static_cast<u32>(offsetof(seccomp_data, args)) + argument * 8;
  sock_filter steps[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 3),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, place),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<u32>(value), 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program = {static_cast<unsigned short>(std::size(steps)), steps};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
    abort();
  }
}

// The same for each call by which a C library may ask for the status of the open file `value`.
inline void RefuseFileStatus(int value, u16 error) {
  for (const u32 call : {
#ifdef SYS_fstat64
           u32{SYS_fstat64},
#endif
#ifdef SYS_fstatat64
           u32{SYS_fstatat64},
#endif
#ifdef SYS_newfstatat
           u32{SYS_newfstatat},
#endif
           u32{SYS_fstat}, u32{SYS_statx}}) {
    RefuseCall(call, value, error);
  }
}

// The same whatever the arguments.
inline void RefusePathCall(u32 number, u16 error) {
  sock_filter steps[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program = {static_cast<unsigned short>(std::size(steps)), steps};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
    abort();
  }
}

// The descriptor that the next file to be opened gets.
inline int NextDescriptor() {
  const int next = open("/dev/null", O_RDONLY | O_CLOEXEC);
  close(next);
  return next;
}

// Takes the descriptor, so that nobody else in this process gets it; returns whether it was
// free, that is, whether the refused call's file had been closed.
inline bool TakeDescriptor(int descriptor) {
  return open("/dev/null", O_RDONLY | O_CLOEXEC) == descriptor;
}

}  // namespace qvx::test

#endif
