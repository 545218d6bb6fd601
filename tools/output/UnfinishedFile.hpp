#pragma once

#include <string>

namespace TalIec61850Tools {

/// A file that is to be gone unless it is finished: also when a signal ends the program (interrupt,
/// quit, terminate, hangup, broken pipe, a limit). There may be one at a time.
class UnfinishedFile {
public:
    /// @param path  of a file that is there; too long a path is not guarded against signals
    explicit UnfinishedFile(std::string path);
    UnfinishedFile(UnfinishedFile const&) = delete;
    UnfinishedFile& operator=(UnfinishedFile const&) = delete;
    /// Removes the file.
    ~UnfinishedFile();

    /// Gives the file its name, under which it stays.
    /// @return false when that fails; errno says why
    [[nodiscard]] bool finishAs(std::string const& name);

private:
    std::string path_;
};

}  // namespace TalIec61850Tools
