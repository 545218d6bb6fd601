#pragma once

// Internal: what indexed GOOSE messages hold, read again from their captures.

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/supervision/GooseObservation.hpp>
#include <TalIec61850Analysis/traffic/CaptureWindow.hpp>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Analysis::detail {

/// The message of one stream that was read last.
class GooseContentReader {
public:
    /// Reads the message at an offset.
    /// @param window      of the captures
    /// @param fileOffset  of the goosePdu
    /// @return whether it says the same as the one read before, but for sqNum
    /// @throws std::system_error  the capture cannot be read, or no longer has the message (ESTALE)
    bool read(CaptureWindow& window, std::uint32_t file, std::uint64_t fileOffset) {
        if (!pdu_.empty()) [[likely]] {
            Octets const pdu = window.at(file, fileOffset, pdu_.size());
            if (isSame(pdu)) [[likely]] {
                return true;
            }
        }
        readAnew(window, file, fileOffset);
        return false;
    }

    /// What it says; valid until the next one is read.
    [[nodiscard]] GooseContent const& content() const { return content_; }

private:
    [[nodiscard]] bool isSame(Octets pdu) const;
    void readAnew(CaptureWindow& window, std::uint32_t file, std::uint64_t fileOffset);

    /// The octets of the goosePdu, which the content points into.
    OctetString pdu_;
    /// Where the value of sqNum is in it.
    std::size_t sqNum_ = 0;
    std::size_t sqNumSize_ = 0;
    GooseContent content_;
};

}  // namespace TalIec61850Analysis::detail
