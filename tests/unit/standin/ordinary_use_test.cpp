#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::standin {

namespace {

/// Makes many random requests and releases, and compares the stand-in with a model of its memory
/// manager: a map from the order number of each live block to its address and contents.
class OrdinaryUse : public StandinTest {
protected:
    struct entry {
        unsigned char* address;
        std::vector<unsigned char> contents;
    };

    int draw(int first, int last) {
        return std::uniform_int_distribution<int>(first, last)(generator_);
    }

    /// Requests a block and fills it; when a failure is planned, expects null.
    void request() {
        const bool fails = draw(0, 9) == 0;
        fail_request(fails ? 1 : 0);
        ++requests_;
        const auto nbytes = static_cast<std::size_t>(draw(1, 1 << draw(0, 13)));
        auto* const address =
            static_cast<unsigned char*>(host::qvMallocExOptim(static_cast<std::int64_t>(nbytes)));
        ASSERT_EQ(address == nullptr, fails);
        if (!fails) {
            std::vector<unsigned char> contents(nbytes);
            std::generate(contents.begin(), contents.end(),
                          [&] { return static_cast<unsigned char>(generator_()); });
            std::memcpy(address, contents.data(), nbytes);
            live_.emplace(requests_, entry{address, contents});
        }
    }

    /// Checks the contents of a random live block and releases it.
    void release() {
        if (live_.empty()) {
            return;
        }
        const auto chosen = std::next(live_.begin(), draw(0, static_cast<int>(live_.size()) - 1));
        const auto& [address, contents] = chosen->second;
        ASSERT_EQ(std::memcmp(address, contents.data(), contents.size()), 0);
        host::qvFreeExOptim(address);
        live_.erase(chosen);
    }

    void expect_agreement() const {
        EXPECT_EQ(requests(), requests_);
        const std::vector<block> blocks = live_blocks();
        ASSERT_EQ(blocks.size(), live_.size());
        auto expected = live_.begin();
        for (const block& each : blocks) {
            ASSERT_EQ(each.order, expected->first);
            ASSERT_EQ(each.address, expected->second.address);
            ASSERT_EQ(each.nbytes, static_cast<std::int64_t>(expected->second.contents.size()));
            ++expected;
        }
    }

    std::map<std::int64_t, entry> live_;
    std::int64_t requests_ = requests();

private:
    std::mt19937 generator_{20240607};
};

TEST_F(OrdinaryUse, AgreesWithTheModelAndCausesNoFault) {
    for (int step = 0; step < 20000; ++step) {
        // The number of live blocks grows for 1000 steps, then shrinks for 1000.
        const bool growing = step / 1000 % 2 == 0;
        ASSERT_NO_FATAL_FAILURE(draw(0, 99) < (growing ? 60 : 40) ? request() : release());
        if (step % 100 == 0) {
            EXPECT_EQ(check_blocks(), 0);
            ASSERT_NO_FATAL_FAILURE(expect_agreement());
        }
    }
    while (!live_.empty()) {
        ASSERT_NO_FATAL_FAILURE(release());
    }
    expect_agreement();
    EXPECT_TRUE(faults.empty());
}

} // namespace

} // namespace zktarn::standin
