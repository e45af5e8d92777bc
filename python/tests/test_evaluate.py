import struct

import pandas as pd

from corvex import _cli, evaluate, scenes
from conftest import run, run_module


def run_evaluate(capsys, *arguments):
    assert _cli.main(["evaluate", *map(str, arguments)]) == 0
    return capsys.readouterr().out


def test_same_seed_same_table_and_scenes_independent_of_their_count(capsys):
    arguments = ["--scenes", 25, "--family", "park", "--family", "mall", "--losses"]
    first = run_evaluate(capsys, *arguments, "--seed", 4, "--jobs", 1)
    assert run_evaluate(capsys, *arguments, "--seed", 4, "--jobs", 2) == first
    assert run_evaluate(capsys, *arguments, "--seed", 5) != first
    few, _ = scenes.generate("hostile", 3, seed=4)
    many, _ = scenes.generate("hostile", 5, seed=4)
    pd.testing.assert_frame_equal(few, many[many.tag.isin(few.tag)])


def test_noise_free_scenes_put_corvex_and_the_means_on_the_tag():
    records, truth = scenes.generate("exact", 60, seed=2)
    worst = evaluate.summary(evaluate.evaluate_frame("exact", records, truth)).set_index("method")
    assert (worst.loc[["corvex", "mean", "confidence-weighted mean", "accuracy-weighted mean"],
                      "p95"] < 0.02).all()


def test_newest_report_is_the_latest_record_and_the_later_one_of_equal_times():
    records = pd.DataFrame({"tag": ["a", "a", "a", "b", "b"], "timeStamp": [5, 9, 2, 7, 7],
                            "lon": [1.0, 2.0, 3.0, 4.0, 5.0], "lat": [0.0] * 5,
                            "acc": [1.0, 2.0, 3.0, 4.0, 5.0], "confidence": [1.0] * 5,
                            "floorId": [0, 3, 0, 0, 0], "geoId": ["", "B", "", "", ""]})
    newest = evaluate.baselines(records)
    assert newest["newest report lon"].tolist() == [2.0, 5.0]
    assert newest["newest report acc"].tolist() == [2.0, 5.0]
    assert newest["newest report floor"].tolist() == [3, None]


def test_labelled_file_gives_the_table_of_the_same_scenes(capsys, tmp_path):
    records, truth = scenes.generate("mall", 20, seed=7)
    path = tmp_path / "labelled.csv"
    records.merge(truth.rename(columns={"lon": "true lon", "lat": "true lat", "floor": "level"}),
                  on="tag").to_csv(path, index=False)
    rows = [line for line in run_evaluate(capsys, "--scenes", 20, "--family", "mall", "--seed", 7)
            .splitlines() if line.startswith("| ")]
    labelled = run_evaluate(capsys, path, "--truth-lon", "true lon", "--truth-lat", "true lat",
                            "--truth-floor", "level")
    assert [line for line in labelled.splitlines() if line.startswith("| ")] == rows


def test_plot_is_a_png_of_the_announced_size(tmp_path):
    done = [evaluate.evaluate_frame(family, *scenes.generate(family, 10, seed=1))
            for family in ("park", "sparse", "moved")]
    path = tmp_path / "cdf.png"
    evaluate.plot(done, str(path))
    header = path.read_bytes()[:24]
    assert header[:8] == b"\x89PNG\r\n\x1a\n" and header[12:16] == b"IHDR"
    assert struct.unpack(">II", header[16:24]) == evaluate.plot_size(4) == (1500, 800)


def test_labelled_file_without_its_truth_columns_is_bad_input(tmp_path):
    path = tmp_path / "scans.csv"
    scenes.generate("sparse", 2)[0].to_csv(path, index=False)
    assert run_module("evaluate", path).returncode == 2
    result = run_module("evaluate", path, "--truth-lon", "lon", "--truth-lat", "north")
    assert (result.returncode, result.stderr) == (2, f"corvex: {path}: missing truth column 'north'\n")


def test_tool_evaluate_is_the_module_and_says_how_to_get_it(tool, tmp_path):
    arguments = ["evaluate", "--scenes", "3", "--family", "sparse", "--jobs", "1"]
    ours = run_module(*arguments)
    assert ours.returncode == 0 and run([tool, *arguments]).stdout == ours.stdout
    missing = run([tool, *arguments], PYTHONPATH=str(tmp_path), PYTHONNOUSERSITE="1")
    assert missing.returncode == 1 and "pip install --no-build-isolation" in missing.stderr
    assert "evaluate" in run([tool, "--help"]).stdout
