#!/usr/bin/env python3
"""Makes the project databases of the benchmarks: bits (one link for each pattern of used inputs) and tags-N."""

import pathlib
import random
import sqlite3
import sys

AREA_BITS = 2000
# Port name of the link, and the used addresses of its 2000 discrete inputs.
BIT_LINKS = {
    "COM1": range(1, AREA_BITS + 1),
    "COM2": [n for n in range(1, AREA_BITS + 1) if (n - 1) % 16 < 8],
    "COM3": range(1, AREA_BITS + 1, 2),
    "COM4": range(AREA_BITS + 1, AREA_BITS + 101),
}
TAG_SIZES = (10_000, 100_000, 1_000_000)
STATIONS = 8


def create(path, links):
    path.unlink(missing_ok=True)
    database = sqlite3.connect(path)
    database.executescript("""
        CREATE TABLE LINK (LINKID INTEGER, HMIPORT INTEGER);
        CREATE TABLE NODE (LINKID INTEGER, STATIONID INTEGER, ISDEFAULT INTEGER, IP TEXT, PORT INTEGER);
        CREATE TABLE custom_tag_table (name TEXT, address TEXT, connector_id INTEGER);
        CREATE TABLE expected (station INTEGER, area TEXT, addresses INTEGER);
        """)
    for link, port in links:
        database.execute("INSERT INTO LINK VALUES (?, ?)", (link, port))
        database.execute("INSERT INTO NODE VALUES (?, 1, 1, '127.0.0.1', 502)", (link,))
    return database


def add_tags(database, link, addresses):
    rows = ((f"tag{i}", address, link) for i, address in enumerate(addresses))
    database.executemany("INSERT INTO custom_tag_table VALUES (?, ?, ?)", rows)


def make_bits(path):
    database = create(path, [(i, 999 + i) for i in range(1, len(BIT_LINKS) + 1)])
    for link, numbers in enumerate(BIT_LINKS.values(), 1):
        add_tags(database, link, [f"DI{n}" for n in numbers])
    database.commit()
    database.close()


def mixed_tags(count, used):
    """40 % registers, 20 % DI, 20 % DO, 10 % FN5DO, 10 % with a station; fills used[station, area]."""
    chance = random.Random(count)
    for i in range(count):
        number = chance.randint(1, 65536)
        kind = i % 10
        area = ("HR", "IR", "HR", "IR", "DI", "DI", "DO", "DO", "FN5DO", ("DI", "DO", "FN5DO")[i // 10 % 3])[kind]
        station = chance.randint(1, STATIONS) if kind == 9 else 1
        if kind > 3:
            used.setdefault((station, "DI" if area == "DI" else "DO"), set()).add(number)
        yield f"{station}-{area}{number}" if kind == 9 else f"{area}{number}"


def make_tags(path, count):
    database = create(path, [(1, 2000)])
    used = {}
    add_tags(database, 1, mixed_tags(count, used))
    database.executemany("INSERT INTO expected VALUES (?, ?, ?)",
                         [(station, area, len(numbers)) for (station, area), numbers in sorted(used.items())])
    database.commit()
    database.close()


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    make_bits(folder / "bits")
    for count in TAG_SIZES:
        make_tags(folder / f"tags-{count}", count)


if __name__ == "__main__":
    main()
