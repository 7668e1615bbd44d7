"""Names places in source files by what stands there: neither the number of a line nor its neighbours outlast the next
change, the function around it and its own words mostly do."""

import re

# What may stand unindented without being what the lines below it belong to.
NO_HEAD = re.compile(r"^(namespace\b|template\b|public:|protected:|private:|[{}#/]|\s|$)")
NAMED = re.compile(r"\b(?:class|struct|enum|union)\s+(\w+)|(operator\S+?|[\w:~]+)\s*\(|([\w:]+)\s*(?:\[|=|;|$)")


def head(lines, index):
    """The name of the function, type or table that a line stands in; "" outside all of them."""
    for line in reversed(lines[:index]):
        if line.startswith("}"):
            return ""
        if not NO_HEAD.match(line):
            named = NAMED.search(line)
            return next(filter(None, named.groups()), "") if named else ""
    return ""


def words(lines, index):
    """The line with what it stands in."""
    text = lines[index].strip()
    around = head(lines, index) if lines[index].startswith((" ", "\t")) else ""
    return f"{around}: {text}" if around else text


def place(lines, index):
    """The line in its function; the second of two that are equal has its number."""
    text = words(lines, index)
    stripped = lines[index].strip()
    twins = [other for other in range(len(lines))
             if lines[other].strip() == stripped and words(lines, other) == text]
    return text if len(twins) == 1 else f"{text} (#{twins.index(index) + 1})"


def read_list(path):
    """The entries of a list of places: lines without indentation, below each of which its reason stands indented."""
    with open(path, encoding="utf-8") as entries:
        return {line.rstrip("\n") for line in entries if line.strip() and not line.startswith((" ", "#"))}
