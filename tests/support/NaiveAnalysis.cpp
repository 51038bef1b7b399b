// Naive analysis: the walk.
#include "NaiveAnalysis.h"

#include <cstring>

namespace {

constexpr double kNegligible = 0.01;           // kgf and N·m
constexpr double kPlaceholder = 0.00001;       // N·m, stored in place of a negligible moment
constexpr double kStandardGravity = 980.665;   // cm/s²
constexpr double kMomentScale = 0.0980665;     // N·m / kgf·cm

template <class Part, class Visit> void forEach(const qList* list, Visit visit)
{
    for (const qList* node = list; node; node = qList::iterator(list, const_cast<qList*>(node)))
        visit(static_cast<Part*>(node->getData()));
}

Exact pointOf(qcSite* site)
{
    return exactly(site->getGlobalTransform().getTranslation());
}

Exact turned(const Exact& v, const qMatrix& frame)
{
    return exactly(frame.getAxis(0)) * v.x + exactly(frame.getAxis(1)) * v.y + exactly(frame.getAxis(2)) * v.z;
}

double sizeOf(const Exact& v)
{
    return length(v);
}

Exact momentAbout(const Exact& joint, const Exact& point, const Exact& force)
{
    return cross(point - joint, force) * kMomentScale;
}

// Errors of one joint's sums: what each term brings along, and a rounding of each addition, whose
// result is never more than the sum of the magnitudes, in whatever order they are added.
struct Errors {
    double force = 0, moment = 0;                     // brought along
    double forceMagnitude = 0, momentMagnitude = 0;   // sums of the terms' magnitudes
    int terms = 0;

    // A force at a point. Of its moment: one rounding of the lever, three of the cross product (its
    // two products are together at most sqrt 2 times |lever| |force|), two of the scale: 8 do for all.
    void add(double lever, double leverError, double size, double sizeError)
    {
        force += sizeError;
        forceMagnitude += size + sizeError;
        const double product = kMomentScale * (lever + leverError) * (size + sizeError);
        moment += kMomentScale * (lever * sizeError + leverError * (size + sizeError)) + 8 * kRounding * product;
        momentMagnitude += product;
        ++terms;
    }
    void addCouple(double size, double sizeError)
    {
        moment += sizeError;
        momentMagnitude += size + sizeError;
        ++terms;
    }
    double forceBound() const { return force + terms * kRounding * (forceMagnitude + force); }
    double momentBound() const { return moment + terms * kRounding * (momentMagnitude + moment); }
};

// What is kept of a joint's sums. @return whether that differs from the sums
bool keep(NaiveResult& result)
{
    const double force = sizeOf(result.force), moment = sizeOf(result.moment);
    // a magnitude is rounded a few times itself
    const double forceSlack = 2 * result.forceBound + 4 * kRounding * force;
    const double momentSlack = 2 * result.momentBound + 4 * kRounding * moment;
    if (force > kNegligible + forceSlack && moment > kNegligible + momentSlack) {
        result.stored = true;
        return false;
    }
    const bool forceUnsure = std::abs(force - kNegligible) <= forceSlack;
    const bool momentUnsure = std::abs(moment - kNegligible) <= momentSlack;
    result.unsure |= momentUnsure || (forceUnsure && moment <= kNegligible);

    if (force <= kNegligible && moment <= kNegligible) {
        result.stored = false;
        const bool changed = force != 0 || moment != 0;
        result.force = result.moment = Exact();
        result.forceBound = result.momentBound = 0;
        return changed;
    }
    result.stored = true;
    if (moment > kNegligible)
        return false;
    result.moment = {kPlaceholder, kPlaceholder, kPlaceholder};
    result.momentBound = kRounding * kPlaceholder;
    return true;
}

}   // namespace

std::vector<NaiveWalk::Term> NaiveWalk::ownForces(const qcSegment* segment) const
{
    std::vector<Term> terms;
    const auto apply = [&](const Exact& point, double pointError, const NaiveLoads::Force& given, qcSite* site) {
        const Exact force = given.local ? turned(given.load, site->getGlobalTransform()) : given.load;
        // as given, or from three products and sums of each component
        const double relative = given.local ? 12 * kRounding + 3 * positionError : kRounding;
        terms.push_back({point, force, pointError + positionError * sizeOf(point), relative * sizeOf(given.load)});
    };

    forEach<qcSite>(segment->getSites(), [&](qcSite* site) {
        const auto load = loads.sites.find(site);
        const bool isPalm = std::strstr(site->getFullName(), "palmcenter") != nullptr;
        if (load != loads.sites.end()) {
            apply(pointOf(site), 0, load->second, site);
        } else if (isPalm) {
            const auto& hand = loads.hands[std::strstr(site->getFullName(), "right") ? qcRight : qcLeft];
            if (hand)
                apply(pointOf(site), 0, *hand, site);
            return;   // a palm's loads with offsets count only beside a load of its own
        }
        for (const NaiveLoads::Displaced& displaced : loads.displaced)
            if (displaced.site == site) {
                const Exact point = pointOf(site) + displaced.offset;
                apply(point, kRounding * sizeOf(point), displaced.force, site);
            }
    });

    auto* weighed = const_cast<qcSegment*>(segment);
    if (segment->getMass() > 0) {
        const qMatrix& frame = weighed->getGlobalTransform();
        const Exact com = exactly(segment->getCenterOfMass());
        const Exact point = turned(com, frame) + exactly(frame.getTranslation());
        const Exact weight = gravity * (double(segment->getMass()) * 0.001 / kStandardGravity);
        // four sums and three products a component; two roundings of factor and product, one of the constant
        terms.push_back({point, weight, (12 * kRounding + 3 * positionError) * (sizeOf(com) + sizeOf(point)),
                         3 * kRounding * sizeOf(weight)});
    }
    return terms;
}

NaiveWalk::Sum NaiveWalk::walk(qcJoint* joint, qcSite* from, const Sum* before)
{
    const qcSegment* segment = joint->otherSite(from)->getSegment();
    const Exact here = pointOf(from);
    const double hereError = positionError * sizeOf(here);
    Sum sum;
    Errors errors;
    if (before) {
        sum = *before;
        errors.force = before->result.forceBound;
        errors.forceMagnitude = sizeOf(before->result.force);
        errors.addCouple(sizeOf(before->result.moment), before->result.momentBound);
    }
    sum.result.from = from;

    const auto torque = loads.torques.find(joint);
    if (torque != loads.torques.end()) {
        sum.couple = sum.couple + torque->second;
        errors.addCouple(sizeOf(torque->second), kRounding * sizeOf(torque->second));
    }
    for (const Term& own : ownForces(segment)) {
        sum.forces.push_back(own);
        errors.add(sizeOf(own.point - here), own.pointError + hereError, sizeOf(own.force), own.forceError);
    }
    forEach<qcSite>(segment->getSites(), [&](qcSite* site) {
        forEach<qcJoint>(site->getJoints(), [&](qcJoint* next) {
            if (next == joint)
                return;
            const Sum beyond = walk(next, site, nullptr);
            sum.forces.insert(sum.forces.end(), beyond.forces.begin(), beyond.forces.end());
            sum.couple = sum.couple + beyond.couple;
            sum.result.replaced += beyond.result.replaced;
            sum.result.unsure |= beyond.result.unsure;
            errors.add(sizeOf(pointOf(site) - here), hereError + positionError * sizeOf(pointOf(site)),
                       sizeOf(beyond.result.force), beyond.result.forceBound);
            errors.addCouple(sizeOf(beyond.result.moment), beyond.result.momentBound);
        });
    });

    NaiveResult& result = sum.result;
    result.force = Exact();
    result.moment = sum.couple;
    for (const Term& term : sum.forces) {
        result.force = result.force + term.force;
        result.moment = result.moment + momentAbout(here, term.point, term.force);
    }
    result.forceBound = errors.forceBound();
    result.momentBound = errors.momentBound();

    const Exact moment = result.moment;
    if (keep(result)) {
        ++result.replaced;
        if (!result.stored)
            sum.forces.clear();
        // from here on the sums are worth what was kept
        sum.couple = result.stored ? sum.couple + result.moment - moment : Exact();
    }
    found[joint] = result;
    return sum;
}

void NaiveWalk::standOn(qcSide foot)
{
    qcJoint* ankle = human->getAnkleJoint(foot);
    qcSite* footSide = ankle->siteOnSegment(human->getFootSite(foot)->getSegment());
    const Sum body = walk(ankle, footSide, nullptr);
    walk(ankle, ankle->otherSite(footSide), &body);
}

void NaiveWalk::upperBody()
{
    qcJoint* waist = human->getWaistJoint();
    walk(waist, waist->siteOnSegment(human->getPelvisSite()->getSegment()), nullptr);
}

void NaiveWalk::hangingLegs()
{
    for (const qcSide side : {qcRight, qcLeft}) {
        qcJoint* hip = human->getHipJoint(side);
        walk(hip, hip->siteOnSegment(human->getPelvisSite()->getSegment()), nullptr);
    }
}

NaiveResult NaiveWalk::stepFromStored(qcJoint* joint, qcSite* from,
                                      const std::map<qcJoint*, std::pair<Exact, Exact>>& stored) const
{
    const qcSegment* segment = joint->otherSite(from)->getSegment();
    const Exact here = pointOf(from);
    NaiveResult result;
    Errors errors;
    const auto add = [&](const Term& term) {
        result.force = result.force + term.force;
        result.moment = result.moment + momentAbout(here, term.point, term.force);
        errors.add(sizeOf(term.point - here), term.pointError, sizeOf(term.force), term.forceError);
    };
    const auto addCouple = [&](const Exact& couple) {
        result.moment = result.moment + couple;
        errors.addCouple(sizeOf(couple), 0);
    };
    const auto torque = loads.torques.find(joint);
    if (torque != loads.torques.end())
        addCouple(torque->second);
    for (const Term& own : ownForces(segment))
        add(own);
    forEach<qcSite>(segment->getSites(), [&](qcSite* site) {
        forEach<qcJoint>(site->getJoints(), [&](qcJoint* next) {
            const auto beyond = stored.find(next);
            if (next == joint || beyond == stored.end())
                return;
            add({pointOf(site), beyond->second.first, 0, 0});
            addCouple(beyond->second.second);
        });
    });
    result.forceBound = errors.forceBound();
    result.momentBound = errors.momentBound();
    keep(result);
    return result;
}
