#include <TalIec61850Analysis/file/CaptureRecords.hpp>
#include <TalIec61850Analysis/file/CaptureSurvey.hpp>

namespace TalIec61850Analysis {

CaptureSurvey surveyCapture(std::string const& path) {
    CaptureSurvey survey;
    try {
        CaptureRecords records(path);
        while (auto const record = records.next()) {
            if (!survey.start) {
                survey.start = record->time;
            }
        }
        survey.damage = records.damage();
        if (!survey.start && records.cutRecord()) {
            survey.start = records.cutRecord()->time;
        }
    } catch (std::system_error const& error) {
        survey.error = error.code();
    }
    return survey;
}

}  // namespace TalIec61850Analysis
