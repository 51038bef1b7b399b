// compute: what each option does to the results, and the formats in which they are shown.
#include "NumberText.h"
#include "Program.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <sstream>

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

using Vector = std::array<double, 3>;

constexpr const char* kPalm = "right_hand.right_palmcenter";

// The default human stands in its zero posture: every frame is parallel to the world, the right palm
// centre lies (1.40, -6.20, 0) cm from the wrist (x to the left).
class ComputeCommand : public ProgramTest {
protected:
    /// By how much a wrist's force (kgf) and moment (N·m) change with the options.
    struct Change {
        Vector force, moment;
    };
    Change atRightWrist(const std::vector<std::string>& options)
    {
        const std::string scene = standingScene();
        const nlohmann::json before = jointOf(compute(scene), "right_wrist");
        const nlohmann::json after = jointOf(compute(scene, options), "right_wrist");
        const auto difference = [&](const char* quantity, const char* unit) {
            const Vector a = vectorOf(after, quantity, unit), b = vectorOf(before, quantity, unit);
            return Vector{a[0] - b[0], a[1] - b[1], a[2] - b[2]};
        };
        std::filesystem::remove(scene);
        return {difference("force", "kgf"), difference("moment", "nm")};
    }

    static void expectNear(const Vector& found, const Vector& expected, double bound)
    {
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(found[i], expected[i], bound) << "component " << i;
    }

    // forces of a few kgf at a hand, moments of a few N·m: eight sums in single precision
    const double kForceBound = roundingBound(8, 8);
    const double kMomentBound = roundingBound(16, 16);
    // a moment of the empty hand below 0.01 N·m is shown as the placeholder 0.00001
    static constexpr double kNoMoment = 0.0101;
};

TEST_F(ComputeCommand, TakesAForceInGlobalAxes)
{
    // moment: (1.40, -6.20, 0) cm × (1, -2, 0.5) kgf = (-3.1, -0.7, 3.4) kgf·cm · 0.0980665
    const Change change = atRightWrist({"--load", std::string(kPalm) + "=1,-2,0.5"});
    expectNear(change.force, {1, -2, 0.5}, kForceBound);
    expectNear(change.moment, {-3.1 * 0.0980665, -0.7 * 0.0980665, 3.4 * 0.0980665}, kNoMoment);
}

// The figure lies on its face: its y axis points along the world's z, its z axis along -y.
TEST_F(ComputeCommand, TakesALocalForceInTheSitesAxes)
{
    const std::vector<std::string> lying = {"--strategy", "right-foot", "--root", "0,50,0,90,0,0"};
    const std::string scene = standingScene();
    const Vector before = vectorOf(jointOf(compute(scene, lying), "right_wrist"), "force", "kgf");
    std::vector<std::string> loaded = lying;
    loaded.insert(loaded.end(), {"--local-load", std::string(kPalm) + "=1,2,3"});
    const Vector after = vectorOf(jointOf(compute(scene, loaded), "right_wrist"), "force", "kgf");
    expectNear({after[0] - before[0], after[1] - before[1], after[2] - before[2]}, {1, -3, 2}, kForceBound);
}

TEST_F(ComputeCommand, TakesAWeightInGrams)
{
    expectNear(atRightWrist({"--weight", std::string(kPalm) + "=2500"}).force, {0, -2.5, 0}, kForceBound);
}

// The point lies (1.40, -6.20 - 10, 20) cm from the wrist; without the offset's load:
//   (0, -10, 20) cm more arm × (1, 0, 0) kgf = (0, 20, 10) kgf·cm beside what the force does at the palm itself
TEST_F(ComputeCommand, TakesOffsetLoadsAsGlobalForceLocalForceAndWeight)
{
    const std::string site = "right_hand.distal";
    const Vector atSite = atRightWrist({"--load", site + "=1,0,0"}).moment;
    const Vector displaced = atRightWrist({"--offset-load", site + "@0,-10,20=1,0,0"}).moment;
    expectNear({displaced[0] - atSite[0], displaced[1] - atSite[1], displaced[2] - atSite[2]},
               {0, 20 * 0.0980665, 10 * 0.0980665}, kMomentBound);
    const Vector local = atRightWrist({"--offset-load", "local:" + site + "@0,-10,20=1,0,0"}).moment;
    expectNear(local, displaced, kMomentBound);   // parallel frames
    const Change weight = atRightWrist({"--offset-load", site + "@0,0,20=2000g"});
    expectNear(weight.force, {0, -2, 0}, kForceBound);
    // (0, -8.66, 20) cm × (0, -2, 0) kgf = (40, 0, 0) kgf·cm
    expectNear(weight.moment, {40 * 0.0980665, 0, 0}, kNoMoment);
}

TEST_F(ComputeCommand, ListsEachOffsetLoadInTheOutput)
{
    const nlohmann::json output =
        compute(standingScene(), {"--offset-load", "right_hand.distal@1,2,3=4,5,6",           //
                                  "--offset-load", "local:right_hand.distal@1,2,3=0.1,0,0",   //
                                  "--offset-load", "head.distal@0,0,0.5=750g"});
    ASSERT_EQ(output["offset_loads"].size(), 3u);
    EXPECT_EQ(output["offset_loads"][0]["type"], "global");
    EXPECT_EQ(output["offset_loads"][0]["offset_z_cm"], 3);
    EXPECT_EQ(output["offset_loads"][0]["force_y_kgf"], 5);
    EXPECT_EQ(output["offset_loads"][1]["type"], "local");
    EXPECT_EQ(output["offset_loads"][1]["force_x_kgf"], 0.1);   // the shortest text of the float
    EXPECT_EQ(output["offset_loads"][2]["type"], "weight");
    EXPECT_EQ(output["offset_loads"][2]["weight_g"], 750);
}

TEST_F(ComputeCommand, WarnsOfOffsetLoadsThatDoNotCountAtAnUnloadedPalm)
{
    const std::string offset = std::string(kPalm) + "@0,0,20=500g";
    const ProgramRun alone = runProgram({"compute", standingScene(), "--offset-load", offset});
    EXPECT_EQ(alone.status, 0);
    EXPECT_THAT(alone.err, HasSubstr("sstr: warning: the loads with offsets at right_hand.right_palmcenter do not"));
    const ProgramRun beside = runProgram(
        {"compute", folder.file("standing.json"), "--weight", std::string(kPalm) + "=100", "--offset-load", offset});
    EXPECT_EQ(beside.err, "");
}

TEST_F(ComputeCommand, TakesATorqueAtAJoint)
{
    expectNear(atRightWrist({"--torque", "right_wrist=0,2,-1"}).moment, {0, 2, -1}, kNoMoment);
}

// Forearm and hand level: the hand's 457.5 g and the forearm's 1215 g turn the elbow about x. The
// forearm's centre lies 12.35 of 27.00 cm out, the hand's parts further; more than 1.215 kgf · 12 cm.
TEST_F(ComputeCommand, BendsAJointByDegrees)
{
    const nlohmann::json output = compute(standingScene(), {"--angle", "right_elbow=90"});
    EXPECT_GT(vectorOf(jointOf(output, "right_elbow"), "moment", "nm")[0], 1.215 * 12 * 0.0980665);
    EXPECT_LT(std::fabs(vectorOf(jointOf(output, "left_elbow"), "moment", "nm")[0]), 0.1);
}

TEST_F(ComputeCommand, SetsTheFirstAnglesAndKeepsTheOthers)
{
    const std::string scene = standingScene();
    compute(scene, {"--angle", "right_shoulder=10,20,30", "--save", scene});
    compute(scene, {"--angle", "right_shoulder=40", "--save", scene});
    EXPECT_THAT(runProgram({"figure", scene}).out,
                HasSubstr("joint right_shoulder: flexion 40.0 [-60.0 to 180.0], abduction 20.0 [-30.0 to 180.0], "
                          "internal_rotation 30.0 [-90.0 to 70.0] deg"));
}

TEST_F(ComputeCommand, ScalesTheBodyToStatureAndMass)
{
    const nlohmann::json output = compute(standingScene(), {"--stature", "180", "--mass", "90"});
    EXPECT_EQ(output["stature_cm"], 180);
    EXPECT_NEAR(output["body_mass_kg"], 90, 1e-4);
    // all masses by 90 / 75: the head's 4215.75 g become 5058.9 g
    EXPECT_NEAR(vectorOf(jointOf(output, "atlanto_occipital"), "force", "kgf")[1], -5.0589, 1e-5);
}

TEST_F(ComputeCommand, KnowsTheOtherSexByItsOwnMeasures)
{
    const nlohmann::json output = compute(standingScene(), {"--sex", "female"});
    EXPECT_EQ(output["sex"], "female");
    EXPECT_EQ(output["stature_cm"], 163);
    EXPECT_NEAR(output["body_mass_kg"], 62, 0.01);   // shares that sum to 100 % within their rounding
}

TEST_F(ComputeCommand, ScalesWeightsButNotForcesWithGravity)
{
    const std::string scene = standingScene();
    const std::vector<std::string> load = {"--load", "head.distal=0,0,1", "--weight", "right_hand.distal=1000"};
    std::vector<std::string> doubled = load;
    doubled.insert(doubled.end(), {"--gravity", "0,-1961.33,0"});
    const nlohmann::json once = compute(scene, load), twice = compute(scene, doubled);
    const Vector head = vectorOf(jointOf(once, "atlanto_occipital"), "force", "kgf");
    const Vector heavy = vectorOf(jointOf(twice, "atlanto_occipital"), "force", "kgf");
    EXPECT_FLOAT_EQ(float(heavy[1]), 2 * float(head[1]));
    EXPECT_EQ(heavy[2], 1);
    EXPECT_EQ(twice["gravity_cm_s2"], nlohmann::json({0.0, -1961.33, 0.0}));
    EXPECT_FLOAT_EQ(twice["loads"][1]["force_y_kgf"].get<float>(), -2);
}

TEST_F(ComputeCommand, KeepsGravityInTheSavedScene)
{
    const std::string scene = standingScene();
    const nlohmann::json first = compute(scene, {"--gravity", "0,-1,-980", "--save", scene});
    EXPECT_EQ(compute(scene), first);
}

TEST_F(ComputeCommand, TakesEveryStrategyByItsName)
{
    const std::string scene = standingScene();
    for (const char* strategy :
         {"two-feet", "right-foot", "left-foot", "sitting", "sitting-no-feet", "hands-and-knees"}) {
        const nlohmann::json output = compute(scene, {"--strategy", strategy});
        EXPECT_EQ(output["strategy_asked"], strategy);
        EXPECT_EQ(output["strategy_effective"], strategy);
    }
}

TEST_F(ComputeCommand, TellsTheSharesOfFeetKneesAndHandsByStrategy)
{
    const std::string scene = standingScene();
    const auto shares = [&](const std::string& strategy) {
        return compute(scene, {"--strategy", strategy})["shares_percent"];
    };
    EXPECT_EQ(shares("right-foot")["right_foot"], 100);
    EXPECT_EQ(shares("right-foot")["left_foot"], 0);
    EXPECT_EQ(shares("left-foot")["right_foot"], 0);
    EXPECT_TRUE(shares("sitting")["right_foot"].is_null());
    const nlohmann::json crawling = shares("hands-and-knees");
    EXPECT_TRUE(crawling["right_foot"].is_null());
    EXPECT_NEAR(crawling["right_knee"], 50, 1e-3);   // a symmetric posture, distances in single precision
    EXPECT_NEAR(crawling["left_hand"], 50, 1e-3);
}

TEST_F(ComputeCommand, SaysWhatWalkingComesDownTo)
{
    const std::string scene = standingScene();
    const auto effective = [&](const std::string& rightKnee, const std::string& leftKnee) {
        return compute(scene, {"--strategy", "walking", "--angle", "right_knee=" + rightKnee,   //
                               "--angle", "left_knee=" + leftKnee});
    };
    EXPECT_EQ(effective("5", "40")["strategy_effective"], "right-foot");
    EXPECT_EQ(effective("40", "5")["strategy_effective"], "left-foot");
    const nlohmann::json both = effective("10", "12");   // less than 0.1 rad (5.7 degrees) apart
    EXPECT_EQ(both["strategy_effective"], "two-feet");
    EXPECT_EQ(both["shares_percent"]["right_foot"], 50);
    EXPECT_EQ(both["strategy_asked"], "walking");
    EXPECT_THAT(runProgram({"compute", scene, "--strategy", "walking", "--angle", "left_knee=40"}).out,
                HasSubstr("walking, in effect right-foot"));
}

TEST_F(ComputeCommand, KeepsTheStrategyInTheSavedScene)
{
    const std::string scene = standingScene();
    for (const char* strategy : {"walking", "hands-and-knees", "sitting-no-feet"}) {
        compute(scene, {"--strategy", strategy, "--save", scene});
        EXPECT_EQ(compute(scene)["strategy_asked"], strategy);
    }
}

// Standing on one foot reaches every joint; sitting reaches neither the knees nor the balls of the feet.
TEST_F(ComputeCommand, ShowsNoResultOfAnEarlierComputation)
{
    const std::string scene = standingScene();
    const nlohmann::json first = compute(scene, {"--strategy", "right-foot", "--save", scene});
    EXPECT_EQ(jointOf(first, "left_ankle")["status"], "result");
    EXPECT_THAT(contentOf(scene), HasSubstr("SSTR_Force_Moment"));
    const nlohmann::json second = compute(scene, {"--strategy", "sitting"});
    EXPECT_EQ(jointOf(second, "left_knee")["status"], "none");
    EXPECT_EQ(jointOf(second, "right_ball")["status"], "none");
}

TEST_F(ComputeCommand, LeavesTheSceneFileAloneWithoutSave)
{
    const std::string scene = standingScene();
    const std::string before = contentOf(scene);
    compute(scene, {"--weight", std::string(kPalm) + "=500", "--angle", "waist=2", "--strategy", "walking"});
    EXPECT_EQ(contentOf(scene), before);
}

TEST_F(ComputeCommand, RemovesEarlierLoadsBeforeNewOnesOnRequest)
{
    const std::string scene = standingScene();
    compute(scene, {"--weight", "head.distal=500", "--torque", "waist=1,0,0", "--offset-load", "t7.proximal@0,0,1=5g",
                    "--strategy", "left-foot", "--save", scene});
    const nlohmann::json output = compute(scene, {"--weight", "neck.distal=700", "--clear-loads"});
    ASSERT_EQ(output["loads"].size(), 1u);
    EXPECT_EQ(output["loads"][0]["site"], "neck.distal");
    EXPECT_TRUE(output["offset_loads"].empty());
    EXPECT_TRUE(output["torques"].empty());
    EXPECT_EQ(output["strategy_asked"], "left-foot");
}

TEST_F(ComputeCommand, PlacesTheFigureByRootAndFloor)
{
    const std::string scene = standingScene();
    compute(scene, {"--root", "1,200,3,0,0,0", "--save", scene});
    EXPECT_THAT(runProgram({"figure", scene}).out, HasSubstr("site lower_torso.proximal at (1.00, 200.00, 3.00) cm"));
    compute(scene, {"--floor", "--save", scene});
    EXPECT_THAT(runProgram({"figure", scene}).out, HasSubstr("site lower_torso.proximal at (1.00, 92.75, 3.00) cm"));
}

TEST_F(ComputeCommand, AsksForAHumanWhenTheSceneHasSeveral)
{
    nlohmann::json scene = nlohmann::json::parse(contentOf(standingScene("anna")));
    scene["humans"].push_back(scene["humans"][0]);
    scene["humans"][1]["name"] = "berta";
    const std::string path = folder.write("two.json", scene.dump());

    const ProgramRun unnamed = runProgram({"compute", path});
    EXPECT_EQ(unnamed.status, 2);
    EXPECT_EQ(unnamed.out, "");
    EXPECT_EQ(unnamed.err, "sstr: error: the scene has 2 humans: anna, berta. Choose one with --human NAME.\n");
    EXPECT_EQ(compute(path, {"--human", "berta"})["human"], "berta");
    const ProgramRun wrong = runProgram({"compute", path, "--human", "bertha"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(wrong.err, HasSubstr("Did you mean berta?"));
}

TEST_F(ComputeCommand, SaysVerboselyOnStandardErrorWhatItDid)
{
    const std::string scene = standingScene(), copy = folder.file("copy.json");
    const ProgramRun quiet = runProgram({"compute", scene});
    const ProgramRun verbose = runProgram({"compute", scene, "--verbose", "--save", copy});
    EXPECT_EQ(verbose.out, quiet.out);
    EXPECT_EQ(quiet.err, "");
    EXPECT_THAT(verbose.err, HasSubstr("sstr: note: figure standing: 40 joints, standing on the floor\n"));
    EXPECT_THAT(verbose.err, HasSubstr("sstr: note: saved " + copy));
}

TEST_F(ComputeCommand, WritesTheDocumentedCsvColumns)
{
    const std::string scene = standingScene();
    const ProgramRun run = runProgram({"compute", scene, "--format", "csv"});
    const nlohmann::json output = compute(scene);
    std::istringstream lines(run.out);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "joint,side,twin,status,force_x_kgf,force_y_kgf,force_z_kgf,force_kgf,force_n,"
                    "moment_x_nm,moment_y_nm,moment_z_nm,moment_nm");
    std::size_t rows = 0;
    while (std::getline(lines, line)) {
        std::vector<std::string> fields(1);
        for (const char c : line) {
            if (c == ',')
                fields.emplace_back();
            else
                fields.back() += c;
        }
        ASSERT_EQ(fields.size(), 13u) << line;
        const nlohmann::json joint = jointOf(output, fields[0]);
        EXPECT_EQ(joint["status"], fields[3]);
        if (fields[3] == "result") {
            EXPECT_EQ(joint["force_y_kgf"].get<float>(), numberIn<float>(fields[5])) << line;
            EXPECT_EQ(joint["force_n"].get<float>(), numberIn<float>(fields[8])) << line;
            EXPECT_EQ(joint["moment_nm"].get<float>(), numberIn<float>(fields[12])) << line;
        }
        ++rows;
    }
    EXPECT_EQ(rows, output["joints"].size());
}

TEST_F(ComputeCommand, NamesEachJointsTwinInTheOutput)
{
    const nlohmann::json output = compute(standingScene());
    EXPECT_EQ(jointOf(output, "right_knee")["side"], "right");
    EXPECT_EQ(jointOf(output, "right_knee")["twin"], "left_knee");
    EXPECT_EQ(jointOf(output, "left_knee")["twin"], "right_knee");
    EXPECT_EQ(jointOf(output, "waist")["side"], "centre");
    EXPECT_TRUE(jointOf(output, "waist")["twin"].is_null());
}

TEST_F(ComputeCommand, IgnoresTheLocaleOfTheProcess)
{
    const std::string scene = standingScene();
    const ProgramRun plain = runProgram({"compute", scene, "--format", "csv"});
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    const ProgramRun german = runProgram({"compute", scene, "--format", "csv", "--gravity", "0,-980.665,0"});
    unsetenv("LC_ALL");
    EXPECT_EQ(german.out, plain.out);
}

TEST(Help, IsPrintedForEveryCommandWithAnExample)
{
    for (const char* command : {"compute", "explain", "figure", "loads", "report", "new-scene"}) {
        const ProgramRun run = runProgram({command, "--help"});
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, "");
        EXPECT_THAT(run.out, HasSubstr("Example")) << command;
        EXPECT_THAT(run.out, HasSubstr(std::string("sstr ") + command)) << command;
    }
    EXPECT_THAT(runProgram({"--help"}).out, HasSubstr("Exit status"));
    EXPECT_THAT(runProgram({"--version"}).out, StartsWith("sstr "));
}

}   // namespace
