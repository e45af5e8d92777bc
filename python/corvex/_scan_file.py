"""Reading scan files the way `corvex locate` reads them: CSV with a header row (columns in any
order, other columns ignored) or a JSON array of objects, numbers read with the tool's rules.
"""
from __future__ import annotations

import csv
import io
import json
import re
import sys

import numpy as np
import pandas as pd

from corvex import _core
from corvex._records import FIELDS, INDOOR_FIELDS, NUMBER_FIELDS

TAG = "tag"
# The order in which a record's fields are checked; the first failing one is reported.
_CHECK_ORDER = FIELDS[:8] + ("geoId",) + INDOOR_FIELDS + ("floorInfo", TAG)


class ScanFileError(ValueError):
    """A mistake in a scan file; the message reads "FILE:LINE: problem"."""


class _Cells:
    """The values of a file as texts per field (None: no value), with where they stand."""

    def __init__(self, name: str):
        self.name = name
        self.texts: dict[str, list] = {field: [] for field in FIELDS + (TAG,)}
        self.lines: list[int] = []  # line of each record
        self.problems: dict[str, dict[int, str]] = {}  # field -> row -> problem found early

    def fail(self, line: int, problem: str) -> ScanFileError:
        return ScanFileError(f"{self.name}:{line}: {problem}")

    def field_line(self, row: int, field: str) -> int:
        return self.lines[row]


class _JsonCells(_Cells):
    def __init__(self, name: str, text: str):
        super().__init__(name)
        self._text = text
        self._spans: list[tuple[int, int]] = []

    def field_line(self, row: int, field: str) -> int:
        start, end = self._spans[row]
        key = re.compile(r'"%s"\s*:' % re.escape(field)).search(self._text, start, end)
        return self._line_at(key.start()) if key else self.lines[row]

    def _line_at(self, offset: int) -> int:
        return self._text.count("\n", 0, offset) + 1

    def read(self) -> None:
        decoder = json.JSONDecoder(parse_float=lambda t: _JsonNumber(repr(_finite(t))),
                                   parse_int=_JsonNumber, parse_constant=_reject_constant)
        text, at = self._text, _skip_blanks(self._text, 0)
        if at == len(text) or text[at] != "[":
            self._decode_all(decoder)
            raise self.fail(1, "expected an array of records")
        at = _skip_blanks(text, at + 1)
        while at < len(text) and text[at] != "]":
            try:
                record, end = decoder.raw_decode(text, at)
            except (ValueError, OverflowError) as error:
                raise self.fail(self._line_at(getattr(error, "pos", at)),
                                f"invalid JSON: {getattr(error, 'msg', error)}") from None
            self.lines.append(self._line_at(at))
            self._spans.append((at, end))
            if not isinstance(record, dict):
                raise self.fail(self.lines[-1], f"record {len(self.lines)} is not an object")
            self._add(record)
            at = _skip_blanks(text, end)
            if at < len(text) and text[at] == ",":
                at = _skip_blanks(text, at + 1)
                if at < len(text) and text[at] == "]":
                    raise self.fail(self._line_at(at), "invalid JSON: trailing comma")
        if at == len(text) or _skip_blanks(text, at + 1) != len(text):
            self._decode_all(decoder)

    def _decode_all(self, decoder: json.JSONDecoder) -> None:
        try:
            decoder.decode(self._text)
        except (ValueError, OverflowError) as error:
            raise self.fail(self._line_at(getattr(error, "pos", 0)),
                            f"invalid JSON: {getattr(error, 'msg', error)}") from None

    def _add(self, record: dict) -> None:
        row = len(self.lines) - 1
        for field, texts in self.texts.items():
            value = record.get(field)
            if isinstance(value, _JsonNumber) or value is None:
                texts.append(value)
                continue
            number = field in NUMBER_FIELDS
            if isinstance(value, str) and not number:
                texts.append(value)
                continue
            texts.append(None)
            found = {True: "true", False: "false"}.get(value) if isinstance(value, bool) else (
                "an object" if isinstance(value, dict) else "an array")
            if isinstance(value, str):
                found = f"the string '{value}'"
            expected = "a number" if number else "a string"
            self.problems.setdefault(field, {}).setdefault(row, f"expected {expected}, found {found}")


class _JsonNumber(str):
    """A JSON number kept as its text, read later with the tool's rules."""


def _finite(text: str) -> float:
    value = float(text)
    if value in (float("inf"), float("-inf")):
        raise ValueError(f"number overflow parsing '{text}'")
    return value


def _reject_constant(name: str):
    raise ValueError(f"invalid literal {name}")


def _skip_blanks(text: str, at: int) -> int:
    while at < len(text) and text[at] in " \t\r\n":
        at += 1
    return at


class _CsvCells(_Cells):
    def read(self, text: str) -> None:
        reader = csv.reader(io.StringIO(text.removeprefix("\ufeff"), newline=""), strict=True)
        header, width = None, 0
        while True:
            start = reader.line_num + 1
            try:
                row = next(reader, None)
            except csv.Error as error:
                raise self.fail(start, f"invalid CSV: {error}") from None
            if row is None:
                break
            if not row:
                continue  # an empty line
            if header is None:
                header, width = self._columns(row, start), len(row)
                continue
            if len(row) != width:
                raise self.fail(start, f"expected {width} fields as in the header, "
                                       f"found {len(row)}")
            self.lines.append(start)
            for field, texts in self.texts.items():
                column = header.get(field)
                texts.append(row[column] if column is not None else "")
        if header is None:
            raise ScanFileError(f"{self.name}: no header row")

    def _columns(self, row: list[str], line: int) -> dict[str, int]:
        names = [name.strip(" \t") for name in row]
        known = set(FIELDS + (TAG,))
        for name in names:
            if name in known and names.count(name) > 1:
                raise self.fail(line, f"column '{name}' appears twice")
        for field in FIELDS:
            if field not in names:
                raise self.fail(line, f"missing column '{field}'")
        return {name: names.index(name) for name in names if name in known}


def _first_problem(cells: _Cells, indoor: np.ndarray) -> tuple[int, int, str, str] | None:
    """The first (row, rank, field, problem) in the tool's checking order, or None."""
    found = [(row, rank, field, problem)
             for rank, field in enumerate(_CHECK_ORDER)
             for row, problem in cells.problems.get(field, {}).items()
             if field not in INDOOR_FIELDS + ("floorInfo",) or indoor[row]]
    return min(found) if found else None


def _numbers(cells: _Cells, field: str, indoor: np.ndarray) -> np.ndarray:
    needed = indoor if field in INDOOR_FIELDS else None
    values, row, problem = _core.parse_numbers(cells.texts[field],
                                               np.dtype(NUMBER_FIELDS[field]).name, needed)
    if row >= 0:
        cells.problems.setdefault(field, {}).setdefault(row, problem)
    return values


def _texts(values: list) -> list[str]:
    """The values as str, equal texts as one object: grouping and conversion hash and read each
    distinct object once."""
    shared: dict[str, str] = {}
    return [shared.setdefault(text, text)
            for text in ("" if value is None else str(value) for value in values)]


def read_scans(path: str) -> pd.DataFrame:
    """Reads a scan file ("-": standard input) into a frame for corvex.locate_many: a tag column
    (records without one belong to the tag "") and the field columns in their C types.

    Raises ScanFileError ("FILE:LINE: field 'rssi': ...") on the file's first mistake.
    """
    name = "-" if path == "-" else path
    data = sys.stdin.buffer.read() if path == "-" else open(path, "rb").read()
    # Undecodable bytes survive as lone surrogates and reach the library as they were.
    text = data.decode("utf-8", "surrogateescape")
    if text.lstrip(" \t\r\n")[:1] in ("[", "{"):
        cells = _JsonCells(name, text)
        cells.read()
    else:
        cells = _CsvCells(name)
        cells.read(text)
    geo_ids = _texts(cells.texts["geoId"])
    indoor = np.array([bool(geo_id) for geo_id in geo_ids], dtype=bool)
    columns = {TAG: _texts(cells.texts[TAG])}
    for field in NUMBER_FIELDS:
        columns[field] = _numbers(cells, field, indoor)
    columns["floorInfo"] = _texts(cells.texts["floorInfo"])
    columns["geoId"] = geo_ids
    problem = _first_problem(cells, indoor)
    if problem is not None:
        row, _, field, message = problem
        raise cells.fail(cells.field_line(row, field), f"field '{field}': {message}")
    return pd.DataFrame(columns, columns=[TAG] + list(FIELDS))
