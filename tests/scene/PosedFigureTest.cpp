// Posed figures: what a file says is what the figure is, and reading and writing change nothing.
#include "DecimalComma.h"
#include "SceneSupport.h"

#include "qc/qcHuman.h"

#include <cmath>
#include <cstring>
#include <limits>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class PosedFigure : public MessageTest {};

qcSiteImp* siteOf(qcFigure& figure, const std::string& key)
{
    return figure.findSiteByFullName((std::string(figure.getName()) + "." + key).c_str());
}

TEST_F(PosedFigure, IsWhatTheFileSays)
{
    const auto figure = readPosed(twoSegments());
    ASSERT_TRUE(figure);
    EXPECT_STREQ(figure->getName(), "pair");
    EXPECT_TRUE(figure->isPosed());

    qcSegmentImp* arm = figure->findSegment("arm");
    ASSERT_TRUE(arm);
    EXPECT_STREQ(arm->getFullName(), "pair.arm");
    EXPECT_EQ(arm->getMass(), 3000);
    EXPECT_THAT(components(arm->getCenterOfMass()), ElementsAre(0, -15, 0));
    EXPECT_THAT(components(arm->getGlobalTransform().getTranslation()), ElementsAre(20, 140, 0));
    EXPECT_EQ(arm->getAttachmentSite(), siteOf(*figure, "arm.proximal"));
    EXPECT_EQ(figure->findSegment("torso")->getAttachmentSite(), nullptr);

    qcSiteImp* grip = siteOf(*figure, "arm.grip");
    ASSERT_TRUE(grip);
    EXPECT_THAT(components(grip->getGlobalTransform().getTranslation()), ElementsAre(20, 80, 0));
    EXPECT_THAT(components(grip->getSecondTransform().getTranslation()), ElementsAre(20, 81, 0));
    qcSiteImp* base = siteOf(*figure, "torso.base");
    EXPECT_THAT(components(base->getSecondTransform().getTranslation()), ElementsAre(0, 100, 0));

    qcJointImp* shoulder = figure->findJoint("right_shoulder");
    ASSERT_TRUE(shoulder);
    EXPECT_STREQ(shoulder->getFullName(), "pair.right_shoulder");
    EXPECT_EQ(shoulder->getSite(0), siteOf(*figure, "torso.shoulder"));
    EXPECT_EQ(shoulder->getSite(1), siteOf(*figure, "arm.proximal"));
    EXPECT_EQ(shoulder->getInboardSite(), shoulder->getSite(0));   // not told: the first
    ASSERT_EQ(shoulder->getNumAngles(), 2);
    EXPECT_EQ(shoulder->getAngle(1), 0.5f);
    EXPECT_EQ(shoulder->getAngle(2), -0.25f);

    EXPECT_EQ(figure->getReferenceSite(), base);
    EXPECT_EQ(figure->getRoles().pelvis, base);
    EXPECT_EQ(figure->getRoles().waist, nullptr);
    EXPECT_EQ(figure->getRoles().hand[qcRight], grip);
    EXPECT_EQ(figure->getRoles().hand[qcLeft], nullptr);
    EXPECT_EQ(figure->getRoles().knee[qcRight], shoulder);
}

TEST_F(PosedFigure, KeepsTheOrderOfEveryList)
{
    nlohmann::json json = twoSegments();
    json["sites"][1]["joints"] = {"right_shoulder", "right_shoulder"};   // a list is what the host had
    const auto figure = readPosed(json);
    ASSERT_TRUE(figure);
    EXPECT_THAT(namesIn(figure->getSegments()), ElementsAre("torso", "arm"));
    EXPECT_THAT(namesIn(figure->getSites()), ElementsAre("base", "shoulder", "proximal", "grip"));
    EXPECT_THAT(namesIn(figure->findSegment("torso")->getSites()), ElementsAre("shoulder", "base"));
    EXPECT_THAT(namesIn(siteOf(*figure, "torso.shoulder")->getJoints()),
                ElementsAre("right_shoulder", "right_shoulder"));
}

TEST_F(PosedFigure, ASegmentMayListTheSiteOfAnother)
{
    nlohmann::json json = twoSegments();
    json["segments"][0]["sites"] = {"arm.grip"};
    const auto figure = readPosed(json);
    ASSERT_TRUE(figure);
    EXPECT_THAT(namesIn(figure->findSegment("torso")->getSites()), ElementsAre("grip"));
    EXPECT_EQ(siteOf(*figure, "arm.grip")->getSegment(), figure->findSegment("arm"));
}

// A left-out list holds what belongs there in the file's order; the torso's sites are base, shoulder.
TEST_F(PosedFigure, FillsInWhatIsLeftOut)
{
    nlohmann::json json = twoSegments();
    json["segments"][0].erase("sites");
    json["segments"][0].erase("com");
    json["segments"][0].erase("attachment");
    json["sites"][1] = {{"key", "torso.shoulder"}, {"transform", json["sites"][1]["transform"]}};
    json["sites"][2].erase("key");
    json["joints"][0].erase("angles");
    for (const char* key : {"reference_site", "pelvis_site", "waist", "left", "right"})
        json.erase(key);
    const auto figure = readPosed(json);
    ASSERT_TRUE(figure);
    EXPECT_THAT(namesIn(figure->findSegment("torso")->getSites()), ElementsAre("base", "shoulder"));
    EXPECT_THAT(components(figure->findSegment("torso")->getCenterOfMass()), ElementsAre(0, 0, 0));
    EXPECT_THAT(namesIn(siteOf(*figure, "torso.shoulder")->getJoints()), ElementsAre("right_shoulder"));
    EXPECT_TRUE(siteOf(*figure, "arm.proximal"));
    EXPECT_EQ(figure->findJoint("right_shoulder")->getNumAngles(), 0);
    EXPECT_EQ(figure->getReferenceSite(), nullptr);
}

TEST_F(PosedFigure, NeedsNoPartsAtAll)
{
    const auto figure = readPosed({{"name", "nobody"}, {"segments", nlohmann::json::array()}});
    ASSERT_TRUE(figure);
    EXPECT_THAT(namesIn(figure->getSegments()), IsEmpty());
    const auto again = readPosed(nlohmann::json::parse(qcFigureFile::posedText(*figure)));
    ASSERT_TRUE(again);
    EXPECT_STREQ(again->getName(), "nobody");
}

TEST_F(PosedFigure, TakesMassesOfZeroAndBelow)
{
    nlohmann::json json = twoSegments();
    json["segments"][0]["mass"] = 0;
    json["segments"][1]["mass"] = -5;
    const auto figure = readPosed(json);
    ASSERT_TRUE(figure);
    EXPECT_EQ(figure->findSegment("torso")->getMass(), 0);
    EXPECT_EQ(figure->findSegment("arm")->getMass(), -5);
}

// The bare name belongs to two joints: each is told by its full name, and a third one by its bare name.
TEST_F(PosedFigure, TellsJointsOfOneNameByTheirFullNames)
{
    nlohmann::json json = twoSegments();
    json["joints"] = nlohmann::json::parse(R"([
      {"name": "link", "full_name": "pair.link", "sites": ["torso.shoulder", "arm.proximal"]},
      {"name": "link", "full_name": "other.link", "sites": ["torso.base", "arm.grip"]},
      {"name": "waist", "full_name": "elsewhere", "sites": ["torso.base", "arm.grip"]}])");
    json["sites"][1]["joints"] = {"other.link", "pair.link", "waist"};
    json["sites"][2]["joints"] = nlohmann::json::array();
    json["right"]["knee"] = "other.link";
    json["properties"] = nlohmann::json::parse(R"([[["joint", "other.link"], {"k": ["f", 1]}]])");
    const auto figure = readPosed(json);
    ASSERT_TRUE(figure);
    const qcJointImp* knee = figure->getRoles().knee[qcRight];
    ASSERT_TRUE(knee);
    EXPECT_STREQ(knee->getFullName(), "other.link");
    EXPECT_EQ(knee->getNumProperties(), 1);

    const nlohmann::json written = nlohmann::json::parse(qcFigureFile::posedText(*figure));
    EXPECT_EQ(written["sites"][1]["joints"], nlohmann::json({"other.link", "pair.link", "waist"}));
    EXPECT_EQ(written["right"]["knee"], "other.link");
    EXPECT_EQ(written["properties"][0][0], nlohmann::json({"joint", "other.link"}));
}

TEST_F(PosedFigure, MakesAHumanWhateverRolesItLacks)
{
    for (const char* scale : {"present", "init", "none"}) {
        nlohmann::json json = twoSegments();
        json["anthro"] = scale;
        const auto figure = readPosed(json);
        ASSERT_TRUE(figure);
        const std::unique_ptr<qcHuman> human(qcHuman::create(figure.get()));
        ASSERT_TRUE(human);
        EXPECT_EQ(human->getFootSite(qcLeft), nullptr);
        EXPECT_EQ(human->getAnthroscale() != nullptr, std::string(scale) == "present");
        EXPECT_EQ(human->initAnthroscale(nullptr) != nullptr, std::string(scale) != "none");
        EXPECT_EQ(nlohmann::json::parse(qcFigureFile::posedText(*figure))["anthro"], scale);
    }
}

TEST_F(PosedFigure, SettingAnAngleStoresItAndMovesNothing)
{
    const auto figure = readPosed(twoSegments());
    ASSERT_TRUE(figure);
    nlohmann::json before = nlohmann::json::parse(qcFigureFile::posedText(*figure));
    EXPECT_EQ(figure->findJoint("right_shoulder")->setAngle(1, 100), 1);
    EXPECT_EQ(figure->setRoot(1, 2, 3, 4, 5, 6), 1);
    figure->standOnFloor();
    before["joints"][0]["angles"][0] = 100;
    EXPECT_EQ(nlohmann::json::parse(qcFigureFile::posedText(*figure)), before);
}

TEST_F(PosedFigure, HasItsPropertiesFromTheStart)
{
    nlohmann::json json = twoSegments();
    json["properties"] = nlohmann::json::parse(R"([
      [["figure"], {"SSTR_Strategy": ["s", "Sitting"]}],
      [["segment", "arm"], {"k": ["v", [1, 2, 3]]}],
      [["site", "arm.grip"], {"k": ["l", [["f", 1], ["e"]]]}],
      [["joint", "right_shoulder"], {"a": ["f", 1], "b": ["f", 2]}],
      [["joint", "right_shoulder"], {"c": ["f", 3]}]])");
    const auto figure = readPosed(json);
    ASSERT_TRUE(figure);
    qcValue value;
    ASSERT_TRUE(figure->getProperty("SSTR_Strategy", &value));
    EXPECT_STREQ(value.toText(), "\"Sitting\"");
    ASSERT_TRUE(figure->findSegment("arm")->getProperty("k", &value));
    EXPECT_STREQ(value.toText(), "(1 2 3)");
    ASSERT_TRUE(siteOf(*figure, "arm.grip")->getProperty("k", &value));
    EXPECT_STREQ(value.toText(), "(1 ())");
    EXPECT_EQ(figure->findJoint("right_shoulder")->getNumProperties(), 3);   // two entries of one object
}

// Numbers that a careless writer spoils: the smallest subnormal, the largest, a negative zero, one
// with 9 significant digits, one above 2^64.
TEST_F(PosedFigure, KeepsEveryBitOfItsNumbers)
{
    const float numbers[] = {std::numeric_limits<float>::denorm_min(),
                             std::numeric_limits<float>::max(),
                             -0.0f,
                             0.1f,
                             16777217.0f,
                             -1.17549421e-38f,
                             1e20f,
                             -123456.789f};
    for (const float number : numbers) {
        nlohmann::json json = twoSegments();
        json["segments"][0]["mass"] = double(number);
        json["segments"][0]["transform"][3][1] = double(number);
        json["sites"][0]["second_transform"] = json["segments"][0]["transform"];
        const auto first = readPosed(json);
        ASSERT_TRUE(first);
        const std::string text = qcFigureFile::posedText(*first);
        const auto second = readPosed(nlohmann::json::parse(text));
        ASSERT_TRUE(second);
        for (const auto& figure : {first.get(), second.get()}) {
            EXPECT_EQ(figure->findSegment("torso")->getMass(), number);
            EXPECT_EQ(std::signbit(figure->findSegment("torso")->getMass()), std::signbit(number));
            EXPECT_EQ(siteOf(*figure, "torso.base")->getSecondTransform().m[3][1], number);
        }
        EXPECT_EQ(qcFigureFile::posedText(*second), text);
    }
}

TEST_F(PosedFigure, AnglesKeepDoublePrecision)
{
    nlohmann::json json = twoSegments();
    json["joints"][0]["angles"] = {0.1, -1.0 / 3};
    const auto figure = readPosed(json);
    ASSERT_TRUE(figure);
    const auto again = readPosed(nlohmann::json::parse(qcFigureFile::posedText(*figure)));
    ASSERT_TRUE(again);
    EXPECT_EQ(again->findJoint("right_shoulder")->getAngleExactly(1), 0.1);
    EXPECT_EQ(again->findJoint("right_shoulder")->getAngleExactly(2), -1.0 / 3);
}

TEST_F(PosedFigure, IsReadAndWrittenAlikeInEveryLocale)
{
    nlohmann::json json = twoSegments();
    json["segments"][0]["mass"] = 0.5;
    const std::string text = json.dump();
    const DecimalComma comma;
    const std::unique_ptr<qcFigure> figure(qcFigureFile::readPosedText(text.c_str(), "text"));
    ASSERT_TRUE(figure);
    const std::string written = qcFigureFile::posedText(*figure);
    EXPECT_EQ(figure->findSegment("torso")->getMass(), 0.5f);
    EXPECT_NE(written.find("\"mass\": 0.5"), std::string::npos);
}

// The law of all files: read, write, read again, and nothing changes.
TEST_F(PosedFigure, ReadingWhatWasWrittenChangesNothing)
{
    nlohmann::json json = twoSegments();
    json["name"] = "Zoë \"the\" pair\n";
    json["properties"] = nlohmann::json::parse(R"([[["site", "arm.grip"], {"SSTR_Load": ["v", [0, -1.5, 0]]}]])");
    const auto figure = readPosed(json);
    ASSERT_TRUE(figure);
    const std::string text = qcFigureFile::posedText(*figure);
    const std::unique_ptr<qcFigure> again(qcFigureFile::readPosedText(text.c_str(), "again"));
    ASSERT_TRUE(again);
    EXPECT_EQ(qcFigureFile::posedText(*again), text);
}

TEST_F(PosedFigure, KeepsABentMovingFigureToTheBit)
{
    const std::unique_ptr<qcFigure> human(qcFigureFile::read(humanPath().c_str(), nullptr));
    ASSERT_TRUE(human);
    ASSERT_TRUE(human->findJoint("left_knee")->setAngle(1, 0.7));
    ASSERT_TRUE(human->findJoint("right_elbow")->setAngle(1, 0.3));
    ASSERT_TRUE(human->setRoot(1.1, 95, -3, 10, 20, 5));
    human->findSegment("right_hand")->setMass(1234.5f);

    const std::string text = qcFigureFile::posedText(*human);
    const std::unique_ptr<qcFigure> posed(qcFigureFile::readPosedText(text.c_str(), "human"));
    ASSERT_TRUE(posed);
    EXPECT_EQ(qcFigureFile::posedText(*posed), text);
    EXPECT_EQ(namesIn(posed->getSites()), namesIn(human->getSites()));
    for (const char* key : {"left_foot.sole", "right_hand.right_palmcenter", "lower_torso.balance_point"}) {
        const qMatrix& expected = siteOf(*human, key)->getGlobalTransform();
        const qMatrix& found = siteOf(*posed, key)->getGlobalTransform();
        EXPECT_EQ(std::memcmp(expected.m, found.m, sizeof expected.m), 0) << key;
    }
    EXPECT_EQ(components(posed->getBodyCenterOfMass()), components(human->getBodyCenterOfMass()));
    EXPECT_EQ(posed->findSegment("right_hand")->getMass(), 1234.5f);
}

TEST_F(PosedFigure, IsWrittenToAFileAndReadFromIt)
{
    const TemporaryFolder folder;
    const auto figure = readPosed(twoSegments());
    ASSERT_TRUE(figure);
    const std::string path = folder.file("pair.figure.json");
    ASSERT_EQ(qcFigureFile::writePosed(*figure, path.c_str()), 1);
    const std::unique_ptr<qcFigure> again(qcFigureFile::read(path.c_str(), nullptr));
    ASSERT_TRUE(again);
    EXPECT_EQ(qcFigureFile::posedText(*again), contentOf(path));
}

// What no file can hold is refused when it is written, with the part's name, and not when it is read.
TEST_F(PosedFigure, WhatAFileCannotHoldIsNotWritten)
{
    const auto figure = readPosed(twoSegments());
    ASSERT_TRUE(figure);
    figure->findSegment("arm")->setMass(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(qcFigureFile::posedText(*figure), "");
    EXPECT_THAT(log.takeTexts(), ElementsAre("figure pair cannot be written: pair.arm: a number that is not finite "
                                             "cannot be written."));
    figure->findSegment("arm")->setMass(1);
    figure->findSegment("arm")->setName("torso");
    EXPECT_EQ(qcFigureFile::posedText(*figure), "");
    EXPECT_THAT(log.takeTexts(), ElementsAre("figure pair cannot be written: pair.torso: several segments are named "
                                             "\"torso\": a file cannot tell them apart."));
    figure->findSegment("torso")->setName("caf\xe9");   // Latin-1
    EXPECT_EQ(qcFigureFile::posedText(*figure), "");
    EXPECT_EQ(log.takeTexts().size(), 1u);
}

}   // namespace
