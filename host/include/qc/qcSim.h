// Simulation: callbacks that the host runs on every simulation step.
#pragma once

#include "qc/qcExport.h"

/// A bound callback; opaque.
class qcCallback;

/// The host's simulation.
class QC_API qcSim {
public:
    /// Binds a function that the host then calls as `function(data)` whenever it runs the callbacks
    /// of that kind. @return a handle, good until it is unbound
    /// @throws std::bad_alloc, nothing is then bound
    static qcCallback* bindCallback(const char* kind, const char* owner, int (*function)(void*), void* data);

    /// Unbinds a callback; its handle is dead afterwards. Allowed while callbacks run, for the one
    /// that runs too. @return 1, or 0 for a handle that is not bound
    static int unbindCallback(qcCallback* callback);

    /// Runs the callbacks of kind "qc_simfunc" `steps` times, in the order in which they were bound.
    /// One bound during a step runs from the next step on. @return the number of calls made
    static int step(int steps);

    /// What the callbacks returned in the last step of the last step(), in the order of their calls.
    static int getNumResults();
    static int getResult(int i);   ///< 0 for an index outside

    /// The callbacks bound now, in binding order. The texts are valid until a callback is unbound;
    /// null for an index outside.
    static int getNumBound();
    static const char* getBoundKind(int i);
    static const char* getBoundOwner(int i);
};
