#pragma once

#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <string>

namespace TalIec61850Tools {

/// Standard input as a file that has a path and may be read many times: itself where it is a file
/// already, otherwise a copy on disk that is gone when this object is, or the program.
class StandardInput {
public:
    /// Reads a pipe to its end.
    /// @throws std::system_error  it cannot be read, or not be copied to the folder for temporary
    /// files
    StandardInput();

    /// Leads to the file as long as this object lives.
    [[nodiscard]] std::string const& path() const { return path_; }

private:
    TalIec61850Analysis::Descriptor copy_;
    std::string path_;
};

}  // namespace TalIec61850Tools
