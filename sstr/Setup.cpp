// Setup.
#include "Setup.h"

#include "Messages.h"
#include "Names.h"
#include "Parse.h"
#include "Strategies.h"

#include <map>

namespace {

// kgf: the analysis does not take a smaller load from a saved scene. In double, as there: 0.00001 is less in single
// precision.
constexpr double kSmallestLoad = 1e-5;

bool endsWith(const std::string& text, const std::string& ending)
{
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

// The number of elements of a saved list; -1 for a property that is no list, 0 without one.
int entriesOf(const qcFigure& figure, const char* key)
{
    qcValue list;
    if (!figure.getProperty(key, &list) || list.kind == qcValue::Empty)
        return 0;
    if (list.kind != qcValue::List)
        return -1;
    int count = 0;
    for (const qcValue* entry = list.firstElement(); entry; entry = entry->next)
        ++count;
    return count;
}

// The analysis passes over what it cannot read, in part without a word; a user wants to know.
void warnOfDropped(const qcFigure& figure, const std::string& key, int saved, int kept)
{
    const std::string where = "figure " + std::string(figure.getName()) + ": its property " + key;
    if (saved < 0)
        reportWarning(where + " is no list, so nothing was taken from it.");
    else if (kept < saved)
        reportWarning(where + " has " + std::to_string(saved) + " entries, of which " + std::to_string(saved - kept)
                      + " cannot be read, or name what the figure does not have, or come twice; they were dropped.");
}

// The sites that were given a load by this command line, and by which option.
using Loaded = std::map<const qcSite*, std::string>;

// Reads "SITE=…" of one load option. @return the site; null after an error
qcSite* loadedSite(const std::string& option, const std::string& name, const Opened& opened, Loaded& loaded)
{
    qcSite* site = findSite(opened.human->getFigure(), name, option);
    if (!site)
        return nullptr;
    const auto [earlier, isNew] = loaded.emplace(site, option);
    if (isNew)
        return site;
    reportError(option + " " + name + ": the site has a load from " + earlier->second
                + " already, and a site carries one load; add others with --offset-load.");
    return nullptr;
}

void checkSize(const std::string& where, const Opened& opened, qcSite* site)
{
    qVector load;
    if (opened.analysis->getSiteLoad(site, load) && !isFoundAgain(load))
        reportError(where + ": a load of less than " + "0.00001 kgf is not kept; leave it out.");
}

void applyForces(const std::string& option, const std::vector<std::string>& texts, int kind, Opened& opened,
                 Loaded& loaded)
{
    for (const std::string& text : texts) {
        const std::optional<Assignment> parts = parseAssignment(option, text, "SITE=x,y,z");
        if (!parts)
            continue;
        const std::string where = option + " " + parts->name;
        qcSite* site = loadedSite(option, parts->name, opened, loaded);
        const std::optional<qVector> force = parseVector(where, parts->value, "the force, kgf");
        if (!site || !force)
            continue;
        opened.analysis->setLoad(site, *force, kind);
        checkSize(where, opened, site);
    }
}

void applyWeights(const std::vector<std::string>& texts, Opened& opened, Loaded& loaded)
{
    for (const std::string& text : texts) {
        const std::optional<Assignment> parts = parseAssignment("--weight", text, "SITE=GRAMS");
        if (!parts)
            continue;
        const std::string where = "--weight " + parts->name;
        qcSite* site = loadedSite("--weight", parts->name, opened, loaded);
        const std::optional<float> grams = parseWeight(where, parts->value);
        if (!site || !grams)
            continue;
        opened.analysis->setWeightLoad(site, *grams);
        checkSize(where, opened, site);
    }
}

void applyOffsetLoads(const std::vector<std::string>& texts, Opened& opened)
{
    for (const std::string& text : texts) {
        const std::optional<OffsetLoadText> load = parseOffsetLoad("--offset-load", text);
        qcSite* site = load ? findSite(opened.human->getFigure(), load->site, "--offset-load") : nullptr;
        if (!site)
            continue;
        if (load->isWeight)
            opened.analysis->setWeightLoadWithOffset(site, load->offset, load->weight);
        else
            opened.analysis->setLoadWithOffset(site, load->offset, load->force, load->local ? 1 : 0);
    }
}

void applyTorques(const std::vector<std::string>& texts, Opened& opened)
{
    std::map<const qcJoint*, bool> done;
    for (const std::string& text : texts) {
        const std::optional<Assignment> parts = parseAssignment("--torque", text, "JOINT=x,y,z");
        if (!parts)
            continue;
        const std::string where = "--torque " + parts->name;
        qcJoint* joint = findJoint(opened.human->getFigure(), parts->name, "--torque");
        std::optional<qVector> torque = parseVector(where, parts->value, "the moment, N·m");
        if (!joint || !torque)
            continue;
        if (!done.emplace(joint, true).second)
            reportError(where + ": the joint's torque is given twice.");
        else
            opened.analysis->setDefinedTorque(joint, *torque);
        // the saved list knows joints by their bare names
        if (opened.human->getFigure()->findJoint(joint->getName()) != joint)
            reportWarning(where + ": torques are listed and saved by the bare name " + quoted(joint->getName())
                          + ", which is another joint's too; this one counts now, but a saved scene gives it to the "
                            "first joint of that name.");
    }
}

}   // namespace

bool isFoundAgain(const qVector& load)
{
    return !(double(load.mag()) < kSmallestLoad);   // one that is no number is found again
}

bool openScene(const std::string& path, const std::string& humanName, Opened& opened)
{
    for (const char* ending : {".urdf", ".figure.json"})
        if (endsWith(path, ending)) {
            reportError(path + ": a figure, not a scene: make a scene of it with sstr new-scene.");
            return false;
        }
    opened.scene.reset(qcScene::open(path.c_str()));
    if (opened.scene)
        opened.human = findHuman(*opened.scene, humanName);
    return opened.human != nullptr;
}

// A new analysis, and setGravity() again, rebuild everything from the figure's lists and thereby
// remove every earlier result. A stored strategy of an unknown name outlives only the first of them.
void makeAnalysis(Opened& opened)
{
    const qcFigure& figure = *opened.human->getFigure();
    const int savedLoads = entriesOf(figure, "SSTR_LoadList");
    const int savedOffsetLoads = entriesOf(figure, "SSTR_LoadWithOffsetList");
    const int savedTorques = entriesOf(figure, "SSTR_TorqueList");
    opened.analysis = std::make_unique<qmStaticStrength>(opened.human);
    const qmStaticStrength::Strategy restored = opened.analysis->getStrategy();
    opened.analysis->setGravity(opened.scene->getGravity());
    opened.analysis->setStrategy(restored);
    if (opened.scene->getUnstoredStrategy(opened.human) == kUnstoredStrategyText)
        opened.analysis->setStrategy(qmStaticStrength::HandsAndKnees);
    warnOfDropped(figure, "SSTR_LoadList", savedLoads, opened.analysis->getNumLoads());
    warnOfDropped(figure, "SSTR_LoadWithOffsetList", savedOffsetLoads, opened.analysis->getNumLoadsWithOffset());
    warnOfDropped(figure, "SSTR_TorqueList", savedTorques, opened.analysis->getNumDefinedTorques());
}

namespace {

// Makes the analysis.
void applyGravity(const ChangeOptions& options, Opened& opened)
{
    if (!options.gravity.empty())
        if (const std::optional<qVector> gravity = parseVector("--gravity", options.gravity, "cm/s²"))
            opened.scene->setGravity(*gravity);
    makeAnalysis(opened);
}

void applyStrategy(const ChangeOptions& options, Opened& opened)
{
    if (options.strategy.empty()) {
        if (strategyText(opened.analysis->getStrategy()) == "unknown")
            reportError(std::string("the scene's human ") + opened.human->getName()
                        + " has a strategy of an unknown name; choose one with --strategy.");
        return;
    }
    const std::optional<qmStaticStrength::Strategy> strategy = parseStrategy(options.strategy);
    if (!strategy)
        return;
    opened.analysis->setStrategy(*strategy);
    const bool stored = *strategy != qmStaticStrength::HandsAndKnees;
    opened.scene->setUnstoredStrategy(opened.human, stored ? "" : kUnstoredStrategyText);
}

void applyLoads(const ChangeOptions& options, Opened& opened)
{
    if (options.clearLoads) {
        // the strategy in force stays, but its text goes with the loads
        opened.analysis->clear();
        opened.analysis->setStrategy(opened.analysis->getStrategy());
    }
    Loaded loaded;
    applyForces("--load", options.loads, 0, opened, loaded);
    applyForces("--local-load", options.localLoads, 1, opened, loaded);
    applyWeights(options.weights, opened, loaded);
    applyOffsetLoads(options.offsetLoads, opened);
    applyTorques(options.torques, opened);
}

}   // namespace

void applyChanges(const ChangeOptions& options, Opened& opened)
{
    applyBody(options, opened);
    applyPosture(options, opened);
    applyGravity(options, opened);
    applyStrategy(options, opened);
    applyLoads(options, opened);
}

bool mayHoldScene(const std::string& option, const std::string& path)
{
    for (const char* ending : {".urdf", ".figure.json", ".roles.json"})
        if (endsWith(path, ending)) {
            reportError(option + ": " + quoted(path) + " is the name of a figure's file, not of a scene's; expected "
                        + "a name like work.json.");
            return false;
        }
    return true;
}
