#include "SimProcess.h"

#include "ShippedDevices.h"

#include <gtest/gtest.h>

#include <unistd.h>

using namespace linktest;

// A Modbus client none of our code wrote reads what the device description says.
TEST(Interop, MbpollReadsTheFactoryValueFromTheSimulator) {
    if (::access("/usr/bin/mbpoll", X_OK) != 0)
        GTEST_SKIP() << "mbpoll is not installed (scripts/setup.sh installs it)";
    SimProcess sim({"--tcp", "127.0.0.1:0", "zd3s_servo.json"});
    ASSERT_GT(sim.Port(), 0) << sim.FirstLine();
    auto servo = LoadShippedDevice("zd3s_servo.json");
    ASSERT_NE(servo, nullptr);
    const auto& p = servo->parameters[servo->FindByCode("H02-09")];
    // mbpoll counts references from 1.
    const std::string reference = std::to_string(p.address + 1);
    const std::string out =
        RunCapture({"/usr/bin/mbpoll", "-m", "tcp", "-p", std::to_string(sim.Port()), "-a", "1",
                    "-r", reference, "-c", "1", "-t", "4", "-1", "-o", "1", "127.0.0.1"},
                   10000);
    const std::string expected = "[" + reference + "]: \t" + std::to_string(int(p.factoryValue));
    EXPECT_NE(out.find(expected), std::string::npos) << out;
}
