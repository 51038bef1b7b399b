// Table.
#include "Table.h"

#include "Messages.h"

#include <algorithm>

namespace {

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
            widths[i] = std::max(widths[i], width(cells[i]));

    std::string result;
    for (const auto& cells : lines) {
        std::string line(static_cast<std::size_t>(indentation), ' ');
        for (std::size_t i = 0; i < cells.size() && i < widths.size(); ++i) {
            const std::string padding(widths[i] - width(cells[i]), ' ');
            line += (i == 0 ? "" : "  ") + (alignment[i] == kRight ? padding + cells[i] : cells[i] + padding);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        result += line + "\n";
    }
    return result;
}
