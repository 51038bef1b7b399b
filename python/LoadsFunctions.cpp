// Loads: loads, loads with offsets and torques, as functions of the module.
#include "AnalysisTypes.h"
#include "Functions.h"

namespace {

// A record that was just made. Without memory for its name the load is taken back.
PyObject* newRecordToPython(qmStaticStrength& analysis, loadWithOffset* record)
{
    PyObject* result = pointerToPython(record);
    if (!result)
        analysis.removeLoadWithOffset(record);   // null too
    return result;
}

}   // namespace

namespace functions {

// qmStaticStrength_getSiteLoad(analysis, site, load) -> 1 and the load written, or 0
PyObject* getSiteLoad(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcSite> site;
    Object<qVector> load;
    if (!PyArg_ParseTuple(args, "sss:qmStaticStrength_getSiteLoad", &analysis.text, &site.text, &load.text)
        || !decode("qmStaticStrength_getSiteLoad", analysis, site, load))
        return nullptr;
    return toPython(analysis->getSiteLoad(site, *load));
}

// qmStaticStrength_getSiteWeight(analysis, site) -> grams; -1 without a weight
PyObject* getSiteWeight(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcSite> site;
    if (!PyArg_ParseTuple(args, "ss:qmStaticStrength_getSiteWeight", &analysis.text, &site.text)
        || !decode("qmStaticStrength_getSiteWeight", analysis, site))
        return nullptr;
    return toPython(analysis->getSiteWeight(site));
}

// qmStaticStrength_getLoadType(analysis, site) -> "global", "local" or "weight"; None without a load
PyObject* getLoadType(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcSite> site;
    if (!PyArg_ParseTuple(args, "ss:qmStaticStrength_getLoadType", &analysis.text, &site.text)
        || !decode("qmStaticStrength_getLoadType", analysis, site))
        return nullptr;
    return toPython(analysis->getLoadType(site));
}

// qmStaticStrength_getNthLoadSite(analysis, n) -> the site of the n-th load, from 0; "NULL" when there is none
PyObject* getNthLoadSite(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    int n;
    if (!PyArg_ParseTuple(args, "si:qmStaticStrength_getNthLoadSite", &analysis.text, &n)
        || !decode("qmStaticStrength_getNthLoadSite", analysis))
        return nullptr;
    return pointerToPython(analysis->getNthLoadSite(n));
}

// qmStaticStrength_getNumLoads(analysis) -> how many loads
PyObject* getNumLoads(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    if (!PyArg_ParseTuple(args, "s:qmStaticStrength_getNumLoads", &analysis.text)
        || !decode("qmStaticStrength_getNumLoads", analysis))
        return nullptr;
    return toPython(analysis->getNumLoads());
}

// qmStaticStrength_removeLoad(analysis, site) -> 1; 0 without a load
PyObject* removeLoad(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcSite> site;
    if (!PyArg_ParseTuple(args, "ss:qmStaticStrength_removeLoad", &analysis.text, &site.text)
        || !decode("qmStaticStrength_removeLoad", analysis, site))
        return nullptr;
    return toPython(analysis->removeLoad(site));
}

// qmStaticStrength_setLoad(analysis, site, load, kind=0) -> 1 or 0; kgf, kind 0 global, 1 local
PyObject* setLoad(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcSite> site;
    Object<qVector> load;
    int kind = 0;
    if (!PyArg_ParseTuple(args, "sss|i:qmStaticStrength_setLoad", &analysis.text, &site.text, &load.text, &kind)
        || !decode("qmStaticStrength_setLoad", analysis, site, load))
        return nullptr;
    return toPython(analysis->setLoad(site, *load, kind));
}

// qmStaticStrength_setWeightLoad(analysis, site, grams) -> 1 or 0
PyObject* setWeightLoad(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcSite> site;
    float weight;
    if (!PyArg_ParseTuple(args, "ssf:qmStaticStrength_setWeightLoad", &analysis.text, &site.text, &weight)
        || !decode("qmStaticStrength_setWeightLoad", analysis, site))
        return nullptr;
    return toPython(analysis->setWeightLoad(site, weight));
}

// qmStaticStrength_getNumLoadsWithOffset(analysis) -> how many loads with offsets
PyObject* getNumLoadsWithOffset(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    if (!PyArg_ParseTuple(args, "s:qmStaticStrength_getNumLoadsWithOffset", &analysis.text)
        || !decode("qmStaticStrength_getNumLoadsWithOffset", analysis))
        return nullptr;
    return toPython(analysis->getNumLoadsWithOffset());
}

// qmStaticStrength_getNthLoadWithOffset(analysis, n) -> the n-th record, from 0; "NULL" when there is none
PyObject* getNthLoadWithOffset(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    int n;
    if (!PyArg_ParseTuple(args, "si:qmStaticStrength_getNthLoadWithOffset", &analysis.text, &n)
        || !decode("qmStaticStrength_getNthLoadWithOffset", analysis))
        return nullptr;
    return pointerToPython(analysis->getNthLoadWithOffset(n));
}

// qmStaticStrength_removeLoadWithOffset(analysis, record) -> 1, the record is gone; or 0
PyObject* removeLoadWithOffset(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<loadWithOffset> record;
    if (!PyArg_ParseTuple(args, "ss:qmStaticStrength_removeLoadWithOffset", &analysis.text, &record.text)
        || !decode("qmStaticStrength_removeLoadWithOffset", analysis, record))
        return nullptr;
    return toPython(analysis->removeLoadWithOffset(record));
}

// qmStaticStrength_setLoadWithOffset(analysis, site, offset, load, local=0) -> the record; cm, kgf
PyObject* setLoadWithOffset(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcSite> site;
    Object<qVector> offset, load;
    int local = 0;
    if (!PyArg_ParseTuple(args, "ssss|i:qmStaticStrength_setLoadWithOffset", &analysis.text, &site.text, &offset.text,
                          &load.text, &local)
        || !decode("qmStaticStrength_setLoadWithOffset", analysis, site, offset, load))
        return nullptr;
    return newRecordToPython(*analysis.object, analysis->setLoadWithOffset(site, *offset, *load, local));
}

// qmStaticStrength_setWeightLoadWithOffset(analysis, site, offset, grams) -> the record; cm
PyObject* setWeightLoadWithOffset(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcSite> site;
    Object<qVector> offset;
    float weight;
    if (!PyArg_ParseTuple(args, "sssf:qmStaticStrength_setWeightLoadWithOffset", &analysis.text, &site.text,
                          &offset.text, &weight)
        || !decode("qmStaticStrength_setWeightLoadWithOffset", analysis, site, offset))
        return nullptr;
    return newRecordToPython(*analysis.object, analysis->setWeightLoadWithOffset(site, *offset, weight));
}

// qmStaticStrength_getDefinedTorque(analysis, joint, torque) -> 1 and the torque written, N·m, or 0
PyObject* getDefinedTorque(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcJoint> joint;
    Object<qVector> torque;
    if (!PyArg_ParseTuple(args, "sss:qmStaticStrength_getDefinedTorque", &analysis.text, &joint.text, &torque.text)
        || !decode("qmStaticStrength_getDefinedTorque", analysis, joint, torque))
        return nullptr;
    return toPython(analysis->getDefinedTorque(joint, *torque));
}

// qmStaticStrength_getNthDefinedTorqueJoint(analysis, n) -> the joint of the n-th torque, from 0; "NULL" when there is
// none
PyObject* getNthDefinedTorqueJoint(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    int n;
    if (!PyArg_ParseTuple(args, "si:qmStaticStrength_getNthDefinedTorqueJoint", &analysis.text, &n)
        || !decode("qmStaticStrength_getNthDefinedTorqueJoint", analysis))
        return nullptr;
    return pointerToPython(analysis->getNthDefinedTorqueJoint(n));
}

// qmStaticStrength_getNumDefinedTorques(analysis) -> how many torques
PyObject* getNumDefinedTorques(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    if (!PyArg_ParseTuple(args, "s:qmStaticStrength_getNumDefinedTorques", &analysis.text)
        || !decode("qmStaticStrength_getNumDefinedTorques", analysis))
        return nullptr;
    return toPython(analysis->getNumDefinedTorques());
}

// qmStaticStrength_removeDefinedTorque(analysis, joint) -> 1; 0 without a torque
PyObject* removeDefinedTorque(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcJoint> joint;
    if (!PyArg_ParseTuple(args, "ss:qmStaticStrength_removeDefinedTorque", &analysis.text, &joint.text)
        || !decode("qmStaticStrength_removeDefinedTorque", analysis, joint))
        return nullptr;
    return toPython(analysis->removeDefinedTorque(joint));
}

// qmStaticStrength_setDefinedTorque(analysis, joint, torque) -> 1 or 0; N·m
PyObject* setDefinedTorque(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcJoint> joint;
    Object<qVector> torque;
    if (!PyArg_ParseTuple(args, "sss:qmStaticStrength_setDefinedTorque", &analysis.text, &joint.text, &torque.text)
        || !decode("qmStaticStrength_setDefinedTorque", analysis, joint, torque))
        return nullptr;
    return toPython(analysis->setDefinedTorque(joint, *torque));
}

}   // namespace functions
