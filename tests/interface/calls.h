/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVX_TESTS_INTERFACE_CALLS_H
#define QVX_TESTS_INTERFACE_CALLS_H

/*
 * A host in C that calls every exported name with real arguments and checks what comes back. It is
 * built twice from the same files: linked with the library, and loading it by dlopen. Calls are
 * written CALL(name)(arguments): the name is looked up, with the type that the headers give it, and
 * remembered; in the end every name of the version script must have been called.
 *
 * While calls are made, descriptors 1 and 2 are two files, which stay empty, and the process has
 * the one thread that it began with, besides those it asked for. Both are looked at on each call.
 */

#include <stddef.h>

#include "qvxcs/qvxcs.h"

#ifdef QVX_LINKED
#define CALL(name) ((__typeof__(&(name)))Called(#name, (void*)&(name)))
#else
#define CALL(name) ((__typeof__(&(name)))Called(#name, NULL))
#endif

/* Each reports what differs, with its place, and lets the host go on. */
#define EXPECT(condition) Expect((condition) != 0, #condition, __FILE__, __LINE__)
#define EXPECT_EQ(got, expected) Equal((s64)(got), (s64)(expected), #got, __FILE__, __LINE__)
#define EXPECT_TEXT(got, expected) SameText(got, expected, #got, __FILE__, __LINE__)
#define EXPECT_UNITS(got, expected) SameUnits(got, expected, #got, __FILE__, __LINE__)
/* For a text that the library hands out: it is given back. */
#define EXPECT_OWN(got, expected) SameOwn(got, expected, #got, __FILE__, __LINE__)
#define EXPECT_HAS(text, part) Has(text, part, __FILE__, __LINE__)

void Expect(int holds, const char* claim, const char* file, int line);
void Equal(s64 got, s64 expected, const char* claim, const char* file, int line);
void SameText(const astring* got, const char* expected, const char* claim, const char* file,
              int line);
void SameUnits(const ustring* got, const ustring* expected, const char* claim, const char* file,
               int line);
void SameOwn(astring* got, const char* expected, const char* claim, const char* file, int line);
void Has(const char* text, const char* part, const char* file, int line);

void* Called(const char* name, void* linked);

/* Bytes of the heap in use. */
size_t HeapInUse(void);

/* From here until all threads asked for have ended, a second thread is none of the library's. */
void AskForThreads(int some);

void WriteWhole(const char* path, const void* bytes, size_t size);
void WriteText(const char* path, const char* text);
/* The file's text in a buffer that the next call reuses; empty when there is no file. */
const char* ReadText(const char* path);
int Exists(const char* path);
void MakeProgram(const char* path, const char* script);
void Shell(const char* command);

/* The calls, by family. */
void CallData(void);   /* memory, context_lock, export_context, list, hash_id */
void CallText(void);   /* uni_string, transcode, number_text, grow_string, param_vector */
void CallXml(void);    /* xml_buffer, xml_log, command_log, os_log, cli_value */
void CallConfig(void); /* ini_file, keyvalue, string_resource, file_util */
void CallPaths(void);  /* paths, xsl_path */
void CallAccess(void); /* access, ip_address */
void CallOs(void);     /* thread, library, shutdown */

#endif
