#include "support/SclAccess.hpp"

namespace TalTest {

namespace {

std::string parameter(std::string const& type, std::string const& value) {
    return "            <P type=\"" + type + "\">" + value + "</P>\n";
}

}  // namespace

std::string textOf(SclAccess const& access) {
    std::string text = "      <ConnectedAP iedName=\"" + access.ied + "\" apName=\"" +
                       access.accessPoint + "\"" + access.attributes + ">\n        <" +
                       access.kind + " ldInst=\"LD0\" cbName=\"" + access.controlBlock +
                       "\">\n          <Address>\n";
    text += parameter("MAC-Address", access.mac) + parameter("APPID", access.appId);
    if (access.hasVlan) {
        text += parameter("VLAN-ID", "005") + parameter("VLAN-PRIORITY", "4");
    }
    text += "          </Address>\n";
    if (access.hasTimes) {
        text +=
            "          <MinTime unit=\"s\" multiplier=\"m\">4</MinTime>\n"
            "          <MaxTime unit=\"s\" multiplier=\"m\">100</MaxTime>\n";
    }
    return text + "        </" + access.kind + ">\n      </ConnectedAP>\n";
}

SclAccess accessOfRelay1() {
    return {.ied = "RELAY1", .controlBlock = "gcb1", .mac = "01-0C-CD-01-00-01", .appId = "0001"};
}

SclAccess accessOfMu1() {
    return {.ied = "MU1",
            .kind = "SMV",
            .controlBlock = "msvcb1",
            .mac = "01-0C-CD-04-00-01",
            .appId = "4000",
            .hasTimes = false};
}

}  // namespace TalTest
