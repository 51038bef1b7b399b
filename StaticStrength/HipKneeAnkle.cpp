// Hip, knee and ankle analysis: a planar balance of the right leg under half the upper body.
//
// A second, simpler method for the legs. Its results are reactions in module-wide variables; no joint gets one.
#include "HipKneeAnkle.h"

#include "Diagnostics.h"
#include "FigureParts.h"
#include "LoadValues.h"
#include "MissingParts.h"
#include "PointNumbers.h"
#include "Vectors.h"
#include "qmStaticStrength.h"

#include <cstdio>

qVector gravityDir;
float humWt = 0.0f, humUBWt = 0.0f, pelvisWt = 0.0f, thighWt = 0.0f, calfWt = 0.0f;
qVector upperBodyWtVec, pelvisWtVec, thighWtVec, calfWtVec;
qVector upperBodyWtPt, pelvisWtPt, hipPt, anklePt, kneePt, thighWtPt, calfWtPt;
qVector ankleReaction, hipReaction, kneeReaction;

namespace {

double kilograms(const qcSegmentImp* segment)
{
    return double(segment->getMass()) / 1000.0;
}

void printScalar(const char* label, float value)
{
    const PointNumbers pointNumbers;
    std::printf("%s%f\n", label, double(value));
}

void printDebug(const char* label, const qVector& vector)
{
    if (!debugPrint)
        return;
    const PointNumbers pointNumbers;
    std::printf("%s: %f,%f,%f\n", label, double(vector[0]), double(vector[1]), double(vector[2]));
}

// Weights and points of a figure; the reactions stay. @return false, after an error message that names
// all that is missing: nothing is changed then
bool setUp(const qcFigure& figure, const qVector& gravity)
{
    MissingParts missing;
    const auto segment = [&](const char* name) { return missing.check(figure.findSegment(name), "segment ", name); };
    const auto site = [&](const char* key) { return missing.check(findSiteByKey(&figure, key), "site ", key); };
    const qcSegmentImp* toes = segment("right_toes");
    const qcSegmentImp* foot = segment("right_foot");
    qcSegmentImp* calf = segment("right_lower_leg");
    qcSegmentImp* thigh = segment("right_upper_leg");
    const qcSegmentImp* pelvis = segment("lower_torso");
    qcSiteImp* t8 = site("t8.proximal");
    qcSiteImp* hPoint = site("lower_torso.h_point");
    qcSiteImp* ankle = site("right_lower_leg.distal");
    qcSiteImp* knee = site("right_lower_leg.proximal");
    if (missing.report("hip, knee and ankle cannot be analysed"))
        return false;

    gravityDir = unit(gravity);

    // Required: each step in double, stored as float.
    humWt = 0.0f;
    forEach<qcSegmentImp>(figure.getSegments(),
                          [](const qcSegmentImp* s) { humWt = static_cast<float>(double(humWt) + kilograms(s)); });

    // what lies above the pelvis, on one leg. Required: the right leg, doubled, stands for both.
    const auto takeOff = [](double kg) { humUBWt = static_cast<float>(double(humUBWt) - kg); };
    humUBWt = humWt;
    takeOff(kilograms(toes) * 2);
    takeOff(kilograms(foot) * 2);
    takeOff(kilograms(calf) * 2);
    takeOff(kilograms(thigh) * 2);
    takeOff(kilograms(pelvis));
    humUBWt = static_cast<float>(double(humUBWt) / 2);

    pelvisWt = static_cast<float>(kilograms(pelvis));
    thighWt = static_cast<float>(kilograms(thigh));
    calfWt = static_cast<float>(kilograms(calf));
    upperBodyWtVec = scaled(gravityDir, humUBWt);
    pelvisWtVec = scaled(gravityDir, pelvisWt);
    thighWtVec = scaled(gravityDir, thighWt);
    calfWtVec = scaled(gravityDir, calfWt);

    upperBodyWtPt = positionOf(t8);
    pelvisWtPt = positionOf(hPoint);
    hipPt = pelvisWtPt;
    anklePt = positionOf(ankle);
    kneePt = positionOf(knee);
    thighWtPt = centerOfMassInWorld(thigh);
    calfWtPt = centerOfMassInWorld(calf);

    if (debugPrint)
        printScalar("humWt: ", humWt);
    printDebug("upperBodyWtVec", upperBodyWtVec);
    printDebug("pelvisWtVec", pelvisWtVec);
    printDebug("thighWtVec", thighWtVec);
    printDebug("calfWtVec", calfWtVec);
    printDebug("upperBodyWtPt", upperBodyWtPt);
    printDebug("pelvisWtPt", pelvisWtPt);
    printDebug("thighWtPt", thighWtPt);
    printDebug("calfWtPt", calfWtPt);
    return true;
}

}   // namespace

void qmStaticStrength::calcHipKneeAnkleForcesMoments()
{
    if (!setUp(*figure, gravity))
        return;
    solveReactionForces();
    computeForcesAtKnee();
}

void qmStaticStrength::createAndSetupWeights()
{
    setUp(*figure, gravity);
}

// The balance about the hip. R is what the ankle carries, kgf.
//
//   R   = (|calf - hip| calfWt + |thigh - hip| thighWt + |upper body - hip| humUBWt) / |ankle - hip|
//   ankle reaction = -R gravityDir, its y plus those of thigh and calf
//   hip reaction   = -(calf + thigh + half the pelvis + upper body + R (0, 1, 0))
//
// Required: the arms are the whole distances from the hip, not their horizontal parts; R acts along the
// world's y axis at the hip, whatever gravity's direction; only the y of the pelvis is halved, in the
// variable itself, so that a second solution halves it again.
void qmStaticStrength::solveReactionForces()
{
    const float upperBodyArm = difference(upperBodyWtPt, hipPt).mag();
    const float hipAnk = difference(anklePt, hipPt).mag();
    const float hipThigh = difference(thighWtPt, hipPt).mag();
    const float hipCalf = difference(calfWtPt, hipPt).mag();

    // Required: whether debugPrint is set or not.
    printScalar("hipCalf mag=", hipCalf);
    printScalar("hipThigh mag=", hipThigh);
    printScalar("upper body mag=", upperBodyArm);
    printScalar("hipAnk mag=", hipAnk);
    printScalar("calfWt=", calfWt);
    printScalar("thighWt=", thighWt);
    printScalar("humUBWt=", humUBWt);

    const float R = ((hipCalf * calfWt + hipThigh * thighWt) + humUBWt * upperBodyArm) / hipAnk;

    ankleReaction = scaled(gravityDir, -R);
    ankleReaction[1] = (ankleReaction[1] + thighWtVec[1]) + calfWtVec[1];

    hipReaction = qVector();
    hipReaction.add(calfWtVec);
    hipReaction.add(thighWtVec);
    pelvisWtVec[1] = static_cast<float>(double(pelvisWtVec[1]) / 2);
    hipReaction.add(pelvisWtVec);
    hipReaction.add(upperBodyWtVec);
    hipReaction.add(scaled(qVector(0, 1, 0), R));
    hipReaction.scale(-1.0f);

    printDebug("Ankle Reaction", ankleReaction);
    printDebug("Hip Reaction", hipReaction);
}

void qmStaticStrength::computeForcesAtKnee()
{
    kneeReaction = qVector(0.0f, ((pelvisWtVec[1] + upperBodyWtVec[1]) + hipReaction[1]) + ankleReaction[1], 0.0f);
    printDebug("Knee Reaction", kneeReaction);
}

// The present hip and ankle reactions and thigh weight, whichever analysis left them, as loads. A site that
// is missing gets none. Required: the ankle's reaction goes to the shank's upper end.
void qmStaticStrength::setSiteLoads()
{
    qcSite* pelvis = findSiteByKey(figure, "lower_torso.center_of_mass");
    qcSite* thigh = findSiteByKey(figure, "right_upper_leg.distal");
    qcSite* calf = findSiteByKey(figure, "right_lower_leg.proximal");
    setLoad(pelvis, hipReaction, kGlobalLoad);
    setLoad(thigh, thighWtVec, kGlobalLoad);
    setLoad(calf, ankleReaction, kGlobalLoad);
}
