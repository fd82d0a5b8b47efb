"""Long tables: chosen rows and conditions take the memory of what is read, not of the table."""

import tracemalloc

import numpy as np
import pytest

import ovfile

ROWS = 300_000


@pytest.fixture(scope="module")
def table(tmp_path_factory):
    path = tmp_path_factory.mktemp("parts") / "long.ovt"
    count = np.arange(ROWS, dtype=float)
    codes = np.array(["LIME", "", "SKARN"], object)[np.arange(ROWS) % 3]
    ovfile.write({"N": count, "ROCK": codes}, path)
    with ovfile.open(path) as made:
        yield made


def most_memory(work):
    """The most bytes that Python and numpy held at once, and what `work` answered."""
    tracemalloc.start()
    try:
        found = work()
        return tracemalloc.get_traced_memory()[1], found
    finally:
        tracemalloc.stop()


def test_batches_of_a_condition(table):
    """Testing the whole table at once would take 50 bytes for each row."""

    def work():
        return sum(len(batch["N"]) for batch in table.batches(10_000, "N", where="N >= 100 AND N < 250000"))

    most, found = most_memory(work)
    assert found == 249_900
    assert most < 30 * ROWS


@pytest.mark.parametrize("rows", [997, 65_535, 65_536, 65_537, 1_000_000, ROWS + 1])
def test_batches_of_a_condition_are_those_rows(table, rows):
    chosen = "N >= 65000 AND N < 65100 OR N >= 299995"
    parts = list(table.batches(rows, where=chosen))
    expected = [*range(65_000, 65_100), *range(299_995, 300_000)]
    assert np.concatenate([part["N"] for part in parts]).tolist() == expected
    texts = np.concatenate([part["ROCK"] for part in parts]).tolist()
    assert texts == [("LIME", "", "SKARN")[row % 3] for row in expected]


def test_the_first_and_the_last_row(table):
    most, found = most_memory(lambda: table.read(rows=[ROWS - 1, 0, ROWS - 1, 1]))
    assert found["N"].tolist() == [299_999, 0, 299_999, 1]
    assert found["ROCK"].tolist() == ["SKARN", "LIME", "SKARN", ""]
    assert most < 4_500_000


@pytest.mark.parametrize(
    "rows",
    [slice(None, None, 1000), slice(None, None, -1000), slice(5, None, 100_001), range(ROWS - 1, -1, -99_999)],
)
def test_steps(table, rows):
    expected = list(range(ROWS)[rows] if isinstance(rows, slice) else rows)
    most, found = most_memory(lambda: table.read("N", rows=rows))
    assert found["N"].tolist() == expected
    assert most < 4_500_000


def test_steps_with_a_condition(table):
    where = "ROCK = 'SKARN' AND N < 200000"
    found = table.read("N", where, slice(None, None, -1000))
    assert found["N"].tolist() == [n for n in range(199_999, -1, -1000) if n % 3 == 2]


def test_chosen_rows_of_which_none_passes(table):
    found = table.read(where="N < 0", rows=[0, ROWS - 1])
    assert (found["N"].tolist(), found["ROCK"].tolist()) == ([], [])


def test_categories_of_chosen_rows(table):
    frame = table.to_pandas(["ROCK"], rows=[ROWS - 1, 0, 1], categories=True)
    assert frame["ROCK"].tolist() == ["SKARN", "LIME", ""]
