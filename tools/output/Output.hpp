#pragma once

#include <sys/types.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/output/OutputError.hpp"
#include "tools/output/UnfinishedFile.hpp"

namespace TalIec61850Tools {

/// The output of a command: standard output, or a file. A file is written under a temporary name in
/// the same folder and takes its own name when it is complete, so that it never exists in part. A
/// device or a pipe is written directly.
class Output {
public:
    /// Standard output.
    Output();
    /// @param path  of the file; empty for standard output
    /// @throws OutputError  the file cannot be made
    explicit Output(std::string const& path);
    Output(Output const&) = delete;
    Output& operator=(Output const&) = delete;
    /// Removes a file that is not finished; hands over what was written elsewhere.
    ~Output();

    /// @throws OutputError  it is closed, full, or a pipe without a reader
    void write(std::string_view text);

    /// Hands over what was written so far.
    /// @throws OutputError  as write
    void flush();

    /// Flushes the output and gives a file its name. To be called once, after the last piece.
    /// @throws OutputError  as write
    void finish();

    /// The first half of `finish`: all is handed over, and a file still has no name.
    /// @throws OutputError  as write
    void complete();

    /// The other half: a file takes its name.
    /// @throws OutputError  the name cannot be taken
    void takeName();

    /// Removes a file that has taken its name, where others that belong to it cannot.
    void removeNamed();

    /// Whether it is a file that appears when it is finished.
    [[nodiscard]] bool isFile() const { return unfinished_.has_value(); }

    /// Whether standard output is meant and is a terminal.
    [[nodiscard]] bool isTerminal() const { return isTerminal_; }

private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    [[noreturn]] void fail() const;
    void openUnfinished(mode_t mode);
    void writePending();

    bool isTerminal_ = false;
    /// What was written and is not handed over yet.
    std::string pending_;
    std::FILE* stream_ = stdout;
    std::unique_ptr<std::FILE, CloseFile> file_;
    /// Its name in messages.
    std::string name_ = "standard output";
    /// The path of the complete file.
    std::string path_;
    std::optional<UnfinishedFile> unfinished_;
};

}  // namespace TalIec61850Tools
