// The statistics page: why the history is not kept (when it isn't), the lead
// sentence and the others, one row per site with its figures in right-aligned
// columns of even-width digits, a chart of the last two weeks, and the footer
// with the way to clear behind a confirmation.
#include "Ashview/Shell/StatsPage.h"
#include "AshviewQt/Form.h"
#include "AshviewQt/SettingsPages.h"
#include "AshviewQt/Theme.h"

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QChartView>
#include <QMessageBox>
#include <QPushButton>
#include <QValueAxis>

#include <algorithm>
#include <cmath>

namespace ashview::SettingsPages {

namespace {

using Form::TextStyle;

/// Widths of the figure columns, in points.
constexpr int durationWidth = 88;
constexpr int visitsWidth = 88;
constexpr int changeWidth = 124;

QLabel* figure(const std::string& text, int width) {
    QLabel* shown = Form::label(text);
    shown->setWordWrap(false);
    shown->setFont(Theme::evenDigitFont());
    shown->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    shown->setFixedWidth(width);
    return shown;
}

QWidget* row(const StatsPage::Row& shown) {
    auto* line = new QWidget;
    auto* columns = new QHBoxLayout(line);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(0);
    columns->addWidget(Form::label(shown.name), 1);
    columns->addWidget(figure(shown.duration, durationWidth));
    columns->addWidget(figure(shown.visits, visitsWidth));
    if (shown.change) columns->addWidget(figure(*shown.change, changeWidth));
    return line;
}

QWidget* chart(const StatsPage& page) {
    auto* thisWeek = new QBarSet(StatsPage::chartThisWeek);
    auto* weekBefore = new QBarSet(StatsPage::chartWeekBefore);
    thisWeek->setColor(Theme::accent());
    thisWeek->setBorderColor(Theme::accent());
    weekBefore->setColor(QColor(0xc7, 0xc7, 0xcc));
    weekBefore->setBorderColor(QColor(0xc7, 0xc7, 0xcc));
    QStringList days;
    double highest = 0;
    for (const StatsPage::ChartDay& day : page.chart) {
        days << Form::qt(day.label);
        *thisWeek << std::round(day.minutes);
        *weekBefore << std::round(day.previousMinutes);
        highest = std::max({highest, day.minutes, day.previousMinutes});
    }
    auto* series = new QBarSeries;
    series->append(weekBefore);
    series->append(thisWeek);
    series->setBarWidth(0.7);

    auto* drawing = new QChart;
    drawing->addSeries(series);
    drawing->setAnimationOptions(QChart::NoAnimation);
    drawing->setBackgroundVisible(false);
    drawing->setMargins(QMargins(0, 0, 0, 0));
    auto* across = new QBarCategoryAxis;
    across->append(days);
    across->setGridLineVisible(false);
    across->setLabelsFont(Theme::font(11));
    // Round steps of minutes, four or five of them up the side.
    double step = 5;
    for (double round : {5.0, 10.0, 15.0, 20.0, 30.0, 60.0, 120.0, 240.0})
        if (highest / round <= 4) {
            step = round;
            break;
        }
    const double top = std::max(step, std::ceil(highest / step) * step);
    auto* up = new QValueAxis;
    up->setRange(0, top);
    up->setLabelFormat("%d");
    up->setTickCount(static_cast<int>(top / step) + 1);
    up->setLabelsFont(Theme::evenDigitFont(10));
    up->setGridLineColor(QColor(0xe5, 0xe5, 0xe7));
    drawing->addAxis(across, Qt::AlignBottom);
    drawing->addAxis(up, Qt::AlignLeft);
    series->attachAxis(across);
    series->attachAxis(up);
    drawing->legend()->setAlignment(Qt::AlignBottom);
    drawing->legend()->setFont(Theme::font(11));

    auto* view = new QChartView(drawing);
    view->setObjectName("chart");
    view->setRenderHint(QPainter::Antialiasing);
    view->setMinimumHeight(210);
    view->setStyleSheet("background: transparent;");
    return view;
}

}  // namespace

QWidget* stats(SettingsModel& model) {
    StatsPage content = StatsPage::make(model);
    auto* page = new Form::Page;
    if (content.problemText) page->add(Form::label(*content.problemText, TextStyle::secondary));
    QLabel* lead = Form::label(content.lead, TextStyle::lead);
    lead->setObjectName("lead");
    page->add(lead);
    for (const std::string& line : content.otherLines) page->add(Form::label(line, TextStyle::secondary));

    if (!content.rows.empty()) {
        Form::Group* rows = page->section("");
        for (const StatsPage::Row& shown : content.rows) rows->addRow(row(shown));
    }
    if (!content.chart.empty()) {
        page->layout()->addSpacing(14);
        page->add(Form::label(StatsPage::chartTitle, TextStyle::head));
        page->add(chart(content));
    }

    page->layout()->addSpacing(14);
    auto* foot = new QWidget;
    auto* line = new QHBoxLayout(foot);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(Form::label(StatsPage::footer, TextStyle::caption), 1);
    QWidget* clear = Form::button(StatsPage::clearTitle, Form::ButtonRole::normal,
                                  [&model] { model.setShowsClearConfirmation(true); });
    clear->setEnabled(content.canClear);
    line->addWidget(clear);
    page->add(foot);
    page->addStretch();
    return page;
}

QMessageBox* confirmClear(SettingsModel& model, QWidget* parent) {
    auto* box = new QMessageBox(QMessageBox::Warning, StatsPage::confirmationTitle, StatsPage::confirmationTitle,
                                QMessageBox::NoButton, parent);
    box->setObjectName("confirmation");
    box->setInformativeText(StatsPage::confirmationMessage);
    QPushButton* clear = box->addButton(StatsPage::confirmTitle, QMessageBox::DestructiveRole);
    QPushButton* cancel = box->addButton(StatsPage::cancelTitle, QMessageBox::RejectRole);
    box->setDefaultButton(cancel);
    box->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(box, &QMessageBox::buttonClicked, box, [&model, clear](QAbstractButton* pressed) {
        if (pressed == clear)
            model.clearHistory();
        else
            model.setShowsClearConfirmation(false);
    });
    box->open();
    return box;
}


}  // namespace ashview::SettingsPages
