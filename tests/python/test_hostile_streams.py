"""Streams whose batches contradict themselves: refused, and nothing outside their memory is read."""

import numpy as np
import pytest
from conftest import without_new_files

import ovfile
from ovfile._arrow_abi import STREAM_CAPSULE, make_capsule
from ovfile._arrow_export import ArrayParts, Batch, Producer, SchemaParts


class Rows:
    def __init__(self, types, batches):
        self.producer = Producer(types, iter(batches))

    def __arrow_c_stream__(self, requested_schema=None):
        return make_capsule(self.producer.stream(), STREAM_CAPSULE)


def numbers(*values):
    return ArrayParts(len(values), [None, np.array(values, float)])


def texts(bounds, data=b"abcdef"):
    return ArrayParts(len(bounds) - 1, [None, np.array(bounds, np.int32), np.frombuffer(data, np.uint8)])


def shifted(parts, offset):
    """The same values, of which the first are said not to count."""
    fill = parts.fill

    def filled(out, children=()):
        fill(out, children)
        out.offset, out.length = offset, parts.length - max(offset, 0)

    parts.fill = filled
    return parts


class ShiftedBatch(Batch):
    offset = 1

    def fill(self, out):
        super().fill(out)
        out.offset = self.offset


NUMBER, TEXT = SchemaParts("A", "g"), SchemaParts("T", "u")
CODES = SchemaParts("T", "i", SchemaParts("", "u"))
HOSTILE = {
    "a column shorter than its batch": (NUMBER, Batch(5, [numbers(1, 2)]), "column A: 2 values for 5 rows"),
    "one far shorter": (NUMBER, Batch(50_000_000, [numbers(1, 2)]), "column A: 2 values for 50000000 rows"),
    "a text column shorter": (TEXT, Batch(3, [texts([0, 1])]), "column T: 1 values for 3 rows"),
    "rows that count behind the end": (NUMBER, ShiftedBatch(3, [numbers(1, 2, 3)]), "3 values for 4 rows"),
    "a batch that begins before itself": (
        NUMBER,
        type("Early", (ShiftedBatch,), {"offset": -1})(1, [numbers(1, 2, 3)]),
        "length or offset that cannot be",
    ),
    "a column that begins before itself": (NUMBER, Batch(1, [shifted(numbers(1), -1)]), "cannot be"),
    "a column offset too far": (NUMBER, Batch(2, [shifted(numbers(1, 2), 1)]), "1 values for 2 rows"),
    "fewer rows than none": (NUMBER, Batch(-1, [numbers(1)]), "length or offset that cannot be"),
    "no columns": (NUMBER, Batch(1, []), "another number of columns"),
    "two columns": (NUMBER, Batch(1, [numbers(1), numbers(2)]), "another number of columns"),
    "no memory": (NUMBER, Batch(2, [ArrayParts(2, [None, None])]), "lacks the column's values"),
    "one buffer": (NUMBER, Batch(2, [ArrayParts(2, [None])]), "lacks some of the column's memory"),
    "texts without characters": (
        TEXT,
        Batch(1, [ArrayParts(1, [None, np.array([0, 3], np.int32), None])]),
        "lacks the texts' characters",
    ),
    "bounds before the memory": (TEXT, Batch(1, [texts([-5, 1])]), "row 1: a text lies outside its memory"),
    "bounds that fall": (TEXT, Batch(2, [texts([0, 5, 1])]), "row 2: a text lies outside its memory"),
    "bounds that fall below": (TEXT, Batch(2, [texts([0, 5, -1])]), "row 2: a text lies outside"),
    "numbers of no dictionary": (
        CODES,
        Batch(1, [ArrayParts(1, [None, np.zeros(1, np.int32)])]),
        "column T: the batch has a dictionary where",
    ),
    "a dictionary's bounds": (
        CODES,
        Batch(1, [ArrayParts(1, [None, np.zeros(1, np.int32)], 0, texts([4, 2]))]),
        "a text lies outside its memory",
    ),
}


@pytest.mark.parametrize("what", HOSTILE)
def test_refused_for_a_new_table(path, what):
    kind, batch, words = HOSTILE[what]
    with pytest.raises(ovfile.Error, match=words):
        ovfile.write(Rows([kind], [batch]), path)
    assert not path.exists() and without_new_files(path.parent)


@pytest.mark.parametrize("what", HOSTILE)
def test_refused_by_a_table(path, what):
    kind, batch, _ = HOSTILE[what]
    with ovfile.create(path, ["A", "T:8"]) as table:
        with pytest.raises(ovfile.Error):
            table.append(Rows([kind], [batch]))
        assert len(table) == 0


class SparseBatch(Batch):
    """Four rows, of which the bitmap of the whole rows names some from the offset on."""

    def __init__(self, values, bits, null_count, offset=0):
        super().__init__(4, [values])
        self.bits, self.null_count, self.offset = bits, null_count, offset

    def fill(self, out):
        bitmap = None if self.bits is None else np.array([self.bits], np.uint8)
        ArrayParts(4, [bitmap], self.null_count).fill(out, self.columns)
        out.offset = self.offset


def six(code):
    """What the values 0 to 5 are as floats of this format."""
    return ArrayParts(6, [None, np.arange(6).astype({"f": np.float32, "g": np.float64}[code])])


@pytest.mark.parametrize("how", ["write", "append"])
@pytest.mark.parametrize("code", ["f", "g"])
@pytest.mark.parametrize("bits, null_count, offset", [(0b0101, 2, 0), (0b0101, -1, 0), (0b010111, -1, 2)])
def test_rows_that_are_null_as_a_whole(path, how, code, bits, null_count, offset):
    ovfile.write({"A": [50.0]}, path)
    stream = Rows([SchemaParts("A", code)], [SparseBatch(six(code), bits, null_count, offset)])
    with pytest.raises(ovfile.Error, match="rows that are null"):
        if how == "write":
            ovfile.write(stream, path)
        else:
            with ovfile.open(path, "r+") as table:
                table.append(stream)
    with ovfile.open(path) as table:
        assert table["A"].tolist() == [50]
    assert without_new_files(path.parent)


@pytest.mark.parametrize("code", ["f", "g"])
@pytest.mark.parametrize("bits, null_count", [(0b111100, -1), (0b111100, 0), (0, 0), (None, -1)])
def test_a_bitmap_that_leaves_no_row_of_the_batch_out(path, code, bits, null_count):
    def stream():
        return Rows([SchemaParts("A", code)], [SparseBatch(six(code), bits, null_count, 2)])

    assert ovfile.write(stream(), path) == 4
    with ovfile.open(path, "r+") as table:
        assert table["A"].tolist() == [2, 3, 4, 5]
        table.append(stream())
        assert table["A"].tolist() == [2, 3, 4, 5] * 2


def test_views_of_texts(path):
    """The form that is laid anew before the library has it."""
    view = np.zeros(2, np.dtype("V16"))
    short = ArrayParts(2, [None, view, np.zeros(0, np.int64)])
    with pytest.raises(ovfile.Error, match="2 values for 9 rows"):
        ovfile.write(Rows([SchemaParts("T", "vu")], [Batch(9, [short])]), path)


def test_longer_columns_and_offsets_are_none_of_these(path):
    """A batch may count some of a column's rows."""
    batch = ShiftedBatch(2, [numbers(1, 2, 3, 4), texts([0, 1, 3, 6])])
    assert ovfile.write(Rows([NUMBER, TEXT], [batch]), path) == 2
    with ovfile.open(path) as table:
        assert (table["A"].tolist(), table["T"].tolist()) == ([2, 3], ["bc", "def"])


def test_texts_of_no_rows_may_lack_their_bounds(path):
    empty = ArrayParts(0, [None, np.empty(0, np.int32), None])
    batches = [Batch(0, [empty]), Batch(1, [texts([0, 2])])]
    assert ovfile.write(Rows([TEXT], batches), path) == 1
    with ovfile.open(path) as table:
        assert table["T"].tolist() == ["ab"]


class Wrong:
    def __init__(self, answer):
        self.answer = answer

    def __arrow_c_stream__(self, requested_schema=None):
        return self.answer


@pytest.mark.parametrize("answer", [5, None, "stream"])
def test_no_capsule(path, answer):
    with pytest.raises(ovfile.Error, match="answered no stream"):
        ovfile.write(Wrong(answer), path)


def test_a_capsule_of_something_else(path, assays):
    with ovfile.open(assays) as table, pytest.raises(ovfile.Error, match="answered no stream"):
        ovfile.write(Wrong(table.__arrow_c_schema__()), path.with_name("other.ovt"))


def test_a_stream_taken_twice(path):
    stream = Wrong(Rows([NUMBER], [Batch(1, [numbers(1)])]).__arrow_c_stream__())
    ovfile.write(stream, path)
    with pytest.raises(ovfile.Error, match="taken already"):
        ovfile.write(stream, path)
