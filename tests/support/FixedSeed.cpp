// Random tests take the same values in every run of a program, so that one that passed passes
// again. RC_PARAMS="seed=N" has them take others.

#include <cstdlib>
#include <string>

namespace TalTest {
namespace {

[[maybe_unused]] bool const isSeedFixed = [] {
    char const* const given = std::getenv("RC_PARAMS");
    std::string const parameters = given != nullptr ? given : "";
    return parameters.find("seed=") != std::string::npos ||
           setenv("RC_PARAMS", (parameters + " seed=61850").c_str(), 1) == 0;
}();

}  // namespace
}  // namespace TalTest
