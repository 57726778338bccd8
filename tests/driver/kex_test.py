#!/usr/bin/env python3
"""The driver: what it says when it cannot go on, and that a session leaves nothing behind.

The arguments are the repository's root and the folder of the built programs.
"""

import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

ROOT, PROGRAMS = Path(sys.argv[1]), Path(sys.argv[2])


def copy_driver(checkout: Path) -> None:
    """Copies what ./kex is made of."""
    for name in ("scripts", "packaging"):
        shutil.copytree(ROOT / name, checkout / name, dirs_exist_ok=True)
    shutil.copy(ROOT / "kex", checkout)


class Refusals(unittest.TestCase):
    """Each ends in one sentence and exit status 2."""

    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))

    def fake(self, program: str, script: str) -> None:
        """Puts a program of that name before the real one."""
        path = self.folder / program
        path.write_text(f"#!/bin/sh\n{script}\n")
        path.chmod(0o755)

    def run_kex(self, *arguments: str) -> subprocess.CompletedProcess:
        environment = os.environ | {"PATH": f"{self.folder}:{os.environ['PATH']}"}
        return subprocess.run([ROOT / "kex", *arguments], cwd="/", env=environment, capture_output=True, text=True)

    def assert_refused(self, done: subprocess.CompletedProcess, sentence: str, lines: int = 1) -> None:
        self.assertEqual(done.returncode, 2)
        self.assertEqual(done.stdout, "")
        self.assertIn(sentence, done.stderr)
        self.assertEqual(done.stderr.count("\n"), lines)

    def test_unknown_command(self):
        self.assert_refused(self.run_kex("dance"), "kex: there is no command 'dance'; ./kex help lists them.")

    def test_run_without_program(self):
        self.assert_refused(self.run_kex("run"), "'run' takes the name of a program")

    def test_run_of_a_missing_program(self):
        self.assert_refused(self.run_kex("run", "/no/such.exe"), "there is no program '/no/such.exe'")
        self.assert_refused(self.run_kex("run", "/tmp/"), "there is no program '/tmp/'")

    def test_what_is_not_there_is_refused_before_anything_is_built(self):
        copy_driver(self.folder / "checkout")
        build = self.folder / "checkout/build/mingw-release"
        build.mkdir(parents=True)
        (build / "build.ninja").touch()
        called = self.folder / "called"
        self.fake("ninja", f"echo \"$*\" >>'{called}'; [ \"$3\" != -t ]")
        (self.folder / "checkout/src/dance").mkdir(parents=True)
        for arguments, sentence in ((("run", "dance"), "there is no program 'dance.exe'"),
                                    (("bench", "dance"), "there is no benchmark family 'dance'"),
                                    (("mutate", "dance"), "there is no family 'dance'")):
            with self.subTest(arguments[0]):
                called.unlink(missing_ok=True)
                environment = os.environ | {"PATH": f"{self.folder}:{os.environ['PATH']}"}
                done = subprocess.run([self.folder / "checkout/kex", *arguments], env=environment, capture_output=True,
                                      text=True)
                self.assert_refused(done, sentence)
                program = {"run": "dance.exe", "bench": "dance_bench.exe", "mutate": "dance_tests.exe"}[arguments[0]]
                self.assertEqual(called.read_text().splitlines(),
                                 [f"-C {build} build.ninja", f"-C {build} -t query bin/{program}"])

    def test_package_takes_committed_sources_only(self):
        checkout = self.folder / "checkout"
        copy_driver(checkout)
        (checkout / "build/mingw-release").mkdir(parents=True)
        (checkout / "build/mingw-release/build.ninja").touch()
        (checkout / ".gitignore").write_text("/build/\n")
        packed = "echo 0123 kexlib.zip >\"$2/SHA256SUMS\""
        (checkout / "scripts/make_package").write_text(f"#!/bin/sh\nmkdir \"$2\" && {packed}\n")
        self.fake("ninja", ":")

        def git(*arguments: str) -> None:
            subprocess.run(["git", "-c", "user.name=a", "-c", "user.email=a@b", *arguments], cwd=checkout, check=True,
                           stdout=subprocess.DEVNULL)

        def package(*arguments: str) -> subprocess.CompletedProcess:
            environment = os.environ | {"PATH": f"{self.folder}:{os.environ['PATH']}"}
            return subprocess.run([checkout / "kex", "package", *arguments], env=environment, capture_output=True, text=True)

        self.assert_refused(package("--dance"), "'package' knows one argument, --with-changes.")
        self.assert_refused(package(), "this is no git checkout")
        git("init", "--quiet")
        self.assert_refused(package(), "there are changes that are not committed")
        git("add", ".")
        git("commit", "--quiet", "--message", "all")
        shutil.rmtree(checkout / "build/package", ignore_errors=True)
        done = package()
        self.assertEqual((done.returncode, done.stdout),
                         (0, "build/package has the archive and its checksum:\n0123 kexlib.zip\n"), done.stderr)
        (checkout / "new").touch()
        self.assert_refused(package(), "there are changes that are not committed")
        shutil.rmtree(checkout / "build/package")
        self.assertEqual(package("--with-changes").returncode, 0)

    def test_what_a_look_at_the_tree_refuses_needs_no_package(self):
        self.fake("dpkg-query", f"touch '{self.folder}/called'")
        for arguments, sentence in ((("run", "/no/such.exe"), "there is no program '/no/such.exe'"),
                                    (("mutate", "dance"), "there is no family 'dance'"),
                                    (("check", "text", "dance"), "there is no check 'dance'"),
                                    (("bench", "--compare", "/no/such"), "there is no file '/no/such' to compare with."),
                                    (("fuzz", "six_digits"), "'fuzz' takes a number of seconds first"),
                                    (("fuzz", "0"), "'fuzz' takes a number of seconds first, and '0' is none."),
                                    (("fuzz", "5", "dance"), "there is no core 'dance'; there are archive file_names"),
                                    (("fuzz", "--repeat", "archive"), "'fuzz --repeat' takes the name of a core and a file."),
                                    (("fuzz", "--repeat", "dance", "/dev/null"), "there is no core 'dance'"),
                                    (("soak",), "'soak' takes a number of minutes first, and '' is none."),
                                    (("soak", "1", "dance"), "'soak' takes a seed behind the minutes, a number"),
                                    (("load", "dance"), "'load' takes no argument."),
                                    (("coverage", "dance"), "'coverage' takes no argument."),
                                    (("fuzz", "--repeat", "archive", "/no/such"), "there is no file '/no/such'")):
            with self.subTest(arguments[0]):
                self.assert_refused(self.run_kex(*arguments), sentence)
        self.assertFalse((self.folder / "called").exists())

    def run_kex_with_programs(self, programs: list[str], *arguments: str, **variables) -> subprocess.CompletedProcess:
        """In a checkout where these programs are built, each of which says its name; only b_bench.exe ends well."""
        checkout = self.folder / "checkout"
        copy_driver(checkout)
        (checkout / "build/mingw-release/bin").mkdir(parents=True, exist_ok=True)
        for name in ["build.ninja"] + [f"bin/{program}" for program in programs]:
            (checkout / "build/mingw-release" / name).touch()
        (checkout / "scripts/wine_session.sh").write_text("start_sessions() { say sessions \"$@\"; }\nstop_sessions() { :; }\n")
        (checkout / "scripts/wine-run").write_text("#!/bin/sh\necho \"$(basename \"$1\")\"; [ \"${1##*/}\" = b_bench.exe ]\n")
        self.fake("ninja", ":")
        environment = os.environ | {"PATH": f"{self.folder}:{os.environ['PATH']}"} | variables
        return subprocess.run([checkout / "kex", *arguments], env=environment, capture_output=True, text=True)

    def test_bench_goes_on_after_a_family_that_fails(self):
        (self.folder / "checkout/include/kexlib").mkdir(parents=True)
        shutil.copy(ROOT / "include/kexlib/version.h", self.folder / "checkout/include/kexlib")
        self.fake("chromium", ":")
        self.fake("npm", "echo viewer")
        done = self.run_kex_with_programs(["a_bench.exe", "b_bench.exe"], "bench")
        self.assertEqual((done.returncode, done.stdout.splitlines()[:3]), (1, ["a_bench.exe", "b_bench.exe", "viewer"]))
        self.assertIn("bench: FAILED: a (1)\n", done.stdout)

    def test_run_says_where_windows_are(self):
        programs = ["keeper.exe", "drawing.exe"]
        hint = "kex: the windows are on a display that nobody sees; ./kex run --interactive shows them on yours."
        for subsystem, said in (("Windows GUI", f"kex: sessions 1\n{hint}\n"), ("Windows CUI", "kex: sessions 1\n")):
            self.fake("x86_64-w64-mingw32-objdump", f"echo 'Subsystem\t\t00000002\t({subsystem})'")
            done = self.run_kex_with_programs(programs, "run", "drawing")
            self.assertEqual((done.stdout, done.stderr), ("drawing.exe\n", said))
            done = self.run_kex_with_programs(programs, "run", "--interactive", "drawing", DISPLAY=":5")
            self.assertEqual((done.stdout, done.stderr), ("drawing.exe\n", "kex: sessions 1 own-display\n"))
        self.assert_refused(self.run_kex_with_programs(programs, "run", "--interactive", "drawing", DISPLAY=""),
                            "there is no display to open drawing on")

    def test_fuzz_spreads_its_time_and_keeps_what_it_finds(self):
        checkout = self.folder / "checkout"
        copy_driver(checkout)
        cores, build = checkout / "tests/fuzz/platform_free", checkout / "build/native-fuzz"
        for folder in (cores, build / "tests/native"):
            folder.mkdir(parents=True)
        for file in (cores / "bad_fuzz.cpp", cores / "good_fuzz.cpp", build / "build.ninja"):
            file.touch()
        fuzzer = build / "tests/native/core_fuzz"
        fuzzer.write_text("""#!/bin/sh
            [ $KEX_FUZZ_CORE = good ] || { echo it differs >&2; echo x >"${3#*=}"; echo "$@" | grep -q finding && exit 77; }
            echo stat::number_of_executed_units: 5\n""")
        fuzzer.chmod(0o755)
        self.fake("ninja", ":")
        self.fake("dpkg-query", 'for name; do echo "installed $name"; done')

        def fuzz(*arguments: str) -> tuple[int, str]:
            environment = os.environ | {"PATH": f"{self.folder}:{os.environ['PATH']}"}
            done = subprocess.run([checkout / "kex", "fuzz", *arguments], env=environment, capture_output=True, text=True)
            return done.returncode, done.stdout

        finding = "build/fuzz/bad.finding"
        found = f"it differs\nbad: FOUND; the input is kept. To repeat it: ./kex fuzz --repeat bad {finding}\n"
        self.assertEqual(fuzz("9"), (1, found + "good: 5 inputs in 4 s\n"))
        self.assertTrue((checkout / finding).exists())
        self.assertEqual(fuzz("9", "good"), (0, "good: 5 inputs in 9 s\n"))
        self.assertEqual(fuzz("--repeat", "bad", str(checkout / finding))[0], 1)
        self.assertEqual(fuzz("--repeat", "good", str(checkout / finding))[0], 0)

    def test_missing_packages_without_root(self):
        self.fake("dpkg-query", "echo installed cmake")
        self.fake("id", "echo 1000")
        self.assert_refused(self.run_kex("build"), "only root can install what is missing; run: apt-get install")

    def test_installs_node_only_where_there_is_none_that_will_do(self):
        self.fake("dpkg-query", "echo installed cmake")
        self.fake("id", "echo 1000")
        self.fake("npm", "exit 0")
        self.fake("node", "exit 0")
        enough = self.run_kex("build").stderr.split()
        self.assertIn("ninja-build", enough)
        self.assertNotIn("nodejs", enough)
        self.assertNotIn("npm", enough)
        self.fake("node", "exit 1")
        too_old = self.run_kex("build").stderr.split()
        self.assertIn("nodejs", too_old)
        self.assertIn("npm", too_old)

    def test_each_command_asks_for_what_it_needs(self):
        self.fake("dpkg-query", "echo installed cmake")
        self.fake("id", "echo 1000")
        one_of_each = {"ninja-build", "wine", "pngcheck", "chromium", "shellcheck", "doxygen"}
        for command, wanted in (("build", {"ninja-build"}), ("demo", {"ninja-build", "wine"}), ("docs", {"doxygen"}),
                                ("test", {"ninja-build", "wine", "pngcheck", "chromium"}),
                                ("bench", {"ninja-build", "wine", "chromium"}),
                                ("check", {"ninja-build", "shellcheck", "doxygen"})):
            with self.subTest(command):
                self.assertEqual(one_of_each & set(self.run_kex(command).stderr.split()), wanted)

    def test_no_network(self):
        self.fake("dpkg-query", "echo installed cmake")
        self.fake("id", "echo 0")
        self.fake("apt-get", "echo 'E: Failed to fetch' >&2; exit 100")
        done = self.run_kex("build")
        self.assert_refused(done, "is there a network?", lines=2)
        self.assertTrue(done.stderr.startswith("kex: installing "), done.stderr)

    def test_missing_package(self):
        self.fake("dpkg-query", "echo installed cmake")
        self.fake("id", "echo 0")
        self.fake("apt-get", "[ $1 = update ] || { echo 'E: Unable to locate package wine' >&2; exit 100; }")
        self.assert_refused(self.run_kex("build"), "apt knows no package named wine", lines=2)

    def test_no_debian(self):
        # A folder with the tools that come before the question, and nothing else.
        for tool in ("bash", "dirname", "readlink", "nproc", "env"):
            (self.folder / tool).symlink_to(shutil.which(tool))
        done = subprocess.run([ROOT / "kex", "build"], env={"PATH": str(self.folder)}, capture_output=True, text=True)
        self.assert_refused(done, "this is no Debian machine")

    def test_installs_nothing_that_is_there(self):
        script = f"""root='{ROOT}'; source "$root/scripts/common.sh"; source "$root/scripts/setup.sh"
            install_missing_packages build run test browse && touch '{self.folder}/installed'"""
        self.fake("apt-get", f"touch '{self.folder}/called'")
        environment = os.environ | {"PATH": f"{self.folder}:{os.environ['PATH']}"}
        subprocess.run(["bash", "-euc", script], env=environment, check=True)
        self.assertTrue((self.folder / "installed").exists())
        self.assertFalse((self.folder / "called").exists())

    def test_help(self):
        done = self.run_kex("help")
        self.assertEqual(done.returncode, 0)
        self.assertTrue(done.stdout.startswith("kex: builds, tests, measures and shows kexlib\n"))
        self.assertEqual(self.run_kex().stdout, done.stdout)
        checks = {check.name for check in (ROOT / "scripts/check").iterdir()
                  if check.is_file() and os.access(check, os.X_OK)}
        self.assertEqual(checks - {"run"} - set(done.stdout.split("./kex check")[1].split("./kex run")[0].split()), set())


class Session(unittest.TestCase):
    """In a second checkout, while the first one's session, in which this test runs, goes on."""

    @classmethod
    def setUpClass(cls):
        cls.root = Path(cls.enterClassContext(tempfile.TemporaryDirectory())) / "second checkout"
        programs = cls.root / "build/mingw-release/bin"
        copy_driver(cls.root)
        programs.mkdir(parents=True)
        for name in [*PROGRAMS.glob("*.dll"), PROGRAMS / "keeper.exe", PROGRAMS / "endings.exe"]:
            shutil.copy(name, programs)
        cls.programs = programs
        cls.environment = {name: value for name, value in os.environ.items()
                           if not name.startswith(("WINE", "KEX_", "CTEST_")) and name != "DISPLAY"}

    def start(self, program: str, *arguments: str) -> subprocess.Popen:
        process = subprocess.Popen(
            [self.root / "kex", "run", self.programs / program, *arguments],
            env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
            preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait, 60)
        self.addCleanup(process.terminate)
        return process

    def start_program_that_does_not_end(self) -> subprocess.Popen:
        running = self.root / "running"
        running.unlink(missing_ok=True)
        process = self.start("keeper.exe", "Z:" + str(running).replace("/", "\\"))
        self.assertTrue(self.becomes_true(running.exists, 60))
        return process

    def becomes_true(self, condition, seconds: float) -> bool:
        end = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > end:
                return False
            time.sleep(0.02)
        return True

    def processes_left(self) -> list[str]:
        """What still runs with this checkout's Wine prefix in its environment."""
        left = []
        for process in Path("/proc").glob("[0-9]*"):
            try:
                if str(self.root).encode() in (process / "environ").read_bytes():
                    left.append((process / "cmdline").read_bytes().replace(b"\0", b" ").decode())
            except (PermissionError, FileNotFoundError, ProcessLookupError):
                pass
        return left

    def test_program_that_ends(self):
        process = self.start("endings.exe", "silent")
        self.assertEqual(process.wait(60), 7)
        self.assertEqual(self.processes_left(), [])
        prefix = self.root / "build/wine"
        self.assertTrue((prefix / "system.reg").exists())
        self.assertNotEqual(list(prefix.glob("drive_c/users/*/Desktop")), [])
        self.assertEqual(self.links_out_of(prefix), ["z:"])

    def links_out_of(self, prefix: Path) -> list[str]:
        """The names of the links in a Wine prefix that lead to files outside of it; devices such as com1 are no files."""
        links = [path for path in prefix.rglob("*") if path.is_symlink()]
        return [link.name for link in links
                if not link.resolve().is_relative_to(prefix) and not link.resolve().is_char_device()]

    def test_every_session_has_a_prefix_that_leads_nowhere_else(self):
        script = """set -euo pipefail
            root=$1; source "$root/scripts/common.sh"; source "$root/scripts/wine_session.sh"
            trap stop_sessions EXIT
            start_sessions 2
            for session in 1 2; do
              CTEST_RESOURCE_GROUP_0_SESSIONS=id:$session,slots:1 "$root/scripts/wine-run" cmd /c 'echo %TEMP% > c:\\mark'
            done"""
        subprocess.run(["bash", "-c", script, "bash", self.root], env=self.environment, check=True, timeout=120)
        first, second = self.root / "build/wine", self.root / "build/wine-2"
        for prefix in (first, second):
            self.assertEqual(self.links_out_of(prefix), ["z:"])
            self.assertTrue((prefix / "drive_c/mark").exists())
        shared = [path.relative_to(second).parts[:2] for path in second.rglob("*")
                  if path.is_file() and not path.is_symlink() and path.stat().st_nlink > 1]
        self.assertEqual(set(shared), {("drive_c", "windows")})
        self.assertEqual(self.processes_left(), [])

    def test_signals(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(number.name):
                process = self.start_program_that_does_not_end()
                process.send_signal(number)
                self.assertEqual(process.wait(60), 128 + number)
                self.assertEqual(self.processes_left(), [])

    def test_second_command_in_one_checkout(self):
        first = self.start_program_that_does_not_end()
        second = self.start("endings.exe", "silent")
        self.assertEqual(second.stdout.readline(), "kex: waiting for another ./kex of this checkout to end\n")
        first.terminate()
        self.assertEqual(first.wait(60), 143)
        self.assertEqual(second.wait(60), 7)

    def test_display_that_does_not_start(self):
        programs = self.root / "programs"
        programs.mkdir()
        (programs / "Xvfb").symlink_to("/bin/false")
        done = subprocess.run([self.root / "kex", "run", self.programs / "endings.exe", "silent"],
                              env=self.environment | {"PATH": f"{programs}:{os.environ['PATH']}"},
                              capture_output=True, text=True, timeout=10)
        self.assertEqual((done.returncode, done.stderr), (2, "kex: the display server Xvfb did not start.\n"))

    def test_build_folder_that_cannot_be_written_to(self):
        root = Path(self.enterContext(tempfile.TemporaryDirectory()))
        for name in ("scripts", "packaging"):
            (root / name).symlink_to(self.root / name)
        shutil.copy(self.root / "kex", root)  # not a link: it would lead back to the other checkout
        (root / "build").touch()
        done = subprocess.run([root / "kex", "build"], env=self.environment, capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr), (2, "kex: the folder build cannot be written to.\n"))

    def test_kill(self):
        process = self.start_program_that_does_not_end()
        process.kill()
        process.wait()
        self.assertTrue(self.becomes_true(lambda: not self.processes_left(), 20), self.processes_left())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
