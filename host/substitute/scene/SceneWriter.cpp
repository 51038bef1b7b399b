// Scene writer.
#include "SceneWriter.h"

#include "AtomicFile.h"
#include "Files.h"
#include "InputError.h"
#include "PosedFigure.h"
#include "SceneMember.h"
#include "ValueJson.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <optional>

namespace {

// For finite numbers.
bool sameBits(double a, double b)
{
    return a == b && std::signbit(a) == std::signbit(b);
}

double numberOf(const char* first, const char* last)
{
    double value = 0;
    std::from_chars(first, last, value);
    return value;
}

// The number with the fewest decimal digits that a reader, value · unit, turns into the very same
// double; nothing when there is none: the products of all doubles leave gaps.
std::optional<double> inUnit(double value, double unit)
{
    constexpr int kMostDigits = 17;   // enough to tell any two doubles apart
    const double quotient = value / unit;
    for (int digits = 1; digits <= kMostDigits; ++digits) {
        char text[32];
        const auto end = std::to_chars(text, text + sizeof text, quotient, std::chars_format::general, digits);
        const double rounded = numberOf(text, end.ptr);
        if (sameBits(rounded * unit, value))
            return rounded;
    }
    for (const double neighbour : {std::nextafter(quotient, HUGE_VAL), std::nextafter(quotient, -HUGE_VAL)})
        if (sameBits(neighbour * unit, value))
            return neighbour;
    return std::nullopt;
}

// A float as the shortest decimal that reads, by way of double, as the very same float.
Json shortest(float value)
{
    if (!std::isfinite(value))
        throw InputError("a number that is not finite cannot be written.");
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value);
    const double number = numberOf(text, end.ptr);
    return Json::ofNumber(static_cast<float>(number) == value ? number : double(value));
}

Json threeJson(const double numbers[3])
{
    return Json::array({Json::ofNumber(numbers[0]), Json::ofNumber(numbers[1]), Json::ofNumber(numbers[2])});
}

bool allZero(const double numbers[3])
{
    return sameBits(numbers[0], 0) && sameBits(numbers[1], 0) && sameBits(numbers[2], 0);
}

// Relative to a folder. The file's own name stays as it is, also where it is a link: a figure's roles
// file stands beside that name.
std::string relativePath(const std::string& path, const std::string& folder)
{
    const std::filesystem::path file = path;
    std::error_code problem;
    const std::filesystem::path relative =
        std::filesystem::relative(file.parent_path(), folder.empty() ? "." : folder, problem);
    if (problem || relative.empty())
        return path;
    return relative == "." ? file.filename().string() : (relative / file.filename()).string();
}

// An object's properties, and null for each that it had when it was loaded and has no more.
Json changedProperties(const qcObject& object, const AsLoaded& loaded)
{
    Json json = propertiesJson(object, object.getFullName());
    const auto first = loaded.properties.lower_bound({&object, ""});
    for (auto property = first; property != loaded.properties.end() && property->first == &object; ++property)
        if (!json.find(property->second))
            json.add(property->second, Json());
    return json;
}

}   // namespace

std::string SceneWriter::text(qcScene& scene, const std::string& path)
{
    const std::string folder = std::filesystem::path(linkTarget(path)).parent_path().string();
    Json json = Json::object();
    json.add("format", Json::ofText(kSceneFormat));
    json.add("version", Json::ofNumber(kSceneVersion));
    std::string where = "gravity";
    try {
        const qVector& gravity = scene.getGravity();
        json.add("gravity_cm_per_s2", Json::array({shortest(gravity[0]), shortest(gravity[1]), shortest(gravity[2])}));
        where = "scene";
        if (scene.getNumProperties() > 0)
            json.add("properties", propertiesJson(scene, "scene"));
        Json humans = Json::array();
        std::set<std::string> names;
        for (const auto& member : scene.members) {
            where = "human " + inQuotes(member->human->getName());
            for (const std::string& name : std::set<std::string>{member->human->getName(), member->figure->getName()})
                if (!names.insert(name).second)
                    throw InputError("another human or its figure has the name " + inQuotes(name) + " too.");
            humans.add(humanJson(*member, folder));
        }
        json.add("humans", std::move(humans));
        where = "a name";
        return jsonText(json);
    } catch (const InputError& problem) {
        throw InputError(path + ": the scene cannot be saved: " + where + ": " + problem.what());
    }
}

Json SceneWriter::humanJson(qcScene::Member& member, const std::string& folder)
{
    requireLoadedNames(member);
    const PartNames names(*member.figure);
    Json json = Json::object();
    json.add("name", Json::ofText(member.human->getName()));
    if (std::strcmp(member.human->getName(), member.figure->getName()) != 0)
        json.add("figure_name", Json::ofText(member.figure->getName()));
    addFigure(json, member, folder);
    addScale(json, *member.human);
    addMasses(json, *member.figure, names);
    addPosture(json, member, names);
    addRoot(json, *member.figure);
    if (!member.unstoredStrategy.empty())
        json.add("strategy", Json::ofText(member.unstoredStrategy));
    addProperties(json, member, names);
    return json;
}

void SceneWriter::addFigure(Json& json, const qcScene::Member& member, const std::string& folder)
{
    if (member.figurePath.empty()) {
        json.add("posed_figure", member.posed);
        return;
    }
    json.add("figure", Json::ofText(relativePath(member.figurePath, folder)));
    if (!member.rolesPath.empty())
        json.add("roles", Json::ofText(relativePath(member.rolesPath, folder)));
}

void SceneWriter::addScale(Json& json, qcHuman& human)
{
    const qcAnthroScale* scale = human.getAnthroscale();
    if (!scale)
        return;
    if (scale->hasSex())
        json.add("sex", Json::ofText(scale->getSex() == qcFemale ? "female" : "male"));
    if (scale->hasStature())
        json.add("stature_cm", Json::ofNumber(scale->getStature()));
    if (scale->hasMass()) {
        if (const auto kilograms = inUnit(scale->getMass(), kGramsPerKilogram))
            json.add("mass_kg", Json::ofNumber(*kilograms));
        else
            json.add("mass_g", Json::ofNumber(scale->getMass()));
    }
}

void SceneWriter::addMasses(Json& json, const qcFigure& figure, const PartNames& names)
{
    Json masses = Json::object();
    forEachIn<qcSegmentImp>(figure.getSegments(), [&](const qcSegmentImp& segment) {
        if (segment.hasOwnMass())
            masses.add(names.of(segment), shortest(segment.getMass()));
    });
    if (!masses.items().empty())
        json.add("segment_masses_g", std::move(masses));
}

// Joints with an angle that differs from the loaded one; in radians where degrees cannot tell an angle.
void SceneWriter::addPosture(Json& json, const qcScene::Member& member, const PartNames& names)
{
    Json inDegrees = Json::object(), inRadians = Json::object();
    std::size_t index = 0;
    forEachIn<qcJointImp>(member.figure->getJoints(), [&](const qcJointImp& joint) {
        const std::vector<double>& loaded = member.loaded.angles[index++];
        Json degrees = Json::array(), radians = Json::array();
        bool changed = false;
        for (int i = 1; i <= joint.getNumAngles(); ++i) {
            const double angle = joint.getAngleExactly(i);
            changed = changed || !sameBits(angle, loaded[static_cast<std::size_t>(i - 1)]);
            radians.add(Json::ofNumber(angle));
            if (const auto value = inUnit(angle, kRadiansPerDegree))
                degrees.add(Json::ofNumber(*value));
        }
        if (!changed)
            return;
        const bool exact = degrees.items().size() == radians.items().size();
        Json& angles = exact ? degrees : radians;
        (exact ? inDegrees : inRadians).add(names.of(joint), joint.getNumAngles() == 1 ? angles.items()[0] : angles);
    });
    if (!inDegrees.items().empty())
        json.add("posture_degrees", std::move(inDegrees));
    if (!inRadians.items().empty())
        json.add("posture_radians", std::move(inRadians));
}

void SceneWriter::addRoot(Json& json, const qcFigure& figure)
{
    double position[3], rotation[3];
    figure.getRoot(position, rotation);
    const bool atOrigin = allZero(position) && allZero(rotation);
    if (atOrigin && figure.isOnFloor())
        json.add("root", Json::ofText("stand on the floor"));
    if (atOrigin)
        return;
    Json root = Json::object();
    if (figure.isOnFloor())
        root.add("stand_on_floor", Json::ofBoolean(true));
    root.add("position_cm", threeJson(position));
    root.add("rotation_degrees", threeJson(rotation));
    json.add("root", std::move(root));
}

void SceneWriter::addProperties(Json& json, const qcScene::Member& member, const PartNames& names)
{
    Json all = Json::object();
    for (const auto& [key, object] :
         {std::pair<const char*, const qcObject*>{"human", member.human.get()}, {"figure", member.figure.get()}}) {
        Json properties = changedProperties(*object, member.loaded);
        if (!properties.items().empty())
            all.add(key, std::move(properties));
    }
    Json segments = Json::object(), sites = Json::object(), joints = Json::object();
    const auto addTo = [&](Json& target, const auto& part) {
        Json properties = changedProperties(part, member.loaded);
        if (!properties.items().empty())
            target.add(names.of(part), std::move(properties));
    };
    forEachIn<qcSegmentImp>(member.figure->getSegments(), [&](const auto& part) { addTo(segments, part); });
    forEachIn<qcSiteImp>(member.figure->getSites(), [&](const auto& part) { addTo(sites, part); });
    forEachIn<qcJointImp>(member.figure->getJoints(), [&](const auto& part) { addTo(joints, part); });
    for (const auto& [key, parts] :
         {std::pair<const char*, Json*>{"segments", &segments}, {"sites", &sites}, {"joints", &joints}})
        if (!parts->items().empty())
            all.add(key, std::move(*parts));
    if (!all.items().empty())
        json.add("properties", std::move(all));
}

// The figure's file will give the parts their old names again, and nobody would find what is saved of them.
void SceneWriter::requireLoadedNames(const qcScene::Member& member)
{
    std::size_t index = 0;
    const auto check = [&](const qcObject& part) {
        const std::string& loaded = member.loaded.names[index++];
        if (loaded != part.getName())
            throw InputError("its part " + inQuotes(part.getName()) + " was loaded as " + inQuotes(loaded)
                             + "; a scene keeps no new names of parts. Give it the old name, or write the figure as a"
                               " posed figure.");
    };
    forEachIn<qcSegmentImp>(member.figure->getSegments(), check);
    forEachIn<qcSiteImp>(member.figure->getSites(), check);
    forEachIn<qcJointImp>(member.figure->getJoints(), check);
}
