// A public human model, which nobody here wrote, read with our roles file.
//
// The model is not part of this project; where it is absent these tests say aloud that they did not run,
// and fail when the environment variable CI_REQUIRE_SHARED is 1.
#include "UrdfTexts.h"

#include "qc/qcHuman.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr double kHalfPi = 1.57079632679489661923;
const std::string kModel = SSTR_SHARED_FIGURES "/humanSubject01_66dof.urdf";
const std::string kRoles = SSTR_SOURCE_DIR "/tests/data/humanSubject01_66dof.roles.json";

bool modelIsThere()
{
    if (std::ifstream(kModel).good())
        return true;
    const char* required = std::getenv("CI_REQUIRE_SHARED");
    if (required && std::string(required) == "1")
        ADD_FAILURE() << kModel << " is required and absent";
    std::printf("DID NOT RUN: the public model %s is absent. Nothing was tested.\n", kModel.c_str());
    return false;
}

class PublicModel : public MessageTest {
protected:
    void read(const std::string& roles)
    {
        figure.reset(qcFigureFile::read(kModel.c_str(), roles.empty() ? nullptr : roles.c_str()));
        ASSERT_NE(figure, nullptr);
    }

    std::string prefix() const { return std::string(figure->getName()) + "."; }
    qcSite* site(const std::string& key) const { return figure->findSiteByFullName((prefix() + key).c_str()); }

    std::unique_ptr<qcFigure> figure;
};

// Its makers wrote: 23 segments with mass, joined by ball joints of three single turns each.
TEST_F(PublicModel, IsReadAsItsMakersMeantIt)
{
    if (!modelIsThere())
        return;
    read("");
    EXPECT_EQ(names<qcSegment>(figure->getSegments()).size(), 23u);
    const std::vector<std::string> joints = names<qcJoint>(figure->getJoints());
    EXPECT_EQ(joints.size(), 22u);
    for (const std::string& name : joints) {
        qcJoint* joint = figure->findJoint(name.c_str());
        ASSERT_EQ(joint->getNumAngles(), 3) << name;
        EXPECT_STREQ(joint->getAngleName(1), "rotx");
        EXPECT_STREQ(joint->getAngleName(2), "roty");
        EXPECT_STREQ(joint->getAngleName(3), "rotz");
    }
    // two fillers of 1e-5 kg included
    EXPECT_NEAR(figure->getBodyMass(), 62200, 50);
    EXPECT_THAT(notes(*figure), HasSubstr("was merged into the segment \"RightHand\""));
    EXPECT_EQ(qcHuman::create(figure.get()), nullptr);
    EXPECT_THAT(log.takeTexts(), ElementsAre(HasSubstr("is no human")));
}

TEST_F(PublicModel, IsAHumanWithOurRolesFile)
{
    if (!modelIsThere())
        return;
    read(kRoles);
    const std::unique_ptr<qcHuman> human(qcHuman::create(figure.get()));
    ASSERT_NE(human, nullptr);
    for (const char* name :
         {"lower_torso", "upper_torso", "l5", "t8", "right_upper_leg", "right_lower_leg", "right_foot", "right_toes",
          "left_upper_leg", "left_lower_leg", "left_foot", "left_toes", "right_hand", "left_hand"})
        EXPECT_NE(figure->findSegment(name), nullptr) << name;
    for (const char* name : {"waist", "solar_plexus", "right_hip", "left_hip", "right_knee", "left_knee", "right_ankle",
                             "left_ankle", "right_clavicle_joint", "left_clavicle_joint"})
        EXPECT_NE(figure->findJoint(name), nullptr) << name;
    for (const char* name :
         {"lower_torso.proximal", "lower_torso.h_point", "lower_torso.center_of_mass", "lower_torso.balance_point",
          "right_upper_leg.distal", "right_lower_leg.proximal", "right_lower_leg.distal", "left_lower_leg.distal",
          "t8.proximal", "right_hand.right_palmcenter", "left_hand.left_palmcenter"})
        EXPECT_NE(site(name), nullptr) << name;
    // all its joints are on the side that their names tell
    for (const std::string& name : names<qcJoint>(figure->getJoints())) {
        const float x = position(figure->findJoint(name.c_str())->getSite(1))[0];
        EXPECT_TRUE(name.find("right_") == 0 ? x < -1 : name.find("left_") == 0 ? x > 1 : x > -1 && x < 1) << name;
    }
}

// The arms hang on the upper torso, and the solar plexus carries that.
TEST_F(PublicModel, CarriesItsArmsOnTheUpperTorso)
{
    if (!modelIsThere())
        return;
    read(kRoles);
    qcSegment* torso = figure->findSegment("upper_torso");
    ASSERT_NE(torso, nullptr);
    EXPECT_EQ(figure->findJoint("solar_plexus")->siteOnSegment(torso), torso->getAttachmentSite());
    for (const char* name : {"right_clavicle_joint", "left_clavicle_joint"})
        EXPECT_EQ(figure->findJoint(name)->getInboardSite()->getSegment(), torso);
    // the lower end of T8 is where the solar plexus is, to the millimetre that the roles file tells
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(position(site("t8.proximal"))[i], position(figure->findJoint("solar_plexus")->getSite(0))[i], 0.1);
}

// Standing with its arms out: feet below knees below hips, palms level and apart, soles on the floor, the
// body's centre of mass a little above the hips.
TEST_F(PublicModel, StandsUpright)
{
    if (!modelIsThere())
        return;
    read(kRoles);
    figure->standOnFloor();
    EXPECT_NEAR(position(site("right_foot.sole"))[1], 0, 1e-4);
    EXPECT_NEAR(position(site("left_foot.sole"))[1], 0, 1e-4);
    const float ankle = position(figure->findJoint("left_ankle")->getSite(0))[1];
    const float knee = position(figure->findJoint("left_knee")->getSite(0))[1];
    const float hip = position(figure->findJoint("left_hip")->getSite(0))[1];
    EXPECT_LT(ankle, knee);
    EXPECT_LT(knee, hip);
    EXPECT_LT(hip, position(figure->getReferenceSite())[1]);
    EXPECT_LT(position(figure->getReferenceSite())[1], position(figure->findJoint("waist")->getSite(0))[1] + 20);
    EXPECT_GT(position(site("left_hand.left_palmcenter"))[0], 60);
    EXPECT_NEAR(position(site("right_hand.right_palmcenter"))[0], -position(site("left_hand.left_palmcenter"))[0],
                1e-3);
}

// The knee's first angle is its flexion: 90° take the ankle, straight below, straight behind the knee.
TEST_F(PublicModel, FlexesItsKneesByTheFirstAngle)
{
    if (!modelIsThere())
        return;
    read(kRoles);
    for (const std::string side : {"right", "left"}) {
        qcJoint* knee = figure->findJoint((side + "_knee").c_str());
        qcJoint* ankle = figure->findJoint((side + "_ankle").c_str());
        EXPECT_STREQ(knee->getAngleName(1), "roty");
        const auto at = position(knee->getSite(0));
        const auto before = position(ankle->getSite(0));
        ASSERT_EQ(knee->setAngle(1, kHalfPi), 1);
        const auto after = position(ankle->getSite(0));
        constexpr float kRounding = 5e-5f;   // of lengths of up to 100 cm in single precision
        EXPECT_NEAR(after[2] - at[2], before[1] - at[1], kRounding);
        EXPECT_NEAR(after[1] - at[1], at[2] - before[2], kRounding);
    }
}

// A sole is below the ankle, and right and left are mirror images.
TEST_F(PublicModel, HasTwoSidesThatMirrorEachOther)
{
    if (!modelIsThere())
        return;
    read(kRoles);
    for (const std::string& name : names<qcJoint>(figure->getJoints())) {
        if (name.find("right_") != 0)
            continue;
        const auto right = position(figure->findJoint(name.c_str())->getSite(1));
        const auto left = position(figure->findJoint(("left_" + name.substr(6)).c_str())->getSite(1));
        EXPECT_NEAR(left[0], -right[0], 1e-3) << name;
        EXPECT_NEAR(left[1], right[1], 1e-3) << name;
        EXPECT_NEAR(left[2], right[2], 1e-3) << name;
    }
}

}   // namespace
