// Part names.
#include "PartNames.h"

#include "Files.h"
#include "InputError.h"

namespace {

template <class Map> typename Map::mapped_type find(const Map& map, const std::string& name)
{
    const auto found = map.find(name);
    return found == map.end() ? nullptr : found->second;
}

[[noreturn]] void failNowhere(const JsonAt& at, const char* kind, const std::string& name,
                              const std::vector<std::string>& names)
{
    at.fail(std::string("the figure has no ") + kind + " " + inQuotes(name) + "." + closeNames(name, names));
}

[[noreturn]] void failTwice(const char* kind, const std::string& name)
{
    throw InputError(std::string("several ") + kind + " are named " + inQuotes(name)
                     + ": a file cannot tell them apart.");
}

}   // namespace

PartNames::PartNames(const qcFigure& figure)
{
    forEachIn<qcSegmentImp>(figure.getSegments(), [&](qcSegmentImp& part) { add(&part); });
    forEachIn<qcSiteImp>(figure.getSites(), [&](qcSiteImp& part) { add(&part); });
    forEachIn<qcJointImp>(figure.getJoints(), [&](qcJointImp& part) { add(&part); });
}

bool PartNames::add(qcSegmentImp* segment)
{
    segmentNames.emplace_back(segment->getName());
    return segments.emplace(segment->getName(), segment).second;
}

bool PartNames::add(qcSiteImp* site)
{
    siteKeys.push_back(siteKey(*site));
    return sites.emplace(siteKeys.back(), site).second;
}

bool PartNames::add(qcJointImp* joint)
{
    joints.push_back(joint);
    const auto [place, isNew] = jointsByName.emplace(joint->getName(), joint);
    if (!isNew)
        place->second = nullptr;
    return jointsByFullName.emplace(joint->getFullName(), joint).second;
}

qcSegmentImp* PartNames::findSegment(const std::string& name) const
{
    return find(segments, name);
}

qcSegmentImp* PartNames::segment(const JsonAt& at, const std::string& name) const
{
    if (qcSegmentImp* found = findSegment(name))
        return found;
    failNowhere(at, "segment", name, segmentNames);
}

qcSiteImp* PartNames::site(const JsonAt& at, const std::string& key) const
{
    if (qcSiteImp* found = find(sites, key))
        return found;
    failNowhere(at, "site", key, siteKeys);
}

qcJointImp* PartNames::joint(const JsonAt& at, const std::string& name) const
{
    if (qcJointImp* found = find(jointsByName, name))
        return found;
    if (qcJointImp* found = find(jointsByFullName, name))
        return found;
    if (jointsByName.count(name)) {
        std::string fullNames;
        for (const qcJointImp* joint : joints)
            if (joint->getName() == name)
                fullNames += (fullNames.empty() ? "" : ", ") + inQuotes(joint->getFullName());
        at.fail("several joints are named " + inQuotes(name) + "; use a full name: " + fullNames + ".");
    }
    failNowhere(at, "joint", name, jointNames());
}

std::vector<std::string> PartNames::jointNames() const
{
    std::vector<std::string> names;
    for (const qcJointImp* joint : joints)
        names.emplace_back(find(jointsByName, joint->getName()) ? joint->getName() : joint->getFullName());
    return names;
}

std::string PartNames::of(const qcSegmentImp& segment) const
{
    if (find(segments, segment.getName()) != &segment)
        failTwice("segments", segment.getName());
    return segment.getName();
}

std::string PartNames::of(const qcSiteImp& site) const
{
    std::string key = siteKey(site);
    if (find(sites, key) != &site)
        failTwice("sites", key);
    return key;
}

std::string PartNames::of(const qcJointImp& joint) const
{
    if (find(jointsByName, joint.getName()) == &joint)
        return joint.getName();
    std::string fullName = joint.getFullName();
    if (find(jointsByFullName, fullName) != &joint || find(jointsByName, fullName))
        failTwice("joints", fullName);
    return fullName;
}

std::string PartNames::siteKey(const qcSiteImp& site)
{
    return std::string(site.getSegment()->getName()) + "." + site.getName();
}
