#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis {

/// Where a layout comes from.
enum class LayoutSource : std::uint8_t {
    given,     ///< the caller said it
    inferred,  ///< the octets of many ASDUs agree with it, and with no other
    /// They agree with several, or are too few: the layout is that of 9-2LE, by length, unless
    /// values look like FLOAT32, or what would be a quality is none.
    undecided,
    none,  ///< they agree with none: there are octets alone
};

/// What the octets of seqData are taken for, and on what grounds.
struct FoundLayout {
    /// Not set where there are octets alone.
    std::optional<SampleLayout> layout;
    /// Where it comes from.
    LayoutSource source = LayoutSource::none;
    /// How many ASDUs were looked at.
    std::size_t asdus = 0;
    // Which tests all of them passed.
    bool isIntegerAndQuality = false;  ///< every second word has none but quality bits
    bool isFloatAndQuality = false;    ///< and every first one is a number that floats are
    bool isFloat = false;              ///< every word is a number that floats are
    bool isValueAndTime = false;       ///< octets 4 to 11 of every twelve are the time of capture
    bool isZero = false;               ///< there is no octet but 0

    /// Member by member.
    friend bool operator==(FoundLayout const&, FoundLayout const&) = default;
};

/// Octets of seqData in 9-2LE: four currents and four voltages, an INT32 and a quality each.
inline constexpr std::size_t kSizeOf92Le = 64;

/// Infers from many ASDUs of one stream what their seqData is made of, where nobody says it: INT32
/// and quality, FLOAT32 and quality, FLOAT32, or a value of 32 bits and a UtcTime. One ASDU alone
/// decides nothing, and neither do zeros: they are read as those of 9-2LE where they have its
/// length, and where their values cannot be FLOAT32.
class LayoutInference {
public:
    /// @param size  of seqData in octets; any
    TALIEC61850ANALYSIS_EXPORT explicit LayoutInference(std::size_t size);

    /// Looks at one more ASDU.
    /// @param seqData  its octets; ignored unless they are as many as was said
    /// @param arrival  when it was captured; without it, no time in the sample is recognised
    TALIEC61850ANALYSIS_EXPORT void add(Octets seqData, std::optional<CaptureTime> arrival);

    /// How many ASDUs were looked at.
    [[nodiscard]] std::size_t asdus() const noexcept { return asdus_; }

    /// What all ASDUs agree with.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT FoundLayout result() const;

private:
    /// @cond
    /// What has been seen of the words at odd or at even places.
    struct Words {
        bool areFloats = true;
        bool areQualities = true;
        std::uint8_t leastExponent = 255;
        std::uint8_t largestExponent = 0;

        void add(std::uint32_t word);
        /// Zeros alone tell nothing.
        [[nodiscard]] bool mayBeFloats() const {
            return areFloats && leastExponent <= largestExponent;
        }
        [[nodiscard]] bool variesLikeFloats() const {
            return areFloats && leastExponent < largestExponent;
        }
    };
    /// @endcond

    void lookForTimes(Octets seqData, std::optional<CaptureTime> arrival);

    std::size_t size_;
    std::size_t asdus_ = 0;
    /// By place: the first of each eight octets, the second.
    Words first_;
    Words second_;
    /// The first of each twelve octets.
    Words values_;
    bool haveTimes_ = true;
    bool isZero_ = true;
};

}  // namespace TalIec61850Analysis
