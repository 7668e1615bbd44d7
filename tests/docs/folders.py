#!/usr/bin/env python3
"""Compares the table of folders in docs/architecture.md with the folders and what their sources include.

Usage: folders.py SOURCE_TREE [--write]

Reported are a folder without a row or without a word about it, a row without its folder, an arrow (a folder that
includes from another) that the table lacks, an entry that is no arrow any more, a circle of arrows, an include that leads
nowhere, and a folder with too many sources. With --write the table is brought up to date first: rows of new folders come
last and still need their word.
"""

import pathlib
import re
import sys

TOPS = ("runtime", "sdk", "desk", "kit", "apps", "tests", "bench", "fuzz", "examples")
MAX_SOURCES = 25
TITLE = "| Folder | What | Includes from |"
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


class Folders:
    """The folders of a tree that have sources, and the arrows between them."""

    def __init__(self, tree):
        self.tree = tree
        self.sources = {}
        self.arrows = {}
        self.problems = []
        for top in TOPS:
            for path in sorted((tree / top).rglob("*")):
                if path.suffix in (".cpp", ".h"):
                    self.sources.setdefault(self._name(path.parent), []).append(path)
        for folder, paths in self.sources.items():
            self.arrows[folder] = {target for path in paths for target in self._targets(path)} - {folder}

    def _name(self, folder):
        return folder.relative_to(self.tree).as_posix()

    def _targets(self, path):
        """The folders that a source includes from. Include roots are its own folder, the tree, runtime/ and its top."""
        top = path.relative_to(self.tree).parts[0]
        roots = [path.parent, self.tree, self.tree / "runtime", self.tree / top]
        for included in INCLUDE.findall(path.read_text()):
            found = [root / included for root in roots if (root / included).is_file()]
            if found:
                yield self._name(found[0].resolve().parent)
            else:
                self.problems.append(f"{path.relative_to(self.tree)}: there is no {included}")

    def circle(self):
        """Folders of which each includes from the next and the last is the first; none when there is no circle."""
        done = set()

        def search(folder, way):
            if folder in way:
                return way[way.index(folder) :] + [folder]
            if folder in done:
                return []
            for target in sorted(self.arrows.get(folder, ())):
                found = search(target, way + [folder])
                if found:
                    return found
            done.add(folder)
            return []

        return next(filter(None, (search(folder, []) for folder in sorted(self.arrows))), [])


class Table:
    """The rows of the document's table: for each folder what it is and what it includes from."""

    def __init__(self, document):
        self.document = document
        lines = document.read_text().splitlines()
        self.first = lines.index(TITLE) + 2
        self.end = self.first
        self.rows = {}
        while self.end < len(lines) and lines[self.end].startswith("|"):
            folder, what, includes = (cell.strip() for cell in lines[self.end].strip("|").split("|"))
            self.rows[folder.strip("`/")] = (what, {target.strip("`/") for target in includes.split(", ")} - {"–"})
            self.end += 1

    def write(self, folders):
        kept = [folder for folder in self.rows if folder in folders.sources]
        added = sorted(folder for folder in folders.sources if folder not in self.rows)
        lines = self.document.read_text().splitlines()
        lines[self.first : self.end] = [
            f"| `{folder}/` | {self.rows.get(folder, ('',))[0]} | {targets_text(folders.arrows[folder])} |"
            for folder in kept + added
        ]
        self.document.write_text("\n".join(lines) + "\n")


def targets_text(targets):
    return ", ".join(f"`{target}/`" for target in sorted(targets)) or "–"


def problems_of(folders, table):
    yield from folders.problems
    for folder, paths in folders.sources.items():
        if len(paths) > MAX_SOURCES:
            yield f"{folder}: {len(paths)} sources in one folder; at most {MAX_SOURCES}"
        what, documented = table.rows.get(folder, ("", set()))
        if not what:
            yield f"{folder}: the table does not say what it is"
        for target in sorted(folders.arrows[folder] - documented):
            yield f"{folder} includes from {target}; the table does not say so"
        for target in sorted(documented - folders.arrows[folder]):
            yield f"{folder} does not include from {target}, as the table says"
    for folder in table.rows.keys() - folders.sources.keys():
        yield f"{folder}: in the table, but there is no such folder with sources"
    circle = folders.circle()
    if circle:
        yield "circle: " + " -> ".join(circle)


def main(arguments):
    tree = pathlib.Path(arguments[0]).resolve()
    document = tree / "docs" / "architecture.md"
    folders = Folders(tree)
    if "--write" in arguments:
        Table(document).write(folders)
    problems = list(problems_of(folders, Table(document)))
    arrows = sum(len(targets) for targets in folders.arrows.values())
    print("\n".join(problems) or f"{len(folders.sources)} folders, {arrows} arrows: as the table says")
    return 1 if problems or not arrows else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
