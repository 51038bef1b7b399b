// The default human as the host reads it: all of it is where its tables say, and it scales.
#include "NumberText.h"
#include "UrdfTexts.h"

#include "qc/qcHuman.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

using testing::ElementsAre;

namespace {

constexpr double kHalfPi = 1.57079632679489661923;

using Row = std::map<std::string, std::string>;

// The tables of the default human, by column; no field of these has a comma in it.
std::vector<Row> table(const std::string& sex)
{
    std::istringstream lines(contentOf(SSTR_SOURCE_DIR "/figures/anthropometry.csv"));
    const auto split = [](const std::string& line) {
        std::vector<std::string> fields(1);
        for (const char c : line)
            if (c == ',')
                fields.emplace_back();
            else if (c != '\r')
                fields.back() += c;
        return fields;
    };
    std::string line;
    std::getline(lines, line);
    const std::vector<std::string> columns = split(line);
    std::vector<Row> rows;
    while (std::getline(lines, line)) {
        const std::vector<std::string> fields = split(line);
        Row row;
        for (std::size_t i = 0; i < fields.size(); ++i)
            row[columns[i]] = fields[i];
        if (row["sex"] == sex)
            rows.push_back(row);
    }
    return rows;
}

double number(const Row& row, const std::string& column)
{
    return numberIn<double>(row.at(column));
}

class DefaultHuman : public MessageTest {
protected:
    void SetUp() override
    {
        figure.reset(qcFigureFile::read(SSTR_SOURCE_DIR "/figures/human.urdf", nullptr));
        ASSERT_NE(figure, nullptr);
        human.reset(qcHuman::create(figure.get()));
        ASSERT_NE(human, nullptr);
    }

    qcSite* site(const std::string& key) const { return figure->findSiteByFullName(("human." + key).c_str()); }

    std::unique_ptr<qcFigure> figure;
    std::unique_ptr<qcHuman> human;
};

TEST_F(DefaultHuman, HasAllParts)
{
    EXPECT_STREQ(figure->getName(), "human");
    EXPECT_EQ(names<qcSegment>(figure->getSegments()).size(), 41u);
    EXPECT_EQ(names<qcJoint>(figure->getJoints()).size(), 40u);
    int angles = 0;
    for (const std::string& name : names<qcJoint>(figure->getJoints()))
        angles += figure->findJoint(name.c_str())->getNumAngles();
    EXPECT_EQ(angles, 94);
    EXPECT_EQ(figure->findSegment("lower_torso")->getAttachmentSite(), nullptr);
}

TEST_F(DefaultHuman, HasTheNamesThatTheAnalysisUses)
{
    for (const char* name : {"lower_torso", "upper_torso", "l5", "t8", "right_upper_leg", "right_lower_leg",
                             "right_foot", "right_toes", "left_upper_leg", "left_lower_leg", "left_foot"})
        EXPECT_NE(figure->findSegment(name), nullptr) << name;
    for (const char* name :
         {"waist", "solar_plexus", "right_hip", "left_hip", "right_clavicle_joint", "left_clavicle_joint"})
        EXPECT_NE(figure->findJoint(name), nullptr) << name;
    for (const char* name : {"lower_torso.proximal", "lower_torso.h_point", "lower_torso.center_of_mass",
                             "right_upper_leg.distal", "right_lower_leg.proximal", "right_lower_leg.distal",
                             "t8.proximal", "right_hand.right_palmcenter", "left_hand.left_palmcenter"})
        EXPECT_NE(site(name), nullptr) << name;
}

TEST_F(DefaultHuman, PlaysEveryRole)
{
    for (const auto& [side, name] :
         {std::pair(qcRight, std::string("right")), std::pair(qcLeft, std::string("left"))}) {
        EXPECT_EQ(human->getFootSite(side), site(name + "_foot.sole"));
        EXPECT_EQ(human->getHandSite(side), site(name + "_hand." + name + "_palmcenter"));
        EXPECT_EQ(human->getKneeJoint(side), figure->findJoint((name + "_knee").c_str()));
        EXPECT_EQ(human->getAnkleJoint(side), figure->findJoint((name + "_ankle").c_str()));
        EXPECT_EQ(human->getHipJoint(side), figure->findJoint((name + "_hip").c_str()));
        EXPECT_NE(human->getFootSite(side), nullptr);
        EXPECT_NE(human->getKneeJoint(side), nullptr);
        // what the analysis relies on
        EXPECT_NE(human->getAnkleJoint(side)->siteOnSegment(human->getFootSite(side)->getSegment()), nullptr);
        EXPECT_NE(human->getHipJoint(side)->siteOnSegment(human->getPelvisSite()->getSegment()), nullptr);
        EXPECT_STREQ(human->getKneeJoint(side)->getInboardSite()->getSegment()->getName(),
                     (name + "_upper_leg").c_str());
    }
    EXPECT_EQ(human->getPelvisSite(), site("lower_torso.proximal"));
    EXPECT_EQ(human->getWaistJoint(), figure->findJoint("waist"));
    EXPECT_EQ(figure->getReferenceSite(), site("lower_torso.balance_point"));
}

TEST_F(DefaultHuman, SitesAreListedProximalFirst)
{
    EXPECT_THAT(
        names<qcSite>(figure->findSegment("lower_torso")->getSites()),
        ElementsAre("proximal", "distal", "h_point", "center_of_mass", "balance_point", "right_hip", "left_hip"));
    EXPECT_THAT(names<qcSite>(figure->findSegment("t1")->getSites()),
                ElementsAre("proximal", "distal", "solar_plexus"));
    EXPECT_THAT(names<qcJoint>(site("t1.distal")->getJoints()), ElementsAre("base_of_neck"));
}

// The tables tell the origin and the centre of mass of every segment of the standing figure, its mass,
// and its joint; they are rounded to 0.005 cm and stand with the soles on the floor.
TEST_F(DefaultHuman, StandsAsItsTablesSay)
{
    constexpr double kTableRounding = 0.005;   // cm
    figure->standOnFloor();
    const std::vector<Row> rows = table("male");
    ASSERT_EQ(rows.size(), 41u);
    const auto origin = position(figure->findSegment("lower_torso"));
    const double shift[3] = {double(origin[0]) - number(rows[0], "world_x"), 0,
                             double(origin[2]) - number(rows[0], "world_z")};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.at("segment"));
        qcSegment* segment = figure->findSegment(row.at("segment").c_str());
        ASSERT_NE(segment, nullptr);
        EXPECT_FLOAT_EQ(segment->getMass(), static_cast<float>(number(row, "mass_g")));
        const auto at = position(segment);
        const char* const axes[] = {"x", "y", "z"};
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(at[i] - shift[i], number(row, std::string("world_") + axes[i]), kTableRounding + 1e-4);
            EXPECT_FLOAT_EQ(segment->getCenterOfMass()[static_cast<int>(i)],
                            static_cast<float>(number(row, std::string("com_") + axes[i])));
        }
        if (row.at("parent").empty())
            continue;
        qcJoint* joint = figure->findJoint(row.at("joint_to_parent").c_str());
        ASSERT_NE(joint, nullptr);
        EXPECT_STREQ(joint->getInboardSite()->getSegment()->getName(), row.at("parent").c_str());
        EXPECT_EQ(joint->getSite(1), segment->getAttachmentSite());
        EXPECT_EQ(position(joint->getSite(0)), position(joint->getSite(1)));
    }
}

// Σ m · (origin + com) / Σ m from the tables, against the host's own sum.
TEST_F(DefaultHuman, WeighsSeventyFiveKilogramsAndHasItsCenterWhereTheTablesSay)
{
    EXPECT_NEAR(figure->getBodyMass(), 75000, roundingBound(41, 75000));
    figure->standOnFloor();
    const auto origin = position(figure->findSegment("lower_torso"));
    double sum[3] = {0, 0, 0}, mass = 0;
    const std::vector<Row> rows = table("male");
    for (const Row& row : rows) {
        const double m = number(row, "mass_g");
        mass += m;
        sum[0] += m * (number(row, "world_x") + number(row, "com_x"));
        sum[1] += m * (number(row, "world_y") + number(row, "com_y"));
        sum[2] += m * (number(row, "world_z") + number(row, "com_z"));
    }
    const auto center = components(figure->getBodyCenterOfMass());
    // the tables' positions are rounded to 0.005 cm
    EXPECT_NEAR(center[0] - double(origin[0]) + number(rows[0], "world_x"), sum[0] / mass, 0.006);
    EXPECT_NEAR(center[1], sum[1] / mass, 0.006);
    EXPECT_NEAR(center[2] - double(origin[2]) + number(rows[0], "world_z"), sum[2] / mass, 0.006);
    EXPECT_EQ(position(figure->getReferenceSite()), center);
}

// The shank from knee to ankle is (0, -43.04, -3.80) cm. Knee flexion turns it about the axis to the left:
// by 90° down goes to backward and backward to up, (x, y, z) → (x, -z, y):
//   ankle = knee + (0, 3.80, -43.04)
TEST_F(DefaultHuman, KneeFlexionTakesTheAnkleBackward)
{
    qcJoint* knee = figure->findJoint("right_knee");
    ASSERT_EQ(knee->setAngle(1, kHalfPi), 1);
    const auto kneeAt = position(knee->getSite(0));
    const auto ankleAt = position(figure->findJoint("right_ankle")->getSite(0));
    constexpr float kRounding = 2e-5f;   // of positions of up to 100 cm in single precision
    EXPECT_NEAR(ankleAt[0], kneeAt[0], kRounding);
    EXPECT_NEAR(ankleAt[1], kneeAt[1] + 3.80f, kRounding);
    EXPECT_NEAR(ankleAt[2], kneeAt[2] - 43.04f, kRounding);
    EXPECT_EQ(figure->findSegment("right_foot")->getAttachmentSite(), site("right_foot.proximal"));
}

// Elbow 0 to 150°, as the tables say.
TEST_F(DefaultHuman, KeepsToItsLimits)
{
    double lower = 0, upper = 0;
    qcJoint* elbow = figure->findJoint("left_elbow");
    EXPECT_STREQ(elbow->getAngleName(1), "flexion");
    EXPECT_STREQ(elbow->getAngleName(2), "pronation");
    ASSERT_EQ(elbow->getAngleLimits(1, lower, upper), 1);
    EXPECT_EQ(lower, 0);
    EXPECT_NEAR(upper, 150 * kHalfPi / 90, 1e-9);   // the file has nine decimals
    EXPECT_EQ(elbow->setAngle(1, -0.1), 0);
    EXPECT_EQ(log.take().size(), 1u);
}

// 60 kg of 75: every mass times 0.8. The thigh: 10620 · 0.8 = 8496 g.
TEST_F(DefaultHuman, ScalesInMass)
{
    ASSERT_EQ(human->getAnthroscale()->setMass(60000), 1);
    EXPECT_FLOAT_EQ(figure->findSegment("right_upper_leg")->getMass(), 8496.0f);
    EXPECT_NEAR(figure->getBodyMass(), 60000, roundingBound(41, 60000));
    EXPECT_THAT(components(figure->findSegment("right_upper_leg")->getCenterOfMass()),
                ElementsAre(0, testing::FloatEq(-17.56f), testing::FloatEq(-0.98f)));
}

// 190 cm of 175: every length times 190/175. Thigh 42.88 down: 42.88 · 190 / 175 = 46.5554 cm.
TEST_F(DefaultHuman, ScalesInStature)
{
    ASSERT_EQ(human->getAnthroscale()->setStature(190), 1);
    const auto hip = position(figure->findSegment("right_upper_leg"));
    const auto knee = position(figure->findSegment("right_lower_leg"));
    EXPECT_NEAR(hip[1] - knee[1], 46.555429, 2e-5);
    EXPECT_FLOAT_EQ(figure->findSegment("right_upper_leg")->getCenterOfMass()[1],
                    static_cast<float>(-17.56 * 190 / 175));
    EXPECT_NEAR(figure->getBodyMass(), 75000, roundingBound(41, 75000));
}

// The female masses are tabled too, in grams for 62 kg; the roles file has their shares to 0.001 %, which is
// 0.31 g at most.
TEST_F(DefaultHuman, TurnsFemale)
{
    ASSERT_EQ(human->getAnthroscale()->setSex(qcFemale), 1);
    for (const Row& row : table("female"))
        EXPECT_NEAR(figure->findSegment(row.at("segment").c_str())->getMass(), number(row, "mass_g"), 0.31)
            << row.at("segment");
    EXPECT_EQ(human->getAnthroscale()->getStature(), 163);
    EXPECT_NEAR(figure->getBodyMass(), 62000, 41 * 0.31);
}

}   // namespace
