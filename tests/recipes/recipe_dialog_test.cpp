// The recipe dialog as the host opens it: tree, rows, and the backup and restore jobs
// against the simulated drive.
#include "recipe_fixture.h"

#include "module/host/IVarAttr.h"
#include "sets/OneKeyParseRecipeDialog.h"

#include <set>

namespace {

std::vector<std::string> RowCodes(COneKeyParseRecipeDialog& dlg) {
    std::vector<std::string> codes;
    for (int r = 0; r < dlg.GetRowCount(); ++r)
        codes.push_back(dlg.GetCellText(r, 2).str());
    return codes;
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
