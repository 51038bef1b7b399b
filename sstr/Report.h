// Report: all that one computation has to show.
#pragma once

#include "Inputs.h"
#include "Names.h"
#include "Support.h"

#include <optional>
#include <string>
#include <vector>

/// What a joint carries.
struct JointResult {
    std::string joint;
    SidedName sides;   // its twin's name only when the figure has that joint
    bool has;          // whether there is a result
    bool finite;       // whether all its numbers are
    qVector force;     // kgf, global axes
    qVector moment;    // N·m about the joint, global axes

    float forceKgf() const { return force.mag(); }
    float forceN() const;
    float momentNm() const { return moment.mag(); }
};

struct Report {
    Inputs inputs;
    Support support;
    std::optional<std::string> sex;   // absent: not known
    std::optional<double> statureCm;
    float bodyMassKg = 0;
    qVector centerOfMass;               // cm, in the world
    std::vector<JointResult> joints;    // in the figure's order
    std::optional<float> ankleKgf[2];   // force carried at the ankle, by qcSide

    /// The joints whose results are no finite numbers.
    std::vector<std::string> notFinite() const;
};

/// Newton in a kilogram-force, from standard gravity (CGPM, 1901).
constexpr double kNewtonPerKgf = 9.80665;

/// Gathers the results of the last computation. @param inputs  as they were before it
Report makeReport(qmStaticStrength& analysis, const Inputs& inputs);

/// Each writes a report or inputs in one format, ending in a line break.
std::string tableOf(const Report& report);
std::string tableOf(const Inputs& inputs);
std::string jsonOf(const Report& report);
std::string jsonOf(const Inputs& inputs);
std::string csvOf(const Report& report);
std::string csvOf(const Inputs& inputs);

template <class Content> std::string textOf(const Content& content, const std::string& format)
{
    return format == "json" ? jsonOf(content) : format == "csv" ? csvOf(content) : tableOf(content);
}
