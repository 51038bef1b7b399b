// Load report: the loads, the strategy and gravity as text, a line a call.
#include "LoadValues.h"
#include "PointNumbers.h"
#include "StrategyNames.h"
#include "qmStaticStrength.h"

#include <cstdio>
#include <string>

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

/// The one report of the module, whichever analysis is asked.
struct Report {
    Phase phase = kOver;
    qcValue loads;              // a copy of the figure's list: it may change between two calls
    qcValue* entry = nullptr;   // the one at hand, in the copy
    char line[kLineSize];

    /// Begins with the figure's loads. @return whether it has a list of them
    bool begin(const qcFigure* figure)
    {
        entry = nullptr;
        loads.clear();
        if (!figure->getProperty(kLoadListKey, &loads) || loads.kind != qcValue::List) {
            phase = kGravityNext;
            return false;
        }
        entry = loads.firstElement();
        phase = kEntries;
        return true;
    }

    void nextEntry()
    {
        entry = entry ? entry->next : nullptr;
        if (!entry)
            phase = kStrategyNext;
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

char* writeEntry(Report& report, const qVector& gravity)
{
    char* key;
    qcValue* value = nullptr;
    qVector load;
    int local;
    float weight;
    const bool readable = report.entry && parseLoadEntry(*report.entry, gravity, key, &value)
                          && decodeLoadValue(*value, load, local, &weight);
    qcValue::destroy(value);
    if (!readable)
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

}   // namespace

char* qmStaticStrength::reportLoads(int start)
{
    Report& report = theReport();
    const PointNumbers pointNumbers;
    if (start != 0) {
        if (!report.begin(figure))
            return noLoads;
    } else if (report.phase == kEntries) {
        report.nextEntry();
    }

    switch (report.phase) {
    case kEntries:
        return writeEntry(report, gravity);
    case kStrategyNext:
        report.phase = kGravityNext;
        return writeStrategy(report, figure);
    case kGravityNext:
        report.phase = kGravityGiven;
        return report.write("Gravity: ", "", vectorText(gravity) + " cm/sec^2");
    case kGravityGiven:
        report.phase = kOver;
        return nullptr;
    case kOver:
        break;
    }
    return nullptr;
}
