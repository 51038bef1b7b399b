// Posed figures: what is refused, and in which words.
#include "SceneSupport.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

class PosedFigureErrors : public MessageTest {
protected:
    // The one message that reading gives, without the source's name in front.
    std::string problemOf(const std::string& text)
    {
        const std::unique_ptr<qcFigure> figure(qcFigureFile::readPosedText(text.c_str(), "pair.figure.json"));
        EXPECT_FALSE(figure) << "this was read: " << text.substr(0, 200);
        const std::vector<std::string> messages = log.takeTexts();
        if (messages.size() != 1 || messages[0].compare(0, 16, "pair.figure.json") != 0) {
            ADD_FAILURE() << messages.size() << " messages: " << ::testing::PrintToString(messages);
            return "";
        }
        return messages[0].substr(16);
    }

    // The same for the small figure with one value changed.
    std::string problemWith(const std::string& path, const nlohmann::json& value)
    {
        nlohmann::json json = twoSegments();
        json[nlohmann::json::json_pointer(path)] = value;
        return problemOf(json.dump());
    }

    std::string problemWithout(const std::string& path, const std::string& key)
    {
        nlohmann::json json = twoSegments();
        json[nlohmann::json::json_pointer(path)].erase(key);
        return problemOf(json.dump());
    }
};

TEST_F(PosedFigureErrors, WrongTypes)
{
    EXPECT_EQ(problemWith("/segments/1/mass", "x"), ": /segments/1/mass: expected a number, found \"x\".");
    EXPECT_EQ(problemWith("/segments/1/mass", nullptr), ": /segments/1/mass: expected a number, found null.");
    EXPECT_EQ(problemWith("/name", 3), ": /name: expected a text, found 3.");
    EXPECT_EQ(problemWith("/segments", 3), ": /segments: expected an array of segments, found 3.");
    EXPECT_EQ(problemWith("/segments/0", 3), ": /segments/0: expected an object, found 3.");
    EXPECT_EQ(problemWith("/segments/0/com", {1, 2}),
              ": /segments/0/com: expected an array of 3 numbers, found an array of 2 elements.");
    EXPECT_EQ(problemWith("/segments/0/com/1", true), ": /segments/0/com/1: expected a number, found true.");
    EXPECT_EQ(problemWith("/segments/0/transform", "up"),
              ": /segments/0/transform: expected a transform, an array of 4 rows of 4 numbers, found \"up\".");
    EXPECT_EQ(problemWith("/segments/0/transform/2", {1, 2, 3}),
              ": /segments/0/transform/2: expected a row of 4 numbers, found an array of 3 elements.");
    EXPECT_EQ(problemWith("/joints/0/angles", 1),
              ": /joints/0/angles: expected an array of angles in radians, found 1.");
    EXPECT_EQ(problemWith("/joints/0/sites", {"arm.grip"}),
              ": /joints/0/sites: expected an array of 2 site keys, found an array of 1 element.");
    EXPECT_EQ(problemWith("/left", "leg"), ": /left: expected an object, found \"leg\".");
    EXPECT_EQ(problemWith("/anthro", "maybe"),
              ": /anthro: expected \"present\", \"init\" or \"none\", found \"maybe\".");
    EXPECT_EQ(problemOf("[]"), ": expected an object, found an array of 0 elements.");
    EXPECT_EQ(problemOf("null"), ": expected an object, found null.");
}

TEST_F(PosedFigureErrors, MissingAndUnknownKeys)
{
    EXPECT_EQ(problemWithout("", "name"), ": the key \"name\" is missing.");
    EXPECT_EQ(problemWithout("", "segments"), ": the key \"segments\" is missing.");
    EXPECT_EQ(problemWithout("/segments/1", "mass"), ": /segments/1: the key \"mass\" is missing.");
    EXPECT_EQ(problemWithout("/segments/1", "transform"), ": /segments/1: the key \"transform\" is missing.");
    EXPECT_EQ(problemWithout("/sites/1", "transform"), ": /sites/1: the key \"transform\" is missing.");
    EXPECT_EQ(problemWithout("/joints/0", "sites"), ": /joints/0: the key \"sites\" is missing.");
    EXPECT_EQ(problemWith("/segments/1/masss", 1), ": /segments/1/masss: unknown key. Close names: \"mass\".");
    EXPECT_EQ(problemWith("/right/tail", nullptr),
              ": /right/tail: unknown key. Expected one of: foot_site, hand_site, knee, ankle, hip.");
    EXPECT_EQ(problemWith("/format", "x"), ": /format: unknown key. Expected one of: name, segments, sites, joints, "
                                           "reference_site, pelvis_site, waist, left, right, anthro, properties.");
}

TEST_F(PosedFigureErrors, NamesThatPointNowhere)
{
    EXPECT_EQ(problemWith("/segments/0/sites/0", "arm.grap"),
              ": /segments/0/sites/0: the figure has no site \"arm.grap\". Close names: \"arm.grip\".");
    EXPECT_EQ(problemWith("/segments/0/attachment", "x"), ": /segments/0/attachment: the figure has no site \"x\".");
    EXPECT_EQ(problemWith("/sites/0/segment", "leg"), ": /sites/0/segment: the figure has no segment \"leg\".");
    EXPECT_EQ(problemWith("/sites/0/joints", {"left_shoulder"}),
              ": /sites/0/joints/0: the figure has no joint \"left_shoulder\". Close names: \"right_shoulder\".");
    EXPECT_EQ(problemWith("/joints/0/sites/1", "arm.none"),
              ": /joints/0/sites/1: the figure has no site \"arm.none\".");
    EXPECT_EQ(problemWith("/joints/0/inboard", "nowhere"), ": /joints/0/inboard: the figure has no site \"nowhere\".");
    EXPECT_EQ(problemWith("/waist", "belt"), ": /waist: the figure has no joint \"belt\".");
    EXPECT_EQ(problemWith("/left/foot_site", "sole"), ": /left/foot_site: the figure has no site \"sole\".");
    EXPECT_EQ(problemWith("/reference_site", "sole"), ": /reference_site: the figure has no site \"sole\".");
    EXPECT_EQ(problemWith("/properties", nlohmann::json::parse(R"([[["site", "tail.tip"], {}]])")),
              ": /properties/0/0/1: the figure has no site \"tail.tip\".");
}

TEST_F(PosedFigureErrors, NamesUsedTwice)
{
    EXPECT_EQ(problemWith("/segments/1/name", "torso"), ": /segments/1/name: another segment has this name.");
    nlohmann::json json = twoSegments();
    json["sites"].push_back(json["sites"][0]);
    EXPECT_EQ(problemOf(json.dump()), ": /sites/4/key: another site has this key: \"torso.base\".");
    json = twoSegments();
    json["joints"].push_back(json["joints"][0]);
    EXPECT_EQ(problemOf(json.dump()), ": /joints/1/name: another joint has this full name: \"pair.right_shoulder\".");
    json["joints"][1]["full_name"] = "other";
    EXPECT_EQ(problemOf(json.dump()), ": /sites/1/joints/0: several joints are named \"right_shoulder\"; use a full "
                                      "name: \"pair.right_shoulder\", \"other\".");
}

TEST_F(PosedFigureErrors, ASiteKeyThatContradictsItsSegment)
{
    EXPECT_EQ(problemWith("/sites/0/name", "bottom"), ": /sites/0/key: expected \"torso.bottom\", as \"segment\" and "
                                                      "\"name\" have it, found \"torso.base\".");
    nlohmann::json json = twoSegments();
    json["sites"][0] = {{"key", "tail.tip"}, {"transform", json["sites"][0]["transform"]}};
    EXPECT_EQ(problemOf(json.dump()),
              ": /sites/0/key: expected \"segment.site\" with the name of a segment, found \"tail.tip\".");
}

TEST_F(PosedFigureErrors, NumbersThatAreNotFinite)
{
    std::string text = twoSegments().dump();
    const std::size_t mass = text.find("20000");
    ASSERT_NE(mass, std::string::npos);
    EXPECT_EQ(problemOf(std::string(text).replace(mass, 5, "1e999")),
              ": /segments/0/mass: expected a finite number, found 1e999.");
    EXPECT_EQ(problemOf(std::string(text).replace(mass, 5, "1e39")),
              ": /segments/0/mass: expected a number of at most 3.4028235e+38 in magnitude (single precision), found "
              "1e+39.");
    // the first double that rounds above the largest float: 2^128 - 2^103
    EXPECT_THAT(problemOf(std::string(text).replace(mass, 5, "340282356779733661637539395458142568448")),
                StartsWith(": /segments/0/mass: expected a number of at most"));
    EXPECT_THAT(problemOf(std::string(text).replace(mass, 5, "NaN")), HasSubstr("expected JSON"));
    EXPECT_THAT(problemOf(std::string(text).replace(mass, 5, "Infinity")), HasSubstr("expected JSON"));
    EXPECT_EQ(problemWith("/segments/0/mass", "nan"), ": /segments/0/mass: expected a number, found \"nan\".");
    EXPECT_THAT(problemWith("/joints/0/angles/0", -1e300), StartsWith(": /joints/0/angles/0: expected a number of"));
}

TEST_F(PosedFigureErrors, TextsWithANullCharacter)
{
    EXPECT_EQ(problemWith("/name", std::string("a\0b", 3)),
              ": /name: expected a text without a null character, found \"a\\x00b\".");
}

TEST_F(PosedFigureErrors, ANullByteBehindTheFigureOfAFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("pair.figure.json", twoSegments().dump() + std::string("\n\0{}", 4));
    qcScene scene;
    EXPECT_FALSE(scene.addHuman(path.c_str(), "pair"));
    EXPECT_THAT(log.takeTexts(), ElementsAre(path + ":2: expected JSON, found a null byte."));
}

TEST_F(PosedFigureErrors, TextsThatAreNoJson)
{
    EXPECT_EQ(problemOf(""), ": expected JSON, found nothing.");
    EXPECT_THAT(problemOf("{\"name\": \"x\",\n \"segments\": ["),
                StartsWith(":2: expected JSON, found a syntax error"));
    EXPECT_THAT(problemOf("\x80\xff\x01"), StartsWith(":1: expected JSON, found a syntax error"));
    EXPECT_THAT(problemOf("{} {}"), StartsWith(":1: expected JSON"));
    EXPECT_EQ(problemOf(R"({"name": "x", "segments": [], "name": "y"})"),
              ": /name: this key stands twice in its object.");
    EXPECT_EQ(problemOf(R"({"name": "x", "segments": [{"a/b": 1, "a/b": 2}]})"),
              ": /segments/0/a~1b: this key stands twice in its object.");
}

TEST_F(PosedFigureErrors, AbsurdNesting)
{
    EXPECT_EQ(problemOf(std::string(100000, '[')), ": it is nested deeper than 250 levels.");
    std::string objects;
    for (int i = 0; i < 100000; ++i)
        objects += "{\"a\":";
    EXPECT_EQ(problemOf(objects), ": it is nested deeper than 250 levels.");
}

}   // namespace
