# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# 32-bit x86: compiled against, and run in, a separate Debian root, made by scripts/i386_root the
# first time.
set(made_root ${CMAKE_CURRENT_LIST_DIR}/../build/i386-root)
set(QVXCS_ROOT ${made_root} CACHE PATH "Debian root for i386")
if(QVXCS_ROOT STREQUAL made_root)
  execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../scripts/i386_root)
endif()
get_filename_component(QVXCS_ROOT ${QVXCS_ROOT} REALPATH)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QVXCS_ROOT)
if(NOT EXISTS ${QVXCS_ROOT}/usr/include/security/pam_appl.h)
  message(FATAL_ERROR "m32: there is no i386 root at ${QVXCS_ROOT}; scripts/i386_root could not make it")
endif()

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_SYSROOT ${QVXCS_ROOT})
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET i686-linux-gnu)
set(CMAKE_CXX_COMPILER_TARGET i686-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
