#!/usr/bin/env bash
# Builds kestrel and shows what it finds in the bundled example project.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build >/dev/null
cmake --build build -j"$(nproc)" --target kestrel
language_of() {
  case "$1" in
    *.java) echo java ;;
    *.bas | *.cls | *.frm) echo basic ;;
    *) echo cpp ;;
  esac
}
for f in examples/*.h examples/*.cpp examples/*.java examples/*.bas examples/*.cls; do
  lang=$(language_of "$f")
  echo
  echo "== $f ($lang)"
  # kind, line, scope, full name, parameters or type, as aligned columns
  ./build/tools/kestrel scan --language "$lang" "$f" |
    awk -F'\t' '{ printf "  %-9s %4s  ", $1, $2;
                  if ($1 == "endclass") printf "      %s\n", $3;
                  else printf "%-4s %-28s %s\n", ($3 == 1 ? "pub" : $3 == 2 ? "prot" : $3 == 3 ? "priv" : "-"), $4, $5 }'
done
