#include "tools/selection/StreamCriteria.hpp"

#include <fnmatch.h>

#include <algorithm>

#include "tools/selection/StreamPublishers.hpp"

namespace TalIec61850Tools {

namespace {

/// A pattern in which fnmatch gives no character but * and ? a meaning of its own.
std::string toPattern(std::string const& wanted) {
    std::string pattern;
    for (char const c : wanted) {
        if (c == '[' || c == '\\') {
            pattern += '\\';
        }
        pattern += c;
    }
    return pattern;
}

bool meetsName(std::string const& wanted, std::string const& name) {
    constexpr int noFlags = 0;
    return wanted == name || ::fnmatch(toPattern(wanted).c_str(), name.c_str(), noFlags) == 0;
}

}  // namespace

bool StreamCriteria::admitIed(TalIec61850Analysis::StreamKey const& key) const {
    if (ieds.empty()) {
        return true;
    }
    auto const* const publisher = publishers != nullptr ? publishers->of(key) : nullptr;
    return publisher != nullptr && meetsPattern(ieds, publisher->ied);
}

bool meetsPattern(std::vector<std::string> const& wanted, std::optional<std::string> const& name) {
    return wanted.empty() ||
           (name && std::any_of(wanted.begin(), wanted.end(), [&](std::string const& pattern) {
                return meetsName(pattern, *name);
            }));
}

}  // namespace TalIec61850Tools
