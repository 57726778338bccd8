"""The headers for users, and what a source includes to compile one of them by itself."""

import re
from collections.abc import Iterator
from pathlib import Path

FOLDERS = [Path("include"), Path("framework/include"), *sorted(Path("companions").glob("*/include"))]


def demanded_by(header: Path) -> str:
    """The includes that a header of the framework, or those that it demands, refuses to go without."""
    names = re.findall(r'"\S+ requires (\S+) to be included first"', header.read_text())
    return "".join(demanded_by(header.parent / name) + f"#include <{name}>\n" for name in names)


def headers() -> Iterator[tuple[Path, Path]]:
    """Each header, and its folder. A text for the namespace around its #include has no guard, and is no header."""
    for folder in FOLDERS:
        yield from ((path, folder) for path in sorted(folder.rglob("*.h")) if "#ifndef" in path.read_text())
