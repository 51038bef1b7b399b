"""A small human as the text of a posed figure, with round numbers. Runs under every Python from 2.6 on.

Units and axes are the host's: cm, g; x to the left, y up, z forward. Frames are parallel to the world's.
"""
import json


class SmallFigure(object):
    """Collects parts, which are listed in the order of the calls."""

    def __init__(self, name):
        self.document = {"name": name, "segments": [], "sites": [], "joints": [], "right": {}, "left": {},
                         "properties": []}

    def segment(self, name, grams, center_of_mass, position):
        self.document["segments"].append({"name": name, "mass": grams, "com": center_of_mass,
                                          "transform": transform(position), "sites": [], "attachment": None})

    def site(self, segment, name, position):
        """The first site of a segment is its attachment."""
        key = segment + "." + name
        owner = named(self.document["segments"], "name", segment)
        owner["sites"].append(key)
        if owner["attachment"] is None:
            owner["attachment"] = key
        self.document["sites"].append({"key": key, "segment": segment, "name": name,
                                       "transform": transform(position), "second_transform": transform(position),
                                       "joints": []})

    def joint(self, name, first, second, angles=()):
        self.document["joints"].append({"name": name, "full_name": self.document["name"] + "." + name,
                                        "sites": [first, second], "inboard": first, "angles": list(angles)})
        for key in (first, second):
            named(self.document["sites"], "key", key)["joints"].append(name)

    def text(self):
        return json.dumps(self.document)


def transform(position):
    return [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], list(position) + [1]]


def named(parts, key, name):
    return [part for part in parts if part[key] == name][0]


def small_body(name="man"):
    """Every part that the analysis asks for, symmetric, on straight legs: feet at x = -/+ 10, the right one
    at -10; ankles, knees and hips at y = 10, 50, 90 and z = 0; palm centres at (-/+ 20, 72, 0)."""
    body = SmallFigure(name)
    body.segment("lower_torso", 10000, [0, 5, 0], [0, 90, 0])
    for site, position in (("proximal", [0, 90, 0]), ("distal", [0, 100, 0]), ("h_point", [0, 90, 0]),
                           ("center_of_mass", [0, 95, 0]), ("balance_point", [0, 100, 5])):
        body.site("lower_torso", site, position)
    for segment, grams, bottom, top in (("l5", 2000, 100, 110), ("t8", 10000, 110, 130),
                                        ("upper_torso", 8000, 130, 140)):
        body.segment(segment, grams, [0, (top - bottom) // 2, 0], [0, bottom, 0])
        body.site(segment, "proximal", [0, bottom, 0])
        body.site(segment, "distal", [0, top, 0])
    body.joint("waist", "lower_torso.distal", "l5.proximal", [0.25, -0.5])
    body.joint("t8_l5", "l5.distal", "t8.proximal")
    body.joint("solar_plexus", "t8.distal", "upper_torso.proximal")

    for side, sign in (("right", -1), ("left", 1)):
        body.site("upper_torso", side + "_clavicle_joint", [sign * 5, 140, 0])
        body.site("lower_torso", side + "_hip", [sign * 10, 90, 0])
        for segment, grams, begin, end in (
                ("clavicle", 1000, [sign * 5, 140, 0], [sign * 20, 140, 0]),
                ("arm", 3000, [sign * 20, 140, 0], [sign * 20, 80, 0]),
                ("hand", 500, [sign * 20, 80, 0], None),
                ("upper_leg", 8000, [sign * 10, 90, 0], [sign * 10, 50, 0]),
                ("lower_leg", 4000, [sign * 10, 50, 0], [sign * 10, 10, 0]),
                ("foot", 800, [sign * 10, 10, 0], [sign * 10, 2, 15]),
                ("toes", 200, [sign * 10, 2, 15], None)):
            own = side + "_" + segment
            body.segment(own, grams, [0, 0, 0], begin)
            body.site(own, "proximal", begin)
            if end:
                body.site(own, "distal", end)
        body.site(side + "_hand", side + "_palmcenter", [sign * 20, 72, 0])
        body.site(side + "_foot", "sole", [sign * 10, 0, 5])
        for joint, first, second, angles in (
                ("clavicle_joint", "upper_torso.%s_clavicle_joint", "%s_clavicle.proximal", []),
                ("shoulder", "%s_clavicle.distal", "%s_arm.proximal", []),
                ("wrist", "%s_arm.distal", "%s_hand.proximal", []),
                ("hip", "lower_torso.%s_hip", "%s_upper_leg.proximal", []),
                ("knee", "%s_upper_leg.distal", "%s_lower_leg.proximal", [0.0]),
                ("ankle", "%s_lower_leg.distal", "%s_foot.proximal", []),
                ("ball", "%s_foot.distal", "%s_toes.proximal", [])):
            body.joint(side + "_" + joint, first % side, second % side, angles)
        body.document[side] = {"foot_site": side + "_foot.sole", "hand_site": side + "_hand." + side + "_palmcenter",
                               "knee": side + "_knee", "ankle": side + "_ankle", "hip": side + "_hip"}
    body.document["pelvis_site"] = "lower_torso.proximal"
    body.document["waist"] = "waist"
    body.document["reference_site"] = "lower_torso.balance_point"
    return body
