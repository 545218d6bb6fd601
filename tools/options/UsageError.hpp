#pragma once

#include <stdexcept>

namespace TalIec61850Tools {

/// The command line is well-formed but makes no sense; nothing was done.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace TalIec61850Tools
