// figure: the tree of a figure, of every kind of file.
#include "Program.h"

#include <filesystem>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

class FigureCommand : public ProgramTest {
protected:
    static constexpr const char* kHuman = SSTR_SOURCE_DIR "/figures/human.urdf";
};

TEST_F(FigureCommand, ShowsMassesSitesAndAnglesWithLimits)
{
    const ProgramRun run = runProgram({"figure", kHuman});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    for (const char* text : {"41 segments, 40 joints", "total mass 75.000 kg", "segment head: 4.216 kg",
                             "site right_hand.right_palmcenter at ", "joint left_knee: ", " 0.0 [0.0 to 135.0] deg",
                             "joint right_hip: flexion 0.0 [-30.0 to 120.0], abduction 0.0 [-30.0 to 45.0]"})
        EXPECT_THAT(run.out, HasSubstr(text));
}

// A child stands below its parent, two blanks further in.
TEST_F(FigureCommand, IndentsEachSegmentBelowItsParent)
{
    const std::string out = runProgram({"figure", kHuman}).out;
    const auto indentation = [&](const std::string& name) {
        const std::size_t at = out.find("segment " + name + ":");
        return at == std::string::npos ? std::string::npos : at - out.rfind('\n', at) - 1;
    };
    EXPECT_EQ(indentation("lower_torso"), 0u);
    EXPECT_EQ(indentation("l5"), 2u);
    EXPECT_EQ(indentation("right_upper_leg"), 2u);
    EXPECT_EQ(indentation("right_lower_leg"), 4u);
    EXPECT_LT(out.find("segment right_upper_leg"), out.find("segment right_lower_leg"));
}

TEST_F(FigureCommand, ShowsASceneHumanInItsPosture)
{
    const ProgramRun run = runProgram({"figure", example("lift_box")});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("figure worker: "));
    EXPECT_THAT(run.out, HasSubstr("flexion 69.9 [-30.0 to 120.0]"));
}

TEST_F(FigureCommand, ShowsAFigureWithoutRoles)
{
    std::filesystem::copy_file(kHuman, folder.file("bare.urdf"));   // without its roles file
    const ProgramRun run = runProgram({"figure", folder.file("bare.urdf")});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("total mass 75.000 kg"));
}

TEST_F(FigureCommand, TakesTheRolesFileThatItIsGiven)
{
    std::filesystem::copy_file(kHuman, folder.file("bare.urdf"));
    const ProgramRun run =
        runProgram({"figure", folder.file("bare.urdf"), "--roles", SSTR_SOURCE_DIR "/figures/human.roles.json"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(runProgram({"figure", folder.file("bare.urdf"), "--roles", folder.file("none.json")}).status, 2);
}

TEST_F(FigureCommand, WritesAPosedFigureThatShowsTheSamePlaces)
{
    const std::string posed = folder.file("human.figure.json");
    const ProgramRun written = runProgram({"figure", kHuman, "--posed", posed});
    EXPECT_EQ(written.status, 0) << written.err;
    const ProgramRun read = runProgram({"figure", posed});
    EXPECT_EQ(read.status, 0) << read.err;
    EXPECT_THAT(read.out, HasSubstr("(posed)"));
    const auto line = [](const std::string& out) {
        const std::size_t at = out.find("site right_hand.right_palmcenter at ");
        return out.substr(at, out.find('\n', at) - at);
    };
    EXPECT_EQ(line(read.out), line(written.out));
    EXPECT_THAT(line(read.out), HasSubstr("site right_hand"));
}

TEST_F(FigureCommand, TellsVerboselyWhatWasJoinedOrMerged)
{
    const ProgramRun run = runProgram({"figure", kHuman, "--verbose"});
    EXPECT_EQ(run.status, 0);
    const std::size_t notes = run.out.find("\nnotes\n");
    ASSERT_NE(notes, std::string::npos);
    EXPECT_GT(run.out.size(), notes + 20);
    EXPECT_THAT(runProgram({"figure", kHuman}).out, Not(HasSubstr("\nnotes\n")));
}

TEST_F(FigureCommand, RefusesOptionsThatDoNotFitTheKindOfFile)
{
    const ProgramRun roles = runProgram({"figure", example("lift_box"), "--roles", "x.json"});
    EXPECT_EQ(roles.status, 2);
    EXPECT_THAT(roles.err, HasSubstr("--roles"));
    const ProgramRun human = runProgram({"figure", kHuman, "--human", "worker"});
    EXPECT_EQ(human.status, 2);
    EXPECT_THAT(human.err, HasSubstr("--human"));
    const ProgramRun posed = runProgram({"figure", kHuman, "--posed", folder.file("human.json")});
    EXPECT_EQ(posed.status, 2);
    EXPECT_THAT(posed.err, HasSubstr("expected a name that ends in .figure.json"));
    EXPECT_FALSE(std::filesystem::exists(folder.file("human.json")));
}

TEST_F(FigureCommand, ReportsAFigureThatCannotBeRead)
{
    const std::string broken = folder.write("broken.urdf", "<robot name=\"x\"><link name=\"a\"/>");
    for (const std::string& path : {broken, folder.file("missing.urdf"), folder.file("missing.figure.json")}) {
        const ProgramRun run = runProgram({"figure", path});
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, HasSubstr("sstr: error: " + path));
    }
}

TEST_F(FigureCommand, ReportsAPosedFigureThatCannotBeWritten)
{
    const ProgramRun run = runProgram({"figure", kHuman, "--posed", folder.file("none/human.figure.json")});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("human.figure.json"));
}

}   // namespace
