// Explanation: how the result of one joint comes about.
#pragma once

#include "LegTerms.h"
#include "Trace.h"

#include <optional>
#include <string>
#include <vector>

struct Explanation {
    enum Method {
        kNotReached,     ///< the strategy computes nothing there
        kWalk,           ///< a sum of contributions
        kStandingLegs,   ///< the method of two feet
        kSittingLegs
    };
    struct Result {
        qVector force;    // kgf
        qVector moment;   // N·m
    };
    enum Order { kByMoment, kByForce, kAsWalked };

    std::string human, figure;
    std::string strategyAsked, strategyEffective;
    std::string joint;
    Method method = kNotReached;

    // A walk.
    Trace trace;                // its contributions in the order of their shares
    Result sum;                 // of the contributions
    Order order = kAsWalked;    // by what they are sorted
    bool placeholder = false;   // the moment is negligible and stored as (0.00001, 0.00001, 0.00001)

    LegTerms legs;   // a leg's method

    std::optional<Result> stored;   // absent: the joint has no result

    /// Whether what is stored is finite; true without a result.
    bool isFinite() const;
};

/// Explains a joint of the last computation.
/// @param order  by what to sort; by the other, or as walked, where there are no such shares
Explanation explain(qmStaticStrength& analysis, qcJoint* joint, Explanation::Order order);

/// Each writes an explanation in one format, ending in a line break.
std::string tableOf(const Explanation& explanation);
std::string jsonOf(const Explanation& explanation);
