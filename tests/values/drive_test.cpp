// The commit against the host's own device helper and a simulated drive: the figure typed
// arrives in the drive as the parameter's raw value, and a refusal shows the drive's reason.
#include "values/ValueText.h"
#include "values_fixture.h"
#include "zorhost/services/HostDeviceHelper.h"
#include "zorhost/sim/DriveDirectory.h"
#include "zorhost/sim/SimulatedDrive.h"

using namespace VarText;

namespace {

class OneDrive : public zorhost::sim::DriveDirectory {
public:
    zorhost::model::CDeviceModule* module = nullptr;
    std::shared_ptr<zorhost::sim::DriveLink> link;
    zorhost::model::CDeviceModule* FindModule(const CString& key) override {
        return key == "M1" ? module : nullptr;
    }
    std::shared_ptr<zorhost::sim::DriveLink> FindLink(const CString& key) override {
        return key == "M1" ? link : nullptr;
    }
};

class SimulatedDriveCommit : public ValuesTest {
protected:
    void SetUp() override {
        ValuesTest::SetUp();
        drive = std::make_shared<zorhost::sim::SimulatedDrive>(device);
        drive->SetConnected(true);
        drives.module = &Module();
        drives.link = drive;
        realHelper = std::make_unique<zorhost::CHostDeviceHelper>(drives);
        realHelper->SetEnglish(true);
        services.Register<IHostDeviceHelper>(realHelper.get());
    }

    Variant DriveValue(UINT address, int type) {
        Variant v;
        EXPECT_TRUE(realHelper->ReadVarDirect("M1", address, type, v, 200, 1));
        return v;
    }

    OneDrive drives;
    std::shared_ptr<zorhost::sim::SimulatedDrive> drive;
    std::unique_ptr<zorhost::CHostDeviceHelper> realHelper;
    CAfxRecordingResponder prompts;
};

TEST_F(SimulatedDriveCommit, TheDriveHoldsTheRawFigureOfWhatWasTyped) {
    EXPECT_EQ(CommitCellText(Var("H00-01"), "150.5", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(DriveValue(0x0001, VT_I2), Variant::I2(1505));
    EXPECT_EQ(CommitCellText(Var("H00-03"), "0x8000", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(DriveValue(0x0003, VT_I2), Variant::I2(-32768));
    Var("H00-07")->SetPerUnitMode(PER_UNIT_PERCENT);
    EXPECT_EQ(CommitCellText(Var("H00-07"), "-50", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(DriveValue(0x0007, VT_I2), Variant::I2(-2048));
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u);
}

TEST_F(SimulatedDriveCommit, ARefusalShowsTheDrivesReason) {
    EXPECT_EQ(CommitCellText(Var("H00-01"), "300.1", 0, 0), COMMIT_WRITE_FAILED);
    const AfxPrompt* box = prompts.Last(AfxPrompt::MessageBox);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text.Left(8), CString("H00-01: ")) << box->text.GetString();
    EXPECT_GE(box->text.Find("range"), 0) << box->text.GetString();
    EXPECT_EQ(box->caption, CString("<2037>"));
    EXPECT_EQ(DriveValue(0x0001, VT_I2), Variant::I2(1000)) << "the drive kept its value";

    drive->SetConnected(false);
    EXPECT_EQ(CommitCellText(Var("H00-01"), "1", 0, 0), COMMIT_WRITE_FAILED);
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 2u);
    EXPECT_FALSE(prompts.Last(AfxPrompt::MessageBox)->text.IsEmpty());
}

} // namespace
