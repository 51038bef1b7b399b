// Roles file: applied in the order rename, add sites, order angles, find roles, describe the body.
#include "Roles.h"

#include "Files.h"
#include "MessageNumber.h"
#include "scene/JsonReader.h"

#include "qc/qcFigure.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_map>
#include <utility>

namespace {

constexpr double kSmallestStature = 30, kLargestStature = 300;   // cm
constexpr double kSmallestMass = 0.001, kLargestMass = 1000;     // kg
constexpr double kPercentRounding = 0.5;                         // by which a sum of rounded percentages may miss 100
constexpr double kMassRounding = 0.005;                          // of the mass: beyond it a told mass is worth a note

constexpr double kFarthest = 1e9;   // cm
constexpr int kVersion = 1;

std::size_t at(int index)
{
    return static_cast<std::size_t>(index);
}

std::string nameAt(const JsonAt& at)
{
    std::string name = at.text("a name");
    if (name.empty() || !isPlainText(name))
        at.failExpected("a name without control characters");
    return name;
}

double numberIn(const JsonAt& at, const std::string& what, double least, double most)
{
    const std::string expected = what + ", " + messageNumber(least) + " to " + messageNumber(most);
    const double number = at.number(expected.c_str());
    if (!(number >= least && number <= most))
        at.failExpected(expected);
    return number;
}

qcSex sexAt(const JsonAt& at)
{
    const std::string sex = at.text();
    if (sex != "male" && sex != "female")
        at.failExpected("\"male\" or \"female\"");
    return sex == "female" ? qcFemale : qcMale;
}

double statureAt(const JsonAt& at)
{
    return numberIn(at, "a stature in cm", kSmallestStature, kLargestStature);
}

// In g.
double massAt(const JsonAt& at)
{
    return 1000 * numberIn(at, "a body mass in kg", kSmallestMass, kLargestMass);
}

// The parts of one kind by name.
class Names {
public:
    template <class Parts, class NameOf> Names(const char* partKind, const Parts& parts, NameOf nameOf) : kind(partKind)
    {
        for (std::size_t i = 0; i < parts.size(); ++i)
            if (index.emplace(nameOf(parts[i], i), static_cast<int>(i)).second)
                names.push_back(nameOf(parts[i], i));
    }

    int find(const std::string& name) const
    {
        const auto found = index.find(name);
        return found == index.end() ? -1 : found->second;
    }

    // The part that a value names.
    int require(const JsonAt& at) const { return require(at, nameAt(at)); }

    // The part of a name that stands there or thereabouts.
    int require(const JsonAt& at, const std::string& name) const
    {
        const int part = find(name);
        if (part < 0)
            at.fail("expected the name of a " + std::string(kind) + " of this figure, found " + inQuotes(name) + "."
                    + closeNames(name, names));
        return part;
    }

private:
    const char* kind;
    std::unordered_map<std::string, int> index;
    std::vector<std::string> names;
};

class RolesFile {
public:
    RolesFile(UrdfPlan& planned, const JsonAt& wholeFile, const std::string& fileName)
        : plan(planned), root(wholeFile), file(fileName)
    {}

    void apply()
    {
        root.requireKeys({"version", "comment", "rename_links", "rename_joints", "rename_sites", "sites", "angle_order",
                          "left", "right", "pelvis_site", "waist", "reference_site", "base", "other_sex"});
        if (const auto version = root.find("version"))
            if (version->number() != kVersion)
                version->failExpected("version 1 of the format");
        if (const auto comment = root.find("comment"))
            comment->text();
        rename();
        addSites();
        orderAngles();
        findRoles();
        describeBody();
    }

private:
    Names siteNames() const
    {
        return {"site (\"segment.site\")", plan.sites,
                [this](const PlannedSite&, std::size_t i) { return plan.siteKey(static_cast<int>(i)); }};
    }
    Names jointNames() const
    {
        return {"joint", plan.joints, [](const PlannedJoint& joint, std::size_t) { return joint.name; }};
    }
    Names segmentNames() const
    {
        return {"segment", plan.segments, [](const PlannedSegment& segment, std::size_t) { return segment.name; }};
    }

    std::vector<JsonAt::Member> entries(const char* section) const
    {
        const auto found = root.find(section);
        return found ? found->members() : std::vector<JsonAt::Member>();
    }

    std::string place(const char* section, const std::string& key) const { return file + ": /" + section + "/" + key; }

    template <class Parts> void renameParts(const char* section, Parts& parts, const Names& names) const
    {
        for (const auto& [old, entry] : entries(section)) {
            auto& part = parts[at(names.require(entry, old))];
            part.name = nameAt(entry);
            part.renamedBy = place(section, old);
        }
    }

    // All old names are the model's, so that renaming can exchange two names. A site made for a joint
    // bears the joint's new name unless it is given one itself.
    void rename()
    {
        if (!root.find("rename_links") && !root.find("rename_joints") && !root.find("rename_sites"))
            return;
        const Names segments = segmentNames(), joints = jointNames(), sites = siteNames();
        renameParts("rename_links", plan.segments, segments);
        renameParts("rename_joints", plan.joints, joints);
        for (PlannedSite& site : plan.sites)
            if (site.namesake >= 0) {
                site.name = plan.joints[at(site.namesake)].name;
                site.renamedBy = plan.joints[at(site.namesake)].renamedBy;
            }
        renameParts("rename_sites", plan.sites, sites);
        checkNames(plan, file);
    }

    void addSites()
    {
        if (!root.find("sites"))
            return;
        const Names segments = segmentNames();
        for (const auto& [key, entry] : entries("sites")) {
            const std::size_t dot = siteDot(key, segments);
            if (dot == std::string::npos || dot == 0 || dot + 1 == key.size())
                entry.fail("expected \"segment.site\", found " + inQuotes(key) + ".");
            PlannedSite site;
            site.segment = segments.require(entry, key.substr(0, dot));
            site.source = site.name = key.substr(dot + 1);
            site.renamedBy = place("sites", key);
            entry.requireKeys({"offset_cm"});
            const JsonAt offset = entry.member("offset_cm");
            const std::vector<JsonAt> numbers = offset.elements("[x, y, z], in cm");
            if (numbers.size() != 3)
                offset.failExpected("[x, y, z], in cm");
            for (std::size_t i = 0; i < 3; ++i)
                site.placement.offset[i] = numberIn(numbers[i], "a length in cm", -kFarthest, kFarthest);
            plan.segments[at(site.segment)].sites.push_back(static_cast<int>(plan.sites.size()));
            plan.sites.push_back(site);
        }
        checkNames(plan, file);
    }

    // Where the segment's name ends, which may have dots in it: the last place that fits.
    static std::size_t siteDot(const std::string& key, const Names& segments)
    {
        for (std::size_t dot = key.rfind('.'); dot != std::string::npos && dot > 0; dot = key.rfind('.', dot - 1))
            if (segments.find(key.substr(0, dot)) >= 0)
                return dot;
        return key.find('.');
    }

    void orderAngles()
    {
        if (!root.find("angle_order"))
            return;
        const Names joints = jointNames();
        for (const auto& [name, entry] : entries("angle_order"))
            orderAnglesOf(plan.joints[at(joints.require(entry, name))], entry);
    }

    static void orderAnglesOf(PlannedJoint& joint, const JsonAt& entry)
    {
        std::string known;
        for (const PlannedAngle& angle : joint.angles)
            known += (known.empty() ? "" : ", ") + inQuotes(std::as_const(angle.name));
        const std::string expected = "all angles of the joint, each once: " + (known.empty() ? "none" : known);
        std::vector<PlannedAngle> ordered;
        std::vector<int> newNumber(joint.angles.size() + 1, 0);   // by old number; both count from 1
        for (const JsonAt& element : entry.elements("a list of angles")) {
            const std::string name = element.text();
            const auto found = std::find_if(joint.angles.begin(), joint.angles.end(),
                                            [&](const PlannedAngle& angle) { return angle.name == name; });
            if (found == joint.angles.end())
                element.failExpected(expected);
            int& number = newNumber[at(static_cast<int>(found - joint.angles.begin()) + 1)];
            if (number > 0)
                element.failExpected(expected);
            ordered.push_back(*found);
            number = static_cast<int>(ordered.size());
        }
        if (ordered.size() != joint.angles.size())
            entry.failExpected(expected);
        joint.angles = ordered;
        for (Step& step : joint.steps)
            step.angle = newNumber[at(step.angle)];
    }

    void findRole(const std::optional<JsonAt>& told, const std::string& missing, const Names& names, int& role) const
    {
        if (told)
            role = names.require(*told);
        else
            plan.roles.missing.push_back(missing);
    }

    void findRoles()
    {
        const Names sites = siteNames(), joints = jointNames();
        for (const qcSide side : {qcLeft, qcRight}) {
            const std::string name = side == qcLeft ? "left" : "right";
            const std::optional<JsonAt> told = root.find(name);
            if (told)
                told->requireKeys({"foot_site", "hand_site", "knee", "ankle", "hip"});
            const auto find = [&](const char* key, const Names& names, int& role) {
                findRole(told ? told->find(key) : std::nullopt, name + "." + key, names, role);
            };
            find("foot_site", sites, plan.roles.foot[side]);
            find("hand_site", sites, plan.roles.hand[side]);
            find("knee", joints, plan.roles.knee[side]);
            find("ankle", joints, plan.roles.ankle[side]);
            find("hip", joints, plan.roles.hip[side]);
        }
        findRole(root.find("pelvis_site"), "pelvis_site", sites, plan.roles.pelvis);
        findRole(root.find("waist"), "waist", joints, plan.roles.waist);
        findRole(root.find("reference_site"), "reference_site", sites, plan.roles.reference);
        for (const PlannedJoint& joint : plan.joints)
            if (plan.roles.reference >= 0
                && (joint.parentSite == plan.roles.reference || joint.childSite == plan.roles.reference))
                root.member("reference_site")
                    .failExpected("a site without joints, because it is kept at the body's centre of mass (the joint "
                                  + inQuotes(joint.name) + " is attached there)");
    }

    void describeBody()
    {
        double mass = 0;
        for (const PlannedSegment& segment : plan.segments)
            mass += segment.mass;
        if (const auto base = root.find("base")) {
            base->requireKeys({"sex", "stature_cm", "mass_kg"});
            if (const auto sex = base->find("sex"))
                plan.base.sex = sexAt(*sex);
            if (const auto stature = base->find("stature_cm"))
                plan.base.stature = statureAt(*stature);
            if (const auto told = base->find("mass_kg"))
                compareMass(massAt(*told), mass);
        }
        if (const auto other = root.find("other_sex"))
            describeOtherSex(*other);
    }

    void compareMass(double told, double sum) const
    {
        if (std::fabs(told - sum) <= kMassRounding * sum)
            return;
        plan.notes.push_back(place("base", "mass_kg") + ": the body's mass is " + messageNumber(sum / 1000)
                             + " kg, the sum of its segments, not " + messageNumber(told / 1000) + " kg as told.");
    }

    void describeOtherSex(const JsonAt& other) const
    {
        other.requireKeys({"sex", "stature_cm", "mass_kg", "mass_percent"});
        const JsonAt sex = other.member("sex");
        if (sexAt(sex) == plan.base.sex)
            sex.failExpected("the sex that the model itself (\"base\") is not");
        BodyBase& base = plan.base;
        base.hasOtherSex = true;
        if (const auto stature = other.find("stature_cm"))
            base.otherStature = statureAt(*stature);
        if (const auto mass = other.find("mass_kg"))
            base.otherMass = massAt(*mass);

        const JsonAt percents = other.member("mass_percent");
        const Names segments = segmentNames();
        base.otherMassPercent.assign(plan.segments.size(), -1);
        double sum = 0;
        for (const auto& [name, percent] : percents.members()) {
            const double share = numberIn(percent, "a share of the body's mass in %", 0, 100);
            base.otherMassPercent[at(segments.require(percent, name))] = share;
            sum += share;
        }
        for (std::size_t i = 0; i < plan.segments.size(); ++i)
            if (base.otherMassPercent[i] < 0)
                percents.fail("expected a share of the body's mass for each segment, found none for "
                              + inQuotes(std::as_const(plan.segments[i].name)) + ".");
        if (std::fabs(sum - 100) > kPercentRounding)
            percents.fail("expected shares that add up to 100 %, found a sum of " + messageNumber(sum) + ".");
    }

    UrdfPlan& plan;
    const JsonAt root;
    const std::string& file;
};

}   // namespace

void applyRoles(UrdfPlan& plan, const std::string& text, const std::string& file)
{
    const Json json = parseJson(text, file);
    RolesFile(plan, JsonAt(json, file), file).apply();
}

void applyNoRoles(UrdfPlan& plan)
{
    applyRoles(plan, "{}", "");
}
