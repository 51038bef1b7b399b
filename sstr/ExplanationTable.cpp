// An explanation for people to read.
#include "Explanation.h"
#include "Messages.h"
#include "NumberText.h"
#include "Table.h"

#include <algorithm>

namespace {

using Cells = std::vector<std::string>;

void append(Cells& cells, const Cells& more)
{
    cells.insert(cells.end(), more.begin(), more.end());
}

std::string shareText(std::optional<float> share)
{
    return share ? fixedOrNot(double(*share), 1) : "-";
}

// "0.25"; nothing where all of it counts.
std::string factorText(float factor)
{
    return factor == 1.0f ? "" : fixedOrNot(double(factor), 3);
}

// A quantity that may be absent: its components and size.
Cells texts(const std::optional<qVector>& vector)
{
    return vector ? componentTexts(*vector, 3) : Cells{"-", "-", "-", "-"};
}

std::string methodText(const Explanation& e)
{
    switch (e.method) {
    case Explanation::kWalk:
        return std::string("walk: the sum of all that lies beyond the joint")
               + (e.trace.stopped ? ", up to where the walk stops" : "");
    case Explanation::kStandingLegs:
        return "legs on two feet: what comes to the waist and weighs above the ankles, shared by the balance about "
               "them";
    case Explanation::kSittingLegs:
        return "legs sitting: each leg's own weights and loads, carried by hip and ankle";
    default:
        return "none: " + e.strategyEffective + " does not reach this joint, it has no result";
    }
}

std::string supportText(const LegTerms& legs)
{
    if (legs.support == "both-feet")
        return "both feet, right leg " + shareText(legs.share[qcRight]) + " %, left leg "
               + shareText(legs.share[qcLeft]) + " %";
    return legs.support == "right-foot" ? "the right foot alone; the left leg hangs"
                                        : "the left foot alone; the right leg hangs";
}

std::string aboutText(const Explanation& e)
{
    Table table({Table::kLeft, Table::kLeft});
    table.line({"human", e.human + " (figure " + e.figure + ")"});
    table.line({"joint", e.joint});
    table.line({"strategy", e.strategyAsked == e.strategyEffective
                                ? e.strategyEffective
                                : e.strategyAsked + ", in effect " + e.strategyEffective});
    table.line({"method", methodText(e)});
    if (!e.legs.support.empty())
        table.line({"carries", supportText(e.legs)});
    for (const std::string& rule : e.legs.rules)
        table.line({"", rule});
    return table.text(0);
}

// What a reader has to know of a walk's rules, where they applied.
std::string walkRules(const Explanation& e)
{
    const Trace& trace = e.trace;
    std::string text;
    if (trace.walks > 1)
        text += "Two walks meet at this joint, from either side; a torque defined at the joint counts in each.\n";
    if (trace.stopped)
        text += "counts: on the segment where a walk stops, loads count half, and half again with all that is gathered "
                "there if the segment has mass;\n"
                "other joints there count by a share of what they have stored.\n";
    const auto& all = trace.contributions;
    if (std::any_of(all.begin(), all.end(), [](const auto& c) { return c.kind == Contribution::kPlaceholder; }))
        text += "placeholder: that joint's moment is at most 0.01 N·m, and (0.00001, 0.00001, 0.00001) counts in its "
                "place; the line is the difference.\n";
    for (const LeftOut& left : trace.leftOut)
        text += "Left out as negligible at " + escaped(left.joint) + ": force "
                + fixedOrNot(double(left.force.mag()), 4) + " kgf, moment " + fixedOrNot(double(left.moment.mag()), 4)
                + " N·m (" + std::to_string(left.contributions)
                + (left.contributions == 1 ? " contribution).\n" : " contributions).\n");
    if (!trace.stored)
        text += "Force and moment are both at most 0.01 (kgf, N·m): the joint has no result.\n";
    if (e.placeholder)
        text +=
            "The moment is at most 0.01 N·m: it is stored as (0.00001, 0.00001, 0.00001), and there are no shares of "
            "it.\n";
    return text;
}

std::string walkText(const Explanation& e)
{
    const Trace& trace = e.trace;
    std::vector<Table::Align> columns(13, Table::kRight);
    columns[0] = columns[1] = Table::kLeft;
    Table table(columns);
    const bool counts = std::any_of(trace.contributions.begin(), trace.contributions.end(),
                                    [](const Contribution& c) { return c.factor != 1.0f; });
    const auto line = [&](Cells cells, const std::string& factor, const Cells& force, const std::string& forceShare,
                          const Cells& moment, const std::string& momentShare) {
        if (counts)
            cells.push_back(factor);
        append(cells, force);
        cells.push_back(forceShare);
        append(cells, moment);
        cells.push_back(momentShare);
        table.line(cells);
    };
    const auto total = [](bool shared) { return std::string(shared ? "100.0" : "-"); };

    line({"what", "where"}, "counts", {"Fx kgf", "Fy kgf", "Fz kgf", "|F| kgf"}, "% of F",
         {"Mx N·m", "My N·m", "Mz N·m", "|M| N·m"}, "% of M");
    for (const Contribution& each : trace.contributions)
        line({nameOf(each), each.place}, factorText(each.factor), componentTexts(each.force, 3),
             shareText(each.forceShare), componentTexts(each.moment, 3), shareText(each.momentShare));
    const bool any = !trace.contributions.empty();
    line({"sum", ""}, "", componentTexts(e.sum.force, 3), total(any && trace.contributions.front().forceShare),
         componentTexts(e.sum.moment, 3), total(any && trace.contributions.front().momentShare));
    const auto stored = e.stored ? std::optional(*e.stored) : std::nullopt;
    line({"stored", ""}, "", texts(stored ? std::optional(stored->force) : std::nullopt), "",
         texts(stored ? std::optional(stored->moment) : std::nullopt), "");

    const char* orders[] = {", by share of the moment", ", by share of the force", ""};
    std::string text = "\nWhat it adds to the force and to the moment about the joint";
    text += orders[e.order];
    text += "; axes: x to the figure's left, y up, z forward.\n\n" + table.text(2);
    const std::string rules = walkRules(e);
    return text + (rules.empty() ? "" : "\n" + rules);
}

std::string legText(const Explanation& e)
{
    std::vector<Table::Align> columns(14, Table::kRight);
    columns[0] = columns[1] = Table::kLeft;
    Table table(columns);
    table.line({"what", "where", "counts", "Fx kgf", "Fy kgf", "Fz kgf", "|F| kgf", "at x cm", "y cm", "z cm", "Mx N·m",
                "My N·m", "Mz N·m", "|M| N·m"});
    for (const LegTerm& term : e.legs.terms) {
        Cells cells = {term.what, term.place, factorText(term.factor)};
        append(cells, componentTexts(term.force, 3));
        const Cells point = texts(term.point);
        cells.insert(cells.end(), point.begin(), point.begin() + 3);
        append(cells, texts(term.couple));
        table.line(cells);
    }
    Cells cells = {"stored", "", ""};
    append(cells, texts(e.stored ? std::optional(e.stored->force) : std::nullopt));
    append(cells, {"", "", ""});
    append(cells, texts(e.stored ? std::optional(e.stored->moment) : std::nullopt));
    table.line(cells);

    std::string text = "\nThe terms: a force, the point where it acts (\"-\": it adds no moment by its place), and a "
                       "moment that it brings itself.\n\n"
                       + table.text(2);
    if (!e.legs.notCounted.empty())
        text += "\nDo not count: " + e.legs.notCounted + ".\n";
    return text;
}

}   // namespace

std::string nameOf(const Contribution& contribution)
{
    const std::string& type = contribution.type;
    const std::string local = type == "local" ? "local " : "";
    switch (contribution.kind) {
    case Contribution::kSegmentWeight:
        return "segment weight";
    case Contribution::kLoad:
        return type == "weight" ? "weight" : local + "load";
    case Contribution::kOffsetLoad:
        return type == "weight" ? "weight with offset" : local + "load with offset";
    case Contribution::kHandLoad:
        return local + "hand load";
    case Contribution::kTorque:
        return "torque";
    case Contribution::kJointResult:
        return "joint result";
    default:
        return "placeholder";
    }
}

std::string tableOf(const Explanation& e)
{
    switch (e.method) {
    case Explanation::kWalk:
        return aboutText(e) + walkText(e);
    case Explanation::kStandingLegs:
    case Explanation::kSittingLegs:
        return aboutText(e) + legText(e);
    default:
        return aboutText(e);
    }
}
