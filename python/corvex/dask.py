"""Locating the tags of a Dask DataFrame: Dask shuffles the records by tag so that each tag's
records meet in one partition, then every partition is located with corvex.locate_many.

Works with every Dask scheduler, including dask.distributed clusters of several worker
processes (each worker imports corvex).
"""
from __future__ import annotations

import dask.dataframe as dd
import numpy as np
import pandas as pd

from corvex._batch import group_rows, locate_groups, result_frame

# Where a record stood in the input: partition number in the high bits, row in the low ones,
# so that sorting by it restores the input order without knowing the partitions' lengths.
_POSITION = "__corvex_position"
_ROW_BITS = 40


def _with_position(part: pd.DataFrame, partition_info=None) -> pd.DataFrame:
    number = partition_info["number"] if partition_info else 0
    return part.assign(**{_POSITION: (number << _ROW_BITS) + np.arange(len(part), dtype=np.int64)})


def _locate_partition(part: pd.DataFrame, by: str, jobs: int) -> pd.DataFrame:
    part = part.sort_values(_POSITION, kind="stable")
    tags, rows, offsets = group_rows(part, by)
    if len(tags) == 0:
        return result_frame(by, pd.Series([], dtype=part[by].dtype)).set_index(
            pd.Index([], dtype=np.int64))
    result = result_frame(by, tags, locate_groups(part, rows, offsets, tags, jobs))
    result.index = pd.Index(part[_POSITION].to_numpy()[rows[offsets[:-1]]])
    return result


def locate(ddf: dd.DataFrame, by: str = "tag", jobs: int = 1) -> dd.DataFrame:
    """Locates every tag of a Dask DataFrame of scan records (columns as for corvex.locate,
    any partitioning): one row per tag, columns as corvex.locate_many gives them.

    Each tag's records reach the library in the input's order. The result's index is the
    position of the tag's first record in the input (an increasing number, not a row count),
    so `.compute().sort_index()` lists the tags in order of first appearance, as locate_many
    does. jobs: library calls at once within one partition; Dask already runs partitions in
    parallel, so the default 1 keeps every worker thread on one call.
    """
    if by not in ddf.columns:
        raise ValueError(f"missing column {by!r}")
    positioned = ddf.map_partitions(_with_position)
    shuffled = positioned.shuffle(on=by, ignore_index=True)
    meta = result_frame(by, pd.Series([], dtype=ddf._meta[by].dtype)).set_index(
        pd.Index([], dtype=np.int64))
    return shuffled.map_partitions(_locate_partition, by, jobs, meta=meta)
