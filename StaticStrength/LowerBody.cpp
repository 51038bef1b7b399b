// Lower body: hips, knees and ankles of a figure that stands on two feet, from the load at its waist.
//
// The load above the ankles is balanced about each ankle. The signs of the two moments tell whether
// one foot or both carry it; then it is shared between the legs. The feet themselves enter no sum.
#include "FigureParts.h"
#include "ForceMoment.h"
#include "LoadValues.h"
#include "MissingParts.h"
#include "Units.h"
#include "Vectors.h"
#include "qmStaticStrength.h"

namespace {

constexpr float kMomentPerKgfCm = 0.098f;                // N·m; required: not MOMENT_SCALE
constexpr double kKgfCmPerMoment = 10.204081632653061;   // 1 / 0.098

/// A segment's weight and where it acts.
struct Weight {
    qVector force;    // kgf
    qVector center;   // cm
};

/// One leg: what it weighs and where its joints are.
struct Leg {
    qcJointImp* hip;
    qcJointImp* knee;
    qcJointImp* ankle;
    qVector hipPos, kneePos, anklePos;   // cm; on the lower torso, the upper leg and the lower leg
    Weight upper, lower;
};

/// All that the method reads.
struct Body {
    Leg leg[2];                        // by qcSide
    Weight torso;                      // the lower torso
    qVector waistPos;                  // cm
    qVector waistForce, waistMoment;   // the walk's result, kgf and N·m
    bool hasHPointLoad;
    qVector hPointLoad;   // kgf
    qVector hPointPos;    // cm
    qVector across;       // the lower torso's x axis
};

// A quotient in single precision, turned into kgf in double, narrowed.
float toKgf(float quotient)
{
    return static_cast<float>(double(quotient) * kKgfCmPerMoment);
}

// Takes the component along an axis out of a moment. Required: the axis is normalised after the product.
void removeComponent(qVector& moment, qVector axis)
{
    const float along = moment.dotProd(axis);
    axis.normalize();
    axis.scale(along);
    moment.sub(axis);
}

Weight weightOf(qcSegmentImp* segment, const qVector& gravity)
{
    return {weightToLoad(gravity, segment->getMass()), centerOfMassInWorld(segment)};
}

// Finds every part. @return false, after an error message that names all that is missing
bool gather(qcHuman& human, const qVector& gravity, Body& body)
{
    MissingParts missing;
    const qcFigure& figure = *human.getFigure();
    const auto segment = [&](const char* name) { return missing.check(figure.findSegment(name), "segment ", name); };
    qcSegmentImp* torso = segment("lower_torso");
    qcSegmentImp* upper[2] = {segment("right_upper_leg"), segment("left_upper_leg")};
    qcSegmentImp* lower[2] = {segment("right_lower_leg"), segment("left_lower_leg")};
    segment("left_foot");
    segment("right_foot");

    qcSiteImp* waist = missing.check(siteOnSegment(human.getWaistJoint(), torso), "waist", " on lower_torso");
    qcSiteImp *hip[2], *knee[2], *ankle[2];
    for (const qcSide side : {qcRight, qcLeft}) {
        const char* name = side == qcRight ? "right" : "left";
        hip[side] = missing.check(siteOnSegment(human.getHipJoint(side), torso), name, " hip on lower_torso");
        knee[side] =
            missing.check(siteOnSegment(human.getKneeJoint(side), upper[side]), name, " knee on the upper leg");
        ankle[side] =
            missing.check(siteOnSegment(human.getAnkleJoint(side), lower[side]), name, " ankle on the lower leg");
    }
    qcSiteImp* hPoint =
        torso ? missing.check(siteOfSegment(torso, "h_point"), "site lower_torso.", "h_point") : nullptr;
    qcSiteImp* proximal =
        torso ? missing.check(siteOfSegment(torso, "proximal"), "site lower_torso.", "proximal") : nullptr;
    if (missing.report("the legs cannot be computed"))
        return false;

    body.torso = weightOf(torso, gravity);
    for (const qcSide side : {qcRight, qcLeft})
        body.leg[side] = {human.getHipJoint(side),        human.getKneeJoint(side),      human.getAnkleJoint(side),
                          positionOf(hip[side]),          positionOf(knee[side]),        positionOf(ankle[side]),
                          weightOf(upper[side], gravity), weightOf(lower[side], gravity)};
    body.waistPos = positionOf(waist);
    body.waistForce = body.waistMoment = qVector();
    readResult(human.getWaistJoint(), body.waistForce, body.waistMoment);
    body.hPointLoad = qVector();
    body.hasHPointLoad = readSiteLoad(hPoint, body.hPointLoad) != 0;
    body.hPointPos = positionOf(hPoint);
    body.across = proximal->getGlobalTransform().getAxis(0);
    return true;
}

/// A force and a moment about a point.
struct Sum {
    qVector force, moment;

    /// Adds a force that acts at a point, about `about`.
    void add(qmStaticStrength& analysis, qVector f, qVector at, qVector about)
    {
        analysis.calcForcesAt(about, at, f, force, moment);
    }
};

// All that lies above the ankles, about one ankle.
//
// Required: about the right ankle the left leg's weights come first, lower before upper, and the
// right leg's upper before lower; about the left ankle the mirror image. The orders of the two sums
// differ, and with them their roundings.
Sum balanceAbout(qmStaticStrength& analysis, const Body& body, qcSide side)
{
    const Leg& own = body.leg[side];
    const Leg& other = body.leg[side == qcRight ? qcLeft : qcRight];
    const qVector& about = own.anklePos;
    Sum sum;
    sum.add(analysis, other.lower.force, other.lower.center, about);
    sum.add(analysis, other.upper.force, other.upper.center, about);
    sum.add(analysis, own.upper.force, own.upper.center, about);
    sum.add(analysis, own.lower.force, own.lower.center, about);
    sum.add(analysis, body.torso.force, body.torso.center, about);
    sum.add(analysis, body.waistForce, body.waistPos, about);
    if (body.hasHPointLoad)
        sum.add(analysis, body.hPointLoad, body.hPointPos, about);
    sum.moment.add(body.waistMoment);
    return sum;
}

// One foot carries the body; the other leg hangs, its own thigh and shank on it.
//
// Required: the supporting hip takes the waist's moment as it is; neither the way from the waist to
// the hip nor the lower torso's weight adds to it.
void standOnOneFoot(qmStaticStrength& analysis, const Body& body, qcSide side, const Sum& atAnkle)
{
    const Leg& leg = body.leg[side];
    const Leg& hanging = body.leg[side == qcRight ? qcLeft : qcRight];
    storeResult(leg.ankle, atAnkle.force, atAnkle.moment);
    storeResult(hanging.ankle, qVector(), qVector());

    Sum sum{body.waistForce + body.torso.force, body.waistMoment};
    qVector discarded;
    const auto transfer = [&](qVector from, qVector to) {
        qVector force = sum.force;
        analysis.calcForcesAt(to, from, force, discarded, sum.moment);
    };
    storeResult(leg.hip, sum.force, sum.moment);
    transfer(leg.hipPos, leg.kneePos);
    sum.add(analysis, leg.upper.force, leg.upper.center, leg.kneePos);
    storeResult(leg.knee, sum.force, sum.moment);

    sum = Sum();
    sum.add(analysis, hanging.lower.force, hanging.lower.center, hanging.kneePos);
    storeResult(hanging.knee, sum.force, sum.moment);
    transfer(hanging.kneePos, hanging.hipPos);
    sum.add(analysis, hanging.upper.force, hanging.upper.center, hanging.hipPos);
    storeResult(hanging.hip, sum.force, sum.moment);
}

/// What one leg carries when both feet stand.
struct Shared {
    qVector torso, waistForce, waistMoment, hPoint, upper, lower;
};

Shared shareOf(const Body& body, qcSide side, float share)
{
    const Leg& leg = body.leg[side];
    return {scaled(body.torso.force, share),
            scaled(body.waistForce, share),
            scaled(body.waistMoment, share),
            scaled(body.hPointLoad, share),
            leg.upper.force,
            leg.lower.force};
}

// Required: the lighter loaded leg's weights count by its share, and, doubled by the other's share, move
// over to the other side's lower torso; the other leg's count in full.
void moveWeightOver(Shared& lighter, Shared& heavier, const Leg& lighterLeg, float lighterShare, float heavierShare)
{
    lighter.upper.scale(lighterShare);
    lighter.lower.scale(lighterShare);
    const qVector moved = lighterLeg.upper.force + lighterLeg.lower.force;
    heavier.torso.add(scaled(moved, static_cast<float>(double(heavierShare) / 0.5)));
}

// By how much a leg's loads are scaled so that they match the force at its ankle.
//
//   |ankle force| / |waist + torso + upper leg + lower leg (+ h_point load)|
float scaleToAnkle(const qVector& ankleForce, const Shared& shared, bool hasHPointLoad)
{
    qVector sum = shared.waistForce + shared.torso + shared.upper + shared.lower;
    if (hasHPointLoad)
        sum.add(shared.hPoint);
    return ankleForce.mag() / sum.mag();
}

/// Hip and knee of one leg.
struct LegResult {
    Sum hip, knee;
};

// Required: the knee adds the thigh's weight alone, and its moment keeps only what lies neither along
// `n` nor along `down`.
LegResult hipAndKnee(qmStaticStrength& analysis, const Leg& leg, const Shared& shared, float scale, bool hasHPointLoad,
                     const qVector& n, const qVector& down)
{
    LegResult result;
    result.hip.force = shared.waistForce + shared.torso;
    if (hasHPointLoad)
        result.hip.force.add(shared.hPoint);
    result.hip.force.scale(scale);
    result.hip.moment = shared.waistMoment;

    result.knee.force = result.hip.force + scaled(shared.upper, scale);
    result.knee.moment = result.hip.moment;
    qVector hipPos = leg.hipPos, kneePos = leg.kneePos, discarded;
    analysis.calcForcesAt(kneePos, hipPos, result.hip.force, discarded, result.knee.moment);
    removeComponent(result.knee.moment, n);
    removeComponent(result.knee.moment, down);
    return result;
}

// Both feet carry the body.
//
//   d = PaL - PaR, D = |d|, down = (0, -1, 0), n = unit(d × down), K = 1 / 0.098
//   F1 =  down · (MR · n) / D · K      F3 = -n · (MR · down) / D · K     what the left foot takes off the right
//   F2 = -down · (ML · n) / D · K      F4 =  n · (ML · down) / D · K     what the right foot takes off the left
//   r  = |F2| / (|F2| + |F1|)          the right foot's share; the left one's is 1 - r
void standOnBothFeet(qmStaticStrength& analysis, const Body& body, const Sum& aboutRight, const Sum& aboutLeft)
{
    const Leg& right = body.leg[qcRight];
    const Leg& left = body.leg[qcLeft];
    const qVector down(0.0f, -1.0f, 0.0f);
    const qVector d = difference(left.anklePos, right.anklePos);
    const float D = d.mag();
    qVector n = crossProduct(d, down);
    n.normalize();

    const qVector& MR = aboutRight.moment;
    const qVector& ML = aboutLeft.moment;
    const qVector F1 = scaled(down, toKgf(MR.dotProd(n) / D));
    const qVector F2 = scaled(down, toKgf(-ML.dotProd(n) / D));
    const qVector F3 = scaled(n, toKgf(-(MR.dotProd(down) / D)));
    const qVector F4 = scaled(n, toKgf(ML.dotProd(down) / D));
    const float r = F2.mag() / (F2.mag() + F1.mag());
    const float q = static_cast<float>(1.0 - double(r));

    const qVector rightAnkleForce = difference(difference(aboutRight.force, F1), F3);
    const qVector rightAnkleMoment = scaled(MR + scaled(crossProduct(F1 + F3, d), kMomentPerKgfCm), r);
    storeResult(right.ankle, rightAnkleForce, rightAnkleMoment);

    const qVector leftAnkleForce = difference(difference(aboutLeft.force, F2), F4);
    const qVector leftAnkleMoment = scaled(ML + scaled(scaled(crossProduct(F2 + F4, d), -1.0f), kMomentPerKgfCm), q);
    storeResult(left.ankle, leftAnkleForce, leftAnkleMoment);

    Shared onRight = shareOf(body, qcRight, r);
    Shared onLeft = shareOf(body, qcLeft, q);
    if (r <= q)
        moveWeightOver(onRight, onLeft, right, r, q);
    else
        moveWeightOver(onLeft, onRight, left, q, r);

    const float rightScale = scaleToAnkle(rightAnkleForce, onRight, body.hasHPointLoad);
    const float leftScale = scaleToAnkle(leftAnkleForce, onLeft, body.hasHPointLoad);
    LegResult rightResult = hipAndKnee(analysis, right, onRight, rightScale, body.hasHPointLoad, n, down);
    LegResult leftResult = hipAndKnee(analysis, left, onLeft, leftScale, body.hasHPointLoad, n, down);
    storeResult(left.hip, leftResult.hip.force, leftResult.hip.moment);
    storeResult(left.knee, leftResult.knee.force, leftResult.knee.moment);
    storeResult(right.hip, rightResult.hip.force, rightResult.hip.moment);
    storeResult(right.knee, rightResult.knee.force, rightResult.knee.moment);
}

}   // namespace

void qmStaticStrength::calcLowerBodyFM_URmethod()
{
    Body body;
    if (!gather(*human, gravity, body))
        return;
    const Sum aboutRight = balanceAbout(*this, body, qcRight);
    const Sum aboutLeft = balanceAbout(*this, body, qcLeft);

    // moments of opposite signs about the two ankles: the load lies between the feet
    const float product = aboutRight.moment.dotProd(body.across) * aboutLeft.moment.dotProd(body.across);
    if (double(product) < 0.0)
        standOnBothFeet(*this, body, aboutRight, aboutLeft);
    else if (aboutRight.moment.mag() <= aboutLeft.moment.mag())
        standOnOneFoot(*this, body, qcRight, aboutRight);
    else
        standOnOneFoot(*this, body, qcLeft, aboutLeft);
}
