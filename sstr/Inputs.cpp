// Inputs.
#include "Inputs.h"

#include "Messages.h"
#include "Names.h"
#include "Strategies.h"

Inputs gatherInputs(qmStaticStrength& analysis)
{
    Inputs inputs;
    const qcFigure* figure = analysis.getHuman()->getFigure();
    inputs.human = analysis.getHuman()->getName();
    inputs.figure = figure->getName();
    analysis.getGravity(inputs.gravity);
    inputs.strategy = strategyText(analysis.getStrategy());

    for (int i = 0, count = analysis.getNumLoads(); i < count; ++i) {
        qcSite* site = analysis.getNthLoadSite(i);
        qVector force;
        if (!site || !analysis.getSiteLoad(site, force))
            continue;
        inputs.loads.push_back(
            {siteKey(site), analysis.getLoadType(site), false, {}, force, analysis.getSiteWeight(site)});
    }
    for (int i = 0; i < analysis.getNumLoadsWithOffset(); ++i) {
        const loadWithOffset* record = analysis.getNthLoadWithOffset(i);
        inputs.loads.push_back({siteKey(record->site), record->type, true, record->offset, record->load, record->mass});
    }
    for (int i = 0, count = analysis.getNumDefinedTorques(); i < count; ++i) {
        qcJoint* joint = analysis.getNthDefinedTorqueJoint(i);
        qVector moment;
        if (joint && analysis.getDefinedTorque(joint, moment))
            inputs.torques.push_back({jointName(figure, joint), moment});
    }
    for (const char* key :
         {"RightZelHandLoads", "RightZelHandLoadsLocal", "LeftZelHandLoads", "LeftZelHandLoadsLocal"}) {
        qcValue value;
        char* text;
        if (figure->getProperty(key, &value) && value.get(text))
            inputs.handLoads.push_back({key, text});
    }
    return inputs;
}

void warnAboutPalms(const Inputs& inputs)
{
    std::string last;
    for (const LoadInput& load : inputs.loads) {
        if (!load.hasOffset || load.site == last || load.site.find("palmcenter") == std::string::npos)
            continue;
        bool loaded = false;
        for (const LoadInput& other : inputs.loads)
            loaded = loaded || (!other.hasOffset && other.site == load.site);
        if (!loaded)
            reportWarning("the loads with offsets at " + load.site
                          + " do not count: at a palm centre they do only beside a load at the site itself.");
        last = load.site;
    }
}
