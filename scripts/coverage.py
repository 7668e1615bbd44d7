#!/usr/bin/env python3
"""Prints the coverage of runtime/ from llvm-cov's export and judges it. Called by coverage.sh."""

import collections
import json
import os
import sys

import source_text

LINES_WANTED = 100.0
BRANCHES_WANTED = 95.0
LEFT_FILE = "tests/coverage-left.txt"


Segment = collections.namedtuple("Segment", "line column count has_count is_entry is_gap")


def count_of_line(before, here):
    """llvm-cov's own rule takes the gap after a call that never returns for the line that follows; this one does
    not."""
    counted = [segment for segment in here if segment.has_count and not segment.is_gap]
    counts = [segment.count for segment in counted if segment.is_entry]
    if before and before.has_count and not before.is_gap:
        counts.append(before.count)
    if not counts and before and before.is_gap:
        counts = [segment.count for segment in counted]
    return max(counts) if counts else None


class File:
    """How often each line ran, and each direction of each condition."""

    def __init__(self):
        self.lines = {}
        self.branches = collections.Counter()

    def add_lines(self, segments):
        segments = [Segment(*fields) for fields in segments]
        before = None
        for line in range(segments[0].line, segments[-1].line + 1):
            here = [segment for segment in segments if segment.line == line]
            count = count_of_line(before, here)
            if count is not None:
                self.lines[line] = count
            before = here[-1] if here else before

    def add_branches(self, branches, line=None):
        for first_line, first_column, _, _, true_count, false_count, *_ in branches:
            place = (line or first_line, first_line, first_column)
            self.branches[place + (True,)] += true_count
            self.branches[place + (False,)] += false_count

    def keep_only_code(self, source):
        """Comments, and lines of braces and the like, say nothing that others do not."""
        self.lines = {line: count for line, count in self.lines.items() if is_code(source[line - 1])}


def is_code(line):
    return any(map(str.isalnum, line)) and not line.strip().startswith("//")


def source_of(root, name):
    with open(os.path.join(root, name), encoding="utf-8") as source:
        return source.read().split("\n")


def read_export(root, path):
    with open(path, encoding="utf-8") as export:
        data = json.load(export)["data"][0]
    files = {}
    for entry in data["files"]:
        name = os.path.normpath(entry["filename"])
        if not name.startswith("runtime/"):
            continue
        file = files[name] = File()
        file.add_lines(entry["segments"])
        file.add_branches(entry["branches"])
        for expansion in entry["expansions"]:
            file.add_branches(expansion["branches"], expansion["source_region"][0])
        file.keep_only_code(source_of(root, name))
    return files


def percent(part, whole):
    return 100.0 if whole == 0 else 100.0 * part / whole


def covered(counts):
    return sum(1 for count in counts.values() if count > 0)


def row_of(file, exempt):
    lines = {line: count for line, count in file.lines.items() if line not in exempt}
    return [covered(lines), len(lines), covered(file.branches), len(file.branches)]


def print_row(name, row):
    lines, all_lines, branches, all_branches = row
    print(f"{name:72} {lines:4}/{all_lines:<4} {percent(lines, all_lines):6.2f} %   "
          f"{branches:4}/{all_branches:<4} {percent(branches, all_branches):6.2f} %")


def lines_of(root, name, entries):
    source = source_of(root, name)
    return {index + 1 for index in range(len(source)) if f"{name}: {source_text.place(source, index)}" in entries}


def print_table(root, files, listed):
    print(f"{'':72} {'lines':>18} {'branches':>20}")
    rows = {name: row_of(file, lines_of(root, name, listed)) for name, file in sorted(files.items())}
    for name, row in rows.items():
        print_row(name, row)
    total = [sum(column) for column in zip(*rows.values())]
    print_row("all of runtime/", total)
    return percent(*total[:2]), percent(*total[2:])


def missing(root, files):
    """What no test runs, as "file: place"."""
    for name, file in files.items():
        source = source_of(root, name)
        lines = [line for line, count in file.lines.items() if count == 0]
        lines += [place[0] for place, count in file.branches.items() if count == 0]
        for line in lines:
            yield f"{name}: {source_text.place(source, line - 1)}"


def main():
    root, export = sys.argv[1:]
    files = read_export(root, export)
    listed = source_text.read_list(os.path.join(root, LEFT_FILE))
    left = set(missing(root, files))
    lines, branches = print_table(root, files, listed)
    problems = []
    if lines < LINES_WANTED:
        problems.append(f"{lines:.2f} % of the lines, {LINES_WANTED:.0f} % wanted")
    if branches < BRANCHES_WANTED:
        problems.append(f"{branches:.2f} % of the branches, {BRANCHES_WANTED:.0f} % wanted")
    problems += [f"neither covered nor in {LEFT_FILE}: {entry}" for entry in sorted(left - listed)]
    problems += [f"covered, but in {LEFT_FILE}: {entry}" for entry in sorted(listed - left)]
    for problem in problems:
        print(problem, file=sys.stderr)
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
