#include "tools/MemberTraffic.hpp"

#include "support/CaptureFile.hpp"

namespace TalTest {

namespace {

constexpr auto otherSource = "02:00:00:00:00:99";

template <typename Change>
Bytes changedGoose(std::string const& gocbRef, Change change) {
    GooseMessage message = gooseCalled(gocbRef);
    change(message);
    return gooseFrame(Ethernet(), message);
}

template <typename Change>
Bytes changedSv(std::string const& svID, Change change) {
    SvMessage message = svCalled(svID);
    change(message);
    return svFrame(svEthernet(), message);
}

}  // namespace

GooseMessage gooseCalled(std::string const& gocbRef) {
    GooseMessage message;
    message.gocbRef = gocbRef;
    return message;
}

Bytes gooseFrameCalled(std::string const& gocbRef, Ethernet const& link) {
    return gooseFrame(link, gooseCalled(gocbRef));
}

SvMessage svCalled(std::string const& svID) { return message92le(svID, 0); }

Bytes svFrameCalled(std::string const& svID, Ethernet const& link) {
    return svFrame(link, svCalled(svID));
}

Bytes memberTraffic() {
    Ethernet const goose;
    Ethernet const sv = svEthernet();
    std::vector<Bytes> const frames = {
        gooseFrameCalled("gcbPlain"),
        gooseFrameCalled("gcbSource", goose.from(otherSource)),
        gooseFrameCalled("gcbDestination", goose.to("01:0c:cd:01:00:99")),
        gooseFrameCalled("gcbVlan5", goose.withVlan(5)),
        gooseFrameCalled("gcbVlan0", goose.withVlan(0)),
        gooseFrameCalled("gcbHsrA", goose.withHsr('A')),
        gooseFrameCalled("gcbHsrB", goose.withHsr('B')),
        gooseFrameCalled("gcbPrpA", goose.withPrp('A')),
        gooseFrameCalled("gcbPrpB", goose.withPrp('B')),
        changedGoose("gcbAppId", [](auto& message) { message.appId = 0x3FFF; }),
        changedGoose("gcbReserved", [](auto& message) { message.reserved1 = 1; }),
        changedGoose("gcbDatSet", [](auto& message) { message.datSet = "otherSet"; }),
        changedGoose("gcbNoDatSet", [](auto& message) { message.datSet.reset(); }),
        changedGoose("gcbGoID", [](auto& message) { message.goID = "otherID"; }),
        changedGoose("gcbNoGoID", [](auto& message) { message.goID.reset(); }),
        changedGoose("gcbConfRev", [](auto& message) { message.confRev = 77; }),
        changedGoose("gcbNoSimulation", [](auto& message) { message.simulation.reset(); }),
        svFrameCalled("MUplain"),
        svFrameCalled("MUsource", sv.from(otherSource)),
        svFrameCalled("MUdestination", sv.to("01:0c:cd:04:00:99")),
        svFrameCalled("MUvlan5", sv.withVlan(5)),
        svFrameCalled("MUvlan0", sv.withVlan(0)),
        svFrameCalled("MUhsrA", sv.withHsr('A')),
        svFrameCalled("MUhsrB", sv.withHsr('B')),
        svFrameCalled("MUprpA", sv.withPrp('A')),
        svFrameCalled("MUprpB", sv.withPrp('B')),
        changedSv("MUappId", [](auto& message) { message.appId = 0x4FFF; }),
        changedSv("MUreserved", [](auto& message) { message.reserved1 = 1; }),
        changedSv("MUconfRev", [](auto& message) { message.asdus[0].confRev = 77; }),
    };
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    std::uint32_t seconds = 1'700'000'000;
    for (Bytes const& frame : frames) {
        capture.add(seconds++, 0, frame);
    }
    return capture.bytes();
}

}  // namespace TalTest
