#!/usr/bin/env python3
"""Every file and folder that the documents name is there: paths.py PROJECT

Names are those in backquotes that end as sources, scripts and documents do or in a slash. They may leave out the folders in
front of them; what is installed begins with include/, and what a page makes is named where it does so: "In `name`:".
"""

import pathlib
import re
import sys

NAME = re.compile(r"`([\w./-]+?(?:\.(?:cpp|h|py|sh|cmake|md|txt|map)|/))`")
MADE = re.compile(r"^In `([\w.]+)`:$", re.MULTILINE)
TOPS = ("runtime", "sdk", "desk", "kit", "apps", "tests", "bench", "fuzz", "examples", "docs", "scripts", "cmake")


def paths_of(tree):
    """All paths of the tree, with a slash at both ends so that a name can be looked for as a whole."""
    for top in TOPS:
        for path in (tree / top).rglob("*"):
            yield "/" + path.relative_to(tree).as_posix() + "/"
        yield f"/{top}/"


def main(tree):
    paths = list(paths_of(tree))
    documents = sorted(tree.glob("*.md")) + sorted((tree / "docs").glob("*.md"))
    count = 0
    strangers = []
    for document in documents:
        text = document.read_text()
        made = MADE.findall(text)
        for name in NAME.findall(text):
            if name.startswith("include/") or name in made:
                continue
            count += 1
            if not any(path.endswith("/" + name.strip("/") + "/") for path in paths):
                strangers.append(f"{document.relative_to(tree)}: there is no {name}")
    print("\n".join(strangers) or f"{count} names of files and folders: all there")
    return 1 if strangers or not count else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
