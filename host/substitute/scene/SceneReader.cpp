// Scene reader.
#include "SceneReader.h"

#include "AtomicFile.h"
#include "Files.h"
#include "InputError.h"
#include "PosedFigure.h"
#include "SceneMember.h"
#include "ValueJson.h"

#include <array>
#include <filesystem>

namespace {

// The strategies as files name them and as the figure's property holds them.
constexpr const char* kStrategyKey = "SSTR_Strategy";
const struct {
    const char* name;
    const char* stored;
} kStrategies[] = {{"two-feet", "Two Feet"},    {"right-foot", "Right Foot"}, {"left-foot", "Left Foot"},
                   {"walking", "Walking"},      {"sitting", "Sitting"},       {"sitting-no-feet", "Sitting, No Feet"},
                   {kUnstoredStrategy, nullptr}};

void requireThisFormat(const JsonAt& at)
{
    if (!at.isObject())
        at.failExpected("a scene, an object with \"format\": \"" + std::string(kSceneFormat) + "\"");
    const JsonAt format = at.member("format");
    if (!format.isText() || format.text() != kSceneFormat)
        format.failExpected("\"" + std::string(kSceneFormat) + "\"");
    const JsonAt version = at.member("version");
    const double number = version.number("the version of the format, a whole number");
    if (number > kSceneVersion)
        version.fail("version " + numberText(number) + " is newer than version " + std::to_string(kSceneVersion)
                     + ", the newest that this program can read. Use a newer program.");
    if (number != kSceneVersion)
        version.failExpected("version " + std::to_string(kSceneVersion));
}

std::array<double, 3> threeNumbers(const JsonAt& at)
{
    if (!at.isArray() || at.size() != 3)
        at.failExpected("an array of 3 numbers");
    return {at.item(0).number(), at.item(1).number(), at.item(2).number()};
}

void setAngle(const JsonAt& at, qcJointImp& joint, int angle, double unit, const char* expected)
{
    const double radians = at.number(expected) * unit;
    const std::string problem = joint.angleProblem(angle, radians);
    if (!problem.empty())
        at.fail("joint " + std::string(joint.getName()) + ": " + problem + ".");
    joint.setAngle(angle, radians);
}

}   // namespace

std::unique_ptr<qcScene> SceneReader::read(const std::string& path)
{
    const Json json = parseJson(readWholeFile(path), path);
    auto scene = std::make_unique<qcScene>();
    const std::string folder = std::filesystem::path(linkTarget(path)).parent_path().string();
    SceneReader(*scene, folder).readScene(JsonAt(json, path));
    return scene;
}

void SceneReader::readScene(const JsonAt& at)
{
    requireThisFormat(at);
    at.requireKeys({"format", "version", "gravity_cm_per_s2", "properties", "humans"});
    if (const auto gravity = at.find("gravity_cm_per_s2"))
        scene.setGravity(gravity->vector());
    if (const auto properties = at.find("properties"))
        setPropertiesFrom(*properties, scene, false);
    if (const auto humans = at.find("humans"))
        for (const JsonAt& human : humans->elements("an array of humans"))
            readHuman(human);
}

void SceneReader::readHuman(const JsonAt& at)
{
    at.requireKeys({"name", "figure_name", "figure", "roles", "posed_figure", "sex", "stature_cm", "mass_kg", "mass_g",
                    "segment_masses_g", "posture_degrees", "posture_radians", "root", "strategy", "properties"});
    qcScene::Member& member = addMember(at);
    const PartNames names(*member.figure);
    readScale(at, *member.human);
    if (const auto masses = at.find("segment_masses_g"))
        readMasses(*masses, names);
    if (const auto posture = at.find("posture_degrees"))
        readPosture(*posture, names, kRadiansPerDegree);
    if (const auto posture = at.find("posture_radians"))
        readPosture(*posture, names, 1);
    if (const auto root = at.find("root"))
        readRoot(*root, *member.figure);
    if (const auto properties = at.find("properties"))
        readProperties(*properties, names, *member.human);
    if (const auto strategy = at.find("strategy"))
        readStrategy(*strategy, member);
}

qcScene::Member& SceneReader::addMember(const JsonAt& at)
{
    const auto figure = at.find("figure"), roles = at.find("roles"), posed = at.find("posed_figure");
    const auto name = at.find("name"), figureName = at.find("figure_name");
    if (!figure == !posed)
        at.fail("expected one of the keys \"figure\" and \"posed_figure\", found "
                + std::string(figure ? "both." : "none."));
    if (roles && !figure)
        roles->fail("a posed figure names its roles itself; expected no roles file.");

    const std::string humanName = name ? name->text() : "";
    const std::string wanted = figureName ? figureName->text() : humanName;
    const JsonAt& where = name ? *name : at;
    qcScene::Member* member = nullptr;
    try {
        if (figure)
            member = qcScene::Member::addFromFile(scene, fileOf(*figure), roles ? fileOf(*roles) : "", wanted);
    } catch (const DuplicateName& problem) {
        where.fail(problem.what());
    }
    if (posed) {
        std::unique_ptr<qcFigure> read = readPosedFigure(*posed);
        try {
            member = qcScene::Member::addPosed(scene, std::move(read), wanted);
        } catch (const DuplicateName& problem) {
            where.fail(problem.what());
        }
    }
    if (!member)
        (figure ? *figure : at).fail("this figure cannot be used; the message before this one says why.");
    if (figureName && name) {
        if (scene.findHuman(humanName.c_str()))
            name->fail("the scene has a human of this name already.");
        member->human->setName(humanName.c_str());
    }
    return *member;
}

std::string SceneReader::fileOf(const JsonAt& at) const
{
    const std::string name = at.text("the path of a file");
    if (name.empty())
        at.fail("expected the path of a file, found an empty text.");
    std::string path = (std::filesystem::path(folder) / name).string();   // an absolute one stays itself
    if (!fileExists(path))
        at.fail("there is no file " + inQuotes(path) + "; paths are relative to the scene file's folder.");
    return path;
}

void SceneReader::readScale(const JsonAt& at, qcHuman& human)
{
    const auto sex = at.find("sex"), stature = at.find("stature_cm");
    const auto kilograms = at.find("mass_kg"), grams = at.find("mass_g");
    if (kilograms && grams)
        grams->fail("expected one of the keys \"mass_kg\" and \"mass_g\", found both.");
    const auto& mass = kilograms ? kilograms : grams;
    if (!sex && !stature && !mass)
        return;
    qcAnthroScale* scale = human.initAnthroscale(nullptr);
    if (!scale)
        at.fail("its figure cannot be scaled: expected no sex, stature or mass.");

    constexpr const char* kRefused = "this cannot be applied to the figure; the message before this one says why.";
    if (sex) {
        const std::string text = sex->text("\"male\" or \"female\"");
        if (text != "male" && text != "female")
            sex->failExpected("\"male\" or \"female\"");
        if (!scale->setSex(text == "female" ? qcFemale : qcMale))
            sex->fail(kRefused);
    }
    if (stature && !scale->setStature(stature->number("a stature in cm")))
        stature->fail(kRefused);
    if (mass && !scale->setMass(mass->number("a body mass") * (kilograms ? kGramsPerKilogram : 1)))
        mass->fail(kRefused);
}

void SceneReader::readMasses(const JsonAt& at, const PartNames& names)
{
    for (const JsonAt::Member& mass : at.members("an object {segment: grams}"))
        names.segment(mass.at, mass.key)->setMass(mass.at.real("a mass in g"));
}

void SceneReader::readPosture(const JsonAt& at, const PartNames& names, double unit)
{
    const bool degrees = unit != 1;
    const char* expected = degrees ? "an angle in degrees" : "an angle in radians";
    const char* several =
        degrees ? "an angle in degrees or an array of them" : "an angle in radians or an array of them";
    for (const JsonAt::Member& entry : at.members("an object {joint: angles}")) {
        qcJointImp& joint = *names.joint(entry.at, entry.key);
        if (!entry.at.isArray()) {
            setAngle(entry.at, joint, 1, unit, several);
            continue;
        }
        const auto values = entry.at.elements();
        if (values.size() > static_cast<std::size_t>(joint.getNumAngles()))
            entry.at.fail("joint " + std::string(joint.getName()) + " has " + std::to_string(joint.getNumAngles())
                          + (joint.getNumAngles() == 1 ? " angle" : " angles") + ", found "
                          + std::to_string(values.size()) + ".");
        for (std::size_t i = 0; i < values.size(); ++i)
            setAngle(values[i], joint, static_cast<int>(i) + 1, unit, expected);
    }
}

void SceneReader::readRoot(const JsonAt& at, qcFigure& figure)
{
    constexpr const char* kStanding = "stand on the floor";
    constexpr const char* kExpected = "\"stand on the floor\" or an object";
    if (at.isText()) {
        if (at.text() != kStanding)
            at.failExpected(kExpected);
        return figure.standOnFloor();
    }
    if (!at.isObject())
        at.failExpected(kExpected);
    at.requireKeys({"stand_on_floor", "position_cm", "rotation_degrees"});
    const auto standing = at.find("stand_on_floor");
    const auto position = at.find("position_cm"), rotation = at.find("rotation_degrees");
    const auto p = position ? threeNumbers(*position) : std::array<double, 3>{0, 0, 0};
    const auto r = rotation ? threeNumbers(*rotation) : std::array<double, 3>{0, 0, 0};
    figure.setRoot(p[0], p[1], p[2], r[0], r[1], r[2]);
    if (standing && standing->boolean())
        figure.standOnFloor();
}

void SceneReader::readProperties(const JsonAt& at, const PartNames& names, qcHuman& human)
{
    at.requireKeys({"human", "figure", "segments", "sites", "joints"});
    if (const auto own = at.find("human"))
        setPropertiesFrom(*own, human, false);
    if (const auto own = at.find("figure"))
        setPropertiesFrom(*own, *human.getFigure(), true);
    if (const auto parts = at.find("segments"))
        for (const JsonAt::Member& part : parts->members("an object {segment: properties}"))
            setPropertiesFrom(part.at, *names.segment(part.at, part.key), true);
    if (const auto parts = at.find("sites"))
        for (const JsonAt::Member& part : parts->members("an object {site key: properties}"))
            setPropertiesFrom(part.at, *names.site(part.at, part.key), true);
    if (const auto parts = at.find("joints"))
        for (const JsonAt::Member& part : parts->members("an object {joint: properties}"))
            setPropertiesFrom(part.at, *names.joint(part.at, part.key), true);
}

void SceneReader::readStrategy(const JsonAt& at, qcScene::Member& member)
{
    const std::string name = at.text("the name of a strategy");
    std::string known;
    for (const auto& strategy : kStrategies) {
        if (name != strategy.name) {
            known += (known.empty() ? "" : ", ") + std::string(strategy.name);
            continue;
        }
        if (strategy.stored)
            member.figure->setProperty(kStrategyKey, qcValue(strategy.stored));
        else
            member.unstoredStrategy = strategy.name;
        return;
    }
    at.failExpected("one of the strategies " + known);
}
