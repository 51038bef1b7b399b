// Roles files: renaming, added sites, the order of angles, roles, the body's measures, and wrong ones.
#include "DecimalComma.h"
#include "Reason.h"
#include "UrdfTexts.h"

#include "qc/qcHuman.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using namespace urdf;

namespace {

constexpr double kHalfPi = 1.57079632679489661923;

// Pelvis, thigh and shank: a ball joint at the hip, 1 m left; a hinge at the knee; a marked sole.
const std::string kLeg = robot(body("P", "10") + link("f1") + link("f2") + body("T", "5") + body("S", "5")
                               + link("S.sole") + hinge("H_x", "P", "f1", "0 1 0", "1 0 0")
                               + hinge("H_y", "f1", "f2", "0 0 0", "0 1 0") + hinge("H_z", "f2", "T", "0 0 0", "0 0 1")
                               + hinge("K", "T", "S", "0 0 -1") + fixed("m", "S", "S.sole", "0 0 -1"));

std::string all(const std::string& sideRoles)
{
    return "{\"left\": " + sideRoles + ", \"right\": " + sideRoles
           + ", \"pelvis_site\": \"P.H\", \"waist\": \"H\", \"reference_site\": \"S.sole\"}";
}

const char* const kSideRoles =
    "{\"foot_site\": \"S.sole\", \"hand_site\": \"S.sole\", \"knee\": \"K\", \"ankle\": \"K\", \"hip\": \"H\"}";

TEST_F(UrdfTest, PartsAreRenamedAndASiteOfAJointGoesWithIt)
{
    const auto figure = read(kLeg, R"({"version": 1, "comment": "why",
        "rename_links": {"P": "pelvis", "T": "S", "S": "T"}, "rename_joints": {"H": "left_hip"},
        "rename_sites": {"S.sole": "tip", "T.K": "distal"}})");
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSegment>(figure->getSegments()), ElementsAre("pelvis", "S", "T"));
    EXPECT_THAT(names<qcJoint>(figure->getJoints()), ElementsAre("left_hip", "K"));
    EXPECT_THAT(names<qcSite>(figure->getSites()), ElementsAre("left_hip", "proximal", "distal", "proximal", "tip"));
    EXPECT_NE(figure->findSiteByFullName("r.S.distal"), nullptr);
    EXPECT_STREQ(figure->findJoint("left_hip")->getAngleName(2), "y");
}

// 1 cm left, 2 cm up, 3 cm forward of the shank's origin, which is 1 m left and 1 m below the pelvis's.
TEST_F(UrdfTest, SitesAreAddedBehindTheModelsOwn)
{
    const auto figure =
        read(kLeg, R"({"rename_links": {"S": "shank"}, "sites": {"shank.mark": {"offset_cm": [1, 2, 3]}}})");
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(names<qcSite>(figure->findSegment("shank")->getSites()), ElementsAre("proximal", "sole", "mark"));
    EXPECT_THAT(position(figure->findSiteByFullName("r.shank.mark")), ElementsAre(101, -98, 3));
}

// The analysis counts y first; the turns stay x, then y, then z. With x = y = 90° the thigh's up goes by y
// about left to forward, then by x about forward stays: forward, (0, 0, 1). In the other order of turning
// it would go by x about forward to right, and by y stay there.
TEST_F(UrdfTest, AnglesAreCountedAsToldAndTurnAsBefore)
{
    const auto figure = read(kLeg, R"({"angle_order": {"H": ["y", "z", "x"]}})");
    ASSERT_NE(figure, nullptr);
    qcJoint* hip = figure->findJoint("H");
    EXPECT_STREQ(hip->getAngleName(1), "y");
    EXPECT_STREQ(hip->getAngleName(2), "z");
    EXPECT_STREQ(hip->getAngleName(3), "x");
    hip->setAngle(1, kHalfPi);
    hip->setAngle(3, kHalfPi);
    EXPECT_THAT(axis(figure->findSegment("T"), 1),
                ElementsAre(testing::FloatNear(0, 1e-6f), testing::FloatNear(0, 1e-6f), testing::FloatEq(1)));
}

TEST_F(UrdfTest, RolesAreFound)
{
    const auto figure = read(kLeg, all(kSideRoles));
    ASSERT_NE(figure, nullptr);
    for (const qcSide side : {qcRight, qcLeft}) {
        EXPECT_EQ(figure->getRoles().foot[side], figure->findSiteByFullName("r.S.sole"));
        EXPECT_EQ(figure->getRoles().hand[side], figure->findSiteByFullName("r.S.sole"));
        EXPECT_EQ(figure->getRoles().knee[side], figure->findJoint("K"));
        EXPECT_EQ(figure->getRoles().ankle[side], figure->findJoint("K"));
        EXPECT_EQ(figure->getRoles().hip[side], figure->findJoint("H"));
    }
    EXPECT_EQ(figure->getRoles().pelvis, figure->findSiteByFullName("r.P.H"));
    EXPECT_EQ(figure->getRoles().waist, figure->findJoint("H"));
    EXPECT_EQ(figure->getReferenceSite(), figure->findSiteByFullName("r.S.sole"));
    const std::unique_ptr<qcHuman> human(qcHuman::create(figure.get()));
    EXPECT_NE(human, nullptr);
}

TEST_F(UrdfTest, MissingRolesAreNamedWhenAHumanIsAsked)
{
    const auto figure = read(kLeg, R"({"left": {"knee": "K"}, "waist": "H"})");
    ASSERT_NE(figure, nullptr);
    EXPECT_EQ(figure->getRoles().knee[qcLeft], figure->findJoint("K"));
    EXPECT_EQ(figure->getRoles().knee[qcRight], nullptr);
    EXPECT_EQ(qcHuman::create(figure.get()), nullptr);
    EXPECT_THAT(
        log.takeTexts(),
        ElementsAre("figure r is no human: no part is known for these roles: left.foot_site, left.hand_site, "
                    "left.ankle, left.hip, right.foot_site, right.hand_site, right.knee, right.ankle, right.hip, "
                    "pelvis_site, reference_site. Name them in its roles file."));
}

TEST_F(UrdfTest, WithoutARolesFileEveryRoleIsMissing)
{
    const auto figure = read(kLeg);
    ASSERT_NE(figure, nullptr);
    EXPECT_EQ(figure->getReferenceSite(), nullptr);
    EXPECT_EQ(qcHuman::create(figure.get()), nullptr);
    EXPECT_THAT(log.takeTexts(), ElementsAre(HasSubstr("left.foot_site, left.hand_site, left.knee")));
}

TEST_F(UrdfTest, ARolesFileBesideTheModelIsFound)
{
    folder.write("model.roles.json", R"({"rename_links": {"P": "pelvis"}})");
    const auto figure = read(kLeg);
    ASSERT_NE(figure, nullptr);
    EXPECT_NE(figure->findSegment("pelvis"), nullptr);
    const auto other = read(kLeg, "{}");   // one given by name is taken instead
    ASSERT_NE(other, nullptr);
    EXPECT_NE(other->findSegment("P"), nullptr);
}

TEST_F(UrdfTest, AMissingRolesFileIsReported)
{
    const std::string model = folder.write("model.urdf", kLeg);
    EXPECT_EQ(refusal(qcFigureFile::read(model.c_str(), folder.file("none.json").c_str())),
              "none.json: cannot be read: " + reason(ENOENT));
}

TEST_F(UrdfTest, ARefusalHasADecimalPointInEveryLocale)
{
    const DecimalComma comma;
    EXPECT_THAT(problem(kLeg, R"({"base": {"mass_kg": 1000.5}})"),
                StartsWith("given.json: /base/mass_kg: expected a body mass in kg, 0.001 to 1000, found 1000.5."));
}

// 20 kg as loaded; the other sex: 10 kg, of which the pelvis, the thigh and the shank have 50, 30 and 20 %.
TEST_F(UrdfTest, TheOtherSexHasMassesOfItsOwn)
{
    std::string roles = all(kSideRoles);
    roles.back() = ',';
    const auto figure = read(kLeg, roles + R"("base": {"sex": "female", "stature_cm": 160, "mass_kg": 20},
        "other_sex": {"sex": "male", "stature_cm": 80, "mass_kg": 10, "mass_percent": {"S": 20, "P": 50, "T": 30}}})");
    ASSERT_NE(figure, nullptr);
    const std::unique_ptr<qcHuman> human(qcHuman::create(figure.get()));
    ASSERT_NE(human, nullptr);
    EXPECT_EQ(human->getAnthroscale()->getSex(), qcFemale);
    ASSERT_EQ(human->getAnthroscale()->setSex(qcMale), 1);
    EXPECT_EQ(figure->findSegment("P")->getMass(), 5000.0f);
    EXPECT_EQ(figure->findSegment("T")->getMass(), 3000.0f);
    EXPECT_EQ(figure->findSegment("S")->getMass(), 2000.0f);
    // 80 / 160 of each length: the shank's origin was at (100, -100, 0)
    EXPECT_THAT(position(figure->findSegment("S")), ElementsAre(50, -50, 0));
}

TEST_F(UrdfTest, AToldMassThatIsNotTheSumIsNoted)
{
    const auto figure = read(kLeg, R"({"base": {"mass_kg": 75}})");
    ASSERT_NE(figure, nullptr);
    EXPECT_THAT(notes(*figure),
                HasSubstr("/base/mass_kg: the body's mass is 20 kg, the sum of its segments, not 75 kg"));
}

struct WrongRoles {
    const char* name;
    std::string text;
    std::string message;   // or its beginning
};

const std::vector<WrongRoles>& wrongRoles()
{
    static const std::vector<WrongRoles> cases = {
        {"Empty", " ", "given.json: expected JSON, found nothing."},
        {"NoJson", "{", "given.json:1: expected JSON"},
        {"NullByteBehind", std::string("{}\n\0x", 5), "given.json:2: expected JSON, found a null byte."},
        {"AList", "[]", "given.json: expected an object, found an array of 0 elements."},
        {"UnknownKey", R"({"wasit": "H"})", "given.json: /wasit: unknown key. Close names: \"waist\"."},
        {"KeyTwice", R"({"waist": "H", "waist": "H"})", "given.json: "},
        {"NewVersion", R"({"version": 2})", "given.json: /version: expected version 1 of the format, found 2."},
        {"CommentAList", R"({"comment": []})", "given.json: /comment: expected a text, found an array of 0 elements."},
        {"UnknownSideKey", R"({"left": {"nee": "K"}})", "given.json: /left/nee: unknown key. Close names: \"knee\"."},
        {"SideAText", R"({"left": "K"})", "given.json: /left: expected an object, found \"K\"."},
        {"RoleANumber", R"({"waist": 3})", "given.json: /waist: expected a name, found 3."},
        {"RoleNull", R"({"waist": null})", "given.json: /waist: expected a name, found null."},
        {"UnknownJoint", R"({"rename_joints": {"H": "right_hip"}, "right": {"hip": "rigth_hip"}})",
         "given.json: /right/hip: expected the name of a joint of this figure, found \"rigth_hip\". Close names: "
         "\"right_hip\"."},
        {"JointWhereASiteBelongs", R"({"right": {"foot_site": "K"}})",
         "given.json: /right/foot_site: expected the name of a site (\"segment.site\") of this figure, found \"K\"."},
        {"OldNameAfterRenaming", R"({"rename_joints": {"H": "hip"}, "waist": "H"})",
         "given.json: /waist: expected the name of a joint of this figure, found \"H\"."},
        {"RenameUnknownLink", R"({"rename_links": {"Q": "q"}})",
         "given.json: /rename_links/Q: expected the name of a segment of this figure, found \"Q\"."},
        {"RenameUnknownSite", R"({"rename_sites": {"S.soul": "q"}})",
         "given.json: /rename_sites/S.soul: expected the name of a site (\"segment.site\") of this figure, found "
         "\"S.soul\". Close names: \"S.sole\"."},
        {"RenameToNothing", R"({"rename_links": {"P": ""}})", "given.json: /rename_links/P: expected a name"},
        {"LinkCollision", R"({"rename_links": {"P": "T"}})",
         "given.json: /rename_links/P: two segments are named \"T\". Expected a name that no other segment has."},
        {"JointCollision", R"({"rename_joints": {"H": "j", "K": "j"}})",
         "given.json: /rename_joints/K: two joints are named \"j\"."},
        {"SiteCollision", R"({"rename_sites": {"S.sole": "proximal"}})",
         "given.json: /rename_sites/S.sole: two sites are named \"S.proximal\"."},
        {"AddedSiteCollision", R"({"sites": {"S.sole": {"offset_cm": [0, 0, 0]}}})",
         "given.json: /sites/S.sole: two sites are named \"S.sole\"."},
        {"AddedSiteWithoutSegment", R"({"sites": {"sole": {"offset_cm": [0, 0, 0]}}})",
         "given.json: /sites/sole: expected \"segment.site\", found \"sole\"."},
        {"AddedSiteOnNothing", R"({"sites": {"Q.sole": {"offset_cm": [0, 0, 0]}}})",
         "given.json: /sites/Q.sole: expected the name of a segment of this figure, found \"Q\"."},
        {"AddedSiteWithoutOffset", R"({"sites": {"S.a": {}}})",
         "given.json: /sites/S.a: the key \"offset_cm\" is missing."},
        {"AddedSiteInAPlane", R"({"sites": {"S.a": {"offset_cm": [0, 0]}}})",
         "given.json: /sites/S.a/offset_cm: expected [x, y, z], in cm, found an array of 2 elements."},
        {"AddedSiteText", R"({"sites": {"S.a": {"offset_cm": [0, 0, "1"]}}})",
         "given.json: /sites/S.a/offset_cm/2: expected a length in cm"},
        {"AddedSiteTooFar", R"({"sites": {"S.a": {"offset_cm": [0, 0, 1e30]}}})",
         "given.json: /sites/S.a/offset_cm/2: expected a length in cm"},
        {"AngleUnknown", R"({"angle_order": {"H": ["y", "x", "q"]}})",
         "given.json: /angle_order/H/2: expected all angles of the joint, each once: \"x\", \"y\", \"z\", found "
         "\"q\"."},
        {"AngleTwice", R"({"angle_order": {"H": ["y", "x", "y"]}})",
         "given.json: /angle_order/H/2: expected all angles"},
        {"AngleMissing", R"({"angle_order": {"H": ["y", "x"]}})",
         "given.json: /angle_order/H: expected all angles of the joint, each once: \"x\", \"y\", \"z\", found an array "
         "of 2 "
         "elements."},
        {"AngleOrderOfNothing", R"({"angle_order": {"J": []}})",
         "given.json: /angle_order/J: expected the name of a joint"},
        {"ReferenceOnAJoint", R"({"reference_site": "P.H"})",
         "given.json: /reference_site: expected a site without joints, because it is kept at the body's centre of mass "
         "(the "
         "joint \"H\" is attached there), found \"P.H\"."},
        {"SexUnknown", R"({"base": {"sex": "man"}})",
         "given.json: /base/sex: expected \"male\" or \"female\", found \"man\"."},
        {"StatureInMetres", R"({"base": {"stature_cm": 1.75}})",
         "given.json: /base/stature_cm: expected a stature in cm, 30 to 300, found 1.75."},
        {"MassInGrams", R"({"base": {"mass_kg": 75000}})",
         "given.json: /base/mass_kg: expected a body mass in kg, 0.001 to 1000, found 75000."},
        {"SameSex", R"({"base": {"sex": "male"}, "other_sex": {"sex": "male", "mass_percent": {}}})",
         "given.json: /other_sex/sex: expected the sex that the model itself (\"base\") is not, found \"male\"."},
        {"OtherSexWithoutMasses", R"({"other_sex": {"sex": "female"}})",
         "given.json: /other_sex: the key \"mass_percent\" is missing."},
        {"SegmentWithoutShare", R"({"other_sex": {"sex": "female", "mass_percent": {"P": 50, "T": 50}}})",
         "given.json: /other_sex/mass_percent: expected a share of the body's mass for each segment, found none for "
         "\"S\"."},
        {"ShareOfNothing", R"({"other_sex": {"sex": "female", "mass_percent": {"Q": 50}}})",
         "given.json: /other_sex/mass_percent/Q: expected the name of a segment"},
        {"NegativeShare", R"({"other_sex": {"sex": "female", "mass_percent": {"P": -1}}})",
         "given.json: /other_sex/mass_percent/P: expected a share of the body's mass in %, 0 to 100, found -1."},
        {"SharesOfHalfABody", R"({"other_sex": {"sex": "female", "mass_percent": {"P": 20, "T": 20, "S": 10}}})",
         "given.json: /other_sex/mass_percent: expected shares that add up to 100 %, found a sum of 50."},
    };
    return cases;
}

void PrintTo(const WrongRoles& wrong, std::ostream* out)
{
    *out << wrong.text;
}

class WrongRolesFile : public UrdfTest, public testing::WithParamInterface<WrongRoles> {};

TEST_P(WrongRolesFile, IsRefusedWithAReason)
{
    EXPECT_THAT(problem(kLeg, GetParam().text), StartsWith(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(Roles, WrongRolesFile, testing::ValuesIn(wrongRoles()),
                         [](const auto& test) { return std::string(test.param.name); });

}   // namespace
