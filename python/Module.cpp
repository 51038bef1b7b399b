// Module: the function table, the constants, and the initialisation of libqmSSTRc.
#include "Functions.h"
#include "GlobalVariables.h"
#include "wrapping/PointerStrings.h"

#include "qmStaticStrength.h"

namespace {

PyMethodDef table[] = {
    {"loadWithOffset_local_get", functions::loadWithOffsetLocalGet, METH_VARARGS,
     "(record) -> 1 for a load in the site's axes, else 0"},
    {"loadWithOffset_mass_get", functions::loadWithOffsetMassGet, METH_VARARGS,
     "(record) -> grams; -1 for a load set as a force, 0 for one restored as a force"},
    {"loadWithOffset_load_get", functions::loadWithOffsetLoadGet, METH_VARARGS,
     "(record) -> the force, kgf: a vector within the record"},
    {"loadWithOffset_type_get", functions::loadWithOffsetTypeGet, METH_VARARGS,
     "(record) -> \"local\", \"global\" or \"weight\""},
    {"loadWithOffset_offset_get", functions::loadWithOffsetOffsetGet, METH_VARARGS,
     "(record) -> the displacement, cm, global axes: a vector within the record"},
    {"loadWithOffset_site_get", functions::loadWithOffsetSiteGet, METH_VARARGS, "(record) -> the site"},
    {"qmStaticStrength_calcForcesAt", functions::calcForcesAt, METH_VARARGS,
     "(analysis, jointPos, point, f, sumForce, sumMoment) -> None, the sums grown"},
    {"qmStaticStrength_setFMonJoint", functions::setFMonJoint, METH_VARARGS,
     "(analysis, joint, force, moment) -> None"},
    {"qmStaticStrength_getSplitFactor", functions::getSplitFactor, METH_VARARGS,
     "(analysis, joint, mode, name) -> 0 to 1"},
    {"qmStaticStrength_reportLoads", functions::reportLoads, METH_VARARGS,
     "(analysis, start=0) -> a line; None when the report is over"},
    {"qmStaticStrength_getHuman", functions::getHuman, METH_VARARGS, "(analysis) -> its human"},
    {"qmStaticStrength_getHandle", functions::getHandle, METH_VARARGS,
     "(human) -> its analysis, made on first request"},
    {"qmStaticStrength_getStrategyName", functions::getStrategyName, METH_VARARGS,
     "(strategy) -> its text; None for a strategy without one"},
    {"qmStaticStrength_getStrategy", functions::getStrategy, METH_VARARGS, "(analysis) -> the strategy chosen"},
    {"qmStaticStrength_setStrategy", functions::setStrategy, METH_VARARGS, "(analysis, strategy) -> None"},
    {"qmStaticStrength_getGravity", functions::getGravity, METH_VARARGS,
     "(analysis, vector) -> its magnitude, cm/s², and the vector written"},
    {"qmStaticStrength_getSiteLoad", functions::getSiteLoad, METH_VARARGS,
     "(analysis, site, load) -> 1 and the load written, or 0"},
    {"qmStaticStrength_getSiteWeight", functions::getSiteWeight, METH_VARARGS,
     "(analysis, site) -> grams; -1 without a weight"},
    {"qmStaticStrength_getLoadType", functions::getLoadType, METH_VARARGS,
     "(analysis, site) -> \"global\", \"local\" or \"weight\"; None without a load"},
    {"qmStaticStrength_getNthLoadSite", functions::getNthLoadSite, METH_VARARGS,
     "(analysis, n) -> the site of the n-th load, from 0; \"NULL\" when there is none"},
    {"qmStaticStrength_getNumLoads", functions::getNumLoads, METH_VARARGS, "(analysis) -> how many loads"},
    {"qmStaticStrength_getJointForces", functions::getJointForces, METH_VARARGS,
     "(analysis, joint, force, moment) -> 1 and the result written, or 0"},
    {"qmStaticStrength_run_script", functions::run_script, METH_VARARGS, "(analysis) -> None"},
    {"qmStaticStrength_isActive", functions::isActive, METH_VARARGS, "(analysis) -> 1 or 0"},
    {"qmStaticStrength_deactivate", functions::deactivate, METH_VARARGS, "(analysis) -> 1"},
    {"qmStaticStrength_activate", functions::activate, METH_VARARGS,
     "(analysis, script=none) -> 1; 0 when already active"},
    {"qmStaticStrength_compute", functions::compute, METH_VARARGS, "(analysis) -> 1"},
    {"qmStaticStrength_setGravity", functions::setGravity, METH_VARARGS, "(analysis, vector) -> None; cm/s²"},
    {"qmStaticStrength_reset", functions::reset, METH_VARARGS,
     "(analysis) -> 1 when a saved list was restored whole, else 0"},
    {"qmStaticStrength_clear", functions::clear, METH_VARARGS, "(analysis) -> None"},
    {"qmStaticStrength_removeLoad", functions::removeLoad, METH_VARARGS, "(analysis, site) -> 1; 0 without a load"},
    {"qmStaticStrength_setLoad", functions::setLoad, METH_VARARGS,
     "(analysis, site, load, kind=0) -> 1 or 0; kgf, kind 0 global, 1 local"},
    {"qmStaticStrength_setWeightLoad", functions::setWeightLoad, METH_VARARGS, "(analysis, site, grams) -> 1 or 0"},
    {"qmStaticStrength_getNumLoadsWithOffset", functions::getNumLoadsWithOffset, METH_VARARGS,
     "(analysis) -> how many loads with offsets"},
    {"qmStaticStrength_getNthLoadWithOffset", functions::getNthLoadWithOffset, METH_VARARGS,
     "(analysis, n) -> the n-th record, from 0; \"NULL\" when there is none"},
    {"qmStaticStrength_removeLoadWithOffset", functions::removeLoadWithOffset, METH_VARARGS,
     "(analysis, record) -> 1, the record is gone; or 0"},
    {"qmStaticStrength_setLoadWithOffset", functions::setLoadWithOffset, METH_VARARGS,
     "(analysis, site, offset, load, local=0) -> the record; cm, kgf"},
    {"qmStaticStrength_setWeightLoadWithOffset", functions::setWeightLoadWithOffset, METH_VARARGS,
     "(analysis, site, offset, grams) -> the record; cm"},
    {"qmStaticStrength_getDefinedTorque", functions::getDefinedTorque, METH_VARARGS,
     "(analysis, joint, torque) -> 1 and the torque written, N·m, or 0"},
    {"qmStaticStrength_getNthDefinedTorqueJoint", functions::getNthDefinedTorqueJoint, METH_VARARGS,
     "(analysis, n) -> the joint of the n-th torque, from 0; \"NULL\" when there is none"},
    {"qmStaticStrength_getNumDefinedTorques", functions::getNumDefinedTorques, METH_VARARGS,
     "(analysis) -> how many torques"},
    {"qmStaticStrength_removeDefinedTorque", functions::removeDefinedTorque, METH_VARARGS,
     "(analysis, joint) -> 1; 0 without a torque"},
    {"qmStaticStrength_setDefinedTorque", functions::setDefinedTorque, METH_VARARGS,
     "(analysis, joint, torque) -> 1 or 0; N·m"},
    {"delete_qmStaticStrength", functions::deleteQmStaticStrength, METH_VARARGS,
     "(analysis) -> None; nothing for \"NULL\""},
    {"new_qmStaticStrength", functions::newQmStaticStrength, METH_VARARGS, "(human) -> a new analysis"},
    {"string_set", functions::stringSet, METH_VARARGS, "(array, i, value) -> the value, stored as element i"},
    {"string_get", functions::stringGet, METH_VARARGS, "(array, i) -> element i"},
    {"string_destroy", functions::stringDestroy, METH_VARARGS, "(array) -> None, the array is freed"},
    {"string_array", functions::stringArray, METH_VARARGS, "(n) -> a new array of n elements"},
    {"float_set", functions::floatSet, METH_VARARGS, "(array, i, value) -> the value, stored as element i"},
    {"float_get", functions::floatGet, METH_VARARGS, "(array, i) -> element i"},
    {"float_destroy", functions::floatDestroy, METH_VARARGS, "(array) -> None, the array is freed"},
    {"float_array", functions::floatArray, METH_VARARGS, "(n) -> a new array of n elements"},
    {"double_set", functions::doubleSet, METH_VARARGS, "(array, i, value) -> the value, stored as element i"},
    {"double_get", functions::doubleGet, METH_VARARGS, "(array, i) -> element i"},
    {"double_destroy", functions::doubleDestroy, METH_VARARGS, "(array) -> None, the array is freed"},
    {"double_array", functions::doubleArray, METH_VARARGS, "(n) -> a new array of n elements"},
    {"int_set", functions::intSet, METH_VARARGS, "(array, i, value) -> the value, stored as element i"},
    {"int_get", functions::intGet, METH_VARARGS, "(array, i) -> element i"},
    {"int_destroy", functions::intDestroy, METH_VARARGS, "(array) -> None, the array is freed"},
    {"int_array", functions::intArray, METH_VARARGS, "(n) -> a new array of n elements"},
    {"ptrmap", functions::ptrmap, METH_VARARGS, "(type, type) -> None; each then stands for the other"},
    {"ptradd", functions::ptradd, METH_VARARGS, "(pointer, n) -> the pointer n elements on"},
    {"ptrfree", functions::ptrfree, METH_VARARGS, "(pointer) -> None, the array is freed"},
    {"ptrcreate", functions::ptrcreate, METH_VARARGS,
     "(type, value, n=1) -> a new array of n elements, all of that value"},
    {"ptrset", functions::ptrset, METH_VARARGS, "(pointer, value, i=0, type) -> None, the value stored as element i"},
    {"ptrvalue", functions::ptrvalue, METH_VARARGS, "(pointer, i=0, type) -> element i"},
    {"ptrcast", functions::ptrcast, METH_VARARGS,
     "(pointer or address, type) -> the address as a pointer of that type"},
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

}   // namespace

DECLARE_MODULE_INIT(libqmSSTRc);

MODULE_INIT_FUNC(libqmSSTRc)
{
    if (!makeGlobalVariables())
        return nullptr;
    PyObject* module = PyModule_Create(&definition);
    if (!module || !enterConstants(PyModule_GetDict(module)))
        return nullptr;
    for (const auto& pair : equivalences)
        pointers::registerType(pair.type, pair.equivalent, nullptr);
    return module;
}
