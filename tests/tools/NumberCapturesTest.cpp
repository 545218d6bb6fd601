#include <gtest/gtest.h>

#include "tools/commands/NumberCaptures.hpp"

namespace TalIec61850Tools {
namespace {

CaptureSource capture(std::string const& path, std::uint64_t inode) {
    return {.path = path, .name = path, .identity = {.device = 1, .inode = inode}, .size = 24};
}

TEST(CaptureNumbers, AreTheIndexesInTheList) {
    EXPECT_EQ(numberCaptures({capture("b", 1), capture("a", 2), capture("c", 3)}),
              (CaptureNumbers{{"a", 1}, {"b", 0}, {"c", 2}}));
    EXPECT_EQ(numberCaptures({}), CaptureNumbers{});
}

TEST(CaptureNumbers, AfterAPathThatIsTwoFilesAreNotThoseOfTheNeighbour) {
    // The file was replaced between the two times that its path was given.
    EXPECT_EQ(numberCaptures({capture("a", 1), capture("a", 2), capture("b", 3), capture("c", 4)}),
              (CaptureNumbers{{"a", 0}, {"b", 2}, {"c", 3}}));
}

}  // namespace
}  // namespace TalIec61850Tools
