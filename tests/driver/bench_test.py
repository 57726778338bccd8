#!/usr/bin/env python3
"""scripts/bench: what it repeats, compares, leaves out and publishes. It runs in a small checkout made for the test, where
the benchmark programs give canned results.

    bench_test.py REPOSITORY
"""

import importlib.machinery
import importlib.util
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

REPOSITORY = Path(sys.argv.pop(1)).resolve()

# Stands for a Wine session: the program is a file with one list of lines for each of its runs.
RUN_CANNED = """#!/usr/bin/env python3
import json, sys
from pathlib import Path
program, arguments = Path(sys.argv[1]), sys.argv[2:]
results = Path(arguments[1].removeprefix("Z:").replace("\\\\", "/"))
with open(program.with_suffix(".calls"), "a") as calls:
    calls.write(" ".join(arguments[2:]) + "\\n")
runs = json.loads(program.read_text())
lines = runs.pop(0) if runs else sys.exit(3)
program.write_text(json.dumps(runs))
results.write_text("".join(json.dumps(line) + "\\n" for line in lines))
"""


def script_as_module():
    loader = importlib.machinery.SourceFileLoader("bench", str(REPOSITORY / "scripts/bench"))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("bench", loader))
    sys.dont_write_bytecode = True
    loader.exec_module(module)
    return module


def line(figure: float, name: str = "a pair", spread: float = 0.01, at: str = "most", mark: float = 1.1) -> dict:
    return {"benchmark": name + "s", "name": name, "compared": "ours, of the time of theirs", "reason": "people write theirs",
            "at": at, "mark": mark, "figure": figure, "low": figure - spread, "high": figure + spread, "rounds": 15,
            "nanoseconds": [100 * figure, 100]}


class Bench(unittest.TestCase):
    def setUp(self):
        self.root = Path(self.enterContext(tempfile.TemporaryDirectory()))
        for name in ("scripts/bench", "docs/performance.md", "include/kexlib/version.h"):
            (self.root / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(REPOSITORY / name, self.root / name)
        (self.root / "docs/images").mkdir()
        (self.root / "scripts/wine-run").write_text(RUN_CANNED)
        (self.root / "scripts/wine-run").chmod(0o755)
        (self.root / "bin").mkdir()
        for tool in ("wine", "x86_64-w64-mingw32-g++-posix"):  # the real ones take long to say their versions
            self.fake(tool, f"echo {tool}-5")

    def fake(self, program: str, script: str) -> None:
        """Puts a program of that name before the real one."""
        path = self.root / "bin" / program
        path.write_text(f"#!/bin/sh\n{script}\n")
        path.chmod(0o755)

    def can(self, family: str, *runs: list[dict]) -> None:
        (self.root / f"bin/{family}_bench.exe").write_text(json.dumps(runs))
        (self.root / f"bin/{family}_bench.calls").unlink(missing_ok=True)

    def calls(self, family: str) -> list[str]:
        return (self.root / f"bin/{family}_bench.calls").read_text().splitlines()

    def bench(self, *arguments: str) -> subprocess.CompletedProcess:
        environment = os.environ | {"PATH": f"{self.root / 'bin'}:{os.environ['PATH']}"}
        return subprocess.run([self.root / "scripts/bench", self.root, *arguments], cwd=self.root, env=environment,
                              capture_output=True, text=True)

    def old_results(self, *lines: dict) -> Path:
        """Results of this machine, in a file of their own."""
        self.can("a", list(lines))
        self.bench("a")
        old = self.root / "old.json"
        shutil.copy(self.root / "build/bench/results.json", old)
        return old

    def compare(self, old: Path) -> tuple[int, list[str]]:
        done = self.bench("a", "--compare", str(old))
        self.assertEqual(done.stderr, "")
        return done.returncode, done.stdout.splitlines()

    def test_a_mark_is_missed_only_by_three_runs(self):
        self.can("a", [line(1.2), line(1.0, "other")], [line(1.1)])
        self.assertEqual(self.bench("a").returncode, 0)
        self.assertEqual(self.calls("a"), ["", "a pairs"])
        self.can("a", [line(1.2)], [line(1.12)], [line(1.3)])
        done = self.bench("a")
        self.assertEqual(done.returncode, 1)
        self.assertIn("bench: MISSED: a, a pair: at most 1.1, and the runs gave 1.2, 1.12, 1.3\n", done.stdout)
        self.can("a", *[[line(2.9, at="least", mark=3)]] * 3)
        self.assertEqual(self.bench("a").returncode, 1)

    def test_all_families_run_whatever_one_of_them_does(self):
        self.can("a", *[[line(1.2)]] * 3)
        self.can("b")  # ends with status 3
        self.can("c", [line(1.0)])
        done = self.bench("a", "b", "c")
        self.assertEqual((done.returncode, done.stdout.splitlines()[-1]), (1, "bench: FAILED: b (3)"))
        results = json.loads((self.root / "build/bench/results.json").read_text())
        self.assertEqual([one["family"] for one in results["lines"]], ["a", "c"])

    def test_what_cannot_run_is_left_out_with_a_warning(self):
        self.can("a", [line(1.0), {"benchmark": "peers", "left_out": "a peer", "why": "it is not installed"}])
        done = self.bench("a")
        self.assertEqual((done.returncode, done.stdout.splitlines()[-1]),
                         (0, "bench: WARNING: left out: a, a peer: it is not installed"))

    def test_a_slowdown_beyond_the_noise_of_three_runs(self):
        old = self.old_results(line(0.8), line(5, "speed", 0.1, "least", 3), line(0.9, "noisy", 0.2))
        slow = [line(0.9), line(4, "speed", 0.1, "least", 3), line(1.05, "noisy", 0.2)]
        self.can("a", slow, slow, slow)
        status, said = self.compare(old)
        self.assertEqual(self.calls("a"), ["", "a pairs speeds", "a pairs speeds"])
        self.assertEqual((status, said[-4:]), (1, [
            "bench: SLOWER: a, a pair: 0.8 before, 0.9 now, 80.0 ns before and 90.0 ns now",
            "bench: SLOWER: a, speed: 5 before, 4 now, 100.0 ns before and 100.0 ns now",
            f"bench: 3 lines compared with {old}: 2 slower beyond the noise; 0 are new",
            "bench: 3 lines, 0 missed; build/bench/results.json has them"]))
        self.can("a", slow, [line(0.81), line(5, "speed", 0.1, "least", 3)])
        self.assertEqual(self.compare(old)[0], 0)

    def test_lines_that_are_on_one_side_only(self):
        old = self.old_results(line(0.8), line(0.8, "gone"))
        self.can("a", [line(0.8), line(9, "new", mark=10)])
        status, said = self.compare(old)
        self.assertEqual((status, said[-3:-1]), (0, [
            f"bench: a, gone: is in {old} only",
            f"bench: 1 lines compared with {old}: 0 slower beyond the noise; 1 are new"]))

    def test_results_of_another_machine_and_version(self):
        old = self.old_results(line(0.8))
        results = json.loads(old.read_text())
        results["machine"]["processor"] = "another"
        results["versions"]["wine"] = "wine-1"
        old.write_text(json.dumps(results))
        self.can("a", *[[line(0.9)]] * 3)
        status, said = self.compare(old)
        self.assertEqual(status, 1)
        differences = [one for one in said if f"{old} is of another machine or version, only ratios are compared" in one]
        self.assertEqual(len(differences), 2)
        self.assertIn("'processor': 'another'", differences[0])
        self.assertIn("wine wine-1 there", differences[1])
        self.assertIn("bench: SLOWER: a, a pair: 0.8 before, 0.9 now", said)

    def test_old_results_that_cannot_be_read(self):
        broken = self.root / "broken.json"
        for text in ("{", "[1]", '{"lines": []}', '{"lines": [{"family": "a", "name": "b", "at": "most", "runs": []}]}'):
            with self.subTest(text):
                broken.write_text(text)
                done = self.bench("--known", "--compare", str(broken))
                self.assertEqual((done.returncode, done.stdout, done.stderr.count("\n")), (2, "", 1), done.stderr)
                self.assertIn(f"kex: '{broken}' has no results of ./kex bench", done.stderr)
        done = self.bench("--known", "--compare", "none.json")
        self.assertEqual((done.returncode, done.stderr), (2, "kex: there is no file 'none.json' to compare with.\n"))

    def test_arguments_that_make_no_sense(self):
        for arguments, sentence in ((("--dance",), "unrecognized arguments: --dance"),
                                    (("--compare",), "--compare: expected one argument"),
                                    (("--publish", "a"), "'bench --publish' takes no family"),
                                    (("growth", "viewer"), "'bench growth' has no curves of the viewer"),
                                    (("growth", "--compare", "x"), "'bench --compare' compares the table")):
            with self.subTest(arguments):
                done = self.bench("--known", *arguments)
                self.assertEqual((done.returncode, done.stdout, done.stderr.count("\n")), (2, "", 1))
                self.assertIn(sentence, done.stderr)
        done = self.bench("--known", "a", "viewer")
        self.assertEqual((done.returncode, done.stdout), (0, "a\nviewer\n"))

    def test_the_page_is_written_only_when_asked_for(self):
        page = self.root / "docs/performance.md"
        before = page.read_text()
        self.can("a", [line(1.0)])
        self.bench("a")
        self.assertEqual(page.read_text(), before)

    def test_published_table_replaces_the_one_before(self):
        self.fake("chromium", ":")
        shown = {"name": "first picture", "shown": "1 s", "promise": "at most 5 s", "kept": True}
        self.fake("npm", f"echo '{json.dumps(shown)}' >\"$KEX_BENCH_RESULTS\"")
        page = self.root / "docs/performance.md"
        for figure in (7777.7, 1.05):
            better = line(figure, "a triple") | {"wanted": "1. It does the same"}
            self.can("a", *[[line(figure), better]] * 3)
            self.bench("--publish")
        text = page.read_text()
        row = "| a pair | ours, of the time of theirs; people write theirs | 1.05 | 1.04 to 1.06 | at most 1.1 |  |"
        self.assertEqual((text.count("### a\n"), text.count(row), text.count("7,778")), (1, 1, 0))
        self.assertIn("people write theirs. Wanted: 1. It does the same | 1.05 |", text)
        self.assertIn("## How it grows", text)
        self.assertIn("| first picture | 1 s | at most 5 s |  |", text)

    def test_growth_has_its_exponents_and_pictures(self):
        self.fake("gnuplot", "echo '<svg/>  ' >\"$(sed -n \"s/^set output '\\(.*\\)'/\\1/p\")\"")
        axes = {"x": "names", "y": "bytes", "expected": 0, "low": 1, "high": 9}

        def points(name: str, power: float, explained: str) -> list[dict]:
            return [axes | {"name": name, "explained": explained, "size": size, "figure": 5 + size**power}
                    for size in (1, 10, 1000, 10000, 100000)]

        self.can("a", points("flat", 0, "") + points("steep", 1, "it is a list"))
        done = self.bench("growth", "--publish")
        self.assertEqual((done.returncode, done.stdout.splitlines()), (0, [
            "bench: a, flat: exponent 0.00, its work's own 0",
            "bench: a, steep: exponent 1.00, its work's own 0, ABOVE ITS OWN: it is a list"]), done.stderr)
        self.assertEqual((self.root / "docs/images/growth_a_names_bytes.svg").read_text(), "<svg/>\n")
        text = (self.root / "docs/performance.md").read_text()
        self.assertIn("![bytes by names](images/growth_a_names_bytes.svg)", text)
        self.assertIn("| steep | 1.00 | 0 | it is a list |", text)
        self.can("a", points("steep", 1, ""))
        done = self.bench("growth")
        self.assertEqual(done.returncode, 1)
        self.assertIn("ABOVE ITS OWN: nothing explains it", done.stdout)

    def test_the_folders_of_the_growth_curves(self):
        script = script_as_module()
        script.make_trees(self.root / "trees", (100, 1000))
        levels, files = {}, {}
        for place, _, names in os.walk(self.root / "trees"):
            tree = Path(place).relative_to(self.root / "trees").parts[:1]
            levels[tree] = levels.get(tree, 0) + 1
            files[tree] = files.get(tree, 0) + len(names)
        del levels[()], files[()]
        self.assertEqual(levels, {("flat_100",): 1, ("deep_100",): 10, ("flat_1000",): 1, ("deep_1000",): 50})
        self.assertEqual(files, {("flat_100",): 100, ("deep_100",): 100, ("flat_1000",): 1000, ("deep_1000",): 1000})

    def test_a_curve_of_one_size_has_no_slope(self):
        self.assertEqual(script_as_module().exponent([{"size": 100, "figure": 7}]), 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
