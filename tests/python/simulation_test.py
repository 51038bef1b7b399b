"""A thousand steps of the simulation on a posture that changes: each computes and then runs the script."""
import __main__
import libqcc as qc
import libqmSSTRc as ss
from qcc_support import HostTest
from support import main

SCRIPT = """
ss.qmStaticStrength_getJointForces(analysis, shoulder, force, moment)
seen.append((qc.qcJoint_getAngle(shoulder, 1), qc.qVector_get(moment)))
if len(seen) == stop_after:
    ss.qmStaticStrength_deactivate(analysis)
qc.qcJoint_setAngle(shoulder, 1, 0.001 * len(seen))
"""


class ChangingPosture(HostTest):

    def setUp(self):
        HostTest.setUp(self)
        human = self.default_human()
        __main__.shoulder = qc.qcFigure_findJoint(qc.qcHuman_getFigure(human), "right_shoulder")
        __main__.analysis = self.analysis_of(human)
        __main__.force, __main__.moment = qc.new_qVector(0, 0, 0), qc.new_qVector(0, 0, 0)
        __main__.seen, __main__.stop_after = [], 0
        __main__.qc, __main__.ss = qc, ss
        qc.qcJoint_setAngle(__main__.shoulder, 1, 0.0)

    def tearDown(self):
        qc.delete_qVector(__main__.force)
        qc.delete_qVector(__main__.moment)
        HostTest.tearDown(self)

    def moment_at(self, angle):
        """What the shoulder carries with its first angle as given, computed by itself."""
        qc.qcJoint_setAngle(__main__.shoulder, 1, angle)
        ss.qmStaticStrength_compute(__main__.analysis)
        ss.qmStaticStrength_getJointForces(__main__.analysis, __main__.shoulder, __main__.force, __main__.moment)
        return qc.qVector_get(__main__.moment)

    def test_every_step_computes_the_posture_at_hand_and_runs_the_script(self):
        self.assertEqual(ss.qmStaticStrength_activate(__main__.analysis, SCRIPT), 1)
        self.assertEqual(qc.qcSim_step(1000), [1])
        ss.qmStaticStrength_deactivate(__main__.analysis)
        self.assertEqual(len(__main__.seen), 1000)
        # step i computes before its script sets the angle of step i + 1
        self.assertEqual([angle for angle, moment in __main__.seen], [0.001 * i for i in range(1000)])
        self.assertEqual(len(set([moment for angle, moment in __main__.seen])), 1000)
        for i in (0, 1, 499, 999):
            self.assertEqual(self.moment_at(0.001 * i), __main__.seen[i][1])

    def test_script_that_deactivates_ends_the_steps(self):
        __main__.stop_after = 300
        self.assertEqual(ss.qmStaticStrength_activate(__main__.analysis, SCRIPT), 1)
        self.assertEqual(qc.qcSim_step(1000), [])
        self.assertEqual(len(__main__.seen), 300)
        self.assertEqual(ss.qmStaticStrength_isActive(__main__.analysis), 0)
        self.assertEqual(qc.qcSim_getBound(), [])


if __name__ == "__main__":
    main()
