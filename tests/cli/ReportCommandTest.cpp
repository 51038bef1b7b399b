// report: the lines of the analysis's own report, as they are.
#include "Program.h"
#include "SmallFigure.h"

using ::testing::HasSubstr;

namespace {

class ReportCommand : public ProgramTest {};

TEST_F(ReportCommand, PrintsALineALoadThenStrategyAndGravity)
{
    const ProgramRun run = runProgram({"report", example("lift_box")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, "right_hand.right_palmcenter\tWeight: 2500.0 gr\n"
                       "left_hand.left_palmcenter\tWeight: 2500.0 gr\n"
                       "Strategy: \"Two Feet\"\n"
                       "Gravity: (0.00, -980.66, 0.00) cm/sec^2\n");
}

TEST_F(ReportCommand, TellsGlobalAndLocalLoadsApart)
{
    const ProgramRun run = runProgram({"report", example("hands_and_knees")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "lower_torso.center_of_mass\tGlobal Load: (0.00, 0.00, -1.00) Kg-F\n"
                       "t5.proximal\tLocal Load: (0.00, -0.50, 0.00) Kg-F\n"
                       "head.eye_level\tWeight: 500.0 gr\n"
                       "Strategy: \"Two Feet\"\n"   // hands and knees is kept by the scene, not by the figure
                       "Gravity: (0.00, -980.66, 0.00) cm/sec^2\n");
}

TEST_F(ReportCommand, WarnsThatItCannotTellHandsAndKnees)
{
    EXPECT_EQ(runProgram({"report", example("hands_and_knees")}).err,
              "sstr: warning: the scene's strategy is hands-and-knees, which the report cannot tell: it tells the "
              "stored one.\n");
    // without loads it tells no strategy at all
    const std::string scene = standingScene();
    compute(scene, {"--strategy", "hands-and-knees", "--save", scene});
    EXPECT_EQ(runProgram({"report", scene}).err, "");
}

TEST_F(ReportCommand, EscapesControlCharactersButItsOwnTab)
{
    SmallFigure small = smallBody();
    small.site("right_hand", "g\x1b[31m\tr\x7fip", {-20, 75, 4});
    const std::string figure = folder.write("small.figure.json", small.text()), scene = folder.file("small.json");
    ASSERT_EQ(runProgram({"new-scene", figure, scene}).status, 0);
    compute(scene, {"--weight", "right_hand.g\x1b[31m\tr\x7fip=500", "--save", scene});
    EXPECT_THAT(runProgram({"report", scene}).out,
                ::testing::StartsWith("right_hand.g\\x1b[31m\\x09r\\x7fip\tWeight: 500.0 gr\n"));
}

// Without loads no strategy line follows.
TEST_F(ReportCommand, FollowsNoLoadsWithTheGravityAlone)
{
    const ProgramRun run = runProgram({"report", standingScene()});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "No loads.\nGravity: (0.00, -980.66, 0.00) cm/sec^2\n");
}

TEST_F(ReportCommand, TellsTheScenesGravity)
{
    const std::string scene = standingScene();
    compute(scene, {"--gravity", "0,-160,1.5", "--save", scene});
    EXPECT_EQ(runProgram({"report", scene}).out, "No loads.\nGravity: (0.00, -160.00, 1.50) cm/sec^2\n");
}

TEST_F(ReportCommand, LeavesTheSceneFileAlone)
{
    const std::string scene = standingScene();
    const std::string before = contentOf(scene);
    EXPECT_EQ(runProgram({"report", scene}).status, 0);
    EXPECT_EQ(contentOf(scene), before);
}

TEST_F(ReportCommand, AsksForAHumanWhenTheSceneHasSeveral)
{
    nlohmann::json scene = nlohmann::json::parse(contentOf(standingScene("anna")));
    scene["humans"].push_back(scene["humans"][0]);
    scene["humans"][1]["name"] = "berta";
    const std::string path = folder.write("two.json", scene.dump());
    const ProgramRun unnamed = runProgram({"report", path});
    EXPECT_EQ(unnamed.status, 2);
    EXPECT_EQ(unnamed.out, "");
    EXPECT_EQ(unnamed.err, "sstr: error: the scene has 2 humans: anna, berta. Choose one with --human NAME.\n");
    EXPECT_EQ(runProgram({"report", path, "--human", "berta"}).status, 0);
    EXPECT_THAT(runProgram({"report", path, "--human", "bertha"}).err, HasSubstr("Did you mean berta?"));
}

TEST_F(ReportCommand, ReportsAFullStandardOutput)
{
    const ProgramRun run = runProgram({"report", standingScene()}, "/dev/full");
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("standard output"));
}

TEST_F(ReportCommand, RefusesAMissingSceneAndUnknownOptions)
{
    const std::string missing = folder.file("missing.json");
    const std::vector<std::pair<std::vector<std::string>, std::string>> wrong = {
        {{"report"}, "scene is required"},
        {{"report", missing}, missing},
        {{"report", missing, "--format", "json"}, "--format"}};
    for (const auto& [arguments, named] : wrong) {
        const ProgramRun run = runProgram(arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, ::testing::StartsWith("sstr: error: "));
        EXPECT_THAT(run.err, HasSubstr(named));
    }
}

}   // namespace
