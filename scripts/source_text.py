"""Names places in source files by what stands there, since line numbers do not outlast the next change."""


def context(lines, index, size):
    return " / ".join(line.strip() for line in lines[max(index - size, 0):index + 1])


def place(lines, index):
    """The line, with as many of those before it as distinguish it from every other place in the file."""
    for size in range(len(lines)):
        text = context(lines, index, size)
        if sum(context(lines, other, size) == text for other in range(len(lines))) == 1:
            return text
    return lines[index].strip()


def read_list(path):
    """The entries of a list of places: lines without indentation, below each of which its reason stands indented."""
    with open(path, encoding="utf-8") as entries:
        return {line.rstrip("\n") for line in entries if line.strip() and not line.startswith((" ", "#"))}
