#include "bench/LargeStation.hpp"

#include <fmt/format.h>

#include <iterator>

namespace TalBench {

namespace {

constexpr int kNodes = 200;
constexpr int kEntries = 40;
constexpr int kInputs = 60;
/// Octets of one IED with its address and types, about.
constexpr std::size_t kIedOctets = 275'000;

using Text = fmt::memory_buffer;

template <typename... Arguments>
void put(Text& text, fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    fmt::format_to(std::back_inserter(text), format, std::forward<Arguments>(arguments)...);
}

void putAddress(Text& text, std::size_t ied) {
    put(text, "   <ConnectedAP iedName=\"IED{0}\" apName=\"AP1\" redProt=\"prp\">\n", ied);
    for (std::string_view const kind : {"GSE", "SMV"}) {
        put(text,
            "    <{0} ldInst=\"LD0\" cbName=\"cb{0}\">\n     <Address>\n"
            "      <P type=\"MAC-Address\">01-0C-CD-01-{1:02X}-{2:02X}</P>\n"
            "      <P type=\"APPID\">{3:04X}</P>\n      <P type=\"VLAN-ID\">00A</P>\n"
            "      <P type=\"VLAN-PRIORITY\">4</P>\n     </Address>\n",
            kind, ied / 256 % 256, ied % 256, ied % 0x4000);
        put(text, "     <MinTime unit=\"s\" multiplier=\"m\">4</MinTime>\n    </{}>\n", kind);
    }
    put(text, "   </ConnectedAP>\n");
}

void putNodes(Text& text, std::size_t ied, std::size_t ieds) {
    put(text, "     <LN0 lnClass=\"LLN0\" inst=\"\" lnType=\"IED{}/LLN0\">\n", ied);
    put(text, "      <DataSet name=\"dsGoose\">\n");
    for (int i = 0; i < kEntries; ++i) {
        put(text,
            "       <FCDA ldInst=\"LD0\" lnClass=\"PTOC\" lnInst=\"{}\" doName=\"Op\" "
            "daName=\"{}\" fc=\"ST\"/>\n",
            i / 2 + 1, i % 2 == 0 ? "general" : "q");
    }
    put(text, "      </DataSet>\n      <DataSet name=\"dsSv\">\n");
    for (int i = 0; i < 8; ++i) {
        put(text,
            "       <FCDA ldInst=\"LD0\" lnClass=\"TCTR\" lnInst=\"{}\" doName=\"AmpSv\" "
            "fc=\"MX\"/>\n",
            i + 1);
    }
    put(text, "      </DataSet>\n      <Inputs>\n");
    for (int i = 0; i < kInputs; ++i) {
        put(text,
            "       <ExtRef iedName=\"IED{}\" ldInst=\"LD0\" lnClass=\"PTOC\" lnInst=\"{}\" "
            "doName=\"Op\" daName=\"general\" intAddr=\"in{}\" serviceType=\"GOOSE\" "
            "srcLDInst=\"LD0\" srcLNClass=\"LLN0\" srcCBName=\"cbGSE\"/>\n",
            (ied + 1 + static_cast<std::size_t>(i) / 20) % ieds, i % 20 + 1, i);
    }
    put(text,
        "      </Inputs>\n      <GSEControl name=\"cbGSE\" appID=\"IED{0}/goose\" "
        "datSet=\"dsGoose\" confRev=\"1\"/>\n      <SampledValueControl name=\"cbSMV\" "
        "smvID=\"IED{0}/sv\" datSet=\"dsSv\" confRev=\"1\" smpRate=\"80\" nofASDU=\"1\">"
        "<SmvOpts/></SampledValueControl>\n     </LN0>\n",
        ied);
    for (int i = 1; i <= kNodes; ++i) {
        std::string_view const lnClass = i % 2 == 0 ? "TCTR" : "PTOC";
        int const inst = (i + 1) / 2;
        put(text,
            "     <LN lnClass=\"{0}\" inst=\"{1}\" lnType=\"IED{2}/{0}\" desc=\"Stage {1}\">\n",
            lnClass, inst, ied);
        for (std::string_view const object : {"Mod", "Op", "AmpSv", "Str", "StrVal"}) {
            put(text,
                "      <DOI name=\"{0}\" desc=\"{0} of stage {1}\">\n"
                "       <DAI name=\"d\" sAddr=\"addr/{1}/{0}\"><Val>Text of {0}</Val></DAI>\n"
                "       <SDI name=\"sVC\"><DAI name=\"scaleFactor\"><Val>0.001</Val></DAI></SDI>\n"
                "      </DOI>\n",
                object, inst);
        }
        put(text, "     </LN>\n");
    }
}

void putTypes(Text& text, std::size_t ied) {
    for (std::string_view const lnClass : {"LLN0", "PTOC", "TCTR"}) {
        put(text, "  <LNodeType id=\"IED{0}/{1}\" lnClass=\"{1}\">\n", ied, lnClass);
        for (int i = 0; i < 20; ++i) {
            put(text, "   <DO name=\"Ind{0}\" type=\"IED{1}/SPS{0}\"/>\n", i, ied);
        }
        put(text,
            "   <DO name=\"Op\" type=\"IED{0}/ACT\"/>\n   <DO name=\"AmpSv\" "
            "type=\"IED{0}/SAV\"/>\n"
            "  </LNodeType>\n",
            ied);
    }
    for (int i = 0; i < 20; ++i) {
        put(text,
            "  <DOType id=\"IED{}/SPS{}\" cdc=\"SPS\">\n"
            "   <DA name=\"stVal\" bType=\"BOOLEAN\" fc=\"ST\" dchg=\"true\"/>\n"
            "   <DA name=\"q\" bType=\"Quality\" fc=\"ST\" qchg=\"true\"/>\n"
            "   <DA name=\"t\" bType=\"Timestamp\" fc=\"ST\"/>\n"
            "   <DA name=\"d\" bType=\"VisString255\" fc=\"DC\"/>\n  </DOType>\n",
            ied, i);
    }
    put(text,
        "  <DOType id=\"IED{0}/ACT\" cdc=\"ACT\">\n"
        "   <DA name=\"general\" bType=\"BOOLEAN\" fc=\"ST\"/>\n"
        "   <DA name=\"q\" bType=\"Quality\" fc=\"ST\"/>\n"
        "   <DA name=\"t\" bType=\"Timestamp\" fc=\"ST\"/>\n  </DOType>\n"
        "  <DOType id=\"IED{0}/SAV\" cdc=\"SAV\">\n"
        "   <DA name=\"instMag\" bType=\"Struct\" type=\"IED{0}/Mag\" fc=\"MX\"/>\n"
        "   <DA name=\"q\" bType=\"Quality\" fc=\"MX\"/>\n"
        "   <DA name=\"sVC\" bType=\"Struct\" type=\"IED{0}/SVC\" fc=\"CF\"/>\n  </DOType>\n"
        "  <DAType id=\"IED{0}/Mag\"><BDA name=\"i\" bType=\"INT32\"/></DAType>\n"
        "  <DAType id=\"IED{0}/SVC\"><BDA name=\"scaleFactor\" bType=\"FLOAT32\"/>"
        "<BDA name=\"offset\" bType=\"FLOAT32\"/></DAType>\n",
        ied);
}

}  // namespace

std::string largeStation(std::size_t octets) {
    std::size_t const ieds = octets / kIedOctets + 1;
    Text text;
    text.reserve(octets + 2 * kIedOctets);
    put(text,
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<SCL "
        "xmlns=\"http://www.iec.ch/61850/2003/SCL\" version=\"2007\" revision=\"B\">\n"
        " <Header id=\"large\"/>\n <Communication>\n  <SubNetwork name=\"bus\">\n");
    for (std::size_t ied = 0; ied < ieds; ++ied) {
        putAddress(text, ied);
    }
    put(text, "  </SubNetwork>\n </Communication>\n");
    for (std::size_t ied = 0; ied < ieds; ++ied) {
        put(text,
            " <IED name=\"IED{}\" desc=\"Bay {}\">\n  <AccessPoint name=\"AP1\">\n   <Server>\n"
            "    <LDevice inst=\"LD0\">\n",
            ied, ied);
        putNodes(text, ied, ieds);
        put(text, "    </LDevice>\n   </Server>\n  </AccessPoint>\n </IED>\n");
    }
    put(text, " <DataTypeTemplates>\n");
    for (std::size_t ied = 0; ied < ieds; ++ied) {
        putTypes(text, ied);
    }
    put(text, " </DataTypeTemplates>\n</SCL>\n");
    return fmt::to_string(text);
}

}  // namespace TalBench
