#pragma once

#include <string>
#include <system_error>
#include <utility>

namespace TalIec61850Tools {

/// Standard output or a file could not be written; the code says why.
class OutputError : public std::system_error {
public:
    /// @param target  the file or stream, safe for a terminal
    OutputError(std::string target, int error)
        : std::system_error(error, std::generic_category()), target_(std::move(target)) {}

    [[nodiscard]] std::string const& target() const { return target_; }

private:
    std::string target_;
};

}  // namespace TalIec61850Tools
