"""sql.py [ROWS]: a filter and an average in SQL over a table file, held against DuckDB's own table and SQLite's.

The table has 8 columns of doubles and 10 million rows unless ROWS says otherwise (2 GB in TMPDIR for the three
of them). OVFILE_DUCKDB names DuckDB's library. A query is timed as a whole command, start and all, and by
itself, as what it adds to a process that asks it many times. The targets: within twice DuckDB's own table, and
at least three times as fast as SQLite.
"""

import contextlib
import os
import sqlite3
import statistics
import sys
import tempfile
import time

import measuring
import numpy as np

import ovfile

COLUMNS = [f"C{number}" for number in range(8)]
ROUNDS = 7
REPEATED = 20
QUESTION = "select avg(C0) from {} where C1 > 0.5"


def parts(rows, seed=1):
    generator = np.random.default_rng(seed)
    for first in range(0, rows, 500_000):
        yield {name: generator.random(min(500_000, rows - first)) for name in COLUMNS}


def make(folder, rows):
    with ovfile.create(f"{folder}/t.ovt", COLUMNS) as table:
        for part in parts(rows):
            table.append(part)
    with contextlib.closing(sqlite3.connect(f"{folder}/t.sqlite")) as base:
        base.execute(f"create table t ({', '.join(f'{name} real' for name in COLUMNS)})")
        for part in parts(rows):
            base.executemany(f"insert into t values ({', '.join('?' * len(COLUMNS))})",
                             zip(*(part[name].tolist() for name in COLUMNS)))
        base.commit()
    measuring.command("sql", f"attach '{folder}/t.duckdb' as d; create table d.t as from '{folder}/t.ovt'")


def asked(prefix, source, times):
    text, seconds, peak = measuring.command("sql", prefix + "; ".join([QUESTION.format(source)] * times))
    return float(text.split()[-1]), seconds, peak


def ask_sqlite(folder):
    with contextlib.closing(sqlite3.connect(f"{folder}/t.sqlite")) as base:
        start = time.perf_counter()
        (found,) = base.execute(QUESTION.format("t")).fetchone()
        return found, time.perf_counter() - start


def main():
    rows = int(sys.argv[1]) if len(sys.argv) > 1 else 10_000_000
    with tempfile.TemporaryDirectory() as folder:
        make(folder, rows)
        sources = {"table file": ("", f"'{folder}/t.ovt'"), "DuckDB": (f"attach '{folder}/t.duckdb' as d; ", "d.t")}
        whole = {name: [] for name in sources}
        alone = {name: [] for name in sources}
        peaks, answers, sqlite = {}, [], []
        for number in range(ROUNDS + 1):
            for name, source in sources.items():
                answer, once, peaks[name] = asked(*source, 1)
                _, often, _ = asked(*source, 1 + REPEATED)
                answers.append(answer)
                if number:
                    whole[name].append(once)
                    alone[name].append((often - once) / REPEATED)
            if number <= 3:
                answer, seconds = ask_sqlite(folder)
                answers.append(answer)
                sqlite.append(seconds)
        np.testing.assert_allclose(answers, answers[0], rtol=1e-9)
    whole = {name: statistics.median(found) for name, found in whole.items()}
    alone = {name: statistics.median(found) for name, found in alone.items()}
    for name in sources:
        print(f"{name:12} command {whole[name] * 1000:7.0f} ms, query alone {alone[name] * 1000:7.1f} ms, "
              f"peak memory {peaks[name] / measuring.MB:.0f} MB")
    sqlite = statistics.median(sqlite)
    print(f"{'SQLite':12} {'':19} query alone {sqlite * 1000:7.1f} ms")
    good = measuring.report("command, beside DuckDB's own table", whole["table file"] / whole["DuckDB"], 2)
    good &= measuring.report("query alone, beside DuckDB's own table", alone["table file"] / alone["DuckDB"], 2)
    good &= measuring.report("SQLite's query beside the whole command", sqlite / whole["table file"], 3, True)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
