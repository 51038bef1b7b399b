// Missing roles: what a computation does when a part is missing, lies elsewhere or cannot be walked. It checks nothing
// itself: the walks report what they lack, and the others run.
#include "ComputeSupport.h"

#include <cmath>

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

namespace {

constexpr float kBefore = 77;   // kgf and N·m: what is stored before a computation

const char* const kNoJoint = "StaticStrength ERROR: joint ??? site ???\n";

std::string noSite(const std::string& joint)
{
    return "StaticStrength ERROR: joint " + joint + " site ???\n";
}

class MissingRoles : public Compute {
protected:
    void loadWithout(const std::string& side, const std::string& role)
    {
        SmallFigure body = smallBody();
        body.document()[side][role] = nullptr;
        load(body);
    }
    void computeOver(Strategy strategy)
    {
        storeEverywhere(qVector(kBefore, kBefore, kBefore));
        compute(strategy);
    }
    std::vector<std::string> changed() const { return changedFrom(qVector(kBefore, kBefore, kBefore)); }
};

// ---- One foot

// The ankle's site on the foot's segment is wanted twice: for the walk up, and for the foot's own.
TEST_F(MissingRoles, FootSiteFailsBothWalksOfOneFoot)
{
    loadWithout("right", "foot_site");
    computeOver(qmStaticStrength::RightFoot);
    EXPECT_THAT(log.takeTexts(), ElementsAre(noSite("right_ankle"), noSite("right_ankle")));
    EXPECT_THAT(changed(), ElementsAre());

    loadWithout("left", "foot_site");
    computeOver(qmStaticStrength::LeftFoot);
    EXPECT_THAT(log.takeTexts(), ElementsAre(noSite("left_ankle"), noSite("left_ankle")));
    EXPECT_THAT(changed(), ElementsAre());
}

TEST_F(MissingRoles, AnkleFailsBothWalksOfOneFoot)
{
    loadWithout("right", "ankle");
    computeOver(qmStaticStrength::RightFoot);
    EXPECT_THAT(log.takeTexts(), ElementsAre(kNoJoint, kNoJoint));
    EXPECT_THAT(changed(), ElementsAre());
}

TEST_F(MissingRoles, OfTheOtherSideDoNotMatterOnOneFoot)
{
    SmallFigure body = smallBody();
    body.document()["left"] = nlohmann::json::object();
    load(body);
    compute(qmStaticStrength::RightFoot);
    EXPECT_FLOAT_EQ(down("right_ankle"), 65);
}

// The foot site's segment is the side from which the body is walked first. On the lower leg, below it hang the foot 0.8
// and the toes 0.2; the rest is added by the second walk. The sum is the same 65 kgf, the order is turned round.
TEST_F(MissingRoles, FootSiteOnTheLowerLegWalksTheFootFirst)
{
    SmallFigure body = smallBody();
    body.role("right", "foot_site", "right_lower_leg.distal");
    load(body);
    const std::vector<std::string> met = order(qmStaticStrength::RightFoot, kOneSitePerSegment);
    EXPECT_EQ(met, joined({{"right_foot.proximal", "right_toes.proximal"},
                           kUpperBody,
                           {"lower_torso.center_of_mass", "left_upper_leg.proximal", "left_lower_leg.proximal",
                            "left_foot.proximal", "left_toes.proximal", "right_upper_leg.proximal",
                            "right_lower_leg.proximal"}}));
    EXPECT_FLOAT_EQ(down("right_ankle"), 65);
    EXPECT_FLOAT_EQ(down("right_knee"), 60);
}

// ---- Walking

// A knee that is missing counts as straight: angle 0.
TEST_F(MissingRoles, KneeOfWalkingIsStraight)
{
    for (const auto& [missing, bent, standing] :
         {std::array<const char*, 3>{"right", "left_knee", "right_ankle"}, {"left", "right_knee", "left_ankle"}}) {
        loadWithout(missing, "knee");
        ASSERT_EQ(joint(bent)->setAngle(1, 0.5), 1);
        compute(qmStaticStrength::Walking);
        EXPECT_FLOAT_EQ(down(standing), 65) << missing;
    }
}

// ---- Sitting without feet

TEST_F(MissingRoles, HipFailsItsLegOnly)
{
    loadWithout("right", "hip");
    compute(qmStaticStrength::SittingNoFeet);
    EXPECT_THAT(log.takeTexts(), ElementsAre(kNoJoint));
    EXPECT_FLOAT_EQ(down("waist"), 29);
    EXPECT_FLOAT_EQ(down("left_hip"), 13);
    EXPECT_FALSE(hasResult("right_hip"));
}

// The pelvis site's segment is the side from which waist and hips are walked. On l5, the waist carries what hangs below
// it: the lower torso 10 and two legs of 13; the hips do not touch l5.
TEST_F(MissingRoles, PelvisSiteAboveTheWaistWalksDown)
{
    SmallFigure body = smallBody();
    body.pelvisSite("l5.distal");
    load(body);
    compute(qmStaticStrength::SittingNoFeet);
    EXPECT_THAT(log.takeTexts(), ElementsAre(noSite("right_hip"), noSite("left_hip")));
    EXPECT_FLOAT_EQ(down("waist"), 36);
    EXPECT_FLOAT_EQ(down("right_hip"), 13);
    EXPECT_FALSE(hasResult("t8_l5"));
}

// ---- Hands and knees

// Both walks of the knee fail. The share that wants both knees is no number, at the other knee too; the hands' is.
TEST_F(MissingRoles, KneeFailsBothItsWalksOnHandsAndKnees)
{
    loadWithout("right", "knee");
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_THAT(log.takeTexts(), ElementsAre(kNoJoint, kNoJoint));
    EXPECT_FALSE(hasResult("right_knee"));
    EXPECT_TRUE(std::isnan(down("left_knee")));
    EXPECT_FLOAT_EQ(down("left_ankle"), 1);
    EXPECT_FLOAT_EQ(down("right_wrist"), 15);
    EXPECT_FLOAT_EQ(down("left_wrist"), 15);
}

TEST_F(MissingRoles, HandSiteFailsItsWalkOnHandsAndKnees)
{
    loadWithout("right", "hand_site");
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_THAT(log.takeTexts(), ElementsAre(kNoJoint));
    EXPECT_FALSE(hasResult("right_wrist"));
    EXPECT_TRUE(std::isnan(down("left_wrist")));
    EXPECT_FLOAT_EQ(down("right_knee"), 23.5f);
    EXPECT_FLOAT_EQ(down("left_knee"), 23.5f);
}

TEST_F(MissingRoles, AttachmentOfAHandFailsItsWalk)
{
    SmallFigure body = smallBody();
    for (nlohmann::json& segment : body.document()["segments"])
        if (segment["name"] == "right_hand")
            segment["attachment"] = nullptr;
    load(body);
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_THAT(log.takeTexts(), ElementsAre(kNoJoint));
    EXPECT_FALSE(hasResult("right_wrist"));
    EXPECT_FLOAT_EQ(down("left_wrist"), 15);
    EXPECT_FLOAT_EQ(down("right_knee"), 23.5f);
}

TEST_F(MissingRoles, AttachmentWithoutAJointFailsItsWalk)
{
    SmallFigure body = smallBody();
    body.attachment("right_hand", "right_hand.right_palmcenter");
    load(body);
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength ERROR: joint ??? site man.right_hand.right_palmcenter\n"));
    EXPECT_FALSE(hasResult("right_wrist"));
    EXPECT_FLOAT_EQ(down("left_wrist"), 15);
}

// Without a segment "l5" nothing stops the waist's walk, 29 kgf, nor the solar plexus's, which goes down to the feet
// and leaves its own results on the trunk and the legs that the knees' walks had come to:
//   hips 13, knees 5; waist 10 + 26, t8_l5 36 + 2, solar plexus 38 + 10
//   clavicles: half of the 48, halved by the upper torso's weight, and that weight: 12 + 8
TEST_F(MissingRoles, SegmentL5StopsNoWalk)
{
    load(smallBody());
    segment("l5")->setName("l4");
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_FLOAT_EQ(down("solar_plexus"), 48);
    EXPECT_FLOAT_EQ(down("t8_l5"), 38);
    EXPECT_FLOAT_EQ(down("waist"), 36);
    for (const std::string side : {"right_", "left_"}) {
        EXPECT_FLOAT_EQ(down(side + "hip"), 13);
        EXPECT_FLOAT_EQ(down(side + "knee"), 5);
        EXPECT_FLOAT_EQ(down(side + "clavicle_joint"), 20);
        EXPECT_FLOAT_EQ(down(side + "wrist"), 24);   // and clavicle 1, arm 3
    }
}

// Nor a joint "solar_plexus" either, and the results of the first walks stay:
//   hips: half of the waist's 29, halved by the lower torso's weight, and that weight: 7.25 + 10
//   knees: 5 + 8 + 17.25; the clavicles find nobody to share with
TEST_F(MissingRoles, WalksBelowTheWaistStayWhereNoSolarPlexusFollows)
{
    load(smallBody());
    segment("l5")->setName("l4");
    joint("solar_plexus")->setName("t8_upper_torso");
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_THAT(log.takeTexts(), ElementsAre(kNoJoint));
    EXPECT_FLOAT_EQ(down("waist"), 29);
    EXPECT_FLOAT_EQ(down("t8_l5"), 27);
    for (const std::string side : {"right_", "left_"}) {
        EXPECT_FLOAT_EQ(down(side + "hip"), 17.25f);
        EXPECT_FLOAT_EQ(down(side + "knee"), 30.25f);
        EXPECT_FLOAT_EQ(down(side + "clavicle_joint"), 8);
    }
}

// Without a segment "upper_torso" the solar plexus is not walked, and nothing stops the hands' walks: each takes the
// whole body but its hand, 64.5 kgf, and the left one, the last, passes every other joint on its way.
//   left shoulder - 3, clavicle joint - 1 more; right side of the arms 4.5, 3.5, 0.5
TEST_F(MissingRoles, SegmentUpperTorsoStopsNoHand)
{
    load(smallBody());
    segment("upper_torso")->setName("chest");
    compute(qmStaticStrength::HandsAndKnees);
    EXPECT_THAT(log.takeTexts(), ElementsAre(noSite("solar_plexus")));
    EXPECT_FLOAT_EQ(down("left_wrist"), 64.5f);
    EXPECT_FLOAT_EQ(down("left_shoulder"), 61.5f);
    EXPECT_FLOAT_EQ(down("left_clavicle_joint"), 60.5f);
    EXPECT_FLOAT_EQ(down("right_clavicle_joint"), 4.5f);
    EXPECT_FLOAT_EQ(down("right_wrist"), 0.5f);
    EXPECT_FLOAT_EQ(down("solar_plexus"), 48);
    EXPECT_FLOAT_EQ(down("waist"), 36);
    EXPECT_FLOAT_EQ(down("right_knee"), 5);
}

// ---- A walk that fails midway

// A joint of two other segments is listed at the right palm: whoever walks into the hand fails there.
class StrayJoint : public MissingRoles {
protected:
    void SetUp() override
    {
        SmallFigure body = smallBody();
        for (const char* name : {"far1", "far2"})
            body.segment(name, 7000).site(name, "s", {0, 0, 0});
        body.joint("stray", "far1.s", "far2.s");
        for (nlohmann::json& site : body.document()["sites"])
            if (site["key"] == "right_hand.right_palmcenter")
                site["joints"] = {"stray"};
        load(body);
    }
    // The refusal in the hand, and every joint on the way back whose walk came to nothing.
    std::vector<std::string> failureUpTo(const std::string& last) const
    {
        std::vector<std::string> texts = {"StaticStrength ERROR: joint stray site man.right_hand.right_palmcenter\n"};
        for (const std::string name : {"stray", "right_wrist", "right_shoulder", "right_clavicle_joint", "solar_plexus",
                                       "t8_l5", "waist", "right_hip", "right_knee"}) {
            texts.push_back("StaticStrength ERROR: failed on man." + name);
            if (name == last)
                break;
        }
        return texts;
    }
};

// The walk up from the ankle fails at its first joint and gathers nothing; the walk of the foot adds foot and toes:
// 0.8 + 0.2 kgf, about the ankle 0.8 · 5 + 0.2 · 18 = 7.6 kgf·cm about x.
TEST_F(StrayJoint, LeavesTheFootsOwnWalkOnOneFoot)
{
    computeOver(qmStaticStrength::RightFoot);
    EXPECT_EQ(log.takeTexts(), failureUpTo("right_knee"));
    EXPECT_THAT(changed(), UnorderedElementsAre("right_ankle", "right_ball"));
    EXPECT_FLOAT_EQ(down("right_ankle"), 1);
    EXPECT_FLOAT_EQ(down("right_ball"), 0.2f);
    expectNear(resultOf("right_ankle").moment, {7.6 * kNm, 0, 0}, roundingBound(8, 7.6 * kNm));
    EXPECT_EQ(analysis->getStrategy(), qmStaticStrength::RightFoot);
}

// The waist has no result and counts nothing: lower torso 10 and two legs of 12 to the ankles, on the right foot.
TEST_F(StrayJoint, LeavesTheLegsOnTwoFeet)
{
    compute(qmStaticStrength::TwoFeet);
    EXPECT_EQ(log.takeTexts(), failureUpTo("t8_l5"));
    EXPECT_FALSE(hasResult("waist"));
    for (const char* name : {"right_hip", "right_knee", "right_ankle", "left_hip", "left_knee", "left_ankle"})
        EXPECT_TRUE(hasResult(name)) << name;
    EXPECT_FLOAT_EQ(down("right_ankle"), 34);
}

TEST_F(StrayJoint, LeavesTheSeatedLegs)
{
    computeOver(qmStaticStrength::Sitting);
    EXPECT_EQ(log.takeTexts(), failureUpTo("t8_l5"));
    EXPECT_THAT(changed(),
                UnorderedElementsAre("right_hip", "right_knee", "right_ankle", "left_hip", "left_knee", "left_ankle"));
    EXPECT_FALSE(hasResult("left_knee"));
}

TEST_F(StrayJoint, LeavesTheHangingLegs)
{
    compute(qmStaticStrength::SittingNoFeet);
    EXPECT_EQ(log.takeTexts(), failureUpTo("t8_l5"));
    EXPECT_FLOAT_EQ(down("right_hip"), 13);
    EXPECT_FLOAT_EQ(down("left_hip"), 13);
}

}   // namespace
