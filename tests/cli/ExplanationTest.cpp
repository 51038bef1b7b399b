// Explanation: what makes up the result of a joint, against what the analysis has stored there.
//
// Internal headers of the program are used: every joint under every strategy would be thousands of processes.
#include "AnalysisTest.h"
#include "Chance.h"

#include "Explanation.h"

#include <cmath>
#include <cstring>
#include <map>
#include <set>

using ::testing::ElementsAre;
using ::testing::FloatEq;
using ::testing::FloatNear;
using ::testing::HasSubstr;

namespace {

using Strategy = qmStaticStrength::Strategy;

constexpr double kMomentScale = 0.0980665;   // N·m / kgf·cm
constexpr Strategy kStrategies[] = {qmStaticStrength::TwoFeet,      qmStaticStrength::RightFoot,
                                    qmStaticStrength::LeftFoot,     qmStaticStrength::Walking,
                                    qmStaticStrength::Sitting,      qmStaticStrength::SittingNoFeet,
                                    qmStaticStrength::HandsAndKnees};

bool sameBits(const qVector& a, const qVector& b)
{
    return std::memcmp(components(a).data(), components(b).data(), 3 * sizeof(float)) == 0;
}

class ExplanationTest : public AnalysisTest {
protected:
    void computeAs(Strategy strategy)
    {
        analysis->setStrategy(strategy);
        analysis->compute();
    }
    Explanation explained(const std::string& name, Explanation::Order order = Explanation::kByMoment)
    {
        return explain(*analysis, joint(name), order);
    }
    /// The only contribution of a kind from a place; a failure of the test when there is another number of them.
    static Contribution find(const Explanation& explanation, Contribution::Kind kind, const std::string& place)
    {
        std::vector<Contribution> found;
        for (const Contribution& each : explanation.trace.contributions)
            if (each.kind == kind && each.place == place)
                found.push_back(each);
        EXPECT_EQ(found.size(), 1u) << place;
        return found.empty() ? Contribution{kind, "", place} : found.front();
    }
    static std::vector<std::string> places(const Explanation& explanation)
    {
        std::vector<std::string> names;
        for (const Contribution& each : explanation.trace.contributions)
            names.push_back(each.place);
        return names;
    }
    static std::vector<std::string> termsOf(const Explanation& explanation)
    {
        std::vector<std::string> names;
        for (const LegTerm& term : explanation.legs.terms)
            names.push_back(term.what + " " + term.place);
        return names;
    }
    /// kgf·cm as the N·m that are stored.
    static ::testing::Matcher<float> kgfCm(double moment) { return FloatEq(static_cast<float>(moment * kMomentScale)); }
};

// ---- One joint ----------------------------------------------------------------------------------------

class SmallBody : public ExplanationTest {
protected:
    void SetUp() override { load(smallBody()); }
};

// At the right wrist (-20, 80, 0): the hand's 0.5 kgf straight below, and at the palm (0, -8, 0) cm from the wrist
// (0, -2, 1) kgf: (0, -8, 0) × (0, -2, 1) = (-8, 0, 0) kgf·cm. Of the sum F = (0, -2.5, 1), |F|² = 7.25:
//   load   (2 · 2.5 + 1 · 1) / 7.25 = 82.758621 %        hand   (0.5 · 2.5) / 7.25 = 17.241379 %
TEST_F(SmallBody, SharesAWristsResultBetweenHandAndLoad)
{
    analysis->setLoad(site("right_hand.right_palmcenter"), {0, -2, 1});
    computeAs(qmStaticStrength::TwoFeet);
    const Explanation wrist = explained("right_wrist");
    EXPECT_EQ(wrist.method, Explanation::kWalk);
    EXPECT_EQ(wrist.trace.walks, 1);
    const Contribution load = find(wrist, Contribution::kLoad, "right_hand.right_palmcenter");
    EXPECT_EQ(load.type, "global");
    EXPECT_EQ(load.factor, 1.0f);
    EXPECT_THAT(components(load.force), ElementsAre(0, -2, 1));
    EXPECT_THAT(components(load.moment), ElementsAre(kgfCm(-8), 0, 0));
    EXPECT_THAT(components(*load.point), ElementsAre(-20, 72, 0));
    EXPECT_FLOAT_EQ(*load.forceShare, 82.758621f);
    EXPECT_FLOAT_EQ(*load.momentShare, 100.0f);
    const Contribution hand = find(wrist, Contribution::kSegmentWeight, "right_hand");
    EXPECT_THAT(components(hand.force), ElementsAre(0, -0.5f, 0));
    EXPECT_THAT(components(hand.moment), ElementsAre(0, 0, 0));
    EXPECT_FLOAT_EQ(*hand.forceShare, 17.241379f);
    EXPECT_FLOAT_EQ(*hand.momentShare, 0.0f);
    EXPECT_THAT(components(wrist.sum.force), ElementsAre(0, -2.5f, 1));
    EXPECT_TRUE(sameBits(wrist.sum.force, wrist.stored->force));
    EXPECT_TRUE(sameBits(wrist.sum.moment, wrist.stored->moment));
}

// At the right shoulder (-20, 140, 0), with 1 kgf forward at the hand's own axis and a torque at the wrist:
//   palm (0, -68, 0) cm × (0, 0, 1) kgf = (-68, 0, 0) kgf·cm;   torque (2, 0, 0) N·m;   arm and hand straight below: 0
// M = (-68 · 0.0980665 + 2, 0, 0) = (-4.668522, 0, 0): the load has 6.668522 / 4.668522 = 142.84011 %,
// the torque -42.84011 %.
TEST_F(SmallBody, CountsATorqueFurtherOutWithoutAForce)
{
    analysis->setLoad(site("right_hand.right_palmcenter"), {0, 0, 1});
    qVector torque(2, 0, 0);
    analysis->setDefinedTorque(joint("right_wrist"), torque);
    computeAs(qmStaticStrength::TwoFeet);
    const Explanation shoulder = explained("right_shoulder");
    const Contribution at = find(shoulder, Contribution::kTorque, "right_wrist");
    EXPECT_THAT(components(at.force), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(at.moment), ElementsAre(2, 0, 0));
    EXPECT_FALSE(at.point);
    EXPECT_FLOAT_EQ(*at.forceShare, 0.0f);
    // of two terms, each of which has a few roundings of single precision
    const double bound = roundingBound(4, 200);
    EXPECT_NEAR(*at.momentShare, 100 * 2 / (2 - 68 * kMomentScale), bound);
    EXPECT_NEAR(*find(shoulder, Contribution::kLoad, "right_hand.right_palmcenter").momentShare,
                100 * -68 * kMomentScale / (2 - 68 * kMomentScale), bound);
    EXPECT_THAT(places(shoulder), ElementsAre("right_hand.right_palmcenter", "right_wrist", "right_hand", "right_arm"));
}

// Three offset loads on the hand's proximal site, which is the wrist's position:
//   global (0, -1, 0) at (0, 0, 10): (0, 0, 10) × (0, -1, 0) = (10, 0, 0) kgf·cm
//   local the same, in axes parallel to the world's;   weight 3000 g at (5, 0, 0): (5, 0, 0) × (0, -3, 0) = (0, 0, -15)
TEST_F(SmallBody, TellsOffsetLoadsByTheirTypesAndPoints)
{
    qcSite* at = site("right_hand.proximal");
    analysis->setLoadWithOffset(at, {0, 0, 10}, {0, -1, 0}, 0);
    analysis->setLoadWithOffset(at, {0, 0, 10}, {0, -1, 0}, 1);
    analysis->setWeightLoadWithOffset(at, {5, 0, 0}, 3000);
    computeAs(qmStaticStrength::TwoFeet);
    std::vector<std::string> names;
    for (const Contribution& each : explained("right_wrist").trace.contributions) {
        names.push_back(nameOf(each));
        if (each.kind == Contribution::kOffsetLoad && each.type != "weight") {
            EXPECT_THAT(components(each.moment), ElementsAre(kgfCm(10), 0, 0));
        }
        if (each.type == "weight") {
            EXPECT_THAT(components(*each.point), ElementsAre(-15, 80, 0));
            EXPECT_THAT(components(each.moment), ElementsAre(0, 0, kgfCm(-15)));
        }
    }
    // |M|² = 20² + 15²: the equal ones have 10 · 20, the weight 15 · 15, the hand nothing
    EXPECT_THAT(names,
                ElementsAre("weight with offset", "load with offset", "local load with offset", "segment weight"));
}

// Forces: the hand 0.5, the load 2 straight down, the torque none; moments: the load none, the torque all.
TEST_F(SmallBody, SortsByTheShareAskedForAndKeepsTheWalksOrderAmongEquals)
{
    analysis->setLoad(site("right_hand.proximal"), {0, -2, 0});
    qVector torque(0, 1, 0);
    analysis->setDefinedTorque(joint("right_wrist"), torque);
    computeAs(qmStaticStrength::TwoFeet);
    const Explanation byMoment = explained("right_wrist");
    EXPECT_EQ(byMoment.order, Explanation::kByMoment);
    EXPECT_THAT(places(byMoment), ElementsAre("right_wrist", "right_hand.proximal", "right_hand"));
    const Explanation byForce = explained("right_wrist", Explanation::kByForce);
    EXPECT_EQ(byForce.order, Explanation::kByForce);
    EXPECT_THAT(places(byForce), ElementsAre("right_hand.proximal", "right_hand", "right_wrist"));
}

TEST_F(SmallBody, SortsByTheForceWhereTheMomentIsNegligible)
{
    computeAs(qmStaticStrength::TwoFeet);   // the arm hangs straight down: its moment is none
    const Explanation shoulder = explained("right_shoulder");
    EXPECT_EQ(shoulder.order, Explanation::kByForce);
    EXPECT_TRUE(shoulder.placeholder);
    EXPECT_THAT(components(shoulder.stored->moment), ElementsAre(1e-5f, 1e-5f, 1e-5f));
    for (const Contribution& each : shoulder.trace.contributions)
        EXPECT_FALSE(each.momentShare) << each.place;
    // 3 of 3.5 kgf
    EXPECT_FLOAT_EQ(*find(shoulder, Contribution::kSegmentWeight, "right_arm").forceShare, 85.714286f);
}

// Two opposite forces and the hand's weight lifted: no force is left, a moment is. (0, 0, 8) cm × (0, -2, 0) kgf.
TEST_F(SmallBody, HasNoSharesOfANegligibleForce)
{
    analysis->setLoad(site("right_hand.proximal"), {0, 2.5f, 0});
    analysis->setLoadWithOffset(site("right_hand.proximal"), {0, 0, 8}, {0, -2, 0}, 0);
    computeAs(qmStaticStrength::TwoFeet);
    const Explanation wrist = explained("right_wrist", Explanation::kByForce);
    EXPECT_EQ(wrist.order, Explanation::kByMoment);
    for (const Contribution& each : wrist.trace.contributions)
        EXPECT_FALSE(each.forceShare) << each.place;
    EXPECT_THAT(components(wrist.sum.moment), ElementsAre(kgfCm(16), 0, 0));
}

// The hand's load of 3 kgf counts at a palm without a load of its own, and no load with offset there does.
TEST_F(SmallBody, CountsAHandLoadAndNoOffsetLoadsBesideIt)
{
    figure->setProperty("RightZelHandLoads", qcValue("-3"));
    analysis->setLoadWithOffset(site("right_hand.right_palmcenter"), {1, 0, 0}, {0, -1, 0}, 0);
    computeAs(qmStaticStrength::TwoFeet);
    const Explanation hand = explained("right_wrist");
    EXPECT_THAT(places(hand), ElementsAre("right_hand.right_palmcenter", "right_hand"));
    EXPECT_THAT(components(find(hand, Contribution::kHandLoad, "right_hand.right_palmcenter").force),
                ElementsAre(0, -3, 0));
    analysis->setLoad(site("right_hand.right_palmcenter"), {0, -4, 0});
    computeAs(qmStaticStrength::TwoFeet);
    const Explanation loaded = explained("right_wrist");
    std::vector<std::string> names;
    for (const Contribution& each : loaded.trace.contributions)
        names.push_back(nameOf(each));
    EXPECT_THAT(names, ElementsAre("load with offset", "load", "segment weight"));
}

// The site's x axis points along the world's y, its y axis along -x: (2, 0, 0) in its axes is (0, 2, 0).
TEST_F(ExplanationTest, TurnsALocalLoadByTheSitesAxes)
{
    SmallFigure body = smallBody();
    body.site("right_hand", "grip", {-20, 75, 4}, {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}});
    load(body);
    analysis->setLoad(site("right_hand.grip"), {2, 0, 0}, 1);
    computeAs(qmStaticStrength::TwoFeet);
    const Contribution local = find(explained("right_wrist"), Contribution::kLoad, "right_hand.grip");
    EXPECT_EQ(nameOf(local), "local load");
    EXPECT_THAT(components(local.force), ElementsAre(0, 2, 0));
    // (0, -5, 4) cm × (0, 2, 0) kgf = (-8, 0, 0) kgf·cm
    EXPECT_THAT(components(local.moment), ElementsAre(kgfCm(-8), 0, 0));
}

// ---- What is too small ----------------------------------------------------------------------------------

SmallFigure withToes(double grams, SmallFigure::Vector centerOfMass)
{
    SmallFigure body = smallBody();
    for (auto& segment : body.document()["segments"])
        if (segment["name"] == "right_toes") {
            segment["mass"] = grams;
            segment["com"] = centerOfMass;
        }
    return body;
}

// Toes of 5 g: 0.005 kgf and 0.005 · 3 · 0.098 = 0.0015 N·m at the ball are no result, and nothing further in.
TEST_F(ExplanationTest, LeavesOutWhatIsNegligibleFurtherOut)
{
    load(withToes(5, {0, 0, 3}));
    computeAs(qmStaticStrength::LeftFoot);
    const Explanation ankle = explained("right_ankle");
    EXPECT_THAT(places(ankle), ElementsAre("right_foot"));
    ASSERT_EQ(ankle.trace.leftOut.size(), 1u);
    EXPECT_EQ(ankle.trace.leftOut[0].joint, "right_ball");
    EXPECT_EQ(ankle.trace.leftOut[0].contributions, 1);
    EXPECT_THAT(components(ankle.trace.leftOut[0].force), ElementsAre(0, FloatEq(-0.005f), 0));
    EXPECT_THAT(components(ankle.trace.leftOut[0].moment), ElementsAre(kgfCm(0.015), 0, 0));
    EXPECT_THAT(components(ankle.stored->force), ElementsAre(0, -0.8f, 0));
}

// Foot and toes of 4 g each: the ball's 0.004 kgf is left out there; the ankle has the foot's 0.004 alone, left out
// as well, with what was left out before.
TEST_F(ExplanationTest, CountsWhatWasLeftOutFurtherOutOnce)
{
    SmallFigure body = withToes(4, {0, 0, 1});
    for (auto& segment : body.document()["segments"])
        if (segment["name"] == "right_foot")
            segment["mass"] = 4;
    load(body);
    computeAs(qmStaticStrength::LeftFoot);
    const Explanation knee = explained("right_knee");
    EXPECT_THAT(places(knee), ElementsAre("right_lower_leg"));
    ASSERT_EQ(knee.trace.leftOut.size(), 1u);
    EXPECT_EQ(knee.trace.leftOut[0].joint, "right_ankle");
    EXPECT_EQ(knee.trace.leftOut[0].contributions, 2);
}

TEST_F(ExplanationTest, ShowsTheSumOfAJointThatIsTooSmallForAResult)
{
    load(withToes(5, {0, 0, 3}));
    computeAs(qmStaticStrength::LeftFoot);
    const Explanation ball = explained("right_ball");
    EXPECT_EQ(ball.method, Explanation::kWalk);
    EXPECT_FALSE(ball.stored);
    EXPECT_EQ(ball.order, Explanation::kAsWalked);
    EXPECT_THAT(places(ball), ElementsAre("right_toes"));
    EXPECT_FALSE(ball.trace.contributions[0].forceShare);
    EXPECT_FALSE(ball.trace.contributions[0].momentShare);
    EXPECT_THAT(components(ball.sum.force), ElementsAre(0, FloatEq(-0.005f), 0));
    EXPECT_THAT(tableOf(ball), HasSubstr("Force and moment are both at most 0.01"));
    EXPECT_THAT(jsonOf(ball), HasSubstr("\"status\": \"none\""));
}

// Toes of 200 g whose centre lies 0.25 cm ahead: 0.2 · 0.25 = 0.05 kgf·cm = 0.0049 N·m, which becomes (1e-5, 1e-5,
// 1e-5). Toes and foot about the ankle (10, 10, 0), centres at (0, -8, 15.25) and (0, -5, 5) cm from it:
//   15.25 · 0.2 + 5 · 0.8 = 7.05 kgf·cm about x, less the 0.05 that are replaced
TEST_F(ExplanationTest, AccountsForThePlaceholderOfASmallMomentFurtherOut)
{
    load(withToes(200, {0, 0, 0.25}));
    computeAs(qmStaticStrength::LeftFoot);
    const Explanation ankle = explained("right_ankle");
    EXPECT_THAT(places(ankle), ElementsAre("right_foot", "right_toes", "right_ball"));
    const Contribution placeholder = find(ankle, Contribution::kPlaceholder, "right_ball");
    EXPECT_THAT(components(placeholder.force), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(placeholder.moment),
                ElementsAre(FloatNear(static_cast<float>(1e-5 - 0.05 * kMomentScale), 1e-9f), 1e-5f, 1e-5f));
    const double sum = 7 * kMomentScale + 1e-5;
    EXPECT_NEAR(ankle.sum.moment[0], sum, roundingBound(3, sum));
    EXPECT_NEAR(ankle.stored->moment[0], sum, roundingBound(3, sum));
    EXPECT_THAT(tableOf(ankle), HasSubstr("placeholder: that joint's moment is at most 0.01 N·m"));
}

// ---- Where two walks meet, and where one stops -----------------------------------------------------------

// The standing ankle has 64 kgf, the whole body above, from one side, and the 1 kgf of its own foot and toes from the
// other; a torque at it counts from each. The body is symmetric about a plane 10 cm beside the ankle:
//   10 cm · 65 kgf = 650 kgf·cm, turning the ankle about -z
TEST_F(SmallBody, AddsTheFootToTheBodyAboveTheStandingAnkle)
{
    qVector torque(0, 0, 1);
    analysis->setDefinedTorque(joint("right_ankle"), torque);
    computeAs(qmStaticStrength::RightFoot);
    const Explanation ankle = explained("right_ankle");
    EXPECT_EQ(ankle.trace.walks, 2);
    int torques = 0;
    std::set<std::string> segments;
    for (const Contribution& each : ankle.trace.contributions) {
        torques += each.kind == Contribution::kTorque;
        if (each.kind == Contribution::kSegmentWeight) {
            EXPECT_TRUE(segments.insert(each.place).second) << each.place;
        }
    }
    EXPECT_EQ(torques, 2);
    EXPECT_EQ(segments.size(), 18u);   // every segment of the body
    EXPECT_THAT(components(ankle.sum.force), ElementsAre(0, -65, 0));
    // a placeholder of 1e-5 N·m may come from each of 17 joints
    EXPECT_NEAR(ankle.sum.moment[2], 2 - 650 * kMomentScale, 17e-5 + roundingBound(40, 65));
    EXPECT_THAT(tableOf(ankle), HasSubstr("Two walks meet at this joint"));
}

// On hands and knees the right hip (-10, 90, 0) is computed on the pelvis, where the walk stops. Both knees are as far
// from the balance point: each hip has half of the waist's result.
//   waist      l5's weight, (0, -2, 0) kgf, straight above it; its moment is the placeholder
//              · 0.5 (share) · 0.5 (halved beside the pelvis's mass): (0, -0.5, 0) kgf at (10, 10, 0) cm: (0, 0, -5)
//              kgf·cm
//   load       (0, -4, 0) · 0.5 · 0.5 = (0, -1, 0) kgf at (10, 5, 0) cm: (0, 0, -10) kgf·cm
//   pelvis     in full: (0, -10, 0) kgf at (10, 5, 0) cm: (0, 0, -100) kgf·cm
TEST_F(SmallBody, HalvesWhatIsGatheredWhereAWalkStops)
{
    analysis->setLoad(site("lower_torso.center_of_mass"), {0, -4, 0});
    computeAs(qmStaticStrength::HandsAndKnees);
    const Explanation hip = explained("right_hip");
    EXPECT_EQ(hip.strategyEffective, "hands-and-knees");
    EXPECT_THAT(places(hip), ElementsAre("lower_torso", "lower_torso.center_of_mass", "waist"));
    const Contribution waist = find(hip, Contribution::kJointResult, "waist");
    EXPECT_EQ(waist.factor, 0.25f);
    EXPECT_THAT(components(waist.force), ElementsAre(0, -0.5f, 0));
    EXPECT_THAT(components(waist.moment),
                ElementsAre(2.5e-6f, 2.5e-6f, FloatEq(static_cast<float>(-5 * kMomentScale + 2.5e-6))));
    const Contribution load = find(hip, Contribution::kLoad, "lower_torso.center_of_mass");
    EXPECT_EQ(load.factor, 0.25f);
    EXPECT_THAT(components(load.force), ElementsAre(0, -1, 0));
    EXPECT_THAT(components(load.moment), ElementsAre(0, 0, kgfCm(-10)));
    const Contribution pelvis = find(hip, Contribution::kSegmentWeight, "lower_torso");
    EXPECT_EQ(pelvis.factor, 1.0f);
    EXPECT_THAT(components(pelvis.moment), ElementsAre(0, 0, kgfCm(-100)));
    EXPECT_NEAR(*pelvis.momentShare, 100 * 100.0 / 115, 1e-3);   // 2.5e-6 of 11.3 N·m are left out here
    EXPECT_THAT(tableOf(hip), HasSubstr("counts: on the segment where a walk stops"));
}

// The knee: lower leg, foot and toes from below, the upper leg and the hip's share from above.
TEST_F(SmallBody, AddsBothWalksAtAKneeOnHandsAndKnees)
{
    computeAs(qmStaticStrength::HandsAndKnees);
    const Explanation knee = explained("right_knee");
    EXPECT_EQ(knee.trace.walks, 2);
    const std::vector<std::string> found = places(knee);
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()),
              (std::set<std::string>{"right_lower_leg", "right_foot", "right_toes", "right_upper_leg", "lower_torso",
                                     "waist"}));
    // 4 + 0.8 + 0.2 + 8 + 10 kgf and a quarter of the waist's 2
    EXPECT_FLOAT_EQ(knee.sum.force[1], -23.5f);
}

// ---- Legs ------------------------------------------------------------------------------------------------

// The small body stands with its weight in the plane of its ankles: no moment across, so that one foot carries, and
// of equal moments the right. Above the waist 29 kgf, the pelvis 10, each leg 8 + 4, at the h_point 6.
TEST_F(SmallBody, ListsTheTermsOfLegsOnOneOfTwoFeet)
{
    analysis->setLoad(site("lower_torso.h_point"), {0, -6, 0});
    computeAs(qmStaticStrength::TwoFeet);
    const auto check = [&](const char* name, double force, const ::testing::Matcher<std::vector<std::string>>& terms) {
        SCOPED_TRACE(name);
        const Explanation leg = explained(name);
        EXPECT_EQ(leg.method, Explanation::kStandingLegs);
        EXPECT_EQ(leg.legs.support, "right-foot");
        EXPECT_FALSE(leg.legs.share[qcRight]);
        EXPECT_THAT(termsOf(leg), terms);
        ASSERT_TRUE(leg.stored);
        EXPECT_FLOAT_EQ(leg.stored->force[1], static_cast<float>(-force));
        double sum = 0;
        for (const LegTerm& term : leg.legs.terms)
            sum += double(term.force[1]);
        EXPECT_NEAR(sum, -force, roundingBound(8, force));
    };
    check("right_ankle", 69,
          ElementsAre("segment weight left_lower_leg", "segment weight left_upper_leg",
                      "segment weight right_upper_leg", "segment weight right_lower_leg", "segment weight lower_torso",
                      "joint result waist", "load lower_torso.h_point"));
    check("right_hip", 39, ElementsAre("joint result waist", "segment weight lower_torso"));
    check("right_knee", 47,
          ElementsAre("joint result waist", "segment weight lower_torso", "segment weight right_upper_leg"));
    check("left_ankle", 0, ElementsAre());
    check("left_knee", 4, ElementsAre("segment weight left_lower_leg"));
    check("left_hip", 12, ElementsAre("segment weight left_lower_leg", "segment weight left_upper_leg"));
    EXPECT_THAT(tableOf(explained("right_hip")), HasSubstr("Do not count: loads on the lower torso, loads on legs"));
    EXPECT_THAT(tableOf(explained("right_ankle")), HasSubstr("other than at lower_torso.h_point"));
}

// One foot before the other and the body between them: both carry. The hip has the waist's moment by the leg's share,
// to the bit; so the share told is the one that was used.
TEST_F(ExplanationTest, TellsTheSharesOfLegsOnBothFeet)
{
    loadDefaultHuman();
    ASSERT_EQ(joint("right_hip")->setAngle(1, 0.4), 1);
    ASSERT_EQ(joint("left_hip")->setAngle(1, -0.3), 1);
    qVector torque(3, 1, 2);
    analysis->setDefinedTorque(joint("waist"), torque);
    analysis->setLoad(site("lower_torso.h_point"), {1, -4, 2}, 1);
    computeAs(qmStaticStrength::TwoFeet);
    const Explanation right = explained("right_hip"), left = explained("left_hip");
    ASSERT_EQ(right.legs.support, "both-feet");
    EXPECT_FLOAT_EQ(*right.legs.share[qcRight] + *right.legs.share[qcLeft], 100.0f);
    EXPECT_EQ(left.legs.share[qcLeft], right.legs.share[qcLeft]);
    for (const Explanation* hip : {&right, &left})
        EXPECT_TRUE(sameBits(*hip->legs.terms[0].couple, hip->stored->moment)) << hip->joint;
    // the leg that carries less gives its weights to the other
    const bool rightIsLighter = *right.legs.share[qcRight] <= *right.legs.share[qcLeft];
    const Explanation& heavier = rightIsLighter ? left : right;
    const std::string lighter = rightIsLighter ? "right" : "left";
    EXPECT_THAT(termsOf(heavier),
                ElementsAre("joint result waist", "segment weight lower_torso", "local load lower_torso.h_point",
                            "segment weight " + lighter + "_upper_leg", "segment weight " + lighter + "_lower_leg"));
    EXPECT_THAT(termsOf(rightIsLighter ? right : left),
                ElementsAre("joint result waist", "segment weight lower_torso", "local load lower_torso.h_point"));
    EXPECT_THAT(tableOf(right), HasSubstr("both feet, right leg"));
    EXPECT_THAT(tableOf(right), HasSubstr("lower_torso.h_point counts unturned"));

    // Before the scaling, which is common to all terms of a leg: of the trunk its share s, of the other leg's weights
    // 2 s, of its own all; the leg that carries less keeps s of its own.
    const auto counts = [](const Explanation& e, std::size_t term) { return double(e.legs.terms[term].factor); };
    const auto share = [&](const Explanation& e) {
        return double(*e.legs.share[e.joint.find("right") == 0 ? qcRight : qcLeft]) / 100;
    };
    const Explanation lessKnee = explained(lighter + "_knee");
    const Explanation moreKnee = explained(rightIsLighter ? "left_knee" : "right_knee");
    EXPECT_NEAR(counts(heavier, 1) / counts(heavier, 0), 1, roundingBound(4, 1));
    EXPECT_NEAR(counts(heavier, 3) / counts(heavier, 0), 2, roundingBound(4, 2));
    EXPECT_NEAR(counts(moreKnee, 5) / counts(moreKnee, 0), 1 / share(moreKnee), roundingBound(6, 1 / share(moreKnee)));
    EXPECT_NEAR(counts(lessKnee, 3) / counts(lessKnee, 0), 1, roundingBound(4, 1));
    EXPECT_GT(std::fabs(counts(heavier, 0) - share(heavier)), 0.01);   // of the moment another part counts
    for (const Explanation* each : {&right, &left, &lessKnee, &moreKnee}) {
        EXPECT_THAT(tableOf(*each), HasSubstr("and leaves them, times twice the other leg's share, to the other leg"));
        EXPECT_THAT(tableOf(*each), HasSubstr("whatever counts of its force"));
    }
}

// The rule of the ankle on both feet, followed: levers × forces · 0.0980665 and the waist's own moment; of what the
// other foot carries, lever × force · 0.098; all of it times the leg's share.
TEST_F(ExplanationTest, TellsTheRuleThatGivesAnAnklesMomentOnBothFeet)
{
    loadDefaultHuman();
    ASSERT_EQ(joint("right_hip")->setAngle(1, 0.4), 1);
    ASSERT_EQ(joint("left_hip")->setAngle(1, -0.3), 1);
    computeAs(qmStaticStrength::TwoFeet);
    const Explanation ankles[2] = {explained("right_ankle"), explained("left_ankle")};   // by qcSide
    for (const qcSide side : {qcRight, qcLeft}) {
        const Explanation &own = ankles[side], &other = ankles[side == qcRight ? qcLeft : qcRight];
        SCOPED_TRACE(own.joint);
        ASSERT_EQ(own.legs.support, "both-feet");
        EXPECT_THAT(tableOf(own), HasSubstr("both with 0.098 N·m for 1 kgf·cm; elsewhere that is 0.0980665"));
        const qVector about = *other.legs.terms.back().point;   // where this foot carries
        const double share = double(*own.legs.share[side]) / 100;
        double moment[3] = {0, 0, 0}, size = 0;
        for (const LegTerm& term : own.legs.terms) {
            const double scale = (&term == &own.legs.terms.back() ? 0.098 : kMomentScale) * share;
            const qVector couple = term.couple.value_or(qVector());
            for (int i = 0; i < 3; ++i) {
                const int j = (i + 1) % 3, k = (i + 2) % 3;
                const double product = (double((*term.point)[j]) - double(about[j])) * double(term.force[k]),
                             subtracted = (double((*term.point)[k]) - double(about[k])) * double(term.force[j]);
                moment[i] += scale * (product - subtracted) + share * double(couple[i]);
                size += scale * (std::fabs(product) + std::fabs(subtracted)) + share * std::fabs(double(couple[i]));
            }
        }
        // with 0.0980665 it would be off by some hundredths
        const double bound = roundingBound(20, size);
        EXPECT_LT(bound, 0.005);
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(own.stored->moment[i], moment[i], bound) << "component " << i;
    }
}

// Turned by a quarter about the vertical, the h_point's x axis points along the world's -z: (1, -4, 2) kgf in its axes
// would be (2, -4, -1) in the world's. On two feet it counts as it stands.
TEST_F(ExplanationTest, TellsThatALocalLoadAtTheHPointCountsUnturned)
{
    loadDefaultHuman();
    figure->setRoot(0, 100, 0, 0, 90, 0);
    analysis->setLoad(site("lower_torso.h_point"), {1, -4, 2}, 1);
    computeAs(qmStaticStrength::TwoFeet);
    const Explanation right = explained("right_ankle"), left = explained("left_ankle");
    const Explanation& carries = right.legs.terms.empty() ? left : right;
    bool found = false;
    for (const LegTerm& term : carries.legs.terms)
        if (term.what == "local load") {
            found = true;
            EXPECT_THAT(components(term.force), ElementsAre(1, -4, 2));
        }
    EXPECT_TRUE(found);
    EXPECT_THAT(tableOf(carries), HasSubstr("lower_torso.h_point counts unturned"));
    analysis->setLoad(site("lower_torso.h_point"), {1, -4, 2}, 0);
    computeAs(qmStaticStrength::TwoFeet);
    EXPECT_THAT(tableOf(explained(carries.joint)), ::testing::Not(HasSubstr("unturned")));
}

// A straight leg, hip (-10, 90, 0), knee (-10, 50, 0), ankle below. 2 kgf forward, 5 cm to the left of the knee:
//   about the hip (5, -40, 0) cm × (0, 0, 2) kgf = (-80, -10, 0) kgf·cm
// Along the leg that is -10 kgf·cm upward, and -0.1 (kgf·m) is stored. The lower leg's moment, none, counts as the
// placeholder 0.00001 N·m: 0.00001 / 0.0980665 kgf·cm more.
TEST_F(SmallBody, TellsThatASittingHipsMomentIsInKgfM)
{
    analysis->setLoadWithOffset(site("right_upper_leg.distal"), {5, 0, 0}, {0, 0, 2});
    computeAs(qmStaticStrength::Sitting);
    const Explanation hip = explained("right_hip");
    EXPECT_THAT(tableOf(hip), HasSubstr("times 0.01: its number is in kgf·m, not in N·m."));
    EXPECT_NEAR(hip.stored->moment[1], 0.01 * (-10 + 1e-5 / kMomentScale), roundingBound(4, 0.1));
    EXPECT_EQ(hip.stored->moment[0], 0.0f);
    EXPECT_EQ(hip.stored->moment[2], 0.0f);
}

// A sitting leg: its own weights and loads, 8 + 4 kgf and 3 at the knee's end of the upper leg; what hip and ankle
// carry makes 15 together, and the knee is left without a result. The load's lever of 0.02 cm gives 0.06 kgf·cm about
// the hip, 0.0059 N·m, which the placeholder replaces.
TEST_F(SmallBody, ListsTheTermsOfSittingLegs)
{
    analysis->setLoadWithOffset(site("right_upper_leg.distal"), {0, 0, 0.02f}, {0, -3, 0});
    computeAs(qmStaticStrength::Sitting);
    const Explanation hip = explained("right_hip"), knee = explained("right_knee"), ankle = explained("right_ankle");
    for (const Explanation* each : {&hip, &knee, &ankle})
        EXPECT_EQ(each->method, Explanation::kSittingLegs) << each->joint;
    EXPECT_THAT(termsOf(hip), ElementsAre("load with offset right_upper_leg.distal", "segment weight right_upper_leg",
                                          "placeholder right_hip", "segment weight right_lower_leg",
                                          "placeholder right_knee", "carried at the ankle right_ankle"));
    EXPECT_THAT(components(*hip.legs.terms[2].couple),
                ElementsAre(FloatNear(static_cast<float>(1e-5 - 0.06 * kMomentScale), 1e-8f), 1e-5f, 1e-5f));
    EXPECT_EQ(termsOf(ankle).back(), "carried at the hip right_hip");
    EXPECT_NEAR(hip.stored->force[1] + ankle.stored->force[1], -15, roundingBound(4, 15));
    EXPECT_FALSE(knee.stored);
    EXPECT_TRUE(knee.legs.terms.empty());
    EXPECT_THAT(tableOf(knee), HasSubstr("Sitting leaves the knees without a result."));
    EXPECT_EQ(explained("waist").method, Explanation::kWalk);
}

TEST_F(SmallBody, SaysWhereTheStrategyDoesNotReach)
{
    computeAs(qmStaticStrength::TwoFeet);
    const Explanation ball = explained("right_ball");
    EXPECT_EQ(ball.method, Explanation::kNotReached);
    EXPECT_FALSE(ball.stored);
    EXPECT_THAT(tableOf(ball), HasSubstr("none: two-feet does not reach this joint, it has no result"));
    EXPECT_THAT(jsonOf(ball), HasSubstr("\"method\": \"not-reached\""));
}

// No joint's name begins with "r": the analysis then tells the left leg's share alone.
TEST_F(ExplanationTest, KnowsWhatWalkingComesDownToWhateverTheJointsAreCalled)
{
    SmallFigure body = smallBody();
    nlohmann::json& document = body.document();
    for (auto& joint : document["joints"]) {
        joint["name"] = "j_" + joint["name"].get<std::string>();
        joint["full_name"] = "man." + joint["name"].get<std::string>();
    }
    for (auto& site : document["sites"])
        for (auto& joint : site["joints"])
            joint = "j_" + joint.get<std::string>();
    for (const char* side : {"right", "left"})
        for (const char* role : {"knee", "ankle", "hip"})
            document[side][role] = "j_" + document[side][role].get<std::string>();
    document["waist"] = "j_waist";
    for (auto& joint : document["joints"])
        if (joint["name"] == "j_left_knee")
            joint["angles"] = {0.5};
    load(body);
    computeAs(qmStaticStrength::Walking);
    const Explanation ankle = explained("j_right_ankle");
    EXPECT_EQ(ankle.strategyEffective, "right-foot");
    EXPECT_EQ(ankle.trace.walks, 2);
    EXPECT_TRUE(ankle.stored);
}

// ---- Every joint, every strategy -------------------------------------------------------------------------

class EveryJoint : public ExplanationTest {
protected:
    void SetUp() override
    {
        loadDefaultHuman();
        collect(figure->getJoints(), joints);
        collect(figure->getSites(), sites);
        collect(figure->getSegments(), segments);
    }
    template <class Part> static void collect(qList* list, std::vector<Part*>& parts)
    {
        for (qList* node = list; node; node = qList::iterator(list, node))
            parts.push_back(static_cast<Part*>(node->getData()));
    }

    void takeRandomPosture(Chance& chance)
    {
        for (qcJoint* each : joints)
            for (int i = 1; i <= each->getNumAngles(); ++i) {
                double lower = 0, upper = 0;
                ASSERT_EQ(each->getAngleLimits(i, lower, upper), 1);
                ASSERT_EQ(each->setAngle(i, chance.within(lower, upper)), 1);
            }
        figure->setRoot(0, 100, 0, chance.within(-180, 180), chance.within(-180, 180), chance.within(-180, 180));
    }
    qVector vector(Chance& chance, double size) const
    {
        const auto v = chance.vector(size);
        return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
    }
    // Of every kind, also on palms and on the lower torso.
    void putRandomLoads(Chance& chance, double size)
    {
        analysis->clear();
        for (const char* key : {"RightZelHandLoads", "LeftZelHandLoads", "RightZelHandLoadsLocal"})
            figure->removeProperty(key);
        const auto anySite = [&] { return sites[chance.below(sites.size())]; };
        const auto weight = [&] { return static_cast<float>(chance.within(0.1, 1000) * size); };
        for (int i = 0; i < 4; ++i) {
            analysis->setLoad(anySite(), vector(chance, size), 0);
            analysis->setLoad(anySite(), vector(chance, size), 1);
            analysis->setWeightLoad(anySite(), weight());
            analysis->setLoadWithOffset(anySite(), vector(chance, 30), vector(chance, size), 0);
            analysis->setLoadWithOffset(anySite(), vector(chance, 30), vector(chance, size), 1);
            analysis->setWeightLoadWithOffset(anySite(), vector(chance, 30), weight());
            qVector torque = vector(chance, size);
            analysis->setDefinedTorque(joints[chance.below(joints.size())], torque);
        }
        analysis->setLoad(site("lower_torso.center_of_mass"), vector(chance, size), chance.coin());
        if (chance.coin())
            analysis->setLoad(site("lower_torso.h_point"), vector(chance, size), chance.coin());
        for (const char* palm : {"right_hand.right_palmcenter", "left_hand.left_palmcenter"}) {
            if (chance.coin())
                analysis->setLoad(site(palm), vector(chance, size), chance.coin());
            analysis->setLoadWithOffset(site(palm), vector(chance, 30), vector(chance, size), 0);
        }
        const std::string hand = std::to_string(-size) + " " + std::to_string(size / 2) + " 0.25";
        figure->setProperty("RightZelHandLoads", qcValue(hand.c_str()));
        figure->setProperty("RightZelHandLoadsLocal", qcValue(chance.coin() ? "1" : "0"));
        figure->setProperty("LeftZelHandLoads", qcValue(std::to_string(size).c_str()));
    }

    void expectNear(const qVector& got, const qVector& expected, double bound) const
    {
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(got[i], expected[i], bound) << "component " << i;
    }

    // The sum as the walk forms it gives what is stored, to the bit; the contributions' own sum differs by roundings:
    // of the two sums, n terms and as many joints on the way, and of each lever's and product's, eight at most. No way
    // along the body is longer than 400 cm, with offsets.
    void checkWalk(const Explanation& e)
    {
        const Trace& trace = e.trace;
        ASSERT_EQ(trace.stored, e.stored.has_value());
        if (e.stored) {
            EXPECT_TRUE(sameBits(trace.storedForce, e.stored->force));
            EXPECT_TRUE(sameBits(trace.storedMoment, e.stored->moment));
        }
        double forces = 0, couples = 0, forceShares = 0, momentShares = 0, shareSizes = 0;
        for (const Contribution& each : trace.contributions) {
            forces += double(each.force.mag());
            if (!each.point || each.kind == Contribution::kJointResult)
                couples += double(each.moment.mag());
            forceShares += double(each.forceShare.value_or(0));
            momentShares += double(each.momentShare.value_or(0));
            shareSizes += std::fabs(double(each.forceShare.value_or(0)));
            shareSizes += std::fabs(double(each.momentShare.value_or(0)));
            kinds[each.kind] += 1;
        }
        const int terms = static_cast<int>(trace.contributions.size() + joints.size()) + 8;
        expectNear(e.sum.force, trace.force, roundingBound(terms, forces));
        expectNear(e.sum.moment, trace.moment, roundingBound(terms, kMomentScale * 400 * forces + couples));
        // each narrowed once
        if (!trace.contributions.empty() && trace.contributions[0].forceShare) {
            EXPECT_NEAR(forceShares, 100, roundingBound(1, shareSizes));
        }
        if (!trace.contributions.empty() && trace.contributions[0].momentShare) {
            EXPECT_NEAR(momentShares, 100, roundingBound(1, shareSizes));
        }
        leftOut += static_cast<int>(trace.leftOut.size());
        stopped += trace.stopped;
        ++walked;
    }

    // The terms' forces add up to the force stored: a sum of ten terms, each of some products.
    void checkLegs(const Explanation& e)
    {
        if (!e.stored)
            return;
        qVector sum;
        double forces = double(e.stored->force.mag());
        for (const LegTerm& term : e.legs.terms) {
            sum.add(term.force);
            forces += double(term.force.mag());
        }
        expectNear(sum, e.stored->force, roundingBound(20, forces));
        supports[e.legs.support] += 1;
    }

    void check(const Explanation& e)
    {
        SCOPED_TRACE(e.joint);
        if (e.method == Explanation::kWalk)
            checkWalk(e);
        else if (e.method == Explanation::kNotReached)
            EXPECT_FALSE(e.stored);
        else
            checkLegs(e);
    }

    void checkAll(unsigned seeds, double loadSize)
    {
        for (unsigned seed = 1; seed <= seeds; ++seed) {
            Chance chance(seed);
            takeRandomPosture(chance);
            for (const Strategy strategy : kStrategies) {
                SCOPED_TRACE("seed " + std::to_string(seed) + ", strategy " + std::to_string(strategy));
                putRandomLoads(chance, loadSize);
                analysis->setGravity({100, -980.665f, static_cast<float>(chance.within(-100, 100))});
                computeAs(strategy);
                for (qcJoint* each : joints)
                    check(explain(*analysis, each, Explanation::kByMoment));
            }
        }
    }

    std::vector<qcJoint*> joints;
    std::vector<qcSite*> sites;
    std::vector<qcSegment*> segments;
    std::map<Contribution::Kind, int> kinds;
    std::map<std::string, int> supports;
    int walked = 0, leftOut = 0, stopped = 0;
};

TEST_F(EveryJoint, IsExplainedToWhatIsStoredUnderEveryStrategyAndRandomLoads)
{
    checkAll(30, 20);
    EXPECT_GT(walked, 30 * 7 * 15);
    EXPECT_GT(stopped, 30 * 10);
    for (int kind = Contribution::kSegmentWeight; kind <= Contribution::kPlaceholder; ++kind)
        EXPECT_GT(kinds[static_cast<Contribution::Kind>(kind)], 0) << kind;
    for (const char* support : {"both-feet", "right-foot", "left-foot"})
        EXPECT_GT(supports[support], 0) << support;
}

// A body of 1.5 kg with loads of up to 20 gf: many results are too small to be stored, or have too small a moment,
// and the bound on the moments is below the 0.01 N·m that are left out.
TEST_F(EveryJoint, IsExplainedWhereMostResultsAreNegligible)
{
    for (qcSegment* segment : segments)
        segment->setMass(segment->getMass() * 0.02f);
    checkAll(30, 0.02);
    EXPECT_GT(leftOut, 1000);
    EXPECT_GT(kinds[Contribution::kPlaceholder], 1000);
}

}   // namespace
