// Force and moment: the value in which a joint keeps its result.
#pragma once

#include "qc/qcFigure.h"
#include "qc/qcValue.h"

/// A joint's result: a list of two vectors, force (kgf) then moment (N·m). Absent: no result.
constexpr const char* kForceMomentKey = "SSTR_Force_Moment";

/// A result value.
qcValue makeForceMomentValue(const qVector& force, const qVector& moment);

/// Reads a result value. @return 1; 0 when it is none, both outputs are then left as they were
int decodeForceMomentValue(const qcValue& value, qVector& force, qVector& moment);

/// As getJointForces() and setFMonJoint(), for use inside the analysis. @throws std::bad_alloc
int readResult(const qcJoint* joint, qVector& force, qVector& moment);
void storeResult(qcJoint* joint, const qVector& force, const qVector& moment);
