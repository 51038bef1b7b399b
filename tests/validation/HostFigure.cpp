// Host figure: matching.
#include "HostFigure.h"

#include <algorithm>
#include <stdexcept>

namespace {

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180;

[[noreturn]] void fail(const std::string& what)
{
    throw std::runtime_error("the host's figure does not match the model: " + what);
}

template <class Part, class Visit> void forEach(qList* list, Visit visit)
{
    for (qList* node = list; node; node = qList::iterator(list, node))
        visit(static_cast<Part*>(node->getData()));
}

bool endsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

template <class Part> int indexOf(const std::vector<Part*>& parts, const Part* part)
{
    const auto found = std::find(parts.begin(), parts.end(), part);
    return part && found != parts.end() ? static_cast<int>(found - parts.begin()) : -1;
}

}   // namespace

HostFigure::HostFigure(const Figure& figure, const std::string& urdfPath, const std::string& rolesPath)
    : owned(scene.addHuman(urdfPath.c_str(), nullptr, rolesPath.c_str()))
{
    if (!owned)
        fail("the host refuses " + urdfPath);
    matchBodies(figure);
    matchAngles(figure);
    matchSites(figure);
}

void HostFigure::matchBodies(const Figure& figure)
{
    int count = 0;
    forEach<qcSegment>(host().getSegments(), [&](qcSegment*) { ++count; });
    if (count != static_cast<int>(figure.bodies.size()))
        fail(std::to_string(count) + " segments for " + std::to_string(figure.bodies.size()) + " bodies");
    for (const Body& body : figure.bodies) {
        qcSegment* segment = host().findSegment(body.name.c_str());
        if (!segment)
            fail("there is no segment " + body.name);
        qcSite* attachment = segment->getAttachmentSite();
        qcJoint* joint = attachment ? attachment->getJoint() : nullptr;
        if ((joint == nullptr) != (body.parent < 0))
            fail("the segment " + body.name + " hangs on something else");
        segments.push_back(segment);
        joints.push_back(joint);
        if (joint && bodyOf(joint->getInboardSite()->getSegment()) != body.parent)
            fail("the segment " + body.name + " hangs on another one");
    }
}

// A joint with several angles names them by the ends of its hinges' names.
void HostFigure::matchAngles(const Figure& figure)
{
    for (std::size_t b = 0; b < figure.bodies.size(); ++b) {
        const std::vector<Hinge>& hinges = figure.bodies[b].hinges;
        if (joints[b] && joints[b]->getNumAngles() != static_cast<int>(hinges.size()))
            fail("the joint of " + figure.bodies[b].name + " has another number of angles");
        for (const Hinge& hinge : hinges) {
            int number = 0;
            for (int i = 1; i <= joints[b]->getNumAngles(); ++i)
                if (hinges.size() == 1 || endsWith(hinge.name, joints[b]->getAngleName(i)))
                    number = number == 0 ? i : -1;
            if (number < 1)
                fail("no angle, or more than one, is " + hinge.name);
            angles.push_back({joints[b], number});
        }
    }
}

// A joint's sites lie where its first hinge is on the parent and where the body has its origin, unless the model
// has a point of that name.
void HostFigure::matchSites(const Figure& figure)
{
    const qcSite* reference = host().getReferenceSite();
    forEach<qcSite>(host().getSites(), [&](qcSite* site) {
        const int on = bodyOf(site->getSegment());
        const std::string key = std::string(site->getSegment()->getName()) + "." + site->getName();
        const auto told = figure.sites.find(key);
        const int carried = bodyOf(site->getJoint());
        Place place;
        if (told != figure.sites.end())
            place = told->second;
        else if (carried < 0)
            fail("the model tells nothing of the site " + key);
        else if (carried == on)
            place = {on, {}};
        else
            place = {on, figure.bodies[static_cast<std::size_t>(carried)].jointInParent};
        if (place.body != on)
            fail("the site " + key + " lies on another segment");
        const bool isPalm = std::string(site->getFullName()).find("palmcenter") != std::string::npos;
        placed.push_back({site, place, isPalm, site == reference});
    });
}

int HostFigure::bodyOf(const qcSegment* segment) const
{
    return indexOf(segments, segment);
}

int HostFigure::bodyOf(const qcJoint* joint) const
{
    return indexOf(joints, joint);
}

void HostFigure::setAngles(const std::vector<double>& radians)
{
    for (std::size_t i = 0; i < angles.size(); ++i)
        angles[i].joint->setAngle(angles[i].number, radians[i]);
}

// The host turns about its x, then y, then z axis, which are the witnesses' y, z and x.
Pose rootPose(const Vec& cm, const Vec& degrees)
{
    const Turn aboutHostX = turnAbout({0, 1, 0}, degrees.x * kRadiansPerDegree);
    const Turn aboutHostY = turnAbout({0, 0, 1}, degrees.y * kRadiansPerDegree);
    const Turn aboutHostZ = turnAbout({1, 0, 0}, degrees.z * kRadiansPerDegree);
    return {aboutHostZ * aboutHostY * aboutHostX, Vec{cm.z, cm.x, cm.y} * kMetresPerCm};
}
