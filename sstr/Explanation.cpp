// Explanation.
#include "Explanation.h"

#include "Names.h"
#include "Strategies.h"
#include "Support.h"

#include <algorithm>
#include <cmath>

namespace {

struct Sum {
    double x = 0, y = 0, z = 0;

    void add(const qVector& v)
    {
        x += double(v[0]);
        y += double(v[1]);
        z += double(v[2]);
    }
    double dot(const qVector& v) const { return x * double(v[0]) + y * double(v[1]) + z * double(v[2]); }
    double squared() const { return x * x + y * y + z * z; }
    qVector narrowed() const { return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)}; }
};

bool finite(const qVector& v)
{
    return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]) && std::isfinite(v.mag());
}

// The joint's part in a leg, if it plays one.
struct LegPart {
    LegJoint joint;
    qcSide side;
};
std::optional<LegPart> legPartOf(qcHuman& human, const qcJoint* joint)
{
    for (const qcSide side : {qcRight, qcLeft}) {
        if (joint == human.getHipJoint(side))
            return LegPart{LegJoint::kHip, side};
        if (joint == human.getKneeJoint(side))
            return LegPart{LegJoint::kKnee, side};
        if (joint == human.getAnkleJoint(side))
            return LegPart{LegJoint::kAnkle, side};
    }
    return std::nullopt;
}

// Sets the shares in the sum, which is returned. In double: a share is a quotient of sums of products.
Explanation::Result setShares(std::vector<Contribution>& contributions, bool ofForce, bool ofMoment)
{
    Sum force, moment;
    for (const Contribution& each : contributions) {
        force.add(each.force);
        moment.add(each.moment);
    }
    const auto share = [](const Sum& sum, const qVector& part, bool wanted) {
        return wanted ? std::optional(static_cast<float>(100.0 * sum.dot(part) / sum.squared())) : std::nullopt;
    };
    for (Contribution& each : contributions) {
        each.forceShare = share(force, each.force, ofForce);
        each.momentShare = share(moment, each.moment, ofMoment);
    }
    return {force.narrowed(), moment.narrowed()};
}

void sortBy(Explanation::Order order, std::vector<Contribution>& contributions)
{
    if (order == Explanation::kAsWalked)
        return;
    const auto share = order == Explanation::kByForce ? &Contribution::forceShare : &Contribution::momentShare;
    std::stable_sort(contributions.begin(), contributions.end(), [share](const auto& a, const auto& b) {
        return std::fabs((a.*share).value_or(0.0f)) > std::fabs((b.*share).value_or(0.0f));
    });
}

void explainWalk(Explanation& explanation, qmStaticStrength& analysis, qmStaticStrength::Strategy effective,
                 qcJoint* joint, Explanation::Order order)
{
    Trace& trace = explanation.trace;
    trace = traceJoint(analysis, effective, joint);
    if (trace.walks == 0)
        return;
    explanation.method = Explanation::kWalk;
    const bool ofForce = finite(trace.force) && !isNegligible(trace.force);
    const bool ofMoment = finite(trace.moment) && !isNegligible(trace.moment);
    explanation.placeholder = trace.stored && isNegligible(trace.moment);
    explanation.sum = setShares(trace.contributions, ofForce, ofMoment);
    const bool byMoment = ofMoment && (order == Explanation::kByMoment || !ofForce);
    explanation.order = byMoment ? Explanation::kByMoment : ofForce ? Explanation::kByForce : Explanation::kAsWalked;
    sortBy(explanation.order, trace.contributions);
}

}   // namespace

bool Explanation::isFinite() const
{
    return !stored || (finite(stored->force) && finite(stored->moment));
}

Explanation explain(qmStaticStrength& analysis, qcJoint* joint, Explanation::Order order)
{
    using Strategy = qmStaticStrength::Strategy;
    qcHuman& human = *analysis.getHuman();
    const Strategy effective = readSupport(analysis).effective;
    Explanation explanation;
    explanation.human = human.getName();
    explanation.figure = human.getFigure()->getName();
    explanation.strategyAsked = strategyText(analysis.getStrategy());
    explanation.strategyEffective = strategyText(effective);
    explanation.joint = jointName(human.getFigure(), joint);

    const std::optional<LegPart> leg = legPartOf(human, joint);
    if (leg && effective == Strategy::TwoFeet) {
        explanation.method = Explanation::kStandingLegs;
        explanation.legs = standingLegTerms(analysis, leg->joint, leg->side);
    } else if (leg && effective == Strategy::Sitting) {
        explanation.method = Explanation::kSittingLegs;
        explanation.legs = sittingLegTerms(analysis, leg->joint, leg->side);
    } else {
        explainWalk(explanation, analysis, effective, joint, order);
    }

    Explanation::Result stored;
    if (analysis.getJointForces(joint, stored.force, stored.moment))
        explanation.stored = stored;
    return explanation;
}
