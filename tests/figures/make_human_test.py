#!/usr/bin/env python3
"""The default human: its files are what the generator writes, and its body is the tabled one.

The reader of URDF in this file is a naive one, written for these tests alone.

Unless a name says otherwise: file axes (x forward, y to the figure's left, z up), metres,
kilograms. Numbers of the files are read as decimals, so that sums are exact.
"""
import csv
import json
import math
import os
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree
from decimal import Decimal

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
FIGURES = os.path.join(ROOT, "figures")

ROUNDING = Decimal("0.005")  # cm; half of the tables' last digit

# The documented tree: parent and joint by segment; an arm and a leg stand for both sides.
SPINE = "lower_torso l5 l4 l3 l2 l1 t12 t11 t10 t9 t8 t7 t6 t5 t4 t3 t2 t1".split()
TREE = {"lower_torso": (None, None), "l5": ("lower_torso", "waist"),
        "upper_torso": ("t1", "solar_plexus"), "neck": ("t1", "base_of_neck"),
        "head": ("neck", "atlanto_occipital")}
for lower, upper in zip(SPINE[1:], SPINE[2:]):
    TREE[upper] = (lower, "%s_%s" % (upper, lower))
for side in ("right", "left"):
    for child, parent, joint in (
            ("S_clavicle", "upper_torso", "S_clavicle_joint"), ("S_upper_arm", "S_clavicle", "S_shoulder"),
            ("S_lower_arm", "S_upper_arm", "S_elbow"), ("S_hand", "S_lower_arm", "S_wrist"),
            ("S_fingers", "S_hand", "S_knuckles"), ("S_thumb", "S_hand", "S_thumb_joint"),
            ("S_upper_leg", "lower_torso", "S_hip"), ("S_lower_leg", "S_upper_leg", "S_knee"),
            ("S_foot", "S_lower_leg", "S_ankle"), ("S_toes", "S_foot", "S_ball")):
        child, parent, joint = (name.replace("S", side, 1) if name[0] == "S" else name
                                for name in (child, parent, joint))
        TREE[child] = (parent, joint)


def read_file(*path):
    with open(os.path.join(*path), "rb") as file:
        return file.read()


def table(name, sex=None):
    with open(os.path.join(FIGURES, name), newline="", encoding="utf-8") as file:
        return [row for row in csv.DictReader(file) if sex is None or row["sex"] == sex]


def triple(text):
    return tuple(Decimal(word) for word in text.split())


def add(a, b):
    return tuple(p + q for p, q in zip(a, b))


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def table_cm(point):
    """A point of the file, m, in the tables' axes (x left, y up, z forward), cm."""
    forward, left, up = point
    return (left * 100, up * 100, forward * 100)


def table_point(row, prefix):
    return tuple(Decimal(row[prefix + axis]) for axis in "xyz")


def mirrored_name(name):
    return re.sub("right|left", lambda side: {"right": "left", "left": "right"}[side.group()], name)


def mirrored_vector(v):
    """A place or a direction in the mirror: to the left becomes to the right."""
    return (v[0], -v[1], v[2])


def mirrored_rotation(axis):
    """A rotation's axis in the mirror: the turn about the left-right axis stays, others reverse."""
    return (-axis[0], axis[1], -axis[2])


class Angle:
    """A revolute joint of the file."""

    def __init__(self, element):
        self.name = element.get("name")
        self.parent = element.find("parent").get("link")
        self.child = element.find("child").get("link")
        self.origin = triple(element.find("origin").get("xyz"))
        self.axis = triple(element.find("axis").get("xyz"))
        limit = element.find("limit")
        self.range = (Decimal(limit.get("lower")), Decimal(limit.get("upper")))


class Joint:
    """The revolute joints between two segments, from the parent outwards."""

    def __init__(self, angles, parent, point):
        self.angles, self.parent, self.point = angles, parent, point  # point in the parent's frame

    def angle(self, name):
        return next(angle for angle in self.angles if angle.name == name)


class Human:
    """human.urdf, read by names and connections; of its order only that of the sites is kept."""

    def __init__(self):
        root = xml.etree.ElementTree.parse(os.path.join(FIGURES, "human.urdf")).getroot()
        self.links = {link.get("name"): link for link in root.findall("link")}
        self.elements = root.findall("joint")
        self.mass, self.center, self.inertia = {}, {}, {}
        for name, link in self.links.items():
            if link.find("inertial") is not None:
                self.mass[name] = Decimal(link.find("inertial/mass").get("value"))
                self.center[name] = triple(link.find("inertial/origin").get("xyz"))
                self.inertia[name] = link.find("inertial/inertia").attrib

        self.sites = {}  # by name: (segment, point in its frame)
        into = {}        # by link: the revolute joint whose child it is
        for element in self.elements:
            if element.get("type") == "fixed":
                self.sites[element.find("child").get("link")] = (
                    element.find("parent").get("link"), triple(element.find("origin").get("xyz")))
            else:
                into[element.find("child").get("link")] = Angle(element)

        self.joints = {}  # by the segment beyond
        for segment in self.mass:
            angles, link = [], segment
            while link in into and (link == segment or link not in self.mass):
                angles.insert(0, into[link])
                link = into[link].parent
            if angles:
                parent, point = self.sites.get(link, (link, (Decimal(0),) * 3))
                for angle in angles:
                    point = add(point, angle.origin)
                self.joints[segment] = Joint(angles, parent, point)

    def joint_name(self, segment):
        """The name of a joint's only angle, or what its angles' names have before the dot."""
        names = [angle.name for angle in self.joints[segment].angles]
        bare = {name.split(".")[0] for name in names}
        assert len(bare) == 1 and (len(names) == 1) == ("." not in names[0]), names
        return bare.pop()

    def joint_names(self):
        return {self.joint_name(segment) for segment in self.joints}

    def standing(self, segment):
        """A segment's origin from the root's with all angles zero: the sum of the offsets."""
        point = (Decimal(0),) * 3
        while segment in self.joints:
            point = add(point, self.joints[segment].point)
            segment = self.joints[segment].parent
        return point

    def site(self, name):
        segment, point = self.sites[name]
        return add(self.standing(segment), point)

    def floor(self):
        """Height of the floor from the root's origin: that of the soles."""
        return self.site("left_foot.sole")[2]

    def center_of_body(self):
        total = (Decimal(0),) * 3
        for segment, mass in self.mass.items():
            total = add(total, tuple(mass * c for c in add(self.standing(segment), self.center[segment])))
        return tuple(c / sum(self.mass.values()) for c in total)


class GeneratedFilesTest(unittest.TestCase):

    def test_running_the_generator_again_gives_the_committed_bytes(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([sys.executable, os.path.join(FIGURES, "make_human.py"), "--output", folder],
                           check=True)
            for name in ("human.urdf", "human.roles.json"):
                self.assertEqual(read_file(folder, name), read_file(FIGURES, name), name)

    def test_numbers_have_at_most_9_decimals_and_no_negative_zero(self):
        text = read_file(FIGURES, "human.urdf").decode("ascii")
        robot = text[text.index("<robot"):]  # after the line that has XML's own version
        numbers = re.findall(r'="(-?[0-9.]+(?: -?[0-9.]+)*)"', robot)
        words = [word for group in numbers for word in group.split()]
        self.assertGreater(len(words), 1000)
        for word in words:
            self.assertRegex(word, r"^(0|-?[1-9]\d*|-?(0|[1-9]\d*)\.\d{0,8}[1-9])$")

    def test_no_frame_is_turned(self):
        self.assertNotIn(b"rpy", read_file(FIGURES, "human.urdf"))


class HumanTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.human = Human()
        cls.male = {row["segment"]: row for row in table("anthropometry.csv", "male")}
        cls.female = {row["segment"]: row for row in table("anthropometry.csv", "female")}
        cls.roles = json.loads(read_file(FIGURES, "human.roles.json").decode("ascii"))


class TreeTest(HumanTest):

    def test_the_tree_is_the_documented_one(self):
        self.assertEqual(len(TREE), 41)
        self.assertEqual(set(self.human.mass), set(TREE))
        for segment, (parent, joint) in TREE.items():
            if parent is None:
                self.assertNotIn(segment, self.human.joints)
            else:
                self.assertEqual(self.human.joints[segment].parent, parent, segment)
                self.assertEqual(self.human.joint_name(segment), joint)

    def test_every_link_is_a_segment_a_site_or_inside_a_joint(self):
        inside = {angle.child for joint in self.human.joints.values() for angle in joint.angles[:-1]}
        self.assertEqual(set(self.human.links), set(self.human.mass) | set(self.human.sites) | inside)
        self.assertFalse(inside & set(self.human.sites))
        for name, link in self.human.links.items():
            self.assertEqual(len(link), 1 if name in self.human.mass else 0, name)
        for joint in self.human.joints.values():
            name = joint.angles[0].name.split(".")[0]
            self.assertEqual([angle.child for angle in joint.angles[:-1]],
                             ["%s.link%d" % (name, i) for i in range(1, len(joint.angles))])

    def test_names_are_unique_and_a_site_names_its_segment(self):
        root = xml.etree.ElementTree.parse(os.path.join(FIGURES, "human.urdf")).getroot()
        for kind in ("link", "joint"):
            names = [element.get("name") for element in root.findall(kind)]
            self.assertEqual(len(names), len(set(names)), kind)
        for site, (segment, _) in self.human.sites.items():
            self.assertTrue(site.startswith(segment + "."), site)
        fixed = {element.get("name") for element in self.human.elements if element.get("type") == "fixed"}
        self.assertEqual(fixed, {site + ".mount" for site in self.human.sites})

    def test_a_joint_at_the_far_end_hangs_from_that_site_and_others_from_the_segment(self):
        for segment, joint in self.human.joints.items():
            far = joint.parent + ".distal"
            at_far_end = joint.point == self.human.sites[far][1]
            self.assertEqual(joint.angles[0].parent, far if at_far_end else joint.parent, segment)
            for angle in joint.angles[1:]:
                self.assertEqual(angle.origin, (0, 0, 0))
        elsewhere = {self.human.joint_name(segment) for segment, joint in self.human.joints.items()
                     if joint.angles[0].parent == joint.parent}
        self.assertEqual(elsewhere, {"solar_plexus", "right_hip", "left_hip", "right_clavicle_joint",
                                     "left_clavicle_joint", "right_thumb_joint", "left_thumb_joint"})

    def test_only_the_intended_joints_and_sites_have_the_names_that_are_searched_for(self):
        names = self.human.joint_names()
        self.assertEqual({n for n in names if n.endswith("_hip")}, {"right_hip", "left_hip"})
        self.assertEqual({n for n in names if n.endswith("_clavicle_joint")},
                         {"right_clavicle_joint", "left_clavicle_joint"})
        self.assertEqual({n for n in names if n.startswith("r")},
                         {joint for _, joint in TREE.values() if joint and joint.startswith("right_")})
        self.assertEqual({s for s in self.human.sites if "palmcenter" in s},
                         {"right_hand.right_palmcenter", "left_hand.left_palmcenter"})

    def test_every_name_that_the_analysis_uses_exists(self):
        for segment in ("lower_torso", "upper_torso", "l5", "t8", "right_upper_leg", "right_lower_leg",
                        "left_upper_leg", "left_lower_leg", "right_foot", "left_foot", "right_toes"):
            self.assertIn(segment, self.human.mass)
        for joint in ("waist", "solar_plexus", "right_hip", "left_hip", "right_clavicle_joint",
                      "left_clavicle_joint"):
            self.assertIn(joint, self.human.joint_names())
        for site in ["lower_torso." + name for name in
                     ("proximal", "distal", "h_point", "center_of_mass", "balance_point")] + [
                         segment + ".distal" for segment in TREE]:
            self.assertIn(site, self.human.sites)

    def test_proximal_of_the_root_is_the_first_site_and_no_other_segment_lists_its_own(self):
        self.assertEqual(next(iter(self.human.sites)), "lower_torso.proximal")
        self.assertEqual([s for s in self.human.sites if s.endswith(".proximal")], ["lower_torso.proximal"])


class MassTest(HumanTest):

    def test_masses_are_the_tables_and_add_to_75_kg(self):
        for segment, mass in self.human.mass.items():
            self.assertEqual(mass * 1000, Decimal(self.male[segment]["mass_g"]), segment)
        self.assertEqual(sum(self.human.mass.values()), 75)

    # 0.001 % of 75 kg is 0.75 g, and of 62 kg 0.62 g: nothing is rounded away at 0.01 g.
    def test_grams_are_the_percentages(self):
        for row in self.male.values():
            self.assertEqual(Decimal(row["mass_g"]), Decimal(row["mass_pct"]) * 750)
        for row in self.female.values():
            self.assertEqual(Decimal(row["mass_g"]), Decimal(row["mass_pct"]) * 620)

    # Without inertia about its longest axis a body would be a line, and no body is harder to turn
    # about one axis than about both others together.
    def test_inertias_are_those_of_solid_bodies(self):
        for segment, inertia in self.human.inertia.items():
            a, b, c = sorted(Decimal(inertia[key]) for key in ("ixx", "iyy", "izz"))
            self.assertGreater(a, 0, segment)
            self.assertGreater(a + b, c, segment)
            self.assertEqual([inertia[key] for key in ("ixy", "ixz", "iyz")], ["0"] * 3)

    # l5: m = 1.638 kg, plate with half axes 0.10 m forward, 0.15 m to the left, h = 0.0374 m:
    #   I_forward = 1.638 (0.0225 / 4 + 0.00139876 / 12) = 1.638 · 0.005741563 = 0.009404681
    #   I_left    = 1.638 (0.0100 / 4 + 0.00139876 / 12) = 1.638 · 0.002616563 = 0.004285931
    #   I_up      = 1.638 (0.0225 + 0.0100) / 4          = 1.638 · 0.008125    = 0.01330875
    # left_hand: m = 0.32925 kg, L = 0.0866 m: m L² = 0.00246923; the palm's normal points to the
    # left, so the largest radius, 0.628, is about that axis: 0.628² m L² = 0.000973825
    # head: m = 4.21575 kg, half axes 0.10, 0.077, 0.115 m:
    #   I_up = 4.21575 (0.01 + 0.005929) / 5 = 0.013430536
    def test_inertias_computed_by_hand(self):
        for segment, key, expected in (("l5", "ixx", 0.009404681), ("l5", "iyy", 0.004285931),
                                       ("l5", "izz", 0.01330875), ("left_hand", "iyy", 0.000973825),
                                       ("head", "izz", 0.013430536)):
            # two roundings to 9 decimals: the file's and this one's
            self.assertAlmostEqual(float(self.human.inertia[segment][key]), expected, delta=1.01e-9)


class PlaceTest(HumanTest):

    # Both the offsets and the places are tabled to 0.01 cm, and the places are the offsets' sums:
    # nothing is left over.
    def test_joints_stand_where_the_table_says(self):
        start = table_point(self.male["lower_torso"], "world_")
        for segment in TREE:
            self.assertEqual(add(start, table_cm(self.human.standing(segment))),
                             table_point(self.male[segment], "world_"), segment)

    def test_far_ends_and_centres_of_mass_are_the_tables(self):
        for segment, row in self.male.items():
            self.assertEqual(table_cm(self.human.center[segment]), table_point(row, "com_"), segment)
            self.assertEqual(table_cm(self.human.sites[segment + ".distal"][1]),
                             table_point(row, "distal_"), segment)

    def test_stature_is_175_cm(self):
        self.assertEqual((self.human.site("head.distal")[2] - self.human.floor()) * 100, Decimal("175.00"))
        height = sum(-self.human.joints["left_" + name].point[2] for name in ("foot", "lower_leg"))
        self.assertEqual(height * 100, Decimal("85.92"))  # ankle to knee 43.04, knee to hip 42.88

    # Documented: 98.07 cm high, 5.46 cm ahead of the ankles, from places before rounding. Ours adds
    # up rounded ones: each segment's place and its centre of mass are at most 0.005 cm off each, so
    # the mean is at most 0.01 cm off; the documented number is rounded too: 0.015 cm.
    def test_centre_of_mass_of_the_body_is_the_documented_one(self):
        body = self.human.center_of_body()
        ankle = self.human.standing("left_foot")
        self.assertLessEqual(abs((body[2] - self.human.floor()) * 100 - Decimal("98.07")), 3 * ROUNDING)
        self.assertLessEqual(abs((body[0] - ankle[0]) * 100 - Decimal("5.46")), 3 * ROUNDING)
        self.assertEqual(body[1], 0)

    # As above, with one rounding more: the root's own place, from which balance_point counts.
    def test_balance_point_is_the_centre_of_mass_of_the_body(self):
        point, body = self.human.site("lower_torso.balance_point"), self.human.center_of_body()
        for axis in range(3):
            self.assertLessEqual(abs(point[axis] - body[axis]) * 100, 4 * ROUNDING)

    def test_center_of_mass_site_is_the_segments(self):
        self.assertEqual(self.human.sites["lower_torso.center_of_mass"],
                         ("lower_torso", self.human.center["lower_torso"]))

    def test_feet_stand_on_one_floor(self):
        for side in ("right", "left"):
            heel, sole, ball = (self.human.site("%s_foot.%s" % (side, name))
                                for name in ("heel", "sole", "ball"))
            self.assertEqual({heel[2], sole[2], ball[2]}, {self.human.floor()})
            self.assertTrue(heel[0] < sole[0] < ball[0])
            self.assertEqual(ball[0], self.human.standing(side + "_toes")[0])

    # The table's world has its origin on the floor below the ankles.
    def test_floor_is_the_tables(self):
        self.assertEqual(self.human.floor() * 100 + Decimal(self.male["lower_torso"]["world_y"]), 0)
        self.assertEqual(self.human.standing("left_foot")[0] * 100
                         + Decimal(self.male["lower_torso"]["world_z"]), 0)

    # Palms face the thighs: a palm's centre is nearer to the middle than its wrist.
    def test_palm_centres_lie_on_the_palm_side(self):
        left, right = (self.human.sites["%s_hand.%s_palmcenter" % (s, s)][1] for s in ("left", "right"))
        self.assertEqual(table_cm(left), (Decimal("-1.40"), Decimal("-6.20"), 0))
        self.assertEqual(right, mirrored_vector(left))
        self.assertGreater(self.human.standing("left_hand")[1], 0)


class MirrorTest(HumanTest):

    def test_right_and_left_are_mirror_images(self):
        pairs = [segment for segment in TREE if segment.startswith("left_")]
        self.assertEqual(len(pairs), 10)
        for left in pairs:
            right = mirrored_name(left)
            self.assertEqual(self.human.mass[right], self.human.mass[left], left)
            self.assertEqual(self.human.inertia[right], self.human.inertia[left], left)
            self.assertEqual(self.human.center[right], mirrored_vector(self.human.center[left]), left)
            ours, twins = self.human.joints[left], self.human.joints[right]
            self.assertEqual(twins.point, mirrored_vector(ours.point), left)
            self.assertEqual([angle.name for angle in twins.angles],
                             [mirrored_name(angle.name) for angle in ours.angles])
            for angle, twin in zip(ours.angles, twins.angles):
                self.assertEqual(twin.axis, mirrored_rotation(angle.axis), angle.name)
                self.assertEqual(twin.range, angle.range, angle.name)

    def test_every_site_has_its_twin(self):
        for name, (segment, point) in self.human.sites.items():
            twin = self.human.sites[mirrored_name(name)]
            self.assertEqual(twin, (mirrored_name(segment), mirrored_vector(point)), name)

    def test_the_other_sex_is_symmetric_too(self):
        percent = self.roles["other_sex"]["mass_percent"]
        for segment in percent:
            self.assertEqual(percent[segment], percent[mirrored_name(segment)])


class MovementTest(HumanTest):

    # A small positive angle moves a point at r from the joint along axis × r. Each movement is told
    # by a point of the segment beyond the joint and the direction that its name means.
    FORWARD, LEFT, UP = (1, 0, 0), (0, 1, 0), (0, 0, 1)
    BACK, RIGHT, DOWN = (-1, 0, 0), (0, -1, 0), (0, 0, -1)
    CENTRE_LINE = (
        # joint angle of the centre line, r, movement
        ("waist.flexion", UP, FORWARD), ("waist.bend_right", UP, RIGHT), ("waist.turn_left", FORWARD, LEFT),
        ("base_of_neck.flexion", UP, FORWARD), ("atlanto_occipital.bend_right", UP, RIGHT),
        ("atlanto_occipital.turn_left", FORWARD, LEFT), ("solar_plexus", FORWARD, UP))
    LEFT_SIDE = (
        # outwards is to the left, inwards to the right; palms face inwards, thumbs forward
        ("left_hip.flexion", DOWN, FORWARD), ("left_hip.abduction", DOWN, LEFT),
        ("left_hip.internal_rotation", FORWARD, RIGHT),
        ("left_knee", DOWN, BACK),
        ("left_ankle.dorsiflexion", FORWARD, UP), ("left_ankle.inversion", DOWN, RIGHT),
        ("left_ball", FORWARD, UP),
        ("left_clavicle_joint.elevation", LEFT, UP), ("left_clavicle_joint.protraction", LEFT, FORWARD),
        ("left_shoulder.flexion", DOWN, FORWARD), ("left_shoulder.abduction", DOWN, LEFT),
        ("left_shoulder.internal_rotation", FORWARD, RIGHT),
        ("left_elbow.flexion", DOWN, FORWARD), ("left_elbow.pronation", FORWARD, RIGHT),
        ("left_wrist.flexion", DOWN, RIGHT), ("left_wrist.radial_deviation", DOWN, FORWARD),
        ("left_knuckles", DOWN, RIGHT), ("left_thumb_joint", DOWN, RIGHT))

    def movements(self):
        axes = {angle.name: angle.axis for joint in self.human.joints.values() for angle in joint.angles}
        for name, r, movement in self.CENTRE_LINE + self.LEFT_SIDE:
            yield name, axes[name], r, movement
        for name, r, movement in self.LEFT_SIDE:
            name = mirrored_name(name)
            yield name, axes[name], mirrored_vector(r), mirrored_vector(movement)

    def test_a_positive_angle_does_what_its_name_says(self):
        for name, axis, r, movement in self.movements():
            self.assertEqual(cross(axis, r), movement, name)

    def test_the_other_levels_of_the_spine_move_like_the_waist(self):
        waist = self.human.joints["l5"].angles
        for segment in SPINE[2:]:
            angles = self.human.joints[segment].angles
            self.assertEqual([a.axis for a in angles], [a.axis for a in waist], segment)
            self.assertEqual([a.name.split(".")[1] for a in angles], ["flexion", "bend_right", "turn_left"])

    def test_angles_stand_in_the_documented_order(self):
        for segment, names in (
                ("hand", ["wrist.flexion", "wrist.radial_deviation"]),
                ("foot", ["ankle.dorsiflexion", "ankle.inversion"]),
                ("lower_arm", ["elbow.flexion", "elbow.pronation"]),
                ("clavicle", ["clavicle_joint.elevation", "clavicle_joint.protraction"]),
                ("upper_leg", ["hip.flexion", "hip.abduction", "hip.internal_rotation"]),
                ("upper_arm", ["shoulder.flexion", "shoulder.abduction", "shoulder.internal_rotation"]),
                ("lower_leg", ["knee"]), ("toes", ["ball"]), ("fingers", ["knuckles"]),
                ("thumb", ["thumb_joint"])):
            for side in ("right_", "left_"):
                self.assertEqual([angle.name for angle in self.human.joints[side + segment].angles],
                                 [side + name for name in names])
        self.assertEqual([angle.name for angle in self.human.joints["upper_torso"].angles], ["solar_plexus"])

    def test_the_first_and_only_angle_of_a_knee_is_its_flexion(self):
        self.assertEqual([row["angle"] for row in table("joints.csv") if row["joint"] == "knee"], ["flexion"])

    # The limits are the tabled degrees, rounded to 9 decimals of a radian; zero is always allowed.
    def test_ranges_are_the_tables(self):
        rows = {}
        for row in table("joints.csv"):
            rows.setdefault(row["joint"], []).append(row)
        for segment in self.human.joints:
            joint = re.sub("^(right|left)_", "", self.human.joint_name(segment))
            angles = self.human.joints[segment].angles
            self.assertEqual(len(rows[joint]), len(angles), joint)
            for row, angle in zip(rows[joint], angles):
                for limit, column in zip(angle.range, ("min_deg", "max_deg")):
                    self.assertAlmostEqual(float(limit), math.radians(float(row[column])), delta=5.01e-10)
                self.assertTrue(angle.range[0] <= 0 < angle.range[1], angle.name)

    # The whole spine, from the table of its levels: flexion of l5 to t1, 9 + 13 + 12 + 10 + 8 + 7 + 7
    # + 5 + 4 + 4 + 4 + 3 + 2 + 2 + 2 + 2 + 2 = 96 degrees; extension 5 + 2 + 1 + 3 + 5 + 5 + 5 + 4
    # + 9 · 2 = 48.
    def test_levels_of_the_spine_add_up(self):
        ranges = [self.human.joints[segment].angles[0].range for segment in SPINE[1:]]
        # 17 numbers rounded to 9 decimals
        self.assertAlmostEqual(float(sum(high for _, high in ranges)), math.radians(96), delta=17 * 5.01e-10)
        self.assertAlmostEqual(float(sum(low for low, _ in ranges)), -math.radians(48), delta=17 * 5.01e-10)


class RolesTest(HumanTest):

    def test_roles_name_parts_that_exist(self):
        for side in ("right", "left"):
            roles = self.roles[side]
            self.assertEqual(roles, {
                "foot_site": side + "_foot.sole", "hand_site": "%s_hand.%s_palmcenter" % (side, side),
                "knee": side + "_knee", "ankle": side + "_ankle", "hip": side + "_hip"})
            for key in ("foot_site", "hand_site"):
                self.assertIn(roles[key], self.human.sites)
            for key in ("knee", "ankle", "hip"):
                self.assertIn(roles[key], self.human.joint_names())
        self.assertIn(self.roles["pelvis_site"], self.human.sites)
        self.assertEqual(self.roles["waist"], "waist")
        self.assertEqual(self.roles["reference_site"], "lower_torso.balance_point")
        self.assertEqual(self.roles["version"], 1)

    def test_base_is_this_figure(self):
        self.assertEqual(self.roles["base"], {"sex": "male", "stature_cm": 175, "mass_kg": 75})

    def test_percentages_of_the_other_sex_add_to_100(self):
        other = json.loads(read_file(FIGURES, "human.roles.json").decode("ascii"),
                           parse_float=Decimal)["other_sex"]
        self.assertEqual((other["sex"], other["stature_cm"], other["mass_kg"]), ("female", 163, 62))
        self.assertEqual(sum(other["mass_percent"].values()), 100)
        for segment, percent in other["mass_percent"].items():
            self.assertEqual(percent, Decimal(self.female[segment]["mass_pct"]), segment)
        self.assertEqual(set(other["mass_percent"]), set(TREE))


if __name__ == "__main__":
    unittest.main()
