// Plain walk.
#include "PlainWalk.h"

#include "qc/qList.h"

namespace {

using Vector = PlainWalk::Vector;

Vector of(const qVector& v)
{
    return {v[0], v[1], v[2]};
}

Vector at(qcSite* site)
{
    return of(site->getGlobalTransform().getTranslation());
}

//   (x, y, z, 1) · M, summed in this order; the translation comes last
Vector through(const Vector& v, const qMatrix& frame, const Vector& translation)
{
    return of(frame.getAxis(0)) * v.x + of(frame.getAxis(1)) * v.y + of(frame.getAxis(2)) * v.z + translation;
}

//   F += f        M += f × (J - P) · 0.0980665
void addAt(const Vector& J, const Vector& P, const Vector& f, PlainSums& sums)
{
    const auto scale = static_cast<float>(double(980.665f) * 0.0001);
    sums.force = sums.force + f;
    sums.moment = sums.moment + cross(f, J - P) * scale;
}

bool endsWith(const std::string& text, const std::string& ending)
{
    return text.size() > ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

bool contains(const std::string& text, const char* part)
{
    return text.find(part) != std::string::npos;
}

}   // namespace

PlainWalk::Met& PlainWalk::Met::operator+=(const Met& other)
{
    for (int Met::*count : {&Met::torques, &Met::shares, &Met::localLoads, &Met::displaced, &Met::handLoads,
                            &Met::handsWithout, &Met::halvedLoads, &Met::halvedSums, &Met::placeholders, &Met::dropped})
        this->*count += other.*count;
    return *this;
}

Vector PlainWalk::weight(const Vector& gravity, float grams)
{
    return gravity * static_cast<float>(double(grams) * 0.001 / double(980.665f));
}

PlainSums PlainWalk::walk(const qcJoint* joint, qcSite* from, const qcSegment* stop, const PlainSums* before)
{
    qcSegment* S = joint->otherSite(from)->getSegment();
    const bool stops = S == stop;
    PlainSums sums = before ? *before : PlainSums{};

    if (const auto torque = torques.find(joint); torque != torques.end()) {
        sums.moment = sums.moment + torque->second;
        ++met.torques;
    }

    const Vector J = at(from);
    for (qList* node = nullptr; (node = qList::iterator(S->getSites(), node));) {
        auto* s = static_cast<qcSite*>(node->getData());
        const Vector P = at(s);
        for (qList* link = nullptr; !alone && (link = qList::iterator(s->getJoints(), link));) {
            const auto* j = static_cast<const qcJoint*>(link->getData());
            if (j == joint)
                continue;
            const PlainSums beyond = stops ? sharedResult(j, joint) : walk(j, s, stop);
            addAt(J, P, beyond.force, sums);
            sums.moment = sums.moment + beyond.moment;
        }
        addLoads(s, J, stops, sums);
    }

    if (S->getMass() > 0) {
        const qMatrix& frame = S->getGlobalTransform();
        const Vector Q = through(of(S->getCenterOfMass()), frame, of(frame.getTranslation()));
        const Vector W = weight(gravity, S->getMass());
        if (stops) {
            sums = {sums.force * 0.5f, sums.moment * 0.5f};
            ++met.halvedSums;
        }
        addAt(J, Q, W, sums);
    }
    return keep(joint, sums);
}

// The hips share what is stored on the waist, the clavicle joints what is stored on the solar plexus.
float PlainWalk::shareOf(const std::string& joint, const std::string& other) const
{
    const bool right = joint[0] == 'r';
    if (sharing == kHips && other == "waist")
        return right ? rightHip : leftHip;
    if (sharing == kHipsAndClavicles && other == "waist" && endsWith(joint, "_hip"))
        return right ? rightHip : leftHip;
    if (sharing == kHipsAndClavicles && other == "solar_plexus" && endsWith(joint, "_clavicle_joint"))
        return right ? rightClavicle : leftClavicle;
    return 0;
}

PlainSums PlainWalk::sharedResult(const qcJoint* other, const qcJoint* joint)
{
    const float k = shareOf(joint->getName(), other->getName());
    const auto stored = results.find(other);
    if (k == 0 || stored == results.end())
        return {};
    ++met.shares;
    return {stored->second.force * k, stored->second.moment * k};
}

void PlainWalk::addLoads(qcSite* site, const Vector& jointPosition, bool halved, PlainSums& sums)
{
    const std::string fullName = site->getFullName();
    if (const auto own = loads.find(site); own != loads.end()) {
        if (!own->second) {
            unreadable.push_back(fullName);
            return;
        }
        addForce(*own->second, site, at(site), jointPosition, halved, sums);
    } else if (contains(fullName, "palmcenter")) {
        const std::optional<Force>& hand = hands[contains(fullName, "right") ? qcRight : qcLeft];
        if (hand)
            addForce(*hand, site, at(site), jointPosition, halved, sums);
        ++(hand ? met.handLoads : met.handsWithout);
        return;
    }
    for (const Displaced& record : displaced)
        if (record.site == site) {
            addForce(record.force, site, at(site) + record.offset, jointPosition, halved, sums);
            ++met.displaced;
        }
}

void PlainWalk::addForce(const Force& force, qcSite* site, const Vector& point, const Vector& jointPosition,
                         bool halved, PlainSums& sums)
{
    Vector L = force.load;
    if (force.local) {
        L = through(L, site->getGlobalTransform(), {0, 0, 0});
        ++met.localLoads;
    }
    if (halved) {
        L = L * 0.5f;
        ++met.halvedLoads;
    }
    addAt(jointPosition, point, L, sums);
}

// At most 0.01 kgf and 0.01 N·m are nothing; a moment of at most 0.01 N·m beside a force is a placeholder.
PlainSums PlainWalk::keep(const qcJoint* joint, PlainSums sums)
{
    const bool noMoment = length(sums.moment) <= 0.01f;
    results.erase(joint);
    if (noMoment && length(sums.force) <= 0.01f) {
        ++met.dropped;
        return {};
    }
    if (noMoment) {
        sums.moment = {0.00001f, 0.00001f, 0.00001f};
        ++met.placeholders;
    }
    results[joint] = sums;
    return sums;
}
