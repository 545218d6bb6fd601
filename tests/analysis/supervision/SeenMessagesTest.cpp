#include <gtest/gtest.h>

#include <TalIec61850Analysis/supervision/SeenMessages.hpp>

namespace TalTest::SeenMessagesTest {
namespace {

using namespace TalIec61850Analysis::detail;

TEST(SeenMessages, RemembersWhatCame) {
    SeenMessages seen;
    seen.begin({5, 10});
    seen.addNewest({5, 11});
    seen.addNewest({5, 13});
    seen.addNewest({6, 0});
    EXPECT_TRUE(seen.has({5, 10}));
    EXPECT_TRUE(seen.has({5, 13}));
    EXPECT_FALSE(seen.has({5, 12}));
    EXPECT_FALSE(seen.has({5, 9}));
    EXPECT_FALSE(seen.has({4, 10}));
    seen.addOlder({5, 12});
    EXPECT_TRUE(seen.has({5, 12}));
    seen.begin({1, 0});
    EXPECT_FALSE(seen.has({5, 12}));
}

TEST(SeenMessages, TakesWhatItForgotForSeen) {
    SeenMessages seen;
    seen.begin({5, 3});
    for (std::uint32_t state = 6; state < 2000; ++state) {
        seen.addNewest({state, 0});
    }
    EXPECT_TRUE(seen.has({5, 3}));
    EXPECT_TRUE(seen.has({700, 0}));
    EXPECT_FALSE(seen.has({5, 2}));
    EXPECT_FALSE(seen.has({1990, 1}));
}

}  // namespace
}  // namespace TalTest::SeenMessagesTest
