# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# What the toolchain files of other machines share: the library is compiled against, and its tests
# run in, a separate Debian root for `arch`, made by scripts/debian_root the first time; `target`
# is what clang++ compiles for.
set(made_root ${CMAKE_CURRENT_LIST_DIR}/../build/${arch}-root)
set(QVXCS_ROOT ${made_root} CACHE PATH "Debian root for ${arch}")
if(QVXCS_ROOT STREQUAL made_root)
  execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../scripts/debian_root ${arch})
endif()
get_filename_component(QVXCS_ROOT ${QVXCS_ROOT} REALPATH)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QVXCS_ROOT)
if(NOT EXISTS ${QVXCS_ROOT}/usr/include/security/pam_appl.h)
  message(FATAL_ERROR "there is no ${arch} root at ${QVXCS_ROOT}; scripts/debian_root could not make it")
endif()

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSROOT ${QVXCS_ROOT})
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET ${target})
set(CMAKE_CXX_COMPILER_TARGET ${target})
# Under "lib", a link to "usr/lib", clang would find headers by paths with ".." through that link. ninja
# shortens such paths, does not find the headers, and compiles everything each time.
foreach(language C CXX)
  set(CMAKE_${language}_COMPILER_EXTERNAL_TOOLCHAIN ${QVXCS_ROOT}/usr)
endforeach()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
