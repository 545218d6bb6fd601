#include "tools/output/StandardOutput.hpp"

#include <cerrno>
#include <cstdio>

namespace TalIec61850Tools {

namespace {

[[noreturn]] void fail() { throw OutputError(errno, std::generic_category()); }

}  // namespace

void writeOutput(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        fail();
    }
}

void finishOutput() {
    if (std::fflush(stdout) != 0) {
        fail();
    }
}

}  // namespace TalIec61850Tools
