#!/usr/bin/env python3
"""Changes one operator, constant or call of runtime/ at a time and looks whether the unit tests notice.

Works in a copy of the tree below build/mutants. Changes that do not compile do not count. What no test notices is
printed; it must stand with a reason in tests/mutation-survivors.txt, or a test is missing. Fails when less than 95 % of
a sample are noticed or explained there, or any of all that there are (--all)."""

import argparse
import filecmp
import math
import os
import random
import resource
import shutil
import subprocess
import sys
import time

import mutation_results
import mutations
import source_text

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WORK = os.environ.get("MUTATION_BUILD_DIR", os.path.join(ROOT, "build", "mutants"))
COPY = os.path.join(WORK, "source")
BUILD = os.path.join(WORK, "build")
RESULTS = os.environ.get("MUTATION_RESULTS_DIR", os.path.join(WORK, "results"))
SURVIVORS_FILE = os.path.join(ROOT, "tests", "mutation-survivors.txt")

WANTED = 95.0
LARGEST_MEMORY = 8 << 30
# For a test that waits for what never comes.
LONGEST_WAIT = 60


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


def limit_resources(seconds):
    """Endless loops are told by processor time, which other programs do not take away."""
    resource.setrlimit(resource.RLIMIT_AS, (LARGEST_MEMORY, LARGEST_MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds))


class Test:
    def __init__(self, name):
        self.name = name
        self.seconds = 0.0
        self.kills = {}

    def passes(self, seconds):
        program = os.path.join(BUILD, self.name + ".dir", self.name)
        try:
            return subprocess.run([program], cwd=os.path.dirname(program), stdin=subprocess.DEVNULL,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=LONGEST_WAIT + seconds, check=False,
                                  preexec_fn=lambda: limit_resources(seconds), start_new_session=True).returncode == 0
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


def remember(tests, decided):
    """Which tests noticed changes in earlier runs: the next ones are tried with those first."""
    by_name = {test.name: test for test in tests}
    for description, outcome in decided.items():
        if outcome in by_name:
            file = description.split(": ", 1)[0]
            by_name[outcome].kills[file] = by_name[outcome].kills.get(file, 0) + 1
    return tests


def noticed_by(tests, file):
    for test in sorted(tests, key=lambda candidate: candidate.rank(file)):
        if not test.passes(5 + math.ceil(10 * test.seconds)):
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


class Tally:
    def __init__(self):
        self.explained = source_text.read_list(SURVIVORS_FILE)
        self.noticed, self.known, self.unexplained = 0, set(), []

    def total(self):
        return self.noticed + len(self.known) + len(self.unexplained)

    def add(self, description, test):
        """Counts a change, and says in a word what became of it."""
        if test is not None:
            self.noticed += 1
            return test
        if description in self.explained:
            self.known.add(description)
            return "explained"
        self.unexplained.append(description)
        return "NOT NOTICED"

    def report(self, wanted):
        share = 100.0 * (self.noticed + len(self.known)) / max(self.total(), 1)
        print(f"\n{self.total()} changes: {self.noticed} noticed, {len(self.known)} explained, "
              f"{len(self.unexplained)} neither ({share:.1f} %)")
        for description in self.unexplained:
            print(f"  {description}")
        if self.total() == 0 or share < wanted:
            sys.exit(1)


def run_sample(count, seed, files):
    prepare()
    tests = find_tests()
    tally = Tally()
    for mutant in chosen(count, seed, files):
        if tally.total() == count:
            break
        outcome = try_mutant(mutant, tests)
        if outcome is not None:
            print(f"{tally.add(*outcome):28} {outcome[0]}", flush=True)
    tally.report(WANTED)


def every_mutant(files):
    return [mutant for place in mutations.all_mutants(ROOT) for mutant in place if not files or mutant.file in files]


def run_shard(shard, shards, files):
    """One part of all changes, of which those that are decided are not tried again."""
    prepare()
    results = mutation_results.Results(RESULTS, f"{shard}-of-{shards}", COPY, mutation_results.state_of_tree(COPY))
    tests, decided = None, results.read()
    for number, mutant in enumerate(every_mutant(files)):
        description = mutations.describe(mutant, read_lines(mutant.file))
        if number % shards != shard - 1 or description in decided:
            continue
        # The first that is to be tried: a run with nothing left to do measures no tests.
        tests = tests or remember(find_tests(), decided)
        outcome = try_mutant(mutant, tests)
        word = mutation_results.DOES_NOT_COMPILE if outcome is None else outcome[1] or mutation_results.SURVIVED
        results.add(mutant.file, word, description)
        print(f"{word:28} {description}", flush=True)


def start_shard(shard, shards, files):
    folder = os.path.join(WORK, str(shard))
    environment = dict(os.environ, MUTATION_BUILD_DIR=folder, MUTATION_RESULTS_DIR=RESULTS)
    command = [sys.executable, os.path.abspath(__file__), "--all", "--shard", f"{shard}/{shards}", *files]
    return subprocess.Popen(command, env=environment)


def run_all(files):
    """All shards at once, one for each processor; then what all of them have found."""
    shards = os.cpu_count() or 1
    running = [start_shard(shard, shards, files) for shard in range(1, shards + 1)]
    if any([shard.wait() != 0 for shard in running]):
        sys.exit("a part of the run failed; the same command goes on from there")
    copy_tree()
    results = mutation_results.Results(RESULTS, "all", COPY, mutation_results.state_of_tree(COPY))
    outcomes = results.read()
    tally = Tally()
    for mutant in every_mutant(files):
        description = mutations.describe(mutant, read_lines(mutant.file))
        if outcomes[description] != mutation_results.DOES_NOT_COMPILE:
            tally.add(description, None if outcomes[description] == mutation_results.SURVIVED else outcomes[description])
    for description in sorted(tally.explained - tally.known) if not files else []:
        print(f"listed, but noticed or gone: {description}")
    tally.report(100.0)


def shard_number(text):
    """K/N as two numbers, of which K is from 1 to N."""
    shard, divided, shards = text.partition("/")
    if not (divided and shard.isdecimal() and shards.isdecimal() and 1 <= int(shard) <= int(shards)):
        raise argparse.ArgumentTypeError(f"{text!r} is not K/N with K from 1 to N, such as 2/4")
    return int(shard), int(shards)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, default=200, help="number of changes (default 200)")
    parser.add_argument("--seed", type=int, default=1, help="chooses the changes (default 1)")
    parser.add_argument("--all", action="store_true",
                        help="every change there is, in hours; goes on where the last such run was stopped")
    parser.add_argument("--shard", type=shard_number, metavar="K/N", help="with --all: part K of N alone, without a report")
    parser.add_argument("files", nargs="*", help="only changes of these files, named from the root of the tree")
    options = parser.parse_args()
    if options.shard and not options.all:
        parser.error("--shard needs --all")
    if options.shard:
        run_shard(*options.shard, options.files)
    elif options.all:
        run_all(options.files)
    else:
        run_sample(options.count, options.seed, options.files)


if __name__ == "__main__":
    main()
