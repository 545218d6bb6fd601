#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/file/CaptureSurvey.hpp>
#include <algorithm>

namespace TalIec61850Analysis {

CaptureSurvey surveyCapture(std::string const& path) {
    CaptureSurvey survey;
    try {
        CaptureFile file(path);
        while (auto const* const view = file.next()) {
            if (!survey.start) {
                survey.start = view->record.time;
            }
            survey.latest = std::max(survey.latest, view->record.time);
        }
        survey.damage = file.damage();
        if (auto const* const cut = file.cutRecord(); cut != nullptr && !survey.start) {
            survey.start = cut->record.time;
        }
    } catch (std::system_error const& error) {
        survey.error = error.code();
    }
    return survey;
}

}  // namespace TalIec61850Analysis
