// Analysis: life, computation, results and report, as functions of the module.
#include "AnalysisTypes.h"
#include "Functions.h"

namespace functions {

// qmStaticStrength_calcForcesAt(analysis, jointPos, point, f, sumForce, sumMoment) -> None, the sums grown
PyObject* calcForcesAt(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Object<qVector> jointPos, point, f, sumForce, sumMoment;
    if (!PyArg_ParseTuple(args, "ssssss:qmStaticStrength_calcForcesAt", &analysis.text, &jointPos.text, &point.text,
                          &f.text, &sumForce.text, &sumMoment.text)
        || !decode("qmStaticStrength_calcForcesAt", analysis, jointPos, point, f, sumForce, sumMoment))
        return nullptr;
    analysis->calcForcesAt(*jointPos, *point, *f, *sumForce, *sumMoment);
    return none();
}

// qmStaticStrength_setFMonJoint(analysis, joint, force, moment) -> None
PyObject* setFMonJoint(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcJoint> joint;
    Object<qVector> force, moment;
    if (!PyArg_ParseTuple(args, "ssss:qmStaticStrength_setFMonJoint", &analysis.text, &joint.text, &force.text,
                          &moment.text)
        || !decode("qmStaticStrength_setFMonJoint", analysis, joint, force, moment))
        return nullptr;
    analysis->setFMonJoint(joint, *force, *moment);
    return none();
}

// qmStaticStrength_getSplitFactor(analysis, joint, mode, name) -> 0 to 1
PyObject* getSplitFactor(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcJoint> joint;
    int mode;
    char* otherName;
    if (!PyArg_ParseTuple(args, "ssis:qmStaticStrength_getSplitFactor", &analysis.text, &joint.text, &mode, &otherName)
        || !decode("qmStaticStrength_getSplitFactor", analysis, joint))
        return nullptr;
    return toPython(analysis->getSplitFactor(joint, mode, otherName));
}

// qmStaticStrength_reportLoads(analysis, start=0) -> a line; None when the report is over
PyObject* reportLoads(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    int start = 0;
    if (!PyArg_ParseTuple(args, "s|i:qmStaticStrength_reportLoads", &analysis.text, &start)
        || !decode("qmStaticStrength_reportLoads", analysis))
        return nullptr;
    return toPython(analysis->reportLoads(start));
}

// qmStaticStrength_getHuman(analysis) -> its human
PyObject* getHuman(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    if (!PyArg_ParseTuple(args, "s:qmStaticStrength_getHuman", &analysis.text)
        || !decode("qmStaticStrength_getHuman", analysis))
        return nullptr;
    return pointerToPython(analysis->getHuman());
}

// qmStaticStrength_getHandle(human) -> its analysis, made on first request
PyObject* getHandle(PyObject*, PyObject* args)
{
    Pointer<qcHuman> human;
    if (!PyArg_ParseTuple(args, "s:qmStaticStrength_getHandle", &human.text)
        || !decode("qmStaticStrength_getHandle", human))
        return nullptr;
    return pointerToPython(qmStaticStrength::getHandle(human));
}

// qmStaticStrength_getStrategyName(strategy) -> its text; None for a strategy without one
PyObject* getStrategyName(PyObject*, PyObject* args)
{
    int strategy;
    if (!PyArg_ParseTuple(args, "i:qmStaticStrength_getStrategyName", &strategy))
        return nullptr;
    return toPython(qmStaticStrength::getStrategyName(static_cast<qmStaticStrength::Strategy>(strategy)));
}

// qmStaticStrength_getStrategy(analysis) -> the strategy chosen
PyObject* getStrategy(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    if (!PyArg_ParseTuple(args, "s:qmStaticStrength_getStrategy", &analysis.text)
        || !decode("qmStaticStrength_getStrategy", analysis))
        return nullptr;
    return toPython(static_cast<int>(analysis->getStrategy()));
}

// qmStaticStrength_setStrategy(analysis, strategy) -> None
PyObject* setStrategy(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    int strategy;
    if (!PyArg_ParseTuple(args, "si:qmStaticStrength_setStrategy", &analysis.text, &strategy)
        || !decode("qmStaticStrength_setStrategy", analysis))
        return nullptr;
    analysis->setStrategy(static_cast<qmStaticStrength::Strategy>(strategy));
    return none();
}

// qmStaticStrength_getGravity(analysis, vector) -> its magnitude, cm/s², and the vector written
PyObject* getGravity(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Object<qVector> gravity;
    if (!PyArg_ParseTuple(args, "ss:qmStaticStrength_getGravity", &analysis.text, &gravity.text)
        || !decode("qmStaticStrength_getGravity", analysis, gravity))
        return nullptr;
    return toPython(analysis->getGravity(*gravity));
}

// qmStaticStrength_getJointForces(analysis, joint, force, moment) -> 1 and the result written, or 0
PyObject* getJointForces(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Pointer<qcJoint> joint;
    Object<qVector> force, moment;
    if (!PyArg_ParseTuple(args, "ssss:qmStaticStrength_getJointForces", &analysis.text, &joint.text, &force.text,
                          &moment.text)
        || !decode("qmStaticStrength_getJointForces", analysis, joint, force, moment))
        return nullptr;
    return toPython(analysis->getJointForces(joint, *force, *moment));
}

// qmStaticStrength_run_script(analysis) -> None
PyObject* run_script(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    if (!PyArg_ParseTuple(args, "s:qmStaticStrength_run_script", &analysis.text)
        || !decode("qmStaticStrength_run_script", analysis))
        return nullptr;
    analysis->run_script();
    return none();
}

// qmStaticStrength_isActive(analysis) -> 1 or 0
PyObject* isActive(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    if (!PyArg_ParseTuple(args, "s:qmStaticStrength_isActive", &analysis.text)
        || !decode("qmStaticStrength_isActive", analysis))
        return nullptr;
    return toPython(analysis->isActive());
}

// qmStaticStrength_deactivate(analysis) -> 1
PyObject* deactivate(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    if (!PyArg_ParseTuple(args, "s:qmStaticStrength_deactivate", &analysis.text)
        || !decode("qmStaticStrength_deactivate", analysis))
        return nullptr;
    return toPython(analysis->deactivate());
}

// qmStaticStrength_activate(analysis, script=none) -> 1; 0 when already active
PyObject* activate(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    char* script = nullptr;
    if (!PyArg_ParseTuple(args, "s|s:qmStaticStrength_activate", &analysis.text, &script)
        || !decode("qmStaticStrength_activate", analysis))
        return nullptr;
    return toPython(analysis->activate(script));
}

// qmStaticStrength_compute(analysis) -> 1
PyObject* compute(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    if (!PyArg_ParseTuple(args, "s:qmStaticStrength_compute", &analysis.text)
        || !decode("qmStaticStrength_compute", analysis))
        return nullptr;
    return toPython(analysis->compute());
}

// qmStaticStrength_setGravity(analysis, vector) -> None; cm/s²
PyObject* setGravity(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    Object<qVector> gravity;
    if (!PyArg_ParseTuple(args, "ss:qmStaticStrength_setGravity", &analysis.text, &gravity.text)
        || !decode("qmStaticStrength_setGravity", analysis, gravity))
        return nullptr;
    analysis->setGravity(*gravity);
    return none();
}

// qmStaticStrength_reset(analysis) -> 1 when a saved list was restored whole, else 0
PyObject* reset(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    if (!PyArg_ParseTuple(args, "s:qmStaticStrength_reset", &analysis.text)
        || !decode("qmStaticStrength_reset", analysis))
        return nullptr;
    return toPython(analysis->reset());
}

// qmStaticStrength_clear(analysis) -> None
PyObject* clear(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    if (!PyArg_ParseTuple(args, "s:qmStaticStrength_clear", &analysis.text)
        || !decode("qmStaticStrength_clear", analysis))
        return nullptr;
    analysis->clear();
    return none();
}

// delete_qmStaticStrength(analysis) -> None; nothing for "NULL"
PyObject* deleteQmStaticStrength(PyObject*, PyObject* args)
{
    Pointer<qmStaticStrength> analysis;
    if (!PyArg_ParseTuple(args, "s:delete_qmStaticStrength", &analysis.text)
        || !decode("delete_qmStaticStrength", analysis))
        return nullptr;
    delete analysis.object;
    return none();
}

// new_qmStaticStrength(human) -> a new analysis
PyObject* newQmStaticStrength(PyObject*, PyObject* args)
{
    Object<qcHuman> human;
    if (!PyArg_ParseTuple(args, "s:new_qmStaticStrength", &human.text) || !decode("new_qmStaticStrength", human))
        return nullptr;
    auto analysis = std::make_unique<qmStaticStrength>(human);
    PyObject* result = pointerToPython(analysis.get());
    if (result)
        (void)analysis.release();   // Python's from now on
    return result;
}

}   // namespace functions
