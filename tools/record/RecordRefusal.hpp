#pragma once

#include <stdexcept>

namespace TalIec61850Tools {

/// What was asked for makes no record; the text says why, in one line that is safe for a terminal.
class RecordRefusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace TalIec61850Tools
