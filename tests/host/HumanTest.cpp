// Human: the side tables, the trunk references, and the scale.
#include "Figures.h"

#include "qc/qcHuman.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Human : public MessageTest {
protected:
    Human() : builder("worker")
    {
        root = addRoot(builder, "lower_torso", 1000);
        part = hang(builder, root, "part", {Step{}});
    }

    // Finishes the figure and makes a human of it.
    qcHuman* make()
    {
        figure = builder.finishMoving();
        human.reset(qcHuman::create(figure.get()));
        return human.get();
    }

    FigureBuilder builder;
    qcSegmentImp* root;
    Hung part;
    std::unique_ptr<qcFigure> figure;
    std::unique_ptr<qcHuman> human;   // gone before its figure
};

}   // namespace

TEST_F(Human, KnowsItsFigure)
{
    ASSERT_NE(make(), nullptr);
    EXPECT_EQ(human->getFigure(), figure.get());
    EXPECT_EQ(human->figure, figure.get());
    EXPECT_STREQ(human->getName(), "worker");
    EXPECT_STREQ(human->getFullName(), "human.worker");
}

TEST_F(Human, LooksUpItsPartsBySide)
{
    qcRoles& roles = builder.roles();
    const auto joint = [&](const char* name) {
        return builder.addJoint(name, "", part.socket, part.proximal, part.socket);
    };
    for (const qcSide side : {qcRight, qcLeft}) {
        const std::string prefix = side == qcRight ? "right_" : "left_";
        roles.foot[side] = addPlacedSite(builder, root, prefix + "foot", {});
        roles.hand[side] = addPlacedSite(builder, root, prefix + "hand", {});
        roles.knee[side] = joint((prefix + "knee").c_str());
        roles.ankle[side] = joint((prefix + "ankle").c_str());
        roles.hip[side] = joint((prefix + "hip").c_str());
    }
    roles.pelvis = addPlacedSite(builder, root, "pelvis", {});
    roles.waist = joint("waist");
    ASSERT_NE(make(), nullptr);
    EXPECT_EQ(qcRight, 0);
    EXPECT_EQ(qcLeft, 1);
    EXPECT_STREQ(human->getFootSite(qcRight)->getName(), "right_foot");
    EXPECT_STREQ(human->getFootSite(qcLeft)->getName(), "left_foot");
    EXPECT_STREQ(human->getHandSite(qcRight)->getName(), "right_hand");
    EXPECT_STREQ(human->getHandSite(qcLeft)->getName(), "left_hand");
    EXPECT_STREQ(human->getKneeJoint(qcRight)->getName(), "right_knee");
    EXPECT_STREQ(human->getKneeJoint(qcLeft)->getName(), "left_knee");
    EXPECT_STREQ(human->getAnkleJoint(qcRight)->getName(), "right_ankle");
    EXPECT_STREQ(human->getAnkleJoint(qcLeft)->getName(), "left_ankle");
    EXPECT_STREQ(human->getHipJoint(qcRight)->getName(), "right_hip");
    EXPECT_STREQ(human->getHipJoint(qcLeft)->getName(), "left_hip");
    EXPECT_STREQ(human->getPelvisSite()->getName(), "pelvis");
    EXPECT_STREQ(human->getWaistJoint()->getName(), "waist");
}

TEST_F(Human, PartsThatTheFigureDoesNotHaveAreNull)
{
    ASSERT_NE(make(), nullptr);
    for (const qcSide side : {qcRight, qcLeft}) {
        EXPECT_EQ(human->getFootSite(side), nullptr);
        EXPECT_EQ(human->getHandSite(side), nullptr);
        EXPECT_EQ(human->getKneeJoint(side), nullptr);
        EXPECT_EQ(human->getAnkleJoint(side), nullptr);
        EXPECT_EQ(human->getHipJoint(side), nullptr);
    }
    EXPECT_EQ(human->getPelvisSite(), nullptr);
    EXPECT_EQ(human->getWaistJoint(), nullptr);
}

TEST_F(Human, IsNotMadeOfAFigureThatMissesRoles)
{
    builder.addMissingRole("left/knee");
    builder.addMissingRole("waist");
    EXPECT_EQ(make(), nullptr);
    EXPECT_THAT(log.takeTexts(), ElementsAre("figure worker is no human: no part is known for these roles: "
                                             "left/knee, waist. Name them in its roles file."));
}

TEST_F(Human, HasAScaleFromTheStart)
{
    ASSERT_NE(make(), nullptr);
    qcAnthroScale* scale = human->getAnthroscale();
    ASSERT_NE(scale, nullptr);
    EXPECT_EQ(human->initAnthroscale(nullptr), scale);   // there is one already
    EXPECT_EQ(human->initAnthroscale("female"), scale);
    EXPECT_FALSE(scale->hasSex());
}

TEST_F(Human, GetsAScaleWhenItIsMade)
{
    builder.setScaling(false, true);
    ASSERT_NE(make(), nullptr);
    EXPECT_EQ(human->getAnthroscale(), nullptr);
    qcAnthroScale* scale = human->initAnthroscale(nullptr);
    ASSERT_NE(scale, nullptr);
    EXPECT_EQ(human->getAnthroscale(), scale);
    EXPECT_FALSE(scale->hasSex() || scale->hasStature() || scale->hasMass());
    scale->applyScale();
    EXPECT_EQ(root->getMass(), 1000);
}

TEST_F(Human, MayBeUnableToHaveAScale)
{
    builder.setScaling(false, false);
    ASSERT_NE(make(), nullptr);
    EXPECT_EQ(human->initAnthroscale(nullptr), nullptr);
    EXPECT_EQ(human->initAnthroscale("male"), nullptr);
    EXPECT_EQ(human->getAnthroscale(), nullptr);
    EXPECT_THAT(log.takeTexts(), IsEmpty());   // the caller reports it
}

TEST_F(Human, NamedScaleSetsTheSex)
{
    builder.setScaling(false, true);
    builder.base().hasOtherSex = true;
    builder.base().otherMass = 500;
    builder.base().otherMassPercent = {60, 40};
    ASSERT_NE(make(), nullptr);
    EXPECT_EQ(human->initAnthroscale("Female"), nullptr);
    EXPECT_EQ(human->initAnthroscale(""), nullptr);
    EXPECT_EQ(human->getAnthroscale(), nullptr);
    qcAnthroScale* scale = human->initAnthroscale("female");
    ASSERT_NE(scale, nullptr);
    EXPECT_TRUE(scale->hasSex());
    EXPECT_EQ(scale->getSex(), qcFemale);
    EXPECT_EQ(root->getMass(), 300);
    EXPECT_EQ(part.segment->getMass(), 200);
}

TEST_F(Human, NamedScaleOfASexThatTheFigureDoesNotTellIsNotMade)
{
    builder.setScaling(false, true);
    ASSERT_NE(make(), nullptr);
    EXPECT_EQ(human->initAnthroscale("female"), nullptr);
    EXPECT_EQ(log.takeTexts().size(), 1u);
    EXPECT_EQ(human->getAnthroscale(), nullptr);
    qcAnthroScale* scale = human->initAnthroscale("male");
    ASSERT_NE(scale, nullptr);
    EXPECT_EQ(scale->getSex(), qcMale);
    EXPECT_EQ(root->getMass(), 1000);
}
