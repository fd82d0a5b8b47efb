"""Schemas, columns and templates."""

import pytest

import ovfile
from ovfile import Column, Schema, templates


def described(schema):
    return [(c.name, c.default, c.implicit) for c in schema]


def test_columns_in_words():
    assert Column.parse("CU") == Column("CU", "number", 0, None, False)
    assert Column.parse("BHID:12") == Column("BHID", "text", 12, None, False)
    assert Column.number("SG", 2.7, implicit=True) == Column("SG", "number", 0, 2.7, True)
    assert [Column("A").words, Column.text("B", 1).words, Column.text("B", 9).words] == [1, 1, 3]
    with pytest.raises(ovfile.Error, match="neither NAME nor NAME:WIDTH"):
        Column.parse("BHID:x")


def test_a_schema_is_a_list_of_columns():
    schema = Schema((Column("A"), Column.text("B", 4)))
    assert schema.names == ["A", "B"] and len(schema) == 2
    assert schema["B"].width == 4 and schema[0].name == "A"
    assert "A" in schema and "C" not in schema
    assert schema.with_columns(["C:8"]).names == ["A", "B", "C"]
    with pytest.raises(ovfile.Error) as caught:
        schema["C"]
    assert caught.value.column == "C"


@pytest.mark.parametrize("precision", ["single", "double"])
def test_a_table_has_the_columns_that_it_was_made_with(path, precision):
    columns = [
        Column.number("CU"),
        Column.number("FLAG", 1.5),
        Column.text("ROCK", 6, "none"),
        Column.number("SG", 2.75, implicit=True),
        Column.text("PIT", 4, "west", implicit=True),
        Column.number("GAP", implicit=True),
    ]
    with ovfile.create(path, columns, precision=precision, description="a test") as table:
        schema = table.schema
    assert schema.precision == precision and schema.description == "a test"
    assert list(schema) == [*columns[:2], Column.text("ROCK", 8, "none"), *columns[3:]]


@pytest.mark.parametrize(
    "columns, words, column",
    [
        (["A B"], "may not hold blanks", "A B"),
        (["A=B"], "may not hold blanks", "A=B"),
        ([".A"], "may not begin with", ".A"),
        ([Column("A", "date")], 'kind is "number" or "text"', "A"),
        (["A:0"], "the width of a text is 1 to 1024, not 0", "A"),
        (["A:1025"], "1 to 1024, not 1025", "A"),
        ([Column.text("A", 2, "abc")], "longer than 2 characters", "A"),
        ([Column.text("A", 4, "Ω")], "not in Windows-1252", "A"),
        ([Column("Ω")], "not in Windows-1252", "Ω"),
        ([Column("A", "number", 0, "x")], "is no number", "A"),
        ([Column("A", "text", 4, 1.5)], "is no text", "A"),
        (["A", "B", "A"], "two columns of that name", "A"),
        (["A:1024", "B"], "would need 257 words; a double-precision one holds 256", None),
    ],
)
def test_columns_that_no_table_can_have(path, columns, words, column):
    with pytest.raises(ovfile.Error, match=words) as caught:
        ovfile.create(path, columns)
    assert caught.value.column == column
    assert not path.exists()


def test_what_else_no_table_can_have(path):
    for wrong, words in (
        ({"precision": "half"}, 'precision is "single" or "double"'),
        ({"description": "LINK other.ovt"}, "would make the table a link"),
        ({"description": "x" * 65}, "has 65 characters; a table keeps 64"),
        ({"description": "Ω"}, "not in Windows-1252"),
    ):
        with pytest.raises(ovfile.Error, match=words):
            ovfile.create(path, ["A"], **wrong)
        assert not path.exists()


def test_names_that_differ_in_case_alone(path):
    with ovfile.create(path, ["au", "AU"]) as table:
        table.append({"AU": [1], "au": [2]})
        assert table["AU"][0] == 1 and table["au"][0] == 2


def test_block_models():
    schema = templates.block_model((100, 200, 300), (10, 20, 5), (4, 3, 2))
    assert described(schema) == [
        ("IJK", 0, False),
        ("XC", 0, False),
        ("YC", 0, False),
        ("ZC", 0, False),
        ("XINC", 10, False),
        ("YINC", 20, False),
        ("ZINC", 5, False),
        ("XMORIG", 100, True),
        ("YMORIG", 200, True),
        ("ZMORIG", 300, True),
        ("NX", 4, True),
        ("NY", 3, True),
        ("NZ", 2, True),
    ]
    assert schema.kind == "block model" and schema.precision == "double"


def test_grids():
    schema = templates.regular_grid((0, 0, 0), (1, 1, 1), (4, 3, 2), precision="single")
    assert schema.names[0] == "IJK" and schema.precision == "single"
    assert described(schema)[7:] == [("NX", 4, True), ("NY", 3, True), ("NZ", 2, True)]
    assert "IJK" not in templates.regular_grid((0, 0, 0), (1, 1, 1), (4, 3, 2), ijk=False)


@pytest.mark.parametrize(
    "make, names, kind",
    [
        (templates.points, ["XPT", "YPT", "ZPT"], "points"),
        (templates.strings, ["XP", "YP", "ZP", "PTN", "PVALUE"], "strings"),
        (templates.wireframe_triangles, ["PID1", "PID2", "PID3", "TRIANGLE"], "wireframe triangles"),
        (templates.wireframe_points, ["XP", "YP", "ZP", "PID"], "wireframe points"),
    ],
)
def test_other_templates(path, make, names, kind):
    schema = make("single")
    assert (schema.names, schema.kind, schema.precision) == (names, kind, "single")
    with ovfile.create(path, ["CU", "ROCK:8"], template=schema, description="of a template") as table:
        table.append({name: [1, 2] for name in names})
        assert table.columns == [*names, "CU", "ROCK"]
        assert (table.kind, table.precision, table.description) == (kind, "single", "of a template")


def test_a_table_like_another(assays, tmp_path):
    with ovfile.open(assays) as table:
        with ovfile.create(tmp_path / "other.ovt", template=table.schema) as other:
            assert other.schema == table.schema and len(other) == 0


def test_xml():
    schema = Schema((Column.number("CU", 0.5), Column.text("ROCK", 8, "ORE")), "double", "of a test")
    assert Schema.from_xml(schema.to_xml()) == schema
    with pytest.raises(ovfile.Error, match="it has no OvDefinition"):
        Schema.from_xml("no xml")
    with pytest.raises(ovfile.Error, match="too long for the XML form"):
        Schema(tuple(Column(f"C{i}") for i in range(64))).to_xml()


def test_a_kind_without_a_name():
    assert Schema((Column("SDIP"),)).kind == "table"
    names = ["XP", "YP", "ZP", "AZI", "DIP", "ROLL", "RAD1", "RAD2", "RAD3"]
    assert Schema(tuple(map(Column, names))).kind == "kind 0x10000"
