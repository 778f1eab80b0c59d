#!/usr/bin/env python3
"""Matches kestrel's scan trace against Universal Ctags' tags for one corpus.

usage: compare.py CTAGS_XREF KESTREL_TRACE [DIR]

CTAGS_XREF holds "name<TAB>file<TAB>line<TAB>kind" lines (ctags -x with that format),
KESTREL_TRACE the output of `kestrel scan` over the same files (each file's block
opened by "file<TAB>PATH"). Prints one line of percentages:
function recall, function precision, class recall, member-variable recall, and the
counts behind them. With DIR, the missed and extra names go to files there.

Normalisation, so that the two tools' spellings of one name compare equal:
- blanks are dropped from every name ("operator ==", "operator==" and
  "operator const char *" / "operator const char*" meet);
- a destructor keeps its "~" in both; a conversion operator is "operator" and its
  type in both (kestrel's member name starts at "operator", so the "::" of a
  qualified target type stays in the name);
- template arguments are not part of a name in either tool.
Matching:
- functions (ctags kinds function and prototype) by file, line and name; ctags'
  functions whose names hold no lower-case letter (macro invocations such as TEST_F
  or Q_DECLARE_METATYPE read as functions) and its lambdas (named __anon...) are
  left out of the reference;
- classes (class, struct, union; not ctags' anonymous __anon names) by file and name,
  since kestrel reports where a class body ends, not where its head stands;
- member variables (ctags kind member) by file, line and name.
"""
import sys


def norm(name):
    return name.replace(" ", "")


def member_of(full):
    # The class part may itself hold "::" (a namespace); the member is what follows
    # the last one, or everything from "operator" on.
    at = full.find("operator")
    if at >= 0 and (at == 0 or full[at - 1] == ":"):
        return full[at:]
    return full.rsplit("::", 1)[-1]


def load_ctags(path):
    functions, classes, members = set(), set(), set()
    with open(path, encoding="utf-8", errors="replace") as f:
        for line in f:
            parts = line.rstrip("\n").split("\t")
            if len(parts) < 4:
                continue
            name, file, number, kind = parts[:4]
            key = (file, int(number), norm(name))
            if kind in ("function", "prototype"):
                if any(c.islower() for c in name) and not name.startswith("__anon"):
                    functions.add(key)
            elif kind in ("class", "struct", "union"):
                if not name.startswith("__anon"):
                    classes.add((file, norm(name)))
            elif kind == "member":
                members.add(key)
    return functions, classes, members


def load_kestrel(path):
    functions, classes, variables = set(), set(), set()
    file = None
    with open(path, encoding="utf-8", errors="replace") as f:
        for line in f:
            parts = line.rstrip("\n").split("\t")
            kind = parts[0]
            if kind == "file":
                file = parts[1]
            elif kind == "declare":
                functions.add((file, int(parts[1]), norm(member_of(parts[3]))))
            elif kind == "variable":
                variables.add((file, int(parts[1]), norm(member_of(parts[3]))))
            elif kind == "endclass":
                classes.add((file, norm(parts[2].rsplit("::", 1)[-1])))
    return functions, classes, variables


def pct(part, whole):
    return 100.0 * part / whole if whole else 100.0


def main():
    ref_f, ref_c, ref_m = load_ctags(sys.argv[1])
    got_f, got_c, got_v = load_kestrel(sys.argv[2])
    hit_f = len(ref_f & got_f)
    print("%.1f\t%.1f\t%.1f\t%.1f\t%d\t%d\t%d\t%d" % (
        pct(hit_f, len(ref_f)), pct(hit_f, len(got_f)), pct(len(ref_c & got_c), len(ref_c)),
        pct(len(ref_m & got_v), len(ref_m)), len(ref_f), len(got_f), len(ref_c), len(ref_m)))
    if len(sys.argv) > 3:  # a folder for the misses and the false hits, to read them
        for name, keys in (("missed_functions", ref_f - got_f), ("extra_functions", got_f - ref_f),
                           ("missed_classes", ref_c - got_c), ("missed_members", ref_m - got_v)):
            with open(sys.argv[3] + "/" + name, "w") as f:
                for key in sorted(keys):
                    f.write("\t".join(str(part) for part in key) + "\n")

main()
