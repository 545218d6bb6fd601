#pragma once

#include <functional>
#include <future>
#include <string>
#include <string_view>

#include "tools/output/Output.hpp"

namespace TalIec61850Tools {

/// Writes to an output on another thread: one piece while the next one is filled. Where no thread
/// can be started, it writes on that of the caller.
class BackgroundOutput {
public:
    /// Starts a thread that runs a function; throws std::system_error where there is none to be
    /// had.
    using Start = std::future<void> (*)(std::function<void()> run);

    /// @param output  must outlive this; not to be used by others until `finish` or the end of this
    explicit BackgroundOutput(Output& output, Start start = &startThread);
    BackgroundOutput(BackgroundOutput const&) = delete;
    BackgroundOutput& operator=(BackgroundOutput const&) = delete;
    /// Waits for the piece that is being written. What was added after it is dropped.
    ~BackgroundOutput() = default;

    /// @throws OutputError  an earlier piece, or this one, could not be written
    void write(std::string_view text);

    /// Waits until all is written. To be called once, after the last piece.
    /// @throws OutputError  something could not be written
    void finish();

private:
    [[nodiscard]] static std::future<void> startThread(std::function<void()> run);
    void wait();
    void handOver();

    Output& output_;
    Start start_;
    /// What is added to, and what is being written.
    std::string filled_;
    std::string handedOver_;
    /// The last member, so that it goes first: its end is that of the thread.
    std::future<void> writing_;
};

}  // namespace TalIec61850Tools
