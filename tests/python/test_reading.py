"""Reading columns, rows and batches."""

import numpy as np
import pandas as pd
import pytest

import ovfile

NAN = float("nan")


def test_what_a_table_is(assays):
    with ovfile.open(assays) as table:
        assert table.columns == ["BHID", "FROM", "CU", "ROCK", "SG"]
        assert len(table) == 6
        assert table.kind == "table"
        assert table.description == "assays of a test"
        assert table.precision == "double"
        assert table.mode == "r"
        assert not table.is_linked
        assert table.path == str(assays)
        assert list(table) == table.columns
        assert "CU" in table and "cu" not in table
        assert repr(table) == f"<ovfile.Table {str(assays)!r}, 6 rows, 5 columns>"


def test_kind_in_words(path):
    ovfile.create(path, ["BHID:8", "FROM", "TO", "CU"]).close()
    with ovfile.open(path) as table:
        assert table.kind == "assays"


def test_a_column_of_numbers(assays):
    with ovfile.open(assays) as table:
        copper = table["CU"]
    assert copper.dtype == np.float64
    np.testing.assert_array_equal(copper, [0.25, NAN, 1.75, 0.5, 3, 0.125])


def test_a_column_of_texts(assays):
    with ovfile.open(assays) as table:
        rock = table["ROCK"]
    assert rock.dtype == object
    assert rock.tolist() == ["SKARN", "", "SKARN", "LIME, GREY", "SKARN", "Küste"]
    assert all(type(text) is str for text in rock)


def test_texts_with_the_blanks_that_fill_them_up(assays):
    with ovfile.open(assays) as table:
        rock = table.read("ROCK", keep_blanks=True)["ROCK"]
        raw = table.read("ROCK", keep_blanks=True, absent="value")["ROCK"]
    assert rock.tolist()[:3] == ["SKARN       ", "", "SKARN       "]
    assert raw.tolist()[:3] == ["SKARN       ", "            ", "SKARN       "]


def test_an_implicit_column(assays):
    with ovfile.open(assays) as table:
        np.testing.assert_array_equal(table["SG"], [2.7] * 6)


def test_absent_as_it_is(assays):
    with ovfile.open(assays) as table:
        assert table.read("CU", absent="value")["CU"][1] == -1e30


def test_masked_arrays(assays):
    with ovfile.open(assays) as table:
        found = table.read(["CU", "ROCK", "FROM"], absent="mask")
    assert isinstance(found["CU"], np.ma.MaskedArray)
    assert found["CU"].mask.tolist() == [False, True, False, False, False, False]
    assert found["CU"].sum() == 5.625
    assert found["ROCK"].mask.tolist() == [False, True, False, False, False, False]
    assert found["FROM"].mask is np.ma.nomask


def test_an_unknown_way_of_absence(assays):
    with ovfile.open(assays) as table, pytest.raises(ovfile.Error, match="absent: one of"):
        table.read(absent="zero")


def test_a_nan_in_the_file_is_not_masked(path):
    ovfile.create(path, ["CU"]).close()
    with ovfile.open(path, "r+") as table:
        table.append({"CU": [1.0]})
        # Only the bits of -1e30 say that nothing is there.
        table.add_column("AU", default=NAN)
        masked = table.read("AU", absent="mask")["AU"]
    assert masked.mask is np.ma.nomask and np.isnan(masked[0])


def test_single_precision(path):
    ovfile.write({"AU": [0.1, None, 16777216.0]}, path, "single")
    with ovfile.open(path) as table:
        narrow, wide = table["AU"], table.read("AU", widen=True)["AU"]
        raw = table.read("AU", absent="value")["AU"]
        wide_raw = table.read("AU", absent="value", widen=True)["AU"]
        masked = table.read("AU", absent="mask", widen=True)["AU"]
    assert narrow.dtype == np.float32
    assert narrow[0] == np.float32(0.1) and np.isnan(narrow[1]) and narrow[2] == 16777216
    assert raw[1] == np.float32(-1e30)
    assert wide.dtype == np.float64
    assert wide[0] == 0.1 and np.isnan(wide[1])
    assert wide_raw[1] == -1e30
    assert masked.mask.tolist() == [False, True, False]


def test_columns_in_any_order_and_by_number(assays):
    with ovfile.open(assays) as table:
        found = table.read(["CU", "BHID", -1])
        np.testing.assert_array_equal(table[2], table["CU"])
    assert list(found) == ["CU", "BHID", "SG"]


def test_columns_that_are_not_there(assays):
    with ovfile.open(assays) as table:
        with pytest.raises(ovfile.Error) as caught:
            table["cu"]
        assert str(caught.value) == f"{assays}: column cu: there is no such column; is it CU?"
        assert caught.value.column == "cu"
        for wrong in (5, -6, np.int64(5)):
            with pytest.raises(ovfile.Error, match="the table has 5 columns, numbered from 0"):
                table[wrong]
        with pytest.raises(ovfile.Error, match="a column is a name or a number, not 1.5"):
            table.read(["CU", 1.5])
        with pytest.raises(TypeError, match="a column is a name or a number"):
            table[["CU", "ROCK"]]
        assert table[np.int64(2)][0] == 0.25


def test_no_columns(assays):
    with ovfile.open(assays) as table:
        assert table.read([]) == {}


def test_a_frame_without_columns_has_the_rows(assays, path):
    with ovfile.open(assays) as table:
        whole = table.to_pandas([])
        assert whole.shape == (6, 0)
        pd.testing.assert_index_equal(whole.index, table.to_pandas(["CU"]).index)
        assert table.to_pandas([], rows=slice(1, 4)).shape == (3, 0)
        assert table.to_pandas([], rows=[5, 0, 5]).shape == (3, 0)
        assert table.to_pandas([], where="BHID = 'LK001'").shape == (3, 0)
        assert table.to_pandas([], where="BHID = 'LK001'", rows=[0, 4, 0]).shape == (2, 0)
        assert table.to_pandas([], where="CU > 100").shape == (0, 0)
        with pytest.raises(ovfile.Error, match="where: there is no such column"):
            table.to_pandas([], where="NO > 1")
        with pytest.raises(ovfile.Error, match="numbered from 0"):
            table.to_pandas([], rows=[6])


ROWS = [
    (slice(None), [0, 1, 2, 3, 4, 5]),
    (slice(1, 3), [1, 2]),
    (slice(-2, None), [4, 5]),
    (slice(4, 100), [4, 5]),
    (slice(None, None, 2), [0, 2, 4]),
    (slice(None, None, -1), [5, 4, 3, 2, 1, 0]),
    (slice(5, 1, -3), [5, 2]),
    (slice(3, 3), []),
    (range(2, 4), [2, 3]),
    (range(4, -1, -2), [4, 2, 0]),
    ([5, 0, 5], [5, 0, 5]),
    ([-1], [5]),
    ([], []),
    (np.array([3, 1], np.int16), [3, 1]),
    (np.array([True, False, False, True, False, True]), [0, 3, 5]),
]


@pytest.mark.parametrize("rows, expected", ROWS, ids=lambda value: str(value))
def test_rows(assays, rows, expected):
    values = np.array([0.25, NAN, 1.75, 0.5, 3, 0.125])
    names = ["LK001", "LK001", "LK001", "LK002", "LK002", "LK003"]
    with ovfile.open(assays) as table:
        found = table.read(["CU", "BHID"], rows=rows)
    np.testing.assert_array_equal(found["CU"], values[expected])
    assert found["BHID"].tolist() == [names[row] for row in expected]


@pytest.mark.parametrize("rows", [[6], [-7], range(4, 7), [0.5], [[1]], [True, False]], ids=str)
def test_rows_that_are_not_there(assays, rows):
    with ovfile.open(assays) as table, pytest.raises(ovfile.Error, match="rows: "):
        table.read(rows=rows)


def test_batches(assays):
    with ovfile.open(assays) as table:
        found = list(table.batches(4, ["CU", "BHID"]))
    assert [len(batch["CU"]) for batch in found] == [4, 2]
    np.testing.assert_array_equal(np.concatenate([b["CU"] for b in found]), [0.25, NAN, 1.75, 0.5, 3, 0.125])
    assert found[1]["BHID"].tolist() == ["LK002", "LK003"]


def test_batches_outlive_the_table(assays):
    with ovfile.open(assays) as table:
        (batch,) = table.batches(columns=["FROM"])
    np.testing.assert_array_equal(batch["FROM"], [0, 1, 2, 0, 1.5, 0])


def test_batches_with_a_condition(assays):
    with ovfile.open(assays) as table:
        found = list(table.batches(2, ["FROM"], where="CU > 1"))
        masked = list(table.batches(6, ["CU"], absent="mask", where="FROM >= 1"))
    assert [batch["FROM"].tolist() for batch in found] == [[2.0], [1.5]]
    assert masked[0]["CU"].mask.tolist() == [True, False, False]


@pytest.mark.parametrize("rows", [0, -1])
def test_batches_without_rows(assays, rows):
    with ovfile.open(assays) as table, pytest.raises(ovfile.Error, match="at least one row"):
        table.batches(rows)


def test_a_table_without_rows(path):
    ovfile.create(path, ["BHID:8", "CU"]).close()
    with ovfile.open(path) as table:
        assert len(table) == 0
        assert table["CU"].dtype == np.float64 and len(table["CU"]) == 0
        assert table["BHID"].dtype == object and len(table["BHID"]) == 0
        assert list(table.batches()) == []
        assert table.to_pandas().shape == (0, 2)
        assert table.to_pandas(categories=True).shape == (0, 2)
        assert len(table.read(where="CU > 1")["CU"]) == 0


def test_a_table_without_columns(path):
    ovfile.create(path).close()
    with ovfile.open(path) as table:
        assert table.columns == [] and table.read() == {}
        assert table.to_pandas().shape == (0, 0)


def test_more_rows_than_a_batch(path):
    """Texts and numbers come out in order across the batches."""
    count = 200_000
    ovfile.write({"N": np.arange(count), "T": [f"T{i % 70000}" for i in range(count)]}, path)
    with ovfile.open(path) as table:
        found = table.read()
        frame = table.to_pandas(categories=True, rows=slice(69_990, None, 70_000))
    np.testing.assert_array_equal(found["N"], np.arange(float(count)))
    assert found["T"][69_999] == "T69999" and found["T"][140_001] == "T1"
    assert frame["T"].astype(str).tolist() == ["T69990", "T69990"]


def test_frames(assays):
    frame = ovfile.read_pandas(assays)
    assert list(frame.columns) == ["BHID", "FROM", "CU", "ROCK", "SG"]
    assert frame.dtypes.astype(str).tolist() == ["object", "float64", "float64", "object", "float64"]
    assert isinstance(frame.index, pd.RangeIndex)
    assert frame["CU"].isna().tolist() == [False, True, False, False, False, False]
    assert frame["ROCK"].tolist()[:2] == ["SKARN", ""]


def test_blank_texts_in_frames(assays):
    assert ovfile.read_pandas(assays, blank=None)["ROCK"].isna().tolist()[:3] == [False, True, False]
    assert ovfile.read_pandas(assays, blank=pd.NA)["ROCK"][1] is pd.NA
    with_blank = ovfile.read_pandas(assays, categories=True)["ROCK"]
    assert with_blank.tolist()[:3] == ["SKARN", "", "SKARN"]
    missing = ovfile.read_pandas(assays, categories=True, blank=None)["ROCK"]
    assert missing.isna().tolist() == [False, True, False, False, False, False]


def test_categories(assays):
    rock = ovfile.read_pandas(assays, categories=True)["ROCK"]
    assert rock.dtype == "category"
    assert list(rock.cat.categories) == ["SKARN", "LIME, GREY", "Küste", ""]
    assert rock.tolist() == ["SKARN", "", "SKARN", "LIME, GREY", "SKARN", "Küste"]


def test_chosen_rows_and_columns_of_a_file(assays):
    frame = ovfile.read_pandas(assays, columns=["BHID", "CU"], where="CU > 0.4", rows=slice(0, 4))
    assert frame.values.tolist() == [["LK001", 1.75], ["LK002", 0.5]]
    assert ovfile.read_pandas(assays, columns="CU").shape == (6, 1)


def test_arrays_are_the_callers(assays):
    with ovfile.open(assays) as table:
        copper = table["CU"]
    copper *= 2
    assert copper[0] == 0.5


@pytest.mark.parametrize("taker", [np.asarray, np.array, pd.DataFrame])
def test_a_table_is_not_taken_for_its_columns_names(assays, taker):
    with ovfile.open(assays) as table, pytest.raises(TypeError, match=r"to_pandas\(\) makes a DataFrame"):
        taker(table)
