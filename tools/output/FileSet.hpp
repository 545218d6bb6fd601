#pragma once

#include <list>
#include <string>

#include "tools/output/Output.hpp"

namespace TalIec61850Tools {

/// Files that belong together, and appear together when all are complete. None appears when one
/// cannot be written, or when a signal ends the program.
class FileSet {
public:
    /// Adds a file; see Output for how it is written.
    /// @param path  of the file; another than those added before
    /// @return valid as long as this object. It is not to be finished by itself
    /// @throws OutputError  the file cannot be made
    Output& add(std::string const& path);

    /// Completes all files; then they take their names, in the sequence in which they were added.
    /// To be called once, after the last piece.
    /// @throws OutputError  one could not be written or could not take its name: none is there
    /// then,
    ///                      also of those that an earlier run made and this one had replaced
    void finish();

private:
    std::list<Output> files_;
};

}  // namespace TalIec61850Tools
