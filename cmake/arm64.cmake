# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# 64-bit ARM: compiled against, and run under qemu in, a separate Debian root, made by
# scripts/arm64_root the first time.
set(made_root ${CMAKE_CURRENT_LIST_DIR}/../build/arm64-root)
set(QVXCS_ROOT ${made_root} CACHE PATH "Debian root for arm64")
if(QVXCS_ROOT STREQUAL made_root)
  execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../scripts/arm64_root)
endif()
get_filename_component(QVXCS_ROOT ${QVXCS_ROOT} REALPATH)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QVXCS_ROOT)
if(NOT EXISTS ${QVXCS_ROOT}/usr/include/security/pam_appl.h)
  message(FATAL_ERROR "arm64: there is no arm64 root at ${QVXCS_ROOT}; scripts/arm64_root could not make it")
endif()
# Inside the root.
set(QVXCS_EMULATOR /usr/bin/qemu-aarch64-static)

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_SYSROOT ${QVXCS_ROOT})
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET aarch64-linux-gnu)
set(CMAKE_CXX_COMPILER_TARGET aarch64-linux-gnu)
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT -fuse-ld=lld)
endforeach()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
