#include <fcntl.h>
#include <gtest/gtest.h>

#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <cerrno>
#include <utility>

namespace TalIec61850Analysis::DescriptorTest {
namespace {

Descriptor openNull() { return Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC)); }

bool isOpen(int number) { return ::fcntl(number, F_GETFD) != -1; }

TEST(Descriptor, WithoutAFileIsFalse) {
    EXPECT_FALSE(Descriptor());
    EXPECT_FALSE(Descriptor(-1));
    EXPECT_TRUE(Descriptor(openNull()));
}

TEST(Descriptor, ClosesItsFileWhenItIsDestroyed) {
    int number = -1;
    {
        Descriptor const file = openNull();
        number = file.number();
        EXPECT_TRUE(isOpen(number));
    }
    EXPECT_FALSE(isOpen(number));
}

TEST(Descriptor, GivesItsFileAway) {
    Descriptor from = openNull();
    int const number = from.number();
    Descriptor const to = std::move(from);
    EXPECT_EQ(to.number(), number);
    EXPECT_FALSE(from);  // NOLINT(bugprone-use-after-move)
    EXPECT_TRUE(isOpen(number));
}

TEST(Descriptor, ClosesItsFileWhenItTakesOverAnother) {
    Descriptor from = openNull();
    Descriptor to = openNull();
    int const kept = from.number();
    int const closed = to.number();
    to = std::move(from);
    EXPECT_EQ(to.number(), kept);
    EXPECT_FALSE(from);  // NOLINT(bugprone-use-after-move)
    EXPECT_TRUE(isOpen(kept));
    EXPECT_FALSE(isOpen(closed));
}

TEST(Descriptor, StaysOpenWhenItIsMovedToItself) {
    Descriptor file = openNull();
    int const number = file.number();
    Descriptor& same = file;
    file = std::move(same);
    EXPECT_EQ(file.number(), number);
    EXPECT_TRUE(isOpen(number));
}

}  // namespace
}  // namespace TalIec61850Analysis::DescriptorTest
