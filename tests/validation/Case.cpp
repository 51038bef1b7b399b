// Case: drawing and telling.
#include "Case.h"

#include "Chance.h"
#include "NumberText.h"

#include <string>

namespace {

constexpr float kStandardGravity = 980.665f;   // cm/s²
constexpr double kOfLimits = 0.9;              // of an angle's range, about its middle

class Draw {
public:
    Draw(unsigned number, const Figure& ofFigure, const HostFigure& ofHost)
        : chance(number), figure(ofFigure), host(ofHost), kind(number % 4), none(number % 16 == 15)
    {
        for (std::size_t i = 0; i < host.sites().size(); ++i)
            if (host.sites()[i].isPalm)
                palms.push_back(i);
    }

    Case run()
    {
        Case c;
        c.rootCm = vec(size(0, 2.3));
        c.rootDegrees = vec(180);
        for (const Body& body : figure.bodies)
            for (const Hinge& hinge : body.hinges) {
                const double middle = (hinge.lower + hinge.upper) / 2, half = (hinge.upper - hinge.lower) / 2;
                c.angles.push_back(middle + kOfLimits * chance.within(-half, half));
            }
        c.gravity = gravity();
        c.gravityLast = chance.coin();
        for (std::size_t i = chance.below(9); i > 0; --i)
            c.loads[site()] = load();
        for (std::size_t i = chance.below(9); i > 0; --i)
            c.offsetLoads.push_back({site(), vector(30), load()});
        for (std::size_t i = chance.below(5); i > 0; --i)
            c.torques[1 + static_cast<int>(chance.below(figure.bodies.size() - 1))] = vector(size(-2, 1.5));
        for (auto& hand : c.handLoads)
            if (chance.below(4) == 0)
                hand = force();
        return c;
    }

private:
    Vec vec(double most)
    {
        const auto v = chance.vector(most);
        return {v[0], v[1], v[2]};
    }
    qVector vector(double most)
    {
        const auto v = chance.vector(most);
        return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
    }
    double size(double lowPower, double highPower) { return std::pow(10, chance.within(lowPower, highPower)); }

    qVector gravity()
    {
        if (none)
            return {};
        if (kind == 0)
            return {0, -kStandardGravity, 0};
        qVector g = vector(kind == 3 ? 100 : 2000);
        if (kind == 1) {
            g.normalize();
            g.scale(kStandardGravity);
        }
        return g;
    }

    // Every third one in a palm, where it matters what else is there.
    std::size_t site()
    {
        if (!palms.empty() && chance.below(3) == 0)
            return palms[chance.below(palms.size())];
        return chance.below(host.sites().size());
    }

    Load load()
    {
        if (chance.below(3) == 0)
            return {Load::kWeight, {}, static_cast<float>(size(0, 4.5))};
        return force();
    }
    Load force() { return {chance.coin() ? Load::kLocal : Load::kGlobal, vector(size(-3, 1.5)), 0}; }

    Chance chance;
    const Figure& figure;
    const HostFigure& host;
    unsigned kind;
    bool none;
    std::vector<std::size_t> palms;
};

constexpr const char* kHandLoadKeys[2] = {"RightZelHandLoads", "LeftZelHandLoads"};
constexpr const char* kHandLocalKeys[2] = {"RightZelHandLoadsLocal", "LeftZelHandLoadsLocal"};

// Nine digits bring a float back to the bit.
std::string text(const qVector& v)
{
    return numberText(double(v[0])) + " " + numberText(double(v[1])) + " " + numberText(double(v[2]));
}

void tellLoads(const Case& drawn, HostFigure& host, qmStaticStrength& analysis)
{
    for (const auto& [site, load] : drawn.loads) {
        if (load.kind == Load::kWeight)
            analysis.setWeightLoad(host.sites()[site].site, load.grams);
        else
            analysis.setLoad(host.sites()[site].site, load.force, load.kind == Load::kLocal);
    }
    for (const OffsetLoad& o : drawn.offsetLoads) {
        if (o.load.kind == Load::kWeight)
            analysis.setWeightLoadWithOffset(host.sites()[o.site].site, o.offset, o.load.grams);
        else
            analysis.setLoadWithOffset(host.sites()[o.site].site, o.offset, o.load.force, o.load.kind == Load::kLocal);
    }
    for (const auto& [body, torque] : drawn.torques) {
        qVector moment = torque;
        analysis.setDefinedTorque(host.joint(body), moment);
    }
    for (const qcSide side : {qcRight, qcLeft}) {
        host.host().removeProperty(kHandLoadKeys[side]);
        host.host().removeProperty(kHandLocalKeys[side]);
        const std::optional<Load>& load = drawn.handLoads[side];
        if (!load)
            continue;
        host.host().setProperty(kHandLoadKeys[side], qcValue(text(load->force).c_str()));
        host.host().setProperty(kHandLocalKeys[side], qcValue(load->kind == Load::kLocal ? "1" : "0"));
    }
}

}   // namespace

Case drawCase(unsigned number, const Figure& figure, const HostFigure& host)
{
    return Draw(number, figure, host).run();
}

void tell(const Case& drawn, HostFigure& host, qmStaticStrength& analysis)
{
    host.setRoot(drawn.rootCm, drawn.rootDegrees);
    host.setAngles(drawn.angles);
    analysis.clear();
    // weights told without gravity would be no loads, and dropped when gravity comes
    analysis.setGravity(drawn.gravityLast ? qVector(0, -kStandardGravity, 0) : drawn.gravity);
    tellLoads(drawn, host, analysis);
    if (drawn.gravityLast)
        analysis.setGravity(drawn.gravity);
}
