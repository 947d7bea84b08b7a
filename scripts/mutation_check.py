#!/usr/bin/env python3
"""Mutation check for Runplan (driven by scripts/mutation-check.sh).

Copies the tree (tracked files plus working changes, not the build folders) into a work
folder with its own build, builds it once, then for each mutation of tests/mutations.txt:
patches one line, rebuilds incrementally, runs ctest and restores the file. A mutation is
"killed" when a test fails, "survived" when the suite stays green, "did not apply" when its
pattern no longer matches exactly one line, "build failed" when the mutant does not compile.

The working files are never touched. The copy builds the two libraries shared (executables
are not relinked when only a library changed) and restores each mutated file before the next
build, so every build compiles the restored file (a ccache hit) and the new mutant only.
"""

import argparse
import fcntl
import os
import re
import shutil
import signal
import subprocess
import sys
import time
from collections import OrderedDict

FOLDERS = ["catalog", "model", "calc", "app", "canvas", "update"]


class Mutation:
    def __init__(self, mid, path, occurrence, title, lineno):
        self.id = mid
        self.path = path
        self.occurrence = occurrence  # 1-based index among matching lines, or None (must be unique)
        self.title = title
        self.lineno = lineno  # line in the mutations file
        self.pattern = None
        self.replacement = None
        self.harmless = None
        # results
        self.status = None
        self.detail = ""
        self.target_line = None
        self.original = None
        self.mutated = None
        self.killers = []
        self.functions = []
        self.build_s = 0.0
        self.test_s = 0.0

    @property
    def folder(self):
        return self.path.split("/", 1)[0]


HEADER = re.compile(r"^\[([A-Za-z0-9_.-]+)\]\s+(\S+?)(?:@(\d+))?(?:\s+(.*))?$")


def parse_mutations(path):
    mutations = []
    errors = []
    current = None
    with open(path, encoding="utf-8") as f:
        for n, raw in enumerate(f, 1):
            line = raw.rstrip("\n")
            if not line.strip() or line.lstrip().startswith("#"):
                continue
            m = HEADER.match(line)
            if m:
                current = Mutation(m.group(1), m.group(2), int(m.group(3)) if m.group(3) else None,
                                   (m.group(4) or "").strip(), n)
                mutations.append(current)
                continue
            if current is None:
                errors.append(f"{path}:{n}: line outside a mutation: {line}")
                continue
            if line.startswith("- ") or line == "-":
                current.pattern = line[2:]
            elif line.startswith("+ ") or line == "+":
                current.replacement = line[2:]
            elif line.startswith("harmless:"):
                text = line[len("harmless:"):].strip()
                current.harmless = f"{current.harmless} {text}" if current.harmless else text
            else:
                errors.append(f"{path}:{n}: expected '- pattern', '+ replacement' or 'harmless: why': {line}")
    seen = set()
    for m in mutations:
        if m.id in seen:
            errors.append(f"{path}:{m.lineno}: duplicate id [{m.id}]")
        seen.add(m.id)
        if not m.pattern:
            errors.append(f"{path}:{m.lineno}: [{m.id}] has no '- pattern' line")
        if m.replacement is None:
            errors.append(f"{path}:{m.lineno}: [{m.id}] has no '+ replacement' line")
        if m.pattern is not None and m.pattern == m.replacement:
            errors.append(f"{path}:{m.lineno}: [{m.id}] replacement equals pattern")
    return mutations, errors


def locate(m, text):
    """Returns (line index, new text) or (None, reason) for mutation m applied to text."""
    lines = text.split("\n")
    pattern = m.pattern.strip()  # indentation does not count: code re-indented still matches
    hits = [i for i, l in enumerate(lines) if pattern in l]
    if not hits:
        return None, "pattern not found"
    if m.occurrence is not None:
        if m.occurrence > len(hits):
            return None, f"pattern matches {len(hits)} line(s), @{m.occurrence} asked"
        i = hits[m.occurrence - 1]
    elif len(hits) > 1:
        return None, "pattern matches %d lines (%s); lengthen it or add @N" % (
            len(hits), ", ".join(str(h + 1) for h in hits[:6]))
    else:
        i = hits[0]
    m.target_line = i + 1
    m.original = lines[i]
    lines[i] = lines[i].replace(pattern, m.replacement.strip(), 1)
    m.mutated = lines[i]
    return i, "\n".join(lines)


def copy_transform(rel, data, shared):
    """The copy builds the libraries shared so a mutant relinks one library, not every test."""
    if shared and rel == "CMakeLists.txt":
        text = data.decode("utf-8")
        text = text.replace("add_library(runplan_core STATIC", "add_library(runplan_core SHARED")
        text = text.replace("add_library(runplan_ui STATIC", "add_library(runplan_ui SHARED")
        return text.encode("utf-8")
    return data


def sync_tree(repo, src, shared):
    """Makes src hold the working tree's files; only files whose content differs are written."""
    out = subprocess.run(["git", "-C", repo, "ls-files", "-z", "-co", "--exclude-standard"],
                         check=True, capture_output=True).stdout
    files = [f for f in out.decode("utf-8").split("\0") if f]
    wanted = set()
    written = 0
    for rel in files:
        source = os.path.join(repo, rel)
        if not os.path.isfile(source):  # deleted in the working tree but still tracked
            continue
        wanted.add(rel)
        with open(source, "rb") as f:
            data = copy_transform(rel, f.read(), shared)
        target = os.path.join(src, rel)
        try:
            with open(target, "rb") as f:
                if f.read() == data:
                    continue
        except FileNotFoundError:
            os.makedirs(os.path.dirname(target), exist_ok=True)
        with open(target, "wb") as f:
            f.write(data)
        shutil.copymode(source, target)
        written += 1
    removed = 0
    for root, dirs, names in os.walk(src):
        for name in names:
            rel = os.path.relpath(os.path.join(root, name), src)
            if rel not in wanted:
                os.remove(os.path.join(root, name))
                removed += 1
    return written, removed


def run(cmd, env, timeout=None):
    """Runs cmd in its own process group, so that stopping the check stops its tests too."""
    t0 = time.monotonic()
    p = subprocess.Popen(cmd, env=env, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                         errors="replace", start_new_session=True)
    try:
        output, _ = p.communicate(timeout=timeout)
        code = p.returncode
    except subprocess.TimeoutExpired:
        os.killpg(p.pid, signal.SIGKILL)
        output, _ = p.communicate()
        code = -1
        output += "\n[mutation-check] command timed out\n"
    except BaseException:
        os.killpg(p.pid, signal.SIGKILL)
        p.wait()
        raise
    return code, output, time.monotonic() - t0


FAILED_TEST = re.compile(r"^\s*\d+\s+-\s+(\S+)\s+\((.*)\)\s*$")
FAILED_FUNCTION = re.compile(r"FAIL!\s+:\s+(\w+)::(\w+)")


def parse_ctest(output):
    killers, functions = [], []
    in_list = False
    for line in output.splitlines():
        if line.startswith("The following tests FAILED"):
            in_list = True
            continue
        if in_list:
            m = FAILED_TEST.match(line)
            if m:
                reason = m.group(2)
                killers.append(m.group(1) if reason == "Failed" else f"{m.group(1)} ({reason})")
            elif line.strip():
                in_list = False
        m = FAILED_FUNCTION.search(line)
        if m:
            name = f"{m.group(1)}::{m.group(2)}"
            if name not in functions:
                functions.append(name)
    return killers, functions


def main():
    ap = argparse.ArgumentParser(
        prog="mutation-check.sh",
        description="Applies each mutation of tests/mutations.txt to a copy of the tree, one at a time, "
                    "rebuilds, runs the suite and prints the kill rate per folder and the survivors.")
    ap.add_argument("--repo", required=True, help=argparse.SUPPRESS)
    ap.add_argument("-f", "--file", help="mutation list (default tests/mutations.txt)")
    ap.add_argument("-k", "--only", metavar="REGEX",
                    help="run only mutations whose id, file or title matches REGEX")
    ap.add_argument("-i", "--ids", metavar="ID,ID", help="run only these ids (comma separated)")
    ap.add_argument("-t", "--timeout", type=int, default=60, metavar="SEC",
                    help="ctest timeout per test executable for each mutant (default 60)")
    ap.add_argument("-j", "--jobs", type=int, default=2, help="build and ctest parallelism (default 2)")
    ap.add_argument("-w", "--workdir", metavar="DIR",
                    help="copy and build folder, kept between runs (default <repo>/build-mutation)")
    ap.add_argument("--first-kill", action="store_true",
                    help="stop the suite at the first failing test (faster; records one killer only)")
    ap.add_argument("--static", action="store_true",
                    help="build the libraries static as the project does (every mutant relinks every test)")
    ap.add_argument("--check", action="store_true",
                    help="only check which patterns still apply to the working tree; no build")
    ap.add_argument("-o", "--out", metavar="FILE", help="results as tab-separated lines (default <workdir>/results.tsv)")
    args = ap.parse_args()
    # A run in the background ignores Ctrl-C; TERM stops it the same way: the file restored.
    signal.signal(signal.SIGTERM, lambda *_: (_ for _ in ()).throw(KeyboardInterrupt()))
    signal.signal(signal.SIGINT, signal.default_int_handler)

    repo = os.path.abspath(args.repo)
    listing = args.file or os.path.join(repo, "tests", "mutations.txt")
    mutations, errors = parse_mutations(listing)
    if errors:
        print("\n".join(errors), file=sys.stderr)
        return 2
    if args.ids:
        ids = {s.strip() for s in args.ids.split(",") if s.strip()}
        unknown = ids - {m.id for m in mutations}
        if unknown:
            print("unknown ids: " + ", ".join(sorted(unknown)), file=sys.stderr)
            return 2
        mutations = [m for m in mutations if m.id in ids]
    if args.only:
        rx = re.compile(args.only)
        mutations = [m for m in mutations if rx.search(m.id) or rx.search(m.path) or rx.search(m.title)]
    if not mutations:
        print("no mutation selected", file=sys.stderr)
        return 2

    if args.check:
        bad = 0
        for m in mutations:
            try:
                with open(os.path.join(repo, m.path), encoding="utf-8") as f:
                    where, result = locate(m, f.read())
            except FileNotFoundError:
                where, result = None, "file not found"
            if where is None:
                bad += 1
                print(f"DID NOT APPLY [{m.id}] {m.path}: {result}\n    - {m.pattern}")
            else:
                print(f"ok  [{m.id}] {m.path}:{m.target_line}")
        print(f"{len(mutations) - bad} of {len(mutations)} mutations apply")
        return 1 if bad else 0

    workdir = os.path.abspath(args.workdir or os.path.join(repo, "build-mutation"))
    src = os.path.join(workdir, "src")
    build = os.path.join(workdir, "build")
    os.makedirs(src, exist_ok=True)
    os.makedirs(build, exist_ok=True)
    out_file = args.out or os.path.join(workdir, "results.tsv")
    lock = open(os.path.join(workdir, ".lock"), "w")
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except OSError:
        print(f"another mutation check is using {workdir}; wait for it or pass --workdir", file=sys.stderr)
        return 2

    env = dict(os.environ)
    env["CCACHE_BASEDIR"] = workdir
    env["CCACHE_NOHASHDIR"] = "true"
    env["QT_QPA_PLATFORM"] = "offscreen"

    t_start = time.monotonic()
    written, removed = sync_tree(repo, src, not args.static)
    print(f"copy: {src} ({written} file(s) written, {removed} removed)", flush=True)

    configure = ["cmake", "-S", src, "-B", build,
                 "-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG",
                 "-DRUNPLAN_BUILD_BENCH=OFF", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"]
    if shutil.which("ld.lld"):
        configure += ["-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld", "-DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=lld"]
    code, output, _ = run(configure, env)
    if code != 0:
        print(output)
        print("configure failed", file=sys.stderr)
        return 2
    build_cmd = ["cmake", "--build", build, "--parallel", str(args.jobs)]
    code, output, t_build0 = run(build_cmd, env)
    if code != 0:
        print(output[-6000:])
        print("the unmutated copy does not build", file=sys.stderr)
        return 2
    ctest = ["ctest", "--test-dir", build, "--timeout", str(args.timeout), "--parallel", str(args.jobs),
             "--output-on-failure",
             # The install check needs the project's own static build; the copy links shared.
             "--exclude-regex", "^install_check$"]
    if args.first_kill:
        ctest.append("--stop-on-failure")
    code, output, t_test0 = run(ctest, env)
    if code != 0:
        print(output[-6000:])
        print("the unmutated suite is not green; fix that first", file=sys.stderr)
        return 2
    print(f"baseline: build {t_build0:.0f} s, suite {t_test0:.1f} s, green", flush=True)

    pending_restore = None  # (path, original bytes) restored before the next build
    t_mut0 = time.monotonic()
    try:
        for n, m in enumerate(mutations, 1):
            target = os.path.join(src, m.path)
            try:
                with open(target, encoding="utf-8") as f:
                    original = f.read()
            except FileNotFoundError:
                m.status, m.detail = "did not apply", "file not found"
            else:
                where, result = locate(m, original)
                if where is None:
                    m.status, m.detail = "did not apply", result
                else:
                    with open(target, "w", encoding="utf-8") as f:
                        f.write(result)
                    pending_restore = (target, original)
                    code, output, m.build_s = run(build_cmd, env)
                    if code != 0:
                        m.status = "build failed"
                        errs = [l for l in output.splitlines() if "error" in l]
                        m.detail = errs[0].strip() if errs else "see build output"
                    else:
                        code, output, m.test_s = run(ctest, env)
                        m.killers, m.functions = parse_ctest(output)
                        if code != 0:
                            m.status = "killed"
                            if not m.killers:
                                m.killers = ["ctest exit %d" % code]
                        else:
                            m.status = "survived"
                    # Restore now (a fresh timestamp); the next build recompiles the original.
                    with open(target, "w", encoding="utf-8") as f:
                        f.write(original)
                    pending_restore = None
            line = f"[{n}/{len(mutations)}] [{m.id}] {m.path}"
            if m.target_line:
                line += f":{m.target_line}"
            line += f"  {m.status.upper()}"
            if m.status == "killed":
                line += " by " + ", ".join(m.killers)
                if m.functions:
                    line += " (" + ", ".join(m.functions[:4]) + (", ..." if len(m.functions) > 4 else "") + ")"
            elif m.detail:
                line += ": " + m.detail
            if m.build_s:
                line += f"  [build {m.build_s:.0f} s, test {m.test_s:.1f} s]"
            print(line, flush=True)
    except KeyboardInterrupt:
        print("interrupted", file=sys.stderr)
    finally:
        if pending_restore:
            with open(pending_restore[0], "w", encoding="utf-8") as f:
                f.write(pending_restore[1])
    t_mut = time.monotonic() - t_mut0
    done = [m for m in mutations if m.status]

    with open(out_file, "w", encoding="utf-8") as f:
        f.write("id\tfolder\tfile\tline\tstatus\tkilled by\ttest functions\tbuild s\ttest s\tdetail\n")
        for m in done:
            f.write("\t".join([m.id, m.folder, m.path, str(m.target_line or ""), m.status,
                               " ".join(m.killers), " ".join(m.functions), f"{m.build_s:.1f}",
                               f"{m.test_s:.1f}", m.detail]) + "\n")

    rows = OrderedDict((f, [0, 0, 0, 0, 0]) for f in FOLDERS)
    for m in done:
        row = rows.setdefault(m.folder, [0, 0, 0, 0, 0])
        row[0] += 1
        row[{"killed": 1, "survived": 2, "did not apply": 3, "build failed": 4}[m.status]] += 1
    total = [sum(r[i] for r in rows.values()) for i in range(5)]

    def rate(r):
        tried = r[1] + r[2]
        return f"{r[1]}/{tried} = {100.0 * r[1] / tried:.0f} %" if tried else "-"

    print()
    print(f"Mutation check of {os.path.relpath(listing, repo)}: {total[0]} mutations")
    print(f"{'folder':<9}{'mutations':>10}{'killed':>8}{'survived':>10}{'n/a':>6}{'no build':>10}   kill rate")
    for folder, r in rows.items():
        if r[0]:
            print(f"{folder:<9}{r[0]:>10}{r[1]:>8}{r[2]:>10}{r[3]:>6}{r[4]:>10}   {rate(r)}")
    print(f"{'total':<9}{total[0]:>10}{total[1]:>8}{total[2]:>10}{total[3]:>6}{total[4]:>10}   {rate(total)}")
    print("(kill rate = killed / (killed + survived); n/a = did not apply)")
    accepted = sum(1 for m in done if m.status == "survived" and m.harmless)
    if accepted:
        print(f"{accepted} of the survivors are marked harmless in the list (reasons below)")

    survivors = [m for m in done if m.status == "survived"]
    if survivors:
        print("\nSurvivors:")
        for m in sorted(survivors, key=lambda m: m.harmless is not None):
            print(f"  [{m.id}] {m.path}:{m.target_line}  {m.title}")
            print(f"      - {m.original.strip()}\n      + {m.mutated.strip()}")
            if m.harmless:
                print(f"      harmless: {m.harmless}")
    missing = [m for m in done if m.status == "did not apply"]
    if missing:
        print("\nDid not apply (the code changed; update tests/mutations.txt):")
        for m in missing:
            print(f"  [{m.id}] {m.path}: {m.detail}\n      - {m.pattern}")
    broken = [m for m in done if m.status == "build failed"]
    if broken:
        print("\nBuild failed (the mutant does not compile; fix the replacement):")
        for m in broken:
            print(f"  [{m.id}] {m.path}:{m.target_line}: {m.detail}")

    built = [m for m in done if m.build_s]
    print()
    if built:
        avg_b = sum(m.build_s for m in built) / len(built)
        avg_t = sum(m.test_s for m in built) / len(built)
        print(f"Time: {len(built)} mutants built, per mutant {avg_b:.1f} s build + {avg_t:.1f} s suite; "
              f"mutants {t_mut:.0f} s, total {time.monotonic() - t_start:.0f} s "
              f"(baseline build {t_build0:.0f} s, suite {t_test0:.1f} s)")
    print(f"Results: {out_file}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
