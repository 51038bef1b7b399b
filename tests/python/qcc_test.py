"""libqcc: its table, wrong arguments, vectors, scenes, humans, figures and their parts."""
import errno
import json
import math
import os

import libqcc as qc
import libqmSSTRc as ss
from qcc_support import DEFAULT_HUMAN, HostTest, PYTHON_2, native_text, single
from small_figure import small_body
from support import TestCase, main

VECTOR, SCENE, HUMAN, FIGURE = "_qVector_p", "_qcScene_p", "_qcHuman_p", "_qcFigure_p"
SEGMENT, SITE, JOINT, OBJECT = "_qcSegment_p", "_qcSite_p", "_qcJoint_p", "_qcObject_p"

# Every function in the table's order, with a pointer type or a good value for each argument.
FUNCTIONS = (
    ("new_qVector", (1.0, 2.0, 3.0)), ("delete_qVector", (VECTOR,)), ("qVector_get", (VECTOR,)),
    ("qVector_set", (VECTOR, 1.0, 2.0, 3.0)),
    ("qcScene_open", ("scene.json",)), ("qcScene_new", ()), ("qcScene_addHuman", (SCENE, "human.urdf", "man")),
    ("qcScene_addPosedHuman", (SCENE, "{}")), ("qcScene_getHumans", (SCENE,)),
    ("qcScene_save", (SCENE, "scene.json")), ("qcScene_getGravity", (SCENE,)),
    ("qcScene_setGravity", (SCENE, 0.0, -980.665, 0.0)), ("qcScene_getUnstoredStrategy", (SCENE, HUMAN)),
    ("qcScene_setUnstoredStrategy", (SCENE, HUMAN, "hands-and-knees")), ("qcScene_close", (SCENE,)),
    ("qcHuman_getName", (HUMAN,)), ("qcHuman_getSex", (HUMAN,)), ("qcHuman_setSex", (HUMAN, "male")),
    ("qcHuman_getStature", (HUMAN,)), ("qcHuman_setStature", (HUMAN, 170.0)), ("qcHuman_setMass", (HUMAN, 70000.0)),
    ("qcHuman_getFigure", (HUMAN,)), ("qcHuman_getFootSite", (HUMAN, 0)), ("qcHuman_getHandSite", (HUMAN, 0)),
    ("qcHuman_getKneeJoint", (HUMAN, 0)), ("qcHuman_getAnkleJoint", (HUMAN, 0)), ("qcHuman_getHipJoint", (HUMAN, 0)),
    ("qcHuman_getPelvisSite", (HUMAN,)), ("qcHuman_getWaistJoint", (HUMAN,)),
    ("qcFigure_getName", (FIGURE,)), ("qcFigure_getSegments", (FIGURE,)), ("qcFigure_getSites", (FIGURE,)),
    ("qcFigure_getJoints", (FIGURE,)), ("qcFigure_findSegment", (FIGURE, "l5")),
    ("qcFigure_findJoint", (FIGURE, "waist")), ("qcFigure_findSite", (FIGURE, "l5.distal")),
    ("qcFigure_getReferenceSite", (FIGURE,)), ("qcFigure_getPosed", (FIGURE,)),
    ("qcFigure_setRoot", (FIGURE, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0)),
    ("qcFigure_isPosed", (FIGURE,)), ("qcFigure_getRoot", (FIGURE,)), ("qcFigure_standOnFloor", (FIGURE,)),
    ("qcFigure_isOnFloor", (FIGURE,)), ("qcFigure_getBodyMass", (FIGURE,)),
    ("qcFigure_getBodyCenterOfMass", (FIGURE,)), ("qcFigure_setAngles", (FIGURE, b"", 0, 1.0)),
    ("qcFigure_getJointVectors", (FIGURE, "key", 2, b"", 0)), ("qcFigure_removeJointProperty", (FIGURE, "key")),
    ("qcSegment_getName", (SEGMENT,)), ("qcSegment_getFullName", (SEGMENT,)), ("qcSegment_getMass", (SEGMENT,)),
    ("qcSegment_setMass", (SEGMENT, 1.0)), ("qcSegment_getCenterOfMass", (SEGMENT,)),
    ("qcSegment_getTransform", (SEGMENT,)), ("qcSegment_getSites", (SEGMENT,)),
    ("qcSegment_getAttachmentSite", (SEGMENT,)),
    ("qcSite_getName", (SITE,)), ("qcSite_getFullName", (SITE,)), ("qcSite_getSegment", (SITE,)),
    ("qcSite_getJoints", (SITE,)), ("qcSite_getTransform", (SITE,)), ("qcSite_getSecondTransform", (SITE,)),
    ("qcJoint_getName", (JOINT,)), ("qcJoint_getFullName", (JOINT,)), ("qcJoint_getSites", (JOINT,)),
    ("qcJoint_getInboardSite", (JOINT,)), ("qcJoint_getNumAngles", (JOINT,)), ("qcJoint_getAngle", (JOINT, 1)),
    ("qcJoint_setAngle", (JOINT, 1, 0.5)),
    ("qcJoint_getAngleLimits", (JOINT, 1)), ("qcJoint_getAngleName", (JOINT, 1)),
    ("qcObject_getProperty", (OBJECT, "key")), ("qcObject_setProperty", (OBJECT, "key", 1.0)),
    ("qcObject_removeProperty", (OBJECT, "key")), ("qcObject_getTimestamp", (OBJECT,)),
    ("qcSim_step", (1,)), ("qcSim_getBound", ()), ("qcMessages_take", ()),
)


def is_pointer(argument):
    return isinstance(argument, str) and argument.startswith("_")


def with_argument(arguments, position, wrong):
    """The arguments with another one at a position, and pointers of the right types before and behind it."""
    given = [is_pointer(argument) and "_1000" + argument or argument for argument in arguments]
    given[position] = wrong
    return tuple(given)


class Table(TestCase):

    def test_public_names_are_the_functions_and_nothing_else(self):
        public = [name for name in dir(qc) if not name.startswith("_")]
        self.assertEqual(sorted(public), sorted([name for name, arguments in FUNCTIONS]))

    def test_module_has_no_documentation_of_its_own(self):
        self.assertEqual(qc.__doc__, None)

    def test_function_tells_its_signature_in_one_line(self):
        for name, arguments in FUNCTIONS:
            doc = getattr(qc, name).__doc__
            self.assertTrue(doc.startswith("(") and ") -> " in doc and "\n" not in doc, (name, doc))
            signature = doc[1:doc.index(") -> ")]
            self.assertEqual(len([part for part in signature.split(", ") if part]), len(arguments), (name, doc))

    def test_wrong_number_of_arguments_names_the_function(self):
        for name, arguments in FUNCTIONS:
            function = getattr(qc, name)
            self.check_raises_beginning(TypeError, name + "() ", function, *(arguments + (1,)))
            if arguments:
                self.check_raises_beginning(TypeError, name + "() ", function)
                self.check_raises_beginning(TypeError, name + "() ", function, *arguments[:-1])

    def test_pointer_of_another_type_is_refused_in_the_analysis_s_words(self):
        for name, arguments in FUNCTIONS:
            for position, expected in enumerate(arguments):
                if not is_pointer(expected):
                    continue
                for wrong in ("_1000_char_p", "_1000", "no pointer", ""):
                    given = with_argument(arguments, position, wrong)
                    self.check_raises(TypeError, "Type error in argument %d of %s. Expected %s."
                                      % (position + 1, name, expected), getattr(qc, name), *given)

    def test_null_is_refused_where_an_object_is_needed(self):
        for name, arguments in FUNCTIONS:
            if name == "delete_qVector":
                continue
            for position, expected in enumerate(arguments):
                if not is_pointer(expected):
                    continue
                given = with_argument(arguments, position, "NULL")
                self.check_raises(ValueError, "Received a NULL Pointer in argument %d of %s. Expected %s."
                                  % (position + 1, name, expected), getattr(qc, name), *given)

    def test_pointer_that_is_no_text_names_the_function(self):
        for name, arguments in FUNCTIONS:
            if arguments and is_pointer(arguments[0]):
                for wrong in (None, 1, 1.5, []):
                    self.check_raises_beginning(TypeError, name + "() argument 1 must be ", getattr(qc, name),
                                                *((wrong,) + arguments[1:]))

    def test_other_arguments_of_a_wrong_type_are_refused(self):
        for name, arguments in FUNCTIONS:
            for position, good in enumerate(arguments):
                if is_pointer(good) or name == "qcObject_setProperty" and position == 2:
                    continue
                given = arguments[:position] + ([],) + arguments[position + 1:]
                self.check_raises(TypeError, None, getattr(qc, name), *given)


class Vectors(TestCase):

    def test_vector_is_made_read_written_and_deleted(self):
        vector = qc.new_qVector(1.5, -2, 0.1)
        self.assertTrue(vector.startswith("_") and vector.endswith("_qVector_p"))
        self.assertEqual(qc.qVector_get(vector), (1.5, -2.0, single(0.1)))
        self.assertEqual([type(number) for number in qc.qVector_get(vector)], [float] * 3)
        self.assertEqual(qc.qVector_set(vector, 4, 5.25, 6), 1)
        self.assertEqual(qc.qVector_get(vector), (4.0, 5.25, 6.0))
        self.assertEqual(qc.delete_qVector(vector), None)

    def test_deleting_null_does_nothing(self):
        self.assertEqual(qc.delete_qVector("NULL"), None)

    def test_deleting_a_vector_twice_is_refused(self):
        vector = qc.new_qVector(0, 0, 0)
        qc.delete_qVector(vector)
        self.check_raises(ValueError, "delete_qVector: this vector is not one that new_qVector made, or it has been "
                          "deleted already.", qc.delete_qVector, vector)

    # The largest single is 3.4028234663852886e38; 3.4028235e38, as it is commonly written, rounds to it.
    def test_number_beyond_single_precision_is_refused_with_its_position(self):
        vector = qc.new_qVector(3.4028235e38, -3.4028235e38, 1e-60)
        largest = 3.4028234663852886e38
        self.assertEqual(qc.qVector_get(vector), (largest, -largest, 0.0))
        self.check_raises(ValueError, "Argument 3 of new_qVector is too large for single precision: -1e+39.",
                          qc.new_qVector, 0, 0, -1e39)
        self.check_raises(ValueError, "Argument 2 of qVector_set is too large for single precision: 3.40282357e+38.",
                          qc.qVector_set, vector, 3.4028235677973366e38, 0, 0)
        self.assertEqual(qc.qVector_get(vector), (largest, -largest, 0.0))
        qc.delete_qVector(vector)

    def test_infinities_and_not_a_number_pass(self):
        infinite = float("inf")
        vector = qc.new_qVector(infinite, -infinite, float("nan"))
        x, y, z = qc.qVector_get(vector)
        self.assertEqual((x, y), (infinite, -infinite))
        self.assertTrue(math.isnan(z))
        qc.delete_qVector(vector)

    def test_analysis_writes_into_a_vector(self):
        scene = qc.qcScene_new()
        analysis = ss.new_qmStaticStrength(qc.qcScene_addPosedHuman(scene, small_body().text()))
        gravity = qc.new_qVector(0, 0, 0)
        ss.qmStaticStrength_getGravity(analysis, gravity)
        self.assertEqual(qc.qVector_get(gravity), (0.0, single(-980.665), 0.0))
        qc.delete_qVector(gravity)
        qc.qcScene_close(scene)


class Scenes(HostTest):

    def test_new_scene_has_no_humans(self):
        self.assertTrue(self.scene.endswith("_qcScene_p"))
        self.assertEqual(qc.qcScene_getHumans(self.scene), [])

    def test_humans_are_listed_in_the_order_of_their_arrival(self):
        humans = [self.posed_human("one"), self.default_human("two"), self.posed_human("three")]
        self.assertEqual(len(set(humans)), 3)
        self.assertEqual(qc.qcScene_getHumans(self.scene), humans)

    def test_human_of_a_posed_figure_file_is_added(self):
        with_name = self.path("body.figure.json")
        stream = open(with_name, "w")
        stream.write(small_body("inside").text())
        stream.close()
        human = qc.qcScene_addHuman(self.scene, with_name, "")
        self.assertEqual(qc.qcFigure_getName(qc.qcHuman_getFigure(human)), "inside")
        human = qc.qcScene_addHuman(self.scene, with_name, "outside")
        self.assertEqual(qc.qcFigure_getName(qc.qcHuman_getFigure(human)), "outside")

    def test_human_that_cannot_be_added_is_null_after_an_error_message(self):
        missing = self.path("missing.urdf")
        self.assertEqual(qc.qcScene_addHuman(self.scene, missing, "man"), "NULL")
        self.assertEqual(self.take_one_error(), missing + ": cannot be read: " + os.strerror(errno.ENOENT) + ".")
        self.assertEqual(qc.qcScene_addPosedHuman(self.scene, "{"), "NULL")
        self.assertNotEqual(self.take_one_error(), "")
        self.posed_human("man")
        self.assertEqual(qc.qcScene_addPosedHuman(self.scene, small_body("man").text()), "NULL")
        self.assertEqual(self.take_one_error(),
                         'the scene has a human named "man" already; give this one another name.')
        self.assertEqual(len(qc.qcScene_getHumans(self.scene)), 1)

    def test_scene_that_cannot_be_opened_is_null_after_an_error_message(self):
        missing = self.path("missing.json")
        self.assertEqual(qc.qcScene_open(missing), "NULL")
        self.assertEqual(self.take_one_error(), missing + ": cannot be read: " + os.strerror(errno.ENOENT) + ".")

    def test_scene_that_cannot_be_saved_is_0_after_an_error_message(self):
        target = os.path.join(self.folder, "no folder", "scene.json")
        self.assertEqual(qc.qcScene_save(self.scene, target), 0)
        self.assertTrue(self.take_one_error().startswith(target + ": "))

    def test_saved_scene_opens_as_it_was(self):
        figure = qc.qcHuman_getFigure(self.default_human())
        knee = qc.qcFigure_findJoint(figure, "left_knee")
        self.assertEqual(qc.qcJoint_setAngle(knee, 1, 0.1), 1)
        self.assertEqual(qc.qcFigure_setRoot(figure, 1, 2, 3, 4, 5, 6), 1)
        qc.qcObject_setProperty(figure, "Note", ["a", 0.5, (1, 2, 3), [], ()])
        qc.qcObject_setProperty(self.scene, "Title", "lifting")
        first, second = self.path("first.json"), self.path("second.json")
        self.assertEqual(qc.qcScene_save(self.scene, first), 1)

        again = qc.qcScene_open(first)
        human = qc.qcScene_getHumans(again)[0]
        figure = qc.qcHuman_getFigure(human)
        self.assertEqual(qc.qcFigure_getName(figure), "worker")
        self.assertEqual(qc.qcJoint_getAngle(qc.qcFigure_findJoint(figure, "left_knee"), 1), 0.1)
        self.assertEqual(qc.qcObject_getProperty(figure, "Note"), ["a", 0.5, (1.0, 2.0, 3.0), [], ()])
        self.assertEqual(qc.qcObject_getProperty(again, "Title"), "lifting")
        self.assertEqual(qc.qcScene_save(again, second), 1)
        self.assertEqual(read(second), read(first))
        qc.qcScene_close(again)

    def test_closed_scene_is_refused(self):
        scene, self.scene = self.scene, None
        self.assertEqual(qc.qcScene_close(scene), None)
        for name, arguments in FUNCTIONS:
            if SCENE in arguments:
                self.check_raises(ValueError, name + ": this scene is not open; it may have been closed already.",
                                  getattr(qc, name), *with_argument(arguments, 0, scene))

    def test_other_scenes_stay_usable_when_one_is_closed(self):
        kept = self.posed_figure()
        other = qc.qcScene_new()
        analysis = ss.qmStaticStrength_getHandle(qc.qcScene_addPosedHuman(other, small_body().text()))
        self.assertEqual(ss.qmStaticStrength_compute(analysis), 1)
        qc.qcScene_close(other)
        self.assertEqual(qc.qcFigure_getName(kept), "man")
        self.assertEqual(len(qc.qcScene_getHumans(self.scene)), 1)

    def test_file_s_name_may_have_any_bytes(self):
        for name in (b"\xc3\xa9t\xc3\xa9.json", b"\xff.json"):
            path = self.path(native_text(name))
            self.assertEqual(qc.qcScene_save(self.scene, path), 1)
            self.assertTrue(os.path.exists(path))
            again = qc.qcScene_open(path)
            self.assertNotEqual(again, "NULL")
            qc.qcScene_close(again)

    def test_file_s_name_comes_back_unchanged_in_a_message(self):
        path = self.path(native_text(b"\xff \xc3\xa9.json"))
        self.assertEqual(qc.qcScene_open(path), "NULL")
        self.assertEqual(self.take_one_error(), path + ": cannot be read: " + os.strerror(errno.ENOENT) + ".")

    def test_file_s_name_may_be_of_python_s_other_text_type(self):
        name = self.path("scene.json")
        other = name.decode("ascii") if PYTHON_2 else name.encode("ascii")
        self.assertEqual(qc.qcScene_save(self.scene, other), 1)
        self.assertTrue(os.path.exists(name))

    def test_file_s_name_with_a_zero_byte_is_refused(self):
        refusal = TypeError if PYTHON_2 else ValueError
        self.check_raises(refusal, None, qc.qcScene_open, "a\0b")
        self.check_raises(refusal, None, qc.qcScene_save, self.scene, "a\0b")


class Humans(HostTest):

    def test_human_tells_its_parts_by_side(self):
        human = self.posed_human()
        self.assertTrue(human.endswith("_qcHuman_p"))
        for side, prefix in ((0, "right_"), (1, "left_")):
            self.assertEqual(qc.qcSite_getFullName(qc.qcHuman_getFootSite(human, side)), "man." + prefix + "foot.sole")
            self.assertEqual(qc.qcSite_getFullName(qc.qcHuman_getHandSite(human, side)),
                             "man.%shand.%spalmcenter" % (prefix, prefix))
            for function, joint in ((qc.qcHuman_getKneeJoint, "knee"), (qc.qcHuman_getAnkleJoint, "ankle"),
                                    (qc.qcHuman_getHipJoint, "hip")):
                self.assertEqual(qc.qcJoint_getName(function(human, side)), prefix + joint)
        self.assertEqual(qc.qcSite_getFullName(qc.qcHuman_getPelvisSite(human)), "man.lower_torso.proximal")
        self.assertEqual(qc.qcJoint_getName(qc.qcHuman_getWaistJoint(human)), "waist")

    def test_role_that_nobody_plays_is_null(self):
        body = small_body()
        body.document["left"]["foot_site"] = None
        body.document["waist"] = None
        human = qc.qcScene_addPosedHuman(self.scene, body.text())
        self.assertEqual(qc.qcHuman_getFootSite(human, 1), "NULL")
        self.assertEqual(qc.qcHuman_getWaistJoint(human), "NULL")

    def test_side_is_0_or_1(self):
        human = self.posed_human()
        for name, arguments in FUNCTIONS:
            if arguments != (HUMAN, 0):
                continue
            for side in (-1, 2, 1000000):
                self.check_raises(ValueError, "Argument 2 of %s is a side: expected 0 (right) or 1 (left), found %d."
                                  % (name, side), getattr(qc, name), human, side)

    def test_default_human_has_every_role(self):
        human = self.default_human()
        for side in (0, 1):
            for function in (qc.qcHuman_getFootSite, qc.qcHuman_getHandSite, qc.qcHuman_getKneeJoint,
                             qc.qcHuman_getAnkleJoint, qc.qcHuman_getHipJoint):
                self.assertNotEqual(function(human, side), "NULL")

    def test_object_has_one_pointer_string_in_both_modules(self):
        human = self.posed_human()
        hand = qc.qcHuman_getHandSite(human, 1)
        knee = qc.qcHuman_getKneeJoint(human, 0)
        analysis = self.analysis_of(human)
        self.assertEqual(ss.qmStaticStrength_getHuman(analysis), human)
        vector = qc.new_qVector(0, -1, 0)
        ss.qmStaticStrength_setLoad(analysis, hand, vector)
        self.assertEqual(ss.qmStaticStrength_getNthLoadSite(analysis, 0), hand)
        ss.qmStaticStrength_setDefinedTorque(analysis, knee, vector)
        self.assertEqual(ss.qmStaticStrength_getNthDefinedTorqueJoint(analysis, 0), knee)
        record = ss.qmStaticStrength_setLoadWithOffset(analysis, hand, vector, vector)
        self.assertEqual(ss.loadWithOffset_site_get(record), hand)
        self.assertEqual(qc.qVector_get(ss.loadWithOffset_load_get(record)), (0.0, -1.0, 0.0))
        qc.delete_qVector(vector)

    def test_joint_of_the_host_is_refused_as_a_site_by_both_modules(self):
        knee = qc.qcHuman_getKneeJoint(self.posed_human(), 0)
        self.check_raises(TypeError, "Type error in argument 1 of qcSite_getName. Expected _qcSite_p.",
                          qc.qcSite_getName, knee)
        self.check_raises(TypeError, "Type error in argument 2 of qmStaticStrength_getSiteWeight. Expected _qcSite_p.",
                          ss.qmStaticStrength_getSiteWeight, "NULL", knee)


class Figures(HostTest):

    def test_parts_are_listed_in_the_figure_s_order(self):
        document = small_body().document
        figure = self.posed_figure()
        self.assertEqual([qc.qcSegment_getName(s) for s in qc.qcFigure_getSegments(figure)],
                         [s["name"] for s in document["segments"]])
        self.assertEqual([qc.qcSite_getFullName(s) for s in qc.qcFigure_getSites(figure)],
                         ["man." + s["key"] for s in document["sites"]])
        self.assertEqual([qc.qcJoint_getName(j) for j in qc.qcFigure_getJoints(figure)],
                         [j["name"] for j in document["joints"]])

    def test_parts_are_found_by_name(self):
        figure = self.posed_figure()
        self.assertEqual(qc.qcSegment_getFullName(qc.qcFigure_findSegment(figure, "l5")), "man.l5")
        self.assertEqual(qc.qcJoint_getFullName(qc.qcFigure_findJoint(figure, "waist")), "man.waist")
        self.assertEqual(qc.qcSite_getFullName(qc.qcFigure_findSite(figure, "l5.distal")), "man.l5.distal")

    def test_part_that_is_not_there_is_null(self):
        figure = self.posed_figure()
        self.assertEqual(qc.qcFigure_findSegment(figure, "tail"), "NULL")
        self.assertEqual(qc.qcFigure_findJoint(figure, ""), "NULL")
        for key in ("distal", "l5", "l5.", "man.l5.distal", ""):
            self.assertEqual(qc.qcFigure_findSite(figure, key), "NULL")

    def test_figure_tells_its_reference_site(self):
        figure = self.posed_figure()
        self.assertEqual(qc.qcFigure_getReferenceSite(figure),
                         qc.qcFigure_findSite(figure, "lower_torso.balance_point"))

    def test_posed_text_makes_the_same_figure_again(self):
        figure = self.posed_figure()
        qc.qcObject_setProperty(figure, "Note", "kept")
        text = qc.qcFigure_getPosed(figure)
        self.assertEqual(type(text), str)
        self.assertEqual(json.loads(text)["properties"], [[["figure"], {"Note": ["s", "kept"]}]])
        other = qc.qcScene_new()
        again = qc.qcHuman_getFigure(qc.qcScene_addPosedHuman(other, text))
        self.assertEqual(qc.qcObject_getProperty(again, "Note"), "kept")
        self.assertEqual(qc.qcFigure_getPosed(again), text)
        qc.qcScene_close(other)

    # JSON has no number that is not finite.
    def test_posed_text_that_cannot_be_written_is_none_after_an_error_message(self):
        figure = self.posed_figure()
        qc.qcSegment_setMass(qc.qcFigure_findSegment(figure, "l5"), float("nan"))
        self.assertEqual(qc.qcFigure_getPosed(figure), None)
        self.assertTrue(self.take_one_error().startswith("figure man cannot be written: "))

    # A quarter turn about y, the axis that points up, turns x (left) into -z (backward): row 0 of the
    # root's transform. The cosine of the angle nearest to a quarter turn is below 1e-7, half a unit in the
    # last place of 1.
    def test_root_is_placed_and_turned(self):
        figure = qc.qcHuman_getFigure(self.default_human())
        root = qc.qcFigure_findSegment(figure, "lower_torso")
        self.assertEqual(qc.qcFigure_setRoot(figure, 10, 20.5, -30, 0, 90, 0), 1)
        rows = qc.qcSegment_getTransform(root)
        self.assertEqual(rows[3], (10.0, 20.5, -30.0, 1.0))
        for found, expected in zip(rows[0], (0, 0, -1, 0)):
            self.assertTrue(abs(found - expected) < 1e-7, rows[0])

    def test_root_out_of_reach_is_0_after_an_error_message(self):
        figure = qc.qcHuman_getFigure(self.default_human())
        root = qc.qcFigure_findSegment(figure, "lower_torso")
        before = qc.qcSegment_getTransform(root)
        self.assertEqual(qc.qcFigure_setRoot(figure, 2e5, 0, 0, 0, 0, 0), 0)
        self.assertTrue(self.take_one_error().startswith("figure worker: expected a root position within "))
        self.assertEqual(qc.qcFigure_setRoot(figure, 0, 0, 0, 0, float("nan"), 0), 0)
        self.assertTrue(self.take_one_error().startswith("figure worker: expected a turn "))
        self.assertEqual(qc.qcSegment_getTransform(root), before)


class Parts(HostTest):

    def test_segment_tells_its_names_mass_and_place(self):
        segment = qc.qcFigure_findSegment(self.posed_figure(), "t8")
        self.assertTrue(segment.endswith("_qcSegment_p"))
        self.assertEqual(qc.qcSegment_getName(segment), "t8")
        self.assertEqual(qc.qcSegment_getFullName(segment), "man.t8")
        self.assertEqual(qc.qcSegment_getMass(segment), 10000.0)
        self.assertEqual(qc.qcSegment_getCenterOfMass(segment), (0.0, 10.0, 0.0))
        self.assertEqual(qc.qcSegment_getTransform(segment), ((1.0, 0.0, 0.0, 0.0), (0.0, 1.0, 0.0, 0.0),
                                                              (0.0, 0.0, 1.0, 0.0), (0.0, 110.0, 0.0, 1.0)))
        self.assertEqual(set([type(number) for row in qc.qcSegment_getTransform(segment) for number in row]),
                         set([float]))

    def test_segment_lists_its_sites_and_tells_its_attachment(self):
        figure = self.posed_figure()
        segment = qc.qcFigure_findSegment(figure, "t8")
        sites = [qc.qcFigure_findSite(figure, key) for key in ("t8.proximal", "t8.distal")]
        self.assertEqual(qc.qcSegment_getSites(segment), sites)
        self.assertEqual(qc.qcSegment_getAttachmentSite(segment), sites[0])

    def test_root_segment_has_no_attachment(self):
        figure = qc.qcHuman_getFigure(self.default_human())
        self.assertEqual(qc.qcSegment_getAttachmentSite(qc.qcFigure_findSegment(figure, "lower_torso")), "NULL")

    def test_mass_is_set_in_single_precision(self):
        segment = qc.qcFigure_findSegment(self.posed_figure(), "t8")
        for grams in (1234.5, 0.1, 0, -1):
            self.assertEqual(qc.qcSegment_setMass(segment, grams), None)
            self.assertEqual(qc.qcSegment_getMass(segment), single(grams))
        self.check_raises(ValueError, "Argument 2 of qcSegment_setMass is too large for single precision: 1e+200.",
                          qc.qcSegment_setMass, segment, 1e200)
        self.assertEqual(qc.qcSegment_getMass(segment), -1.0)

    def test_site_tells_its_names_segment_and_joints(self):
        figure = self.posed_figure()
        site = qc.qcFigure_findSite(figure, "t8.distal")
        self.assertTrue(site.endswith("_qcSite_p"))
        self.assertEqual(qc.qcSite_getName(site), "distal")
        self.assertEqual(qc.qcSite_getFullName(site), "man.t8.distal")
        self.assertEqual(qc.qcSite_getSegment(site), qc.qcFigure_findSegment(figure, "t8"))
        self.assertEqual(qc.qcSite_getJoints(site), [qc.qcFigure_findJoint(figure, "solar_plexus")])
        self.assertEqual(qc.qcSite_getJoints(qc.qcFigure_findSite(figure, "left_foot.sole")), [])

    def test_site_tells_its_two_transforms(self):
        body = small_body()
        hip = [site for site in body.document["sites"] if site["key"] == "lower_torso.left_hip"][0]
        hip["second_transform"] = [[0, 1, 0, 0], [0, 0, 1, 0], [1, 0, 0, 0], [10, 85.5, 1, 1]]
        figure = qc.qcHuman_getFigure(qc.qcScene_addPosedHuman(self.scene, body.text()))
        site = qc.qcFigure_findSite(figure, "lower_torso.left_hip")
        self.assertEqual(qc.qcSite_getTransform(site), ((1.0, 0.0, 0.0, 0.0), (0.0, 1.0, 0.0, 0.0),
                                                        (0.0, 0.0, 1.0, 0.0), (10.0, 90.0, 0.0, 1.0)))
        self.assertEqual(qc.qcSite_getSecondTransform(site), ((0.0, 1.0, 0.0, 0.0), (0.0, 0.0, 1.0, 0.0),
                                                              (1.0, 0.0, 0.0, 0.0), (10.0, 85.5, 1.0, 1.0)))

    def test_joint_tells_its_names_sites_and_angles(self):
        figure = self.posed_figure()
        joint = qc.qcFigure_findJoint(figure, "waist")
        sites = [qc.qcFigure_findSite(figure, key) for key in ("lower_torso.distal", "l5.proximal")]
        self.assertTrue(joint.endswith("_qcJoint_p"))
        self.assertEqual(qc.qcJoint_getName(joint), "waist")
        self.assertEqual(qc.qcJoint_getFullName(joint), "man.waist")
        self.assertEqual(qc.qcJoint_getSites(joint), sites)
        self.assertEqual(qc.qcJoint_getInboardSite(joint), sites[0])
        self.assertEqual(qc.qcJoint_getNumAngles(joint), 2)
        self.assertEqual([qc.qcJoint_getAngle(joint, i) for i in (0, 1, 2, 3, -1)], [0.0, 0.25, -0.5, 0.0, 0.0])

    def test_angle_is_kept_as_it_was_set(self):
        joint = qc.qcFigure_findJoint(self.posed_figure(), "waist")
        self.assertEqual(qc.qcJoint_setAngle(joint, 2, 0.1), 1)
        self.assertEqual(qc.qcJoint_getAngle(joint, 2), 0.1)
        self.assertEqual(qc.qcJoint_getAngle(joint, 1), 0.25)

    def test_angle_moves_the_figure(self):
        figure = qc.qcHuman_getFigure(self.default_human())
        ankle = qc.qcFigure_findSite(figure, "left_foot.proximal")
        before = qc.qcSite_getTransform(ankle)[3]
        self.assertEqual(qc.qcJoint_setAngle(qc.qcFigure_findJoint(figure, "left_knee"), 1, math.pi / 2), 1)
        after = qc.qcSite_getTransform(ankle)[3]
        # the lower leg, which hung, points backward now: its end went up and back by its length
        self.assertTrue(after[1] > before[1] + 20 and after[2] < before[2] - 20, (before, after))

    # The knee of the default human bends by 0 to 135 degrees.
    def test_angle_outside_its_limits_is_0_after_an_error_message(self):
        joint = qc.qcFigure_findJoint(qc.qcHuman_getFigure(self.default_human()), "left_knee")
        self.assertEqual(qc.qcJoint_setAngle(joint, 1, 0.5), 1)
        self.assertEqual(qc.qcJoint_setAngle(joint, 1, math.pi), 0)
        text = self.take_one_error()
        self.assertTrue(text.startswith("joint worker.left_knee: ") and "limits, 0 to 135 degrees" in text, text)
        for i, radians in ((0, 0.0), (2, 0.0), (1, float("nan")), (1, float("inf"))):
            self.assertEqual(qc.qcJoint_setAngle(joint, i, radians), 0)
            self.assertTrue(self.take_one_error().startswith("joint worker.left_knee: "))
        self.assertEqual(qc.qcJoint_getAngle(joint, 1), 0.5)

    def test_angle_at_its_limit_can_be_read_and_set_again(self):
        joint = qc.qcFigure_findJoint(qc.qcHuman_getFigure(self.default_human()), "left_knee")
        self.assertEqual(qc.qcJoint_setAngle(joint, 1, math.radians(135)), 1)
        self.assertEqual(qc.qcJoint_setAngle(joint, 1, qc.qcJoint_getAngle(joint, 1)), 1)


def read(path):
    stream = open(path, "rb")
    text = stream.read()
    stream.close()
    return text


if __name__ == "__main__":
    main()
