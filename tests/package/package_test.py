#!/usr/bin/env python3
"""The package as its users have it: installed into an empty folder, with programs of somebody else's built on it and run.

    package_test.py SETTINGS SUBJECT

SETTINGS is the file settings.json of the build tree. SUBJECT is the name of a class below. Install makes the folder that
most others use.
"""

import json
import os
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

SETTINGS = json.loads(Path(sys.argv[1]).read_text())
SOURCE, BUILD, WORK = (Path(SETTINGS[name]) for name in ("source", "build", "work"))
INSTALLED = WORK / "installed"
HERE = Path(__file__).resolve().parent
CONFIGURATIONS = ("Debug", "Release") if SETTINGS["mingw"] else ("Release",)  # Visual C++ has a run-time library for each
DLLS = {"kexlib.dll", "kexframework.dll", "libstdc++-6.dll", "libgcc_s_seh-1.dll", "libwinpthread-1.dll"}


def said(*command: str | Path, folder: Path = WORK, **more) -> tuple[int, str]:
    """The exit status of a command, and what it says, each text on one line."""
    done = subprocess.run(command, cwd=folder, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **more)
    return done.returncode, re.sub(r"\s+", " ", done.stdout)


def run(*command: str | Path, **more) -> str:
    """What a command says that ends well."""
    status, text = said(*command, **more)
    assert status == 0, f"{' '.join(map(str, command))} ended with {status}: {text}"
    return text


def run_program(program: Path) -> str:
    return run(SETTINGS["emulator"], program, folder=program.parent)


WORK.mkdir(parents=True, exist_ok=True)


def emptied(name: str) -> Path:
    folder = WORK / name
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    return folder


class Test(unittest.TestCase):
    maxDiff = None

    def configured(self, name: str, *arguments: str, source: Path = HERE / "consumer") -> Path:
        """The build folder of a project, for all configurations."""
        build = emptied(name)
        run("cmake", "-G", "Ninja Multi-Config", "-S", source, "-B", build, "--toolchain", SETTINGS["toolchain"], *arguments)
        return build

    def assert_consumer_runs(self, folder: Path) -> None:
        self.assertEqual(run_program(folder / "consumer.exe"), "with manifest ")
        self.assertIn("name: 'consumer'", (folder / "consumer.js").read_text())


class Install(Test):
    def test_gives_all_that_a_user_needs(self):
        for name in ("installed", "parts"):
            shutil.rmtree(WORK / name, ignore_errors=True)
        run("cmake", "--install", BUILD, "--prefix", INSTALLED)
        names = {path.relative_to(INSTALLED).as_posix() for path in INSTALLED.rglob("*") if path.is_file()}
        wanted = {"include/kexlib/export.h", "include/kexlib/testing.h", "include/kexlib/testing/watchdog.h",
                  "share/doc/kexlib/families/testing.md", "include/kexlib/package.h", "include/kexlib/framework/atlbase.h",
                  "include/pvwnd/window_dib.h", "include/wbzframe/themer.h", "include/rqgfx/png_writer.h",
                  "include/bzbase/string.h", "bin/kexlib.dll", "lib/cmake/kexlib/kexlib-config.cmake",
                  "lib/cmake/kexlib/program.manifest", "share/doc/kexlib/LICENSE", "share/doc/kexlib/NOTICE.md",
                  "share/doc/kexlib/first-program.md", "share/doc/kexlib/families/controls.md",
                  "share/kexlib/examples/count_sources/main.cpp", "share/kexlib/kexlib.natvis",
                  "share/kexlib/kexlib_gdb.py"}
        if SETTINGS["node"]:
            wanted |= {"share/kexlib/profile_viewer.html", "share/kexlib/profile_tool.mjs"}
        if SETTINGS["mingw"]:
            wanted |= {f"bin/{dll}" for dll in DLLS} | {"lib/kexlib.dll.a", "share/kexlib/mingw_w64.cmake"}
        self.assertEqual(wanted - names, set())
        self.assertEqual([name for name in names - wanted if re.search(r"test|\.md\.in$|CMakeFiles", name)
                          and not name.startswith(("include/", "share/kexlib/examples/"))], [])

    def test_the_links_of_the_guide_lead_to_installed_files(self):
        guide = INSTALLED / "share/doc/kexlib"
        code = re.compile(r"^```.*?^```|^    .*?$|`[^`\n]*`", re.MULTILINE | re.DOTALL)
        links = [(page, link) for page in guide.rglob("*.md")
                 for link in re.findall(r"\]\(([^)#:]+)\)", code.sub("", page.read_text()))]
        self.assertGreater(len(links), 50)
        self.assertEqual([(page.name, link) for page, link in links if not (page.parent / link).exists()], [])

    def test_nothing_names_a_folder_of_the_machine_that_made_it(self):
        for path in INSTALLED.rglob("*"):
            if path.is_file() and path.suffix in (".cmake", ".h", ".pc", ".md", ".rc"):
                self.assertNotIn(str(SOURCE), path.read_text(), path)

    def test_components(self):
        parts = WORK / "parts"
        guide = "share/doc/kexlib/families"
        for component, has, lacks in (("runtime", "bin/kexlib.dll", "include"), ("development", "include", guide),
                                      ("docs", guide, "bin")):
            shutil.rmtree(parts, ignore_errors=True)
            run("cmake", "--install", BUILD, "--prefix", parts, "--component", component)
            for name in (has, "share/doc/kexlib/LICENSE"):
                self.assertTrue((parts / name).exists(), (component, name))
            self.assertFalse((parts / lacks).exists(), (component, lacks))


class Archive(Test):
    """What ./kex package makes of the build tree."""

    def test_it_holds_what_is_installed(self):
        folder = emptied("archive")
        sums = []
        for made in ("first", "second"):
            run(SOURCE / "scripts/make_package", BUILD, folder / made)
            version = ".".join(re.findall(r"KEXLIB_VERSION_\w+ (\d+)", (SOURCE / "include/kexlib/version.h").read_text()))
            name = f"kexlib-{version}-x86_64-w64-mingw32"
            self.assertEqual({path.name for path in (folder / made).iterdir()}, {f"{name}.zip", "SHA256SUMS"})
            run("sha256sum", "--check", "SHA256SUMS", folder=folder / made)
            sums.append((folder / made / "SHA256SUMS").read_text())
        self.assertEqual(sums[0], sums[1])

        run("cmake", "-E", "tar", "xf", f"first/{name}.zip", folder=folder)
        files, installed = ({path.relative_to(top).as_posix() for path in top.rglob("*") if path.is_file()}
                            for top in (folder / name, INSTALLED))
        self.assertEqual(files, installed | {"README.md"})
        for named in re.findall(r"(share/\S+?\w)[.;]? ", (folder / name / "README.md").read_text().replace("\n", " ")):
            self.assertTrue((folder / name / named).exists(), named)
        self.assertNotIn(str(SOURCE).encode(), (folder / name / "bin/kexlib.dll").read_bytes())


class FindPackage(Test):
    """find_package with the toolchain file, Debug and Release."""

    def test_a_consumer(self):
        every_member = WORK / "every_member.cpp"
        every_member.write_text(run_lines(SOURCE / "scripts/every_member", INSTALLED / "include"))
        build = self.configured("find_package", f"-DCMAKE_PREFIX_PATH={INSTALLED}", f"-DEVERY_MEMBER={every_member}")
        for configuration in CONFIGURATIONS:
            with self.subTest(configuration):
                run("cmake", "--build", build, "--config", configuration)
                self.assert_consumer_runs(build / configuration)
        run("cmake", "--build", build, "--config", "Release", "--target", "every_member", "every_member_optimized")
        for program in ("every_member", "every_member_optimized"):
            run_program(build / "Release" / f"{program}.exe")
        self.assert_the_viewer_reads(build / "Release/consumer.js")
        self.assert_what_is_missing_is_said(build / "Release")

    def assert_the_viewer_reads(self, record: Path) -> None:
        if SETTINGS["node"]:
            self.assertIn("Content-Security-Policy", (INSTALLED / "share/kexlib/profile_viewer.html").read_text()[:1000])
            run(SETTINGS["node"], INSTALLED / "share/kexlib/profile_tool.mjs", "csv", record, "-o", WORK / "consumer.csv")
            self.assertIn("\"consumer\",1,0,", (WORK / "consumer.csv").read_text())

    def assert_what_is_missing_is_said(self, folder: Path) -> None:
        # Without a manifest the library works, with the older controls.
        self.assertEqual(run_program(folder / "own_manifest.exe"), "without manifest ")
        # Without a DLL the system does not start the program (STATUS_DLL_NOT_FOUND, cut to 8 bits), and names the DLL.
        alone = emptied("alone")
        shutil.copy(folder / "consumer.exe", alone)
        status, _ = said(SETTINGS["emulator"], alone / "consumer.exe", folder=alone, timeout=60)
        self.assertEqual(status, 0xC0000135 & 0xFF)


class PartsList(Test):
    """The example that stands by itself; Debug and Release."""

    def test_it_is_built_on_the_package(self):
        build = self.configured("parts_list", f"-DCMAKE_PREFIX_PATH={INSTALLED}",
                                source=INSTALLED / "share/kexlib/examples/parts_list")
        for configuration in CONFIGURATIONS:
            with self.subTest(configuration):
                run("cmake", "--build", build, "--config", configuration)
                made = {path.name for path in (build / configuration).iterdir()}
                self.assertLessEqual({"parts_list.exe"} | DLLS, made)


class AddSubdirectory(Test):
    """The sources in another project. They take long to compile, so they are built in Debug only."""

    def test_a_consumer(self):
        build = self.configured("add_subdirectory", f"-DKEXLIB_SOURCE={SOURCE}", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
                                "-DCMAKE_CXX_FLAGS_DEBUG=-O0")
        for command in json.loads((build / "compile_commands.json").read_text()):
            self.assertNotIn("-Werror", command["command"])
            if command["file"].endswith("main.cpp"):
                self.assertNotRegex(command["command"], " -W")
        targets = run("ninja", "-C", build, "-f", "build-Debug.ninja", "-t", "targets", "all")
        for name in ("gallery", "viewer", "_tests", "_bench", "type_libraries"):
            self.assertNotIn(name, targets)
        run("cmake", "--build", build, "--config", "Debug")
        made = {path.name for path in (build / "kexlib/bin/Debug").iterdir() if path.suffix == ".dll"}
        self.assertEqual(made, {"kexlib.dll", "kexframework.dll"})
        self.assert_consumer_runs(build / "Debug")


class PageTest(Test):
    """docs/first-program.md, taken literally."""

    def setUp(self):
        self.page = (INSTALLED / "share/doc/kexlib/first-program.md").read_text()
        self.folder = emptied(type(self).__name__)
        home = self.folder / "home"
        home.mkdir()
        (home / "kexlib").symlink_to(INSTALLED)
        self.environment = os.environ | {"HOME": str(home)}

    def write_sources(self) -> None:
        sources = re.findall(r"^(\S+):\n\n```\w+\n(.*?)```", self.page, re.MULTILINE | re.DOTALL)
        self.assertEqual([name for name, _ in sources], ["CMakeLists.txt", "first_program.cpp"])
        for name, text in sources:
            (self.folder / name).write_text(text)

    def commands_after(self, sentence: str) -> list[str]:
        return [line.strip() for line in re.search(re.escape(sentence) + "\n\n((?:    .*\n)+)", self.page)[1].splitlines()]

    def enter(self, *commands: str) -> None:
        """Runs commands in one shell."""
        run("sh", "-e", "-c", "\n".join(commands), folder=self.folder, env=self.environment)

    def use(self, program: str) -> None:
        """A user looks at the window, clicks, types and closes it."""
        run(SETTINGS["emulator"], BUILD / "bin/first_program_user.exe", program, "first_program.png", folder=self.folder)


class FirstProgram(PageTest):
    """The three commands."""

    def test_the_page(self):
        self.write_sources()
        configure, build, start = self.commands_after("With the cross compiler:")
        self.enter(configure, build)
        self.assertLessEqual(DLLS, {path.name for path in (self.folder / "build").iterdir()})
        self.assertEqual(start, "wine build/first_program.exe")
        self.use("build\\first_program.exe")

        # Debug, with the warnings that users have.
        self.enter(configure + " -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS='-Wall -Wextra -Werror'", build)


class PkgConfig(PageTest):
    """The compiler alone, with what pkg-config knows; Debug and Release."""

    def test_the_page(self):
        self.write_sources()
        commands = self.commands_after("where the source of the manifest is:")
        self.enter(*commands)
        self.use("first_program.exe")

        compile_it = next(index for index, command in enumerate(commands) if "-std=c++20" in command)
        sources = {"first_program.cpp": HERE / "consumer/main.cpp", "first_program.exe": "consumer.exe"}
        for name, other in sources.items():
            commands[compile_it] = commands[compile_it].replace(name, str(other))
        for options in ("-O0 -g", "-O2 -DNDEBUG"):
            with self.subTest(options):
                self.enter(*commands[:compile_it], commands[compile_it].replace("-std=c++20", f"-std=c++20 {options}"))
                self.assert_consumer_runs(self.folder)
        example = INSTALLED / "share/kexlib/examples/count_sources/main.cpp"
        self.enter(*commands[:compile_it], commands[compile_it].replace(str(HERE / "consumer/main.cpp"), str(example)))


class BadInput(Test):
    """One sentence each."""

    def assert_not_configured(self, sentence: str, *arguments: str, toolchain: bool = True) -> None:
        chosen = ["--toolchain", SETTINGS["toolchain"]] if toolchain else []
        status, text = said("cmake", "-G", "Ninja", "-S", HERE / "consumer", "-B", emptied("refused"), *chosen, *arguments)
        self.assertNotEqual(status, 0)
        self.assertEqual(text.count("CMake Error"), 1, text)
        self.assertIn(sentence, text)

    def assert_not_compiled(self, sentence: str, *options: str) -> None:
        status, text = said(SETTINGS["compiler"], "-std=c++20", "-fsyntax-only", "-x", "c++", "-", *options,
                            f"-I{INSTALLED}/include", f"-I{INSTALLED}/include/kexlib/framework",
                            input="#include <kexlib/text.h>\n")
        self.assertNotEqual(status, 0)
        self.assertRegex(text.split("error: ")[1], "^#error " + re.escape(sentence))

    def test_unicode(self):
        sentence = "The texts of kexlib are narrow: build without UNICODE and _UNICODE"
        for where in (f"-DCMAKE_PREFIX_PATH={INSTALLED}", f"-DKEXLIB_SOURCE={SOURCE}"):
            self.assert_not_configured(sentence, where, "-DCMAKE_CXX_FLAGS=-DUNICODE")
        self.assert_not_compiled(sentence, "-D_UNICODE")

    def test_another_system(self):
        for where in (f"-DCMAKE_PREFIX_PATH={INSTALLED}", f"-DKEXLIB_SOURCE={SOURCE}"):
            self.assert_not_configured("kexlib is for 64-bit Windows", where, toolchain=False)

    def test_another_compiler(self):
        sentence = "This package of kexlib is for GCC of mingw-w64"
        other = WORK / "other_compiler.cmake"
        other.write_text("set(MINGW OFF)\nset(CMAKE_CXX_COMPILER_ID MSVC)\n")
        self.assert_not_configured(sentence + ", which MSVC is not", f"-DCMAKE_PREFIX_PATH={INSTALLED}",
                                   f"-DCMAKE_PROJECT_INCLUDE={other}")
        self.assert_not_compiled(sentence, "-U__MINGW32__")
        self.assert_not_compiled("This package of kexlib is for another C run-time library", "-D_UCRT")

    def test_a_missing_dll(self):
        incomplete = emptied("incomplete")
        shutil.copytree(INSTALLED, incomplete, dirs_exist_ok=True, copy_function=os.link)
        for name in ("kexframework.dll", "libwinpthread-1.dll"):
            (incomplete / "bin" / name).unlink()
            self.assert_not_configured(f"bin/{name} is missing.", f"-DCMAKE_PREFIX_PATH={incomplete}")
            shutil.copy(INSTALLED / "bin" / name, incomplete / "bin")

    def test_a_real_framework_beside_ours(self):
        for header in ("afxribbonbar.h", "atlctl.h", "atlribbon.h"):
            real = emptied("real")
            (real / header).touch()
            self.assert_not_compiled("A real ATL, MFC or WTL is on the include path", f"-I{real}")
        self.assert_not_configured("A real WTL does not go with kexlib's subset of ATL and MFC", f"-DKEXLIB_SOURCE={SOURCE}",
                                   f"-DKEXLIB_WTL_INCLUDE_DIR={WORK}/real")


def run_lines(*command: str | Path) -> str:
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]], verbosity=2)
