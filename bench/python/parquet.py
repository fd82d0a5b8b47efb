"""parquet.py [ROWS]: a table goes to Parquet within 1 GB of memory, beside DuckDB's own table.

The table has 8 columns of doubles and 20 million rows unless ROWS says otherwise (6 GB in TMPDIR for the tables
and the Parquet files). OVFILE_DUCKDB names DuckDB's library. There is no target but the memory: time and peak
memory are stated.
"""

import os
import statistics
import sys
import tempfile

import measuring
import numpy as np

import ovfile

COLUMNS = [f"C{number}" for number in range(8)]
ROUNDS = 3
LIMIT = "1GB"


def make(folder, rows):
    generator = np.random.default_rng(1)
    with ovfile.create(f"{folder}/t.ovt", COLUMNS) as table:
        for first in range(0, rows, 500_000):
            table.append({name: generator.random(min(500_000, rows - first)) for name in COLUMNS})
    measuring.command("sql", f"attach '{folder}/t.duckdb' as d; create table d.t as from '{folder}/t.ovt'")


def main():
    rows = int(sys.argv[1]) if len(sys.argv) > 1 else 20_000_000
    with tempfile.TemporaryDirectory() as folder:
        make(folder, rows)
        works = {
            "export": ["export", f"{folder}/t.ovt", f"{folder}/a.parquet", "--memory", LIMIT],
            "DuckDB's own": ["sql", "--memory", LIMIT,
                             f"attach '{folder}/t.duckdb' as d; copy d.t to '{folder}/b.parquet' (format parquet)"],
        }
        times = {name: [] for name in works}
        peaks = {name: 0 for name in works}
        for _ in range(ROUNDS):
            for name, arguments in works.items():
                _, seconds, peak = measuring.command(*arguments)
                times[name].append(seconds)
                peaks[name] = max(peaks[name], peak)
        sizes = [os.path.getsize(f"{folder}/{name}.parquet") for name in "ab"]
        _, back, peak_back = measuring.command("import", f"{folder}/a.parquet", f"{folder}/back.ovt", "--memory", LIMIT)
        measuring.command("diff", f"{folder}/t.ovt", f"{folder}/back.ovt")
    times = {name: statistics.median(found) for name, found in times.items()}
    for (name, seconds), size in zip(times.items(), sizes):
        print(f"{name:13} {seconds:6.2f} s, peak memory {peaks[name] / measuring.MB:5.0f} MB, "
              f"file {size / measuring.MB:.0f} MB")
    print(f"{'import':13} {back:6.2f} s, peak memory {peak_back / measuring.MB:5.0f} MB; equal to the table")
    ratio = times["export"] / times["DuckDB's own"]
    print(f"export beside DuckDB's own: ratio {ratio:.2f}")
    return 0 if measuring.report("peak memory beside the limit", peaks["export"] / 1e9, 1) else 1


if __name__ == "__main__":
    sys.exit(main())
