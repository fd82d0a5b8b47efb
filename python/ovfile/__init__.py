"""Table files of mines: drillholes, block models, wireframes, estimates, as numpy arrays and data frames.

    import ovfile

    with ovfile.open("assays.ovt") as table:
        copper = table["CU"]                      # a numpy array, absent is NaN
    frame = ovfile.read_pandas("assays.ovt", columns=["BHID", "CU"], where="CU > 0.5")
    ovfile.write_pandas(frame, "rich.ovt")

Columns go by name, rows by number from 0 (texts of errors count from 1). What goes wrong is `ovfile.Error`.
"""

from __future__ import annotations

from . import templates
from ._errors import Error
from ._schema import Column, Schema
from ._table import Table
from ._toplevel import create, open, read_pandas, write, write_pandas
from ._version import __version__

__all__ = [
    "Column",
    "Error",
    "Schema",
    "Table",
    "__version__",
    "create",
    "open",
    "read_pandas",
    "templates",
    "write",
    "write_pandas",
]
