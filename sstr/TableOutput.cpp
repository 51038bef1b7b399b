// Table output: a report for people to read, at most 140 columns wide with names of usual length.
#include "NumberText.h"
#include "Report.h"
#include "Strategies.h"
#include "Table.h"

#include <map>

namespace {

std::string sharesText(const std::optional<float> (&shares)[2], const char* what)
{
    if (!shares[qcRight] || !shares[qcLeft])
        return "";
    return std::string("right ") + what + " " + fixed(double(*shares[qcRight]), 1) + " %, left " + what + " "
           + fixed(double(*shares[qcLeft]), 1) + " %";
}

std::string joined(const std::string& a, const std::string& b)
{
    return a + (a.empty() || b.empty() ? "" : "; ") + b;
}

std::string supportText(const Support& support)
{
    const std::string text = joined(sharesText(support.foot, "foot"),
                                    joined(sharesText(support.knee, "knee"), sharesText(support.hand, "hand")));
    return text.empty() ? "-" : text;
}

std::string ankleText(const Report& report)
{
    const auto one = [&](qcSide side) {
        const std::optional<float>& force = report.ankleKgf[side];
        return force ? fixedOrNot(double(*force), 3) + " kgf" : std::string("-");
    };
    return "right " + one(qcRight) + ", left " + one(qcLeft);
}

void addInputs(Table& table, const Inputs& inputs)
{
    table.line({"load", "at", "offset cm", "value"});
    for (const LoadInput& load : inputs.loads) {
        const std::string force = vectorText(load.force, 3) + " kgf";
        const std::string value = load.type == "weight"  ? shortest(load.weight) + " g, " + force
                                  : load.type == "local" ? force + " in the site's axes"
                                                         : force;
        table.line({load.type, load.site, load.hasOffset ? vectorText(load.offset, 2) : "-", value});
    }
    for (const TorqueInput& torque : inputs.torques)
        table.line({"torque", torque.joint, "-", vectorText(torque.moment, 3) + " N·m"});
    for (const HandLoadInput& load : inputs.handLoads)
        table.line({"hand load", load.key, "-", load.text});
}

std::string inputsText(const Inputs& inputs)
{
    if (inputs.loads.empty() && inputs.torques.empty() && inputs.handLoads.empty())
        return "Loads and torques: none\n";
    Table table({Table::kLeft, Table::kLeft, Table::kLeft, Table::kLeft});
    addInputs(table, inputs);
    return "Loads and torques\n" + table.text(2);
}

using Cells = std::vector<std::string>;

void append(Cells& cells, const Cells& more)
{
    cells.insert(cells.end(), more.begin(), more.end());
}

Cells forceCells(const JointResult* joint)
{
    if (!joint || !joint->has)
        return {"-", "-", "-", "-", "-"};
    Cells cells = componentTexts(joint->force, 3);
    cells.push_back(fixedOrNot(double(joint->forceN()), 1));
    return cells;
}

Cells momentCells(const JointResult* joint)
{
    return joint && joint->has ? componentTexts(joint->moment, 3) : Cells{"-", "-", "-", "-"};
}

// Joints without a twin, force and moment in one line.
std::string centreText(const Report& report)
{
    Table table({Table::kLeft, Table::kRight, Table::kRight, Table::kRight, Table::kRight, Table::kRight, Table::kRight,
                 Table::kRight, Table::kRight, Table::kRight});
    table.line({"joint", "Fx kgf", "Fy kgf", "Fz kgf", "|F| kgf", "|F| N", "Mx N·m", "My N·m", "Mz N·m", "|M| N·m"});
    bool any = false;
    for (const JointResult& joint : report.joints) {
        if (!joint.sides.twin.empty())
            continue;
        any = true;
        Cells cells = {joint.joint};
        append(cells, forceCells(&joint));
        append(cells, momentCells(&joint));
        table.line(cells);
    }
    return any ? "Joints on the centre line\n" + table.text(2) : "";
}

// Joints with a twin: both sides in one line, forces and moments one below the other.
std::string pairsText(const Report& report)
{
    std::map<std::string, const JointResult*> byName;
    for (const JointResult& joint : report.joints)
        byName.emplace(joint.joint, &joint);

    std::vector<Table::Align> columns(13, Table::kRight);
    columns[0] = columns[1] = Table::kLeft;
    Table table(columns);
    table.line({"joint", "", "right x", "y", "z", "size", "size N", "|", "left x", "y", "z", "size", "size N"});
    bool any = false;
    for (const JointResult& joint : report.joints) {
        // a pair stands where its first joint stands
        const auto found = byName.find(joint.sides.twin);
        const JointResult* twin = joint.sides.twin.empty() || found == byName.end() ? nullptr : found->second;
        if (joint.sides.twin.empty() || (twin && twin < &joint))
            continue;
        any = true;
        const JointResult* right = joint.sides.side == SidedName::kRight ? &joint : twin;
        const JointResult* left = joint.sides.side == SidedName::kRight ? twin : &joint;
        Cells forces = {joint.sides.common, "F kgf"};
        append(forces, forceCells(right));
        forces.emplace_back("|");
        append(forces, forceCells(left));
        table.line(forces);
        Cells moments = {"", "M N·m"};
        append(moments, momentCells(right));
        append(moments, {"", "|"});
        append(moments, momentCells(left));
        table.line(moments);
    }
    return any ? "Joints with a twin\n" + table.text(2) : "";
}

std::string aboutText(const Report& report)
{
    const std::string asked = report.inputs.strategy;
    const std::string effective = strategyText(report.support.effective);
    Table table({Table::kLeft, Table::kLeft});
    table.line({"human", report.inputs.human + " (figure " + report.inputs.figure + ")"});
    table.line({"body", (report.sex ? *report.sex + ", " : "")
                            + (report.statureCm ? "stature " + fixed(*report.statureCm, 1) + " cm, " : "") + "mass "
                            + fixedOrNot(double(report.bodyMassKg), 3) + " kg"});
    table.line({"centre of mass", vectorText(report.centerOfMass, 2) + " cm"});
    table.line({"gravity", vectorText(report.inputs.gravity, 3) + " cm/s²"});
    table.line({"strategy", asked == effective ? effective : asked + ", in effect " + effective});
    table.line({"share of support", supportText(report.support)});
    table.line({"force at ankles", ankleText(report)});
    return table.text(0);
}

}   // namespace

std::string tableOf(const Report& report)
{
    return aboutText(report) + "\n" + inputsText(report.inputs)
           + "\nForces and moments that the body beyond a joint puts on it; axes: x to the figure's left, y up, "
             "z forward. \"-\": no result.\n\n"
           + centreText(report) + "\n" + pairsText(report);
}

std::string tableOf(const Inputs& inputs)
{
    Table table({Table::kLeft, Table::kLeft});
    table.line({"human", inputs.human + " (figure " + inputs.figure + ")"});
    table.line({"gravity", vectorText(inputs.gravity, 3) + " cm/s²"});
    table.line({"strategy", inputs.strategy});
    return table.text(0) + "\n" + inputsText(inputs);
}
