// Hip, knee and ankle: each step of the reactions of the right leg under half the upper body, and what it prints.
#include "DecimalComma.h"
#include "HipKneeAnkleSupport.h"

#include <algorithm>

using ::testing::ElementsAre;
using ::testing::FloatEq;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

// ---- The state

TEST_F(HipKneeAnkle, TheStateIsZeroBeforeTheFirstRun)
{
    for (const auto& [name, bits] : initialState)
        EXPECT_THAT(bits, ElementsAre(0, 0, 0)) << name;
    EXPECT_EQ(initialState.size(), 20u);
}

TEST_F(HipKneeAnkle, SettingUpOverwritesAllButTheReactions)
{
    load(leaningBody());
    setState(7777);
    const Bits before = stateBits();
    setUpWeights();
    const std::vector<std::string> changed = changedFrom(before);
    for (const State& state : kState)
        EXPECT_EQ(std::count(changed.begin(), changed.end(), state.name), state.reaction ? 0 : 1) << state.name;
}

TEST_F(HipKneeAnkle, SolvingAndTheKneeWriteTheirOwnResultsOnly)
{
    load(leaningBody());
    setUpWeights();
    Bits before = stateBits();
    solve();
    EXPECT_THAT(changedFrom(before), ElementsAre("ankleReaction", "hipReaction", "pelvisWtVec"));
    before = stateBits();
    kneeReaction = {7, 7, 7};
    atKnee();
    EXPECT_THAT(changedFrom(before), ElementsAre());   // zero, as the knee's y component is here
    ankleReaction[1] += 1;
    atKnee();
    before["ankleReaction"] = bitsOf(components(ankleReaction));
    EXPECT_THAT(changedFrom(before), ElementsAre("kneeReaction"));
}

// One state: a second analysis overwrites the first one's, and its members work on whatever is there.
TEST_F(HipKneeAnkle, TheStateIsSharedByAllAnalyses)
{
    load(leaningBody());
    qmStaticStrength* first = analysis;
    calc();
    const Bits firstState = stateBits();

    load(leaningBody("other"));
    analysis->setGravity({0, 980.665f, 0});
    segment("l5")->setMass(4000);
    setUpWeights();
    EXPECT_EQ(humWt, 67);
    EXPECT_THAT(components(gravityDir), ElementsAre(0, 1, 0));

    analysis = first;
    calc();
    EXPECT_EQ(stateBits(), firstState);
    analysis = analyses.back().get();
    solve();   // with the first one's gravity and weights
    EXPECT_THAT(components(ankleReaction), ElementsAre(0, -0.25f, 0));
    setSiteLoads();
    EXPECT_EQ(loadOn("right_upper_leg.distal"), "[(0, -8, 0), \"global\"]");
}

// ---- Weights and points

TEST_F(HipKneeAnkle, WeightsPointDown)
{
    load(leaningBody());
    setUpWeights();
    EXPECT_EQ(humWt, 65);
    EXPECT_EQ(humUBWt, 14.5f);
    EXPECT_EQ(pelvisWt, 10);
    EXPECT_EQ(thighWt, 8);
    EXPECT_EQ(calfWt, 4);
    EXPECT_THAT(components(gravityDir), ElementsAre(0, -1, 0));
    EXPECT_THAT(components(upperBodyWtVec), ElementsAre(0, -14.5f, 0));
    EXPECT_THAT(components(pelvisWtVec), ElementsAre(0, -10, 0));
    EXPECT_THAT(components(thighWtVec), ElementsAre(0, -8, 0));
    EXPECT_THAT(components(calfWtVec), ElementsAre(0, -4, 0));
}

TEST_F(HipKneeAnkle, PointsAreThoseOfTheWorld)
{
    SmallFigure body = leaningBody();
    for (nlohmann::json& one : body.document()["sites"])   // which counts nowhere here
        one["second_transform"][3] = {-5, 6, 7, 1};
    load(body);
    setUpWeights();
    EXPECT_THAT(components(upperBodyWtPt), ElementsAre(-10, 122, 24));
    EXPECT_THAT(components(pelvisWtPt), ElementsAre(-10, 90, 0));
    EXPECT_THAT(components(hipPt), ElementsAre(-10, 90, 0));
    EXPECT_THAT(components(anklePt), ElementsAre(-10, 26, 48));
    EXPECT_THAT(components(kneePt), ElementsAre(-10, 58, 24));
    EXPECT_THAT(components(thighWtPt), ElementsAre(-10, 74, 12));
    EXPECT_THAT(components(calfWtPt), ElementsAre(-10, 50, 30));
}

// (3, -4, 0) has length 5; no more than its direction counts.
TEST_F(HipKneeAnkle, WeightsFollowGravitysDirectionOnly)
{
    load(leaningBody());
    for (const float size : {1.0f, 1024.0f}) {
        analysis->setGravity({3 * size, -4 * size, 0});
        setUpWeights();
        EXPECT_THAT(components(gravityDir), ElementsAre(0.6f, -0.8f, 0));
        EXPECT_THAT(components(calfWtVec), ElementsAre(2.4f, -3.2f, 0));
        EXPECT_THAT(components(thighWtVec), ElementsAre(4.8f, -6.4f, 0));
        EXPECT_THAT(components(pelvisWtVec), ElementsAre(10 * 0.6f, 10 * -0.8f, 0));
        EXPECT_THAT(components(upperBodyWtVec), ElementsAre(14.5f * 0.6f, 14.5f * -0.8f, 0));
        qVector gravity;
        analysis->getGravity(gravity);
        EXPECT_THAT(components(gravity), ElementsAre(3 * size, -4 * size, 0));   // only the copy is normalised
    }
}

// Another kg on each: all count in the whole, the right leg's and the pelvis's are taken off again, the
// legs' doubled: (1 - 2) / 2, (1 - 1) / 2, 1 / 2.
TEST_F(HipKneeAnkle, OnlyTheRightLegIsTakenOffTwice)
{
    load(leaningBody());
    const auto shift = [this](const char* name) {
        const float before = segment(name)->getMass();
        segment(name)->setMass(before + 1000);
        setUpWeights();
        segment(name)->setMass(before);
        EXPECT_EQ(humWt, 66) << name;
        return humUBWt - 14.5f;
    };
    for (const char* name : {"right_toes", "right_foot", "right_lower_leg", "right_upper_leg"})
        EXPECT_EQ(shift(name), -0.5f) << name;
    EXPECT_EQ(shift("lower_torso"), 0);
    for (const char* name : {"left_toes", "left_foot", "left_lower_leg", "left_upper_leg", "l5", "left_hand"})
        EXPECT_EQ(shift(name), 0.5f) << name;
    // a mass below zero is one, too
    segment("l5")->setMass(-1000);
    setUpWeights();
    EXPECT_EQ(humWt, 62);
}

// The sum of 0.1, 0.5 and 0.7 kg: 0.1f + 0.5 is kept as 0.60000002; with 0.7, 1.30000002 lies nearer to
// 1.30000007 than to 1.29999995. Summed in single precision, or in double to the end, it is the latter.
TEST_F(HipKneeAnkle, TheWholeWeightIsSummedInDoubleAndKeptInSingle)
{
    load(leaningBody());
    makeWeightless();
    segment("l5")->setMass(100);
    segment("t8")->setMass(500);
    segment("upper_torso")->setMass(700);
    setUpWeights();
    EXPECT_EQ(humWt, std::nextafter(1.3f, 2.0f));

    // in the order of the figure's segments: 2^24 + 1 + 1 loses both, 1 + 1 + 2^24 neither
    EXPECT_EQ((upperBodyOf({{"l5", kBig}, {"t8", 1}, {"upper_torso", 1}}), humWt), kBig);
    EXPECT_EQ((upperBodyOf({{"l5", 1}, {"t8", 1}, {"upper_torso", kBig}}), humWt), kBig + 2);
}

// 1 kg - 0.3 kg · 2 in double is 0.4; in single precision, 0.39999998.
TEST_F(HipKneeAnkle, WhatIsTakenOffIsTakenOffInDouble)
{
    load(leaningBody());
    EXPECT_EQ(upperBodyOf({{"l5", 0.7f}, {"right_toes", 0.3f}}), 0.2f);
    EXPECT_EQ(humWt, 1);
}

// Toes, foot, lower leg, upper leg, torso. About 2^25 single precision has steps of 4 above and 2 below:
// 2^25 - 1 - 2 loses the 1 and is 2^25 - 2; 2^25 - 2 - 1 becomes 2^25 - 4.
TEST_F(HipKneeAnkle, WhatIsTakenOffIsTakenOffInThisOrder)
{
    load(leaningBody());
    const char* const order[] = {"right_toes", "right_foot", "right_lower_leg", "right_upper_leg"};
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(upperBodyOf({{"l5", 2 * kBig}, {order[i], 0.5f}, {order[i + 1], 1}}), kBig - 1) << order[i];
    EXPECT_EQ(upperBodyOf({{"l5", 2 * kBig}, {order[3], 0.5f}, {"lower_torso", 2}}), kBig - 1);
}

// ---- Reactions

// Full distances, not horizontal ones; with the weights on the leg between:
//   ankle  11.75 - 8 - 4 = -0.25        hip  -(-4 - 8 - 5 - 14.5 + 11.75) = 19.75
//   knee   -5 - 14.5 + 19.75 - 0.25 = 0
TEST_F(HipKneeAnkle, ReactionsOfTheLeaningBody)
{
    load(leaningBody());
    calc();
    EXPECT_THAT(components(ankleReaction), ElementsAre(0, -0.25f, 0));
    EXPECT_THAT(components(hipReaction), ElementsAre(0, 19.75f, 0));
    EXPECT_THAT(components(kneeReaction), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(pelvisWtVec), ElementsAre(0, -5, 0));
}

// gravityDir (0.6, -0.8, 0); x is not halved in the pelvis and has no part of R in the hip:
//   ankle  11.75 · (-0.6, 0.8, 0), y 9.4 - 6.4 - 3.2 = -0.2
//   hip    -(2.4 + 4.8 + 6 + 8.7, -3.2 - 6.4 - 4 - 11.6 + 11.75, 0) = (-21.9, 13.45, 0)
//   knee   -4 - 11.6 + 13.45 - 0.2 = -2.35
TEST_F(HipKneeAnkle, ReactionsUnderTiltedGravity)
{
    load(leaningBody());
    analysis->setGravity({3, -4, 0});
    calc();
    const double bound = roundingBound(8, 40);
    EXPECT_NEAR(ankleReaction[0], -7.05, bound);
    EXPECT_NEAR(ankleReaction[1], -0.2, bound);
    EXPECT_NEAR(hipReaction[0], -21.9, bound);
    EXPECT_NEAR(hipReaction[1], 13.45, bound);
    EXPECT_NEAR(kneeReaction[1], -2.35, bound);
    EXPECT_EQ(kneeReaction[0], 0);
    for (const qVector* reaction : {&ankleReaction, &hipReaction, &kneeReaction})
        EXPECT_EQ((*reaction)[2], 0);
    EXPECT_THAT(components(pelvisWtVec), ElementsAre(6, FloatEq(-4), 0));
}

// ankle -11.75 + 8 + 4 = 0.25, hip -(4 + 8 + 5 + 14.5 + 11.75) = -43.25, knee 5 + 14.5 - 43.25 + 0.25 = -23.5
TEST_F(HipKneeAnkle, ReactionsUnderUpwardGravity)
{
    load(leaningBody());
    analysis->setGravity({0, 980.665f, 0});
    calc();
    EXPECT_THAT(components(ankleReaction), ElementsAre(0, 0.25f, 0));
    EXPECT_THAT(components(hipReaction), ElementsAre(0, -43.25f, 0));
    EXPECT_THAT(components(kneeReaction), ElementsAre(0, -23.5f, 0));
}

TEST_F(HipKneeAnkle, RunningTwiceGivesTheSame)
{
    load(leaningBody());
    calc();
    const Bits first = stateBits();
    calc();
    EXPECT_EQ(stateBits(), first);
}

// 10 kgf, 5, 2.5: the hip's reaction goes down by the half that is lost.
TEST_F(HipKneeAnkle, SolvingTwiceHalvesThePelvisTwice)
{
    load(leaningBody());
    setUpWeights();
    solve();
    EXPECT_EQ(hipReaction[1], 19.75f);
    solve();
    EXPECT_THAT(components(pelvisWtVec), ElementsAre(0, -2.5f, 0));
    EXPECT_THAT(components(hipReaction), ElementsAre(0, 17.25f, 0));
    EXPECT_THAT(components(ankleReaction), ElementsAre(0, -0.25f, 0));
}

// The pivot is hipPt alone: moved by 60 cm it makes a lever of 60 from (0, 0, 0) to each of the others.
TEST_F(HipKneeAnkle, LeversGoFromTheHipsPoint)
{
    load(leaningBody());
    hipPt = {0, 60, 0};
    pelvisWtPt = kneePt = {1, 2, 3};
    EXPECT_THAT(printsOf<Solve>(), StartsWith("hipCalf mag=60.000000\nhipThigh mag=60.000000\n"
                                              "upper body mag=60.000000\nhipAnk mag=60.000000\n"));
}

// ---- The order of sums, in single precision: of 2^24 and 1, the 1 is lost

// Levers of 1 cm; the ankle's reaction is then R alone.
TEST_F(HipKneeAnkle, TheMomentsAreSummedFromTheCalfUp)
{
    load(leaningBody());
    calfWtPt = {1, 0, 0};
    thighWtPt = {0, 1, 0};
    upperBodyWtPt = {0, 0, 1};
    anklePt = {0, -1, 0};
    gravityDir = {0, -1, 0};
    const auto reaction = [this](float calf, float thigh, float upperBody) {
        calfWt = calf;
        thighWt = thigh;
        humUBWt = upperBody;
        solve();
        return ankleReaction[1];
    };
    EXPECT_EQ(reaction(kBig, 1, 1), kBig);       // in double, or with the small ones first, 2^24 + 2
    EXPECT_EQ(reaction(1, kBig, 1), kBig);       // with the upper body before the thigh, 2^24 + 2
    EXPECT_EQ(reaction(1, 1, kBig), kBig + 2);   // with the upper body before either, 2^24
    anklePt = {0, -3, 0};
    EXPECT_EQ(reaction(5, 2, 3), 10.0f / 3.0f);   // divided: times a third would be another float
    EXPECT_NE(10.0f / 3.0f, 10.0f * (1.0f / 3.0f));
}

// R = 2^24: (2^24 + 1) - 2^24 is 0; with the calf before the thigh it is 1.
TEST_F(HipKneeAnkle, TheAnkleTakesTheThighThenTheCalf)
{
    load(leaningBody());
    gravityDir = {0.5f, -1, 2};
    upperBodyWtPt = {0, 0, 1};
    anklePt = {0, -1, 0};
    humUBWt = kBig;
    thighWtVec = {3, 1, 3};
    calfWtVec = {3, -kBig, 3};
    solve();
    EXPECT_THAT(components(ankleReaction), ElementsAre(-0.5f * kBig, 0, -2 * kBig));   // only y takes the weights
}

TEST_F(HipKneeAnkle, TheHipIsSummedFromTheLegUpAndRLast)
{
    load(leaningBody());
    upperBodyWtPt = {0, 0, 1};
    anklePt = {0, -1, 0};
    // y components; the pelvis before it is halved
    const auto hip = [this](float calf, float thigh, float pelvis, float upperBody, float r) {
        calfWtVec = {1, calf, 10};
        thighWtVec = {2, thigh, 20};
        pelvisWtVec = {4, pelvis, 40};
        upperBodyWtVec = {8, upperBody, 80};
        humUBWt = r;
        solve();
        EXPECT_THAT(components(pelvisWtVec), ElementsAre(4, pelvis / 2, 40));
        EXPECT_EQ(hipReaction[0], -15);
        EXPECT_EQ(hipReaction[2], -150);
        return -hipReaction[1];
    };
    EXPECT_EQ(hip(1, 2, 8, 8, 16), 31);
    EXPECT_EQ(hip(1, 1, 2 * kBig, -kBig, 0), 2);   // with the pelvis before the thigh, 0
    EXPECT_EQ(hip(1, 0, 2 * kBig, -kBig, 0), 0);   // with the upper body before the pelvis, or in double, 1
    EXPECT_EQ(hip(1, 0, 0, kBig, -kBig), 0);       // with R before the upper body, 1
}

TEST_F(HipKneeAnkle, TheKneeIsSummedFromThePelvis)
{
    load(leaningBody());
    const auto knee = [this](float pelvis, float upperBody, float hip, float ankle) {
        pelvisWtVec = {7, pelvis, 7};
        upperBodyWtVec = {7, upperBody, 7};
        hipReaction = {7, hip, 7};
        ankleReaction = {7, ankle, 7};
        kneeReaction = {9, 9, 9};
        atKnee();
        EXPECT_EQ(kneeReaction[0], 0);
        EXPECT_EQ(kneeReaction[2], 0);
        return kneeReaction[1];
    };
    EXPECT_EQ(knee(1, 2, 4, 8), 15);
    EXPECT_EQ(knee(kBig, 1, 1, 0), kBig);       // in double, 2^24 + 2
    EXPECT_EQ(knee(1, 1, kBig, 0), kBig + 2);   // with the hip before the upper body, 2^24
    EXPECT_EQ(knee(1, 0, kBig, -kBig), 0);      // with the ankle before the hip, 1
}

// ---- What is printed

TEST_F(HipKneeAnkle, SevenLinesArePrintedOnEveryRun)
{
    load(leaningBody());
    EXPECT_EQ(printsOf<SetUpWeights>(), "");
    EXPECT_EQ(printsOf<Solve>(), kSevenLines);
    EXPECT_EQ(printsOf<Solve>(), kSevenLines);
    EXPECT_EQ(printsOf<AtKnee>(), "");
    EXPECT_EQ(printsOf<CalcAll>(), kSevenLines);
    EXPECT_EQ(printsOf<SetSiteLoads>(), "");
}

// Zero times -R, and zero times -1, are -0.
TEST_F(HipKneeAnkle, DebugPrintPrintsEachStep)
{
    load(leaningBody());
    debugPrint = 1;
    const std::string weights = "humWt: 65.000000\n"
                                "upperBodyWtVec: 0.000000,-14.500000,0.000000\n"
                                "pelvisWtVec: 0.000000,-10.000000,0.000000\n"
                                "thighWtVec: 0.000000,-8.000000,0.000000\n"
                                "calfWtVec: 0.000000,-4.000000,0.000000\n"
                                "upperBodyWtPt: -10.000000,122.000000,24.000000\n"
                                "pelvisWtPt: -10.000000,90.000000,0.000000\n"
                                "thighWtPt: -10.000000,74.000000,12.000000\n"
                                "calfWtPt: -10.000000,50.000000,30.000000\n";
    const std::string reactions = "Ankle Reaction: -0.000000,-0.250000,-0.000000\n"
                                  "Hip Reaction: -0.000000,19.750000,-0.000000\n";
    const std::string knee = "Knee Reaction: 0.000000,0.000000,0.000000\n";
    EXPECT_EQ(printsOf<SetUpWeights>(), weights);
    EXPECT_EQ(printsOf<Solve>(), kSevenLines + reactions);
    EXPECT_EQ(printsOf<AtKnee>(), knee);
    EXPECT_EQ(printsOf<CalcAll>(), weights + kSevenLines + reactions + knee);
    EXPECT_EQ(printsOf<SetSiteLoads>(), "");
}

TEST_F(HipKneeAnkle, PrintedNumbersHaveADecimalPointInEveryLocale)
{
    const DecimalComma comma;
    ASSERT_FALSE(HasFatalFailure());
    load(leaningBody());
    EXPECT_EQ(printsOf<CalcAll>(), kSevenLines);
    debugPrint = 1;
    const std::string output = printsOf<CalcAll>();
    EXPECT_THAT(output, StartsWith("humWt: 65.000000\nupperBodyWtVec: 0.000000,-14.500000,0.000000\n"));
    EXPECT_THAT(output, HasSubstr("\nHip Reaction: -0.000000,19.750000,-0.000000\n"));
}

}   // namespace
