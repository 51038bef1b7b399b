// Posture: forward kinematics in double precision, narrowed once.
#include "Posture.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;

// Turns a frame about its own coordinate axis k: with i, j the next two in the cycle x, y, z,
//   row i := cos · row i + sin · row j        row j := cos · row j - sin · row i
template <std::size_t k> void turnAboutOwnAxis(Rotation& r, double sine, double cosine)
{
    constexpr std::size_t i = (k + 1) % 3 * 3;
    constexpr std::size_t j = (k + 2) % 3 * 3;
    for (std::size_t column = 0; column < 3; ++column) {
        const double a = r[i + column];
        const double b = r[j + column];
        r[i + column] = cosine * a + sine * b;
        r[j + column] = cosine * b - sine * a;
    }
}

// Rodrigues: the turn by an angle about a unit axis u, for row vectors,
//   R = cos · I + sin · [u]ᵀ× + (1 - cos) · u uᵀ
Rotation aboutAxis(const Point& u, double sine, double cosine)
{
    const double t = 1 - cosine;
    return {cosine + t * u[0] * u[0],      t * u[0] * u[1] + sine * u[2], t * u[0] * u[2] - sine * u[1],
            t * u[0] * u[1] - sine * u[2], cosine + t * u[1] * u[1],      t * u[1] * u[2] + sine * u[0],
            t * u[0] * u[2] + sine * u[1], t * u[1] * u[2] - sine * u[0], cosine + t * u[2] * u[2]};
}

void narrow(const Rotation& rotation, const Point& position, qMatrix& transform)
{
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            transform.m[row][column] = static_cast<float>(rotation[3 * row + column]);
        transform.m[3][row] = static_cast<float>(position[row]);
    }
}

}   // namespace

int Posture::linkOf(const qcSegmentImp* segment) const
{
    const auto found = linkIndex.find(segment);
    return found == linkIndex.end() ? -1 : found->second;
}

void Posture::addLink(qcSegmentImp* segment, qcSegmentImp* parent, const qcJointImp* joint,
                      const std::vector<Step>& steps)
{
    Link link{segment, linkOf(parent), {}, kNoRotation, {0, 0, 0}, 0, {}};
    for (const Step& step : steps) {
        FastStep fast{step.placement.offset,
                      step.placement.offset,
                      step.placement.rotation,
                      step.placement.rotation != kNoRotation,
                      -1,
                      1,
                      step.axis,
                      nullptr};
        if (joint && step.angle > 0) {
            fast.angle = &joint->angles[static_cast<std::size_t>(step.angle - 1)].value;
            fast.kind = 3;
            for (int k = 0; k < 3; ++k)
                if (std::fabs(step.axis[static_cast<std::size_t>(k)]) == 1.0) {
                    fast.kind = k;
                    fast.sign = step.axis[static_cast<std::size_t>(k)];
                }
        }
        link.steps.push_back(fast);
    }
    linkIndex[segment] = static_cast<int>(links.size());
    links.push_back(link);
}

void Posture::addPlace(qcSiteImp* site, const Placement& placement)
{
    places.push_back({site, linkOf(site->getSegment()), placement.rotation, placement.rotation != kNoRotation,
                      placement.offset, placement.offset});
}

void Posture::keepBase()
{
    base.mass = 0;
    for (Link& link : links) {
        link.baseMass = double(link.segment->mass);
        link.baseCenter = link.segment->centerOfMass;
        base.mass += std::max(0.0, link.baseMass);
    }
}

void Posture::placeRoot(Link& root) const
{
    root.position = rootPosition;
    root.rotation = kNoRotation;
    for (int k = 0; k < 3; ++k) {
        const double degrees = rootDegrees[static_cast<std::size_t>(k)];
        if (degrees == 0)
            continue;
        const double angle = degrees * kRadiansPerDegree;
        Point axis{0, 0, 0};
        axis[static_cast<std::size_t>(k)] = 1;
        root.rotation = product(root.rotation, aboutAxis(axis, std::sin(angle), std::cos(angle)));
    }
}

void Posture::walkSteps(Link& link, const Link& parent)
{
    Point position = parent.position;
    Rotation rotation = parent.rotation;
    for (const FastStep& step : link.steps) {
        if (!isZero(step.offset))
            add(position, turned(step.offset, rotation));
        if (step.turned)
            rotation = product(step.rotation, rotation);
        if (step.kind < 0 || *step.angle == 0)
            continue;
        const double angle = step.sign * *step.angle;
        const double sine = std::sin(angle);
        const double cosine = std::cos(angle);
        switch (step.kind) {
        case 0:
            turnAboutOwnAxis<0>(rotation, sine, cosine);
            break;
        case 1:
            turnAboutOwnAxis<1>(rotation, sine, cosine);
            break;
        case 2:
            turnAboutOwnAxis<2>(rotation, sine, cosine);
            break;
        default:
            rotation = product(aboutAxis(step.axis, sine, cosine), rotation);
        }
    }
    link.position = position;
    link.rotation = rotation;
}

void Posture::update()
{
    if (fixed)
        return;
    for (Link& link : links) {
        if (link.parent < 0)
            placeRoot(link);
        else
            walkSteps(link, links[static_cast<std::size_t>(link.parent)]);
    }
    if (onFloor)
        liftToFloor();
    writeTransforms();
}

// The sites of the segments that carry the feet's support points and of all that hangs on these;
// without feet, all sites. The balance point is none: it lies inside the body.
void Posture::findFloorPlaces()
{
    if (floorPlacesKnown)
        return;
    floorPlacesKnown = true;
    std::vector<bool> isFoot(links.size(), false);
    bool hasFeet = false;
    for (const qcSiteImp* foot : figure.roles.foot) {
        const int link = foot ? linkOf(foot->getSegment()) : -1;
        if (link >= 0)
            isFoot[static_cast<std::size_t>(link)] = hasFeet = true;
    }
    for (std::size_t i = 0; i < links.size(); ++i)
        if (links[i].parent >= 0 && isFoot[static_cast<std::size_t>(links[i].parent)])
            isFoot[i] = true;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const bool counts = !hasFeet || isFoot[static_cast<std::size_t>(places[i].link)];
        if (counts && places[i].site != figure.referenceSite)
            floorPlaces.push_back(static_cast<int>(i));
    }
}

void Posture::liftToFloor()
{
    findFloorPlaces();
    double lowest = HUGE_VAL;
    for (const int i : floorPlaces) {
        const Place& place = places[static_cast<std::size_t>(i)];
        const Link& link = links[static_cast<std::size_t>(place.link)];
        lowest = std::min(lowest, turned(place.offset, link.rotation)[1] + link.position[1]);
    }
    if (lowest == HUGE_VAL)
        return;
    for (Link& link : links)
        link.position[1] -= lowest;
}

void Posture::writeTransforms()
{
    for (const Link& link : links)
        narrow(link.rotation, link.position, link.segment->globalTransform);
    for (const Place& place : places) {
        const Link& link = links[static_cast<std::size_t>(place.link)];
        // a site is its segment's frame, moved and turned only where it differs
        qMatrix& transform = place.site->globalTransform;
        transform = link.segment->globalTransform;
        Point position = link.position;
        if (!isZero(place.offset)) {
            add(position, turned(place.offset, link.rotation));
            for (std::size_t i = 0; i < 3; ++i)
                transform.m[3][i] = static_cast<float>(position[i]);
        }
        if (place.turned)
            narrow(product(place.rotation, link.rotation), position, transform);
    }
}

double Posture::bodyMass() const
{
    double sum = 0;
    for (const auto& segment : figure.segments)
        sum += std::max(0.0, double(segment->mass));
    return sum;
}

//   center = Σ m_i · (com_i · M_i) / Σ m_i        over the segments with weight
Point Posture::bodyCenter()
{
    double mass = 0;
    Point sum{0, 0, 0};
    for (const auto& segment : figure.segments) {
        if (!(segment->mass > 0))
            continue;
        const double m = double(segment->mass);
        const qVector& c = segment->centerOfMass;
        const auto& t = segment->globalTransform.m;
        for (std::size_t j = 0; j < 3; ++j)
            sum[j] += m
                      * (double(c[0]) * double(t[0][j]) + double(c[1]) * double(t[1][j])
                         + double(c[2]) * double(t[2][j]) + double(t[3][j]));
        mass += m;
    }
    if (mass > 0)
        return {sum[0] / mass, sum[1] / mass, sum[2] / mass};
    if (links.empty())
        return {0, 0, 0};
    const auto& root = links.front().segment->globalTransform.m[3];
    return {double(root[0]), double(root[1]), double(root[2])};
}

void Posture::updateBalancePoint()
{
    if (fixed || !figure.referenceSite)
        return;
    const Point center = bodyCenter();
    for (std::size_t i = 0; i < 3; ++i)
        figure.referenceSite->globalTransform.m[3][i] = static_cast<float>(center[i]);
}

void Posture::scaleLengths(double factor)
{
    for (Link& link : links) {
        for (FastStep& step : link.steps)
            for (std::size_t i = 0; i < 3; ++i)
                step.offset[i] = step.base[i] * factor;
        for (int i = 0; i < 3; ++i)
            link.segment->centerOfMass[i] = static_cast<float>(double(link.baseCenter[i]) * factor);
    }
    for (Place& place : places)
        for (std::size_t i = 0; i < 3; ++i)
            place.offset[i] = place.base[i] * factor;
}

void Posture::scaleMasses(const std::vector<double>& grams)
{
    for (std::size_t i = 0; i < grams.size(); ++i)
        if (!figure.segments[i]->massByHand)
            figure.segments[i]->mass = static_cast<float>(grams[i]);
}

double Posture::baseMassOf(std::size_t segment) const
{
    const int link = linkOf(figure.segments[segment].get());
    return link < 0 ? 0 : links[static_cast<std::size_t>(link)].baseMass;
}
