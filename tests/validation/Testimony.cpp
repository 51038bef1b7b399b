// Testimony: one or two questions to a library, and their signs.
#include "Testimony.h"

Testimony testify(Witness& witness, const std::vector<WalkStep>& steps, int foot, const Loading& loading)
{
    const auto origin = [&](int body) { return witness.pose(body).origin; };

    std::vector<Wrench> onBodies(loading.loads.size());
    for (std::size_t i = 0; i < onBodies.size(); ++i)
        for (const AppliedForce& load : loading.loads[i])
            onBodies[i] = onBodies[i] + forceAt(load.force, load.point, origin(static_cast<int>(i)));
    for (const WalkStep& step : steps) {
        const auto torque = loading.torques.find(step.joint);
        Wrench& on = onBodies[static_cast<std::size_t>(step.beyond)];
        if (torque != loading.torques.end())
            on.moment = on.moment + torque->second;
    }
    witness.setForces(onBodies);
    witness.solve();

    Testimony result;
    result.held = witness.reaction(0);
    const Wrench holding = result.held;
    if (foot >= 0) {
        Wrench& on = onBodies[static_cast<std::size_t>(foot)];
        on = on + moved(holding, origin(0), origin(foot));
        witness.setForces(onBodies);
        witness.solve();
        result.held = witness.reaction(0);
    }
    for (const WalkStep& step : steps) {
        const Vec point = origin(step.joint);
        const Wrench reaction = witness.reaction(step.joint);
        result.points.push_back(point);
        result.beyond.push_back(step.before >= 0 ? -moved(holding, origin(0), point)
                                : step.upward    ? reaction
                                                 : -reaction);
    }
    return result;
}
