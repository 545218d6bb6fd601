#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

#include "support/Captures.hpp"
#include "support/TempFile.hpp"

namespace TalTest::CapturesTest {
namespace {

/// An environment variable, until the test ends.
class ScopedVariable {
public:
    ScopedVariable(char const* name, char const* value) : name_(name) {
        if (char const* const before = std::getenv(name)) before_ = before;
        if (value == nullptr) {
            ::unsetenv(name);
        } else {
            ::setenv(name, value, 1);
        }
    }
    ScopedVariable(ScopedVariable const&) = delete;
    ScopedVariable& operator=(ScopedVariable const&) = delete;
    ~ScopedVariable() {
        if (before_) {
            ::setenv(name_, before_->c_str(), 1);
        } else {
            ::unsetenv(name_);
        }
    }

private:
    char const* name_;
    std::optional<std::string> before_;
};

class RecordedCaptures : public testing::Test {
protected:
    TempDir folder;
    ScopedVariable captures{"TAL_CAPTURES", folder.path().c_str()};
};

TEST_F(RecordedCaptures, AreThoseOfTheFolderSorted) {
    std::string const b = folder.write("b.pcap", {});
    std::string const a = folder.write("a.pcap", {});
    folder.write("README.md", {});
    EXPECT_EQ(recordedCapturePaths(), (std::vector<std::string>{a, b}));
    ScopedVariable const notRequired("TAL_REQUIRE_CAPTURES", nullptr);
    EXPECT_EQ(recorded({"b.pcap", "none.pcap"}), std::vector<std::string>{b});
    EXPECT_EQ(capture("none.pcap"), std::nullopt);
}

TEST_F(RecordedCaptures, AreNoneWithoutAFolderUnlessTheyAreRequired) {
    ScopedVariable const nowhere("TAL_CAPTURES", folder.file("nowhere").c_str());
    {
        ScopedVariable const notRequired("TAL_REQUIRE_CAPTURES", nullptr);
        EXPECT_FALSE(requireCaptures());
        EXPECT_TRUE(recordedCapturePaths().empty());
        EXPECT_TRUE(recorded({"a.pcap"}).empty());
    }
    ScopedVariable const required("TAL_REQUIRE_CAPTURES", "1");
    EXPECT_TRUE(requireCaptures());
    EXPECT_THROW((void)recordedCapturePaths(), std::runtime_error);
    EXPECT_THROW((void)recorded({"a.pcap"}), std::runtime_error);
}

TEST_F(RecordedCaptures, KnowWhoAsksForThem) {
    std::string const notes = folder.file("notes");
    {
        ScopedVariable const asked("TAL_CAPTURES_ASKED", notes.c_str());
        ScopedVariable const notRequired("TAL_REQUIRE_CAPTURES", nullptr);
        static_cast<void>(capture("a.pcap"));
        EXPECT_TRUE(recordedCapturePaths().empty());
    }
    static_cast<void>(capturesFolder());
    std::ifstream file(notes);
    std::string line;
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(std::getline(file, line)) << i;
        EXPECT_NE(line.find("support-tests "), std::string::npos) << line;
    }
    EXPECT_FALSE(std::getline(file, line)) << line;
}

}  // namespace
}  // namespace TalTest::CapturesTest
