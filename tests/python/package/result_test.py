"""Results: values that stay, as mappings, numbers, tables."""
import copy
import json
import pickle
import sys

import pytest
from conftest import PALM
from staticstrength import NEWTON_PER_KGF, JointForce, JointResult, Strategy, UnknownNameError, Vector, Weight
from staticstrength.result import COLUMNS, Result


@pytest.fixture
def result(man):
    man.analysis.loads[PALM] = 0, 0, -2
    return man.analysis.compute()


def made(joints=("<b>", "none"), force=(3, 0, 4), moment=(0, -0.00004, 2)):
    return Result("man & woman", Strategy.WALKING, Strategy.LEFT_FOOT, {}, Vector(0, -980.665, 0), joints,
                  {joints[0]: JointResult(JointForce(*force), Vector(*moment))})


def test_result_is_a_mapping_of_the_joints_that_have_one(man, result):
    assert result.joints == tuple(man.joints)
    assert 0 < len(result) == len(list(result)) < len(result.joints)
    assert "right_ball" in result.joints and "right_ball" not in result
    assert result.get("right_ball") is None
    assert list(result) == [joint for joint in result.joints if joint in result]
    force, moment = result["right_wrist"]
    assert force is result["right_wrist"].force and moment is result["right_wrist"].moment


def test_joint_without_a_result_and_wrong_joint_are_told_apart(result):
    with pytest.raises(KeyError, match="joint right_ball has no result: two-feet does not reach it") as caught:
        result["right_ball"]
    assert not isinstance(caught.value, UnknownNameError)
    with pytest.raises(UnknownNameError, match='the result has no joint "waste". Did you mean waist'):
        result["waste"]


# (3, 0, 4) kgf are 5 kgf, 49.03325 N.
def test_force_reads_in_kgf_and_newtons():
    force = JointForce(3, 0, 4)
    assert (force.x, force.y, force.z, force.magnitude) == (3, 0, 4, 5)
    assert force.newtons == Vector(3 * NEWTON_PER_KGF, 0, 4 * NEWTON_PER_KGF)
    assert force.magnitude_newtons == 5 * NEWTON_PER_KGF
    assert Vector(2, 3, 6).magnitude == 7


def test_result_tells_what_it_is_of(man, result):
    assert (result.human, result.strategy, result.gravity) == ("man", Strategy.TWO_FEET, man.analysis.gravity)
    assert result.shares == {"right_foot": 50, "left_foot": 50}   # symmetric


# The balance point is at z = 5 as the soles are: on hands and knees the shares follow the distances across
# gravity alone. Each pair is symmetric.
def test_shares_are_told_where_the_strategy_has_such(man):
    for strategy, shares in ((Strategy.RIGHT_FOOT, {"right_foot": 100, "left_foot": 0}),
                             (Strategy.LEFT_FOOT, {"right_foot": 0, "left_foot": 100}),
                             (Strategy.WALKING, {"right_foot": 50, "left_foot": 50}),
                             (Strategy.SITTING, {}), (Strategy.SITTING_NO_FEET, {}),
                             (Strategy.HANDS_AND_KNEES, {"right_knee": 50, "left_knee": 50, "right_hand": 50,
                                                         "left_hand": 50})):
        man.analysis.strategy = strategy
        assert man.analysis.compute().shares == shares
        assert man.analysis.strategy is strategy


# A walking figure stands on the foot whose knee is bent less, on both when they differ by less than 0.1 rad.
def test_walking_comes_to_the_foot_of_the_straighter_knee(man):
    man.analysis.strategy = Strategy.WALKING
    for left, right, effective in ((0.5, 0, Strategy.RIGHT_FOOT), (0, 0.5, Strategy.LEFT_FOOT),
                                   (0.05, 0, Strategy.TWO_FEET)):
        man.joints["left_knee"].radians, man.joints["right_knee"].radians = left, right
        result = man.analysis.compute()
        assert (result.strategy, result.effective_strategy) == (Strategy.WALKING, effective)
        assert man.figure.get_property("SSTR_Strategy") == "Walking"


def test_result_cannot_be_changed(result):
    for change in (lambda: setattr(result, "human", "x"), lambda: setattr(result, "_human", "x"),
                   lambda: setattr(result, "new", 1), lambda: delattr(result, "_human"),
                   lambda: result.__setitem__("waist", 1), lambda: setattr(result["waist"], "force", 1)):
        with pytest.raises((AttributeError, TypeError)):
            change()
    result.shares["right_foot"] = 0
    assert result.shares["right_foot"] == 50


def test_result_stays_when_all_else_goes(man, result):
    before = repr(result)
    man.analysis.loads[PALM] = Weight(9999)
    other = man.analysis.compute()
    man.scene.close()
    assert repr(result) == before and result != other


def test_result_is_copied_compared_and_pickled(man, result):
    for again in (copy.copy(result), copy.deepcopy(result), pickle.loads(pickle.dumps(result)), man.analysis.compute()):
        assert again == result and hash(again) == hash(result) and again.shares == result.shares
    assert result != {} and result != made()


def test_result_as_numbers(result):
    numbers = result.as_dict()
    assert list(numbers) == list(result)
    assert list(numbers["right_wrist"]) == list(COLUMNS)
    assert numbers["right_wrist"]["force_z_kgf"] == result["right_wrist"].force.z
    assert numbers["right_wrist"]["force_n"] == result["right_wrist"].force.magnitude_newtons
    assert numbers["right_wrist"]["moment_nm"] == result["right_wrist"].moment.magnitude
    assert json.loads(json.dumps(numbers)) == numbers


def test_result_as_a_table_of_pandas(result):
    frame = result.as_dataframe()
    assert list(frame.columns) == list(COLUMNS) and list(frame.index) == list(result) and frame.index.name == "joint"
    assert frame.to_dict("index") == result.as_dict()


def test_table_of_pandas_without_pandas_says_what_is_missing(result, monkeypatch):
    monkeypatch.setitem(sys.modules, "pandas", None)
    with pytest.raises(ImportError, match=r"as_dataframe\(\) needs pandas, which is not installed .*as_dict\(\) gives"):
        result.as_dataframe()


def test_result_shows_as_a_table():
    assert repr(made()) == (
        "man & woman: walking, in effect left-foot; gravity (0.000, -980.665, 0.000) cm/s²\n"
        "joint  Fx kgf  Fy kgf  Fz kgf  |F| kgf  |F| N  Mx N·m  My N·m  Mz N·m  |M| N·m\n"
        "<b>     3.000   0.000   4.000    5.000   49.0   0.000   0.000   2.000    2.000\n"
        "none        -       -       -        -      -       -       -       -        -")


def test_result_shows_as_html_in_notebooks():
    html = made()._repr_html_()
    assert html.count("<tr>") == 3 and html.count("<td") == 18
    assert "<caption>man &amp; woman: walking" in html and "<th>&lt;b&gt;</th>" in html
    assert '<td style="text-align:right">5.000</td>' in html and '<td style="text-align:right">-</td>' in html


def test_number_that_is_not_finite_is_shown_as_such():
    result = made(force=(float("inf"), 0, 0), moment=(0, float("nan"), 0))
    assert not result["<b>"].is_finite
    assert repr(result).splitlines()[2].count("not finite") == 5   # x and both magnitudes; y and the magnitude
    assert "not finite" in result._repr_html_()
