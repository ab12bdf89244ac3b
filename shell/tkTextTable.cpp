#include "shell/tkTextTable.h"

#include <algorithm>
#include <utility>

#include "shell/tkCommandText.h"

tkTextTable::tkTextTable(std::vector<std::string> header) : right_(header.size(), false) {
    addRow(std::move(header));
}

void tkTextTable::alignRight(size_t column) {
    right_.at(column) = true;
}

void tkTextTable::addRow(std::vector<std::string> cells) {
    cells.resize(right_.size());
    for (std::string& cell : cells) {
        cell = oneLine(cell);
    }
    rows_.push_back(std::move(cells));
}

std::string tkTextTable::render() const {
    std::vector<size_t> widths(right_.size(), 0);
    for (const auto& row : rows_) {
        for (size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], displayWidth(row[i]));
        }
    }
    std::string text;
    for (const auto& row : rows_) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i) {
            const std::string padding(widths[i] - displayWidth(row[i]), ' ');
            const bool last = i + 1 == row.size();
            line += right_[i] ? padding + row[i] : row[i] + (last ? "" : padding);
            if (!last) {
                line += "  ";
            }
        }
        // A last column of empty cells leaves blanks behind.
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}
