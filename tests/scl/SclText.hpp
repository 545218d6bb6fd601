#pragma once

#include <string>
#include <string_view>

namespace TalTest {

/// What an SCL file consists of, each as XML.
struct SclText {
    /// Attributes of the element SCL.
    std::string attributes = "version='2007' revision='B'";
    std::string communication;
    std::string ieds;
    std::string templates;

    /// The whole file.
    [[nodiscard]] std::string text() const {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<SCL xmlns=\"http://www.iec.ch/61850/2003/SCL\" " +
               attributes + ">\n<Communication>\n" + communication + "</Communication>\n" + ieds +
               "<DataTypeTemplates>\n" + templates + "</DataTypeTemplates>\n</SCL>\n";
    }
};

/// An IED with one access point AP1, one server, and a device LD0 of these logical nodes.
inline std::string iedText(std::string_view name, std::string_view nodes) {
    return "<IED name='" + std::string(name) +
           "'>\n<AccessPoint name='AP1'><Server><LDevice inst='LD0'>\n" + std::string(nodes) +
           "</LDevice></Server></AccessPoint></IED>\n";
}

/// LLN0 with this inside.
inline std::string node0Text(std::string_view inside) {
    return "<LN0 lnClass='LLN0' inst='' lnType='LLN0'>\n" + std::string(inside) + "</LN0>\n";
}

/// A GOOSE control block gcb1, and its data set ds1 of these FCDAs.
inline std::string gooseText(std::string_view fcdas) {
    return "<DataSet name='ds1'>\n" + std::string(fcdas) +
           "</DataSet>\n<GSEControl name='gcb1' appID='id1' datSet='ds1' confRev='1'/>\n";
}

/// An SV control block msv1, and its data set ds1 of these FCDAs.
inline std::string svText(std::string_view fcdas) {
    return "<DataSet name='ds1'>\n" + std::string(fcdas) +
           "</DataSet>\n<SampledValueControl name='msv1' smvID='sv1' datSet='ds1' confRev='1' "
           "smpRate='80' nofASDU='1'/>\n";
}

/// Types of the logical nodes LLN0, PTRC, XCBR, MMXU, TCTR and MHAI, each named after its class.
std::string const& stationTypes();

/// The nodes PTRC1, Q0XCBR1, MMXU1, TCTR1 and MHAI1 of these types.
std::string const& stationNodes();

}  // namespace TalTest
