"""Loads on sites, loads with offsets and torques: set, read, listed, removed, refused."""
import math
import random

import libqcc
import libqmSSTRc
import pytest
from conftest import OTHER_PALM, PALM
from small_figure import small_body
from staticstrength import Force, OffsetLoad, StaticStrengthWarning, UnknownNameError, Vector, Weight
from staticstrength.loads import is_found_again
from staticstrength.vectors import single

KGF_CM = 0.0980665   # N·m


@pytest.fixture
def loads(man):
    return man.analysis.loads


@pytest.fixture
def offset_loads(man):
    return man.analysis.offset_loads


@pytest.fixture
def torques(man):
    return man.analysis.torques


# ---- values ----

def test_force_is_given_in_kgf_or_newtons():
    assert Force(1, 2, 3) == Force(1.0, 2.0, 3.0, local=False)
    assert Force(3, 0, 4, local=True).magnitude == 5
    assert Force.newtons(9.80665, 0, -19.6133) == Force(1, 0, -2)
    assert Force(1, 2, 3).vector == Vector(1, 2, 3)


def test_values_that_are_no_loads_are_refused():
    for wrong in (("a", 0, 0), (math.nan, 0, 0), (1e39, 0, 0)):
        with pytest.raises((TypeError, ValueError), match="a force's x, kgf: "):
            Force(*wrong)
    with pytest.raises(ValueError, match="expected a weight of 0 g or more, found -1.0; what pulls upwards is a Force"):
        Weight(-1)
    with pytest.raises(TypeError, match="a weight, g: expected a number"):
        Weight("5 kg")


def test_values_cannot_be_changed():
    with pytest.raises(AttributeError):
        Weight(1).grams = 2
    with pytest.raises(AttributeError):
        Force(1, 2, 3).x = 2


# ---- loads on sites ----

def test_loads_are_a_mapping_of_sites_in_the_order_of_their_first_load(man, loads):
    loads[PALM] = Weight(5000)
    loads[man.sites["t8.distal"]] = Force(0, 0, -2, local=True)
    loads[OTHER_PALM] = 1, 2, 3
    loads[PALM] = Weight(2500)
    assert list(loads.items()) == [(PALM, Weight(2500)), ("t8.distal", Force(0, 0, -2, local=True)),
                                   (OTHER_PALM, Force(1, 2, 3))]
    assert len(loads) == 3 and PALM in loads and man.sites[PALM] in loads and "t8.proximal" not in loads
    assert loads[man.sites[PALM]] == loads.get(PALM) == Weight(2500)
    del loads["t8.distal"]
    assert list(loads) == [PALM, OTHER_PALM]
    assert loads.pop(PALM) == Weight(2500)
    loads.clear()
    assert dict(loads) == {} and repr(loads) == "{}"


def test_load_is_what_the_flat_modules_see(man, loads):
    loads[PALM] = Weight(1000)
    flat = libqcc.new_qVector(0, 0, 0)
    assert libqmSSTRc.qmStaticStrength_getSiteWeight(man.analysis.pointer, man.sites[PALM].pointer) == 1000
    assert libqmSSTRc.qmStaticStrength_getSiteLoad(man.analysis.pointer, man.sites[PALM].pointer, flat) == 1
    assert libqcc.qVector_get(flat) == (0, -1, 0)
    libqcc.delete_qVector(flat)


def test_site_without_a_load_is_a_key_error(loads):
    for use in (lambda: loads["t8.distal"], lambda: loads.__delitem__("t8.distal")):
        with pytest.raises(KeyError, match="there is no load at t8.distal") as caught:
            use()
        assert not isinstance(caught.value, UnknownNameError)


def test_wrong_site_is_answered_with_the_nearest(loads):
    for use in (lambda: loads["t8.distl"], lambda: loads.__setitem__("t8.distl", Weight(1)),
                lambda: loads.__delitem__("t8.distl")):
        with pytest.raises(UnknownNameError, match='no site "t8.distl".*Did you mean t8.distal'):
            use()
    assert "t8.distl" not in loads


def test_site_of_another_human_is_refused(scene, man, loads):
    other = scene.add_posed(small_body("other").document)
    with pytest.raises(ValueError, match=f"site other.{PALM} is not of figure man"):
        loads[other.sites[PALM]] = Weight(1)
    assert other.sites[PALM] not in loads


@pytest.mark.parametrize("wrong, kind, text", [
    (5000, TypeError, r"a weight is Weight\(5000\), in g"),
    ((1, 2), TypeError, "a load: a Force, a Weight, or three numbers in kgf: expected three numbers"),
    ("down", TypeError, "expected three numbers"),
    (None, TypeError, "expected three numbers"),
    ((0, 0, 0), ValueError, "less than 0.00001 kgf is not kept"),
    (Force(9e-6, 0, 0), ValueError, "not kept"),
    (Force(0, -1e-5, 0), ValueError, "not kept"),   # 9.9999997e-6 in single precision
    (Weight(0), ValueError, "not kept"),
])
def test_what_is_no_load_is_refused(loads, wrong, kind, text):
    loads[PALM] = Weight(1)
    with pytest.raises(kind, match=text):
        loads[PALM] = wrong
    assert loads[PALM] == Weight(1)


# 2 kgf backward at the palm, 8 cm below the wrist, beside the hand's own 0.5 kgf, which acts at the wrist:
#   (0, -8, 0) cm × (0, 0, -2) kgf = (16, 0, 0) kgf·cm
def test_load_reaches_the_joint_that_carries_it(man, loads):
    loads[PALM] = Force(0, 0, -2)
    result = man.analysis.compute()
    assert result["right_wrist"].force == pytest.approx((0, -0.5, -2), rel=1e-6)
    assert result["right_wrist"].moment == pytest.approx((16 * KGF_CM, 0, 0), rel=1e-6, abs=1e-6)
    assert result["left_wrist"].force == pytest.approx((0, -0.5, 0), rel=1e-6)


# A load that other tools stored and that nobody can read is listed by the host; it is none here.
def test_load_that_cannot_be_read_is_none(man, loads):
    vector = libqcc.new_qVector(1, 2, 3)
    libqmSSTRc.qmStaticStrength_setLoad(man.analysis.pointer, man.sites[PALM].pointer, vector, 5)
    libqcc.delete_qVector(vector)
    assert libqmSSTRc.qmStaticStrength_getNumLoads(man.analysis.pointer) == 1
    assert list(loads) == [] and PALM not in loads


def test_weight_follows_gravity_and_outlives_zero_gravity(man, loads):
    loads["t8.distal"] = Weight(1)
    loads[PALM] = Weight(1000)
    loads[OTHER_PALM] = Force(0, 0, 1)
    before = dict(loads)
    vector = libqcc.new_qVector(0, 0, 0)
    for gravity, pull in (((0, 0, 0), 0), ((0, -490.3325, 0), -0.5), ((0, 0, 0), 0), ((0, -980.665, 0), -1)):
        man.analysis.gravity = gravity
        libqmSSTRc.qmStaticStrength_getSiteLoad(man.analysis.pointer, man.sites[PALM].pointer, vector)
        assert libqcc.qVector_get(vector) == (0, pull, 0)
        assert list(loads.items()) == list(before.items())
    libqcc.delete_qVector(vector)
    man.analysis.gravity = 0, 0, 0
    loads["l5.distal"] = Weight(20)
    assert loads["l5.distal"] == Weight(20)


# Under 0.001 cm/s² 1000 g pull with 1.0e-6 kgf, which a change of gravity does not give back by itself.
def test_weight_outlives_gravity_too_small_for_it(man, loads):
    loads["t8.distal"] = Force(0, 0, 1)
    loads[PALM] = Weight(1000)
    loads[OTHER_PALM] = Weight(2000)
    before = list(loads.items())
    for each in (man.analysis, man.scene):
        for gravity in ((0, -0.001, 0), (0, -0.002, 0), (0, 0, 0), (0, -980.665, 0)):
            each.gravity = gravity
            assert list(loads.items()) == before


# Gravity is chosen so that the pull is 0.00001 kgf up to a few roundings, 6e-8 each: only the same bits decide alike.
def test_weight_is_judged_as_the_host_finds_it_again(man, loads):
    chance = random.Random(7)
    analysis, site = man.analysis.pointer, man.sites[PALM].pointer
    vector = libqcc.new_qVector(0, 0, 0)
    found = []
    for _ in range(500):
        grams = single(10 ** chance.uniform(-3, 4))
        x, y, z = (chance.uniform(-1, 1) for _ in range(3))
        size = 980.665 * 1e-5 / (grams * 0.001) * (1 + chance.uniform(-2e-7, 2e-7)) / Vector(x, y, z).magnitude
        libqcc.qVector_set(vector, x * size, y * size, z * size)
        libqmSSTRc.qmStaticStrength_clear(analysis)
        libqmSSTRc.qmStaticStrength_setGravity(analysis, vector)
        libqmSSTRc.qmStaticStrength_setWeightLoad(analysis, site, grams)
        libqmSSTRc.qmStaticStrength_reset(analysis)   # warns where it drops the weight
        found.append(bool(libqmSSTRc.qmStaticStrength_getNumLoads(analysis)))
        assert len(libqcc.qcMessages_take()) == (not found[-1])
        assert is_found_again(Weight(grams), man.analysis.gravity) == found[-1]
    assert set(found) == {False, True}
    libqcc.delete_qVector(vector)


# On the moon 0.03 g pull with less than 0.00001 kgf, on earth with more.
def test_weight_too_small_for_its_gravity_is_refused(man, loads):
    loads[PALM] = Weight(0.03)
    man.analysis.gravity = 0, -162, 0
    with pytest.raises(ValueError, match="not kept"):
        loads[OTHER_PALM] = Weight(0.03)


# ---- loads with offsets ----

def test_offset_loads_are_a_sequence_in_the_order_of_their_addition(man, offset_loads):
    first = offset_loads.append(PALM, (0, -10, 0), Weight(1000))
    second = offset_loads.append(man.sites["t8.distal"], (1, 2, 3), (0, 0, -2))
    third = offset_loads.append(OffsetLoad(PALM, (0, 0, 5), Force(1, 0, 0, local=True)))
    assert first == OffsetLoad(PALM, Vector(0, -10, 0), Weight(1000))
    assert list(offset_loads) == offset_loads[:] == [first, second, third]
    assert len(offset_loads) == 3 and offset_loads[0] == first and offset_loads[-1] == third
    assert offset_loads[1:] == [second, third]
    assert second in offset_loads and offset_loads.index(third) == 2
    assert second.load == Force(0, 0, -2) and third.load.local
    with pytest.raises(IndexError):
        offset_loads[3]


def test_offset_loads_are_removed_by_value_or_index(offset_loads):
    loads = [offset_loads.append(PALM, (0, i, 0), Weight(1000)) for i in range(6)]
    offset_loads.remove(loads[2])
    assert offset_loads.pop() == loads[5] and offset_loads.pop(0) == loads[0]
    del offset_loads[1]
    assert list(offset_loads) == [loads[1], loads[4]]
    with pytest.raises(ValueError, match="there is no such load"):
        offset_loads.remove(loads[2])
    offset_loads.clear()
    assert len(offset_loads) == 0
    with pytest.raises(IndexError, match="no load with an offset"):
        offset_loads.pop()


# 0.1 is kept in single precision; what was asked for and what is kept are both found.
def test_offset_load_is_found_by_the_value_that_was_given(offset_loads):
    given = OffsetLoad(PALM, (0.1, 0, 0), Force(0, 0.3, 0))
    kept = offset_loads.append(given)
    assert kept != given and kept.offset.x == pytest.approx(0.1, rel=2.0 ** -24)
    offset_loads.remove(given)
    offset_loads.remove(offset_loads.append(given))
    assert len(offset_loads) == 0


def test_what_is_no_offset_load_is_refused(offset_loads):
    for wrong, kind, text in ((((PALM,)), TypeError, "expected a site, an offset"),
                              ((PALM, (0, 1), Weight(1)), TypeError, "a load's offset, cm: expected three"),
                              ((PALM, (0, 1, 0), 5), TypeError, "a weight is Weight"),
                              ((OffsetLoad(PALM, (0, 0, 0), Weight(1)), (0, 0, 0)), TypeError, "tells its offset"),
                              (("palm", (0, 0, 0), Weight(1)), UnknownNameError, 'no site "palm"')):
        with pytest.raises(kind, match=text):
            offset_loads.append(*wrong)
    assert len(offset_loads) == 0


# The record of a load is freed and made anew by a change of gravity and by a reset; values stay good.
def test_values_outlive_the_records_they_were_read_from(man, offset_loads):
    held = offset_loads.append(PALM, (0, -10, 0), Weight(1000)), offset_loads.append(PALM, (1, 0, 0), Force(0, 0, 1))
    iterator = iter(offset_loads)
    man.analysis.gravity = (0, -100, 0)
    man.analysis.reset()
    assert list(iterator) == list(offset_loads) == list(held)
    man.analysis.clear()
    assert held[0].load == Weight(1000)
    with pytest.raises(ValueError):
        offset_loads.remove(held[0])


# 1 kgf down at a point 10 cm to the right of the palm, the palm itself carrying next to nothing beside it:
#   (-10, -8, 0) cm × (0, -1, 0) kgf = (0, 0, 10) kgf·cm
def test_offset_load_reaches_the_joint_that_carries_it(man, offset_loads):
    man.analysis.loads[PALM] = Weight(0.011)
    offset_loads.append(PALM, (-10, 0, 0), Weight(1000))
    moment = man.analysis.compute()["right_wrist"].moment
    assert moment == pytest.approx((0, 0, 10 * KGF_CM), rel=1e-6, abs=1e-6)


def test_offset_load_at_a_palm_that_does_not_count_is_warned_of(man, offset_loads):
    offset_loads.append(PALM, (-10, 0, 0), Weight(1000))
    with pytest.warns(StaticStrengthWarning, match=f"the loads with offsets at {PALM} do not count") as caught:
        result = man.analysis.compute()
    assert caught[0].filename == __file__   # the line that computed
    assert result["right_wrist"].force.y == pytest.approx(-0.5)


# ---- torques ----

def test_torques_are_a_mapping_of_joints_in_the_order_of_their_first_torque(man, torques):
    torques["waist"] = 1, 2, 3
    torques[man.joints["left_knee"]] = Vector(4, 5, 6)
    torques["waist"] = 7, 8, 9
    assert list(torques.items()) == [("waist", Vector(7, 8, 9)), ("left_knee", Vector(4, 5, 6))]
    assert len(torques) == 2 and "waist" in torques and man.joints["left_knee"] in torques
    assert "right_knee" not in torques and "nothing" not in torques
    del torques["waist"]
    assert torques.pop("left_knee") == Vector(4, 5, 6) and repr(torques) == "{}"


def test_joint_without_a_torque_and_wrong_joint_are_told_apart(scene, man, torques):
    for use in (lambda: torques["waist"], lambda: torques.__delitem__("waist")):
        with pytest.raises(KeyError, match="there is no torque at waist") as caught:
            use()
        assert not isinstance(caught.value, UnknownNameError)
    with pytest.raises(UnknownNameError, match="Did you mean waist"):
        torques["waste"] = 1, 2, 3
    with pytest.raises(TypeError, match="the torque at waist, N·m: expected three numbers"):
        torques["waist"] = 5
    other = scene.add_posed(small_body("other").document)
    with pytest.raises(ValueError, match="joint other.waist is not of figure man"):
        torques[other.joints["waist"]] = 1, 2, 3
    assert len(torques) == 0


# The torque itself is the moment where nothing else turns the joint.
def test_torque_is_part_of_the_joint_s_moment(man, torques):
    torques["right_wrist"] = 1, 2, 3
    assert man.analysis.compute()["right_wrist"].moment == pytest.approx((1, 2, 3))


def test_offset_load_is_removed_by_value_and_not_replaced(man):
    loads = man.analysis.offset_loads
    kept = loads.append(PALM, (0, 1, 0), Weight(1))
    with pytest.raises(TypeError, match="expected an OffsetLoad, found 5; by its place one is removed with del or"):
        loads.remove(5)
    with pytest.raises(TypeError, match="cannot be replaced; remove it and append another one"):
        loads[0] = kept
    assert list(loads) == [kept]
