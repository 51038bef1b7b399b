// loads and new-scene: what a scene asks for, and how one is made.
#include "Program.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

using ::testing::HasSubstr;

namespace {

class LoadsCommand : public ProgramTest {};

TEST_F(LoadsCommand, ListsLoadsTorquesStrategyAndGravityAsATable)
{
    const ProgramRun run = runProgram({"loads", example("sitting")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    for (const char* text : {"strategy  sitting", "(0.000, -980.665, 0.000) cm/s²", "1200 g", "in the site's axes",
                             "right_wrist", "(0.000, 0.000, 1.200) N·m", "(0.00, 0.00, 8.00)"})
        EXPECT_THAT(run.out, HasSubstr(text));
}

TEST_F(LoadsCommand, ListsTheSameInJson)
{
    const ProgramRun run = runProgram({"loads", example("sitting"), "--format", "json"});
    ASSERT_EQ(run.status, 0);
    const nlohmann::json output = nlohmann::json::parse(run.out);
    EXPECT_EQ(output["format"], "sstr-loads");
    EXPECT_EQ(output["strategy_asked"], "sitting");
    EXPECT_EQ(output["gravity_cm_s2"], nlohmann::json({0.0, -980.665, 0.0}));
    EXPECT_EQ(output["loads"].size(), 2u);
    EXPECT_EQ(output["loads"][1]["weight_g"], 1200);
    EXPECT_TRUE(output["loads"][0]["weight_g"].is_null());
    EXPECT_EQ(output["offset_loads"][0]["offset_z_cm"], 8);
    EXPECT_EQ(output["torques"][0]["joint"], "right_wrist");
    EXPECT_EQ(output["torques"][0]["moment_z_nm"], 1.2);
}

TEST_F(LoadsCommand, WritesTheDocumentedCsvColumns)
{
    const ProgramRun run = runProgram({"loads", example("sitting"), "--format", "csv"});
    std::istringstream lines(run.out);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "kind,place,type,offset_x_cm,offset_y_cm,offset_z_cm,force_x_kgf,force_y_kgf,force_z_kgf,weight_g,"
                    "moment_x_nm,moment_y_nm,moment_z_nm,text");
    std::size_t rows = 0;
    for (; std::getline(lines, line); ++rows)
        EXPECT_EQ(std::count(line.begin(), line.end(), ','), 13) << line;
    EXPECT_EQ(rows, 6u);   // two loads, an offset load, a torque, gravity, strategy
    EXPECT_THAT(run.out, HasSubstr("\noffset_load,left_hand.left_palmcenter,local,0,0,8,0,0.3,0,,,,,\n"));
    EXPECT_THAT(run.out, HasSubstr("\ntorque,right_wrist,,,,,,,,,0,0,1.2,\n"));
    EXPECT_THAT(run.out, HasSubstr("\nstrategy,,,,,,,,,,,,,sitting\n"));
}

TEST_F(LoadsCommand, ShowsHandLoadsThatOtherToolsLeftOnTheFigure)
{
    nlohmann::json scene = nlohmann::json::parse(contentOf(standingScene()));
    scene["humans"][0]["properties"]["figure"]["RightZelHandLoads"] = nlohmann::json({"s", "0 -3 0"});
    const std::string path = folder.write("hand.json", scene.dump());
    EXPECT_THAT(runProgram({"loads", path}).out, HasSubstr("RightZelHandLoads"));
    // 3 kgf beside the hand's own 457.5 g
    EXPECT_NEAR(vectorOf(jointOf(compute(path), "right_wrist"), "force", "kgf")[1], -3.4575, roundingBound(5, 3.4575));
}

// The second of two offset loads names a site that the figure does not have; the analysis drops it
// silently, the program does not.
TEST_F(LoadsCommand, WarnsOfSavedEntriesThatTheAnalysisDropped)
{
    std::string text = contentOf(example("lift_box"));
    const std::size_t list = text.find("SSTR_LoadWithOffsetList");
    const std::size_t key = text.find("left_hand.left_palmcenter", list);
    ASSERT_NE(key, std::string::npos);
    text.replace(key, 9, "lost_hand");
    const std::string figurePath = "../figures/human.urdf";
    text.replace(text.find(figurePath), figurePath.size(), SSTR_SOURCE_DIR "/figures/human.urdf");
    const ProgramRun run = runProgram({"loads", folder.write("dropped.json", text)});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, ::testing::HasSubstr("figure worker: its property SSTR_LoadWithOffsetList has 2 entries, of "
                                              "which 1 cannot be read"));
}

TEST_F(LoadsCommand, LeavesTheSceneFileAlone)
{
    const std::string scene = standingScene();
    const std::string before = contentOf(scene);
    EXPECT_EQ(runProgram({"loads", scene}).status, 0);
    EXPECT_EQ(contentOf(scene), before);
}

class NewSceneCommand : public ProgramTest {
protected:
    static constexpr const char* kHuman = SSTR_SOURCE_DIR "/figures/human.urdf";
};

TEST_F(NewSceneCommand, MakesAHumanThatStandsOnTheFloor)
{
    const ProgramRun run = runProgram({"new-scene", kHuman, folder.file("new.json"), "--name", "anna"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out + run.err, "");
    const nlohmann::json output = compute(folder.file("new.json"));
    EXPECT_EQ(output["human"], "anna");
    EXPECT_THAT(runProgram({"figure", folder.file("new.json")}).out, HasSubstr("site left_foot.sole at (8.59, 0.00,"));
}

TEST_F(NewSceneCommand, ReplacesAFileOnlyWithForce)
{
    const std::string scene = folder.write("old.json", "precious");
    const ProgramRun refused = runProgram({"new-scene", kHuman, scene});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.err, HasSubstr("exists; it is replaced only with --force"));
    EXPECT_EQ(contentOf(scene), "precious");
    EXPECT_EQ(runProgram({"new-scene", kHuman, scene, "--force"}).status, 0);
    EXPECT_NE(contentOf(scene), "precious");
}

TEST_F(NewSceneCommand, RefusesAFigureThatPlaysNoHuman)
{
    std::filesystem::copy_file(kHuman, folder.file("bare.urdf"));   // without its roles file
    const ProgramRun bare = runProgram({"new-scene", folder.file("bare.urdf"), folder.file("new.json")});
    EXPECT_EQ(bare.status, 2);
    EXPECT_THAT(bare.err, HasSubstr("role"));
    EXPECT_FALSE(std::filesystem::exists(folder.file("new.json")));
    const ProgramRun given = runProgram({"new-scene", folder.file("bare.urdf"), folder.file("new.json"), "--roles",
                                         SSTR_SOURCE_DIR "/figures/human.roles.json"});
    EXPECT_EQ(given.status, 0) << given.err;
    EXPECT_EQ(compute(folder.file("new.json"))["strategy_asked"], "two-feet");
}

TEST_F(NewSceneCommand, DoesNotWriteASceneOntoAFiguresName)
{
    for (const char* name : {"human.urdf", "human.figure.json", "human.roles.json"}) {
        const ProgramRun run = runProgram({"new-scene", kHuman, folder.file(name)});
        EXPECT_EQ(run.status, 2);
        EXPECT_THAT(run.err, HasSubstr(name));
        EXPECT_FALSE(std::filesystem::exists(folder.file(name)));
    }
}

}   // namespace
