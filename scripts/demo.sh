#!/usr/bin/env bash
# Builds kestrel, makes a project of the bundled C++ examples and prints its class tree
# with every class opened, as the control would show it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build >/dev/null
cmake --build build -j"$(nproc)" --target kestrel
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
./build/tools/kestrel new "$work/examples.kpr" examples
echo
echo "== class tree of examples/ (C++ files)"
./build/tools/kestrel tree --expand "$work/examples.kpr"
echo
echo "== file tree"
./build/tools/kestrel tree --files "$work/examples.kpr"
if cmake --build build -j"$(nproc)" --target kestrel-view >/dev/null 2>&1; then
  echo
  echo "== kestrel-view, drawn offscreen"
  ./build/tools/kestrel-view/kestrel-view --screenshot build/kestrel-view-examples.png --expand examples 2>/dev/null
fi
