#!/usr/bin/env bash
# Builds kestrel and shows what it finds in the bundled example project.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build >/dev/null
cmake --build build -j"$(nproc)" --target kestrel
for f in examples/*.h examples/*.cpp; do
  ./build/tools/kestrel scan --language cpp "$f"
done
