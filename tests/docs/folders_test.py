#!/usr/bin/env python3
"""Whether folders.py notices what it is there for, on a small tree of its own."""

import contextlib
import io
import pathlib
import tempfile
import unittest

import folders

TABLE = """# Architecture

| Folder | What | Includes from |
|---|---|---|
| `runtime/drivers/` | the driver | – |
| `desk/wire/` | frames | `runtime/drivers/` |
| `desk/link/` | links | `desk/wire/`, `runtime/drivers/` |

More text.
"""

SOURCES = {
    "runtime/drivers/tools.h": "",
    "runtime/drivers/tools.cpp": '#include "drivers/tools.h"\n#include <QString>\n',
    "desk/wire/frame.h": '#include "drivers/tools.h"\n',
    "desk/link/session.cpp": '#include "session.h"\n  #  include "desk/wire/frame.h"\n',
    "desk/link/session.h": '#include "drivers/tools.h"\n// #include "desk/nowhere.h"\n',
    "desk/link/CMakeLists.txt": "",
}


class FoldersTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name)
        self.write("docs/architecture.md", TABLE)
        for name, content in SOURCES.items():
            self.write(name, content)

    def write(self, name, content):
        path = self.tree / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(content)

    def replace_in_table(self, old, new):
        self.assertIn(old, TABLE)
        self.write("docs/architecture.md", TABLE.replace(old, new))

    def run_folders(self, *options):
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            code = folders.main([str(self.tree), *options])
        return code, output.getvalue()

    def assert_reported(self, problem):
        self.assertEqual(self.run_folders(), (1, problem + "\n"))

    def test_a_tree_like_its_table(self):
        self.assertEqual(self.run_folders(), (0, "3 folders, 3 arrows: as the table says\n"))

    def test_an_arrow_that_the_table_lacks(self):
        self.replace_in_table("`desk/wire/`, `runtime/drivers/`", "`desk/wire/`")
        self.assert_reported("desk/link includes from runtime/drivers; the table does not say so")

    def test_an_entry_that_is_no_arrow(self):
        self.write("desk/wire/frame.h", "")
        self.assert_reported("desk/wire does not include from runtime/drivers, as the table says")

    def test_a_folder_without_a_row(self):
        self.write("examples/small/driver.cpp", "")
        self.assert_reported("examples/small: the table does not say what it is")

    def test_a_row_without_a_word(self):
        self.replace_in_table("| links |", "|  |")
        self.assert_reported("desk/link: the table does not say what it is")

    def test_a_row_without_a_folder(self):
        self.replace_in_table("\n\nMore", "\n| `desk/live/` | values | – |\n\nMore")
        self.assert_reported("desk/live: in the table, but there is no such folder with sources")

    def test_a_circle(self):
        self.replace_in_table("| the driver | – |", "| the driver | `desk/link/` |")
        self.write("runtime/drivers/tools.h", '#include "desk/link/session.h"\n')
        self.assert_reported("circle: desk/link -> desk/wire -> runtime/drivers -> desk/link")

    def test_an_include_that_leads_nowhere(self):
        self.write("desk/wire/frame.h", '#include "drivers/tools.h"\n#include "drivers/gone.h"\n')
        self.assert_reported("desk/wire/frame.h: there is no drivers/gone.h")

    def test_too_many_sources(self):
        for number in range(folders.MAX_SOURCES - 1):
            self.write(f"desk/wire/frame{number}.cpp", "")
        self.assertEqual(self.run_folders()[0], 0)
        self.write("desk/wire/one_more.h", "")
        self.assert_reported("desk/wire: 26 sources in one folder; at most 25")

    def test_no_sources_at_all(self):
        for name in SOURCES:
            (self.tree / name).unlink()
        self.assertEqual(self.run_folders()[0], 1)

    def test_writing_the_table(self):
        self.write("examples/small/driver.cpp", '#include "drivers/tools.h"\n')
        self.write("desk/link/session.cpp", "")
        (self.tree / "desk/wire/frame.h").unlink()
        self.assertEqual(self.run_folders("--write")[0], 1)
        written = (self.tree / "docs/architecture.md").read_text()
        self.assertEqual(
            written,
            TABLE.replace("| `desk/wire/` | frames | `runtime/drivers/` |\n", "").replace(
                "| `desk/link/` | links | `desk/wire/`, `runtime/drivers/` |\n",
                "| `desk/link/` | links | `runtime/drivers/` |\n| `examples/small/` |  | `runtime/drivers/` |\n",
            ),
        )


if __name__ == "__main__":
    unittest.main()
