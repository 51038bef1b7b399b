"""libqcc: 100 000 calls of a function, good and bad, leave no memory behind.

Measured in two ways, after a first round that fills free lists and caches: the blocks that Python holds,
where it tells (sys.getallocatedblocks), and the most memory that the process ever held
(ru_maxrss of getrusage), in which a block lost at each call, 16 bytes at least, would be 1600 KB.
"""
import resource
import sys

import libqcc as qc
import libqmSSTRc as ss
from qcc_support import HostTest
from support import main

CALLS = 100000
WARM_UP = 5000
BLOCKS = 500    # Python's own caches and counters
KILOBYTES = 800  # half of the smallest leak


def blocks():
    return sys.getallocatedblocks() if hasattr(sys, "getallocatedblocks") else 0


def peak():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss


def repeat(calls, function, *arguments):
    while calls:   # a range is a list of its own in Python 2
        calls -= 1
        try:
            function(*arguments)
        except (TypeError, ValueError):
            pass


class Memory(HostTest):

    def setUp(self):
        HostTest.setUp(self)
        self.human = self.posed_human()
        self.figure = qc.qcHuman_getFigure(self.human)

    def check_steady(self, function, *arguments):
        repeat(WARM_UP, function, *arguments)
        blocks_before, peak_before = blocks(), peak()
        repeat(CALLS, function, *arguments)
        grown = blocks() - blocks_before, peak() - peak_before
        self.assertTrue(grown[0] < BLOCKS and grown[1] < KILOBYTES, (function, arguments, grown))

    def test_vectors(self):
        vector = qc.new_qVector(1, 2, 3)
        self.check_steady(lambda: qc.delete_qVector(qc.new_qVector(1, 2, 3)))
        self.check_steady(qc.qVector_get, vector)
        self.check_steady(qc.qVector_set, vector, 1, 2, 3)
        qc.delete_qVector(vector)

    def test_lists_names_and_transforms(self):
        segment = qc.qcFigure_findSegment(self.figure, "l5")
        self.check_steady(qc.qcSegment_getSites, segment)
        self.check_steady(qc.qcSegment_getFullName, segment)
        self.check_steady(qc.qcSegment_getTransform, segment)
        self.check_steady(qc.qcFigure_findSite, self.figure, "l5.distal")
        self.check_steady(qc.qcJoint_getSites, qc.qcHuman_getWaistJoint(self.human))

    def test_properties(self):
        value = [1.5, "text", "a text too long for any of the host's pools of short ones, so that it is freed",
                 (1, 2, 3), [], (), [[1.0], "x"]]
        self.check_steady(qc.qcObject_setProperty, self.figure, "key", value)
        self.check_steady(qc.qcObject_getProperty, self.figure, "key")
        self.check_steady(qc.qcObject_getProperty, self.figure, "missing")

    def test_refusals(self):
        for value in ([1.0, "text", [{}]], (1, 2), "a\0", [[1e39]]):
            self.check_steady(qc.qcObject_setProperty, self.figure, "key", value)
        self.check_steady(qc.qcFigure_getName, "NULL")
        self.check_steady(qc.qcFigure_getName, self.human)
        self.check_steady(qc.qcScene_save, self.scene, None)
        self.check_steady(qc.qcScene_save, self.human, "scene.json")
        self.check_steady(qc.qcScene_addHuman, self.scene, "human.urdf", None)

    def test_messages_and_scripts(self):
        joint = qc.qcHuman_getWaistJoint(self.human)
        self.check_steady(lambda: (qc.qcJoint_setAngle(joint, 9, 0), qc.qcMessages_take()))
        analysis = self.analysis_of(self.human)
        ss.qmStaticStrength_activate(analysis, "1 // 0")
        self.check_steady(lambda: (ss.qmStaticStrength_run_script(analysis), qc.qcMessages_take()))

    def test_steps(self):
        analysis = self.analysis_of(self.human)
        ss.qmStaticStrength_activate(analysis, "x = 1")
        self.check_steady(qc.qcSim_step, 1)
        self.check_steady(qc.qcSim_getBound)

    # References to what all calls share: an object that is counted wrongly goes sooner or later.
    def test_references_are_counted(self):
        key, value, item, text = "key", [], object(), "some text"
        for function, arguments in ((qc.qcObject_setProperty, (self.figure, key, value)),
                                    (qc.qcObject_setProperty, (self.figure, key, item)),
                                    (qc.qcObject_setProperty, (self.figure, key, [value, item])),
                                    (qc.qcObject_setProperty, (self.figure, key, [text, (1, 2, 3)])),
                                    (qc.qcObject_getProperty, (self.figure, key)),
                                    (qc.qcObject_getProperty, (self.figure, "missing")),
                                    (qc.qcScene_save, (self.scene, item)), (qc.qcMessages_take, ())):
            counted = (None, (), key, value, item, text)
            before = [sys.getrefcount(thing) for thing in counted]
            repeat(10000, function, *arguments)
            after = [sys.getrefcount(thing) for thing in counted]
            for old, new in zip(before, after):
                self.assertTrue(abs(new - old) < 100, (function, before, after))


if __name__ == "__main__":
    main()
