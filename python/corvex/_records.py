"""Scan records from frames, dicts and structured arrays to the typed columns of the library,
and scan files to frames.

Everything here is vectorised; only the message of a caller mistake is built row by row.
"""
from __future__ import annotations

import os
from typing import Any

import numpy as np
import pandas as pd

from corvex import _core

# The fields of one scan record, as columns of a frame or keys of a record, with the C type
# each becomes. Units: timeStamp ms, rssi dBm, lon/lat degrees, acc metres.
NUMBER_FIELDS = {
    "timeStamp": np.int64,
    "rssi": np.int32,
    "confidence": np.float64,
    "lon": np.float64,
    "lat": np.float64,
    "acc": np.float32,
    "locationType": np.int32,
    "locationSourceType": np.int32,
    "indoorFlag": np.int32,
    "floorId": np.int32,
    "floorAcc": np.int32,
}
TEXT_FIELDS = ("floorInfo", "geoId")
TAG = "tag"
FIELDS = ("timeStamp", "rssi", "confidence", "lon", "lat", "acc", "locationType",
          "locationSourceType", "indoorFlag", "floorId", "floorAcc", "floorInfo", "geoId")
# Read only for records that name a building (a non-empty geoId), as in C.
INDOOR_FIELDS = ("indoorFlag", "floorId", "floorAcc")

_NUMERIC_OBJECTS = ("integer", "floating", "mixed-integer-float", "decimal", "empty")


def as_frame(records: Any) -> pd.DataFrame:
    """A DataFrame of the records: a DataFrame, a list of dicts or a numpy structured array."""
    if isinstance(records, pd.DataFrame):
        return records
    if isinstance(records, np.ndarray):
        if records.dtype.names is None:
            raise ValueError("records: a numpy array needs named fields (a structured array)")
        return pd.DataFrame(records)
    if isinstance(records, (list, tuple)):
        if not all(isinstance(record, dict) for record in records):
            raise ValueError("records: a list of records must hold dicts")
        return pd.DataFrame.from_records(list(records))
    raise ValueError("records: expected a pandas DataFrame, a list of dicts or a structured array, "
                     f"found {type(records).__name__}")


class _Column:
    """One column of the frame under conversion; knows how to name a row in a message."""

    def __init__(self, frame: pd.DataFrame, name: str):
        self.name = name
        self.values = frame[name].to_numpy()
        self._index = frame.index

    def fail(self, row: int, problem: str) -> ValueError:
        return ValueError(f"column {self.name!r}, row {self._index[row]!r}: {problem}")

    def fail_first(self, bad: np.ndarray, problem) -> None:
        """Raises for the first row where bad holds; problem(value) words the message."""
        rows = np.flatnonzero(bad)
        if rows.size:
            raise self.fail(int(rows[0]), problem(self.values[rows[0]]))


def _numbers_of_objects(column: _Column) -> np.ndarray:
    values = column.values
    kind = pd.api.types.infer_dtype(values, skipna=True)
    if kind not in _NUMERIC_OBJECTS:
        column.fail_first(
            np.fromiter((not _is_number(v) for v in values), bool, len(values)),
            lambda v: f"expected a number, found {v!r}")
    if kind == "integer" and not pd.isna(values).any():
        try:
            return values.astype(np.int64)  # exact, also beyond 2**53
        except OverflowError:
            pass  # beyond 64 bits: go through double
    return pd.to_numeric(pd.Series(values), errors="raise").to_numpy(np.float64)


def _is_number(value: Any) -> bool:
    return (isinstance(value, (int, float, np.integer, np.floating)) and not isinstance(
        value, (bool, np.bool_))) or value is None or value is pd.NA


def _whole_numbers(column: _Column, numbers: np.ndarray, dtype, needed: np.ndarray) -> np.ndarray:
    info = np.iinfo(dtype)
    if numbers.dtype.kind == "f":
        column.values = numbers
        what = "time stamp" if column.name == "timeStamp" else "value"
        column.fail_first(needed & np.isnan(numbers), lambda v: f"no {what} (NaN)")
        column.fail_first(needed & ~np.isfinite(numbers), lambda v: f"not a finite {what} ({v})")
        column.fail_first(needed & (numbers != np.floor(numbers)),
                          lambda v: f"expected a whole number, found {v!r}")
        # 2**63 is exact as a double; the largest int64 is not.
        column.fail_first(needed & ((numbers < info.min) | (numbers >= -float(info.min))),
                          lambda v: f"{v!r} is out of range for {np.dtype(dtype).name}")
        return np.where(needed, numbers, 0).astype(dtype)
    if numbers.dtype.kind == "u" and numbers.dtype.itemsize == 8:
        column.values = numbers
        column.fail_first(needed & (numbers > info.max),
                          lambda v: f"{v!r} is out of range for {np.dtype(dtype).name}")
        numbers = numbers.astype(np.int64)
    column.values = numbers
    column.fail_first(needed & ((numbers < info.min) | (numbers > info.max)),
                      lambda v: f"{v!r} is out of range for {np.dtype(dtype).name}")
    return np.where(needed, numbers, 0).astype(dtype)


def number_column(frame: pd.DataFrame, name: str, needed: np.ndarray | None = None) -> np.ndarray:
    """The column as a contiguous array of its C type. NaN is a value of the floating fields
    (as in C) but a mistake in an integer field that is read."""
    column = _Column(frame, name)
    dtype = NUMBER_FIELDS[name]
    numbers = column.values
    if numbers.dtype == dtype:  # every value fits; nothing to check
        return np.ascontiguousarray(numbers)
    if numbers.dtype.kind == "b":
        raise column.fail(0, "expected numbers, found booleans")
    if numbers.dtype.kind == "O":
        numbers = _numbers_of_objects(column)
    elif numbers.dtype.kind not in "iuf":
        raise column.fail(0, f"expected numbers, found {numbers.dtype}")
    if np.dtype(dtype).kind == "f":
        return np.ascontiguousarray(numbers, dtype=dtype)
    if needed is None:
        needed = np.ones(len(numbers), bool)
    return np.ascontiguousarray(_whole_numbers(column, numbers, dtype, needed))


def text_column(frame: pd.DataFrame, name: str) -> np.ndarray:
    """The column as an object array of str or bytes; None, NaN and NA stand for no text."""
    column = _Column(frame, name)
    values = np.asarray(column.values, dtype=object)
    if _core.first_non_text(values, pd.NA) >= 0:
        column.fail_first(
            np.fromiter((not (isinstance(v, (str, bytes)) or pd.isna(v)) for v in values), bool,
                        len(values)),
            lambda v: f"expected text, found {v!r}")
    return np.ascontiguousarray(values)


def has_text(values: np.ndarray) -> np.ndarray:
    """Where an object column holds a non-empty text."""
    return _core.has_text(values, pd.NA)


def columns_of(frame: pd.DataFrame) -> dict[str, np.ndarray]:
    """The typed field columns of a frame; a frame without rows needs no columns."""
    if len(frame) == 0:
        return {name: np.zeros(0, dtype=NUMBER_FIELDS.get(name, object)) for name in FIELDS}
    for name in FIELDS:
        if name not in frame.columns:
            raise ValueError(f"missing column {name!r}")
        if (frame.columns == name).sum() > 1:
            raise ValueError(f"column {name!r} appears twice")
    columns = {name: text_column(frame, name) for name in TEXT_FIELDS}
    for name in NUMBER_FIELDS:
        try:
            columns[name] = number_column(frame, name)
        except ValueError:
            if name not in INDOOR_FIELDS:
                raise
            # Only records with a building have their indoor values read.
            columns[name] = number_column(frame, name, has_text(columns["geoId"]))
    return columns


class ScanFileError(ValueError):
    """A mistake in a scan file; the message reads "FILE:LINE: problem"."""


def read_scans(path: str | os.PathLike) -> pd.DataFrame:
    """Reads a scan file ("-": standard input) as `corvex locate` reads it, into a frame for
    corvex.locate_many: a tag column (records without one belong to the tag "") and the field
    columns in their C types, rows in file order. Records without a building have 0 in their
    indoor numbers and "" as floorInfo (the library does not read them).

    Raises ScanFileError ("FILE:LINE: field 'rssi': ...", "FILE: no records", "FILE: cannot
    open: ...") on the file's first mistake.
    """
    columns, error = _core.read_scans(os.fsencode(path))
    if error is not None:
        raise ScanFileError(os.fsdecode(error))
    for name in (TAG,) + TEXT_FIELDS:
        codes, texts = columns[name]
        columns[name] = np.array(texts, dtype=object)[codes]
    return pd.DataFrame(columns, columns=[TAG] + list(FIELDS))
