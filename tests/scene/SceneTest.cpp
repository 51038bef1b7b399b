// Scenes: what a file says is what opens, and a saved scene opens as it was.
#include "NumberText.h"
#include "SceneSupport.h"

#include <cmath>
#include <filesystem>
#include <random>

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;

class SceneTest : public MessageTest {
protected:
    // Writes a scene of one human, the default one, with these further keys.
    std::string writeScene(nlohmann::json human, const nlohmann::json& top = nlohmann::json::object())
    {
        if (!human.contains("posed_figure"))
            human["figure"] = humanPath();
        nlohmann::json scene = {{"format", "sstr-scene"}, {"version", 1}, {"humans", {human}}};
        scene.update(top);
        return folder.write("scene.json", scene.dump());
    }

    std::unique_ptr<qcScene> saveAndOpen(qcScene& scene, const std::string& name = "saved.json")
    {
        EXPECT_EQ(scene.save(folder.file(name).c_str()), 1);
        return openScene(folder.file(name));
    }

    nlohmann::json saved(qcScene& scene, const std::string& name = "saved.json")
    {
        EXPECT_EQ(scene.save(folder.file(name).c_str()), 1);
        return nlohmann::json::parse(contentOf(folder.file(name)));
    }

    TemporaryFolder folder;
};

std::string posed(qcHuman* human)
{
    return qcFigureFile::posedText(*human->figure);
}

TEST_F(SceneTest, ANewOneIsEmptyAndHasTheEarthsGravity)
{
    qcScene scene;
    EXPECT_EQ(scene.getHumans(), nullptr);
    const auto opened = saveAndOpen(scene);
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->getHumans(), nullptr);
    EXPECT_THAT(components(opened->getGravity()), ElementsAre(0, -980.665f, 0));
    EXPECT_EQ(saved(scene)["gravity_cm_per_s2"], nlohmann::json({0, -980.665, 0}));
}

TEST_F(SceneTest, IsWhatTheFileSays)
{
    const auto scene = openScene(
        writeScene({{"name", "Anna"},
                    {"sex", "female"},
                    {"stature_cm", 160},
                    {"mass_kg", 60},
                    {"posture_degrees", {{"left_knee", 90}, {"waist", {5}}}},
                    {"root", {{"position_cm", {1, 2, 3}}, {"rotation_degrees", {0, 90, 0}}}},
                    {"segment_masses_g", {{"right_hand", 700}}},
                    {"strategy", "sitting-no-feet"},
                    {"properties", {{"sites", {{"left_hand.left_palmcenter", {{"SSTR_Load", {"v", {0, -2, 0}}}}}}}}}},
                   {{"gravity_cm_per_s2", {0, -162.5, 0}}}));
    ASSERT_TRUE(scene);
    EXPECT_THAT(components(scene->getGravity()), ElementsAre(0, -162.5f, 0));
    qcHuman* anna = scene->findHuman("Anna");
    ASSERT_TRUE(anna);
    EXPECT_STREQ(anna->figure->getName(), "Anna");
    EXPECT_STREQ(anna->figure->findSegment("l5")->getFullName(), "Anna.l5");
    EXPECT_STREQ(anna->figure->findJoint("left_knee")->getFullName(), "Anna.left_knee");
    EXPECT_EQ(anna->getAnthroscale()->getSex(), qcFemale);
    EXPECT_EQ(anna->getAnthroscale()->getStature(), 160);
    EXPECT_EQ(anna->getAnthroscale()->getMass(), 60000);
    EXPECT_EQ(anna->figure->findJoint("left_knee")->getAngleExactly(1), 90 * kRadiansPerDegree);
    EXPECT_EQ(anna->figure->findJoint("waist")->getAngleExactly(1), 5 * kRadiansPerDegree);
    EXPECT_EQ(anna->figure->findJoint("waist")->getAngleExactly(2), 0);
    EXPECT_EQ(anna->figure->findSegment("right_hand")->getMass(), 700);
    double position[3], rotation[3];
    anna->figure->getRoot(position, rotation);
    EXPECT_THAT(position, ElementsAre(1, 2, 3));
    EXPECT_THAT(rotation, ElementsAre(0, 90, 0));
    EXPECT_FALSE(anna->figure->isOnFloor());
    qcValue value;
    ASSERT_TRUE(anna->figure->getProperty("SSTR_Strategy", &value));
    EXPECT_STREQ(value.toText(), "\"Sitting, No Feet\"");
    ASSERT_TRUE(anna->figure->findSiteByFullName("Anna.left_hand.left_palmcenter")->getProperty("SSTR_Load", &value));
    EXPECT_STREQ(value.toText(), "(0 -2 0)");
}

TEST_F(SceneTest, EveryStrategyHasItsText)
{
    const std::pair<const char*, const char*> strategies[] = {
        {"two-feet", "Two Feet"}, {"right-foot", "Right Foot"}, {"left-foot", "Left Foot"},
        {"walking", "Walking"},   {"sitting", "Sitting"},       {"sitting-no-feet", "Sitting, No Feet"}};
    for (const auto& [name, text] : strategies) {
        // the key overrides what is stored
        const auto scene = openScene(writeScene({{"posed_figure", twoSegments()},
                                                 {"strategy", name},
                                                 {"properties", {{"figure", {{"SSTR_Strategy", {"s", "Other"}}}}}}}));
        ASSERT_TRUE(scene);
        qcHuman* human = scene->findHuman("pair");
        qcValue value;
        ASSERT_TRUE(human->figure->getProperty("SSTR_Strategy", &value));
        EXPECT_EQ(value.toText(), "\"" + std::string(text) + "\"");
        EXPECT_EQ(scene->getUnstoredStrategy(human), "");
        EXPECT_FALSE(saved(*scene)["humans"][0].contains("strategy"));
    }
}

TEST_F(SceneTest, HandsAndKneesIsKeptBesideTheStoredStrategy)
{
    const auto scene = openScene(writeScene({{"posed_figure", twoSegments()},
                                             {"strategy", "hands-and-knees"},
                                             {"properties", {{"figure", {{"SSTR_Strategy", {"s", "Walking"}}}}}}}));
    ASSERT_TRUE(scene);
    const auto again = saveAndOpen(*scene);
    ASSERT_TRUE(again);
    for (qcScene* each : {scene.get(), again.get()}) {
        qcHuman* human = each->findHuman("pair");
        EXPECT_EQ(each->getUnstoredStrategy(human), "hands-and-knees");
        qcValue value;
        ASSERT_TRUE(human->figure->getProperty("SSTR_Strategy", &value));
        EXPECT_STREQ(value.toText(), "\"Walking\"");
    }
    scene->setUnstoredStrategy(scene->findHuman("pair"), "");
    EXPECT_FALSE(saved(*scene)["humans"][0].contains("strategy"));
    scene->setUnstoredStrategy(scene->findHuman("pair"), "hopping");
    EXPECT_EQ(log.takeTexts().size(), 1u);
    EXPECT_EQ(scene->getUnstoredStrategy(scene->findHuman("pair")), "");
    EXPECT_EQ(scene->getUnstoredStrategy(nullptr), "");
}

TEST_F(SceneTest, StandingOnTheFloorInBothForms)
{
    auto scene = openScene(writeScene({{"root", "stand on the floor"}}));
    ASSERT_TRUE(scene);
    qcFigure* figure = static_cast<qcHuman*>(scene->getHumans()->getData())->figure;
    EXPECT_TRUE(figure->isOnFloor());
    EXPECT_EQ(saved(*scene)["humans"][0]["root"], "stand on the floor");

    const nlohmann::json general = {
        {"stand_on_floor", true}, {"position_cm", {10, 0.1, -20}}, {"rotation_degrees", {0, 45, 0}}};
    scene = openScene(writeScene({{"root", general}}));
    ASSERT_TRUE(scene);
    figure = static_cast<qcHuman*>(scene->getHumans()->getData())->figure;
    EXPECT_TRUE(figure->isOnFloor());
    EXPECT_EQ(saved(*scene)["humans"][0]["root"], general);
    const auto again = saveAndOpen(*scene);
    ASSERT_TRUE(again);
    EXPECT_EQ(posed(static_cast<qcHuman*>(again->getHumans()->getData())), qcFigureFile::posedText(*figure));
}

TEST_F(SceneTest, TwoHumansComeBackInTheirOrderWithAllThatWasSetOnThem)
{
    qcScene scene;
    scene.setGravity(qVector(0.1f, -981, 1e-30f));
    qcHuman* berta = scene.addHuman(humanPath().c_str(), "Berta");
    qcHuman* anna = scene.addHuman(humanPath().c_str(), "Anna");
    qcHuman* pair = scene.addPosedHuman(twoSegments().dump().c_str());
    ASSERT_TRUE(berta && anna && pair);
    EXPECT_TRUE(anna->getAnthroscale()->setSex(qcFemale));
    EXPECT_TRUE(anna->getAnthroscale()->setMass(61234.5));
    EXPECT_TRUE(anna->getAnthroscale()->setStature(163.7));
    anna->figure->findSegment("left_hand")->setMass(0.1f);
    EXPECT_TRUE(anna->figure->findJoint("right_knee")->setAngle(1, 1.2345));
    EXPECT_TRUE(anna->figure->findJoint("left_hip")->setAngle(2, -0.1));
    EXPECT_TRUE(anna->figure->setRoot(0.1, 92.3, -1e-7, 3, 0.7, -45));
    berta->figure->standOnFloor();
    EXPECT_TRUE(pair->figure->findJoint("right_shoulder")->setAngle(2, 0.75));
    pair->getAnthroscale()->setMass(40000);
    anna->figure->findJoint("waist")->setProperty("SSTR_Force_Moment", qcValue(1.5f));
    anna->setProperty("note", qcValue("hello"));

    const auto again = saveAndOpen(scene);
    ASSERT_TRUE(again);
    EXPECT_THAT(namesIn<qcHuman>(again->getHumans()), ElementsAre("Berta", "Anna", "pair"));
    EXPECT_EQ(components(again->getGravity()), components(scene.getGravity()));
    for (qcHuman* human : {berta, anna, pair}) {
        qcHuman* other = again->findHuman(human->getName());
        ASSERT_TRUE(other);
        EXPECT_EQ(posed(other), posed(human));
        EXPECT_EQ(other->getFullName(), std::string(human->getFullName()));
    }
    EXPECT_TRUE(again->findHuman("Anna")->figure->findSegment("left_hand")->hasOwnMass());
    EXPECT_FALSE(again->findHuman("Anna")->figure->findSegment("right_hand")->hasOwnMass());
    EXPECT_EQ(again->findHuman("Anna")->getNumProperties(), 1);

    // saving what was opened gives the same file
    ASSERT_TRUE(again->save(folder.file("again.json").c_str()));
    EXPECT_EQ(contentOf(folder.file("again.json")), contentOf(folder.file("saved.json")));
}

TEST_F(SceneTest, AnglesAreSavedAsTheShortestDegreesThatAreTheSameBits)
{
    qcScene scene;
    qcHuman* human = scene.addHuman(humanPath().c_str(), "Anna");
    ASSERT_TRUE(human);
    qcJointImp* knee = human->figure->findJoint("left_knee");
    EXPECT_FALSE(saved(scene)["humans"][0].contains("posture_degrees"));
    for (const char* degrees : {"30", "0.1", "12.5", "57.3", "89.99", "1e-05"}) {
        ASSERT_TRUE(knee->setAngle(1, numberIn<double>(degrees) * kRadiansPerDegree));
        saved(scene);
        EXPECT_THAT(contentOf(folder.file("saved.json")), HasSubstr("\"left_knee\": " + std::string(degrees) + "}"));
    }
    ASSERT_TRUE(knee->setAngle(1, 0));
    EXPECT_FALSE(saved(scene)["humans"][0].contains("posture_degrees"));
}

// Any double comes back, also where no number of degrees times pi/180 rounds to it: then as radians.
TEST_F(SceneTest, AnyAngleComesBackToTheBit)
{
    qcScene scene;
    ASSERT_TRUE(scene.addPosedHuman(twoSegments().dump().c_str()));
    qcJointImp* joint = scene.findHuman("pair")->figure->findJoint("right_shoulder");
    std::mt19937_64 random(20240229);
    std::uniform_real_distribution<double> angles(-3.2, 3.2);
    int inRadians = 0;
    for (int i = 0; i < 200; ++i) {
        const double first = i == 0 ? -0.0 : i == 1 ? 5e-324 : i == 2 ? 1e30 : angles(random);
        ASSERT_TRUE(joint->setAngle(1, first));
        ASSERT_TRUE(joint->setAngle(2, angles(random)));
        const auto again = saveAndOpen(scene);
        ASSERT_TRUE(again);
        const qcJointImp* found = again->findHuman("pair")->figure->findJoint("right_shoulder");
        EXPECT_EQ(found->getAngleExactly(1), joint->getAngleExactly(1));
        EXPECT_EQ(std::signbit(found->getAngleExactly(1)), std::signbit(joint->getAngleExactly(1)));
        EXPECT_EQ(found->getAngleExactly(2), joint->getAngleExactly(2));
        inRadians += contentOf(folder.file("saved.json")).find("posture_radians") != std::string::npos;
    }
    EXPECT_GT(inRadians, 0);     // such angles are among these
    EXPECT_LT(inRadians, 100);   // and few
}

TEST_F(SceneTest, AnyBodyMassComesBackToTheBit)
{
    qcScene scene;
    qcHuman* human = scene.addHuman(humanPath().c_str(), "Anna");
    ASSERT_TRUE(human);
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> masses(64000, 66000);
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(human->getAnthroscale()->setMass(i == 0 ? 75000 : masses(random)));
        const auto again = saveAndOpen(scene);
        ASSERT_TRUE(again);
        EXPECT_EQ(again->findHuman("Anna")->getAnthroscale()->getMass(), human->getAnthroscale()->getMass());
        if (i == 0) {
            EXPECT_EQ(saved(scene)["humans"][0]["mass_kg"], 75);
        }
    }
}

TEST_F(SceneTest, NamesItsFiguresRelativeToItselfWhereverItIsSaved)
{
    namespace fs = std::filesystem;
    fs::create_directories(folder.file("figures"));
    fs::create_directories(folder.file("scenes/deep"));
    folder.write("figures/pair.figure.json", twoSegments().dump());
    fs::create_symlink("pair.figure.json", folder.file("figures/link.figure.json"));
    qcScene scene;
    ASSERT_TRUE(scene.addHuman(folder.file("figures/pair.figure.json").c_str(), "a"));
    ASSERT_TRUE(scene.addHuman(folder.file("figures/link.figure.json").c_str(), "b"));
    EXPECT_EQ(saved(scene, "top.json")["humans"][0]["figure"], "figures/pair.figure.json");
    EXPECT_EQ(saved(scene, "top.json")["humans"][1]["figure"], "figures/link.figure.json");
    EXPECT_EQ(saved(scene, "scenes/deep/low.json")["humans"][0]["figure"], "../../figures/pair.figure.json");
    EXPECT_EQ(saved(scene, "figures/beside.json")["humans"][0]["figure"], "pair.figure.json");

    // the whole tree moves, and the scene still finds its figures
    fs::rename(folder.file("scenes"), folder.file("moved"));
    const auto opened = openScene(folder.file("moved/deep/low.json"));
    ASSERT_TRUE(opened);
    EXPECT_EQ(saved(*opened, "top2.json")["humans"][0]["figure"], "figures/pair.figure.json");

    // a relative path means the folder one is in
    const fs::path before = fs::current_path();
    fs::current_path(folder.file("moved"));
    const auto relative = openScene("deep/low.json");
    qcScene local;
    qcHuman* added = local.addHuman("../figures/pair.figure.json", "c");
    const int status = local.save("here.json");
    fs::current_path(before);
    EXPECT_TRUE(relative && added && status);
    EXPECT_EQ(saved(local, "top3.json")["humans"][0]["figure"], "figures/pair.figure.json");
    EXPECT_THAT(contentOf(folder.file("moved/here.json")), HasSubstr("\"../figures/pair.figure.json\""));
}

TEST_F(SceneTest, RemembersARolesFileThatWasGiven)
{
    namespace fs = std::filesystem;
    fs::copy_file(humanPath(), folder.file("body.urdf"));
    fs::copy_file(SSTR_SOURCE_DIR "/figures/human.roles.json", folder.file("other.roles.json"));
    qcScene scene;
    ASSERT_TRUE(scene.addHuman(folder.file("body.urdf").c_str(), "a", folder.file("other.roles.json").c_str()));
    EXPECT_EQ(saved(scene)["humans"][0]["roles"], "other.roles.json");
    const auto again = saveAndOpen(scene);
    ASSERT_TRUE(again);
    EXPECT_EQ(posed(again->findHuman("a")), posed(scene.findHuman("a")));

    qcScene sidecar;
    ASSERT_TRUE(sidecar.addHuman(humanPath().c_str(), "b"));
    EXPECT_FALSE(saved(sidecar)["humans"][0].contains("roles"));
}

// A property that the figure's own file brings and that was removed since does not come back.
TEST_F(SceneTest, APropertyThatWasRemovedStaysAway)
{
    nlohmann::json json = twoSegments();
    json["properties"] = nlohmann::json::parse(
        R"([[["figure"], {"a": ["f", 1], "b": ["f", 2]}], [["site", "arm.grip"], {"c": ["f", 3]}]])");
    folder.write("pair.figure.json", json.dump());
    qcScene scene;
    ASSERT_TRUE(scene.addHuman(folder.file("pair.figure.json").c_str(), "file"));
    json["name"] = "text";
    ASSERT_TRUE(scene.addPosedHuman(json.dump().c_str()));
    for (const char* name : {"file", "text"}) {
        qcFigure* figure = scene.findHuman(name)->figure;
        EXPECT_TRUE(figure->removeProperty("a"));
        figure->setProperty("b", qcValue(5.0f));
        EXPECT_TRUE(figure->findSiteByFullName((name + std::string(".arm.grip")).c_str())->removeProperty("c"));
    }
    const auto again = saveAndOpen(scene);
    ASSERT_TRUE(again);
    for (const char* name : {"file", "text"})
        EXPECT_EQ(posed(again->findHuman(name)), posed(scene.findHuman(name)));
    EXPECT_EQ(saved(*again, "again.json"), saved(scene));
}

TEST_F(SceneTest, JointsOfOneNameAreToldByTheirFullNames)
{
    nlohmann::json json = twoSegments();
    json["joints"] = nlohmann::json::parse(R"([
      {"name": "link", "sites": ["torso.shoulder", "arm.proximal"], "angles": [0]},
      {"name": "link", "full_name": "other.link", "sites": ["torso.base", "arm.grip"], "angles": [0]}])");
    json["sites"][1]["joints"] = json["sites"][2]["joints"] = nlohmann::json::array();
    json["right"] = nullptr;
    nlohmann::json properties = {{"joints", {{"new.link", {{"k", {"f", 1}}}}}}};
    const auto scene = openScene(writeScene({{"name", "new"},
                                             {"posed_figure", json},
                                             {"posture_degrees", {{"other.link", 10}, {"new.link", 20}}},
                                             {"properties", properties}}));
    ASSERT_TRUE(scene);
    const nlohmann::json human = saved(*scene)["humans"][0];
    EXPECT_EQ(human["posture_degrees"], nlohmann::json({{"other.link", 10}, {"new.link", 20}}));
    EXPECT_EQ(human["properties"], properties);
    const auto again = saveAndOpen(*scene);
    ASSERT_TRUE(again);
    EXPECT_EQ(posed(again->findHuman("new")), posed(scene->findHuman("new")));
}

TEST_F(SceneTest, AHumanAndItsFigureMayHaveTwoNames)
{
    qcScene scene;
    ASSERT_TRUE(scene.addPosedHuman(twoSegments().dump().c_str()));
    scene.findHuman("pair")->setName("boss");
    const auto again = saveAndOpen(scene);
    ASSERT_TRUE(again);
    ASSERT_TRUE(again->findHuman("boss"));
    EXPECT_STREQ(again->findHuman("boss")->figure->getName(), "pair");
}

class Watcher : public qcObserver {
public:
    void update(updateProtocol protocol) override
    {
        destroyed += protocol == qcDestroyed;
        if (figure)
            namesSeen = namesIn(figure->getSegments()).size();
    }
    int destroyed = 0;
    qcFigure* figure = nullptr;
    std::size_t namesSeen = 0;
};

TEST_F(SceneTest, TellsObserversWhileTheFigureStillStands)
{
    Watcher ofScene, ofHuman, ofFigure;
    auto scene = std::make_unique<qcScene>();
    qcHuman* human = scene->addPosedHuman(twoSegments().dump().c_str());
    ASSERT_TRUE(human);
    ofHuman.figure = ofFigure.figure = human->figure;
    scene->attach(&ofScene, qcDestroyed);
    human->attach(&ofHuman, qcDestroyed);
    human->figure->attach(&ofFigure, qcDestroyed);
    scene.reset();
    for (const Watcher* watcher : {&ofScene, &ofHuman, &ofFigure})
        EXPECT_EQ(watcher->destroyed, 1);
    EXPECT_EQ(ofHuman.namesSeen, 2u);
    EXPECT_EQ(ofFigure.namesSeen, 2u);
}

TEST_F(SceneTest, AddingFailsWithoutATrace)
{
    qcScene scene;
    ASSERT_TRUE(scene.addHuman(humanPath().c_str(), "Anna"));
    EXPECT_FALSE(scene.addHuman(humanPath().c_str(), "Anna"));
    EXPECT_THAT(log.takeTexts(),
                ElementsAre("the scene has a human named \"Anna\" already; give this one another name."));
    EXPECT_FALSE(scene.addHuman(folder.file("none.urdf").c_str(), "Berta"));
    EXPECT_EQ(log.takeTexts().size(), 1u);
    EXPECT_FALSE(scene.addPosedHuman("{"));
    EXPECT_EQ(log.takeTexts().size(), 1u);
    EXPECT_FALSE(scene.addPosedHuman(nullptr));
    EXPECT_EQ(log.takeTexts().size(), 1u);
    nlohmann::json json = twoSegments();
    json["name"] = "Anna";
    EXPECT_FALSE(scene.addPosedHuman(json.dump().c_str()));
    EXPECT_EQ(log.takeTexts().size(), 1u);
    EXPECT_THAT(namesIn<qcHuman>(scene.getHumans()), ElementsAre("Anna"));
    EXPECT_EQ(scene.findHuman("Berta"), nullptr);
    EXPECT_EQ(scene.findHuman(nullptr), nullptr);
}

TEST_F(SceneTest, WithoutANameAFigureKeepsItsOwn)
{
    qcScene scene;
    qcHuman* human = scene.addHuman(humanPath().c_str(), nullptr);
    ASSERT_TRUE(human);
    EXPECT_STREQ(human->getName(), "human");
    EXPECT_STREQ(human->figure->getName(), "human");
    EXPECT_FALSE(scene.addHuman(humanPath().c_str(), ""));
    EXPECT_EQ(log.takeTexts().size(), 1u);
}

// The examples in docs/formats.md: the text between "```json" and "```" under a heading.
std::string exampleUnder(const std::string& heading)
{
    const std::string document = contentOf(SSTR_SOURCE_DIR "/docs/formats.md");
    const std::size_t begin = document.find("```json\n", document.find("\n## " + heading + "\n"));
    const std::size_t end = document.find("```", begin + 8);
    return begin == std::string::npos || end == std::string::npos ? "" : document.substr(begin + 8, end - begin - 8);
}

TEST_F(SceneTest, TheDocumentedExamplesAreRead)
{
    const std::unique_ptr<qcFigure> figure(
        qcFigureFile::readPosedText(exampleUnder("Posed figures").c_str(), "docs/formats.md"));
    EXPECT_TRUE(figure);

    std::filesystem::create_directory(folder.file("docs"));
    std::filesystem::create_symlink(SSTR_SOURCE_DIR "/figures", folder.file("figures"));
    const auto scene = openScene(folder.write("docs/scene.json", exampleUnder("Scenes")));
    ASSERT_TRUE(scene);
    EXPECT_THAT(namesIn<qcHuman>(scene->getHumans()), ElementsAre("Anna"));
}

}   // namespace
