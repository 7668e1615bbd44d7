#!/usr/bin/env python3
"""Prints the coverage of runtime/ or of desk/ from llvm-cov's export and judges it. Called by coverage.sh.

Lines, branches (each direction of each condition) and decisions (each condition shown to decide alone, MC/DC). Of
runtime/ all is wanted but for what tests/coverage-left.txt lists, of desk/ a share of the branches."""

import collections
import json
import os
import sys

import source_text

DESK_BRANCHES_WANTED = 95.0
LEFT_FILE = "tests/coverage-left.txt"
MOST_LEFT = 10


Segment = collections.namedtuple("Segment", "line column count has_count is_entry is_gap")
Share = collections.namedtuple("Share", "covered all")


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
    """How often each line ran, and each direction of each condition; which conditions were shown to decide alone.
    What templates and macros make several times is there when one of them has it."""

    def __init__(self):
        self.lines = {}
        self.branches = collections.Counter()
        self.conditions = collections.Counter()

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

    def add_decisions(self, decisions, line=None):
        for first_line, first_column, *_, shown in decisions:
            for index, is_shown in enumerate(shown):
                self.conditions[(line or first_line, first_line, first_column, index)] += is_shown

    def keep_only_code(self, source):
        """Comments, and lines of braces and the like, say nothing that others do not."""
        self.lines = {line: count for line, count in self.lines.items() if is_code(source[line - 1])}


def is_code(line):
    return any(map(str.isalnum, line)) and not line.strip().startswith("//")


def source_of(root, name):
    with open(os.path.join(root, name), encoding="utf-8") as source:
        return source.read().split("\n")


def read_export(root, path, folder):
    with open(path, encoding="utf-8") as export:
        data = json.load(export)["data"][0]
    files = {}
    for entry in data["files"]:
        name = os.path.normpath(entry["filename"])
        if not name.startswith(folder):
            continue
        file = files[name] = File()
        file.add_lines(entry["segments"])
        file.add_branches(entry["branches"])
        file.add_decisions(entry["mcdc_records"])
        for expansion in entry["expansions"]:
            line = expansion["source_region"][0]
            file.add_branches(expansion["branches"], line)
            file.add_decisions(expansion.get("mcdc_records", []), line)
        file.keep_only_code(source_of(root, name))
    return files


def share(counts):
    return Share(sum(1 for count in counts.values() if count > 0), len(counts))


def percent(part):
    return 100.0 if part.all == 0 else 100.0 * part.covered / part.all


def lines_of(root, name, entries):
    source = source_of(root, name)
    return {index + 1 for index in range(len(source)) if f"{name}: {source_text.place(source, index)}" in entries}


def row_of(file, exempt):
    lines = {line: count for line, count in file.lines.items() if line not in exempt}
    return [share(lines), share(file.branches), share(file.conditions)]


def print_row(name, row):
    print(f"{name:72} " + "   ".join(f"{part.covered:4}/{part.all:<4} {percent(part):6.2f} %" for part in row))


def print_table(root, files, listed):
    """Returns the shares of all files."""
    print(f"{'':72} {'lines':>18} {'branches':>20} {'conditions':>20}")
    rows = {name: row_of(file, lines_of(root, name, listed)) for name, file in sorted(files.items())}
    for name, row in rows.items():
        print_row(name, row)
    total = [Share(sum(part.covered for part in column), sum(part.all for part in column))
             for column in zip(*rows.values())]
    print_row("all", total)
    print()
    return total


def missing(root, files):
    """What no test runs, or shows to decide, as "file: place"."""
    for name, file in files.items():
        source = source_of(root, name)
        lines = [line for line, count in file.lines.items() if count == 0]
        lines += [place[0] for part in (file.branches, file.conditions) for place, count in part.items() if count == 0]
        for line in lines:
            yield f"{name}: {source_text.place(source, line - 1)}"


def problems_of_desk(root, files):
    _, branches, _ = print_table(root, files, set())
    if percent(branches) < DESK_BRANCHES_WANTED:
        yield f"{percent(branches):.2f} % of the branches of desk/, {DESK_BRANCHES_WANTED:.0f} % wanted"


def problems_of_runtime(root, files):
    listed = source_text.read_list(os.path.join(root, LEFT_FILE))
    left = set(missing(root, files))
    print_table(root, files, listed)
    if len(listed) > MOST_LEFT:
        yield f"{len(listed)} places in {LEFT_FILE}, {MOST_LEFT} at most"
    yield from (f"neither covered nor in {LEFT_FILE}: {entry}" for entry in sorted(left - listed))
    yield from (f"covered, but in {LEFT_FILE}: {entry}" for entry in sorted(listed - left))


def main():
    root, folder, export = sys.argv[1:]
    problems_of = {"runtime": problems_of_runtime, "desk": problems_of_desk}[folder]
    problems = list(problems_of(root, read_export(root, export, folder + "/")))
    for problem in problems:
        print(problem, file=sys.stderr)
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
