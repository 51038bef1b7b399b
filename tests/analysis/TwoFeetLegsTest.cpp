// Two-feet legs: hips that share the pelvis by the split factors, and legs computed from hip to ankle.
#include "TwoFeetLegsSupport.h"

#include <functional>

using ::testing::ElementsAre;

namespace {

// ---- Hips and legs without loads

// About the left hip, z of the moment:
//   the waist 32 at x = -10 and half the torso, 5, at x = -10; at the right hip, x = -20, upward, the right's
//   share of the waist, 24, and half the torso:   320 + 50 - 480 - 100 = -210
//   force   -32 · 0.25 - 5 = -13
// About the right hip, with the left's share of the waist, 8, at x = 20: -320 - 50 + 160 + 100 = -110
//   force   -32 · 0.75 - 5 = -29
// The legs are straight: each joint takes on the segment above it, and no moment.
TEST_F(TwoFeetLegs, HipsShareThePelvisAndLegsTakeOnTheirWeights)
{
    load(smallBody());
    legs({0, -32, 0});
    expectResult("left_hip", {0, -13, 0}, {0, 0, -210 * S});
    expectResult("left_knee", {0, -21, 0}, {0, 0, 0});
    expectResult("left_ankle", {0, -25, 0}, {0, 0, 0});
    expectResult("right_hip", {0, -29, 0}, {0, 0, -110 * S});
    expectResult("right_knee", {0, -37, 0}, {0, 0, 0});
    expectResult("right_ankle", {0, -41, 0}, {0, 0, 0});
}

TEST_F(TwoFeetLegs, ChangedSharesAreTheMirrorImage)
{
    load(smallBody());
    share(0.75f, 0.25f);
    legs({0, -32, 0});
    expectResult("right_hip", {0, -13, 0}, {0, 0, 210 * S});
    expectResult("right_knee", {0, -21, 0}, {0, 0, 0});
    expectResult("left_hip", {0, -29, 0}, {0, 0, 110 * S});
    expectResult("left_ankle", {0, -41, 0}, {0, 0, 0});
}

// A force across: (3, -32, 5) at (-10, 10, 0) from the left hip, (-2.25, 24, -3.75) at (-20, 0, 0):
//   (-10, 10, 0) × (3, -32, 5) = (50, 50, 290)        (-20, 0, 0) × (-2.25, 24, -3.75) = (0, -75, -480)
//   the torso as before + 50 - 100: (50, -25, -240)
// From the hip, 40 cm above the knee, (0.75, -13, 1.25): (0, 40, 0) × it = (50, 0, -30). The ankle has the same
// lever of 40 cm and a force that the upper leg's weight alone has changed: (50, 0, -30) again.
TEST_F(TwoFeetLegs, AForceAcrossTurnsEveryJoint)
{
    load(smallBody());
    legs({3, -32, 5});
    expectResult("left_hip", {0.75, -13, 1.25}, {50 * S, -25 * S, -240 * S});
    expectResult("left_knee", {0.75, -21, 1.25}, {50 * S, 0, -30 * S});
    expectResult("left_ankle", {0.75, -25, 1.25}, {50 * S, 0, -30 * S});
    expectResult("right_hip", {2.25, -29, 3.75}, {50 * S, -25 * S, (-350 - 50 + 160 + 100) * S});
    expectResult("right_ankle", {2.25, -41, 3.75}, {150 * S, 0, -90 * S});
}

// Knees 30 cm forward, centres of mass of the upper legs at z = 15, of the lower ones at z = 20.
//   left knee    13 at z = -30, 8 at z = -15: -390 - 120 = -510
//   left ankle   21 at z = 30, 4 at z = 20: 630 + 80 = 710; the knee's own moment is not passed on
TEST_F(TwoFeetLegs, BentLegsPassOnForcesNotMoments)
{
    SmallFigure body = smallBody();
    for (const auto& [side, x] : {std::pair<std::string, double>{"right", -10}, {"left", 10}}) {
        moveSite(body, side + "_upper_leg.distal", {x, 50, 30});
        part(body, "segments", "name", side + "_upper_leg")["transform"][3] = {x, 90, 15, 1};
        part(body, "segments", "name", side + "_lower_leg")["transform"][3] = {x, 50, 20, 1};
    }
    load(body);
    legs({0, -32, 0});
    expectResult("left_knee", {0, -21, 0}, {-510 * S, 0, 0});
    expectResult("left_ankle", {0, -25, 0}, {710 * S, 0, 0});
    expectResult("right_knee", {0, -37, 0}, {-(30 * 29 + 15 * 8) * S, 0, 0});
    expectResult("right_ankle", {0, -41, 0}, {(30 * 37 + 20 * 4) * S, 0, 0});
}

// Without it: left -10 · -5 - 20 · 5 = -50, right +50.
TEST_F(TwoFeetLegs, AWaistWithoutAResultCountsNothing)
{
    load(smallBody());
    legs();
    expectResult("left_hip", {0, -5, 0}, {0, 0, -50 * S});
    expectResult("right_hip", {0, -5, 0}, {0, 0, 50 * S});
    expectResult("left_ankle", {0, -17, 0}, {0, 0, 0});
    EXPECT_EQ(resultOf("waist").status, 0);

    const std::string without = six();
    joint("waist")->setProperty("SSTR_Force_Moment", number(1));   // nothing that can be read
    legs();
    EXPECT_EQ(six(), without);
}

TEST_F(TwoFeetLegs, TheWaistsMomentCountsNothing)
{
    load(smallBody());
    legs({3, -32, 5});
    const std::string before = six();
    legs({3, -32, 5}, {100, 200, -300});
    EXPECT_EQ(six(), before);
    EXPECT_THAT(components(resultOf("waist").moment), ElementsAre(100, 200, -300));   // only read
}

// The shares are asked for as they stand, for the waist: zero but on two feet (and on hands and knees, at joints
// named "..._hip"). Without a share the hips have half the torso alone, and the moments miss what the other
// hip would take: left 320 + 50 - 100 = 270.
TEST_F(TwoFeetLegs, SharesFollowTheStrategy)
{
    load(smallBody());
    legs({0, -32, 0});
    const std::string twoFeet = six();
    for (const auto strategy : {qmStaticStrength::RightFoot, qmStaticStrength::Walking, qmStaticStrength::Sitting}) {
        analysis->setStrategy(strategy);
        legs();
        expectResult("left_hip", {0, -5, 0}, {0, 0, 270 * S});
        expectResult("right_hip", {0, -5, 0}, {0, 0, -270 * S});
    }
    analysis->setStrategy(qmStaticStrength::HandsAndKnees);
    legs();
    EXPECT_EQ(six(), twoFeet);
}

// Twice the weights, and the waist's force stays; then weights of 10, 8 and 4 kgf to the right.
//   hip    (x, y) from it × (-w, 0): y w; half the torso at y = 5: 25; its opposite at the other hip, y = 0: 0
//   knee   the hip's 5 at y = 40, the upper leg's 8 at y = 20: 360; ankle 13 at 40, 4 at 20: 600
TEST_F(TwoFeetLegs, WeightsFollowGravity)
{
    load(smallBody());
    analysis->setGravity({0, -2 * 980.665f, 0});
    legs({0, -32, 0});
    EXPECT_FLOAT_EQ(up("left_hip"), -8 - 10);
    EXPECT_FLOAT_EQ(up("left_ankle"), -18 - 16 - 8);

    human->getWaistJoint()->removeProperty("SSTR_Force_Moment");
    analysis->setGravity({-980.665f, 0, 0});
    legs();
    for (const std::string side : {"left_", "right_"}) {
        expectResult((side + "hip").c_str(), {-5, 0, 0}, {0, 0, 25 * S});
        expectResult((side + "knee").c_str(), {-13, 0, 0}, {0, 0, 360 * S});
        expectResult((side + "ankle").c_str(), {-17, 0, 0}, {0, 0, 600 * S});
    }
}

// No threshold: on a massless figure without loads six zero results are stored; and small ones as they are.
TEST_F(TwoFeetLegs, ResultsAreStoredWhateverTheirSize)
{
    load(smallBody());
    makeWeightless();
    legs();
    for (const char* name : kSix)
        expectResult(name, {0, 0, 0}, {0, 0, 0}, 0);
    legs({0, -0.001f, 0});
    EXPECT_FLOAT_EQ(up("left_ankle"), -0.00025f);
    EXPECT_THAT(components(resultOf("left_ankle").moment), ElementsAre(0, 0, 0));
}

// ---- Loads on the lower torso

// 16 kgf at (0, 95, 0) count whole in each moment: left (-10)(-16) = +160, right -160; and as H, 8 kgf, half of
// it back at the other hip: left (-20)(4) = -80, right +80. The forces lose a quarter of it.
TEST_F(TwoFeetLegs, ATorsoLoadIsWholeInTheMomentsAndAQuarterLessInTheForces)
{
    load(smallBody());
    analysis->setLoad(site("lower_torso.center_of_mass"), {0, -16, 0});
    legs({0, -32, 0});
    expectResult("left_hip", {0, -13 + 4, 0}, {0, 0, (-210 + 160 - 80) * S});
    expectResult("right_hip", {0, -29 + 4, 0}, {0, 0, (-110 - 160 + 80) * S});
    expectResult("left_ankle", {0, -25 + 4, 0}, {0, 0, 0});
    expectResult("right_knee", {0, -37 + 4, 0}, {0, 0, 0});
}

// Two loads add up: the forces lose a quarter of each. (4, -8, 2) at (0, 90, 0), from the left hip:
//   (-10, 0, 0) × (4, -8, 2) = (0, 20, 80); a quarter less, (-1, 2, -0.5), at (-20, 0, 0): (0, -10, -40)
TEST_F(TwoFeetLegs, TorsoLoadsAddUp)
{
    load(smallBody());
    analysis->setLoad(site("lower_torso.center_of_mass"), {0, -16, 0});
    analysis->setLoad(site("lower_torso.h_point"), {4, -8, 2});
    legs({0, -32, 0});
    expectResult("left_hip", {-1, -13 + 6, -0.5}, {0, 10 * S, (-210 + 160 - 80 + 80 - 40) * S});
    expectResult("right_hip", {-1, -29 + 6, -0.5}, {0, -10 * S, (-110 - 160 + 80 - 80 + 40) * S});
}

// Readable or not, loads at the sites of the waist and of the hips are not looked at; on every other site they count.
TEST_F(TwoFeetLegs, LoadsAtTheWaistsAndTheHipsSitesAreLeftOut)
{
    load(smallBody());
    legs({0, -32, 0});
    const std::string before = six();
    for (const char* name : {"distal", "left_hip", "right_hip"}) {
        qcSite* jointSite = site(std::string("lower_torso.") + name);
        analysis->setLoad(jointSite, {1, -16, 3});
        legs();
        EXPECT_EQ(six(), before) << name;
        jointSite->setProperty("SSTR_Load", number(1));
        legs();
        EXPECT_EQ(six(), before) << name;
    }
    for (const char* name : {"proximal", "h_point", "center_of_mass", "balance_point"}) {
        qcSite* other = site(std::string("lower_torso.") + name);
        analysis->setLoad(other, {0, -16, 0});
        legs();
        EXPECT_FLOAT_EQ(up("left_hip"), -13 + 4) << name;
        analysis->removeLoad(other);
    }
}

// The sites left out are the joints': with the waist elsewhere, the site "distal" is one like any other. The share is
// asked for under the name "waist" all the same.
TEST_F(TwoFeetLegs, TheTorsosSitesAreLeftOutByTheirJoints)
{
    SmallFigure body = smallBody();
    body.site("lower_torso", "top", {0, 100, 0}).joint("other_waist", "lower_torso.top", "l5.proximal");
    load(body.waist("other_waist"));
    analysis->setLoad(site("lower_torso.top"), {0, -4, 0});
    analysis->setLoad(site("lower_torso.distal"), {0, -16, 0});
    legs({0, -32, 0});
    EXPECT_FLOAT_EQ(up("right_hip"), -29 + 4);
}

// ---- Loads on the legs

// 6 kgf on the right upper leg 5 cm to the right of the knee: twice in the knee's force and in all below, once in its
// moment, (-5)(-6) = 30. The straight lower leg adds none.
TEST_F(TwoFeetLegs, ALegsLoadCountsTwiceInTheForceAndOnceInTheMoment)
{
    SmallFigure body = smallBody();
    body.site("right_upper_leg", "pocket", {-15, 60, 0}).site("left_lower_leg", "shin", {10, 30, 8});
    load(body);
    analysis->setLoad(site("right_upper_leg.pocket"), {0, -6, 0});
    analysis->setLoad(site("left_lower_leg.shin"), {0, 0, -5});
    legs({0, -32, 0});
    expectResult("right_hip", {0, -29, 0}, {0, 0, -110 * S});
    expectResult("right_knee", {0, -37 - 12, 0}, {0, 0, 30 * S});
    expectResult("right_ankle", {0, -41 - 12, 0}, {0, 0, 0});
    // 5 kgf backward, 20 cm above the ankle: (0, 20, 8) × (0, 0, -5) = (-100, 0, 0)
    expectResult("left_knee", {0, -21, 0}, {0, 0, 0});
    expectResult("left_ankle", {0, -25, -10}, {-100 * S, 0, 0});
}

// By their names, whatever joint they carry; readable or not.
TEST_F(TwoFeetLegs, LoadsAtProximalAndDistalOfALegAreLeftOut)
{
    load(smallBody());
    legs({3, -32, 5});
    const std::string before = six();
    for (const char* segment : {"right_upper_leg", "right_lower_leg", "left_upper_leg", "left_lower_leg"})
        for (const char* name : {".proximal", ".distal"}) {
            qcSite* end = site(std::string(segment) + name);
            analysis->setLoad(end, {1, -16, 3});
            legs();
            EXPECT_EQ(six(), before) << segment << name;
            end->setProperty("SSTR_Load", text("no load"));
            legs();
            EXPECT_EQ(six(), before) << segment << name;
        }
}

TEST_F(TwoFeetLegs, ALegsJointSiteOfAnotherNameIsNotLeftOut)
{
    SmallFigure body = smallBody();
    body.site("left_upper_leg", "knee", {10, 50, 0})
        .joint("other_knee", "left_upper_leg.knee", "left_lower_leg.proximal");
    load(body.role("left", "knee", "other_knee"));
    analysis->setLoad(site("left_upper_leg.knee"), {0, -6, 0});
    analysis->setLoad(site("left_upper_leg.distal"), {0, -7, 0});
    legs({0, -32, 0});
    expectResult("other_knee", {0, -21 - 12, 0}, {0, 0, 0});
}

// Loads elsewhere, loads with offsets, torques and the feet's weights have no part.
TEST_F(TwoFeetLegs, NothingElseCounts)
{
    load(smallBody());
    legs({3, -32, 5});
    const std::string before = six();
    for (const char* key : {"l5.distal", "right_foot.sole", "left_foot.proximal", "right_toes.proximal", "t8.proximal"})
        analysis->setLoad(site(key), {1, -20, 3});
    for (const char* key : {"lower_torso.h_point", "right_upper_leg.distal"})
        analysis->setLoadWithOffset(site(key), {1, 2, 3}, {4, 5, 6});
    qVector torque(10, 20, 30);
    for (const char* name : kSix)
        analysis->setDefinedTorque(joint(name), torque);
    for (const char* name : {"left_foot", "right_foot", "left_toes", "l5"})
        segment(name)->setMass(55555);
    figure->setProperty("RightZelHandLoads", text("50"));
    legs();
    EXPECT_EQ(six(), before);
    for (const char* name : {"t8_l5", "right_ball", "left_shoulder"})
        EXPECT_EQ(resultOf(name).status, 0) << name;
}

// ---- Kinds of loads

// The segments' axes are turned by x to z, y to x, z to y, the site's own otherwise: the load (1, 2, 3) is
// (2, 3, 1) in the world, and it acts at the site's place.
TEST_F(TwoFeetLegs, ALocalLoadIsTurnedByItsSegmentAndNotMoved)
{
    SmallFigure body = smallBody();
    for (const auto& [name, position] : {std::pair<const char*, Vector>{"lower_torso", {0, 90, 0}},
                                         {"left_upper_leg", {10, 90, 0}},
                                         {"right_lower_leg", {-10, 50, 0}}})
        part(body, "segments", "name", name)["transform"] = {
            {0, 0, 1, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}, {position[0], position[1], position[2], 1}};
    const SmallFigure::Rows own = {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}};
    const std::vector<std::string> owners = {"lower_torso", "left_upper_leg", "right_lower_leg"};
    for (const std::string& name : owners)
        body.site(name, "pad", {-3, 77, 11}, own);
    load(body);
    for (const std::string& name : owners)
        analysis->setLoad(site(name + ".pad"), {2, 3, 1}, 0);
    legs({3, -32, 5});
    const std::string global = six();
    for (const std::string& name : owners)
        analysis->setLoad(site(name + ".pad"), {1, 2, 3}, 1);
    legs();
    EXPECT_EQ(six(), global);
    for (const std::string& name : owners)
        analysis->removeLoad(site(name + ".pad"));
    legs();
    EXPECT_NE(six(), global);
}

// A weight is the force that it was stored with.
TEST_F(TwoFeetLegs, AWeightCountsAsStored)
{
    load(smallBody());
    qcSite* hPoint = site("lower_torso.h_point");
    hPoint->setProperty("SSTR_Load", list({vector(0, -16, 0), text("weight"), number(5)}));
    legs({0, -32, 0});
    EXPECT_FLOAT_EQ(up("left_hip"), -13 + 4);
    analysis->setWeightLoad(hPoint, 16000);
    legs();
    EXPECT_FLOAT_EQ(up("left_hip"), -13 + 4);
}

// Each site's own name tells the order: the torso's sites for the left hip, again for the right one, then the left
// upper and lower leg, the right upper and lower leg. What cannot be read is skipped.
TEST_F(TwoFeetLegs, AnUnreadableLoadIsReportedWheneverItIsMetAndSkipped)
{
    SmallFigure body = smallBody();
    for (const char* name : {"left_upper_leg", "left_lower_leg", "right_upper_leg", "right_lower_leg"})
        body.site(name, std::string(name) + "_a", {1, 2, 3}).site(name, std::string(name) + "_b", {1, 2, 3});
    load(body);
    analysis->setLoad(site("lower_torso.proximal"), {0, -8, 0});
    analysis->setLoad(site("left_upper_leg.left_upper_leg_a"), {0, -8, 0});
    legs({3, -32, 5});
    const std::string before = six();

    std::vector<std::string> expected;
    const auto spoil = [&](const std::string& segment, const std::string& name, const qcValue& value) {
        site(segment + "." + name)->setProperty("SSTR_Load", value);
        expected.push_back("StaticStrength ERROR: illegal load at site " + name);
    };
    for (int hip = 0; hip < 2; ++hip) {
        spoil("lower_torso", "h_point", number(1));
        spoil("lower_torso", "center_of_mass", list({vector(0, -1, 0)}));
        spoil("lower_torso", "balance_point", list({text("global"), vector(0, -1, 0)}));
    }
    spoil("left_upper_leg", "left_upper_leg_b", list({vector(0, -1, 0), text("Global")}));
    for (const std::string name : {"left_lower_leg", "right_upper_leg", "right_lower_leg"}) {
        spoil(name, name + "_a", text("global"));
        spoil(name, name + "_b", qcValue());
    }
    legs();
    EXPECT_EQ(log.takeTexts(), expected);
    EXPECT_EQ(six(), before);
}

// ---- One joint of a leg

struct Leg {
    qVector inForce{0, 0, 0}, inPoint{0, 0, 0};
    qVector force{77, 77, 77}, moment{77, 77, 77}, point{77, 77, 77};   // what an earlier joint left
};

// The knee at (10, 50, 0): 8 kgf of the upper leg above it, and what comes in, (3, -20, 0) at (12, 90, 0):
//   (2, 40, 0) × (3, -20, 0) = (0, 0, -160)
TEST_F(TwoFeetLegs, ALegJointStoresAndHandsOnItsSums)
{
    load(smallBody());
    Leg leg;
    leg.inForce = {3, -20, 0};
    leg.inPoint = {12, 90, 0};
    callPrivate<LegJoint>(*analysis, joint("left_knee"), segment("left_upper_leg"), leg.inForce, leg.inPoint, leg.force,
                          leg.moment, leg.point);
    EXPECT_THAT(components(leg.inForce), ElementsAre(3, -20, 0));
    EXPECT_THAT(components(leg.inPoint), ElementsAre(12, 90, 0));
    EXPECT_THAT(components(leg.point), ElementsAre(10, 50, 0));
    expectResult("left_knee", {3, -28, 0}, {0, 0, -160 * S});
    const Result kept = resultOf("left_knee");
    EXPECT_EQ(components(kept.force), components(leg.force));
    EXPECT_EQ(components(kept.moment), components(leg.moment));
    for (const char* name : {"left_hip", "right_hip", "left_ankle", "right_knee", "right_ankle"})
        EXPECT_EQ(resultOf(name).status, 0) << name;
}

// In single precision: the sum of the loads, the same again, what comes in, the weight.
TEST_F(TwoFeetLegs, ALegJointSumsLoadsTwiceThenWhatComesInThenTheWeight)
{
    SmallFigure body = smallBody();
    for (const char* name : {"a", "b", "c"})
        body.site("left_upper_leg", name, {10, 60, 0});
    load(body);
    const auto sum = [this](std::array<float, 3> loads, float in, float weight) {
        const char* const keys[] = {"left_upper_leg.a", "left_upper_leg.b", "left_upper_leg.c"};
        for (std::size_t i = 0; i < 3; ++i)
            analysis->setLoad(site(keys[i]), {0, loads[i], 0});
        segment("left_upper_leg")->setMass(1000 * weight);
        Leg leg;
        leg.inForce = {0, in, 0};
        callPrivate<LegJoint>(*analysis, joint("left_knee"), segment("left_upper_leg"), leg.inForce, leg.inPoint,
                              leg.force, leg.moment, leg.point);
        return leg.force[1];
    };
    EXPECT_EQ(sum({1, 2, 4}, 8, 16), 14 + 8 - 16);
    EXPECT_EQ(sum({kBig, 1, 1}, 0, 0), 2 * kBig);       // from the last site on, 2^25 + 4
    EXPECT_EQ(sum({1, 1, kBig}, 0, 0), 2 * kBig + 4);   // from the last site on, 2^25
    EXPECT_EQ(sum({0, 0, 1}, kBig, 0), kBig + 2);       // with what comes in between the loads, 2^24
    EXPECT_EQ(sum({0, 0, 1}, 2 * kBig, 2 * kBig), 0);   // with the weight before what comes in, 2
}

// By itself too, it names what it lacks, if that has a name; what it was handed and the joint stay as they were.
TEST_F(TwoFeetLegs, ALegJointThatLacksPartsIsRefused)
{
    load(smallBody());
    const std::string before = everything();
    const auto refuse = [this](qcJoint* joint, qcSegment* segment, const char* named) {
        Leg leg;
        callPrivate<LegJoint>(*analysis, joint, segment, leg.inForce, leg.inPoint, leg.force, leg.moment, leg.point);
        const std::vector<std::string> texts = log.takeTexts();
        ASSERT_EQ(texts.size(), 1u) << named;
        EXPECT_EQ(texts[0].rfind("StaticStrength ERROR: ", 0), 0u) << texts[0];
        EXPECT_NE(texts[0].find(named, texts[0].find(": missing ")), std::string::npos) << texts[0];
        for (const qVector* untouched : {&leg.force, &leg.moment, &leg.point})
            EXPECT_THAT(components(*untouched), ElementsAre(77, 77, 77)) << named;
    };
    refuse(nullptr, segment("left_upper_leg"), "");
    refuse(joint("left_knee"), nullptr, "");
    refuse(nullptr, nullptr, "");
    refuse(joint("left_wrist"), segment("left_upper_leg"), "left_wrist");
    site("left_upper_leg.distal")->setName("end");
    refuse(joint("left_knee"), segment("left_upper_leg"), "left_upper_leg.distal");
    EXPECT_EQ(everything(), before);
}

// ---- Order of sums and stores

// Shares of the waist, half the torso, a quarter less of the loads, in this order: (1 - 2^24) + 2^24 is 1 in single
// precision, with the loads second it is 0; (-2^24 - 1) - 1 is -2^24, with the last two first it is -2^24 - 2.
TEST_F(TwoFeetLegs, AHipsForceIsSummedInThisOrder)
{
    load(smallBody());
    makeWeightless();
    share(0.5f, 0.25f);
    const auto hips = [this](float waist, float torso, float load) {
        segment("lower_torso")->setMass(1000 * torso);
        analysis->setLoad(site("lower_torso.h_point"), {0, load, 0});
        legs({0, waist, 0});
    };
    hips(2, 2 * kBig, -4 * kBig);
    EXPECT_EQ(up("left_hip"), 1);
    hips(4, 2 * kBig, -4 * kBig);
    EXPECT_EQ(up("right_hip"), 1);
    hips(-2 * kBig, 2, 4);
    EXPECT_EQ(up("left_hip"), -kBig);
    hips(-4 * kBig, 2, 4);
    EXPECT_EQ(up("right_hip"), -kBig);
}

// A joint that plays two roles keeps the later store: left and right hip, then left knee and ankle, then the right
// ones. Forces tell which one it is. (Both hips on one joint have one result.)
TEST_F(TwoFeetLegs, HipsAreStoredFirstThenTheLeftLegThenTheRightOne)
{
    int count = 0;
    const auto last = [&](const std::string& name, const std::function<void(SmallFigure&)>& change) {
        SmallFigure body = smallBody("man" + std::to_string(++count));
        change(body);
        load(body);
        legs({0, -32, 0});
        return up(name.c_str());
    };
    const auto both = [](const char* first, const char* second) {
        return [=](SmallFigure& body) -> SmallFigure& { return body.joint("right_both", first, second); };
    };
    // right hip -29, then left knee -13 - 8
    EXPECT_FLOAT_EQ(last("right_both",
                         [&](SmallFigure& body) {
                             both("lower_torso.right_hip", "left_upper_leg.distal")(body)
                                 .role("right", "hip", "right_both")
                                 .role("left", "knee", "right_both");
                         }),
                    -21);
    // left hip, then left knee; left knee -21, then left ankle -25
    EXPECT_FLOAT_EQ(last("left_hip", [](SmallFigure& body) { body.role("left", "knee", "left_hip"); }), -21);
    EXPECT_FLOAT_EQ(last("left_knee", [](SmallFigure& body) { body.role("left", "ankle", "left_knee"); }), -25);
    // left ankle -25, then right knee -37
    EXPECT_FLOAT_EQ(last("right_both",
                         [&](SmallFigure& body) {
                             both("left_lower_leg.distal", "right_upper_leg.distal")(body)
                                 .role("left", "ankle", "right_both")
                                 .role("right", "knee", "right_both");
                         }),
                    -37);
    // right knee, then right ankle -41
    EXPECT_FLOAT_EQ(last("right_knee", [](SmallFigure& body) { body.role("right", "ankle", "right_knee"); }), -41);
}

}   // namespace
