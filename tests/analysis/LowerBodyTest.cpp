// Lower body on two feet: what hips, knees and ankles carry below a given result at the waist.
//
// The small body stands with straight legs; what its numbers become is derived here from
//
//   weights, kgf, straight down    lower torso 10 at (0, 95, 0), upper leg 8 at (-/+10, 70, 0),
//                                  lower leg 4 at (-/+10, 30, 0)
//   waist force, kgf               (0, -30, 0) at (0, 100, 0), unless a test says otherwise
//   S = 0.0980665                  kgf·cm to N·m, in every moment that is summed
//   K = 1 / 0.098                  N·m to kgf·cm, in the reactions at the ankles
//
// A weight w at (x, z) from a point has the moment (z w, 0, -x w) S about it.
#include "AnalysisTest.h"
#include "Chance.h"
#include "NaiveAnalysis.h"
#include "PrivateMembers.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <tuple>

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

struct CalcLegs {
    using type = void (qmStaticStrength::*)();
    friend type get(CalcLegs);
};
template struct Expose<CalcLegs, &qmStaticStrength::calcLowerBodyFM_URmethod>;

struct SplitFactors {
    using type = float (qmStaticStrength::*)[4];
    friend type get(SplitFactors);
};
template struct Expose<SplitFactors, &qmStaticStrength::splitFactors>;

namespace {

constexpr double S = 0.0980665;
constexpr double K = 1 / 0.098;
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

// About twenty roundings of numbers of at most 100 kgf or N·m.
double bound()
{
    return roundingBound(20, 100);
}

using Vector = SmallFigure::Vector;

nlohmann::json& part(SmallFigure& body, const char* list, const char* nameKey, const std::string& name)
{
    for (nlohmann::json& found : body.document()[list])
        if (found[nameKey] == name)
            return found;
    throw std::logic_error("no " + name);
}

void moveRow(nlohmann::json& transform, const Vector& to)
{
    transform[3] = {to[0], to[1], to[2], 1};
}

void moveSite(SmallFigure& body, const std::string& key, const Vector& to)
{
    moveRow(part(body, "sites", "key", key)["transform"], to);
}

void moveSegment(SmallFigure& body, const std::string& name, const Vector& to)
{
    moveRow(part(body, "segments", "name", name)["transform"], to);
}

// Axis 0 of lower_torso.proximal, along which the two balances are compared, points forward: on two
// level feet side by side, weights between them then turn about it in opposite senses.
void compareAboutForwardAxis(SmallFigure& body)
{
    part(body, "sites", "key",
         "lower_torso.proximal")["transform"] = {{0, 0, 1, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}, {0, 90, 0, 1}};
}

SmallFigure onBothFeet()
{
    SmallFigure body = smallBody();
    compareAboutForwardAxis(body);
    return body;
}

std::string bitsOf(const qVector& v)
{
    std::array<float, 3> numbers = components(v);
    for (float& number : numbers)
        if (std::isnan(number))
            number = kNotANumber;   // which one is not told
    return {reinterpret_cast<const char*>(numbers.data()), sizeof numbers};
}

constexpr const char* kSix[] = {"right_hip", "right_knee", "right_ankle", "left_hip", "left_knee", "left_ankle"};

class LowerBody : public AnalysisTest {
protected:
    void legs()
    {
        qmStaticStrength& own = *analysis;   // g++ 12's sanitizer takes `analysis->*` for a wrong access
        (own.*get(CalcLegs()))();
    }
    void legs(const qVector& waistForce, const qVector& waistMoment = {})
    {
        analysis->setFMonJoint(human->getWaistJoint(), waistForce, waistMoment);
        legs();
    }

    void expectResult(const char* name, const Vector& force, const Vector& moment, double within = bound())
    {
        SCOPED_TRACE(name);
        const Result result = resultOf(name);
        EXPECT_EQ(result.status, 1);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(components(result.force)[i], force[i], within) << "force " << i;
            EXPECT_NEAR(components(result.moment)[i], moment[i], within) << "moment " << i;
        }
    }
    void expectExactly(const char* name, const Vector& force, const Vector& moment)
    {
        expectResult(name, force, moment, 0);
    }

    std::string bitsOfSix() const
    {
        std::string bits;
        for (const char* name : kSix) {
            const Result result = resultOf(name);
            bits += bitsOf(result.force) + bitsOf(result.moment);
        }
        return bits;
    }

    // The same steps in float, written down apart from the analysis.
    NaiveLegs<float> transcription()
    {
        qVector gravity, force, moment, load;
        analysis->getGravity(gravity);
        analysis->getJointForces(human->getWaistJoint(), force, moment);
        const bool hasLoad = analysis->getSiteLoad(site("lower_torso.h_point"), load) != 0;
        return NaiveLegs<float>(human, gravity, {force[0], force[1], force[2]}, {moment[0], moment[1], moment[2]},
                                hasLoad ? &load : nullptr);
    }
    // Later stores on a joint win.
    void expectBitsOf(const NaiveLegs<float>& naive)
    {
        std::map<qcJoint*, std::string> expected;
        for (const auto& store : naive.stores)
            expected[store.joint] = bitsOf({store.force.x, store.force.y, store.force.z})
                                    + bitsOf({store.moment.x, store.moment.y, store.moment.z});
        for (const auto& [joint, bits] : expected) {
            qVector force, moment;
            EXPECT_EQ(analysis->getJointForces(joint, force, moment), 1);
            EXPECT_EQ(bitsOf(force) + bitsOf(moment), bits) << joint->getName();
        }
    }
};

// ---- One foot ------------------------------------------------------------------------------------

// All in the plane z = 0 and X = (1, 0, 0): no moment along X, the product is exactly 0. About the
// right ankle: left leg 12 at 20, torso and waist 40 at 10: (0, 0, -640) S; about the left: +640 S.
// The magnitudes are equal: the right foot.
//   right hip    (0, -30 - 10, 0), moment of the waist alone: none
//   right knee   + 8 of the upper leg; every lever is upright: no moment
//   left knee    the lower leg, 4;    left hip  both, 12
TEST_F(LowerBody, ProductOfExactlyZeroIsOneFootAndATieIsTheRightOne)
{
    load(smallBody());
    legs({0, -30, 0});
    expectResult("right_ankle", {0, -64, 0}, {0, 0, -640 * S});
    expectExactly("left_ankle", {0, 0, 0}, {0, 0, 0});
    expectResult("right_hip", {0, -40, 0}, {0, 0, 0});
    expectResult("right_knee", {0, -48, 0}, {0, 0, 0});
    expectResult("left_knee", {0, -4, 0}, {0, 0, 0});
    expectResult("left_hip", {0, -12, 0}, {0, 0, 0});
}

// As above, with the moments 640 S - 1 about the left and 640 S + 1 about the right ankle.
TEST_F(LowerBody, TheFootWithTheSmallerMomentSupports)
{
    load(smallBody());
    legs({0, -30, 0}, {0, 0, -1});
    expectResult("left_ankle", {0, -64, 0}, {0, 0, 640 * S - 1});
    expectExactly("right_ankle", {0, 0, 0}, {0, 0, 0});

    legs({0, -30, 0}, {0, 0, 1});
    expectResult("right_ankle", {0, -64, 0}, {0, 0, -640 * S + 1});
    expectExactly("left_ankle", {0, 0, 0}, {0, 0, 0});
}

// Knees 30 cm forward, upper legs' centres of mass at z = 15.
SmallFigure kneesForward()
{
    SmallFigure body = smallBody();
    for (const auto& [side, x] : {std::pair<std::string, double>{"right", -10}, {"left", 10}}) {
        moveSite(body, side + "_upper_leg.distal", {x, 50, 30});
        moveSegment(body, side + "_upper_leg", {x, 90, 15});
    }
    return body;
}

// Both balances have 2 · 8 · 15 = 240 S along X: the same sign, one foot.
//   stance hip    (0, -40, 0), the waist's moment alone: neither the waist's force nor the torso's weight adds one
//   stance knee   40 of the hip at z = -30, 8 of the upper leg at z = -15: (-1200 - 120) S = -1320 S, and the waist's
//   free knee     the lower leg, 4 at z = -30: -120 S
//   free hip      4 at z = 30 takes that back: + 120 S; 8 at z = 15: + 120 S; together 120 S
TEST_F(LowerBody, OneFootOnTheLeft)
{
    load(kneesForward());
    legs({0, -30, 0}, {0, 0, -1});
    expectResult("left_ankle", {0, -64, 0}, {240 * S, 0, 640 * S - 1});
    expectExactly("right_ankle", {0, 0, 0}, {0, 0, 0});
    expectExactly("left_hip", {0, -40, 0}, {0, 0, -1});
    expectResult("left_knee", {0, -48, 0}, {-1320 * S, 0, -1});
    expectResult("right_knee", {0, -4, 0}, {-120 * S, 0, 0});
    expectResult("right_hip", {0, -12, 0}, {120 * S, 0, 0});
}

TEST_F(LowerBody, OneFootOnTheRightIsTheMirrorImage)
{
    load(kneesForward());
    legs({0, -30, 0}, {0, 0, 1});
    expectResult("right_ankle", {0, -64, 0}, {240 * S, 0, -640 * S + 1});
    expectExactly("left_ankle", {0, 0, 0}, {0, 0, 0});
    expectExactly("right_hip", {0, -40, 0}, {0, 0, 1});
    expectResult("right_knee", {0, -48, 0}, {-1320 * S, 0, 1});
    expectResult("left_knee", {0, -4, 0}, {-120 * S, 0, 0});
    expectResult("left_hip", {0, -12, 0}, {120 * S, 0, 0});
}

// The hanging hip sees the lower leg's weight from the knee, not from the lower leg's own place, but the
// knee's moment comes along; a horizontal waist force and a moment show what the stance hip leaves out.
//   stance hip   force (3, -40, 5), moment (1, 2, 4) as at the waist
//   stance knee  force (3, -48, 5); moment (1, 2, 4) + (0, 40, 0) × (3, -40, 5) S = (1 + 200 S, 2, 4 - 120 S)
TEST_F(LowerBody, TheStanceHipHasTheWaistMomentAlone)
{
    load(smallBody());
    legs({3, -30, 5}, {1, 2, 4});
    // about both ankles: 1 + 90 · 5 S along X, the same sign; z: right -640 S - 90 · 3 S + 4, left +640 S - 270 S + 4
    expectResult("left_ankle", {3, -64, 5}, {1 + 450 * S, 2 + 10 * 5 * S, 4 + 370 * S});
    expectExactly("left_hip", {3, -40, 5}, {1, 2, 4});
    expectResult("left_knee", {3, -48, 5}, {1 + 200 * S, 2, 4 - 120 * S});
    expectExactly("right_ankle", {0, 0, 0}, {0, 0, 0});
}

// No load at the waist at all: 34 kgf stand on the right foot.
TEST_F(LowerBody, AWaistWithoutAResultCountsNothing)
{
    load(smallBody());
    human->getWaistJoint()->removeProperty("SSTR_Force_Moment");
    legs();
    expectResult("right_ankle", {0, -34, 0}, {0, 0, -(12 * 20 + 10 * 10) * S});
    expectExactly("right_hip", {0, -10, 0}, {0, 0, 0});
    EXPECT_EQ(resultOf("waist").status, 0);   // and nothing is stored there
}

// So does one that holds something else than a result.
TEST_F(LowerBody, AWaistWithSomethingThatIsNoResultCountsNothing)
{
    load(smallBody());
    human->getWaistJoint()->setProperty("SSTR_Force_Moment", qcValue("x"));
    legs();
    expectResult("right_ankle", {0, -34, 0}, {0, 0, -(12 * 20 + 10 * 10) * S});
    expectExactly("right_hip", {0, -10, 0}, {0, 0, 0});
}

// A mass below zero lifts, as a walk would not have it. Right lower leg -4 kgf, all in the plane z = 0: one foot.
//   about the right ankle  12 · 20 + 40 · 10 = 640;  about the left  (8 - 4) · 20 + 40 · 10 = 480: the left foot
//   left ankle  12 + 8 - 4 + 40 = 56;  right knee  the lower leg alone, 4 up;  right hip  with the upper leg, 4 down
TEST_F(LowerBody, AMassBelowZeroLifts)
{
    load(smallBody());
    segment("right_lower_leg")->setMass(-4000);
    legs({0, -30, 0});
    expectResult("left_ankle", {0, -56, 0}, {0, 0, 480 * S});
    expectExactly("right_ankle", {0, 0, 0}, {0, 0, 0});
    expectResult("right_knee", {0, 4, 0}, {0, 0, 0});
    expectResult("right_hip", {0, -4, 0}, {0, 0, 0});
}

// Infinite moments are equal, their parts along X = (1, 1, 0) cancel to not-a-number: one foot, the right one.
TEST_F(LowerBody, AProductThatIsNotANumberIsOneFoot)
{
    SmallFigure body = smallBody();
    part(body, "sites", "key", "lower_torso.proximal")["transform"][0] = {1, 1, 0, 0};
    load(body);
    legs({0, -30, 0}, {kInfinity, -kInfinity, 0});
    expectExactly("left_ankle", {0, 0, 0}, {0, 0, 0});
    EXPECT_THAT(components(resultOf("right_hip").force), ElementsAre(0, -40, 0));
    EXPECT_THAT(components(resultOf("right_hip").moment), ElementsAre(kInfinity, -kInfinity, 0));
    expectResult("left_hip", {0, -12, 0}, {0, 0, 0});
    expectBitsOf(transcription());
}

// Magnitudes that are no numbers are not at most each other: the left foot.
TEST_F(LowerBody, MomentsThatAreNoNumbersStandOnTheLeftFoot)
{
    load(onBothFeet());
    legs({0, -30, 0}, {0, 0, kNotANumber});
    expectExactly("right_ankle", {0, 0, 0}, {0, 0, 0});
    expectExactly("right_hip", {0, -12, 0}, {0, 0, 0});
    const Result hip = resultOf("left_hip");
    EXPECT_THAT(components(hip.force), ElementsAre(0, -40, 0));
    EXPECT_TRUE(std::isnan(hip.moment[2]));
}

void makeWeightless(qcFigure* figure)
{
    for (qList* node = figure->getSegments(); node; node = qList::iterator(figure->getSegments(), node))
        static_cast<qcSegment*>(node->getData())->setMass(0);
}

// Only 1e-25 kgf at the waist: the moments -/+ 1e-24 S are of opposite sign, but their product, -1e-50, is
// nothing in single precision: one foot.
TEST_F(LowerBody, TheProductIsFormedInSinglePrecision)
{
    load(onBothFeet());
    makeWeightless(figure);
    legs({0, -1e-25f, 0});
    const Result right = resultOf("right_ankle");
    EXPECT_THAT(components(right.force), ElementsAre(0, -1e-25f, 0));   // not a share of it
    EXPECT_LT(right.moment[2], 0);
    expectExactly("left_ankle", {0, 0, 0}, {0, 0, 0});
}

// ---- Both feet -----------------------------------------------------------------------------------

// The moments about the ankles, (0, 0, -/+ 640) S, have opposite signs along X = (0, 0, 1).
//   d = (20, 0, 0), n = d × down = (0, 0, -1)
//   F1 = down · 640 S / 20 K = (0, -32 S K, 0) = F2, F3 = F4 = 0;   r = q = 0.5
//   ankles   (0, -64 + 32 S K, 0): 32 S K is 32.0217, not 32; the moments cancel
//   a tie counts the left leg in full and doubles the right one's halves into the left torso:
//     right  waist 15, torso 5, upper leg 4, lower leg 2: 26       hip 20, knee 24
//     left   waist 15, torso 5 + 12 · 0.5 / 0.5 = 17, upper leg 8, lower leg 4: 44   hip 32, knee 40
//   each times its ankle's force over its sum
TEST_F(LowerBody, EqualSharesCountTheLeftLegInFull)
{
    load(onBothFeet());
    legs({0, -30, 0});
    const double ankle = 64 - 32 * S * K;
    EXPECT_GT(32 - ankle, 0.02);   // the two factors can be told apart
    expectResult("right_ankle", {0, -ankle, 0}, {0, 0, 0});
    expectResult("left_ankle", {0, -ankle, 0}, {0, 0, 0});
    expectResult("right_hip", {0, -20 * ankle / 26, 0}, {0, 0, 0});
    expectResult("right_knee", {0, -24 * ankle / 26, 0}, {0, 0, 0});
    expectResult("left_hip", {0, -32 * ankle / 44, 0}, {0, 0, 0});
    expectResult("left_knee", {0, -40 * ankle / 44, 0}, {0, 0, 0});
}

// 16 kgf more, at (0, 90, 0): 80 in all, 800 S about each ankle, 8 on each side.
TEST_F(LowerBody, ALoadOnTheHPointIsBalancedAndShared)
{
    load(onBothFeet());
    analysis->setLoad(site("lower_torso.h_point"), {0, -16, 0});
    legs({0, -30, 0});
    const double ankle = 80 - 40 * S * K;
    expectResult("right_ankle", {0, -ankle, 0}, {0, 0, 0});
    expectResult("left_ankle", {0, -ankle, 0}, {0, 0, 0});
    expectResult("right_hip", {0, -28 * ankle / 34, 0}, {0, 0, 0});
    expectResult("right_knee", {0, -32 * ankle / 34, 0}, {0, 0, 0});
    expectResult("left_hip", {0, -40 * ankle / 52, 0}, {0, 0, 0});
    expectResult("left_knee", {0, -48 * ankle / 52, 0}, {0, 0, 0});
}

// On one foot it reaches the supporting ankle, 10 cm to the side, and no other joint.
TEST_F(LowerBody, OnOneFootALoadOnTheHPointReachesOnlyTheAnkle)
{
    load(smallBody());
    analysis->setLoad(site("lower_torso.h_point"), {0, -16, 0});
    legs({0, -30, 0});
    expectResult("right_ankle", {0, -80, 0}, {0, 0, -800 * S});
    expectExactly("right_hip", {0, -40, 0}, {0, 0, 0});
    expectResult("right_knee", {0, -48, 0}, {0, 0, 0});
    expectResult("left_hip", {0, -12, 0}, {0, 0, 0});
}

// The site's axis x is the world's z here. The vector counts as it is stored, and whatever was stored counts.
TEST_F(LowerBody, ALoadOnTheHPointCountsAsStoredWhateverItsKind)
{
    SmallFigure body = onBothFeet();
    part(body, "sites", "key",
         "lower_torso.h_point")["transform"] = {{0, 0, 1, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}, {0, 90, 0, 1}};
    load(body);
    qcSite* hPoint = site("lower_torso.h_point");
    analysis->setLoad(hPoint, {1, -16, 2}, 0);
    legs({0, -30, 0});
    const std::string global = bitsOfSix();
    for (const int kind : {1, 2}) {
        analysis->setLoad(hPoint, {1, -16, 2}, kind);
        legs({0, -30, 0});
        EXPECT_EQ(bitsOfSix(), global) << "kind " << kind;
    }

    analysis->setLoad(hPoint, {1, -16, 2}, 5);   // stored as something that is no load
    legs({0, -30, 0});
    const std::string unreadable = bitsOfSix();
    analysis->removeLoad(hPoint);
    legs({0, -30, 0});
    EXPECT_EQ(bitsOfSix(), unreadable);
    EXPECT_NE(unreadable, global);

    analysis->setWeightLoad(hPoint, 16000);
    legs({0, -30, 0});
    expectResult("right_ankle", {0, -80 + 40 * S * K, 0}, {0, 0, 0});
}

// The waist is 4 cm off to the left.
//   about the right ankle  12 · 20 + 10 · 10 + 30 · 14 = 760, about the left  240 + 100 + 30 · 6 = 520
//   F1 = 38 S K down, F2 = 26 S K down:  r = 26 / 64 = 0.40625, q = 0.59375
//   r < q: the left leg in full; 0.40625 of the right one, and 12 · q / 0.5 = 14.25 on the left torso
//     right  waist 12.1875, torso 4.0625: hip 16.25, + 3.25 knee 19.5, + 1.625 = 21.125
//     left   waist 17.8125, torso 5.9375 + 14.25: hip 38, + 8 knee 46, + 4 = 50
TEST_F(LowerBody, ASmallerRightShareMovesTheRightLegsWeightToTheLeft)
{
    SmallFigure body = onBothFeet();
    moveSite(body, "lower_torso.distal", {4, 100, 0});
    load(body);
    legs({0, -30, 0});
    const double right = 64 - 38 * S * K, left = 64 - 26 * S * K;
    expectResult("right_ankle", {0, -right, 0}, {0, 0, 0});
    expectResult("left_ankle", {0, -left, 0}, {0, 0, 0});
    expectResult("right_hip", {0, -16.25 * right / 21.125, 0}, {0, 0, 0});
    expectResult("right_knee", {0, -19.5 * right / 21.125, 0}, {0, 0, 0});
    expectResult("left_hip", {0, -38 * left / 50, 0}, {0, 0, 0});
    expectResult("left_knee", {0, -46 * left / 50, 0}, {0, 0, 0});
}

// 4 cm to the right: r = 0.59375 > q, and everything changes sides.
TEST_F(LowerBody, ASmallerLeftShareMovesTheLeftLegsWeightToTheRight)
{
    SmallFigure body = onBothFeet();
    moveSite(body, "lower_torso.distal", {-4, 100, 0});
    load(body);
    legs({0, -30, 0});
    const double left = 64 - 38 * S * K, right = 64 - 26 * S * K;
    expectResult("right_ankle", {0, -right, 0}, {0, 0, 0});
    expectResult("left_ankle", {0, -left, 0}, {0, 0, 0});
    expectResult("left_hip", {0, -16.25 * left / 21.125, 0}, {0, 0, 0});
    expectResult("left_knee", {0, -19.5 * left / 21.125, 0}, {0, 0, 0});
    expectResult("right_hip", {0, -38 * right / 50, 0}, {0, 0, 0});
    expectResult("right_knee", {0, -46 * right / 50, 0}, {0, 0, 0});
}

// A load on the h-point is shared by r and q: 16 kgf at (12, 90, 0) beside the symmetric rest.
//   about the right ankle  640 + 16 · 22 = 992, about the left  640 - 16 · 2 = 608
//   r = 608 / 1600 = 0.38, q = 0.62; the load's shares are 6.08 and 9.92
//     right  30 r + 10 r + 6.08 = 21.28: hip, + 8 r = 24.32 knee, + 4 r = 25.84
//     left   30 q + 10 q + 12 · q / 0.5 + 9.92 = 49.6: hip, + 8 = 57.6 knee, + 4 = 61.6
TEST_F(LowerBody, TheHPointLoadIsSharedByTheFeetsShares)
{
    SmallFigure body = onBothFeet();
    moveSite(body, "lower_torso.h_point", {12, 90, 0});
    load(body);
    analysis->setLoad(site("lower_torso.h_point"), {0, -16, 0});
    legs({0, -30, 0});
    const double right = 80 - 992 / 20.0 * S * K, left = 80 - 608 / 20.0 * S * K;
    expectResult("right_ankle", {0, -right, 0}, {0, 0, 0});
    expectResult("left_ankle", {0, -left, 0}, {0, 0, 0});
    expectResult("right_hip", {0, -21.28 * right / 25.84, 0}, {0, 0, 0});
    expectResult("right_knee", {0, -24.32 * right / 25.84, 0}, {0, 0, 0});
    expectResult("left_hip", {0, -49.6 * left / 61.6, 0}, {0, 0, 0});
    expectResult("left_knee", {0, -57.6 * left / 61.6, 0}, {0, 0, 0});
}

// A waist moment (3, 5, 0) beside the waist 4 cm to the left; knees 4 cm outward and 30 cm forward.
//   MR · down = ML · down = -5:  F3 = n · (5 / 20) K = (0, 0, -0.25 K), F4 = (0, 0, +0.25 K)
//   right ankle  (0, -64 + 38 S K, 0.25 K); its moments about y and z are taken up by the reactions: (3, 0, 0) r
//   left ankle   (0, -64 + 26 S K, -0.25 K); moment (3, 0, 0) q
//   hips         moments (3, 5, 0) r and (3, 5, 0) q
//   knees        the hip's force h at (4, 40, -30) from the right, (-4, 40, -30) from the left knee adds
//                (-30 h, 0, -/+ 4 h) S; of the sum what lies along n (z) and down (y) goes: (3 r - 30 h S, 0, 0)
TEST_F(LowerBody, AKneeKeepsNoMomentAlongTheVerticalOrAcrossTheFeet)
{
    SmallFigure body = onBothFeet();
    moveSite(body, "lower_torso.distal", {4, 100, 0});
    moveSite(body, "right_upper_leg.distal", {-14, 50, 30});
    moveSite(body, "left_upper_leg.distal", {14, 50, 30});
    load(body);
    legs({0, -30, 0}, {3, 5, 0});
    const double r = 0.40625, q = 0.59375;
    const double rightDown = 64 - 38 * S * K, leftDown = 64 - 26 * S * K;
    expectResult("right_ankle", {0, -rightDown, 0.25 * K}, {3 * r, 0, 0});
    expectResult("left_ankle", {0, -leftDown, -0.25 * K}, {3 * q, 0, 0});

    const double kR = std::hypot(rightDown, 0.25 * K) / 21.125, kL = std::hypot(leftDown, 0.25 * K) / 50;
    expectResult("right_hip", {0, -16.25 * kR, 0}, {3 * r, 5 * r, 0});
    expectResult("left_hip", {0, -38 * kL, 0}, {3 * q, 5 * q, 0});
    expectResult("right_knee", {0, -19.5 * kR, 0}, {3 * r - 30 * 16.25 * kR * S, 0, 0});
    expectResult("left_knee", {0, -46 * kL, 0}, {3 * q - 30 * 38 * kL * S, 0, 0});
}

// Feet one before the other: the plane of the reactions turns with them, down stays the world's.
//   ankles at (0, 10, -10) right and (0, 10, 10) left, legs' weights at z = -/+ 10, X = (1, 0, 0)
//   about the right ankle (z w): 12 · 20 + 40 · 10 = 640 along x, about the left -640: both feet, r = q = 0.5
TEST_F(LowerBody, FeetOneBeforeTheOther)
{
    SmallFigure body = smallBody();
    for (const auto& [side, z] : {std::pair<std::string, double>{"right", -10}, {"left", 10}}) {
        moveSite(body, side + "_lower_leg.distal", {0, 10, z});
        moveSegment(body, side + "_upper_leg", {0, 90, z});
        moveSegment(body, side + "_lower_leg", {0, 50, z});
    }
    load(body);
    legs({0, -30, 0});
    const double ankle = 64 - 32 * S * K;
    expectResult("right_ankle", {0, -ankle, 0}, {0, 0, 0});
    expectResult("left_ankle", {0, -ankle, 0}, {0, 0, 0});
    expectResult("left_hip", {0, -32 * ankle / 44, 0}, {0, 0, 0});
}

// ---- What counts and what does not ---------------------------------------------------------------

TEST_F(LowerBody, TheFeetsMassesChangeNoResult)
{
    SmallFigure both = smallBody("both");
    compareAboutForwardAxis(both);
    for (const SmallFigure& body : {smallBody("one"), both}) {
        load(body);
        legs({3, -30, 5}, {1, 2, 4});
        const std::string before = bitsOfSix();
        for (const char* name : {"right_foot", "left_foot", "right_toes", "left_toes"})
            segment(name)->setMass(123456);
        legs({3, -30, 5}, {1, 2, 4});
        EXPECT_EQ(bitsOfSix(), before);
    }
}

// Loads below the waist other than the h-point's, and torques at the six joints, are not seen.
TEST_F(LowerBody, OtherLoadsBelowTheWaistAreNotSeen)
{
    load(onBothFeet());
    legs({3, -30, 5}, {1, 2, 4});
    const std::string before = bitsOfSix();

    analysis->setLoad(site("right_upper_leg.distal"), {1, -20, 3});
    analysis->setLoad(site("left_foot.sole"), {1, 20, 3});
    analysis->setLoad(site("lower_torso.center_of_mass"), {1, -20, 3});
    analysis->setLoadWithOffset(site("lower_torso.h_point"), {1, 2, 3}, {4, 5, 6});
    qVector torque(10, 20, 30);
    for (const char* name : kSix)
        analysis->setDefinedTorque(joint(name), torque);
    legs({3, -30, 5}, {1, 2, 4});
    EXPECT_EQ(bitsOfSix(), before);
}

TEST_F(LowerBody, TheSplitFactorsChangeNoResult)
{
    load(onBothFeet());
    legs({3, -30, 5}, {1, 2, 4});
    const std::string before = bitsOfSix();
    qmStaticStrength& own = *analysis;
    for (float& factor : own.*get(SplitFactors()))
        factor = kNotANumber;
    legs({3, -30, 5}, {1, 2, 4});
    EXPECT_EQ(bitsOfSix(), before);
}

// Each joint's place is that of its site on the segment above (hips, waist: the lower torso; knees: the
// upper leg; ankles: the lower leg); the sites on the other side, and those on no joint, may lie anywhere.
TEST_F(LowerBody, JointsLieWhereTheirInnerSitesLie)
{
    load(onBothFeet());
    legs({3, -30, 5}, {1, 2, 4});
    const std::string before = bitsOfSix();

    SmallFigure moved = smallBody("moved");
    compareAboutForwardAxis(moved);
    for (const char* key : {"l5.proximal", "right_upper_leg.proximal", "left_upper_leg.proximal",
                            "right_lower_leg.proximal", "left_lower_leg.proximal", "right_foot.proximal",
                            "left_foot.proximal", "lower_torso.center_of_mass", "lower_torso.balance_point"})
        moveSite(moved, key, {77, -55, 33});
    for (const char* name : {"right_foot", "left_foot", "l5"})
        moveSegment(moved, name, {77, -55, 33});
    // second transforms count nowhere here
    for (nlohmann::json& one : moved.document()["sites"])
        moveRow(one["second_transform"], {-5, 6, 7});
    load(moved);
    legs({3, -30, 5}, {1, 2, 4});
    EXPECT_EQ(bitsOfSix(), before);
}

// The waist's result and the h-point's load are only read; a second run changes no bit.
TEST_F(LowerBody, NothingElseIsWrittenAndASecondRunGivesTheSame)
{
    load(onBothFeet());
    analysis->setLoad(site("lower_torso.h_point"), {1, -16, 2});
    legs({3, -30, 5}, {1, 2, 4});
    const std::string before = bitsOfSix();
    legs();
    EXPECT_EQ(bitsOfSix(), before);

    const Result waist = resultOf("waist");
    EXPECT_THAT(components(waist.force), ElementsAre(3, -30, 5));
    EXPECT_THAT(components(waist.moment), ElementsAre(1, 2, 4));
    qVector load;
    EXPECT_EQ(analysis->getSiteLoad(site("lower_torso.h_point"), load), 1);
    EXPECT_THAT(components(load), ElementsAre(1, -16, 2));
    for (const char* name : {"t8_l5", "solar_plexus", "right_ball", "left_shoulder"})
        EXPECT_EQ(resultOf(name).status, 0) << name;
}

// Twice the gravity: the weights are 2 · 34, the waist's force stays.
TEST_F(LowerBody, WeightsFollowGravity)
{
    load(smallBody());
    analysis->setGravity({0, -2 * 980.665f, 0});
    legs({0, -30, 0});
    expectResult("right_ankle", {0, -98, 0}, {0, 0, -(2 * 340 + 300) * S});

    // sideways: 34 kgf to the right at their heights; above the ankles (10 cm):
    //   upper legs 2 · 8 · 60, lower legs 2 · 4 · 20, torso 10 · 85: 1970; (0, y, 0) × (-w, 0, 0) = (0, 0, y w)
    analysis->setGravity({-980.665f, 0, 0});
    human->getWaistJoint()->removeProperty("SSTR_Force_Moment");
    legs();
    expectResult("right_ankle", {-34, 0, 0}, {0, 0, 1970 * S}, roundingBound(20, 1970 * S));
}

// ---- The order of steps --------------------------------------------------------------------------

// In single precision 1 + 1 + 2^24 = 16777218 but 2^24 + 1 + 1 = 16777216. About the left ankle the right
// leg is summed first, from below; about the right ankle the left leg.
TEST_F(LowerBody, EachAnkleSumsTheOtherLegFirst)
{
    load(smallBody());
    for (const auto& [stance, far] : {std::pair<std::string, std::string>{"left", "right"}, {"right", "left"}}) {
        makeWeightless(figure);
        segment(far + "_lower_leg")->setMass(1000);
        segment(far + "_upper_leg")->setMass(1000);
        segment(stance + "_upper_leg")->setMass(1000.0f * 16777216.0f);
        legs({0, 0, 0});
        const Result ankle = resultOf(stance + "_ankle");
        EXPECT_THAT(components(ankle.force), ElementsAre(0, -16777218.0f, 0)) << stance;
    }
}

// Then its own leg from above, the torso and the waist: 1 (other lower leg) + 2^24 (upper leg) + 1 (lower leg)
// + 1 (torso) - 2^23 (waist, upward) loses every 1 and leaves 2^23. The lower leg or the torso before the upper
// leg makes 2 first, which stays; the waist before the torso leaves the torso's 1.
TEST_F(LowerBody, EachAnkleThenSumsItsOwnLegFromAboveTheTorsoAndTheWaist)
{
    for (const auto& [stance, far, x] :
         {std::tuple<std::string, std::string, double>{"left", "right", 10}, {"right", "left", -10}}) {
        SmallFigure body = smallBody(stance);
        moveSite(body, "lower_torso.distal", {x, 100, 0});   // above this ankle: no moment about it
        load(body);
        makeWeightless(figure);
        segment(stance + "_upper_leg")->setMass(1000.0f * 16777216.0f);
        for (const std::string& name : {far + "_lower_leg", stance + "_lower_leg", std::string("lower_torso")})
            segment(name)->setMass(1000);
        legs({0, 8388608.0f, 0});
        const NaiveLegs<float> naive = transcription();
        ASSERT_EQ(naive.support, stance == "left" ? NaiveLegs<float>::kLeft : NaiveLegs<float>::kRight);
        EXPECT_THAT(components(resultOf(stance + "_ankle").force), ElementsAre(0, -8388608.0f, 0)) << stance;
    }
}

// A figure whose two roles are played by one joint keeps the later store. Right foot as the support:
// ankles right, left; hips and knees right hip, right knee, left knee, left hip.
TEST_F(LowerBody, OneFootStoresTheSupportingSideFirst)
{
    const auto shared = [this](const char* name, const std::function<void(SmallFigure&)>& share, float turn) {
        SmallFigure body = smallBody(name);
        share(body);
        load(body);
        legs({0, -30, 0}, {0, 0, turn});
    };
    const auto hips = [](SmallFigure& body) { body.role("left", "hip", "right_hip"); };
    shared("hips-right", hips, 1);   // the left one last: its leg hangs 20 cm to the left of the shared hip
    expectResult("right_hip", {0, -12, 0}, {0, 0, -12 * 20 * S});
    shared("hips-left", hips, -1);   // the right one last: its leg hangs straight below
    expectResult("right_hip", {0, -12, 0}, {0, 0, 0});
    expectBitsOf(transcription());

    // One ankle for both, between the lower legs: zero is stored last.
    const auto ankles = [](SmallFigure& body) {
        body.joint("ankles", "right_lower_leg.distal", "left_lower_leg.distal");
        body.role("left", "ankle", "ankles").role("right", "ankle", "ankles");
    };
    for (const float turn : {1.0f, -1.0f}) {
        shared(turn > 0 ? "ankles-right" : "ankles-left", ankles, turn);
        expectExactly("ankles", {0, 0, 0}, {0, 0, 0});
    }

    // One joint as left knee and left hip: on the right foot the hip (12) is stored after the knee (4), on
    // the left foot the knee (48) after the hip (40).
    const auto kneeIsHip = [](SmallFigure& body) { body.role("left", "knee", "left_hip"); };
    shared("left-right", kneeIsHip, 1);
    EXPECT_FLOAT_EQ(resultOf("left_hip").force[1], -12);
    shared("left-left", kneeIsHip, -1);
    EXPECT_FLOAT_EQ(resultOf("left_hip").force[1], -48);
}

// One joint as both knees: the supporting one (48) is stored first, the free one (4) last.
TEST_F(LowerBody, OneFootStoresTheSupportingKneeBeforeTheFreeOne)
{
    for (const float turn : {1.0f, -1.0f}) {
        SmallFigure body = smallBody(turn > 0 ? "right" : "left");
        body.joint("knees", "right_upper_leg.distal", "left_upper_leg.distal");
        body.role("left", "knee", "knees").role("right", "knee", "knees");
        load(body);
        legs({0, -30, 0}, {0, 0, turn});
        expectResult("knees", {0, -4, 0}, {0, 0, 0});
    }
}

// One joint as right hip and right ankle: the ankles (64 on the right foot, 0 on the left) are stored before the hip
// (40 as the supporting one, 12 as the free one).
TEST_F(LowerBody, OneFootStoresTheAnklesBeforeTheHips)
{
    for (const auto& [turn, hip] : {std::pair<float, double>{1.0f, 40}, {-1.0f, 12}}) {
        SmallFigure body = smallBody(turn > 0 ? "right" : "left");
        body.joint("both", "lower_torso.right_hip", "right_lower_leg.distal");
        body.role("right", "hip", "both").role("right", "ankle", "both");
        load(body);
        legs({0, -30, 0}, {0, 0, turn});
        expectResult("both", {0, -hip, 0}, {0, 0, turn > 0 ? 1.0 : 0.0});
    }
}

// Both feet: right ankle, left ankle, left hip, left knee, right hip, right knee. The forces of the
// symmetric stance, all times (64 - 32 S K) over 26 on the right and 44 on the left, tell them apart.
TEST_F(LowerBody, BothFeetStoreAnklesThenTheLeftLegThenTheRightOne)
{
    const auto last = [this](const char* name, const std::function<void(SmallFigure&)>& share, const char* joint) {
        SmallFigure body = smallBody(name);
        compareAboutForwardAxis(body);
        share(body);
        load(body);
        legs({0, -30, 0});
        const NaiveLegs<float> naive = transcription();
        EXPECT_EQ(naive.support, NaiveLegs<float>::kBoth);
        expectBitsOf(naive);
        return -resultOf(joint).force[1] / (64 - 32 * S * K);
    };
    // left hip 32/44, then left knee 40/44
    EXPECT_NEAR(last(
                    "a", [](SmallFigure& b) { b.role("left", "knee", "left_hip"); }, "left_hip"),
                40 / 44.0, 1e-6);
    // left knee, then right hip 20/26
    EXPECT_NEAR(last(
                    "b",
                    [](SmallFigure& b) {
                        b.joint("both", "lower_torso.right_hip", "left_upper_leg.distal");
                        b.role("left", "knee", "both").role("right", "hip", "both");
                    },
                    "both"),
                20 / 26.0, 1e-6);
    // right hip, then right knee 24/26
    EXPECT_NEAR(last(
                    "c", [](SmallFigure& b) { b.role("right", "knee", "right_hip"); }, "right_hip"),
                24 / 26.0, 1e-6);
    // left ankle 1, then left hip
    EXPECT_NEAR(last(
                    "d",
                    [](SmallFigure& b) {
                        b.joint("both", "lower_torso.left_hip", "left_lower_leg.distal");
                        b.role("left", "hip", "both").role("left", "ankle", "both");
                    },
                    "both"),
                32 / 44.0, 1e-6);
    // right ankle, then left ankle: the waist 4 cm to the left makes them 64 - 38 S K and 64 - 26 S K
    SmallFigure body = onBothFeet();
    moveSite(body, "lower_torso.distal", {4, 100, 0});
    body.joint("ankles", "right_lower_leg.distal", "left_lower_leg.distal");
    body.role("left", "ankle", "ankles").role("right", "ankle", "ankles");
    load(body);
    legs({0, -30, 0});
    expectResult("ankles", {0, -64 + 26 * S * K, 0}, {0, 0, 0});
}

// ---- Degenerate geometry -------------------------------------------------------------------------

// The left ankle straight above the right one, a pull to the left half-way: moments of opposite sign
// about z, but no direction across the feet. What comes out is stored.
TEST_F(LowerBody, AnklesOneAboveTheOtherGiveNoNumbers)
{
    SmallFigure body = onBothFeet();
    moveSite(body, "right_lower_leg.distal", {0, 90, 0});
    moveSite(body, "left_lower_leg.distal", {0, 110, 0});
    load(body);
    makeWeightless(figure);
    legs({10, 0, 0});
    for (const char* name : {"right_ankle", "left_ankle", "right_hip", "left_hip", "right_knee", "left_knee"}) {
        const Result result = resultOf(name);
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_TRUE(std::isnan(result.force[0])) << name;
    }
    expectBitsOf(transcription());
}

// A pull forward between the ankles: opposite moments about y only, X = (0, 1, 0). F1 = F2 = 0, the share
// r is 0 / 0; the ankles' forces are still numbers: f - f / 2 · S K each.
TEST_F(LowerBody, WithoutVerticalReactionsTheSharesAreNoNumbers)
{
    SmallFigure body = smallBody();
    part(body, "sites", "key", "lower_torso.proximal")["transform"][0] = {0, 1, 0, 0};
    moveSite(body, "lower_torso.distal", {0, 10, 0});
    load(body);
    makeWeightless(figure);
    legs({0, 0, 10});
    for (const char* name : {"right_ankle", "left_ankle"}) {
        EXPECT_NEAR(resultOf(name).force[2], 10 - 5 * S * K, roundingBound(20, 20)) << name;
        EXPECT_TRUE(std::isnan(resultOf(name).moment[1])) << name;
    }
    for (const char* name : {"right_hip", "left_hip", "right_knee", "left_knee"})
        EXPECT_TRUE(std::isnan(resultOf(name).force[2])) << name;
    expectBitsOf(transcription());
}

// 22 kgf upward at the waist. About both ankles 240 + 100 - 220 = 120: r = q = 0.5. Right: 11 - 5 - 4 - 2 = 0
// kgf, by which the ankle's force is divided.
TEST_F(LowerBody, AnUnloadedSideIsDividedByZero)
{
    load(onBothFeet());
    legs({0, 22, 0});
    const Result hip = resultOf("right_hip");
    EXPECT_EQ(hip.status, 1);
    EXPECT_EQ(hip.force[1], kInfinity);
    EXPECT_TRUE(std::isnan(hip.force[0]));
    EXPECT_TRUE(std::isnan(resultOf("right_knee").force[1]));   // infinity up, infinity down
    expectResult("right_ankle", {0, 22 - 34 + 6 * S * K, 0}, {0, 0, 0});
    expectResult("left_hip", {0, (11 - 17) * (12 - 6 * S * K) / (17 - 11 + 12), 0}, {0, 0, 0});
    expectBitsOf(transcription());
}

TEST_F(LowerBody, CoincidentAnklesAreOneFoot)
{
    SmallFigure body = onBothFeet();
    moveSite(body, "right_lower_leg.distal", {10, 10, 0});
    load(body);
    legs({0, -30, 0});
    expectExactly("left_ankle", {0, 0, 0}, {0, 0, 0});
    EXPECT_FLOAT_EQ(resultOf("right_ankle").force[1], -64);
}

// ---- Bits ----------------------------------------------------------------------------------------

void scatter(nlohmann::json& transform, Chance& chance, double size)
{
    const SmallFigure::Rows axes = chance.axes();
    for (std::size_t i = 0; i < 3; ++i) {
        transform[i] = {axes[i][0], axes[i][1], axes[i][2], 0};
        transform[3][i] = transform[3][i].get<double>() + chance.within(-size, size);
    }
}

qVector narrowed(const Vector& v)
{
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

// 60 bodies whose every frame, site and mass is drawn at random, each with 8 random loads, agree with the
// transcription in all bits. Every way through the method is among them.
TEST_F(LowerBody, RandomBodiesAgreeWithTheTranscriptionInAllBits)
{
    int supports[3] = {}, smallerRight = 0, smallerLeft = 0, loaded = 0;
    for (unsigned seed = 1; seed <= 60 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(seed);
        SmallFigure body = smallBody("man" + std::to_string(seed));
        for (nlohmann::json& segment : body.document()["segments"]) {
            scatter(segment["transform"], chance, 15);
            segment["mass"] = chance.within(0, 15000);
            segment["com"] = chance.vector(20);
        }
        for (nlohmann::json& site : body.document()["sites"])
            scatter(site["transform"], chance, 15);
        load(body);
        for (int i = 0; i < 8; ++i) {
            if (chance.coin())
                analysis->setGravity(narrowed(chance.vector(1500)));
            const bool hasLoad = chance.coin();
            analysis->removeLoad(site("lower_torso.h_point"));
            if (hasLoad)
                analysis->setLoad(site("lower_torso.h_point"), narrowed(chance.vector(60)));
            Vector force = chance.vector(10);
            force[1] -= 40;
            legs(narrowed(force), narrowed(chance.vector(20)));

            const NaiveLegs<float> naive = transcription();
            expectBitsOf(naive);
            ++supports[naive.support];
            if (naive.support == NaiveLegs<float>::kBoth) {
                ++(naive.r <= naive.q ? smallerRight : smallerLeft);
                loaded += hasLoad;
            }
        }
    }
    EXPECT_GT(supports[NaiveLegs<float>::kRight], 20);
    EXPECT_GT(supports[NaiveLegs<float>::kLeft], 20);
    EXPECT_GT(smallerRight, 20);
    EXPECT_GT(smallerLeft, 20);
    EXPECT_GT(loaded, 20);
}

// ---- Missing parts -------------------------------------------------------------------------------

TEST_F(LowerBody, AMissingPartIsNamedAndNothingIsWritten)
{
    std::vector<std::pair<std::string, std::function<void(SmallFigure&)>>> cases;
    std::vector<std::vector<std::string>> names;
    const auto add = [&](const std::string& what, std::vector<std::string> named,
                         std::function<void(SmallFigure&)> take) {
        cases.emplace_back(what, std::move(take));
        names.push_back(std::move(named));
    };
    for (const std::string name : {"lower_torso", "right_upper_leg", "right_lower_leg", "left_upper_leg",
                                   "left_lower_leg", "left_foot", "right_foot"})
        add("segment " + name, {name}, nullptr);
    for (const std::string name : {"h_point", "proximal"})
        add("site " + name, {"lower_torso", name}, nullptr);
    add("waist", {"waist"}, [](SmallFigure& body) { body.document()["waist"] = nullptr; });
    for (const std::string side : {"left", "right"})
        for (const std::string role : {"hip", "knee", "ankle"}) {
            add(side + " " + role, {side, role}, [=](SmallFigure& body) { body.document()[side][role] = nullptr; });
            // a joint that does not touch the segment on which its place is wanted
            add(side + " " + role + " elsewhere", {side, role},
                [=](SmallFigure& body) { body.role(side, role, side + "_wrist"); });
        }
    add("waist elsewhere", {"waist"}, [](SmallFigure& body) { body.waist("t8_l5"); });

    for (std::size_t i = 0; i < cases.size(); ++i) {
        const std::string& what = cases[i].first;
        SCOPED_TRACE(what);
        SmallFigure body = smallBody("man" + std::to_string(i));
        compareAboutForwardAxis(body);
        if (cases[i].second)
            cases[i].second(body);
        load(body);
        ASSERT_NE(human, nullptr);
        if (what.rfind("segment ", 0) == 0)
            segment(what.substr(8))->setName("other");
        if (what.rfind("site ", 0) == 0)
            site("lower_torso." + what.substr(5))->setName("other");

        legs();
        const std::vector<MessageLog::Message> messages = log.take();
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0].kind, qcError);
        EXPECT_THAT(messages[0].text, StartsWith("StaticStrength ERROR: "));
        for (const std::string& name : names[i])
            EXPECT_THAT(messages[0].text, HasSubstr(name));
        for (const char* name : kSix)
            EXPECT_EQ(resultOf(name).status, 0) << name;

        EXPECT_EQ(analysis->compute(), 1);
        log.take();   // what the walk says is told elsewhere
        for (const char* name : kSix)
            EXPECT_EQ(resultOf(name).status, 0) << name;
    }
}

// Results of an earlier computation stay as they were when the legs are refused.
TEST_F(LowerBody, ARefusalLeavesEarlierResults)
{
    load(onBothFeet());
    legs({0, -30, 0});
    const std::string before = bitsOfSix();
    segment("left_foot")->setName("other");
    legs({0, -60, 0});
    EXPECT_EQ(log.takeTexts().size(), 1u);
    EXPECT_EQ(bitsOfSix(), before);
}

// ---- From compute --------------------------------------------------------------------------------

// On two feet the legs follow the waist walk: 29 kgf above the waist, symmetric: 63 in all, on the right foot.
//   2 + 10 + 8 + 2 (1 + 3 + 0.5) = 29; the walk replaces the waist's vanishing moment by 0.00001 N·m a component
TEST_F(LowerBody, ComputeRunsItAfterTheWaistWalk)
{
    load(smallBody());
    EXPECT_EQ(analysis->compute(), 1);
    const Result waist = resultOf("waist");
    EXPECT_NEAR(waist.force[1], -29, bound());
    EXPECT_THAT(components(waist.moment), ElementsAre(0.00001f, 0.00001f, 0.00001f));
    expectBitsOf(transcription());
    expectResult("right_ankle", {0, -63, 0}, {0, 0, -(12 * 20 + 39 * 10) * S});
    expectResult("right_hip", {0, -39, 0}, {0.00001, 0.00001, 0.00001});

    // no threshold: the free ankle has a result, and it is zero
    EXPECT_EQ(resultOf("left_ankle").status, 1);
    expectExactly("left_ankle", {0, 0, 0}, {0, 0, 0});
    // nothing is walked below the ankles
    EXPECT_EQ(resultOf("right_ball").status, 0);
}

TEST_F(LowerBody, OtherStrategiesDoNotRunIt)
{
    load(smallBody());
    segment("left_foot")->setName("other");   // it would say so
    for (const auto strategy : {qmStaticStrength::RightFoot, qmStaticStrength::SittingNoFeet}) {
        analysis->setStrategy(strategy);
        EXPECT_EQ(analysis->compute(), 1);
        EXPECT_TRUE(log.take().empty());
    }
}

}   // namespace
