// Comparing.
#include "Comparing.h"

#include "Subject.h"

#include "qc/qcMessages.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// Passes on what the host has to say and counts it: no case gives it a reason.
class Messages {
public:
    Messages()
    {
        qcMessages::setSink(
            [](qcMessageKind, const char* text, void* data) {
                ++*static_cast<int*>(data);
                std::fprintf(stderr, "unexpected message: %s\n", text);
            },
            &count);
    }
    ~Messages() { qcMessages::setSink(nullptr, nullptr); }
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

    int count = 0;
};

void printHead(int cases)
{
    std::printf("%d random cases a figure. Results by how the analysis keeps them: as summed, with a negligible moment "
                "replaced, none.\nWorst: the largest difference of a component, and the largest share of a bound that "
                "a difference takes.\n\n",
                cases);
    std::printf("%-14s %-19s %-8s %9s %9s %7s   %-23s %-23s\n", "figure", "support", "witness", "summed", "replaced",
                "none", "worst force", "worst moment");
}

void printRow(const std::string& figure, const char* support, const char* witness, const Tally& tally)
{
    std::printf("%-14s %-19s %-8s %9d %9d %7d   %.1e kgf %8.3g %%   %.1e N·m %8.3g %%%s\n", figure.c_str(), support,
                witness, tally.whole, tally.replaced, tally.removed, tally.force.difference, 100 * tally.force.ofBound,
                tally.moment.difference, 100 * tally.moment.ofBound, tally.disagreements > 0 ? "   DISAGREES" : "");
    for (const std::string& message : tally.messages)
        std::printf("  %s\n", message.c_str());
    if (tally.disagreements > static_cast<int>(tally.messages.size()))
        std::printf("  and %d more\n", tally.disagreements - static_cast<int>(tally.messages.size()));
}

bool compareSubject(Subject& subject, int cases)
{
    std::vector<std::vector<Tally>> tallies(std::size(kSupports), std::vector<Tally>(subject.witnesses.size()));
    for (int number = 0; number < cases; ++number) {
        const Case drawn = drawCase(static_cast<unsigned>(number), subject.figure, subject.host);
        subject.take(drawn);
        for (std::size_t s = 0; s < std::size(kSupports); ++s)
            subject.compareOn(kSupports[s], drawn, "case " + std::to_string(number), tallies[s]);
    }
    int whole = 0, replaced = 0, removed = 0, disagreements = 0;
    for (std::size_t s = 0; s < std::size(kSupports); ++s)
        for (std::size_t w = 0; w < subject.witnesses.size(); ++w) {
            const Tally& tally = tallies[s][w];
            printRow(subject.name, nameOf(kSupports[s]), subject.witnesses[w]->name(), tally);
            whole += tally.whole;
            replaced += tally.replaced;
            removed += tally.removed;
            disagreements += tally.disagreements;
        }
    // a rule that no case meets is not compared
    const bool allKinds = whole > 0 && replaced > 0 && removed > 0;
    if (!allKinds)
        std::printf("  not every kind of result came up: draw more cases\n");
    return allKinds && disagreements == 0;
}

}   // namespace

int compareFigures(int cases)
{
    Messages messages;
    printHead(cases);
    bool agrees = compareSubject(*defaultHuman(), cases);
    const char* required = std::getenv("CI_REQUIRE_SHARED");
    if (const std::unique_ptr<Subject> model = publicModel())
        agrees = compareSubject(*model, cases) && agrees;
    else if (required && std::string(required) == "1")
        agrees = false;
    return agrees && messages.count == 0 ? 0 : 1;
}
