// Recipe workbooks (.xlsx and .xls). Both readers take a path, so the input goes through a
// scratch file; the reader is chosen by the content, as it is for a user's file.
#include "FuzzSupport.h"

#include "workbook/Workbook.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
#ifdef PARMIRA_LIBFUZZER
    // Under clang's AddressSanitizer the iconv interceptor reports libfreexl's own text
    // conversion on every .xls, also on a sound one, so libFuzzer can't get past the seeds.
    // The .xls reader is still replayed (gcc, ASan) by ctest.
    if (size >= 4 && data[0] == 0xD0 && data[1] == 0xCF && data[2] == 0x11 && data[3] == 0xE0)
        return 0;
#endif
    workbook::Workbook book;
    if (book.Open(fuzz::ScratchFile(data, size, ".book"))) {
        for (const workbook::Sheet& sheet : book.Sheets())
            for (int row = 1; row <= std::min(sheet.LastUsedRow(), 64); ++row)
                for (int column = 1; column <= 16; ++column)
                    (void)sheet.At(row, column).text.size();
    }
    return 0;
}
