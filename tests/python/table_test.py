"""The function table and the constants of libqmSSTRc."""
import sys

import libqmSSTRc as ss
from support import TestCase, main

FUNCTIONS = """
loadWithOffset_local_get loadWithOffset_mass_get loadWithOffset_load_get loadWithOffset_type_get
loadWithOffset_offset_get loadWithOffset_site_get qmStaticStrength_calcForcesAt qmStaticStrength_setFMonJoint
qmStaticStrength_getSplitFactor qmStaticStrength_reportLoads qmStaticStrength_getHuman qmStaticStrength_getHandle
qmStaticStrength_getStrategyName qmStaticStrength_getStrategy qmStaticStrength_setStrategy
qmStaticStrength_getGravity qmStaticStrength_getSiteLoad qmStaticStrength_getSiteWeight
qmStaticStrength_getLoadType qmStaticStrength_getNthLoadSite qmStaticStrength_getNumLoads
qmStaticStrength_getJointForces qmStaticStrength_run_script qmStaticStrength_isActive qmStaticStrength_deactivate
qmStaticStrength_activate qmStaticStrength_compute qmStaticStrength_setGravity qmStaticStrength_reset
qmStaticStrength_clear qmStaticStrength_removeLoad qmStaticStrength_setLoad qmStaticStrength_setWeightLoad
qmStaticStrength_getNumLoadsWithOffset qmStaticStrength_getNthLoadWithOffset qmStaticStrength_removeLoadWithOffset
qmStaticStrength_setLoadWithOffset qmStaticStrength_setWeightLoadWithOffset qmStaticStrength_getDefinedTorque
qmStaticStrength_getNthDefinedTorqueJoint qmStaticStrength_getNumDefinedTorques
qmStaticStrength_removeDefinedTorque qmStaticStrength_setDefinedTorque delete_qmStaticStrength new_qmStaticStrength
string_set string_get string_destroy string_array float_set float_get float_destroy float_array double_set
double_get double_destroy double_array int_set int_get int_destroy int_array ptrmap ptradd ptrfree ptrcreate ptrset
ptrvalue ptrcast
""".split()

STRATEGIES = (("TwoFeet", 0), ("RightFoot", 1), ("LeftFoot", 2), ("Walking", 3), ("Sitting", 4),
              ("SittingNoFeet", 5), ("N_STRS", 6), ("HandsAndKnees", 7))


class Table(TestCase):

    def test_module_lists_its_functions_in_the_table_s_order(self):
        self.assertEqual(len(FUNCTIONS), 68)
        listed = [name for name in ss.__dict__ if callable(getattr(ss, name)) and not name.startswith("_")]
        if sys.version_info < (3, 7):   # dictionaries have no order yet
            listed, expected = sorted(listed), sorted(FUNCTIONS)
        else:
            expected = FUNCTIONS
        self.assertEqual(listed, expected)

    def test_public_names_are_functions_and_constants(self):
        constants = ["STD_G"] + ["qmStaticStrength_" + name for name, value in STRATEGIES]
        public = [name for name in dir(ss) if not name.startswith("_")]
        self.assertEqual(sorted(public), sorted(FUNCTIONS + constants))

    def test_standard_gravity_is_a_double(self):
        self.assertEqual(ss.STD_G, 980.665)
        self.assertEqual(type(ss.STD_G), float)

    def test_strategies_are_integers(self):
        for name, value in STRATEGIES:
            constant = getattr(ss, "qmStaticStrength_" + name)
            self.assertEqual(constant, value)
            self.assertEqual(type(constant), int)

    def test_function_without_arguments_names_itself_in_its_refusal(self):
        for name in FUNCTIONS:
            self.check_raises_beginning(TypeError, name + "() ", getattr(ss, name))

    def test_function_tells_its_signature(self):
        for name in FUNCTIONS:
            doc = getattr(ss, name).__doc__
            self.assertTrue(doc.startswith("(") and " -> " in doc, (name, doc))

    def test_module_has_no_documentation_of_its_own(self):
        self.assertEqual(ss.__doc__, None)

    def test_strategy_name_is_none_outside_the_table(self):
        names = [ss.qmStaticStrength_getStrategyName(i) for i in (-1, 0, 1, 2, 3, 4, 5, 6, 7, 8)]
        self.assertEqual(names, [None, "Two Feet", "Right Foot", "Left Foot", "Walking", "Sitting",
                                 "Sitting, No Feet", None, None, None])


if __name__ == "__main__":
    main()
