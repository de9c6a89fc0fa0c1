#include "workbook/Workbook.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include <sys/stat.h>

namespace workbook {

namespace {
const Cell kEmpty;

std::string TooLarge(long long size) {
    return std::to_string(size) + " bytes is more than a recipe workbook holds (at most " +
           std::to_string(Workbook::kMaxFileBytes >> 20) + " MB)";
}
} // namespace

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
    std::ifstream in(path, std::ios::binary);
    std::string bytes(std::size_t(st.st_size), '\0');
    if (!in.read(bytes.data(), std::streamsize(bytes.size())))
        return Fail(path, in.is_open() ? "can't be read to its end" : std::strerror(errno));
    const auto* magic = reinterpret_cast<const unsigned char*>(bytes.data());
    const bool zip = bytes.size() >= 4 && magic[0] == 'P' && magic[1] == 'K';
    const bool compound = bytes.size() >= 4 && magic[0] == 0xD0 && magic[1] == 0xCF &&
                          magic[2] == 0x11 && magic[3] == 0xE0;
    if (zip)
        return OpenXlsx(bytes, path);
    if (!compound)
        return Fail(path, "neither an .xlsx nor an .xls workbook");
    // The .xls library reads only from a path.
    if (!detail::ReadXls(path, m_sheets))
        return Fail(path, "a broken .xls workbook");
    return true;
}

bool Workbook::OpenXlsx(std::string_view bytes, const std::string& name) {
    m_sheets.clear();
    m_error.clear();
    if (bytes.size() > std::size_t(kMaxFileBytes))
        return Fail(name, TooLarge(static_cast<long long>(bytes.size())));
    if (!detail::ReadXlsx(bytes, m_sheets))
        return Fail(name, "a broken .xlsx workbook");
    return true;
}

} // namespace workbook
