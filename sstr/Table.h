// Table: lines of cells, aligned in columns.
#pragma once

#include <string>
#include <vector>

/// Cells are laid out in columns as wide as their widest cell, but no wider than 100 characters: a longer cell
/// moves what follows it in its line. Texts are UTF-8; their control characters come out as \xNN.
class Table {
public:
    enum Align { kLeft, kRight };

    /// @param columns  one a column, in order: how its cells are aligned
    explicit Table(std::vector<Align> columns) : alignment(std::move(columns)) {}

    /// Adds a line; cells that are missing at its end are empty.
    void line(std::vector<std::string> cells);

    /// The text, each line with the same indentation and two blanks between columns.
    std::string text(int indentation) const;

private:
    std::vector<Align> alignment;
    std::vector<std::vector<std::string>> lines;
};
