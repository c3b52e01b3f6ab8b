#include "Ashview/Shell/SettingsContent.h"

namespace ashview::SettingsContent {

std::vector<SidebarRow> sidebar(const SettingsModel& model) {
    using Page = SettingsModel::Page;
    std::vector<SidebarRow> rows;
    rows.push_back(SidebarRow{SidebarRow::Kind::row, "Last 7 days", {}, Page::stats(), std::nullopt});
    rows.push_back(SidebarRow{SidebarRow::Kind::section, "Your sites and apps", {}, std::nullopt, std::nullopt});
    for (const SiteRule& rule : model.rules().sites) {
        rows.push_back(SidebarRow{SidebarRow::Kind::row, model.rules().displayName(rule.host), model.statusText(rule),
                                  Page::forSite(rule.id), rule.isApp() ? rule.bundleID() : std::nullopt});
    }
    rows.push_back(SidebarRow{SidebarRow::Kind::row, "Defaults for new sites", {}, Page::newSites(), std::nullopt});
    rows.push_back(SidebarRow{SidebarRow::Kind::row, "Days off", {}, Page::daysOff(), std::nullopt});
    return rows;
}

AddArea addArea(const SettingsModel& model) {
    AddArea area;
    if (std::optional<std::string> host = model.frontSiteToAdd())
        area.frontSite = AddButton{"Add " + *host, "Add " + *host + " from your browser to your list"};
    if (std::optional<SettingsModel::AppToAdd> app = model.appToAdd())
        area.app = AddButton{"Add " + app->name, "Add " + app->name + ", the app you used last, to your list"};
    return area;
}

std::optional<std::string> problemText(const SettingsModel& model) {
    if (!model.problem()) return std::nullopt;
    if (*model.problem() == GrayController::RulesProblem::unreadable)
        return "Your rules file couldn't be read, so it was left exactly as it is.";
    return "Your rules file was saved by a newer version of this app, so it can't be changed here.";
}

std::optional<SiteRule> openSite(const SettingsModel& model) {
    const auto& page = model.page();
    if (!page || page->kind != SettingsModel::Page::Kind::site) return std::nullopt;
    for (const SiteRule& rule : model.rules().sites)
        if (rule.id == page->site) return rule;
    return std::nullopt;
}

Detail detail(const SettingsModel& model) {
    if (model.problem()) return Detail::problem;
    const auto& page = model.page();
    if (!page) return Detail::emptyList;
    switch (page->kind) {
        case SettingsModel::Page::Kind::site: return openSite(model) ? Detail::site : Detail::emptyList;
        case SettingsModel::Page::Kind::stats: return Detail::stats;
        case SettingsModel::Page::Kind::newSites: return Detail::newSites;
        case SettingsModel::Page::Kind::daysOff: return Detail::daysOff;
    }
    return Detail::emptyList;
}

EmptyList emptyList(const SettingsModel& model) {
    EmptyList screen;
    screen.defaults = "New sites start with: " + model.rules().newSiteDefaults.sentence(model.calendar());
    if (std::optional<std::string> host = model.frontSiteToAdd())
        screen.addButton = "Add " + *host + " from your browser";
    else
        screen.hint = "Open the site in your browser, or type it in the box on the left.";
    return screen;
}

RuleEditor newSitesEditor(SettingsModel& model) {
    SettingsModel* owner = &model;
    return RuleEditor(
        model.rules().newSiteDefaults, model.showsCustomDays(), false, model.calendar(),
        [owner](const SiteSettings& settings) {
            RuleSet edited = owner->rules();
            edited.newSiteDefaults = settings;
            owner->save(edited);
        },
        [owner](bool shows) { owner->setShowsCustomDays(shows); });
}

}  // namespace ashview::SettingsContent
