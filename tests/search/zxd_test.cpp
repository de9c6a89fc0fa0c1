// The compressed export: value words and checksums, and whole files written from the live
// list of the demo servo, read back byte by byte.
#include "TempDir.h"
#include "page_fixture.h"

#include "files/ZxdExport.h"
#include "table/TableResources.h"

#include <zlib.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace pt {
namespace {

uint32_t Word(const std::string& b, size_t at) {
    uint32_t v = 0;
    for (int i = 3; i >= 0; --i)
        v = (v << 8) | uint8_t(b[at + size_t(i)]);
    return v;
}

std::string ReadAll(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

TEST(ZxdRecordTest, ValueWordsAndTheChecksumRule) {
    struct Case {
        Variant value;
        uint32_t word;
    };
    const Case cases[] = {
        {Variant::I4(-1), 0xFFFFFFFFu},
        {Variant::I2(-1), 0xFFFFFFFFu},
        {Variant::R4(1.5f), 1u},
        {Variant::R8(-2.7), 0xFFFFFFFEu},
        {Variant::UI2(65535), 65535u},
        {Variant::UI4(0x80000000u), 0x80000000u},
        {Variant(), 0u},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ZxdValueWord(c.value), c.word) << c.value.vt;
    // The worked example: address 0x102, flags 0x82, value 1.
    const BYTE record[12] = {0x02, 0x01, 0, 0, 0x82, 0, 0, 0, 0x01, 0, 0, 0};
    EXPECT_EQ(ZxdChecksum(record, sizeof record), 0xFFFFFF79u);
}

class ZxdFileTest : public ServoPageTest {
protected:
    TempDir temp;
    std::filesystem::path dir{temp.Path()};
    // Checks the layout of `bytes` for `rows` records and returns the inflated image.
    std::string CheckFile(const std::string& bytes, uint32_t rows) {
        EXPECT_GE(bytes.size(), 256u + 16u * rows + 12u);
        if (bytes.size() < 256u + 16u * rows + 12u)
            return {};
        EXPECT_EQ(Word(bytes, 0), 0x01000001u); // format words 1 and 0x0100
        EXPECT_EQ(Word(bytes, 44), rows);
        // The sum runs over the label as the module holds it, not as the file has it.
        std::string summed = bytes.substr(0, 48);
        for (size_t i = 4; i < 36; i += 2)
            std::swap(summed[i], summed[i + 1]);
        EXPECT_EQ(Word(bytes, 60),
                  ZxdChecksum(reinterpret_cast<const BYTE*>(summed.data()), summed.size()));
        const BYTE* label = module->GetElecLabel();
        EXPECT_EQ(std::memcmp(summed.data() + 4, label, std::min(32u, module->GetElecLabelSize())),
                  0);
        for (uint32_t r = 0; r < rows; ++r) {
            const size_t at = 256 + 16 * r;
            EXPECT_EQ(Word(bytes, at + 12),
                      ZxdChecksum(reinterpret_cast<const BYTE*>(bytes.data() + at), 12))
                << r;
        }
        const size_t end = 256 + 16 * rows;
        EXPECT_EQ(Word(bytes, end), ZXD_END_MARK);
        const uint32_t size = Word(bytes, end + 4);
        const uint32_t packed = Word(bytes, end + 8);
        EXPECT_EQ(bytes.size(), end + 12 + packed);
        std::string image(size, '\0');
        uLongf length = size;
        EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(image.data()), &length,
                             reinterpret_cast<const Bytef*>(bytes.data() + end + 12), packed),
                  Z_OK);
        EXPECT_EQ(length, size);
        return image;
    }
};

TEST_F(ZxdFileTest, RowsOfTheListAndTheirImage) {
    ShowGroup("H00");
    std::vector<IVarObjEx*> rows;
    Page().CollectShown(rows);
    ASSERT_GT(rows.size(), 3u);
    const std::filesystem::path path = dir / "h00.zxd";
    ASSERT_EQ(WriteZxdFile(path.string(), module, rows), ZxdResult::Written);
    const std::string bytes = ReadAll(path);
    const std::string image = CheckFile(bytes, uint32_t(rows.size()));
    EXPECT_EQ(image, SerializeRowsAsParamFile(module, rows));
    // Each record: the row's address, and its flags from decimals, type and modify mode.
    for (size_t r = 0; r < rows.size(); ++r) {
        IVarAttr* attr = rows[r]->GetAttr();
        EXPECT_EQ(Word(bytes, 256 + 16 * r), rows[r]->GetInstanceAddress());
        const uint32_t flags = Word(bytes, 256 + 16 * r + 4);
        EXPECT_EQ(flags & 7u, uint32_t(attr->GetDecimals() <= 4 ? attr->GetDecimals() : 0));
        EXPECT_EQ((flags & 0x800u) != 0, attr->GetModifyMode() == 1);
        EXPECT_EQ((flags & 0x1000u) != 0, attr->GetModifyMode() == 2);
    }
    // A null row keeps its place in the count but has no record: the end mark comes early.
    rows.insert(rows.begin() + 1, nullptr);
    ASSERT_EQ(WriteZxdFile(path.string(), module, rows), ZxdResult::Written);
    const std::string withNull = ReadAll(path);
    EXPECT_EQ(Word(withNull, 44), uint32_t(rows.size()));
    EXPECT_EQ(Word(withNull, 256 + 16 * (rows.size() - 1)), ZXD_END_MARK);
}

TEST_F(ZxdFileTest, AnEmptyListAndAnUnwritablePlace) {
    const std::filesystem::path empty = dir / "empty.zxd";
    ASSERT_EQ(WriteZxdFile(empty.string(), module, {}), ZxdResult::Written);
    CheckFile(ReadAll(empty), 0);
    // Unwritable place: the open failure, and no file.
    prompts.ChooseFiles({CString((dir / "missing" / "x.zxd").string().c_str())});
    table->OnFrameCommand(ID_EXPORT_ZXD);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "文件打开失败");
}

// Command 32857 of the frame reads the drive first: the records hold what the drive holds,
// the end of that upload starts no save of its own, and a failed read leaves no file.
TEST_F(ZxdFileTest, TheFrameCommandUploadsBeforeTheExport) {
    ShowGroup("H00");
    const int row = 2;
    IVarObjEx* var = Page().GetShownVar(row);
    const UINT address = var->GetInstanceAddress();
    double raw = 0;
    ASSERT_TRUE(drive->PeekRaw(address, raw));
    ASSERT_TRUE(drive->PokeRaw(address, raw + 1));
    const std::filesystem::path fresh = dir / "fresh.zxd";
    prompts.ChooseFiles({CString(fresh.string().c_str())});
    ASSERT_TRUE(table->OnFrameCommand(ID_EXPORT_ZXD));
    EXPECT_EQ(table->busyExporting, 0);
    const std::string bytes = ReadAll(fresh);
    CheckFile(bytes, uint32_t(Page().GetShownCount()));
    EXPECT_EQ(Word(bytes, 256 + 16 * row + 8), uint32_t(raw + 1));
    ASSERT_EQ(prompts.Count(AfxPrompt::FileDialog), 1u);
    EXPECT_EQ(prompts.Last(AfxPrompt::FileDialog)->defExt, "zxd");
    EXPECT_EQ(prompts.Last(AfxPrompt::FileDialog)->text.Right(4), ".zxd");
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "文件保存成功");

    drive->SetFailure(zorhost::sim::FailureMode::FailReads, {address});
    const std::filesystem::path failed = dir / "failed.zxd";
    prompts.ChooseFiles({CString(failed.string().c_str())});
    table->OnFrameCommand(ID_EXPORT_ZXD);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "参数上传失败,未导出ZXD文件");
    EXPECT_EQ(prompts.Count(AfxPrompt::FileDialog), 1u);
    EXPECT_FALSE(std::filesystem::exists(failed));
}

} // namespace
} // namespace pt
