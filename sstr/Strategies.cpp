// Strategies as texts.
#include "Strategies.h"

#include "Messages.h"
#include "Names.h"

namespace {

const struct {
    qmStaticStrength::Strategy strategy;
    const char* text;
} table[] = {
    {qmStaticStrength::TwoFeet, "two-feet"},
    {qmStaticStrength::RightFoot, "right-foot"},
    {qmStaticStrength::LeftFoot, "left-foot"},
    {qmStaticStrength::Walking, "walking"},
    {qmStaticStrength::Sitting, "sitting"},
    {qmStaticStrength::SittingNoFeet, "sitting-no-feet"},
    {qmStaticStrength::HandsAndKnees, kUnstoredStrategyText},
};

}   // namespace

std::string strategyText(qmStaticStrength::Strategy strategy)
{
    for (const auto& row : table)
        if (row.strategy == strategy)
            return row.text;
    return "unknown";
}

std::optional<qmStaticStrength::Strategy> parseStrategy(const std::string& text)
{
    std::vector<std::string> texts;
    std::string list;
    for (const auto& row : table) {
        if (text == row.text)
            return row.strategy;
        texts.emplace_back(row.text);
        list += (list.empty() ? "" : ", ") + texts.back();
    }
    reportError("--strategy: found " + quoted(text) + ", expected one of " + list + "." + didYouMean(text, texts));
    return std::nullopt;
}
