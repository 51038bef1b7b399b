// Leg terms of two feet. The support is read off the ankles' results; the legs' shares follow from the balance
// about both ankles, formed in the order of the method and so to its bits.
#include "LegTerms.h"

#include "Names.h"

#include "Units.h"

#include <algorithm>

namespace {

constexpr double kKgfCmPerMoment = 10.204081632653061;   // 1 / 0.098: the method's own, not that of the walks

qVector scaled(qVector v, float factor)
{
    v.scale(factor);
    return v;
}

qVector difference(qVector a, const qVector& b)
{
    a.sub(b);
    return a;
}

// A term of which a part counts; of a moment that it brings, too.
LegTerm part(LegTerm term, float factor)
{
    term.factor *= factor;
    term.force.scale(factor);
    if (term.couple)
        term.couple->scale(factor);
    return term;
}

// A term whose force acts elsewhere, or nowhere that matters.
LegTerm at(LegTerm term, const std::optional<qVector>& point)
{
    term.point = point;
    return term;
}

struct Leg {
    qVector hipPos, anklePos;   // cm
    LegTerm upper, lower;       // their weights
};

/// The terms, and the sums that decide how the legs share them.
class Standing {
public:
    explicit Standing(qmStaticStrength& explained)
        : analysis(explained), human(*explained.getHuman()), figure(*human.getFigure())
    {
        gather();
        for (const qcSide side : {qcRight, qcLeft})
            balance(side);
        decide();
    }

    LegTerms terms(LegJoint joint, qcSide side) const;

private:
    static qcSide otherOf(qcSide side) { return side == qcRight ? qcLeft : qcRight; }
    static const char* nameOfSide(qcSide side) { return side == qcRight ? "right" : "left"; }

    void gather();
    std::vector<LegTerm> aboveAnkles(qcSide side) const;
    void balance(qcSide side);
    void decide();
    void share();

    std::vector<LegTerm> hipLoad(qcSide side) const;
    LegTerm ownWeight(const LegTerm& weight, qcSide side) const;

    void oneFoot(LegTerms& result, LegJoint joint, qcSide side) const;
    void bothFeet(LegTerms& result, LegJoint joint, qcSide side) const;
    LegTerm weightTerm(const char* name) const;

    qmStaticStrength& analysis;
    qcHuman& human;
    const qcFigure& figure;

    Leg leg[2];   // by qcSide, as all pairs here
    LegTerm torso, waist;
    std::optional<LegTerm> hPoint;

    qVector force[2], moment[2];   // all above the ankles, about each ankle
    std::optional<qcSide> foot;    // that alone carries; absent: both do
    float shares[2] = {0, 0};      // both feet: of each leg, 0 to 1
    qcSide lighter = qcRight;      // both feet: the leg that carries less
    qVector takenOff[2];           // both feet: what the other foot carries, kgf
};

LegTerm Standing::weightTerm(const char* name) const
{
    qcSegment* segment = figure.findSegment(name);
    qVector gravity;
    analysis.getGravity(gravity);
    LegTerm term{"segment weight", name};
    term.point = centerOfMassInWorld(segment);
    term.force = weightToLoad(gravity, segment->getMass());
    return term;
}

void Standing::gather()
{
    const qcSegment* lowerTorso = figure.findSegment("lower_torso");
    const auto positionOn = [](const qcJoint* joint, const qcSegment* segment) {
        return joint->siteOnSegment(segment)->getGlobalTransform().getTranslation();
    };
    for (const qcSide side : {qcRight, qcLeft}) {
        const std::string name = nameOfSide(side);
        const std::string upper = name + "_upper_leg", lower = name + "_lower_leg";
        leg[side].hipPos = positionOn(human.getHipJoint(side), lowerTorso);
        leg[side].anklePos = positionOn(human.getAnkleJoint(side), figure.findSegment(lower.c_str()));
        leg[side].upper = weightTerm(upper.c_str());
        leg[side].lower = weightTerm(lower.c_str());
    }
    torso = weightTerm("lower_torso");

    qcJoint* waistJoint = human.getWaistJoint();
    waist = {"joint result", jointName(&figure, waistJoint)};
    qVector couple;
    analysis.getJointForces(waistJoint, waist.force, couple);
    waist.couple = couple;
    waist.point = positionOn(waistJoint, lowerTorso);

    qcSite* site = figure.findSiteByFullName((std::string(lowerTorso->getFullName()) + ".h_point").c_str());
    qVector load;
    if (analysis.getSiteLoad(site, load)) {
        hPoint = LegTerm{nameOf({Contribution::kLoad, analysis.getLoadType(site), ""}), siteKey(site)};
        hPoint->force = load;   // a local load too counts as it is stored
        hPoint->point = site->getGlobalTransform().getTranslation();
    }
}

// In the order in which they are summed about one ankle.
std::vector<LegTerm> Standing::aboveAnkles(qcSide side) const
{
    const Leg &own = leg[side], &other = leg[otherOf(side)];
    std::vector<LegTerm> terms = {other.lower, other.upper, own.upper, own.lower, torso, waist};
    if (hPoint)
        terms.push_back(*hPoint);
    return terms;
}

void Standing::balance(qcSide side)
{
    qVector about = leg[side].anklePos;
    for (LegTerm& term : aboveAnkles(side))
        analysis.calcForcesAt(about, *term.point, term.force, force[side], moment[side]);
    moment[side].add(*waist.couple);
}

// The foot that does not carry is left with an ankle result of zero; with two of those the right one carries.
void Standing::decide()
{
    const auto isZero = [&](qcSide side) {
        qVector f, m;
        analysis.getJointForces(human.getAnkleJoint(side), f, m);
        return f.mag() == 0 && m.mag() == 0;
    };
    if (isZero(qcLeft))
        foot = qcRight;
    else if (isZero(qcRight))
        foot = qcLeft;
    else
        share();
}

// d from the right to the left ankle, down = (0, -1, 0), n = unit(d × down), K = 1 / 0.098:
//
//   F1 =  down · (MR · n) / |d| · K      F3 = -n · (MR · down) / |d| · K     what the left foot takes off the right
//   F2 = -down · (ML · n) / |d| · K      F4 =  n · (ML · down) / |d| · K     what the right foot takes off the left
//
//   share of the right leg = |F2| / (|F2| + |F1|)
void Standing::share()
{
    const qVector down(0.0f, -1.0f, 0.0f);
    const qVector d = difference(leg[qcLeft].anklePos, leg[qcRight].anklePos);
    qVector n = d;
    n.cross(down);
    n.normalize();
    const auto toKgf = [&d](float moment) { return static_cast<float>(double(moment / d.mag()) * kKgfCmPerMoment); };
    const qVector F1 = scaled(down, toKgf(moment[qcRight].dotProd(n)));
    const qVector F2 = scaled(down, toKgf(-moment[qcLeft].dotProd(n)));
    const qVector F3 = scaled(n, toKgf(-moment[qcRight].dotProd(down)));
    const qVector F4 = scaled(n, toKgf(moment[qcLeft].dotProd(down)));
    takenOff[qcRight] = F1 + F3;
    takenOff[qcLeft] = F2 + F4;
    shares[qcRight] = F2.mag() / (F2.mag() + F1.mag());
    shares[qcLeft] = static_cast<float>(1.0 - double(shares[qcRight]));
    lighter = shares[qcRight] <= shares[qcLeft] ? qcRight : qcLeft;
}

// What comes to a hip from above, before it is scaled to the ankle. The leg that carries less leaves its weights,
// doubled, to the other one by that one's share.
std::vector<LegTerm> Standing::hipLoad(qcSide side) const
{
    const float share = shares[side];
    std::vector<LegTerm> terms = {part(waist, share), part(torso, share)};
    if (hPoint)
        terms.push_back(part(*hPoint, share));
    if (side != lighter)
        for (const LegTerm& weight : {leg[lighter].upper, leg[lighter].lower})
            terms.push_back(part(weight, static_cast<float>(double(share) / 0.5)));
    return terms;
}

// A leg's own weight, of which the leg that carries less keeps its share.
LegTerm Standing::ownWeight(const LegTerm& weight, qcSide side) const
{
    return part(weight, side == lighter ? shares[side] : 1.0f);
}

void Standing::bothFeet(LegTerms& result, LegJoint joint, qcSide side) const
{
    const qcSide other = otherOf(side);
    result.support = "both-feet";
    for (const qcSide each : {qcRight, qcLeft})
        result.share[each] = shares[each] * 100.0f;
    if (joint == LegJoint::kAnkle) {
        result.rules = {"The force is the sum of the terms.",
                        "The moment is that of the terms about the ankle, with what the other foot carries acting at "
                        "the other ankle, times the leg's share.",
                        "What the other foot carries comes from a moment and adds one, both with 0.098 N·m for "
                        "1 kgf·cm; elsewhere that is 0.0980665."};
        result.terms = aboveAnkles(side);
        LegTerm taken{"carried by the other foot", jointName(&figure, human.getAnkleJoint(other))};
        taken.force = scaled(takenOff[side], -1.0f);
        taken.point = leg[other].anklePos;
        result.terms.push_back(taken);
        return;
    }

    std::vector<LegTerm> terms = hipLoad(side);
    qVector sum = ownWeight(leg[side].upper, side).force + ownWeight(leg[side].lower, side).force;
    for (const LegTerm& term : terms)
        sum.add(term.force);
    qVector atAnkle, ignored;
    analysis.getJointForces(human.getAnkleJoint(side), atAnkle, ignored);
    const float scale = atAnkle.mag() / sum.mag();
    const bool atKnee = joint == LegJoint::kKnee;
    const std::optional<qVector> point = atKnee ? std::optional(leg[side].hipPos) : std::nullopt;
    for (const LegTerm& term : terms)
        result.terms.push_back(at(part(term, scale), point));

    result.rules = {"The force is the sum of the terms, scaled so that the leg with its weights is as heavy as the "
                    "force at its ankle.",
                    "Before that, what comes from the trunk counts by the leg's share.",
                    "The leg that carries less counts its weights by its share and leaves them, times twice the other "
                    "leg's share, to the other leg, which counts its own in full."};
    if (!atKnee) {
        result.rules.emplace_back("The moment is the waist's, times the leg's share whatever counts of its force; the "
                                  "forces add none.");
    } else {
        result.terms.push_back(at(part(ownWeight(leg[side].upper, side), scale), std::nullopt));
        result.rules.emplace_back(
            "The moment is the hip's with the hip's force moved to the knee; what of it is vertical "
            "or lies horizontally across the line between the ankles is taken out. "
            "Of the waist's moment the leg's share counts, whatever counts of its force.");
    }
    // the moment is shared, not scaled
    result.terms.front().couple = scaled(*waist.couple, shares[side]);
}

void Standing::oneFoot(LegTerms& result, LegJoint joint, qcSide side) const
{
    const Leg& own = leg[side];
    result.support = std::string(nameOfSide(*foot)) + "-foot";
    if (side == *foot && joint == LegJoint::kAnkle) {
        result.rules = {"The force is the sum of the terms, the moment that of the terms about the ankle."};
        result.terms = aboveAnkles(side);
    } else if (side == *foot && joint == LegJoint::kHip) {
        result.rules = {"The force is the sum of the terms, the moment the waist's as it is; the forces add none."};
        result.terms = {at(waist, std::nullopt), at(torso, std::nullopt)};
    } else if (side == *foot) {
        result.rules = {"The force is the sum of the terms, the moment that of the terms about the knee."};
        result.terms = {at(waist, own.hipPos), at(torso, own.hipPos), own.upper};
    } else if (joint == LegJoint::kAnkle) {
        result.rules = {"This foot carries nothing."};
    } else {
        result.rules = {"This leg hangs: the force is the sum of the terms, the moment that of the terms about the "
                        "joint."};
        result.terms = {own.lower};
        if (joint == LegJoint::kHip)
            result.terms.push_back(own.upper);
    }
}

LegTerms Standing::terms(LegJoint joint, qcSide side) const
{
    LegTerms result;
    if (foot)
        oneFoot(result, joint, side);
    else
        bothFeet(result, joint, side);
    if (std::any_of(result.terms.begin(), result.terms.end(),
                    [](const auto& term) { return term.what == "local load"; }))
        result.rules.emplace_back("The local load at lower_torso.h_point counts unturned, its numbers taken as in "
                                  "global axes.");
    const bool hPointEnters = !foot || (joint == LegJoint::kAnkle && side == *foot);
    result.notCounted = std::string("loads on the lower torso")
                        + (hPointEnters ? " other than at lower_torso.h_point" : "")
                        + ", loads on legs and feet, torques at hips, knees and ankles, the weight of the feet";
    return result;
}

}   // namespace

LegTerms standingLegTerms(qmStaticStrength& analysis, LegJoint joint, qcSide side)
{
    return Standing(analysis).terms(joint, side);
}
