#include "tools/options/WindowOptions.hpp"

#include <CLI/CLI.hpp>
#include <string>

#include "tools/options/RepeatableOption.hpp"
#include "tools/options/UsageError.hpp"

namespace TalIec61850Tools {

namespace {

constexpr std::chrono::nanoseconds kUsualSpan = std::chrono::seconds(1);

TimeBound toTimeBound(std::string const& option, std::string const& text) {
    auto const bound = parseTimeBound(text);
    if (!bound) {
        refuseValue(option, text,
                    "a time such as 2024-03-20T10:00:00.28+01:00, 10:00:00.28, 1710928800.28, "
                    "+1.5s or -5s");
    }
    return *bound;
}

std::chrono::nanoseconds toLength(std::string const& option, std::string const& text) {
    auto const length = text.starts_with('+') ? std::nullopt : parseTimeBound("+" + text);
    if (!length) {
        refuseValue(option, text, "a length of time such as 500ms or 1.5s");
    }
    return length->time;
}

/// The first is that of the window.
void addArounds(CommandDefinition& command, WindowOptions& window,
                std::vector<TimeBound>& moreArounds) {
    command.parser
        ->add_option_function<std::vector<std::string>>(
            "--around",
            [&window, &moreArounds](std::vector<std::string> const& texts) {
                for (std::string const& text : texts) {
                    TimeBound const bound = toTimeBound("--around", text);
                    if (window.around) {
                        moreArounds.push_back(bound);
                    } else {
                        window.around = bound;
                    }
                }
            },
            "Middle of the window, in place of its ends; several make several records")
        ->allow_extra_args(false)
        ->option_text("TIME")
        ->group(kWindowGroup);
}

}  // namespace

void addTimeOption(CommandDefinition& command, std::string const& name,
                   std::optional<TimeBound>& bound, std::string const& help) {
    command.parser
        ->add_option_function<std::string>(
            name, [&bound, name](std::string const& text) { bound = toTimeBound(name, text); },
            help)
        ->option_text("TIME")
        ->group(kWindowGroup);
}

void addLengthOption(CommandDefinition& command, std::string const& name,
                     std::optional<std::chrono::nanoseconds>& length, std::string const& help,
                     std::string const& group) {
    command.parser
        ->add_option_function<std::string>(
            name, [&length, name](std::string const& text) { length = toLength(name, text); }, help)
        ->option_text("LENGTH")
        ->group(group);
}

void WindowOptions::check() const {
    if (from && to && to->isSurelyBefore(*from)) {
        throw UsageError("--to is before --from");
    }
    if (around && (from || to)) {
        throw UsageError("--around goes with --span, not with --from and --to");
    }
    if (span && !around) {
        throw UsageError("--span needs --around");
    }
}

TalIec61850Analysis::TimeWindow WindowOptions::resolve(CaptureSpan const& captures) const {
    TalIec61850Analysis::TimeWindow window;
    if (around) {
        CaptureTime const middle = around->resolve(captures);
        auto const half = span.value_or(kUsualSpan) / 2;
        window.from = middle - half;
        window.to = middle > CaptureTime::max() - half ? CaptureTime::max() : middle + half;
    }
    if (from) {
        window.from = from->resolve(captures);
    }
    if (to) {
        window.to = to->resolve(captures);
    }
    return window;
}

void addWindowOptions(CommandDefinition& command, WindowOptions& window,
                      std::vector<TimeBound>* moreArounds) {
    addTimeOption(command, "--from", window.from,
                  "Start of the window: date and time, time of day, seconds since 1970, +1.5s from "
                  "the start of the captures, -5s from their end");
    addTimeOption(command, "--to", window.to, "End of the window, itself inside");
    if (moreArounds != nullptr) {
        addArounds(command, window, *moreArounds);
    } else {
        addTimeOption(command, "--around", window.around,
                      "Middle of the window, in place of its ends");
    }
    addLengthOption(command, "--span", window.span,
                    "Length of the window around that, such as 500ms; 1s if not said");
}

}  // namespace TalIec61850Tools
