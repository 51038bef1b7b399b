"""libqcc: a human's body, a figure's place, a scene's gravity and strategy, and all joints in one call."""
import array
import math

import libqcc as qc
import libqmSSTRc as ss
from qcc_support import HostTest, PYTHON_2, single
from small_figure import small_body
from support import main

DEGREE = math.pi / 180


def array_of(kind, numbers):
    """An array with the buffer interface, which Python 2's array.array has not."""
    return array.array(kind, numbers)


class Settings(HostTest):

    def test_gravity_is_kept_in_single_precision_and_saved(self):
        self.assertEqual(qc.qcScene_getGravity(self.scene), (0.0, single(-980.665), 0.0))
        self.assertEqual(qc.qcScene_setGravity(self.scene, 0.1, -162, 0), None)
        self.assertEqual(qc.qcScene_getGravity(self.scene), (single(0.1), -162.0, 0.0))
        self.assertEqual(qc.qcScene_save(self.scene, self.path("scene.json")), 1)
        again = qc.qcScene_open(self.path("scene.json"))
        self.assertEqual(qc.qcScene_getGravity(again), (single(0.1), -162.0, 0.0))
        qc.qcScene_close(again)

    def test_gravity_too_large_for_single_precision_is_refused(self):
        self.check_raises(ValueError, "Argument 4 of qcScene_setGravity is too large for single precision: 1e+39.",
                          qc.qcScene_setGravity, self.scene, 0, 0, 1e39)
        self.assertEqual(qc.qcScene_getGravity(self.scene), (0.0, single(-980.665), 0.0))

    def test_unstored_strategy_is_kept_and_saved(self):
        human = self.default_human()
        self.assertEqual(qc.qcScene_getUnstoredStrategy(self.scene, human), "")
        self.assertEqual(qc.qcScene_setUnstoredStrategy(self.scene, human, "hands-and-knees"), None)
        self.assertEqual(qc.qcScene_getUnstoredStrategy(self.scene, human), "hands-and-knees")
        self.assertEqual(qc.qcScene_save(self.scene, self.path("scene.json")), 1)
        again = qc.qcScene_open(self.path("scene.json"))
        self.assertEqual(qc.qcScene_getUnstoredStrategy(again, qc.qcScene_getHumans(again)[0]), "hands-and-knees")
        qc.qcScene_close(again)

    def test_strategy_that_a_property_can_hold_is_refused_with_a_message(self):
        human = self.posed_human()
        qc.qcScene_setUnstoredStrategy(self.scene, human, "sitting")
        self.assertTrue("sitting" in self.take_one_error())
        self.assertEqual(qc.qcScene_getUnstoredStrategy(self.scene, human), "")

    def test_human_of_another_scene_has_no_unstored_strategy(self):
        other = qc.qcScene_new()
        human = qc.qcScene_addPosedHuman(other, small_body().text())
        qc.qcScene_setUnstoredStrategy(self.scene, human, "hands-and-knees")
        self.assertEqual(qc.qcScene_getUnstoredStrategy(self.scene, human), "")
        qc.qcScene_close(other)


class Body(HostTest):

    def test_human_tells_its_name(self):
        self.assertEqual(qc.qcHuman_getName(self.default_human("worker")), "worker")

    # The default human is a man of 175 cm and 75 kg until told otherwise.
    def test_measures_are_those_of_the_scale(self):
        human = self.default_human()
        figure = qc.qcHuman_getFigure(human)
        self.assertEqual((qc.qcHuman_getSex(human), qc.qcHuman_getStature(human)), ("male", 175.0))
        self.assertTrue(abs(qc.qcFigure_getBodyMass(figure) - 75000) < 0.01)
        self.assertEqual(qc.qcHuman_setSex(human, "female"), 1)
        self.assertEqual(qc.qcHuman_setStature(human, 160), 1)
        self.assertEqual(qc.qcHuman_setMass(human, 60000), 1)
        self.assertEqual((qc.qcHuman_getSex(human), qc.qcHuman_getStature(human)), ("female", 160.0))
        # 41 masses in single precision, each within 2^-24 of itself
        self.assertTrue(abs(qc.qcFigure_getBodyMass(figure) - 60000) < 60000 * 2.0 ** -23)

    def test_setting_a_measure_makes_the_scale(self):
        human = self.default_human()
        self.assertEqual(qc.qcHuman_setStature(human, 180), 1)
        self.assertEqual(qc.qcHuman_getStature(human), 180.0)

    def test_measure_that_nothing_tells_is_none(self):
        human = self.posed_human()
        self.assertEqual((qc.qcHuman_getSex(human), qc.qcHuman_getStature(human)), (None, None))

    def test_measure_out_of_range_is_0_after_an_error_message(self):
        human = self.default_human()
        for function, wrong in ((qc.qcHuman_setStature, 10), (qc.qcHuman_setMass, -1), (qc.qcHuman_setSex, "man")):
            self.assertEqual(function(human, wrong), 0)
            self.take_one_error()

    def test_human_that_cannot_have_a_scale_says_so(self):
        body = small_body("stiff")
        body.document["anthro"] = "none"
        human = qc.qcScene_addPosedHuman(self.scene, body.text())
        self.assertEqual(qc.qcHuman_setMass(human, 70000), 0)
        self.assertEqual(self.take_one_error(), "human stiff: it cannot have an anthropometric scale.")


class Place(HostTest):

    def test_root_reads_as_it_was_set(self):
        figure = qc.qcHuman_getFigure(self.default_human())
        self.assertEqual(qc.qcFigure_setRoot(figure, 1, 2.5, -3, 10, 20, -30), 1)
        self.assertEqual(qc.qcFigure_getRoot(figure), ((1.0, 2.5, -3.0), (10.0, 20.0, -30.0)))

    # Every site of a foot lies on or above the floor, and the lowest one on it to within the rounding of
    # numbers of some 10 cm.
    def test_figure_stands_on_the_floor_until_its_root_is_set(self):
        figure = qc.qcHuman_getFigure(self.default_human())
        qc.qcFigure_setRoot(figure, 0, 500, 0, 0, 0, 0)
        self.assertEqual(qc.qcFigure_isOnFloor(figure), 0)
        self.assertEqual(qc.qcFigure_standOnFloor(figure), None)
        self.assertEqual(qc.qcFigure_isOnFloor(figure), 1)
        lowest = min([qc.qcSite_getTransform(site)[3][1] for site in qc.qcFigure_getSites(figure)])
        self.assertTrue(abs(lowest) < 1e-4, lowest)
        qc.qcFigure_setRoot(figure, 0, 500, 0, 0, 0, 0)
        self.assertEqual(qc.qcFigure_isOnFloor(figure), 0)

    def test_posed_figure_says_so(self):
        self.assertEqual(qc.qcFigure_isPosed(self.posed_figure()), 1)
        self.assertEqual(qc.qcFigure_isPosed(qc.qcHuman_getFigure(self.default_human())), 0)

    # Symmetric about x = 0; each part's centre of mass lies at its origin but for the trunk's. Masses, g, times
    # heights, cm:
    #   trunk  10000 x 95 + 2000 x 105 + 10000 x 120 + 8000 x 135 = 3 440 000
    #   a side 1000 x 140 + 3000 x 140 + 500 x 80 + 8000 x 90 + 4000 x 50 + 800 x 10 + 200 x 2 = 1 528 400
    # of 30000 + 2 x 17500 = 65000 g; forward: 2 x 200 x 15 = 6000.
    def test_body_tells_its_mass_and_centre(self):
        figure = self.posed_figure()
        self.assertEqual(qc.qcFigure_getBodyMass(figure), 65000.0)
        x, y, z = qc.qcFigure_getBodyCenterOfMass(figure)
        self.assertEqual(x, 0.0)
        self.assertTrue(abs(y - (3440000 + 2 * 1528400) / 65000.0) < 1e-5, y)
        self.assertTrue(abs(z - 6000 / 65000.0) < 1e-7, z)

    def test_angle_tells_its_name_and_limits(self):
        joint = qc.qcFigure_findJoint(qc.qcHuman_getFigure(self.default_human()), "left_knee")
        lower, upper = qc.qcJoint_getAngleLimits(joint, 1)
        self.assertEqual(lower, 0.0)
        self.assertTrue(abs(upper - math.radians(135)) < 5e-9, upper)   # eight decimals in the figure's file
        elbow = qc.qcFigure_findJoint(qc.qcHuman_getFigure(qc.qcScene_getHumans(self.scene)[0]), "right_elbow")
        self.assertEqual([qc.qcJoint_getAngleName(elbow, i) for i in (0, 1, 2, 3)], ["", "flexion", "pronation", ""])
        self.assertEqual(qc.qcJoint_getAngleLimits(joint, 2), None)
        self.assertEqual(qc.qcJoint_getAngleName(joint, 2), "")
        posed = qc.qcFigure_findJoint(self.posed_figure(), "waist")
        self.assertEqual((qc.qcJoint_getAngleLimits(posed, 1), qc.qcJoint_getAngleName(posed, 1)), (None, ""))


class JointProperties(HostTest):

    def test_property_of_all_joints_is_removed(self):
        figure = self.posed_figure()
        for name in ("waist", "left_knee"):
            qc.qcObject_setProperty(qc.qcFigure_findJoint(figure, name), "key", 1.0)
        self.assertEqual(qc.qcFigure_removeJointProperty(figure, "key"), 2)
        self.assertEqual(qc.qcFigure_removeJointProperty(figure, "key"), 0)
        for joint in qc.qcFigure_getJoints(figure):
            self.assertEqual(qc.qcObject_getProperty(joint, "key"), None)


class Arrays(HostTest):

    def setUp(self):
        HostTest.setUp(self)
        self.figure = self.posed_figure()

    def angles(self):
        return [qc.qcJoint_getAngle(joint, i) for joint in qc.qcFigure_getJoints(self.figure)
                for i in range(1, qc.qcJoint_getNumAngles(joint) + 1)]

    # The small body has four angles: two of the waist and one of each knee, in the order of its joints: waist,
    # right knee, left knee.
    def test_all_angles_are_set_from_an_array_in_its_unit(self):
        self.assertEqual(self.angles(), [0.25, -0.5, 0.0, 0.0])
        degrees = array_of("d", [99, 30, 0.1, -7, 45, 99])
        self.assertEqual(qc.qcFigure_setAngles(self.figure, degrees, 1, DEGREE), 1)
        self.assertEqual(self.angles(), [30 * DEGREE, 0.1 * DEGREE, -7 * DEGREE, 45 * DEGREE])
        self.assertEqual(qc.qcFigure_setAngles(self.figure, memoryview(degrees)[1:5], 0, 1.0), 1)
        self.assertEqual(self.angles(), [30.0, 0.1, -7.0, 45.0])

    def test_no_angle_is_set_when_one_cannot_be(self):
        self.assertEqual(qc.qcFigure_setAngles(self.figure, array_of("d", [1, 2, 3, float("nan")]), 0, 1.0), 0)
        self.assertEqual(self.take_one_error(), "joint man.left_knee: angle 1 must be a finite number.")
        self.assertEqual(self.angles(), [0.25, -0.5, 0.0, 0.0])
        figure = qc.qcHuman_getFigure(self.default_human())
        count = sum([qc.qcJoint_getNumAngles(joint) for joint in qc.qcFigure_getJoints(figure)])
        self.assertEqual(qc.qcFigure_setAngles(figure, array_of("d", [1.0] * count), 0, 1000.0), 0)
        self.assertTrue("outside its limits" in self.take_one_error())

    def test_array_that_is_too_short_is_refused(self):
        angles = array_of("d", [1, 2, 3, 4])
        for first in (1, 5, -1):
            self.check_raises(ValueError, "Argument 2 of qcFigure_setAngles: expected 4 numbers from element %d on, "
                              "found an array of 4." % first, qc.qcFigure_setAngles, self.figure, angles, first, 1.0)
        self.assertEqual(self.angles(), [0.25, -0.5, 0.0, 0.0])

    def test_array_of_another_type_is_refused(self):
        numbers = array_of("d", range(8))
        for wrong in (array_of("f", [1] * 4), array_of("i", [1] * 4), b"12345678" * 4, [1.0] * 4, None,
                      memoryview(numbers)[::2]):
            self.check_raises(TypeError, "Type error in argument 2 of qcFigure_setAngles. Expected an array of "
                              "double-precision numbers.", qc.qcFigure_setAngles, self.figure, wrong, 0, 1.0)
        for wrong in (numbers, memoryview(array_of("f", [0] * 200)).toreadonly(), [0.0] * 200):
            self.check_raises(TypeError, "Type error in argument 4 of qcFigure_getJointVectors. Expected a writable "
                              "array of single-precision numbers.",
                              qc.qcFigure_getJointVectors, self.figure, "key", 2, wrong, 0)

    def test_vectors_of_all_joints_are_read_into_an_array(self):
        joints = qc.qcFigure_getJoints(self.figure)
        names = [qc.qcJoint_getName(joint) for joint in joints]
        for name, value in (("waist", [(1, 2, 3), (4, 5, 0.1)]), ("left_knee", [(7, 8, 9)]),
                            ("right_knee", [(1, 2, 3), (4, 5, 6), (7, 8, 9)]), ("left_hip", [(1, 2, 3), 4.0]),
                            ("right_hip", (1, 2, 3)), ("left_ball", [])):
            qc.qcObject_setProperty(joints[names.index(name)], "key", value)
        into = array_of("f", [-1.0] * (6 * len(joints) + 2))
        self.assertEqual(qc.qcFigure_getJointVectors(self.figure, "key", 2, into, 1), 1)
        self.assertEqual((into[0], into[-1]), (-1.0, -1.0))   # nothing is written around it
        for i, name in enumerate(names):
            found = list(into[1 + 6 * i:7 + 6 * i])
            if name == "waist":
                self.assertEqual(found, [1.0, 2.0, 3.0, 4.0, 5.0, single(0.1)])
            else:
                self.assertEqual([number != number for number in found], [True] * 6, name)

    def test_results_of_a_computation_are_read_as_the_analysis_tells_them(self):
        human = qc.qcScene_getHumans(self.scene)[0]
        analysis = self.analysis_of(human)
        ss.qmStaticStrength_compute(analysis)
        joints = qc.qcFigure_getJoints(self.figure)
        into = array_of("f", [0.0] * (6 * len(joints)))
        found = qc.qcFigure_getJointVectors(self.figure, "SSTR_Force_Moment", 2, into, 0)
        self.assertTrue(found > 0)
        force, moment = qc.new_qVector(0, 0, 0), qc.new_qVector(0, 0, 0)
        for i, joint in enumerate(joints):
            if ss.qmStaticStrength_getJointForces(analysis, joint, force, moment):
                self.assertEqual(tuple(into[6 * i:6 * i + 6]), qc.qVector_get(force) + qc.qVector_get(moment))
                found -= 1
        self.assertEqual(found, 0)
        qc.delete_qVector(force)
        qc.delete_qVector(moment)

    # An array that is held by somebody cannot be resized.
    def test_array_is_let_go_after_a_call_good_or_bad(self):
        good, bad = array_of("d", [0.0] * 4), array_of("f", [0.0] * 4)
        self.assertEqual(qc.qcFigure_setAngles(self.figure, good, 0, 1.0), 1)
        self.check_raises(ValueError, None, qc.qcFigure_setAngles, self.figure, good, 1, 1.0)
        self.check_raises(TypeError, None, qc.qcFigure_setAngles, self.figure, bad, 0, 1.0)
        good.append(1.0)
        bad.append(1.0)

    def test_wrong_number_of_vectors_is_refused(self):
        into = array_of("f", [0.0] * 6)
        for count in (0, -1, 1001):
            self.check_raises(ValueError, "Argument 3 of qcFigure_getJointVectors is a number of vectors: expected 1 "
                              "to 1000, found %d." % count, qc.qcFigure_getJointVectors, self.figure, "key", count,
                              into, 0)
        self.check_raises_beginning(ValueError, "Argument 4 of qcFigure_getJointVectors: expected ",
                                    qc.qcFigure_getJointVectors, self.figure, "key", 1, into, 0)


if PYTHON_2:
    del Arrays   # array.array has no buffer interface there, and a memoryview knows no other numbers than bytes


if __name__ == "__main__":
    main()
