"""Humans and figures: parts by name, angles, places, masses, measures, roles, properties."""
import math

import libqcc
import numpy
import pytest
from conftest import OTHER_PALM, PALM
from small_figure import small_body
from staticstrength import NamedMapping, Root, StaticStrengthError, UnknownNameError, Vector


def test_parts_are_mappings_by_name_in_the_figure_s_order(man):
    document = small_body("man").document
    assert list(man.segments) == [each["name"] for each in document["segments"]]
    assert list(man.sites) == [each["key"] for each in document["sites"]]
    assert list(man.joints) == [each["name"] for each in document["joints"]]
    assert isinstance(man.joints, NamedMapping) and len(man.joints) == len(document["joints"])
    assert "waist" in man.joints and "tail" not in man.joints
    assert man.joints is man.figure.joints and man.joints["waist"] is man.figure.joints["waist"]


@pytest.mark.parametrize("wrong, text", [
    ("left_shoulde", 'figure worker has no joint "left_shoulde". Did you mean left_shoulder?'),
    ("WAIST", 'figure worker has no joint "WAIST". Did you mean waist?'),
    ("knee", 'figure worker has no joint "knee". Did you mean left_knee or right_knee?'),
    ("plexus", 'figure worker has no joint "plexus". Did you mean solar_plexus?'),
    ("zzz", 'figure worker has no joint "zzz".'),
    ("", 'figure worker has no joint "".'),
    ("left_knee" * 100, f'figure worker has no joint "{"left_knee" * 100}".'),
])
def test_wrong_name_of_a_joint_is_answered_with_the_nearest(worker, wrong, text):
    with pytest.raises(UnknownNameError) as caught:
        worker.joints[wrong]
    assert str(caught.value) == text


def test_wrong_key_of_a_site_is_answered_with_what_is_expected_and_the_nearest(worker):
    with pytest.raises(UnknownNameError) as caught:
        worker.sites["right_palmcenter"]
    assert str(caught.value).startswith('figure worker has no site "right_palmcenter"; expected "segment.site". '
                                        f"Did you mean {PALM}")
    with pytest.raises(UnknownNameError, match='no segment "l55".*l5'):
        worker.segments["l55"]


def test_joint_of_a_name_taken_before_is_found_by_its_full_name(scene):
    body = small_body("man")
    for joint in body.document["joints"]:
        if joint["name"] == "t8_l5":
            joint["name"], joint["full_name"] = "waist", "man.upper.waist"
    for site in body.document["sites"]:
        site["joints"] = ["man.upper.waist" if each == "t8_l5" else "man.waist" if each == "waist" else each
                          for each in site["joints"]]
    body.document["waist"] = "man.waist"
    joints = scene.add_posed(body.document).joints
    assert list(joints)[:2] == ["waist", "man.upper.waist"]
    assert joints["man.upper.waist"].name == "waist"
    assert joints["man.upper.waist"].position == Vector(0, 110, 0)


def test_segment_tells_its_mass_place_and_sites(man):
    segment = man.segments["t8"]
    assert (segment.name, segment.full_name, segment.mass) == ("t8", "man.t8", 10000)
    assert segment.center_of_mass == Vector(0, 10, 0)
    assert segment.position == Vector(0, 110, 0)
    assert segment.transform == ((1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (0, 110, 0, 1))
    assert [site.key for site in segment.sites] == ["t8.proximal", "t8.distal"]
    assert segment.attachment_site is man.sites["t8.proximal"]
    assert segment.figure is man.figure and segment.scene is man.scene
    assert repr(segment) == "<Segment man.t8>"


def test_segment_s_mass_is_set_in_single_precision(man):
    segment = man.segments["t8"]
    segment.mass = 1234.5
    assert segment.mass == 1234.5
    for wrong, kind in (("heavy", TypeError), (math.inf, ValueError), (1e39, ValueError), (True, TypeError)):
        with pytest.raises(kind, match="the mass of man.t8, g: "):
            segment.mass = wrong
    assert segment.mass == 1234.5


def test_root_segment_has_no_attachment(worker):
    assert worker.segments["lower_torso"].attachment_site is None


def test_site_tells_its_names_place_and_joints(man):
    site = man.sites["t8.distal"]
    assert (site.key, site.name, site.full_name) == ("t8.distal", "distal", "man.t8.distal")
    assert site.segment is man.segments["t8"]
    assert site.joints == [man.joints["solar_plexus"]]
    assert site.position == Vector(0, 130, 0)
    assert site.second_transform == site.transform
    assert man.sites[PALM].position == Vector(-20, 72, 0)


def test_joint_tells_its_names_sites_and_place(man):
    joint = man.joints["waist"]
    assert (joint.key, joint.name, joint.full_name) == ("waist", "waist", "man.waist")
    assert joint.sites == (man.sites["lower_torso.distal"], man.sites["l5.proximal"])
    assert joint.inboard_site is man.sites["lower_torso.distal"]
    assert joint.position == Vector(0, 100, 0)
    assert joint.angle_names == ("", "") and joint.limits == (None, None)


def test_angles_are_read_and_set_in_degrees_and_radians(worker):
    joint = worker.joints["right_shoulder"]
    joint.degrees = 45, 20, -10
    assert joint.degrees == (45, 20, -10)
    assert joint.radians == tuple(math.radians(angle) for angle in (45, 20, -10))   # the same one rounding
    joint.radians = [0.25, 0.125]
    assert joint.radians == (0.25, 0.125, math.radians(-10))
    joint.degrees = 30
    assert joint.radians == (math.radians(30), 0.125, math.radians(-10))


# The knee of the default human bends by 0 to 135 degrees; the file has eight decimals of radians.
def test_joint_tells_the_names_and_limits_of_its_angles(worker):
    joint = worker.joints["left_knee"]
    assert joint.limits == (pytest.approx((0, 135), abs=1e-6),)
    assert worker.joints["right_elbow"].angle_names == ("flexion", "pronation")


def test_angle_out_of_its_limits_raises_and_none_is_changed(worker):
    joint = worker.joints["right_shoulder"]
    joint.degrees = 45, 20, -10
    before = joint.radians
    with pytest.raises(StaticStrengthError, match="^joint worker.right_shoulder: .*outside its limits"):
        joint.degrees = 30, 2000
    assert joint.radians == before


def test_angles_that_are_no_numbers_or_too_many_are_refused(worker):
    joint = worker.joints["left_knee"]
    for wrong, kind in (((1, 2), ValueError), ("ten", TypeError), (None, TypeError), (math.nan, ValueError),
                        ([[1]], TypeError), ("9", TypeError)):
        with pytest.raises(kind, match="joint left_knee, angles in degrees: "):
            joint.degrees = wrong
    assert joint.degrees == (0,)


# The lower leg hangs from the knee; bent by a quarter turn it points backward.
def test_angles_move_the_figure(worker):
    before = worker.sites["left_foot.proximal"].position
    worker.joints["left_knee"].degrees = 90
    after = worker.sites["left_foot.proximal"].position
    assert after.y > before.y + 20 and after.z < before.z - 20


def test_posture_is_read_and_set_as_a_whole_or_not_at_all(worker):
    worker.posture = {"left_knee": 40, worker.joints["right_elbow"]: (0, 80)}
    assert worker.posture["left_knee"] == (40,) and list(worker.posture) == list(worker.joints)
    before = worker.posture
    with pytest.raises(StaticStrengthError, match="outside its limits"):
        worker.posture = {"left_knee": 10, "right_knee": 1000}
    with pytest.raises(UnknownNameError, match="right_knee"):
        worker.posture = {"left_knee": 10, "right_nee": 10}
    assert worker.posture == before
    worker.figure.posture = before
    assert worker.posture == before


def test_joint_of_another_figure_is_refused(worker, man):
    with pytest.raises(ValueError, match="joint man.waist is not of figure worker"):
        worker.posture = {man.joints["waist"]: 1}


def test_all_angles_are_listed_in_the_figure_s_order(man):
    assert man.figure.angles == [("waist", 1), ("waist", 2), ("right_knee", 1), ("left_knee", 1)]


def test_root_is_read_and_set(worker):
    worker.figure.root = (1, 2.5, -3), (10, 20, -30)
    assert worker.figure.root == Root(Vector(1, 2.5, -3), Vector(10, 20, -30))
    assert worker.segments["lower_torso"].position == Vector(1, 2.5, -3)
    worker.figure.stand_on_floor()
    assert worker.figure.is_on_floor
    worker.figure.root = worker.figure.root
    assert not worker.figure.is_on_floor
    with pytest.raises(StaticStrengthError, match="expected a root position within"):
        worker.figure.root = (1e9, 0, 0), (0, 0, 0)
    for wrong in (1, (1, 2, 3), ((1, 2), (3, 4, 5)), ((1, 2, 3), "abc")):
        with pytest.raises(TypeError, match="^the root"):
            worker.figure.root = wrong


def test_posed_figure_cannot_be_moved(man):
    assert man.figure.is_posed
    with pytest.raises(StaticStrengthError, match="figure man is a posed one; it cannot be moved"):
        man.figure.root = (0, 0, 0), (0, 0, 0)
    with pytest.raises(StaticStrengthError, match="cannot be moved"):
        man.figure.stand_on_floor()


# See Place.test_body_tells_its_mass_and_centre in qcc_body_test.py for the sums.
def test_body_tells_its_mass_and_centre(man):
    assert man.mass == man.figure.mass == 65000
    assert man.figure.center_of_mass == pytest.approx((0, 6496800 / 65000, 6000 / 65000), rel=1e-6)


def test_body_s_measures_are_set(worker):
    assert (worker.sex, worker.stature, worker.mass) == ("male", 175, pytest.approx(75000, rel=2.0 ** -23))
    worker.sex, worker.stature, worker.mass = "female", 160, 60000
    assert (worker.sex, worker.stature) == ("female", 160)
    assert worker.mass == pytest.approx(60000, rel=2.0 ** -23)   # 41 masses in single precision
    for name, wrong in (("sex", "other"), ("stature", 10), ("mass", -1)):
        with pytest.raises(StaticStrengthError):
            setattr(worker, name, wrong)
    with pytest.raises(TypeError, match="the stature, cm: expected a number"):
        worker.stature = "tall"
    assert (worker.sex, worker.stature) == ("female", 160)


def test_measure_that_nothing_tells_is_none(man):
    assert (man.sex, man.stature) == (None, None)


def test_roles_are_parts_of_the_figure(man):
    assert man.hand("left") is man.sites[OTHER_PALM] and man.hand("right") is man.sites[PALM]
    assert man.foot("right") is man.sites["right_foot.sole"]
    assert man.knee("left") is man.joints["left_knee"] and man.ankle("right") is man.joints["right_ankle"]
    assert man.hip("left") is man.joints["left_hip"] and man.waist is man.joints["waist"]
    assert man.pelvis is man.sites["lower_torso.proximal"]
    assert man.figure.reference_site is man.sites["lower_torso.balance_point"]
    with pytest.raises(ValueError, match="""expected the side "right" or "left", found 'both'"""):
        man.knee("both")


def test_role_that_no_part_plays_is_none(scene):
    body = small_body("man")
    body.document["right"]["knee"] = None
    body.document["waist"] = body.document["pelvis_site"] = body.document["reference_site"] = None
    man = scene.add_posed(body.document)
    assert man.knee("right") is None and man.knee("left") is not None
    assert (man.waist, man.pelvis, man.figure.reference_site) == (None, None, None)


def test_properties_are_kept_on_any_object_of_the_scene(man):
    for each in (man, man.figure, man.segments["l5"], man.sites[PALM], man.joints["waist"]):
        assert each.get_property("Note") is None
        each.set_property("Note", ["a", 0.5, (1, 2, 3), [], ()])
        assert each.get_property("Note") == ["a", 0.5, (1, 2, 3), [], ()]
        assert each.remove_property("Note") and not each.remove_property("Note")
    with pytest.raises(TypeError):
        man.set_property("Note", {})


def test_posed_content_makes_the_same_figure_again(lift, scene):
    result = lift.analysis.compute()
    again = scene.add_posed(lift.figure.posed())
    assert again.analysis.loads == lift.analysis.loads
    assert again.analysis.compute() == result
    assert again.figure.posed()["joints"] == lift.figure.posed()["joints"]


def test_figure_that_cannot_be_written_raises(man):
    libqcc.qcSegment_setMass(man.segments["l5"].pointer, math.nan)   # which JSON cannot hold
    with pytest.raises(StaticStrengthError, match="^figure man cannot be written: "):
        man.figure.posed()


# An angle that came from elsewhere in radians reads as exactly as degrees can tell it.
def test_degrees_read_back_to_the_same_radians(worker):
    joint = worker.joints["right_shoulder"]
    joint.radians = 0.1, 0.2, 0.3
    joint.degrees = joint.degrees
    assert joint.radians == pytest.approx((0.1, 0.2, 0.3), rel=2.0 ** -52)   # one rounding on the way back
    for tenths in range(-300, 300):
        joint.degrees = tenths / 10
        assert joint.degrees[0] == tenths / 10


@pytest.mark.parametrize("wrong", [5, [1, 2], "left_knee", None])
def test_what_is_no_posture_is_refused(man, wrong):
    with pytest.raises(TypeError, match="a posture: expected angles in degrees by joint, .*, found "):
        man.posture = wrong


@pytest.mark.parametrize("wrong", [{1: 2}, {1, 2}, "1", 1j, numpy.complex128(1), [1j], None])
def test_what_are_no_angles_is_refused(man, wrong):
    knee = man.joints["left_knee"]
    before = knee.radians
    with pytest.raises(TypeError, match="joint left_knee, angles in degrees: expected a number"):
        knee.degrees = wrong
    assert knee.radians == before


def test_array_of_no_dimension_is_a_number(man):
    man.joints["left_knee"].degrees = numpy.array(30.0)
    assert man.joints["left_knee"].degrees == (30,)
    man.segments["l5"].mass = numpy.array(1500)
    assert man.segments["l5"].mass == 1500


# A class of the user's has code of its own, here for a float; what it is built on counts.
def test_property_that_is_a_number_of_one_s_own_runs_no_code(man):
    class Closing(int):
        def __float__(self):
            man.scene.close()
            return 2.0

    man.set_property("Note", [Closing(5), (Closing(1), 2, 3)])
    assert man.get_property("Note") == [5.0, (1.0, 2.0, 3.0)]
