// Support split: how the load above the pelvis is shared, and who is asked for a share.
#include "AnalysisTest.h"
#include "Chance.h"
#include "NaiveAnalysis.h"
#include "PrivateMembers.h"

#include <cmath>
#include <cstring>

using ::testing::ElementsAre;
using ::testing::FloatEq;

struct SplitMember {
    using type = qmStaticStrength::Strategy (qmStaticStrength::*)();
    friend type get(SplitMember);
};
template struct Expose<SplitMember, &qmStaticStrength::calculate_split>;

struct AskMember {
    using type = float (qmStaticStrength::*)(qcJointImp*, int, const char*);
    friend type get(AskMember);
};
template struct Expose<AskMember, &qmStaticStrength::get_split_factor>;

struct SharesMember {
    using type = float (qmStaticStrength::*)[4];
    friend type get(SharesMember);
};
template struct Expose<SharesMember, &qmStaticStrength::splitFactors>;

struct L5Member {
    using type = qcSegmentImp* qmStaticStrength::*;
    friend type get(L5Member);
};
template struct Expose<L5Member, &qmStaticStrength::l5Segment>;

namespace {

using Strategy = qmStaticStrength::Strategy;

class SupportSplit : public AnalysisTest {
protected:
    // The small body with the supports where a test wants them.
    void build(const SmallFigure& body)
    {
        analyses.clear();
        scene = std::make_unique<qcScene>();
        load(body);
        for (int i = 0; i < 4; ++i)
            shares()[i] = float(11 * (i + 1));   // 11, 22, 33, 44: nobody's share
    }
    static SmallFigure bodyWith(const std::vector<std::pair<std::string, SmallFigure::Vector>>& places)
    {
        SmallFigure body = smallBody();
        for (const auto& [key, place] : places)
            for (nlohmann::json& site : body.document()["sites"])
                if (site["key"] == key)
                    site["transform"][3] = {place[0], place[1], place[2], 1};
        return body;
    }
    void buildKnees(double right, double left)
    {
        SmallFigure body = smallBody();
        for (nlohmann::json& joint : body.document()["joints"]) {
            if (joint["name"] == "right_knee")
                joint["angles"] = {right};
            if (joint["name"] == "left_knee")
                joint["angles"] = {left};
        }
        build(body);
        analysis->setStrategy(qmStaticStrength::Walking);
    }

    float (&shares())[4] { return analysis->*get(SharesMember()); }
    std::array<float, 4> allShares() { return {shares()[0], shares()[1], shares()[2], shares()[3]}; }
    Strategy split(Strategy strategy)
    {
        analysis->setStrategy(strategy);
        return split();
    }
    Strategy split() { return callPrivate<SplitMember>(*analysis); }
    qcSegment*& l5() { return analysis->*get(L5Member()); }
};

const std::string kBalance = "lower_torso.balance_point";

// ---- Two feet

// The feet at x = -10 and 10, the balance point at x = 5, so dRight = 15 and dLeft = 5:
//   right = 5 / 20 = 0.25, left = 0.75; the nearer left foot carries more
TEST_F(SupportSplit, TwoFeetShareByTheOtherFootsDistance)
{
    build(bodyWith({{kBalance, {5, 100, 5}}}));
    EXPECT_EQ(split(qmStaticStrength::TwoFeet), qmStaticStrength::TwoFeet);
    EXPECT_THAT(allShares(), ElementsAre(0.75f, 0.25f, 33, 44));   // the hands' shares are left alone
    build(bodyWith({{kBalance, {-5, 100, 5}}}));                   // the mirrored body
    split(qmStaticStrength::TwoFeet);
    EXPECT_THAT(allShares(), ElementsAre(0.25f, 0.75f, 33, 44));
}

TEST_F(SupportSplit, FootUnderTheBalancePointCarriesAll)
{
    build(bodyWith({{kBalance, {-10, 100, 5}}}));
    split(qmStaticStrength::TwoFeet);
    EXPECT_THAT(allShares(), ElementsAre(0, 1, 33, 44));
    build(bodyWith({{kBalance, {10, 100, 5}}}));
    split(qmStaticStrength::TwoFeet);
    EXPECT_THAT(allShares(), ElementsAre(1, 0, 33, 44));
}

// Only the distance across gravity counts: in the plane dRight = |(6, 8)| = 10, dLeft = |(-18, 24)| = 30, at whatever
// height the points lie. Right 30 / 40.
TEST_F(SupportSplit, HeightDoesNotCount)
{
    for (const double height : {0.0, 50.0, -300.0}) {
        build(bodyWith({{kBalance, {0, 2 * height, 0}},
                        {"right_foot.sole", {6, height, 8}},
                        {"left_foot.sole", {-18, -height, 24}}}));
        split(qmStaticStrength::TwoFeet);
        EXPECT_THAT(allShares(), ElementsAre(FloatEq(0.25f), FloatEq(0.75f), 33, 44)) << height;
    }
}

// Gravity along -x, of any strength: distances in y and z count, x does not. dRight = 10, dLeft = 30.
TEST_F(SupportSplit, DistancesAreTakenAcrossGravity)
{
    build(bodyWith({{kBalance, {7, 0, 0}}, {"right_foot.sole", {90, 6, 8}}, {"left_foot.sole", {-50, -18, 24}}}));
    analysis->setGravity(qVector(-3, 0, 0));
    shares()[2] = 33;
    shares()[3] = 44;
    split(qmStaticStrength::TwoFeet);
    EXPECT_THAT(allShares(), ElementsAre(FloatEq(0.25f), FloatEq(0.75f), 33, 44));
}

// Gravity along (0, -3, -4), its unit vector (0, -0.6, -0.8). The right foot lies at (3, 0, 0) + 10 n, the left one at
// (0, 4, -3) · 2 - 5 n from the balance point: 3 and 10 cm across gravity. Right 10 / 13, left 3 / 13.
TEST_F(SupportSplit, DistancesAreTakenAcrossSlantingGravity)
{
    build(bodyWith({{kBalance, {0, 0, 0}}, {"right_foot.sole", {3, -6, -8}}, {"left_foot.sole", {0, 8 + 3, -6 + 4}}}));
    analysis->setGravity(qVector(0, -3, -4));
    split(qmStaticStrength::TwoFeet);
    // at most 8 roundings of coordinates up to 14 cm in each distance, over 13 cm
    EXPECT_NEAR(double(shares()[1]), 10.0 / 13, roundingBound(16, 14.0 / 13));
    EXPECT_NEAR(double(shares()[0]), 3.0 / 13, roundingBound(16, 14.0 / 13));
}

// The quotient is rounded to single precision, and the complement of what is stored is rounded again:
// distances 2 and 1 make 1/3 and 1 - float(1/3).
TEST_F(SupportSplit, LeftShareIsTheComplementOfTheStoredRightShare)
{
    build(bodyWith({{kBalance, {0, 100, 5}}, {"right_foot.sole", {-20, 0, 5}}, {"left_foot.sole", {10, 0, 5}}}));
    split(qmStaticStrength::TwoFeet);
    const float right = 10.0f / 30.0f;
    EXPECT_EQ(shares()[1], right);
    EXPECT_EQ(shares()[0], static_cast<float>(1.0 - double(right)));
}

// Both feet under the balance point: 0 / 0, stored as it comes out.
TEST_F(SupportSplit, FeetBothUnderTheBalancePointAreNotGuarded)
{
    build(bodyWith({{kBalance, {1, 100, 5}}, {"right_foot.sole", {1, 0, 5}}, {"left_foot.sole", {1, 0, 5}}}));
    EXPECT_EQ(split(qmStaticStrength::TwoFeet), qmStaticStrength::TwoFeet);
    EXPECT_TRUE(std::isnan(shares()[1]));
    EXPECT_TRUE(std::isnan(shares()[0]));
}

// Nothing to share by is no number either, and no crash.
TEST_F(SupportSplit, MissingSupportsGiveNoNumber)
{
    for (const char* missing : {"reference", "foot", "hand", "knee"}) {
        SmallFigure body = smallBody();
        if (std::string(missing) == "reference")
            body.document()["reference_site"] = nullptr;
        else if (std::string(missing) == "knee")
            body.document()["right"]["knee"] = nullptr;
        else
            body.document()["left"][std::string(missing) + "_site"] = nullptr;
        build(body);
        EXPECT_EQ(split(qmStaticStrength::TwoFeet), qmStaticStrength::TwoFeet);
        const bool feetMissing = missing[0] == 'r' || missing[0] == 'f';
        EXPECT_EQ(std::isnan(shares()[0]) && std::isnan(shares()[1]), feetMissing) << missing;
        EXPECT_EQ(split(qmStaticStrength::HandsAndKnees), qmStaticStrength::HandsAndKnees);
        const bool kneesMissing = missing[0] == 'r' || missing[0] == 'k';
        const bool handsMissing = missing[0] == 'r' || missing[0] == 'h';
        EXPECT_EQ(std::isnan(shares()[0]) && std::isnan(shares()[1]), kneesMissing) << missing;
        EXPECT_EQ(std::isnan(shares()[2]) && std::isnan(shares()[3]), handsMissing) << missing;
    }
}

// Each point is seen along gravity by itself, and then the distances are taken. Subtracting first would be the same but
// for the rounding, which the numbers here tell apart.
//   p' = p - (p · n) n        right = |B' - R'| / (|A' - R'| + |B' - R'|)
class ProjectedPoints : public SupportSplit {
protected:
    using Vector = Triple<float>;

    static Vector of(const qVector& v) { return {v[0], v[1], v[2]}; }
    static float shareOfRight(const qVector& gravity, const qVector& R, const qVector& A, const qVector& B)
    {
        const Vector n = unit(of(gravity));
        const auto seen = [&n](const qVector& p) { return of(p) - n * dot(of(p), n); };
        const float dRight = length(seen(A) - seen(R)), dLeft = length(seen(B) - seen(R));
        return dLeft / (dRight + dLeft);
    }
    static float shareIfSubtractedFirst(const qVector& gravity, const qVector& R, const qVector& A, const qVector& B)
    {
        const auto difference = [&R](qVector p) {
            p.sub(R);
            return p;
        };
        return shareOfRight(gravity, {0, 0, 0}, difference(A), difference(B));
    }
    static SmallFigure::Vector placeOf(const qVector& v) { return {v[0], v[1], v[2]}; }

    // The first one is known to tell the two ways apart; of the others many do.
    static std::vector<qVector> gravities()
    {
        std::vector<qVector> all = {qVector(30, -970, 55)};   // cm/s²
        Chance chance(1);
        while (all.size() < 100) {
            const std::array<double, 3> drawn = chance.vector(1000);
            all.emplace_back(static_cast<float>(drawn[0]), static_cast<float>(drawn[1]), static_cast<float>(drawn[2]));
        }
        return all;
    }

    const qVector R{1.1f, 90.3f, -2.7f}, A{-11.3f, 0.4f, 7.9f}, B{9.7f, 3.2f, -4.1f};   // balance, right, left, cm
};

TEST_F(ProjectedPoints, OfTheFeetAgreeWithTheTranscriptionInAllBits)
{
    const std::vector<qVector> all = gravities();
    ASSERT_NE(shareOfRight(all[0], R, A, B), shareIfSubtractedFirst(all[0], R, A, B));
    build(bodyWith({{kBalance, placeOf(R)}, {"right_foot.sole", placeOf(A)}, {"left_foot.sole", placeOf(B)}}));
    for (const qVector& gravity : all) {
        analysis->setGravity(gravity);
        split(qmStaticStrength::TwoFeet);
        const float share = shareOfRight(gravity, R, A, B);
        EXPECT_EQ(shares()[1], share);
        EXPECT_EQ(shares()[0], static_cast<float>(1.0 - double(share)));
    }
}

TEST_F(ProjectedPoints, OfKneesAndHandsAgreeWithTheTranscriptionInAllBits)
{
    const qVector rightHand(-14.3f, 2.6f, 61.7f), leftHand(20.9f, 5.1f, 48.3f);
    build(bodyWith({{kBalance, placeOf(R)},
                    {"right_upper_leg.distal", placeOf(A)},
                    {"left_upper_leg.distal", placeOf(B)},
                    {"right_hand.right_palmcenter", placeOf(rightHand)},
                    {"left_hand.left_palmcenter", placeOf(leftHand)}}));
    int told = 0;
    for (const qVector& gravity : gravities()) {
        analysis->setGravity(gravity);
        split(qmStaticStrength::HandsAndKnees);
        const float knee = shareOfRight(gravity, R, A, B), hand = shareOfRight(gravity, R, rightHand, leftHand);
        EXPECT_THAT(allShares(), ElementsAre(static_cast<float>(1.0 - double(knee)), knee,
                                             static_cast<float>(1.0 - double(hand)), hand));
        told += hand != shareIfSubtractedFirst(gravity, R, rightHand, leftHand);
    }
    EXPECT_GT(told, 20);
}

// Without gravity there is no direction to look along: 0 / 0 in every share that is written, and no message.
TEST_F(SupportSplit, ZeroGravityIsNotGuarded)
{
    build(smallBody());
    analysis->setGravity(qVector(0, 0, 0));
    EXPECT_EQ(split(qmStaticStrength::TwoFeet), qmStaticStrength::TwoFeet);
    EXPECT_TRUE(std::isnan(shares()[0]) && std::isnan(shares()[1]));
    EXPECT_EQ(shares()[2], 33);
    EXPECT_EQ(shares()[3], 44);
    EXPECT_EQ(split(qmStaticStrength::HandsAndKnees), qmStaticStrength::HandsAndKnees);
    for (const float share : allShares())
        EXPECT_TRUE(std::isnan(share));
}

// ---- Walking

TEST_F(SupportSplit, WalkingWithKneesAlikeIsTwoFeetHalfAndHalf)
{
    for (const auto& [right, left] :
         {std::pair<double, double>{0.30, -0.25}, {-0.25, 0.30}, {0, 0}, {-1, 1}, {0, 0.09}}) {
        buildKnees(right, left);
        EXPECT_EQ(split(), qmStaticStrength::TwoFeet) << right << " " << left;
        EXPECT_THAT(allShares(), ElementsAre(0.5f, 0.5f, 33, 44));
    }
}

TEST_F(SupportSplit, WalkingWithTheRightKneeMoreBentStandsOnTheLeftFoot)
{
    for (const auto& [right, left] : {std::pair<double, double>{0.5, 0.1}, {-0.5, 0.1}, {0.5, -0.1}, {0.11, 0}}) {
        buildKnees(right, left);
        EXPECT_EQ(split(), qmStaticStrength::LeftFoot) << right << " " << left;
        EXPECT_THAT(allShares(), ElementsAre(1, 0, 33, 44));
    }
}

TEST_F(SupportSplit, WalkingWithTheLeftKneeMoreBentStandsOnTheRightFoot)
{
    for (const auto& [right, left] : {std::pair<double, double>{0.1, 0.5}, {0.1, -0.5}, {-0.1, 0.5}, {0, 0.11}}) {
        buildKnees(right, left);
        EXPECT_EQ(split(), qmStaticStrength::RightFoot) << right << " " << left;
        EXPECT_THAT(allShares(), ElementsAre(0, 1, 33, 44));
    }
}

// The angles are single-precision: 0.1 rad is 0.100000001 as a float, not less than 0.1; the float below is less.
TEST_F(SupportSplit, WalkingTurnsToOneFootAtATenthOfARadian)
{
    const double atThreshold = double(0.1f), below = double(std::nextafter(0.1f, 0.0f));
    buildKnees(atThreshold, 0);
    EXPECT_EQ(split(), qmStaticStrength::LeftFoot);
    buildKnees(below, 0);
    EXPECT_EQ(split(), qmStaticStrength::TwoFeet);
    buildKnees(0, atThreshold);
    EXPECT_EQ(split(), qmStaticStrength::RightFoot);
    buildKnees(0, below);
    EXPECT_EQ(split(), qmStaticStrength::TwoFeet);
}

// The angles' difference is single-precision too: 0.11 - 0.01 is 0.09999999963 of the floats as they are, and
// 0.1000000015 once rounded, which is not less than 0.1.
TEST_F(SupportSplit, WalkingSubtractsTheAnglesInSinglePrecision)
{
    ASSERT_LT(double(0.11f) - double(0.01f), 0.1);
    buildKnees(0.11, 0.01);
    EXPECT_EQ(split(), qmStaticStrength::LeftFoot);
    buildKnees(0.01, 0.11);
    EXPECT_EQ(split(), qmStaticStrength::RightFoot);
}

// Only the first angle of a knee counts.
TEST_F(SupportSplit, WalkingReadsTheFirstAngle)
{
    SmallFigure body = smallBody();
    for (nlohmann::json& joint : body.document()["joints"])
        if (joint["name"] == "right_knee")
            joint["angles"] = {0.0, 2.0, 2.0};
    build(body);
    EXPECT_EQ(split(qmStaticStrength::Walking), qmStaticStrength::TwoFeet);
}

TEST_F(SupportSplit, SplittingDoesNotChangeTheStrategy)
{
    buildKnees(0.5, 0.1);
    split();
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::Walking);
}

// ---- Hands and knees

// In the floor's plane from the balance point: right knee site 3, left knee site 5 (a share of 5 / 8 and 3 / 8), right
// hand 15, left hand 1 (1 / 16 and 15 / 16). The knees' points are on the upper legs.
TEST_F(SupportSplit, HandsAndKneesShareByPairs)
{
    build(bodyWith({{kBalance, {1, 40, 2}},
                    {"right_upper_leg.distal", {1, 3, 2 - 3}},
                    {"left_upper_leg.distal", {1 + 3, 7, 2 - 4}},
                    {"right_lower_leg.proximal", {500, 0, 0}},
                    {"left_lower_leg.proximal", {500, 0, 0}},
                    {"right_hand.right_palmcenter", {1 - 9, 1, 2 + 12}},
                    {"left_hand.left_palmcenter", {1 + 1, 0, 2}}}));
    EXPECT_EQ(l5(), nullptr);
    EXPECT_EQ(split(qmStaticStrength::HandsAndKnees), qmStaticStrength::HandsAndKnees);
    EXPECT_THAT(allShares(), ElementsAre(0.375f, 0.625f, 0.9375f, 0.0625f));
    EXPECT_EQ(l5(), segment("l5"));
}

TEST_F(SupportSplit, HandsAndKneesTakeTheInboardSiteOfTheKnee)
{
    SmallFigure body = bodyWith(
        {{kBalance, {0, 40, 0}}, {"right_lower_leg.proximal", {1, 0, 0}}, {"left_upper_leg.distal", {3, 0, 0}}});
    for (nlohmann::json& joint : body.document()["joints"])
        if (joint["name"] == "right_knee")
            joint["inboard"] = "right_lower_leg.proximal";
    build(body);
    split(qmStaticStrength::HandsAndKnees);
    EXPECT_THAT(allShares(), ElementsAre(0.25f, 0.75f, 0.5f, 0.5f));
}

TEST_F(SupportSplit, HandsAndKneesMeasureAcrossGravity)
{
    build(bodyWith({{kBalance, {40, 0, 0}},
                    {"right_upper_leg.distal", {9, 3, 0}},
                    {"left_upper_leg.distal", {-9, 0, 1}},
                    {"right_hand.right_palmcenter", {70, 0, 1}},
                    {"left_hand.left_palmcenter", {0, 7, 0}}}));
    analysis->setGravity(qVector(980.665f, 0, 0));
    split(qmStaticStrength::HandsAndKnees);
    EXPECT_THAT(allShares(), ElementsAre(0.75f, 0.25f, 0.125f, 0.875f));
}

TEST_F(SupportSplit, HandsAndKneesWithoutL5HaveNoStopSegment)
{
    SmallFigure body;
    body = smallBody();
    std::string text = body.text();
    for (std::size_t at = 0; (at = text.find("l5", at)) != std::string::npos; at += 2)
        text.replace(at, 2, "l4");
    human = scene->addPosedHuman(text.c_str());
    ASSERT_NE(human, nullptr);
    figure = human->getFigure();
    makeAnalysis();
    ASSERT_EQ(segment("l5"), nullptr);
    l5() = segment("l4");
    split(qmStaticStrength::HandsAndKnees);
    EXPECT_EQ(l5(), nullptr);
}

TEST_F(SupportSplit, OthersLeaveTheStopSegmentAlone)
{
    build(smallBody());
    l5() = segment("t8");
    for (const Strategy strategy : {qmStaticStrength::TwoFeet, qmStaticStrength::Walking, qmStaticStrength::Sitting})
        split(strategy);
    EXPECT_EQ(l5(), segment("t8"));
}

// ---- The others

TEST_F(SupportSplit, OneFootAndSittingWriteNothing)
{
    build(smallBody());
    for (const Strategy strategy : {qmStaticStrength::RightFoot, qmStaticStrength::LeftFoot, qmStaticStrength::Sitting,
                                    qmStaticStrength::SittingNoFeet, qmStaticStrength::N_STRS}) {
        EXPECT_EQ(split(strategy), strategy);
        EXPECT_THAT(allShares(), ElementsAre(11, 22, 33, 44)) << strategy;
    }
}

// ---- Asking for a share

class SplitFactor : public SupportSplit {
protected:
    // Joints of the names that matter, all between two segments; shares 0.125, 0.25, 0.375, 0.5.
    void SetUp() override
    {
        SmallFigure figure;
        figure.segment("a", 0).site("a", "s", {0, 0, 0}).segment("b", 0).site("b", "s", {0, 0, 0});
        for (const char* name :
             {"right_hip", "left_hip", "r", "Right_hip", "hip", "_hip", "r_hip", "x_hip", "right_hip_2", "right_HIP",
              "right_clavicle_joint", "left_clavicle_joint", "_clavicle_joint", "r_clavicle_joint", "x_clavicle_joint",
              "right_clavicle_joint2", "right_clavicle", "waist"})
            figure.joint(name, "a.s", "b.s");
        load(figure);
        for (int i = 0; i < 4; ++i)
            shares()[i] = 0.125f * float(i + 1);
    }
    float ask(const std::string& jointName, const char* name, int mode = 1)
    {
        EXPECT_NE(joint(jointName), nullptr) << jointName;
        const float share = analysis->getSplitFactor(joint(jointName), mode, name);
        EXPECT_EQ(callPrivate<AskMember>(*analysis, joint(jointName), mode, name), share);
        return share;
    }
};

constexpr float kLeftHip = 0.125f, kRightHip = 0.25f, kLeftClavicle = 0.375f, kRightClavicle = 0.5f;

TEST_F(SplitFactor, OfALoadOrAWeightIsAHalfWhateverTheStrategy)
{
    for (int strategy = 0; strategy <= 7; ++strategy) {
        analysis->setStrategy(static_cast<Strategy>(strategy));
        for (const int mode : {2, 3}) {
            EXPECT_EQ(ask("right_hip", "waist", mode), 0.5f);
            EXPECT_EQ(ask("waist", "sole", mode), 0.5f);
            EXPECT_EQ(analysis->getSplitFactor(joint("left_hip"), mode, nullptr), 0.5f);
        }
    }
}

// Any mode but 2 and 3 asks for a stored result's share.
TEST_F(SplitFactor, OfAnyOtherModeIsThatOfAStoredResult)
{
    analysis->setStrategy(qmStaticStrength::TwoFeet);
    for (const int mode : {-1, 0, 1, 4, 100}) {
        EXPECT_EQ(ask("right_hip", "waist", mode), kRightHip) << mode;
        EXPECT_EQ(ask("right_hip", "other", mode), 0) << mode;
    }
}

TEST_F(SplitFactor, OnTwoFeetGoesByTheFirstLetterOfTheJointsName)
{
    analysis->setStrategy(qmStaticStrength::TwoFeet);
    for (const char* right : {"right_hip", "r", "r_hip", "right_hip_2", "right_clavicle_joint"})
        EXPECT_EQ(ask(right, "waist"), kRightHip) << right;
    for (const char* left : {"left_hip", "Right_hip", "hip", "_hip", "x_hip", "waist", "left_clavicle_joint"})
        EXPECT_EQ(ask(left, "waist"), kLeftHip) << left;
}

TEST_F(SplitFactor, OnTwoFeetIsForTheWaistOnly)
{
    analysis->setStrategy(qmStaticStrength::TwoFeet);
    for (const char* name : {"", "Waist", "waist2", "wais", "man.waist", "solar_plexus", "left_hip"})
        EXPECT_EQ(ask("right_hip", name), 0) << name;
}

TEST_F(SplitFactor, OnHandsAndKneesGivesTheHipsTheWaist)
{
    analysis->setStrategy(qmStaticStrength::HandsAndKnees);
    EXPECT_EQ(ask("right_hip", "waist"), kRightHip);
    EXPECT_EQ(ask("left_hip", "waist"), kLeftHip);
    EXPECT_EQ(ask("r_hip", "waist"), kRightHip);
    EXPECT_EQ(ask("x_hip", "waist"), kLeftHip);
    EXPECT_EQ(ask("Right_hip", "waist"), kLeftHip);
    for (const char* other : {"_hip", "hip", "right_hip_2", "right_HIP", "r", "right_clavicle_joint"})
        EXPECT_EQ(ask(other, "waist"), 0) << other;
    for (const char* name : {"solar_plexus", "waist2", ""})
        EXPECT_EQ(ask("right_hip", name), 0) << name;
}

TEST_F(SplitFactor, OnHandsAndKneesGivesTheClaviclesTheSolarPlexus)
{
    analysis->setStrategy(qmStaticStrength::HandsAndKnees);
    EXPECT_EQ(ask("right_clavicle_joint", "solar_plexus"), kRightClavicle);
    EXPECT_EQ(ask("left_clavicle_joint", "solar_plexus"), kLeftClavicle);
    EXPECT_EQ(ask("r_clavicle_joint", "solar_plexus"), kRightClavicle);
    EXPECT_EQ(ask("x_clavicle_joint", "solar_plexus"), kLeftClavicle);
    // exactly 15 letters are too few
    for (const char* other : {"_clavicle_joint", "right_clavicle_joint2", "right_clavicle", "right_hip", "r"})
        EXPECT_EQ(ask(other, "solar_plexus"), 0) << other;
    for (const char* name : {"waist", "solar_plexus2", ""})
        EXPECT_EQ(ask("right_clavicle_joint", name), 0) << name;
}

TEST_F(SplitFactor, OfAStoredResultIsZeroUnderEveryOtherStrategy)
{
    for (const Strategy strategy :
         {qmStaticStrength::RightFoot, qmStaticStrength::LeftFoot, qmStaticStrength::Walking, qmStaticStrength::Sitting,
          qmStaticStrength::SittingNoFeet, qmStaticStrength::N_STRS}) {
        analysis->setStrategy(strategy);
        for (const char* name : {"waist", "solar_plexus"})
            for (const char* jointName : {"right_hip", "left_hip", "right_clavicle_joint", "left_clavicle_joint"})
                EXPECT_EQ(ask(jointName, name), 0) << strategy << jointName << name;
    }
}

TEST_F(SplitFactor, OfNothingOrForNothingIsZero)
{
    for (const Strategy strategy : {qmStaticStrength::TwoFeet, qmStaticStrength::HandsAndKnees}) {
        analysis->setStrategy(strategy);
        EXPECT_EQ(analysis->getSplitFactor(nullptr, 1, "waist"), 0);
        EXPECT_EQ(analysis->getSplitFactor(joint("right_hip"), 1, nullptr), 0);
        EXPECT_EQ(analysis->getSplitFactor(nullptr, 1, nullptr), 0);
    }
}

// The shares of one computation stay until another one writes them: on two feet the hands' shares stay.
TEST_F(SupportSplit, SharesStayUntilTheyAreWrittenAnew)
{
    build(bodyWith({{kBalance, {5, 100, 5}}}));
    analysis->setStrategy(qmStaticStrength::TwoFeet);
    analysis->compute();
    EXPECT_EQ(analysis->getSplitFactor(joint("right_hip"), 1, "waist"), 0.25f);
    analysis->setStrategy(qmStaticStrength::SittingNoFeet);
    analysis->compute();
    EXPECT_THAT(allShares(), ElementsAre(0.75f, 0.25f, 33, 44));
    analysis->setStrategy(qmStaticStrength::TwoFeet);
    EXPECT_EQ(analysis->getSplitFactor(joint("right_hip"), 1, "waist"), 0.25f);
}

}   // namespace
