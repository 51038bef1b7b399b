// Compute: which walks a strategy runs, in which order, and what the sitting legs come to.
#include "AnalysisTest.h"

#include "Diagnostics.h"

#include <cmath>
#include <cstdio>

using ::testing::ElementsAre;
using ::testing::FloatEq;

namespace {

using Strategy = qmStaticStrength::Strategy;

constexpr double kNm = 0.0980665;   // N·m in a kgf·cm

void expectNear(const qVector& found, const std::array<double, 3>& expected, double bound)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(double(found[i]), expected[static_cast<std::size_t>(i)], bound) << "component " << i;
}

const std::vector<Strategy> kAllStrategies = {qmStaticStrength::TwoFeet,  qmStaticStrength::RightFoot,
                                              qmStaticStrength::LeftFoot, qmStaticStrength::Walking,
                                              qmStaticStrength::Sitting,  qmStaticStrength::SittingNoFeet,
                                              qmStaticStrength::N_STRS,   qmStaticStrength::HandsAndKnees};

// The small body weighs, kgf: beyond the waist 29 (l5 2, t8 10, upper torso 8, each arm 4.5), lower torso 10, each leg
// 13 (upper leg 8, lower leg 4, foot 0.8, toes 0.2); 65 in all.
class Compute : public AnalysisTest {
protected:
    void load(const SmallFigure& small)
    {
        analyses.clear();
        scene = std::make_unique<qcScene>();
        AnalysisTest::load(small);
    }
    void compute(Strategy strategy)
    {
        analysis->setStrategy(strategy);
        EXPECT_EQ(analysis->compute(), 1);
    }
    std::string printsOf(Strategy strategy)
    {
        debugPrint = 1;
        ::testing::internal::CaptureStdout();
        compute(strategy);
        debugPrint = 0;
        return ::testing::internal::GetCapturedStdout();
    }
    std::vector<std::string> labelsOf(const std::string& output)
    {
        std::vector<std::string> labels;
        for (std::size_t at = 0; at < output.size();) {
            const std::size_t end = output.find('\n', at);
            const std::string line = output.substr(at, end - at);
            labels.push_back(line.substr(0, line.find('[')));
            at = end + 1;
        }
        return labels;
    }
    void TearDown() override
    {
        segmentOnly = 0;
        debugPrint = 0;
        AnalysisTest::TearDown();
    }

    bool hasResult(const std::string& jointName) const
    {
        qcValue value;
        return joint(jointName)->getProperty("SSTR_Force_Moment", &value) != 0;
    }
    float down(const std::string& jointName) const { return -resultOf(jointName).force[1]; }

    void storeEverywhere(const qVector& vector)
    {
        for (qList* node = nullptr; (node = qList::iterator(figure->getJoints(), node));)
            analysis->setFMonJoint(static_cast<qcJoint*>(node->getData()), vector, vector);
    }
    // The joints whose stored result is not that vector any more.
    std::vector<std::string> changedFrom(const qVector& vector) const
    {
        std::vector<std::string> changed;
        for (qList* node = nullptr; (node = qList::iterator(figure->getJoints(), node));) {
            const Result result = resultOf(static_cast<qcJoint*>(node->getData())->getName());
            if (components(result.force) != components(vector) || components(result.moment) != components(vector))
                changed.push_back(static_cast<qcJoint*>(node->getData())->getName());
        }
        return changed;
    }

    // Computes with unreadable loads on these sites. @return the sites' keys in the order in which they were met
    std::vector<std::string> order(Strategy strategy, const std::vector<std::string>& keys)
    {
        for (const std::string& key : keys)
            site(key)->setProperty("SSTR_Load", qcValue(1.0f));
        compute(strategy);
        std::vector<std::string> met;
        const std::string start = "StaticStrength ERROR: illegal load at site man.";
        for (const std::string& text : log.takeTexts()) {
            EXPECT_EQ(text.substr(0, start.size()), start);
            met.push_back(text.substr(start.size()));
        }
        return met;
    }
};

const std::vector<std::string> kOneSitePerSegment = {"lower_torso.center_of_mass",
                                                     "l5.proximal",
                                                     "t8.proximal",
                                                     "upper_torso.proximal",
                                                     "right_clavicle.proximal",
                                                     "left_clavicle.proximal",
                                                     "right_arm.proximal",
                                                     "left_arm.proximal",
                                                     "right_hand.proximal",
                                                     "left_hand.proximal",
                                                     "right_upper_leg.proximal",
                                                     "left_upper_leg.proximal",
                                                     "right_lower_leg.proximal",
                                                     "left_lower_leg.proximal",
                                                     "right_foot.proximal",
                                                     "left_foot.proximal",
                                                     "right_toes.proximal",
                                                     "left_toes.proximal"};

// The order in which the waist walk meets those of the upper body: a segment's sites in order, at each the joints
// first, so that its own proximal site comes before what hangs further on.
const std::vector<std::string> kUpperBody = {
    "l5.proximal",        "t8.proximal",         "upper_torso.proximal",   "right_clavicle.proximal",
    "right_arm.proximal", "right_hand.proximal", "left_clavicle.proximal", "left_arm.proximal",
    "left_hand.proximal"};

std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> lists)
{
    std::vector<std::string> all;
    for (const std::vector<std::string>& list : lists)
        all.insert(all.end(), list.begin(), list.end());
    return all;
}

std::vector<std::string> upperBodyJoints()
{
    return {"waist",          "t8_l5",       "solar_plexus",        "right_clavicle_joint",
            "right_shoulder", "right_wrist", "left_clavicle_joint", "left_shoulder",
            "left_wrist"};
}

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

// ---- Sitting

// The small body seated, the legs bent outwards; the left side mirrors the right one. Right side, cm:
//   hip (-10, 90, 0)    knee (-20, 90, 40)    ankle (-30, 50, 40)
//   upper leg 8 kgf at (-15, 90, 20)          lower leg 4 kgf at (-25, 70, 40)
// The hips' sites on the upper legs may have a second position.
//
//   a = ankle - hip = (-20, -40, 40), |b| = 60        c = hip - knee = (10, 0, -40)
//   MU: (-5, 0, 20) × (0, -8, 0) = (160, 0, 40) kgf·cm        FU = (0, -8, 0)
//   ML: (-5, -20, 0) × (0, -4, 0) = (0, 0, 20) kgf·cm         FL = (0, -4, 0)
//   extra = FL × c = (0, -4, 0) × (10, 0, -40) = (160, 0, 40)
//   T = (160, 0, 60) - (160, 0, 40) = (0, 0, 20)              r = 20 / 60 = 1/3
//   S = (0, -12, 0)        FH = (0, -1/3, 0)                  FA = S - FH = (0, -35/3, 0)
//   MH = (T · a/60) a/60 = 40/3 · (-1/3, -2/3, 2/3), kept times 0.01
// Mirrored, c = (-10, 0, -40), MU and ML turn the other way about z: T = (0, 0, -20); T · a/60 = -40/3 with
// a/60 = (1/3, -2/3, 2/3).
SmallFigure sittingBody()
{
    SmallFigure body = smallBody();
    using json = nlohmann::json;
    const auto move = [&](const char* list, const char* key, const std::string& name, double x, double y, double z) {
        for (json& part : body.document()[list])
            if (part[key] == name) {
                part["transform"][3] = json::array({x, y, z, 1});
                if (part.contains("second_transform"))
                    part["second_transform"][3] = json::array({x, y, z, 1});
            }
    };
    const auto center = [&](const std::string& name, double x, double y, double z) {
        for (json& part : body.document()["segments"])
            if (part["name"] == name)
                part["com"] = json::array({x, y, z});
    };
    for (const auto& [side, sign] : {std::pair<std::string, double>{"right_", 1}, {"left_", -1}}) {
        center(side + "upper_leg", -5 * sign, 0, 20);
        move("segments", "name", side + "lower_leg", -20 * sign, 90, 40);
        center(side + "lower_leg", -5 * sign, -20, 0);
        move("sites", "key", side + "upper_leg.distal", -20 * sign, 90, 40);
        move("sites", "key", side + "lower_leg.proximal", -20 * sign, 90, 40);
        move("sites", "key", side + "lower_leg.distal", -30 * sign, 50, 40);
    }
    return body;
}

// What rounding may leave in T: 8 roundings on magnitudes of 160 + 40 + 20 + 160 + 40 kgf·cm.
double roundingOfT()
{
    return roundingBound(8, 420);
}

TEST_F(Compute, SittingGivesEachLegHipAndAnkleByHand)
{
    load(sittingBody());
    compute(qmStaticStrength::Sitting);
    EXPECT_FLOAT_EQ(down("waist"), 29);
    const double inForce = roundingOfT() / 60 + roundingBound(4, 12);
    const double inMoment = (roundingOfT() + roundingBound(6, 40)) * 0.01;
    for (const auto& [side, sign] : {std::pair<std::string, double>{"right_", 1}, {"left_", -1}}) {
        const Result hip = resultOf(side + "hip");
        EXPECT_EQ(hip.status, 1);
        expectNear(hip.force, {0, -1.0 / 3, 0}, inForce);
        const double along = 40.0 / 3 * sign * 0.01;
        expectNear(hip.moment, {-sign * along / 3, -2 * along / 3, 2 * along / 3}, inMoment);

        const Result ankle = resultOf(side + "ankle");
        EXPECT_EQ(ankle.status, 1);
        expectNear(ankle.force, {0, -35.0 / 3, 0}, inForce);
        EXPECT_THAT(components(ankle.moment), ElementsAre(0, 0, 0));
    }
}

// The hip alone is taken from its second transform: 30 cm higher, at (-10, 120, 0). The walk of the upper leg still
// goes about its global position. Others' second positions are not looked at. Right side:
//   a = (-20, -70, 40), |b|² = 400 + 4900 + 1600 = 6900       c = (10, 30, -40)
//   extra = (0, -4, 0) × (10, 30, -40) = (160, 0, 40): the change is along FL
//   T = (0, 0, 20)      r = 20 / √6900        T · a = 800      MH = 800 / 6900 · a · 0.01
// and 40 cm forward, at (-10, 90, 40): a = (-20, -40, 0), |b|² = 2000, c = (10, 0, 0), extra = (0, 0, 40),
//   T = (160, 0, 20)    r = √26000 / √2000 = √13       T · a = -3200       MH = -3200 / 2000 · a · 0.01
TEST_F(Compute, SittingTakesTheHipFromItsSecondTransform)
{
    SmallFigure body = sittingBody();
    body.secondPosition("right_upper_leg.proximal", {-10, 120, 0});
    body.secondPosition("left_upper_leg.proximal", {10, 90, 40});
    for (const char* side : {"right_", "left_"}) {
        body.secondPosition(std::string("lower_torso.") + side + "hip", {1, 2, 3});
        body.secondPosition(side + std::string("upper_leg.distal"), {4, 5, 6});
        body.secondPosition(side + std::string("lower_leg.proximal"), {7, 8, 9});
        body.secondPosition(side + std::string("lower_leg.distal"), {-1, -2, -3});
    }
    load(body);
    compute(qmStaticStrength::Sitting);
    const double inMoment = (roundingOfT() + roundingBound(6, 200)) * 0.01;

    expectNear(resultOf("right_hip").force, {0, -20 / std::sqrt(6900.0), 0}, roundingOfT() / 80 + roundingBound(4, 12));
    const double right = 800.0 / 6900 * 0.01;
    expectNear(resultOf("right_hip").moment, {-20 * right, -70 * right, 40 * right}, inMoment);

    // the left side mirrors the derivation: a = (20, -40, 0), T = (160, 0, -20), T · a = 3200
    expectNear(resultOf("left_hip").force, {0, -std::sqrt(13.0), 0}, roundingOfT() / 40 + roundingBound(4, 12));
    const double left = 3200.0 / 2000 * 0.01;
    expectNear(resultOf("left_hip").moment, {20 * left, -40 * left, 0}, inMoment);
    expectNear(resultOf("left_ankle").force, {0, -12 + std::sqrt(13.0), 0}, roundingOfT() / 40 + roundingBound(6, 24));
}

TEST_F(Compute, SittingHipMomentLiesAlongTheLegsLine)
{
    load(sittingBody());
    analysis->setLoad(site("right_upper_leg.distal"), qVector(3, -2, 1));
    analysis->setLoad(site("left_lower_leg.distal"), qVector(-1, 4, 2));
    compute(qmStaticStrength::Sitting);
    for (const auto& [side, sign] : {std::pair<std::string, double>{"right_", 1}, {"left_", -1}}) {
        const qVector moment = resultOf(side + "hip").moment;
        const double length = double(moment.mag());
        ASSERT_GT(length, 0.01);
        // moment × a / (|moment| |a|) with a = (-20, -40, 40); a unit vector's rounding
        const double a[3] = {-sign / 3, -2.0 / 3, 2.0 / 3};
        for (int i = 0; i < 3; ++i) {
            const int j = (i + 1) % 3, k = (i + 2) % 3;
            EXPECT_NEAR((double(moment[j]) * a[k] - double(moment[k]) * a[j]) / length, 0, roundingBound(8, 1));
        }
    }
}

// A load of (3, 0, 0) kgf at the right knee's site on the upper leg and (0, 0, 6) at the ankle's on the lower leg:
//   FU = (3, -8, 0)        MU = (160, 0, 40) + (-10, 0, 40) × (3, 0, 0) = (160, 120, 40)
//   FL = (0, -4, 6)        ML = (0, 0, 20) + (-10, -40, 0) × (0, 0, 6) = (-240, 60, 20)
//   extra = (0, -4, 6) × (10, 0, -40) = (160, 60, 40)
//   T = (-80, 180, 60) - (160, 60, 40) = (-240, 120, 20)       |T| = √(57600 + 14400 + 400) = √72400
//   S = (3, -12, 6), |S| = √189       FH = S / √189 · √72400 / 60
//   T · a = 4800 - 4800 + 800 = 800   MH = 800 / 3600 · a · 0.01
TEST_F(Compute, SittingTakesTheLegsOwnLoads)
{
    load(sittingBody());
    analysis->setLoad(site("right_upper_leg.distal"), qVector(3, 0, 0));
    analysis->setLoad(site("right_lower_leg.distal"), qVector(0, 0, 6));
    // loads elsewhere enter no leg
    analysis->setLoad(site("right_foot.sole"), qVector(50, 50, 50));
    analysis->setLoad(site("right_hand.right_palmcenter"), qVector(50, 50, 50));
    analysis->setLoad(site("lower_torso.h_point"), qVector(50, 50, 50));
    compute(qmStaticStrength::Sitting);
    const double ratio = std::sqrt(72400.0 / 189) / 60;
    const double inForce = roundingBound(10, 1200) / 60 + roundingBound(6, 12);
    expectNear(resultOf("right_hip").force, {3 * ratio, -12 * ratio, 6 * ratio}, inForce);
    expectNear(resultOf("right_ankle").force, {3 * (1 - ratio), -12 * (1 - ratio), 6 * (1 - ratio)}, inForce);
    const double along = 800.0 / 3600 * 0.01;
    // T, and its product with a, whose terms of 4800 cancel over |a| = 60
    const double inMoment = (roundingBound(10, 1200) + roundingBound(6, 4800.0 * 2 / 60)) * 0.01;
    expectNear(resultOf("right_hip").moment, {-20 * along, -40 * along, 40 * along}, inMoment);
}

// What hangs on the legs and what stands on them does not count: feet, toes, torso and arms of any mass.
TEST_F(Compute, SittingLegsDependOnNeitherFeetNorUpperBody)
{
    const auto legs = [&](double factor) {
        SmallFigure body = sittingBody();
        for (nlohmann::json& segment : body.document()["segments"]) {
            const std::string name = segment["name"];
            if (name.find("_leg") == std::string::npos)
                segment["mass"] = segment["mass"].get<double>() * factor;
        }
        load(body);
        compute(qmStaticStrength::Sitting);
        std::vector<std::array<float, 3>> all;
        for (const char* name : {"right_hip", "right_ankle", "left_hip", "left_ankle"}) {
            all.push_back(components(resultOf(name).force));
            all.push_back(components(resultOf(name).moment));
        }
        return all;
    };
    EXPECT_EQ(legs(1), legs(3));
}

TEST_F(Compute, SittingLeavesNoResultOnTheKnees)
{
    load(sittingBody());
    storeEverywhere(qVector(77, 77, 77));
    compute(qmStaticStrength::Sitting);
    EXPECT_FALSE(hasResult("right_knee"));
    EXPECT_FALSE(hasResult("left_knee"));
    // no walk comes to the toes
    EXPECT_THAT(components(resultOf("right_ball").force), ElementsAre(77, 77, 77));
    EXPECT_THAT(components(resultOf("left_ball").force), ElementsAre(77, 77, 77));
}

// A torque at the hip or the knee is in the walks of their segments. Along the leg's line it all comes into MH, kept
// times 0.01 after going from N·m to kgf·cm: a torque of a/60 · 0.0980665 N·m (1 kgf·cm) raises MH by a/60 · 0.01.
TEST_F(Compute, SittingTakesTheTorquesOfHipAndKnee)
{
    load(sittingBody());
    compute(qmStaticStrength::Sitting);
    const qVector before = resultOf("right_hip").moment;
    const float oneAlong = float(kNm / 3);
    qVector torque(-oneAlong, -2 * oneAlong, 2 * oneAlong);
    for (const char* name : {"right_hip", "right_knee"}) {
        analysis->setDefinedTorque(joint(name), torque);
        compute(qmStaticStrength::Sitting);
        qVector difference = resultOf("right_hip").moment;
        difference.sub(before);
        expectNear(difference, {-0.01 / 3, -0.02 / 3, 0.02 / 3}, (roundingOfT() * 2 + roundingBound(6, 40)) * 0.01);
        analysis->removeDefinedTorque(joint(name));
    }
}

// Legs without weight and load have no direction: not a number, stored as it comes out.
TEST_F(Compute, SittingMasslessLegsAreNotGuarded)
{
    SmallFigure body = sittingBody();
    for (nlohmann::json& segment : body.document()["segments"])
        if (segment["name"].get<std::string>().find("_leg") != std::string::npos)
            segment["mass"] = 0;
    load(body);
    compute(qmStaticStrength::Sitting);
    const Result hip = resultOf("right_hip"), ankle = resultOf("right_ankle");
    EXPECT_EQ(hip.status, 1);
    EXPECT_EQ(ankle.status, 1);
    EXPECT_TRUE(std::isnan(hip.force[1]));
    EXPECT_TRUE(std::isnan(ankle.force[1]));
    EXPECT_THAT(components(hip.moment), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(ankle.moment), ElementsAre(0, 0, 0));
}

// A leg that lacks a part is refused in one message, nothing is written on the legs, and the user's strategy is back.
TEST_F(Compute, SittingWithoutALegsPartsIsRefused)
{
    SmallFigure body = sittingBody();
    std::string text = body.text();
    for (std::size_t at = 0; (at = text.find("right_upper_leg", at)) != std::string::npos; at += 15)
        text.replace(at, 15, "right_upper_log");
    human = scene->addPosedHuman(text.c_str());
    ASSERT_NE(human, nullptr);
    figure = human->getFigure();
    makeAnalysis();
    storeEverywhere(qVector(77, 77, 77));
    compute(qmStaticStrength::Sitting);
    const std::vector<std::string> texts = log.takeTexts();
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_EQ(texts[0].rfind("StaticStrength ERROR: ", 0), 0u) << texts[0];
    EXPECT_NE(texts[0].find("right_upper_leg"), std::string::npos) << texts[0];
    EXPECT_THAT(changedFrom(qVector(77, 77, 77)), ::testing::UnorderedElementsAreArray(upperBodyJoints()));
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::Sitting);
}

TEST_F(Compute, SittingMeetsTheUpperBodyThenEachUpperAndLowerLeg)
{
    load(sittingBody());
    EXPECT_EQ(order(qmStaticStrength::Sitting, kOneSitePerSegment),
              joined({kUpperBody,
                      {"right_upper_leg.proximal", "right_lower_leg.proximal", "left_upper_leg.proximal",
                       "left_lower_leg.proximal"}}));
}

// ---- Printing

TEST_F(Compute, PrintsNothingUnlessAsked)
{
    load(sittingBody());
    ::testing::internal::CaptureStdout();
    for (const Strategy strategy : kAllStrategies)
        compute(strategy);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

// The right side prints every step, the left one only what both sides print. A walked segment's weight comes first.
TEST_F(Compute, SittingPrintsItsStepsInOrder)
{
    load(sittingBody());
    const std::string output = printsOf(qmStaticStrength::Sitting);
    EXPECT_EQ(labelsOf(output), joined({{"Sitting Mode"},
                                        std::vector<std::string>(9, "wvec"),
                                        {"upperbodyforce"},
                                        {"wvec", "Upper Leg Moments", "Upper leg Forces"},
                                        {"wvec", "Lower Leg Moments", "Lower leg Forces"},
                                        {"preTotal Moment", "extra Moment", "Total Moment", "totalSegmentLoads",
                                         "Hip Force", "Hip Moment ", "Ankle Force", "Ankle Moment "},
                                        {"wvec", "wvec", "totalSegmentLoads", "Hip Force", "Hip Moment ", "Ankle Force",
                                         "Ankle Moment "}}));
    // exact in six decimals
    for (const char* line :
         {"Sitting Mode\n", "\nupperbodyforce[0.000000][-14.500000][0.000000]\n",
          "\nUpper leg Forces[0.000000][-8.000000][0.000000]\n", "\nLower leg Forces[0.000000][-4.000000][0.000000]\n",
          "\nextra Moment[160.000000][0.000000][40.000000]\n", "\ntotalSegmentLoads[0.000000][-12.000000][0.000000]\n",
          "\nAnkle Moment [0.000000][0.000000][0.000000]\n"})
        EXPECT_NE(output.find(line), std::string::npos) << line << "in\n" << output;
}

// The numbers behind the labels: moments of the legs in N·m, the totals in kgf·cm, and the hip's moment before it is
// kept times 0.01.
TEST_F(Compute, SittingPrintsTheDerivedNumbers)
{
    load(sittingBody());
    const std::string output = printsOf(qmStaticStrength::Sitting);
    const auto expectPrinted = [&](const char* label, const std::array<double, 3>& expected, double bound) {
        const std::size_t at = output.find(std::string("\n") + label + "[");
        ASSERT_NE(at, std::string::npos) << label;
        float x, y, z;
        ASSERT_EQ(std::sscanf(output.c_str() + at + 1 + std::string(label).size(), "[%f][%f][%f]", &x, &y, &z), 3);
        SCOPED_TRACE(label);
        expectNear(qVector(x, y, z), expected, bound + 1e-6);   // six decimals are printed
    };
    expectPrinted("Upper Leg Moments", {160 * kNm, 0, 40 * kNm}, roundingBound(4, 160 * kNm));
    expectPrinted("Lower Leg Moments", {0, 0, 20 * kNm}, roundingBound(4, 20 * kNm));
    expectPrinted("preTotal Moment", {160, 0, 60}, roundingOfT());
    expectPrinted("Total Moment", {0, 0, 20}, roundingOfT());
    expectPrinted("Hip Force", {0, -1.0 / 3, 0}, roundingOfT() / 60 + roundingBound(4, 1));
    expectPrinted("Hip Moment ", {-40.0 / 9, -80.0 / 9, 80.0 / 9}, roundingOfT() + roundingBound(6, 40));
    expectPrinted("Ankle Force", {0, -35.0 / 3, 0}, roundingOfT() / 60 + roundingBound(4, 12));
}

// The way back to kgf·cm is formed in double and narrowed once: a torque of 10 000 N·m about y at the hip, where
// nothing else turns about y, shows the factor's last bit in the printed total.
TEST_F(Compute, SittingTurnsMomentsBackByAFactorNarrowedOnce)
{
    load(sittingBody());
    qVector torque(0, 10000, 0);
    analysis->setDefinedTorque(joint("right_hip"), torque);
    const std::string output = printsOf(qmStaticStrength::Sitting);
    const std::size_t at = output.find("\npreTotal Moment[");
    ASSERT_NE(at, std::string::npos);
    float x, y, z;
    ASSERT_EQ(std::sscanf(output.c_str() + at, "\npreTotal Moment[%f][%f][%f]", &x, &y, &z), 3);
    const float factor = static_cast<float>(1.0 / (double(980.665f) * 0.0001));
    EXPECT_EQ(y, 10000.0f * factor);
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
