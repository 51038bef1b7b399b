// Stop segment: where a walk ends, what it takes of the results stored beyond, and what it halves.
#include "WalkFixture.h"

#include <cmath>
#include <limits>

using ::testing::ElementsAre;
using ::testing::FloatEq;

namespace {

// A load of (0, -10, 0) on the stop segment's site counts (0, -5, 0); everything gathered is halved once more
// before a weight is added: (0, -2.5, 0) + (0, -2, 0).
TEST_F(Walk, StopSegmentHalvesItsLoadsAndAllSumsBeforeItsWeight)
{
    load(onePart(2000));
    analysis->setLoad(site("part.in"), qVector(0, -10, 0));
    EXPECT_THAT(components(walk("j", "base.out", "part").force), ElementsAre(0, FloatEq(-4.5f), 0));
    EXPECT_THAT(components(walk("j", "base.out").force), ElementsAre(0, FloatEq(-12), 0));
}

TEST_F(Walk, StopSegmentWithoutWeightHalvesItsLoadsOnly)
{
    for (const double grams : {0.0, -1.0}) {
        load(onePart(grams));
        analysis->setLoad(site("part.in"), qVector(0, -10, 0));
        EXPECT_THAT(components(walk("j", "base.out", "part").force), ElementsAre(0, -5, 0)) << grams;
    }
}

// On the stop segment, about the origin: 8 kgf up at (10, 0, 0), halved 4 kgf: (0, 0, 40) kgf·cm; an offset load
// of 8 kgf up at (10, 0, 0) + (6, 0, 0), halved: (0, 0, 64) kgf·cm. Force (0, 8, 0).
TEST_F(Walk, StopSegmentHalvesOffsetLoadsToo)
{
    load(onePart(0));
    analysis->setLoad(site("part.tip"), qVector(0, 8, 0));
    analysis->setLoadWithOffset(site("part.tip"), qVector(6, 0, 0), qVector(0, 8, 0));
    const Sums sums = walk("j", "base.out", "part");
    EXPECT_THAT(components(sums.force), ElementsAre(0, 8, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, FloatEq(float(104 * kNm))));
}

// The torque and what the caller brought are among the sums that a weight halves, the weight's own moment is not.
//   force: (20, 0, 0)/2 + (0, -2, 0);   moment: ((0, 6, 0) + (0, 0, 4))/2
TEST_F(Walk, StopSegmentHalvesTheTorqueAndTheIncomingSums)
{
    load(onePart(2000));
    qVector torque(0, 0, 4);
    analysis->setDefinedTorque(joint("j"), torque);
    Sums sums = walk("j", "base.out", "part", 1, qVector(20, 0, 0), qVector(0, 6, 0));
    EXPECT_THAT(components(sums.force), ElementsAre(10, FloatEq(-2), 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 3, 2));

    // a massless one leaves both whole
    load(onePart(0));
    analysis->setDefinedTorque(joint("j"), torque);
    sums = walk("j", "base.out", "part", 1, qVector(20, 0, 0), qVector(0, 6, 0));
    EXPECT_THAT(components(sums.force), ElementsAre(20, 0, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 6, 4));
}

// The weight's moment is not halved: 2 kgf at (10, 0, 0) is (0, 0, -20) kgf·cm.
TEST_F(Walk, StopSegmentsWeightCountsInFull)
{
    SmallFigure figure = onePart(2000);
    figure.document()["segments"][1]["com"] = {10, 0, 0};
    load(figure);
    const Sums sums = walk("j", "base.out", "part");
    EXPECT_THAT(components(sums.force), ElementsAre(0, FloatEq(-2), 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, FloatEq(float(-20 * kNm))));
}

// A trunk that joint "right_hip" enters, with "waist" above it and another joint beside:
//   waist at (0, 10, 0), "left_hip" at (10, 0, 0), the right hip at the origin; the trunk is the stop segment
class StopSegmentJoints : public JointForces {
protected:
    void build(double trunkGrams, const std::string& entering = "right_hip", const std::string& above = "waist")
    {
        SmallFigure figure;
        figure.segment("leg", 5000)
            .site("leg", "top", {0, 0, 0})
            .segment("trunk", trunkGrams)
            .site("trunk", "hip", {0, 0, 0})
            .site("trunk", "top", {0, 10, 0})
            .site("trunk", "other_hip", {10, 0, 0})
            .segment("chest", 3000)
            .site("chest", "bottom", {0, 10, 0})
            .segment("other_leg", 3000)
            .site("other_leg", "top", {10, 0, 0})
            .joint(entering, "trunk.hip", "leg.top")
            .joint(above, "trunk.top", "chest.bottom")
            .joint("left_hip", "trunk.other_hip", "other_leg.top");
        load(figure);
        entry = entering;
        analysis->setFMonJoint(joint(above), qVector(4, -8, 2), qVector(1, 2, 3));
        analysis->setFMonJoint(joint("left_hip"), qVector(100, 100, 100), qVector(100, 100, 100));
        analysis->setStrategy(qmStaticStrength::TwoFeet);
        share(kLeftHip) = 0.75f;
        share(kRightHip) = 0.25f;
    }
    Sums walkToTrunk() { return walk(entry, "leg.top", "trunk"); }
    std::string entry;
};

// share 0.25 of the waist's (4, -8, 2) kgf and (1, 2, 3) N·m: (1, -2, 0.5) and (0.25, 0.5, 0.75), acting at the waist:
//   (0, 10, 0) × (1, -2, 0.5) = (5, 0, -10) kgf·cm; the other hip's result has the share 0
TEST_F(StopSegmentJoints, GiveTheShareOfTheirStoredResults)
{
    build(0);
    const Sums sums = walkToTrunk();
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(1, -2, 0.5f));
    expectNear(sums.moment, {5 * kNm + 0.25, 0.5, -10 * kNm + 0.75}, roundingBound(3, 10 * kNm + 0.75));
    // what was read is as it was, and no walk went there
    EXPECT_THAT(components(resultOf("waist").force), ElementsAre(4, -8, 2));
    EXPECT_THAT(components(resultOf("left_hip").force), ElementsAre(100, 100, 100));
}

// A weight of 2 kgf at the hip halves the shares that were gathered.
TEST_F(StopSegmentJoints, AreHalvedOnceMoreByAWeight)
{
    build(2000);
    const Sums sums = walkToTrunk();
    EXPECT_THAT(components(sums.force), ElementsAre(0.5f, FloatEq(-3), 0.25f));
    expectNear(sums.moment, {2.5 * kNm + 0.125, 0.25, -5 * kNm + 0.375}, roundingBound(3, 5 * kNm + 0.375));
}

// About the hip: torque 2^24 N·m; the quarter of the waist's (-4, 0, 0) kgf at (0, 10, 0) turns by 0.98 N·m, which is
// lost in it; the quarter of the waist's moment, -2^24, comes after: 0, for which the placeholder stands. The moment
// first would leave the 0.98.
TEST_F(StopSegmentJoints, TurnByTheirForceBeforeTheirMomentIsAdded)
{
    build(0);
    const float huge = 16777216.0f;   // 2^24: takes in nothing below 1
    qVector torque(0, 0, huge);
    analysis->setDefinedTorque(joint("right_hip"), torque);
    analysis->setFMonJoint(joint("waist"), {-4, 0, 0}, {0, 0, -4 * huge});
    const Sums sums = walkToTrunk();
    EXPECT_THAT(components(sums.force), ElementsAre(-1, 0, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(kPlaceholder, kPlaceholder, kPlaceholder));
}

TEST_F(StopSegmentJoints, GiveTheOtherShareToAJointOfTheOtherSide)
{
    build(0, "hip_on_the_left");
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(3, -6, 1.5f));
}

TEST_F(StopSegmentJoints, WithoutAStoredResultGiveNothing)
{
    build(0);
    joint("waist")->removeProperty("SSTR_Force_Moment");
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(0, 0, 0));
    joint("waist")->setProperty("SSTR_Force_Moment", qcValue("no result"));
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(0, 0, 0));
    EXPECT_FALSE(hasResult("right_hip"));
}

// With the share 0 the stored result is not even read: nothing of an infinite one comes through.
TEST_F(StopSegmentJoints, WithTheShareZeroGiveNothingWhateverIsStored)
{
    build(0);
    const float infinite = std::numeric_limits<float>::infinity();
    analysis->setFMonJoint(joint("waist"), qVector(infinite, infinite, infinite),
                           qVector(infinite, infinite, infinite));
    share(kRightHip) = 0;
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(0, 0, 0));
    qVector force(1, 2, 3), moment(4, 5, 6);
    callPrivate<SpecialMember>(*analysis, joint("waist"), joint("right_hip"), force, moment);
    EXPECT_THAT(components(force), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(moment), ElementsAre(0, 0, 0));
}

// Only a share of exactly zero keeps the stored result out: a share that is no number makes none of it.
TEST_F(StopSegmentJoints, WithAShareThatIsNotANumberGiveNoNumbers)
{
    build(0);
    share(kRightHip) = std::numeric_limits<float>::quiet_NaN();
    qVector force, moment;
    callPrivate<SpecialMember>(*analysis, joint("waist"), joint("right_hip"), force, moment);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(std::isnan(force[i])) << i;
        EXPECT_TRUE(std::isnan(moment[i])) << i;
    }

    // what is no number is not next to nothing: it is stored
    EXPECT_EQ(walkToTrunk().status, 1);
    const Result hip = resultOf("right_hip");
    EXPECT_EQ(hip.status, 1);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(std::isnan(hip.force[i])) << i;
        EXPECT_TRUE(std::isnan(hip.moment[i])) << i;
    }
}

// A stored value that is no result writes nothing, and what the outputs hold is multiplied: (4, 8, 12) · 0.25.
TEST_F(StopSegmentJoints, WhoseStoredValueIsNoResultShareWhatTheOutputsHold)
{
    build(0);
    joint("waist")->setProperty("SSTR_Force_Moment", qcValue("no result"));
    qVector force(4, 8, 12), moment(4, 8, 12);
    callPrivate<SpecialMember>(*analysis, joint("waist"), joint("right_hip"), force, moment);
    EXPECT_THAT(components(force), ElementsAre(1, 2, 3));
    EXPECT_THAT(components(moment), ElementsAre(1, 2, 3));

    // without any stored value the outputs are zero first
    joint("waist")->removeProperty("SSTR_Force_Moment");
    callPrivate<SpecialMember>(*analysis, joint("waist"), joint("right_hip"), force, moment);
    EXPECT_THAT(components(force), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(moment), ElementsAre(0, 0, 0));
}

// The joint through which the walk comes to the stop segment is none of those that give: here it is the waist
// itself, whose stored result, shared by its own name, would give (4, -8, 2) · 0.75 = (3, -6, 1.5).
TEST_F(StopSegmentJoints, DoNotIncludeTheOneThroughWhichTheWalkComes)
{
    build(0, "waist", "other");
    analysis->setFMonJoint(joint("waist"), qVector(4, -8, 2), qVector(1, 2, 3));
    ASSERT_EQ(analysis->getSplitFactor(joint("waist"), 1, "waist"), 0.75f);
    const Sums sums = walkToTrunk();
    EXPECT_EQ(sums.status, 1);
    EXPECT_THAT(components(sums.force), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(sums.moment), ElementsAre(0, 0, 0));
}

TEST_F(StopSegmentJoints, GiveTheirShareOfForceAndMoment)
{
    build(0);
    qVector force, moment;
    callPrivate<SpecialMember>(*analysis, joint("waist"), joint("right_hip"), force, moment);
    EXPECT_THAT(components(force), ElementsAre(1, -2, 0.5f));
    EXPECT_THAT(components(moment), ElementsAre(0.25f, 0.5f, 0.75f));
}

// Only "waist" is shared between the hips.
TEST_F(StopSegmentJoints, OfOtherNamesGiveNothing)
{
    build(0, "right_hip", "waist2");
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(0, 0, 0));
}

// Under one foot no stored result counts, but loads and sums are halved all the same:
//   (0, -10, 0)/2, halved once more, and 2 kgf of weight
TEST_F(StopSegmentJoints, GiveNothingUnderOneFootWhileHalvingStays)
{
    build(2000);
    analysis->setStrategy(qmStaticStrength::RightFoot);
    analysis->setLoad(site("trunk.hip"), qVector(0, -10, 0));
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(0, FloatEq(-4.5f), 0));
}

// The stop segment may lie further along: the walk goes on normally until it comes there.
TEST_F(Walk, StopsFurtherAlongTheTree)
{
    SmallFigure figure = twoLinks();
    figure.segment("link3", 9000).site("link3", "in", {20, 0, 10}).joint("c", "link2.tip", "link3.in");
    load(figure);
    analysis->setLoad(site("link2.tip"), qVector(0, 0, 8));
    const Sums sums = walk("a", "base.out", "link2");
    EXPECT_EQ(sums.status, 1);
    // link2: 8 · 0.5 · 0.5 and its 2 kgf; link3 is not reached; link1 in full
    EXPECT_THAT(components(sums.force), ElementsAre(0, FloatEq(-7), 2));
    EXPECT_THAT(components(resultOf("b").force), ElementsAre(0, FloatEq(-2), 2));
    EXPECT_FALSE(hasResult("c"));
}

TEST_F(StopSegmentJoints, AreNotReadWhileOneSegmentIsTakenAlone)
{
    build(0);
    segmentOnly = 1;
    EXPECT_THAT(components(walkToTrunk().force), ElementsAre(0, 0, 0));
}

}   // namespace
