// The example scenes: each computes, saves, opens again, and gives what the library gives.
#include "Program.h"

#include "qc/qcScene.h"
#include "qmStaticStrength.h"

#include <cmath>
#include <cstring>
#include <filesystem>
#include <memory>
#include <ostream>
#include <set>
#include <sstream>

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

struct Example {
    const char* name;
    const char* effective;             // strategy
    std::vector<const char*> joints;   // that must have a result
};

void PrintTo(const Example& example, std::ostream* out)
{
    *out << example.name;
}

const Example examples[] = {
    {"lift_box", "two-feet", {"waist", "right_hip", "left_hip", "right_knee", "left_ankle", "right_wrist"}},
    {"one_foot_reach", "right-foot", {"waist", "right_ankle", "right_knee", "left_hip", "right_shoulder"}},
    {"walking", "right-foot", {"waist", "right_ankle", "right_knee", "left_hip", "left_wrist"}},
    {"sitting", "sitting", {"waist", "right_hip", "left_hip", "right_ankle", "left_ankle", "right_wrist"}},
    {"sitting_no_feet", "sitting-no-feet", {"waist", "right_hip", "left_knee", "right_ankle", "atlanto_occipital"}},
    {"hands_and_knees", "hands-and-knees", {"waist", "right_knee", "left_knee", "right_hip", "solar_plexus"}},
};

class ExamplesTest : public ProgramTest, public ::testing::WithParamInterface<Example> {};

INSTANTIATE_TEST_SUITE_P(All, ExamplesTest, ::testing::ValuesIn(examples),
                         [](const auto& example) { return std::string(example.param.name); });

bool sameBits(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

qcSite* siteOf(const qcFigure* figure, const std::string& key)
{
    return figure->findSiteByFullName((std::string(figure->getName()) + "." + key).c_str());
}

TEST_P(ExamplesTest, ComputesWithTheExpectedSupportAndJoints)
{
    const nlohmann::json output = compute(example(GetParam().name));
    EXPECT_EQ(output["strategy_effective"], GetParam().effective);
    EXPECT_NEAR(output["body_mass_kg"], 75.0, 1e-5);   // a sum of 41 masses in grams, narrowed
    for (const char* joint : GetParam().joints)
        EXPECT_EQ(jointOf(output, joint)["status"], "result") << joint;
    EXPECT_FALSE(output["loads"].empty());
}

// The same scene, computed by the library in this process, gives every number to the last bit.
TEST_P(ExamplesTest, ShowsTheBitsThatTheLibraryComputes)
{
    const nlohmann::json output = compute(example(GetParam().name));
    const std::unique_ptr<qcScene> scene(qcScene::open(example(GetParam().name).c_str()));
    ASSERT_TRUE(scene);
    qcHuman* human = static_cast<qcHuman*>(scene->getHumans()->getData());
    qmStaticStrength analysis(human);
    analysis.setGravity(scene->getGravity());
    if (scene->getUnstoredStrategy(human) == "hands-and-knees")
        analysis.setStrategy(qmStaticStrength::HandsAndKnees);
    analysis.compute();

    std::size_t count = 0;
    qList* joints = human->getFigure()->getJoints();
    for (qList* node = joints; node; node = qList::iterator(joints, node), ++count) {
        qcJoint* joint = static_cast<qcJoint*>(node->getData());
        const nlohmann::json shown = jointOf(output, joint->getName());
        qVector force, moment;
        if (!analysis.getJointForces(joint, force, moment)) {
            EXPECT_EQ(shown["status"], "none") << joint->getName();
            continue;
        }
        const std::array<double, 3> f = vectorOf(shown, "force", "kgf"), m = vectorOf(shown, "moment", "nm");
        for (int i = 0; i < 3; ++i) {
            EXPECT_TRUE(sameBits(static_cast<float>(f[std::size_t(i)]), force[i])) << joint->getName();
            EXPECT_TRUE(sameBits(static_cast<float>(m[std::size_t(i)]), moment[i])) << joint->getName();
        }
        EXPECT_TRUE(sameBits(shown["force_kgf"].get<float>(), force.mag())) << joint->getName();
        EXPECT_TRUE(sameBits(shown["moment_nm"].get<float>(), moment.mag())) << joint->getName();
        EXPECT_FLOAT_EQ(shown["force_n"].get<float>(), force.mag() * 9.80665f) << joint->getName();
    }
    EXPECT_EQ(output["joints"].size(), count);
}

TEST_P(ExamplesTest, GivesTheSameResultsWhenSavedAndOpenedAgain)
{
    const std::string copy = folder.file("copy.json");
    const nlohmann::json first = compute(example(GetParam().name), {"--save", copy});
    EXPECT_EQ(compute(copy), first);
    const std::string once = contentOf(copy);
    EXPECT_EQ(compute(copy, {"--save", copy}), first);
    EXPECT_EQ(contentOf(copy), once);   // saving again changes nothing
}

// The file in the source tree is what the program of today saves, results included.
TEST_P(ExamplesTest, IsUpToDate)
{
    namespace fs = std::filesystem;
    fs::create_directory(folder.file("examples"));
    fs::create_directory(folder.file("figures"));
    for (const char* name : {"human.urdf", "human.roles.json"})
        fs::copy_file(std::string(SSTR_SOURCE_DIR "/figures/") + name, folder.file("figures/") + name);
    const std::string copy = folder.file("examples/scene.json");
    fs::copy_file(example(GetParam().name), copy);
    compute(copy, {"--save", copy});
    EXPECT_EQ(contentOf(copy), contentOf(example(GetParam().name))) << "run examples/make_examples.sh";
}

TEST_P(ExamplesTest, GivesTheSameBitsAsItsPosedFigure)
{
    const std::string posed = folder.file("posed.figure.json"), scene = folder.file("posed.json");
    const nlohmann::json original = compute(example(GetParam().name));
    ASSERT_EQ(runProgram({"figure", example(GetParam().name), "--posed", posed}).status, 0);
    ASSERT_EQ(runProgram({"new-scene", posed, scene}).status, 0);
    // hands and knees is no property, and so not in the figure
    std::vector<std::string> options;
    if (original["strategy_asked"] == "hands-and-knees")
        options = {"--strategy", "hands-and-knees"};
    const nlohmann::json again = compute(scene, options);
    EXPECT_EQ(again["joints"], original["joints"]);
    EXPECT_EQ(again["shares_percent"], original["shares_percent"]);
    EXPECT_EQ(again["loads"], original["loads"]);
}

TEST(Examples, HoldLoadsOfEveryKindAmongThem)
{
    std::set<std::string> kinds;
    for (const Example& each : examples) {
        const ProgramRun run =
            runProgram({"loads", std::string(SSTR_SOURCE_DIR "/examples/") + each.name + ".json",   //
                        "--format", "json"});
        ASSERT_EQ(run.status, 0) << run.err;
        const nlohmann::json output = nlohmann::json::parse(run.out);
        for (const auto& load : output["loads"])
            kinds.insert(load["type"].get<std::string>());
        for (const auto& load : output["offset_loads"])
            kinds.insert("offset " + load["type"].get<std::string>());
        if (!output["torques"].empty())
            kinds.insert("torque");
    }
    EXPECT_THAT(kinds,
                ElementsAre("global", "local", "offset global", "offset local", "offset weight", "torque", "weight"));
}

class LiftBox : public ProgramTest {
protected:
    void SetUp() override
    {
        scene.reset(qcScene::open(example("lift_box").c_str()));
        ASSERT_TRUE(scene);
        human = static_cast<qcHuman*>(scene->getHumans()->getData());
    }
    qVector position(const std::string& key) const
    {
        qcSite* site = siteOf(human->getFigure(), key);
        return site ? site->getGlobalTransform().getTranslation() : qVector(NAN, NAN, NAN);
    }
    std::unique_ptr<qcScene> scene;
    qcHuman* human = nullptr;
};

TEST_F(LiftBox, StandsOnTheFloorWithBothFeetFlatAndOneAhead)
{
    for (const char* side : {"right", "left"})
        for (const char* site : {"sole", "heel", "ball"}) {
            const float height = position(std::string(side) + "_foot." + site)[1];
            EXPECT_GE(height, -1e-4f) << side << site;   // cm; a rounding below the floor
            EXPECT_LE(height, 1.0f) << side << site;
        }
    EXPECT_GT(position("left_foot.sole")[2] - position("right_foot.sole")[2], 20.0f);
    EXPECT_GT(position("left_foot.sole")[0] - position("right_foot.sole")[0], 20.0f);
}

// Both feet carry when the balance point lies between them.
TEST_F(LiftBox, HasItsBalancePointBetweenTheFeet)
{
    const qVector balance = human->getFigure()->getReferenceSite()->getGlobalTransform().getTranslation();
    EXPECT_GT(balance[2], position("right_foot.sole")[2]);
    EXPECT_LT(balance[2], position("left_foot.sole")[2]);
    const nlohmann::json output = compute(example("lift_box"));
    EXPECT_GT(jointOf(output, "right_ankle")["force_kgf"], 20.0);
    EXPECT_GT(jointOf(output, "left_ankle")["force_kgf"], 20.0);
}

// The right foot's share is the left foot's part of both distances from the balance point, across
// gravity (y):  right = dLeft / (dRight + dLeft)
TEST_F(LiftBox, SharesTheLoadByTheDistancesOfTheFeet)
{
    const qVector balance = human->getFigure()->getReferenceSite()->getGlobalTransform().getTranslation();
    const auto distance = [&](const char* key) {
        const qVector p = position(key);
        return std::hypot(double(p[0]) - double(balance[0]), double(p[2]) - double(balance[2]));
    };
    const double right = distance("right_foot.sole"), left = distance("left_foot.sole");
    const nlohmann::json shares = compute(example("lift_box"))["shares_percent"];
    EXPECT_NEAR(shares["right_foot"], 100.0 * left / (right + left), 1e-4);   // five digits of a float
    EXPECT_NEAR(shares["left_foot"], 100.0 * right / (right + left), 1e-4);
    EXPECT_TRUE(shares["right_knee"].is_null());
}

// 5 kg in each hand pull at each wrist beside the hand's own 457.5 g (hand 329.25, fingers 91.5, thumb
// 36.75), standard gravity: 5.4575 kgf.
TEST_F(LiftBox, HoldsHalfTheBoxInEachHand)
{
    const nlohmann::json output = compute(example("lift_box"));
    for (const char* wrist : {"right_wrist", "left_wrist"}) {
        const std::array<double, 3> force = vectorOf(jointOf(output, wrist), "force", "kgf");
        EXPECT_NEAR(force[1], -5.4575, roundingBound(5, 5.4575)) << wrist;
    }
}

TEST_F(LiftBox, IsShownAsATableOfAllJointsWithTwinsSideBySide)
{
    const ProgramRun run = runProgram({"compute", example("lift_box")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    for (const char* text : {"strategy          two-feet", "right foot 54.", "left foot 45.", "mass 75.000 kg",
                             "centre of mass", "|F| kgf", "|F| N", "|M| N·m", "17.40, -12.00, 5.00", "2500 g"})
        EXPECT_THAT(run.out, HasSubstr(text));
    for (const char* joint : {"\n  waist ", "\n  solar_plexus ", "\n  hip ", "\n  knee ", "\n  wrist "})
        EXPECT_THAT(run.out, HasSubstr(joint));
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(line.size(), 160u) << line;   // bytes, at least as many as columns
}

}   // namespace
