"""Frames: postures one after the other, as objects and as arrays, and how many fit in a second."""
import io
import math
import sys
from array import array

import numpy
import pytest
from conftest import PALM, random_rows
from staticstrength import (ClosedError, JointResult, StaticStrengthError, StaticStrengthWarning, Strategy,
                            UnknownNameError, Weight)

BENDS = [{"right_elbow": (angle, 0)} for angle in (0, 30, 60, 90)]


@pytest.fixture
def analysis(worker):
    worker.analysis.loads[PALM] = Weight(5000)
    return worker.analysis


def one_by_one(analysis, postures):
    for posture in postures:
        analysis.human.posture = posture
        yield analysis.compute()


# ---- one after the other ----

def test_postures_are_computed_one_after_the_other(analysis):
    expected = list(one_by_one(analysis, BENDS))
    assert list(analysis.simulate(BENDS)) == expected
    assert list(analysis.simulate(iter(BENDS))) == expected
    assert list(analysis.simulate(lambda i: BENDS[i] if i < 4 else None)) == expected
    assert expected[0]["right_elbow"].moment.magnitude < expected[3]["right_elbow"].moment.magnitude
    assert analysis.human.joints["right_elbow"].degrees == (90, 0)


def test_joints_that_are_not_given_stay_as_in_the_frame_before(analysis):
    list(analysis.simulate([{"right_elbow": 40}, {"left_elbow": 50}, {}]))
    joints = analysis.human.joints
    assert joints["right_elbow"].degrees[0] == 40 and joints["left_elbow"].degrees[0] == 50


def test_caller_moves_the_figure_between_a_number_of_frames(analysis):
    results = []
    joint = analysis.human.joints["right_elbow"]
    for result, angle in zip(analysis.simulate(4), (30, 60, 90, 0)):
        results.append(result)
        joint.degrees = angle, 0
    assert results == list(one_by_one(analysis, BENDS))
    assert list(analysis.simulate(0)) == []


def test_frames_are_computed_as_they_are_asked_for(analysis):
    asked = []
    results = analysis.simulate(lambda i: asked.append(i) or {})
    assert asked == []
    next(results), next(results)
    assert asked == [0, 1]


@pytest.mark.parametrize("wrong, kind", [(-1, ValueError), (True, TypeError), (1.5, TypeError), (None, TypeError)])
def test_what_are_no_frames_is_refused_at_once(analysis, wrong, kind):
    with pytest.raises(kind, match="expected"):
        analysis.simulate(wrong)


@pytest.mark.parametrize("wrong, text", [
    ("abc", "expected postures, found the text 'abc'"),
    ({"left_knee": 10}, "expected postures, one a frame, found a single one; for one frame put it into a list"),
])
def test_what_is_one_thing_is_no_frames(analysis, wrong, text):
    with pytest.raises(TypeError, match=text):
        analysis.simulate(wrong)


@pytest.mark.parametrize("wrong", [["ab"], [5], [[1, 2]], numpy.zeros((2, 3)), lambda i: 5])
def test_frame_that_is_no_posture_leads_to_the_arrays(analysis, wrong):
    with pytest.raises(TypeError, match="^frame 0: simulate takes postures, .* found .*; did you mean simulate_array"):
        next(analysis.simulate(wrong))


def test_frame_that_cannot_be_set_raises_when_it_is_its_turn(analysis):
    results = analysis.simulate([{"left_knee": 10}, {"left_knee": 1000}, {"left_nee": 1}])
    next(results)
    with pytest.raises(StaticStrengthError, match="outside its limits"):
        next(results)
    with pytest.raises(UnknownNameError):
        list(analysis.simulate([{"left_nee": 1}]))
    assert analysis.human.joints["left_knee"].degrees == (10,)


def test_scene_closed_between_frames_ends_them(analysis):
    results = analysis.simulate(3)
    next(results)
    analysis.human.scene.close()
    with pytest.raises(ClosedError):
        next(results)
    with pytest.raises(ClosedError):
        analysis.simulate(3)


def test_progress_bar_is_shown_when_asked_for(analysis, capsys):
    assert len(list(analysis.simulate(BENDS, progress=True))) == 4
    assert "4/4" in capsys.readouterr().err
    assert len(analysis.simulate_array([[i] for i in range(5)], angles=["left_knee"], progress=True)) == 5
    assert "5/5" in capsys.readouterr().err
    list(analysis.simulate(BENDS))
    assert capsys.readouterr().err == ""


# What the bar is written to may be anybody's.
def test_scene_closed_by_what_shows_the_progress_ends_the_frames(analysis, monkeypatch):
    class Closing(io.StringIO):
        def write(self, text):
            analysis.human.scene.close()
            return len(text)

    monkeypatch.setattr(sys, "stderr", Closing())
    with pytest.raises(ClosedError):
        analysis.simulate_array([[1], [2]], angles=["left_knee"], progress=True)


def test_progress_bar_without_tqdm_is_warned_of(analysis, monkeypatch):
    monkeypatch.setitem(sys.modules, "tqdm.auto", None)
    with pytest.warns(StaticStrengthWarning, match="no progress bar, because tqdm is not installed"):
        assert len(list(analysis.simulate(BENDS, progress=True))) == 4


# ---- as arrays ----

@pytest.mark.parametrize("strategy", list(Strategy))
def test_array_holds_the_bits_of_single_computations(analysis, strategy):
    analysis.strategy = strategy
    rows = random_rows(analysis, 40)
    results = analysis.simulate_array(rows)
    assert results.joints == tuple(analysis.human.joints) and results.shape == (40, len(results.joints), 6)
    reached = set()
    for i, row in enumerate(rows):
        numbers = iter(row)
        analysis.human.posture = {name: [next(numbers) for _ in joint.degrees]
                                  for name, joint in analysis.human.joints.items()}
        single = analysis.compute()
        assert results[i] == dict(single)
        reached.add(single.effective_strategy)
    assert len(reached) == (3 if strategy is Strategy.WALKING else 1)


def test_rows_may_be_lists_arrays_or_a_table_of_numpy(analysis):
    rows = random_rows(analysis, 3)
    flat = analysis.simulate_array(rows).flat
    table = numpy.array(rows)
    wide = numpy.zeros((3, 2 * table.shape[1]))
    wide[:, ::2] = table
    for frames in ([array("d", row) for row in rows], (tuple(row) for row in rows), table, wide[:, ::2],
                   numpy.asfortranarray(table)):
        assert analysis.simulate_array(frames).flat.tobytes() == flat.tobytes()
    whole = numpy.full((2, 1), 45)
    assert analysis.simulate_array(whole, angles=["left_knee"]) is not None
    assert analysis.human.joints["left_knee"].degrees == (45,)
    assert len(analysis.simulate_array([])) == 0 and analysis.simulate_array(table[:0]).shape[0] == 0


# Other angles keep their bits, whatever order the columns have.
def test_columns_may_be_some_angles_in_any_order(analysis):
    analysis.human.joints["left_shoulder"].radians = 0.1, 0.2, 0.3
    before = {name: joint.radians for name, joint in analysis.human.joints.items()}
    columns = [("right_elbow", 2), "left_knee", ("right_elbow", 1)]
    results = analysis.simulate_array([[10, 20, 30], [-5, 40, 90]], angles=columns)
    after = {name: joint.radians for name, joint in analysis.human.joints.items()}
    assert after.pop("right_elbow") == (math.radians(90), math.radians(-5))
    assert after.pop("left_knee") == (math.radians(40),)
    assert after == {name: angles for name, angles in before.items() if name in after}
    single = analysis.compute()
    assert results[1] == dict(single) and results[0] != results[1]


def test_column_of_a_joint_is_all_its_angles(analysis):
    analysis.simulate_array([[10, 20, 30, 40, 5]], angles=["right_shoulder", "left_knee", ("right_elbow", 1)])
    joints = analysis.human.joints
    assert (joints["right_shoulder"].degrees, joints["left_knee"].degrees) == ((10, 20, 30), (40,))
    assert joints["right_elbow"].degrees == (5, 0) and joints["left_shoulder"].degrees == (0, 0, 0)


def test_joints_whose_results_are_kept_are_chosen(analysis):
    rows = random_rows(analysis, 5)
    everything = analysis.simulate_array(rows)
    chosen = analysis.simulate_array(rows, joints=["right_elbow", "waist"])
    assert chosen.joints == ("right_elbow", "waist") and chosen.shape == (5, 2, 6)
    for i in range(5):
        assert chosen[i] == {joint: everything[i][joint] for joint in ("right_elbow", "waist")}


def test_numbers_are_read_by_frame_joint_and_component(analysis):
    results = analysis.simulate_array([[0], [30], [60]], angles=[("right_elbow", 1)],
                                      joints=["right_elbow", "left_ball"])
    elbow = results.at(1, "right_elbow")
    assert isinstance(elbow, JointResult) and results[1] == {"right_elbow": elbow}
    assert results.at(-2, "right_elbow") == elbow
    assert results.at(1, "left_ball") is None and math.isnan(results.series("left_ball", "moment_nm")[0])
    assert results.series("right_elbow", "force_y_kgf")[1] == elbow.force.y
    assert results.series("right_elbow", "moment_x_nm")[1] == elbow.moment.x
    assert results.series("right_elbow", "force_kgf")[1] == pytest.approx(elbow.force.magnitude, rel=2.0 ** -24)
    assert results.series("right_elbow", "moment_nm")[1] == pytest.approx(elbow.moment.magnitude, rel=2.0 ** -24)
    assert [frame["right_elbow"] for frame in results] == [frame["right_elbow"] for frame in results[:]]
    assert len(results.series("right_elbow", "moment_nm")) == len(results) == 3
    assert isinstance(results.flat, array) and results.flat.typecode == "f" and len(results.flat) == 36
    assert repr(results) == "<FrameResults: 3 frames, 2 joints>"
    for use, kind in ((lambda: results.at(3, "right_elbow"), IndexError), (lambda: results[-4], IndexError),
                      (lambda: results.at(0, "right_elbo"), UnknownNameError),
                      (lambda: results.series("right_elbow", "moment"), UnknownNameError)):
        with pytest.raises(kind):
            use()


def test_numbers_are_a_view_for_numpy_and_a_table_for_pandas(analysis, monkeypatch):
    results = analysis.simulate_array([[0], [30]], angles=[("right_elbow", 1)], joints=["right_elbow", "waist"])
    numbers = numpy.asarray(results)
    assert numbers.shape == (2, 2, 6) and numbers.dtype == numpy.float32
    assert tuple(numbers[1, 0, :3]) == tuple(results.at(1, "right_elbow").force)
    assert numpy.asarray(results, dtype=float).dtype == float
    results.flat[0] = 7
    assert numbers[0, 0, 0] == 7
    frame = results.as_dataframe()
    assert frame.loc[(1, "waist"), "force_y_kgf"] == results.at(1, "waist").force.y and len(frame) == 4
    monkeypatch.setitem(sys.modules, "pandas", None)
    with pytest.raises(ImportError, match="needs pandas"):
        results.as_dataframe()


@pytest.mark.parametrize("frames, options, kind, text", [
    ([[1, 2]], {"angles": ["left_knee"]}, ValueError, "^frame 0: expected 1 angles, found 2"),
    ([[1], [1, 2]], {"angles": ["left_knee"]}, ValueError, "^frame 1: expected 1 angles, found 2"),
    ([1, 2], {"angles": ["left_knee"]}, TypeError, "^frame 0: expected a row of 1 angles in degrees, found 1"),
    ([["x"]], {"angles": ["left_knee"]}, TypeError, "^frame 0: expected a row of 1 angles"),
    (numpy.zeros((2, 3)), {"angles": ["left_knee"]}, ValueError, "the array: expected 1 angles, found 3"),
    ([[1]], {"angles": "left_knee"}, TypeError, "expected a list of joints"),
    ([[1]], {"angles": ["left_nee"]}, UnknownNameError, "Did you mean left_knee"),
    ([[1]], {"angles": [("left_knee", 2)]}, ValueError, "joint left_knee has no angle 2"),
    ([[1, 2]], {"angles": ["left_knee", ("left_knee", 1)]}, ValueError, "angle 1 of joint left_knee is given twice"),
    ([[1]], {"angles": ["left_knee"], "joints": ["wais"]}, UnknownNameError, "Did you mean waist"),
    ([[1], [1000]], {"angles": ["left_knee"]}, StaticStrengthError, "^frame 1: joint worker.left_knee: .* outside"),
    ([[1], [float("nan")]], {"angles": ["left_knee"]}, StaticStrengthError, "^frame 1: .* must be a finite number"),
])
def test_what_cannot_be_computed_is_told_with_its_place(analysis, frames, options, kind, text):
    with pytest.raises(kind, match=text):
        analysis.simulate_array(frames, **options)


@pytest.mark.parametrize("frames, options, kind, text", [
    (5, {}, TypeError, "expected rows of 1 angles in degrees, found 5"),
    (None, {}, TypeError, "expected rows of 1 angles in degrees, found None"),
    ("12", {}, TypeError, "expected rows of 1 angles in degrees, found '12'"),
    ({0: [1]}, {}, TypeError, "expected rows of 1 angles in degrees"),
    (["1"], {}, TypeError, "^frame 0: expected a row of 1 angles in degrees, found '1'"),
    ([[1], [10 ** 400]], {}, ValueError, "^frame 1: expected a row of 1 angles in degrees, found a number too large"),
    ([[1], [1j]], {}, TypeError, "^frame 1: expected a row of 1 angles"),
    (numpy.array([[1j]]), {}, TypeError, "^frame 0: expected a row of 1 angles"),
    ([[1]], {"joints": "waist"}, TypeError, "expected a list of joints, found the text 'waist'"),
    ([[1]], {"joints": 5}, TypeError, "expected a list of joints, found 5"),
    ([[1]], {"joints": [5]}, TypeError, "expected a joint or its name, found 5"),
    ([[1]], {"angles": 5}, TypeError, r"expected a list of joints or of \(joint, index\), found 5"),
    ([[1]], {"angles": [5]}, TypeError, r"expected a joint or \(joint, index from 1\), found 5"),
    ([[1]], {"angles": [("left_knee", 1, 2)]}, TypeError, r"expected a joint or \(joint, index from 1\), found"),
    ([[1]], {"angles": [("left_knee", "1")]}, TypeError, r"expected a joint or \(joint, index from 1\), found"),
    ([[1]], {"angles": [("left_knee", True)]}, TypeError, r"expected a joint or \(joint, index from 1\), found"),
    ([[1]], {"angles": [(5, 1)]}, TypeError, "expected a joint or its name, found 5"),
])
def test_what_is_no_array_of_postures_is_told_clearly(analysis, frames, options, kind, text):
    with pytest.raises(kind, match=text):
        analysis.simulate_array(frames, **{"angles": ["left_knee"], **options})


def test_joints_may_be_given_as_objects(analysis, man):
    knee, waist = analysis.human.joints["left_knee"], analysis.human.joints["waist"]
    by_name = analysis.simulate_array([[10, 2]], angles=["left_knee", ("waist", 2)], joints=["waist"])
    by_object = analysis.simulate_array([[10, 2]], angles=[knee, (waist, 2)], joints=[waist])
    assert by_object.joints == ("waist",) and by_object.flat == by_name.flat
    for options in ({"angles": [man.joints["left_knee"]]}, {"angles": [knee], "joints": [man.joints["waist"]]}):
        with pytest.raises(ValueError, match="is not of figure worker"):
            analysis.simulate_array([[10]], **options)


def test_frames_are_counted_without_joints_and_without_angles(analysis):
    without = analysis.simulate_array([[1], [2], [3]], angles=["left_knee"], joints=[])
    assert without.shape == (3, 0, 6) and list(without) == [{}, {}, {}] and numpy.asarray(without).shape == (3, 0, 6)
    same = analysis.simulate_array([[], []], angles=[], joints=["waist"])
    assert same.shape == (2, 1, 6) and same[0] == same[1] != {}


def test_error_of_a_computation_is_told_with_its_frame(scene):
    from small_figure import small_body
    body = small_body("man")
    body.document["left"]["knee"] = None
    man = scene.add_posed(body.document)
    with pytest.raises(StaticStrengthError, match="^frame 0: StaticStrength ERROR: "):
        man.analysis.simulate_array([[0]], angles=["right_knee"])
