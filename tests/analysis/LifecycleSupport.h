// Lifecycle tests: the private fields, a small figure, and a fixture with an interpreter that keeps what it is given.
#pragma once

#include "AnalysisTest.h"
#include "PrivateMembers.h"
#include "SavedValues.h"

#include "qc/qcPy.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

// ---- Private members -----------------------------------------------------------------------------

using FourFloats = float[4];

struct HumanField {
    using type = qcHuman* qmStaticStrength::*;
    friend type get(HumanField);
};
template struct Expose<HumanField, &qmStaticStrength::human>;

struct FigureField {
    using type = qcFigure* qmStaticStrength::*;
    friend type get(FigureField);
};
template struct Expose<FigureField, &qmStaticStrength::figure>;

struct GravityField {
    using type = qVector qmStaticStrength::*;
    friend type get(GravityField);
};
template struct Expose<GravityField, &qmStaticStrength::gravity>;

struct StrategyInForceField {
    using type = qmStaticStrength::Strategy qmStaticStrength::*;
    friend type get(StrategyInForceField);
};
template struct Expose<StrategyInForceField, &qmStaticStrength::strategy>;

struct SplitFactorsField {
    using type = FourFloats qmStaticStrength::*;
    friend type get(SplitFactorsField);
};
template struct Expose<SplitFactorsField, &qmStaticStrength::splitFactors>;

struct L5SegmentField {
    using type = qcSegmentImp* qmStaticStrength::*;
    friend type get(L5SegmentField);
};
template struct Expose<L5SegmentField, &qmStaticStrength::l5Segment>;

struct AnthroScaleField {
    using type = qcAnthroScale* qmStaticStrength::*;
    friend type get(AnthroScaleField);
};
template struct Expose<AnthroScaleField, &qmStaticStrength::anthroScale>;

struct CallbackField {
    using type = qcCallback* qmStaticStrength::*;
    friend type get(CallbackField);
};
template struct Expose<CallbackField, &qmStaticStrength::callback>;

struct ScriptField {
    using type = char* qmStaticStrength::*;
    friend type get(ScriptField);
};
template struct Expose<ScriptField, &qmStaticStrength::script>;

struct ObserverField {
    using type = qcRefObserver* qmStaticStrength::*;
    friend type get(ObserverField);
};
template struct Expose<ObserverField, &qmStaticStrength::observer>;

struct OffsetLoadsField {
    using type = std::vector<loadWithOffset*>* qmStaticStrength::*;
    friend type get(OffsetLoadsField);
};
template struct Expose<OffsetLoadsField, &qmStaticStrength::offsetLoads>;

struct HumansScaleField {
    using type = std::unique_ptr<qcAnthroScale> qcHuman::*;
    friend type get(HumansScaleField);
};
template struct Expose<HumansScaleField, &qcHuman::scale>;

struct ObserversField {
    using type = std::vector<qcObserver*> qcSubject::*;
    friend type get(ObserversField);
};
template struct Expose<ObserversField, &qcSubject::observers>;

struct HumanInfoMember {
    using type = int (qmStaticStrength::*)();
    friend type get(HumanInfoMember);
};
template struct Expose<HumanInfoMember, &qmStaticStrength::humanInfo>;

template <class Tag> auto& field(qmStaticStrength& analysis, Tag tag)
{
    return analysis.*get(tag);
}

// ---- Fixtures ------------------------------------------------------------------------------------

// Two segments and a joint are enough where nothing is computed.
inline SmallFigure twoParts(const std::string& name = "man")
{
    SmallFigure figure(name);
    figure.segment("hand", 500)
        .site("hand", "grip", {0, 80, 0})
        .site("hand", "tip", {0, 70, 0})
        .segment("arm", 3000)
        .site("arm", "distal", {0, 80, 0})
        .joint("wrist", "arm.distal", "hand.grip");
    return figure;
}

class Lifecycle : public AnalysisTest {
protected:
    /// A human in the scene, without an analysis.
    qcHuman* addHuman(const SmallFigure& small)
    {
        qcHuman* added = scene->addPosedHuman(small.text().c_str());
        EXPECT_NE(added, nullptr);
        return added;
    }
};

// An interpreter that keeps what it is given and then does what the test says.
class Callbacks : public Lifecycle {
protected:
    void SetUp() override
    {
        qcPy::registerInterpreter(
            [](const char* source, void* data) {
                Callbacks* self = static_cast<Callbacks*>(data);
                const std::string given = source;
                self->scripts.push_back(given);
                if (self->onScript)
                    self->onScript();
                EXPECT_EQ(source, given) << "the text went while it ran";
                return self->scriptResult;
            },
            this);
    }
    void TearDown() override
    {
        qcPy::registerInterpreter(nullptr, nullptr);
        Lifecycle::TearDown();
        EXPECT_EQ(qcSim::getNumBound(), 0) << "a callback outlives its analysis";
    }

    /// What activate() prints is for the tests of it alone.
    static int activateQuietly(qmStaticStrength& object, const char* script)
    {
        ::testing::internal::CaptureStdout();
        const int status = object.activate(script);
        ::testing::internal::GetCapturedStdout();
        return status;
    }

    std::vector<std::string> scripts;
    std::function<void()> onScript;
    int scriptResult = 1;
};
