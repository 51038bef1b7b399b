// Anthropometric scale: lengths and masses from the figure's own base values.
#include "Figures.h"

#include "qc/qcAnthroScale.h"

using ::testing::ElementsAre;

namespace {

// A man of 160 cm and 4 kg, made of a trunk, an arm and a weightless hand; the woman that the figure
// tells of has 80 cm and 2 kg, three quarters of it in the trunk.
class Scale : public MessageTest {
protected:
    Scale() { build(true, true); }

    void build(bool tellsStature, bool tellsOtherSex)
    {
        FigureBuilder builder("f");
        trunk = addRoot(builder, "trunk", 3000, {0, 8, 0});
        arm = hang(builder, trunk, "arm", {{{{0, 30, 0}, kNoRotation}, 1, {0, 0, 1}}}, 1000, {10, 0, 0});
        hand = hang(builder, arm.segment, "hand", {{{{20, 0, 0}, kNoRotation}, 1, {0, 0, 1}}}, -1);
        tip = addPlacedSite(builder, hand.segment, "tip", {{6, 0, 0}, kNoRotation});
        point = addPlacedSite(builder, trunk, "balance_point", {});
        builder.setReferenceSite(point);
        if (tellsStature)
            builder.base().stature = 160;
        builder.base().hasOtherSex = tellsOtherSex;
        if (tellsOtherSex) {
            builder.base().otherStature = 80;
            builder.base().otherMass = 2000;
            builder.base().otherMassPercent = {75, 25, 0};
        }
        figure = builder.finishMoving();
    }

    // Every number of the figure, as bytes.
    std::string everyBit()
    {
        std::string bytes;
        const auto append = [&](const void* data, std::size_t size) {
            bytes.append(static_cast<const char*>(data), size);
        };
        for (qcSegmentImp* segment : partsOf<qcSegmentImp>(figure->getSegments())) {
            const float mass = segment->getMass();
            append(&mass, sizeof mass);
            append(&segment->getCenterOfMass(), sizeof(qVector));
            append(&segment->getGlobalTransform(), sizeof(qMatrix));
        }
        for (qcSiteImp* site : partsOf<qcSiteImp>(figure->getSites()))
            append(&site->getGlobalTransform(), sizeof(qMatrix));
        return bytes;
    }

    std::vector<float> masses()
    {
        std::vector<float> all;
        for (qcSegmentImp* segment : partsOf<qcSegmentImp>(figure->getSegments()))
            all.push_back(segment->getMass());
        return all;
    }

    qcSegmentImp* trunk;
    Hung arm, hand;
    qcSiteImp *tip, *point;
    std::unique_ptr<qcFigure> figure;
};

}   // namespace

TEST_F(Scale, WithNothingSetKeepsTheFigureBitForBit)
{
    figure->setRoot(0.1, 0.2, 0.3, 10, 20, 30);
    arm.joint->setAngle(1, 0.7);
    const std::string asLoaded = everyBit();
    qcAnthroScale scale(figure.get());
    scale.applyScale();
    scale.applyScale();
    EXPECT_EQ(everyBit(), asLoaded);
    EXPECT_FALSE(scale.hasSex());
    EXPECT_FALSE(scale.hasStature());
    EXPECT_FALSE(scale.hasMass());
}

TEST_F(Scale, TellsTheFiguresOwnMeasuresUntilTheyAreSet)
{
    qcAnthroScale scale(figure.get());
    EXPECT_EQ(scale.getSex(), qcMale);
    EXPECT_EQ(scale.getStature(), 160);
    EXPECT_EQ(scale.getMass(), 4000);   // the hand's negative mass counts nothing
    scale.setStature(200);
    scale.setMass(8000);
    EXPECT_EQ(scale.getStature(), 200);
    EXPECT_EQ(scale.getMass(), 8000);
    EXPECT_TRUE(scale.hasStature());
    EXPECT_TRUE(scale.hasMass());
    EXPECT_FALSE(scale.hasSex());
}

// 160 to 80 cm: every length is halved, exactly in binary; masses stay.
TEST_F(Scale, StatureScalesLengthsOffsetsAndCentersOfMass)
{
    qcAnthroScale scale(figure.get());
    expectPosition(tip->getGlobalTransform(), 26, 30, 0);
    EXPECT_EQ(scale.setStature(80), 1);
    expectPosition(arm.segment->getGlobalTransform(), 0, 15, 0);
    expectPosition(arm.socket->getGlobalTransform(), 0, 15, 0);
    expectPosition(hand.segment->getGlobalTransform(), 10, 15, 0);
    expectPosition(tip->getGlobalTransform(), 13, 15, 0);
    EXPECT_THAT(components(trunk->getCenterOfMass()), ElementsAre(0, 4, 0));
    EXPECT_THAT(components(arm.segment->getCenterOfMass()), ElementsAre(5, 0, 0));
    EXPECT_THAT(masses(), ElementsAre(3000, 1000, -1));
    // (3·(0, 4, 0) + 1·(5, 15, 0)) / 4
    expectPosition(point->getGlobalTransform(), 1.25, 6.75, 0);
}

TEST_F(Scale, StatureLeavesRootAndAnglesAlone)
{
    figure->setRoot(100, 200, 300, 0, 0, 0);
    arm.joint->setAngle(1, kRightAngle);
    qcAnthroScale scale(figure.get());
    scale.setStature(80);
    expectPosition(trunk->getGlobalTransform(), 100, 200, 300);
    expectPosition(tip->getGlobalTransform(), 100, 200 + 15 + 13, 300);
}

// 4 to 8 kg: every mass is doubled; lengths stay.
TEST_F(Scale, MassScalesEveryMassAlike)
{
    qcAnthroScale scale(figure.get());
    EXPECT_EQ(scale.setMass(8000), 1);
    EXPECT_THAT(masses(), ElementsAre(6000, 2000, -2));
    expectPosition(tip->getGlobalTransform(), 26, 30, 0);
    EXPECT_EQ(figure->getBodyMass(), 8000);
}

TEST_F(Scale, TheOtherSexHasItsOwnMeasuresAndShares)
{
    qcAnthroScale scale(figure.get());
    EXPECT_EQ(scale.setSex(qcFemale), 1);
    EXPECT_EQ(scale.getSex(), qcFemale);
    EXPECT_TRUE(scale.hasSex());
    EXPECT_EQ(scale.getStature(), 80);
    EXPECT_EQ(scale.getMass(), 2000);
    EXPECT_THAT(masses(), ElementsAre(1500, 500, 0));
    expectPosition(tip->getGlobalTransform(), 13, 15, 0);

    EXPECT_EQ(scale.setMass(8000), 1);
    EXPECT_EQ(scale.setStature(160), 1);
    EXPECT_THAT(masses(), ElementsAre(6000, 2000, 0));
    expectPosition(tip->getGlobalTransform(), 26, 30, 0);
}

TEST_F(Scale, ItsOwnSexIsTheFigureAsLoaded)
{
    figure->setRoot(0.1, 0.2, 0.3, 10, 20, 30);
    const std::string asLoaded = everyBit();
    qcAnthroScale scale(figure.get());
    EXPECT_EQ(scale.setSex(qcMale), 1);
    EXPECT_EQ(everyBit(), asLoaded);
    scale.setSex(qcFemale);
    EXPECT_NE(everyBit(), asLoaded);
    scale.setSex(qcMale);
    EXPECT_EQ(everyBit(), asLoaded);
}

// Thirds and sevenths do not come out even: a scale that went from the present values would drift.
TEST_F(Scale, AppliedTwiceIsAppliedOnce)
{
    qcAnthroScale scale(figure.get());
    scale.setStature(160 / 3.0);
    scale.setMass(4000 / 7.0);
    const std::string once = everyBit();
    scale.applyScale();
    scale.applyScale();
    EXPECT_EQ(everyBit(), once);
}

TEST_F(Scale, GoesFromTheBaseWhateverWasSetBefore)
{
    qcAnthroScale scale(figure.get());
    const std::string asLoaded = everyBit();
    for (const double factor : {0.3, 1.7, 0.9}) {
        scale.setStature(160 * factor);
        scale.setMass(4000 * factor);
    }
    scale.setStature(160);
    scale.setMass(4000);
    EXPECT_EQ(everyBit(), asLoaded);
}

TEST_F(Scale, MassesSetByHandStay)
{
    qcAnthroScale scale(figure.get());
    arm.segment->setMass(7);
    scale.setMass(8000);
    EXPECT_THAT(masses(), ElementsAre(6000, 7, -2));
    scale.setSex(qcFemale);
    EXPECT_THAT(masses(), ElementsAre(6000, 7, 0));
    scale.setStature(80);
    EXPECT_EQ(arm.segment->getMass(), 7);
}

TEST_F(Scale, ValuesOutOfRangeAreRefusedAndChangeNothing)
{
    qcAnthroScale scale(figure.get());
    const std::string before = everyBit();
    for (const double bad : {29.9, 300.1, 0.0, -160.0, double(NAN), HUGE_VAL})
        EXPECT_EQ(scale.setStature(bad), 0) << bad;
    for (const double bad : {0.0, -1.0, 1000001.0, double(NAN), HUGE_VAL})
        EXPECT_EQ(scale.setMass(bad), 0) << bad;
    const auto texts = log.takeTexts();
    ASSERT_EQ(texts.size(), 11u);
    EXPECT_EQ(texts[0], "figure f: expected a stature of 30 to 300 cm, found 29.9.");
    EXPECT_EQ(texts[7], "figure f: expected a body mass above 0 up to 1000 kg, found -0.001.");
    EXPECT_EQ(everyBit(), before);
    EXPECT_FALSE(scale.hasStature());
    EXPECT_FALSE(scale.hasMass());

    EXPECT_EQ(scale.setStature(30), 1);
    EXPECT_EQ(scale.setStature(300), 1);
    EXPECT_EQ(scale.setMass(1e6), 1);
}

TEST_F(Scale, WithoutABaseStatureCannotChangeStature)
{
    build(false, false);
    const std::string before = everyBit();
    qcAnthroScale scale(figure.get());
    EXPECT_EQ(scale.getStature(), 0);
    EXPECT_EQ(scale.setStature(170), 0);
    EXPECT_THAT(log.takeTexts(), ElementsAre("figure f: its roles file tells no stature to scale from "
                                             "(key \"base\", \"stature_cm\")."));
    EXPECT_FALSE(scale.hasStature());
    EXPECT_EQ(everyBit(), before);
    EXPECT_EQ(scale.setMass(8000), 1);   // mass needs no stature
    EXPECT_THAT(masses(), ElementsAre(6000, 2000, -2));
    expectPosition(tip->getGlobalTransform(), 26, 30, 0);
}

TEST_F(Scale, WithoutTheOtherSexsMassesCannotChangeSex)
{
    build(true, false);
    const std::string before = everyBit();
    qcAnthroScale scale(figure.get());
    EXPECT_EQ(scale.setSex(qcFemale), 0);
    EXPECT_THAT(log.takeTexts(),
                ElementsAre("figure f: its roles file tells no masses for the other sex (key \"other_sex\")."));
    EXPECT_EQ(scale.getSex(), qcMale);
    EXPECT_FALSE(scale.hasSex());
    EXPECT_EQ(scale.setSex(qcMale), 1);
    EXPECT_EQ(everyBit(), before);
}

// A figure may tell the other sex's shares alone.
TEST(ScaleOfAnySex, MeasuresThatTheOtherSexDoesNotTellAreTheSame)
{
    FigureBuilder builder("f");
    qcSegmentImp* root = addRoot(builder, "root", 4000, {0, 8, 0});
    const Hung arm = hang(builder, root, "arm", {{{{0, 30, 0}, kNoRotation}, 1, {0, 0, 1}}});
    builder.base().stature = 160;
    builder.base().hasOtherSex = true;
    builder.base().otherMassPercent = {60, 40};
    const auto figure = builder.finishMoving();
    qcAnthroScale scale(figure.get());
    EXPECT_EQ(scale.setSex(qcFemale), 1);
    EXPECT_EQ(scale.getStature(), 160);
    EXPECT_EQ(scale.getMass(), 4000);
    EXPECT_EQ(root->getMass(), 2400);
    EXPECT_EQ(arm.segment->getMass(), 1600);
    expectPosition(arm.segment->getGlobalTransform(), 0, 30, 0);
}

TEST(ScaleOfAnySex, AFigureWithoutMassStaysWithoutMass)
{
    MessageLog log;
    FigureBuilder builder("f");
    qcSegmentImp* root = addRoot(builder);
    const auto figure = builder.finishMoving();
    qcAnthroScale scale(figure.get());
    EXPECT_EQ(scale.setSex(qcMale), 1);
    EXPECT_EQ(root->getMass(), 0);
    EXPECT_EQ(scale.getMass(), 0);
    EXPECT_EQ(scale.setMass(70000), 0);
    EXPECT_THAT(log.takeTexts(), ElementsAre("figure f: its segments have no mass to scale from."));
}

// Segments are listed in the order in which they are added and placed parents first; masses go by the list.
TEST(ScaleOfAnyOrder, EverySegmentGetsItsOwnMass)
{
    FigureBuilder builder("f");
    qcSegmentImp* child = builder.addSegment("child", 1000, {});
    qcSegmentImp* root = builder.addSegment("root", 3000, {});
    builder.place(root, nullptr, nullptr, {});
    builder.place(child, root, nullptr, {});
    builder.base().hasOtherSex = true;
    builder.base().otherMass = 1000;
    builder.base().otherMassPercent = {10, 90};
    const auto figure = builder.finishMoving();
    qcAnthroScale scale(figure.get());
    scale.setMass(8000);
    EXPECT_EQ(child->getMass(), 2000);
    EXPECT_EQ(root->getMass(), 6000);
    scale.setSex(qcFemale);
    EXPECT_EQ(child->getMass(), 800);
    EXPECT_EQ(root->getMass(), 7200);
}

TEST(ScaleOfAPosedFigure, ChangesMassesAndNoPosition)
{
    MessageLog log;
    FigureBuilder builder("f");
    qcSegmentImp* body = builder.addSegment("body", 1000, {1, 2, 3});
    qMatrix transform;
    transform.setTranslation({4, 5, 6});
    FigureBuilder::setTransform(body, transform);
    builder.base().stature = 160;
    const auto figure = builder.finishPosed();
    qcAnthroScale scale(figure.get());
    EXPECT_EQ(scale.setStature(80), 0);
    EXPECT_THAT(log.takeTexts(),
                ElementsAre("figure f: a posed figure has fixed positions; its stature cannot be changed."));
    EXPECT_EQ(scale.setMass(2000), 1);
    EXPECT_EQ(body->getMass(), 2000);
    EXPECT_THAT(components(body->getCenterOfMass()), ElementsAre(1, 2, 3));
    EXPECT_THAT(components(body->getGlobalTransform().getTranslation()), ElementsAre(4, 5, 6));
}
