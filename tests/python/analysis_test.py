# -*- coding: utf-8 -*-
"""The functions of libqmSSTRc that call the analysis: each with right and with wrong arguments."""
import sys

import libqcc as qc
import libqmSSTRc as ss
from qcc_support import HostTest, single
from support import main


class AnalysisTest(HostTest):

    def setUp(self):
        HostTest.setUp(self)
        self.human = self.posed_human()
        self.figure = qc.qcHuman_getFigure(self.human)
        self.analysis = self.analysis_of(self.human)
        self.palm = self.site("right_hand.right_palmcenter")
        self.tip = self.site("left_hand.left_palmcenter")
        self.knee = qc.qcFigure_findJoint(self.figure, "right_knee")
        self.vectors = []

    def tearDown(self):
        for vector in self.vectors:
            qc.delete_qVector(vector)
        HostTest.tearDown(self)

    def site(self, key):
        return qc.qcFigure_findSite(self.figure, key)

    def vector(self, x=0.0, y=0.0, z=0.0):
        self.vectors.append(qc.new_qVector(x, y, z))
        return self.vectors[-1]

    def read(self, function, *arguments):
        """The function's result, and the vector that it writes as its last argument; (7, 7, 7) before."""
        vector = self.vector(7, 7, 7)
        return function(*(arguments + (vector,))), qc.qVector_get(vector)


class Loads(AnalysisTest):

    def test_load_without_a_kind_is_global(self):
        self.assertEqual(ss.qmStaticStrength_setLoad(self.analysis, self.palm, self.vector(1, -2, 3)), 1)
        self.assertEqual(ss.qmStaticStrength_getLoadType(self.analysis, self.palm), "global")
        self.assertEqual(self.read(ss.qmStaticStrength_getSiteLoad, self.analysis, self.palm), (1, (1, -2, 3)))
        self.assertEqual(ss.qmStaticStrength_getSiteWeight(self.analysis, self.palm), -1.0)

    def test_kind_one_is_local(self):
        ss.qmStaticStrength_setLoad(self.analysis, self.palm, self.vector(1, 0, 0), 1)
        self.assertEqual(ss.qmStaticStrength_getLoadType(self.analysis, self.palm), "local")

    def test_kind_is_passed_on_unchanged(self):
        ss.qmStaticStrength_setLoad(self.analysis, self.palm, self.vector(1, 0, 0), 2)
        self.assertEqual(ss.qmStaticStrength_getLoadType(self.analysis, self.palm), "weight")
        self.assertEqual(ss.qmStaticStrength_getSiteWeight(self.analysis, self.palm), 0.0)
        self.assertEqual(ss.qmStaticStrength_setLoad(self.analysis, self.palm, self.vector(1, 0, 0), 5), 1)
        self.assertEqual(ss.qmStaticStrength_getLoadType(self.analysis, self.palm), None)

    def test_weight_is_turned_into_a_load_along_gravity(self):
        self.assertEqual(ss.qmStaticStrength_setWeightLoad(self.analysis, self.palm, 1500), 1)
        self.assertEqual(ss.qmStaticStrength_getLoadType(self.analysis, self.palm), "weight")
        self.assertEqual(ss.qmStaticStrength_getSiteWeight(self.analysis, self.palm), 1500.0)
        status, load = self.read(ss.qmStaticStrength_getSiteLoad, self.analysis, self.palm)
        self.assertEqual((status, load), (1, (0.0, -1.5, 0.0)))

    def test_weight_is_held_in_single_precision(self):
        ss.qmStaticStrength_setWeightLoad(self.analysis, self.palm, 0.1)
        self.assertEqual(ss.qmStaticStrength_getSiteWeight(self.analysis, self.palm), single(0.1))

    def test_loads_are_counted_and_listed_in_order(self):
        self.assertEqual(ss.qmStaticStrength_getNumLoads(self.analysis), 0)
        self.assertEqual(ss.qmStaticStrength_getNthLoadSite(self.analysis, 0), "NULL")
        ss.qmStaticStrength_setLoad(self.analysis, self.tip, self.vector(0, -1, 0))
        ss.qmStaticStrength_setLoad(self.analysis, self.palm, self.vector(0, -1, 0))
        self.assertEqual(ss.qmStaticStrength_getNumLoads(self.analysis), 2)
        self.assertEqual([ss.qmStaticStrength_getNthLoadSite(self.analysis, n) for n in (0, 1, 2, -1)],
                         [self.tip, self.palm, "NULL", self.tip])

    def test_removed_load_is_gone(self):
        self.assertEqual(ss.qmStaticStrength_removeLoad(self.analysis, self.palm), 0)
        ss.qmStaticStrength_setLoad(self.analysis, self.palm, self.vector(0, -1, 0))
        self.assertEqual(ss.qmStaticStrength_removeLoad(self.analysis, self.palm), 1)
        self.assertEqual(ss.qmStaticStrength_getLoadType(self.analysis, self.palm), None)
        self.assertEqual(self.read(ss.qmStaticStrength_getSiteLoad, self.analysis, self.palm), (0, (7, 7, 7)))

    def test_null_site_has_no_load(self):
        self.assertEqual(ss.qmStaticStrength_setLoad(self.analysis, "NULL", self.vector()), 0)
        self.assertEqual(ss.qmStaticStrength_setWeightLoad(self.analysis, "NULL", 1), 0)
        self.assertEqual(ss.qmStaticStrength_removeLoad(self.analysis, "NULL"), 0)
        self.assertEqual(ss.qmStaticStrength_getLoadType(self.analysis, "NULL"), None)
        self.assertEqual(ss.qmStaticStrength_getSiteWeight(self.analysis, "NULL"), -1.0)

    def test_report_tells_loads_strategy_and_gravity(self):
        self.assertEqual(ss.qmStaticStrength_reportLoads(self.analysis), None)
        self.assertEqual(ss.qmStaticStrength_reportLoads(self.analysis, 1), "No loads.")
        self.assertEqual(ss.qmStaticStrength_reportLoads(self.analysis),
                         "Gravity: (0.00, -980.66, 0.00) cm/sec^2")
        ss.qmStaticStrength_setWeightLoad(self.analysis, self.palm, 1500)
        ss.qmStaticStrength_setStrategy(self.analysis, ss.qmStaticStrength_Sitting)
        lines = [ss.qmStaticStrength_reportLoads(self.analysis, 1)]
        for i in range(4):
            lines.append(ss.qmStaticStrength_reportLoads(self.analysis, 0))
        self.assertEqual(lines, ["right_hand.right_palmcenter\tWeight: 1500.0 gr", 'Strategy: "Sitting"',
                                 "Gravity: (0.00, -980.66, 0.00) cm/sec^2", None, None])


class OffsetLoads(AnalysisTest):

    def record_of(self, record):
        return (ss.loadWithOffset_site_get(record), qc.qVector_get(ss.loadWithOffset_offset_get(record)),
                ss.loadWithOffset_type_get(record), qc.qVector_get(ss.loadWithOffset_load_get(record)),
                ss.loadWithOffset_mass_get(record), ss.loadWithOffset_local_get(record))

    def test_record_of_a_force_is_read_field_by_field(self):
        record = ss.qmStaticStrength_setLoadWithOffset(self.analysis, self.palm, self.vector(1, 2, 3),
                                                       self.vector(0, -4, 0))
        self.assertTrue(record.endswith("_loadWithOffset_p"))
        self.assertEqual(self.record_of(record), (self.palm, (1, 2, 3), "global", (0, -4, 0), -1.0, 0))
        self.assertTrue(ss.loadWithOffset_load_get(record).endswith("_qVector_p"))

    def test_vectors_of_a_record_lie_in_the_record(self):
        record = ss.qmStaticStrength_setLoadWithOffset(self.analysis, self.palm, self.vector(), self.vector())
        for get in (ss.loadWithOffset_load_get, ss.loadWithOffset_offset_get):
            self.assertEqual(get(record), get(record))
            qc.qVector_set(get(record), 0, -9, 0)
            self.assertEqual(qc.qVector_get(get(record)), (0, -9, 0))

    def test_record_of_a_local_force_says_so(self):
        record = ss.qmStaticStrength_setLoadWithOffset(self.analysis, self.palm, self.vector(), self.vector(0, 1, 0),
                                                       1)
        self.assertEqual(ss.loadWithOffset_type_get(record), "local")
        self.assertEqual(ss.loadWithOffset_local_get(record), 1)

    def test_record_of_a_weight_keeps_its_grams(self):
        record = ss.qmStaticStrength_setWeightLoadWithOffset(self.analysis, self.palm, self.vector(0, 0, 9), 2000)
        self.assertEqual(self.record_of(record), (self.palm, (0, 0, 9), "weight", (0, -2, 0), 2000.0, 0))

    def test_records_are_counted_listed_and_removed(self):
        first = ss.qmStaticStrength_setLoadWithOffset(self.analysis, self.palm, self.vector(), self.vector(0, 1, 0))
        second = ss.qmStaticStrength_setLoadWithOffset(self.analysis, self.palm, self.vector(), self.vector(0, 2, 0))
        self.assertEqual(ss.qmStaticStrength_getNumLoadsWithOffset(self.analysis), 2)
        self.assertEqual([ss.qmStaticStrength_getNthLoadWithOffset(self.analysis, n) for n in (0, 1, 2, -1)],
                         [first, second, "NULL", "NULL"])
        self.assertEqual(ss.qmStaticStrength_removeLoadWithOffset(self.analysis, first), 1)
        self.assertEqual(ss.qmStaticStrength_removeLoadWithOffset(self.analysis, "NULL"), 0)
        self.assertEqual(ss.qmStaticStrength_getNumLoadsWithOffset(self.analysis), 1)

    def test_equivalent_type_name_is_taken_for_a_record(self):
        record = ss.qmStaticStrength_setLoadWithOffset(self.analysis, self.palm, self.vector(), self.vector(0, 1, 0))
        renamed = record.replace("_loadWithOffset_p", "_struct_loadWithOffset_p")
        self.assertEqual(ss.loadWithOffset_type_get(renamed), "global")

    def test_null_record_has_no_fields(self):
        for field in ("local", "mass", "load", "type", "offset", "site"):
            name = "loadWithOffset_%s_get" % field
            self.check_raises(ValueError, "Received a NULL Pointer in argument 1 of %s. "
                              "Expected _loadWithOffset_p." % name, getattr(ss, name), "NULL")


class Torques(AnalysisTest):

    def test_torque_is_set_read_listed_and_removed(self):
        self.assertEqual(ss.qmStaticStrength_getNumDefinedTorques(self.analysis), 0)
        self.assertEqual(self.read(ss.qmStaticStrength_getDefinedTorque, self.analysis, self.knee), (0, (7, 7, 7)))
        self.assertEqual(ss.qmStaticStrength_setDefinedTorque(self.analysis, self.knee, self.vector(1, 2, 3)), 1)
        self.assertEqual(self.read(ss.qmStaticStrength_getDefinedTorque, self.analysis, self.knee), (1, (1, 2, 3)))
        self.assertEqual(ss.qmStaticStrength_getNumDefinedTorques(self.analysis), 1)
        self.assertEqual(ss.qmStaticStrength_getNthDefinedTorqueJoint(self.analysis, 0), self.knee)
        self.assertEqual(ss.qmStaticStrength_getNthDefinedTorqueJoint(self.analysis, 1), "NULL")
        self.assertEqual(ss.qmStaticStrength_removeDefinedTorque(self.analysis, self.knee), 1)
        self.assertEqual(ss.qmStaticStrength_removeDefinedTorque(self.analysis, self.knee), 0)
        self.assertEqual(ss.qmStaticStrength_setDefinedTorque(self.analysis, "NULL", self.vector()), 0)


class Computation(AnalysisTest):

    def results(self):
        force, moment = self.vector(), self.vector()
        found = {}
        for joint in qc.qcFigure_getJoints(self.figure):
            status = ss.qmStaticStrength_getJointForces(self.analysis, joint, force, moment)
            found[qc.qcJoint_getName(joint)] = (status, qc.qVector_get(force), qc.qVector_get(moment))
        return found

    def test_right_ankle_carries_the_body_above_and_the_foot(self):
        # 10 + 2 + 10 + 8 kg of trunk, 2 × 4.5 kg of arms, legs of 12 kg each, the left foot's 1 kg; then
        # the right foot's own segments, 0.8 kg of it: the toes hang on the foot and add 0.2 kg
        ss.qmStaticStrength_setStrategy(self.analysis, ss.qmStaticStrength_RightFoot)
        self.assertEqual(ss.qmStaticStrength_compute(self.analysis), 1)
        status, force, moment = self.results()["right_ankle"]
        self.assertEqual((status, force[0], force[2]), (1, 0.0, 0.0))
        self.assertTrue(abs(force[1] + 65.0) < 1e-4, force)

    def test_joint_without_a_result_reads_as_zero(self):
        self.assertEqual(self.results()["right_knee"], (0, (0, 0, 0), (0, 0, 0)))
        self.assertEqual(ss.qmStaticStrength_getJointForces(self.analysis, "NULL", self.vector(), self.vector()), 0)

    def test_result_is_put_on_a_joint_and_read_back(self):
        self.assertEqual(ss.qmStaticStrength_setFMonJoint(self.analysis, self.knee, self.vector(1, 2, 3),
                                                          self.vector(4, 5, 6)), None)
        self.assertEqual(self.results()["right_knee"], (1, (1, 2, 3), (4, 5, 6)))

    def test_force_at_a_point_is_added_to_the_sums(self):
        # (30, 0, 0) cm × (0, -2, 0) kgf = (0, 0, -60) kgf·cm = (0, 0, -5.88399) N·m
        force, moment = self.vector(1, 0, 0), self.vector(0, 1, 0)
        self.assertEqual(ss.qmStaticStrength_calcForcesAt(self.analysis, self.vector(0, 100, 0),
                                                          self.vector(30, 100, 0), self.vector(0, -2, 0), force,
                                                          moment), None)
        self.assertEqual(qc.qVector_get(force), (1, -2, 0))
        x, y, z = qc.qVector_get(moment)
        self.assertEqual((x, y), (0, 1))
        self.assertTrue(abs(z + 5.88399) < 1e-6, z)

    def test_split_factor_is_told(self):
        # the balance point is in the middle between the feet: half and half
        ss.qmStaticStrength_compute(self.analysis)
        hip = qc.qcFigure_findJoint(self.figure, "right_hip")
        self.assertEqual(ss.qmStaticStrength_getSplitFactor(self.analysis, hip, 1, "waist"), 0.5)
        self.assertEqual(ss.qmStaticStrength_getSplitFactor(self.analysis, hip, 1, "knee"), 0.0)
        self.assertEqual(ss.qmStaticStrength_getSplitFactor(self.analysis, "NULL", 2, ""), 0.5)

    def test_gravity_is_set_and_read(self):
        self.assertEqual(ss.qmStaticStrength_setGravity(self.analysis, self.vector(3, -4, 0)), None)
        self.assertEqual(self.read(ss.qmStaticStrength_getGravity, self.analysis), (5.0, (3, -4, 0)))

    def test_gravity_converts_weights_anew(self):
        ss.qmStaticStrength_setWeightLoad(self.analysis, self.palm, 1000)
        ss.qmStaticStrength_setGravity(self.analysis, self.vector(0, -2 * 980.665, 0))
        self.assertEqual(self.read(ss.qmStaticStrength_getSiteLoad, self.analysis, self.palm), (1, (0, -2, 0)))

    def test_strategy_is_set_and_read(self):
        self.assertEqual(ss.qmStaticStrength_getStrategy(self.analysis), ss.qmStaticStrength_TwoFeet)
        for strategy in (3, 7, 6, -1, 0):
            self.assertEqual(ss.qmStaticStrength_setStrategy(self.analysis, strategy), None)
            self.assertEqual(ss.qmStaticStrength_getStrategy(self.analysis), strategy)

    def test_clear_and_reset(self):
        ss.qmStaticStrength_setWeightLoad(self.analysis, self.palm, 1000)
        self.assertEqual(ss.qmStaticStrength_reset(self.analysis), 1)
        self.assertEqual(ss.qmStaticStrength_getNumLoads(self.analysis), 1)
        self.assertEqual(ss.qmStaticStrength_clear(self.analysis), None)
        self.assertEqual(ss.qmStaticStrength_getNumLoads(self.analysis), 0)
        self.assertEqual(ss.qmStaticStrength_reset(self.analysis), 0)


class Life(AnalysisTest):

    def test_handle_is_the_same_object_each_time(self):
        self.assertEqual(ss.qmStaticStrength_getHandle(self.human), self.analysis)
        self.assertEqual(ss.qmStaticStrength_getHuman(self.analysis), self.human)

    def test_new_object_is_another_one_and_can_be_deleted(self):
        other = ss.new_qmStaticStrength(self.human)
        self.assertTrue(other.endswith("_qmStaticStrength_p") and other != self.analysis, other)
        self.assertEqual(ss.qmStaticStrength_getHuman(other), self.human)
        self.assertEqual(ss.delete_qmStaticStrength(other), None)
        self.check_raises(ValueError, "Received a NULL Pointer in argument 1 of new_qmStaticStrength. "
                          "Expected _qcHuman_p.", ss.new_qmStaticStrength, "NULL")

    def test_activation_with_and_without_a_script(self):
        self.assertEqual(ss.qmStaticStrength_isActive(self.analysis), 0)
        self.assertEqual(ss.qmStaticStrength_activate(self.analysis), 1)
        self.assertEqual(ss.qmStaticStrength_isActive(self.analysis), 1)
        self.assertEqual(ss.qmStaticStrength_activate(self.analysis, "ignored = 1"), 0)
        self.assertEqual(ss.qmStaticStrength_run_script(self.analysis), None)
        self.assertEqual(ss.qmStaticStrength_deactivate(self.analysis), 1)
        self.assertEqual(ss.qmStaticStrength_deactivate(self.analysis), 1)
        self.assertEqual(ss.qmStaticStrength_isActive(self.analysis), 0)

    def test_script_runs_when_asked(self):
        import __main__
        __main__.ran = []
        ss.qmStaticStrength_activate(self.analysis, "ran.append(1)")
        ss.qmStaticStrength_run_script(self.analysis)
        ss.qmStaticStrength_deactivate(self.analysis)
        ss.qmStaticStrength_run_script(self.analysis)
        self.assertEqual(__main__.ran, [1])


# Every function that takes pointers: the types of its pointer arguments, then the rest.
A, S, J, V, H, R = ("_qmStaticStrength_p", "_qcSite_p", "_qcJoint_p", "_qVector_p", "_qcHuman_p",
                    "_loadWithOffset_p")
POINTER_ARGUMENTS = [
    ("loadWithOffset_local_get", (R,), ()), ("loadWithOffset_mass_get", (R,), ()),
    ("loadWithOffset_load_get", (R,), ()), ("loadWithOffset_type_get", (R,), ()),
    ("loadWithOffset_offset_get", (R,), ()), ("loadWithOffset_site_get", (R,), ()),
    ("qmStaticStrength_calcForcesAt", (A, V, V, V, V, V), ()),
    ("qmStaticStrength_setFMonJoint", (A, J, V, V), ()),
    ("qmStaticStrength_getSplitFactor", (A, J), (1, "waist")),
    ("qmStaticStrength_reportLoads", (A,), ()), ("qmStaticStrength_getHuman", (A,), ()),
    ("qmStaticStrength_getHandle", (H,), ()), ("qmStaticStrength_getStrategy", (A,), ()),
    ("qmStaticStrength_setStrategy", (A,), (0,)), ("qmStaticStrength_getGravity", (A, V), ()),
    ("qmStaticStrength_getSiteLoad", (A, S, V), ()), ("qmStaticStrength_getSiteWeight", (A, S), ()),
    ("qmStaticStrength_getLoadType", (A, S), ()), ("qmStaticStrength_getNthLoadSite", (A,), (0,)),
    ("qmStaticStrength_getNumLoads", (A,), ()), ("qmStaticStrength_getJointForces", (A, J, V, V), ()),
    ("qmStaticStrength_run_script", (A,), ()), ("qmStaticStrength_isActive", (A,), ()),
    ("qmStaticStrength_deactivate", (A,), ()), ("qmStaticStrength_activate", (A,), ()),
    ("qmStaticStrength_compute", (A,), ()), ("qmStaticStrength_setGravity", (A, V), ()),
    ("qmStaticStrength_reset", (A,), ()), ("qmStaticStrength_clear", (A,), ()),
    ("qmStaticStrength_removeLoad", (A, S), ()), ("qmStaticStrength_setLoad", (A, S, V), ()),
    ("qmStaticStrength_setWeightLoad", (A, S), (1.0,)),
    ("qmStaticStrength_getNumLoadsWithOffset", (A,), ()),
    ("qmStaticStrength_getNthLoadWithOffset", (A,), (0,)),
    ("qmStaticStrength_removeLoadWithOffset", (A, R), ()),
    ("qmStaticStrength_setLoadWithOffset", (A, S, V, V), ()),
    ("qmStaticStrength_setWeightLoadWithOffset", (A, S, V), (1.0,)),
    ("qmStaticStrength_getDefinedTorque", (A, J, V), ()),
    ("qmStaticStrength_getNthDefinedTorqueJoint", (A,), (0,)),
    ("qmStaticStrength_getNumDefinedTorques", (A,), ()),
    ("qmStaticStrength_removeDefinedTorque", (A, J), ()),
    ("qmStaticStrength_setDefinedTorque", (A, J, V), ()),
    ("delete_qmStaticStrength", (A,), ()), ("new_qmStaticStrength", (H,), ()),
]


class WrongArguments(AnalysisTest):

    def sound(self, kind):
        return {A: self.analysis, S: self.palm, J: self.knee, V: self.vector(), H: self.human, R: "NULL"}[kind]

    def test_pointer_of_another_type_is_refused_with_its_position(self):
        for name, kinds, rest in POINTER_ARGUMENTS:
            for position in range(len(kinds)):
                arguments = [self.sound(kind) for kind in kinds]
                arguments[position] = "_10_somethingElse_p"
                self.check_raises(TypeError, "Type error in argument %d of %s. Expected %s."
                                  % (position + 1, name, kinds[position]), getattr(ss, name),
                                  *(tuple(arguments) + rest))

    def test_text_that_is_no_pointer_is_refused(self):
        for name, kinds, rest in POINTER_ARGUMENTS:
            for text in ("", "x", "None"):
                self.check_raises(TypeError, "Type error in argument 1 of %s. Expected %s." % (name, kinds[0]),
                                  getattr(ss, name), *((text,) + tuple([self.sound(kind) for kind in kinds[1:]])
                                                       + rest))

    def test_joint_is_refused_where_a_site_belongs(self):
        self.check_raises(TypeError, "Type error in argument 2 of qmStaticStrength_getSiteLoad. "
                          "Expected _qcSite_p.", ss.qmStaticStrength_getSiteLoad, self.analysis, self.knee,
                          self.vector())

    def test_first_wrong_argument_is_the_one_that_is_told(self):
        self.check_raises(TypeError, "Type error in argument 2 of qmStaticStrength_setLoad. Expected _qcSite_p.",
                          ss.qmStaticStrength_setLoad, self.analysis, "x", "y")

    def test_null_vector_is_refused(self):
        for name, kinds, rest in POINTER_ARGUMENTS:
            for position in range(len(kinds)):
                if kinds[position] != V:
                    continue
                arguments = [self.sound(kind) for kind in kinds]
                arguments[position] = "NULL"
                self.check_raises(ValueError, "Received a NULL Pointer in argument %d of %s. Expected _qVector_p."
                                  % (position + 1, name), getattr(ss, name), *(tuple(arguments) + rest))

    def test_nothing_is_called_after_a_wrong_argument(self):
        self.check_raises(TypeError, None, ss.qmStaticStrength_setLoad, self.analysis, self.palm, "_10_x_p")
        self.assertEqual(ss.qmStaticStrength_getNumLoads(self.analysis), 0)

    def test_too_many_or_other_arguments_are_refused_by_name(self):
        for name, kinds, rest in POINTER_ARGUMENTS:
            sound = tuple([self.sound(kind) for kind in kinds]) + rest
            self.check_raises_beginning(TypeError, name + "() ", getattr(ss, name), *(sound + (1, 2, 3)))
            self.check_raises(TypeError, None, getattr(ss, name), *((None,) + sound[1:]))
        self.check_raises(TypeError, None, ss.qmStaticStrength_setStrategy, self.analysis, "0")
        self.check_raises(TypeError, None, ss.qmStaticStrength_setWeightLoad, self.analysis, self.palm, "1")
        self.check_raises(TypeError, None, ss.qmStaticStrength_activate, self.analysis, 5)

    def test_every_argument_that_has_no_default_is_required(self):
        for name, kinds, rest in POINTER_ARGUMENTS:
            sound = tuple([self.sound(kind) for kind in kinds]) + rest
            for count in range(len(sound)):
                self.check_raises_beginning(TypeError, name + "() ", getattr(ss, name), *sound[:count])

    def test_results_have_the_types_of_the_table(self):
        a, palm, vector = self.analysis, self.palm, self.vector(0, -1, 0)
        record = ss.qmStaticStrength_setLoadWithOffset(a, palm, vector, vector)
        ss.qmStaticStrength_setWeightLoad(a, palm, 2)
        hip = qc.qcFigure_findJoint(self.figure, "right_hip")
        for kind, results in (
                (int, (ss.loadWithOffset_local_get(record), ss.qmStaticStrength_getStrategy(a),
                       ss.qmStaticStrength_getSiteLoad(a, palm, vector), ss.qmStaticStrength_getNumLoads(a),
                       ss.qmStaticStrength_getJointForces(a, hip, vector, vector), ss.qmStaticStrength_isActive(a),
                       ss.qmStaticStrength_deactivate(a), ss.qmStaticStrength_compute(a),
                       ss.qmStaticStrength_setLoad(a, palm, vector), ss.qmStaticStrength_setWeightLoad(a, palm, 2),
                       ss.qmStaticStrength_getNumLoadsWithOffset(a),
                       ss.qmStaticStrength_setDefinedTorque(a, hip, vector),
                       ss.qmStaticStrength_getDefinedTorque(a, hip, vector),
                       ss.qmStaticStrength_getNumDefinedTorques(a),
                       ss.qmStaticStrength_removeDefinedTorque(a, hip), ss.qmStaticStrength_removeLoad(a, palm),
                       ss.qmStaticStrength_removeLoadWithOffset(a, "NULL"), ss.qmStaticStrength_reset(a))),
                (float, (ss.qmStaticStrength_getSplitFactor(a, hip, 2, ""), ss.qmStaticStrength_getGravity(a, vector),
                         ss.qmStaticStrength_getSiteWeight(a, palm))),
                (str, (ss.qmStaticStrength_getHuman(a), ss.qmStaticStrength_getNthLoadSite(a, 0),
                       ss.qmStaticStrength_getStrategyName(0), ss.qmStaticStrength_reportLoads(a, 1)))):
            for number, result in enumerate(results):
                self.assertEqual((number, type(result)), (number, kind))
        record = ss.qmStaticStrength_setWeightLoadWithOffset(a, palm, vector, 2)
        self.assertEqual(type(ss.loadWithOffset_mass_get(record)), float)

    def test_integer_too_large_is_refused(self):
        for huge in (2 ** 31, -2 ** 31 - 1, 2 ** 80):
            self.check_raises(OverflowError, None, ss.qmStaticStrength_getNthLoadSite, self.analysis, huge)
            self.check_raises(OverflowError, None, ss.qmStaticStrength_setStrategy, self.analysis, huge)

    def test_text_with_a_zero_byte_is_refused(self):
        for text in ("NULL\0", "_10_qcSite_p\0", "\0"):
            try:
                ss.qmStaticStrength_getLoadType(self.analysis, text)
            except (TypeError, ValueError):
                continue
            self.fail("a zero byte was taken")

    def test_very_long_texts_are_refused_or_read_whole(self):
        long_text = "x" * 1000000
        self.check_raises(TypeError, None, ss.qmStaticStrength_getLoadType, self.analysis, long_text)
        self.check_raises(TypeError, None, ss.qmStaticStrength_getLoadType, self.analysis, "_10_" + long_text)
        self.assertEqual(ss.qmStaticStrength_activate(self.analysis, "#" + long_text), 1)
        ss.qmStaticStrength_run_script(self.analysis)
        ss.qmStaticStrength_deactivate(self.analysis)


class Memory(AnalysisTest):

    def test_reference_counts_are_stable_over_100_000_calls(self):
        vector, wrong = self.vector(0, -1, 0), "_10_somethingElse_p"
        tracked = (self.analysis, self.palm, vector, wrong, None)
        before = [sys.getrefcount(one) for one in tracked]
        for i in range(100000):
            ss.qmStaticStrength_setLoad(self.analysis, self.palm, vector)
            ss.qmStaticStrength_getLoadType(self.analysis, self.palm)
            ss.qmStaticStrength_getNthLoadSite(self.analysis, 0)
            try:
                ss.qmStaticStrength_getSiteWeight(self.analysis, wrong)
            except TypeError:
                pass
        after = [sys.getrefcount(one) for one in tracked]
        for a, b in zip(before, after):
            self.assertTrue(abs(a - b) < 100, (before, after))


if __name__ == "__main__":
    main()
