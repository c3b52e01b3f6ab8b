#include "Ashview/Shell/AboutPage.h"

namespace ashview {

namespace {

std::string doi(const std::string& name) { return "https://doi.org/" + name; }

const AboutPage::Source& colorAndAttention() {
    static const AboutPage::Source source{"Turatto & Galfano (2001)",
                                          "A color that had nothing to do with the task still drew attention.",
                                          doi("10.3758/BF03194469")};
    return source;
}

std::vector<AboutPage::Paragraph> lines(std::vector<std::string> texts) {
    std::vector<AboutPage::Paragraph> paragraphs;
    for (std::string& text : texts) paragraphs.push_back({std::move(text), {}});
    return paragraphs;
}

}  // namespace

std::string AboutPage::versionText(const std::optional<std::string>& shortVersion,
                                   const std::optional<std::string>& build) {
    if (!shortVersion) return "Development build";
    return "Version " + *shortVersion + " (" + build.value_or("1") + ")";
}

const std::vector<AboutPage::Source>& AboutPage::sources() {
    static const std::vector<Source> studies{
        {"Dekker & Baumgartner (2024)",
         "A field experiment with 84 people: with their phones in grayscale, they used them about 20 minutes less a "
         "day.",
         doi("10.1177/20501579231212062")},
        {"Holte & Ferraro (2020)", "Grayscale cut the time on the phone by about 38 minutes a day.",
         doi("10.1080/03623319.2020.1737461")},
        {"Zimmermann & Sobolev (2023)",
         "A randomized field experiment that compared ways to cut screen time, grayscale among them.",
         doi("10.1089/cyber.2022.0027")},
        {"Holte, Giesen & Ferraro (2021)",
         "With 133 students: grayscale reduced problematic phone use, anxiety and screen time.",
         doi("10.1007/s12144-021-02020-y")},
        {"Wickord & Quaiser-Pohl (2023)",
         "A day or more of grayscale reduced the time spent on the phone; 92 of the 240 who began completed the "
         "study.",
         doi("10.1016/j.chbr.2023.100294")},
    };
    return studies;
}

AboutPage AboutPage::make(const std::optional<std::string>& shortVersion, const std::optional<std::string>& build) {
    const std::vector<Source>& studies = sources();
    AboutPage page;
    page.version = versionText(shortVersion, build);
    page.opening =
        "Drabwise turns the websites and apps you choose black and white once you reach the limits you set. It's a "
        "nudge, not a lock: everything still works, it just gets less tempting.";
    page.sections = {
        {"How it works",
         lines({"1. List the sites and apps that pull you in.",
                "2. Set limits: minutes, opens, active hours, days off.",
                "3. Use your Mac as usual. When you reach a limit, that site or app turns gray. The last 7 days show "
                "how it's going."}),
         {}},
        {"What's different",
         lines({"• No browser extension needed.", "• Only the window showing a listed site or app goes gray.",
                "• Works on any number of displays, in any arrangement.",
                "• Private: what you browse and use never leaves your Mac."}),
         {}},
        {"Why color?",
         {{"Color pulls at your attention, even when it has nothing to do with what you're doing.",
           {colorAndAttention()}},
          // The two studies that give a daily figure: about 20 and about 38 minutes.
          {"In published studies, people who turned their phones gray used them about 20 to 40 minutes less a day.",
           {studies[0], studies[1]}}},
         {}},
        {"Privacy",
         lines({"Your sites, apps, limits, and stats stay on this Mac.",
                "Drabwise goes online only to check for updates."}),
         {}},
        {"Research",
         lines({"These studies tested grayscale on phones. Drabwise brings the same idea to your Mac. It isn't a "
                "medical treatment."}),
         studies},
    };
    return page;
}

}  // namespace ashview
