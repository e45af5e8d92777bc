import json
import logging
import sys

import numpy as np
import pandas as pd
import pytest

import corvex
from corvex import scenes
from conftest import EXAMPLE, run

LETTER_LEVELS = {"D": logging.DEBUG, "I": logging.INFO, "W": logging.WARNING, "E": logging.ERROR}


def odd_values(path):
    """Records with NaN and infinities in the floating fields, which C accepts."""
    frame = pd.read_csv(EXAMPLE, dtype=str, keep_default_na=False).head(60)
    frame.loc[3, "lon"], frame.loc[7, "confidence"], frame.loc[9, "acc"] = "nan", "inf", "nan"
    frame.loc[40, "lat"] = "-inf"
    frame.to_csv(path, index=False)
    return path


def tool_log(tool, path):
    """The library's lines of the tool's calls, tag by tag, as the log sink writes them."""
    answers = run([tool, "locate", path, "--log", "debug"]).stdout.splitlines()
    return [line for answer in answers for line in json.loads(answer)["log"]]


@pytest.mark.parametrize("arguments, code", [
    ([EXAMPLE, "--log", "debug", "--jobs", 2], 0),
    (["-", "--format", "csv"], 0),  # the example on standard input
    (["ODD", "--format", "geojson", "--newest", 30, "--jobs", 2], 0),
    (["ODD", "--log", "warn", "--output", "OUT"], 0),
    (["ODD", "--strict"], 2),
])
def test_module_answers_as_the_tool(tool, tmp_path, arguments, code):
    out = tmp_path / "out"
    places = {"ODD": odd_values(tmp_path / "odd.csv"), "OUT": out}
    arguments = [str(places.get(a, a)) for a in arguments]

    def answer(command):
        done = run([*command, "locate", *arguments], stdin=EXAMPLE.read_bytes())
        written = out.read_bytes() if out.exists() else b""
        out.unlink(missing_ok=True)
        return done.returncode, done.stdout + written, done.stderr

    ours = answer([sys.executable, "-m", "corvex"])
    assert ours == answer([tool])
    assert ours[0] == code and (ours[1] != b"") == (code == 0)


@pytest.mark.parametrize("make", [lambda p: EXAMPLE, odd_values])
def test_locate_many_equals_the_tool_line_for_line(tool, tmp_path, make):
    path = make(tmp_path / "scans.csv")
    ours = corvex.locate_many(corvex.read_scans(path)).drop(columns="trace")
    lines = [json.loads(line) for line in run([tool, "locate", path]).stdout.splitlines()]
    theirs = pd.DataFrame(lines).astype(ours.dtypes.to_dict())  # null: NaN
    pd.testing.assert_frame_equal(ours, theirs, check_exact=True)


def test_locate_agrees_with_locate_many_for_every_input_form():
    frame = corvex.read_scans(EXAMPLE)
    many = corvex.locate_many(frame)
    for _, row in many.iterrows():
        records = frame[frame.tag == row.tag]
        expected = corvex.locate(records)
        assert expected == corvex.Location(**{**row.drop("tag"), "infoCount": tuple(row.infoCount)})
        assert corvex.locate(records.to_dict("records")) == expected
        assert corvex.locate(records.to_records(index=False)) == expected
        assert corvex.locate(records.astype(object)) == expected


def test_library_lines_reach_logging_in_call_order(tool, caplog):
    caplog.set_level(logging.DEBUG, logger="corvex")
    corvex.locate_many(corvex.read_scans(EXAMPLE), jobs=2)
    theirs = tool_log(tool, EXAMPLE)
    assert [(r.levelno, r.getMessage()) for r in caplog.records] == [
        (LETTER_LEVELS[line[0]], line.split(": ", 1)[1]) for line in theirs]


def test_log_file_takes_the_lines_instead_of_logging(tmp_path):
    log = tmp_path / "corvex.log"
    script = ("import logging, corvex; logging.basicConfig(level=logging.DEBUG); "
              "corvex.locate([])")
    result = run([sys.executable, "-c", script], CORVEX_LOG_FILE=str(log), CORVEX_LOG_LEVEL="debug")
    assert result.stderr == ""
    assert log.read_text() == "E 0xD002300/Mirelth: infos is null or empty\n"


def scans(count, **fields):
    return pd.DataFrame({"tag": "t", "timeStamp": np.arange(count) * 1000 + 1, "rssi": -60,
                         "confidence": 0.9, "lon": 8.5, "lat": 47.3, "acc": 5.0,
                         "locationType": 1, "locationSourceType": 1, "indoorFlag": np.nan,
                         "floorId": np.nan, "floorAcc": np.nan, "floorInfo": None, "geoId": None,
                         **fields})


@pytest.mark.parametrize("records, message", [
    (scans(3).drop(columns="rssi"), "missing column 'rssi'"),
    (pd.concat([scans(3), scans(3)[["lat"]]], axis=1), "column 'lat' appears twice"),
    (scans(3, rssi=["-60", "-61", "x"]), "column 'rssi', row 0: expected a number, found '-60'"),
    (scans(3, rssi=[-60, -61.5, -62]), "column 'rssi', row 1: expected a whole number"),
    (scans(3, timeStamp=[1, np.inf, 3]), "column 'timeStamp', row 1: not a finite time stamp"),
    (scans(3, timeStamp=[1, 2, None]), "column 'timeStamp', row 2: no time stamp"),
    (scans(3, rssi=[-60, 2**31, -62]), "column 'rssi', row 1: 2147483648 is out of range"),
    (scans(3, geoId=[None, "B", None]), "column 'indoorFlag', row 1: no value"),
    (scans(3, geoId=[None, 7, None]), "column 'geoId', row 1: expected text, found 7"),
    (scans(3).set_index(pd.Index(list("abc"))).assign(acc=[1, "2", 3]), "column 'acc', row 'b'"),
])
def test_caller_mistakes_raise_value_error_naming_column_and_row(records, message):
    with pytest.raises(ValueError, match=message):
        corvex.locate(records)


def test_library_errors_are_result_fields():
    frame = pd.concat([scans(20, tag="u"), scans(5001), scans(20, tag="u")])
    result = corvex.locate_many(frame)
    assert result[["tag", "code"]].values.tolist() == [["u", 0], ["t", 500020]]
    assert result.infoCount[0][0] == 40
    assert corvex.locate(scans(0)).code == 500010
    assert corvex.locate([]).message == "Input info is empty"
    empty = corvex.locate_many(scans(0))
    assert empty.empty and list(empty.columns) == list(result.columns)


def test_threads_give_what_one_thread_gives():
    frame = scenes.crowd(tags=60, records_per_tag=150, seed=3)
    pd.testing.assert_frame_equal(corvex.locate_many(frame, jobs=8),
                                  corvex.locate_many(frame, jobs=1))


def test_explain_answers_as_locate_and_its_stages_add_up_to_the_counts():
    frame = pd.concat([corvex.read_scans(EXAMPLE), scenes.crowd(4, 300, seed=8)])
    for _, records in frame.groupby("tag", sort=False):
        explained = corvex.explain(records)
        assert explained.location == corvex.locate(records)
        survivors = [corvex.STAGES.index(stage) for stage in explained.stages]
        assert [sum(s > slot for s in survivors) for slot in
                range(len(explained.location.infoCount))] == list(explained.location.infoCount)
