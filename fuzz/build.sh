#!/usr/bin/env bash
# Builds the `.cube` reader's fuzz target with clang's libFuzzer, address and
# undefined-behaviour sanitizers. Kept out of the CMake build on purpose: it
# needs clang, and the sanitizers would slow every normal build.
# Usage: fuzz/build.sh OUTPUT_BINARY
set -euo pipefail
cd "$(dirname "$0")/.."
output=${1:-fuzz-out/cube_lut_fuzz}
mkdir -p "$(dirname "$output")"
# Qt is built with reduced relocations, so everything linking it must be PIC.
clang++ -std=c++20 -g -O1 -fPIC \
  -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=undefined \
  -Isrc $(pkg-config --cflags Qt6Core) \
  fuzz/cube_lut_fuzz.cpp \
  src/grading/cube_lut.cpp src/grading/cube_text.cpp src/grading/cube_resample.cpp \
  src/grading/lut_parse_error.cpp src/model/error.cpp \
  $(pkg-config --libs Qt6Core) \
  -o "$output"
