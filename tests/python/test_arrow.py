"""Arrow streams, in both directions, with a producer and a consumer that know the layout alone."""

import array
import ctypes
import gc
import struct

import numpy as np
import pytest

import ovfile
from ovfile import _arrow_export

POINTER = ctypes.POINTER


class Schema(ctypes.Structure):
    pass


class Array(ctypes.Structure):
    pass


RELEASE_SCHEMA = ctypes.CFUNCTYPE(None, POINTER(Schema))
RELEASE_ARRAY = ctypes.CFUNCTYPE(None, POINTER(Array))
Schema._fields_ = [
    ("format", ctypes.c_char_p),
    ("name", ctypes.c_char_p),
    ("metadata", ctypes.c_void_p),
    ("flags", ctypes.c_int64),
    ("n_children", ctypes.c_int64),
    ("children", POINTER(POINTER(Schema))),
    ("dictionary", POINTER(Schema)),
    ("release", RELEASE_SCHEMA),
    ("private_data", ctypes.c_void_p),
]
Array._fields_ = [
    ("length", ctypes.c_int64),
    ("null_count", ctypes.c_int64),
    ("offset", ctypes.c_int64),
    ("n_buffers", ctypes.c_int64),
    ("n_children", ctypes.c_int64),
    ("buffers", POINTER(ctypes.c_void_p)),
    ("children", POINTER(POINTER(Array))),
    ("dictionary", POINTER(Array)),
    ("release", RELEASE_ARRAY),
    ("private_data", ctypes.c_void_p),
]


class Stream(ctypes.Structure):
    pass


GET_SCHEMA = ctypes.CFUNCTYPE(ctypes.c_int, POINTER(Stream), POINTER(Schema))
GET_NEXT = ctypes.CFUNCTYPE(ctypes.c_int, POINTER(Stream), POINTER(Array))
GET_ERROR = ctypes.CFUNCTYPE(ctypes.c_void_p, POINTER(Stream))
RELEASE_STREAM = ctypes.CFUNCTYPE(None, POINTER(Stream))
Stream._fields_ = [
    ("get_schema", GET_SCHEMA),
    ("get_next", GET_NEXT),
    ("get_last_error", GET_ERROR),
    ("release", RELEASE_STREAM),
    ("private_data", ctypes.c_void_p),
]

get_pointer = ctypes.pythonapi.PyCapsule_GetPointer
get_pointer.restype, get_pointer.argtypes = ctypes.c_void_p, [ctypes.py_object, ctypes.c_char_p]
new_capsule = ctypes.pythonapi.PyCapsule_New
new_capsule.restype = ctypes.py_object
new_capsule.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_void_p]


# The consumer.


def is_there(column, row):
    place = column.offset + row
    if column.null_count == 0 or not column.buffers[0]:
        return True
    return bool(ctypes.c_uint8.from_address(column.buffers[0] + place // 8).value >> place % 8 & 1)


def cell(kind, column, row):
    """A value of a column: None, a float or a text."""
    if not is_there(column, row):
        return None
    place = column.offset + row
    if kind in (b"f", b"g"):
        made = ctypes.c_float if kind == b"f" else ctypes.c_double
        return made.from_address(column.buffers[1] + place * ctypes.sizeof(made)).value
    assert kind == b"u"
    begin, end = struct.unpack("=ii", ctypes.string_at(column.buffers[1] + 4 * place, 8))
    return ctypes.string_at(column.buffers[2] + begin, end - begin).decode("utf-8")


def consume(exporter):
    """The columns of anything that has a stream: names and formats, and the values of each column."""
    capsule = exporter.__arrow_c_stream__()
    stream = Stream.from_address(get_pointer(capsule, b"arrow_array_stream"))
    schema = Schema()
    assert stream.get_schema(ctypes.byref(stream), ctypes.byref(schema)) == 0
    assert schema.format == b"+s"
    fields = [schema.children[i].contents for i in range(schema.n_children)]
    kinds = [(field.name.decode(), field.format) for field in fields]
    values = {name: [] for name, _ in kinds}
    while True:
        batch = Array()
        code = stream.get_next(ctypes.byref(stream), ctypes.byref(batch))
        assert code == 0, stream.get_last_error(ctypes.byref(stream))
        if not batch.release:
            break
        for i, (name, kind) in enumerate(kinds):
            column = batch.children[i].contents
            assert column.length == batch.length
            values[name] += [cell(kind, column, row) for row in range(column.length)]
        batch.release(ctypes.byref(batch))
        assert not batch.release
    schema.release(ctypes.byref(schema))
    stream.release(ctypes.byref(stream))
    assert not stream.release
    return kinds, values


def test_a_table_is_a_stream(assays):
    with ovfile.open(assays) as table:
        kinds, values = consume(table)
    assert kinds == [("BHID", b"u"), ("FROM", b"g"), ("CU", b"g"), ("ROCK", b"u"), ("SG", b"g")]
    assert values["BHID"] == ["LK001", "LK001", "LK001", "LK002", "LK002", "LK003"]
    assert values["CU"] == [0.25, None, 1.75, 0.5, 3, 0.125]
    assert values["ROCK"] == ["SKARN", None, "SKARN", "LIME, GREY", "SKARN", "Küste"]
    assert values["SG"] == [2.7] * 6


def test_a_stream_of_single_precision(path):
    ovfile.write({"A": [0.5, None]}, path, "single")
    with ovfile.open(path) as table:
        assert consume(table) == ([("A", b"f")], {"A": [0.5, None]})


def test_a_schema_capsule(assays):
    with ovfile.open(assays) as table:
        capsule = table.__arrow_c_schema__()
    schema = Schema.from_address(get_pointer(capsule, b"arrow_schema"))
    assert (schema.format, schema.n_children) == (b"+s", 5)
    assert schema.children[3].contents.name == b"ROCK"
    del schema, capsule
    gc.collect()


def test_streams_that_nobody_reads_are_released(assays):
    with ovfile.open(assays) as table:
        for _ in range(100):
            table.__arrow_c_stream__()


def test_a_stream_whose_table_was_closed(assays):
    with ovfile.open(assays) as table:
        capsule = table.__arrow_c_stream__()
    stream = Stream.from_address(get_pointer(capsule, b"arrow_array_stream"))
    batch = Array()
    assert stream.get_next(ctypes.byref(stream), ctypes.byref(batch)) != 0
    assert stream.get_last_error(ctypes.byref(stream))
    assert not batch.release


def test_from_table_to_table(assays, tmp_path):
    """Both ends of it: what one table hands out another one takes."""
    other = tmp_path / "other.ovt"
    with ovfile.open(assays) as table:
        assert ovfile.write(table, other, schema=table.schema) == 6
        with ovfile.open(other, "r+") as copied:
            assert copied.schema == table.schema
            assert copied.signature() == table.signature()
            assert copied.append(table) == 6
            assert copied["BHID"].tolist() == [*table["BHID"], *table["BHID"]]


# The producer: one chunk of plain buffers for each batch, told by (format, buffers, null count, offset).


class Producer:
    """A stream of our own making. `alive` counts what has been handed out and not given back."""

    def __init__(self, columns, batches, root="+s", fail_at=None, offset=0):
        self.columns, self.batches, self.root = columns, list(batches), root
        self.fail_at, self.offset = fail_at, offset
        self.alive, self.kept, self.at = 0, [], 0
        self.words = ctypes.create_string_buffer(b"the pump broke down")

    def keep(self, *what):
        self.kept += what
        return what[0]

    def __arrow_c_stream__(self, requested_schema=None):
        self.callbacks = (
            GET_SCHEMA(self.get_schema),
            GET_NEXT(self.get_next),
            GET_ERROR(lambda stream: ctypes.addressof(self.words)),
            RELEASE_STREAM(self.release),
        )
        self.free_schema = RELEASE_SCHEMA(self.release)
        self.free_array = RELEASE_ARRAY(self.release)
        self.stream = Stream(*self.callbacks, None)
        self.alive += 1
        return new_capsule(ctypes.addressof(self.stream), b"arrow_array_stream", None)

    def release(self, structure):
        self.alive -= 1
        found = structure.contents
        for i in range(getattr(found, "n_children", 0)):
            child = found.children[i].contents
            if child.release:
                child.release(ctypes.byref(child))
        if getattr(found, "dictionary", None) and found.dictionary.contents.release:
            found.dictionary.contents.release(found.dictionary)
        ctypes.memset(ctypes.addressof(found) + type(found).release.offset, 0, ctypes.sizeof(ctypes.c_void_p))

    def pointers_to(self, kind, structures):
        made = [ctypes.pointer(self.keep(structure)) for structure in structures]
        return self.keep((POINTER(kind) * max(1, len(made)))(*made))

    def make_schema(self, code, name="", children=(), dictionary=None):
        self.alive += 1
        pointers = self.pointers_to(Schema, children)
        inner = ctypes.pointer(self.keep(dictionary)) if dictionary else None
        code, name = self.keep(code.encode()), self.keep(name.encode())
        return Schema(code, name, None, 2, len(children), pointers, inner, self.free_schema, None)

    def get_schema(self, stream, out):
        children = []
        for name, code in self.columns:
            code, _, values = code.partition(":")
            children.append(self.make_schema(code, name, (), self.make_schema(values) if values else None))
        out[0] = self.make_schema(self.root, "", children)
        return 0

    def make_array(self, length, buffers, nulls=0, offset=0, children=(), dictionary=None):
        self.alive += 1
        places = []
        for buffer in buffers:
            if buffer is None:
                places.append(None)
                continue
            memory = bytes(buffer)
            places.append(ctypes.addressof(self.keep(ctypes.create_string_buffer(memory, len(memory) or 1))))
        addresses = self.keep((ctypes.c_void_p * max(1, len(places)))(*places))
        pointers = self.pointers_to(Array, children)
        inner = ctypes.pointer(self.keep(dictionary)) if dictionary else None
        counts = (length, nulls, offset, len(places), len(children))
        return Array(*counts, addresses, pointers, inner, self.free_array, None)

    def make_column(self, length, buffers, nulls=0, offset=0, dictionary=None):
        inner = self.make_array(*dictionary) if dictionary else None
        return self.make_array(length, buffers, nulls, offset, (), inner)

    def get_next(self, stream, out):
        if self.fail_at == self.at:
            return 5
        if self.at == len(self.batches):
            out[0] = Array()
            return 0
        length, columns = self.batches[self.at]
        self.at += 1
        children = [self.make_column(*column) for column in columns]
        out[0] = self.make_array(length, [None], 0, self.offset, children)
        return 0


def doubles(*values):
    return array.array("d", values).tobytes()


def texts(code, *values):
    """Bounds and bytes."""
    parts = [value.encode() for value in values]
    ends = np.cumsum([0, *map(len, parts)]).astype(np.int32 if code == "u" else np.int64)
    return ends.tobytes(), b"".join(parts)


def one_column(code, length, *column, **options):
    return Producer([("V", code)], [(length, [(length, *column)])], **options)


TYPES = [
    ("c", array.array("b", [-1, 2, 3]), [-1, 2, 3]),
    ("C", array.array("B", [255, 2, 3]), [255, 2, 3]),
    ("s", array.array("h", [-300, 2, 3]), [-300, 2, 3]),
    ("S", array.array("H", [65535, 2, 3]), [65535, 2, 3]),
    ("i", array.array("i", [-70000, 2, 3]), [-70000, 2, 3]),
    ("I", array.array("I", [2**32 - 1, 2, 3]), [2**32 - 1, 2, 3]),
    ("l", array.array("q", [-(2**40), 2, 3]), [-(2**40), 2, 3]),
    ("L", array.array("Q", [2**40, 2, 3]), [2**40, 2, 3]),
    ("e", np.array([0.5, 2, 3], np.float16), [0.5, 2, 3]),
    ("f", array.array("f", [0.5, 2, 3]), [0.5, 2, 3]),
    ("g", array.array("d", [0.1, 2, 3]), [0.1, 2, 3]),
    ("b", bytes([0b101]), [1, 0, 1]),
]


@pytest.mark.parametrize("code, values, expected", TYPES, ids=[row[0] for row in TYPES])
def test_types_of_numbers(path, code, values, expected):
    rows = one_column(code, 3, [None, values])
    assert ovfile.write(rows, path) == 3
    with ovfile.open(path) as table:
        assert table["V"].tolist() == expected
    with ovfile.open(path, "r+") as table:
        assert table.append(one_column(code, 3, [b"\x05", values], 1)) == 3
        found = table["V"][3:]
        assert np.isnan(found[1]) and [found[0], found[2]] == [expected[0], expected[2]]


@pytest.mark.parametrize("code", ["u", "U"])
def test_types_of_texts(path, code):
    rows = one_column(code, 3, [b"\x05", *texts(code, "Küste", "gone", "to")], 1)
    assert ovfile.write(rows, path) == 3
    with ovfile.open(path) as table:
        assert table["V"].tolist() == ["Küste", "", "to"]
        assert table.schema["V"].width == 8
    assert rows.alive == 0


def views(*values, sizes=(10**9, 10**9)):
    """Texts as views: those of more than 12 bytes lie in two buffers, turn and turn about."""
    made, long = b"", [b"", b""]
    for number, value in enumerate(values):
        data = value.encode()
        if len(data) <= 12:
            made += struct.pack("=i12s", len(data), data)
        else:
            place = number % 2
            made += struct.pack("=i4sii", len(data), data[:4], place, len(long[place]))
            long[place] += data
    lengths = [min(len(data), size) for data, size in zip(long, sizes)]
    return made, *long, struct.pack("=qq", *lengths)


LONG = ["a text of 20 letters", "ein Text mit Küstenlänge", "the shortest "]


def test_texts_as_views(path):
    values = ["", "Küste", "exactly twel", *LONG, "x"]
    rows = one_column("vu", 7, [b"\x3f", *views(*values)], 1)
    assert ovfile.write(rows, path) == 7
    assert rows.alive == 0
    with ovfile.open(path, "r+") as table:
        assert table.schema["V"].width == 24
        assert table["V"].tolist() == ["", "Küste", "exactly twel", LONG[0], LONG[1], "the shortest", ""]
        again = one_column("vu", 2, [None, *views("gone", *LONG[:2])], 0, 1)
        assert table.append(again) == 2
        assert table["V"].tolist()[7:] == LONG[:2]
    gc.collect()
    assert again.alive == 0


def test_many_texts_as_views(path):
    """More than are laid out at once, beside a column that passes as it is."""
    count = 70_000
    values = [f"{number} is a number" if number % 3 else str(number) for number in range(count)]
    numbers = doubles(*range(count))
    columns = [(count, [None, *views(*values)]), (count, [None, numbers])]
    rows = Producer([("T", "vu"), ("N", "g")], [(count, columns), (count, columns)])
    assert ovfile.write(rows, path) == 2 * count
    with ovfile.open(path) as table:
        assert table["T"].tolist() == values * 2
        assert np.array_equal(table["N"], np.tile(np.arange(count, dtype=float), 2))


def test_dictionaries_of_views(path):
    inner = (2, [None, *views("ORE", LONG[0])])
    rows = one_column("I:vu", 4, [b"\x0b", array.array("I", [1, 0, 0, 1])], 1, 0, inner)
    assert ovfile.write(rows, path) == 4
    with ovfile.open(path) as table:
        assert table["V"].tolist() == [LONG[0], "ORE", "", LONG[0]]


@pytest.mark.parametrize(
    "buffers",
    [
        views(*LONG, sizes=(3, 1000)),
        (struct.pack("=i4sii", 20, b"text", 5, 0), b"", struct.pack("=q", 0)),
        (struct.pack("=i4sii", 20, b"text", 0, -1), b"x" * 20, struct.pack("=q", 20)),
        (struct.pack("=i12s", -1, b""), struct.pack("=q", 0)),
    ],
    ids=["too long", "no such buffer", "before the buffer", "negative length"],
)
def test_views_that_lead_nowhere(path, buffers):
    rows = one_column("vu", 1, [None, *buffers])
    with pytest.raises(ovfile.Error, match="column V, row 1: a text lies outside its memory"):
        ovfile.write(rows, path)
    assert not path.exists()
    gc.collect()
    assert rows.alive == 0


def test_views_without_their_buffers(path):
    with pytest.raises(ovfile.Error, match="column V: the batch lacks some of the column's memory"):
        ovfile.write(one_column("vu", 1, [None, b"\0" * 16]), path)


def test_dictionaries(path):
    inner = (2, [None, *texts("u", "ORE", "WASTE")])
    rows = one_column("i:u", 4, [b"\x0b", array.array("i", [1, 0, 0, 1])], 1, 0, inner)
    assert ovfile.write(rows, path) == 4
    numbers = (2, [None, doubles(1.5, 2.5)])
    with ovfile.open(path, "r+") as table:
        assert table["V"].tolist() == ["WASTE", "ORE", "", "WASTE"]
        table.append(one_column("c:u", 2, [None, array.array("b", [0, 1])], 0, 0, inner))
        assert table["V"].tolist()[4:] == ["ORE", "WASTE"]
    other = path.with_name("numbers.ovt")
    ovfile.write(one_column("c:g", 2, [None, array.array("b", [1, 0])], 0, 0, numbers), other)
    with ovfile.open(other) as table:
        assert table["V"].tolist() == [2.5, 1.5]


def test_a_column_of_nothing(path):
    ovfile.write(one_column("n", 3, [], 3), path)
    with ovfile.open(path) as table:
        assert np.isnan(table["V"]).all() and len(table) == 3


def test_offsets(path):
    """Of the column, and of the batch as a whole."""
    columns = [("N", "g"), ("T", "u")]
    batch = [
        (4, [b"\x3a", doubles(0, 1, 2, 3, 4, 5)], 2, 1),
        (4, [None, *texts("u", "-", "a", "bb", "ccc", "dddd")], 0, 1),
    ]
    ovfile.write(Producer(columns, [(3, batch)], offset=1), path)
    with ovfile.open(path) as table:
        np.testing.assert_array_equal(table["N"], [float("nan"), 3, 4])
        assert table["T"].tolist() == ["bb", "ccc", "dddd"]


def test_several_batches(path):
    batches = [(n, [(n, [None, doubles(*range(n))])]) for n in (2, 0, 3)]
    rows = Producer([("V", "g")], batches)
    assert ovfile.write(rows, path) == 5
    assert rows.alive == 0
    with ovfile.open(path, "r+") as table:
        again = Producer([("V", "g")], batches)
        assert table.append(again) == 5
        assert again.alive == 0
        assert table["V"].tolist() == [0, 1, 0, 1, 2] * 2


def test_a_stream_that_fails(path):
    rows = Producer([("V", "g")], [(2, [(2, [None, doubles(1, 2)])])] * 2, fail_at=1)
    with pytest.raises(ovfile.Error, match="the pump broke down"):
        ovfile.write(rows, path)
    assert not path.exists() and rows.alive == 0
    ovfile.write({"V": [7]}, path)
    with ovfile.open(path, "r+") as table:
        rows = Producer([("V", "g")], [(2, [(2, [None, doubles(1, 2)])])] * 2, fail_at=1)
        with pytest.raises(ovfile.Error, match="the pump broke down"):
            table.append(rows)
        assert rows.alive == 0
        assert table["V"].tolist() == [7]


@pytest.mark.parametrize(
    "rows, words",
    [
        (lambda: one_column("tdD", 1, [None, b"\0\0\0\0"]), "the Arrow type 'tdD' have no place"),
        (lambda: one_column("vz", 1, [None, b"\0" * 16, b""]), "the Arrow type 'vz' have no place"),
        (lambda: Producer([], [], root="g"), "no columns"),
    ],
)
def test_streams_without_a_place(path, rows, words):
    made = rows()
    with pytest.raises(ovfile.Error, match=words):
        ovfile.write(made, path)
    gc.collect()
    assert made.alive == 0 and not path.exists()


def test_values_of_a_stream_that_do_not_fit(assays):
    rows = Producer([("ROCK", "u")], [(2, [(2, [None, *texts("u", "a", "x" * 13)])])])
    with ovfile.open(assays, "r+") as table:
        with pytest.raises(ovfile.Error) as caught:
            table.append(rows)
        assert (caught.value.column, caught.value.row) == ("ROCK", 1)
        assert rows.alive == 0 and len(table) == 6


def test_a_stream_is_taken_once(path):
    rows = one_column("g", 1, [None, doubles(1)])
    capsule = rows.__arrow_c_stream__()

    class Held:
        def __arrow_c_stream__(self, requested_schema=None):
            return capsule

    ovfile.write(Held(), path)
    with pytest.raises(ValueError, match="taken already"):
        ovfile.write(Held(), path)


def test_nothing_is_kept_alive(path):
    """What was handed to the library is given back, after failures too."""
    gc.collect()
    before = len(_arrow_export._alive)
    ovfile.write({"A": range(200_000), "T": ["x"] * 200_000}, path)
    with ovfile.open(path, "r+") as table:
        for wrong in ({"T": ["longer"]}, {"A": [1], "T": ["\ud800"]}):
            with pytest.raises(ovfile.Error):
                table.append(wrong)
        table.add_column("B", range(200_000))
    gc.collect()
    assert len(_arrow_export._alive) == before


def test_collections_during_an_append(path):
    """Rows of many types, while the collector runs at every chance."""
    count = 3 * 65536
    threshold = gc.get_threshold()
    gc.set_threshold(1)
    try:
        ovfile.write({"A": np.arange(count), "T": ["x", None, "Küste"] * 65536}, path)
    finally:
        gc.set_threshold(*threshold)
    with ovfile.open(path) as table:
        assert table["A"][-1] == count - 1 and table["T"].tolist()[-3:] == ["x", "", "Küste"]
