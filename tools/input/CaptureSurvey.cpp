#include "tools/input/CaptureSurvey.hpp"

#include <system_error>

#include "tools/input/CaptureRecords.hpp"

namespace TalIec61850Tools {

CaptureSurvey surveyCapture(std::string const& path) {
    CaptureSurvey survey;
    try {
        CaptureRecords records(path);
        while (auto const record = records.next()) {
            if (!survey.begin) {
                survey.begin = record->time;
            }
        }
        survey.damage = records.damage();
        if (!survey.begin && records.cutRecord()) {
            survey.begin = records.cutRecord()->time;
        }
    } catch (std::system_error const& error) {
        survey.damage = error.code().message();
    }
    return survey;
}

}  // namespace TalIec61850Tools
