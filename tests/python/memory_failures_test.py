"""Memory that runs out within the modules is a MemoryError: nothing is lost, changed or left behind.

Needs failing_malloc.cpp, preloaded. Every function is called again and again: its first allocation fails, then its
second, and so on until it asks for no more; once so that only that one fails, once so that all after it do too.
"""
import ctypes
import gc
import itertools
import os
import sys

os.environ["QC_VALUE_MEMORY"] = "heap"   # read by the first value: else values come from a pool, and few can fail

import libqcc as qc
import libqmSSTRc as ss
from qcc_support import HostTest, single
from small_figure import small_body
from support import TestCase, main

LIBRARY = ctypes.CDLL(None)
LONG = "a text too long to lie within a string object or in a pool of the interpreter " * 8
NAME = LONG[:80]   # of a type
OUT_OF_MEMORY = "Out of memory."
RAISED = object()   # for a failure value: none, the member asks for no memory; what it gives Python may
# else it takes its small blocks from pools that it keeps
INTERPRETER_ASKS_THE_SYSTEM = os.environ.get("PYTHONMALLOC") == "malloc" and sys.version_info >= (3, 6)


class MemoryFailures(object):
    """For test cases. How many allocations failed is counted for all of them."""
    injected = 0

    def attempt(self, n, further, deep, function, arguments):
        """@return (how many allocations failed, the result, None) or (how many, None, the MemoryError's text)"""
        result = text = None
        LIBRARY.failing_malloc_arm(n, further, deep)
        try:
            try:
                result = function(*arguments)
            finally:
                failed = LIBRARY.failing_malloc_disarm()
        except MemoryError:
            text = str(sys.exc_info()[1])
        MemoryFailures.injected += failed
        return failed, result, text

    def each_failure(self, function, *arguments, **options):
        """Lets every allocation fail in turn; yields (result, text of the MemoryError or None) after each.

        before: called before each attempt; deep: the interpreter's allocations too; stride: skips ever more of many;
        optional: there may be none; done: called with the result when nothing fails any more. Meanwhile self.further
        tells whether all further allocations fail too.
        """
        deep, stride, before = options.get("deep", 0), options.get("stride", 1), options.get("before")
        for self.further in (0, 1):
            n = 1
            while True:
                if before:
                    before()
                failed, result, text = self.attempt(n, self.further, deep, function, arguments)
                if failed == 0:
                    if "done" in options:
                        options["done"](result)
                    break
                yield result, text
                n += 1 + n // stride if stride > 1 else 1
            self.assertTrue(n > 1 or options.get("optional"), "%s allocates nothing" % function.__name__)

    def check_all_fail(self, text, function, *arguments, **options):
        """Every failure is a MemoryError of that text, and nothing that was taken stays.

        give_back: called after each failure, drops what the function may rightly leave.
        """
        for once in self.each_failure(function, *arguments, **options):
            pass   # what is made once and kept, as for the first exception ever thrown, is made here
        for result, found in self.each_failure(function, *arguments, **options):
            self.assertEqual((function.__name__, result, found), (function.__name__, None, text))
            if "give_back" in options:
                options["give_back"]()
            self.assertEqual((function.__name__, LIBRARY.failing_malloc_outstanding()), (function.__name__, 0))


class Arrays(TestCase, MemoryFailures):

    def test_array_that_cannot_be_made_leaves_nothing(self):
        for kind in ("int", "float", "double", "string"):
            self.check_all_fail(OUT_OF_MEMORY, getattr(ss, kind + "_array"), 100,
                                done=getattr(ss, kind + "_destroy"))

    def test_text_that_cannot_be_stored_leaves_the_element(self):
        array = ss.string_array(2)
        for result, text in self.each_failure(ss.string_set, array, 0, LONG,
                                               before=lambda: ss.string_set(array, 0, "old")):
            self.assertEqual((result, text), (None, OUT_OF_MEMORY))
            self.assertEqual((ss.string_get(array, 0), ss.string_get(array, 1)), ("old", ""))
            self.assertEqual(LIBRARY.failing_malloc_outstanding(), 0)
        ss.string_destroy(array)

    def test_element_is_set_only_when_it_can_be_returned_too(self):
        # what is returned is the interpreter's; 1 << 20 is none of the integers that it keeps
        kinds = [("string", "old", LONG)]
        if INTERPRETER_ASKS_THE_SYSTEM:
            kinds.append(("int", 7, 1 << 20))
        for kind, old, new in kinds:
            array = getattr(ss, kind + "_array")(1)
            store = getattr(ss, kind + "_set")
            for result, text in self.each_failure(store, array, 0, new, deep=1, before=lambda: store(array, 0, old)):
                self.assertTrue(result is None and text is not None, (kind, result))
                self.assertEqual(getattr(ss, kind + "_get")(array, 0), old)
            getattr(ss, kind + "_destroy")(array)


class Pointers(TestCase, MemoryFailures):

    def test_created_array_is_whole_or_gone(self):
        for arguments in (("int", 5, 10), ("double", 0.5), ("char", "x", 100), ("char *", LONG, 3), ("float",)):
            self.check_all_fail("Out of memory in swig_create.", ss.ptrcreate, done=ss.ptrfree, *arguments)

    def test_refused_value_is_told_as_before(self):
        self.check_raises(TypeError, None, ss.ptrcreate, "int", [], 5)

    def test_text_that_cannot_be_stored_leaves_the_element(self):
        array = ss.ptrcreate("char *", "old", 1)
        for result, text in self.each_failure(ss.ptrset, array, LONG, before=lambda: ss.ptrset(array, "old")):
            self.assertEqual((result, text), (None, OUT_OF_MEMORY))
            self.assertEqual(ss.ptrvalue(array), "old")
        ss.ptrfree(array)

    def test_pointers_are_moved_and_renamed_or_not(self):
        # names too long to lie within a string object
        self.check_all_fail(OUT_OF_MEMORY, ss.ptrcast, 16, "unsigned int of some length *")
        ss.ptradd("_10_unsigned_int_p", 1)   # looked up
        self.check_all_fail(OUT_OF_MEMORY, ss.ptradd, "_10_unsigned_int_p", 1)

    def test_names_can_be_mapped_after_a_failure(self):
        numbers = itertools.count()
        array = ss.ptrcreate("int", 5)
        for result, text in self.each_failure(lambda: ss.ptrmap(NAME + str(next(numbers)), "int")):
            self.assertEqual((result, text), (None, OUT_OF_MEMORY))
            name = NAME + str(next(numbers))
            ss.ptrmap(name, "int")
            # the table is whole: it finds what is there and refuses what is not
            self.assertEqual(ss.ptrvalue(ss.ptrcast(array, name + " *")), 5)
            self.check_raises(TypeError, None, ss.ptrvalue, ss.ptrcast(array, NAME + " *"))
        ss.ptrfree(array)

    def test_equivalent_names_are_found_or_tell_what_they_miss(self):
        address = "_10_unsigned_int_p"
        others = ["_10_%s_p" % name for name in ("signed_int", "unsigned_short", "unsigned_long", "signed_long",
                                                 "signed_short", "short", "long", "struct_loadWithOffset")]

        def look_up():
            for other in others:   # drives the name out of what was looked up last
                try:
                    ss.ptradd(other, 1)
                except TypeError:
                    pass
            return ss.ptradd(address, 1)
        for result, text in self.each_failure(look_up):
            self.assertEqual((result, text), (None, OUT_OF_MEMORY))
            self.assertEqual(ss.ptradd(address, 1), "_14_unsigned_int_p")


class Analysis(HostTest, MemoryFailures):

    def setUp(self):
        HostTest.setUp(self)
        self.human = self.posed_human()
        self.figure = qc.qcHuman_getFigure(self.human)
        self.palm = qc.qcFigure_findSite(self.figure, "right_hand.right_palmcenter")
        self.knee = qc.qcFigure_findJoint(self.figure, "right_knee")
        self.vector = qc.new_qVector(1, -2, 3)

    def tearDown(self):
        qc.delete_qVector(self.vector)
        HostTest.tearDown(self)

    def test_analysis_that_cannot_be_made_leaves_nothing(self):
        # where only Python's name for it is missing, the analysis has stored its strategy on the figure
        self.check_all_fail(OUT_OF_MEMORY, ss.new_qmStaticStrength, self.human, done=ss.delete_qmStaticStrength,
                            give_back=lambda: qc.qcObject_removeProperty(self.figure, "SSTR_Strategy"))

    def test_record_that_python_cannot_be_given_is_taken_back(self):
        analysis = ss.new_qmStaticStrength(self.human)
        for arguments in ((ss.qmStaticStrength_setLoadWithOffset, analysis, self.palm, self.vector, self.vector),
                          (ss.qmStaticStrength_setWeightLoadWithOffset, analysis, self.palm, self.vector, 5)):
            for result, text in self.each_failure(deep=1, *arguments,
                                                  before=lambda: ss.qmStaticStrength_clear(analysis)):
                # the analysis gives no record for want of memory, or the record's name cannot be made
                self.assertTrue(result == "NULL" or text is not None, (arguments[0].__name__, result))
                if not self.further:   # taking back may need memory too
                    self.assertEqual(ss.qmStaticStrength_getNumLoadsWithOffset(analysis), 0)
        ss.qmStaticStrength_clear(analysis)
        ss.delete_qmStaticStrength(analysis)
        qc.qcMessages_take()

    def calls(self, analysis):
        """Sets everything anew. @return rows: what is given when memory runs out in the member, function, arguments"""
        a, s, j, v = analysis, self.palm, self.knee, self.vector
        ss.delete_qmStaticStrength(ss.qmStaticStrength_getHandle(self.other))
        ss.qmStaticStrength_deactivate(a)
        ss.qmStaticStrength_clear(a)
        self.assertEqual((ss.qmStaticStrength_setWeightLoad(a, s, 5), ss.qmStaticStrength_setDefinedTorque(a, j, v)),
                         (1, 1))
        ss.qmStaticStrength_setFMonJoint(a, j, v, v)
        record = ss.qmStaticStrength_setLoadWithOffset(a, s, v, v)
        ss.qmStaticStrength_setLoadWithOffset(a, s, v, v)   # to remove the last one needs no memory
        return [
            (0, ss.qmStaticStrength_setLoad, a, s, v), (0, ss.qmStaticStrength_setWeightLoad, a, s, 7),
            (0, ss.qmStaticStrength_getSiteLoad, a, s, v), (-1.0, ss.qmStaticStrength_getSiteWeight, a, s),
            (None, ss.qmStaticStrength_getLoadType, a, s), ("NULL", ss.qmStaticStrength_getNthLoadSite, a, 0),
            (0, ss.qmStaticStrength_getNumLoads, a), (0, ss.qmStaticStrength_removeLoad, a, s),
            (None, ss.qmStaticStrength_reportLoads, a, 1),
            ("NULL", ss.qmStaticStrength_setLoadWithOffset, a, s, v, v),
            ("NULL", ss.qmStaticStrength_setWeightLoadWithOffset, a, s, v, 5),
            (RAISED, ss.qmStaticStrength_getNthLoadWithOffset, a, 0),
            (RAISED, ss.loadWithOffset_site_get, record), (RAISED, ss.loadWithOffset_type_get, record),
            (RAISED, ss.loadWithOffset_load_get, record), (RAISED, ss.loadWithOffset_offset_get, record),
            (0, ss.qmStaticStrength_removeLoadWithOffset, a, record),
            (0, ss.qmStaticStrength_setDefinedTorque, a, j, v), (0, ss.qmStaticStrength_getDefinedTorque, a, j, v),
            ("NULL", ss.qmStaticStrength_getNthDefinedTorqueJoint, a, 0),
            (0, ss.qmStaticStrength_getNumDefinedTorques, a), (0, ss.qmStaticStrength_removeDefinedTorque, a, j),
            (None, ss.qmStaticStrength_setStrategy, a, 5), (1, ss.qmStaticStrength_compute, a),
            (None, ss.qmStaticStrength_setFMonJoint, a, j, self.other_vector, v),
            (0, ss.qmStaticStrength_getJointForces, a, j, v, v),
            (RAISED, ss.qmStaticStrength_getSplitFactor, a, j, 1, LONG),
            (RAISED, ss.qmStaticStrength_getHuman, a), (RAISED, ss.qmStaticStrength_getHandle, self.human),
            ("NULL", ss.qmStaticStrength_getHandle, self.other),
            (0, ss.qmStaticStrength_activate, a, "#" + LONG), (RAISED, ss.qmStaticStrength_deactivate, a),
            (None, ss.qmStaticStrength_setGravity, a, self.other_vector), (0, ss.qmStaticStrength_reset, a),
            (RAISED, ss.qmStaticStrength_clear, a),
        ]

    def state(self, analysis):
        """What calls may change."""
        properties = [qc.qcObject_getProperty(each, key) for each, keys in (
            (self.figure, ("SSTR_LoadList", "SSTR_LoadWithOffsetList", "SSTR_TorqueList", "SSTR_Strategy")),
            (self.palm, ("SSTR_Load", "SSTR_LoadsWithOffsets")),
            (self.knee, ("SSTR_Torque", "SSTR_Force_Moment"))) for key in keys]
        return (properties, ss.qmStaticStrength_getStrategy(analysis), ss.qmStaticStrength_isActive(analysis),
                ss.qmStaticStrength_getNumLoadsWithOffset(analysis),
                ss.qmStaticStrength_getGravity(analysis, self.scratch))

    def check_passed_on(self, call, result, text, further, deep):
        """After a failure. @return whether it was the member's own, and its failure value came with its report"""
        name = call[1].__name__
        where = (name, result, text, further, deep)
        messages = qc.qcMessages_take()
        if text is not None:   # memory for Python's arguments or result; any text when the interpreter lacks it
            self.assertTrue(result is None and (deep or text == OUT_OF_MEMORY), where)
            self.assertEqual((where, messages), (where, []))
            return False
        self.assertTrue(call[0] is not RAISED, where)
        self.assertEqual((where, result, type(result)), (where, call[0], type(call[0])))
        report = ("error", "StaticStrength ERROR: out of memory in " + name[len("qmStaticStrength_"):])
        # without any memory the report goes to standard error
        self.assertEqual((where, messages), (where, [] if further else [report]))
        return True

    def check_each_failure(self, analysis, which, further, deep):
        """Lets each allocation of a call fail. @return how often the member's failure value came"""
        passed_on = 0
        for n in itertools.count(1):
            call = self.calls(analysis)[which]
            before = self.state(analysis)
            qc.qcMessages_take()
            failed, result, text = self.attempt(n, further, deep, call[1], call[2:])
            if failed == 0:
                # of success, if it differs from that of failure
                if call[0] not in (RAISED, None) and call[1] is not ss.qmStaticStrength_compute:
                    self.assertNotEqual((call[1].__name__, result), (call[1].__name__, call[0]))
                return passed_on
            if self.check_passed_on(call, result, text, further, deep):
                passed_on += 1
                if call[1] is not ss.qmStaticStrength_compute:   # it keeps what it has stored so far
                    self.assertEqual((call[1].__name__, self.state(analysis)), (call[1].__name__, before))

    def test_failure_values_are_passed_on_and_all_work_when_there_is_memory_again(self):
        self.other = self.posed_human("other")
        self.other_vector, self.scratch = qc.new_qVector(0, -490, 1), qc.new_qVector(0, 0, 0)
        analysis = ss.new_qmStaticStrength(self.human)
        ss.qmStaticStrength_activate(analysis, "")   # the buffer of standard output is made
        for which, row in enumerate(self.calls(analysis)):
            for deep in (0, 1):
                for further in (0, 1):
                    passed_on = self.check_each_failure(analysis, which, further, deep)
                    if not (deep and further):   # there the interpreter lacks memory for the result as well
                        self.assertEqual((row[1].__name__, passed_on > 0), (row[1].__name__, row[0] is not RAISED))
            ss.qmStaticStrength_clear(analysis)
            qc.qcMessages_take()
            self.assertEqual(ss.qmStaticStrength_setWeightLoad(analysis, self.palm, 5), 1)
            self.assertEqual(ss.qmStaticStrength_getSiteWeight(analysis, self.palm), 5.0)
        ss.qmStaticStrength_clear(analysis)
        ss.qmStaticStrength_deactivate(analysis)
        ss.delete_qmStaticStrength(ss.qmStaticStrength_getHandle(self.other))
        ss.delete_qmStaticStrength(analysis)
        qc.delete_qVector(self.other_vector)
        qc.delete_qVector(self.scratch)
        handle = ss.qmStaticStrength_getHandle(self.human)
        self.assertEqual(ss.qmStaticStrength_getHuman(handle), self.human)
        ss.delete_qmStaticStrength(handle)
        qc.qcMessages_take()


VALUES = (0.5, LONG, (1.0, 2.0, 3.0), [], [0.25, LONG, [LONG, (1.0, 0.0, 0.0)], ()], ())


class Host(HostTest, MemoryFailures):

    def test_vector_that_cannot_be_made_leaves_nothing(self):
        vector = qc.new_qVector(1, 2, 3)   # the set of all vectors is made once
        self.check_all_fail(OUT_OF_MEMORY, qc.new_qVector, 1, 2, 3, done=qc.delete_qVector)
        qc.delete_qVector(vector)

    def test_scene_that_cannot_be_made_leaves_nothing(self):
        self.check_all_fail(OUT_OF_MEMORY, qc.qcScene_new, done=qc.qcScene_close)

    def test_property_is_replaced_whole_or_not_at_all(self):
        figure = self.posed_figure()
        for value in VALUES:
            for old in (None, LONG[1:]):
                def restore():
                    qc.qcObject_removeProperty(figure, "K")
                    if old is not None:
                        qc.qcObject_setProperty(figure, "K", old)
                # a value that takes another's place may need no memory
                for result, text in self.each_failure(qc.qcObject_setProperty, figure, "K", value, before=restore,
                                                      optional=True):
                    self.assertEqual((result, text), (None, OUT_OF_MEMORY))
                    self.assertEqual(qc.qcObject_getProperty(figure, "K"), old)
                self.assertEqual(qc.qcObject_getProperty(figure, "K"), value)

    def test_property_is_read_whole_or_not_at_all(self):
        figure = self.posed_figure()
        value = [0.25, LONG, [LONG, (1.0, 0.0, 0.0)], ()]
        qc.qcObject_setProperty(figure, "K", value)
        for deep in (0, 1):
            for result, text in self.each_failure(qc.qcObject_getProperty, figure, "K", deep=deep):
                self.assertTrue((result == value and text is None) or (result is None and text is not None),
                                (deep, result, text))
        self.assertEqual(qc.qcObject_getProperty(figure, "K"), value)

    def test_lists_of_parts_are_whole_or_not_given(self):
        figure = self.posed_figure()
        for function in (qc.qcFigure_getJoints, qc.qcFigure_getSites, qc.qcFigure_getSegments):
            wanted = function(figure)
            for deep in (0, 1):
                for result, text in self.each_failure(function, figure, deep=deep):
                    self.assertTrue(result is None and text is not None, (function.__name__, result))
            self.assertEqual(function(figure), wanted)

    def test_no_message_is_lost(self):
        figure = self.posed_figure()
        def report():
            for i in range(3):
                qc.qcFigure_setRoot(figure, 1e9 + i, 0, 0, 0, 0, 0)
        report()
        messages = qc.qcMessages_take()
        self.assertEqual(len(messages), 3)
        for result, text in self.each_failure(qc.qcMessages_take, deep=1, before=report,
                                              optional=not INTERPRETER_ASKS_THE_SYSTEM):
            self.assertTrue(result is None and text is not None, result)
            self.assertEqual(qc.qcMessages_take(), messages)

    def test_scripts_fail_with_a_message(self):
        analysis = self.analysis_of(self.posed_human())
        ss.qmStaticStrength_activate(analysis, "# " + LONG)
        # not the interpreter's own allocations: its compiler does not survive every failure of them
        for result, text in self.each_failure(ss.qmStaticStrength_run_script, analysis):
            messages = qc.qcMessages_take()
            self.assertEqual((result, text), (None, None))
            if self.further:   # without any memory the message goes to standard error
                self.assertEqual(messages, [])
            else:
                self.assertTrue(messages in ([("error", "StaticStrength ERROR: out of memory in run_script")],
                                             [("error", "cannot run a script: out of memory.")]), messages)
            gc.collect()
        ss.qmStaticStrength_deactivate(analysis)
        qc.qcMessages_take()

    def test_human_is_added_whole_or_not_at_all(self):
        document = small_body("other").text()
        qc.qcScene_close(self.scene)
        self.scene = qc.qcScene_new()
        for result, text in self.each_failure(qc.qcScene_addPosedHuman, self.scene, document, stride=8):
            messages = qc.qcMessages_take()
            if result in (None, "NULL"):
                # without any memory the host's message goes to standard error
                self.assertTrue(text == OUT_OF_MEMORY or messages or self.further, (result, text, messages))
            else:
                self.assertEqual(len(qc.qcHuman_getName(result)), len("other"))
            qc.qcScene_close(self.scene)
            self.scene = qc.qcScene_new()


class Counting(TestCase, MemoryFailures):

    def test_failures_hit_only_what_the_modules_ask_for(self):
        LIBRARY.failing_malloc_arm(1, 1, 0)
        try:
            mine = ["x" * i for i in range(10000)]   # the interpreter's, from malloc
        finally:
            failed = LIBRARY.failing_malloc_disarm()
        self.assertEqual((failed, len(mine), LIBRARY.failing_malloc_counted()), (0, 10000, 0))

    def test_a_block_that_stays_is_seen(self):
        LIBRARY.failing_malloc_arm(0, 0, 0)
        array = ss.int_array(100)
        LIBRARY.failing_malloc_disarm()
        self.assertEqual(LIBRARY.failing_malloc_outstanding(), 1)
        ss.int_destroy(array)
        self.assertEqual(LIBRARY.failing_malloc_outstanding(), 0)


if __name__ == "__main__":
    try:
        main()
    finally:
        sys.stdout.write("%d allocations failed\n" % MemoryFailures.injected)
