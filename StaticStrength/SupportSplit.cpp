// Support split: how much of the load above the pelvis each foot, knee or hand carries.
#include "SupportSplit.h"

#include "FigureParts.h"
#include "Vectors.h"
#include "qmStaticStrength.h"

#include <cmath>
#include <cstring>

namespace {

// Indices of the split factors.
enum Share { kLeftHip = 0, kRightHip = 1, kLeftClavicle = 2, kRightClavicle = 3 };

constexpr double kEqualKnees = 0.1;   // rad: knees that differ by less share the body equally

//   p - (p · n) n        n: unit vector
qVector projectOntoPlane(const qVector& p, const qVector& n)
{
    return difference(p, scaled(n, p.dotProd(n)));
}

float distance(const qVector& a, const qVector& b)
{
    return difference(a, b).mag();
}

// Required: the complement of a share is taken in double, then narrowed.
float complementOf(float share)
{
    return static_cast<float>(1.0 - double(share));
}

bool endsWith(const char* text, std::size_t length, const char* ending)
{
    const std::size_t endingLength = std::strlen(ending);
    return length >= endingLength && std::strcmp(text + length - endingLength, ending) == 0;
}

bool isRight(const qcJointImp* joint)
{
    return joint->getName()[0] == 'r';
}

}   // namespace

qmStaticStrength::Strategy qmStaticStrength::calculate_split()
{
    switch (strategy) {
    case TwoFeet:
        splitBetweenFeet();
        return TwoFeet;
    case Walking:
        return splitWalking();
    case HandsAndKnees:
        splitHandsAndKnees();
        return HandsAndKnees;
    default:
        return strategy;
    }
}

// The share of the right one of two supports, by distance across gravity: the nearer carries more.
//
//   right = dLeft / (dRight + dLeft)        dRight, dLeft: cm from the balance point
//
// Without a support or balance point there is nothing to share by: not a number.
static float rightShare(qcSiteImp* balance, qcSiteImp* right, qcSiteImp* left, qVector gravity)
{
    if (!balance || !right || !left)
        return NAN;
    gravity.normalize();
    const qVector center = projectOntoPlane(positionOf(balance), gravity);
    const float dRight = distance(projectOntoPlane(positionOf(right), gravity), center);
    const float dLeft = distance(projectOntoPlane(positionOf(left), gravity), center);
    return dLeft / (dRight + dLeft);
}

void qmStaticStrength::splitBetweenFeet()
{
    splitFactors[kRightHip] =
        rightShare(figure->getReferenceSite(), human->getFootSite(qcRight), human->getFootSite(qcLeft), gravity);
    splitFactors[kLeftHip] = complementOf(splitFactors[kRightHip]);
}

// The less bent knee carries the body.
qmStaticStrength::Strategy qmStaticStrength::splitWalking()
{
    const qcJointImp* rightKnee = human->getKneeJoint(qcRight);
    const qcJointImp* leftKnee = human->getKneeJoint(qcLeft);
    const float right = rightKnee ? rightKnee->getAngle(1) : 0.0f;
    const float left = leftKnee ? leftKnee->getAngle(1) : 0.0f;
    const float difference = std::fabs(right) - std::fabs(left);

    Strategy standing;
    if (std::fabs(double(difference)) < kEqualKnees) {
        splitFactors[kRightHip] = 0.5f;
        standing = TwoFeet;
    } else if (difference >= 0) {
        splitFactors[kRightHip] = 0.0f;
        standing = LeftFoot;
    } else {
        splitFactors[kRightHip] = 1.0f;
        standing = RightFoot;
    }
    splitFactors[kLeftHip] = complementOf(splitFactors[kRightHip]);
    return standing;
}

void qmStaticStrength::splitHandsAndKnees()
{
    l5Segment = figure->findSegment("l5");
    const qcJointImp* rightKnee = human->getKneeJoint(qcRight);
    const qcJointImp* leftKnee = human->getKneeJoint(qcLeft);
    qcSiteImp* balance = figure->getReferenceSite();
    splitFactors[kRightHip] = rightShare(balance, rightKnee ? rightKnee->getInboardSite() : nullptr,
                                         leftKnee ? leftKnee->getInboardSite() : nullptr, gravity);
    splitFactors[kLeftHip] = complementOf(splitFactors[kRightHip]);
    splitFactors[kRightClavicle] =
        rightShare(balance, human->getHandSite(qcRight), human->getHandSite(qcLeft), gravity);
    splitFactors[kLeftClavicle] = complementOf(splitFactors[kRightClavicle]);
}

// Required: loads and weight of the segment where a walk stops are halved under every strategy.
float qmStaticStrength::get_split_factor(qcJointImp* joint, int mode, const char* name)
{
    if (mode == kSiteLoad || mode == kSegmentWeight)
        return 0.5f;
    if (!joint || !name)
        return 0.0f;

    const bool ofWaist = std::strcmp(name, "waist") == 0;
    if (strategy == TwoFeet)
        return ofWaist ? splitFactors[isRight(joint) ? kRightHip : kLeftHip] : 0.0f;
    if (strategy != HandsAndKnees)
        return 0.0f;

    const char* jointName = joint->getName();
    const std::size_t length = std::strlen(jointName);
    if (ofWaist && length > std::strlen("_hip") && endsWith(jointName, length, "_hip"))
        return splitFactors[isRight(joint) ? kRightHip : kLeftHip];
    if (std::strcmp(name, "solar_plexus") == 0 && length > std::strlen("_clavicle_joint")
        && endsWith(jointName, length, "_clavicle_joint"))
        return splitFactors[isRight(joint) ? kRightClavicle : kLeftClavicle];
    return 0.0f;
}

float qmStaticStrength::getSplitFactor(qcJoint* joint, int mode, const char* name)
{
    if (isOrphaned("getSplitFactor"))
        return 0.0f;
    return get_split_factor(joint, mode, name);
}
