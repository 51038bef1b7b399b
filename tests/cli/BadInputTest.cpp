// Bad input: each wrong thing gets a message that names it and an exit status, and nothing is lost.
#include "Program.h"
#include "Reason.h"
#include "SmallFigure.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <ostream>

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

struct BadOption {
    const char* name;   // of the test
    std::vector<std::string> options;
    const char* message;   // part of it
};

void PrintTo(const BadOption& bad, std::ostream* out)
{
    *out << bad.name;
}

const BadOption badOptions[] = {
    {"GravityNotANumber", {"--gravity", "nan,0,0"}, "--gravity: expected a finite number, found \"nan\""},
    {"GravityInfinite", {"--gravity", "0,inf,0"}, "--gravity: expected a finite number, found \"inf\""},
    {"GravityMinusInfinite", {"--gravity", "0,0,-inf"}, "expected a finite number, found \"-inf\""},
    {"GravityOfTwoNumbers", {"--gravity", "0,-980"}, "--gravity: expected three numbers x,y,z (cm/s²), found"},
    {"GravityWithAnEmptyNumber", {"--gravity", "0,,0"}, "--gravity: expected a decimal number such as 2.5, found \"\""},
    {"GravityWithTrailingJunk", {"--gravity", "0,-980cm,0"}, "found \"-980cm\""},
    {"GravityHexadecimal", {"--gravity", "0,-0x3d,0"}, "found \"-0x3d\""},
    {"GravityWithABlank", {"--gravity", "0, -980,0"}, "found \" -980\""},
    {"GravityTwice", {"--gravity", "0,-1,0", "--gravity", "0,-2,0"}, "--gravity"},
    {"LoadWithDecimalCommas", {"--load", "head.distal=1,5,2,5,3,5"}, "expected three numbers"},
    {"LoadNotANumber", {"--load", "head.distal=1,NAN,3"}, "--load head.distal: expected a finite number, found"},
    {"LoadOfAHugeNumber", {"--load", "head.distal=1,4e38,3"}, "--load head.distal: expected a number of a size"},
    {"LoadWithoutSite", {"--load", "=1,2,3"}, "--load: expected SITE=x,y,z, found \"=1,2,3\""},
    {"LoadWithoutValue", {"--load", "head.distal="}, "--load: expected SITE=x,y,z"},
    {"LoadEmpty", {"--load", ""}, "--load"},
    {"LoadOfNothing", {"--load", "head.distal=0,0,0"}, "a load of less than 0.00001 kgf is not kept"},
    // in single precision it is 9.9999997e-6
    {"LoadOfTheSmallestSize", {"--load", "head.distal=0,-0.00001,0"}, "a load of less than 0.00001 kgf is not kept"},
    {"LoadTwiceAtOneSite", {"--load", "head.distal=1,0,0", "--weight", "head.distal=5"}, "has a load from --load"},
    {"LoadAtAnUnknownSite",
     {"--load", "right_hand.right_palmcentre=1,0,0"},
     "Did you mean right_hand.right_palmcenter"},
    {"LoadAtASiteWithoutItsSegment", {"--load", "right_palmcenter=1,0,0"}, "Did you mean right_hand.right_palmcenter?"},
    {"LocalLoadAtAnUnknownSite", {"--local-load", "hed.distal=1,0,0"}, "--local-load: figure worker has no site"},
    {"WeightNegative", {"--weight", "head.distal=-5"}, "--weight head.distal: expected a weight of 0 g or more"},
    {"WeightWithAUnit", {"--weight", "head.distal=5kg"}, "--weight head.distal: expected a decimal number"},
    {"WeightAtAnUnknownSite", {"--weight", "head.top=5"}, "--weight: figure worker has no site \"head.top\""},
    {"OffsetLoadWithoutOffset", {"--offset-load", "head.distal=5g"}, "--offset-load: expected SITE@ox,oy,oz=x,y,z"},
    {"OffsetLoadWithoutUnit", {"--offset-load", "head.distal@0,0,1=5"}, "or a weight like 2500g, found \"5\""},
    {"OffsetLoadLocalWeight", {"--offset-load", "local:head.distal@0,0,1=5g"}, "local: takes no weight"},
    {"OffsetLoadAtAnUnknownSite", {"--offset-load", "head.dist@0,0,1=5g"}, "Did you mean head.distal"},
    {"OffsetNotANumber", {"--offset-load", "head.distal@0,nan,1=5g"}, "expected a finite number, found \"nan\""},
    {"TorqueAtAnUnknownJoint",
     {"--torque", "right_wirst=0,0,1"},
     "--torque: figure worker has no joint \"right_wirst\""},
    {"TorqueTwice", {"--torque", "waist=0,0,1", "--torque", "waist=0,0,2"}, "--torque waist: the joint's torque is"},
    {"AngleOfAnUnknownJoint", {"--angle", "left_nee=3"}, "Did you mean left_knee"},
    {"AngleOutsideItsLimits", {"--angle", "left_knee=170"}, "of 170 degrees is outside its limits, 0 to 135 degrees"},
    {"AngleTooMany", {"--angle", "left_knee=1,2"}, "--angle left_knee: the joint has 1 angle, found 2"},
    {"AngleNotANumber", {"--angle", "left_knee=nan"}, "--angle left_knee: expected a finite number, found \"nan\""},
    {"AngleTwice", {"--angle", "left_knee=1", "--angle", "left_knee=2"}, "the joint's angles are given twice"},
    {"StrategyUnknown",
     {"--strategy", "two-feets"},
     "--strategy: found \"two-feets\", expected one of two-feet, right"},
    {"StrategyEmpty", {"--strategy", ""}, "--strategy"},
    {"HumanUnknown", {"--human", "walker"}, "Did you mean worker?"},
    {"StatureTooSmall", {"--stature", "3"}, "expected a stature of 30 to 300 cm, found 3"},
    {"StatureInfinite", {"--stature", "inf"}, "--stature: expected a finite number, found \"inf\""},
    {"MassNegative", {"--mass", "-75"}, "expected a body mass above 0 up to 1000 kg, found -75"},
    {"MassNotANumber", {"--mass", "heavy"}, "--mass: expected a decimal number such as 2.5, found \"heavy\""},
    {"SexUnknown", {"--sex", "tall"}, "--sex"},
    {"FormatUnknown", {"--format", "xml"}, "--format"},
    {"RootOfThreeNumbers", {"--root", "1,2,3"}, "--root: expected six numbers"},
    {"OptionUnknown", {"--wieght", "head.distal=5"}, "--wieght"},
    {"SaveOntoAFigure",
     {"--save", "human.figure.json"},
     "--save: \"human.figure.json\" is the name of a figure's file"},
};

class BadOptionTest : public ProgramTest, public ::testing::WithParamInterface<BadOption> {};

INSTANTIATE_TEST_SUITE_P(Compute, BadOptionTest, ::testing::ValuesIn(badOptions),
                         [](const auto& bad) { return std::string(bad.param.name); });

TEST_P(BadOptionTest, IsRefusedByNameAndNothingIsSaved)
{
    const std::string scene = standingScene("worker");
    const std::string before = contentOf(scene);
    std::vector<std::string> arguments = {"compute", scene};
    arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
    if (GetParam().options[0] != "--save")
        arguments.insert(arguments.end(), {"--save", scene});
    const ProgramRun run = runProgram(arguments);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, StartsWith("sstr: error: "));
    EXPECT_THAT(run.err, HasSubstr(GetParam().message));
    EXPECT_EQ(contentOf(scene), before);
}

class BadInput : public ProgramTest {
protected:
    /// Every command that opens a scene refuses it, naming the file.
    static void expectRefused(const std::string& scene)
    {
        for (const char* command : {"compute", "explain", "figure", "loads", "report"}) {
            std::vector<std::string> arguments = {command, scene};
            if (arguments[0] == "explain")
                arguments.emplace_back("waist");
            const ProgramRun run = runProgram(arguments);
            EXPECT_EQ(run.status, 2) << command;
            EXPECT_EQ(run.out, "") << command;
            EXPECT_THAT(run.err, StartsWith("sstr: error: ")) << command;
            EXPECT_THAT(run.err, HasSubstr(scene)) << command;
        }
    }
};

TEST_F(BadInput, ReportsEveryProblemOfACommandLineAtOnce)
{
    const ProgramRun run =
        runProgram({"compute", standingScene(), "--angle", "left_knee=999", "--load", "nowhere=1,2,3",   //
                    "--strategy", "flying", "--gravity", "x,0,0"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 4) << run.err;
}

TEST_F(BadInput, RefusesAMissingFile)
{
    expectRefused(folder.file("missing.json"));
}

TEST_F(BadInput, RefusesAFolder)
{
    std::filesystem::create_directory(folder.file("folder.json"));
    expectRefused(folder.file("folder.json"));
}

TEST_F(BadInput, RefusesAnEmptyFile)
{
    expectRefused(folder.write("empty.json", ""));
}

TEST_F(BadInput, RefusesATruncatedFile)
{
    const std::string whole = contentOf(example("lift_box"));
    for (const std::size_t part : {1u, 2u, 3u})
        expectRefused(folder.write("truncated.json", whole.substr(0, whole.size() * part / 4)));
}

TEST_F(BadInput, RefusesABinaryFile)
{
    std::string bytes;
    for (int i = 0; i < 4096; ++i)
        bytes += static_cast<char>(i * 37 % 256);
    expectRefused(folder.write("binary.json", bytes));
}

// A file of 300 MB that takes no room on the disk.
TEST_F(BadInput, RefusesAHugeFile)
{
    const std::string huge = folder.write("huge.json", "{");
    std::filesystem::resize_file(huge, std::uintmax_t(300) << 20);
    expectRefused(huge);
}

TEST_F(BadInput, RefusesDeeplyNestedJson)
{
    expectRefused(folder.write("deep.json", std::string(200000, '[')));
}

TEST_F(BadInput, RefusesJsonOfTheWrongShape)
{
    for (const char* text : {"[]", "17", "\"scene\"", "{}", R"({"format": "sstr-scene", "version": 1, "humans": 3})",
                             R"({"format": "sstr-scene", "version": 1, "humans": [{}]})",
                             R"({"format": "sstr-scene", "version": 999, "humans": []})"})
        expectRefused(folder.write("shape.json", text));
    nlohmann::json scene = nlohmann::json::parse(contentOf(standingScene()));
    scene["humans"][0]["figure"] = "nowhere.urdf";
    const ProgramRun run = runProgram({"compute", folder.write("lost.json", scene.dump())});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("nowhere.urdf"));
}

TEST_F(BadInput, RefusesASceneWithoutHumans)
{
    nlohmann::json scene = nlohmann::json::parse(contentOf(standingScene()));
    scene["humans"] = nlohmann::json::array();
    const ProgramRun run = runProgram({"compute", folder.write("nobody.json", scene.dump())});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("no human"));
}

TEST_F(BadInput, RefusesAnUnknownStoredStrategyUntilOneIsGiven)
{
    nlohmann::json scene = nlohmann::json::parse(contentOf(standingScene()));
    scene["humans"][0]["properties"]["figure"]["SSTR_Strategy"] = nlohmann::json({"s", "Flying"});
    const std::string path = folder.write("flying.json", scene.dump());
    const ProgramRun run = runProgram({"compute", path});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("choose one with --strategy"));
    EXPECT_EQ(compute(path, {"--strategy", "sitting"})["strategy_asked"], "sitting");
}

TEST_F(BadInput, TellsWhereASceneIsExpectedHowToMakeOneOfAFigure)
{
    for (const char* command : {"compute", "loads", "report"})
        for (const std::string file : {"human.urdf", "human.figure.json"}) {
            const ProgramRun run = runProgram({command, file});
            EXPECT_EQ(run.status, 2);
            EXPECT_EQ(run.out, "");
            EXPECT_EQ(run.err,
                      "sstr: error: " + file + ": a figure, not a scene: make a scene of it with sstr new-scene.\n");
        }
}

TEST_F(BadInput, TellsWhereTheNamesStandWhenNoneIsNear)
{
    const ProgramRun run = runProgram({"compute", standingScene(), "--torque", "qqqqqq=1,0,0", "--load", "xx=1,0,0"});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("has no joint \"qqqqqq\". sstr figure SCENE lists them.\n"));
    EXPECT_THAT(run.err, HasSubstr("expected \"segment.site\". sstr figure SCENE lists them.\n"));
}

// ESC, a line break and DEL in a name would reach the terminal; in JSON they are the name's own.
TEST_F(BadInput, EscapesControlCharactersInMessagesAndTables)
{
    nlohmann::json scene = nlohmann::json::parse(contentOf(standingScene("anna")));
    const std::string name = "an\x1b[31m\n\x7f"
                             "na";
    scene["humans"][0]["name"] = name;
    const std::string path = folder.write("red.json", scene.dump());
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"compute", path}, {"loads", path}, {"explain", path, "waist"}}) {
        const ProgramRun run = runProgram(arguments);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_THAT(run.out, HasSubstr("human"));
        EXPECT_THAT(run.out, HasSubstr(" an\\x1b[31m\\x0a\\x7fna "));
    }
    EXPECT_EQ(compute(path)["human"], name);
    const ProgramRun wrong = runProgram({"compute", path, "--human", "x"});
    EXPECT_EQ(wrong.err, "sstr: error: --human: the scene has no human \"x\"; it has: an\\x1b[31m\\x0a\\x7fna.\n");
}

TEST_F(BadInput, EscapesControlCharactersInAFiguresTree)
{
    SmallFigure small = smallBody();
    nlohmann::json& figure = small.document();
    for (auto& joint : figure["joints"])
        if (joint["name"] == "right_ball")
            joint["full_name"] = "man.right\x1b";
    figure["name"] = "m\x1b"
                     "an";
    const ProgramRun run = runProgram({"figure", folder.write("red.figure.json", small.text())});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, StartsWith("figure m\\x1ban (posed)"));
    EXPECT_THAT(run.out, ::testing::Not(HasSubstr("\x1b")));
}

TEST_F(BadInput, ReportsATargetFolderThatIsNotThereAndKeepsTheScene)
{
    const std::string scene = standingScene();
    const std::string before = contentOf(scene), target = folder.file("none/out.json");
    const ProgramRun run = runProgram({"compute", scene, "--save", target});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr(target));
    EXPECT_EQ(contentOf(scene), before);
}

TEST_F(BadInput, ReportsAFullTarget)
{
    const ProgramRun run = runProgram({"compute", standingScene(), "--save", "/dev/full"});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("/dev/full"));
}

TEST_F(BadInput, ReportsAFullStandardOutput)
{
    const ProgramRun run = runProgram({"compute", standingScene()}, "/dev/full");
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("standard output"));
}

TEST_F(BadInput, ReportsAFullStandardOutputForHelpAndVersionToo)
{
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--help"}, {"--version"}, {"compute", "--help"}}) {
        const ProgramRun run = runProgram(arguments, "/dev/full");
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err, "sstr: error: cannot write to standard output: " + reason(ENOSPC) + "\n");
    }
}

TEST_F(BadInput, RefusesACommandThatIsUnknownOrMissing)
{
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                      {"compite"},
                                                      {"compute"},
                                                      {"explain"},
                                                      {"explain", "a.json"},
                                                      {"figure"},
                                                      {"loads"},
                                                      {"report"},
                                                      {"new-scene", "one"},
                                                      {"compute", "a.json", "b.json"}}) {
        const ProgramRun run = runProgram(arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, StartsWith("sstr: error: "));
    }
}

// Zero gravity makes every weight a force of zero, which a scene does not give back.
TEST_F(BadInput, DoesNotSaveWeightsUnderZeroGravity)
{
    const std::string scene = standingScene();
    const std::string before = contentOf(scene);
    const ProgramRun run =
        runProgram({"compute", scene, "--gravity", "0,0,0", "--weight", "head.distal=500", "--save", scene});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("head.distal"));
    EXPECT_EQ(contentOf(scene), before);
}

// The box's halves of 5000 g under a gravity of 0.001 cm/s² pull with
//   0.001 cm/s² · 5000 g · 0.001 / 980.665 = 5.1e-6 kgf
// each, which a scene does not give back; under 0.01 cm/s² with 5.1e-5 kgf, which it does.
TEST_F(BadInput, DoesNotSaveWeightsUnderGravityTooSmallForThem)
{
    const std::string target = folder.file("saved.json");
    const ProgramRun run = runProgram({"compute", example("lift_box"), "--gravity", "0,-0.001,0", "--save", target});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "sstr: error: --save: under gravity this small the weight at right_hand.right_palmcenter would "
                       "not be found again in the saved scene. Save under a stronger gravity, or take the loads off "
                       "with --clear-loads.\n");
    EXPECT_FALSE(std::filesystem::exists(target));

    const auto loads = compute(example("lift_box"), {"--gravity", "0,-0.01,0", "--save", target}).at("loads");
    EXPECT_EQ(loads.size(), 2u);
    EXPECT_EQ(compute(target).at("loads"), loads);
}

// A little above 0.00001 kgf, also in single precision, where neighbours are 9.1e-13 apart.
TEST_F(BadInput, ALoadOfTheSmallestSizeThatIsTakenIsFoundAgain)
{
    const std::string scene = standingScene();
    compute(scene, {"--load", "head.distal=0,-0.000010001,0", "--save", scene});
    EXPECT_EQ(compute(scene).at("loads").size(), 1u);
}

// The lower-body method asks for the site lower_torso.h_point.
class FailedAnalysis : public ProgramTest {
protected:
    std::string sceneWithoutHPoint() const
    {
        SmallFigure small = smallBody();
        nlohmann::json& figure = small.document();
        const std::string key = "lower_torso.h_point";
        for (auto& segment : figure["segments"]) {
            auto& sites = segment["sites"];
            sites.erase(std::remove(sites.begin(), sites.end(), nlohmann::json(key)), sites.end());
        }
        auto& sites = figure["sites"];
        sites.erase(std::remove_if(sites.begin(), sites.end(), [&](const auto& site) { return site["key"] == key; }),
                    sites.end());
        const std::string path = folder.write("small.figure.json", small.text());
        const ProgramRun made = runProgram({"new-scene", path, folder.file("small.json")});
        EXPECT_EQ(made.status, 0) << made.err;
        return folder.file("small.json");
    }
};

TEST_F(FailedAnalysis, ExitsWithOneShowsTheAnalysisMessageAndSavesNothing)
{
    const std::string scene = sceneWithoutHPoint();
    const std::string before = contentOf(scene);
    const ProgramRun run = runProgram({"compute", scene, "--save", scene});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("sstr: error: StaticStrength ERROR: "));
    EXPECT_THAT(run.err, HasSubstr("lower_torso.h_point"));
    EXPECT_EQ(contentOf(scene), before);
    EXPECT_EQ(runProgram({"compute", scene, "--strategy", "right-foot"}).status, 0);   // needs no such site
}

// Two forces of 3e38 kgf exceed the largest float together: infinity at every joint below them.
TEST_F(FailedAnalysis, ShowsResultsThatAreNoNumbersAsSuchAndExitsWithOne)
{
    const std::string scene = standingScene();
    const std::string before = contentOf(scene);
    std::vector<std::string> arguments = {"compute",    scene,
                                          "--strategy", "right-foot",
                                          "--load",     "head.distal=3e38,0,0",
                                          "--load",     "head.eye_level=3e38,0,0",
                                          "--save",     scene,
                                          "--format"};
    arguments.emplace_back("json");
    const ProgramRun json = runProgram(arguments);
    EXPECT_EQ(json.status, 1);
    EXPECT_THAT(json.err, HasSubstr("the result at joint waist is not a finite number"));
    const nlohmann::json waist = jointOf(nlohmann::json::parse(json.out), "waist");
    EXPECT_EQ(waist["status"], "not-finite");
    EXPECT_TRUE(waist["force_x_kgf"].is_null());
    EXPECT_FALSE(waist["force_y_kgf"].is_null());

    arguments.back() = "csv";
    EXPECT_THAT(runProgram(arguments).out, HasSubstr("\nwaist,centre,,not-finite,,"));
    EXPECT_EQ(contentOf(scene), before);
}

}   // namespace
