// Two-feet legs: laws that hold for bodies and loads of all kinds, every bit, and bodies that lack parts.
#include "TwoFeetLegsSupport.h"

#include "Chance.h"
#include "NaiveAnalysis.h"

#include <functional>
#include <map>
#include <utility>

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

const char* const kLoadedSegments[] = {"lower_torso", "left_upper_leg", "left_lower_leg", "right_upper_leg",
                                       "right_lower_leg"};

std::array<float, 3> narrowed(const Vector& v)
{
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}
qVector asVector(const std::array<float, 3>& v)
{
    return {v[0], v[1], v[2]};
}

/// What a body is told: all that the method reads beside the figure.
struct Input {
    struct Load {
        std::array<float, 3> force;   // kgf
        int kind;
    };
    std::array<float, 3> gravity{0, -980.665f, 0}, waist{0, -32, 0};
    float left = 0.25f, right = 0.75f;
    std::vector<std::pair<std::string, Load>> loads;   // by site key
};

Input randomInput(Chance& chance)
{
    Input input;
    if (chance.coin())
        input.gravity = narrowed(chance.vector(1500));
    input.waist = narrowed(chance.vector(60));
    input.left = static_cast<float>(chance.within(0, 1));
    input.right = static_cast<float>(chance.within(0, 1));
    for (const std::string segment : kLoadedSegments)
        for (const char* name : {"proximal", "distal", "pad", "strap"})
            if (chance.coin())
                input.loads.emplace_back(segment + "." + name,
                                         Input::Load{narrowed(chance.vector(30)), chance.coin() ? 1 : 0});
    return input;
}

void scatter(nlohmann::json& transform, Chance& chance)
{
    const SmallFigure::Rows axes = chance.axes();
    for (std::size_t i = 0; i < 3; ++i) {
        transform[i] = {axes[i][0], axes[i][1], axes[i][2], 0};
        transform[3][i] = transform[3][i].get<double>() + chance.within(-20, 20);
    }
}

// The small body with two more sites on every segment that counts, its frames, sites and masses as drawn.
SmallFigure randomBody(const std::string& name, Chance& chance)
{
    SmallFigure body = smallBody(name);
    for (const char* segment : kLoadedSegments)
        body.site(segment, "pad", {0, 60, 0}).site(segment, "strap", {0, 70, 0});
    for (nlohmann::json& segment : body.document()["segments"]) {
        scatter(segment["transform"], chance);
        segment["mass"] = chance.within(0, 15000);
        segment["com"] = chance.vector(20);
    }
    for (nlohmann::json& site : body.document()["sites"])
        scatter(site["transform"], chance);
    return body;
}

class TwoFeetBodies : public TwoFeetLegs {
protected:
    using Six = std::map<std::string, std::pair<std::array<float, 3>, std::array<float, 3>>>;

    Six run(const Input& input)
    {
        for (qList* node = nullptr; (node = qList::iterator(figure->getSites(), node));)
            analysis->removeLoad(static_cast<qcSite*>(node->getData()));
        analysis->setGravity(asVector(input.gravity));
        share(input.left, input.right);
        for (const auto& [key, load] : input.loads)
            analysis->setLoad(site(key), asVector(load.force), load.kind);
        legs(asVector(input.waist));
        Six results;
        for (const char* name : kSix) {
            const Result result = resultOf(name);
            EXPECT_EQ(result.status, 1);
            results[name] = {components(result.force), components(result.moment)};
        }
        return results;
    }
};

// ---- Mirror

std::string otherSide(const std::string& name)
{
    const std::string left = "left_", right = "right_";
    std::string other;
    for (std::size_t at = 0; at < name.size();) {
        const bool isLeft = name.compare(at, left.size(), left) == 0;
        if (isLeft || name.compare(at, right.size(), right) == 0) {
            other += isLeft ? right : left;
            at += (isLeft ? left : right).size();
        } else {
            other += name[at++];
        }
    }
    return other;
}

// A frame seen in the plane x = 0, its x axis turned round so that it stays right-handed.
nlohmann::json mirroredFrame(const nlohmann::json& frame)
{
    nlohmann::json mirrored = frame;
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            if ((row == 0) != (column == 0))
                mirrored[row][column] = -frame[row][column].get<double>();
    return mirrored;
}

SmallFigure mirroredBody(SmallFigure body, const std::string& name)
{
    SmallFigure mirrored = body;
    for (nlohmann::json& segment : mirrored.document()["segments"]) {
        const nlohmann::json& twin = part(body, "segments", "name", otherSide(segment["name"]));
        segment["transform"] = mirroredFrame(twin["transform"]);
        segment["mass"] = twin["mass"];
        segment["com"] = {-twin["com"][0].get<double>(), twin["com"][1], twin["com"][2]};
    }
    for (nlohmann::json& site : mirrored.document()["sites"])
        site["transform"] = mirroredFrame(part(body, "sites", "key", otherSide(site["key"]))["transform"]);
    mirrored.document()["name"] = name;
    for (nlohmann::json& joint : mirrored.document()["joints"])
        joint["full_name"] = name + "." + joint["name"].get<std::string>();
    return mirrored;
}

// Forces change the sign of x, moments those of y and z; shares change sides. In every bit but the sign of zeros:
// both sides are summed in the same order.
TEST_F(TwoFeetBodies, AMirroredBodyHasMirroredResults)
{
    for (unsigned seed = 1; seed <= 40 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(seed);
        const SmallFigure body = randomBody("man" + std::to_string(seed), chance);
        const Input input = randomInput(chance);
        load(body);
        const Six results = run(input);

        Input mirrored = input;
        std::swap(mirrored.left, mirrored.right);
        for (std::array<float, 3>* vector : {&mirrored.gravity, &mirrored.waist})
            (*vector)[0] = -(*vector)[0];
        for (auto& [key, load] : mirrored.loads) {
            key = otherSide(key);
            load.force[0] = -load.force[0];
        }
        load(mirroredBody(body, "mirrored" + std::to_string(seed)));
        for (const auto& [name, result] : run(mirrored)) {
            const auto& [force, moment] = results.at(otherSide(name));
            EXPECT_THAT(result.first, ElementsAre(-force[0], force[1], force[2])) << name;
            EXPECT_THAT(result.second, ElementsAre(moment[0], -moment[1], -moment[2])) << name;
        }
    }
}

// ---- Linearity

// Gravity, waist and loads doubled: every result is doubled, to the bit.
TEST_F(TwoFeetBodies, TwiceTheForcesAreTwiceTheResults)
{
    for (unsigned seed = 1; seed <= 20 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(seed);
        load(randomBody("man" + std::to_string(seed), chance));
        Input input = randomInput(chance);
        const auto twice = [](std::array<float, 3> v) { return std::array<float, 3>{2 * v[0], 2 * v[1], 2 * v[2]}; };
        Six doubled;
        for (const auto& [name, result] : run(input))
            doubled[name] = {twice(result.first), twice(result.second)};
        for (std::array<float, 3>* vector : {&input.gravity, &input.waist})
            *vector = twice(*vector);
        for (auto& [key, load] : input.loads)
            load.force = twice(load.force);
        EXPECT_EQ(run(input), doubled);
    }
}

// What two sets of loads and weights give together is the sum of what each gives alone. A result sums at most some 40
// terms: four loads of the torso and, doubled, two of each leg segment, of at most 52 kgf in each set; the waist's
// force, at most 104 in each; three weights of at most 15. All of it at levers of at most 200 cm.
TEST_F(TwoFeetBodies, ResultsOfTwoSetsOfLoadsAddUp)
{
    const double forces = 2 * (12 * 52 + 104) + 3 * 15;
    for (unsigned seed = 1; seed <= 20 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(seed);
        load(randomBody("man" + std::to_string(seed), chance));
        Input one = randomInput(chance);
        one.gravity = {0, -980.665f, 0};
        Input two = one;
        two.waist = narrowed(chance.vector(60));
        two.gravity = {0, 0, 0};   // the weights are in the first set
        two.loads.clear();
        for (const auto& [key, load] : one.loads)
            two.loads.emplace_back(key, Input::Load{narrowed(chance.vector(30)), load.kind});
        Input both = one;
        for (std::size_t i = 0; i < 3; ++i) {
            both.waist[i] += two.waist[i];
            for (std::size_t j = 0; j < both.loads.size(); ++j)
                both.loads[j].second.force[i] += two.loads[j].second.force[i];
        }
        const Six first = run(one), second = run(two);
        for (const auto& [name, result] : run(both))
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_NEAR(result.first[i], first.at(name).first[i] + second.at(name).first[i],
                            roundingBound(40, forces))
                    << name;
                EXPECT_NEAR(result.second[i], first.at(name).second[i] + second.at(name).second[i],
                            roundingBound(40, forces * 200 * S))
                    << name;
            }
    }
}

// ---- Bits

// The same steps, written down apart from the analysis.
class Transcription {
public:
    using Three = Triple<float>;

    Transcription(qcFigure* figure, const Input& input) : figure(figure), input(input)
    {
        const Weight torso = weightOf("lower_torso");
        const Three waist = at("lower_torso.distal"), Fw = {input.waist[0], input.waist[1], input.waist[2]};
        const Three hips[2] = {at("lower_torso.right_hip"), at("lower_torso.left_hip")};
        const float shares[2] = {input.right, input.left};
        const char* const sides[2] = {"right_", "left_"};
        for (const int side : {1, 0}) {
            const Three here = hips[side], there = hips[1 - side];
            Three F{}, M{}, H{};
            for (const char* name : {"proximal", "h_point", "center_of_mass", "balance_point", "pad", "strap"}) {
                const std::string key = std::string("lower_torso.") + name;
                if (const Input::Load* load = loadOn(key)) {
                    add(here, at(key), inWorld("lower_torso", *load), F, M);
                    H = H + inWorld("lower_torso", *load) * 0.5f;
                }
            }
            add(here, waist, Fw, F, M);
            add(here, torso.centre, torso.force * 0.5f, F, M);
            add(here, there, Fw * -shares[1 - side], F, M);
            add(here, there, torso.force * -0.5f, F, M);
            add(here, there, H * -0.5f, F, M);
            const Three hip = Fw * shares[side] + torso.force * 0.5f + H * -0.5f;
            const std::string prefix = sides[side];
            store(prefix + "hip", hip, M);
            const auto [knee, kneePlace] = legJoint(prefix + "knee", prefix + "upper_leg", hip, here);
            legJoint(prefix + "ankle", prefix + "lower_leg", knee, kneePlace);
        }
    }
    std::map<std::string, std::pair<std::array<float, 3>, std::array<float, 3>>> results;

private:
    struct Weight {
        Three force, centre;
    };
    static Three triple(const qVector& v) { return {v[0], v[1], v[2]}; }
    static void add(const Three& about, const Three& at, const Three& f, Three& F, Three& M)
    {
        F = F + f;
        M = M + cross(f, about - at) * static_cast<float>(double(980.665f) * 0.0001);
    }
    void store(const std::string& name, const Three& F, const Three& M)
    {
        results[name] = {{F.x, F.y, F.z}, {M.x, M.y, M.z}};
    }
    Three at(const std::string& key) const
    {
        const std::string full = std::string(figure->getName()) + "." + key;
        return triple(figure->findSiteByFullName(full.c_str())->getGlobalTransform().getTranslation());
    }
    static Three turned(const Three& v, const qMatrix& frame)
    {
        return triple(frame.getAxis(0)) * v.x + triple(frame.getAxis(1)) * v.y + triple(frame.getAxis(2)) * v.z;
    }
    Weight weightOf(const char* name) const
    {
        qcSegment* segment = figure->findSegment(name);
        const float factor = static_cast<float>(double(segment->getMass()) * 0.001 / double(980.665f));
        const qMatrix& frame = segment->getGlobalTransform();
        return {Three{input.gravity[0], input.gravity[1], input.gravity[2]} * factor,
                turned(triple(segment->getCenterOfMass()), frame) + triple(frame.getTranslation())};
    }
    const Input::Load* loadOn(const std::string& key) const
    {
        for (const auto& [loaded, load] : input.loads)
            if (loaded == key)
                return &load;
        return nullptr;
    }
    Three inWorld(const std::string& segment, const Input::Load& load) const
    {
        const Three force = {load.force[0], load.force[1], load.force[2]};
        return load.kind == 1 ? turned(force, figure->findSegment(segment.c_str())->getGlobalTransform()) : force;
    }
    std::pair<Three, Three> legJoint(const std::string& joint, const std::string& segment, const Three& in,
                                     const Three& inPlace)
    {
        const Three place = at(segment + ".distal");
        Three F{}, M{}, sum{};
        for (const char* name : {"pad", "strap"})
            if (const Input::Load* load = loadOn(segment + "." + name)) {
                add(place, at(segment + "." + name), inWorld(segment, *load), F, M);
                sum = sum + inWorld(segment, *load);
            }
        F = F + sum;
        add(place, inPlace, in, F, M);
        const Weight weight = weightOf(segment.c_str());
        add(place, weight.centre, weight.force, F, M);
        store(joint, F, M);
        return {F, place};
    }

    qcFigure* figure;
    const Input& input;
};

TEST_F(TwoFeetBodies, RandomBodiesAgreeWithTheTranscriptionInAllBits)
{
    int local = 0, global = 0;
    for (unsigned seed = 1; seed <= 200 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Chance chance(seed);
        load(randomBody("man" + std::to_string(seed), chance));
        const Input input = randomInput(chance);
        for (const auto& [key, load] : input.loads)
            ++(load.kind ? local : global);
        EXPECT_EQ(run(input), Transcription(figure, input).results);
    }
    EXPECT_GT(local, 200);
    EXPECT_GT(global, 200);
}

// A second run changes no bit, and no property but the six is written.
TEST_F(TwoFeetBodies, OnlyTheSixResultsAreWritten)
{
    Chance chance(1);
    load(randomBody("man", chance));
    const Input input = randomInput(chance);
    run(input);
    const std::string before = six();
    legs();
    EXPECT_EQ(six(), before);

    for (const char* name : kSix)
        joint(name)->removeProperty("SSTR_Force_Moment");
    const std::string without = everything();
    legs();
    EXPECT_EQ(six(), before);
    for (const char* name : kSix)
        joint(name)->removeProperty("SSTR_Force_Moment");
    EXPECT_EQ(everything(), without);
}

// ---- Places

// Hips and waist lie where their sites on the lower torso lie, knees on the upper leg, ankles on the lower leg; second
// transforms, and where other sites lie, do not count.
TEST_F(TwoFeetBodies, JointsLieWhereTheirInnerSitesLie)
{
    load(smallBody());
    legs({3, -32, 5});
    const std::string before = six();
    SmallFigure moved = smallBody("moved");
    for (const char* key :
         {"l5.proximal", "right_upper_leg.proximal", "left_upper_leg.proximal", "right_lower_leg.proximal",
          "left_lower_leg.proximal", "right_foot.proximal", "left_foot.proximal", "lower_torso.h_point"})
        moveSite(moved, key, {77, -55, 33});
    for (nlohmann::json& one : moved.document()["sites"])
        one["second_transform"][3] = {-5, 6, 7, 1};
    load(moved);
    legs({3, -32, 5});
    EXPECT_EQ(six(), before);
}

// ---- Missing parts

TEST_F(TwoFeetBodies, AMissingPartIsNamedAndNothingIsWritten)
{
    struct Case {
        std::string what;
        std::vector<std::string> named;
        std::function<void(SmallFigure&)> take;
    };
    std::vector<Case> cases;
    for (const std::string name : {"lower_torso", "right_upper_leg", "right_lower_leg", "left_upper_leg",
                                   "left_lower_leg", "left_foot", "right_foot"})
        cases.push_back({"segment " + name, {name}, nullptr});
    for (const std::string name : {"right_upper_leg", "right_lower_leg", "left_upper_leg", "left_lower_leg"})
        for (const std::string end : {".proximal", ".distal"})
            cases.push_back({"site " + name + end, {name + end}, nullptr});
    cases.push_back({"waist", {"waist"}, [](SmallFigure& body) { body.document()["waist"] = nullptr; }});
    cases.push_back({"waist elsewhere", {"waist"}, [](SmallFigure& body) { body.waist("t8_l5"); }});
    for (const std::string side : {"left", "right"})
        for (const std::string role : {"hip", "knee", "ankle"}) {
            cases.push_back(
                {side + " " + role, {side, role}, [=](SmallFigure& body) { body.document()[side][role] = nullptr; }});
            cases.push_back({side + " " + role + " elsewhere", {side, role}, [=](SmallFigure& body) {
                                 body.role(side, role, side + "_wrist");
                             }});
        }

    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(cases[i].what);
        SmallFigure body = smallBody("man" + std::to_string(i));
        if (cases[i].take)
            cases[i].take(body);
        load(body);
        if (cases[i].what.rfind("segment ", 0) == 0)
            segment(cases[i].what.substr(8))->setName("other");
        if (cases[i].what.rfind("site ", 0) == 0)
            site(cases[i].what.substr(5))->setName("other");
        const std::string before = everything();
        legs();
        const std::vector<MessageLog::Message> messages = log.take();
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0].kind, qcError);
        EXPECT_THAT(messages[0].text, StartsWith("StaticStrength ERROR: "));
        EXPECT_THAT(messages[0].text, HasSubstr(": missing "));
        for (const std::string& name : cases[i].named)
            EXPECT_THAT(messages[0].text, HasSubstr(name));
        EXPECT_EQ(everything(), before);
    }
}

TEST_F(TwoFeetBodies, AllMissingPartsAreNamedAtOnceAndEarlierResultsStay)
{
    SmallFigure body = smallBody();
    body.document()["left"]["knee"] = nullptr;
    load(body);
    for (const char* name : kSix)
        analysis->setFMonJoint(joint(name), {1, 2, 3}, {4, 5, 6});
    const std::string before = six();
    segment("left_foot")->setName("other");
    segment("right_lower_leg")->setName("another");
    legs({0, -32, 0});
    const std::vector<std::string> texts = log.takeTexts();
    ASSERT_EQ(texts.size(), 1u);
    for (const char* name : {"left_foot", "right_lower_leg", "left knee"})
        EXPECT_THAT(texts[0], HasSubstr(name));
    for (const char* name : {"right_foot", "right_upper_leg", "lower_torso", "waist", "right hip"})
        EXPECT_THAT(texts[0], Not(HasSubstr(name)));
    EXPECT_EQ(six(), before);
}

}   // namespace
