// Recipe workbooks (.xlsx and .xls), the reader chosen by the content as for a user's file.
// An .xlsx is read from memory, as Open reads it once it has the file's bytes; the .xls
// library takes only a path, so that input goes through a scratch file.
#include "FuzzSupport.h"

#include "workbook/Workbook.h"

#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const bool zip = size >= 2 && data[0] == 'P' && data[1] == 'K';
#ifdef PARMIRA_LIBFUZZER
    // Under clang's AddressSanitizer the iconv interceptor reports libfreexl's own text
    // conversion on every .xls, also on a sound one, so libFuzzer can't get past the seeds.
    // The .xls reader is still replayed (gcc, ASan) by ctest, and so is the refusal of
    // what is neither; a file per input would cost more than all the rest.
    if (!zip)
        return 0;
#endif
    workbook::Workbook book;
    const bool read =
        zip ? book.OpenXlsx(std::string_view(reinterpret_cast<const char*>(data), size), "fuzz")
            : book.Open(fuzz::ScratchFile(data, size, ".book"));
    if (!read && book.Error().empty())
        __builtin_trap(); // a refusal always says why
    if (read) {
        for (const workbook::Sheet& sheet : book.Sheets())
            for (int row = 1; row <= std::min(sheet.LastUsedRow(), 64); ++row)
                for (int column = 1; column <= 16; ++column)
                    (void)sheet.At(row, column).text.size();
    }
    return 0;
}
