// Two-feet legs: another way to hips, knees and ankles, which shares the pelvis by the split factors and
// walks each leg downwards. Like the lower-body method it reads the waist's result and writes six.
#include "FigureParts.h"
#include "LoadValues.h"
#include "MissingParts.h"
#include "SupportSplit.h"
#include "Units.h"
#include "Vectors.h"
#include "qmStaticStrength.h"

#include <string>

namespace {

constexpr const char* kConsequence = "the two-feet legs cannot be computed";

constexpr const char* kSideNames[] = {"right", "left"};   // by qcSide

// The sites that bound a leg's segment, which have to be there.
void checkEnds(MissingParts& missing, const qcSegmentImp* segment)
{
    if (!segment)
        return;
    missing.check(siteOfSegment(segment, "proximal"), segment->getName(), ".proximal");
    missing.check(siteOfSegment(segment, "distal"), segment->getName(), ".distal");
}

/// The lower torso: what is shared between the hips, and where they are.
struct Pelvis {
    qcSegmentImp* segment;
    qcSiteImp *waist, *hip[2];   // on the segment; by qcSide
    qVector weight, center;      // kgf; cm
    qVector waistForce;          // kgf, the walk's result
    float share[2];              // of the waist's load, by qcSide
};

// One hip: its share of all that the lower torso carries, and the other hip pushing back.
//
//   F = Fw s + W / 2 - H / 2         s: this hip's share     W: the lower torso's weight
//   H = sum of f / 2                 f at p: the loads of the lower torso's sites but those of waist and hips
//   M = moment of  f at p, Fw at the waist, W / 2 at its centre, and of -Fw (other share), -W / 2 and -H / 2
//       at the other hip
//
// Required: the force is formed anew, not the sum that the moments leave: the site loads enter it by
// minus a quarter.
qVector computeHip(qmStaticStrength& analysis, const Pelvis& pelvis, qcSide side, qcJointImp* joint)
{
    const qcSide other = side == qcRight ? qcLeft : qcRight;
    qVector about = positionOf(pelvis.hip[side]);
    const qVector otherHip = positionOf(pelvis.hip[other]);
    qVector sum, moment, halfLoads;
    const auto add = [&](qVector force, qVector at) { analysis.calcForcesAt(about, at, force, sum, moment); };

    forEach<qcSiteImp>(pelvis.segment->getSites(), [&](qcSiteImp* site) {
        qVector load, point;
        if (site == pelvis.waist || site == pelvis.hip[qcLeft] || site == pelvis.hip[qcRight]
            || !globalSiteLoad(site, load, point))
            return;
        add(load, point);
        halfLoads.add(scaled(load, 0.5f));
    });
    add(pelvis.waistForce, positionOf(pelvis.waist));
    add(scaled(pelvis.weight, 0.5f), pelvis.center);
    add(scaled(pelvis.waistForce, -pelvis.share[other]), otherHip);
    add(scaled(pelvis.weight, -0.5f), otherHip);
    add(scaled(halfLoads, -0.5f), otherHip);

    const qVector force =
        scaled(pelvis.waistForce, pelvis.share[side]) + scaled(pelvis.weight, 0.5f) + scaled(halfLoads, -0.5f);
    analysis.setFMonJoint(joint, force, moment);
    return force;
}

/// All that the method reads.
struct TwoLegs {
    Pelvis pelvis;
    qcSegmentImp *upper[2], *lower[2];   // by qcSide
};

// Finds every part. @return false, after an error message that names all that is missing
bool gather(qcHuman& human, TwoLegs& legs)
{
    MissingParts missing;
    const qcFigure& figure = *human.getFigure();
    const auto segment = [&](const char* name) { return missing.check(figure.findSegment(name), "segment ", name); };
    legs.pelvis.segment = segment("lower_torso");
    legs.upper[qcRight] = segment("right_upper_leg");
    legs.lower[qcRight] = segment("right_lower_leg");
    legs.upper[qcLeft] = segment("left_upper_leg");
    legs.lower[qcLeft] = segment("left_lower_leg");
    segment("left_foot");
    segment("right_foot");

    legs.pelvis.waist =
        missing.check(siteOnSegment(human.getWaistJoint(), legs.pelvis.segment), "waist", " on lower_torso");
    for (const qcSide side : {qcRight, qcLeft}) {
        const char* name = kSideNames[side];
        legs.pelvis.hip[side] =
            missing.check(siteOnSegment(human.getHipJoint(side), legs.pelvis.segment), name, " hip on lower_torso");
        missing.check(siteOnSegment(human.getKneeJoint(side), legs.upper[side]), name, " knee on the upper leg");
        missing.check(siteOnSegment(human.getAnkleJoint(side), legs.lower[side]), name, " ankle on the lower leg");
        checkEnds(missing, legs.upper[side]);
        checkEnds(missing, legs.lower[side]);
    }
    return !missing.report(kConsequence);
}

}   // namespace

void qmStaticStrength::calcHipKneeAnkFMfor2FeetStgy()
{
    TwoLegs legs;
    if (!gather(*human, legs))
        return;
    Pelvis& pelvis = legs.pelvis;
    pelvis.weight = weightToLoad(gravity, pelvis.segment->getMass());
    pelvis.center = centerOfMassInWorld(pelvis.segment);
    qVector waistMoment;   // enters nothing
    getJointForces(human->getWaistJoint(), pelvis.waistForce, waistMoment);
    for (const qcSide side : {qcLeft, qcRight})
        pelvis.share[side] = get_split_factor(human->getHipJoint(side), kStoredResult, "waist");

    qVector hipForce[2];
    for (const qcSide side : {qcLeft, qcRight})
        hipForce[side] = computeHip(*this, pelvis, side, human->getHipJoint(side));
    for (const qcSide side : {qcLeft, qcRight}) {
        qVector hipPos = positionOf(pelvis.hip[side]);
        qVector kneeForce, kneeMoment, kneePos, ankleForce, ankleMoment, anklePos;
        computeFMforLegJoint(human->getKneeJoint(side), legs.upper[side], hipForce[side], hipPos, kneeForce, kneeMoment,
                             kneePos);
        computeFMforLegJoint(human->getAnkleJoint(side), legs.lower[side], kneeForce, kneePos, ankleForce, ankleMoment,
                             anklePos);
    }
}

// A leg joint, from the force that the joint above passes into the segment between them.
//
//   F = f + S + inForce + W      f: each load of a site but the segment's proximal and distal     S: their sum
//   M = moment of f, of inForce at inPoint and of W at the centre of mass, about the joint's site on the segment
//
// Required: the site loads count twice in the force, once in the moment.
void qmStaticStrength::computeFMforLegJoint(qcJoint* joint, qcSegment* segment, qVector& inForce, qVector& inPoint,
                                            qVector& outForce, qVector& outMoment, qVector& outPoint)
{
    MissingParts missing;
    missing.check(joint, "the joint", "");
    missing.check(segment, "the segment", "");
    qcSiteImp* jointsSite = siteOnSegment(joint, segment);
    if (joint && segment) {
        missing.check(jointsSite, joint->getName(), std::string(" on ").append(segment->getName()).c_str());
        checkEnds(missing, segment);
    }
    if (missing.report(kConsequence))
        return;
    const qcSiteImp* proximal = siteOfSegment(segment, "proximal");
    const qcSiteImp* distal = siteOfSegment(segment, "distal");

    qVector weight = weightToLoad(gravity, segment->getMass());
    qVector center = centerOfMassInWorld(segment);
    qVector about = positionOf(jointsSite);
    outForce = outMoment = qVector();
    const auto add = [&](qVector force, qVector at) { calcForcesAt(about, at, force, outForce, outMoment); };
    qVector siteLoads;
    forEach<qcSiteImp>(segment->getSites(), [&](qcSiteImp* site) {
        qVector load, point;
        if (site == proximal || site == distal || !globalSiteLoad(site, load, point))
            return;
        add(load, point);
        siteLoads.add(load);
    });
    outForce.add(siteLoads);
    add(inForce, inPoint);
    add(weight, center);
    setFMonJoint(joint, outForce, outMoment);
    outPoint = about;
}
