// Torque values: how a defined torque stands in a property, and back.
#pragma once

#include "qc/qcValue.h"

constexpr const char* kTorqueKey = "SSTR_Torque";
constexpr const char* kTorqueListKey = "SSTR_TorqueList";

/// A new torque value: a list of one vector, N·m. @return made with `new`; the caller destroys it
qcValue* makeTorqueValue(const qVector& torque);

/// Reads a torque value. @return 1; 0 when it is none, `torque` is then left as it was
int decodeTorqueValue(const qcValue& value, qVector& torque);

/// Reads an entry of the torque list. A zero torque is one like any other.
/// @param name      receives the joint's name, which belongs to the entry
/// @param newValue  null: not wanted; else receives a new torque value, which the caller destroys
/// @return 1; 0 when the entry cannot be read
int parseTorqueEntry(const qcValue& entry, char*& name, qcValue** newValue);
