// The access box in its three models, row by row of each model's table, online and
// offline, and the poll that lets the tool's level follow the drive's "Authority".
#include "access_fixture.h"

#include "TempDir.h"
#include "TestFiles.h"

#include <climits>
#include <fstream>

void AccessTest::Open(std::vector<TestModule> modules) {
    zorhost::ProjectSetup setup;
    for (const TestModule& m : modules) {
        zorhost::ModuleSetup station;
        station.deviceFile = m.file;
        station.key = m.key;
        station.online = m.online;
        setup.modules.push_back(station);
    }
    std::string error;
    ASSERT_TRUE(host.LoadProject(setup, &error)) << error;
    frame.module = nullptr;
    frame.workspace.clear();
    for (const TestModule& m : modules) {
        auto* module = host.Module(m.key);
        ASSERT_NE(module, nullptr) << m.key;
        module->SetAccessLevel(m.level);
        if (frame.module == nullptr)
            frame.module = module;
        frame.workspace.push_back(module);
    }
}

void AccessTest::ReadAuthority() {
    IVarObjEx* var = host.DeviceHelper().FindNamedVar(frame.module, "Authority");
    ASSERT_NE(var, nullptr);
    IHostRefreshQuery* query = host.Refresh().NewQuery();
    query->SetModuleKey(Key());
    IHostRefreshItem* item = query->NewItem();
    item->SetAddress(var->GetInstanceAddress());
    item->SetDataType(var->GetAttr()->GetDataType());
    item->SetLength(var->GetAttr()->GetValueLength());
    if (!query->AddItem(item))
        delete item;
    host.Refresh().SubmitQuery(query);
    delete query;
    host.Refresh().RunCycle();
}

void AccessTest::DriveReports(int level) {
    const auto* named = host.Module(Key())->Store().Device().FindNamedVariable("Authority");
    ASSERT_NE(named, nullptr);
    ASSERT_TRUE(host.Drive(Key())->PokeRaw(named->address, level));
    ReadAuthority();
}

namespace {

[[maybe_unused]] ::testing::Environment* const g_moduleStart =
    ::testing::AddGlobalTestEnvironment(new ModuleStartedForTheRun);

using Strings = std::vector<std::string>;

const char* const kServo = "zd3s_servo.json";        // model 2
const char* const kFourAxis = "zd4m_four_axis.json"; // model 1
const char* const kInverter = "zv5_inverter.json";   // model 0

const CString kWord = PARMIRA_TEST_ADMIN_WORD;
const CString kCode = PARMIRA_TEST_FACTORY_CODE;

} // namespace

// ---------------------------------------------------------------- filling the box
TEST_F(AccessTest, BoxEntriesAndSelectionFollowModelAndLevel) {
    struct Case {
        const char* file;
        bool online;
        int level;
        Strings texts;
        std::vector<int> data;
        int selected;
    };
    const Strings model0 = {"普通用户", "超级管理员"};
    const Strings model1 = {"巡视参数", "基础参数", "专家参数", "厂家参数"};
    const Strings model2 = {"巡视参数", "基础参数", "专家参数", "厂家参数", "注销登陆"};
    const Case cases[] = {
        {kInverter, true, 3, model0, {1, 3}, 1},
        {kInverter, false, 1, model0, {1, 3}, 0},
        {kInverter, true, 0, model0, {1, 3}, 0},
        {kFourAxis, false, 0, model1, {0, 1, 2, 3}, 1}, // offline: never below basic
        {kFourAxis, false, 1, model1, {0, 1, 2, 3}, 1},
        {kFourAxis, false, 2, model1, {0, 1, 2, 3}, 2},
        {kFourAxis, true, 0, model1, {0, 1, 2, 3}, 0},
        {kServo, true, 3, model2, {0, 1, 2, 3, 4}, 3},
        {kServo, false, 0, model2, {0, 1, 2, 3, 4}, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.file) + (c.online ? " online, level " : " offline, level ") +
                     std::to_string(c.level));
        Open({{c.file, "m", c.online, c.level}});
        page.box.AddString("left over");
        Fill();
        ASSERT_EQ(page.box.GetCount(), int(c.texts.size()));
        for (int i = 0; i < page.box.GetCount(); ++i) {
            EXPECT_EQ(EntryText(i).str(), c.texts[size_t(i)]);
            EXPECT_EQ(int(page.box.GetItemData(i)), c.data[size_t(i)]);
        }
        EXPECT_EQ(Selected(), c.selected);
    }
}

// Without the device helper the model is unknown: nothing is filled and a selection
// does nothing, quietly; the first page still remembers the index chosen.
TEST_F(AccessTest, MissingDeviceHelperEndsQuietly) {
    Open({{kInverter, "inv", true, 1}});
    host.Services().Withhold<IHostDeviceHelper>();
    Fill();
    EXPECT_EQ(page.box.GetCount(), 0);
    page.box.AddString("a");
    page.box.AddString("b");
    page.box.SetItemData(1, 3);
    LoginAnswers answers;
    Choose(1);
    EXPECT_EQ(selector.m_authorityIndex, 1);
    EXPECT_EQ(answers.Shown(), 0);
    EXPECT_TRUE(frame.calls.empty());
    EXPECT_TRUE(prompts.prompts.empty());
}

// ---------------------------------------------------------------- choosing a level
// Levels that need no password apply at once, online or offline: in model 0 to every
// module of the workspace.
TEST_F(AccessTest, LevelsWithoutPasswordApplyAtOnce) {
    for (bool online : {true, false}) {
        SCOPED_TRACE(online ? "online" : "offline");
        Open({{kInverter, "inv", online, 3}, {kFourAxis, "axis", online, 3}});
        Fill();
        LoginAnswers answers;
        Choose(0);
        EXPECT_EQ(frame.calls, Strings{"all 1"});
        EXPECT_EQ(Module("axis")->GetAccessLevel(), 1);
        Open({{kFourAxis, "axis", online, 3}});
        frame.calls.clear();
        Fill();
        Choose(0);
        Choose(1);
        EXPECT_EQ(frame.calls, (Strings{"apply 0", "apply 1"}));
        EXPECT_EQ(answers.Shown(), 0);
        frame.calls.clear();
    }
    EXPECT_TRUE(helper.namedWrites.empty());
}

// ---------------------------------------------------------------- model 1
// Online the stored code goes to the drive whatever was typed, and the level stays.
TEST_F(AccessTest, ModelOneOnlineLoginWritesStoredCode) {
    Open({{kFourAxis, "axis", true, 1}});
    Fill();
    LoginAnswers answers;
    answers.Ok("anything");
    Choose(2);
    EXPECT_EQ(helper.NamedWriteLog(), Strings{"InputPassword=" + kCode.str()});
    EXPECT_EQ(helper.namedWrites[0].key, "axis");
    answers.Ok("");
    Choose(3);
    EXPECT_EQ(helper.NamedWriteLog(),
              (Strings{"InputPassword=" + kCode.str(), "Factory=" + kCode.str(),
                       "InputPassword=" + kCode.str()}));
    EXPECT_EQ(Drive("axis")->Authority(), 3); // the drive took the code
    EXPECT_TRUE(frame.calls.empty());
    EXPECT_EQ(Module("axis")->GetAccessLevel(), 1);
    EXPECT_EQ(Selected(), 3);
    EXPECT_TRUE(prompts.prompts.empty());

    // Cancel writes nothing and goes back to the first entry.
    answers.Cancel();
    Choose(3);
    answers.Cancel();
    Choose(2);
    EXPECT_EQ(helper.namedWrites.size(), 3u);
    EXPECT_EQ(Selected(), 0);
}

// Offline every model checks the password itself, and nothing reaches a drive: a wrong
// text brings the box and entry 0; a cancel entry 0 too, except in model 2, where the
// chosen entry stays.
TEST_F(AccessTest, OfflineLoginChecksThePassword) {
    CString upper = kWord;
    upper.MakeUpper();
    struct Case {
        const char* file;
        bool online;
        int entry;
        CString good;
        Strings applied;
        int level, relock;
    } const cases[] = {
        // Model 0 checks online too; the hidden tick box sends the level everywhere.
        {kInverter, true, 1, upper, {"all 3"}, 3, 0},
        {kInverter, false, 1, upper, {"all 3"}, 3, 0},
        {kFourAxis, false, 2, kCode, {"apply 2"}, 2, 0},
        {kFourAxis, false, 3, kWord, {"apply 3"}, 3, 0},
        {kServo, false, 2, kCode, {"apply 2"}, 2, 1},
        {kServo, false, 3, kWord, {"apply 3"}, 3, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " entry " + std::to_string(c.entry));
        Open({{c.file, "m", c.online, 1}, {kFourAxis, "other", false, 0}});
        frame.calls.clear();
        selector.m_relockPending = 0;
        Fill();
        LoginAnswers answers;
        answers.Cancel();
        Choose(c.entry);
        EXPECT_EQ(Selected(), c.file == kServo ? c.entry : 0);
        const size_t boxes = prompts.Count(AfxPrompt::MessageBox);
        answers.Ok("4321");
        Choose(c.entry);
        EXPECT_EQ(Selected(), 0);
        ASSERT_EQ(prompts.Count(AfxPrompt::MessageBox), boxes + 1);
        EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "密码输入错误");
        EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->caption, "");
        EXPECT_TRUE(frame.calls.empty());
        EXPECT_EQ(selector.m_relockPending, 0);
        answers.Ok(c.good.GetString());
        Choose(c.entry);
        EXPECT_EQ(frame.calls, c.applied);
        EXPECT_EQ(Module("m")->GetAccessLevel(), c.level);
        EXPECT_EQ(Module("other")->GetAccessLevel(), c.file == kInverter ? 3 : 0);
        EXPECT_EQ(selector.m_relockPending, c.relock);
        EXPECT_EQ(answers.prompts, std::vector<CString>(3, kLoginPromptFactoryCode));
    }
    EXPECT_TRUE(helper.namedWrites.empty());
}

// ---------------------------------------------------------------- model 2
// What the drive's register receives is the decimal reading of the text.
TEST_F(AccessTest, ModelTwoPasswordReachesDriveAsDecimalNumber) {
    Open({{kServo, "servo", true, 1}});
    Module("servo")->SetDeviceAuthority(0);
    Fill();
    LoginAnswers answers;
    for (const char* text : {"abc", "12ab", " 77"}) {
        answers.Ok(text);
        Choose(3);
    }
    EXPECT_EQ(helper.NamedWriteLog(),
              (Strings{"InputPassword=0", "InputPassword=12", "InputPassword=77"}));
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 3u);
    EXPECT_EQ(selector.m_relockPending, 1);
    // Online in model 2 the login asks for the drive's own password.
    EXPECT_EQ(answers.prompts, std::vector<CString>(3, kLoginPromptDrivePassword));
    EXPECT_EQ(PasswordTextToCode("99999999999"), INT_MAX);
    EXPECT_EQ(PasswordTextToCode("-5x"), -5);
}

TEST_F(AccessTest, ModelTwoLogOut) {
    Open({{kServo, "servo", true, 3}});
    Fill();
    LoginAnswers answers;
    answers.Ok(kCode.GetString());
    Choose(3); // the drive starts at basic: a login to factory
    ReadAuthority();
    selector.PollAuthority();
    ASSERT_EQ(Drive("servo")->Authority(), 3);
    ASSERT_EQ(Module("servo")->GetDeviceAuthority(), 3);
    frame.calls.clear();
    helper.namedWrites.clear();

    // Online: the drive is told, and the tool follows on the next poll.
    Choose(4);
    EXPECT_EQ(helper.NamedWriteLog(), Strings{"InputPassword=65535"});
    EXPECT_TRUE(frame.calls.empty());
    EXPECT_EQ(selector.m_relockPending, 1);
    ReadAuthority();
    selector.PollAuthority();
    EXPECT_EQ(frame.calls, Strings{"apply 1"});
    EXPECT_EQ(Selected(), 1);
    EXPECT_EQ(selector.m_authorityIndex, 1);
    EXPECT_EQ(selector.m_relockPending, 0);

    // Offline: straight to the basic level, nothing written.
    SetOnline(false);
    Module("servo")->SetAccessLevel(3);
    helper.namedWrites.clear();
    frame.calls.clear();
    Choose(4);
    EXPECT_EQ(frame.calls, Strings{"apply 1"});
    EXPECT_EQ(Module("servo")->GetAccessLevel(), 1);
    EXPECT_TRUE(helper.namedWrites.empty());
    EXPECT_EQ(answers.Shown(), 1);
}

// ---------------------------------------------------------------- following the drive
TEST_F(AccessTest, PollFallAlwaysReachesToolRiseOnlyAfterPassword) {
    Open({{kServo, "servo", true, 2}});
    auto* servo = Module("servo");
    DriveReports(2);
    Fill();
    selector.PollAuthority();
    LoginAnswers answers;
    selector.m_relockPending = 1;
    Choose(1); // granted already: no dialog, and nothing waits for the drive
    Choose(2);
    ASSERT_EQ(selector.m_authorityIndex, 2);
    EXPECT_EQ(frame.calls, (Strings{"apply 1", "apply 2"}));
    EXPECT_EQ(selector.m_relockPending, 0);
    frame.calls.clear();

    // A rise without a password going out waits for the user.
    DriveReports(3);
    selector.PollAuthority();
    EXPECT_EQ(servo->GetDeviceAuthority(), 3);
    EXPECT_TRUE(frame.calls.empty());
    EXPECT_EQ(servo->GetAccessLevel(), 2);
    EXPECT_EQ(Selected(), 2);

    // A fall is taken over, with or without a password pending.
    for (int pending : {0, 1}) {
        SCOPED_TRACE(pending);
        DriveReports(0);
        selector.m_relockPending = pending;
        selector.PollAuthority();
        EXPECT_EQ(servo->GetAccessLevel(), 0);
        EXPECT_EQ(Selected(), 0);
        EXPECT_EQ(selector.m_relockPending, 0);
        selector.m_authorityIndex = 2;
    }
    EXPECT_EQ(frame.calls, (Strings{"apply 0", "apply 0"}));
    EXPECT_EQ(answers.Shown(), 0);
    EXPECT_TRUE(helper.namedWrites.empty());
}

TEST_F(AccessTest, PollOnlyForOnlineModelTwo) {
    Open({{kServo, "servo", true, 3}});
    auto* servo = Module("servo");
    DriveReports(0);
    servo->SetDeviceAuthority(3);
    SetOnline(false);
    Fill();
    EXPECT_EQ(selector.m_authorityIndex, 3); // the box's entry, from the tool's level
    selector.PollAuthority();                // offline: the drive's value isn't taken
    EXPECT_TRUE(frame.calls.empty());
    EXPECT_EQ(servo->GetDeviceAuthority(), 3);

    SetOnline(true);
    host.Services().Withhold<IHostVarUtil>();
    selector.PollAuthority();
    EXPECT_TRUE(frame.calls.empty());
    EXPECT_EQ(servo->GetDeviceAuthority(), 3);
    host.Services().Withhold<IHostVarUtil>(false);
    // The control: with everything there the fall is taken over, box and level together.
    selector.PollAuthority();
    EXPECT_EQ(frame.calls, Strings{"apply 0"});
    EXPECT_EQ(Selected(), 0);
    EXPECT_EQ(servo->GetAccessLevel(), 0);
    frame.calls.clear();

    // Models 0 and 1 have no authority to follow.
    for (const char* file : {kFourAxis, kInverter}) {
        Open({{file, "other", true, 3}});
        Module("other")->SetDeviceAuthority(3);
        selector.PollAuthority();
        EXPECT_EQ(Module("other")->GetDeviceAuthority(), 3) << file;
    }
    EXPECT_TRUE(frame.calls.empty());
}

// A model 2 description without "Authority": the level stays whatever the drive does.
TEST_F(AccessTest, ModelTwoWithoutAuthorityKeepsLevel) {
    std::string json = Slurp(PARMIRA_SOURCE_DIR "/devices/zd3s_servo.json");
    const std::string line = "{\"name\": \"Authority\", \"code\": \"H0B-40\"},";
    const size_t at = json.find(line);
    ASSERT_NE(at, std::string::npos);
    json.erase(at, line.size());
    TempDir dir;
    std::ofstream(dir / "servo_without_authority.json") << json;
    Open({{(dir / "servo_without_authority.json").c_str(), "servo", true, 3}});
    auto* servo = Module("servo");
    ASSERT_EQ(helper.FindNamedVar(servo, "Authority"), nullptr);
    Fill();
    EXPECT_EQ(page.box.GetCount(), 5);
    selector.m_authorityIndex = 3;
    selector.m_relockPending = 1;
    servo->SetDeviceAuthority(3);
    LoginAnswers answers;
    Choose(4); // logs out at the drive; no authority ever comes back
    selector.PollAuthority();
    EXPECT_TRUE(frame.calls.empty());
    EXPECT_EQ(servo->GetAccessLevel(), 3);
    EXPECT_EQ(servo->GetDeviceAuthority(), 3);
    EXPECT_EQ(selector.m_relockPending, 1);
}

// A login ends as the model says, and the next poll brings box and level to what the drive
// grants, once: an accepted code gives expert at once (it passes here too) and the drive
// grants factory; a refused code goes to the drive and leaves entry 0; a cancel sends
// nothing and keeps the chosen entry.
TEST_F(AccessTest, LoginsAgreeWithTheDriveAfterOnePoll) {
    struct Case {
        const char* password; // null: cancelled
        int levelBefore, selected, level, relock;
        size_t boxes;
        Strings writes, applied;
        int granted;
    } const cases[] = {
        {kCode.GetString(), 1, 2, 2, 1, 0, {"InputPassword=" + kCode.str()}, {"apply 2"}, 3},
        {"1111", 0, 0, 0, 1, 1, {"InputPassword=1111"}, {}, 1},
        {nullptr, 0, 2, 0, 0, 0, {}, {}, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.password != nullptr ? c.password : "cancelled");
        Open({{kServo, "servo", true, c.levelBefore}});
        DriveReports(1);
        Fill();
        selector.PollAuthority(); // a rise waits for the user
        ASSERT_EQ(Selected(), c.levelBefore);
        LoginAnswers answers;
        if (c.password != nullptr)
            answers.Ok(c.password);
        else
            answers.Cancel();
        const size_t boxes = prompts.Count(AfxPrompt::MessageBox);
        Choose(2);
        EXPECT_EQ(Selected(), c.selected);
        EXPECT_EQ(selector.m_authorityIndex, c.selected);
        EXPECT_EQ(Module("servo")->GetAccessLevel(), c.level);
        EXPECT_EQ(helper.NamedWriteLog(), c.writes);
        EXPECT_EQ(selector.m_relockPending, c.relock);
        EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), boxes + c.boxes);
        EXPECT_EQ(frame.calls, c.applied);
        Strings applied = c.applied;
        applied.push_back("apply " + std::to_string(c.granted));
        for (int poll = 0; poll < 2; ++poll) {
            ReadAuthority();
            selector.PollAuthority();
        }
        EXPECT_EQ(Drive("servo")->Authority(), c.granted);
        EXPECT_EQ(Module("servo")->GetDeviceAuthority(), c.granted);
        EXPECT_EQ(frame.calls, applied);
        EXPECT_EQ(Selected(), c.granted);
        EXPECT_EQ(Module("servo")->GetAccessLevel(), c.granted);
        EXPECT_EQ(selector.m_relockPending, 0);
        frame.calls.clear();
        helper.namedWrites.clear();
    }
}

// The second page compares the drive's level with the entry on show.
TEST_F(AccessTest, SecondPagePollComparesWithShownEntry) {
    CAccessSelector second(FALSE);
    second.Attach(&page.box, &frame);
    page.selector = &second;
    Open({{kServo, "servo", true, 3}});
    DriveReports(3);
    second.FillAccessBox();
    second.m_authorityIndex = 0; // not used on this page
    second.PollAuthority();
    EXPECT_TRUE(frame.calls.empty());
    DriveReports(1);
    second.PollAuthority();
    EXPECT_EQ(frame.calls, Strings{"apply 1"});
    EXPECT_EQ(SelectedData(), 1);
    DriveReports(3);
    second.PollAuthority();
    EXPECT_EQ(frame.calls.size(), 1u);
    second.m_relockPending = 1;
    second.PollAuthority();
    EXPECT_EQ(frame.calls, (Strings{"apply 1", "apply 3"}));
    EXPECT_EQ(SelectedData(), 3);
    EXPECT_EQ(second.m_authorityIndex, 0);
    page.selector = &selector;
}

// Before a read of all parameters the factory access is opened under the model's name.
TEST_F(AccessTest, FactoryAccessBeforeReadGoesToModelsVariable) {
    Open({{kInverter, "inv", true, 1}, {kFourAxis, "axis", true, 1}, {kServo, "servo", true, 0}});
    CAccessSelector::WriteFactoryAccessCode(nullptr);
    for (const char* key : {"inv", "axis", "servo"})
        CAccessSelector::WriteFactoryAccessCode(Module(key));
    EXPECT_EQ(helper.NamedWriteLog(), (Strings{"Factory=" + kCode.str(), "Factory=" + kCode.str(),
                                               "TempAuthority=" + kCode.str()}));
    EXPECT_EQ(helper.namedWrites[1].key, "axis");
    EXPECT_EQ(Drive("servo")->Authority(), 3); // the drives take the code
    host.Services().Withhold<IHostDeviceHelper>();
    CAccessSelector::WriteFactoryAccessCode(Module("inv"));
    EXPECT_EQ(helper.namedWrites.size(), 3u);
}
