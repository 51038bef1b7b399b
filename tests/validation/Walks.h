// Walks: which joints each kind of support makes the analysis walk, from where, and what hangs on which.
#pragma once

#include "HostFigure.h"

#include "qmStaticStrength.h"

#include <vector>

enum class Support { kRightFoot, kLeftFoot, kSittingNoFeet, kUpperBody };
constexpr Support kSupports[] = {Support::kRightFoot, Support::kLeftFoot, Support::kSittingNoFeet, Support::kUpperBody};

const char* nameOf(Support support);
qmStaticStrength::Strategy strategyOf(Support support);   ///< the upper body: that of two feet

/// One joint as a walk meets it.
struct WalkStep {
    int joint;               // the body that it carries
    int beyond;              // the body on its far side
    bool upward;             // the far side is the parent's
    std::vector<int> next;   // steps whose results enter this one
    int before = -1;         // the step of the same joint whose sums this one goes on with; -1: none
};

/// All joints with a result, each after those that enter it.
///
///   on a foot           from that foot through its ankle, everything; then, on top of the ankle, the foot itself
///   sitting, no feet    from the pelvis through the waist and through each hip
///   upper body          from the pelvis through the waist
std::vector<WalkStep> stepsOf(Support support, const Figure& figure, HostFigure& host);

/// The body of the standing foot; -1 without one.
int footOf(Support support, HostFigure& host);
