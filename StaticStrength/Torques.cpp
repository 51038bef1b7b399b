// Torques: moments defined at joints, kept on the joint and in the figure's list.
#include "SavedLists.h"
#include "TorqueValues.h"
#include "qmStaticStrength.h"

qcValue* makeTorqueValue(const qVector& torque)
{
    ListBuilder list;
    list.append(torque);
    return list.newList();
}

int decodeTorqueValue(const qcValue& value, qVector& torque)
{
    return readVector(value.firstElement(), torque);
}

int parseTorqueEntry(const qcValue& entry, char*& name, qcValue** newValue)
{
    const qcValue* element = entry.firstElement();
    if (!element || !element->get(name))
        return 0;
    qVector torque;
    if (!readVector(element->next, torque))
        return 0;
    if (newValue)
        *newValue = makeTorqueValue(torque);
    return 1;
}

int qmStaticStrength::setDefinedTorque(qcJoint* joint, qVector& torque)
{
    if (!joint)
        return 0;
    qcValue* value = makeTorqueValue(torque);
    joint->setProperty(kTorqueKey, *value);
    updateSavedList(figure, kTorqueListKey, joint->getName(), value);
    qcValue::destroy(value);
    return 1;
}

int qmStaticStrength::removeDefinedTorque(qcJoint* joint)
{
    qcValue value;
    if (!joint || !joint->getProperty(kTorqueKey, &value))
        return 0;
    joint->removeProperty(kTorqueKey);
    updateSavedList(figure, kTorqueListKey, joint->getName(), nullptr);
    return 1;
}

int qmStaticStrength::getNumDefinedTorques() const
{
    return countSavedEntries(figure, kTorqueListKey);
}

qcJoint* qmStaticStrength::getNthDefinedTorqueJoint(int n) const
{
    const qcValue key = nthSavedKey(figure, kTorqueListKey, n);
    char* name;
    return key.get(name) ? figure->findJoint(name) : nullptr;
}

int qmStaticStrength::getDefinedTorque(qcJoint* joint, qVector& out) const
{
    qcValue value;
    return joint && joint->getProperty(kTorqueKey, &value) ? decodeTorqueValue(value, out) : 0;
}
