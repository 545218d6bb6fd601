#pragma once

#include <string>

namespace TalIec61850Tools {

/// A file that is removed unless it is finished, also when a signal ends the program (interrupt,
/// quit, terminate, hangup, broken pipe, a limit), on any thread. There may be one at a time.
class UnfinishedFile {
public:
    /// @param path  of an existing file
    explicit UnfinishedFile(std::string path);
    UnfinishedFile(UnfinishedFile const&) = delete;
    UnfinishedFile& operator=(UnfinishedFile const&) = delete;
    /// Removes the file unless it is finished.
    ~UnfinishedFile();

    /// Gives the file its name, under which it stays.
    /// @return false when that fails; errno says why
    [[nodiscard]] bool finishAs(std::string const& name);

private:
    std::string path_;
};

}  // namespace TalIec61850Tools
