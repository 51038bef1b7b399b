// Same bits: the results of fixed scenes are the committed ones to the last bit, in every build.
//
// tests/data/bits/ has the scenes, posed figures (no sine or cosine enters), and their results; its
// README tells what is in them. SSTR_WRITE_BITS=FOLDER writes the results computed here as new files into
// an existing folder; whoever finds the differences right copies them over.
//
// That the committed numbers are the right ones, and not just those of one day, is shown on the same scenes
// by second ways: by direct sums in double, with bounds, and by transcriptions in float, to the bit.
#include "AnalysisTest.h"
#include "NaiveAnalysis.h"
#include "NumberText.h"
#include "ResultLines.h"
#include "StrategyTranscription.h"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

const std::string kFolder = SSTR_SOURCE_DIR "/tests/data/bits";
constexpr const char* kScenes[] = {"small_body", "reaching", "crouching", "extremes"};

using Strategy = qmStaticStrength::Strategy;

// One computation of a scene. Angles of the knees, rad, are set for walking, which reads nothing else of
// them; a posed figure does not move.
struct Computation {
    const char* name;
    Strategy strategy;
    Strategy effective;
    double rightKnee = 0, leftKnee = 0;
};
constexpr Computation kComputations[] = {
    {"two-feet", qmStaticStrength::TwoFeet, qmStaticStrength::TwoFeet},
    {"right-foot", qmStaticStrength::RightFoot, qmStaticStrength::RightFoot},
    {"left-foot", qmStaticStrength::LeftFoot, qmStaticStrength::LeftFoot},
    {"walking-on-both", qmStaticStrength::Walking, qmStaticStrength::TwoFeet, 0.5, -0.45},
    {"walking-on-right", qmStaticStrength::Walking, qmStaticStrength::RightFoot, 0.1, 0.5},
    {"walking-on-left", qmStaticStrength::Walking, qmStaticStrength::LeftFoot, -0.5, 0.1},
    {"sitting", qmStaticStrength::Sitting, qmStaticStrength::Sitting},
    {"sitting-no-feet", qmStaticStrength::SittingNoFeet, qmStaticStrength::SittingNoFeet},
    {"hands-and-knees", qmStaticStrength::HandsAndKnees, qmStaticStrength::HandsAndKnees},
};

class SameBits : public AnalysisTest {
protected:
    void open(const std::string& name)
    {
        analyses.clear();
        scene.reset(qcScene::open((kFolder + "/" + name + ".json").c_str()));
        ASSERT_NE(scene, nullptr);
        human = static_cast<qcHuman*>(scene->getHumans()->getData());
        figure = human->getFigure();
        makeAnalysis();
        analysis->setGravity(scene->getGravity());
    }

    // Only this run's results are on the joints afterwards.
    void compute(const Computation& run)
    {
        analysis->reset();
        if (run.strategy == qmStaticStrength::Walking) {
            ASSERT_EQ(human->getKneeJoint(qcRight)->setAngle(1, run.rightKnee), 1);
            ASSERT_EQ(human->getKneeJoint(qcLeft)->setAngle(1, run.leftKnee), 1);
        }
        analysis->setStrategy(run.strategy);
        EXPECT_EQ(analysis->compute(), 1);
        // walking has no shares to show under its own name; those that it set are the two feet's
        if (run.strategy == qmStaticStrength::Walking)
            analysis->setStrategy(qmStaticStrength::TwoFeet);
    }

    ResultLines linesOf(const Computation& run)
    {
        compute(run);
        return resultLines(run.name, *analysis);
    }
    ResultLines allLines()
    {
        ResultLines lines = inputLines(*analysis);
        for (const Computation& run : kComputations)
            for (const std::string& line : linesOf(run))
                lines.push_back(line);
        return lines;
    }

    // What the analysis was told, by its readers; hand loads from the figure.
    PlainWalk told() const
    {
        const auto of = [](const qVector& v) { return PlainWalk::Vector{v[0], v[1], v[2]}; };
        PlainWalk walk;
        qVector vector;
        analysis->getGravity(vector);
        walk.gravity = of(vector);
        for (int i = 0; i < analysis->getNumLoads(); ++i) {
            qcSite* site = analysis->getNthLoadSite(i);
            EXPECT_EQ(analysis->getSiteLoad(site, vector), 1);
            walk.loads[site] = PlainWalk::Force{of(vector), std::strcmp(analysis->getLoadType(site), "local") == 0};
        }
        for (int i = 0; i < analysis->getNumLoadsWithOffset(); ++i) {
            const loadWithOffset& record = *analysis->getNthLoadWithOffset(i);
            walk.displaced.push_back({record.site, of(record.offset), {of(record.load), record.local}});
        }
        for (int i = 0; i < analysis->getNumDefinedTorques(); ++i) {
            qcJoint* joint = analysis->getNthDefinedTorqueJoint(i);
            EXPECT_EQ(analysis->getDefinedTorque(joint, vector), 1);
            walk.torques[joint] = of(vector);
        }
        for (const qcSide side : {qcRight, qcLeft}) {
            const std::string key = side == qcRight ? "RightZelHandLoads" : "LeftZelHandLoads";
            float x = 0, y = 0, z = 0;
            const int count = [&] {
                const StandardLocale standard;
                return std::sscanf(figureText(key).c_str(), "%f %f %f", &x, &y, &z);
            }();
            const bool local = std::atoi(figureText(key + "Local").c_str()) != 0;
            if (count > 0)
                walk.hands[side] =
                    PlainWalk::Force{count == 1 ? PlainWalk::Vector{0, x, 0} : PlainWalk::Vector{x, y, z}, local};
        }
        return walk;
    }

    // The same in double. Weights are converted here anew, from their grams.
    NaiveLoads toldExactly() const
    {
        const auto exact = [](const PlainWalk::Vector& v) { return Exact{double(v.x), double(v.y), double(v.z)}; };
        const PlainWalk walk = told();
        const Exact gravity = exact(walk.gravity);
        const auto weight = [&](float grams) { return gravity * (double(grams) * 0.001 / 980.665); };
        NaiveLoads loads;
        for (const auto& [site, force] : walk.loads)
            loads.sites[site] = {exact(force->load), force->local};
        for (int i = 0; i < analysis->getNumLoads(); ++i) {
            qcSite* site = analysis->getNthLoadSite(i);
            if (std::strcmp(analysis->getLoadType(site), "weight") == 0)
                loads.sites[site].load = weight(analysis->getSiteWeight(site));
        }
        for (int i = 0; i < analysis->getNumLoadsWithOffset(); ++i) {
            const loadWithOffset& record = *analysis->getNthLoadWithOffset(i);
            const bool isWeight = std::strcmp(record.type, "weight") == 0;
            loads.displaced.push_back({record.site,
                                       exactly(record.offset),
                                       {isWeight ? weight(record.mass) : exactly(record.load), record.local}});
        }
        for (const auto& [joint, torque] : walk.torques)
            loads.torques[joint] = exact(torque);
        for (const qcSide side : {qcRight, qcLeft})
            if (walk.hands[side])
                loads.hands[side] = NaiveLoads::Force{exact(walk.hands[side]->load), walk.hands[side]->local};
        return loads;
    }

    template <class Visit> void forEachJoint(Visit visit) const
    {
        for (qList* node = figure->getJoints(); node; node = qList::iterator(figure->getJoints(), node))
            visit(static_cast<qcJoint*>(node->getData()));
    }

private:
    std::string figureText(const std::string& key) const
    {
        qcValue value;
        char* text = nullptr;
        return figure->getProperty(key.c_str(), &value) && value.get(text) ? text : "";
    }
};

class SameBitsOfScene : public SameBits, public ::testing::WithParamInterface<const char*> {
protected:
    void SetUp() override { open(GetParam()); }
};
INSTANTIATE_TEST_SUITE_P(, SameBitsOfScene, ::testing::ValuesIn(kScenes),
                         [](const auto& scene) { return std::string(scene.param); });

// ---- The committed results -----------------------------------------------------------------------

// Writes a new file. @return what went wrong; empty: nothing
std::string write(const ResultLines& lines, const std::string& folder, const std::string& name)
{
    const std::string path = folder + "/" + name + ".results.txt";
    std::string text =
        "# Results of " + name + ".json, written by the test SameBits; README.md tells how to read them.\n";
    for (const std::string& line : lines)
        text += line + "\n";
    if (std::filesystem::exists(path))
        return path + " is there already, and is not replaced";
    std::ofstream file(path, std::ios::binary);
    file << text << std::flush;
    return file ? "" : path + " cannot be written";
}

TEST_P(SameBitsOfScene, EveryNumberIsTheCommittedOne)
{
    const ResultLines lines = allLines();
    if (const char* folder = std::getenv("SSTR_WRITE_BITS")) {
        EXPECT_EQ(write(lines, folder, GetParam()), "");
    }
    EXPECT_THAT(differences(readLines(kFolder + "/" + GetParam() + ".results.txt"), lines), IsEmpty());
}

// One number for all of them, so that two machines can be compared by word of mouth.
TEST_F(SameBits, TheHashInTheDocumentationIsThatOfAllNumbers)
{
    std::uint64_t hash = kHashStart;
    for (const char* name : kScenes) {
        open(name);
        hash = hashOf(allLines(), hash);
    }
    char text[20];
    std::snprintf(text, sizeof text, "0x%016" PRIx64, hash);
    std::printf("    hash of all results %s\n", text);
    RecordProperty("hash", text);
    EXPECT_THAT(contentOf(SSTR_SOURCE_DIR "/docs/reproducibility.md"), HasSubstr(text));
}

// The scenes reach what they are made for: each way to stand on two feet, shares that are not trivial,
// loads of every type, joints without a result, a placeholder, a not-a-number, numbers below the normal ones.
TEST_F(SameBits, TheCommittedResultsHoldEveryKind)
{
    std::string all;
    for (const char* name : kScenes)
        for (const std::string& line : readLines(kFolder + "/" + name + ".results.txt"))
            all += line + " \n";
    for (const char* part : {" global ", " local ", " weight ", "\nload ", "\noffset-load ", "\ntorque ", " none ",
                             " nan ", " -0x0p+0 ", " 0x1.4f8b58p-17 0x1.4f8b58p-17 0x1.4f8b58p-17 ", "p-149 "})
        EXPECT_THAT(all, HasSubstr(part));

    int supports[3] = {};
    for (const char* name : kScenes) {
        open(name);
        compute(kComputations[0]);
        qVector gravity, force, moment, load;
        analysis->getGravity(gravity);
        analysis->getJointForces(human->getWaistJoint(), force, moment);
        const bool hasLoad = analysis->getSiteLoad(site("lower_torso.h_point"), load) != 0;
        const NaiveLegs<float> legs(human, gravity, {force[0], force[1], force[2]}, {moment[0], moment[1], moment[2]},
                                    hasLoad ? &load : nullptr);
        ++supports[legs.support];
    }
    EXPECT_THAT(supports, ::testing::Each(::testing::Gt(0)));
}

// ---- Where the numbers come from -----------------------------------------------------------------

// Every result of a walk without a stop segment lies within its rounding bound of the sum, in double, of all
// that lies beyond the joint.
TEST_P(SameBitsOfScene, EveryWalkIsWithinItsRoundingBoundOfTheDirectSum)
{
    qVector vector;
    analysis->getGravity(vector);
    const Exact gravity = exactly(vector);
    const NaiveLoads loads = toldExactly();
    int compared = 0;
    for (const Computation& run : kComputations) {
        if (run.strategy == qmStaticStrength::HandsAndKnees)
            continue;   // its walks have stop segments
        SCOPED_TRACE(run.name);
        compute(run);
        NaiveWalk walk(human, gravity, loads);
        if (run.effective == qmStaticStrength::RightFoot || run.effective == qmStaticStrength::LeftFoot)
            walk.standOn(run.effective == qmStaticStrength::RightFoot ? qcRight : qcLeft);
        else
            walk.upperBody();
        if (run.effective == qmStaticStrength::SittingNoFeet)
            walk.hangingLegs();
        for (const auto& [joint, expected] : walk.results()) {
            SCOPED_TRACE(joint->getName());
            ASSERT_FALSE(expected.unsure);   // 0.01 kgf and N·m are far enough from every result
            const Result got = resultOf(joint->getName());
            EXPECT_EQ(got.status, expected.stored ? 1 : 0);
            for (const auto& [result, sum, bound] :
                 {std::tuple(exactly(got.force), expected.force, expected.forceBound),
                  std::tuple(exactly(got.moment), expected.moment, expected.momentBound)}) {
                const double within = roundingBound(1, bound / (2 * kRounding));
                EXPECT_NEAR(result.x, sum.x, within);
                EXPECT_NEAR(result.y, sum.y, within);
                EXPECT_NEAR(result.z, sum.z, within);
            }
            ++compared;
        }
    }
    EXPECT_GE(compared, 8 * 9);   // eight runs, nine joints from the small body's waist up
}

// Every strategy's every result and share has the bits of a transcription of its steps.
TEST_P(SameBitsOfScene, EveryResultHasTheBitsOfATranscription)
{
    for (const Computation& run : kComputations) {
        const ResultLines computed = linesOf(run);
        StrategyTranscription transcription(human, told());
        transcription.follow(run.effective);
        PlainWalk& found = transcription.found;
        if (run.strategy == qmStaticStrength::Walking) {
            // the less bent knee carries all, or each knee a half
            found.rightHip = run.effective == qmStaticStrength::TwoFeet     ? 0.5f
                             : run.effective == qmStaticStrength::RightFoot ? 1.0f
                                                                            : 0.0f;
            found.leftHip = 1 - found.rightHip;
        }

        ResultLines transcribed = {std::string(run.name) + " shares"};
        for (const float share : {found.leftHip, found.rightHip, found.leftClavicle, found.rightClavicle})
            transcribed[0] += " " + hexadecimal(share);
        forEachJoint([&](qcJoint* joint) {
            std::string line = std::string(run.name) + " " + joint->getName();
            const auto result = found.results.find(joint);
            if (result == found.results.end())
                line += " none";
            else
                for (const PlainWalk::Vector& v : {result->second.force, result->second.moment})
                    line += " " + hexadecimal(v.x) + " " + hexadecimal(v.y) + " " + hexadecimal(v.z);
            transcribed.push_back(line);
        });
        EXPECT_THAT(differences(transcribed, computed), IsEmpty());
    }
}

// Walking has, joint by joint, the bits of the support that it finds.
TEST_P(SameBitsOfScene, WalkingGivesTheResultsOfTheSupportItFinds)
{
    for (const Computation& run : kComputations) {
        if (run.strategy != qmStaticStrength::Walking)
            continue;
        ResultLines walking = linesOf(run);
        ResultLines standing = linesOf({run.name, run.effective, run.effective});
        walking.erase(walking.begin());   // the shares
        standing.erase(standing.begin());
        EXPECT_THAT(walking, ::testing::ElementsAreArray(standing)) << run.name;
    }
}

// ---- The comparison itself -----------------------------------------------------------------------

// A last bit of a moment flipped, found where it is: once, with run, joint and both values.
TEST_F(SameBits, OneFlippedLastBitIsFound)
{
    open("small_body");
    const Computation& run = kComputations[0];
    const ResultLines before = linesOf(run);
    Result knee = resultOf("left_knee");
    ASSERT_EQ(knee.status, 1);
    const float was = knee.moment[0];
    std::uint32_t bits;
    std::memcpy(&bits, &was, sizeof bits);
    bits ^= 1u;
    std::memcpy(&knee.moment[0], &bits, sizeof bits);
    analysis->setFMonJoint(joint("left_knee"), knee.force, knee.moment);

    const std::vector<std::string> found = differences(before, resultLines(run.name, *analysis));
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_THAT(found[0], HasSubstr("two-feet left_knee: "));
    EXPECT_THAT(found[0], HasSubstr(" " + hexadecimal(was) + " "));
    EXPECT_THAT(found[0], HasSubstr(" " + hexadecimal(knee.moment[0]) + " "));
    EXPECT_NE(hashOf(before), hashOf(resultLines(run.name, *analysis)));
}

TEST_F(SameBits, ASignOfZeroIsADifferenceAndAKindOfNotANumberIsNone)
{
    constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(hexadecimal(-kNotANumber), hexadecimal(kNotANumber));
    EXPECT_NE(hexadecimal(-0.0f), hexadecimal(0.0f));
    EXPECT_EQ(hexadecimal(std::numeric_limits<float>::denorm_min()), "0x1p-149");
}

TEST_F(SameBits, AResultTooManyTooFewOrTwiceIsFound)
{
    const std::string waist = "sitting waist 0x1p+0 0x0p+0", knee = "sitting left_knee ";
    EXPECT_THAT(differences({waist, knee + "none"}, {waist, knee + "0x1p+0 0x0p+0"}),
                ElementsAre("sitting left_knee: committed none, computed 0x1p+0 0x0p+0"));
    EXPECT_THAT(differences({waist, knee + "none"}, {waist}),
                ElementsAre("sitting left_knee: committed none, not computed"));
    EXPECT_THAT(differences({waist}, {waist, knee + "none"}),
                ElementsAre("sitting left_knee: not committed, computed none"));
    EXPECT_THAT(differences({waist, waist}, {waist}), ElementsAre("sitting waist: committed twice"));
    EXPECT_THAT(differences({waist}, {waist}), IsEmpty());
}

// Known values of 64-bit FNV-1a: of "" its start, of "a\n" by hand
//   ((start ^ 0x61) · p ^ 0x0a) · p mod 2^64,  p = 2^40 + 0x1b3
TEST_F(SameBits, TheHashIsFnv1aOfTheLines)
{
    EXPECT_EQ(hashOf({}), 0xcbf29ce484222325u);
    EXPECT_EQ(hashOf({"a"}), 0x089bdc07b544e7b2u);
    EXPECT_EQ(hashOf({"b"}, hashOf({"a"})), hashOf({"a", "b"}));
}

// Writing new files leaves alone what is there.
TEST_F(SameBits, WritingNeverReplacesAFile)
{
    const TemporaryFolder folder;
    EXPECT_EQ(write({"a b 0x1p+0"}, folder.path(), "new"), "");
    EXPECT_THAT(write({"a b 0x1p+1"}, folder.path(), "new"), HasSubstr("is not replaced"));
    EXPECT_THAT(readLines(folder.file("new.results.txt")), ElementsAre("a b 0x1p+0"));
    EXPECT_THAT(write({}, folder.file("absent"), "new"), HasSubstr("cannot be written"));
}

}   // namespace
