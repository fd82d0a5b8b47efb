"""columns.py [ROWS]: sums of columns through the package's batches, held against numpy over a memory map.

The table has 8 columns of doubles and 5 million rows unless ROWS says otherwise (340 MB in TMPDIR). The
targets: all columns within 2 times numpy's time, one column of the eight within 3 times. A table keeps its
rows one behind the other, so that numpy too has all of them pass to get at one column.
"""

import os
import sys
import tempfile

import measuring
import numpy as np

import ovfile

COLUMNS = 8
PAGE_WORDS, USED_WORDS = 512, 508
RECORDS = USED_WORDS // COLUMNS
PAGE = np.dtype([("records", "<f8", (RECORDS, COLUMNS)), ("rest", "<f8", PAGE_WORDS - RECORDS * COLUMNS)])
HEADER_PAGES = 1
PAGES_WORD, LAST_RECORDS_WORD = 26, 27
ROUNDS = 9


def make(path, rows):
    generator = np.random.default_rng(1)
    with ovfile.create(path, [f"C{number}" for number in range(COLUMNS)]) as table:
        for first in range(0, rows, 500_000):
            count = min(500_000, rows - first)
            table.append({name: generator.integers(0, 1000, count) / 8 for name in table.columns})


class Mapped:
    """The table's pages as they lie in the file."""

    def __init__(self, path):
        header = np.memmap(path, "<f8", "r", shape=(PAGE_WORDS,))
        pages = int(header[PAGES_WORD]) - HEADER_PAGES
        assert os.path.getsize(path) == (pages + HEADER_PAGES) * PAGE.itemsize
        found = np.memmap(path, PAGE, "r", HEADER_PAGES * PAGE.itemsize, (pages,))["records"]
        self.full = found[:-1]
        self.last = found[-1, : int(header[LAST_RECORDS_WORD])]

    def sums(self):
        return self.full.sum(axis=(0, 1)) + self.last.sum(axis=0)

    def sums_one_by_one(self):
        return np.array([self.sum(column) for column in range(COLUMNS)])

    def sum(self, column):
        return self.full[:, :, column].sum() + self.last[:, column].sum()


def sums_by_batches(path, columns=None):
    totals = None
    with ovfile.open(path) as table:
        for batch in table.batches(columns=columns):
            found = np.array([values.sum() for values in batch.values()])
            totals = found if totals is None else totals + found
    return totals


def main():
    rows = int(sys.argv[1]) if len(sys.argv) > 1 else 5_000_000
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "table.ovt")
        make(path, rows)
        expected = Mapped(path).sums()
        np.testing.assert_allclose(sums_by_batches(path), expected, rtol=1e-12)
        np.testing.assert_allclose(Mapped(path).sums_one_by_one(), expected, rtol=1e-12)
        np.testing.assert_allclose(sums_by_batches(path, ["C3"]), expected[3], rtol=1e-12)
        times = measuring.medians(
            ROUNDS,
            all_mapped=lambda: Mapped(path).sums(),
            all_one_by_one=lambda: Mapped(path).sums_one_by_one(),
            all_batches=lambda: sums_by_batches(path),
            one_mapped=lambda: Mapped(path).sum(3),
            one_batches=lambda: sums_by_batches(path, ["C3"]),
        )
    for name, seconds in times.items():
        print(f"{name:15} {seconds * 1000:8.1f} ms  {rows / seconds / 1e6:7.1f} million rows/s")
    fastest = min(times["all_mapped"], times["all_one_by_one"])
    good = measuring.report("all columns", times["all_batches"] / fastest, 2)
    good &= measuring.report("one column of 8", times["one_batches"] / times["one_mapped"], 3)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
