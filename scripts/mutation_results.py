"""What became of each change of runtime/, kept beside the builds so that a run of all goes on where the last one stopped.

A line each, fields divided by tabs:  OUTCOME  STATE  DESCRIPTION
  OUTCOME      the test that noticed the change, "-" for none, "!" for a change that does not compile
  STATE        what the outcome is good for: the file that was changed, or, where no test noticed it, the whole tree,
               since another test may
  DESCRIPTION  the place and the change

Each shard writes a file of its own and reads those of all."""

import hashlib
import os

SURVIVED = "-"
DOES_NOT_COMPILE = "!"


def state_of(texts):
    """Changes when any of the texts does."""
    digest = hashlib.sha256()
    for text in texts:
        digest.update(len(text).to_bytes(8, "big") + text)
    return digest.hexdigest()[:16]


def read_bytes(path):
    with open(path, "rb") as file:
        return file.read()


def state_of_tree(root):
    paths = sorted(os.path.join(folder, name) for folder, _, names in os.walk(root) for name in names)
    return state_of([part for path in paths for part in (os.path.relpath(path, root).encode(), read_bytes(path))])


class Results:
    def __init__(self, folder, shard, source, tree_state):
        os.makedirs(folder, exist_ok=True)
        self.folder = folder
        self.own = os.path.join(folder, f"{shard}.tsv")
        self.source = source
        self.tree_state = tree_state
        self.file_states = {}

    def state(self, outcome, file):
        if outcome == SURVIVED:
            return self.tree_state
        if file not in self.file_states:
            self.file_states[file] = state_of([read_bytes(os.path.join(self.source, file))])
        return self.file_states[file]

    def add(self, file, outcome, description):
        with open(self.own, "a", encoding="utf-8") as lines:
            lines.write(f"{outcome}\t{self.state(outcome, file)}\t{description}\n")

    def read(self):
        """The outcomes that still hold, by description."""
        outcomes = {}
        for name in sorted(os.listdir(self.folder)):
            with open(os.path.join(self.folder, name), encoding="utf-8") as lines:
                for line in lines:
                    self.take(line, outcomes)
        return outcomes

    def take(self, line, outcomes):
        fields = line.rstrip("\n").split("\t", 2)
        # A run that was stopped may leave half a line behind.
        if not line.endswith("\n") or len(fields) != 3:
            return
        outcome, state, description = fields
        file = description.split(": ", 1)[0]
        if os.path.exists(os.path.join(self.source, file)) and state == self.state(outcome, file):
            outcomes[description] = outcome
