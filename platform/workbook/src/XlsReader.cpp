// .xls (BIFF in a compound document) through libfreexl, which hands out texts in UTF-8.
#include "workbook/Workbook.h"

#include <freexl.h>

#include <cstdio>

namespace workbook::detail {

bool ReadXls(const std::string& path, std::vector<Sheet>& sheets) {
    const void* handle = nullptr;
    if (freexl_open(path.c_str(), &handle) != FREEXL_OK) {
        if (handle)
            freexl_close(handle);
        return false;
    }
    unsigned int count = 0;
    bool ok = freexl_get_info(handle, FREEXL_BIFF_SHEET_COUNT, &count) == FREEXL_OK;
    for (unsigned int s = 0; ok && s < count && s < 0xFFFF; ++s) {
        const char* name = nullptr;
        unsigned int rows = 0;
        unsigned short columns = 0;
        if (freexl_get_worksheet_name(handle, (unsigned short)s, &name) != FREEXL_OK ||
            freexl_select_active_worksheet(handle, (unsigned short)s) != FREEXL_OK ||
            freexl_worksheet_dimensions(handle, &rows, &columns) != FREEXL_OK) {
            ok = false;
            break;
        }
        Sheet sheet(name ? name : "");
        for (unsigned int r = 0; r < rows && r < unsigned(Workbook::kMaxRows); ++r)
            for (unsigned short c = 0; c < columns; ++c) {
                FreeXL_CellValue v;
                if (freexl_get_cell_value(handle, r, c, &v) != FREEXL_OK)
                    continue;
                Cell cell;
                switch (v.type) {
                case FREEXL_CELL_INT:
                    cell.kind = Cell::Kind::Number;
                    cell.number = double(v.value.int_value);
                    break;
                case FREEXL_CELL_DOUBLE:
                    cell.kind = Cell::Kind::Number;
                    cell.number = v.value.double_value;
                    break;
                case FREEXL_CELL_TEXT:
                case FREEXL_CELL_SST_TEXT:
                case FREEXL_CELL_DATE:
                case FREEXL_CELL_DATETIME:
                case FREEXL_CELL_TIME:
                    cell.kind = Cell::Kind::Text;
                    cell.text = v.value.text_value ? v.value.text_value : "";
                    break;
                default:
                    break;
                }
                sheet.Set(int(r) + 1, int(c) + 1, std::move(cell));
            }
        sheets.push_back(std::move(sheet));
    }
    freexl_close(handle);
    return ok;
}

} // namespace workbook::detail
