#include "AshviewQt/SettingsSidebar.h"

#include "Ashview/Shell/SettingsText.h"
#include "AshviewQt/AppGlyph.h"
#include "AshviewQt/Form.h"
#include "AshviewQt/Theme.h"

#include <QPainter>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace ashview {

namespace {

using Page = SettingsModel::Page;

QString pageText(const Page& page) {
    switch (page.kind) {
        case Page::Kind::site: return QString::fromStdString(page.site.text());
        case Page::Kind::stats: return "stats";
        case Page::Kind::newSites: return "newSites";
        case Page::Kind::daysOff: return "daysOff";
    }
    return {};
}

/// Draws a row as a Mac sidebar does: a rounded selection, the icon, the
/// name and, for a site, its status line below in a smaller face.
class RowDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const override {
        if (index.data(SettingsSidebar::pageRole).toString().isEmpty()) return QSize(200, 30);
        return QSize(200, index.data(SettingsSidebar::statusRole).toString().isEmpty() ? 30 : 44);
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        QRectF area = QRectF(option.rect).adjusted(8, 1, -8, -1);
        const bool selected = option.state & QStyle::State_Selected;
        const QString name = index.data(Qt::DisplayRole).toString();
        if (index.data(SettingsSidebar::pageRole).toString().isEmpty()) {
            painter->setFont(Theme::font(11, QFont::DemiBold));
            painter->setPen(Theme::secondaryText());
            painter->drawText(area.adjusted(6, 0, 0, -4), Qt::AlignLeft | Qt::AlignBottom, name);
            painter->restore();
            return;
        }
        if (selected) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(Theme::accent());
            painter->drawRoundedRect(area, 6, 6);
        }
        QPixmap icon = index.data(Qt::DecorationRole).value<QPixmap>();
        const qreal iconSize = 20;
        painter->drawPixmap(QRectF(area.left() + 6, area.center().y() - iconSize / 2, iconSize, iconSize), icon,
                            QRectF(icon.rect()));
        QRectF words = area.adjusted(34, 4, -6, -4);
        const QString status = index.data(SettingsSidebar::statusRole).toString();
        painter->setPen(selected ? QColor(Qt::white) : QColor(0x1d, 0x1d, 0x1f));
        painter->setFont(Theme::font(13));
        QFontMetricsF metrics(painter->font());
        if (status.isEmpty()) {
            painter->drawText(words, Qt::AlignLeft | Qt::AlignVCenter,
                              metrics.elidedText(name, Qt::ElideRight, words.width()));
        } else {
            painter->drawText(words, Qt::AlignLeft | Qt::AlignTop,
                              metrics.elidedText(name, Qt::ElideRight, words.width()));
            painter->setFont(Theme::font(11));
            painter->setPen(selected ? QColor(0xe8, 0xf1, 0xff) : Theme::secondaryText());
            painter->drawText(words, Qt::AlignLeft | Qt::AlignBottom,
                              QFontMetricsF(painter->font()).elidedText(status, Qt::ElideRight, words.width()));
        }
        painter->restore();
    }
};

QListWidgetItem* pageItem(const std::string& name, const Page& page, const QPixmap& icon,
                          const std::string& status = {}) {
    auto* item = new QListWidgetItem(QString::fromStdString(name));
    item->setData(SettingsSidebar::pageRole, pageText(page));
    item->setData(SettingsSidebar::statusRole, QString::fromStdString(status));
    item->setData(Qt::DecorationRole, icon);
    return item;
}

QPushButton* addButton(QWidget* parent) {
    auto* button = new QPushButton(parent);
    button->setVisible(false);
    return button;
}

}  // namespace

SettingsSidebar::SettingsSidebar(SettingsModel& model, SettingsPages::Typing typing, QWidget* parent)
    : QWidget(parent),
      model_(model),
      typing_(std::move(typing)),
      list_(new QListWidget(this)),
      addFrontSite_(addButton(this)),
      addApp_(addButton(this)),
      chooseApp_(new QPushButton(Form::qt(SettingsText::chooseAppTitle), this)),
      newHost_(new QLineEdit(this)),
      message_(Form::label("", Form::TextStyle::caption, this)) {
    setAutoFillBackground(true);
    QPalette shade = palette();
    shade.setColor(QPalette::Window, QColor(0xe3, 0xe3, 0xe6));
    setPalette(shade);

    list_->setObjectName("sidebar");
    list_->setItemDelegate(new RowDelegate(list_));
    list_->setFrameShape(QFrame::NoFrame);
    list_->setStyleSheet("QListWidget { background: transparent; outline: none; }");
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setUniformItemSizes(false);
    newHost_->setObjectName("newHost");
    newHost_->setPlaceholderText(Form::qt(SettingsText::hostPlaceholder));
    newHost_->setClearButtonEnabled(true);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 10, 0, 12);
    column->setSpacing(6);
    column->addWidget(list_, 1);
    auto* add = new QVBoxLayout;
    add->setContentsMargins(12, 0, 12, 0);
    add->setSpacing(6);
    for (QWidget* widget : {static_cast<QWidget*>(addFrontSite_), static_cast<QWidget*>(addApp_),
                            static_cast<QWidget*>(chooseApp_), static_cast<QWidget*>(newHost_),
                            static_cast<QWidget*>(message_)})
        add->addWidget(widget);
    column->addLayout(add);

    connect(list_, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        if (!item) return;
        const QString text = item->data(pageRole).toString();
        if (text == "stats") return model_.setPage(Page::stats());
        if (text == "newSites") return model_.setPage(Page::newSites());
        if (text == "daysOff") return model_.setPage(Page::daysOff());
        for (const SiteRule& rule : model_.rules().sites)
            if (QString::fromStdString(rule.id.text()) == text) return model_.setPage(Page::forSite(rule.id));
    });
    connect(addFrontSite_, &QPushButton::clicked, this, [this] { model_.addFrontSite(); });
    connect(addApp_, &QPushButton::clicked, this, [this] {
        if (std::optional<SettingsModel::AppToAdd> app = model_.appToAdd()) model_.addApp(app->bundleID, app->name);
    });
    connect(chooseApp_, &QPushButton::clicked, this, [this] { model_.chooseApp(); });
    connect(newHost_, &QLineEdit::textEdited, this, [this](const QString& text) {
        typing_([this, text] { model_.setNewHost(text.toStdString()); });
    });
    connect(newHost_, &QLineEdit::returnPressed, this, [this] { model_.addTypedSite(); });
    update();
}

void SettingsSidebar::update() {
    fillList();
    fillAddArea();
}

void SettingsSidebar::fillList() {
    QSignalBlocker quiet(list_);
    list_->clear();
    list_->addItem(pageItem(SettingsText::statsRow, Page::stats(), AppGlyph::chart()));
    auto* section = new QListWidgetItem(Form::qt(SettingsText::sitesSection));
    section->setFlags(Qt::NoItemFlags);
    list_->addItem(section);
    for (const SiteRule& rule : model_.rules().sites) {
        QPixmap icon = rule.isApp() ? AppGlyph::app(rule.displayName(), rule.host, model_.appIcons().icon(*rule.bundleID()) != nullptr)
                                    : AppGlyph::site(rule.displayName());
        list_->addItem(pageItem(rule.displayName(), Page::forSite(rule.id), icon, model_.statusText(rule)));
    }
    list_->addItem(pageItem(SettingsText::newSitesRow, Page::newSites(), AppGlyph::defaults()));
    list_->addItem(pageItem(SettingsText::daysOffRow, Page::daysOff(), AppGlyph::calendar()));
    const QString current = model_.page() ? pageText(*model_.page()) : QString();
    for (int row = 0; row < list_->count(); ++row) {
        if (!current.isEmpty() && list_->item(row)->data(pageRole).toString() == current) list_->setCurrentRow(row);
    }
}

void SettingsSidebar::fillAddArea() {
    std::optional<std::string> host = model_.frontSiteToAdd();
    addFrontSite_->setVisible(host.has_value());
    if (host) {
        addFrontSite_->setText(Form::qt(SettingsText::addFrontSiteTitle(*host)));
        addFrontSite_->setToolTip(Form::qt(SettingsText::addFrontSiteToolTip(*host)));
    }
    std::optional<SettingsModel::AppToAdd> app = model_.appToAdd();
    addApp_->setVisible(app.has_value());
    if (app) {
        addApp_->setText(Form::qt(SettingsText::addAppTitle(app->name)));
        addApp_->setToolTip(Form::qt(SettingsText::addAppToolTip(app->name)));
    }
    const QString typed = Form::qt(model_.newHost());
    if (newHost_->text() != typed) newHost_->setText(typed);
    message_->setText(Form::qt(model_.addMessage().value_or("")));
    message_->setVisible(model_.addMessage().has_value());
}

}  // namespace ashview
