// Loading: from what was told to forces at points.
#include "Loading.h"

#include "NumberText.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr double kMetresPerSecond2 = 0.01;   // in a cm/s²
constexpr double kGramsPerKilogram = 1000;

class Gathering {
public:
    Gathering(const Case& told, const Figure& ofFigure, const HostFigure& ofHost, const Witness& witness)
        : drawn(told), figure(ofFigure), host(ofHost), gravity(fromHost(told.gravity, kMetresPerSecond2))
    {
        for (std::size_t i = 0; i < figure.bodies.size(); ++i)
            poses.push_back(witness.pose(static_cast<int>(i)));
    }

    Loading run()
    {
        for (std::size_t i = 0; i < figure.bodies.size(); ++i)
            result.weights.push_back(weightOf(figure.bodies[i], poses[i]));
        findBalancePoint();
        result.loads.resize(figure.bodies.size());
        for (std::size_t i = 0; i < host.sites().size(); ++i)
            addSite(i);
        for (const auto& [body, torque] : drawn.torques)
            result.torques[body] = fromHost(torque, 1);
        return std::move(result);
    }

private:
    AppliedForce weightOf(const Body& body, const Pose& pose) const
    {
        const Vec force = gravity * body.mass;
        const Vec point = pose * body.center;
        const double error = 9 * length(body.center) + length(pose.origin) + length(point);
        return {force, point, 4 * rounding() * length(force), rounding() * error};
    }

    void findBalancePoint()
    {
        double mass = 0, error = 0;
        Vec sum;
        for (std::size_t i = 0; i < figure.bodies.size(); ++i) {
            sum = sum + result.weights[i].point * figure.bodies[i].mass;
            mass += figure.bodies[i].mass;
        }
        balance = sum * (1 / mass);
        for (std::size_t i = 0; i < figure.bodies.size(); ++i)
            error = std::max(error, 4 * length(figure.bodies[i].center) + length(poses[i].origin)
                                        + length(result.weights[i].point - balance));
        balanceError = rounding() * (error + length(balance));
    }

    // The load of a site, or in a palm without one the hand's, and its loads with offsets, in a palm only beside a
    // load of its own.
    void addSite(std::size_t index)
    {
        const HostSite& site = host.sites()[index];
        const auto own = drawn.loads.find(index);
        if (own != drawn.loads.end()) {
            add(site, own->second, nullptr);
        } else if (site.isPalm) {
            const bool right = std::string(site.site->getFullName()).find("right") != std::string::npos;
            if (const std::optional<Load>& hand = drawn.handLoads[right ? qcRight : qcLeft])
                add(site, *hand, nullptr);
            return;
        }
        for (const OffsetLoad& load : drawn.offsetLoads)
            if (load.site == index)
                add(site, load.load, &load.offset);
    }

    void add(const HostSite& site, const Load& load, const qVector* offset)
    {
        const Pose pose = poses[static_cast<std::size_t>(site.place.body)] * site.place.inBody;
        AppliedForce applied;
        applied.point = site.isBalancePoint ? balance : pose.origin;
        applied.pointError = site.isBalancePoint ? balanceError : rounding() * length(pose.origin);
        if (offset) {
            applied.point = applied.point + fromHost(*offset, kMetresPerCm);
            applied.pointError += rounding() * length(applied.point);
        }
        double roundings = 0;
        switch (load.kind) {
        case Load::kWeight:
            applied.force = gravity * (double(load.grams) / kGramsPerKilogram);
            roundings = 3;
            break;
        case Load::kLocal:
            applied.force = pose.turn * fromHost(load.force, kNewtonsPerKgf);
            roundings = 7;
            break;
        case Load::kGlobal:
            applied.force = fromHost(load.force, kNewtonsPerKgf);
        }
        applied.forceError = roundings * rounding() * length(applied.force);
        result.loads[static_cast<std::size_t>(site.place.body)].push_back(applied);
    }

    const Case& drawn;
    const Figure& figure;
    const HostFigure& host;
    Vec gravity;   // m/s²
    std::vector<Pose> poses;
    Vec balance;
    double balanceError = 0;
    Loading result;
};

}   // namespace

double rounding()
{
    static const double scaled = [] {
        const char* scale = std::getenv("SSTR_TEST_TOLERANCE");
        return (scale ? numberIn<double>(scale) : 1.0) * 1.001 / (1 << 24);
    }();
    return scaled;
}

Loading loadingOf(const Case& drawn, const Figure& figure, const HostFigure& host, const Witness& witness)
{
    return Gathering(drawn, figure, host, witness).run();
}
