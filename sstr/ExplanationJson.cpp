// An explanation as JSON. docs/sstr.md tells the keys.
#include "Explanation.h"
#include "JsonText.h"

#include <cmath>

namespace {

void putForce(Json& object, const qVector& force)
{
    putVector(object, "force", "kgf", force);
    object["force_kgf"] = number(force.mag());
}

void putMoment(Json& object, const qVector& moment)
{
    putVector(object, "moment", "nm", moment);
    object["moment_nm"] = number(moment.mag());
}

Json resultOf(const Explanation::Result& result)
{
    Json object;
    putForce(object, result.force);
    putMoment(object, result.moment);
    return object;
}

void putPoint(Json& object, const std::optional<qVector>& point)
{
    const qVector nowhere(NAN, NAN, NAN);
    putVector(object, "point", "cm", point.value_or(nowhere));
}

const char* kindOf(Contribution::Kind kind)
{
    const char* kinds[] = {"segment_weight", "load",         "offset_load", "hand_load",
                           "torque",         "joint_result", "placeholder"};
    return kinds[kind];
}

Json jsonOf(const Contribution& each)
{
    Json object = {{"kind", kindOf(each.kind)},
                   {"type", each.type.empty() ? Json(nullptr) : Json(each.type)},
                   {"place", each.place},
                   {"factor", number(each.factor)}};
    putPoint(object, each.point);
    putForce(object, each.force);
    putMoment(object, each.moment);
    object["force_share_percent"] = number(each.forceShare);
    object["moment_share_percent"] = number(each.momentShare);
    return object;
}

Json jsonOf(const LeftOut& left)
{
    Json object = {{"joint", left.joint}, {"contributions", left.contributions}};
    putForce(object, left.force);
    putMoment(object, left.moment);
    return object;
}

Json jsonOf(const LegTerm& term)
{
    Json object = {{"what", term.what}, {"place", term.place}, {"factor", number(term.factor)}};
    putForce(object, term.force);
    putPoint(object, term.point);
    putMoment(object, term.couple.value_or(qVector()));
    return object;
}

template <class Element> Json arrayOf(const std::vector<Element>& elements)
{
    Json array = Json::array();
    for (const Element& each : elements)
        array.push_back(jsonOf(each));
    return array;
}

void putWalk(Json& document, const Explanation& e)
{
    const char* orders[] = {"moment", "force", "walk"};
    document["walks"] = e.trace.walks;
    document["sorted_by"] = orders[e.order];
    document["contributions"] = arrayOf(e.trace.contributions);
    document["left_out"] = arrayOf(e.trace.leftOut);
    document["sum"] = resultOf(e.sum);
    document["placeholder"] = e.placeholder;
}

void putLegs(Json& document, const LegTerms& legs)
{
    if (!legs.support.empty()) {
        document["support"] = legs.support;
        document["leg_shares_percent"] = {{"right", number(legs.share[qcRight])}, {"left", number(legs.share[qcLeft])}};
    }
    document["rules"] = legs.rules;
    document["terms"] = arrayOf(legs.terms);
    document["not_counted"] = legs.notCounted;
}

}   // namespace

std::string jsonOf(const Explanation& e)
{
    const char* methods[] = {"not-reached", "walk", "two-feet-legs", "sitting-legs"};
    Json document;
    document["format"] = "sstr-explain";
    document["version"] = 1;
    document["human"] = e.human;
    document["figure"] = e.figure;
    document["strategy_asked"] = e.strategyAsked;
    document["strategy_effective"] = e.strategyEffective;
    document["joint"] = e.joint;
    document["method"] = methods[e.method];
    document["status"] = !e.stored ? "none" : e.isFinite() ? "result" : "not-finite";
    document["stored"] = e.stored ? resultOf(*e.stored) : Json(nullptr);
    if (e.method == Explanation::kWalk)
        putWalk(document, e);
    else if (e.method != Explanation::kNotReached)
        putLegs(document, e.legs);
    return jsonText(document);
}
