#!/usr/bin/env python3
"""What the real frameworks refuse is refused here: each mistake is planted into a small source.

    strict_test.py REPOSITORY BUILD
"""

import concurrent.futures
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

REPOSITORY = Path(sys.argv.pop(1)).resolve()
BUILD = Path(sys.argv.pop(1)).resolve()
FLAGS = ["-std=c++20", "-D_WIN32_WINNT=0x0A00", *(f"-I{REPOSITORY / folder}" for folder in ("include", "framework/include"))]


def compiled(*headers: str, text: str = "", arguments: tuple[str, ...] = ("-fsyntax-only",)) -> subprocess.CompletedProcess:
    source = "".join(f"#include <{header}>\n" for header in headers) + text
    return subprocess.run(["x86_64-w64-mingw32-g++-posix", *FLAGS, *arguments, "-x", "c++", "-"], input=source,
                          capture_output=True, text=True)


class Order(unittest.TestCase):
    def refuses(self, sentence: str, *headers: str, arguments: tuple[str, ...] = ()) -> None:
        done = compiled(*headers, arguments=("-fsyntax-only", *arguments))
        self.assertNotEqual(done.returncode, 0, headers)
        self.assertIn(sentence, done.stderr)

    def accepts(self, *headers: str) -> None:
        self.assertEqual(compiled(*headers).stderr, "")

    def test_mfc_comes_before_windows_and_before_atl(self):
        self.refuses("MFC's headers include windows.h themselves", "windows.h", "afxwin.h")
        self.refuses("MFC's headers include windows.h themselves", "atlbase.h", "afx.h")
        self.accepts("afxwin.h", "windows.h", "atlbase.h")

    def test_a_header_of_kexlib_that_needs_mfc_says_so(self):
        self.refuses("kexlib needs MFC, which must come before windows.h", "windows.h", "kexlib/text/tip_name.h")
        self.accepts("afxwin.h", "windows.h", "kexlib/text/tip_name.h")

    def test_headers_of_kexlib_may_come_in_any_order(self):
        self.accepts("kexlib/messageloop/message_wait.h", "kexlib/text/tip_name.h")
        self.accepts("kexlib/controls/button_menu.h", "kexlib/imaging/buffer.h")

    def test_those_without_strings_need_no_mfc(self):
        self.accepts("windows.h", "kexlib/messageloop/message_wait.h")
        self.accepts("atlbase.h", "kexlib/controls/button_menu.h")

    def test_wtl_wants_its_headers_in_order(self):
        self.refuses("atlapp.h requires atlbase.h", "atlapp.h")
        self.refuses("atlctrls.h requires atlapp.h", "atlbase.h", "atlctrls.h")
        self.refuses("atlgdi.h requires atlapp.h", "atlbase.h", "atlgdi.h")
        self.refuses("atldlgs.h requires atlapp.h", "atlbase.h", "atldlgs.h")
        self.refuses("atlmisc.h requires atlapp.h", "atlbase.h", "atlmisc.h")
        self.refuses("atlctrlx.h requires atlctrls.h", "atlbase.h", "atlapp.h", "atlctrlx.h")
        self.accepts("atlbase.h", "atlapp.h", "atlctrls.h", "atlctrlx.h", "atlmisc.h", "atldlgs.h")

    def test_wtl_wants_all_of_atl(self):
        for missing in ("_ATL_NO_COMMODULE", "_ATL_MIN_CRT", "_ATL_NO_MSIMG"):
            self.refuses("WTL needs all of ATL", "atlbase.h", "atlapp.h", arguments=(f"-D{missing}",))
        self.refuses("WTL needs WINVER and _WIN32_WINNT", "atlbase.h", "atlapp.h", arguments=("-DWINVER=0x0500",))

    def test_the_header_for_extension_dlls_wants_one(self):
        self.refuses("afxdllx.h is for extension DLLs", "afxdllx.h")
        self.assertEqual(compiled("afxdllx.h", arguments=("-fsyntax-only", "-D_AFXEXT")).stderr, "")


class Versions(unittest.TestCase):
    """WTL 9.1 (_WTL_VER=0x0910) beside 10, which the build has."""

    def compiles(self, arguments: str, *headers: str, text: str) -> None:
        self.assertEqual(compiled(*headers, text=text, arguments=("-fsyntax-only", *arguments.split())).stderr, "", arguments)

    def test_geometry_has_its_name_in_both(self):
        for version in ("0x1000", "0x0910"):
            self.compiles(f"-D_WTL_VER={version}", "kexlib/imaging/dib.h",
                          text="WTL::CSize size; WTL::CPoint point; WTL::CRect rect;\n")

    def test_a_switch_of_version_10_keeps_the_answers_of_pages(self):
        headers = ("atlbase.h", "atlapp.h", "atldlgs.h")
        answers = "static_assert(std::is_same_v<decltype(CPropertyPage<1>().OnWizardFinish()), %s>);\n"
        self.compiles("-D_WTL_VER=0x1000", *headers, text=answers % "INT_PTR")
        self.compiles("-D_WTL_FORCE_OLD_PAGE_NOTIFY_HANDLERS", *headers, text=answers % "BOOL")
        self.compiles("-D_WTL_VER=0x0910", *headers, text=answers % "BOOL")

    def test_what_differs_compiles_in_both(self):
        """The sources that use pages or geometry, in the version that the build does not have. framework_wtl_9_1_tests has
        the framework's own tests of them."""
        differs = re.compile(r"\b(CSize|CPoint|CRect|CPropertyPage\w*|CPropertySheet\w*)\b")
        units = [entry for entry in json.loads((BUILD / "compile_commands.json").read_text())
                 if entry["file"].endswith(".cpp") and "tests/framework/" not in entry["file"]
                 and differs.search(Path(entry["file"]).read_text())]
        names = {str(Path(unit["file"]).relative_to(REPOSITORY)) for unit in units}
        self.assertLessEqual({"src/dialogs/wizard_dialog.cpp", "src/imaging/dib.cpp", "tests/imaging/dib_test.cpp",
                              "examples/gallery/pages/wizard_dialog_page.cpp"}, names)

        def faults(unit: dict) -> str:
            words = [word for word in shlex.split(unit["command"]) if not word.endswith("ccache")]
            words[words.index("-o"):words.index("-o") + 2] = ["-fsyntax-only", "-U_WTL_VER", "-D_WTL_VER=0x0910"]
            return subprocess.run(words, cwd=unit["directory"], capture_output=True, text=True).stderr

        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            self.assertEqual("".join(pool.map(faults, units)), "")


class Check(unittest.TestCase):
    def check(self, *headers: str) -> subprocess.CompletedProcess:
        with tempfile.TemporaryDirectory() as folder:
            source = compiled(*headers, text="CString planted() { return CString(\"a\"); }\n",
                              arguments=("-c", "-o", f"{folder}/planted.obj"))
            self.assertEqual(source.stderr, "")
            return subprocess.run([REPOSITORY / "scripts/check/strict", f"{folder}/planted.obj"], capture_output=True, text=True)

    def test_finds_a_string_without_mfc(self):
        done = self.check("atlstr.h")
        self.assertEqual(done.returncode, 1)
        self.assertIn("planted.obj: is built without MFC", done.stdout)

    def test_accepts_one_with_mfc(self):
        self.assertEqual(self.check("afx.h").returncode, 0)


unittest.main(verbosity=2)
