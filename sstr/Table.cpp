// Table.
#include "Table.h"

#include "Messages.h"

#include <algorithm>

namespace {

// One name of a hundred thousand characters must not widen every line: a column gives way to no wider cell than
// this, which then stands out of it.
constexpr std::size_t kWidest = 100;

// Characters of a UTF-8 text: all bytes but those that continue one.
std::size_t width(const std::string& text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

}   // namespace

void Table::line(std::vector<std::string> cells)
{
    for (std::string& cell : cells)
        cell = escaped(cell);
    lines.push_back(std::move(cells));
}

std::string Table::text(int indentation) const
{
    std::vector<std::size_t> widths(alignment.size(), 0);
    for (const auto& cells : lines)
        for (std::size_t i = 0; i < cells.size() && i < widths.size(); ++i)
            widths[i] = std::max(widths[i], std::min(width(cells[i]), kWidest));

    std::string result;
    for (const auto& cells : lines) {
        std::string line(static_cast<std::size_t>(indentation), ' ');
        for (std::size_t i = 0; i < cells.size() && i < widths.size(); ++i) {
            const std::string padding(widths[i] - std::min(width(cells[i]), widths[i]), ' ');
            line += (i == 0 ? "" : "  ") + (alignment[i] == kRight ? padding + cells[i] : cells[i] + padding);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        result += line + "\n";
    }
    return result;
}
