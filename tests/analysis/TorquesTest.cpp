// Torques: moments defined at joints, how they stand on the joint and in the figure's list, and reading them back.
#include "AnalysisTest.h"
#include "SavedValues.h"

#include "TorqueValues.h"

#include <climits>
#include <string>

using ::testing::ElementsAre;

namespace {

SmallFigure threeJoints(const std::string& name = "man")
{
    SmallFigure figure(name);
    figure.segment("arm", 3000)
        .site("arm", "top", {0, 140, 0})
        .site("arm", "bottom", {0, 80, 0})
        .segment("hand", 500)
        .site("hand", "top", {0, 80, 0})
        .site("hand", "bottom", {0, 70, 0})
        .segment("finger", 20)
        .site("finger", "top", {0, 70, 0})
        .segment("trunk", 30000)
        .site("trunk", "side", {0, 140, 0})
        .joint("shoulder", "trunk.side", "arm.top")
        .joint("wrist", "arm.bottom", "hand.top")
        .joint("knuckle", "hand.bottom", "finger.top");
    return figure;
}

class Torques : public AnalysisTest {
protected:
    void SetUp() override { load(threeJoints()); }

    int set(qcJoint* at, float x, float y, float z)
    {
        qVector torque(x, y, z);
        return analysis->setDefinedTorque(at, torque);
    }
    int set(const std::string& at, float x, float y, float z) { return set(joint(at), x, y, z); }
    std::string torqueAt(const std::string& name) const { return stored(joint(name), "SSTR_Torque"); }
    std::string torqueList() const { return stored(figure, "SSTR_TorqueList"); }
    void setList(const qcValue& value) { figure->setProperty("SSTR_TorqueList", value); }

    void expectTorque(qcJoint* at, float x, float y, float z) const
    {
        qVector torque;
        EXPECT_EQ(analysis->getDefinedTorque(at, torque), 1);
        EXPECT_THAT(components(torque), ElementsAre(x, y, z));
    }
    // 0, and the vector that was passed is as it was
    void expectNoTorque(qcJoint* at) const
    {
        qVector torque(77, 78, 79);
        EXPECT_EQ(analysis->getDefinedTorque(at, torque), 0);
        EXPECT_THAT(components(torque), ElementsAre(77, 78, 79));
    }
};

// ---- Setting -------------------------------------------------------------------------------------

TEST_F(Torques, TorqueIsStoredOnTheJointAndListed)
{
    EXPECT_EQ(set("wrist", 1, -2, 3), 1);
    EXPECT_EQ(torqueAt("wrist"), "[(1, -2, 3)]");
    EXPECT_EQ(torqueList(), "[[\"wrist\", (1, -2, 3)]]");
    EXPECT_EQ(analysis->getNumDefinedTorques(), 1);
    expectTorque(joint("wrist"), 1, -2, 3);
}

TEST_F(Torques, KindsAreFixedNumbers)
{
    set("wrist", 1, 2, 3);
    qcValue value;
    ASSERT_EQ(figure->getProperty("SSTR_TorqueList", &value), 1);
    EXPECT_EQ(value.kind, 9);
    ASSERT_NE(value.firstElement(), nullptr);
    EXPECT_EQ(value.firstElement()->kind, 9);
    EXPECT_EQ(value.firstElement()->firstElement()->kind, 7);
}

TEST_F(Torques, SettingTwiceOnOneJointKeepsTheEntryInItsPlace)
{
    set("wrist", 1, 0, 0);
    set("shoulder", 2, 0, 0);
    set("wrist", 3, 0, 0);
    EXPECT_EQ(torqueList(), "[[\"wrist\", (3, 0, 0)], [\"shoulder\", (2, 0, 0)]]");
    EXPECT_EQ(torqueAt("wrist"), "[(3, 0, 0)]");
    EXPECT_EQ(analysis->getNumDefinedTorques(), 2);
}

TEST_F(Torques, TorqueIsCopied)
{
    qVector torque(1, 2, 3);
    analysis->setDefinedTorque(joint("wrist"), torque);
    torque.set(9, 9, 9);
    expectTorque(joint("wrist"), 1, 2, 3);
}

TEST_F(Torques, TorqueOfNothingIsOneLikeAnyOther)
{
    EXPECT_EQ(set("wrist", 0, 0, 0), 1);
    EXPECT_EQ(torqueList(), "[[\"wrist\", (0, 0, 0)]]");
    EXPECT_EQ(analysis->reset(), 1);
    EXPECT_EQ(torqueAt("wrist"), "[(0, 0, 0)]");
    EXPECT_EQ(torqueList(), "[[\"wrist\", (0, 0, 0)]]");
    expectTorque(joint("wrist"), 0, 0, 0);
}

TEST_F(Torques, NullJointIsRefusedEverywhere)
{
    EXPECT_EQ(set(nullptr, 1, 2, 3), 0);
    EXPECT_EQ(analysis->removeDefinedTorque(nullptr), 0);
    expectNoTorque(nullptr);
    EXPECT_EQ(torqueList(), "absent");
}

TEST_F(Torques, JointOfAnotherFigureIsTakenAndListedHere)
{
    qcJoint* foreign = joint("shoulder");
    qcFigure* foreignFigure = figure;
    load(SmallFigure("other").segment("hand", 1));
    EXPECT_EQ(set(foreign, 1, 2, 3), 1);
    EXPECT_EQ(stored(foreign, "SSTR_Torque"), "[(1, 2, 3)]");
    EXPECT_EQ(torqueList(), "[[\"shoulder\", (1, 2, 3)]]");
    EXPECT_EQ(stored(foreignFigure, "SSTR_TorqueList"), "absent");
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(0), nullptr);   // this figure has no such joint
    EXPECT_EQ(analysis->removeDefinedTorque(foreign), 1);
    EXPECT_EQ(torqueList(), "absent");
}

// The key is the bare name. Both joints keep their own torque; the entry holds the one set last.
TEST_F(Torques, JointsOfOneNameShareAnEntry)
{
    load(SmallFigure("twins")
             .segment("left_hand", 500)
             .site("left_hand", "top", {10, 80, 0})
             .segment("right_hand", 500)
             .site("right_hand", "top", {-10, 80, 0})
             .segment("bar", 1000)
             .site("bar", "left", {10, 80, 0})
             .site("bar", "right", {-10, 80, 0})
             .joint("wrist", "bar.left", "left_hand.top", {}, "twins.left_wrist")
             .joint("wrist", "bar.right", "right_hand.top", {}, "twins.right_wrist"));
    qcJoint* left = site("left_hand.top")->getJoint();
    qcJoint* right = site("right_hand.top")->getJoint();
    ASSERT_NE(left, right);

    set(left, 1, 0, 0);
    set(right, 2, 0, 0);
    EXPECT_EQ(torqueList(), "[[\"wrist\", (2, 0, 0)]]");
    EXPECT_EQ(analysis->getNumDefinedTorques(), 1);
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(0), left);   // the first joint of the name
    expectTorque(left, 1, 0, 0);
    expectTorque(right, 2, 0, 0);

    // a reset finds one joint for the entry
    EXPECT_EQ(analysis->reset(), 1);
    expectTorque(left, 2, 0, 0);
    expectNoTorque(right);
}

// Removing the second one's torque takes the shared entry; the first one's has none to take then.
TEST_F(Torques, SharedEntryGoesWithTheFirstRemoval)
{
    load(SmallFigure("twins")
             .segment("a", 1)
             .site("a", "s", {0, 0, 0})
             .segment("b", 1)
             .site("b", "s", {0, 0, 0})
             .site("b", "t", {0, 0, 0})
             .segment("c", 1)
             .site("c", "s", {0, 0, 0})
             .joint("hinge", "a.s", "b.s", {}, "twins.one")
             .joint("hinge", "b.t", "c.s", {}, "twins.two"));
    qcJoint* one = site("a.s")->getJoint();
    qcJoint* two = site("c.s")->getJoint();
    set(one, 1, 0, 0);
    set(two, 2, 0, 0);
    EXPECT_EQ(analysis->removeDefinedTorque(two), 1);
    EXPECT_EQ(torqueList(), "absent");
    expectTorque(one, 1, 0, 0);
    EXPECT_EQ(analysis->removeDefinedTorque(one), 1);
    EXPECT_EQ(torqueList(), "absent");
}

// ---- Removing ------------------------------------------------------------------------------------

TEST_F(Torques, RemovingTheOnlyTorqueRemovesTheList)
{
    set("wrist", 1, 2, 3);
    EXPECT_EQ(analysis->removeDefinedTorque(joint("wrist")), 1);
    EXPECT_EQ(torqueAt("wrist"), "absent");
    EXPECT_EQ(torqueList(), "absent");
    EXPECT_EQ(analysis->getNumDefinedTorques(), 0);
    expectNoTorque(joint("wrist"));
    EXPECT_EQ(analysis->removeDefinedTorque(joint("wrist")), 0);
}

TEST_F(Torques, RemovingKeepsTheOthersInTheirOrder)
{
    const auto fill = [this] {
        set("shoulder", 1, 0, 0);
        set("wrist", 2, 0, 0);
        set("knuckle", 3, 0, 0);
    };
    fill();
    analysis->removeDefinedTorque(joint("shoulder"));
    EXPECT_EQ(torqueList(), "[[\"wrist\", (2, 0, 0)], [\"knuckle\", (3, 0, 0)]]");
    analysis->clear();
    fill();
    analysis->removeDefinedTorque(joint("wrist"));
    EXPECT_EQ(torqueList(), "[[\"shoulder\", (1, 0, 0)], [\"knuckle\", (3, 0, 0)]]");
    analysis->clear();
    fill();
    analysis->removeDefinedTorque(joint("knuckle"));
    EXPECT_EQ(torqueList(), "[[\"shoulder\", (1, 0, 0)], [\"wrist\", (2, 0, 0)]]");
}

TEST_F(Torques, RemovingWhereThereIsNoneLeavesTheList)
{
    set("shoulder", 1, 2, 3);
    EXPECT_EQ(analysis->removeDefinedTorque(joint("wrist")), 0);
    EXPECT_EQ(torqueList(), "[[\"shoulder\", (1, 2, 3)]]");

    // an entry alone is not reached
    joint("shoulder")->removeProperty("SSTR_Torque");
    EXPECT_EQ(analysis->removeDefinedTorque(joint("shoulder")), 0);
    EXPECT_EQ(torqueList(), "[[\"shoulder\", (1, 2, 3)]]");

    // a property alone is taken off, whatever it is
    joint("wrist")->setProperty("SSTR_Torque", qcValue());
    EXPECT_EQ(analysis->removeDefinedTorque(joint("wrist")), 1);
    EXPECT_EQ(torqueAt("wrist"), "absent");
    EXPECT_EQ(torqueList(), "[[\"shoulder\", (1, 2, 3)]]");
}

// Where the list has no entry to remove, what stands in its place is not touched, not even an empty list.
TEST_F(Torques, RemovingATorqueThatIsNotListedLeavesTheListPropertyAsItIs)
{
    for (const qcValue& other : {list({}), qcValue(), text("x")}) {
        SCOPED_TRACE(describe(other));
        setList(other);
        joint("wrist")->setProperty("SSTR_Torque", text("whatever"));
        EXPECT_EQ(analysis->removeDefinedTorque(joint("wrist")), 1);
        EXPECT_EQ(torqueAt("wrist"), "absent");
        EXPECT_EQ(torqueList(), describe(other));
    }
}

// ---- Counting and finding ------------------------------------------------------------------------

TEST_F(Torques, JointsAreFoundByPosition)
{
    EXPECT_EQ(analysis->getNumDefinedTorques(), 0);
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(0), nullptr);
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(-1), nullptr);
    set("wrist", 1, 0, 0);
    set("shoulder", 2, 0, 0);
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(0), joint("wrist"));
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(1), joint("shoulder"));
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(-1), joint("wrist"));
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(INT_MIN), joint("wrist"));
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(2), nullptr);
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(INT_MAX), nullptr);
}

// ---- Saved lists of odd shapes -------------------------------------------------------------------

TEST_F(Torques, ElementsOfAnyShapeAreCountedKeptAndPassedOver)
{
    const std::string odd = "1, \"wrist\", (1, 2, 3), empty, [], [5], [\"Wrist\", (1, 1, 1)], [\"man.wrist\", 4]";
    setList(list({number(1), text("wrist"), vector(1, 2, 3), qcValue(), list({}), list({number(5)}),
                  list({text("Wrist"), vector(1, 1, 1)}), list({text("man.wrist"), number(4)})}));
    EXPECT_EQ(analysis->getNumDefinedTorques(), 8);
    for (int n = 0; n < 8; ++n)
        EXPECT_EQ(analysis->getNthDefinedTorqueJoint(n), nullptr) << n;
    set("wrist", 7, 8, 9);
    EXPECT_EQ(torqueList(), "[" + odd + ", [\"wrist\", (7, 8, 9)]]");
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(8), joint("wrist"));
    analysis->removeDefinedTorque(joint("wrist"));
    EXPECT_EQ(torqueList(), "[" + odd + "]");
}

TEST_F(Torques, ListPropertyThatIsNoListCountsAsEmpty)
{
    for (const qcValue& other : {text("wrist"), number(3), vector(1, 2, 3), qcValue()}) {
        setList(other);
        EXPECT_EQ(analysis->getNumDefinedTorques(), 0) << describe(other);
        EXPECT_EQ(analysis->getNthDefinedTorqueJoint(-1), nullptr) << describe(other);
        set("wrist", 1, 2, 3);
        EXPECT_EQ(torqueList(), "[[\"wrist\", (1, 2, 3)]]");
    }
}

TEST_F(Torques, JointThatIsGoneHasNone)
{
    setList(list({list({text("elbow"), vector(1, 2, 3)}), list({text("wrist"), vector(1, 2, 3)})}));
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(0), nullptr);
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(1), joint("wrist"));
}

TEST_F(Torques, NameAloneSufficesToFindAJoint)
{
    setList(list({list({text("shoulder")}), list({text("wrist")})}));
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(0), joint("shoulder"));
    EXPECT_EQ(analysis->getNthDefinedTorqueJoint(1), joint("wrist"));
}

// ---- Reading back --------------------------------------------------------------------------------

TEST_F(Torques, MisshapenTorquesReadAsNone)
{
    expectNoTorque(joint("wrist"));
    for (const qcValue& misshapen : {vector(1, 2, 3), text("torque"), number(1), qcValue(), list({}),
                                     list({number(1), vector(1, 2, 3)}), list({list({vector(1, 2, 3)})})}) {
        SCOPED_TRACE(describe(misshapen));
        joint("wrist")->setProperty("SSTR_Torque", misshapen);
        expectNoTorque(joint("wrist"));
    }
}

TEST_F(Torques, OnlyTheFirstElementIsRead)
{
    joint("wrist")->setProperty("SSTR_Torque", list({vector(1, 2, 3), vector(4, 5, 6), text("more")}));
    expectTorque(joint("wrist"), 1, 2, 3);
}

TEST_F(Torques, TorquesOutliveTheAnalysis)
{
    set("wrist", 1, 2, 3);
    dropAnalysis();
    makeAnalysis();
    EXPECT_EQ(analysis->getNumDefinedTorques(), 1);
    expectTorque(joint("wrist"), 1, 2, 3);
}

TEST_F(Torques, GravityDoesNotTouchThem)
{
    set("wrist", 1, 2, 3);
    analysis->setGravity({0, 0, 0});
    expectTorque(joint("wrist"), 1, 2, 3);
}

// ---- The values by themselves --------------------------------------------------------------------

TEST(TorqueValues, AreAListOfOneVector)
{
    qcValue* value = makeTorqueValue({1, 2, 3});
    EXPECT_EQ(describe(*value), "[(1, 2, 3)]");
    qVector torque;
    EXPECT_EQ(decodeTorqueValue(*value, torque), 1);
    EXPECT_THAT(components(torque), ElementsAre(1, 2, 3));
    qcValue::destroy(value);
}

TEST(TorqueEntries, AreANameAndAVector)
{
    char* name = nullptr;
    qcValue* value = nullptr;
    const qcValue entry = list({text("wrist"), vector(1, 2, 3), text("more")});
    ASSERT_EQ(parseTorqueEntry(entry, name, &value), 1);
    EXPECT_STREQ(name, "wrist");
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(describe(*value), "[(1, 2, 3)]");
    qcValue::destroy(value);
    EXPECT_EQ(parseTorqueEntry(entry, name, nullptr), 1);

    for (const qcValue& other :
         {text("wrist"), qcValue(), list({}), list({text("wrist")}), list({vector(1, 2, 3), text("wrist")}),
          list({text("wrist"), number(1)}), list({text("wrist"), list({vector(1, 2, 3)})})}) {
        qcValue* made = nullptr;
        EXPECT_EQ(parseTorqueEntry(other, name, &made), 0) << describe(other);
    }
}

}   // namespace
