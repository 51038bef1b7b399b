// Names.
#include "Names.h"

#include "Messages.h"

#include <algorithm>
#include <cctype>

namespace {

std::string lowerCase(std::string text)
{
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// Levenshtein's distance: insertions, deletions and replacements that turn one text into the other.
std::size_t editDistance(const std::string& a, const std::string& b)
{
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

// Cuts what stands for a side out of a name and puts the other side's in.
bool exchange(const std::string& name, std::size_t at, std::size_t length, const char* other, SidedName& result)
{
    if (at == std::string::npos)
        return false;
    result.twin = name;
    result.twin.replace(at, length, other);
    result.common = name;
    result.common.erase(at, length);
    const std::size_t blank = result.common.find_first_not_of("_. ");
    if (blank != std::string::npos)
        result.common.erase(0, blank);
    return true;
}

std::size_t endingAt(const std::string& name, const char* ending)
{
    return name.size() > 2 && name.compare(name.size() - 2, 2, ending) == 0 ? name.size() - 2 : std::string::npos;
}

}   // namespace

std::string jointName(const qcFigure* figure, const qcJoint* joint)
{
    return figure->findJoint(joint->getName()) == joint ? joint->getName() : joint->getFullName();
}

// Near: at most a third of the longer name differs, or one contains the other; a contained one counts
// as near as its difference in length would be far, halved.
std::string didYouMean(const std::string& wrong, const std::vector<std::string>& names)
{
    constexpr std::size_t kOffered = 3;
    constexpr std::size_t kLongest = 200;   // a longer text is no misspelt name
    if (wrong.empty() || wrong.size() > kLongest)
        return "";
    const std::string sought = lowerCase(wrong);
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string& name : names) {
        if (name.size() > kLongest)
            continue;
        const std::string known = lowerCase(name);
        const std::size_t distance = 2 * editDistance(sought, known);
        const bool contains = sought.size() > 2 && known.find(sought) != std::string::npos;
        if (contains || distance * 3 <= 2 * std::max(sought.size(), known.size()))
            near.emplace_back(contains ? distance / 2 : distance, name);
    }
    std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    if (near.size() > kOffered)
        near.resize(kOffered);

    std::string offer;
    for (std::size_t i = 0; i < near.size(); ++i)
        offer += (i == 0 ? " Did you mean " : i + 1 == near.size() ? " or " : ", ") + near[i].second;
    return offer.empty() ? "" : offer + "?";
}

namespace {

// The end of the message about a part of a figure.
std::string nearOrListed(const std::string& wrong, const std::vector<std::string>& names)
{
    const std::string near = didYouMean(wrong, names);
    return near.empty() ? " sstr figure SCENE lists them." : near;
}

// By its bare name first, since a full name may be another joint's bare one.
qcJoint* jointNamed(const qcFigure* figure, const std::string& name)
{
    qcJoint* found = figure->findJoint(name.c_str());
    forEach<qcJoint>(figure->getJoints(), [&](qcJoint* joint) {
        if (!found && joint->getFullName() == name)
            found = joint;
    });
    return found;
}

}   // namespace

qcSite* findSite(const qcFigure* figure, const std::string& key, const std::string& where)
{
    if (qcSite* site = figure->findSiteByFullName((std::string(figure->getName()) + "." + key).c_str()))
        return site;
    std::vector<std::string> keys;
    forEach<qcSite>(figure->getSites(), [&](const qcSite* site) { keys.push_back(siteKey(site)); });
    reportError(where + ": figure " + figure->getName() + " has no site " + quoted(key) + "; expected \"segment.site\"."
                + nearOrListed(key, keys));
    return nullptr;
}

qcJoint* findJoint(const qcFigure* figure, const std::string& name, const std::string& where)
{
    if (qcJoint* joint = jointNamed(figure, name))
        return joint;
    std::vector<std::string> names;
    forEach<qcJoint>(figure->getJoints(), [&](const qcJoint* joint) { names.push_back(jointName(figure, joint)); });
    reportError(where + ": figure " + figure->getName() + " has no joint " + quoted(name) + "."
                + nearOrListed(name, names));
    return nullptr;
}

qcHuman* findHuman(const qcScene& scene, const std::string& name)
{
    std::vector<std::string> names;
    qcHuman* only = nullptr;
    forEach<qcHuman>(scene.getHumans(), [&](qcHuman* human) {
        names.emplace_back(human->getName());
        only = human;
    });
    if (names.empty()) {
        reportError("the scene has no human.");
        return nullptr;
    }
    if (name.empty() && names.size() == 1)
        return only;

    std::string list;
    for (const std::string& each : names)
        list += (list.empty() ? "" : ", ") + each;
    if (name.empty()) {
        reportError("the scene has " + std::to_string(names.size()) + " humans: " + list
                    + ". Choose one with --human NAME.");
        return nullptr;
    }
    if (qcHuman* human = scene.findHuman(name.c_str()))
        return human;
    reportError("--human: the scene has no human " + quoted(name) + "; it has: " + list + "."
                + didYouMean(name, names));
    return nullptr;
}

SidedName sidedName(const std::string& name)
{
    SidedName result;
    if (exchange(name, name.find("right"), 5, "left", result) || exchange(name, endingAt(name, "_r"), 2, "_l", result))
        result.side = SidedName::kRight;
    else if (exchange(name, name.find("left"), 4, "right", result)
             || exchange(name, endingAt(name, "_l"), 2, "_r", result))
        result.side = SidedName::kLeft;
    return result;
}
