#!/usr/bin/env python3
"""Compares the table of docs/conformance.md with the checks of the kit and with the saboteurs that prove them.

Usage: conformance.py SOURCE_TREE PROGRAM [--write]

PROGRAM is driver-conformance, in kit/ of a build tree. Reported are a row that is not as check and saboteurs say, a check or
a row without the other, a saboteur of a check that there is none of, and a check that no saboteur proves. With --write the
table is brought up to date first.
"""

import pathlib
import re
import subprocess
import sys

TITLE = "| Check | Why | What a saboteur does |"
# Nothing that a driver does: what the subject lacks. tests/conformance/ has a test of its own for each.
WITHOUT_SABOTEUR = {"commands.both-ways"}


def checks_of(program):
    """Why a driver has to pass each check, by the check's id."""
    listed = subprocess.run([program, "--list"], check=True, capture_output=True, text=True).stdout
    return dict(line.split(None, 1) for line in listed.splitlines())


def saboteurs_of(tree):
    """What the saboteurs do, by the id of the check that each must fail."""
    found = {}
    for path in sorted((tree / "tests" / "conformance" / "saboteurs").rglob("*.patch")):
        header = path.read_text().split("\n--- ")[0]
        check = re.search(r"^Check: (.+)$", header, re.MULTILINE).group(1)
        what = re.search(r"^What: (.+)$", header, re.MULTILINE).group(1)
        found.setdefault(check, []).append(f"`{path.stem}`: {what}")
    return found


def expected_rows(checks, saboteurs):
    return [f"| `{check}` | {why} | {' '.join(saboteurs.get(check, ['–']))} |" for check, why in checks.items()]


def table_of(lines):
    first = lines.index(TITLE) + 2
    end = first
    while end < len(lines) and lines[end].startswith("|"):
        end += 1
    return first, end


def problems_of(rows, expected, checks, saboteurs):
    for row in [row for row in rows if row not in expected]:
        yield f"in the table, but not so: {row}"
    for row in [row for row in expected if row not in rows]:
        yield f"not in the table: {row}"
    if rows != expected and sorted(rows) == sorted(expected):
        yield "the rows are not in the order of the checks"
    for check in saboteurs.keys() - checks.keys():
        yield f"a saboteur is of {check}, which is no check"
    for check in checks.keys() - saboteurs.keys() - WITHOUT_SABOTEUR:
        yield f"no saboteur proves {check}"


def main(arguments):
    tree = pathlib.Path(arguments[0])
    document = tree / "docs" / "conformance.md"
    checks, saboteurs = checks_of(arguments[1]), saboteurs_of(tree)
    expected = expected_rows(checks, saboteurs)
    lines = document.read_text().splitlines()
    first, end = table_of(lines)
    if "--write" in arguments:
        lines[first:end] = expected
        document.write_text("\n".join(lines) + "\n")
        first, end = table_of(lines)
    problems = list(problems_of(lines[first:end], expected, checks, saboteurs))
    count = sum(map(len, saboteurs.values()))
    print("\n".join(problems) or f"{len(checks)} checks, {count} saboteurs: as the table says")
    return 1 if problems or not checks else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
