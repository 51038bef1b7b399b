// Leg terms: what enters the methods by which the legs of two feet and of sitting are computed.
//
// Their results are not plain sums of what lies beyond a joint, so nothing here has a share of one.
#pragma once

#include "Trace.h"

#include <optional>
#include <string>
#include <vector>

/// What enters a leg's result. The forces of a joint's terms add up to the force stored there.
struct LegTerm {
    std::string what;   // "segment weight", "joint result", …
    std::string place;
    float factor = 1;                               // how much of the force counts
    std::optional<qVector> point = std::nullopt;    // where the force acts, cm; absent: it adds no moment by its place
    qVector force = {};                             // kgf, as it counts
    std::optional<qVector> couple = std::nullopt;   // a moment that it brings itself, N·m, as it counts
};

/// How one joint of a leg came to its result.
struct LegTerms {
    std::string support;              // two feet: "both-feet", "right-foot" or "left-foot"; sitting: empty
    std::optional<float> share[2];    // both feet: what each leg carries, percent, by qcSide
    std::vector<std::string> rules;   // sentences: how the terms make up the result
    std::vector<LegTerm> terms;
    std::string notCounted;   // what a reader might expect among the terms
};

enum class LegJoint { kHip, kKnee, kAnkle };

/// The terms of a joint of the last computation under two feet or, without the knees, sitting.
LegTerms standingLegTerms(qmStaticStrength& analysis, LegJoint joint, qcSide side);
LegTerms sittingLegTerms(qmStaticStrength& analysis, LegJoint joint, qcSide side);

/// "segment weight", "local load", "weight with offset", … : what a contribution is called.
std::string nameOf(const Contribution& contribution);
