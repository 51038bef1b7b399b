// JSON output. Keys carry their units; a number that is not finite is null. docs/sstr.md tells the keys.
#include "JsonText.h"
#include "Report.h"
#include "Strategies.h"

namespace {

void putInputs(Json& document, const Inputs& inputs)
{
    Json loads = Json::array(), offsetLoads = Json::array(), torques = Json::array(), handLoads = Json::array();
    for (const LoadInput& load : inputs.loads) {
        Json entry = {{"site", load.site}, {"type", load.type}};
        if (load.hasOffset)
            putVector(entry, "offset", "cm", load.offset);
        putVector(entry, "force", "kgf", load.force);
        entry["weight_g"] = load.type == "weight" ? number(load.weight) : Json(nullptr);
        (load.hasOffset ? offsetLoads : loads).push_back(std::move(entry));
    }
    for (const TorqueInput& torque : inputs.torques) {
        Json entry = {{"joint", torque.joint}};
        putVector(entry, "moment", "nm", torque.moment);
        torques.push_back(std::move(entry));
    }
    for (const HandLoadInput& load : inputs.handLoads)
        handLoads.push_back({{"property", load.key}, {"text", load.text}});
    document["loads"] = std::move(loads);
    document["offset_loads"] = std::move(offsetLoads);
    document["torques"] = std::move(torques);
    document["hand_loads"] = std::move(handLoads);
}

Json jointOf(const JointResult& joint)
{
    const char* sides[] = {"centre", "right", "left"};
    Json entry = {{"joint", joint.joint},
                  {"side", sides[joint.sides.side]},
                  {"twin", joint.sides.twin.empty() ? Json(nullptr) : Json(joint.sides.twin)},
                  {"status", !joint.has     ? "none"
                             : joint.finite ? "result"
                                            : "not-finite"}};
    if (!joint.has)
        return entry;
    putVector(entry, "force", "kgf", joint.force);
    entry["force_kgf"] = number(joint.forceKgf());
    entry["force_n"] = number(joint.forceN());
    putVector(entry, "moment", "nm", joint.moment);
    entry["moment_nm"] = number(joint.momentNm());
    return entry;
}

}   // namespace

std::string jsonOf(const Report& report)
{
    const Support& support = report.support;
    Json document;
    document["format"] = "sstr-compute";
    document["version"] = 1;
    document["human"] = report.inputs.human;
    document["figure"] = report.inputs.figure;
    document["sex"] = report.sex ? Json(*report.sex) : Json(nullptr);
    document["stature_cm"] = report.statureCm ? Json(*report.statureCm) : Json(nullptr);
    document["body_mass_kg"] = number(report.bodyMassKg);
    document["center_of_mass_cm"] = numbers(report.centerOfMass);
    document["gravity_cm_s2"] = numbers(report.inputs.gravity);
    document["strategy_asked"] = report.inputs.strategy;
    document["strategy_effective"] = strategyText(support.effective);
    document["shares_percent"] = {
        {"right_foot", number(support.foot[qcRight])}, {"left_foot", number(support.foot[qcLeft])},
        {"right_knee", number(support.knee[qcRight])}, {"left_knee", number(support.knee[qcLeft])},
        {"right_hand", number(support.hand[qcRight])}, {"left_hand", number(support.hand[qcLeft])},
    };
    putInputs(document, report.inputs);
    Json joints = Json::array();
    for (const JointResult& joint : report.joints)
        joints.push_back(jointOf(joint));
    document["joints"] = std::move(joints);
    return jsonText(document);
}

std::string jsonOf(const Inputs& inputs)
{
    Json document;
    document["format"] = "sstr-loads";
    document["version"] = 1;
    document["human"] = inputs.human;
    document["figure"] = inputs.figure;
    document["gravity_cm_s2"] = numbers(inputs.gravity);
    document["strategy_asked"] = inputs.strategy;
    putInputs(document, inputs);
    return jsonText(document);
}
