#!/usr/bin/env python3
"""Changes one operator, constant or call of runtime/ at a time and looks whether the unit tests notice.

Works in a copy of the tree below build/mutants. Changes that do not compile do not count. What no test notices is
printed; it must stand with a reason in tests/mutation-survivors.txt, or a test is missing. Fails when less than 95 % of
the changes are noticed or explained there."""

import argparse
import filecmp
import os
import random
import resource
import shutil
import subprocess
import sys
import time

import mutations
import source_text

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WORK = os.environ.get("MUTATION_BUILD_DIR", os.path.join(ROOT, "build", "mutants"))
COPY = os.path.join(WORK, "source")
BUILD = os.path.join(WORK, "build")
SURVIVORS_FILE = os.path.join(ROOT, "tests", "mutation-survivors.txt")

WANTED = 95.0
LARGEST_MEMORY = 8 << 30


def copy_tree():
    """Copies what differs, so that a second run builds little."""
    wanted = {"CMakeLists.txt": os.path.join(ROOT, "scripts", "mutate.cmake")}
    for top in ("runtime", "sdk", "tests", "kit", "cmake"):
        for folder, _, names in os.walk(os.path.join(ROOT, top)):
            for name in names:
                path = os.path.join(folder, name)
                wanted[os.path.relpath(path, ROOT)] = path
    wanted.pop(os.path.join("runtime", "CMakeLists.txt"), None)
    for folder, _, names in os.walk(COPY):
        for name in names:
            path = os.path.join(folder, name)
            if os.path.relpath(path, COPY) not in wanted:
                os.remove(path)
    for name, path in wanted.items():
        target = os.path.join(COPY, name)
        if not os.path.exists(target) or not filecmp.cmp(path, target, shallow=False):
            os.makedirs(os.path.dirname(target), exist_ok=True)
            shutil.copyfile(path, target)


def build():
    return subprocess.run(["ninja", "-C", BUILD], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                          check=False).returncode == 0


def prepare():
    copy_tree()
    subprocess.run(["cmake", "-S", COPY, "-B", BUILD, "-G", "Ninja"], stdout=subprocess.DEVNULL, check=True)
    subprocess.run(["ninja", "-C", BUILD, "--quiet"], check=True)


def limit_resources():
    resource.setrlimit(resource.RLIMIT_AS, (LARGEST_MEMORY, LARGEST_MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class Test:
    def __init__(self, name):
        self.name = name
        self.seconds = 0.0
        self.kills = {}

    def passes(self, limit):
        program = os.path.join(BUILD, self.name + ".dir", self.name)
        try:
            return subprocess.run([program], cwd=os.path.dirname(program), stdin=subprocess.DEVNULL,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=limit, check=False,
                                  preexec_fn=limit_resources, start_new_session=True).returncode == 0
        except subprocess.TimeoutExpired:
            return False

    def measure(self):
        start = time.monotonic()
        if not self.passes(300):
            sys.exit(f"{self.name} fails before anything is changed")
        self.seconds = time.monotonic() - start

    def rank(self, file):
        """Those that noticed changes of this file before come first, then quick ones."""
        kinship = os.path.splitext(os.path.basename(file))[0] + "_test" == self.name
        return (-self.kills.get(file, 0), not kinship, self.seconds)


def find_tests():
    tests = [Test(name[:-len(".dir")]) for name in sorted(os.listdir(BUILD)) if name.endswith("_test.dir")]
    for test in tests:
        test.measure()
    return tests


def noticed_by(tests, file):
    for test in sorted(tests, key=lambda candidate: candidate.rank(file)):
        if not test.passes(5 + 10 * test.seconds):
            test.kills[file] = test.kills.get(file, 0) + 1
            return test.name
    return None


def read_lines(file):
    with open(os.path.join(COPY, file), encoding="utf-8") as source:
        return source.read().split("\n")


def write_lines(file, lines):
    with open(os.path.join(COPY, file), "w", encoding="utf-8") as source:
        source.write("\n".join(lines))


def try_mutant(mutant, tests):
    """None when it does not compile, else its description and the test that noticed it, if one did."""
    original = read_lines(mutant.file)
    line = original[mutant.line - 1]
    changed = line[:mutant.start] + mutant.new + line[mutant.end:]
    write_lines(mutant.file, original[:mutant.line - 1] + [changed] + original[mutant.line:])
    try:
        return (mutations.describe(mutant, original), noticed_by(tests, mutant.file)) if build() else None
    finally:
        write_lines(mutant.file, original)


def chosen(count, seed, files):
    """More than asked for, since not all compile; those of one file together, which saves building it back."""
    places = [place for place in mutations.all_mutants(ROOT) if not files or place[0].file in files]
    every = mutations.sample(places, random.Random(seed))
    while batch := [mutant for _, mutant in zip(range(count), every)]:
        yield from sorted(batch, key=lambda mutant: (mutant.file, mutant.line))


def run(count, seed, files):
    prepare()
    tests = find_tests()
    explained = source_text.read_list(SURVIVORS_FILE)
    noticed, known, unexplained = 0, 0, []
    for mutant in chosen(count, seed, files):
        if noticed + known + len(unexplained) == count:
            break
        outcome = try_mutant(mutant, tests)
        if outcome is None:
            continue
        description, test = outcome
        noticed += test is not None
        known += test is None and description in explained
        if test is None and description not in explained:
            unexplained.append(description)
        print(f"{test or ('explained' if description in explained else 'NOT NOTICED'):28} {description}", flush=True)
    report(noticed, known, unexplained)


def report(noticed, known, unexplained):
    total = noticed + known + len(unexplained)
    print(f"\n{total} changes: {noticed} noticed, {known} explained, {len(unexplained)} neither")
    for description in unexplained:
        print(f"  {description}")
    if total == 0 or 100.0 * (noticed + known) / total < WANTED:
        sys.exit(1)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, default=200, help="number of changes (default 200)")
    parser.add_argument("--seed", type=int, default=1, help="chooses the changes (default 1)")
    parser.add_argument("files", nargs="*", help="only changes of these files, named from the root of the tree")
    options = parser.parse_args()
    run(options.count, options.seed, options.files)


if __name__ == "__main__":
    main()
