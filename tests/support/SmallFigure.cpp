// Small figures.
#include "SmallFigure.h"

#include <stdexcept>

using nlohmann::json;

namespace {

json transform(const SmallFigure::Vector& position, const SmallFigure::Rows& axes)
{
    json rows = json::array();
    for (const SmallFigure::Vector& axis : axes)
        rows.push_back({axis[0], axis[1], axis[2], 0});
    rows.push_back({position[0], position[1], position[2], 1});
    return rows;
}

}   // namespace

SmallFigure::SmallFigure(const std::string& name)
    : figure{{"name", name}, {"segments", json::array()}, {"sites", json::array()}, {"joints", json::array()}}
{}

json& SmallFigure::segmentNamed(const std::string& name)
{
    for (json& segment : figure["segments"])
        if (segment["name"] == name)
            return segment;
    throw std::logic_error("no segment " + name);
}

json& SmallFigure::siteKeyed(const std::string& key)
{
    for (json& site : figure["sites"])
        if (site["key"] == key)
            return site;
    throw std::logic_error("no site " + key);
}

SmallFigure& SmallFigure::segment(const std::string& name, double grams, Vector centerOfMass, Vector position,
                                  Rows axes)
{
    figure["segments"].push_back({{"name", name},
                                  {"mass", grams},
                                  {"com", centerOfMass},
                                  {"transform", transform(position, axes)},
                                  {"sites", json::array()},
                                  {"attachment", nullptr}});
    return *this;
}

SmallFigure& SmallFigure::site(const std::string& segment, const std::string& name, Vector position, Rows axes)
{
    const std::string key = segment + "." + name;
    json& owner = segmentNamed(segment);
    owner["sites"].push_back(key);
    if (owner["attachment"].is_null())
        owner["attachment"] = key;
    figure["sites"].push_back({{"key", key},
                               {"segment", segment},
                               {"name", name},
                               {"transform", transform(position, axes)},
                               {"second_transform", transform(position, axes)},
                               {"joints", json::array()}});
    return *this;
}

SmallFigure& SmallFigure::secondPosition(const std::string& siteKey, Vector position)
{
    siteKeyed(siteKey)["second_transform"] = transform(position, kWorldAxes);
    return *this;
}

SmallFigure& SmallFigure::attachment(const std::string& segment, const std::string& siteKey)
{
    segmentNamed(segment)["attachment"] = siteKey;
    return *this;
}

SmallFigure& SmallFigure::joint(const std::string& name, const std::string& firstSiteKey,
                                const std::string& secondSiteKey, const std::vector<double>& angles,
                                const std::string& fullName)
{
    const std::string full = fullName.empty() ? figure["name"].get<std::string>() + "." + name : fullName;
    figure["joints"].push_back({{"name", name},
                                {"full_name", full},
                                {"sites", {firstSiteKey, secondSiteKey}},
                                {"inboard", firstSiteKey},
                                {"angles", angles}});
    // a full name refers to the joint where its bare name is not unique
    const std::string reference = fullName.empty() ? name : fullName;
    for (const std::string& key : {firstSiteKey, secondSiteKey})
        siteKeyed(key)["joints"].push_back(reference);
    return *this;
}

SmallFigure& SmallFigure::role(const std::string& side, const std::string& role, const std::string& part)
{
    figure[side][role] = part;
    return *this;
}

SmallFigure& SmallFigure::pelvisSite(const std::string& siteKey)
{
    figure["pelvis_site"] = siteKey;
    return *this;
}

SmallFigure& SmallFigure::waist(const std::string& joint)
{
    figure["waist"] = joint;
    return *this;
}

SmallFigure& SmallFigure::referenceSite(const std::string& siteKey)
{
    figure["reference_site"] = siteKey;
    return *this;
}

SmallFigure& SmallFigure::anthro(const std::string& state)
{
    figure["anthro"] = state;
    return *this;
}

SmallFigure& SmallFigure::property(const json& address, const std::string& key, const json& value)
{
    figure["properties"].push_back({address, {{key, value}}});
    return *this;
}

std::string SmallFigure::text() const
{
    return figure.dump();
}

SmallFigure smallBody(const std::string& name)
{
    SmallFigure body(name);
    body.segment("lower_torso", 10000, {0, 5, 0}, {0, 90, 0})
        .site("lower_torso", "proximal", {0, 90, 0})
        .site("lower_torso", "distal", {0, 100, 0})
        .site("lower_torso", "h_point", {0, 90, 0})
        .site("lower_torso", "center_of_mass", {0, 95, 0})
        .site("lower_torso", "balance_point", {0, 100, 5})
        .segment("l5", 2000, {0, 5, 0}, {0, 100, 0})
        .site("l5", "proximal", {0, 100, 0})
        .site("l5", "distal", {0, 110, 0})
        .joint("waist", "lower_torso.distal", "l5.proximal")
        .segment("t8", 10000, {0, 10, 0}, {0, 110, 0})
        .site("t8", "proximal", {0, 110, 0})
        .site("t8", "distal", {0, 130, 0})
        .joint("t8_l5", "l5.distal", "t8.proximal")
        .segment("upper_torso", 8000, {0, 5, 0}, {0, 130, 0})
        .site("upper_torso", "proximal", {0, 130, 0})
        .joint("solar_plexus", "t8.distal", "upper_torso.proximal");

    for (const auto& [side, sign] : {std::pair<std::string, double>{"right", -1}, {"left", 1}}) {
        const auto part = [&side = side](const std::string& what) { return side + "_" + what; };
        const auto key = [&](const std::string& segment, const std::string& siteName) {
            return part(segment) + "." + siteName;
        };
        body.site("upper_torso", part("clavicle_joint"), {sign * 5, 140, 0})
            .segment(part("clavicle"), 1000, {sign * 7.5, 0, 0}, {sign * 5, 140, 0})
            .site(part("clavicle"), "proximal", {sign * 5, 140, 0})
            .site(part("clavicle"), "distal", {sign * 20, 140, 0})
            .joint(part("clavicle_joint"), "upper_torso." + part("clavicle_joint"), key("clavicle", "proximal"))
            .segment(part("arm"), 3000, {0, -30, 0}, {sign * 20, 140, 0})
            .site(part("arm"), "proximal", {sign * 20, 140, 0})
            .site(part("arm"), "distal", {sign * 20, 80, 0})
            .joint(part("shoulder"), key("clavicle", "distal"), key("arm", "proximal"))
            .segment(part("hand"), 500, {0, -8, 0}, {sign * 20, 80, 0})
            .site(part("hand"), "proximal", {sign * 20, 80, 0})
            .site(part("hand"), part("palmcenter"), {sign * 20, 72, 0})
            .joint(part("wrist"), key("arm", "distal"), key("hand", "proximal"))
            .site("lower_torso", part("hip"), {sign * 10, 90, 0})
            .segment(part("upper_leg"), 8000, {0, -20, 0}, {sign * 10, 90, 0})
            .site(part("upper_leg"), "proximal", {sign * 10, 90, 0})
            .site(part("upper_leg"), "distal", {sign * 10, 50, 0})
            .joint(part("hip"), "lower_torso." + part("hip"), key("upper_leg", "proximal"))
            .segment(part("lower_leg"), 4000, {0, -20, 0}, {sign * 10, 50, 0})
            .site(part("lower_leg"), "proximal", {sign * 10, 50, 0})
            .site(part("lower_leg"), "distal", {sign * 10, 10, 0})
            .joint(part("knee"), key("upper_leg", "distal"), key("lower_leg", "proximal"), {0.0})
            .segment(part("foot"), 800, {0, -5, 5}, {sign * 10, 10, 0})
            .site(part("foot"), "proximal", {sign * 10, 10, 0})
            .site(part("foot"), "sole", {sign * 10, 0, 5})
            .site(part("foot"), "distal", {sign * 10, 2, 15})
            .joint(part("ankle"), key("lower_leg", "distal"), key("foot", "proximal"))
            .segment(part("toes"), 200, {0, 0, 3}, {sign * 10, 2, 15})
            .site(part("toes"), "proximal", {sign * 10, 2, 15})
            .joint(part("ball"), key("foot", "distal"), key("toes", "proximal"))
            .role(side, "foot_site", key("foot", "sole"))
            .role(side, "hand_site", key("hand", part("palmcenter")))
            .role(side, "knee", part("knee"))
            .role(side, "ankle", part("ankle"))
            .role(side, "hip", part("hip"));
    }
    body.pelvisSite("lower_torso.proximal").waist("waist").referenceSite("lower_torso.balance_point");
    return body;
}

SmallFigure threeSites(const std::string& name)
{
    SmallFigure figure(name);
    figure.segment("hand", 500)
        .site("hand", "grip", {0, 80, 0})
        .site("hand", "tip", {0, 70, 0})
        .segment("head", 4000)
        .site("head", "top", {0, 180, 0});
    return figure;
}
