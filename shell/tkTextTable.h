#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Text in aligned columns for a terminal: a header, then the rows, the columns two blanks
// apart and each as wide as its widest cell in characters. The last column is not padded.
// Control characters in a cell become blanks, so that a row stays one line.
class tkTextTable {
  public:
    explicit tkTextTable(std::vector<std::string> header);

    // Cells of that column are padded on the left.
    void alignRight(size_t column);
    // A row of as many cells as the header has.
    void addRow(std::vector<std::string> cells);
    size_t rowCount() const { return rows_.size() - 1; }

    std::string render() const;

  private:
    std::vector<std::vector<std::string>> rows_;
    std::vector<bool> right_;
};
