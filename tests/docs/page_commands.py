#!/usr/bin/env python3
"""Runs every command of docs/on-site.md in one folder and compares what it prints: page_commands.py PROJECT PROGRAMS

A block of "sh" is run as it stands, but for the port, which is a free one; a block of "text" after it is what it prints on
both outputs, where "…" stands for anything in a line, or alone for any lines. The numbered commands are ten.
"""

import os
import pathlib
import re
import signal
import socket
import subprocess
import sys
import tempfile
import time

BLOCK = re.compile(r"^```(sh|text)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PORT_OF_PAGE = "1502"
PATIENCE = 60


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def wait_for(port):
    deadline = time.monotonic() + PATIENCE
    while time.monotonic() < deadline:
        try:
            socket.create_connection(("127.0.0.1", port)).close()
            return
        except ConnectionRefusedError:
            time.sleep(0.01)
    sys.exit("the slave does not listen")


def pattern_of(expected):
    lines = []
    for line in expected.splitlines():
        lines.append(r"(?:.*\n)*" if line == "…" else ".*".join(re.escape(part) for part in line.split("…")) + r"\n")
    return "".join(lines)


class Page:
    """The commands of a page, in a folder and a shell's environment of their own."""

    def __init__(self, folder, programs):
        self.folder = pathlib.Path(folder)
        self.port = free_port()
        self.slave = 0
        self.environment = dict(os.environ, LC_ALL="C.UTF-8", HOME=folder, XDG_CONFIG_HOME=folder + "/config")
        self.environment["PATH"] = f"{programs}:{os.environ['PATH']}"
        self.environment.pop("DRIVERHOST_TARGET", None)

    def run(self, commands):
        """What the commands print; the program ends when one of them fails."""
        commands = commands.replace(PORT_OF_PAGE, str(self.port))
        is_slave = commands.rstrip().endswith("&")
        if is_slave:
            commands += "echo $! >slave.pid\n"
        output = self.folder / "output"
        with open(output, "w", encoding="utf-8") as stream:
            shell = subprocess.run(["bash", "-euo", "pipefail", "-c", commands], cwd=self.folder, env=self.environment,
                                   stdin=subprocess.DEVNULL, stdout=stream, stderr=subprocess.STDOUT, check=False)
        if is_slave:
            self.slave = int((self.folder / "slave.pid").read_text())
            wait_for(self.port)
            return ""
        printed = output.read_text(encoding="utf-8")
        if shell.returncode != 0:
            sys.exit(f"failed with {shell.returncode}:\n{commands}{printed}")
        return printed

    def end(self):
        if self.slave:
            os.kill(self.slave, signal.SIGTERM)


def check(page, text):
    printed = ""
    for kind, block in BLOCK.findall(text):
        if kind == "sh":
            printed = page.run(block)
        elif not re.fullmatch(pattern_of(block).replace(PORT_OF_PAGE, str(page.port)), printed):
            sys.exit(f"the page has:\n{block}\nprinted is:\n{printed}")


def main(project, programs):
    text = (project / "docs/on-site.md").read_text(encoding="utf-8")
    numbers = re.findall(r"^\*\*(\d+)\.\*\*", text, re.MULTILINE)
    if numbers != [str(number) for number in range(1, 11)]:
        sys.exit(f"the numbered commands are {numbers}, not 1 to 10")
    with tempfile.TemporaryDirectory() as folder:
        page = Page(folder, programs)
        try:
            check(page, text)
        finally:
            page.end()
    print(f"{len(BLOCK.findall(text))} blocks run and compared")


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]), sys.argv[2])
