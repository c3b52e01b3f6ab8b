// The fixed labels of the settings window's forms that no other model gives:
// the site editor's rows, the heads and labels of the rule form, and the
// day-off form's labels. A view shows these words and no others of its own.
#pragma once

namespace ashview::SettingsText {

// The site editor's rows.
inline constexpr const char* rightNowLabel = "Right now";
inline constexpr const char* ruleLabel = "Rule";

// The rule form.
inline constexpr const char* whenSection = "When does this apply?";
inline constexpr const char* timeOfDayLabel = "Time of day";
inline constexpr const char* fromLabel = "From";
inline constexpr const char* toLabel = "To";
inline constexpr const char* daysLabel = "Days";
inline constexpr const char* turnSection = "When does it turn gray?";
inline constexpr const char* turnGrayLabel = "Turn gray";
inline constexpr const char* countedLabel = "Counted";
inline constexpr const char* staySection = "How long does it stay gray?";
inline constexpr const char* stayGrayLabel = "Stay gray";

// The day-off form.
inline constexpr const char* dayOffNameLabel = "Name";
inline constexpr const char* dayOffDateLabel = "Date";
inline constexpr const char* dayOffRepeatsLabel = "Repeats";
inline constexpr const char* dayOffRemoveTitle = "Remove";

}  // namespace ashview::SettingsText
