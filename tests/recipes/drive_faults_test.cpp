// The simulated drive's faults that recipe jobs and benchmarks are run against.
#include "recipe_fixture.h"

#include "module/host/IHostDeviceHelper.h"

using zorhost::sim::FailureMode;
using zorhost::sim::LinkStatus;
using zorhost::sim::Refusal;

TEST_F(RecipeTest, RefusedWritesAreTheDrivesAnswerAndOnlyAtTheirAddresses) {
    const UINT refused = Address("H02-09");
    const UINT other = Address("H02-10");
    Drive().SetFailure(FailureMode::RefuseWrites, {refused});
    std::uint16_t word = 100;
    const auto r = Drive().Write(refused, {&word, 1}, 200);
    EXPECT_EQ(r.status, LinkStatus::Refused);
    EXPECT_EQ(r.refusal, Refusal::AccessDenied);
    EXPECT_FALSE(r.transient()); // nothing to retry: the drive said no
    EXPECT_TRUE(Drive().Write(other, {&word, 1}, 200).ok());
    EXPECT_TRUE(Drive().Read(refused, {&word, 1}, 200).ok());
    Drive().ClearFailures();
    EXPECT_FALSE(Drive().HasFailure(FailureMode::RefuseWrites));
    EXPECT_TRUE(Drive().Write(refused, {&word, 1}, 200).ok());
}

TEST_F(RecipeTest, FailureRateFailsThatShareOfRequestsRepeatably) {
    const UINT a = Address("H02-09");
    auto run = [&](double rate, std::uint32_t seed) {
        Drive().SetFailureRate(rate, seed);
        std::vector<bool> failed;
        std::uint16_t word = 0;
        for (int i = 0; i < 2000; ++i) {
            const auto r = Drive().Read(a, {&word, 1}, 200);
            EXPECT_TRUE(r.ok() || r.status == LinkStatus::Error);
            failed.push_back(!r.ok());
        }
        return failed;
    };
    const auto none = run(0, 1);
    EXPECT_EQ(std::count(none.begin(), none.end(), true), 0);
    const auto first = run(0.25, 7);
    const long count = std::count(first.begin(), first.end(), true);
    EXPECT_GT(count, 400);
    EXPECT_LT(count, 600);
    EXPECT_EQ(run(0.25, 7), first); // the same seed fails the same requests
    EXPECT_NE(run(0.25, 8), first);
    Drive().ClearFailures();
    EXPECT_EQ(Drive().FailureRate(), 0);
}

TEST_F(RecipeTest, LatencyInMicrosecondsDecidesTimeouts) {
    Drive().SetLatency_us(4900);
    EXPECT_EQ(Drive().Latency_us(), 4900);
    EXPECT_EQ(Drive().Latency(), 5); // whole milliseconds, rounded up
    std::uint16_t word = 0;
    const UINT a = Address("H02-09");
    EXPECT_TRUE(Drive().Read(a, {&word, 1}, 5).ok());
    EXPECT_EQ(Drive().Read(a, {&word, 1}, 4).status, LinkStatus::Timeout);
    Drive().SetLatency(3);
    EXPECT_EQ(Drive().Latency_us(), 3000);
}

// A recipe's failure costs one request, not the tries of an interactive write.
TEST_F(RecipeTest, ParameterAccessesOfTheHelperAreOneRequestEach) {
    IHostDeviceHelper& helper = host.DeviceHelper();
    const UINT a = Address("H02-09");
    Drive().SetFailure(FailureMode::FailWrites, {a});
    Drive().SetFailure(FailureMode::FailReads, {a});
    Drive().TakeRequests();
    double value = 0;
    EXPECT_FALSE(helper.WriteParameter(kKey, a, 100));
    EXPECT_FALSE(helper.ReadParameter(kKey, a, value));
    EXPECT_FALSE(helper.WriteParameterAs(kKey, a, 18, 100));
    EXPECT_EQ(Drive().TakeRequests().size(), 3u);
}
