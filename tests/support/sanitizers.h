// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_SANITIZERS_H
#define QVX_TESTS_SUPPORT_SANITIZERS_H

// 1 in a build with a sanitizer, whose heap is not the C library's and which makes system calls of
// its own. g++ and clang++ show it differently.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QVX_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define QVX_SANITIZED 1
#endif
#endif
#ifndef QVX_SANITIZED
#define QVX_SANITIZED 0
#endif

// 1 with the thread sanitizer, whose bookkeeping does not know a thread that is cancelled within
// some calls, or waited for twice.
#if defined(__SANITIZE_THREAD__)
#define QVX_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define QVX_THREAD_SANITIZER 1
#endif
#endif
#ifndef QVX_THREAD_SANITIZER
#define QVX_THREAD_SANITIZER 0
#endif

#endif
