"""libqcc: named properties of every kind of object, and time stamps."""
import math

import libqcc as qc
import libqmSSTRc as ss
from qcc_support import HostTest, PYTHON_2, native_text, single
from small_figure import small_body
from support import main

REFUSAL = ("Type error in argument 3 of qcObject_setProperty. Expected a float, a text, a tuple of three numbers, "
           "a list of such values or (), found %s.")
INFINITE = float("inf")


class Plain(object):
    pass


def kinds(value):
    """The value's types, nested as it is."""
    if isinstance(value, (list, tuple)):
        return (type(value), [kinds(item) for item in value])
    return type(value)


def nested(levels):
    """Lists in lists."""
    value = []
    for level in range(levels - 1):
        value = [value]
    return value


class Properties(HostTest):

    def setUp(self):
        HostTest.setUp(self)
        self.human = self.posed_human()
        self.figure = qc.qcHuman_getFigure(self.human)

    def stored(self, value):
        """What comes back of a value."""
        self.assertEqual(qc.qcObject_setProperty(self.figure, "key", value), 1)
        return qc.qcObject_getProperty(self.figure, "key")

    def check_comes_back(self, value):
        found = self.stored(value)
        self.assertEqual(found, value)
        self.assertEqual(kinds(found), kinds(value))

    def check_refused(self, kind, message, value):
        qc.qcObject_setProperty(self.figure, "key", "before")
        text = self.check_raises(kind, message, qc.qcObject_setProperty, self.figure, "key", value)
        self.assertEqual(qc.qcObject_getProperty(self.figure, "key"), "before")
        return text

    def test_float_comes_back(self):
        for number in (0.0, 1.5, -980.665, 0.1, 3.4028234663852886e38, 2.0 ** -149, INFINITE, -INFINITE):
            self.check_comes_back(single(number))

    def test_sign_of_zero_comes_back(self):
        self.assertEqual(math.atan2(self.stored(-0.0), -1.0), -math.pi)

    def test_not_a_number_comes_back(self):
        self.assertTrue(math.isnan(self.stored(float("nan"))))
        self.assertTrue(math.isnan(self.stored([(0, 0, float("nan"))])[0][2]))

    def test_float_is_rounded_to_single_precision(self):
        self.assertEqual(self.stored(0.1), single(0.1))
        self.assertEqual(self.stored((0.1, 0.2, 0.3)), (single(0.1), single(0.2), single(0.3)))

    # 2 ** 24 + 1 lies in the middle of two singles and goes to the even one.
    def test_integer_counts_as_a_float(self):
        for number, expected in ((0, 0.0), (-7, -7.0), (2 ** 24 + 1, 2.0 ** 24), (2 ** 100, 2.0 ** 100)):
            found = self.stored(number)
            self.assertEqual(found, expected)
            self.assertEqual(type(found), float)

    def test_text_comes_back_whole(self):
        for text in ("", "a", "two\nlines\n", '"quoted"', "%s %d", " ", "x" * 15, "x" * 16, "x" * 63, "x" * 64,
                     "long " * 100000, native_text(b"gr\xc3\xbc\xc3\x9fe, \xe2\x82\xac, \xf0\x9f\x98\x80")):
            self.check_comes_back(text)

    def test_text_that_is_no_utf8_comes_back_byte_for_byte(self):
        for utf8 in (b"\xff", b"a\x80b", b"\xc3", b"\xed\xa0\x80", b"\xc0\x80"):
            self.check_comes_back(native_text(utf8))

    def test_vector_is_a_tuple_of_three(self):
        self.check_comes_back((1.0, -2.5, 0.0))
        self.assertEqual(kinds(self.stored((1, 2, 3))), (tuple, [float] * 3))

    def test_list_comes_back(self):
        for value in ([], [[]], [[], []], ["a"], [1.0, "b", (1.0, 2.0, 3.0)], [[["deep", [1.5]], "x"], "y"]):
            self.check_comes_back(value)

    def test_empty_value_is_the_empty_tuple_and_no_empty_list(self):
        for value in ((), [()], [(), []], [[()], [], ()]):
            self.check_comes_back(value)

    def test_long_list_comes_back(self):
        self.check_comes_back(["item %d" % i for i in range(100000)])

    def test_subclass_counts_as_its_base(self):
        class Number(float):
            pass

        class Text(str):
            pass

        class Several(list):
            pass

        self.assertEqual(kinds(self.stored(Several([Number(1.5), Text("a")]))), (list, [float, str]))

    def test_missing_property_is_none(self):
        self.assertEqual(qc.qcObject_getProperty(self.figure, "missing"), None)

    def test_property_is_removed(self):
        qc.qcObject_setProperty(self.figure, "key", 1.0)
        self.assertEqual(qc.qcObject_removeProperty(self.figure, "key"), 1)
        self.assertEqual(qc.qcObject_getProperty(self.figure, "key"), None)
        self.assertEqual(qc.qcObject_removeProperty(self.figure, "key"), 0)

    def test_property_is_replaced_by_one_of_another_kind(self):
        for value in (["a", []], 1.0, (), "text", (1.0, 2.0, 3.0)):
            self.check_comes_back(value)

    def test_properties_of_one_object_are_apart(self):
        for key, value in (("a", 1.0), ("aa", 2.0), ("", 3.0), (native_text(b"\xc3\xa9"), 4.0)):
            qc.qcObject_setProperty(self.figure, key, value)
        self.assertEqual([qc.qcObject_getProperty(self.figure, key) for key in ("aa", "", native_text(b"\xc3\xa9"),
                                                                                  "a", "aaa")],
                         [2.0, 3.0, 4.0, 1.0, None])

    def test_every_host_object_and_an_analysis_has_properties(self):
        analysis = self.analysis_of(self.human)
        objects = [self.scene, self.human, self.figure, analysis, qc.qcFigure_findSegment(self.figure, "l5"),
                   qc.qcFigure_findSite(self.figure, "l5.distal"), qc.qcFigure_findJoint(self.figure, "waist")]
        for number, thing in enumerate(objects):
            self.assertEqual(qc.qcObject_setProperty(thing, "number", number), 1)
        for number, thing in enumerate(objects):
            self.assertEqual(qc.qcObject_getProperty(thing, "number"), float(number))

    def test_other_name_of_the_analysis_type_is_taken(self):
        analysis = self.analysis_of(self.human)
        qc.qcObject_setProperty(analysis, "key", "value")
        other = ss.ptrcast(analysis, "class_qmStaticStrength *")
        self.assertEqual(qc.qcObject_getProperty(other, "key"), "value")

    def test_pointer_to_what_is_no_object_is_refused(self):
        vector = qc.new_qVector(0, 0, 0)
        self.check_raises(TypeError, "Type error in argument 1 of qcObject_getProperty. Expected _qcObject_p.",
                          qc.qcObject_getProperty, vector, "key")
        qc.delete_qVector(vector)

    def test_analysis_reads_and_writes_the_same_properties(self):
        analysis = self.analysis_of(self.human)
        site = qc.qcHuman_getHandSite(self.human, 0)
        ss.qmStaticStrength_setWeightLoad(analysis, site, 1500)
        self.assertEqual(qc.qcObject_getProperty(site, "SSTR_Load")[1:], ["weight", 1500.0])
        self.assertEqual(qc.qcObject_getProperty(self.figure, "SSTR_LoadList")[0][0],
                         "right_hand.right_palmcenter")
        qc.qcObject_setProperty(site, "SSTR_Load", [(0, -2, 0), "weight", 2000])
        self.assertEqual(ss.qmStaticStrength_getSiteWeight(analysis, site), 2000.0)

    def test_other_types_are_refused_by_their_name(self):
        for value, found in ((None, "NoneType"), ({}, "dict"), (True, "bool"), (1j, "complex"), (set(), "set"),
                             (bytearray(b"a"), "bytearray"), (len, "builtin_function_or_method"),
                             (Plain(), "Plain"), ((1.0,), "a tuple of 1"), ((1.0, 2.0), "a tuple of 2"),
                             ((1, 2, 3, 4), "a tuple of 4"), ((1, 2, "c"), "a tuple with str"),
                             ((1, False, 2), "a tuple with bool"), (((), (), ()), "a tuple with tuple")):
            self.check_refused(TypeError, REFUSAL % found, value)
            self.check_refused(TypeError, REFUSAL % found, [1.0, [value]])

    def test_python_s_other_text_type_is_refused(self):
        self.check_refused(TypeError, REFUSAL % ("unicode" if PYTHON_2 else "bytes"),
                           "a".decode("ascii") if PYTHON_2 else "a".encode("ascii"))

    def test_text_with_a_zero_byte_is_refused(self):
        for value in ("\0", "a\0b", ["a\0"]):
            self.check_refused(ValueError, "Argument 3 of qcObject_setProperty holds a text with a zero byte.", value)

    def test_surrogate_that_stands_for_no_byte_is_refused(self):
        if PYTHON_2:   # texts are bytes there
            self.check_comes_back("\xed\xa0\x80")
        else:
            text = self.check_raises(UnicodeEncodeError, None, qc.qcObject_setProperty, self.figure, "key", chr(0xD800))
            self.assertTrue("surrogates not allowed" in text, text)

    def test_number_beyond_single_precision_is_refused(self):
        message = "Argument 3 of qcObject_setProperty is too large for single precision"
        for value in (1e39, [1e39], (0, 1e39, 0)):
            self.check_refused(ValueError, message + ": 1e+39.", value)
        for value in (10 ** 400, (0, 0, 10 ** 400)):
            self.check_refused(ValueError, message + ".", value)

    def test_list_that_contains_itself_is_refused(self):
        endless = ["a"]
        endless.append(endless)
        self.check_refused(ValueError, "Argument 3 of qcObject_setProperty nests lists deeper than 100 levels; a list "
                           "may not contain itself.", endless)

    # A scene file holds 100 levels.
    def test_lists_nest_as_deep_as_a_scene_can_hold(self):
        self.check_comes_back(nested(100))
        self.assertEqual(qc.qcScene_save(self.scene, self.path("scene.json")), 1)
        scene = qc.qcScene_open(self.path("scene.json"))
        figure = qc.qcHuman_getFigure(qc.qcScene_getHumans(scene)[0])
        self.assertEqual(qc.qcObject_getProperty(figure, "key"), nested(100))
        qc.qcScene_close(scene)
        self.check_refused(ValueError, None, nested(101))

    # 100 levels, each holding the next one twice, would be 2 ** 100 values.
    def test_list_that_unfolds_without_end_is_refused(self):
        value = []
        for level in range(99):
            value = [value, value]
        self.check_refused(ValueError, "Argument 3 of qcObject_setProperty holds more than 1000000 values.", value)

    # Such code could change the list that is read, or close the scene of the object that receives the value.
    def test_number_s_own_class_runs_no_code(self):
        ran = []

        class Sly(float):
            def __float__(self):
                ran.append(self)
                return 2.0

        class SlyInteger(int):
            def __float__(self):
                ran.append(self)
                return 2.0

            __index__ = __int__ = __float__

        class SlyLong(type(2 ** 64)):
            def __float__(self):
                ran.append(self)
                return 2.0

        values = [1.0, Sly(1.5), SlyInteger(1), SlyLong(2 ** 64), (Sly(3), SlyInteger(-4), SlyLong(5)), "a"]
        self.assertEqual(self.stored(values), [1.0, 1.5, 1.0, 2.0 ** 64, (3.0, -4.0, 5.0), "a"])
        self.assertEqual(self.stored(SlyInteger(7)), 7.0)
        self.assertEqual(ran, [])

    def test_saved_properties_come_back(self):
        values = [["f", single(0.1), -0.0, INFINITE], "text", native_text(b"\xff\xc3\xa9"), (1.0, single(0.3), -2.0),
                  [], (), [[()], []]]
        for number, value in enumerate(values):
            qc.qcObject_setProperty(self.figure, "key%d" % number, value)
        self.assertEqual(qc.qcScene_save(self.scene, self.path("scene.json")), 1)
        scene = qc.qcScene_open(self.path("scene.json"))
        figure = qc.qcHuman_getFigure(qc.qcScene_getHumans(scene)[0])
        for number, value in enumerate(values):
            found = qc.qcObject_getProperty(figure, "key%d" % number)
            self.assertEqual(found, value)
            self.assertEqual(kinds(found), kinds(value))
        qc.qcScene_close(scene)

    def test_properties_of_a_posed_figure_are_read(self):
        body = small_body("posed")
        body.document["properties"] = [[["figure"], {"a": ["f", 0.5], "b": ["s", "text"], "c": ["v", [1, 2, 3]],
                                                     "d": ["l", [["e"], ["l", []]]], "e": ["e"], "f": ["x", "ff41"]}]]
        figure = qc.qcHuman_getFigure(qc.qcScene_addPosedHuman(self.scene, body.text()))
        self.assertEqual([qc.qcObject_getProperty(figure, key) for key in "abcdef"],
                         [0.5, "text", (1.0, 2.0, 3.0), [(), []], (), native_text(b"\xffA")])

    def test_time_stamp_grows_with_every_change(self):
        analysis = self.analysis_of(self.human)
        stamps = [qc.qcObject_getTimestamp(self.figure)]
        for strategy in (1, 1, 2):
            ss.qmStaticStrength_setStrategy(analysis, strategy)
            stamps.append(qc.qcObject_getTimestamp(self.figure))
        self.assertTrue(stamps[0] < stamps[1] < stamps[2] < stamps[3], stamps)
        self.assertEqual(qc.qcObject_getTimestamp(self.figure), stamps[-1])


if __name__ == "__main__":
    main()
