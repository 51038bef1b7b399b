// Analysed human.
#include "AnalysedHuman.h"

#include "Check.h"

#include "qc/qcFigureFile.h"

#include <cstdio>

namespace {

template <class Part> std::vector<Part*> allOf(qList* list)
{
    std::vector<Part*> parts;
    for (qList* node = list; node; node = qList::iterator(list, node))
        parts.push_back(static_cast<Part*>(node->getData()));
    return parts;
}

void removeProperties(qcObject* object)
{
    while (object->getNumProperties() > 0)
        object->removeProperty(object->getPropertyKey(0));
}

}   // namespace

AnalysedHuman::AnalysedHuman(const std::string& posedFigure)
    : body(qcFigureFile::readPosedText(posedFigure.c_str(), "the fuzzer's figure"))
{
    check(body != nullptr, "the fuzzer's own figure can be read");
    owner.reset(qcHuman::create(body.get()));
    check(owner != nullptr, "the fuzzer's own figure is a human");
    allSites = allOf<qcSite>(body->getSites());
    allJoints = allOf<qcJoint>(body->getJoints());
}

void AnalysedHuman::wipe()
{
    removeProperties(body.get());
    for (qcSite* site : allSites)
        removeProperties(site);
    for (qcJoint* joint : allJoints)
        removeProperties(joint);
}

std::string keyOf(const qcSite* site)
{
    return std::string(site->getSegment()->getName()) + "." + site->getName();
}

bool hasProperty(const qcObject* object, const char* key)
{
    qcValue value;
    return object->getProperty(key, &value) != 0;
}

// The fuzzers' library calls this first. What the analysis prints goes to nowhere; the fuzzer's own lines go to
// standard error.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    check(std::freopen("/dev/null", "w", stdout) != nullptr, "standard output can be sent to nowhere");
    return 0;
}
