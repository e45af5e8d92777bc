import json
import logging
import sys

import numpy as np
import pandas as pd
import pytest

import corvex
import corvex._cli
from corvex import scenes
from conftest import EXAMPLE, run, run_module

LETTER_LEVELS = {"D": logging.DEBUG, "I": logging.INFO, "W": logging.WARNING, "E": logging.ERROR}


def example_as_json(path):
    """The example's records as a JSON array, empty cells left out."""
    frame = pd.read_csv(EXAMPLE, dtype=str, keep_default_na=False)
    records = [{key: json.loads(value) if key not in ("tag", "geoId", "floorInfo") else value
                for key, value in row.items() if value != ""} for row in frame.to_dict("records")]
    path.write_text(json.dumps(records, indent=1))
    return path


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


@pytest.mark.parametrize("make", [lambda p: EXAMPLE, example_as_json, odd_values])
def test_module_prints_what_the_tool_prints(tool, tmp_path, make):
    path = make(tmp_path / "scans")
    ours = run_module("locate", path, "--jobs", 2, CORVEX_LOG_LEVEL="debug")
    theirs = run([tool, "locate", path])
    assert (ours.returncode, ours.stdout, ours.stderr.splitlines()) == (
        0, theirs.stdout, tool_log(tool, path))


@pytest.mark.parametrize("text", [
    "timeStamp,rssi\n1,2\n",
    "tag,timeStamp,rssi,confidence,lon,lat,acc,locationType,locationSourceType,indoorFlag,"
    "floorId,floorAcc,floorInfo,geoId\nt,1,-50,0.5,8,47,5,1,1,2,x,3,L1,B\n",
    '[{"timeStamp": 1, "rssi": -50.5}]',
    '[{"timeStamp": 1,\n "rssi": -50, "confidence": 1, "lon": 8, "lat": 47, "acc": 5,\n'
    ' "locationType": 1, "locationSourceType": 1, "geoId": "B"}]',
])
def test_module_rejects_what_the_tool_rejects(tool, tmp_path, text):
    path = tmp_path / "bad"
    path.write_text(text)
    ours, theirs = run_module("locate", path), run([tool, "locate", path])
    assert (ours.returncode, ours.stdout, ours.stderr) == (2, "", theirs.stderr)


def test_locate_agrees_with_locate_many_for_every_input_form():
    frame = corvex.read_scans(str(EXAMPLE))
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
    corvex.locate_many(corvex.read_scans(str(EXAMPLE)), jobs=2)
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
    frame = pd.concat([corvex.read_scans(str(EXAMPLE)), scenes.crowd(4, 300, seed=8)])
    for _, records in frame.groupby("tag", sort=False):
        explained = corvex.explain(records)
        assert explained.location == corvex.locate(records)
        survivors = [corvex.STAGES.index(stage) for stage in explained.stages]
        assert [sum(s > slot for s in survivors) for slot in
                range(len(explained.location.infoCount))] == list(explained.location.infoCount)


def test_read_scans_ignores_columns_beyond_the_fields(tmp_path):
    path = tmp_path / "wider.csv"
    pd.read_csv(EXAMPLE, dtype=str, keep_default_na=False).assign(note="x").to_csv(path, index=False)
    pd.testing.assert_frame_equal(corvex.read_scans(str(path)), corvex.read_scans(str(EXAMPLE)))


def test_module_commands_leave_the_logger_as_they_found_it(capsys):
    logger = logging.getLogger("corvex")
    before = (logger.handlers[:], logger.level, logger.propagate)
    for command in (["locate", EXAMPLE], ["evaluate", "--scenes", 2, "--family", "sparse"]):
        assert corvex._cli.main(list(map(str, command))) == 0
        assert (logger.handlers, logger.level, logger.propagate) == before
