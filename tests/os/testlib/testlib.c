/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* A library for the loader's tests: two functions, one of which needs another. */
#include <unistd.h>

int qvx_testlib_answer(void);
int qvx_testlib_parent(void);

int qvx_testlib_answer(void) { return 42; }

int qvx_testlib_parent(void) { return (int)getppid(); }
