#pragma once

#include <functional>
#include <string_view>
#include <system_error>

namespace TalIec61850Tools {

/// Takes an output piece by piece.
using TextSink = std::function<void(std::string_view)>;

/// Standard output did not take what was written; the code says why.
class OutputError : public std::system_error {
public:
    using std::system_error::system_error;
};

/// Writes to standard output.
/// @throws OutputError  it is closed, full, or nobody reads it any more
void writeOutput(std::string_view text);

/// Hands on what `writeOutput` still holds back. To be called once, behind the last piece.
/// @throws OutputError  as writeOutput
void finishOutput();

}  // namespace TalIec61850Tools
