#include "tools/output/BackgroundOutput.hpp"

#include <cstddef>
#include <system_error>
#include <utility>

namespace TalIec61850Tools {

namespace {

/// Takes much longer to write than a thread to start.
constexpr std::size_t kPiece = std::size_t{1} << 20U;

}  // namespace

BackgroundOutput::BackgroundOutput(Output& output, Start start) : output_(output), start_(start) {}

void BackgroundOutput::write(std::string_view text) {
    filled_ += text;
    if (filled_.size() >= kPiece) {
        handOver();
    }
}

void BackgroundOutput::finish() {
    handOver();
    wait();
}

std::future<void> BackgroundOutput::startThread(std::function<void()> run) {
    return std::async(std::launch::async, std::move(run));
}

void BackgroundOutput::wait() {
    if (writing_.valid()) {
        writing_.get();
    }
}

void BackgroundOutput::handOver() {
    wait();
    handedOver_.swap(filled_);
    filled_.clear();
    try {
        writing_ = start_([this] { output_.write(handedOver_); });
    } catch (std::system_error const&) {
        output_.write(handedOver_);
    }
}

}  // namespace TalIec61850Tools
