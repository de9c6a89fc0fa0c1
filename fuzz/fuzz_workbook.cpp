// Recipe workbooks (.xlsx and .xls). Both readers take a path, so the input goes through a
// scratch file; the reader is chosen by the content, as it is for a user's file.
#include "FuzzSupport.h"

#include "workbook/Workbook.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    workbook::Workbook book;
    if (book.Open(fuzz::ScratchFile(data, size, ".book"))) {
        for (const workbook::Sheet& sheet : book.Sheets())
            for (int row = 1; row <= std::min(sheet.LastUsedRow(), 64); ++row)
                for (int column = 1; column <= 16; ++column)
                    (void)sheet.At(row, column).text.size();
    }
    return 0;
}
