// Leg terms of sitting: each leg's own weights and loads, carried by hip and ankle.
#include "LegTerms.h"

#include "Names.h"

namespace {

// What acts on one segment beyond a joint, as terms; nothing where its sums are negligible.
void addSegment(LegTerms& result, qmStaticStrength& analysis, qcJoint* joint, const std::string& segmentName)
{
    const qcSegment* segment = analysis.getHuman()->getFigure()->findSegment(segmentName.c_str());
    const Trace trace = traceSegment(analysis, joint, joint->otherSite(joint->siteOnSegment(segment)));
    if (!trace.stored)
        return;
    for (const Contribution& each : trace.contributions) {
        LegTerm term{nameOf(each), each.place, 1, each.point, each.force, {}};
        if (!each.point)
            term.couple = each.moment;
        result.terms.push_back(term);
    }
    if (isNegligible(trace.moment)) {
        LegTerm placeholder{"placeholder", jointName(joint->getFigure(), joint)};
        qVector change = trace.storedMoment;
        change.sub(trace.moment);
        placeholder.couple = change;
        result.terms.push_back(placeholder);
    }
}

}   // namespace

LegTerms sittingLegTerms(qmStaticStrength& analysis, LegJoint joint, qcSide side)
{
    qcHuman& human = *analysis.getHuman();
    const bool hip = joint == LegJoint::kHip;
    const std::string name = side == qcRight ? "right" : "left";
    LegTerms result;
    if (joint == LegJoint::kKnee) {
        result.rules = {"Sitting leaves the knees without a result."};
        return result;
    }
    if (hip)
        result.rules = {
            "T = the upper leg's moment about the hip + the lower leg's about the knee - the lower leg's "
            "force × (hip - knee), in kgf·cm.",
            "The force has the size |T| / |hip - ankle| and the direction of the leg's own forces together; "
            "the ankle carries the rest.",
            "The moment is the part of T along the line from hip to ankle, times 0.01: its number is in kgf·m, not in "
            "N·m."};
    else
        result.rules = {"The force is what of the leg's own terms the hip does not carry.", "There is no moment."};

    addSegment(result, analysis, human.getHipJoint(side), name + "_upper_leg");
    addSegment(result, analysis, human.getKneeJoint(side), name + "_lower_leg");

    qcJoint* other = hip ? human.getAnkleJoint(side) : human.getHipJoint(side);
    LegTerm carried{hip ? "carried at the ankle" : "carried at the hip", jointName(human.getFigure(), other)};
    qVector ignored;
    analysis.getJointForces(other, carried.force, ignored);
    carried.force.scale(-1.0f);
    result.terms.push_back(carried);
    result.notCounted = "the upper body, loads and weights of the lower torso and of the feet, torques at the ankles";
    return result;
}
