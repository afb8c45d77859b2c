#!/usr/bin/env python3
"""Mutation testing of the library's sources against its unit tests.

Generates every mutant of the sources of src/ (the Java binding left out) with universalmutator,
installed from PyPI into a virtual environment of the build folder; shuffles them with a fixed
seed; and takes them in that order until the requested number compiled. Each mutant is written
into a copy of the repository, the test suites of its layer (and of the layers above it) are
rebuilt, and ctest runs their unit tests, stopping at the first failure. A mutant that passes
them is built once more the way `make test` builds its second tree (Debug, AddressSanitizer and
UndefinedBehaviorSanitizer, which also catch leaks and fire asserts) and the same tests run there.
A mutant is killed when a test fails or times out in either build, and survives when all pass in
both. --no-sanitize leaves the second build out.

Prints one line per mutant, then killed / compiling and every survivor (file:line, the original
and the mutated line); the same goes to report.txt in the build folder. Not part of `make test`:
a sample of 150 mutants takes 20 to 50 minutes on two cores, as busy as the machine is.

    python3 tools/mutate.py --build build/mutate --mutants 150 --seed 13

With --only PREFIX it takes only mutants of the sources whose path starts with PREFIX (e.g.
src/index), shuffled by the same seed. With --recheck REPORT it tests only the survivors of an
earlier report against today's sources and tests (each found by its original line), to see which
of them later tests kill. With --kill-table FILE every test of the suites runs on every mutant
(no stop at the first failure) and the tests that failed on each go to FILE as JSON: a test that
is never the only one to fail adds no kill to the sample.
"""

import argparse
import difflib
import hashlib
import json
import os
import random
import re
import shutil
import subprocess
import sys
import time
import xml.etree.ElementTree as ET
from pathlib import Path

TOOL = "universalmutator==1.14.1"

# The suites that a change in a folder of src/ can break: the layer's own and those of the layers
# built on it (ctest labels, which are also the names of the test executables).
LAYER_SUITES = {
    "index": ["index_tests", "placement_tests", "binding_tests"],
    "raster": ["raster_tests", "placement_tests", "binding_tests"],
    "placement": ["placement_tests", "binding_tests"],
}
# Sources of src/ outside the layers: the library's main file, checked by the package test.
TOP_SUITES = {"targets": ["KXAvoidContainer"], "labels": ["package"]}
EXCLUDED = {"src/binding", "src/dllmain.cpp"}


def run(cmd, timeout=None, **kw):
    try:
        return subprocess.run(cmd, timeout=timeout, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, **kw)
    except subprocess.TimeoutExpired as e:
        return subprocess.CompletedProcess(cmd, 124, e.stdout or "", None)


def sources(repo):
    files = []
    for path in sorted((repo / "src").rglob("*")):
        rel = path.relative_to(repo).as_posix()
        if path.suffix not in (".cpp", ".h") or rel == "src/stdafx.h":
            continue
        if any(rel == e or rel.startswith(e + "/") for e in EXCLUDED):
            continue
        files.append(rel)
    return files


def code_of(line):
    """The line without its comments and whitespace."""
    line = re.sub(r"/\*.*?\*/", "", line)
    line = re.sub(r"//.*", "", line)
    return re.sub(r"\s+", "", line)


def suites_of(rel):
    parts = rel.split("/")
    if len(parts) == 3 and parts[1] in LAYER_SUITES:
        return {"targets": LAYER_SUITES[parts[1]], "labels": LAYER_SUITES[parts[1]]}
    return TOP_SUITES


def ensure_tool(work):
    venv = work / "venv"
    mutate = venv / "bin" / "mutate"
    if not mutate.exists():
        subprocess.run([sys.executable, "-m", "venv", str(venv)], check=True)
        subprocess.run([str(venv / "bin" / "pip"), "install", "-q", TOOL], check=True)
    return mutate


def generate(mutate, tree, rel, cache):
    """Every single-line mutant of one file, as (line number, mutated line), deduplicated."""
    original = (tree / rel).read_text().splitlines(keepends=True)
    digest = hashlib.sha256("".join(original).encode()).hexdigest()[:16]
    cached = cache / (rel.replace("/", "_") + "." + digest + ".json")
    if cached.exists():
        return json.loads(cached.read_text())
    out = cache / "tmp"
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    run([str(mutate), str(tree / rel), "cpp", "--noCheck", "--mutantDir", str(out)], cwd=out)
    seen = set()
    mutants = []
    for path in sorted(out.iterdir(), key=lambda p: p.name):
        changed = path.read_text().splitlines(keepends=True)
        ops = [op for op in difflib.SequenceMatcher(None, original, changed, autojunk=False)
               .get_opcodes() if op[0] != "equal"]
        # Only mutants that replace one line by one line.
        if len(ops) != 1 or ops[0][0] != "replace":
            continue
        _, i1, i2, j1, j2 = ops[0]
        if i2 - i1 != 1 or j2 - j1 != 1:
            continue
        key = (i1 + 1, changed[j1])
        if key not in seen:
            seen.add(key)
            mutants.append([i1 + 1, changed[j1]])
    shutil.rmtree(out, ignore_errors=True)
    cached.write_text(json.dumps(mutants))
    return mutants


def survivors_of(report, tree):
    """The survivors of a report as (file, line, mutated line) in today's sources: each is found
    by its original line, the occurrence nearest to the line number it had; gone ones are left
    out with a note."""
    found = []
    entries = re.findall(r"^  (\S+):(\d+)\n    - (.*)\n    \+ (.*)$", report, re.M)
    for rel, line, before, after in entries:
        lines = (tree / rel).read_text().splitlines(keepends=True) if (tree / rel).exists() else []
        hits = [i for i, text in enumerate(lines) if text.strip() == before]
        if not hits:
            print(f"mutate: {rel}:{line} no longer in the sources: {before}")
            continue
        i = min(hits, key=lambda k: abs(k + 1 - int(line)))
        indent = lines[i][: len(lines[i]) - len(lines[i].lstrip())]
        found.append((rel, i + 1, indent + after + "\n"))
    return found


def failed_tests(junit):
    """The names of the tests that failed or timed out, from ctest's JUnit report."""
    if not junit.exists():
        return []
    cases = ET.parse(junit).getroot().iter("testcase")
    return sorted(c.get("name").split(" #")[0] for c in cases
                  if c.find("failure") is not None or c.get("status") == "fail")


def copy_tree(repo, tree):
    files = run(["git", "-C", str(repo), "ls-files", "--cached", "--others", "--exclude-standard",
                 "-z"]).stdout.split("\0")
    # Only files that differ are written, with a new time stamp: the build tree then rebuilds
    # exactly what changed since the last run, a mutant left behind by an interrupted run included.
    for f in files:
        if not f or not (repo / f).is_file():
            continue
        source, copy = repo / f, tree / f
        if copy.is_file() and copy.read_bytes() == source.read_bytes():
            continue
        copy.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(source, copy)


def build_and_test(folder, suites, args, env, junit=None):
    """Builds the suites in one build folder and runs their tests: None when the mutant does not
    compile there, else whether a test failed. With junit, every test runs and reports there."""
    built = run(["cmake", "--build", str(folder), "-j", str(args.jobs), "--target",
                 *suites["targets"]], timeout=args.mutant_timeout, env=env)
    if built.returncode != 0:
        return None
    tested = run(["ctest", "--test-dir", str(folder), "-j", str(args.jobs),
                  *(["--output-junit", str(junit)] if junit else ["--stop-on-failure"]),
                  "--timeout", str(args.test_timeout), "-LE", "slow",
                  "-L", "^(" + "|".join(suites["labels"]) + ")$"],
                 timeout=args.mutant_timeout, env=env)
    return tested.returncode != 0


def main():
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("--build", default="build/mutate", help="work folder (copy, build, report)")
    ap.add_argument("--mutants", type=int, default=150, help="compiling mutants to test")
    ap.add_argument("--seed", type=int, default=13)
    ap.add_argument("--jobs", type=int, default=2)
    ap.add_argument("--test-timeout", type=int, default=60, help="seconds per test")
    ap.add_argument("--mutant-timeout", type=int, default=900, help="seconds per build or run")
    ap.add_argument("--recheck", metavar="REPORT",
                    help="test only the survivors listed in an earlier report, found in today's "
                         "sources by their original line, against today's tests")
    ap.add_argument("--kill-table", metavar="FILE",
                    help="run every test on every mutant (no stop at the first failure) and write "
                         "which tests failed on each to FILE (JSON), to see which tests are the "
                         "only ones to catch a fault")
    ap.add_argument("--no-sanitize", action="store_true",
                    help="judge mutants by the plain Release build alone")
    ap.add_argument("--only", metavar="PREFIX",
                    help="take only mutants of sources whose path starts with PREFIX "
                         "(e.g. src/index)")
    args = ap.parse_args()

    repo = Path(__file__).resolve().parent.parent
    work = (repo / args.build).resolve() if not os.path.isabs(args.build) else Path(args.build)
    tree, build, cache = work / "tree", work / "build", work / "mutants"
    work.mkdir(parents=True, exist_ok=True)
    cache.mkdir(exist_ok=True)

    mutate = ensure_tool(work)
    copy_tree(repo, tree)
    env = dict(os.environ)
    # The plain build, and the sanitized one of `make test` for the mutants the plain one misses.
    builds = [(build, ["-DCMAKE_BUILD_TYPE=Release"])]
    if not args.no_sanitize:
        builds.append((work / "build-sanitize",
                       ["-DCMAKE_BUILD_TYPE=Debug", "-DKXAC_SANITIZE=ON"]))
    launcher = []
    if shutil.which("ccache"):
        env["CCACHE_BASEDIR"] = str(tree)
        launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"]
    # The unmutated code must build and pass, or every mutant would count as killed.
    all_targets = sorted({t for s in LAYER_SUITES.values() for t in s} | {"KXAvoidContainer"})
    for folder, options in builds:
        configure = ["cmake", "-S", str(tree), "-B", str(folder), "-G", "Ninja", *options,
                     *launcher]
        subprocess.run(configure, check=True, env=env, stdout=subprocess.DEVNULL)
        base = run(["cmake", "--build", str(folder), "-j", str(args.jobs), "--target",
                    *all_targets], env=env)
        if base.returncode != 0:
            sys.exit("mutate: the unmutated tree does not build:\n" + base.stdout[-4000:])
        check = run(["ctest", "--test-dir", str(folder), "-j", str(args.jobs), "-LE", "slow",
                     "--timeout", str(args.test_timeout)], env=env)
        if check.returncode != 0:
            sys.exit("mutate: the unmutated tree fails its tests:\n" + check.stdout[-4000:])

    pool = []
    if args.recheck:
        pool = survivors_of(Path(args.recheck).read_text(), tree)
        args.mutants = len(pool)
        print(f"mutate: rechecking {len(pool)} survivors of {args.recheck}", flush=True)
    files = [f for f in sources(tree) if not args.only or f.startswith(args.only)]
    for rel in [] if args.recheck else files:
        lines = (tree / rel).read_text().splitlines(keepends=True)
        # Mutants that change only comments or spacing are not mutants of the code.
        pool += [(rel, line, text) for line, text in generate(mutate, tree, rel, cache)
                 if code_of(text) != code_of(lines[line - 1])]
    if not args.recheck:
        random.Random(args.seed).shuffle(pool)
    print(f"mutate: {len(pool)} mutants of {len(files)} files, seed {args.seed}, "
          f"taking the first {args.mutants} that compile", flush=True)

    killed, survivors, not_compiling, compiled, table = 0, [], 0, 0, []
    started = time.time()
    for rel, line, text in pool:
        if compiled >= args.mutants:
            break
        path = tree / rel
        original = path.read_text()
        lines = original.splitlines(keepends=True)
        before = lines[line - 1]
        lines[line - 1] = text
        path.write_text("".join(lines))
        try:
            suites = suites_of(rel)
            junit = work / "junit.xml" if args.kill_table else None
            if junit:
                junit.unlink(missing_ok=True)
            failed = build_and_test(build, suites, args, env, junit)
            if failed is None:
                not_compiling += 1
                continue
            compiled += 1
            if args.kill_table:
                table.append({"file": rel, "line": line, "mutant": text.strip(),
                              "failed": failed_tests(junit)})
                Path(args.kill_table).write_text(json.dumps(table, indent=1) + "\n")
            outcome = "killed"
            if not failed and len(builds) > 1:
                # A mutant that builds only without asserts (NDEBUG) counts as not killed.
                failed = bool(build_and_test(builds[1][0], suites, args, env))
                outcome = "killed (sanitized build)"
            if failed:
                killed += 1
            else:
                outcome = "SURVIVED"
                survivors.append((rel, line, before.strip(), text.strip()))
            print(f"[{compiled}/{args.mutants}] {rel}:{line} {outcome} "
                  f"({time.time() - started:.0f} s)", flush=True)
        finally:
            path.write_text(original)

    report = [f"mutants: {len(pool)} generated, {compiled} compiling tested, "
              f"{not_compiling} not compiling (skipped), seed {args.seed}",
              f"killed {killed} / compiling {compiled} = "
              f"{100.0 * killed / compiled if compiled else 0.0:.1f}%",
              f"survivors ({len(survivors)}):"]
    for rel, line, before, after in survivors:
        report.append(f"  {rel}:{line}\n    - {before}\n    + {after}")
    text = "\n".join(report)
    print(text)
    (work / "report.txt").write_text(text + "\n")


if __name__ == "__main__":
    main()
