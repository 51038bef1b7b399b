// Large figures and odd names in files: what is read and written deep, wide, long or oddly named comes back the same.
#include "LargeFigures.h"
#include "OddNames.h"
#include "SceneSupport.h"
#include "SmallStack.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

class LargeFigures : public MessageTest {
protected:
    TemporaryFolder folder;
};

const int kLinks = deepLinks();

// What a file may leave out is left out: the lists of a segment's sites and of a site's joints, names that keys tell,
// and all roles. Link i lies i cm to the left and hangs on the one before.
std::string sparseChain()
{
    std::string segments, sites, joints;
    for (int i = 0; i <= kLinks; ++i) {
        const std::string number = std::to_string(i), comma = i ? "," : "";
        const std::string transform = R"("transform":[[1,0,0,0],[0,1,0,0],[0,0,1,0],[)" + number + ",0,0,1]]}";
        segments += comma + R"({"name":"s)" + number + R"(","mass":1,)" + transform;
        sites += comma + R"({"key":"s)" + number + R"(.a",)" + transform;
        if (i > 0)
            joints += (i > 1 ? "," : "") + std::string(R"({"name":"j)") + number + R"(","sites":["s)"
                      + std::to_string(i - 1) + R"(.a","s)" + number + R"(.a"]})";
    }
    return R"({"name":"chain","segments":[)" + segments + R"(],"sites":[)" + sites + R"(],"joints":[)" + joints + "]}";
}

// Each of the lists that are made for it holds what belongs there, in the file's order.
TEST_F(LargeFigures, ADeepChainIsReadFromWhatItMustTell)
{
    const std::string text = sparseChain();
    runOnSmallStack([&] {
        const std::unique_ptr<qcFigure> figure(qcFigureFile::readPosedText(text.c_str(), "chain.figure.json"));
        ASSERT_NE(figure, nullptr);
        EXPECT_EQ(figure->getBodyMass(), kLinks + 1.0);
        for (const int i : {1, 2, kLinks / 2, kLinks - 1}) {
            const std::string number = std::to_string(i);
            qcSegment* segment = figure->findSegment(("s" + number).c_str());
            EXPECT_THAT(namesIn(segment->getSites()), ElementsAre("a"));
            qcSite* site = figure->findSiteByFullName(("chain.s" + number + ".a").c_str());
            EXPECT_THAT(namesIn(site->getJoints()), ElementsAre("j" + number, "j" + std::to_string(i + 1)));
            EXPECT_EQ(site->getGlobalTransform().getTranslation()[0], static_cast<float>(i));
        }
    });
}

// The whole figure lies in the scene's file, 14 million values for a hundred thousand links.
TEST_F(LargeFigures, ADeepPosedChainIsSavedAndOpened)
{
    const std::string path = folder.file("chain.json"), last = "k" + std::to_string(kLinks);
    runOnSmallStack([&] {
        const std::string text =
            LargeFigure(smallBody(), "right_hand", {-20, 72, 0}).chain(kLinks, 1000, {0.25, -1, 0}).text();
        {
            qcScene scene;
            qcHuman* human = scene.addPosedHuman(text.c_str());
            ASSERT_NE(human, nullptr);
            human->getFigure()->findSegment(last.c_str())->setProperty("note", qcValue("the last"));
            ASSERT_EQ(scene.save(path.c_str()), 1);
        }
        const auto opened = openScene(path);
        ASSERT_NE(opened, nullptr);
        qcFigure* figure = opened->findHuman("man")->getFigure();
        qcSegment* segment = figure->findSegment(last.c_str());
        EXPECT_THAT(components(segment->getGlobalTransform().getTranslation()),
                    ElementsAre(-20 + 0.25f * static_cast<float>(kLinks), 72 - kLinks, 0));
        qcValue note;
        EXPECT_EQ(segment->getProperty("note", &note), 1);
        EXPECT_STREQ(note.toText(), "\"the last\"");
        qcJoint* joint = figure->findJoint(("c" + std::to_string(kLinks)).c_str());
        EXPECT_EQ(joint->getInboardSite(),
                  figure->findSiteByFullName(("man.k" + std::to_string(kLinks - 1) + ".a").c_str()));
        EXPECT_EQ(joint->otherSite(joint->getInboardSite())->getSegment(), segment);
    });
}

// A site of 10 000 joints keeps their order.
TEST_F(LargeFigures, AFanOfTenThousandJointsAtASiteComesBack)
{
    const std::unique_ptr<qcFigure> figure(qcFigureFile::readPosedText(
        LargeFigure(smallBody(), "right_hand", {-20, 72, 0}).fan(10000, 1000, {0.25, 0, 0}).text().c_str(), "fan"));
    ASSERT_NE(figure, nullptr);
    const std::string text = qcFigureFile::posedText(*figure);
    const std::unique_ptr<qcFigure> again(qcFigureFile::readPosedText(text.c_str(), "again"));
    ASSERT_NE(again, nullptr);
    const auto joints = namesIn(again->findSiteByFullName("man.right_hand.hook")->getJoints());
    EXPECT_EQ(joints, namesIn(figure->findSiteByFullName("man.right_hand.hook")->getJoints()));
    ASSERT_EQ(joints.size(), 10000u);
    EXPECT_EQ(joints[9999], "f10000");
    EXPECT_TRUE(qcFigureFile::posedText(*again) == text);
}

// Lists in lists as deep as a file can hold are written and read on a small stack; one deeper is refused by its name.
TEST_F(LargeFigures, ListsAsDeepAsAFileHoldsThemNeedNoLargeStack)
{
    runOnSmallStack([this] {
        const auto figure = readPosed(twoSegments());
        ASSERT_NE(figure, nullptr);
        qcValue nest("inmost");
        for (int i = 0; i < 100; ++i) {
            qcValue outer;
            outer.setList(new qcValue(std::move(nest)));
            nest = std::move(outer);
        }
        figure->setProperty("nest", nest);
        const std::string path = folder.file("nest.figure.json");
        ASSERT_EQ(qcFigureFile::writePosed(*figure, path.c_str()), 1);
        const std::unique_ptr<qcFigure> again(qcFigureFile::read(path.c_str(), nullptr));
        ASSERT_NE(again, nullptr);
        qcValue read;
        ASSERT_EQ(again->getProperty("nest", &read), 1);
        EXPECT_EQ(read.toText(), std::string(nest.toText()));

        qcValue deeper;
        deeper.setList(new qcValue(std::move(nest)));
        figure->setProperty("nest", deeper);
        EXPECT_EQ(qcFigureFile::writePosed(*figure, path.c_str()), 0);
        EXPECT_THAT(log.takeTexts(), ElementsAre(HasSubstr("nests lists deeper than 100 levels.")));
    });
}

// ---- Odd names

class OddNameInFiles : public LargeFigures, public ::testing::WithParamInterface<std::size_t> {
protected:
    const std::string name = oddNames()[GetParam()];
    const std::string key = name + "." + name;

    static std::string escapedForXml(const std::string& text)
    {
        std::string escaped;
        for (const char c : text)
            escaped += c == '&'                               ? "&amp;"
                       : c == '<'                             ? "&lt;"
                       : c == '"'                             ? "&quot;"
                       : static_cast<unsigned char>(c) < 0x20 ? "&#" + std::to_string(static_cast<int>(c)) + ";"
                                                              : std::string(1, c);
        return escaped;
    }
    bool hasControls() const
    {
        for (const char c : name)
            if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
                return true;
        return false;
    }

    // A body whose right hand, its sites and its joint bear the name, and the figure too.
    std::string oddBody() const
    {
        SmallFigure body = smallBody(name);
        body.segment(name, 1000).site(name, name, {1, 2, 3}).joint(name, "right_hand.right_palmcenter", key, {0.25});
        return body.text();
    }
};

TEST_P(OddNameInFiles, APosedFigureComesBack)
{
    const std::unique_ptr<qcFigure> figure(qcFigureFile::readPosedText(oddBody().c_str(), "odd"));
    ASSERT_NE(figure, nullptr);
    figure->setProperty(name.c_str(), qcValue(name.c_str()));
    const std::string path = folder.file("odd.figure.json");
    ASSERT_EQ(qcFigureFile::writePosed(*figure, path.c_str()), 1);
    const std::unique_ptr<qcFigure> again(qcFigureFile::read(path.c_str(), nullptr));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->getName(), name);
    EXPECT_EQ(qcFigureFile::posedText(*again), qcFigureFile::posedText(*figure));
    EXPECT_NE(again->findSiteByFullName((name + "." + key).c_str()), nullptr);
    EXPECT_EQ(again->findJoint(name.c_str())->getAngle(1), 0.25f);
    qcValue value;
    EXPECT_EQ(again->getProperty(name.c_str(), &value), 1);
    EXPECT_EQ(value.toText(), '"' + name + '"');
}

TEST_P(OddNameInFiles, ASceneOfItComesBack)
{
    const std::string path = folder.file("scene.json"), second = folder.file("second.json");
    {
        qcScene scene;
        qcHuman* human = scene.addPosedHuman(oddBody().c_str());
        ASSERT_NE(human, nullptr);
        human->getFigure()->findSegment(name.c_str())->setMass(1500);
        human->getFigure()->findJoint(name.c_str())->setAngle(1, 0.5);
        human->getFigure()->findSiteByFullName((name + "." + key).c_str())->setProperty(name.c_str(), qcValue(2.0f));
        human->setProperty("of human", qcValue(name.c_str()));
        ASSERT_EQ(scene.save(path.c_str()), 1);
    }
    const auto opened = openScene(path);
    ASSERT_NE(opened, nullptr);
    qcHuman* human = opened->findHuman(name.c_str());
    ASSERT_NE(human, nullptr);
    EXPECT_EQ(human->getFigure()->findSegment(name.c_str())->getMass(), 1500);
    EXPECT_EQ(human->getFigure()->findJoint(name.c_str())->getAngle(1), 0.5f);
    qcValue value;
    EXPECT_EQ(human->getFigure()->findSiteByFullName((name + "." + key).c_str())->getProperty(name.c_str(), &value), 1);
    ASSERT_EQ(opened->save(second.c_str()), 1);
    EXPECT_TRUE(contentOf(second) == contentOf(path));
}

// A URDF's names are those of XML attributes: one without characters, or with control characters, is refused with the
// place, all others are taken as they stand.
TEST_P(OddNameInFiles, AUrdfsNameIsTakenOrRefused)
{
    const std::string xml = escapedForXml(name);
    const std::string path = folder.write(
        "odd.urdf",
        "<robot name=\"man\"><link name=\"root\"><inertial><mass value=\"1\"/></inertial></link><link name=\"" + xml
            + "\"><inertial><mass value=\"2\"/></inertial></link><joint name=\"" + xml
            + "\" type=\"continuous\"><parent link=\"root\"/><child link=\"" + xml
            + "\"/><axis xyz=\"1 0 0\"/></joint></robot>");
    const std::unique_ptr<qcFigure> figure(qcFigureFile::read(path.c_str(), nullptr));
    if (name.empty() || hasControls()) {
        EXPECT_EQ(figure, nullptr);
        const std::vector<std::string> texts = log.takeTexts();
        ASSERT_EQ(texts.size(), 1u);
        EXPECT_THAT(texts[0], HasSubstr("odd.urdf:1: "));
        return;
    }
    ASSERT_NE(figure, nullptr);
    ASSERT_NE(figure->findSegment(name.c_str()), nullptr);
    EXPECT_EQ(figure->findSegment(name.c_str())->getMass(), 2000);
    EXPECT_NE(figure->findJoint(name.c_str()), nullptr);
    EXPECT_NE(figure->findSiteByFullName(("man." + name + ".proximal").c_str()), nullptr);
    EXPECT_NE(figure->findSiteByFullName(("man.root." + name).c_str()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Every, OddNameInFiles, ::testing::Range(std::size_t(0), oddNames().size()));

// A key without "segment" and "name" may be cut at each of its dots; the one cut where a segment's name ends counts.
TEST_F(LargeFigures, AKeyOfManyDotsIsCutWhereASegmentsNameEnds)
{
    nlohmann::json json = twoSegments();
    const std::string dots(100000, '.');
    json["segments"].push_back({{"name", "x" + dots}, {"mass", 1}, {"transform", json["segments"][0]["transform"]}});
    json["sites"].push_back({{"key", "x" + dots + ".y"}, {"transform", json["sites"][0]["transform"]}});
    const auto figure = readPosed(json);
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(namesIn(figure->findSegment(("x" + dots).c_str())->getSites()), ElementsAre("y"));

    json["segments"].push_back({{"name", "x."}, {"mass", 1}, {"transform", json["segments"][0]["transform"]}});
    EXPECT_EQ(readPosed(json), nullptr);
    EXPECT_THAT(log.takeTexts(), ElementsAre(HasSubstr("/sites/4/key: several segments' names begin \"x..")));
}

}   // namespace
