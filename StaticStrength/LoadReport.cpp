// Load report: the loads, the strategy and gravity as text, a line a call.
#include "LoadValues.h"
#include "OutOfMemory.h"
#include "PointNumbers.h"
#include "SavedLists.h"
#include "StrategyNames.h"
#include "qmStaticStrength.h"

#include <cstdio>
#include <string>
#include <utility>

namespace {

constexpr std::size_t kLineSize = 2048;   // with the closing zero

/// What the next call gives.
enum Phase {
    kOver = -1,          // or never begun
    kGravityGiven = 0,   // the end, once
    kEntries = 1,        // the entry after the one at hand
    kStrategyNext = 2,
    kGravityNext = 3
};

char noLoads[] = "No loads.";

/// How far a report has come.
struct Place {
    Phase phase;
    qcValue* entry;   // the one at hand, in the copy of the list
};

/// The one report of the module, whichever analysis is asked.
struct Report {
    Place place = {kOver, nullptr};
    qcValue loads;   // a copy of the figure's list: it may change between two calls
    char line[kLineSize];

    /// Where the next call goes on.
    Place nextPlace() const
    {
        if (place.phase != kEntries)
            return place;
        qcValue* next = place.entry ? place.entry->next : nullptr;
        return {next ? kEntries : kStrategyNext, next};
    }

    /// Writes a line around a name that others chose: one too long is cut, at the end of a character.
    char* write(const std::string& before, std::string name, const std::string& after)
    {
        std::size_t room = kLineSize - 1 - before.size() - after.size();
        if (name.size() > room) {
            // a character of UTF-8 has at most three bytes that go on with it
            for (int i = 0; i < 3 && (static_cast<unsigned char>(name[room]) & 0xC0u) == 0x80u; ++i)
                --room;
            name.resize(room);
        }
        std::snprintf(line, kLineSize, "%s%s%s", before.c_str(), name.c_str(), after.c_str());
        return line;
    }
};

Report& theReport()
{
    static Report report;
    return report;
}

// "(x, y, z)" with two decimals.
std::string vectorText(const qVector& v)
{
    char text[160];   // with three of the longest floats it has 135 characters
    std::snprintf(text, sizeof text, "(%.2f, %.2f, %.2f)", double(v[0]), double(v[1]), double(v[2]));
    return text;
}

char* writeEntry(Report& report, qcValue* entry, const qVector& gravity)
{
    char* key;
    qcValue* made = nullptr;
    qVector load;
    int local;
    float weight;
    const bool parsed = entry && parseLoadEntry(*entry, gravity, key, &made);
    const OwnedValue value(made);
    if (!parsed || !decodeLoadValue(*value, load, local, &weight))
        return report.write("(Error)", "", "");
    if (weight >= 0.0f) {
        char grams[80];   // the longest float has 42 characters
        std::snprintf(grams, sizeof grams, "\tWeight: %.1f gr", double(weight));
        return report.write("", key, grams);
    }
    return report.write("", key, std::string(local ? "\tLocal" : "\tGlobal") + " Load: " + vectorText(load) + " Kg-F");
}

char* writeStrategy(Report& report, const qcFigure* figure)
{
    qcValue value;
    char* name;
    if (!figure->getProperty(kStrategyKey, &value) || !value.get(name))
        return report.write("(No Strategy Specified)", "", "");
    return report.write("Strategy: \"", name, "\"");
}

// Copies the figure's loads and puts the report at their beginning. @return false when there is no list of them
bool begin(const qcFigure* figure, qcValue& loads, Place& place)
{
    const bool hasList = figure->getProperty(kLoadListKey, &loads) && loads.kind == qcValue::List;
    place = {hasList ? kEntries : kGravityNext, loads.firstElement()};
    return hasList;
}

// The line of a place, and what then comes.
char* writeLine(Report& report, Place& place, const qcFigure* figure, const qVector& gravity)
{
    switch (place.phase) {
    case kEntries:
        return writeEntry(report, place.entry, gravity);
    case kStrategyNext:
        place.phase = kGravityNext;
        return writeStrategy(report, figure);
    case kGravityNext:
        place.phase = kGravityGiven;
        return report.write("Gravity: ", "", vectorText(gravity) + " cm/sec^2");
    case kGravityGiven:
        place.phase = kOver;
        return nullptr;
    case kOver:
        break;
    }
    return nullptr;
}

}   // namespace

// The report moves on only once the line is written, so that a line for which memory ran out is not lost.
char* qmStaticStrength::reportLoads(int start)
{
    if (isOrphaned("reportLoads"))
        return nullptr;
    return resultOr<char*>(nullptr, "reportLoads", [&] {
        Report& report = theReport();
        const PointNumbers pointNumbers;
        Place place = report.nextPlace();
        if (start == 0) {
            char* line = writeLine(report, place, figure, gravity);
            report.place = place;
            return line;
        }
        qcValue loads;
        const bool hasList = begin(figure, loads, place);
        char* line = hasList ? writeLine(report, place, figure, gravity) : noLoads;
        report.loads = std::move(loads);   // its elements stay where they are
        report.place = place;
        return line;
    });
}
