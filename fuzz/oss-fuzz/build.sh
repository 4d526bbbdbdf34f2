#!/bin/bash -eu
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# Builds the fuzzers that write no file, with the service's compiler, flags and engine, into $OUT,
# with their seeds and the libraries that the service's runners do not have.
cd "$SRC/libqvxcs"
cmake -S . -B "$WORK/build" -G Ninja -DQVXCS_FUZZ_ENGINE="$LIB_FUZZING_ENGINE" \
  -DQVXCS_TOOLS=OFF -DQVXCS_MANUAL=OFF
cmake --build "$WORK/build" --target service_fuzzers

mkdir -p "$OUT/lib"
for fuzzer in "$WORK"/build/fuzz/*_fuzzer; do
  name=$(basename "$fuzzer")
  cp "$fuzzer" "$OUT"
  ldd "$fuzzer" | sed -nE 's/.* => ([^ ]*\/lib(pam|crypto|audit|cap-ng)\.[^ ]*) .*/\1/p' |
    xargs -r cp -L -t "$OUT/lib"
  # shellcheck disable=SC2016 # the loader's word
  patchelf --set-rpath '$ORIGIN/lib' "$OUT/$name"
  zip -jqr "$OUT/${name}_seed_corpus.zip" "fuzz/corpus/${name%_fuzzer}"
done
for library in "$OUT"/lib/*; do
  # shellcheck disable=SC2016
  patchelf --set-rpath '$ORIGIN' "$library"
done
