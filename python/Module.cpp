// Module: the function table, the constants, and the initialisation of libqmSSTRc.
#include "Functions.h"
#include "GlobalVariables.h"
#include "wrapping/Wrapping.h"

#include "qmStaticStrength.h"

namespace {

PyMethodDef table[] = {
    row<functions::loadWithOffsetLocalGet>("loadWithOffset_local_get",
                                           "(record) -> 1 for a load in the site's axes, else 0"),
    row<functions::loadWithOffsetMassGet>(
        "loadWithOffset_mass_get", "(record) -> grams; -1 for a load set as a force, 0 for one restored as a force"),
    row<functions::loadWithOffsetLoadGet>("loadWithOffset_load_get",
                                          "(record) -> the force, kgf: a vector within the record"),
    row<functions::loadWithOffsetTypeGet>("loadWithOffset_type_get", "(record) -> \"local\", \"global\" or \"weight\""),
    row<functions::loadWithOffsetOffsetGet>(
        "loadWithOffset_offset_get", "(record) -> the displacement, cm, global axes: a vector within the record"),
    row<functions::loadWithOffsetSiteGet>("loadWithOffset_site_get", "(record) -> the site"),
    row<functions::calcForcesAt>("qmStaticStrength_calcForcesAt",
                                 "(analysis, jointPos, point, f, sumForce, sumMoment) -> None, the sums grown"),
    row<functions::setFMonJoint>("qmStaticStrength_setFMonJoint", "(analysis, joint, force, moment) -> None"),
    row<functions::getSplitFactor>("qmStaticStrength_getSplitFactor", "(analysis, joint, mode, name) -> 0 to 1"),
    row<functions::reportLoads>("qmStaticStrength_reportLoads",
                                "(analysis, start=0) -> a line; None when the report is over"),
    row<functions::getHuman>("qmStaticStrength_getHuman", "(analysis) -> its human"),
    row<functions::getHandle>("qmStaticStrength_getHandle", "(human) -> its analysis, made on first request"),
    row<functions::getStrategyName>("qmStaticStrength_getStrategyName",
                                    "(strategy) -> its text; None for a strategy without one"),
    row<functions::getStrategy>("qmStaticStrength_getStrategy", "(analysis) -> the strategy chosen"),
    row<functions::setStrategy>("qmStaticStrength_setStrategy", "(analysis, strategy) -> None"),
    row<functions::getGravity>("qmStaticStrength_getGravity",
                               "(analysis, vector) -> its magnitude, cm/s², and the vector written"),
    row<functions::getSiteLoad>("qmStaticStrength_getSiteLoad",
                                "(analysis, site, load) -> 1 and the load written, or 0"),
    row<functions::getSiteWeight>("qmStaticStrength_getSiteWeight", "(analysis, site) -> grams; -1 without a weight"),
    row<functions::getLoadType>("qmStaticStrength_getLoadType",
                                "(analysis, site) -> \"global\", \"local\" or \"weight\"; None without a load"),
    row<functions::getNthLoadSite>("qmStaticStrength_getNthLoadSite",
                                   "(analysis, n) -> the site of the n-th load, from 0; \"NULL\" when there is none"),
    row<functions::getNumLoads>("qmStaticStrength_getNumLoads", "(analysis) -> how many loads"),
    row<functions::getJointForces>("qmStaticStrength_getJointForces",
                                   "(analysis, joint, force, moment) -> 1 and the result written, or 0"),
    row<functions::run_script>("qmStaticStrength_run_script", "(analysis) -> None"),
    row<functions::isActive>("qmStaticStrength_isActive", "(analysis) -> 1 or 0"),
    row<functions::deactivate>("qmStaticStrength_deactivate", "(analysis) -> 1"),
    row<functions::activate>("qmStaticStrength_activate", "(analysis, script=none) -> 1; 0 when already active"),
    row<functions::compute>("qmStaticStrength_compute", "(analysis) -> 1"),
    row<functions::setGravity>("qmStaticStrength_setGravity", "(analysis, vector) -> None; cm/s²"),
    row<functions::reset>("qmStaticStrength_reset", "(analysis) -> 1 when a saved list was restored whole, else 0"),
    row<functions::clear>("qmStaticStrength_clear", "(analysis) -> None"),
    row<functions::removeLoad>("qmStaticStrength_removeLoad", "(analysis, site) -> 1; 0 without a load"),
    row<functions::setLoad>("qmStaticStrength_setLoad",
                            "(analysis, site, load, kind=0) -> 1 or 0; kgf, kind 0 global, 1 local"),
    row<functions::setWeightLoad>("qmStaticStrength_setWeightLoad", "(analysis, site, grams) -> 1 or 0"),
    row<functions::getNumLoadsWithOffset>("qmStaticStrength_getNumLoadsWithOffset",
                                          "(analysis) -> how many loads with offsets"),
    row<functions::getNthLoadWithOffset>("qmStaticStrength_getNthLoadWithOffset",
                                         "(analysis, n) -> the n-th record, from 0; \"NULL\" when there is none"),
    row<functions::removeLoadWithOffset>("qmStaticStrength_removeLoadWithOffset",
                                         "(analysis, record) -> 1, the record is gone; or 0"),
    row<functions::setLoadWithOffset>("qmStaticStrength_setLoadWithOffset",
                                      "(analysis, site, offset, load, local=0) -> the record; cm, kgf"),
    row<functions::setWeightLoadWithOffset>("qmStaticStrength_setWeightLoadWithOffset",
                                            "(analysis, site, offset, grams) -> the record; cm"),
    row<functions::getDefinedTorque>("qmStaticStrength_getDefinedTorque",
                                     "(analysis, joint, torque) -> 1 and the torque written, N·m, or 0"),
    row<functions::getNthDefinedTorqueJoint>(
        "qmStaticStrength_getNthDefinedTorqueJoint",
        "(analysis, n) -> the joint of the n-th torque, from 0; \"NULL\" when there is none"),
    row<functions::getNumDefinedTorques>("qmStaticStrength_getNumDefinedTorques", "(analysis) -> how many torques"),
    row<functions::removeDefinedTorque>("qmStaticStrength_removeDefinedTorque",
                                        "(analysis, joint) -> 1; 0 without a torque"),
    row<functions::setDefinedTorque>("qmStaticStrength_setDefinedTorque", "(analysis, joint, torque) -> 1 or 0; N·m"),
    row<functions::deleteQmStaticStrength>("delete_qmStaticStrength", "(analysis) -> None; nothing for \"NULL\""),
    row<functions::newQmStaticStrength>("new_qmStaticStrength", "(human) -> a new analysis"),
    row<functions::stringSet>("string_set", "(array, i, value) -> the value, stored as element i"),
    row<functions::stringGet>("string_get", "(array, i) -> element i"),
    row<functions::stringDestroy>("string_destroy", "(array) -> None, the array is freed"),
    row<functions::stringArray>("string_array", "(n) -> a new array of n elements"),
    row<functions::floatSet>("float_set", "(array, i, value) -> the value, stored as element i"),
    row<functions::floatGet>("float_get", "(array, i) -> element i"),
    row<functions::floatDestroy>("float_destroy", "(array) -> None, the array is freed"),
    row<functions::floatArray>("float_array", "(n) -> a new array of n elements"),
    row<functions::doubleSet>("double_set", "(array, i, value) -> the value, stored as element i"),
    row<functions::doubleGet>("double_get", "(array, i) -> element i"),
    row<functions::doubleDestroy>("double_destroy", "(array) -> None, the array is freed"),
    row<functions::doubleArray>("double_array", "(n) -> a new array of n elements"),
    row<functions::intSet>("int_set", "(array, i, value) -> the value, stored as element i"),
    row<functions::intGet>("int_get", "(array, i) -> element i"),
    row<functions::intDestroy>("int_destroy", "(array) -> None, the array is freed"),
    row<functions::intArray>("int_array", "(n) -> a new array of n elements"),
    row<functions::ptrmap>("ptrmap", "(type, type) -> None; each then stands for the other"),
    row<functions::ptradd>("ptradd", "(pointer, n) -> the pointer n elements on"),
    row<functions::ptrfree>("ptrfree", "(pointer) -> None, the array is freed"),
    row<functions::ptrcreate>("ptrcreate", "(type, value, n=1) -> a new array of n elements, all of that value"),
    row<functions::ptrset>("ptrset", "(pointer, value, i=0, type) -> None, the value stored as element i"),
    row<functions::ptrvalue>("ptrvalue", "(pointer, i=0, type) -> element i"),
    row<functions::ptrcast>("ptrcast", "(pointer or address, type) -> the address as a pointer of that type"),
    {nullptr, nullptr, 0, nullptr}   // end of table
};

const struct {
    const char* name;
    int value;
} strategies[] = {
    {"qmStaticStrength_TwoFeet", qmStaticStrength::TwoFeet},
    {"qmStaticStrength_RightFoot", qmStaticStrength::RightFoot},
    {"qmStaticStrength_LeftFoot", qmStaticStrength::LeftFoot},
    {"qmStaticStrength_Walking", qmStaticStrength::Walking},
    {"qmStaticStrength_Sitting", qmStaticStrength::Sitting},
    {"qmStaticStrength_SittingNoFeet", qmStaticStrength::SittingNoFeet},
    {"qmStaticStrength_N_STRS", qmStaticStrength::N_STRS},
    {"qmStaticStrength_HandsAndKnees", qmStaticStrength::HandsAndKnees},
};

// A type and what may stand for it.
const struct {
    const char* type;
    const char* equivalent;
} equivalences[] = {
    {"_signed_long", "_long"},
    {"_struct_loadWithOffset", "_loadWithOffset"},
    {"_qmStaticStrength", "_class_qmStaticStrength"},
    {"_long", "_unsigned_long"},
    {"_long", "_signed_long"},
    {"_class_qmStaticStrength", "_qmStaticStrength"},
    {"_unsigned_long", "_long"},
    {"_loadWithOffset", "_struct_loadWithOffset"},
    {"_signed_int", "_int"},
    {"_unsigned_short", "_short"},
    {"_signed_short", "_short"},
    {"_unsigned_int", "_int"},
    {"_short", "_unsigned_short"},
    {"_short", "_signed_short"},
    {"_int", "_unsigned_int"},
    {"_int", "_signed_int"},
};

PyModuleDef definition = {PyModuleDef_HEAD_INIT, "libqmSSTRc", nullptr, -1, table, nullptr, nullptr, nullptr, nullptr};

// Enters an object, which is released, in a dictionary. @return false with an exception set
bool enter(PyObject* dictionary, const char* name, PyObject* object)
{
    const bool entered = object && PyDict_SetItemString(dictionary, name, object) == 0;
    Py_XDECREF(object);
    return entered;
}

bool enterConstants(PyObject* dictionary)
{
    // The number as it is written; the analysis computes with its single-precision neighbour.
    if (!enter(dictionary, "STD_G", PyFloat_FromDouble(980.665)))
        return false;
    for (const auto& strategy : strategies)
        if (!enter(dictionary, strategy.name, PyInt_FromLong(strategy.value)))
            return false;
    return true;
}

// @return false with an exception set
bool enterEquivalences()
{
    try {
        for (const auto& pair : equivalences)
            pointers::registerType(pair.type, pair.equivalent, nullptr);
        return true;
    } catch (const std::exception&) {
        return toPythonException() != nullptr;
    }
}

}   // namespace

DECLARE_MODULE_INIT(libqmSSTRc);

MODULE_INIT_FUNC(libqmSSTRc)
{
    if (!makeGlobalVariables())
        return nullptr;
    PyObject* module = PyModule_Create(&definition);
    if (!module || !enterConstants(PyModule_GetDict(module)) || !enterEquivalences())
        return pyDropModule(module);
    return module;
}
