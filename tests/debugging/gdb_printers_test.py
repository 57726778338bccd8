#!/usr/bin/env python3
"""gdb shows objects as packaging/debugging/kexlib_gdb.py says: the real layouts, in processes under Wine.

    gdb_printers_test.py REPOSITORY PROGRAMS EMULATOR

gdb runs here and talks to gdbserver, which runs a program under Wine.
"""

import re
import subprocess
import sys
import unittest
from pathlib import Path

REPOSITORY, PROGRAMS, EMULATOR = Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[3]
SERVER = "/usr/share/win64/gdbserver.exe"
NOWHERE = "/nonexistent"

EXPECTED = """
lazy_guid = not made yet
known_guid = 6B29FC40-CA47-1067-B31D-00AA00C7A1E8
braced_guid = {00000000-0000-0000-0000-0000000000A1}
empty_variant = empty
short_variant = -2
long_variant = 70000
double_variant = 2.5
text_variant = L"bolt"
null_text_variant = null text
error_variant = error 0x80004005
true_variant = true
false_variant = false
date_variant = type 7
no_array = no array
owned_array = 2 elements, owned = {L"bolt", 70000}
viewed_array = 2 elements, viewed = {L"bolt", 70000}
no_picture = {<kexWTLDIB> = no picture, <No data fields>}
picture = {<kexWTLDIB> = 4 x 2 pixels of 32 bits, <No data fields>}
open_buffer = open, 3 bytes
closed_buffer = closed, 1 byte
stopped_timer = {<CATLWindowLessTimer> = stopped, 1000 ms, <No data fields>}
running_timer = {<CATLWindowLessTimer> = runs, 500 ms, <No data fields>}
suspended_timer = {<CATLWindowLessTimer> = suspended, 1000 ms, <No data fields>}
single_timer = {<CATLWindowLessTimer> = runs once, 1000 ms, <No data fields>}
no_steps = 0 steps, active -1
steps = 2 steps, active 0 = {1 control, enabled 1, visible 1, 2 controls, enabled 1, visible 0}
second = 2 controls, enabled 1, visible 0
no_profile = 0 threads
profile = 2 threads = {thread 8 = {"load", 1 interval = {"parse", 3 intervals, "", 1 interval}}, thread 12}
thread = thread 8 = {"load", 1 interval = {"parse", 3 intervals, "", 1 interval}}
raw_guid = {object = {CDCDCDCD-CDCD-CDCD-CDCD-CDCDCDCDCDCD}}
raw_variant = {object = type 52685}
raw_array = {object = not readable}
raw_picture = {object = {<kexWTLDIB> = -842150451 x -842150451 pixels of 52685 bits, <No data fields>}}
raw_buffer = {object = closed, 14829735431805717965 bytes}
raw_timer = {object = {<CATLWindowLessTimer> = suspended, -842150451 ms, <No data fields>}}
raw_group = {object = 14829735431805717965 controls, enabled -842150451, visible -842150451}
raw_steps = {object = 0 steps, active -842150451}
raw_block = {object = not readable}
raw_thread = {object = thread 3452816845}
raw_profile = {object = not readable}
"""


# Without the debug information of kexlib.dll, in a program that does not describe its classes by itself.
EXPECTED_WITHOUT = """
known_guid = 6B29FC40-CA47-1067-B31D-00AA00C7A1E8
picture = {<kexWTLDIB> = no debug information, <No data fields>}
closed_buffer = closed, no debug information of the size
"""


def shown(program: str, *commands: str) -> list[str]:
    """What gdb prints at these commands in the function that calls show_locals."""
    # It takes a free port, and tells which.
    with subprocess.Popen([EMULATOR, SERVER, "--once", "localhost:0", f"Z:{PROGRAMS / program}"], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL, text=True) as server:
        try:
            port = next(found[1] for line in server.stdout if (found := re.search(r"Listening on port (\d+)", line)))
            commands = ("set pagination off", "set confirm off", "set width 0", f"set sysroot {NOWHERE}",
                        f"set solib-search-path {NOWHERE}", f"file {PROGRAMS / program}", f"source {REPOSITORY}/packaging/debugging/kexlib_gdb.py",
                        f"target remote localhost:{port}", "break show_locals", "continue", "up", *commands, "kill")
            arguments = [argument for command in commands for argument in ("-ex", command)]
            return subprocess.run(["x86_64-w64-mingw32-gdb", "-batch", "-nx", *arguments], stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, text=True, timeout=80).stdout.splitlines()
        finally:
            server.kill()


class GdbPrinters(unittest.TestCase):
    maxDiff = None

    def assert_shows(self, output: list[str], expected: str) -> None:
        self.assertNotIn("Python Exception", "\n".join(output))
        for line in expected.strip().splitlines():
            name = line.split(" = ")[0]
            self.assertEqual([shown for shown in output if shown.startswith(f"{name} = ")], [line], "\n".join(output))

    def test_with_the_library_s_debug_information(self):
        output = shown("debugged.exe", "info locals", "echo and with\\n", f"set solib-search-path {PROGRAMS}", "up",
                       "info locals")  # other symbols select the innermost frame again
        middle = output.index("and with")
        self.assert_shows(output[:middle], EXPECTED_WITHOUT)
        self.assert_shows(output[middle:], EXPECTED)

    def test_with_a_program_that_describes_all(self):
        self.assert_shows(shown("debugged_alone.exe", "info locals"), EXPECTED)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
