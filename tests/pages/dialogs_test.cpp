// The packed-value dialog and the connector dialog, each run modally as the list runs
// them, against the demo servo's value meanings and connector groups.
#include "page_fixture.h"

#include "values/WriteLinkerVarDialog.h"
#include "values/WriteVarDialog.h"

#include <set>

namespace pt {
namespace {

class DialogTest : public ServoPageTest {
protected:
    // Runs the packed-value dialog on `code` holding `value`; `act` works inside it. The
    // value it gives back when it ends with OK, -1 when it does not.
    LONGLONG RunWriteDialog(const char* code, int value,
                            const std::function<void(CWriteVarDialog&)>& act) {
        IVarObjEx* var = Var(code);
        EXPECT_NE(var, nullptr) << code;
        var->SetValue(Variant::UI2(uint16_t(value)));
        CWriteVarDialog dialog(&Page());
        dialog.SetItem(var);
        CAfxModalDriver driver([&](CDialog& d) { act(static_cast<CWriteVarDialog&>(d)); });
        return dialog.DoModal() == IDOK ? dialog.GetEditedValue() : -1;
    }
    static CString Figure(CDialog& d) {
        return d.GetDlgItem(IDC_WRITE_VALUE)->GetWindowTextString();
    }
    static CString Field(CWriteVarDialog& d, int row) {
        return d.GetGrid()->GetCellItem(row, 2)->GetValue();
    }
    // Picks the option of row `row` whose text starts with `figure`.
    static void Choose(CWriteVarDialog& d, int row, const char* figure) {
        CZorSkinPGridItem* item = d.GetGrid()->GetCellItem(row, 2);
        for (int i = 0; i < item->GetOptionCount(); ++i)
            if (item->GetOption(i).Find(figure) == 0) {
                item->ChooseOption(i);
                return;
            }
        ADD_FAILURE() << "no option " << figure;
    }

    INT_PTR RunLinker(const char* code, int value,
                      const std::function<void(CWriteLinkerVarDialog&)>& act,
                      int* result = nullptr) {
        IVarObjEx* var = Var(code);
        EXPECT_NE(var, nullptr) << code;
        var->SetValue(Variant::UI2(uint16_t(value)));
        CWriteLinkerVarDialog dialog(&Page());
        dialog.SetItem(var);
        IVarCatalog* catalog = module->GetVarCatalog();
        dialog.SetCatalog(catalog, catalog->GetConnectorTable());
        CAfxModalDriver driver([&](CDialog& d) { act(static_cast<CWriteLinkerVarDialog&>(d)); });
        const INT_PTR r = dialog.DoModal();
        if (result != nullptr)
            *result = dialog.GetValue();
        return r;
    }
    static std::vector<CString> TreeGroups(CWriteLinkerVarDialog& d) {
        std::vector<CString> names;
        CTreeCtrl& tree = d.GetTree();
        for (HTREEITEM i = tree.GetChildItem(d.GetRootItem()); i; i = tree.GetNextSiblingItem(i))
            names.push_back(tree.GetItemText(i).Left(3));
        return names;
    }
    static int CheckedRow(CWriteLinkerVarDialog& d) {
        int found = -1;
        for (int i = 0; i < d.GetRowCount(); ++i)
            if (d.GetRow(i)->m_nChecked) {
                EXPECT_EQ(found, -1) << "more than one row checked";
                found = i;
            }
        return found;
    }
    static CString RowCode(CWriteLinkerVarDialog& d, int row) {
        CString code;
        d.GetRow(row)->m_pAttr->GetCode(code);
        return code;
    }
};

TEST_F(DialogTest, BitsShowTheValueAndJoinOnlyListedBitsAndReadOnlyBitsOfferNothing) {
    const auto act = [](CWriteVarDialog& d) {
        ASSERT_EQ(d.GetGrid()->GetRowCount(), 16);
        EXPECT_EQ(d.GetGrid()->GetCellText(0, 0), "bit0");
        EXPECT_EQ(Field(d, 0), "1");
        EXPECT_EQ(Field(d, 1), "0");
        EXPECT_EQ(Field(d, 2), "1");
        EXPECT_EQ(Figure(d), "0x0005");
        Choose(d, 0, "0");
        EXPECT_EQ(Figure(d), "0x0004");
        ClickOk(d);
    };
    EXPECT_EQ(RunWriteDialog("H03-00", 5, act), 4);

    // A read-only bit field shows its fields but offers nothing. Bits 9 and 10 are not
    // listed: a change of any field loses them, no change keeps them.
    RunWriteDialog("H0B-03", 0x0600 | 0x0003, [&](CWriteVarDialog& d) {
        EXPECT_EQ(d.GetGrid()->GetRowCount(), 9);
        EXPECT_FALSE(d.GetDlgItem(IDOK)->IsWindowEnabled());
        EXPECT_FALSE(d.GetDlgItem(IDC_WRITE_VALUE)->IsWindowEnabled());
        EXPECT_EQ(Figure(d), "0x0603");
        Choose(d, 1, "0");
        EXPECT_EQ(Figure(d), "0x0001");
        d.EndDialog(IDCANCEL);
    });
}

TEST_F(DialogTest, DigitsJoinWithDigitZeroRightmostInDecimal) {
    const auto act = [](CWriteVarDialog& d) {
        ASSERT_EQ(d.GetGrid()->GetRowCount(), 4);
        EXPECT_EQ(d.GetGrid()->GetCellText(0, 0), "0000X");
        EXPECT_EQ(d.GetGrid()->GetCellText(3, 0), "0X000");
        EXPECT_EQ(Field(d, 0).Left(1), "0");
        EXPECT_EQ(Field(d, 1).Left(1), "1");
        EXPECT_EQ(Field(d, 2).Left(1), "1");
        EXPECT_EQ(Figure(d), "00110");
        Choose(d, 0, "1");
        Choose(d, 3, "1");
        EXPECT_EQ(Figure(d), "01111");
        ClickOk(d);
    };
    EXPECT_EQ(RunWriteDialog("H02-22", 110, act), 1111);
}

// A figure typed and taken as it stands is the round trip's; a field changed after it wins.
TEST_F(DialogTest, AFigureTypedStandsUntilTheNextFieldChange) {
    const auto act = [](CWriteVarDialog& d) {
        AfxTestTypeText(d.GetDlgItem(IDC_WRITE_VALUE), "0x00F0");
        Choose(d, 1, "1");
        EXPECT_EQ(Figure(d), "0x0003");
        ClickOk(d);
    };
    EXPECT_EQ(RunWriteDialog("H03-00", 1, act), 3);
}

TEST(WriteVarDialogParse, HexFieldsReadAfterThePrefixAndStopAtTheFirstOtherCharacter) {
    EXPECT_EQ(CWriteVarDialog::ParseHexField("0x1A"), 0x1A);
    EXPECT_EQ(CWriteVarDialog::ParseHexField("3[On]"), 3);
    EXPECT_EQ(CWriteVarDialog::ParseHexField("ff"), 0xFF);
    EXPECT_EQ(CWriteVarDialog::ParseHexField("0Xz"), 0);
    EXPECT_EQ(CWriteVarDialog::ParseHexField("12G4"), 0x12);
    // Only the first 16 digits survive in 64 bits.
    EXPECT_EQ(CWriteVarDialog::ParseHexField("10000000000000001"), 1);
}

TEST_F(DialogTest, AConnectorValueSelectsTheGroupsOfItsKindsAndChecksTheRowAtItsPosition) {
    IConnectorTable* table = module->GetVarCatalog()->GetConnectorTable();
    ASSERT_NE(table, nullptr);
    IConnectorGroup* b = table->GetEntry(0, 1);
    ASSERT_NE(b, nullptr);
    const LONGLONG base = b->GetBase();
    // The row of H30-05 stands at its address modulo 100 inside the group.
    IVarAttr* target = module->GetVarCatalog()->FindAttrByCode("H30-05");
    ASSERT_NE(target, nullptr);
    const int value = int(base + target->GetAddress() % 100);
    RunLinker("H18-00", value, [&](CWriteLinkerVarDialog& d) {
        EXPECT_EQ(d.ConnectorKindOf(), ConnectorB);
        EXPECT_EQ(TreeGroups(d), std::vector<CString>{"H30"});
        EXPECT_EQ(d.GetGroupBase(), base);
        const int row = CheckedRow(d);
        ASSERT_GE(row, 0);
        EXPECT_EQ(RowCode(d, row), "H30-05");
        d.EndDialog(IDCANCEL);
    });
    // Below every base: nothing selected, no rows.
    RunLinker("H18-00", 5, [&](CWriteLinkerVarDialog& d) {
        EXPECT_EQ(d.GetRowCount(), 0);
        EXPECT_EQ(d.GetDlgItem(IDC_LINKER_VALUE)->GetWindowTextString(), "5");
        d.EndDialog(IDCANCEL);
    });
    // Combined kinds show every group of their kinds; base plus 100 is the next group.
    RunLinker("H18-09", int(base + 100), [&](CWriteLinkerVarDialog& d) {
        EXPECT_EQ(d.ConnectorKindOf(), ConnectorBKF);
        EXPECT_EQ(TreeGroups(d), (std::vector<CString>{"H30", "H31", "H32"}));
        EXPECT_EQ(d.GetGroupBase(), table->GetEntry(0, 2)->GetBase());
        d.EndDialog(IDCANCEL);
    });
    RunLinker("H18-06", 0, [&](CWriteLinkerVarDialog& d) {
        EXPECT_EQ(d.ConnectorKindOf(), ConnectorKF);
        EXPECT_EQ(TreeGroups(d), (std::vector<CString>{"H31", "H32"}));
        d.EndDialog(IDCANCEL);
    });
}

TEST_F(DialogTest, AClickGivesTheConnectorValueASearchCoversAllGroupsAndNoNumberStays) {
    IConnectorTable* table = module->GetVarCatalog()->GetConnectorTable();
    int result = -1;
    const INT_PTR r = RunLinker(
        "H18-09", 0,
        [&](CWriteLinkerVarDialog& d) {
            // A figure that is no number keeps the dialog open.
            AfxTestTypeText(d.GetDlgItem(IDC_LINKER_VALUE), "abc");
            ClickOk(d);
            EXPECT_TRUE(d.IsWindowVisible());
            EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 1u);
            // A lower-case search finds upper-case codes, across all groups on show.
            AfxTestTypeText(&d.GetSearchBox(), "h3");
            d.GetSearchBox().SetFocus();
            AfxTestPressKey(&d.GetSearchBox(), VK_RETURN);
            AfxPumpMessagesUntil([&] { return d.GetRowCount() > 0; }, 1000);
            ASSERT_TRUE(d.IsWindowVisible()) << "Enter closed the dialog";
            std::set<CString> groups;
            for (int i = 0; i < d.GetRowCount(); ++i)
                groups.insert(RowCode(d, i).Left(3));
            EXPECT_EQ(groups, (std::set<CString>{"H30", "H31", "H32"}));
            // The same text again adds no second history entry.
            AfxTestPressKey(&d.GetSearchBox(), VK_RETURN);
            EXPECT_EQ(d.GetSearchBox().GetCount(), 1);
            // A click on a row takes its value; the choice is single.
            int row = -1;
            for (int i = 0; i < d.GetRowCount() && row < 0; ++i)
                if (RowCode(d, i).Left(3) == "H31")
                    row = i;
            ASSERT_GE(row, 0);
            d.OnRowClicked(row);
            EXPECT_EQ(CheckedRow(d), row);
            const CString code = RowCode(d, row);
            EXPECT_EQ(d.GetDlgItem(IDC_LINKER_VALUE)->GetWindowTextString().GetString(),
                      std::to_string(table->ValueFromCode(code, ConnectorBKF)));
            ClickOk(d);
        },
        &result);
    EXPECT_EQ(r, IDOK);
    EXPECT_GT(result, 0);
}

} // namespace
} // namespace pt
