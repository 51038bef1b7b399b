// Circles: figures whose joints form no tree. A walk that would never end is refused and says where; others go on.
#include "ComputeSupport.h"

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

namespace {

const std::string kStart = "StaticStrength ERROR: ";

std::string failedOn(const std::string& joint)
{
    return kStart + "failed on man." + joint;
}

class Circles : public Compute {
protected:
    // Every strategy comes to an end, whatever it finds. @return what it said, without the refusals of the legs
    std::vector<std::string> computeAll()
    {
        std::vector<std::string> texts;
        for (const Strategy strategy : kAllStrategies) {
            compute(strategy);
            EXPECT_EQ(analysis->getStrategy(), strategy);
            for (const std::string& text : log.takeTexts())
                texts.push_back(text);
        }
        return texts;
    }
};

// A second joint between clavicle and hand closes a circle of three on the right arm: clavicle, arm, hand.
//
// From the hand the walk comes back to the clavicle, whose joints are met in their order: first the shoulder, beyond
// which the walk still is.
TEST_F(Circles, OfJointsEndTheWalkAndAreNamed)
{
    SmallFigure body = smallBody();
    body.joint("strap", "right_clavicle.distal", "right_hand.right_palmcenter");
    load(body);
    compute(qmStaticStrength::SittingNoFeet);
    EXPECT_THAT(log.takeTexts(),
                ElementsAre(kStart + "joint man.right_shoulder lies beyond itself: the joints form a circle",
                            failedOn("right_shoulder"), failedOn("strap"), failedOn("right_wrist"),
                            failedOn("right_shoulder"), failedOn("right_clavicle_joint"), failedOn("solar_plexus"),
                            failedOn("t8_l5")));
    EXPECT_FLOAT_EQ(down("right_hip"), 13);   // the other walks go on
    EXPECT_FLOAT_EQ(down("left_hip"), 13);
    EXPECT_THAT(computeAll(), Each(StartsWith(kStart)));
}

// Between any two segments.
TEST_F(Circles, AnywhereEndEveryStrategy)
{
    const std::vector<std::pair<const char*, const char*>> ends = {
        {"right_foot.sole", "left_foot.sole"},                          // the whole of both legs and the pelvis
        {"right_hand.right_palmcenter", "left_hand.left_palmcenter"},   // both arms and the upper torso
        {"right_hand.right_palmcenter", "right_foot.sole"},             // through the trunk
        {"lower_torso.distal", "l5.proximal"},                          // beside the waist, at the very same sites
    };
    for (const auto& [first, second] : ends) {
        SCOPED_TRACE(std::string(first) + " to " + second);
        SmallFigure body = smallBody();
        body.joint("extra", first, second);
        load(body);
        const std::vector<std::string> texts = computeAll();
        EXPECT_THAT(texts, Each(StartsWith(kStart)));
        EXPECT_THAT(texts, ::testing::Contains(HasSubstr("form a circle")));
    }
}

// A joint that leads back to its own segment is a circle that a walk leaves: what is joined to the segment is met
// again, and then the walk has come to all ends.
TEST_F(Circles, OfOneJointEnd)
{
    SmallFigure body = smallBody();
    body.joint("extra", "l5.distal", "l5.proximal");
    load(body);
    EXPECT_THAT(computeAll(), IsEmpty());
    for (const char* name : {"waist", "t8_l5", "right_hip"})
        EXPECT_TRUE(hasResult(name)) << name;
}

TEST_F(Circles, OutOfReachDoNotMatter)
{
    SmallFigure body = smallBody();
    for (const char* name : {"far1", "far2"})
        body.segment(name, 7000).site(name, "s", {0, 0, 0}).site(name, "t", {1, 0, 0});
    body.joint("there", "far1.s", "far2.s").joint("back", "far2.t", "far1.t");
    load(body);
    EXPECT_THAT(computeAll(), IsEmpty());
}

// A circle as long as the figure is deep is found as well, and each of its joints is named once.
//
// A chain of links from the waist upward, the last one joined to the first: it is entered by "waist", and n joints
// lead round it.
TEST_F(Circles, OfAnyLengthAreFound)
{
    for (const int n : {2, 3, 4, 5, 8, 9, 100, 1000}) {
        SCOPED_TRACE(n);
        SmallFigure body;
        body.segment("lower_torso", 1000).site("lower_torso", "top", {0, 100, 0});
        for (int i = 0; i < n; ++i)
            body.segment("s" + std::to_string(i), 1000)
                .site("s" + std::to_string(i), "low", {0, 100.0 + i, 0})
                .site("s" + std::to_string(i), "high", {0, 101.0 + i, 0});
        body.joint("waist", "lower_torso.top", "s0.low");
        for (int i = 0; i < n; ++i)
            body.joint("j" + std::to_string(i), "s" + std::to_string(i) + ".high",
                       "s" + std::to_string((i + 1) % n) + (i + 1 < n ? ".low" : ".high"));
        body.pelvisSite("lower_torso.top").waist("waist");
        load(body);
        compute(qmStaticStrength::TwoFeet);
        const std::vector<std::string> texts = log.takeTexts();
        ASSERT_GE(texts.size(), 2u);
        EXPECT_THAT(texts[0], HasSubstr("form a circle"));
        int named = 0;
        for (const std::string& text : texts)
            named += text.find("failed on") != std::string::npos;
        EXPECT_GE(named, n);
        EXPECT_LE(named, n + 1);   // the one that is met again twice
    }
}

// Each of forty segments has its joint to the next listed twice: a walk would meet the last 2^40 times.
TEST_F(Circles, ListsThatDoubleAtEveryJointAreRefused)
{
    SmallFigure body;
    body.segment("lower_torso", 1000).site("lower_torso", "top", {0, 100, 0});
    std::string below = "lower_torso.top";
    for (int i = 0; i < 40; ++i) {
        const std::string name = "s" + std::to_string(i);
        body.segment(name, 1000).site(name, "low", {0, 100.0 + i, 0}).site(name, "high", {0, 101.0 + i, 0});
        body.joint(i == 0 ? "waist" : "j" + std::to_string(i), below, name + ".low");
        below = name + ".high";
    }
    body.pelvisSite("lower_torso.top").waist("waist");
    for (nlohmann::json& site : body.document()["sites"])
        if (site["name"] == "high" && !site["joints"].empty())
            site["joints"].push_back(site["joints"][0]);
    load(body);
    compute(qmStaticStrength::SittingNoFeet);
    const std::vector<std::string> texts = log.takeTexts();
    ASSERT_FALSE(texts.empty());
    EXPECT_THAT(texts[0], StartsWith(kStart + "joint man.j"));
    EXPECT_THAT(texts[0], HasSubstr(" is met over and over: the joints form no tree"));
}

// A walk that meets a joint twice and ends is none of these: the second hand's weight counts twice.
TEST_F(Circles, AJointListedTwiceIsWalkedTwice)
{
    SmallFigure body = smallBody();
    for (nlohmann::json& site : body.document()["sites"])
        if (site["key"] == "right_arm.distal")
            site["joints"].push_back("right_wrist");
    load(body);
    compute(qmStaticStrength::SittingNoFeet);
    EXPECT_THAT(log.takeTexts(), IsEmpty());
    EXPECT_FLOAT_EQ(down("waist"), 29.5f);
}

}   // namespace
