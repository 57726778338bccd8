"""The examples of the guide: each block of C++ on the page of a family."""

import re
from pathlib import Path
from typing import NamedTuple


class Example(NamedTuple):
    page: Path
    unit: str  # FAMILY/UNIT, of the first header of kexlib that it includes
    code: str


def examples() -> list[Example]:
    found = []
    for page in sorted(Path("docs/families").glob("*.md")):
        for code in re.findall(r"```cpp\n(.*?\n)```", page.read_text(), re.DOTALL):
            header = re.search(r"#include <kexlib/([a-z_/]+)\.h>", code)
            found.append(Example(page, header[1] if header else "", code))
    return found
