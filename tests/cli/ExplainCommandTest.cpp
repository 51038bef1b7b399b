// explain: what it shows of a joint, as a table and as JSON, and how its options change the scene.
#include "Program.h"
#include "SmallFigure.h"

#include <cmath>
#include <sstream>

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

class ExplainCommand : public ProgramTest {
protected:
    static nlohmann::json explained(const std::string& scene, const std::string& joint,
                                    std::vector<std::string> options = {})
    {
        options.insert(options.begin(), {"explain", scene, joint, "--format", "json"});
        const ProgramRun run = runProgram(options);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        const nlohmann::json output = nlohmann::json::parse(run.out, nullptr, false);
        EXPECT_FALSE(output.is_discarded()) << run.out;
        return output;
    }
    /// A wrong command line is answered on standard error, with exit status 2.
    static void expectRefused(const std::vector<std::string>& arguments, const std::string& message)
    {
        const ProgramRun run = runProgram(arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, StartsWith("sstr: error: "));
        EXPECT_THAT(run.err, HasSubstr(message));
    }
    /// Every number of an object's keys in another one's.
    static void expectSameNumbers(const nlohmann::json& object, const nlohmann::json& joint)
    {
        for (const char* key : {"force_x_kgf", "force_y_kgf", "force_z_kgf", "force_kgf", "moment_x_nm", "moment_y_nm",
                                "moment_z_nm", "moment_nm"})
            EXPECT_EQ(object.at(key), joint.at(key)) << key;
    }
};

constexpr const char* kExamples[] = {"lift_box", "one_foot_reach",  "walking",
                                     "sitting",  "sitting_no_feet", "hands_and_knees"};

class ExplainExample : public ExplainCommand, public ::testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(All, ExplainExample, ::testing::ValuesIn(kExamples),
                         [](const auto& example) { return std::string(example.param); });

// Stored is what compute shows, to the bit. A walk's contributions add up to it within the roundings of both sums;
// a moment of at most 0.01 N·m is stored as a placeholder.
TEST_P(ExplainExample, ExplainsEveryJointToWhatComputeShows)
{
    const nlohmann::json computed = compute(example(GetParam()));
    int walks = 0;
    for (const nlohmann::json& joint : computed["joints"]) {
        const std::string name = joint["joint"];
        SCOPED_TRACE(name);
        const nlohmann::json e = explained(example(GetParam()), name);
        EXPECT_EQ(e["joint"], name);
        EXPECT_EQ(e["strategy_effective"], computed["strategy_effective"]);
        EXPECT_EQ(e["status"], joint["status"]);
        if (joint["status"] == "none") {
            EXPECT_TRUE(e["stored"].is_null());
            continue;
        }
        expectSameNumbers(e["stored"], joint);
        if (e["method"] != "walk")
            continue;
        ++walks;
        double forces = 0;
        for (const nlohmann::json& each : e["contributions"])
            forces += each["force_kgf"].get<double>();
        // as many terms as contributions and joints; no way along the body is longer than 300 cm
        const double bound = roundingBound(static_cast<int>(e["contributions"].size()) + 48, forces);
        for (const char* key : {"force_x_kgf", "force_y_kgf", "force_z_kgf"})
            EXPECT_NEAR(e["sum"][key], e["stored"][key], bound);
        for (const char* key : {"moment_x_nm", "moment_y_nm", "moment_z_nm"})
            EXPECT_NEAR(e["sum"][key], e["stored"][key], e["placeholder"] ? 0.01 + 1e-5 : bound * 300 * 0.0980665);
    }
    EXPECT_GT(walks, 20);
}

TEST_F(ExplainCommand, ShowsATableSortedByTheMomentWithTheSumThatIsStored)
{
    const ProgramRun run = runProgram({"explain", example("lift_box"), "l4_l5"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    for (const char* text : {"human     worker (figure worker)\n", "joint     l4_l5\n", "strategy  two-feet\n",
                             "method    walk", "by share of the moment", "% of M", "weight with offset", "placeholder"})
        EXPECT_THAT(run.out, HasSubstr(text));
    EXPECT_THAT(run.out, Not(HasSubstr("  counts  ")));   // nothing is halved here

    // the head weighs most on the lower back, and the sum is that of compute's table
    const std::size_t head = run.out.find("\n  segment weight      head ");
    ASSERT_NE(head, std::string::npos);
    EXPECT_LT(head, run.out.find("\n  weight with offset  right_hand.right_palmcenter"));
    const std::string back = runProgram({"compute", example("lift_box")}).out;
    EXPECT_THAT(back, HasSubstr("46.833   0.000   46.833  459.3  129.934"));
    EXPECT_THAT(run.out, HasSubstr("-46.833   0.000   46.833   100.0  129.934   0.000   0.000  129.934   100.0\n"));
    EXPECT_THAT(run.out, HasSubstr("-46.833   0.000   46.833          129.934   0.000   0.000  129.934\n"));
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(line.size(), 160u) << line;   // bytes, at least as many as columns
}

TEST_F(ExplainCommand, SortsByTheForceOnRequest)
{
    const nlohmann::json byForce = explained(example("lift_box"), "l4_l5", {"--sort", "force"});
    EXPECT_EQ(byForce["sorted_by"], "force");
    const auto& contributions = byForce["contributions"];
    EXPECT_EQ(contributions[0]["place"], "head");
    EXPECT_EQ(contributions[1]["kind"], "segment_weight");   // not a load, as by the moment
    EXPECT_EQ(contributions[1]["place"], "upper_torso");
    for (std::size_t i = 1; i < contributions.size(); ++i)
        EXPECT_GE(std::fabs(contributions[i - 1]["force_share_percent"].get<double>()),
                  std::fabs(contributions[i]["force_share_percent"].get<double>()));
    EXPECT_THAT(runProgram({"explain", example("lift_box"), "l4_l5", "--sort", "force"}).out,
                HasSubstr("by share of the force"));
}

TEST_F(ExplainCommand, HasEveryDocumentedKeyOfAContribution)
{
    const nlohmann::json e = explained(example("lift_box"), "right_wrist");
    EXPECT_EQ(e["format"], "sstr-explain");
    EXPECT_EQ(e["version"], 1);
    EXPECT_EQ(e["strategy_asked"], "two-feet");
    EXPECT_EQ(e["walks"], 1);
    EXPECT_EQ(e["sorted_by"], "moment");
    EXPECT_EQ(e["left_out"].size(), 0u);
    EXPECT_EQ(e["placeholder"], false);
    int offsets = 0;
    for (const nlohmann::json& each : e["contributions"]) {
        for (const char* key : {"kind", "type", "place", "factor", "point_x_cm", "point_y_cm", "point_z_cm",
                                "force_x_kgf", "force_y_kgf", "force_z_kgf", "force_kgf", "moment_x_nm", "moment_y_nm",
                                "moment_z_nm", "moment_nm", "force_share_percent", "moment_share_percent"})
            EXPECT_TRUE(each.contains(key)) << key;
        EXPECT_EQ(each["factor"], 1);
        if (each["kind"] == "offset_load") {
            ++offsets;
            EXPECT_EQ(each["type"], "weight");
            EXPECT_EQ(each["place"], "right_hand.right_palmcenter");
            EXPECT_EQ(each["force_y_kgf"], -2.5);
        }
        if (each["kind"] == "segment_weight") {
            EXPECT_TRUE(each["type"].is_null());
        }
    }
    EXPECT_EQ(offsets, 1);
}

// The legs of two feet and of sitting are no sums: terms, not shares.
TEST_F(ExplainCommand, ListsTheTermsOfLegs)
{
    const nlohmann::json standing = explained(example("lift_box"), "right_hip");
    EXPECT_EQ(standing["method"], "two-feet-legs");
    EXPECT_EQ(standing["support"], "both-feet");
    EXPECT_NEAR(standing["leg_shares_percent"]["right"].get<double>()
                    + standing["leg_shares_percent"]["left"].get<double>(),
                100, 1e-4);
    EXPECT_EQ(standing["terms"][0]["what"], "joint result");
    EXPECT_EQ(standing["terms"][0]["place"], "waist");
    EXPECT_TRUE(standing["terms"][0]["point_x_cm"].is_null());   // the hip's moment is the waist's alone
    EXPECT_FALSE(standing.contains("contributions"));
    EXPECT_FALSE(standing["rules"].empty());
    EXPECT_THAT(standing["not_counted"].get<std::string>(), HasSubstr("the weight of the feet"));

    const nlohmann::json sitting = explained(example("sitting"), "left_ankle");
    EXPECT_EQ(sitting["method"], "sitting-legs");
    EXPECT_FALSE(sitting.contains("support"));
    EXPECT_EQ(sitting["terms"].size(), 3u);   // two weights less what the hip carries
    EXPECT_THAT(runProgram({"explain", example("sitting"), "left_hip"}).out, HasSubstr("in kgf·m, not in N·m."));
    EXPECT_THAT(runProgram({"explain", example("sitting"), "left_knee"}).out,
                HasSubstr("Sitting leaves the knees without a result."));
}

TEST_F(ExplainCommand, SaysThatAStrategyDoesNotReachAJoint)
{
    const ProgramRun run = runProgram({"explain", example("lift_box"), "right_ball"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("none: two-feet does not reach this joint, it has no result"));
    const nlohmann::json e = explained(example("lift_box"), "right_ball");
    EXPECT_EQ(e["method"], "not-reached");
    EXPECT_EQ(e["status"], "none");
}

TEST_F(ExplainCommand, TakesTheOptionsThatChangeAScene)
{
    const std::vector<std::string> changes = {"--strategy",    "right-foot",
                                              "--angle",       "right_elbow=90",
                                              "--stature",     "180",
                                              "--gravity",     "0,-981,0",
                                              "--weight",      "right_hand.right_palmcenter=5000",
                                              "--local-load",  "head.distal=1,0,0",
                                              "--offset-load", "left_hand.distal@0,0,30=2000g",
                                              "--torque",      "waist=1,2,3",
                                              "--root",        "0,100,0,0,30,0"};
    const std::string scene = standingScene();
    const std::string before = contentOf(scene);
    const nlohmann::json e = explained(scene, "waist", changes);
    expectSameNumbers(e["stored"], jointOf(compute(scene, changes), "waist"));
    EXPECT_EQ(e["strategy_effective"], "right-foot");
    EXPECT_EQ(contentOf(scene), before);
}

TEST_F(ExplainCommand, SaysWhatWalkingComesDownTo)
{
    const ProgramRun run = runProgram({"explain", example("walking"), "waist"});
    EXPECT_THAT(run.out, HasSubstr("strategy  walking, in effect right-foot\n"));
}

TEST_F(ExplainCommand, WarnsOfOffsetLoadsThatDoNotCountAtAnUnloadedPalm)
{
    const ProgramRun run = runProgram(
        {"explain", standingScene(), "right_wrist", "--offset-load", "right_hand.right_palmcenter@0,0,20=500g"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, HasSubstr("sstr: warning: the loads with offsets at right_hand.right_palmcenter do not"));
    EXPECT_THAT(run.out, Not(HasSubstr("with offset")));
}

// Two forces of 3e38 kgf exceed the largest float together.
TEST_F(ExplainCommand, ShowsAResultThatIsNoNumberAsSuchAndExitsWithOne)
{
    std::vector<std::string> arguments = {
        "explain", standingScene(),           "waist",    "--load", "head.distal=3e38,0,0",
        "--load",  "head.eye_level=3e38,0,0", "--format", "json"};
    const ProgramRun json = runProgram(arguments);
    EXPECT_EQ(json.status, 1);
    EXPECT_EQ(json.err, "sstr: error: the result at joint waist is not a finite number.\n");
    const nlohmann::json e = nlohmann::json::parse(json.out);
    EXPECT_EQ(e["status"], "not-finite");
    EXPECT_TRUE(e["stored"]["force_x_kgf"].is_null());
    for (const nlohmann::json& each : e["contributions"])
        EXPECT_TRUE(each["force_share_percent"].is_null());
    arguments.back() = "table";
    const ProgramRun table = runProgram(arguments);
    EXPECT_EQ(table.status, 1);
    EXPECT_THAT(table.out, HasSubstr("not finite"));
}

TEST_F(ExplainCommand, AnswersAnUnknownJointWithNearNames)
{
    expectRefused({"explain", example("lift_box"), "right_nee"},
                  "JOINT: figure worker has no joint \"right_nee\". Did you mean right_knee");
}

TEST_F(ExplainCommand, TellsWhereTheJointsStandWhenNoNameIsNear)
{
    expectRefused({"explain", example("lift_box"), "qqqqqq"},
                  "has no joint \"qqqqqq\". sstr figure SCENE lists them.\n");
}

// Two knees of one name: compute calls the second by its full name, and so may options and explain.
TEST_F(ExplainCommand, FindsAJointByTheNameThatComputePrints)
{
    SmallFigure small = smallBody();
    nlohmann::json& figure = small.document();
    for (auto& joint : figure["joints"])
        if (joint["name"] == "left_knee")
            joint["name"] = "right_knee";
    for (auto& site : figure["sites"])
        for (auto& joint : site["joints"])
            if (joint == "right_knee" || joint == "left_knee")
                joint = "man." + joint.get<std::string>();
    for (const char* side : {"right", "left"})
        figure[side]["knee"] = std::string("man.") + side + "_knee";
    const std::string path = folder.write("small.figure.json", small.text()), scene = folder.file("small.json");
    ASSERT_EQ(runProgram({"new-scene", path, scene}).status, 0);

    const std::vector<std::string> foot = {"--strategy", "right-foot"};
    const nlohmann::json computed = compute(scene, foot);
    const nlohmann::json e = explained(scene, "man.left_knee", foot);
    EXPECT_EQ(e["joint"], "man.left_knee");
    EXPECT_FLOAT_EQ(e["stored"]["force_kgf"].get<float>(), 5);   // lower leg 4, foot 0.8, toes 0.2
    expectSameNumbers(e["stored"], jointOf(computed, "man.left_knee"));
    EXPECT_EQ(explained(scene, "right_knee", foot)["joint"], "right_knee");
    EXPECT_EQ(runProgram({"compute", scene, "--angle", "man.left_knee=5"}).status, 0);
    expectRefused({"explain", scene, "man.left_nee"}, "Did you mean man.left_knee");

    // a torque acts on that joint alone, but the scene keeps torques by bare names
    const ProgramRun turned =
        runProgram({"explain", scene, "man.left_knee", "--strategy", "right-foot", "--torque", "man.left_knee=1,2,3"});
    EXPECT_EQ(turned.status, 0);
    EXPECT_THAT(turned.err, StartsWith("sstr: warning: --torque man.left_knee: torques are listed and saved by the "
                                       "bare name \"right_knee\""));
    EXPECT_THAT(turned.out, HasSubstr("\n  torque          man.left_knee "));
}

TEST_F(ExplainCommand, TellsThatAWalkStops)
{
    EXPECT_THAT(runProgram({"explain", example("hands_and_knees"), "right_hip"}).out,
                HasSubstr("walk: the sum of all that lies beyond the joint, up to where the walk stops\n"));
    EXPECT_THAT(runProgram({"explain", example("lift_box"), "l4_l5"}).out,
                HasSubstr("walk: the sum of all that lies beyond the joint\n"));
}

// Without gravity no direction is down, and the shares of knees and hands are no numbers.
TEST_F(ExplainCommand, ShowsASumThatAShareMakesNoNumberAsSuch)
{
    const ProgramRun run =
        runProgram({"explain", example("hands_and_knees"), "right_hip", "--gravity", "0,0,0", "--clear-loads"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, ::testing::ContainsRegex("\n  joint result +waist +not finite +not finite"));
    EXPECT_THAT(run.out, ::testing::ContainsRegex("\n  sum +not finite +not finite"));
    EXPECT_THAT(run.out, ::testing::ContainsRegex("\n  stored +not finite +not finite"));
}

TEST_F(ExplainCommand, ReportsAWrongJointBesideOtherProblems)
{
    const ProgramRun run =
        runProgram({"explain", standingScene(), "nowhere", "--strategy", "flying", "--angle", "left_knee=999"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 3) << run.err;
}

TEST_F(ExplainCommand, RefusesWrongUsage)
{
    const std::string scene = example("lift_box");
    expectRefused({"explain", scene}, "joint is required");
    expectRefused({"explain", scene, ""}, "joint: expected a value, found \"\"");
    expectRefused({"explain", scene, "waist", "--format", "csv"}, "--format");
    expectRefused({"explain", scene, "waist", "--sort", "name"}, "--sort");
    expectRefused({"explain", scene, "waist", "--save", "other.json"}, "--save");
    expectRefused({"explain", scene, "waist", "extra"}, "extra");
    expectRefused({"explain", folder.file("missing.json"), "waist"}, "missing.json");
}

TEST_F(ExplainCommand, AsksForAHumanWhenTheSceneHasSeveralAndRefusesNone)
{
    nlohmann::json scene = nlohmann::json::parse(contentOf(standingScene("anna")));
    const nlohmann::json anna = scene["humans"][0];
    scene["humans"].push_back(anna);
    scene["humans"][1]["name"] = "berta";
    const std::string two = folder.write("two.json", scene.dump());
    expectRefused({"explain", two, "waist"}, "the scene has 2 humans: anna, berta. Choose one with --human NAME.");
    EXPECT_EQ(explained(two, "waist", {"--human", "berta"})["human"], "berta");
    scene["humans"] = nlohmann::json::array();
    expectRefused({"explain", folder.write("none.json", scene.dump()), "waist"}, "no human");
}

TEST_F(ExplainCommand, ReportsAFullStandardOutput)
{
    const ProgramRun run = runProgram({"explain", standingScene(), "waist"}, "/dev/full");
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("standard output"));
}

}   // namespace
