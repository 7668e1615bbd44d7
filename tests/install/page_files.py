#!/usr/bin/env python3
"""Does what a page says: writes its files to a folder and prints its commands.

Usage: page_files.py PAGE FOLDER

A file is what stands in the blocks that follow "In `name`:" and "Again in `name`:", in their order. Commands are the blocks
of the language sh.
"""

import pathlib
import re
import sys

FILE_BLOCK = re.compile(r"^(?:In|Again in) `([\w.]+)`:\n\n```\w*\n(.*?)^```$", re.MULTILINE | re.DOTALL)
COMMANDS = re.compile(r"^```sh\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def main(page, folder):
    text = page.read_text()
    files = {}
    for name, content in FILE_BLOCK.findall(text):
        files.setdefault(name, []).append(content)
    for name, contents in files.items():
        (folder / name).write_text("\n".join(contents))
    print("".join(COMMANDS.findall(text)), end="")
    return 0 if files else 1


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])))
