#!/usr/bin/env python3
"""Compares docs/error-texts.md with the texts that the driver's sources raise, both ways.

Usage: error_texts.py SOURCE_TREE
"""

import pathlib
import re
import sys

LITERAL = re.compile(r'"((?:[^"\\]|\\.)*)"')


def calls(source, name):
    """The argument texts of every call of `name` in `source`."""
    for match in re.finditer(r"\b" + re.escape(name) + r"\(", source):
        depth, end = 1, match.end()
        while depth:
            depth += {"(": 1, ")": -1}.get(source[end], 0)
            end += 1
        yield source[match.end() : end - 1]


def raised_texts(tree):
    """Texts of the driver and of the tools' assertions, with what is filled in as regular expression."""
    texts = set()
    for path in sorted((tree / "runtime" / "drivers").rglob("*.cpp")):
        source = path.read_text()
        for name in ("setCommError", "fail", "failAndClose", "canStart"):
            for arguments in calls(source, name):
                texts.update(LITERAL.findall(arguments)[:1])
        for arguments in calls(source, "TOOL_ASSERT"):
            texts.update(LITERAL.findall(arguments)[-1:])
    return texts


def pattern_of(text):
    parts = [re.escape(part) for part in re.split(r"(?:%\d)+", text)]
    return re.compile(".+".join(parts))


def documented_texts(tree):
    """Texts in backquotes that stand first in a table row or are said to stop the process."""
    document = (tree / "docs" / "error-texts.md").read_text()
    rows = [line.split("|")[1] for line in document.splitlines() if line.startswith("| `")]
    texts = [text for row in rows for text in re.findall(r"`([^`]+)`", row)]
    stops = document[document.index("## The process stops") :]
    texts += [text.strip('"') for text in re.findall(r'`("[^`]+")`', stops)]
    return [text for text in texts if not re.fullmatch(r"0x[0-9A-F]{2}", text)]


def main():
    tree = pathlib.Path(sys.argv[1])
    patterns = {text: pattern_of(text) for text in raised_texts(tree)}
    documented = documented_texts(tree)
    problems = []
    for text, pattern in patterns.items():
        if not any(pattern.match(entry) for entry in documented):
            problems.append(f"raised by the sources, not in docs/error-texts.md: {text}")
    for entry in documented:
        if not any(pattern.match(entry) for pattern in patterns.values()):
            problems.append(f"in docs/error-texts.md, not raised by the sources: {entry}")
    print("\n".join(problems) or f"{len(patterns)} texts of the sources, {len(documented)} of the document: all found")
    return 1 if problems or len(patterns) < 10 else 0


if __name__ == "__main__":
    sys.exit(main())
