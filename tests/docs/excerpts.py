#!/usr/bin/env python3
"""Every block of C++ in docs/writing-a-driver.md stands in the example's sources: excerpts.py PROJECT"""
import pathlib
import re
import sys


def stripped(text):
    """Lines without indentation and line ends, for a block may stand deeper in a source."""
    return "\n".join(line.strip() for line in text.splitlines())


def main(project):
    page = (project / "docs/writing-a-driver.md").read_text()
    sources = [stripped(path.read_text()) for path in (project / "examples/line_driver").glob("*.[ch]*")]
    blocks = re.findall(r"^```cpp\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)
    strangers = [block for block in blocks if not any(stripped(block) in source for source in sources)]
    for block in strangers:
        print(f"not in the example:\n{block}", file=sys.stderr)
    print(f"{len(blocks)} excerpts compared")
    return 1 if strangers or not blocks else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
