#!/usr/bin/env bash
# Builds kestrel and runs every test (the micro-benchmarks run once among them), then
# builds and runs the whole suite again with AddressSanitizer and
# UndefinedBehaviorSanitizer in a separate build directory.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
jobs=$(nproc)
werror=OFF
[ "${CI:-}" = "true" ] && werror=ON

cmake -S . -B build -DKESTREL_BUILD_BENCH=ON -DKESTREL_WERROR=$werror >/dev/null
cmake --build build -j"$jobs"
ctest --test-dir build --output-on-failure -j"$jobs"

cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DKESTREL_SANITIZE=ON -DKESTREL_WERROR=$werror >/dev/null
cmake --build build-asan -j"$jobs"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan --output-on-failure -j"$jobs"
