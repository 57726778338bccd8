#!/usr/bin/env python3
"""What CMake makes of the project where nothing is compiled: with the real frameworks, with Visual C++, and of bad input.

Visual C++ is a compiler of that name which CMake does not start.

    configure_test.py REPOSITORY
"""

import json
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

REPOSITORY = Path(sys.argv.pop(1)).resolve()

VISUAL_CPP = """
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(CMAKE_CXX_COMPILER {tools}/cl)
set(CMAKE_CXX_COMPILER_ID_RUN TRUE)
set(CMAKE_CXX_COMPILER_ID MSVC)
set(CMAKE_CXX_COMPILER_VERSION 19.42)
set(CMAKE_CXX_COMPILER_FORCED TRUE)
set(CMAKE_CXX20_COMPILE_FEATURES {features})
set(CMAKE_CXX_COMPILE_FEATURES cxx_std_17 {features})
set(CMAKE_SIZEOF_VOID_P {pointer})
set(MSVC_CXX_ARCHITECTURE_ID x64)
set(CMAKE_RC_COMPILER {tools}/rc)
set(CMAKE_LINKER {tools}/link)
set(CMAKE_AR {tools}/lib)
set(CMAKE_MT {tools}/mt)
"""
FRAMEWORKS = ["-DKEXLIB_HAS_ATL_AND_MFC=1", "-DKEXLIB_HAS_WTL=1"]
LEAST = ["-DKEXLIB_VIEWER=OFF", "-DKEXLIB_BUILD_TESTS=OFF", "-DKEXLIB_BUILD_BENCHMARKS=OFF", "-DKEXLIB_BUILD_EXAMPLES=OFF"]


class Configuring(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.build = self.folder / "build"
        self.tools = self.folder / "tools"
        self.tools.mkdir()
        for tool in ("cl", "rc", "link", "lib", "mt", "midl", "node", "npm", "npm.cmd"):
            self.write(f"tools/{tool}", "#!/bin/sh\necho v18.0.0\n").chmod(0o755)
        # CMake takes every build for another system for a cross build. This one is not, and it finds no other tools.
        self.write("as_on_windows.cmake", "set(CMAKE_CROSSCOMPILING FALSE)\n"
                   f"set(CMAKE_PROGRAM_PATH {self.tools})\n"
                   "set(CMAKE_FIND_USE_SYSTEM_ENVIRONMENT_PATH OFF)\nset(CMAKE_FIND_USE_CMAKE_SYSTEM_PATH OFF)\n")
        self.write("gtest/GTestConfig.cmake", "add_library(GTest::gtest INTERFACE IMPORTED)\n")

    def write(self, name: str, text: str) -> Path:
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text)
        return path

    def configure(self, *arguments: str) -> tuple[int, str]:
        """CMake's status, and what it says, each text on one line."""
        done = subprocess.run(["cmake", "-S", REPOSITORY, "-B", self.build, *arguments], capture_output=True, text=True)
        return done.returncode, re.sub(r"\s+", " ", done.stdout + done.stderr)

    def with_visual_cpp(self, *arguments: str, features: str = "cxx_std_20", pointer: int = 8) -> tuple[int, str]:
        toolchain = self.write("visual_cpp.cmake", VISUAL_CPP.format(tools=self.tools, features=features, pointer=pointer))
        return self.configure("--toolchain", str(toolchain), "-DKEXLIB_GOOGLETEST_FOLDER=",
                              f"-DGTest_DIR={self.folder}/gtest", f"-DCMAKE_PROJECT_INCLUDE={self.folder}/as_on_windows.cmake", *arguments)

    def assert_refused(self, done: tuple[int, str], sentence: str) -> None:
        status, said = done
        self.assertNotEqual(status, 0)
        self.assertEqual(said.count("CMake Error"), 1, said)
        self.assertIn(sentence, said)


class WithTheRealFrameworks(Configuring):
    def test_the_cross_build_is_generated_to_the_end(self):
        toolchain = REPOSITORY / "cmake/mingw_w64.cmake"
        status, said = self.configure("-G", "Ninja", "--toolchain", str(toolchain), *FRAMEWORKS, "-DKEXLIB_VIEWER=OFF")
        self.assertEqual(status, 0, said)

    def test_visual_cpp_is_generated_to_the_end(self):
        status, said = self.with_visual_cpp("-G", "Ninja Multi-Config", *FRAMEWORKS)
        self.assertEqual(status, 0, said)
        rules = (self.build / "CMakeFiles/impl-RelWithDebInfo.ninja").read_text()

        # One layout for all configurations.
        for name in ("text_tests.exe", "gallery_texts.dll", "components/digit_control.dll"):
            self.assert_has(rules, f"build bin/{name}[ :]")
        self.assert_has(rules, r"bin/(components/)?RelWithDebInfo/", times=0)

        # The manifest of a program is merged, and the library has a manifest of its own.
        self.assert_has(rules, r"  MANIFESTS = \S*cmake/program\.manifest")
        self.assert_has(rules, r"program\.rc", times=0)
        self.assert_has(rules, r"LINK_FLAGS = .*/MANIFEST:NO", times=1)

        self.assert_has(rules, f"{self.tools}/midl /nologo /env x64")
        self.assert_has(rules, f"{self.tools}/npm.cmd ci")
        self.assert_no_test_is_a_script()

    def assert_has(self, text: str, pattern: str, times: int | None = None) -> None:
        found = len(re.findall(pattern, text))
        self.assertTrue(found == times if times is not None else found, f"{found} times {pattern}")

    def assert_no_test_is_a_script(self) -> None:
        programs = re.findall(r"^\s*add_test\(\S+ \"([^\"]+)\"",
                              "".join(path.read_text() for path in self.build.rglob("CTestTestfile.cmake")), re.MULTILINE)
        self.assertGreater(len(programs), 3)
        for program in programs:
            if Path(program).parent != self.tools and Path(program).exists():
                self.assertNotEqual(Path(program).read_bytes()[:2], b"#!", program)


class Files(Configuring):
    def test_every_preset_can_be_read(self):
        listed = subprocess.run(["cmake", "--list-presets"], cwd=REPOSITORY, capture_output=True, text=True, check=True)
        self.assertIn('"mingw-release"', listed.stdout)
        self.assertNotIn("\"msvc\"", listed.stdout)  # on Windows only
        presets = json.loads((REPOSITORY / "CMakePresets.json").read_text())
        names = {preset["name"] for preset in presets["configurePresets"]}
        self.assertLessEqual({"msvc", "msvc-ninja", "clang-cl"}, names)

    def test_the_port_builds_this_source_tree(self):
        port = REPOSITORY / "packaging/vcpkg/kexlib"
        functions = ("vcpkg_check_linkage", "vcpkg_cmake_configure", "vcpkg_cmake_install", "vcpkg_cmake_config_fixup",
                     "vcpkg_copy_pdbs", "vcpkg_install_copyright")
        stubs = "".join(f'function({name})\nmessage(NOTICE "{name};${{ARGN}}")\nendfunction()\n' for name in functions)
        script = self.write("port.cmake", f"{stubs}set(CURRENT_PACKAGES_DIR {self.folder}/packages)\n"
                                          f"include({port}/portfile.cmake)\n")
        done = subprocess.run(["cmake", "-P", script], capture_output=True, text=True, check=True)
        calls = {line.split(";")[0]: line.split(";")[1:] for line in done.stderr.splitlines()}
        self.assertEqual(tuple(calls), functions)
        arguments = calls["vcpkg_cmake_configure"]
        self.assertEqual(Path(arguments[arguments.index("SOURCE_PATH") + 1]).resolve(), REPOSITORY)
        options = re.findall(r"-D(\w+)", " ".join(arguments))
        known = re.findall(r"option\((\w+)", (REPOSITORY / "CMakeLists.txt").read_text())
        self.assertEqual(sorted(options), sorted(known))
        copyright_files = [Path(name) for name in calls["vcpkg_install_copyright"][1:]]
        self.assertEqual([path.resolve() for path in copyright_files], [REPOSITORY / "LICENSE", REPOSITORY / "NOTICE.md"])
        self.assertTrue(all(path.exists() for path in copyright_files))

        version = re.findall(r"KEXLIB_VERSION_\w+ (\d+)", (REPOSITORY / "include/kexlib/version.h").read_text())
        self.assertEqual(json.loads((port / "vcpkg.json").read_text())["version"], ".".join(version))
        self.assertIn("gtest", json.loads((REPOSITORY / "vcpkg.json").read_text())["dependencies"])


class Installing(Configuring):
    """A package without what is not built; the library itself must be there."""

    def installed(self) -> tuple[int, str]:
        done = subprocess.run(["cmake", "--install", self.build, "--prefix", self.folder / "installed"], capture_output=True,
                              text=True)
        return done.returncode, re.sub(r"\s+", " ", done.stdout + done.stderr)

    def test_what_is_not_built_is_said(self):
        self.write("node", "#!/bin/sh\necho v18.0.0\n").chmod(0o755)
        for viewer, reason in (("ON", "since it is not built: cmake --build {} --target viewer"),
                               ("OFF", "since KEXLIB_VIEWER is off")):
            with self.subTest(viewer):
                shutil.rmtree(self.build, ignore_errors=True)
                status, said = self.configure("-G", "Ninja", "--toolchain", str(REPOSITORY / "cmake/mingw_w64.cmake"), *LEAST,
                                              f"-DKEXLIB_VIEWER={viewer}", f"-DNODE={self.folder}/node", "-DNPM=npm")
                self.assertEqual(status, 0, said)
                self.assert_refused(self.installed(), f"kexlib: there is nothing to install, since it is not built: cmake "
                                                      f"--build {self.build} --target kexlib")
                self.assertFalse((self.folder / "installed").exists())
                for name in ("bin/kexlib.dll", "bin/kexframework.dll", "src/kexlib.dll.a", "framework/kexframework.dll.a"):
                    (self.build / name).touch()
                status, said = self.installed()
                self.assertEqual(status, 0, said)
                self.assertIn("kexlib: the profile viewer is left out, " + reason.format(self.build), said)
                self.assertTrue((self.folder / "installed/bin/kexlib.dll").exists())
                self.assertFalse((self.folder / "installed/share/kexlib/profile_viewer.html").exists())
                shutil.rmtree(self.folder / "installed")


class BadInput(Configuring):
    def test_wtl_is_missing(self):
        done = self.with_visual_cpp("-G", "Ninja", "-DKEXLIB_HAS_ATL_AND_MFC=1", "-DKEXLIB_HAS_WTL=")
        self.assert_refused(done, "get WTL 9.1 or 10 from https://wtl.sourceforge.io")
        self.assertIn("-DKEXLIB_WTL_INCLUDE_DIR=FOLDER", done[1])
        self.assertFalse((self.build / "framework").exists())

    def test_the_folder_with_wtl_is_used(self):
        status, said = self.with_visual_cpp("-G", "Ninja", *FRAMEWORKS, *LEAST, "-DKEXLIB_WTL_INCLUDE_DIR=/wtl/Include")
        self.assertEqual(status, 0, said)
        self.assertIn("/wtl/Include", (self.build / "build.ninja").read_text())

    def test_atl_and_mfc_are_missing(self):
        done = self.with_visual_cpp("-G", "Ninja", "-DKEXLIB_HAS_ATL_AND_MFC=", "-DKEXLIB_HAS_WTL=")
        self.assert_refused(done, "add the components \"C++ ATL\" and \"C++ MFC\"")

    def test_wtl_without_atl_and_mfc(self):
        done = self.configure("-G", "Ninja", "--toolchain", str(REPOSITORY / "cmake/mingw_w64.cmake"), *LEAST,
                              "-DKEXLIB_WTL_INCLUDE_DIR=/wtl/Include")
        self.assert_refused(done, "A real WTL does not go with kexlib's subset of ATL and MFC")

    def test_googletest_is_missing(self):
        done = self.with_visual_cpp("-G", "Ninja", *FRAMEWORKS, "-DKEXLIB_VIEWER=OFF", "-DGTest_DIR=",
                                    "-DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON")
        self.assert_refused(done, "-DKEXLIB_GOOGLETEST_FOLDER=FOLDER")

    def test_googletest_of_a_folder(self):
        self.write("googletest/CMakeLists.txt", "add_library(GTest::gtest INTERFACE IMPORTED GLOBAL)\n")
        status, said = self.with_visual_cpp("-G", "Ninja", *FRAMEWORKS, "-DKEXLIB_VIEWER=OFF", "-DGTest_DIR=",
                                            f"-DKEXLIB_GOOGLETEST_FOLDER={self.folder}/googletest")
        self.assertEqual(status, 0, said)

    def test_midl_is_missing(self):
        (self.tools / "midl").unlink()
        done = self.with_visual_cpp("-G", "Ninja", *FRAMEWORKS, "-DKEXLIB_VIEWER=OFF")
        self.assert_refused(done, "need midl, which the Windows SDK has")

    def test_a_viewer_without_its_tools(self):
        sentence = "The profile viewer needs Node 18 or later with npm: install them, or configure with -DKEXLIB_VIEWER=OFF"
        (self.tools / "npm.cmd").unlink()
        (self.tools / "npm").unlink()
        without_npm = self.with_visual_cpp("-G", "Ninja", *FRAMEWORKS, *LEAST[1:])
        self.assert_refused(without_npm, sentence)
        for tool in ("node", "npm.cmd"):
            self.write(f"tools/{tool}", "#!/bin/sh\necho v16.20.2\n").chmod(0o755)
        self.assert_refused(self.with_visual_cpp("-G", "Ninja", *FRAMEWORKS, *LEAST[1:]), sentence)
        status, said = self.with_visual_cpp("-G", "Ninja", *FRAMEWORKS, *LEAST)
        self.assertEqual(status, 0, said)

    def test_unicode(self):
        for define in ("-DCMAKE_CXX_FLAGS=-DUNICODE", "-DCMAKE_CXX_FLAGS=/D _UNICODE /W3"):
            with self.subTest(define):
                done = self.with_visual_cpp("-G", "Ninja", *FRAMEWORKS, *LEAST, define)
                self.assert_refused(done, "The texts of kexlib are narrow: build without UNICODE and _UNICODE.")

    def test_a_32_bit_target(self):
        done = self.with_visual_cpp("-G", "Ninja", *FRAMEWORKS, *LEAST, pointer=4)
        self.assert_refused(done, "kexlib is for 64-bit Windows: choose the platform x64")

    def test_an_old_compiler(self):
        done = self.with_visual_cpp("-G", "Ninja", *FRAMEWORKS, *LEAST, features="")
        self.assert_refused(done, "kexlib needs a compiler for C++20, which MSVC 19.42 is not.")


if __name__ == "__main__":
    unittest.main()
