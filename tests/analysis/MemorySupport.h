// Memory tests: a small world with everything that an analysis can hold, and what there is of it as text.
#pragma once

#include "CountedHeap.h"
#include "LifecycleSupport.h"

#include "qc/qcScene.h"

#include <initializer_list>
#include <memory>
#include <string>

/// What goes to standard output while it lives is dropped.
struct QuietOutput {
    QuietOutput() { ::testing::internal::CaptureStdout(); }
    ~QuietOutput() { ::testing::internal::GetCapturedStdout(); }
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;
};

/// Two humans, "man" with an analysis and "other" without.
struct MemoryWorld {
    explicit MemoryWorld(const SmallFigure& small = twoParts())
        : human(scene.addPosedHuman(small.text().c_str())),
          other(scene.addPosedHuman(twoParts("other").text().c_str())), figure(human->getFigure()),
          analysis(std::make_unique<qmStaticStrength>(human))
    {}
    ~MemoryWorld()   // before the humans go
    {
        second.reset();
        analysis.reset();
    }

    qmStaticStrength& a() { return *analysis; }
    qcSite* site(const std::string& key) const
    {
        return figure->findSiteByFullName((std::string(figure->getName()) + "." + key).c_str());
    }
    qcSite* grip() const { return site("hand.grip"); }
    qcSite* tip() const { return site("hand.tip"); }
    qcSite* othersGrip() const { return other->getFigure()->findSiteByFullName("other.hand.grip"); }
    qcJoint* wrist() const { return figure->findJoint("wrist"); }

    /// Loads, loads with offsets of every kind, a torque, a result, a strategy.
    void fill()
    {
        qVector torque(1, 2, 3);
        a().setWeightLoad(grip(), 1500);
        a().setLoad(tip(), {0, -2, 0}, 1);
        a().setWeightLoadWithOffset(grip(), {1, 0, 0}, 250);
        a().setLoadWithOffset(tip(), {0, 1, 0}, {0, -1, 0}, 1);
        a().setLoadWithOffset(grip(), {0, 0, 1}, {0, -3, 0});
        a().setDefinedTorque(wrist(), torque);
        a().setStrategy(qmStaticStrength::Sitting);
        a().setFMonJoint(wrist(), {0, -1, 0}, {1, 0, 0});
    }

    /// Entries that cannot be read, or whose part is not there, beside good ones.
    void spoil()
    {
        const qcValue down = vector(0, -1, 0);
        figure->setProperty("SSTR_LoadList", list({number(1), list({}), list({text("hand.grip"), text("no vector")}),
                                                   list({text("no.site"), down, text("global")}),
                                                   list({text("hand.grip"), down, text("weight")}),
                                                   list({text("hand.tip"), down, text("a kind that nobody knows of")}),
                                                   list({text("hand.tip"), down, text("global")})}));
        figure->setProperty("SSTR_TorqueList", list({number(1), list({text("no joint")}), list({text("gone"), down}),
                                                     list({text("wrist"), down})}));
        figure->setProperty("SSTR_LoadWithOffsetList", list({text("none"), list({text("hand.grip")}),
                                                             list({text("no.site"), down, down, text("local")}),
                                                             list({text("hand.grip"), down, down, text("weight")}),
                                                             list({text("hand.grip"), down, down, text("local")})}));
        figure->setProperty("SSTR_Strategy", text("a strategy that nobody knows of"));
    }

    /// Everything that a member may change, as text.
    std::string state()
    {
        std::string all = "time " + std::to_string(figure->getTimestamp()) + ", bound "
                          + std::to_string(qcSim::getNumBound()) + ", observers "
                          + std::to_string((figure->*get(ObserversField())).size()) + "\n";
        const auto add = [&all](const qcObject& object) {
            all += std::string(object.getFullName()) + ":";
            for (int i = 0; i < object.getNumProperties(); ++i)
                all += std::string(" ") + object.getPropertyKey(i) + " = " + describe(object.getPropertyValue(i));
            all += "\n";
        };
        for (qcFigure* each : {figure, other->getFigure()}) {
            add(*each);
            for (qList* node = each->getSites(); node; node = qList::iterator(nullptr, node))
                add(*static_cast<qcSite*>(node->getData()));
            for (qList* node = each->getJoints(); node; node = qList::iterator(nullptr, node))
                add(*static_cast<qcJoint*>(node->getData()));
        }
        return all + stateOf(*analysis) + (second ? stateOf(*second) : "");
    }

    static std::string stateOf(qmStaticStrength& object)
    {
        qVector gravity;
        object.getGravity(gravity);
        const char* script = field(object, ScriptField());
        std::string all = std::string(object.getName()) + " strategy " + std::to_string(object.getStrategy())
                          + " gravity " + describe(vector(gravity[0], gravity[1], gravity[2])) + " active "
                          + std::to_string(object.isActive()) + " script " + (script ? script : "none") + "\n";
        for (int i = 0; i < object.getNumLoadsWithOffset(); ++i) {
            const loadWithOffset& record = *object.getNthLoadWithOffset(i);
            all += std::string(record.site->getFullName()) + " " + record.type + " "
                   + describe(vector(record.offset[0], record.offset[1], record.offset[2]))
                   + describe(vector(record.load[0], record.load[1], record.load[2])) + " "
                   + std::to_string(record.mass) + (record.local ? " local\n" : "\n");
        }
        return all;
    }

    qcScene scene;
    qcHuman* human;
    qcHuman* other;
    qcFigure* figure;
    std::unique_ptr<qmStaticStrength> analysis;
    std::unique_ptr<qmStaticStrength> second;   // of whom a case likes
};
