"""Floats as doubles: what their shortest digits say, whichever way they come into a double."""

import tracemalloc

import numpy as np
import pandas as pd
import pytest

import ovfile
from ovfile._arrow_abi import STREAM_CAPSULE, make_capsule
from ovfile._arrow_export import ArrayParts, Batch, Producer, SchemaParts
from ovfile._widening import by_digits

SMALL = [3e-8, 1e-30, 1e30, 0.1]
# Floats by their bits, and the digits that they are written with.
WRITTEN = [
    (0x3DCCCCCD, 0.1),
    (0x33000000, 2.9802322e-08),  # 2^-25
    (0x29800000, 5.684342e-14),  # 2^-44: the nearest decimal of so many digits is another float
    (0x00000001, 1e-45),
    (0x80000001, -1e-45),
    (0x007FFFFF, 1.1754942e-38),
    (0x00800000, 1.1754944e-38),
    (0x7F7FFFFF, 3.4028235e38),
    (0xF149F2CA, -1e30),
    (0x7149F2CA, 1e30),
    (0x0DA24260, 1e-30),
    (0x4B800000, 16777216.0),
    (0x4B800001, 16777218.0),
    (0x4C000001, 33554436.0),
    (0x4E932C06, 1234568000.0),
    (0x41801000, 16.007812),  # it is 16.0078125
    (0x41803000, 16.023438),  # it is 16.0234375
    (0x49742408, 1000000.5),
    (0xC2F6E979, -123.456),
    (0x00000000, 0.0),
    (0x80000000, -0.0),
    (0x7F800000, float("inf")),
    (0xFF800000, float("-inf")),
]


def written(values):
    """The digits of each, read as a double."""
    return np.array([float(np.format_float_scientific(value)) for value in values])


def assert_written(values):
    numbers = ~np.isnan(values)
    np.testing.assert_array_equal(
        by_digits(values)[numbers].view(np.int64), written(values[numbers]).view(np.int64)
    )


@pytest.mark.parametrize("bits, expected", WRITTEN, ids=[f"{bits:08x}" for bits, _ in WRITTEN])
def test_the_digits_of_a_float(bits, expected):
    (found,) = by_digits(np.array([bits], np.uint32).view(np.float32))
    assert found.hex() == expected.hex()


def test_nan_keeps_its_bits():
    bits = np.array([0x7FC00000, 0xFFC00000, 0x7FC12345, 0xFFE00001], np.uint32)
    found = by_digits(bits.view(np.float32)).view(np.uint64)
    expected = [0x7FF8000000000000, 0xFFF8000000000000, 0x7FF82468A0000000, 0xFFFC000020000000]
    assert found.tolist() == expected


def test_a_nan_that_signals_is_no_warning():
    with np.errstate(all="raise"):
        found = by_digits(np.array([0x7F800001, 0x3F800000], np.uint32).view(np.float32))
    assert np.isnan(found[0]) and found[1] == 1


def test_floats_of_all_bits():
    generator = np.random.default_rng(20)
    for _ in range(4):
        assert_written(generator.integers(0, 2**32, 50_000, dtype=np.uint32).view(np.float32))


def test_floats_of_all_sizes_that_grades_have():
    generator = np.random.default_rng(21)
    assert_written((10.0 ** generator.uniform(-14.5, 27.5, 100_000)).astype(np.float32))
    for digits in range(1, 10):
        decimals = generator.integers(1, 10**digits, 4000) * 10.0 ** generator.integers(-14, 20, 4000)
        assert_written(decimals.astype(np.float32))


def test_floats_that_are_fractions_of_two():
    generator = np.random.default_rng(22)
    for bits in (3, 8, 13, 24):
        fractions = generator.integers(1, 2**bits, 10_000) * 2.0 ** generator.integers(-35, 10, 10_000)
        assert_written(fractions.astype(np.float32))


def beside(bits):
    return (bits[:, None] + np.arange(-4, 5)).clip(0).astype(np.uint32).ravel().view(np.float32)


def test_the_neighbours_of_powers():
    assert_written(beside(np.arange(0, 255, dtype=np.int64) << 23))
    tens = np.array([float(f"1e{power}") for power in range(-45, 39)], np.float32)
    assert_written(beside(tens.view(np.uint32).astype(np.int64)))


def test_all_the_smallest():
    assert_written(np.arange(3000, dtype=np.uint32).view(np.float32))


def test_long_arrays_and_empty_ones():
    values = np.arange(100_000, dtype=np.float32) / np.float32(8)
    np.testing.assert_array_equal(by_digits(values), np.arange(100_000) / 8)
    assert by_digits(values[::2][:3]).tolist() == [0, 0.25, 0.5]
    assert len(by_digits(values[:0])) == 0


def test_long_arrays_take_no_more_memory_than_the_doubles():
    values = np.random.default_rng(23).random(2_000_000).astype(np.float32)
    by_digits(values[:10])
    tracemalloc.start()
    try:
        found = by_digits(values)
        _, peak = tracemalloc.get_traced_memory()
    finally:
        tracemalloc.stop()
    assert found.nbytes == 16_000_000 and peak < 20_000_000


# Reading.


@pytest.fixture
def single(path):
    ovfile.write({"V": [*SMALL, None]}, path, precision="single")
    return path


def test_widened_columns(single):
    with ovfile.open(single) as table:
        assert table.read("V", widen=True)["V"].tolist()[:4] == SMALL
        assert np.isnan(table.read("V", widen=True)["V"][4])
        assert table.read("V", widen=True, absent="value")["V"].tolist() == [*SMALL, -1e30]
        masked = table.read("V", widen=True, absent="mask")["V"]
        assert masked.dtype == np.float64
        assert masked.tolist() == [*SMALL, None]
        assert table.read("V", widen=True, rows=[3, 0])["V"].tolist() == [0.1, 3e-8]
        assert table.read("V", widen=True, where="V < 1")["V"].tolist() == [3e-8, 1e-30, 0.1]
        assert table.to_pandas(widen=True)["V"].tolist()[:4] == SMALL


def test_widened_batches(single):
    with ovfile.open(single) as table:
        found = [batch["V"] for batch in table.batches(2, widen=True, absent="value")]
        assert [part.dtype for part in found] == [np.float64] * 3
        assert np.concatenate(found).tolist() == [*SMALL, -1e30]
        (masked, *_) = (batch["V"] for batch in table.batches(5, widen=True, absent="mask"))
        assert masked.tolist() == [*SMALL, None]


def test_widened_implicit_columns(path):
    ovfile.write({"A": [1.0, 2]}, path, precision="single", implicit={"SG": 3e-8, "NO": None})
    with ovfile.open(path) as table:
        found = table.read(widen=True, absent="value")
    assert found["SG"].tolist() == [3e-8, 3e-8]
    assert found["NO"].tolist() == [-1e30, -1e30]


def test_a_table_of_doubles_is_as_wide_as_it_gets(path):
    ovfile.write({"V": [0.1 + 0.2, float(np.float32(0.1))]}, path)
    with ovfile.open(path) as table:
        assert table.read("V", widen=True)["V"].tolist() == [0.30000000000000004, 0.10000000149011612]


# Writing.

FLOATS = np.array([*SMALL, 16777218, -1e30, np.nan, np.inf, -np.inf, -0.0], np.float32)
DOUBLES = [*SMALL, 16777218, -1e30, -1e30, np.inf, -np.inf, -0.0]


def kept(path, column="V"):
    with ovfile.open(path) as table:
        assert table.precision == "double"
        return table.read(column, absent="value")[column].view(np.int64).tolist()


def bits(values):
    return np.array(values, np.float64).view(np.int64).tolist()


class Frame:
    """Hands out a stream, as libraries of frames do."""

    def __init__(self, types, batches):
        self._producer = Producer(types, iter(batches))

    def __arrow_c_stream__(self, requested_schema=None):
        return make_capsule(self._producer.stream(), STREAM_CAPSULE)


def frame_of_floats(values, code="f"):
    return Frame([SchemaParts("V", code)], [Batch(len(values), [ArrayParts(len(values), [None, values])])])


@pytest.mark.parametrize(
    "data",
    [
        {"V": FLOATS},
        {"V": FLOATS.astype(">f4")},
        {"V": list(FLOATS)},
        {"V": np.ma.MaskedArray(FLOATS, FLOATS == FLOATS[5])},
        pd.DataFrame({"V": FLOATS}),
        pd.DataFrame({"V": pd.Series(FLOATS, dtype="Float32")}),
    ],
    ids=["array", "big endian", "list", "masked", "frame", "Float32"],
)
def test_floats_in_a_table_of_doubles(path, data):
    ovfile.write(data, path)
    assert kept(path) == bits(DOUBLES)
    with ovfile.open(path, "r+") as table:
        table.append(data)
    assert kept(path) == bits(DOUBLES * 2)


def test_a_stream_of_floats_in_a_table_of_doubles(path):
    numbers = ~np.isnan(FLOATS)
    expected = bits(np.array(DOUBLES)[numbers])
    ovfile.write(frame_of_floats(FLOATS[numbers]), path)
    assert kept(path) == expected
    with ovfile.open(path, "r+") as table:
        table.append(frame_of_floats(FLOATS[numbers]))
    assert kept(path) == expected * 2


def test_a_stream_of_other_columns_too(path):
    """Half floats, nulls with anything beneath, numbers by number, and columns that are left alone."""
    types = [
        SchemaParts("H", "e"),
        SchemaParts("N", "f"),
        SchemaParts("D", "c", SchemaParts("", "f")),
        SchemaParts("I", "i"),
        SchemaParts("T", "u"),
    ]
    valid = np.array([0b101], np.uint8)
    columns = [
        ArrayParts(3, [None, np.array([0.5, 6e-5, 2], np.float16)]),
        ArrayParts(3, [valid, np.array([3e-8, 5e-44, 0.1], np.float32)], 1),
        ArrayParts(
            3,
            [valid, np.array([1, 99, 0], np.int8)],
            1,
            ArrayParts(2, [None, np.array([3e-8, 1e-20], np.float32)]),
        ),
        ArrayParts(3, [None, np.array([7, 8, 9], np.int32)]),
        ArrayParts(3, [None, np.array([0, 1, 1, 3], np.int32), np.frombuffer(b"abc", np.uint8)]),
    ]
    ovfile.write(Frame(types, [Batch(3, columns)]), path)
    assert kept(path, "H") == bits([0.5, 6.0021877e-05, 2])
    assert kept(path, "N") == bits([3e-8, -1e30, 0.1])
    assert kept(path, "D") == bits([1e-20, -1e30, 3e-8])
    assert kept(path, "I") == bits([7, 8, 9])
    with ovfile.open(path) as table:
        assert table["T"].tolist() == ["a", "", "bc"]


def test_a_table_of_floats_becomes_one_of_doubles(single, tmp_path):
    by_stream, by_frame = tmp_path / "stream.ovt", tmp_path / "frame.ovt"
    with ovfile.open(single) as table:
        ovfile.write(table, by_stream)
        assert kept(by_stream) == bits([*SMALL, -1e30])
        with ovfile.open(by_stream, "r+") as more:
            more.append(table)
        assert kept(by_stream) == bits([*SMALL, -1e30] * 2)
    ovfile.write_pandas(ovfile.read_pandas(single), by_frame)
    assert kept(by_frame) == bits([*SMALL, -1e30])


def test_a_table_of_floats_becomes_one_of_doubles_with_its_implicit_columns(path, tmp_path):
    ovfile.write({"A": [1.0, 2]}, path, precision="single", implicit={"SG": 2.7, "NO": None, "T": "x"})
    wide = tmp_path / "wide.ovt"
    with ovfile.open(path) as table:
        ovfile.write(table, wide, precision="double", schema=table.schema)
    with ovfile.open(wide) as table:
        assert [column.implicit for column in table.schema] == [False, True, True, True]
        assert table.schema["SG"].default == 2.7
        assert table["SG"].tolist() == [2.7, 2.7]


def test_a_table_of_doubles_like_one_of_floats(path, tmp_path):
    """The rows of the one go into the other, whichever way."""
    ovfile.write({"A": [1.0, 2]}, path, precision="single", implicit={"SG": 2.7, "NO": None, "T": "x"})
    wide = tmp_path / "wide.ovt"
    with ovfile.open(path) as table:
        with ovfile.create(wide, ["B"], template=table.schema, precision="double") as made:
            assert [column.default for column in made.schema] == [None, 2.7, None, "x", None]
            assert made.append(table) == made.append(table.to_pandas(widen=True)) == 2
            assert made["SG"].tolist() == [2.7] * 4
        with ovfile.create(tmp_path / "same.ovt", template=table.schema) as made:
            assert made.schema.columns == table.schema.columns


@pytest.mark.parametrize(
    "given, expected",
    [(np.float32(0.1), 0.1), (np.float32(3e-8), 3e-8), (np.float16(6e-5), 6.0021877e-05), (0.1, 0.1)],
)
def test_a_single_float_as_a_default(path, given, expected):
    ovfile.write({"A": [1.0]}, path, implicit={"Q": given})
    with ovfile.open(path, "r+") as table:
        table.add_column("I", default=given, implicit=True)
        table.add_column("D", default=given)
        assert [column.default for column in table.schema][1:] == [expected] * 3
    assert [kept(path, name) for name in "QID"] == [bits([expected])] * 3
    with ovfile.create(path, [ovfile.Column.number("C", given)], precision="single", overwrite=True) as table:
        assert table.schema["C"].default == float(np.float32(expected))


def test_floats_among_other_numbers(path):
    values = [np.float32(0.1), 0.5, None, 7, np.float16(6e-5), True, np.float32(-1e30)]
    expected = [0.1, 0.5, -1e30, 7, 6.0021877e-05, 1, -1e30]
    ovfile.write({"V": values}, path)
    assert kept(path) == bits(expected)
    with ovfile.open(path, "r+") as table:
        table.append({"V": [np.float16(6e-5)]})
    assert kept(path) == bits([*expected, 6.0021877e-05])
    ovfile.write({"V": values}, path, precision="single")
    with ovfile.open(path) as table:
        assert table["V"][[0, 4]].view(np.uint32).tolist() == [0x3DCCCCCD, 0x387BC000]


def test_a_column_of_floats_is_added(path):
    ovfile.write({"A": [1.0, 2, 3, 4]}, path)
    with ovfile.open(path, "r+") as table:
        table.add_column("V", np.array(SMALL, np.float32))
    assert kept(path) == bits(SMALL)


def test_floats_in_a_table_of_floats_keep_their_bits(path):
    odd = np.array([0x00000001, 0x33000000, 0x7F7FFFFF, 0x3DCCCCCD], np.uint32).view(np.float32)
    ovfile.write({"V": odd}, path, precision="single")
    with ovfile.open(path, "r+") as table:
        table.append(frame_of_floats(odd))
        table.append({"V": odd})
        assert table["V"].view(np.uint32).tolist() == odd.view(np.uint32).tolist() * 3


def test_a_long_stream_of_floats(path):
    values = (np.arange(150_000) % 4001 / 100).astype(np.float32)
    ovfile.write(frame_of_floats(values), path)
    with ovfile.open(path) as table:
        np.testing.assert_array_equal(table["V"], np.arange(150_000) % 4001 / 100)


@pytest.mark.parametrize("of_objects", [False, True], ids=["array", "objects"])
def test_a_number_beyond_doubles(path, of_objects):
    wide = np.array(["1", "1e400", "-1e400"], np.longdouble)
    if np.isinf(wide[1]):
        pytest.skip("longdouble is a double here")
    values = list(wide) if of_objects else wide
    beyond = pytest.raises(ovfile.Error, match="the number is beyond what the column can hold")
    with np.errstate(all="raise"), beyond as caught:
        ovfile.write({"V": values}, path)
    assert (caught.value.column, caught.value.row) == ("V", 1)
    assert not path.exists()


def test_wide_infinities_and_masked_numbers_beyond_doubles(path):
    wide = np.array(["inf", "1e400", "nan", "1e-400"], np.longdouble)
    ovfile.write({"V": np.ma.MaskedArray(wide, [False, True, False, False])}, path)
    assert kept(path) == bits([np.inf, -1e30, -1e30, 0])
