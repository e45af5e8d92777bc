"""python -m corvex: the command line of the Python package."""
from __future__ import annotations

import argparse
import contextlib
import logging
import os
import sys

from corvex import _core
from corvex._records import ScanFileError

EXIT_FAILURE = 1  # could not finish
EXIT_BAD_INPUT = 2  # bad command line or bad input; nothing was printed


def _write(stream, data: bytes) -> None:
    """Bytes as they are (names and texts from the input need not be UTF-8)."""
    stream.flush()
    stream.buffer.write(data)
    stream.buffer.flush()


def _locate(arguments: argparse.Namespace) -> int:
    """What `corvex locate` does with the same arguments: the tool's own code runs it."""
    code, text, messages = _core.locate_file(
        os.fsencode(arguments.file), arguments.format, os.fsencode(arguments.output or ""),
        arguments.log or "", arguments.newest or 0, arguments.jobs, arguments.strict,
        sys.stderr.isatty())
    _write(sys.stderr, b"".join(b"corvex: " + message + b"\n" for message in messages))
    try:
        _write(sys.stdout, text)
    except OSError:
        _write(sys.stderr, b"corvex: cannot write the output\n")
        return EXIT_FAILURE
    return code


@contextlib.contextmanager
def _library_quiet():
    """evaluate prints only its tables: the library's lines reach no handler meanwhile."""
    logger = logging.getLogger("corvex")
    saved = logger.level, logger.propagate
    logger.setLevel(logging.CRITICAL + 1)
    logger.propagate = False
    try:
        yield
    finally:
        logger.propagate = saved[1]
        logger.setLevel(saved[0])  # also clears the logger's cache of enabled levels


def _evaluations(arguments: argparse.Namespace, client) -> list:
    from corvex import evaluate, scenes
    observe = arguments.losses and client is None
    if arguments.file:
        records, truth = evaluate.labelled_file(arguments.file, arguments.truth_lon,
                                                arguments.truth_lat, arguments.truth_floor)
        return [(evaluate.evaluate_frame(arguments.file, records, truth, arguments.jobs, client,
                                         observe), truth)]
    done = []
    for family in arguments.family or scenes.REALISTIC_FAMILIES:
        records, truth = scenes.generate(family, arguments.scenes, arguments.seed)
        done.append((evaluate.evaluate_frame(family, records, truth, arguments.jobs, client,
                                             observe), truth))
    return done


def _evaluate(arguments: argparse.Namespace) -> int:
    from corvex import evaluate
    if arguments.file and not (arguments.truth_lon and arguments.truth_lat):
        print("corvex: a labelled FILE needs --truth-lon and --truth-lat", file=sys.stderr)
        return EXIT_BAD_INPUT
    client = None
    if arguments.scheduler:
        from distributed import Client
        client = Client(arguments.scheduler)
    try:
        done = _evaluations(arguments, client)
    except (ScanFileError, OSError, ValueError) as error:
        print(f"corvex: {error}", file=sys.stderr)
        return EXIT_BAD_INPUT
    finally:
        if client is not None:
            client.close()
    for evaluation, truth in done:
        print(evaluate.table(evaluation))
        if evaluation.observed is not None:
            print(evaluate.losses_table(evaluation, truth))
    if len(done) > 1:
        print("All families: median / p95 error (m)\n")
        print(evaluate.overview([evaluation for evaluation, _ in done]))
    if arguments.plot:
        evaluate.plot([evaluation for evaluation, _ in done], arguments.plot)
    return 0


def _positive(text: str) -> int:
    number = int(text)
    if number < 1:
        raise argparse.ArgumentTypeError(f"{text} is not a positive number")
    return number


def _jobs(text: str) -> int:
    jobs = int(text)
    if not 1 <= jobs <= 1024:
        raise argparse.ArgumentTypeError(f"{text} is not in 1 to 1024")
    return jobs


def parser() -> argparse.ArgumentParser:
    main = argparse.ArgumentParser(
        prog="python -m corvex",
        description="corvex: estimates where Bluetooth Low Energy tags are from phone scan records")
    commands = main.add_subparsers(dest="command", required=True)
    locate = commands.add_parser(
        "locate", help="locate every tag of a CSV or JSON file of scan records",
        description="Locates every tag of a CSV or JSON file of scan records, as the corvex "
                    "tool does; prints one answer per tag, tags in order of first appearance.")
    locate.add_argument("file", metavar="FILE",
                        help="CSV with a header row, or a JSON array of objects; - reads "
                             "standard input")
    locate.add_argument("-j", "--jobs", type=_jobs, default=1,
                        help="number of tags located at once")
    locate.add_argument("-f", "--format", choices=("jsonl", "csv", "geojson"), default="jsonl",
                        help="jsonl (one JSON object per line), csv or geojson")
    locate.add_argument("-o", "--output", metavar="FILE",
                        help="write the answers to this file, not stdout")
    locate.add_argument("--log", choices=("debug", "info", "warn", "error"),
                        help="add each call's library log lines of this level and above to its "
                             "answer")
    locate.add_argument("--newest", type=_positive, metavar="N",
                        help="use only the newest N records of each tag")
    locate.add_argument("--strict", action="store_true",
                        help="refuse values no phone produces (lon, lat, acc or confidence out "
                             "of range)")
    _add_evaluate(commands)
    return main


def _add_evaluate(commands) -> None:
    from corvex.scenes import FAMILIES, REALISTIC_FAMILIES
    evaluate = commands.add_parser(
        "evaluate", help="measure corvex against ground truth and simple baselines",
        description="Locates simulated scenes (or the tags of a labelled FILE) with corvex and "
                    "with baselines (newest report, mean, confidence- and accuracy-weighted "
                    "mean) and prints per family: error quantiles (m), the share of scenes "
                    "whose truth lies within the stated accuracy, floor hits and corvex's "
                    "error codes.")
    evaluate.add_argument("file", metavar="FILE", nargs="?",
                          help="labelled scan records (the locate format plus truth columns)")
    evaluate.add_argument("--truth-lon", metavar="COL", help="FILE's column of true longitudes")
    evaluate.add_argument("--truth-lat", metavar="COL", help="FILE's column of true latitudes")
    evaluate.add_argument("--truth-floor", metavar="COL", help="FILE's column of true floors")
    evaluate.add_argument("--scenes", type=_positive, default=1000, help="scenes per family")
    evaluate.add_argument("--family", action="append", choices=list(FAMILIES),
                          help=f"family (repeatable; default: {', '.join(REALISTIC_FAMILIES)})")
    evaluate.add_argument("--seed", type=int, default=0, help="seed of the scenes")
    evaluate.add_argument("--plot", metavar="PNG", help="write error CDFs and calibration here")
    evaluate.add_argument("-j", "--jobs", type=_jobs, default=None,
                          help="tags located at once (default: the CPU count)")
    evaluate.add_argument("--scheduler", metavar="ADDRESS",
                          help="locate on this Dask scheduler (e.g. tcp://host:8786)")
    evaluate.add_argument("--losses", action="store_true",
                          help="also tell where corvex loses to a baseline and which step "
                               "causes it (local runs)")


def main(argv: list[str] | None = None) -> int:
    arguments = parser().parse_args(argv)
    if arguments.command == "locate":
        return _locate(arguments)
    with _library_quiet():
        return _evaluate(arguments)
