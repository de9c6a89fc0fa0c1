// A recipe workbook as the reader needs it: its sheets in order with their names, each
// with the cells of its used range as a number or a text. Opening never throws; a file
// that is missing, unreadable or broken gives a workbook without sheets.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace workbook {

struct Cell {
    enum class Kind { Empty, Number, Text };
    Kind kind = Kind::Empty;
    double number = 0;
    std::string text; // UTF-8

    bool IsEmpty() const { return kind == Kind::Empty; }
};

class Sheet {
public:
    explicit Sheet(std::string name = {}) : m_name(std::move(name)) {}

    const std::string& Name() const { return m_name; }
    // The cell at `row` and `column`, both from 1 (A1 is 1, 1); empty outside the range.
    const Cell& At(int row, int column) const;
    // The last row that holds a cell, 0 for an empty sheet.
    int LastUsedRow() const { return m_cells.empty() ? 0 : m_cells.rbegin()->first.first; }
    void Set(int row, int column, Cell cell);

private:
    std::string m_name;
    // Sparse in both directions: a far cell, XFD1048576 too, costs one entry.
    std::map<std::pair<int, int>, Cell> m_cells; // (row, column)
};

class Workbook {
public:
    // Reads `path` by its content (zip: .xlsx, compound document: .xls). False, with no
    // sheets and Error() telling why, when the file can't be read.
    bool Open(const std::string& path);
    // The same for an .xlsx whose bytes are at hand; `name` only goes into Error().
    bool OpenXlsx(std::string_view bytes, const std::string& name);
    const std::vector<Sheet>& Sheets() const { return m_sheets; }
    // "<path>: <reason>" after a failed Open, else empty.
    const std::string& Error() const { return m_error; }

    // Limits against files of endless size. A recipe of every parameter of the largest
    // drive is well below a megabyte.
    static constexpr int kMaxRows = 1048576;
    static constexpr int kMaxColumns = 16384;
    static constexpr long long kMaxFileBytes = 64ll << 20;

private:
    bool Fail(const std::string& path, const std::string& why);

    std::vector<Sheet> m_sheets;
    std::string m_error;
};

// Column letters to a number from 1 ("A" 1, "AA" 27); 0 when there are none.
int ColumnFromLetters(const char*& cursor);

namespace detail {
bool ReadXlsx(std::string_view bytes, std::vector<Sheet>& sheets);
bool ReadXls(const std::string& path, std::vector<Sheet>& sheets);
} // namespace detail

} // namespace workbook
