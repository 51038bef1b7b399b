// Two-feet legs: another way to hips, knees and ankles, which shares the pelvis by the split factors and
// walks each leg downwards. Like the lower-body method it reads the waist's result and writes six.
#include "FigureParts.h"
#include "LoadValues.h"
#include "MissingParts.h"
#include "SupportSplit.h"
#include "Units.h"
#include "Vectors.h"
#include "qmStaticStrength.h"

namespace {

constexpr const char* kConsequence = "the legs cannot be computed";

// The site of a joint on a segment, which has to be there.
qcSiteImp* jointSite(MissingParts& missing, const qcJointImp* joint, const char* role, const qcSegmentImp* segment)
{
    return missing.check(siteOnSegment(joint, segment), role, segment ? " on its segment" : " without its segment");
}

/// The lower torso: what is shared between the hips, and where they are.
struct Pelvis {
    qcSegmentImp* segment;
    qcSiteImp *waist, *hip[2];   // on the segment; by qcSide
    qVector weight, center;      // kgf; cm
    qVector waistForce;          // kgf, the walk's result; its moment enters nothing
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

}   // namespace

void qmStaticStrength::calcHipKneeAnkFMfor2FeetStgy()
{
    MissingParts missing;
    const qcFigure& itsFigure = *human->getFigure();
    const auto segment = [&](const char* name) { return missing.check(itsFigure.findSegment(name), "segment ", name); };
    Pelvis pelvis;
    pelvis.segment = segment("lower_torso");
    qcSegmentImp *upper[2], *lower[2];
    upper[qcRight] = segment("right_upper_leg");
    lower[qcRight] = segment("right_lower_leg");
    upper[qcLeft] = segment("left_upper_leg");
    lower[qcLeft] = segment("left_lower_leg");
    segment("left_foot");
    segment("right_foot");
    pelvis.waist = jointSite(missing, human->getWaistJoint(), "waist", pelvis.segment);
    for (const qcSide side : {qcRight, qcLeft}) {
        const bool right = side == qcRight;
        pelvis.hip[side] =
            jointSite(missing, human->getHipJoint(side), right ? "right hip" : "left hip", pelvis.segment);
        jointSite(missing, human->getKneeJoint(side), right ? "right knee" : "left knee", upper[side]);
        jointSite(missing, human->getAnkleJoint(side), right ? "right ankle" : "left ankle", lower[side]);
        for (const qcSegmentImp* part : {upper[side], lower[side]})
            for (const char* end : {"proximal", "distal"})
                if (part)
                    missing.check(siteOfSegment(part, end), part->getName(), end[0] == 'p' ? ".proximal" : ".distal");
    }
    if (missing.report(kConsequence))
        return;

    pelvis.weight = weightToLoad(gravity, pelvis.segment->getMass());
    pelvis.center = centerOfMassInWorld(pelvis.segment);
    qVector waistMoment;
    getJointForces(human->getWaistJoint(), pelvis.waistForce, waistMoment);
    for (const qcSide side : {qcLeft, qcRight})
        pelvis.share[side] = get_split_factor(human->getHipJoint(side), kStoredResult, "waist");

    qVector hipForce[2];
    for (const qcSide side : {qcLeft, qcRight})
        hipForce[side] = computeHip(*this, pelvis, side, human->getHipJoint(side));
    for (const qcSide side : {qcLeft, qcRight}) {
        qVector hipPos = positionOf(pelvis.hip[side]);
        qVector kneeForce, kneeMoment, kneePos, ankleForce, ankleMoment, anklePos;
        computeFMforLegJoint(human->getKneeJoint(side), upper[side], hipForce[side], hipPos, kneeForce, kneeMoment,
                             kneePos);
        computeFMforLegJoint(human->getAnkleJoint(side), lower[side], kneeForce, kneePos, ankleForce, ankleMoment,
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
    qcSiteImp* jointsSite = jointSite(missing, joint, joint ? joint->getName() : "joint", segment);
    const qcSiteImp* proximal = segment ? siteOfSegment(segment, "proximal") : nullptr;
    const qcSiteImp* distal = segment ? siteOfSegment(segment, "distal") : nullptr;
    if (segment) {
        missing.check(proximal, segment->getName(), ".proximal");
        missing.check(distal, segment->getName(), ".distal");
    }
    if (missing.report(kConsequence))
        return;

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
