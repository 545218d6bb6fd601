#pragma once

#include <string>

namespace TalIec61850Tools {

struct GuardedPath;

/// A file that is removed unless it is finished, also when a signal ends the program (interrupt,
/// quit, terminate, hangup, broken pipe, a limit), on any thread. There may be several at a time;
/// they are made and finished on one thread.
class UnfinishedFile {
public:
    /// While it exists, such a signal waits, so that files that are finished meanwhile are all
    /// there or none. One at a time, on the thread that finishes them.
    class Together {
    public:
        /// Signals wait from here on.
        Together();
        Together(Together const&) = delete;
        Together& operator=(Together const&) = delete;
        /// Takes the signal that waits, if there is one.
        ~Together();
    };

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
    /// What a signal's handler reads.
    GuardedPath* guard_ = nullptr;
};

}  // namespace TalIec61850Tools
