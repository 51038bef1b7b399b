// Members world: analyses of two humans that are called in any order, and beside them a plain model of what each call
// has to leave.
#pragma once

#include "AnalysedHuman.h"
#include "FigureModel.h"

#include "qmStaticStrength.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstddef>
#include <map>
#include <memory>
#include <vector>

/// An analysis, and what it keeps itself. Copies share the records.
struct ModelledAnalysis {
    qmStaticStrength* real;
    FigureModel* of;
    qVector gravity{0, -980.665f, 0};
    int strategy = 0;
    std::shared_ptr<Records> records = std::make_shared<Records>();
    int callback = 0;   // 0: none; shared by copies
    int script = 0;
    bool talks = false;   // the script has letters
    bool registered = true;
};

/// Everything there is while an input runs.
class MembersWorld {
public:
    MembersWorld(FuzzedDataProvider& source, const std::vector<AnalysedHuman*>& humans);
    ~MembersWorld();
    MembersWorld(const MembersWorld&) = delete;
    MembersWorld& operator=(const MembersWorld&) = delete;

    /// Calls a member of one of the analyses, or another that concerns them, as the input says, and checks its answer.
    void callOne();

    /// Checks every property and every getter's answer.
    void compareAll() const;

    /// Gives any property of any part a value of any other, alone or in a list, or takes it away.
    void meddle();

    /// From here on checks that need the model are left out.
    void forgetModel() { modelled = false; }

private:
    using Index = std::size_t;
    static constexpr Index kMostObjects = 6;
    static constexpr float kNumbers[] = {0, 1, -2.5f, 0.000009f, 1500, -0.0f, 1e30f, NAN};

    bool oneIn(int n) { return data.ConsumeIntegralInRange(1, n) == n; }
    float number() { return oneIn(8) ? data.ConsumeFloatingPoint<float>() : data.PickValueInArray(kNumbers); }
    qVector vector()
    {
        const float x = number(), y = number();
        return {x, y, number()};
    }
    Index index(Index count) { return data.ConsumeIntegralInRange<Index>(0, count - 1); }
    FigureModel& anyFigure() { return *figures[index(figures.size())]; }
    ModelledAnalysis& anyObject() { return *objects[index(objects.size())]; }
    qcSite* anySite()   // now and then of the other human, or none
    {
        const auto& all = anyFigure().human->sites();
        return oneIn(16) ? nullptr : all[index(all.size())];
    }
    qcJoint* anyJoint()
    {
        const auto& all = anyFigure().human->joints();
        return oneIn(16) ? nullptr : all[index(all.size())];
    }
    FigureModel* figureOf(const qcFigure* figure)
    {
        for (const auto& model : figures)
            if (model->human->figure() == figure)
                return model.get();
        return nullptr;
    }

    // Life, callbacks and scripts: MembersLife.cpp.
    void construct();
    void handle();
    void copy();
    void assign();
    void destroy(Index which);
    void release(ModelledAnalysis& object, const ModelledAnalysis* keeper);
    void endCallback(ModelledAnalysis& object);
    void activate(ModelledAnalysis& object);
    void step();
    int runScript(const char* script);

    // Input, report and results: MembersCalls.cpp.
    void setLoad(ModelledAnalysis& object);
    void removeLoad(ModelledAnalysis& object);
    void setOffsetLoad(ModelledAnalysis& object);
    void removeOffsetLoad(ModelledAnalysis& object);
    void setTorque(ModelledAnalysis& object);
    void removeTorque(ModelledAnalysis& object);
    void setStrategy(ModelledAnalysis& object);
    void clear(ModelledAnalysis& object);
    void reset(ModelledAnalysis& object, const qVector* gravity);
    void report(ModelledAnalysis& object);
    void useResults(ModelledAnalysis& object);

    // What has to be left, and its comparison: MembersModel.cpp.
    void modelClear(ModelledAnalysis& object);
    int modelReset(ModelledAnalysis& object);
    void modelSave(ModelledAnalysis& object);
    void modelRestoreOffsets(ModelledAnalysis& object, const Records& saved);
    void compareFigure(const FigureModel& figure) const;
    void compareObject(const ModelledAnalysis& object) const;

    FuzzedDataProvider& data;
    std::vector<std::unique_ptr<FigureModel>> figures;
    std::vector<std::unique_ptr<ModelledAnalysis>> objects;   // in the order of their making
    std::map<int, const ModelledAnalysis*> binderOf;          // by callback
    std::vector<loadWithOffset*> formerRecords;               // gone; good for being refused
    int lastId = 0;
    int scriptDepth = 0;
    bool modelled = true;
};
