"""A null analysis: "NULL" passes the decoding, and the member is called on a null object.

What needs nothing of its object works all the same, as callers of old scripts expect: a site's load and a joint's
result and torque are told by the site and the joint, and what refuses a null site or joint refuses it. Not run under
the sanitizers, which call this an error.
"""
import libqcc as qc
import libqmSSTRc as ss
from qcc_support import HostTest
from support import main


class NullAnalysis(HostTest):

    def setUp(self):
        HostTest.setUp(self)
        self.human = self.posed_human()
        figure = qc.qcHuman_getFigure(self.human)
        self.analysis = self.analysis_of(self.human)
        self.palm = qc.qcFigure_findSite(figure, "right_hand.right_palmcenter")
        self.knee = qc.qcFigure_findJoint(figure, "right_knee")
        self.given = qc.new_qVector(1, -2, 3)
        self.read = qc.new_qVector(7, 7, 7)

    def tearDown(self):
        qc.delete_qVector(self.given)
        qc.delete_qVector(self.read)
        HostTest.tearDown(self)

    def test_a_site_tells_its_load(self):
        ss.qmStaticStrength_setLoad(self.analysis, self.palm, self.given)
        self.assertEqual(ss.qmStaticStrength_getSiteLoad("NULL", self.palm, self.read), 1)
        self.assertEqual(qc.qVector_get(self.read), (1.0, -2.0, 3.0))
        self.assertEqual(ss.qmStaticStrength_getLoadType("NULL", self.palm), "global")
        self.assertEqual(ss.qmStaticStrength_getSiteWeight("NULL", self.palm), -1.0)

    def test_a_joint_tells_its_torque_and_its_result_and_takes_one(self):
        ss.qmStaticStrength_setDefinedTorque(self.analysis, self.knee, self.given)
        self.assertEqual(ss.qmStaticStrength_getDefinedTorque("NULL", self.knee, self.read), 1)
        self.assertEqual(qc.qVector_get(self.read), (1.0, -2.0, 3.0))
        self.assertEqual(ss.qmStaticStrength_setFMonJoint("NULL", self.knee, self.given, self.given), None)
        moment = qc.new_qVector(0, 0, 0)
        self.assertEqual(ss.qmStaticStrength_getJointForces("NULL", self.knee, self.read, moment), 1)
        self.assertEqual(qc.qVector_get(moment), (1.0, -2.0, 3.0))
        qc.delete_qVector(moment)

    def test_a_null_site_or_joint_is_refused(self):
        self.assertEqual(ss.qmStaticStrength_setLoad("NULL", "NULL", self.given), 0)
        self.assertEqual(ss.qmStaticStrength_removeLoad("NULL", "NULL"), 0)
        self.assertEqual(ss.qmStaticStrength_setDefinedTorque("NULL", "NULL", self.given), 0)
        self.assertEqual(ss.qmStaticStrength_setLoadWithOffset("NULL", "NULL", self.given, self.given), "NULL")


if __name__ == "__main__":
    main()
