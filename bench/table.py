#!/usr/bin/env python3
"""Prints the tables of what scripts/bench.sh has measured. usage: table.py RESULTS"""

import json
import pathlib
import sys

LIMIT = "bare loop"
CLIENTS = (LIMIT, "channel", "driver", "libmodbus", "QModbusTcpClient")
LOADS = ("SELECT", "QSqlQuery", "driver")


def print_table(title, header, rows, names=1):
    """The first columns, as many as there are names, stand on the left."""
    widths = [max(len(row[i]) for row in [header, *rows]) for i in range(len(header))]
    print(f"\n{title}\n")
    for row in [header, *rows]:
        print("  ".join(cell.ljust(width) if i < names else cell.rjust(width)
                        for i, (cell, width) in enumerate(zip(row, widths))).rstrip())


def medians(path):
    """Processor time of every benchmark; other programs on the machine do not count in it."""
    benchmarks = json.loads(path.read_text(encoding="utf-8"))["benchmarks"]
    benchmarks = sorted(benchmarks, key=lambda benchmark: benchmark["family_index"])
    return {b["run_name"]: b["cpu_time"] for b in benchmarks if b["aggregate_name"] == "median"}


def values(path):
    return {name: float(value) for name, value in
            (line.split("\t") for line in path.read_text(encoding="utf-8").splitlines())}


def memory_table(results):
    rows = [[name, f"{time:.0f}"] for name, time in medians(results / "memory.json").items()]
    print_table("The driver on a channel in memory, nanoseconds of processor time", ["", "median"], rows)


def load_table(results):
    times = medians(results / "load.json")
    rows = []
    for tags in sorted({int(name.split("/")[1]) for name in times}):
        select, query, driver = (times[f"{load}/{tags}"] for load in LOADS)
        memory = values(results / f"footprint-{tags}.txt")
        rows.append([f"{tags}", f"{select:.2f}", f"{query:.2f}", f"{driver:.2f}", f"{driver / select:.2f}",
                     f"{driver / query:.2f}"] + [f"{value:.2f}" for value in memory.values()])
    header = ["tags", "SELECT", "QSqlQuery", "driver", "to SELECT", "to query", "growth", "heap", "kept"]
    print_table("Load of a project: milliseconds of processor time; growth of peak memory and peak of the heap in MiB;\n"
                "bytes kept for each used address", header, rows)


def tcp_table(results):
    times = {}
    for line in (results / "tcp.txt").read_text(encoding="utf-8").splitlines():
        transaction, client, *quantiles = line.split("\t")
        times.setdefault(transaction, {})[client] = [float(q) / 1000 for q in quantiles]
    rows = []
    for transaction, clients in times.items():
        driver = clients["driver"][0]
        for client in CLIENTS:
            if client not in clients:
                rows.append([transaction, client, "cannot", "", "", ""])
                continue
            median, low, high = clients[client]
            rows.append([transaction, client, f"{median:.2f}", f"{low:.2f} - {high:.2f}",
                         f"{clients[LIMIT][0] / median:.3f}", f"{median / driver:.2f}"])
    header = ["", "client", "median", "10 - 90 %", "of the limit", "to the driver"]
    print_table("Transactions over TCP, microseconds of processor time", header, rows, names=2)


def plans_table(results):
    header, *rows = [line.split("\t") for line in (results / "plans.txt").read_text(encoding="utf-8").splitlines()]
    print_table("A refresh on the line after three rounds: time and requests", header, rows, names=2)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    results = pathlib.Path(sys.argv[1])
    tcp_table(results)
    memory_table(results)
    load_table(results)
    plans_table(results)
    print("\nCounts\n\n" + (results / "counts.txt").read_text(encoding="utf-8").rstrip())


if __name__ == "__main__":
    main()
