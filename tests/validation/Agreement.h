// Agreement: the analysis's results beside a witness's, joint by joint, within the bounds of WalkSums.h.
//
// Negligible sums. Where |F| <= 0.01 kgf and |M| <= 0.01 N·m the analysis leaves no result and goes on with zero; where
// only |M| is, with 1e-5 N·m in each component. The same is done to the witness's numbers: what the rule drops at a
// joint is taken off the joints further in. Only where a length lies within its bound of 0.01 is the analysis free to
// decide either way; elsewhere its decision must be the witness's.
#pragma once

#include "Testimony.h"

#include <string>
#include <vector>

/// The worst differences of one quantity, kgf or N·m, each component for itself.
struct Worst {
    double difference = 0;
    double ofBound = 0;   // the largest share of its bound

    void add(double difference, double bound);
};

struct Tally {
    int whole = 0, replaced = 0, removed = 0;   // results as summed, with a negligible moment, absent
    Worst force, moment;
    int disagreements = 0;
    std::vector<std::string> messages;   // the first disagreements

    void disagree(const std::string& message);
};

/// Compares what the analysis has stored on the joints with a testimony.
/// @param about  begins each message: which case this is
void compare(const std::vector<WalkStep>& steps, const Testimony& testimony, const Loading& loading,
             const HostFigure& host, const qmStaticStrength& analysis, const std::string& about, Tally& tally);
