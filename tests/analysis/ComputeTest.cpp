// Compute: which walks a strategy runs, and in which order.
#include "ComputeSupport.h"

#include <cmath>

using ::testing::ElementsAre;

namespace {

// ---- All strategies

TEST_F(Compute, ReturnsOneForEveryStrategy)
{
    load(smallBody());
    for (const Strategy strategy : kAllStrategies)
        compute(strategy);
}

TEST_F(Compute, KeepsTheUsersStrategyAndWhatIsStoredOfIt)
{
    load(smallBody());
    for (const Strategy strategy : kAllStrategies) {
        analysis->setStrategy(strategy);
        qcValue before, after;
        char *textBefore = nullptr, *textAfter = nullptr;
        ASSERT_EQ(figure->getProperty("SSTR_Strategy", &before), 1);
        const long stamp = figure->getTimestamp();
        analysis->compute();
        EXPECT_EQ(analysis->getStrategy(), strategy);
        ASSERT_EQ(figure->getProperty("SSTR_Strategy", &after), 1);
        ASSERT_TRUE(before.get(textBefore) && after.get(textAfter));
        EXPECT_STREQ(textBefore, textAfter);
        EXPECT_EQ(figure->getTimestamp(), stamp);   // nothing was stored anew
    }
}

TEST_F(Compute, ChangesNothingButTheResults)
{
    load(smallBody());
    analysis->setLoad(site("right_hand.right_palmcenter"), qVector(0, -5, 0));
    analysis->setLoadWithOffset(site("left_hand.left_palmcenter"), qVector(1, 2, 3), qVector(0, -5, 0));
    qVector torque(1, 2, 3), gravity;
    analysis->setDefinedTorque(joint("waist"), torque);
    const int properties = figure->getNumProperties();
    for (const Strategy strategy : kAllStrategies) {
        compute(strategy);
        EXPECT_EQ(figure->getNumProperties(), properties);
        EXPECT_EQ(analysis->getNumLoads(), 1);
        EXPECT_EQ(analysis->getNumLoadsWithOffset(), 1);
        EXPECT_EQ(analysis->getNumDefinedTorques(), 1);
        analysis->getGravity(gravity);
        EXPECT_THAT(components(gravity), ElementsAre(0, -980.665f, 0));
    }
}

// One segment alone is taken in the sitting legs only; every computation starts without it, and only sitting leaves it
// on.
TEST_F(Compute, LeavesSegmentOnlyOnAfterSitting)
{
    load(smallBody());
    for (const Strategy strategy : kAllStrategies) {
        segmentOnly = 1;
        compute(strategy);
        EXPECT_EQ(segmentOnly, strategy == qmStaticStrength::Sitting ? 1 : 0) << strategy;
    }
    segmentOnly = 1;
    compute(qmStaticStrength::SittingNoFeet);
    EXPECT_FLOAT_EQ(down("waist"), 29);
}

TEST_F(Compute, TwiceGivesTheSame)
{
    for (const Strategy strategy : kAllStrategies) {
        load(smallBody());
        compute(strategy);
        std::vector<std::array<float, 3>> first, second;
        for (std::vector<std::array<float, 3>>* results : {&first, &second}) {
            for (qList* node = nullptr; (node = qList::iterator(figure->getJoints(), node));) {
                const Result result = resultOf(static_cast<qcJoint*>(node->getData())->getName());
                results->push_back(components(result.force));
                results->push_back(components(result.moment));
            }
            compute(strategy);
        }
        EXPECT_EQ(first, second) << strategy;
    }
}

// ---- Two feet

TEST_F(Compute, TwoFeetWalksTheUpperBodyAndThenTheLegs)
{
    load(smallBody());
    storeEverywhere(qVector(77, 77, 77));
    compute(qmStaticStrength::TwoFeet);
    EXPECT_FLOAT_EQ(down("waist"), 29);
    EXPECT_FLOAT_EQ(down("t8_l5"), 27);
    EXPECT_FLOAT_EQ(down("solar_plexus"), 17);
    EXPECT_FLOAT_EQ(down("right_clavicle_joint"), 4.5f);
    EXPECT_FLOAT_EQ(down("left_shoulder"), 3.5f);
    EXPECT_FLOAT_EQ(down("left_wrist"), 0.5f);
    // the legs' six joints come from the lower-body method, which never writes the toes'
    std::vector<std::string> expected =
        joined({upperBodyJoints(), {"right_hip", "right_knee", "right_ankle", "left_hip", "left_knee", "left_ankle"}});
    EXPECT_THAT(changedFrom(qVector(77, 77, 77)), ::testing::UnorderedElementsAreArray(expected));
    // what they come to is the lower-body method's own matter; here that it had all it needs
    for (const char* name : {"right_ankle", "left_ankle", "right_hip", "left_knee"})
        EXPECT_TRUE(std::isfinite(down(name))) << name;
}

// The waist's new result enters the legs, not one stored before: with everything else alike the second computation
// after the hands have been loaded differs from a fresh one in nothing.
TEST_F(Compute, TwoFeetReadsTheWaistThatItHasJustWalked)
{
    const auto results = [&](bool stale) {
        load(smallBody());
        analysis->setStrategy(qmStaticStrength::TwoFeet);
        if (stale)
            storeEverywhere(qVector(500, 500, 500));
        analysis->setLoad(site("right_hand.right_palmcenter"), qVector(0, -10, 0));
        compute(qmStaticStrength::TwoFeet);
        std::vector<std::array<float, 3>> all;
        for (const char* name : {"right_hip", "right_knee", "right_ankle", "left_hip", "left_knee", "left_ankle"}) {
            all.push_back(components(resultOf(name).force));
            all.push_back(components(resultOf(name).moment));
        }
        return all;
    };
    EXPECT_EQ(results(true), results(false));
}

TEST_F(Compute, TwoFeetMeetsTheUpperBodyInTheOrderOfTheTree)
{
    load(smallBody());
    EXPECT_EQ(order(qmStaticStrength::TwoFeet, kOneSitePerSegment), kUpperBody);
}

// ---- One foot

// Seen from the right ankle, up: what lies beyond each joint, kgf. Ankle: all but the right foot and toes, 64, and in
// the second walk these too, 65. Knee 64 - 4, hip 60 - 8; the left leg hangs on the trunk with 13, the waist with 29.
TEST_F(Compute, RightFootCarriesTheWholeBody)
{
    load(smallBody());
    compute(qmStaticStrength::RightFoot);
    EXPECT_FLOAT_EQ(down("right_ankle"), 65);
    EXPECT_FLOAT_EQ(down("right_ball"), 0.2f);
    EXPECT_FLOAT_EQ(down("right_knee"), 60);
    EXPECT_FLOAT_EQ(down("right_hip"), 52);
    EXPECT_FLOAT_EQ(down("waist"), 29);
    EXPECT_FLOAT_EQ(down("left_hip"), 13);
    EXPECT_FLOAT_EQ(down("left_knee"), 5);
    EXPECT_FLOAT_EQ(down("left_ankle"), 1);
    EXPECT_FLOAT_EQ(down("left_ball"), 0.2f);

    // About the right ankle, kgf·cm: a weight m at (x, y, z) gives (m·z, 0, -m·x). The body is symmetric, 10 cm to the
    // left of the ankle: z -650. Forward of it lie only the feet, 0.8 at 5, and the toes, 0.2 at 18: x 2 · 7.6 = 15.2.
    // The walk has less than 40 terms of less than 650 · 1.3 kgf·cm in all; placeholders of 1e-5 add at most 1e-4 N·m.
    expectNear(resultOf("right_ankle").moment, {15.2 * kNm, 0, -650 * kNm}, roundingBound(40, 845 * kNm) + 1e-4);
}

// The mirrored case: 10 cm to the right of the left ankle.
TEST_F(Compute, LeftFootIsTheMirrorImage)
{
    load(smallBody());
    compute(qmStaticStrength::LeftFoot);
    EXPECT_FLOAT_EQ(down("left_ankle"), 65);
    EXPECT_FLOAT_EQ(down("left_ball"), 0.2f);
    EXPECT_FLOAT_EQ(down("left_knee"), 60);
    EXPECT_FLOAT_EQ(down("left_hip"), 52);
    EXPECT_FLOAT_EQ(down("waist"), 29);
    EXPECT_FLOAT_EQ(down("right_hip"), 13);
    EXPECT_FLOAT_EQ(down("right_ankle"), 1);
    expectNear(resultOf("left_ankle").moment, {15.2 * kNm, 0, 650 * kNm}, roundingBound(40, 845 * kNm) + 1e-4);
}

// The leg that stands, from the ankle up, then the foot. Each segment is met once.
TEST_F(Compute, RightFootMeetsTheBodyFromTheAnkleAndTheFootLast)
{
    load(smallBody());
    const std::vector<std::string> met = order(qmStaticStrength::RightFoot, kOneSitePerSegment);
    // a segment's proximal site is met after the joint at it: the standing leg's joints come first
    EXPECT_EQ(met, joined({kUpperBody,
                           {"lower_torso.center_of_mass", "left_upper_leg.proximal", "left_lower_leg.proximal",
                            "left_foot.proximal", "left_toes.proximal", "right_upper_leg.proximal",
                            "right_lower_leg.proximal", "right_foot.proximal", "right_toes.proximal"}}));
}

// A torque at the ankle enters both of its walks, the second of which adds to the first.
TEST_F(Compute, OneFootTakesTheAnklesTorqueTwice)
{
    load(smallBody());
    compute(qmStaticStrength::RightFoot);
    const float before = resultOf("right_ankle").moment[1];
    qVector torque(0, 8, 0);
    analysis->setDefinedTorque(joint("right_ankle"), torque);
    compute(qmStaticStrength::RightFoot);
    EXPECT_NEAR(double(resultOf("right_ankle").moment[1] - before), 16, roundingBound(4, 16));
}

// ---- Walking

TEST_F(Compute, WalkingStandsAsTheKneesSay)
{
    const auto ankles = [&](double right, double left, Strategy strategy) {
        SmallFigure body = smallBody();
        for (nlohmann::json& joint : body.document()["joints"]) {
            if (joint["name"] == "right_knee")
                joint["angles"] = {right};
            if (joint["name"] == "left_knee")
                joint["angles"] = {left};
        }
        load(body);
        compute(strategy);
        std::vector<std::array<float, 3>> all;
        for (qList* node = nullptr; (node = qList::iterator(figure->getJoints(), node));) {
            const Result result = resultOf(static_cast<qcJoint*>(node->getData())->getName());
            all.push_back(components(result.force));
            all.push_back(components(result.moment));
        }
        return all;
    };
    // in a posed figure the angles move nothing
    EXPECT_EQ(ankles(0.30, -0.25, qmStaticStrength::Walking), ankles(0, 0, qmStaticStrength::TwoFeet));
    EXPECT_EQ(ankles(0.5, 0.1, qmStaticStrength::Walking), ankles(0, 0, qmStaticStrength::LeftFoot));
    EXPECT_EQ(ankles(0.1, 0.5, qmStaticStrength::Walking), ankles(0, 0, qmStaticStrength::RightFoot));
}

TEST_F(Compute, WalkingStaysWalking)
{
    load(smallBody());
    compute(qmStaticStrength::Walking);
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::Walking);
    // the shares were written for two feet, but asked for under walking again they are none
    EXPECT_EQ(analysis->getSplitFactor(joint("right_hip"), 1, "waist"), 0);
    analysis->setStrategy(qmStaticStrength::TwoFeet);
    EXPECT_EQ(analysis->getSplitFactor(joint("right_hip"), 1, "waist"), 0.5f);
}

TEST_F(Compute, StrategyWithoutABranchWalksNothing)
{
    load(smallBody());
    storeEverywhere(qVector(7, 8, 9));
    compute(qmStaticStrength::N_STRS);
    EXPECT_THAT(changedFrom(qVector(7, 8, 9)), ElementsAre());
}

// ---- Sitting without feet

TEST_F(Compute, SittingNoFeetHangsTheLegsOnTheHips)
{
    load(smallBody());
    storeEverywhere(qVector(77, 77, 77));
    compute(qmStaticStrength::SittingNoFeet);
    EXPECT_FLOAT_EQ(down("waist"), 29);
    for (const std::string side : {"right_", "left_"}) {
        EXPECT_FLOAT_EQ(down(side + "hip"), 13);
        EXPECT_FLOAT_EQ(down(side + "knee"), 5);
        EXPECT_FLOAT_EQ(down(side + "ankle"), 1);
        EXPECT_FLOAT_EQ(down(side + "ball"), 0.2f);
        // about the hip, kgf·cm: foot 0.8 at 5 cm forward, toes 0.2 at 18: 7.6 about x
        expectNear(resultOf(side + "hip").moment, {7.6 * kNm, 0, 0}, roundingBound(8, 7.6 * kNm) + 1e-4);
    }
    EXPECT_EQ(changedFrom(qVector(77, 77, 77)).size(), 17u);   // every joint
}

TEST_F(Compute, SittingNoFeetMeetsTheRightLegBeforeTheLeft)
{
    load(smallBody());
    EXPECT_EQ(
        order(qmStaticStrength::SittingNoFeet, kOneSitePerSegment),
        joined({kUpperBody,
                {"right_upper_leg.proximal", "right_lower_leg.proximal", "right_foot.proximal", "right_toes.proximal",
                 "left_upper_leg.proximal", "left_lower_leg.proximal", "left_foot.proximal", "left_toes.proximal"}}));
}

TEST_F(Compute, MissingTrunkPartsAreReportedByTheWalks)
{
    SmallFigure body = smallBody();
    body.document()["pelvis_site"] = nullptr;
    load(body);
    compute(qmStaticStrength::SittingNoFeet);
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength ERROR: joint waist site ???\n",
                                             "StaticStrength ERROR: joint right_hip site ???\n",
                                             "StaticStrength ERROR: joint left_hip site ???\n"));
    body = smallBody();
    body.document()["waist"] = nullptr;
    load(body);
    compute(qmStaticStrength::SittingNoFeet);
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength ERROR: joint ??? site ???\n"));
    EXPECT_FLOAT_EQ(down("right_hip"), 13);   // the other walks go on
}

// ---- Printing

TEST_F(Compute, PrintsNothingUnlessAsked)
{
    load(smallBody());
    ::testing::internal::CaptureStdout();
    for (const Strategy strategy : kAllStrategies)
        compute(strategy);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

// The other branches print the walked weights and no label of their own: right foot, all 18 segments once.
TEST_F(Compute, OtherStrategiesPrintWeightsOnly)
{
    load(smallBody());
    EXPECT_EQ(labelsOf(printsOf(qmStaticStrength::RightFoot)), std::vector<std::string>(18, "wvec"));
    EXPECT_EQ(labelsOf(printsOf(qmStaticStrength::SittingNoFeet)), std::vector<std::string>(17, "wvec"));
    EXPECT_EQ(labelsOf(printsOf(qmStaticStrength::TwoFeet)), std::vector<std::string>(9, "wvec"));
    EXPECT_EQ(printsOf(qmStaticStrength::N_STRS), "");
}

// ---- Hands and knees

// The small body, its supports in pairs at equal distances, so that every share is a half. kgf:
//   waist           stops at l5: its weight 2; l5's other joint has no share
//   right hip       half of the waist's 2, halved by the lower torso's weight, and that weight: 0.5 + 10
//   right knee      lower leg, foot and toes 5, then upper leg and all at the hip: 5 + 8 + 10.5
//   t8_l5           stops at l5, 2: the waist has no share for it
//   solar_plexus    from the upper torso down: 10 + 2
//   right clavicle  half of the solar plexus's 12, halved by the upper torso's weight, and that weight: 3 + 8
//   right shoulder  11 + 1, right wrist 12 + 3
TEST_F(Compute, HandsAndKneesByHand)
{
    load(smallBody());
    storeEverywhere(qVector(500, 500, 500));   // results of before enter nothing
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_FLOAT_EQ(down("waist"), 2);
    EXPECT_FLOAT_EQ(down("t8_l5"), 2);
    EXPECT_FLOAT_EQ(down("solar_plexus"), 12);
    for (const std::string side : {"right_", "left_"}) {
        EXPECT_FLOAT_EQ(down(side + "hip"), 10.5f);
        EXPECT_FLOAT_EQ(down(side + "knee"), 23.5f);
        EXPECT_FLOAT_EQ(down(side + "ankle"), 1);
        EXPECT_FLOAT_EQ(down(side + "ball"), 0.2f);
        EXPECT_FLOAT_EQ(down(side + "clavicle_joint"), 11);
        EXPECT_FLOAT_EQ(down(side + "shoulder"), 12);
        EXPECT_FLOAT_EQ(down(side + "wrist"), 15);
    }
    EXPECT_EQ(changedFrom(qVector(500, 500, 500)).size(), 17u);
}

// Moments, kgf·cm, a weight m at (x, y, z) about the joint giving (m·z, 0, -m·x):
//   right hip, at x = -10: the waist's share 0.5 at x = 0: -5; lower torso 10 at x = 0: -100
//   right knee, at x = -10: foot and toes 7.6 about x, all else straight above or at the hip's -105
//   right clavicle, at x = -5: solar plexus's share 3 at x = 0: -15; upper torso 8 at x = 0: -40
//   right shoulder, at x = -20: those 11 at x = -5: -165, their -55; clavicle 1 at -12.5: -7.5
TEST_F(Compute, HandsAndKneesMomentsByHand)
{
    load(smallBody());
    compute(qmStaticStrength::HandsAndKnees);
    for (const auto& [side, sign] : {std::pair<std::string, double>{"right_", 1}, {"left_", -1}}) {
        SCOPED_TRACE(side);
        const double bound = roundingBound(12, 230 * kNm) + 1e-4;   // and placeholders of 1e-5
        expectNear(resultOf(side + "hip").moment, {0, 0, -105 * sign * kNm}, bound);
        expectNear(resultOf(side + "knee").moment, {7.6 * kNm, 0, -105 * sign * kNm}, bound);
        expectNear(resultOf(side + "clavicle_joint").moment, {0, 0, -55 * sign * kNm}, bound);
        expectNear(resultOf(side + "shoulder").moment, {0, 0, -227.5 * sign * kNm}, bound);
        expectNear(resultOf(side + "wrist").moment, {0, 0, -227.5 * sign * kNm}, bound);   // straight below
    }
}

// Loads on the two stop segments count a half, halved once more by the weight: 16 kgf on the lower torso is 4 at each
// hip, 16 on the upper torso 4 at each clavicle and nothing at the solar plexus, which is walked the other way; on l5,
// 4 at the waist, of which each hip has a quarter, and 4 at the solar plexus, of which each clavicle has a quarter.
TEST_F(Compute, HandsAndKneesHalvesTheLoadsOfTheStopSegments)
{
    load(smallBody());
    analysis->setLoad(site("lower_torso.h_point"), qVector(0, -16, 0));
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_FLOAT_EQ(down("right_hip"), 14.5f);
    EXPECT_FLOAT_EQ(down("left_knee"), 27.5f);
    EXPECT_FLOAT_EQ(down("waist"), 2);

    load(smallBody());
    analysis->setLoad(site("upper_torso.proximal"), qVector(0, -16, 0));
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_FLOAT_EQ(down("right_clavicle_joint"), 15);
    EXPECT_FLOAT_EQ(down("left_wrist"), 19);
    EXPECT_FLOAT_EQ(down("solar_plexus"), 12);

    load(smallBody());
    analysis->setLoad(site("l5.distal"), qVector(0, -16, 0));
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_FLOAT_EQ(down("waist"), 6);
    EXPECT_FLOAT_EQ(down("right_hip"), 11.5f);   // 6 / 2 / 2 + 10
    EXPECT_FLOAT_EQ(down("solar_plexus"), 16);
    EXPECT_FLOAT_EQ(down("left_clavicle_joint"), 12);   // 16 / 2 / 2 + 8
}

// The waist; for each knee the lower leg, then the upper leg with the lower torso; the solar plexus; each hand's arm
// with the upper torso. A segment's proximal site is met after the joints that hang on it.
TEST_F(Compute, HandsAndKneesMeetsTheBodyInThisOrder)
{
    load(smallBody());
    std::vector<std::string> expected = {"l5.proximal"};
    for (const std::string side : {"right_", "left_"})
        for (const char* key : {"lower_leg.proximal", "foot.proximal", "toes.proximal"})
            expected.push_back(side + key);
    expected.insert(expected.begin() + 4, {"lower_torso.center_of_mass", "right_upper_leg.proximal"});
    expected.insert(expected.end(), {"lower_torso.center_of_mass", "left_upper_leg.proximal"});
    // from the upper torso through the solar plexus: t8's first site carries the joint to l5
    expected.insert(expected.end(), {"l5.proximal", "t8.proximal"});
    for (const std::string side : {"right_", "left_"})
        expected.insert(expected.end(), {"upper_torso.proximal", side + "clavicle.proximal", side + "arm.proximal"});
    EXPECT_EQ(order(qmStaticStrength::HandsAndKnees, kOneSitePerSegment), expected);
}

// The hand is entered at its attachment site, by the joint there.
TEST_F(Compute, HandsAndKneesStartsAtTheHandsAttachment)
{
    SmallFigure body = smallBody();
    body.segment("ring", 100)
        .site("ring", "in", {-20, 72, 0})
        .joint("right_ring", "right_hand.right_palmcenter", "ring.in");
    load(body);
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_FLOAT_EQ(down("right_wrist"), 15);
    EXPECT_FALSE(hasResult("right_ring"));
    // attached at the palm, the hand is walked from the ring's joint: the ring alone
    body.attachment("right_hand", "right_hand.right_palmcenter");
    load(body);
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_FLOAT_EQ(down("right_ring"), 0.1f);
    EXPECT_FALSE(hasResult("right_wrist"));
}

// The knee is entered through its inboard site first; turned round, the upper side is walked first, without a stop, and
// the lower leg is then added.
TEST_F(Compute, HandsAndKneesGoesByTheKneesInboardSite)
{
    SmallFigure body = smallBody();
    for (nlohmann::json& joint : body.document()["joints"])
        if (joint["name"] == "right_knee")
            joint["inboard"] = "right_lower_leg.proximal";
    load(body);
    compute(qmStaticStrength::HandsAndKnees);
    // from the lower leg up: everything but 5 kgf, then these
    EXPECT_FLOAT_EQ(down("right_knee"), 65);
    EXPECT_FLOAT_EQ(down("right_hip"), 52);
}

TEST_F(Compute, HandsAndKneesShareFollowsTheSupports)
{
    SmallFigure body = smallBody();
    // the balance point 5 cm to the left: the knees at 15 and 5, the hands at 25 and 15 cm across gravity
    for (nlohmann::json& site : body.document()["sites"])
        if (site["key"] == "lower_torso.balance_point")
            site["transform"][3] = nlohmann::json::array({5, 100, 0, 1});
    load(body);
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_FLOAT_EQ(down("right_hip"), 10.25f);   // 2 · 5/20 / 2 + 10
    EXPECT_FLOAT_EQ(down("left_hip"), 10.75f);
    EXPECT_FLOAT_EQ(down("right_clavicle_joint"), 10.25f);   // 12 · 15/40 / 2 + 8
    EXPECT_FLOAT_EQ(down("left_clavicle_joint"), 11.75f);
}

TEST_F(Compute, HandsAndKneesReportsWhatItCannotWalk)
{
    SmallFigure body = smallBody();
    std::string text = body.text();
    for (std::size_t at = 0; (at = text.find("solar_plexus", at)) != std::string::npos; at += 12)
        text.replace(at, 12, "solar_system");
    human = scene->addPosedHuman(text.c_str());
    ASSERT_NE(human, nullptr);
    figure = human->getFigure();
    makeAnalysis();
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength ERROR: joint ??? site ???\n"));
    EXPECT_FLOAT_EQ(down("right_clavicle_joint"), 8);   // no joint of the name that is shared
    EXPECT_FLOAT_EQ(down("right_knee"), 23.5f);
}

}   // namespace
