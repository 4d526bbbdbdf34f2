# shellcheck shell=bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# What the tests of the installed library share: QVX_BUILD is the built library, QVX_FOLDER an empty
# folder for this test.
set -euo pipefail
cd "$(dirname "$0")/../.."
build=$QVX_BUILD
folder=$QVX_FOLDER
# shellcheck disable=SC2034 # the scripts that source this use it
version=$(sed -n 's/^project(qvxcs VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
# shellcheck disable=SC2034
libraries=$(sed -n 's/^CMAKE_INSTALL_LIBDIR:PATH=//p' "$build/CMakeCache.txt")
rm -rf "$folder"
mkdir -p "$folder"

say() { echo "$(basename "$0" .sh): $*"; }
fail() {
  say "$*" >&2
  exit 1
}
quietly() { # COMMAND ... whose output is wanted only if it fails
  "$@" >"$folder/command.log" 2>&1 || {
    cat "$folder/command.log" >&2
    fail "failed: $*"
  }
}
