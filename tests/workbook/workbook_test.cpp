#include "TestFiles.h"
#include "files/RecipeWorkbook.h"
#include "module/ModuleResources.h"
#include "module/ParmiraApp.h"
#include "module/host/IRWDataItem.h"
#include "zorhost/ReferenceHost.h"

#include <afx/afxres.h>
#include <workbook/Workbook.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include <unistd.h>

namespace {

std::string Data(const char* name) {
    return std::string(PARMIRA_SOURCE_DIR) + "/tests/workbook/data/" + name;
}

class WorkbookFiles : public ::testing::TestWithParam<const char*> {};

TEST_P(WorkbookFiles, SheetsInOrderWithNumbersAndTexts) {
    workbook::Workbook book;
    ASSERT_TRUE(book.Open(Data(GetParam())));
    const auto& sheets = book.Sheets();
    ASSERT_EQ(sheets.size(), 4u);
    EXPECT_EQ(sheets[0].Name(), "修改记录");
    EXPECT_EQ(sheets[1].Name(), "矩阵");
    EXPECT_EQ(sheets[3].Name(), "空");
    const workbook::Sheet& matrix = sheets[1];
    EXPECT_EQ(matrix.At(1, 2).text, "QX800逆变 配方");
    EXPECT_EQ(matrix.At(8, 3).kind, workbook::Cell::Kind::Number);
    EXPECT_EQ(matrix.At(8, 3).number, 26);
    EXPECT_EQ(matrix.At(7, 3).text, "0x1A");
    EXPECT_TRUE(matrix.At(6, 9).IsEmpty());
    EXPECT_EQ(matrix.LastUsedRow(), 9);
    EXPECT_EQ(sheets[2].At(3, 2).text, " 2 ");
}

INSTANTIATE_TEST_SUITE_P(XlsxAndXls, WorkbookFiles, ::testing::Values("recipe.xlsx", "recipe.xls"));

TEST(Workbook, BrokenOrMissingFilesGiveNoSheets) {
    // The script beside the data is a text file, neither kind of workbook.
    for (const char* name :
         {"corrupt.xlsx", "corrupt.xls", "missing.xlsx", "../make_workbooks.py"}) {
        workbook::Workbook book;
        const std::string path = Data(name);
        EXPECT_FALSE(book.Open(path)) << name;
        EXPECT_TRUE(book.Sheets().empty()) << name;
        EXPECT_EQ(book.Error().rfind(path + ": ", 0), 0u) << book.Error();
    }

    // Too big to be a recipe: refused by its size before a byte is read (a sparse file, so
    // nothing is written), and so is a device that never ends.
    const std::string huge = ::testing::TempDir() + "huge.xlsx";
    std::ofstream(huge, std::ios::binary | std::ios::trunc) << "PK\x03\x04";
    ASSERT_EQ(::truncate(huge.c_str(), workbook::Workbook::kMaxFileBytes + 1), 0);
    for (const std::string& path : {huge, std::string("/dev/zero")}) {
        workbook::Workbook book;
        EXPECT_FALSE(book.Open(path));
        EXPECT_NE(book.Error().find(path == huge ? "(at most 64 MB)" : "not a regular file"),
                  std::string::npos)
            << book.Error();
    }
    std::remove(huge.c_str());
}

// Cut and flipped copies of real workbooks: the reader gives up cleanly, never crashes.
TEST(Workbook, DamagedCopiesOfRealWorkbooksNeverCrash) {
    const std::string out = ::testing::TempDir() + "damaged-workbook";
    for (const char* name : {"recipe.xlsx", "recipe.xls"}) {
        const std::string whole = Slurp(Data(name));
        ASSERT_GT(whole.size(), 512u);
        for (size_t step = 1; step < 48; ++step) {
            std::string bytes = whole;
            if (step % 2 == 0)
                bytes.resize(whole.size() * step / 48);
            else
                for (size_t i = step * 37; i < bytes.size(); i += 97 + step)
                    bytes[i] = char(bytes[i] ^ 0x5A);
            Spit(out, bytes);
            workbook::Workbook book;
            if (book.Open(out))
                for (const workbook::Sheet& sheet : book.Sheets())
                    EXPECT_LE(sheet.LastUsedRow(), workbook::Workbook::kMaxRows);
            else
                EXPECT_TRUE(book.Sheets().empty());
        }
    }
    std::remove(out.c_str());
}

class RecipeReading : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(host.LoadDemo());
        theApp.m_hResource = AfxCreateResourceHandle("workbook-test");
        RegisterModuleResources(theApp.m_hResource);
        theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
    }
    void TearDown() override {
        DeleteRecipeRecords(map);
        theApp.SetQueryInterfaceCallback(0, nullptr);
        AfxFreeResourceHandle(theApp.m_hResource);
        theApp.m_hResource = nullptr;
    }
    static int Type(IRWDataItem* r) {
        return static_cast<zorhost::CParamRecord*>(r)->GetRecordType();
    }

    zorhost::ReferenceHost host;
    RecipeRecordMap map;
};

TEST_F(RecipeReading, MatrixAndSingleSheetRules) {
    for (const char* name : {"recipe.xlsx", "recipe.xls"}) {
        SCOPED_TRACE(name);
        DeleteRecipeRecords(map);
        ReadRecipeWorkbook(CString(Data(name).c_str()), map);
        // The change log and the sheet whose B1 is empty give nothing: no key of theirs.
        ASSERT_EQ(map.size(), 3u);
        for (const char* key : {"1", "2", "3"})
            ASSERT_EQ(map.count(key), 1u) << key;
        // "是" in two columns: one record for module 1, one for module 3.
        const auto& one = map["1"];
        ASSERT_EQ(one.size(), 1u);
        EXPECT_EQ(one[0]->GetRecordAddress(), 26u);
        EXPECT_EQ(one[0]->GetRecordValue(), Variant::R4(12.5f));
        EXPECT_EQ(Type(one[0]), int(VT_R4));
        // 0x1A and the number 26 name one address; "是的" counts as "是".
        const auto& three = map["3"];
        ASSERT_EQ(three.size(), 2u);
        EXPECT_EQ(three[0]->GetRecordAddress(), 26u);
        EXPECT_EQ(three[1]->GetRecordAddress(), 26u);
        EXPECT_EQ(three[1]->GetRecordValue(), Variant::R4(7.0f));
        // Single sheet: key from B3 trimmed, the row without address left out, trimmed
        // texts, the leading number of a value.
        const auto& two = map["2"];
        ASSERT_EQ(two.size(), 2u);
        EXPECT_EQ(two[0]->GetRecordAddress(), 26u);
        EXPECT_EQ(two[0]->GetRecordValue(), Variant::R4(3.25f));
        EXPECT_EQ(Type(two[0]), int(VT_I2));
        EXPECT_EQ(two[1]->GetRecordAddress(), 40u);
        EXPECT_EQ(two[1]->GetRecordValue(), Variant::R4(-4.0f));
        EXPECT_EQ(Type(two[1]), int(VT_BOOL));
    }
}

} // namespace
