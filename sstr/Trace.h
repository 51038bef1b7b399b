// Trace: follows the walks of a computation once more and notes what every weight, load and torque adds to
// the result of one joint.
#pragma once

#include "qmStaticStrength.h"

#include <optional>
#include <string>
#include <vector>

/// What one thing beyond a joint adds to the joint's force and moment.
struct Contribution {
    enum Kind {
        kSegmentWeight,
        kLoad,          ///< at a site
        kOffsetLoad,    ///< at a point displaced from a site
        kHandLoad,      ///< left on the figure for a hand, at the palm's centre
        kTorque,        ///< defined at a joint; no force
        kJointResult,   ///< a share of a stored result, taken in where a walk stops
        kPlaceholder    ///< what a joint's moment changes by when it is too small to be stored as it is; no force
    };
    Kind kind;
    std::string type;                              // of a load: "global", "local" or "weight"; else empty
    std::string place;                             // a segment, a site's key, or a joint
    float factor = 1;                              // how much of it counts, where a walk stops
    std::optional<qVector> point = std::nullopt;   // where the force acts, cm; absent without a force
    qVector force = {};                            // kgf, as it counts
    qVector moment = {};                           // N·m about the traced joint, as it counts

    /// Parts of the sum, percent: (m · M) / |M|², so that they add up to 100. Absent where the sum is
    /// negligible or no finite number, and until they are worked out.
    std::optional<float> forceShare = std::nullopt, momentShare = std::nullopt;
};

/// A joint further out whose result is negligible: it counts nothing further in, nor does what lies beyond.
struct LeftOut {
    std::string joint;
    int contributions;   // how many are left out
    qVector force;       // their sums there, kgf
    qVector moment;      // N·m, about that joint
};

/// What the last walk that passes a joint does there.
struct Trace {
    int walks = 0;          // how many walks make up the sum: 0 when none passes the joint, 2 when one adds to another
    bool stopped = false;   // on the way a walk stopped at a segment

    std::vector<Contribution> contributions;   // in the walk's order
    std::vector<LeftOut> leftOut;
    qVector force, moment;   // the sums at the joint as the walk forms them, kgf and N·m

    // What the walk stores.
    bool stored = false;
    qVector storedForce, storedMoment;
};

/// Traces the result of a joint. @param effective  the strategy of the last computation, never walking
Trace traceJoint(qmStaticStrength& analysis, qmStaticStrength::Strategy effective, qcJoint* joint);

/// Traces what a joint's next segment puts on it by itself, without the joints beyond.
/// @param site  the joint's site on the side away from the segment
Trace traceSegment(qmStaticStrength& analysis, qcJoint* joint, qcSite* site);

/// Whether a force (kgf) or a moment (N·m) is too small to be a result.
bool isNegligible(const qVector& sum);
