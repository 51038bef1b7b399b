// Walks: through which joints a computation goes, strategy by strategy, and in which order.
#pragma once

#include "qmStaticStrength.h"

#include <vector>

/// A walk through the tree, from a joint outward. Null where the human lacks the part; the computation has
/// then reported an error.
struct PlannedWalk {
    qcJoint* joint;     // the first one
    qcSite* site;       // its site on the side from which the walk comes
    qcSegment* stop;    // where the walk ends; null: at the ends of the tree
    bool onTopOfLast;   // its sums begin with those of the walk before, at the same joint
};

/// The walks of a computation in their order. A later walk's results replace those of an earlier one.
/// @param effective  never walking: what it came down to
std::vector<PlannedWalk> walksOf(qcHuman& human, qmStaticStrength::Strategy effective);
