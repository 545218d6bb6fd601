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

/// Where a command's output goes: standard output, or a file. A file is written under a temporary
/// name beside it and takes its own name when all is there, so that nobody ever finds half of it;
/// a device or a pipe is written to as it is.
class Output {
public:
    /// Standard output.
    Output();
    /// @param path  of the file; empty for standard output
    /// @throws OutputError  the file cannot be made
    explicit Output(std::string const& path);
    Output(Output const&) = delete;
    Output& operator=(Output const&) = delete;
    /// Removes a file that is not finished.
    ~Output();

    /// @throws OutputError  it is closed, full, or nobody reads it any more
    void write(std::string_view text);

    /// Hands on what is held back, and gives a file its name. To be called once, behind the last
    /// piece.
    /// @throws OutputError  as write
    void finish();

    /// Whether standard output is meant and is a terminal.
    [[nodiscard]] bool isTerminal() const;

private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    [[noreturn]] void fail() const;
    void openUnfinished(mode_t mode);

    std::FILE* stream_ = stdout;
    std::unique_ptr<std::FILE, CloseFile> file_;
    /// What complaints call it.
    std::string name_ = "standard output";
    /// Where the file is to be in the end.
    std::string path_;
    std::optional<UnfinishedFile> unfinished_;
};

}  // namespace TalIec61850Tools
