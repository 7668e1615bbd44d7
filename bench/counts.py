#!/usr/bin/env python3
"""Measures what can be counted, and fails when a figure is above its limit or 3 % above the committed one.

usage: counts.py PROGRAMS PROJECTS [--update]

PROGRAMS is the build's bench folder, PROJECTS the folder that make_projects.py made. With --update the measured
figures become the committed ones.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

FIGURES = pathlib.Path(__file__).with_name("figures.txt")
TOLERANCE = 1.03
COUNTED_PROJECT = "tags-100000"
LARGEST_PROJECT = "tags-1000000"
ROW = re.compile(r"^(?P<name>\S.*?) {2,}(?P<limit>\S+) +(?P<committed>\S+)$")


def program(folder, name):
    return str(folder / f"{name}.dir" / f"bench_{name}")


def run(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def instructions(*command, without=()):
    """The instructions of every figure that a program dumps, without those of some functions."""
    with tempfile.TemporaryDirectory() as folder:
        run("valgrind", "-q", "--tool=callgrind", "--collect-atstart=no", "--toggle-collect=void counted*",
            *(f"--toggle-collect={function}" for function in without), f"--callgrind-out-file={folder}/out", *command)
        figures = {}
        for dump in pathlib.Path(folder).iterdir():
            text = dump.read_text(encoding="utf-8")
            name = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.MULTILINE)
            if name is not None:
                figures[name[1]] = int(re.search(r"^(?:totals|summary): (\d+)$", text, re.MULTILINE)[1])
        return figures


def printed(*command):
    return {name: float(value) for name, value in (line.split("\t") for line in run(*command).splitlines())}


def measure(programs, projects):
    figures = instructions(program(programs, "counts"), str(projects), COUNTED_PROJECT, without=["CannedChannel::*"])
    load, query = figures.pop("instructions: load"), figures.pop("instructions: query")
    figures["load: instructions a tag, against a query"] = round(load / query, 4)
    figures.update(printed(program(programs, "allocations"), str(projects)))
    footprint = printed(program(programs, "footprint"), str(projects), LARGEST_PROJECT)
    figures.update({name: round(value, 3) for name, value in footprint.items()})
    figures.update(instructions(program(programs, "plans"), "--count"))
    figures.update({name: round(value, 4) for name, value in printed(program(programs, "plans"), "--figures").items()})
    return figures


def written(value):
    return f"{value:.0f}" if value >= 1000 else f"{value:g}"


def rows():
    """The lines of the figures' file, each with its match when it holds a figure."""
    for line in FIGURES.read_text(encoding="utf-8").splitlines():
        yield line, None if line.startswith("#") else ROW.match(line)


def check(figures):
    failures = 0
    print(f"{'figure':<48}{'limit':>10}{'committed':>12}{'measured':>12}")
    for _, row in rows():
        if not row:
            continue
        measured = figures.pop(row["name"], None)
        allowed = [float(row["limit"])] if row["limit"] != "-" else []
        allowed += [float(row["committed"]) * TOLERANCE] if row["committed"] != "-" else []
        is_right = measured is not None and all(measured <= bound for bound in allowed)
        failures += not is_right
        text = "missing" if measured is None else written(measured)
        print(f"{row['name']:<48}{row['limit']:>10}{row['committed']:>12}{text:>12}{'' if is_right else '  FAILS'}")
    for name in figures:
        failures += 1
        print(f"{name}: measured, but not in {FIGURES.name}")
    return failures


def update(figures):
    lines = []
    for line, row in rows():
        if row and row["committed"] != "-":
            line = f"{row['name']:<48}{row['limit']:>10}{written(figures[row['name']]):>12}"
        lines.append(line)
    FIGURES.write_text("\n".join(lines) + "\n", encoding="utf-8")


def main():
    arguments = [argument for argument in sys.argv[1:] if argument != "--update"]
    if len(arguments) != 2:
        sys.exit(__doc__)
    figures = measure(*map(pathlib.Path, arguments))
    if "--update" in sys.argv:
        update(figures)
    sys.exit(1 if check(figures) else 0)


if __name__ == "__main__":
    main()
