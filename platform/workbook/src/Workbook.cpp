#include "workbook/Workbook.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/stat.h>

namespace workbook {

namespace {
const Cell kEmpty;
}

const Cell& Sheet::At(int row, int column) const {
    auto it = m_cells.find({row, column});
    return it == m_cells.end() ? kEmpty : it->second;
}

void Sheet::Set(int row, int column, Cell cell) {
    if (row < 1 || column < 1 || row > Workbook::kMaxRows || column > Workbook::kMaxColumns ||
        cell.IsEmpty())
        return;
    m_cells[{row, column}] = std::move(cell);
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

bool Workbook::Fail(const std::string& path, const std::string& why) {
    m_sheets.clear();
    m_error = path + ": " + why;
    return false;
}

bool Workbook::Open(const std::string& path) {
    m_sheets.clear();
    m_error.clear();
    // Looked at before opening: a FIFO would block the open, a device never ends.
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0)
        return Fail(path, std::strerror(errno));
    if (!S_ISREG(st.st_mode))
        return Fail(path, "not a regular file, so not a workbook");
    if (st.st_size > kMaxFileBytes)
        return Fail(path, std::to_string(st.st_size) +
                              " bytes is more than a recipe workbook "
                              "holds (at most " +
                              std::to_string(kMaxFileBytes >> 20) + " MB)");
    unsigned char magic[4] = {0, 0, 0, 0};
    FILE* f = std::fopen(path.c_str(), "rb");
    if (!f)
        return Fail(path, std::strerror(errno));
    const size_t n = std::fread(magic, 1, sizeof magic, f);
    std::fclose(f);
    const bool zip = n == sizeof magic && magic[0] == 'P' && magic[1] == 'K';
    const bool compound = n == sizeof magic && magic[0] == 0xD0 && magic[1] == 0xCF &&
                          magic[2] == 0x11 && magic[3] == 0xE0;
    if (!zip && !compound)
        return Fail(path, "neither an .xlsx nor an .xls workbook");
    const bool ok = zip ? detail::ReadXlsx(path, m_sheets) : detail::ReadXls(path, m_sheets);
    if (!ok)
        return Fail(path, zip ? "a broken .xlsx workbook" : "a broken .xls workbook");
    return true;
}

} // namespace workbook
