#!/usr/bin/python3
"""Throughput of the Python package against the corvex tool on one scan file.

    PYTHONPATH=build/python /usr/bin/python3 bench/python_batch.py --cli build/tools/corvex

Writes a file of simulated records (default 1,000,000 records of 500 tags), then measures
records/s of: the tool and `python -m corvex locate` (--jobs 1 and 2), corvex.locate_many on
the file's frame (jobs 1 and 2), and corvex.dask.locate on a distributed.LocalCluster of 1 and
2 worker processes reading the file with dask.dataframe.read_csv. Also the cost of the Python
path over the library's own time: CPU time of locate_many (jobs 1) against the CPU time of the
library calls inside it. Wall times are the best of --repeat runs; the machine should be
otherwise idle. CPU times (this process and the tool's, not Dask's workers) hold up better on a
busy machine.
"""
import argparse
import os
import resource
import subprocess
import sys
import tempfile
import time

import corvex
import corvex._batch
from corvex import scenes


def cpu_seconds():
    """CPU time (s) of this process and of its finished children."""
    children = resource.getrusage(resource.RUSAGE_CHILDREN)
    return time.process_time() + children.ru_utime + children.ru_stime


def best_of(repeat, run):
    """The shortest wall time (s) of repeat runs, and the least CPU time (s) of one."""
    walls, cpus = [], []
    for _ in range(repeat):
        start, cpu = time.perf_counter(), cpu_seconds()
        run()
        walls.append(time.perf_counter() - start)
        cpus.append(cpu_seconds() - cpu)
    return min(walls), min(cpus)


def python_overhead(frame, repeat):
    """(CPU s of locate_many with one thread, CPU s of the library calls within it), best run."""
    runs = []
    for _ in range(repeat):
        start = time.process_time()
        corvex.locate_many(frame, jobs=1)
        runs.append((time.process_time() - start, corvex._batch.last_library_seconds))
    return min(runs)


def dask_seconds(path, workers, repeat):
    import dask.dataframe as dd
    import corvex.dask
    from distributed import Client, LocalCluster

    with LocalCluster(n_workers=workers, threads_per_worker=1, processes=True,
                      dashboard_address=None) as cluster, Client(cluster):
        def run():
            ddf = dd.read_csv(path, blocksize=16 << 20, dtype={"geoId": object, "floorInfo": object})
            corvex.dask.locate(ddf, by="tag").compute()
        run()  # warm the workers: imports and the first shuffle
        return best_of(repeat, run)[0], None  # the workers' CPU is not ours to count


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--cli", required=True, help="the built corvex tool")
    parser.add_argument("--records", type=int, default=1_000_000)
    parser.add_argument("--tags", type=int, default=500)
    parser.add_argument("--repeat", type=int, default=3)
    parser.add_argument("--no-dask", action="store_true")
    arguments = parser.parse_args()

    with tempfile.TemporaryDirectory() as directory:
        path = os.path.join(directory, "scans.csv")
        scenes.crowd(arguments.tags, arguments.records // arguments.tags, seed=1).to_csv(
            path, index=False)
        records = arguments.records
        frame = corvex.read_scans(path)
        rows = []
        for name, command in (("corvex locate", [arguments.cli]),
                              ("python -m corvex locate", [sys.executable, "-m", "corvex"])):
            for jobs in (1, 2):
                times = best_of(arguments.repeat, lambda: subprocess.run(
                    [*command, "locate", path, "--jobs", str(jobs)], check=True,
                    stdout=subprocess.DEVNULL))
                rows.append((f"{name} --jobs {jobs} (file to JSON lines)", *times))
        for jobs in (1, 2):
            times = best_of(arguments.repeat, lambda: corvex.locate_many(frame, jobs=jobs))
            rows.append((f"corvex.locate_many jobs={jobs} (frame to frame)", *times))
        if not arguments.no_dask:
            for workers in (1, 2):
                rows.append((f"corvex.dask.locate, {workers} worker process(es) (file to frame)",
                             *dask_seconds(path, workers, arguments.repeat)))
        whole, library = python_overhead(frame, arguments.repeat)

    print(f"{records} records, {arguments.tags} tags, best of {arguments.repeat}\n")
    print("| path | wall s | records/s | CPU s |\n|---|---:|---:|---:|")
    for name, seconds, cpu in rows:
        print(f"| {name} | {seconds:.2f} | {records / seconds:,.0f} | "
              f"{'' if cpu is None else f'{cpu:.2f}'} |")
    print(f"\nlocate_many, one thread: {whole:.3f} s CPU, of which library calls {library:.3f} s "
          f"({1e3 * library / arguments.tags:.2f} ms per tag): Python path "
          f"+{100 * (whole / library - 1):.1f}% over the library")


if __name__ == "__main__":
    main()
