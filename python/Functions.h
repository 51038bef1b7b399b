// Functions: everything that the module's table lists.
#pragma once

#include "wrapping/Wrapping.h"

namespace functions {

// RecordsFunctions.cpp
PyFunction loadWithOffsetLocalGet, loadWithOffsetMassGet, loadWithOffsetLoadGet, loadWithOffsetTypeGet,
    loadWithOffsetOffsetGet, loadWithOffsetSiteGet;

// AnalysisFunctions.cpp
PyFunction calcForcesAt, setFMonJoint, getSplitFactor, reportLoads, getHuman, getHandle, getStrategyName, getStrategy,
    setStrategy, getGravity, getJointForces, run_script, isActive, deactivate, activate, compute, setGravity, reset,
    clear, deleteQmStaticStrength, newQmStaticStrength;

// LoadsFunctions.cpp
PyFunction getSiteLoad, getSiteWeight, getLoadType, getNthLoadSite, getNumLoads, removeLoad, setLoad, setWeightLoad,
    getNumLoadsWithOffset, getNthLoadWithOffset, removeLoadWithOffset, setLoadWithOffset, setWeightLoadWithOffset,
    getDefinedTorque, getNthDefinedTorqueJoint, getNumDefinedTorques, removeDefinedTorque, setDefinedTorque;

// TypedArrays.cpp
PyFunction stringSet, stringGet, stringDestroy, stringArray, floatSet, floatGet, floatDestroy, floatArray, doubleSet,
    doubleGet, doubleDestroy, doubleArray, intSet, intGet, intDestroy, intArray;

// PointerLibrary.cpp
PyFunction ptrmap, ptradd, ptrfree, ptrcreate, ptrset, ptrvalue, ptrcast;

}   // namespace functions
