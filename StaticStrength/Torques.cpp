// Torques: moments defined at joints, kept on the joint and in the figure's list.
#include "OutOfMemory.h"
#include "SavedLists.h"
#include "TorqueValues.h"
#include "qmStaticStrength.h"

#include <utility>

namespace {

// Puts a torque value on a joint and into the figure's list; null takes it off.
void storeTorque(qcJoint* joint, qcFigure* figure, OwnedValue value)
{
    storeWithEntry(joint, kTorqueKey, figure, kTorqueListKey, joint->getName(), std::move(value));
}

}   // namespace

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
    if (isOrphaned("setDefinedTorque"))
        return 0;
    if (!joint)
        return 0;
    return hasMemoryFor("setDefinedTorque", [&] { storeTorque(joint, figure, OwnedValue(makeTorqueValue(torque))); });
}

int qmStaticStrength::removeDefinedTorque(qcJoint* joint)
{
    if (isOrphaned("removeDefinedTorque"))
        return 0;
    return resultOr(0, "removeDefinedTorque", [&] {
        qcValue value;
        if (!joint || !joint->getProperty(kTorqueKey, &value))
            return 0;
        storeTorque(joint, figure, nullptr);
        return 1;
    });
}

int qmStaticStrength::getNumDefinedTorques() const
{
    if (isOrphaned("getNumDefinedTorques"))
        return 0;
    return resultOr(0, "getNumDefinedTorques", [&] { return countSavedEntries(figure, kTorqueListKey); });
}

qcJoint* qmStaticStrength::getNthDefinedTorqueJoint(int n) const
{
    if (isOrphaned("getNthDefinedTorqueJoint"))
        return nullptr;
    return resultOr<qcJoint*>(nullptr, "getNthDefinedTorqueJoint", [&] {
        const qcValue key = nthSavedKey(figure, kTorqueListKey, n);
        char* name;
        return key.get(name) ? figure->findJoint(name) : nullptr;
    });
}

int qmStaticStrength::getDefinedTorque(qcJoint* joint, qVector& out) const
{
    if (isOrphaned("getDefinedTorque"))
        return 0;
    return resultOr(0, "getDefinedTorque", [&] {
        qcValue value;
        return joint && joint->getProperty(kTorqueKey, &value) ? decodeTorqueValue(value, out) : 0;
    });
}
