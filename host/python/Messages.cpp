// Messages.
#include "Messages.h"

#include "Functions.h"
#include "Results.h"

#include "qc/qcMessages.h"

#include <list>
#include <string>

namespace {

constexpr std::size_t kMost = 10'000;

struct Message {
    qcMessageKind kind;
    std::string text;
};

// A list: moving messages in and out needs no memory.
std::list<Message>& kept()
{
    static auto* all = new std::list<Message>;   // never destroyed: messages come to the very end
    return *all;
}

// Shows the oldest message as the host does without a sink.
void showOldest()
{
    std::list<Message> oldest;
    oldest.splice(oldest.begin(), kept(), kept().begin());
    const Message& message = oldest.front();
    if (message.kind == qcError)
        error("%s", message.text.c_str());
    else
        warning("%s", message.text.c_str());
}

void receive(qcMessageKind kind, const char* text, void*)
{
    kept().push_back({kind, text});
    if (kept().size() <= kMost)
        return;
    qcMessages::setSink(nullptr, nullptr);
    showOldest();
    messages::keep();
}

}   // namespace

void messages::keep()
{
    qcMessages::setSink(receive, nullptr);
}

void messages::release()
{
    qcMessages::setSink(nullptr, nullptr);
    while (!kept().empty())
        showOldest();
}

namespace functions {

// qcMessages_take() -> a list of ("error" or "warning", text), the messages since the last call
PyObject* messagesTake(PyObject*, PyObject* args)
{
    if (!PyArg_ParseTuple(args, ":qcMessages_take"))
        return nullptr;
    std::list<Message> taken;
    taken.swap(kept());   // new ones may come while Python makes objects
    Reference list(PyList_New(0));
    bool whole = list != nullptr;
    for (auto message = taken.begin(); whole && message != taken.end(); ++message)
        whole = append(list,
                       Py_BuildValue("(sN)", message->kind == qcError ? "error" : "warning", toPython(message->text)));
    if (whole)
        return list.release();
    kept().splice(kept().begin(), taken);
    return nullptr;
}

}   // namespace functions
