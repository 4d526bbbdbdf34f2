#!/usr/bin/env bash
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# Builds the library over an installed support library instead of the bundled one, and tests what
# uses that. Takes minutes: it builds all anew.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"

quietly cmake --build "$build" --target zsupt
# The bundled support library, installed as if it were another's.
support=$folder/zsupt
quietly cmake --install "$build" --component zsupt --prefix "$support"
[ "$(ls "$support/include")" = zsupt ] || fail "the component zsupt is more than the support library"
system=$folder/system
quietly cmake --preset release -B "$system" -DQVXCS_ZSUPT=system -DCMAKE_PREFIX_PATH="$support"
quietly cmake --build "$system" -j 2 --target qvxcs qvx_access_tests qvx_zsupt_tests calls_linked
readelf -dW "$system/libqvxcs.so" | grep -qF '[libzsupt.so.1]' ||
  fail "the library does not load the support library"
if readelf -dW "$build/libqvxcs.so" | grep -F libzsupt; then
  fail "the library with the bundled support library loads another"
fi
readelf -dW "$support/$libraries/libzsupt.so" | grep -qF BIND_NOW ||
  fail "the support library is not built as a released library is"
if nm -C "$system/libqvxcs.so" | grep -E ' [tT] ZarnSupport::Zarn(Tokenizer|StringUtilities)::'; then
  fail "the bundled support library is still built in"
fi
tools/check_symbols "$system/libqvxcs.so"
suites=$(for program in access zsupt; do
  "$system/tests/$program/qvx_${program}_tests" --gtest_list_tests
done | sed -nE 's/^([A-Za-z0-9_/]+)\.( .*)?$/\1/p' | paste -sd '|')
# Not those that call ten thousand times: they take longer than all others.
quietly ctest --test-dir "$system" -j 2 --output-on-failure --no-tests=error -E '^Growth\.' \
  -R "^($suites)\\.|^Interface\\.calls_linked\$"
say "over an installed support library: $(grep 'tests passed' "$folder/command.log")"
