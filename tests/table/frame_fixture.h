// A frame with its window inside a top-level test dialog.
#pragma once

#include "table_host.h"

#include <gtest/gtest.h>

namespace tt {

class FrameTest : public ::testing::Test {
protected:
    void SetUp() override { module = host.AddModule("M1"); }
    void TearDown() override { CloseFrame(); }

    // Builds the window of the frame (`made`, or a plain one) for the module as it stands
    // now, or for none.
    void OpenFrame(CVarTable* made = nullptr, bool withModule = true) {
        ASSERT_TRUE(parent.Create(9901, nullptr));
        table.reset(made != nullptr ? made : new CVarTable);
        table->SetWorkspace(&host.project);
        if (withModule)
            table->SetModule(module);
        ASSERT_TRUE(table->Create(IDD_VAR_TABLE, &parent));
    }
    void CloseFrame() {
        if (table != nullptr && table->GetSafeHwnd() != nullptr)
            table->DestroyWindow();
        table.reset();
        if (parent.GetSafeHwnd() != nullptr)
            parent.DestroyWindow();
    }

    CTreeCtrl& Tree() { return table->GetTree(); }
    // Texts of the children of `item`, in order.
    std::vector<std::string> ChildTexts(HTREEITEM item) {
        std::vector<std::string> texts;
        for (HTREEITEM c = Tree().GetChildItem(item); c != nullptr;
             c = Tree().GetNextSiblingItem(c))
            texts.emplace_back(Tree().GetItemText(c).GetString());
        return texts;
    }
    HTREEITEM FindChild(HTREEITEM item, const char* text) {
        for (HTREEITEM c = Tree().GetChildItem(item); c != nullptr;
             c = Tree().GetNextSiblingItem(c))
            if (Tree().GetItemText(c) == text)
                return c;
        return nullptr;
    }
    std::string SelectedText() {
        HTREEITEM s = Tree().GetSelectedItem();
        return s != nullptr ? std::string(Tree().GetItemText(s).GetString()) : std::string();
    }
    // A group of the catalog with one listed member of its own.
    CGroupNode* ListedGroup(const char* name, const char* code, UINT address) {
        module->drive.AddParam(code, address);
        CGroupNode* g = AddGroup(module->drive.groups, name);
        g->AddMember(code);
        return g;
    }

    TableHost host;
    Module* module = nullptr;
    CDialog parent;
    std::unique_ptr<CVarTable> table;
};

} // namespace tt
