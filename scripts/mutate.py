#!/usr/bin/python3
"""Mutation sample of the library: how many small source faults do the tests catch?

Copies the checkout into a work directory, draws mutants of src/ (stratified per folder,
deterministic for a seed and a tree), and for each one rebuilds incrementally and runs every
test ctest knows. A mutant is caught when a test fails or times out; one that does not build
is skipped and another is drawn. The copy is restored after every mutant, also on Ctrl-C, and
the checkout itself is never written. Writes results.jsonl and report.md into the work
directory; `--report --without FILES` rewrites the report as if those test files were gone.
"""
import argparse
import fcntl
import json
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

RELATIONAL = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "+=": "-=", "-=": "+=", "*=": "/=",
              "/=": "*="}
LOGICAL = {"&&": "||", "||": "&&"}
# clang-format spaces binary operators and never template brackets, pointers or references.
BINARY_OPERATOR = re.compile(r"(?<= )(<=|>=|==|!=|<|>|\+=|-=|\*=|/=|\+|-|\*|/|&&|\|\|)(?= )")
EXPONENT = r"(?:[eE][+-]?\d+)"
FLOAT_LITERAL = re.compile(
    rf"(?<![\w.])(\d+\.\d*{EXPONENT}?|\.\d+{EXPONENT}?|\d+{EXPONENT})([fFlL]?)(?![\w.])")
INT_LITERAL = re.compile(r"(?<![\w.])(\d+)([uUlL]*)(?![\w.])")
SIMPLE_ARGUMENT = r"[^(),{}]*[^(),{}\s]"
TWO_ARGUMENT_CALL = re.compile(rf"\b\w+\((\s*{SIMPLE_ARGUMENT}), ({SIMPLE_ARGUMENT})\)")
TYPE_THEN_NAME = (r"^\s*(?:(?:static|constexpr|const|inline)\s+)*[\w:]+(?:<[^;]*>)?(?:\s+const)?"
                  r"\s*[&*]*\s+[&*]?\w+")
DECLARATION_LIKE = re.compile(TYPE_THEN_NAME + r"$")
# Dropping a declaration only breaks the build; such lines are not drawn.
DECLARATION = re.compile(TYPE_THEN_NAME + r"\s*[={(;\[]")
STATEMENT_START = (";", "{", "}", ":")
NOT_DROPPABLE = re.compile(r"^\s*(return\s|case\s|default:|using\s|typedef\s|static_assert|"
                           r"public:|private:|protected:|template|friend\s|class\s|struct\s|"
                           r"namespace\s|enum\s|\}|\{|for\s|while\s|if\s|else)")


def run(command, timeout, **kwargs):
    """Runs a command in its own process group; on a timeout or an interrupt the whole group
    is killed, so no stray compiler or test process is left behind."""
    with subprocess.Popen(command, start_new_session=True, **kwargs) as process:
        try:
            out, _ = process.communicate(timeout=timeout)
        except BaseException:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            raise
        return subprocess.CompletedProcess(command, process.returncode, out)


def masked(text):
    """The text with comments, string/char literals and preprocessor lines blanked out."""
    out = list(text)
    i, n = 0, len(text)
    line_start = True
    while i < n:
        c = text[i]
        if line_start and c == "#":
            j = i
            while j < n and (text[j] != "\n" or text[j - 1] == "\\"):
                j += 1
            end = j
        elif text.startswith("//", i):
            end = text.find("\n", i)
            end = n if end < 0 else end
        elif text.startswith("/*", i):
            end = text.find("*/", i + 2)
            end = n if end < 0 else end + 2
        elif c in "\"'":
            end = i + 1
            while text[end] != c:
                end += 2 if text[end] == "\\" else 1
            end += 1
        else:
            if c == "\n":
                line_start = True
            elif not c.isspace():
                line_start = False
            i += 1
            continue
        for k in range(i, end):
            if out[k] != "\n":
                out[k] = " "
        i = end
    return "".join(out)


def float_variant(literal, suffix):
    value = float(literal)
    return (repr(value * 2) if value else "1.0") + suffix


def line_mutants(line, code):
    """(column, old, new, kind) for one line; code is the line with non-code blanked."""
    found = []
    for m in BINARY_OPERATOR.finditer(code):
        op = m.group(1)
        for table, kind in ((RELATIONAL, "relational"), (ARITHMETIC, "arithmetic"),
                            (LOGICAL, "logical")):
            if op in table:
                found.append((m.start(), op, table[op], kind))
    floats = list(FLOAT_LITERAL.finditer(code))
    for m in floats:
        found.append((m.start(), m.group(0), float_variant(m.group(1), m.group(2)), "float"))
    ints_code = code
    for m in floats:
        ints_code = ints_code[:m.start()] + " " * len(m.group(0)) + ints_code[m.end():]
    for m in INT_LITERAL.finditer(ints_code):
        digits, suffix = m.group(1), m.group(2)
        octal = len(digits) > 1 and digits.startswith("0")
        value = int(digits, 8 if octal else 10)
        for new in (value + 1, value - 1):
            if new >= 0:
                text = f"0{new:o}" if octal else str(new)
                found.append((m.start(), m.group(0), text + suffix, "integer"))
    for m in TWO_ARGUMENT_CALL.finditer(code):
        a, b = m.group(1).strip(), m.group(2).strip()
        if a != b and not DECLARATION_LIKE.match(a) and not DECLARATION_LIKE.match(b):
            start = m.start(1) + len(m.group(1)) - len(m.group(1).lstrip())
            old = line[start:m.end(2)]
            found.append((start, old, f"{line[m.start(2):m.end(2)]}, {line[start:m.end(1)]}",
                          "swap"))
    return found


def file_mutants(path, rel):
    text = path.read_text()
    lines, code_lines = text.split("\n"), masked(text).split("\n")
    mutants = []
    for number, (line, code) in enumerate(zip(lines, code_lines), start=1):
        for column, old, new, kind in line_mutants(line, code):
            mutants.append({"file": rel, "line": number, "column": column, "old": old, "new": new,
                            "kind": kind})
        previous = code_lines[number - 2].rstrip() if number > 1 else ";"
        statement = code.strip()
        if (statement.endswith(";") and previous.endswith(STATEMENT_START)
                and statement.count("(") == statement.count(")")
                and not NOT_DROPPABLE.match(code) and not DECLARATION.match(code)
                and not re.search(r"= (default|delete);$", statement)):
            mutants.append({"file": rel, "line": number, "column": code.index(statement[0]),
                            "old": line.strip(), "new": "", "kind": "drop"})
    return mutants


def mutant_id(m):
    return f"{m['file']}:{m['line']}:{m['column']}:{m['kind']}:{m['new']}"


def describe(m):
    if m["kind"] == "drop":
        return f"drop `{m['old']}`"
    return f"{m['kind']}: `{m['old']}` -> `{m['new']}`"


def apply(text, m):
    lines = text.split("\n")
    line = lines[m["line"] - 1]
    if m["kind"] == "drop":
        lines[m["line"] - 1] = ""
    else:
        start = m["column"]
        assert line[start:start + len(m["old"])] == m["old"], m
        lines[m["line"] - 1] = line[:start] + m["new"] + line[start + len(m["old"]):]
    return "\n".join(lines)


def folder_of(rel):
    return rel.split("/")[1]


def quotas(counts, total):
    """Per-folder mutant counts: a floor for every folder, the rest in proportion to sites. A
    folder with fewer sites than its share gets them all and the others share the rest."""
    small = {f: c for f, c in counts.items() if c * len(counts) * 3 <= total}
    share = dict(small)
    counts = {f: c for f, c in counts.items() if f not in small}
    total -= sum(small.values())
    floor = min(total // len(counts), max(1, total // (3 * len(counts))))
    rest = total - floor * len(counts)
    sites = sum(counts.values())
    exact = {f: rest * c / sites for f, c in counts.items()}
    share.update({f: floor + int(v) for f, v in exact.items()})
    by_remainder = sorted(counts, key=lambda f: (-(exact[f] - int(exact[f])), f))
    for f in by_remainder[:total - sum(share[f] for f in counts)]:
        share[f] += 1
    return share


def sync_tree(root, tree):
    """Copies tracked and untracked (not ignored) files; unchanged files keep their times."""
    listed = subprocess.run(["git", "-C", root, "ls-files", "-co", "--exclude-standard", "-z"],
                            check=True, capture_output=True, text=True).stdout.split("\0")
    wanted = {p for p in listed if p and (Path(root) / p).is_file()}
    for path in sorted(tree.rglob("*"), reverse=True):
        rel = path.relative_to(tree).as_posix()
        if path.is_file() and rel not in wanted:
            path.unlink()
    for rel in sorted(wanted):
        source, target = Path(root) / rel, tree / rel
        if not target.exists() or target.read_bytes() != source.read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(source, target)


class Runner:
    def __init__(self, tree, build, args):
        self.tree, self.build, self.jobs = tree, build, args.jobs
        self.test_timeout, self.tests, self.targets = args.test_timeout, args.tests, args.targets
        self.skip = args.skip
        self.files = {}  # gtest name -> test source, learnt from the unmutated run

    def configure(self):
        subprocess.run(["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja",
                        "-DCORVEX_BUILD_BENCH=OFF", "-DCORVEX_WERROR=OFF"], check=True,
                       stdout=subprocess.DEVNULL)
        self.compile(timeout=None, check=True, targets=[])
        listing = subprocess.run(["ctest", "--test-dir", self.build, "--show-only=json-v1"],
                                 check=True, capture_output=True, text=True).stdout
        self.gtest_binaries, self.plain_tests = {}, []
        for test in json.loads(listing)["tests"]:
            if not re.search(self.tests, test["name"]) or (self.skip and
                                                           re.search(self.skip, test["name"])):
                continue
            command = test["command"]
            props = {p["name"]: p["value"] for p in test.get("properties", [])}
            cwd = props.get("WORKING_DIRECTORY", str(self.build))
            if any(a.startswith("--gtest_filter=") for a in command):
                self.gtest_binaries[command[0]] = cwd
            else:
                env = dict(os.environ,
                           **dict(v.split("=", 1) for v in props.get("ENVIRONMENT", [])))
                self.plain_tests.append((test["name"], command, cwd, env))
                scripts = [a for a in command if a.startswith(f"{self.tree}/tests/")]
                self.files[test["name"]] = scripts[0][len(f"{self.tree}/"):] if scripts else "ctest"

    def compile(self, timeout, check=False, targets=None):
        targets = self.targets if targets is None else targets
        target_args = ["--target", *targets] if targets else []
        done = run(["cmake", "--build", self.build, "-j", str(self.jobs), *target_args], timeout,
                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if check and done.returncode:
            sys.exit(done.stdout.decode(errors="replace")[-4000:])
        return done.returncode == 0

    def test_file(self, case):
        """The test's source file relative to the tree (compilers run in the build directory)."""
        path = Path(os.path.normpath(Path(self.build) / case.get("file", "?")))
        return path.relative_to(self.tree).as_posix() if self.tree in path.parents else path.name

    def ctest_failures(self):
        """Failing tests, one process each, or None on a timeout."""
        log = Path(self.build) / "Testing" / "Temporary" / "LastTestsFailed.log"
        log.unlink(missing_ok=True)
        try:
            run(["ctest", "--test-dir", self.build, "-j", str(self.jobs), "--timeout",
                 str(self.test_timeout), *(["-R", self.tests] if self.tests else []),
                 *(["-E", self.skip] if self.skip else [])],
                10 * self.test_timeout,
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        except subprocess.TimeoutExpired:
            return None
        names = [n.split(":", 1)[1] for n in log.read_text().splitlines()] if log.exists() else []
        return [f"{self.files.get(n, 'ctest')}::{n}" for n in names]

    def failing_tests(self):
        """Names of failing tests ("file::Suite.Name" for gtest), or None on a timeout."""
        failing = []
        report = Path(self.build) / "mutant-gtest.json"
        for binary, cwd in sorted(self.gtest_binaries.items()):
            report.unlink(missing_ok=True)
            try:
                done = run([binary, f"--gtest_output=json:{report}"], self.test_timeout,
                           cwd=cwd, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            except subprocess.TimeoutExpired:
                return None
            if not report.exists():  # crashed: ctest runs each test alone and names them
                by_test = self.ctest_failures()
                return by_test if by_test is None or by_test else [f"{binary}::crashed"]
            for suite in json.loads(report.read_text())["testsuites"]:
                for case in suite["testsuite"]:
                    name = f"{suite['name']}.{case['name']}"
                    self.files[name] = self.test_file(case)
                    if case.get("failures") or case.get("result") != "COMPLETED":
                        failing.append(f"{self.files[name]}::{name}")
            if done.returncode and not failing:
                failing.append(f"{Path(binary).name}::exit{done.returncode}")
        for name, command, cwd, env in self.plain_tests:
            try:
                done = run(command, self.test_timeout, cwd=cwd, env=env, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL)
            except subprocess.TimeoutExpired:
                return None
            if done.returncode:
                failing.append(f"{self.files[name]}::{name}")
        return failing


def run_mutant(runner, tree, m, build_timeout):
    path = tree / m["file"]
    original = path.read_text()
    try:
        path.write_text(apply(original, m))
        started = time.monotonic()
        try:
            built = runner.compile(timeout=build_timeout)
        except subprocess.TimeoutExpired:
            built = False
        if not built:
            return {"status": "unbuildable"}
        failing = runner.failing_tests()
        seconds = round(time.monotonic() - started, 1)
        if failing is None:
            return {"status": "caught", "by": ["timeout"], "seconds": seconds}
        return {"status": "caught" if failing else "survived", "by": failing, "seconds": seconds}
    finally:
        path.write_text(original)


def catchers(result):
    return {test.split("::")[0] for test in result.get("by", [])}


def report(results, seed, path, without=frozenset()):
    """Writes the tables; mutants caught only by test files in `without` count as survivors."""
    results = [dict(r, status="survived") if r["status"] == "caught" and not catchers(r) - without
               else r for r in results]
    folders = sorted({folder_of(r["file"]) for r in results})
    title = f", without {', '.join(sorted(without))}" if without else ""
    lines = [f"# Mutation sample, seed {seed}{title}", "",
             "| folder | mutants | caught | survived | caught % | unbuildable drawn |",
             "|---|---:|---:|---:|---:|---:|"]
    for folder in folders + ["all"]:
        rs = [r for r in results if folder in ("all", folder_of(r["file"]))]
        caught = sum(r["status"] == "caught" for r in rs)
        survived = sum(r["status"] == "survived" for r in rs)
        skipped = sum(r["status"] == "unbuildable" for r in rs)
        pct = f"{100 * caught / (caught + survived):.1f}" if caught + survived else "-"
        name = "**all**" if folder == "all" else f"src/{folder}"
        lines.append(f"| {name} | {caught + survived} | {caught} | {survived} | {pct} "
                     f"| {skipped} |")
    lines += ["", "## Surviving mutants", ""]
    for r in results:
        if r["status"] == "survived":
            lines.append(f"- {r['file']}:{r['line']}: {describe(r)}")
    kills, unique = {}, {}
    for r in results:
        if r["status"] != "caught":
            continue
        files = catchers(r) - without
        for f in files:
            kills[f] = kills.get(f, 0) + 1
        if len(files) == 1:
            unique.setdefault(next(iter(files)), []).append(r)
    lines += ["", "## Caught mutants per test file", "",
              "A mutant counts as unique to a file when no other file's tests catch it.", "",
              "| test file | catches | unique |", "|---|---:|---:|"]
    for f in sorted(kills, key=lambda f: (-kills[f], f)):
        lines.append(f"| {f} | {kills[f]} | {len(unique.get(f, []))} |")
    lines += ["", "## Mutants only one test file catches", ""]
    for f, rs in sorted(unique.items()):
        lines += [f"- {f}"] + [f"  - {r['file']}:{r['line']}: {describe(r)}" for r in rs]
    Path(path).write_text("\n".join(lines) + "\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--seed", type=int, default=11)
    parser.add_argument("--count", type=int, default=240, help="built mutants to run")
    parser.add_argument("--work", default="build-mutate", help="work directory (under the root)")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--test-timeout", type=int, default=60, help="per test program (s)")
    parser.add_argument("--tests", default="",
                        help="regex on ctest names: run only those tests (gtest programs whole)")
    parser.add_argument("--skip", default="", help="regex on ctest names: do not run those tests")
    parser.add_argument("--targets", nargs="*", default=[],
                        help="build only these targets per mutant (default: all)")
    parser.add_argument("--list", action="store_true", help="print the drawn order and stop")
    parser.add_argument("--report", action="store_true",
                        help="only rewrite report.md from the last run's results.jsonl")
    parser.add_argument("--without", default="",
                        help="comma-separated test files whose catches the report ignores")
    args = parser.parse_args()
    # A kill from outside unwinds like Ctrl-C, so the mutated file is restored.
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    signal.signal(signal.SIGHUP, signal.default_int_handler)

    root = Path(__file__).resolve().parent.parent
    work = root / args.work
    tree, build = work / "tree", work / "build"
    without = frozenset(f for f in args.without.split(",") if f)
    if args.report:
        results = [json.loads(line) for line in (work / "results.jsonl").open()]
        report(results, args.seed, work / "report.md", without)
        print((work / "report.md").read_text())
        return
    if not args.list:
        tree.mkdir(parents=True, exist_ok=True)
        lock = (work / "lock").open("w")
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            sys.exit(f"mutate: another run is using {work}")
        sync_tree(root, tree)
    source = root if args.list else tree

    sources = sorted(p for p in (source / "src").rglob("*") if p.suffix in (".cc", ".h"))
    by_folder = {}
    for p in sources:
        rel = p.relative_to(source).as_posix()
        by_folder.setdefault(folder_of(rel), []).extend(file_mutants(p, rel))
    share = quotas({f: len(ms) for f, ms in by_folder.items()}, args.count)
    queues = {}
    for folder, ms in sorted(by_folder.items()):
        order = sorted(ms, key=mutant_id)
        random.Random(f"{args.seed}:{folder}").shuffle(order)
        queues[folder] = order
    if args.list:
        for folder, order in queues.items():
            print(f"{folder}: {len(order)} sites, quota {share[folder]}")
            for m in order[:share[folder]]:
                print(f"  {m['file']}:{m['line']}: {describe(m)}")
        return

    runner = Runner(tree, build, args)
    runner.configure()
    if runner.failing_tests():
        sys.exit("mutate: the unmutated tree fails its tests")
    results, built = [], {f: 0 for f in queues}
    out = work / "results.jsonl"
    with out.open("w") as log:
        # Folders take turns, so a run cut short is still spread over all of them.
        while any(built[f] < share[f] and queues[f] for f in queues):
            for folder, order in queues.items():
                if built[folder] >= share[folder] or not order:
                    continue
                m = order.pop(0)
                result = dict(m, **run_mutant(runner, tree, m, build_timeout=900))
                built[folder] += result["status"] != "unbuildable"
                results.append(result)
                log.write(json.dumps(result) + "\n")
                log.flush()
                print(f"[{sum(built.values())}/{args.count}] {result['status']:11} "
                      f"{m['file']}:{m['line']}: {describe(m)}", flush=True)
    runner.compile(timeout=None, targets=[])
    report(results, args.seed, work / "report.md", without)
    print((work / "report.md").read_text())


if __name__ == "__main__":
    try:
        main()
    except KeyboardInterrupt:
        sys.exit("mutate: interrupted (the mutated copy was restored)")
