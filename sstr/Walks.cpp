// Walks.
#include "Walks.h"

namespace {

// Each is null where one of its arguments is.
qcSegment* segmentOf(const qcSite* site)
{
    return site ? site->getSegment() : nullptr;
}

qcSite* siteOnSegment(const qcJoint* joint, const qcSegment* segment)
{
    return joint ? joint->siteOnSegment(segment) : nullptr;
}

qcSite* otherSite(const qcJoint* joint, const qcSite* site)
{
    return joint && site ? joint->otherSite(site) : nullptr;
}

// The whole upper body, at the waist.
PlannedWalk waistWalk(qcHuman& human, qcSegment* stop)
{
    qcJoint* waist = human.getWaistJoint();
    return {waist, siteOnSegment(waist, segmentOf(human.getPelvisSite())), stop, false};
}

// The whole body above the ankle, then the foot itself.
void addOneFoot(std::vector<PlannedWalk>& walks, qcHuman& human, qcSide side)
{
    qcJoint* ankle = human.getAnkleJoint(side);
    qcSite* onFoot = siteOnSegment(ankle, segmentOf(human.getFootSite(side)));
    walks.push_back({ankle, onFoot, nullptr, false});
    walks.push_back({ankle, otherSite(ankle, onFoot), nullptr, true});
}

// Waist to l5; each knee from below, then from above to the pelvis; the spine down to l5; each arm in to the
// upper torso.
void addHandsAndKnees(std::vector<PlannedWalk>& walks, qcHuman& human)
{
    const qcFigure& figure = *human.getFigure();
    qcSegment* l5 = figure.findSegment("l5");
    qcSegment* pelvis = segmentOf(human.getPelvisSite());
    walks.push_back(waistWalk(human, l5));
    for (const qcSide side : {qcRight, qcLeft}) {
        qcJoint* knee = human.getKneeJoint(side);
        qcSite* inboard = knee ? knee->getInboardSite() : nullptr;
        walks.push_back({knee, inboard, nullptr, false});
        walks.push_back({knee, otherSite(knee, inboard), pelvis, true});
    }
    qcSegment* upperTorso = figure.findSegment("upper_torso");
    qcJoint* solarPlexus = figure.findJoint("solar_plexus");
    walks.push_back({solarPlexus, siteOnSegment(solarPlexus, upperTorso), l5, false});
    for (const qcSide side : {qcRight, qcLeft}) {
        const qcSegment* hand = segmentOf(human.getHandSite(side));
        qcSite* attachment = hand ? hand->getAttachmentSite() : nullptr;
        walks.push_back({attachment ? attachment->getJoint() : nullptr, attachment, upperTorso, false});
    }
}

}   // namespace

std::vector<PlannedWalk> walksOf(qcHuman& human, qmStaticStrength::Strategy effective)
{
    std::vector<PlannedWalk> walks;
    switch (effective) {
    case qmStaticStrength::TwoFeet:
    case qmStaticStrength::Sitting:
        walks.push_back(waistWalk(human, nullptr));
        break;
    case qmStaticStrength::RightFoot:
        addOneFoot(walks, human, qcRight);
        break;
    case qmStaticStrength::LeftFoot:
        addOneFoot(walks, human, qcLeft);
        break;
    case qmStaticStrength::SittingNoFeet:
        walks.push_back(waistWalk(human, nullptr));
        for (const qcSide side : {qcRight, qcLeft}) {
            qcJoint* hip = human.getHipJoint(side);
            walks.push_back({hip, siteOnSegment(hip, segmentOf(human.getPelvisSite())), nullptr, false});
        }
        break;
    case qmStaticStrength::HandsAndKnees:
        addHandsAndKnees(walks, human);
        break;
    default:
        break;
    }
    return walks;
}
