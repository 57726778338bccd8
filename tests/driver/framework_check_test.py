#!/usr/bin/env python3
"""scripts/check/framework finds what has no user, and nothing else: it runs on a small framework made for the test.

    framework_check_test.py REPOSITORY
"""

import json
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

REPOSITORY = Path(sys.argv.pop(1)).resolve()

HEADER = """\
#ifndef FRAMEWORK_AFX_H
#define FRAMEWORK_AFX_H
class CString {
 public:
  CString(const char*) {}
  CString(const CString&) = default;
  ~CString() {}
  operator const char*() const { return ""; }
  int GetLength() const { return length; }
  int Find(char) const { return 0; }
  int Find(const char*) const { return 0; }
 private:
  int length = 0;
};
class CFile {
 public:
  enum { read, write };
  virtual ~CFile() = default;
  virtual void Close() {}
  int Read() { return read; }
};
class CMemFile : public CFile {
 public:
  void Close() override {}
};
template <class T>
class CDialogImpl {
 public:
  int DoModal() { return static_cast<T*>(this)->OnInit() + from_the_pattern(); }
  int OnInit() { return 0; }
 private:
  int from_the_pattern() { return 1; }
};
#define DECLARE_COUNT() static int Count() { return 0; }
void AfxInit();
#endif
"""

SOURCE = """\
#include <afx.h>
static int from_the_source() { return CFile().Read(); }
void AfxInit() { from_the_source(); }
"""

USER = """\
#include <afx.h>
class Dialog : public CDialogImpl<Dialog> { public: int OnInit() { return 2; } };
class Counted { public: DECLARE_COUNT() };
int main() {
  CString text("x");
  const char* narrow = text;
  CMemFile file;
  CFile* base = &file;
  base->Close();
  AfxInit();
  return Dialog().DoModal() + text.GetLength() + text.Find('x') + Counted::Count() + narrow[0];
}
"""

README = "".join(f"| `{name}` | afx.h | A class. |\n" for name in ("CString", "CFile", "CMemFile", "CDialogImpl"))


class FrameworkCheck(unittest.TestCase):
    def check(self, header: str = HEADER, user: str = USER, readme: str = README, own_test: str = "") -> list[str]:
        with tempfile.TemporaryDirectory() as folder:
            tree = Path(folder).resolve()
            files = {"framework/include/afx.h": header, "framework/src/afx.cpp": SOURCE, "framework/README.md": readme,
                     "src/user.cpp": user, "tests/framework/afx_test.cpp": "#include <afx.h>\n" + own_test}
            for name, text in files.items():
                (tree / name).parent.mkdir(parents=True, exist_ok=True)
                (tree / name).write_text(text)
            commands = [{"directory": str(tree), "file": str(tree / name),
                         "command": f"g++ -std=c++20 -I{tree}/framework/include -o x.o -c {tree}/{name}"}
                        for name in files if name.endswith(".cpp")]
            build = tree / "build/mingw-release"
            build.mkdir(parents=True)
            (build / "compile_commands.json").write_text(json.dumps(commands))
            done = subprocess.run([REPOSITORY / "scripts/check/framework"], cwd=tree, capture_output=True, text=True)
            self.assertEqual(done.stderr, "")
            self.assertEqual(done.returncode, 1 if done.stdout else 0)
            return [line.split(": ")[-1] for line in done.stdout.splitlines()]

    def with_line(self, after: str, line: str) -> str:
        self.assertIn(after, HEADER)
        return HEADER.replace(after, f"{after}\n{line}", 1)

    def test_everything_in_use_passes(self):
        self.assertEqual(self.check(), [])

    def test_a_member_that_has_only_its_name_in_common_with_one_in_use_is_found(self):
        header = self.with_line("  int Read() { return read; }", "  int GetLength() { return 0; }")
        self.assertEqual(self.check(header), ["CFile::GetLength has no user"])

    def test_the_frameworks_own_tests_are_no_users(self):
        header = self.with_line("  int Read() { return read; }", "  int GetLength() { return 0; }")
        self.assertEqual(self.check(header, own_test="int test() { return CFile().GetLength(); }\n"),
                         ["CFile::GetLength has no user"])

    def test_what_only_an_unused_member_refers_to_is_found_too(self):
        header = self.with_line("  int Read() { return read; }", "  int a() { return b(); }\n  int b() { return a(); }")
        self.assertEqual(self.check(header), ["CFile::a has no user", "CFile::b has no user"])

    def test_a_template_without_instantiation_is_found(self):
        header = self.with_line("  int OnInit() { return 0; }", "  template <class Q> int Query(Q q) { return q.GetLength(); }")
        self.assertEqual(self.check(header), ["CDialogImpl::Query has no user"])

    def test_an_unused_virtual_function_is_found_with_its_override(self):
        header = self.with_line("  virtual void Close() {}", "  virtual void Flush() {}")
        header = header.replace("  void Close() override {}", "  void Close() override {}\n  void Flush() override {}")
        self.assertEqual(self.check(header), ["CFile::Flush has no user", "CMemFile::Flush has no user"])

    def test_unused_operators_functions_constants_macros_and_classes_are_found(self):
        header = self.with_line("  int Read() { return read; }",
                                "  operator int() const { return 0; }\n  bool operator!() const { return false; }")
        header = header.replace("void AfxInit();", "void AfxInit();\ninline int AfxNothing() { return 0; }\n"
                                "constexpr int afxNothing = 0;\n#define AFX_NOTHING 0\nclass CNothing { int m; };")
        self.assertEqual(sorted(self.check(header, readme=README + "| `CNothing` | afx.h | Nothing. |\n")),
                         ["AfxNothing has no user", "CFile::operator has no user", "CFile::operator! has no user",
                          "CNothing has no user", "afxNothing has no user", "the macro AFX_NOTHING has no user"])

    def test_the_readme_lists_each_class_and_no_other(self):
        readme = README.replace("CMemFile", "CNobody")
        self.assertEqual(self.check(readme=readme), ["framework/README.md has no line for CMemFile",
                                                     "framework/README.md lists CNobody, which is not there"])

    def test_a_source_that_clang_refuses_fails_the_check(self):
        with self.assertRaisesRegex(AssertionError, "src/user.cpp cannot be examined:"):
            self.check(user=USER + "#include <missing.h>\n")


unittest.main()
