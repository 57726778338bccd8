#!/usr/bin/env python3
"""scripts/check/mirror finds a test that nothing builds, and asks for no source of a family that is headers only: it runs
in a small tree made for the test.

    mirror_check_test.py REPOSITORY
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

REPOSITORY = Path(sys.argv.pop(1)).resolve()


class MirrorCheck(unittest.TestCase):
    def setUp(self):
        self.root = Path(self.enterContext(tempfile.TemporaryDirectory()))
        for unit in ("guid", "com"):
            self.write(f"src/com/{unit}.cpp")
            self.write(f"tests/com/{unit}_test.cpp")
        self.rules = "kexlib_add_tests(\n  com\n  guid\n  com)  # guid_order_test.cpp\n"
        self.write("tests/com/CMakeLists.txt", self.rules)

    def write(self, name: str, text: str = "") -> None:
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def problems_about(self, what: str) -> list[str]:
        done = subprocess.run([REPOSITORY / "scripts/check/mirror"], cwd=self.root, capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr), (1, ""))  # it misses headers and pages here
        return [line for line in done.stdout.splitlines() if what in line]

    def problems_about_building(self) -> list[str]:
        return self.problems_about("not built")

    def test_what_is_built(self):
        self.assertEqual(self.problems_about_building(), [])

    def test_test_that_is_not_named(self):
        self.write("tests/com/guid_order_test.cpp")
        self.assertEqual(self.problems_about_building(),
                         ["tests/com/guid_order_test.cpp is not built: it is not named in tests/com/CMakeLists.txt"])

    def test_unit_of_the_familys_name(self):
        self.write("tests/com/CMakeLists.txt", self.rules.replace("  com)", ")"))
        self.assertEqual(self.problems_about_building(),
                         ["tests/com/com_test.cpp is not built: it is not named in tests/com/CMakeLists.txt"])

    def test_test_with_a_program_of_its_own(self):
        self.write("tests/com/guid_order_test.cpp")
        self.write("tests/com/CMakeLists.txt", self.rules + "add_executable(guid_order guid_order_test.cpp)\n")
        self.assertEqual(self.problems_about_building(), [])

    def test_folder_without_rules(self):
        for name in ("tests/com/deep/guid_deep_test.cpp", "benchmarks/com/guid_bench.cpp", "tests/driver/a_test.py"):
            self.write(name)
            with self.subTest(name):
                folder = Path(name).parent
                self.assertIn(f"{name} is not built: it is not named in {folder}/CMakeLists.txt",
                              self.problems_about_building())

    def test_family_of_headers(self):
        header = "include/kexlib/testing/watchdog.h"
        self.write(header)
        self.write("include/kexlib/testing.h", "#include <kexlib/testing/watchdog.h>\n")
        self.assertEqual(self.problems_about("testing"),
                         [f"{header} has no test: tests/testing/watchdog[_SUBJECT]_test.cpp"])
        self.write("tests/testing/watchdog_test.cpp")
        self.write("tests/testing/other_test.cpp")
        self.write("tests/testing/CMakeLists.txt", "kexlib_add_tests(testing watchdog other)\n")
        self.assertEqual(self.problems_about("testing"), ["tests/testing/other_test.cpp: there is no source that it is for"])

    def test_unit_without_an_example(self):
        self.write("include/kexlib/com/guid.h")
        problem = ["docs/families/com.md has 0 examples that include guid.h first, not one"]
        example = "```cpp\n#include <kexlib/com/guid.h>\n```\n"
        for page, problems in (("", problem), ("`kexGUID`\n\n    kexGUID id;\n", problem), (example, []),
                               (example + example, [problem[0].replace("0", "2")])):
            with self.subTest(page):
                self.write("docs/families/com.md", page)
                self.assertEqual(self.problems_about("that include"), problems)

    def test_test_of_the_examples(self):
        self.write("tests/com/examples_test.cpp")
        self.assertIn("docs/families/com.md is missing: tests/com/examples_test.cpp runs its examples",
                      self.problems_about("docs/families"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
