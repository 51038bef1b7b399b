// Figure model: parts, names, lists and look-ups.
#include "Figures.h"

#include "qc/qcObserver.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

// A trunk with two arms, the left one of two segments:
//   trunk ─ to_left ─ left ─ to_hand ─ hand
//         └ to_right ─ right
class FigureModel : public MessageTest {
protected:
    FigureModel()
    {
        FigureBuilder builder("worker");
        trunk = addRoot(builder, "trunk", 1000, {1, 2, 3});
        left = hang(builder, trunk, "left", {Step{}}, 100, {4, 5, 6});
        right = hang(builder, trunk, "right", {Step{}});
        hand = hang(builder, left.segment, "hand", {Step{}}, -5);
        center = addPlacedSite(builder, trunk, "center", {});
        builder.setReferenceSite(center);
        builder.addNote("a note");
        figure = builder.finishMoving();
    }

    qcSegmentImp* trunk;
    Hung left, right, hand;
    qcSiteImp* center;
    std::unique_ptr<qcFigure> figure;
};

}   // namespace

TEST_F(FigureModel, NamesAreJoinedByFullStops)
{
    EXPECT_STREQ(figure->getName(), "worker");
    EXPECT_STREQ(figure->getFullName(), "worker");
    EXPECT_STREQ(trunk->getName(), "trunk");
    EXPECT_STREQ(trunk->getFullName(), "worker.trunk");
    EXPECT_STREQ(center->getName(), "center");
    EXPECT_STREQ(center->getFullName(), "worker.trunk.center");
    EXPECT_STREQ(left.joint->getName(), "to_left");
    EXPECT_STREQ(left.joint->getFullName(), "worker.to_left");
}

TEST_F(FigureModel, PartsAreFoundByTheirExactNames)
{
    EXPECT_EQ(figure->findSegment("hand"), hand.segment);
    EXPECT_EQ(figure->findJoint("to_hand"), hand.joint);
    EXPECT_EQ(figure->findSiteByFullName("worker.hand.proximal"), hand.proximal);
    EXPECT_EQ(figure->findSiteByFullName("worker.left.to_hand"), hand.socket);
}

TEST_F(FigureModel, WhatIsNotThereIsNull)
{
    for (const char* name : {"", "han", "hands", "Hand", "worker.hand", "to_hand"})
        EXPECT_EQ(figure->findSegment(name), nullptr) << name;
    for (const char* name : {"", "hand", "worker.to_hand"})
        EXPECT_EQ(figure->findJoint(name), nullptr) << name;
    for (const char* name : {"", "proximal", "hand.proximal", "worker.hand.proximal.", "worker.hand"})
        EXPECT_EQ(figure->findSiteByFullName(name), nullptr) << name;
    EXPECT_EQ(figure->findSegment(nullptr), nullptr);
    EXPECT_EQ(figure->findJoint(nullptr), nullptr);
    EXPECT_EQ(figure->findSiteByFullName(nullptr), nullptr);
}

TEST_F(FigureModel, ListsKeepTheOrderInWhichPartsWereAdded)
{
    EXPECT_THAT(partsOf<qcSegmentImp>(figure->getSegments()),
                ElementsAre(trunk, left.segment, right.segment, hand.segment));
    EXPECT_THAT(partsOf<qcJointImp>(figure->getJoints()), ElementsAre(left.joint, right.joint, hand.joint));
    EXPECT_THAT(
        partsOf<qcSiteImp>(figure->getSites()),
        ElementsAre(left.socket, left.proximal, right.socket, right.proximal, hand.socket, hand.proximal, center));
    EXPECT_THAT(partsOf<qcSiteImp>(trunk->getSites()), ElementsAre(left.socket, right.socket, center));
    EXPECT_THAT(partsOf<qcSiteImp>(left.segment->getSites()), ElementsAre(left.proximal, hand.socket));
    EXPECT_THAT(partsOf<qcJointImp>(left.socket->getJoints()), ElementsAre(left.joint));
    EXPECT_THAT(partsOf<qcJointImp>(center->getJoints()), IsEmpty());
}

TEST_F(FigureModel, PartsKnowWhereTheyBelong)
{
    EXPECT_EQ(trunk->getFigure(), figure.get());
    EXPECT_EQ(left.joint->getFigure(), figure.get());
    EXPECT_EQ(hand.socket->getSegment(), left.segment);
    EXPECT_EQ(trunk->getAttachmentSite(), nullptr);
    EXPECT_EQ(hand.segment->getAttachmentSite(), hand.proximal);
    EXPECT_EQ(figure->getReferenceSite(), center);
    EXPECT_THAT(figure->getNotes(), ElementsAre("a note"));
}

TEST_F(FigureModel, SegmentsKeepMassAndCenterOfMass)
{
    EXPECT_EQ(trunk->getMass(), 1000);
    EXPECT_THAT(components(trunk->getCenterOfMass()), ElementsAre(1, 2, 3));
    EXPECT_EQ(hand.segment->getMass(), -5);   // weightless, but kept as given
    EXPECT_FALSE(trunk->hasOwnMass());
    trunk->setMass(7);
    EXPECT_EQ(trunk->getMass(), 7);
    EXPECT_TRUE(trunk->hasOwnMass());
}

TEST_F(FigureModel, BodyMassCountsSegmentsWithWeight)
{
    EXPECT_EQ(figure->getBodyMass(), 1100);   // 1000 + 100 + 0, and -5 counts nothing
}

TEST_F(FigureModel, JointsConnectAFirstAndASecondSite)
{
    EXPECT_EQ(left.joint->getSite(0), left.socket);
    EXPECT_EQ(left.joint->getSite(1), left.proximal);
    EXPECT_EQ(left.joint->getSite(2), nullptr);
    EXPECT_EQ(left.joint->getSite(-1), nullptr);
    EXPECT_EQ(left.joint->getInboardSite(), left.socket);
}

TEST_F(FigureModel, OtherSiteIsTheOneAtTheOtherEnd)
{
    EXPECT_EQ(left.joint->otherSite(left.socket), left.proximal);
    EXPECT_EQ(left.joint->otherSite(left.proximal), left.socket);
    EXPECT_EQ(left.joint->otherSite(center), nullptr);
    EXPECT_EQ(left.joint->otherSite(nullptr), nullptr);
}

TEST_F(FigureModel, SiteOnSegmentIsTheOneThatLiesThere)
{
    EXPECT_EQ(left.joint->siteOnSegment(trunk), left.socket);
    EXPECT_EQ(left.joint->siteOnSegment(left.segment), left.proximal);
    EXPECT_EQ(left.joint->siteOnSegment(right.segment), nullptr);
    EXPECT_EQ(left.joint->siteOnSegment(nullptr), nullptr);
}

TEST_F(FigureModel, HandlesAndRecordsAreOneType)
{
    qcSegment* segment = trunk;
    qcSite* site = center;
    qcJoint* joint = left.joint;
    EXPECT_EQ(segment->getSites(), trunk->getSites());
    EXPECT_EQ(site->getSegment(), trunk);
    EXPECT_EQ(joint->getSite(0), left.socket);
}

TEST_F(FigureModel, RenamingASegmentMovesItsSites)
{
    EXPECT_EQ(hand.segment->setName("right_hand"), 1);
    EXPECT_EQ(figure->findSegment("hand"), nullptr);
    EXPECT_EQ(figure->findSegment("right_hand"), hand.segment);
    EXPECT_STREQ(hand.segment->getFullName(), "worker.right_hand");
    EXPECT_STREQ(hand.proximal->getFullName(), "worker.right_hand.proximal");
    EXPECT_EQ(figure->findSiteByFullName("worker.right_hand.proximal"), hand.proximal);
    EXPECT_EQ(figure->findSiteByFullName("worker.hand.proximal"), nullptr);
    EXPECT_STREQ(hand.socket->getFullName(), "worker.left.to_hand");   // lies on another segment
}

TEST_F(FigureModel, RenamingASiteOrAJointMovesItsFullName)
{
    EXPECT_EQ(center->setName("balance_point"), 1);
    EXPECT_STREQ(center->getFullName(), "worker.trunk.balance_point");
    EXPECT_EQ(figure->findSiteByFullName("worker.trunk.balance_point"), center);
    EXPECT_EQ(figure->findSiteByFullName("worker.trunk.center"), nullptr);

    EXPECT_EQ(left.joint->setName("shoulder"), 1);
    EXPECT_STREQ(left.joint->getFullName(), "worker.shoulder");
    EXPECT_EQ(figure->findJoint("shoulder"), left.joint);
    EXPECT_EQ(figure->findJoint("to_left"), nullptr);
}

TEST_F(FigureModel, RenamingTheFigureMovesAllFullNames)
{
    EXPECT_EQ(figure->setName("other"), 1);
    EXPECT_STREQ(figure->getFullName(), "other");
    EXPECT_STREQ(trunk->getFullName(), "other.trunk");
    EXPECT_STREQ(center->getFullName(), "other.trunk.center");
    EXPECT_STREQ(left.joint->getFullName(), "other.to_left");
    EXPECT_EQ(figure->findSiteByFullName("other.hand.proximal"), hand.proximal);
    EXPECT_EQ(figure->findSiteByFullName("worker.hand.proximal"), nullptr);
    EXPECT_EQ(figure->findSegment("trunk"), trunk);
    EXPECT_EQ(figure->findJoint("to_left"), left.joint);
}

// A name that begins like a part's name, has a full stop in it, is the same as before, or is empty.
TEST_F(FigureModel, RenamingTheFigureOverAndOverIsExact)
{
    for (const char* name : {"work", "worker.left", "worker.left", "", "worker"}) {
        figure->setName(name);
        EXPECT_EQ(left.joint->getFullName(), std::string(name) + ".to_left");
        EXPECT_EQ(hand.proximal->getFullName(), std::string(name) + ".hand.proximal");
        EXPECT_EQ(figure->findSiteByFullName((std::string(name) + ".hand.proximal").c_str()), hand.proximal);
    }
}

TEST_F(FigureModel, PartsHaveNamedProperties)
{
    for (qcObject* object : std::initializer_list<qcObject*>{figure.get(), trunk, center, left.joint}) {
        object->setProperty("key", qcValue(object->getFullName()));
        qcValue value;
        EXPECT_EQ(object->getProperty("key", &value), 1);
        EXPECT_EQ(value.toText(), "\"" + std::string(object->getFullName()) + "\"");
    }
}

TEST_F(FigureModel, AnObserverFindsTheFigureWholeWhenItGoes)
{
    struct Observer : qcObserver {
        void update(updateProtocol protocol) override
        {
            if (protocol == qcDestroyed && figure->findSegment("hand"))
                segments = partsOf<qcSegmentImp>(figure->getSegments()).size();
        }
        qcFigure* figure = nullptr;
        std::size_t segments = 0;
    } observer;
    observer.figure = figure.get();
    figure->attach(&observer, qcChanged);
    figure.reset();
    EXPECT_EQ(observer.segments, 4u);
}

TEST_F(FigureModel, ReferencesToItAndToItsPartsEndWithIt)
{
    auto* ofFigure = new qcRefObserver(figure.get(), nullptr);
    auto* ofJoint = new qcRefObserver(left.joint, nullptr);
    figure.reset();
    EXPECT_EQ(ofFigure->getSubject(), nullptr);
    EXPECT_EQ(ofJoint->getSubject(), nullptr);
    ofFigure->destroy();
    ofJoint->destroy();
}

TEST(FigureDuplicates, TheFirstOfSeveralPartsOfOneNameIsFound)
{
    FigureBuilder builder("f");
    qcSegmentImp* root = addRoot(builder, "twin");
    const Hung second = hang(builder, root, "twin", {Step{}});
    const Hung third = hang(builder, second.segment, "twin", {Step{}});
    const std::unique_ptr<qcFigure> figure = builder.finishMoving();
    EXPECT_EQ(figure->findSegment("twin"), root);
    EXPECT_EQ(figure->findJoint("to_twin"), second.joint);
    EXPECT_EQ(figure->findSiteByFullName("f.twin.proximal"), second.proximal);

    root->setName("first");
    EXPECT_EQ(figure->findSegment("twin"), second.segment);
    second.segment->setName("second");
    EXPECT_EQ(figure->findSiteByFullName("f.twin.proximal"), third.proximal);
}

// Both sites of the joint lie on one segment: the first is tried first.
TEST(FigureDuplicates, SiteOnSegmentTriesTheFirstSiteFirst)
{
    FigureBuilder builder("f");
    qcSegmentImp* root = addRoot(builder);
    qcSiteImp* first = addPlacedSite(builder, root, "first", {});
    qcSiteImp* second = addPlacedSite(builder, root, "second", {});
    qcJointImp* joint = builder.addJoint("loop", "", first, second, first);
    qcJointImp* reversed = builder.addJoint("reversed", "", second, first, first);
    const std::unique_ptr<qcFigure> figure = builder.finishMoving();
    EXPECT_EQ(joint->siteOnSegment(root), first);
    EXPECT_EQ(reversed->siteOnSegment(root), second);
}

TEST(FigureDuplicates, ASiteMayCarrySeveralJointsAndTellsTheFirst)
{
    FigureBuilder builder("f");
    qcSegmentImp* root = addRoot(builder);
    const Hung a = hang(builder, root, "a", {Step{}});
    qcSegmentImp* b = builder.addSegment("b", 0, {});
    qcSiteImp* onB = builder.addSite(b, "proximal");
    qcJointImp* joint = builder.addJoint("to_b", "host.own.name", onB, a.socket, a.socket);
    FigureBuilder::listJoint(a.socket, joint);
    builder.place(b, root, joint, {});
    builder.place(onB, {});
    const std::unique_ptr<qcFigure> figure = builder.finishMoving();
    EXPECT_THAT(partsOf<qcJointImp>(a.socket->getJoints()), ElementsAre(a.joint, joint));
    EXPECT_EQ(a.socket->getJoint(), a.joint);
    EXPECT_EQ(onB->getJoint(), nullptr);

    // a full name of the host's own does not follow the figure's
    EXPECT_STREQ(joint->getFullName(), "host.own.name");
    figure->setName("g");
    EXPECT_STREQ(joint->getFullName(), "host.own.name");
    EXPECT_STREQ(a.joint->getFullName(), "g.to_a");
}

TEST(FigureLimits, AngleValuesAreCheckedAndNamed)
{
    MessageLog log;
    FigureBuilder builder("f");
    qcSegmentImp* root = addRoot(builder);
    qcSegmentImp* leg = builder.addSegment("leg", 0, {});
    qcSiteImp* site = builder.addSite(leg, "proximal");
    qcJointImp* knee = builder.addJoint("knee", "", site, site, site);
    FigureBuilder::addAngle(knee, "flexion", 0, 0, kPi * 150 / 180);
    FigureBuilder::addAngle(knee, "", 0, -kRightAngle, kRightAngle);
    FigureBuilder::addAngle(knee, "free", 0.25);
    builder.place(leg, root, knee, {});
    builder.place(site, {});
    const std::unique_ptr<qcFigure> figure = builder.finishMoving();

    EXPECT_EQ(knee->getNumAngles(), 3);
    EXPECT_STREQ(knee->getAngleName(1), "flexion");
    EXPECT_STREQ(knee->getAngleName(2), "");
    EXPECT_STREQ(knee->getAngleName(0), "");
    EXPECT_STREQ(knee->getAngleName(4), "");

    double lower = 7, upper = 8;
    EXPECT_EQ(knee->getAngleLimits(3, lower, upper), 0);
    EXPECT_EQ(knee->getAngleLimits(4, lower, upper), 0);
    EXPECT_EQ(knee->getAngleLimits(0, lower, upper), 0);
    EXPECT_EQ(lower, 7);
    EXPECT_EQ(upper, 8);
    EXPECT_EQ(knee->getAngleLimits(2, lower, upper), 1);
    EXPECT_EQ(lower, -kRightAngle);
    EXPECT_EQ(upper, kRightAngle);

    // inside, and on the limits themselves
    EXPECT_EQ(knee->setAngle(1, 1.5), 1);
    EXPECT_EQ(knee->setAngle(2, -kRightAngle), 1);
    EXPECT_EQ(knee->setAngle(3, 100), 1);
    EXPECT_EQ(knee->getAngleExactly(1), 1.5);
    EXPECT_EQ(knee->getAngleExactly(2), -kRightAngle);
    EXPECT_EQ(knee->getAngle(2), static_cast<float>(-kRightAngle));
    EXPECT_EQ(knee->getAngle(3), 100);
    EXPECT_EQ(knee->angleProblem(1, 1.5), "");
    EXPECT_THAT(log.takeTexts(), IsEmpty());

    // outside
    EXPECT_EQ(knee->setAngle(1, kPi * 200 / 180), 0);
    EXPECT_EQ(knee->setAngle(2, -kPi), 0);
    EXPECT_EQ(knee->setAngle(1, NAN), 0);
    EXPECT_EQ(knee->setAngle(3, NAN), 0);
    EXPECT_EQ(knee->setAngle(3, HUGE_VAL), 0);
    EXPECT_EQ(knee->setAngle(0, 0), 0);
    EXPECT_EQ(knee->setAngle(4, 0), 0);
    EXPECT_EQ(knee->setAngle(-1, 0), 0);
    EXPECT_THAT(
        log.takeTexts(),
        ElementsAre("joint f.knee: flexion of 200 degrees is outside its limits, 0 to 150 degrees.",
                    "joint f.knee: angle 2 of -180 degrees is outside its limits, -90 to 90 degrees.",
                    "joint f.knee: angle 1 must be a finite number.", "joint f.knee: angle 3 must be a finite number.",
                    "joint f.knee: angle 3 must be a finite number.", "joint f.knee: it has no angle 0; it has 3.",
                    "joint f.knee: it has no angle 4; it has 3.", "joint f.knee: it has no angle -1; it has 3."));
    EXPECT_EQ(knee->getAngleExactly(1), 1.5);   // nothing changed
    EXPECT_EQ(knee->getAngleExactly(2), -kRightAngle);
    EXPECT_EQ(knee->getAngleExactly(3), 100);
    EXPECT_EQ(knee->getAngle(0), 0);
    EXPECT_EQ(knee->getAngle(4), 0);
}

// 150° written with ten digits is a little more than the limit; degrees to radians and back rounds too.
TEST(FigureLimits, AValueThatRoundsToALimitIsInside)
{
    MessageLog log;
    FigureBuilder builder("f");
    const Hung leg = hang(builder, addRoot(builder), "leg", {Step{}});
    FigureBuilder::addAngle(leg.joint, "flexion", 0, 0, kPi * 150 / 180);
    const std::unique_ptr<qcFigure> figure = builder.finishMoving();
    EXPECT_EQ(leg.joint->setAngle(1, kPi * 150 / 180 + 0.9e-9), 1);
    EXPECT_EQ(leg.joint->setAngle(1, -0.9e-9), 1);
    EXPECT_THAT(log.takeTexts(), IsEmpty());
    EXPECT_EQ(leg.joint->setAngle(1, -1.1e-9), 0);
    EXPECT_EQ(log.takeTexts().size(), 1u);
}
