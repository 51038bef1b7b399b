// Scripts: they reach the interpreter that registered itself, or an error tells that there is none.
#include "qc/qcPy.h"

#include "Support.h"

using ::testing::ElementsAre;

namespace {

class Script : public MessageTest {
protected:
    ~Script() override { qcPy::registerInterpreter(nullptr, nullptr); }

    static int interpret(const char* source, void* data)
    {
        Script* test = static_cast<Script*>(data);
        test->sources.push_back(source);
        return test->result;
    }

    std::vector<std::string> sources;
    int result = 1;
};

}   // namespace

TEST_F(Script, WithoutAnInterpreterIsOneErrorAndZero)
{
    EXPECT_EQ(qcPy::evalSimple("print(1)"), 0);
    const auto messages = log.take();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].kind, qcError);
    EXPECT_EQ(messages[0].text, "cannot run a script: no Python interpreter has registered itself. "
                                "Import libqcc in Python first.");
}

TEST_F(Script, ReachesTheInterpreterUnchanged)
{
    qcPy::registerInterpreter(interpret, this);
    const std::string longSource(1 << 20, '#');
    qcPy::evalSimple("a = '%s %n'\nif a:\n    b = 1\n");
    qcPy::evalSimple("");
    qcPy::evalSimple(longSource.c_str());
    EXPECT_THAT(sources, ElementsAre("a = '%s %n'\nif a:\n    b = 1\n", "", longSource));
}

TEST_F(Script, GivesTheInterpretersResult)
{
    qcPy::registerInterpreter(interpret, this);
    EXPECT_EQ(qcPy::evalSimple("a"), 1);
    result = 0;
    EXPECT_EQ(qcPy::evalSimple("a"), 0);
}

TEST_F(Script, IsRunByTheInterpreterThatRegisteredLast)
{
    qcPy::registerInterpreter([](const char*, void*) { return 0; }, nullptr);
    qcPy::registerInterpreter(interpret, this);
    EXPECT_EQ(qcPy::evalSimple("a"), 1);
    qcPy::registerInterpreter(nullptr, nullptr);
    EXPECT_EQ(qcPy::evalSimple("a"), 0);
    EXPECT_EQ(log.take().size(), 1u);
}
