// Deep figures and odd names through the program: the numbers known by hand, every name as it stands, on a small stack.
#include "LargeFigures.h"
#include "OddNames.h"
#include "Program.h"
#include "SmallFigure.h"
#include "SmallStack.h"

#include <sys/resource.h>

#include <algorithm>

using ::testing::HasSubstr;

namespace {

// While it lives, programs that are started get a small stack.
class SmallStacks {
public:
    SmallStacks()
    {
        getrlimit(RLIMIT_STACK, &before);
        rlimit small = before;
        small.rlim_cur = kSmallStack;
        EXPECT_EQ(setrlimit(RLIMIT_STACK, &small), 0);
    }
    ~SmallStacks() { setrlimit(RLIMIT_STACK, &before); }
    SmallStacks(const SmallStacks&) = delete;
    SmallStacks& operator=(const SmallStacks&) = delete;

private:
    rlimit before;
};

ProgramRun runWithSmallStack(const std::vector<std::string>& arguments)
{
    const SmallStacks small;
    return runProgram(arguments);
}

nlohmann::json jsonFrom(const ProgramRun& run)
{
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    nlohmann::json output = nlohmann::json::parse(run.out, nullptr, false);
    EXPECT_FALSE(output.is_discarded());
    return output;
}

// ---- The default human with a deep chain in its right hand

class DeepChain : public ProgramTest {
protected:
    // Links "k<i>" of 1 kg, whose centre of mass is their joint "c<i>", each 25 cm below the one before it.
    std::string chainScene(int count) const
    {
        std::string text = contentOf(SSTR_SOURCE_DIR "/figures/human.urdf");
        std::string links;
        for (int i = 1; i <= count; ++i) {
            const std::string number = std::to_string(i);
            links +=
                "<link name=\"k" + number + "\"><inertial><mass value=\"1\"/></inertial></link><joint name=\"c" + number
                + "\" type=\"revolute\"><parent link=\"" + (i == 1 ? "right_hand" : "k" + std::to_string(i - 1))
                + "\"/><child link=\"k" + number
                + "\"/><origin xyz=\"0 0 -0.25\"/><axis xyz=\"0 1 0\"/><limit lower=\"-1\" upper=\"1\" effort=\"0\""
                  " velocity=\"0\"/></joint>\n";
        }
        text.insert(text.rfind("</robot>"), links);
        folder.write("chain.urdf", text);
        nlohmann::json roles = nlohmann::json::parse(contentOf(SSTR_SOURCE_DIR "/figures/human.roles.json"));
        roles.erase("other_sex");   // it would tell a share of the mass of every link
        folder.write("chain.roles.json", roles.dump());
        std::string scene = folder.file("chain.json");
        const ProgramRun made = runWithSmallStack({"new-scene", folder.file("chain.urdf"), scene});
        EXPECT_EQ(made.status, 0) << made.err;
        return scene;
    }
};

// Joint i, at link i's own place, carries links i … n, 1 kgf each and all in one vertical, and the load of 4 kgf ahead
// that link n has there:
//   force   (0, -(n - i + 1), 4) kgf, exact
//   moment  at joint n zero, for which a placeholder of 0.00001 N·m about each axis is stored; at joint n - 1, 25 cm
//           higher, (0, -25, 0) cm × (0, 0, 4) kgf · 0.0980665 = -9.80665 N·m about x, and the placeholder
TEST_F(DeepChain, IsComputedSavedOpenedAndExplained)
{
    const int kLinks = deepLinks();
    const std::string last = std::to_string(kLinks), lastButOne = "c" + std::to_string(kLinks - 1);
    const std::string scene = chainScene(kLinks), saved = folder.file("saved.json");
    const nlohmann::json computed =
        jsonFrom(runWithSmallStack({"compute", scene, "--format", "json", "--strategy", "right-foot", "--load",
                                    "k" + last + ".proximal=0,0,4", "--save", saved}));
    ASSERT_EQ(computed["joints"].size(), 40u + kLinks);
    int looked = 0;
    for (const nlohmann::json& joint : computed["joints"]) {
        const std::string name = joint["joint"];
        if (name.size() < 2 || name[0] != 'c' || name.find_first_not_of("0123456789", 1) != std::string::npos)
            continue;
        ++looked;
        const double beyond = kLinks - std::stoi(name.substr(1)) + 1;
        ASSERT_EQ(joint["force_y_kgf"], -beyond) << name;
        ASSERT_EQ(joint["force_z_kgf"], 4) << name;
    }
    EXPECT_EQ(looked, kLinks);
    const nlohmann::json next = jointOf(computed, lastButOne);
    EXPECT_NEAR(next["moment_x_nm"].get<double>(), -9.80665, roundingBound(8, 10));

    // the saved scene holds load and strategy: two links, the load and the placeholder; then all links and these two
    const nlohmann::json outer = jsonFrom(runWithSmallStack({"explain", saved, lastButOne, "--format", "json"}));
    EXPECT_EQ(outer["contributions"].size(), 4u);
    EXPECT_EQ(outer["stored"]["force_y_kgf"], -2);
    EXPECT_EQ(outer["stored"]["moment_x_nm"], next["moment_x_nm"]);
    const nlohmann::json first = jsonFrom(runWithSmallStack({"explain", saved, "c1", "--format", "json"}));
    EXPECT_EQ(first["contributions"].size(), kLinks + 2u);
    EXPECT_EQ(first["sum"]["force_y_kgf"], -kLinks);
    EXPECT_EQ(first["stored"]["force_y_kgf"], -kLinks);
}

TEST_F(DeepChain, IsShownAsATree)
{
    chainScene(10000);
    const ProgramRun run = runWithSmallStack({"figure", folder.file("chain.urdf")});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("10041 segments, 10040 joints"));
    EXPECT_THAT(run.out, HasSubstr("segment k10000: 1.000 kg"));
    EXPECT_LT(run.out.size(),
              std::size_t(10041) * 600);   // four lines of at most 150 bytes each: the indentation ends
}

// ---- Odd names

// The small body; its right hand, its site and its joint bear the name, and the figure too.
class OddName : public ProgramTest, public ::testing::WithParamInterface<std::size_t> {
protected:
    void SetUp() override
    {
        nlohmann::json body = smallBody().document();
        body["name"] = name;
        const std::string own = "right_hand", key = own + ".proximal";
        const auto rename = [&](nlohmann::json& text) {
            if (text == "right_wrist")
                text = name;
            else if (text.is_string() && text.get<std::string>().rfind(own + ".", 0) == 0)
                text = name + text.get<std::string>().substr(own.size());
        };
        for (nlohmann::json& segment : body["segments"]) {
            if (segment["name"] == own)
                segment["name"] = name;
            rename(segment["attachment"]);
            for (nlohmann::json& site : segment["sites"])
                rename(site);
        }
        for (nlohmann::json& site : body["sites"]) {
            rename(site["key"]);
            if (site["segment"] == own)
                site["segment"] = name;
            for (nlohmann::json& joint : site["joints"])
                rename(joint);
        }
        for (nlohmann::json& joint : body["joints"]) {
            rename(joint["name"]);
            joint.erase("full_name");
            rename(joint["inboard"]);
            for (nlohmann::json& site : joint["sites"])
                rename(site);
        }
        rename(body["right"]["hand_site"]);
        const std::string figure = folder.write("odd.figure.json", body.dump());
        const ProgramRun made = runProgram({"new-scene", figure, scene()});
        ASSERT_EQ(made.status, 0) << made.err;
    }

    std::string scene() const { return folder.file("scene.json"); }
    const std::string name = oddNames()[GetParam()];
};

// One row of a CSV text, quoted as RFC 4180 has it, from `at` on.
std::vector<std::string> csvRow(const std::string& text, std::size_t& at)
{
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (quoted && c == '"' && at + 1 < text.size() && text[at + 1] == '"')
            fields.back() += text[++at];
        else if (c == '"')
            quoted = !quoted;
        else if (!quoted && c == ',')
            fields.emplace_back();
        else if (!quoted && c == '\n')
            break;
        else
            fields.back() += c;
    }
    ++at;
    return fields;
}

// 2 kgf at the hand's own joint: to it comes the hand's half a kgf.
TEST_P(OddName, ComesThroughAsJsonAndCsvAndInTheSavedScene)
{
    const std::string saved = folder.file("saved.json");
    const nlohmann::json computed = jsonFrom(
        runProgram({"compute", scene(), "--format", "json", "--load", name + ".proximal=0,-2,0", "--save", saved}));
    EXPECT_EQ(computed["human"], name);
    EXPECT_EQ(computed["figure"], name);
    EXPECT_EQ(computed["loads"][0]["site"], name + ".proximal");
    EXPECT_EQ(jointOf(computed, name)["force_y_kgf"], -2.5);

    const nlohmann::json again = jsonFrom(runProgram({"compute", saved, "--format", "json"}));
    EXPECT_EQ(again["loads"], computed["loads"]);
    EXPECT_EQ(again["joints"], computed["joints"]);

    const ProgramRun csv = runProgram({"compute", saved, "--format", "csv"});
    EXPECT_EQ(csv.status, 0) << csv.err;
    std::size_t at = 0, found = 0;
    const std::size_t columns = csvRow(csv.out, at).size();
    while (at < csv.out.size()) {
        const std::vector<std::string> row = csvRow(csv.out, at);
        ASSERT_EQ(row.size(), columns);
        if (row[0] != name)
            continue;
        ++found;
        EXPECT_EQ(row[5], "-2.5");
    }
    EXPECT_EQ(found, 1u);
}

// In a table a control character stands as \xNN, so that every line is one; and one long name does not widen the
// others.
TEST_P(OddName, KeepsTheTablesLinesWhole)
{
    const ProgramRun with = runProgram({"compute", scene(), "--load", name + ".proximal=0,-2,0"});
    EXPECT_EQ(with.status, 0) << with.err;
    EXPECT_EQ(with.err, "");
    const std::string plain = folder.write("plain.figure.json", smallBody().text()), other = folder.file("plain.json");
    ASSERT_EQ(runProgram({"new-scene", plain, other}).status, 0);
    const ProgramRun without = runProgram({"compute", other, "--load", "right_hand.proximal=0,-2,0"});
    // the two wrists, no pair any more, stand in a line each instead of two for both
    EXPECT_EQ(std::count(with.out.begin(), with.out.end(), '\n'),
              std::count(without.out.begin(), without.out.end(), '\n'));
    for (const char c : with.out)
        ASSERT_TRUE(static_cast<unsigned char>(c) >= 0x20 ? c != 0x7f : c == '\n');
    EXPECT_LT(with.out.size(), without.out.size() + 4000 + 10 * name.size());
}

TEST_P(OddName, IsAskedForByName)
{
    // an empty name cannot be given; the full name can: a full stop with nothing around it
    const std::string asked = name.empty() ? "." : name;
    const nlohmann::json explained = jsonFrom(runProgram({"explain", scene(), asked, "--format", "json"}));
    EXPECT_EQ(explained["joint"], name);
    EXPECT_EQ(explained["stored"]["force_y_kgf"], -0.5);
    const ProgramRun wrong = runProgram({"explain", scene(), name + "?"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.out, "");
    EXPECT_THAT(wrong.err, HasSubstr(" has no joint \""));
    EXPECT_EQ(std::count(wrong.err.begin(), wrong.err.end(), '\n'), 1);
    const ProgramRun report = runProgram({"report", scene()});
    EXPECT_EQ(report.status, 0) << report.err;
    const ProgramRun figure = runProgram({"figure", scene()});
    EXPECT_EQ(figure.status, 0) << figure.err;
}

INSTANTIATE_TEST_SUITE_P(Every, OddName, ::testing::Range(std::size_t(0), oddNames().size()));

}   // namespace
