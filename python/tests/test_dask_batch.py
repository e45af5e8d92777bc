import dask
import dask.dataframe as dd
import pandas as pd
import pytest
from distributed import Client, LocalCluster

import corvex
import corvex.dask
from corvex import _cli, scenes


@pytest.fixture(scope="module")
def cluster():
    with LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                      dashboard_address=None) as two_processes:
        yield two_processes


def in_first_appearance_order(result):
    return result.sort_index().reset_index(drop=True)


def test_a_million_records_on_two_worker_processes_equal_locate_many(cluster):
    frame = scenes.crowd(tags=500, records_per_tag=2000, seed=12)
    expected = corvex.locate_many(frame, jobs=2)
    # Each tag's records are spread over every partition.
    ddf = dd.from_pandas(frame, npartitions=6, sort=False)
    with Client(cluster):
        result = corvex.dask.locate(ddf, by="tag").compute()
    pd.testing.assert_frame_equal(in_first_appearance_order(result), expected)


@pytest.mark.parametrize("scheduler", ["sync", "threads", "processes"])
def test_local_schedulers_and_odd_partitions_equal_locate_many(scheduler):
    frame = scenes.crowd(tags=30, records_per_tag=100, seed=5).rename(columns={"tag": "key"})
    ddf = dd.from_pandas(frame, npartitions=7, sort=False)
    with dask.config.set(scheduler=scheduler):
        result = corvex.dask.locate(ddf, by="key").compute()
    pd.testing.assert_frame_equal(in_first_appearance_order(result),
                                  corvex.locate_many(frame, by="key"))


def test_evaluate_on_a_scheduler_prints_the_local_table(cluster, capsys):
    arguments = ["evaluate", "--scenes", "40", "--family", "stale", "--seed", "3"]
    assert _cli.main(arguments) == 0
    local = capsys.readouterr().out
    assert _cli.main(arguments + ["--scheduler", cluster.scheduler_address]) == 0
    assert capsys.readouterr().out == local
