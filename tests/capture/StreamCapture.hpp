#pragma once

#include <ostream>
#include <sstream>
#include <string>

namespace TalTest {

/// Takes what is written to a stream, from construction to destruction, instead of its sink.
class StreamCapture {
public:
    explicit StreamCapture(std::ostream& stream)
        : stream_(stream), sink_(stream.rdbuf(taken_.rdbuf())) {}
    StreamCapture(StreamCapture const&) = delete;
    StreamCapture& operator=(StreamCapture const&) = delete;
    ~StreamCapture() { stream_.rdbuf(sink_); }

    [[nodiscard]] std::string text() const { return taken_.str(); }

private:
    std::ostringstream taken_;
    std::ostream& stream_;
    std::streambuf* sink_;
};

}  // namespace TalTest
