#include "SimFixture.h"

using namespace simtest;

namespace {

// A typed write as the frame makes it (200 ms a try, three tries): what it took and said.
struct Written {
    BOOL ok = 0;
    Variant taken;
    std::vector<CString> errors;
    std::string Why() const {
        std::string all;
        for (const CString& e : errors)
            all += e.str() + "|";
        return all;
    }
};

Written Write(IHostDeviceHelper& helper, const char* key, UINT address, int type,
              const Variant& value) {
    Written w;
    w.ok = helper.WriteVarDirect(key, address, type, value, w.taken, w.errors, 1, 200, 3);
    return w;
}

} // namespace

TEST_F(DemoHost, RefusedWritesLeaveTheDriveValueAndSayWhy) {
    auto* helper = host.Services().Get<IHostDeviceHelper>();
    ASSERT_NE(helper, nullptr);
    SimulatedDrive& d = *host.Drive("ZD3S");
    struct Case {
        const char* code;
        Variant value;
        const char* why; // part of the drive's reason
        bool running;
    } cases[] = {
        {"H02-09", Variant::UI2(20), "超出范围(50~1000)", false},   // below the minimum
        {"H02-09", Variant::UI2(1001), "超出范围(50~1000)", false}, // above the maximum
        {"H01-15", Variant::I2(0), "不可修改", false},              // 不可修改
        {"H02-00", Variant::UI2(1), "运行中不可修改", true},        // 停机修改 while running
        {"H02-09", Variant::I4(-1), "超出范围(0~65535)", false},    // not a u16 at all
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.code);
        d.SetRunning(c.running);
        const UINT a = Address("ZD3S", c.code);
        const double before = Peek("ZD3S", a);
        const Written w =
            Write(*helper, "ZD3S", a, Var("ZD3S", a)->GetAttr()->GetDataType(), c.value);
        EXPECT_FALSE(w.ok);
        EXPECT_EQ(Peek("ZD3S", a), before);
        ASSERT_EQ(w.errors.size(), 1u) << w.Why();
        EXPECT_NE(w.errors[0].str().find(c.why), std::string::npos) << w.Why();
        EXPECT_EQ(w.errors[0].str().rfind(c.code, 0), 0u) << "the text names the parameter";
        EXPECT_TRUE(w.taken.IsEmpty());
    }

    // The same parameter at standstill, and within its limits, is taken.
    d.SetRunning(false);
    const UINT a = Address("ZD3S", "H02-00");
    const Written taken = Write(*helper, "ZD3S", a, 18, Variant::UI2(1));
    EXPECT_TRUE(taken.ok);
    EXPECT_TRUE(taken.errors.empty()) << taken.Why();
    EXPECT_EQ(Peek("ZD3S", a), 1);
    EXPECT_EQ(taken.taken, Variant::UI2(1));

    // Limits linked to another parameter follow that parameter's live value.
    const UINT linked = Address("ZD3S", "H06-08"), limit = Address("ZD3S", "H06-02");
    ASSERT_TRUE(d.PokeRaw(limit, 3000));
    EXPECT_FALSE(helper->WriteParameter("ZD3S", linked, 3001));
    EXPECT_TRUE(helper->WriteParameter("ZD3S", linked, 3000));
    ASSERT_TRUE(d.PokeRaw(limit, 4000));
    EXPECT_TRUE(helper->WriteParameter("ZD3S", linked, 3500));

    host.SetEnglish(true);
    EXPECT_EQ(Write(*helper, "ZD3S", Address("ZD3S", "H02-09"), 18, Variant::UI2(5)).errors,
              std::vector<CString>{"H02-09: value out of range (50 to 1000)"});
}

TEST_F(DemoHost, DirectAccessTriesAgainOnlyWhenTryingCanHelp) {
    auto& helper = host.DeviceHelper();
    SimulatedDrive& d = *host.Drive("ZD3S");
    const UINT a = Address("ZD3S", "H02-08");
    Variant value;

    d.SetFailure(FailureMode::FailWrites, {a});
    d.TakeRequests();
    Written w = Write(helper, "ZD3S", a, 18, Variant::UI2(7));
    EXPECT_FALSE(w.ok);
    EXPECT_EQ(d.TakeRequests().size(), 3u) << "a communication error is tried again";
    EXPECT_NE(w.errors.at(0).str().find("通讯错误"), std::string::npos);
    d.ClearFailures();

    EXPECT_FALSE(Write(helper, "ZD3S", a, 18, Variant::UI2(9999)).ok);
    EXPECT_EQ(d.TakeRequests().size(), 1u) << "a refusal will not change its mind";

    d.SetFailure(FailureMode::Slow);
    EXPECT_FALSE(helper.ReadVarDirect("ZD3S", a, 18, value, 200, 2));
    EXPECT_EQ(d.TakeRequests().size(), 2u);
    EXPECT_TRUE(helper.ReadVarDirect("ZD3S", a, 18, value, 5000, 1)) << "a patient caller waits";
    EXPECT_EQ(value, Variant::UI2(250));
    d.ClearFailures();

    // A recipe's access is one request, not the tries of an interactive write.
    d.SetFailure(FailureMode::FailWrites, {a});
    d.SetFailure(FailureMode::FailReads, {a});
    d.TakeRequests();
    double number = 0;
    EXPECT_FALSE(helper.WriteParameter("ZD3S", a, 100));
    EXPECT_FALSE(helper.ReadParameter("ZD3S", a, number));
    EXPECT_FALSE(helper.WriteParameterAs("ZD3S", a, 18, 100));
    EXPECT_EQ(d.TakeRequests().size(), 3u);
    d.ClearFailures();

    host.SetOnline("ZD3S", false);
    w = Write(helper, "ZD3S", a, 18, Variant::UI2(7));
    EXPECT_FALSE(w.ok);
    EXPECT_NE(w.errors.at(0).str().find("设备离线"), std::string::npos);
    EXPECT_FALSE(helper.ReadParameter("ZD3S", a, number));
    host.SetOnline("ZD3S", true);

    w = Write(helper, "NOPE", a, 18, Variant::UI2(7));
    EXPECT_FALSE(w.ok);
    EXPECT_EQ(w.errors.size(), 1u);

    // 32-bit values travel whole, signed ones with their sign.
    const UINT wide = Address("ZD3S", "H05-34"); // i32
    w = Write(helper, "ZD3S", wide, 3, Variant::I4(-1000000));
    EXPECT_TRUE(w.ok) << w.Why();
    EXPECT_TRUE(helper.ReadVarDirect("ZD3S", wide, 3, value, 200, 3));
    EXPECT_EQ(value, Variant::I4(-1000000));
    EXPECT_TRUE(helper.ReadParameter("ZD3S", wide, number));
    EXPECT_EQ(number, -1000000);
}

TEST_F(DemoHost, PasswordRegistersAndAuthorityOfTheDrive) {
    auto& helper = host.DeviceHelper();
    IHostDeviceModule* servo = host.Module("ZD3S");
    EXPECT_EQ(helper.GetProtocolKind(servo), 2);
    EXPECT_EQ(helper.GetProtocolKind(host.Module("ZD4M")), 1);
    EXPECT_EQ(helper.GetProtocolKind(host.Module("ZV5")), 0);
    EXPECT_EQ(helper.GetProtocolKind(nullptr), -1);

    IVarObjEx* authority = helper.FindNamedVar(servo, "Authority");
    ASSERT_NE(authority, nullptr);
    EXPECT_EQ(authority->GetInstanceAddress(), Address("ZD3S", "H0B-40"));
    EXPECT_EQ(helper.FindNamedVar(servo, "NoSuchName"), nullptr);
    EXPECT_EQ(helper.FindNamedVar(host.Module("ZV5"), "Authority"), nullptr);

    auto readAuthority = [&] {
        Variant v;
        EXPECT_TRUE(helper.ReadVarDirect("ZD3S", authority->GetInstanceAddress(), 18, v, 200, 1));
        return v.uiVal;
    };
    SimulatedDrive& d = *host.Drive("ZD3S");
    EXPECT_EQ(readAuthority(), SimulatedDrive::kBaseAuthority);

    // A factory-level parameter is the drive's to refuse until the code is given.
    const UINT motorCode = Address("ZD3S", "H00-00");
    const Written refused = Write(helper, "ZD3S", motorCode, 18, Variant::UI2(2000));
    EXPECT_FALSE(refused.ok);
    EXPECT_NE(refused.errors.at(0).str().find("权限不足"), std::string::npos);

    EXPECT_TRUE(helper.WriteNamedVar("ZD3S", "InputPassword", SimulatedDrive::kFactoryCode - 1));
    EXPECT_EQ(readAuthority(), SimulatedDrive::kBaseAuthority) << "a wrong code grants nothing";
    EXPECT_TRUE(helper.WriteNamedVar("ZD3S", "InputPassword", SimulatedDrive::kFactoryCode));
    EXPECT_EQ(readAuthority(), 3);
    EXPECT_EQ(Peek("ZD3S", Address("ZD3S", "H02-19")), 0) << "codes are not kept readable";
    EXPECT_TRUE(Write(helper, "ZD3S", motorCode, 18, Variant::UI2(2000)).ok);

    EXPECT_TRUE(helper.WriteNamedVar("ZD3S", "InputPassword", SimulatedDrive::kLogoutCode));
    EXPECT_EQ(readAuthority(), SimulatedDrive::kBaseAuthority);
    EXPECT_FALSE(helper.WriteParameter("ZD3S", motorCode, 2001));

    // The cyclic read carries "Authority" to the variable the module polls.
    EXPECT_TRUE(helper.WriteNamedVar("ZD3S", "TempAuthority", SimulatedDrive::kFactoryCode));
    Submit(host.Refresh(), "ZD3S", {authority});
    host.Refresh().RunCycle();
    EXPECT_EQ(authority->GetValue(), Variant::UI2(3));
    EXPECT_EQ(d.Authority(), 3);

    // On the four-axis drive H02-41 of any axis takes the code, as the recipes write it.
    SimulatedDrive& m = *host.Drive("ZD4M");
    EXPECT_EQ(m.Authority(), SimulatedDrive::kBaseAuthority);
    EXPECT_TRUE(helper.WriteParameterAs("ZD4M", 0x2229, 18, SimulatedDrive::kFactoryCode));
    EXPECT_EQ(m.Authority(), 3);
    // The inverter keeps its levels in the tool: its drive refuses nothing for them.
    const auto& rated = Param("ZV5", "H01-06");
    ASSERT_EQ(rated.accessLevel, 3);
    EXPECT_TRUE(helper.WriteParameter("ZV5", rated.address, rated.factoryValue));
}
