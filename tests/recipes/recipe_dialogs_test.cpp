// The recipe dialog as the host opens it (tree and rows), and the list of failed writes as
// a user reads it.
#include "recipe_fixture.h"

#include "TextOf.h"
#include "module/host/IVarAttr.h"
#include "sets/OneKeyParseRecipeDialog.h"
#include "sets/TranslateFailedDialog.h"

#include <afx/afxwin.h>

#include <set>

namespace {

std::vector<std::string> RowCodes(COneKeyParseRecipeDialog& dlg) {
    std::vector<std::string> codes;
    for (int r = 0; r < dlg.GetRowCount(); ++r)
        codes.push_back(dlg.GetCellText(r, 2).str());
    return codes;
}

// Runs the dialog on `vars` and hands every cell of rows 0..rows-1 back, row by row.
std::vector<std::vector<std::string>> Cells(const std::vector<IVarObjEx*>* vars, int rows,
                                            int* columns = nullptr, int* count = nullptr) {
    std::vector<std::vector<std::string>> cells;
    CTranslateFailedDialog dlg;
    dlg.SetFailedVars(vars);
    CAfxModalDriver driver([&](CDialog& d) {
        auto& failed = static_cast<CTranslateFailedDialog&>(d);
        EXPECT_EQ(d.GetWindowTextString(), "读写失败信息");
        if (columns != nullptr)
            *columns = failed.m_list.GetHeaderCtrl()->GetItemCount();
        if (count != nullptr)
            *count = failed.m_list.GetItemCount();
        for (int r = 0; r < rows; ++r) {
            cells.emplace_back();
            for (int c = 0; c < 6; ++c)
                cells.back().push_back(failed.m_list.OnGetCellText(r, c).str());
        }
        d.EndDialog(IDOK);
    });
    dlg.DoModal();
    EXPECT_EQ(driver.runs, 1);
    return cells;
}

} // namespace

TEST_F(RecipeTest, DialogListsEveryTransferableParameterOnceAndTheTreeNarrowsIt) {
    RunRecipeDialog([&](COneKeyParseRecipeDialog& dlg) {
        EXPECT_EQ(dlg.GetWindowTextString(), "编辑配方");
        EXPECT_EQ(dlg.GetModule(), Module());
        HTREEITEM root = dlg.m_tree.GetRootItem();
        EXPECT_EQ(dlg.m_tree.GetItemText(root), "所有参数");
        const auto all = RowCodes(dlg);
        ASSERT_GT(all.size(), 300u);
        EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), all.size());
        // The factory password is no parameter of a recipe.
        EXPECT_EQ(std::count(all.begin(), all.end(), "H02-41"), 0);
        EXPECT_EQ(dlg.m_list.GetItemCount(), int(all.size()));
        EXPECT_EQ(dlg.GetCellText(0, 0), "001");
        EXPECT_EQ(dlg.GetRowBackground(0), COLORREF(0xF5FAE4));
        EXPECT_EQ(dlg.GetRowBackground(1), COLORREF(0xF0F0C8));

        // A group of the tree shows its own parameters only; the root changes nothing.
        HTREEITEM group = dlg.m_tree.GetChildItem(root);
        ASSERT_NE(group, nullptr);
        dlg.OnTreeSelection(group);
        const auto some = RowCodes(dlg);
        EXPECT_GT(some.size(), 0u);
        EXPECT_LT(some.size(), all.size());
        dlg.OnTreeSelection(root);
        EXPECT_EQ(RowCodes(dlg), some);
    });
}

TEST_F(RecipeTest, FailedListNamesEachVariableInOrderAndNothingPastItsEnd) {
    IVarObjEx* speed = Var("H02-09");
    IVarObjEx* other = Var("H02-10");
    speed->SetValue(Variant::UI2(321));
    std::vector<IVarObjEx*> vars{other, speed, nullptr};
    int columns = 0, count = 0;
    const auto cells = Cells(&vars, 4, &columns, &count);
    EXPECT_EQ(columns, 6);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(cells[0][0], "0001");
    EXPECT_EQ(cells[0][1], "H02-10");
    EXPECT_EQ(cells[1][0], "0002");
    EXPECT_EQ(cells[1][1], "H02-09");
    EXPECT_EQ(cells[1][2], TextOf(speed->GetAttr(), &IVarAttr::GetName).str());
    EXPECT_EQ(cells[1][3], std::to_string(speed->GetInstanceAddress()));
    EXPECT_EQ(cells[1][4], "321");
    EXPECT_EQ(cells[0][5], "下载失败！");
    EXPECT_EQ(cells[1][5], cells[0][5]); // which failed, not why
    // A null variable and rows past the end give no text.
    EXPECT_EQ(cells[2], std::vector<std::string>(6));
    EXPECT_EQ(cells[3], std::vector<std::string>(6));

    // Without a list: an empty table.
    count = -1;
    EXPECT_EQ(Cells(nullptr, 1, nullptr, &count)[0], std::vector<std::string>(6));
    EXPECT_EQ(count, 0);
}
