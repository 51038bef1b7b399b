// Wrong URDF files: each is refused with one message that names file, line, element, found and expected.
#include "Reason.h"
#include "UrdfTexts.h"

#include <sys/stat.h>
#include <unistd.h>

using testing::HasSubstr;
using testing::StartsWith;
using namespace urdf;

namespace {

const std::string kTwoBodies = body("a", "1") + body("b", "1");   // lines 2 and 3

struct Wrong {
    const char* name;   // of the case
    std::string text;
    std::string message;   // or its beginning
};

std::string massText(const std::string& mass)
{
    return robot("<link name=\"a\"><inertial>\n<mass value=\"" + mass + "\"/></inertial></link>\n");
}

std::string jointText(const std::string& type, const std::string& more, const std::string& child = "b")
{
    return robot(kTwoBodies + "<joint name=\"j\"" + (type.empty() ? "" : " type=\"" + type + "\"")
                 + "><parent link=\"a\"/><child link=\"" + child + "\"/>\n" + more + "</joint>\n");
}

const std::vector<Wrong>& wrongModels()
{
    static const std::vector<Wrong> cases = {
        // no URDF at all
        {"Empty", "", "model.urdf: the file is empty. Expected a URDF model"},
        {"Blank", " \n\t\r\n", "model.urdf: the file is empty."},
        {"Binary",
         std::string("\x7f"
                     "ELF\0\0\1",
                     7),
         "model.urdf: found binary data."},
        {"Text", "hello\n", "model.urdf:"},
        {"Json", "{\"robot\": 1}", "model.urdf:"},
        {"OnlyAComment", "<!-- c -->", "model.urdf"},
        {"Truncated", robot(kTwoBodies).substr(0, 60), "model.urdf:"},
        {"NotClosed", "<robot name=\"r\">" + kTwoBodies, "model.urdf:"},
        {"TooDeep",
         [] {
             std::string deep = "<robot>";
             for (int i = 0; i < 100000; ++i)
                 deep += "<a>";
             return deep;
         }(),
         "model.urdf:1: this is no well-formed XML: elements are nested too deep"},
        {"OtherElement", "<sdf>\n</sdf>",
         "model.urdf:1: found the element <sdf>. Expected a URDF model, whose outermost "
         "element is <robot>."},
        {"TwoRobots", robot(body("a", "1")) + robot(""), "model.urdf:4: found a second outermost element, <robot>."},
        {"NoLink", robot(""), "model.urdf:1: robot: there is no link in it."},
        // names
        {"LinkWithoutName", robot("<link/>"), "model.urdf:2: link: it has no name. Expected <link name=\"…\">."},
        {"EmptyName", robot("<link name=\"\"/>"), "model.urdf:2: link: it has no name."},
        {"JointWithoutName", robot(kTwoBodies + "<joint type=\"fixed\"/>"), "model.urdf:4: joint: it has no name."},
        {"LinkTwice", robot(kTwoBodies + link("a")),
         "model.urdf:4: link \"a\": the name is used twice, first (line 2). Expected a name of its own."},
        {"JointTwice", robot(kTwoBodies + body("c", "1") + hinge("j", "a", "b") + hinge("j", "b", "c")),
         "model.urdf:6: joint \"j\": the name is used twice, first (line 5)."},
        {"NoUtf8", robot(link("\xff\xfe")), "model.urdf:2: link \"\\xff\\xfe\": expected a name in UTF-8"},
        // masses
        {"OriginAttributeMisspelt",
         robot(kTwoBodies
               + "<joint name=\"j\" type=\"fixed\"><origin xyx=\"0 0 1\"/><parent link=\"a\"/><child "
                 "link=\"b\"/></joint>"),
         "model.urdf:4: joint \"j\": <origin> has no attribute \"xyx\". Expected xyz, rpy."},
        {"LimitAttributeMisspelt",
         robot(kTwoBodies
               + "<joint name=\"j\" type=\"revolute\"><parent link=\"a\"/><child link=\"b\"/><axis xyz=\"0 1 0\"/>"
                 "<limit lowr=\"-1\" upper=\"1\"/></joint>"),
         "model.urdf:4: joint \"j\": <limit> has no attribute \"lowr\". Expected lower, upper, effort, velocity, "
         "acceleration, "
         "jerk."},
        {"NegativeMass", massText("-0.5"),
         "model.urdf:3: link \"a\": <mass value>: expected a mass of 0 kg or more, found \"-0.5\"."},
        {"MassAText", massText("heavy"),
         "model.urdf:3: link \"a\": <mass value>: expected a finite number, found \"heavy\"."},
        {"MassNan", massText("nan"),
         "model.urdf:3: link \"a\": <mass value>: expected a finite number, found \"nan\"."},
        {"MassInf", massText("inf"),
         "model.urdf:3: link \"a\": <mass value>: expected a finite number, found \"inf\"."},
        {"MassOverflow", massText("1e999"), "model.urdf:3: link \"a\": <mass value>: expected a finite number"},
        {"MassTooLarge", massText("1e300"),
         "model.urdf:3: link \"a\": <mass value>: found \"1e300\", which is too large."},
        {"MassComma", massText("1,5"),
         "model.urdf:3: link \"a\": <mass value>: expected a finite number, found \"1,5\"."},
        {"MassEmpty", massText(""), "model.urdf:3: link \"a\": <mass value>: expected one number, found \"\"."},
        {"MassTwoNumbers", massText("1 2"),
         "model.urdf:3: link \"a\": <mass value>: expected one number, found \"1 2\"."},
        {"MassMissing", robot("<link name=\"a\"><inertial/></link>"),
         "model.urdf:2: link \"a\": its <inertial> tells no mass. Expected <mass value=\"…\"/> in kilograms"},
        {"MassWithoutValue", robot("<link name=\"a\"><inertial>\n<mass/></inertial></link>"),
         "model.urdf:3: link \"a\": its <inertial> tells no mass."},
        {"MassTwice", robot("<link name=\"a\"><inertial><mass value=\"1\"/>\n<mass value=\"2\"/></inertial></link>"),
         "model.urdf:3: link \"a\": found a second <mass>, after the one (line 2). Expected one."},
        {"CenterTwoNumbers", robot(body("a", "1", "0 1")),
         "model.urdf:2: link \"a\": <origin xyz>: expected three finite numbers, found \"0 1\"."},
        {"CenterNan", robot(body("a", "1", "0 nan 1")),
         "model.urdf:2: link \"a\": <origin xyz>: expected a finite number, found \"nan\"."},
        // joints
        {"NoType", jointText("", ""), "model.urdf:4: joint \"j\": it has no type. Expected type=\"revolute\""},
        {"Prismatic", jointText("prismatic", ""),
         "model.urdf:4: joint \"j\": found the type \"prismatic\", which lets the child shift; the joints of a body "
         "turn. "
         "Expected \"revolute\", \"continuous\" or \"fixed\"."},
        {"Floating", jointText("floating", ""), "model.urdf:4: joint \"j\": found the type \"floating\", which lets"},
        {"Planar", jointText("planar", ""), "model.urdf:4: joint \"j\": found the type \"planar\", which lets"},
        {"Misspelt", jointText("revolut", ""),
         "model.urdf:4: joint \"j\": found the type \"revolut\". Expected \"revolute\", \"continuous\" or \"fixed\". "
         "Close "
         "names: \"revolute\"."},
        {"NoParent", robot(kTwoBodies + "<joint name=\"j\" type=\"fixed\"><child link=\"b\"/></joint>"),
         "model.urdf:4: joint \"j\": it tells no parent. Expected <parent link=\"…\"/>."},
        {"NoChild", robot(kTwoBodies + "<joint name=\"j\" type=\"fixed\"><parent link=\"b\"/></joint>"),
         "model.urdf:4: joint \"j\": it tells no child."},
        {"UnknownParent", robot(body("left_thigh_link", "1") + body("b", "1") + hinge("left_knee", "left_thigh", "b")),
         "model.urdf:4: joint \"left_knee\": there is no link \"left_thigh\" to be its parent. Close names: "
         "\"left_thigh_link\"."},
        {"UnknownChild", robot(kTwoBodies + hinge("j", "a", "something")),
         "model.urdf:4: joint \"j\": there is no link \"something\" to be its child. Expected the name of a link in "
         "this "
         "file."},
        {"OriginOneNumber", robot(kTwoBodies + hinge("j", "a", "b", "1")),
         "model.urdf:4: joint \"j\": <origin xyz>: expected three finite numbers, found \"1\"."},
        {"OriginTurnInf", jointText("fixed", "<origin rpy=\"0 0 -inf\"/>"),
         "model.urdf:5: joint \"j\": <origin rpy>: expected a finite number, found \"-inf\"."},
        {"AxisZero", robot(kTwoBodies + hinge("j", "a", "b", "0 0 0", "0 0 0")),
         "model.urdf:4: joint \"j\": its axis is zero, found \"0 0 0\". Expected a direction to turn about, such as "
         "\"0 1 "
         "0\"."},
        {"AxisText", robot(kTwoBodies + hinge("j", "a", "b", "0 0 0", "x y z")),
         "model.urdf:4: joint \"j\": <axis xyz>: expected a finite number, found \"x\"."},
        {"AxisWithoutDirection", jointText("continuous", "<axis/>"),
         "model.urdf:5: joint \"j\": its <axis> tells no direction."},
        {"NoLimits", jointText("revolute", ""),
         "model.urdf:4: joint \"j\": it is revolute and has no limits. Expected <limit lower=\"…\" upper=\"…\"/> in "
         "radians, "
         "or type=\"continuous\"."},
        {"LimitsCrossed", jointText("revolute", "<limit lower=\"1\" upper=\"-1\"/>"),
         "model.urdf:5: joint \"j\": its lower limit 1 is above its upper limit -1. Expected lower ≤ upper, in "
         "radians."},
        {"LimitNan", jointText("revolute", "<limit lower=\"nan\" upper=\"1\"/>"),
         "model.urdf:5: joint \"j\": <limit lower>: expected a finite number, found \"nan\"."},
        // the tree
        {"TwoParents", robot(kTwoBodies + body("c", "1") + hinge("one", "a", "c") + hinge("two", "b", "c")),
         "model.urdf:6: joint \"two\": its child \"c\" hangs on two joints, this one and \"one\" (line 5). Expected "
         "one"},
        {"TwoRoots", robot(kTwoBodies),
         "model.urdf:3: 2 links have no parent, among them \"a\" (line 2) and \"b\" (line 3). "
         "Expected one root"},
        {"Cycle", robot(kTwoBodies + hinge("one", "a", "b") + hinge("two", "b", "a")),
         "model.urdf:2: 2 links hang on each other in a circle: \"a\", \"b\". Expected a tree"},
        {"CycleBesideATree", robot(body("r", "1") + kTwoBodies + hinge("one", "a", "b") + hinge("two", "b", "a")),
         "model.urdf:3: 2 links hang on each other in a circle: \"a\", \"b\"."},
        {"OnItself", jointText("fixed", "", "a"),
         "model.urdf:4: joint \"j\": it connects the link \"a\" with itself. Expected two links."},
        // the figure
        {"TwoSitesOfOneName",
         robot(body("a", "1") + link("a.tip") + link("tip") + fixed("m", "a", "a.tip") + fixed("n", "a", "tip")),
         "model.urdf: two sites are named \"a.tip\". Expected different names"},
    };
    return cases;
}

void PrintTo(const Wrong& wrong, std::ostream* out)
{
    *out << wrong.text.substr(0, 1000);
}

class WrongModel : public UrdfTest, public testing::WithParamInterface<Wrong> {};

TEST_P(WrongModel, IsRefusedWithAReason)
{
    EXPECT_THAT(problem(GetParam().text), StartsWith(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(BadUrdf, WrongModel, testing::ValuesIn(wrongModels()),
                         [](const auto& test) { return std::string(test.param.name); });

// Cut anywhere, a file is refused with a reason; nothing crashes and nothing is read half.
TEST_F(UrdfTest, AFileCutShortAnywhereIsRefused)
{
    const std::string whole = robot(kTwoBodies + hinge("j", "a", "b"));
    for (std::size_t length = 0; length + 2 < whole.size(); ++length)
        EXPECT_THAT(problem(whole.substr(0, length)), StartsWith("model.urdf")) << length;
}

TEST_F(UrdfTest, AMissingFileIsReported)
{
    const std::string path = folder.file("none.urdf");
    EXPECT_EQ(refusal(qcFigureFile::read(path.c_str(), nullptr)), "none.urdf: cannot be read: " + reason(ENOENT));
}

TEST_F(UrdfTest, ADirectoryIsReported)
{
    const std::string path = folder.file("dir.urdf");
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    EXPECT_EQ(refusal(qcFigureFile::read(path.c_str(), nullptr)), "dir.urdf: expected a file, found a directory.");
    rmdir(path.c_str());
}

TEST_F(UrdfTest, APipeIsReportedAndNotWaitedFor)
{
    const std::string path = folder.file("pipe.urdf");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(refusal(qcFigureFile::read(path.c_str(), nullptr)),
              "pipe.urdf: expected a file, found something else (a device or a pipe).");
}

// 257 MiB of nothing: a file with a hole takes no room.
TEST_F(UrdfTest, AHugeFileIsReported)
{
    const std::string path = folder.write("huge.urdf", "");
    ASSERT_EQ(truncate(path.c_str(), off_t(257) << 20), 0);
    EXPECT_EQ(refusal(qcFigureFile::read(path.c_str(), nullptr)),
              "huge.urdf: expected at most 256 MiB, found a larger file.");
}

TEST_F(UrdfTest, AFileOfAnotherNameIsReported)
{
    const std::string path = folder.write("figure.txt", robot(kTwoBodies));
    EXPECT_EQ(refusal(qcFigureFile::read(path.c_str(), nullptr)),
              "figure.txt: expected the name of a figure file, NAME.urdf or NAME.figure.json.");
    EXPECT_THAT(refusal(qcFigureFile::read(nullptr, nullptr)), HasSubstr("expected the name of a figure file"));
}

TEST_F(UrdfTest, APosedFigureTakesNoRolesFile)
{
    const std::string path = folder.write("f.figure.json", "{}");
    EXPECT_THAT(refusal(qcFigureFile::read(path.c_str(), "some.roles.json")),
                HasSubstr("a posed figure carries its own roles; expected no roles file, found \"some.roles.json\"."));
}

}   // namespace
