#include "SimFixture.h"

using namespace simtest;

TEST_F(DemoHost, UploadReadsTheModuleIntoItsVariablesAndEndsWithTheEvent) {
    auto* transfer = host.Services().Get<IHostTransferService>();
    ASSERT_NE(transfer, nullptr);
    SimulatedDrive& d = *host.Drive("ZD4M");
    const UINT a = Address("ZD4M", "H0B-00", 2);
    ASSERT_TRUE(d.PokeRaw(a, 777));
    d.TakeRequests();

    std::vector<IVarObjEx*> all;
    EXPECT_TRUE(transfer->GetModuleVars("ZD4M", all));
    EXPECT_EQ(int(all.size()), host.Module("ZD4M")->Store().GetCount());
    EXPECT_FALSE(transfer->GetModuleVars("NOPE", all));

    EXPECT_TRUE(transfer->UploadModule(nullptr, "ZD4M"));
    ASSERT_EQ(ends.size(), 1u);
    EXPECT_EQ(ends[0].key, CString("ZD4M"));
    EXPECT_TRUE(ends[0].success);
    EXPECT_FALSE(ends[0].download);
    EXPECT_EQ(Var("ZD4M", a)->GetValue(), Variant::I2(777));
    EXPECT_EQ(Var("ZD4M", a)->GetLastReadValue(), Variant::I2(777));

    // What takes no part in transfers isn't asked for.
    std::size_t transferable = 0;
    for (IVarObjEx* v : all)
        transferable += v->GetAttr()->IsTransferable() && v->GetAttr()->GetModifyMode() != 3;
    EXPECT_EQ(d.TakeRequests().size(), transferable);
    EXPECT_LT(transferable, all.size());
}

TEST_F(DemoHost, GoingOfflineMidUploadStillEndsWithTheEvent) {
    auto& transfer = host.Transfer();
    SimulatedDrive& d = *host.Drive("ZD3S");
    std::vector<IVarObjEx*> vars;
    transfer.GetModuleVars("ZD3S", vars);
    vars.resize(40);
    // A value on the drive that differs from the variable's, so a read would show.
    auto changeOnDrive = [&](IVarObjEx* v) {
        const double factory = host.VarUtil().VariantAsDouble(v->GetAttr()->GetFactoryValue());
        const double raw = factory == 1 ? 0 : 1;
        EXPECT_TRUE(d.PokeRaw(v->GetInstanceAddress(), raw));
        return raw;
    };
    changeOnDrive(vars[30]);
    const Variant lastBefore = vars[30]->GetValue();
    int steps = 0;
    transfer.SetStepHook([&](int done, int) {
        steps = done;
        if (done == 10)
            d.SetFailure(FailureMode::Offline);
    });
    d.TakeRequests();
    EXPECT_TRUE(transfer.UploadVars(nullptr, "ZD3S", vars));
    ASSERT_EQ(ends.size(), 1u) << "exactly one end";
    EXPECT_FALSE(ends[0].success);
    EXPECT_EQ(steps, 10) << "the transfer stops at the first unanswered request";
    EXPECT_TRUE(transfer.LastUploadWentOffline());
    EXPECT_EQ(d.TakeRequests().size(), 11u);
    EXPECT_EQ(vars[30]->GetValue(), lastBefore);
    transfer.SetStepHook(nullptr);

    // Already offline, or unknown: ended at once, and still announced.
    EXPECT_TRUE(transfer.UploadModule(nullptr, "ZD3S"));
    EXPECT_FALSE(transfer.UploadModule(nullptr, "NOPE"));
    EXPECT_FALSE(transfer.SyncModuleAttributes(nullptr, "ZV5", 7));
    ASSERT_EQ(ends.size(), 4u);
    for (const auto& e : ends)
        EXPECT_FALSE(e.success);

    // A read that fails somewhere spoils the result, not the other values.
    d.ClearFailures();
    const UINT bad = vars[5]->GetInstanceAddress();
    d.SetFailure(FailureMode::FailReads, {bad});
    const double changed = changeOnDrive(vars[20]);
    EXPECT_TRUE(transfer.UploadVars(nullptr, "ZD3S", vars));
    EXPECT_FALSE(ends.back().success);
    EXPECT_EQ(host.VarUtil().VariantAsDouble(vars[20]->GetValue()), changed);

    d.ClearFailures();
    EXPECT_TRUE(transfer.SyncModuleAttributes(nullptr, "ZD3S", 2));
    EXPECT_TRUE(ends.back().success);
    EXPECT_EQ(transfer.UploadsEnded(), int(ends.size()));
}

TEST_F(DemoHost, LevelsAndWatchListsReachTheHost) {
    auto* access = host.Services().Get<IHostAccessService>();
    ASSERT_NE(access, nullptr);
    std::vector<std::pair<CString, int>> heard;
    host.Access().SetLevelListener([&](const CString& k, int l) { heard.push_back({k, l}); });
    EXPECT_EQ(host.Access().NotifiedLevel("ZD3S"), -1);
    access->NotifyAccessLevel("ZD3S", 3);
    EXPECT_EQ(host.Access().NotifiedLevel("ZD3S"), 3);
    ASSERT_EQ(heard.size(), 1u);
    access->AddWatchVars("ZD3S", {0x229, 0x100, 0x229});
    access->AddWatchVars("ZD3S", {0x100, 0x101});
    EXPECT_EQ(host.Access().WatchList("ZD3S"), (std::vector<UINT>{0x229, 0x100, 0x101}));
    host.Transfer().NotifyLevelToTransfer("ZD3S", 2);
    EXPECT_EQ(host.Transfer().NotifiedLevel("ZD3S"), 2);

    auto* help = host.Services().Get<IHostHelpService>();
    ASSERT_NE(help, nullptr);
    EXPECT_FALSE(help->ShowHelp(0, "/x/help.html", "QXParmira", 15)) << "no viewer, no help";
    host.Help().SetViewer([](const zorhost::HelpRequest& r) { return r.context == "QXParmira"; });
    EXPECT_TRUE(help->ShowHelp(0, "/x/help.html", "QXParmira", 15));
    ASSERT_EQ(host.Help().Requests().size(), 2u);
    EXPECT_EQ(host.Help().Requests()[1].data, 15);
}

// The host's progress display follows the transfer, and its cancel button ends it: with
// the event, and with success 0.
TEST_F(DemoHost, ProgressFollowsTheUploadAndCancelEndsIt) {
    struct Progress : zorhost::TransferProgress {
        int total = -1, last = 0, ends = 0, cancelAt = 0;
        void Begin(const CString&, int t) override { total = t; }
        bool Advance(int done) override {
            EXPECT_EQ(done, last + 1);
            last = done;
            return done != cancelAt;
        }
        void End() override { ++ends; }
    } progress;
    host.Transfer().SetProgress(&progress);
    SimulatedDrive& d = *host.Drive("ZV5");

    EXPECT_TRUE(host.Transfer().UploadModule(nullptr, "ZV5"));
    ASSERT_EQ(ends.size(), 1u);
    EXPECT_TRUE(ends[0].success);
    EXPECT_GT(progress.total, 0);
    EXPECT_EQ(progress.last, progress.total);
    EXPECT_EQ(progress.ends, 1);

    progress = {};
    progress.cancelAt = 5;
    d.TakeRequests();
    EXPECT_TRUE(host.Transfer().UploadModule(nullptr, "ZV5"));
    ASSERT_EQ(ends.size(), 2u);
    EXPECT_FALSE(ends[1].success);
    EXPECT_EQ(progress.last, 5);
    EXPECT_EQ(progress.ends, 1) << "the display goes away also when cancelled";
    EXPECT_EQ(d.TakeRequests().size(), 5u) << "nothing is read after the cancel";
    host.Transfer().SetProgress(nullptr);
}
