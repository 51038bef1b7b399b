// Reset fuzzer: arbitrary property values on a figure, its sites and its joints, and what a reset makes of them.
//
// Most values are nearly right: keys of real parts and near misses, the right shape with one thing off. The rest are
// any trees. What a reset has to leave is worked out from copies of the lists, by themselves.
#include "AnalysedHuman.h"
#include "Check.h"
#include "FigureModel.h"
#include "NearlyRightValues.h"
#include "SmallFigure.h"
#include "SpelledValues.h"

#include "qmStaticStrength.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const char* kFigureKeys[] = {"SSTR_LoadList", "SSTR_TorqueList", "SSTR_LoadWithOffsetList", "SSTR_Strategy",
                                       "RightZelHandLoads"};
constexpr const char* kSiteKeys[] = {"SSTR_Load", "SSTR_LoadsWithOffsets"};
constexpr const char* kJointKeys[] = {"SSTR_Torque", "SSTR_Force_Moment"};

AnalysedHuman& wholeHuman()
{
    static AnalysedHuman human(smallBody("man").text());
    return human;
}

/// The names under which lists keep the parts.
struct PartNames {
    std::map<const qcSite*, std::string> keys;
    std::set<std::string> sites, joints;
};

const PartNames& partNames()
{
    static const PartNames names = [] {
        PartNames all;
        for (const qcSite* site : wholeHuman().sites()) {
            all.keys[site] = keyOf(site);
            all.sites.insert(keyOf(site));
        }
        for (const qcJoint* joint : wholeHuman().joints())
            all.joints.insert(joint->getName());
        return all;
    }();
    return names;
}

// Worked out once.
const std::string& knownKeyOf(const qcSite* site)
{
    return partNames().keys.at(site);
}

void store(qcObject* object, const char* key, qcValue* value)
{
    object->setProperty(key, *value);
    freeval(value);
}

void scatterProperties(FuzzedDataProvider& data)
{
    NearlyRightValues values(data, wholeHuman());
    qcFigure* figure = wholeHuman().figure();
    qcValue* (NearlyRightValues::*const nearlyRight[])() = {
        &NearlyRightValues::loadEntry, &NearlyRightValues::torqueEntry, &NearlyRightValues::offsetEntry};
    for (int i = 0; i < 3; ++i)
        if (!values.oneIn(4))
            store(figure, kFigureKeys[i], values.oneIn(12) ? values.any() : values.listOf(nearlyRight[i]));
    if (data.ConsumeBool())
        store(figure, kFigureKeys[3], values.oneIn(8) ? values.any() : values.strategy());
    if (values.oneIn(4))
        store(figure, kFigureKeys[4], values.oneIn(4) ? values.any() : values.handLoad());
    for (int n = data.ConsumeIntegralInRange(0, 4); n > 0; --n) {
        qcSite* site = values.site();
        store(site, kSiteKeys[0], values.oneIn(4) ? values.any() : values.load());
        if (values.oneIn(2))
            store(site, kSiteKeys[1],
                  values.oneIn(4) ? values.any() : values.listOf(&NearlyRightValues::siteOffsetEntry));
        qcJoint* joint = values.joint();
        store(joint, kJointKeys[0], values.oneIn(4) ? values.any() : values.torque());
        if (values.oneIn(2))
            store(joint, kJointKeys[1], values.oneIn(4) ? values.any() : values.result());
    }
}

// ---- What a reset has to leave ----

bool isVector(const qcValue* value)
{
    return value->kind == qcValue::Vector;
}

/// What is restored, in order, an entry a key: key, and the spelling of what follows it.
class Kept {
public:
    void set(const std::string& key, const std::string& rest)
    {
        const auto [place, isNew] = placeOf.try_emplace(key, entries.size());
        if (isNew)
            entries.push_back({key, rest});
        else
            entries[place->second].second = rest;
    }
    std::string spelling() const
    {
        std::string text;
        for (const auto& [key, rest] : entries)
            text += "(" + spelled(key.c_str()) + rest + ")";
        return entries.empty() ? "" : "(" + text + ")";
    }
    std::string of(const std::string& key) const
    {
        const auto place = placeOf.find(key);
        return place == placeOf.end() ? "" : "(" + entries[place->second].second + ")";
    }
    std::size_t count() const { return entries.size(); }

private:
    std::vector<std::pair<std::string, std::string>> entries;
    std::map<std::string, std::size_t> placeOf;
};

/// What the figure's lists say, read without the analysis.
struct Expectation {
    Kept loads, torques;
    std::string offsetList;   // the figure's spelling
    std::map<std::string, std::string> offsetsOfSite;
    int offsetCount = 0;
    int warnings = 0;
    int result = 0;
    int strategy = 0;

    Expectation(const AnalysedHuman& human, const qVector& gravity)
    {
        const Names &sites = partNames().sites, &joints = partNames().joints;
        const qcFigure* figure = human.figure();
        qcValue list;
        if (figure->getProperty(kFigureKeys[0], &list))
            readList(list, [&](const auto& parts) { return readLoad(parts, sites, gravity); });
        if (figure->getProperty(kFigureKeys[1], &list))
            readList(list, [&](const auto& parts) { return readTorque(parts, joints); });
        if (figure->getProperty(kFigureKeys[2], &list)) {
            for (const qcValue* entry : elementsOf(list))
                readOffsetLoad(elementsOf(*entry), sites, gravity);
            offsetList = offsetCount > 0 ? "(" + offsetList + ")" : "e";
            for (auto& [key, text] : offsetsOfSite)
                text = "(" + text + ")";
            result = 1;
        }
        if (figure->getProperty(kFigureKeys[3], &list) && list.kind == qcValue::String) {
            strategy = qmStaticStrength::N_STRS;
            for (int i = 0; i < qmStaticStrength::N_STRS; ++i)
                if (std::strcmp(list.payload.text, kStrategies[i]) == 0)
                    strategy = i;
        }
    }

private:
    using Parts = std::vector<const qcValue*>;
    using Names = std::set<std::string>;

    template <class Read> void readList(const qcValue& list, Read read)
    {
        int failed = 0;
        for (const qcValue* entry : elementsOf(list))
            failed += read(elementsOf(*entry)) ? 0 : 1;
        warnings += failed;
        result |= failed == 0 ? 1 : 0;
    }

    static bool names(const qcValue* part, const Names& known)
    {
        return part->kind == qcValue::String && known.count(part->payload.text) > 0;
    }

    // What follows a vector in a load, from its kind on; empty for none. A weight changes the vector.
    static std::string loadTail(const Parts& parts, std::size_t kindAt, qVector& load, const qVector& gravity)
    {
        if (parts.size() <= kindAt || parts[kindAt]->kind != qcValue::String)
            return "";
        const std::string kind = parts[kindAt]->payload.text;
        if (kind == "local" || kind == "global")
            return spelled(kind.c_str());
        if (kind != "weight" || parts.size() <= kindAt + 1 || parts[kindAt + 1]->kind != qcValue::Float)
            return "";
        load = weightForce(gravity, parts[kindAt + 1]->payload.number);
        return spelled("weight") + spelled(parts[kindAt + 1]->payload.number);
    }

    bool readLoad(const Parts& parts, const Names& sites, const qVector& gravity)
    {
        if (parts.size() < 3 || !names(parts[0], sites) || !isVector(parts[1]))
            return false;
        qVector load = parts[1]->payload.vector;
        if (double(load.mag()) < 1e-5)
            return false;
        const std::string tail = loadTail(parts, 2, load, gravity);
        if (tail.empty())
            return false;
        loads.set(parts[0]->payload.text, spelled(load) + tail);
        return true;
    }

    bool readTorque(const Parts& parts, const Names& joints)
    {
        if (parts.size() < 2 || !names(parts[0], joints) || !isVector(parts[1]))
            return false;
        torques.set(parts[0]->payload.text, spelled(*parts[1]));
        return true;
    }

    void readOffsetLoad(const Parts& parts, const Names& sites, const qVector& gravity)
    {
        if (parts.size() < 4 || !names(parts[0], sites) || !isVector(parts[1]) || !isVector(parts[2]))
            return;
        qVector load = parts[2]->payload.vector;
        const std::string tail = loadTail(parts, 3, load, gravity);
        if (tail.empty())
            return;
        const std::string rest = spelled(*parts[1]) + spelled(load) + tail;
        offsetList += "(" + spelled(*parts[0]) + rest + ")";
        offsetsOfSite[parts[0]->payload.text] += "(" + rest + ")";
        ++offsetCount;
    }
};

void checkStored(const AnalysedHuman& human, qmStaticStrength& analysis, const Expectation& expected)
{
    const qcFigure* figure = human.figure();
    check(spelledProperty(figure, kFigureKeys[0]) == expected.loads.spelling(), "the load list holds what was whole");
    check(spelledProperty(figure, kFigureKeys[1]) == expected.torques.spelling(),
          "the torque list holds what was whole");
    check(spelledProperty(figure, kFigureKeys[2]) == expected.offsetList,
          "the list of offset loads holds what was whole");
    check(analysis.getNumLoads() == static_cast<int>(expected.loads.count()), "every load is counted");
    check(analysis.getNumDefinedTorques() == static_cast<int>(expected.torques.count()), "every torque is counted");
    check(analysis.getNumLoadsWithOffset() == expected.offsetCount, "every offset load has a record");
    for (const qcSite* site : human.sites()) {
        check(spelledProperty(site, kSiteKeys[0]) == expected.loads.of(knownKeyOf(site)),
              "a site has the load of its entry");
        const auto offsets = expected.offsetsOfSite.find(knownKeyOf(site));
        check(spelledProperty(site, kSiteKeys[1]) == (offsets == expected.offsetsOfSite.end() ? "" : offsets->second),
              "a site has its offset loads");
    }
    for (const qcJoint* joint : human.joints()) {
        check(spelledProperty(joint, kJointKeys[0]) == expected.torques.of(joint->getName()),
              "a joint has the torque of its entry");
        check(!hasProperty(joint, kJointKeys[1]), "a reset leaves no result");
    }
    check(analysis.getStrategy() == expected.strategy, "the strategy is the stored one");
    const std::string stored = spelledProperty(figure, kFigureKeys[3]);
    check(stored == (expected.strategy < 6 ? spelled(kStrategies[expected.strategy]) : ""),
          "the strategy is stored again");
}

// Each record agrees with its entry in the figure's list.
void checkRecords(const qcFigure* figure, const qmStaticStrength& analysis)
{
    std::string list;
    for (int i = 0; i < analysis.getNumLoadsWithOffset(); ++i) {
        const loadWithOffset& record = *analysis.getNthLoadWithOffset(i);
        const bool weight = std::strcmp(record.type, "weight") == 0;
        check(record.local == (std::strcmp(record.type, "local") == 0), "only a local record is local");
        check(weight || record.mass == 0, "a restored force has no grams");
        list += "(" + spelled(knownKeyOf(record.site).c_str()) + spelled(record.offset) + spelled(record.load)
                + spelled(record.type) + (weight ? spelled(record.mass) : "") + ")";
    }
    const std::string stored = spelledProperty(figure, kFigureKeys[2]);
    check(list.empty() ? stored.empty() || stored == "e" : stored == "(" + list + ")", "the records are the list's");
}

// Getters read what the lists say.
void readBack(AnalysedHuman& human, qmStaticStrength& analysis)
{
    for (int i = 0; i < analysis.getNumLoads(); ++i) {
        qcSite* site = analysis.getNthLoadSite(i);
        qVector load;
        check(site && analysis.getSiteLoad(site, load) == 1, "every load in the list can be read at its site");
        const char* type = analysis.getLoadType(site);
        check(type != nullptr, "every load has a type");
    }
    for (int i = 0; i < analysis.getNumDefinedTorques(); ++i) {
        qVector torque;
        check(analysis.getDefinedTorque(analysis.getNthDefinedTorqueJoint(i), torque) == 1,
              "every torque in the list can be read at its joint");
    }
    checkRecords(human.figure(), analysis);
}

void report(qmStaticStrength& analysis)
{
    int lines = 0;
    for (const char* line = analysis.reportLoads(1); line; line = analysis.reportLoads(0)) {
        check(std::strlen(line) < 2048, "a line of the report fits");
        check(++lines <= analysis.getNumLoads() + 2, "a report ends");
    }
    const int loads = analysis.getNumLoads();
    check(lines == (loads > 0 ? loads + 2 : 2), "a report has a line a load, the strategy and gravity");
    check(analysis.reportLoads(0) == nullptr, "a report that is over stays over");
}

void compute(AnalysedHuman& human, qmStaticStrength& analysis, int strategy)
{
    analysis.setStrategy(static_cast<qmStaticStrength::Strategy>(strategy));
    check(analysis.compute() == 1, "a computation returns 1");
    check(analysis.getStrategy() == strategy, "a computation leaves the strategy");
    qVector force, moment;
    for (qcJoint* joint : human.joints())
        check(analysis.getJointForces(joint, force, moment) == int(hasProperty(joint, kJointKeys[1])),
              "what a computation stores can be read");
}

void checkCleared(const AnalysedHuman& human)
{
    for (const char* key : {kFigureKeys[0], kFigureKeys[1], kFigureKeys[2], kFigureKeys[3]})
        check(!hasProperty(human.figure(), key), "clear() leaves nothing on the figure");
    for (const qcSite* site : human.sites())
        check(site->getNumProperties() == 0, "clear() leaves nothing on a site");
    for (const qcJoint* joint : human.joints())
        check(joint->getNumProperties() == 0, "clear() leaves nothing on a joint");
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size)
{
    FuzzedDataProvider data(bytes, size);
    AnalysedHuman& human = wholeHuman();
    human.wipe();
    scatterProperties(data);

    // the analysis restores when it is made, and again with other gravity, after results were stored
    const qVector standard(0, -980.665f, 0);
    const Expectation first(human, standard);
    const SilentMessages messages;
    qmStaticStrength analysis(human.human());
    check(messages.warnings() == first.warnings, "every load and torque that is dropped has its warning");
    checkStored(human, analysis, first);
    readBack(human, analysis);
    compute(human, analysis, data.ConsumeIntegralInRange(0, int(qmStaticStrength::HandsAndKnees)));

    const qVector gravity = NearlyRightValues(data, wholeHuman()).vector();
    const Expectation second(human, gravity);
    analysis.setGravity(gravity);
    checkStored(human, analysis, second);
    readBack(human, analysis);

    const Expectation third(human, gravity);
    check(analysis.reset() == third.result, "a reset tells whether a list was restored whole");
    checkStored(human, analysis, third);

    report(analysis);
    compute(human, analysis, data.ConsumeIntegralInRange(0, int(qmStaticStrength::HandsAndKnees)));
    report(analysis);
    analysis.clear();
    check(analysis.getNumLoadsWithOffset() == 0, "clear() leaves no record");
    if (!hasProperty(human.figure(), kFigureKeys[4]))
        check(human.figure()->getNumProperties() == 0, "clear() leaves nothing on the figure");
    checkCleared(human);
    return 0;
}
