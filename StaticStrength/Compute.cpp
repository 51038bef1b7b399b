// Compute: from the support that the posture gives to the walks that each strategy needs.
#include "Diagnostics.h"
#include "FigureParts.h"
#include "ForceMoment.h"
#include "MissingParts.h"
#include "OutOfMemory.h"
#include "Units.h"
#include "Vectors.h"
#include "qmStaticStrength.h"

#include <cstdio>

namespace {

// Turns N·m back into kgf·cm. Required: product and quotient in double, narrowed once.
constexpr float kMomentToKgfCm = static_cast<float>(1.0 / (double(STD_G) * 0.0001));

constexpr float kKgfCmToStored = 0.01f;   // required: sitting hip moments are stored scaled by this

}   // namespace

int qmStaticStrength::compute()
{
    if (isOrphaned("compute"))
        return 1;
    const Strategy chosen = strategy;
    hasMemoryFor("compute", [this] { computeBySupport(); });
    strategy = chosen;
    return 1;
}

void qmStaticStrength::computeBySupport()
{
    qVector force, moment;
    segmentOnly = 0;
    strategy = calculate_split();
    switch (strategy) {
    case TwoFeet:
        walkWaist(force, moment, nullptr);
        calcLowerBodyFM_URmethod();
        break;
    case RightFoot:
        computeOneFoot(qcRight, force, moment);
        break;
    case LeftFoot:
        computeOneFoot(qcLeft, force, moment);
        break;
    case Sitting:
        computeSitting(force, moment);
        break;
    case SittingNoFeet:
        computeSittingNoFeet(force, moment);
        break;
    case HandsAndKnees:
        computeHandsAndKnees(force, moment);
        break;
    default:   // the results of earlier computations stay
        break;
    }
}

// The whole upper body at the waist, and every joint above it.
void qmStaticStrength::walkWaist(qVector& force, qVector& moment, qcSegmentImp* stop)
{
    qcJointImp* waist = human->getWaistJoint();
    qcSiteImp* lowerSide = siteOnSegment(waist, segmentOf(human->getPelvisSite()));
    compute_joint_forces(waist, lowerSide, force, moment, stop, 0);
}

// The whole body above the ankle, then the foot itself on top of it.
void qmStaticStrength::computeOneFoot(qcSide side, qVector& force, qVector& moment)
{
    qcJointImp* ankle = human->getAnkleJoint(side);
    qcSiteImp* onFoot = siteOnSegment(ankle, segmentOf(human->getFootSite(side)));
    compute_joint_forces(ankle, onFoot, force, moment, nullptr, 0);
    compute_joint_forces(ankle, otherSite(ankle, onFoot), force, moment, nullptr, 1);
}

void qmStaticStrength::computeSittingNoFeet(qVector& force, qVector& moment)
{
    walkWaist(force, moment, nullptr);
    const qcSegmentImp* pelvis = segmentOf(human->getPelvisSite());
    for (const qcSide side : {qcRight, qcLeft}) {
        qcJointImp* hip = human->getHipJoint(side);
        compute_joint_forces(hip, siteOnSegment(hip, pelvis), force, moment, nullptr, 0);
    }
}

// Knees carry the lower leg and their share of the body up to the pelvis; hands theirs up to the
// upper torso.
void qmStaticStrength::computeHandsAndKnees(qVector& force, qVector& moment)
{
    MissingParts missing;   // the walks report what else they lack
    missing.check(figure->getReferenceSite(), "the reference site", "");
    missing.report("the shares of hands and knees are no numbers");
    walkWaist(force, moment, l5Segment);
    qcSegmentImp* pelvis = segmentOf(human->getPelvisSite());
    for (const qcSide side : {qcRight, qcLeft}) {
        qcJointImp* knee = human->getKneeJoint(side);
        qcSiteImp* inboard = knee ? knee->getInboardSite() : nullptr;
        compute_joint_forces(knee, inboard, force, moment, nullptr, 0);
        compute_joint_forces(knee, otherSite(knee, inboard), force, moment, pelvis, 1);
    }

    qcSegmentImp* upperTorso = human->figure->findSegment("upper_torso");
    qcJointImp* solarPlexus = human->figure->findJoint("solar_plexus");
    compute_joint_forces(solarPlexus, siteOnSegment(solarPlexus, upperTorso), force, moment, l5Segment, 0);
    for (const qcSide side : {qcRight, qcLeft}) {
        const qcSegmentImp* hand = segmentOf(human->getHandSite(side));
        qcSiteImp* attachment = hand ? hand->getAttachmentSite() : nullptr;
        qcJointImp* wrist = attachment ? attachment->getJoint() : nullptr;
        compute_joint_forces(wrist, attachment, force, moment, upperTorso, 0);
    }
}

void qmStaticStrength::computeSitting(qVector& force, qVector& moment)
{
    if (debugPrint)
        std::printf("Sitting Mode\n");
    strategy = TwoFeet;
    segmentOnly = 0;
    walkWaist(force, moment, nullptr);

    // Required: half the upper body is printed and enters no result; the hips carry the legs alone.
    for (int i = 0; i < 3; ++i)
        force[i] = static_cast<float>(double(force[i]) / 2.0);
    printVector("upperbodyforce", force);

    MissingParts missing;
    for (const qcSide side : {qcRight, qcLeft}) {
        const bool right = side == qcRight;
        const char* upperName = right ? "right_upper_leg" : "left_upper_leg";
        const char* lowerName = right ? "right_lower_leg" : "left_lower_leg";
        const qcSegmentImp* upper = missing.check(human->figure->findSegment(upperName), "segment ", upperName);
        const qcSegmentImp* lower = missing.check(human->figure->findSegment(lowerName), "segment ", lowerName);
        missing.check(siteOnSegment(human->getHipJoint(side), upper), right ? "right" : "left",
                      " hip on the upper leg");
        missing.check(siteOnSegment(human->getKneeJoint(side), upper), right ? "right" : "left",
                      " knee on the upper leg");
        missing.check(siteOnSegment(human->getKneeJoint(side), lower), right ? "right" : "left",
                      " knee on the lower leg");
        missing.check(siteOnSegment(human->getAnkleJoint(side), lower), right ? "right" : "left",
                      " ankle on the lower leg");
    }
    segmentOnly = 1;   // from here on, and after a refusal too
    if (missing.report("the sitting legs cannot be computed"))
        return;
    computeSittingLeg(qcRight, force, moment);
    computeSittingLeg(qcLeft, force, moment);
}

// A leg of a sitting figure: its weight about the hip is carried by hip and ankle.
//
//   T  = (ML + MU) in kgf·cm - FL × (PH - PK)      ML, MU: of lower and upper leg, each by itself
//   FH = unit(FU + FL) · |T| / |PH - PA|           hip        MH = (T · unit(a)) unit(a), a = PA - PH
//   FA = FU + FL - FH                              ankle      no moment; the knee is left without a result
//
// PH, PK, PA: hip, knee, ankle, cm. Only the right side's intermediate vectors are printed.
void qmStaticStrength::computeSittingLeg(qcSide side, qVector& force, qVector& moment)
{
    const bool right = side == qcRight;
    const auto printRight = [right](const char* label, const qVector& vector) {
        if (right)
            printVector(label, vector);
    };
    qcJointImp* hip = human->getHipJoint(side);
    qcJointImp* knee = human->getKneeJoint(side);
    qcJointImp* ankle = human->getAnkleJoint(side);
    const qcSegmentImp* upper = human->figure->findSegment(right ? "right_upper_leg" : "left_upper_leg");
    const qcSegmentImp* lower = human->figure->findSegment(right ? "right_lower_leg" : "left_lower_leg");

    // Required: the hip alone takes the host's second transform.
    const qVector hipPos = siteOnSegment(hip, upper)->getSecondTransform().getTranslation();
    const qVector anklePos = positionOf(siteOnSegment(ankle, lower));
    const qVector kneePos = positionOf(siteOnSegment(knee, upper));
    const qVector hipToAnkle = difference(anklePos, hipPos);
    const qVector ankleToHip = difference(hipPos, anklePos);
    const qVector kneeToHip = difference(hipPos, kneePos);

    strategy = TwoFeet;
    force = moment = qVector();
    compute_joint_forces(hip, otherSite(hip, siteOnSegment(hip, upper)), force, moment, nullptr, 0);
    const qVector upperMoment = moment;
    const qVector upperForce = force;
    printRight("Upper Leg Moments", upperMoment);
    printRight("Upper leg Forces", upperForce);

    strategy = TwoFeet;
    force = moment = qVector();
    compute_joint_forces(knee, otherSite(knee, siteOnSegment(knee, lower)), force, moment, nullptr, 0);
    const qVector lowerMoment = moment;
    const qVector lowerForce = force;
    printRight("Lower Leg Moments", lowerMoment);
    printRight("Lower leg Forces", lowerForce);

    qVector extra = lowerForce;
    extra.cross(kneeToHip);
    qVector total = lowerMoment + upperMoment;
    total.scale(kMomentToKgfCm);
    printRight("preTotal Moment", total);
    printRight("extra Moment", extra);
    total.sub(extra);
    printRight("Total Moment", total);

    strategy = Sitting;
    const float reaction = total.mag() / ankleToHip.mag();
    const qVector legLoad = upperForce + lowerForce;
    printVector("totalSegmentLoads", legLoad);
    qVector hipForce = unit(legLoad);
    hipForce.scale(reaction);
    const qVector alongLeg = unit(hipToAnkle);
    qVector hipMoment = alongLeg;
    hipMoment.scale(total.dotProd(alongLeg));
    const qVector ankleForce = difference(legLoad, hipForce);
    printVector("Hip Force", hipForce);
    printVector("Hip Moment ", hipMoment);

    hipMoment.scale(kKgfCmToStored);
    storeResult(hip, hipForce, hipMoment);
    knee->removeProperty(kForceMomentKey);
    const qVector noMoment;
    printVector("Ankle Force", ankleForce);
    printVector("Ankle Moment ", noMoment);
    storeResult(ankle, ankleForce, noMoment);
}
