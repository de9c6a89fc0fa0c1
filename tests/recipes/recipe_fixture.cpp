#include "recipe_fixture.h"

#include "module/Implementation.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "sets/OneKeyParseRecipeDialog.h"
#include "sets/TranslateFailedDialog.h"

namespace {

[[maybe_unused]] ::testing::Environment* const g_moduleStart =
    ::testing::AddGlobalTestEnvironment(new ModuleStartedForTheRun);

} // namespace

void RecipeTest::SetUp() {
    zorhost::ProjectSetup setup;
    zorhost::ModuleSetup station;
    station.deviceFile = "zd3s_servo.json";
    station.key = kKey;
    setup.modules.push_back(station);
    std::string error;
    ASSERT_TRUE(host.LoadProject(setup, &error)) << error;
    ModuleScope::Attach(host.Services());
}

void RecipeTest::TearDown() {
    ModuleScope::Detach();
}

void RecipeTest::RunRecipeDialog(const std::function<void(COneKeyParseRecipeDialog&)>& act,
                                 std::vector<std::vector<std::string>>* failed) {
    int runs = 0;
    CAfxModalDriver driver([&](CDialog& d) {
        if (auto* list = dynamic_cast<CTranslateFailedDialog*>(&d)) {
            ShootIfAsked(&d, "recipe_failed_list.png");
            if (failed != nullptr) {
                failed->emplace_back();
                for (int r = 0; r < list->m_list.GetItemCount(); ++r)
                    failed->back().push_back(list->GetCellText(r, 1).str());
            }
            d.EndDialog(IDOK);
            return;
        }
        auto* recipe = dynamic_cast<COneKeyParseRecipeDialog*>(&d);
        if (recipe == nullptr || runs++ > 0) {
            d.EndDialog(IDCANCEL);
            return;
        }
        act(*recipe);
        if (recipe->GetSafeHwnd() != nullptr)
            recipe->EndDialog(IDCANCEL);
    });
    CImplementation view(nullptr);
    view.OpenRecipeDialog(kKey);
    EXPECT_EQ(runs, 1);
}
