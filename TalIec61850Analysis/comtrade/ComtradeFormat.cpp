#include <TalIec61850Analysis/comtrade/ComtradeFormat.hpp>

namespace TalIec61850Analysis {

std::string_view comtradeName(ComtradeData data) noexcept {
    switch (data) {
        case ComtradeData::ascii:
            return "ASCII";
        case ComtradeData::binary:
            return "BINARY";
        case ComtradeData::binary32:
            break;
    }
    return "BINARY32";
}

ComtradeRange comtradeRange(ComtradeFormat format) noexcept {
    switch (format.data) {
        case ComtradeData::binary:
            return {.lowest = -32767, .highest = 32767, .missing = -32768};
        case ComtradeData::binary32:
            return {.lowest = -2147483647, .highest = 2147483647, .missing = -2147483648};
        case ComtradeData::ascii:
            break;
    }
    // Six characters, in the edition of 2013 thirteen.
    return {.lowest = format.edition == ComtradeEdition::of1999 ? -99'999 : -999'999'999'999,
            .highest = 99'998,
            .missing = 99'999};
}

}  // namespace TalIec61850Analysis
