#include "workbook/Workbook.h"

#include <cstdio>

namespace workbook {

namespace {
const Cell kEmpty;
}

const Cell& Sheet::At(int row, int column) const {
    auto it = m_rows.find(row);
    if (it == m_rows.end() || column < 1 || size_t(column) > it->second.size())
        return kEmpty;
    return it->second[size_t(column - 1)];
}

void Sheet::Set(int row, int column, Cell cell) {
    if (row < 1 || column < 1 || row > Workbook::kMaxRows || column > Workbook::kMaxColumns ||
        cell.IsEmpty())
        return;
    std::vector<Cell>& cells = m_rows[row];
    if (cells.size() < size_t(column))
        cells.resize(size_t(column));
    cells[size_t(column - 1)] = std::move(cell);
}

int ColumnFromLetters(const char*& cursor) {
    int column = 0;
    while (*cursor >= 'A' && *cursor <= 'Z') {
        column = column * 26 + (*cursor - 'A' + 1);
        if (column > Workbook::kMaxColumns)
            column = Workbook::kMaxColumns + 1;
        ++cursor;
    }
    return column;
}

bool Workbook::Open(const std::string& path) {
    m_sheets.clear();
    unsigned char magic[4] = {0, 0, 0, 0};
    if (FILE* f = std::fopen(path.c_str(), "rb")) {
        const size_t n = std::fread(magic, 1, sizeof magic, f);
        std::fclose(f);
        if (n < sizeof magic)
            return false;
    } else {
        return false;
    }
    bool ok = false;
    if (magic[0] == 'P' && magic[1] == 'K')
        ok = detail::ReadXlsx(path, m_sheets);
    else if (magic[0] == 0xD0 && magic[1] == 0xCF && magic[2] == 0x11 && magic[3] == 0xE0)
        ok = detail::ReadXls(path, m_sheets);
    if (!ok)
        m_sheets.clear();
    return ok;
}

} // namespace workbook
