// Scenes: what is refused, and in which words.
#include "Reason.h"
#include "SceneSupport.h"

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

class SceneErrors : public MessageTest {
protected:
    // What opening says, without the file's path in front.
    std::string problemOf(const std::string& text)
    {
        const std::string path = folder.write("bad.json", text);
        EXPECT_FALSE(openScene(path)) << "this was opened: " << text.substr(0, 200);
        const std::vector<std::string> messages = log.takeTexts();
        if (messages.empty() || messages.back().compare(0, path.size(), path) != 0) {
            ADD_FAILURE() << ::testing::PrintToString(messages);
            return "";
        }
        messagesBefore = {messages.begin(), messages.end() - 1};
        return messages.back().substr(path.size());
    }

    // For a scene of the default human with these further keys.
    std::string problemWith(nlohmann::json human)
    {
        if (!human.contains("posed_figure") && !human.contains("figure"))
            human["figure"] = humanPath();
        return problemOf(nlohmann::json({{"format", "sstr-scene"}, {"version", 1}, {"humans", {human}}}).dump());
    }

    TemporaryFolder folder;
    std::vector<std::string> messagesBefore;
};

TEST_F(SceneErrors, FilesThatAreNone)
{
    EXPECT_FALSE(openScene(folder.file("none.json")));
    EXPECT_THAT(log.takeTexts(),
                ::testing::ElementsAre(folder.file("none.json") + ": cannot be read: " + reason(ENOENT)));
    EXPECT_FALSE(openScene(folder.path()));
    EXPECT_THAT(log.takeTexts(), ::testing::ElementsAre(folder.path() + ": expected a file, found a directory."));
    EXPECT_FALSE(qcScene::open(nullptr));
    EXPECT_EQ(log.takeTexts().size(), 1u);
}

TEST_F(SceneErrors, TextsThatAreNoScene)
{
    EXPECT_EQ(problemOf(""), ": expected JSON, found nothing.");
    EXPECT_EQ(problemOf(" \n"), ": expected JSON, found nothing.");
    EXPECT_THAT(problemOf("{\"format\": \"sstr-scene\",\n\"version\": 1, \"humans\": [{\"na"),
                StartsWith(":2: expected JSON, found a syntax error"));
    EXPECT_THAT(problemOf(std::string("\0\1\2\xff", 4)), StartsWith(":1: expected JSON"));
    EXPECT_THAT(problemOf("<robot/>"), StartsWith(":1: expected JSON"));
    EXPECT_EQ(problemOf(std::string(100000, '[')), ": it is nested deeper than 250 levels.");
    EXPECT_EQ(problemOf(R"({"format": "sstr-scene", "version": 1, "humans": [], "humans": []})"),
              ": /humans: this key stands twice in its object.");
    EXPECT_EQ(problemOf("[]"),
              ": expected a scene, an object with \"format\": \"sstr-scene\", found an array of 0 elements.");
}

TEST_F(SceneErrors, FormatAndVersion)
{
    EXPECT_EQ(problemOf("{}"), ": the key \"format\" is missing.");
    EXPECT_EQ(problemOf(R"({"format": "sstr-scene"})"), ": the key \"version\" is missing.");
    EXPECT_EQ(problemOf(R"({"format": "other", "version": 1})"),
              ": /format: expected \"sstr-scene\", found \"other\".");
    EXPECT_EQ(problemOf(R"({"format": "sstr-scene", "version": "1"})"),
              ": /version: expected the version of the format, a whole number, found \"1\".");
    EXPECT_EQ(problemOf(R"({"format": "sstr-scene", "version": 0})"), ": /version: expected version 1, found 0.");
    // a newer version is said before its unknown keys are
    EXPECT_EQ(problemOf(R"({"format": "sstr-scene", "version": 2, "animals": []})"),
              ": /version: version 2 is newer than version 1, the newest that this program can read. Use a newer "
              "program.");
}

TEST_F(SceneErrors, KeysAndTypes)
{
    EXPECT_EQ(problemOf(R"({"format": "sstr-scene", "version": 1, "human": []})"),
              ": /human: unknown key. Close names: \"humans\".");
    EXPECT_EQ(problemOf(R"({"format": "sstr-scene", "version": 1, "humans": {}})"),
              ": /humans: expected an array of humans, found an object.");
    EXPECT_EQ(problemOf(R"({"format": "sstr-scene", "version": 1, "gravity_cm_per_s2": -980})"),
              ": /gravity_cm_per_s2: expected an array of 3 numbers, found -980.");
    EXPECT_EQ(problemOf(R"({"format": "sstr-scene", "version": 1, "gravity_cm_per_s2": [0, 1e999, 0]})"),
              ": /gravity_cm_per_s2/1: expected a finite number, found 1e999.");
    EXPECT_THAT(problemWith({{"posture", {{"left_knee", 1}}}}),
                StartsWith(": /humans/0/posture: unknown key. Close names: \"posture_degrees\""));
    EXPECT_EQ(problemWith({{"name", 1}}), ": /humans/0/name: expected a text, found 1.");
    EXPECT_EQ(problemWith({{"sex", "other"}}), ": /humans/0/sex: expected \"male\" or \"female\", found \"other\".");
    EXPECT_EQ(problemWith({{"stature_cm", "tall"}}),
              ": /humans/0/stature_cm: expected a stature in cm, found \"tall\".");
    EXPECT_EQ(problemWith({{"mass_kg", 70}, {"mass_g", 70000}}),
              ": /humans/0/mass_g: expected one of the keys \"mass_kg\" and \"mass_g\", found both.");
    EXPECT_EQ(problemWith({{"segment_masses_g", {{"l5", "heavy"}}}}),
              ": /humans/0/segment_masses_g/l5: expected a mass in g, found \"heavy\".");
    EXPECT_EQ(problemWith({{"root", "lie down"}}),
              ": /humans/0/root: expected \"stand on the floor\" or an object, found \"lie down\".");
    EXPECT_EQ(problemWith({{"root", {{"position_cm", {0, 0}}}}}),
              ": /humans/0/root/position_cm: expected an array of 3 numbers, found an array of 2 elements.");
    EXPECT_EQ(problemWith({{"root", {{"stand_on_floor", 1}}}}),
              ": /humans/0/root/stand_on_floor: expected true or false, found 1.");
    EXPECT_EQ(problemWith({{"strategy", "hopping"}}),
              ": /humans/0/strategy: expected one of the strategies two-feet, right-foot, left-foot, walking, sitting, "
              "sitting-no-feet, hands-and-knees, found \"hopping\".");
    EXPECT_EQ(problemWith({{"properties", {{"figure", {{"k", 1}}}}}}),
              ": /humans/0/properties/figure/k: expected a value: [\"f\", number], [\"s\", text], [\"v\", [x, y, z]], "
              "[\"l\", [values]] or [\"e\"], found 1.");
    EXPECT_THAT(problemWith({{"properties", {{"tail", {{"k", 1}}}}}}),
                StartsWith(": /humans/0/properties/tail: unknown key."));
}

TEST_F(SceneErrors, Postures)
{
    EXPECT_EQ(problemWith({{"posture_degrees", {{"left_knee", "ninety"}}}}),
              ": /humans/0/posture_degrees/left_knee: expected an angle in degrees or an array of them, found "
              "\"ninety\".");
    EXPECT_EQ(problemWith({{"posture_degrees", {{"left_knee", {"ninety"}}}}}),
              ": /humans/0/posture_degrees/left_knee/0: expected an angle in degrees, found \"ninety\".");
    EXPECT_THAT(problemWith({{"posture_degrees", {{"left_kne", 1}}}}),
                StartsWith(": /humans/0/posture_degrees/left_kne: the figure has no joint \"left_kne\". Close names: "
                           "\"left_knee\""));
    EXPECT_EQ(problemWith({{"posture_degrees", {{"left_knee", {1, 2}}}}}),
              ": /humans/0/posture_degrees/left_knee: joint left_knee has 1 angle, found 2.");
    const std::string outside = problemWith({{"posture_degrees", {{"left_knee", {200}}}}});
    EXPECT_THAT(outside, StartsWith(": /humans/0/posture_degrees/left_knee/0: joint left_knee: "));
    EXPECT_THAT(outside, HasSubstr("200 degrees is outside its limits, "));
}

TEST_F(SceneErrors, PartsThatAreNotThere)
{
    EXPECT_THAT(problemWith({{"segment_masses_g", {{"l6", 1}}}}),
                StartsWith(": /humans/0/segment_masses_g/l6: the figure has no segment \"l6\"."));
    EXPECT_THAT(problemWith({{"properties", {{"sites", {{"left_foot.soul", {{"k", {"e"}}}}}}}}}),
                StartsWith(": /humans/0/properties/sites/left_foot.soul: the figure has no site \"left_foot.soul\". "
                           "Close names: \"left_foot.sole\""));
    EXPECT_THAT(problemWith({{"properties", {{"joints", {{"left_kneee", {{"k", {"e"}}}}}}}}}),
                StartsWith(": /humans/0/properties/joints/left_kneee: the figure has no joint"));
    EXPECT_THAT(problemWith({{"properties", {{"segments", {{"tail", {{"k", {"e"}}}}}}}}}),
                StartsWith(": /humans/0/properties/segments/tail: the figure has no segment"));
}

TEST_F(SceneErrors, Figures)
{
    EXPECT_EQ(problemWith({{"figure", "none.urdf"}}), ": /humans/0/figure: there is no file \""
                                                          + folder.file("none.urdf")
                                                          + "\"; paths are relative to the scene file's folder.");
    EXPECT_TRUE(messagesBefore.empty());
    EXPECT_EQ(problemWith({{"roles", "none.json"}}), ": /humans/0/roles: there is no file \"" + folder.file("none.json")
                                                         + "\"; paths are relative to the scene file's folder.");
    EXPECT_EQ(problemWith({{"figure", 7}}), ": /humans/0/figure: expected the path of a file, found 7.");
    EXPECT_EQ(problemWith({{"figure", humanPath()}, {"posed_figure", twoSegments()}}),
              ": /humans/0: expected one of the keys \"figure\" and \"posed_figure\", found both.");
    EXPECT_EQ(problemOf(R"({"format": "sstr-scene", "version": 1, "humans": [{"name": "x"}]})"),
              ": /humans/0: expected one of the keys \"figure\" and \"posed_figure\", found none.");
    folder.write("broken.urdf", "<robot name='x'>");
    EXPECT_EQ(problemWith({{"figure", "broken.urdf"}}),
              ": /humans/0/figure: this figure cannot be used; the message before this one says why.");
    EXPECT_EQ(messagesBefore.size(), 1u);
    nlohmann::json posed = twoSegments();
    posed["segments"][1]["mass"] = "x";
    EXPECT_EQ(problemWith({{"posed_figure", posed}}),
              ": /humans/0/posed_figure/segments/1/mass: expected a number, found \"x\".");
}

TEST_F(SceneErrors, MeasuresThatCannotBeApplied)
{
    EXPECT_EQ(problemWith({{"stature_cm", 5}}),
              ": /humans/0/stature_cm: this cannot be applied to the figure; the message before this one says why.");
    EXPECT_EQ(messagesBefore.size(), 1u);
    nlohmann::json posed = twoSegments();
    posed["anthro"] = "none";
    EXPECT_EQ(problemWith({{"posed_figure", posed}, {"mass_kg", 70}}),
              ": /humans/0: its figure cannot be scaled: expected no sex, stature or mass.");
}

TEST_F(SceneErrors, HumansOfOneName)
{
    nlohmann::json scene = {{"format", "sstr-scene"}, {"version", 1}};
    scene["humans"] = {{{"name", "x"}, {"posed_figure", twoSegments()}},
                       {{"name", "x"}, {"posed_figure", twoSegments()}}};
    EXPECT_EQ(problemOf(scene.dump()), ": /humans/1/name: the scene has a human named \"x\" already; give this one "
                                       "another name.");
}

// What stands behind a null byte must not be passed over: wherever between the values it is, its line is told.
TEST_F(SceneErrors, ANullByteOutsideOfTexts)
{
    const std::string null(1, '\0');
    const std::string whole = "{\"format\": \"sstr-scene\", \"version\": 1,\n\"humans\": []}\n";
    const std::string path = folder.write("whole.json", whole);
    EXPECT_TRUE(openScene(path));   // without the byte there is nothing wrong
    EXPECT_EQ(problemOf(whole + null), ":3: expected JSON, found a null byte.");
    EXPECT_EQ(problemOf(whole + null + "{\"format\": \"another\"}"), ":3: expected JSON, found a null byte.");
    EXPECT_EQ(problemOf(null + whole), ":1: expected JSON, found a null byte.");
    EXPECT_EQ(problemOf(std::string(whole).insert(whole.find('\n') + 1, null)),
              ":2: expected JSON, found a null byte.");
    EXPECT_THAT(problemOf(std::string(whole).insert(whole.find("sstr-scene"), null)),
                HasSubstr("control character U+0000"));   // within a text
}

// Cut short, here at every seventh byte, it is refused, and nothing else happens.
TEST_F(SceneErrors, AFileCutShortAnywhere)
{
    const std::string whole =
        nlohmann::json(
            {{"format", "sstr-scene"}, {"version", 1}, {"humans", {{{"name", "x"}, {"posed_figure", twoSegments()}}}}})
            .dump();
    for (std::size_t length = 0; length < whole.size(); length += 7)
        problemOf(whole.substr(0, length));
}

}   // namespace
