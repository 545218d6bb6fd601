// A single frame read in full: as GOOSE and as SV, from where the PDU should be and from anywhere.
// Whatever it holds, the text is safe for a terminal, the JSON parses, and each fault lies inside.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "fuzz/Check.hpp"
#include "fuzz/FilterChoice.hpp"
#include "fuzz/FuzzInput.hpp"
#include "fuzz/Tally.hpp"
#include "tools/render/PacketJson.hpp"
#include "tools/render/PacketText.hpp"

namespace {

using namespace TalFuzz;
using namespace TalIec61850Analysis;
using namespace TalIec61850Tools;
using TalTest::Bytes;

bool isControl(char c) { return (c >= 0 && c < ' ' && c != '\n') || c == '\x7f'; }

template <typename Packet>
void requireSound(Packet const& packet, Bytes const& frame) {
    std::string const text = toText(packet);
    require(std::none_of(text.begin(), text.end(), isControl), "a text is safe for a terminal");
    require(text.empty() || text.back() == '\n', "each line is ended");
    using Json = nlohmann::ordered_json;
    auto const line = toJson(packet).dump(-1, ' ', true, Json::error_handler_t::replace);
    require(Json::accept(line), "JSON is JSON");
    require(std::all_of(packet.faults.begin(), packet.faults.end(),
                        [&](Fault const& fault) { return fault.offset <= frame.size(); }),
            "a fault lies in the frame");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Tally whole("GOOSE frames are read without a fault");
    FuzzInput input({data, size});
    Bytes const choice = input.octets(kFilterChoiceSize);
    Bytes const frame = input.octets(size);
    std::size_t const anywhere = choice.empty() ? 0 : choice.front() % (frame.size() + 1);

    GoosePacket const goose = decodeGoose(frame);
    requireSound(goose, frame);
    requireSound(decodeGoose(frame, anywhere), frame);
    requireSound(decodeSv(frame), frame);
    requireSound(decodeSv(frame, anywhere), frame);
    whole.add(goose.faults.empty() ? 1 : 0, 1);
    return 0;
}
