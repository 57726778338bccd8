"""Programs of our own on the libraries of clang 14, which know what C++ sources declare."""

import hashlib
import os
import re
import subprocess
from pathlib import Path

LLVM = Path("/usr/lib/llvm-14")
BUILT = Path(__file__).resolve().parent.parent / "build/clang_tools"


def built(source: Path) -> Path:
    """The program of one source file. It is built again when its source changes."""
    program = BUILT / (source.stem + "-" + hashlib.sha256(source.read_bytes()).hexdigest()[:16])
    if not program.exists():
        program.parent.mkdir(parents=True, exist_ok=True)
        new = program.with_suffix(f".{os.getpid()}")
        subprocess.run(["g++", "-std=c++20", "-O1", "-fno-rtti", "-isystem", LLVM / "include", source, "-o", new,
                        f"-L{LLVM}/lib", f"-Wl,-rpath,{LLVM}/lib", "-l:libclang-cpp.so.14", "-lLLVM-14"], check=True)
        new.rename(program)
    return program


def cross_options() -> list[str]:
    """What makes clang read sources as the cross compiler does, whose headers it does not know."""
    done = subprocess.run(["x86_64-w64-mingw32-g++-posix", "-xc++", "-E", "-v", "/dev/null"],
                          check=True, capture_output=True, text=True)
    listing = re.search(r"<\.\.\.> search starts here:\n(.*?)End of search list", done.stderr, re.DOTALL)[1]
    folders = [os.path.realpath(line.strip()) for line in listing.strip().split("\n")]
    # Clang brings its own compiler headers.
    folders = [folder for folder in folders if not re.search(r"/lib/gcc/[^/]+/[^/]+/include(-fixed)?$", folder)]
    return ["--target=x86_64-w64-mingw32", "-resource-dir", str(LLVM / "lib/clang/14.0.6"),
            *(f"-isystem{folder}" for folder in folders)]
