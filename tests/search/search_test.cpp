// The search box of both pages: history, the meaning of "All", case, the fields of each
// page, the present language and the access level.
#include "page_fixture.h"

namespace pt {
namespace {

class SearchTest : public ServoPageTest {
protected:
    // Types `text` into the page's box and presses Enter, as a user does.
    void Enter(CVarTablePageBase& page, const char* text) {
        CSearcherComboBox* box = page.GetSearcher();
        box->SetWindowText(text);
        box->SetFocus();
        AfxTestPressKey(box, VK_RETURN);
        Pump();
    }
    bool Shows(CVarTablePageBase& page, const char* code) { return RowOf(code, &page) >= 0; }
    static CString Entries(CComboBox& box) {
        CString all;
        for (int i = 0; i < box.GetCount(); ++i) {
            CString t;
            box.GetLBText(i, t);
            all += t + "|";
        }
        return all;
    }
    void SetEnglish(bool english) {
        host.Ui().SetLanguage(english ? zorhost::UiLanguage::English
                                      : zorhost::UiLanguage::Chinese);
        host.Bus().RaiseLanguageChanged();
    }
};

TEST_F(SearchTest, HistoryAndTheMeaningOfAll) {
    ShowGroup("H00");
    const int base = Page().GetShownCount();
    ASSERT_GT(base, 2);
    Enter(Page(), "h00-10");
    EXPECT_EQ(Page().GetShownCount(), 1);
    EXPECT_TRUE(Shows(Page(), "H00-10"));
    // "All" is shown as the fixed first entry, yet a typed "All" is a history text of its
    // own; entered twice it stands once.
    Enter(Page(), "All");
    EXPECT_EQ(Page().GetShownCount(), base);
    Enter(Page(), "All");
    Enter(Page(), "h00-10");
    Enter(Page(), "ALL");
    EXPECT_EQ(Page().GetShownCount(), base);
    EXPECT_EQ(Entries(Page().GetSearchBox()), "All|h00-10|All|ALL|");
    // Enter on an empty box changes nothing.
    Enter(Page(), "h00-10");
    Enter(Page(), "");
    EXPECT_EQ(Page().GetShownCount(), 1);
    // A pick from the drop-down searches without touching the history.
    Page().GetSearchBox().ChooseEntry(0);
    Pump();
    EXPECT_EQ(Page().GetShownCount(), base);
    EXPECT_EQ(Page().GetSearchBox().GetCount(), 4);
    // A new selection shows the group in full and the search runs over it.
    ShowGroup("H03");
    Enter(Page(), "h00-10");
    EXPECT_EQ(Page().GetShownCount(), 0);
}

TEST_F(SearchTest, FieldsOfEachPage) {
    CVarTablePageBase* pages[] = {&Page(), &Page2()};
    for (CVarTablePageBase* page : pages) {
        SCOPED_TRACE(page->IsFirstPage() ? "first page" : "second page");
        ShowGroup("H00", page);
        page->SearchRows("h00-10");
        EXPECT_TRUE(Shows(*page, "H00-10"));
        EXPECT_EQ(page->GetShownCount(), 1);
        // An option name of the DI functions is a field of the first page only.
        ShowGroup("H03", page);
        page->SearchRows("伺服使能");
        EXPECT_EQ(Shows(*page, "H03-02"), page->IsFirstPage() != FALSE);
        // "kg·cm²" is the unit of H00-10 only; the address 10 is held by more.
        ShowGroup("H00", page);
        page->SearchRows("KG·CM²");
        EXPECT_EQ(page->GetShownCount(), 1);
    }
}

TEST_F(SearchTest, FindsTheTextsOfTheLanguageOnShow) {
    ShowGroup("H03");
    Page().SearchRows("伺服使能");
    const int chinese = Page().GetShownCount();
    ASSERT_GT(chinese, 0);
    SetEnglish(true);
    Page().SearchRows("servo on");
    EXPECT_EQ(Page().GetShownCount(), chinese);
    Page().SearchRows("di1 function");
    EXPECT_TRUE(Shows(Page(), "H03-02"));
    SetEnglish(false);
    Page().SearchRows("servo on");
    EXPECT_EQ(Page().GetShownCount(), 0);
}

// The texts made while the program is idle, after a selection and after a language change,
// give the finds that texts made during the search give.
TEST_F(SearchTest, TextsPreparedWhileIdle) {
    ShowGroup("H03");
    EXPECT_TRUE(AfxPumpMessagesUntil(
        [&] { return Page().GetSearchIndex().GetCount() >= Page().GetGroupVars().GetCount(); },
        2000));
    SetEnglish(true);
    Pump();
    Page().SearchRows("di1 function");
    EXPECT_TRUE(Shows(Page(), "H03-02"));
    Page().SearchRows("servo on");
    const int english = Page().GetShownCount();
    EXPECT_GT(english, 0);
    SetEnglish(false);
    Pump();
    Page().SearchRows("servo on");
    EXPECT_EQ(Page().GetShownCount(), 0);
    Page().SearchRows("伺服使能");
    EXPECT_EQ(Page().GetShownCount(), english);
}

TEST_F(SearchTest, AccessLevelLimitsTheFinds) {
    ShowGroup("H00");
    Page().SearchRows("h00-10");
    ASSERT_EQ(Page().GetShownCount(), 1);
    // H00-10 needs level 3; at level 1 the base still holds it but a search won't show it.
    module->SetAccessLevel(1);
    Page().SearchRows("h00-10");
    EXPECT_EQ(Page().GetShownCount(), 0);
    // The host sets a level on the module before it tells the panel: the texts for the level
    // are made while idle, and the next search finds by them.
    const int base = Page().GetGroupVars().GetCount();
    module->SetAccessLevel(3);
    table->SetModuleAccessLevel("ZD3S", 3);
    EXPECT_TRUE(
        AfxPumpMessagesUntil([&] { return Page().GetSearchIndex().GetCount() >= base; }, 2000));
    Page().SearchRows("h00-10");
    EXPECT_EQ(Page().GetShownCount(), 1);
}

} // namespace
} // namespace pt
