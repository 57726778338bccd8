#!/usr/bin/env python3
"""What ./kex coverage says of blocks that no test runs, and of the table of reasons.

The argument is the repository's root. The reader of the counters is a stand-in, which reports what the test wants.
"""

import gzip
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(sys.argv[1])
COUNTS = "x86_64-w64-mingw32-gcov-posix"
HEADING = "## Lines that no test runs\n\n| source | first line | why |\n|---|---|---|\n"


class Coverage(unittest.TestCase):
    def setUp(self):
        self.checkout = Path(self.enterContext(tempfile.TemporaryDirectory()))
        for folder in ("scripts", "docs", "src/text", "build/src", "bin"):
            (self.checkout / folder).mkdir(parents=True)
        shutil.copy(ROOT / "scripts/coverage", self.checkout / "scripts")
        (self.checkout / "build/src/unit.gcno").touch()
        reader = self.checkout / "bin" / COUNTS
        reader.write_text(f"#!/bin/sh\ncp '{self.checkout}/unit.gcov.json.gz' .\n")
        reader.chmod(0o755)

    def coverage(self, blocks: int, rows: str) -> tuple[int, list[str]]:
        """The status and the complaints where so many blocks "give_up();" of a source are not run, and enough others are."""
        lines = ["run();", "give_up();"] * blocks + ["run();"] * 100
        source = self.checkout / "src/text/unit.cpp"
        source.write_text("\n".join(lines))
        counts = [{"line_number": number, "count": int(line == "run();")} for number, line in enumerate(lines, 1)]
        report = {"files": [{"file": str(source), "lines": counts}]}
        (self.checkout / "unit.gcov.json.gz").write_bytes(gzip.compress(json.dumps(report).encode()))
        (self.checkout / "docs/reliability.md").write_text(HEADING + rows + "\n## Next\n")
        environment = os.environ | {"PATH": f"{self.checkout}/bin:{os.environ['PATH']}"}
        done = subprocess.run([self.checkout / "scripts/coverage", "build"], cwd=self.checkout, env=environment,
                              capture_output=True, text=True)
        self.assertEqual(done.stderr, "")
        return done.returncode, done.stdout.split("in all\n")[1].splitlines()

    def test_a_block_has_a_row(self):
        self.assertEqual(self.coverage(1, "| text/unit.cpp | `give_up();` | never |\n"), (0, []))
        self.assertEqual(self.coverage(1, ""), (1, [
            "not run, and docs/reliability.md does not say why: text/unit.cpp:2: give_up();"]))

    def test_a_row_has_a_block(self):
        row = "| text/unit.cpp | `gone();` | {} |\n"
        self.assertEqual(self.coverage(0, row.format("never")), (1, [
            "docs/reliability.md says why this is not run, and it is, or is not there: text/unit.cpp: gone();"]))
        self.assertEqual(self.coverage(0, row.format("sometimes: two threads")), (0, []))

    def test_a_row_of_one_block_is_not_enough_for_two_that_begin_alike(self):
        self.assertEqual(self.coverage(2, "| text/unit.cpp | `give_up();` | never |\n"), (1, [
            "not run, and docs/reliability.md does not say why for more than 1 of 2 blocks: "
            "text/unit.cpp:2, text/unit.cpp:4: give_up();"]))

    def test_a_row_says_how_many_blocks_begin_alike(self):
        row = "| text/unit.cpp | `give_up();` (2 times) | {} |\n"
        self.assertEqual(self.coverage(2, row.format("never")), (0, []))
        self.assertEqual(self.coverage(1, row.format("never")), (1, [
            "docs/reliability.md says why this is not run, and it is, or is not there: text/unit.cpp: give_up();"]))
        self.assertEqual(self.coverage(1, row.format("sometimes: two threads")), (0, []))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
