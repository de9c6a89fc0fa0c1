#include <afx/afxcmn.h>
#include <afx/afxtest.h>

#include <gtest/gtest.h>

namespace {

class TreeHost : public CWnd {
public:
    std::vector<std::pair<LPARAM, LPARAM>> selections; // old, new data

protected:
    BOOL OnNotify(WPARAM, LPARAM lParam, LRESULT*) override {
        auto* nm = reinterpret_cast<NMTREEVIEW*>(lParam);
        if (nm->hdr.code == TVN_SELCHANGED)
            selections.emplace_back(nm->itemOld.lParam, nm->itemNew.lParam);
        return TRUE;
    }
};

const char* const kIcon[] = {"4 4 2 1", ". c #2060C0", "# c #FFFFFF", "....",
                             ".##.",    ".##.",        "...."};

struct TreeFixture : ::testing::Test {
    TreeHost host;
    CTreeCtrl tree;
    CImageList images;
    HTREEITEM root = nullptr, groups = nullptr, h00 = nullptr, h01 = nullptr, custom = nullptr;
    void SetUp() override {
        ASSERT_TRUE(
            host.Create(nullptr, "host", WS_POPUP | WS_VISIBLE, CRect(0, 0, 300, 400), nullptr, 0));
        ASSERT_TRUE(
            tree.Create(WS_CHILD | WS_VISIBLE | TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT,
                        CRect(0, 0, 300, 400), &host, 2007));
        HINSTANCE h = AfxGetInstanceHandle();
        AfxRegisterIconXpm(h, 1992, kIcon);
        images.Create(16, 16, ILC_COLOR32 | ILC_MASK, 3, 1);
        EXPECT_EQ(images.Add(AfxFindIcon(h, 1992)), 0);
        EXPECT_EQ(images.Add(AfxFindIcon(h, 1992)), 1);
        tree.SetImageList(&images, TVSIL_NORMAL);
        root = tree.InsertItem("设备", 0, 0);
        groups = tree.InsertItem("所有参数", 1, 1, root);
        h00 = tree.InsertItem("H00 伺服电机参数", 1, 1, groups);
        h01 = tree.InsertItem("H01 驱动器参数", 1, 1, groups);
        custom = tree.InsertItem("自定义", 0, 0, root);
        tree.SetItemData(h00, 100);
        tree.SetItemData(h01, 101);
    }
};

} // namespace

// Walking, and the data and expansion of items kept over collapsing and expanding.
TEST_F(TreeFixture, WalksItemsAndKeepsTheirDataAndState) {
    EXPECT_EQ(tree.GetRootItem(), root);
    EXPECT_EQ(tree.GetChildItem(root), groups);
    EXPECT_EQ(tree.GetNextSiblingItem(groups), custom);
    EXPECT_EQ(tree.GetNextSiblingItem(custom), nullptr);
    EXPECT_EQ(tree.GetParentItem(h01), groups);
    EXPECT_EQ(tree.GetParentItem(root), nullptr);
    EXPECT_EQ(tree.GetCount(), 5u);
    EXPECT_EQ(tree.GetItemText(h00), "H00 伺服电机参数");
    int image = -1, selImage = -1;
    ASSERT_TRUE(tree.GetItemImage(h00, image, selImage));
    EXPECT_EQ(image, 1);

    EXPECT_TRUE(tree.Expand(root, TVE_EXPAND));
    EXPECT_TRUE(tree.Expand(groups, TVE_EXPAND));
    EXPECT_EQ(tree.GetItemState(groups, TVIS_EXPANDED), TVIS_EXPANDED);
    tree.Expand(groups, TVE_COLLAPSE);
    tree.Expand(root, TVE_TOGGLE);
    EXPECT_EQ(tree.GetItemState(root, TVIS_EXPANDED), 0u);
    EXPECT_EQ(tree.GetItemState(groups, TVIS_EXPANDED), 0u);
    tree.Expand(root, TVE_TOGGLE);
    EXPECT_EQ(tree.GetItemState(root, TVIS_EXPANDED), TVIS_EXPANDED);
    EXPECT_EQ(tree.GetItemData(h00), 100u);
    EXPECT_EQ(tree.GetItemData(h01), 101u);
}

TEST_F(TreeFixture, SelectionNotifiesAndHitTestFindsItems) {
    EXPECT_TRUE(tree.SelectItem(h01)); // opens its ancestors
    EXPECT_EQ(tree.GetSelectedItem(), h01);
    EXPECT_EQ(tree.GetItemState(groups, TVIS_EXPANDED), TVIS_EXPANDED);
    EXPECT_EQ(tree.GetItemState(h01, TVIS_SELECTED), TVIS_SELECTED);
    ASSERT_FALSE(host.selections.empty());
    EXPECT_EQ(host.selections.back().second, 101);
    tree.SelectItem(h00);
    EXPECT_EQ(host.selections.back(), std::make_pair(LPARAM(101), LPARAM(100)));
    CRect r;
    ASSERT_TRUE(tree.GetItemRect(h00, &r, TRUE));
    UINT flags = 0;
    EXPECT_EQ(tree.HitTest(r.CenterPoint(), &flags), h00);
    EXPECT_EQ(flags, TVHT_ONITEMLABEL);
    EXPECT_EQ(tree.HitTest(CPoint(150, 390), &flags), nullptr); // empty space
    EXPECT_EQ(flags, TVHT_NOWHERE);
    tree.SetItemHeight(20);
    ASSERT_TRUE(tree.GetItemRect(h00, &r, FALSE));
    EXPECT_EQ(r.Height(), 20);
    EXPECT_TRUE(tree.DeleteItem(groups));
    EXPECT_EQ(tree.GetCount(), 2u);
    EXPECT_EQ(tree.GetChildItem(root), custom);
}
