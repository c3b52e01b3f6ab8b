#include "AshviewQt/SettingsSidebar.h"

#include "Ashview/Shell/SettingsContent.h"
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

SettingsSidebar::SettingsSidebar(SettingsModel& model, SettingsPages::Typing typing, IconImage iconImage,
                                 QWidget* parent)
    : QWidget(parent),
      model_(model),
      typing_(std::move(typing)),
      iconImage_(std::move(iconImage)),
      list_(new QListWidget(this)),
      addFrontSite_(addButton(this)),
      addApp_(addButton(this)),
      chooseApp_(new QPushButton(SettingsContent::AddArea::chooseAppTitle, this)),
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
    newHost_->setPlaceholderText(SettingsContent::AddArea::placeholder);
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
    const QString current = model_.page() ? pageText(*model_.page()) : QString();
    for (const SettingsContent::SidebarRow& row : SettingsContent::sidebar(model_)) {
        if (row.kind == SettingsContent::SidebarRow::Kind::section || !row.page) {
            auto* section = new QListWidgetItem(Form::qt(row.title));
            section->setFlags(Qt::NoItemFlags);
            list_->addItem(section);
            continue;
        }
        list_->addItem(pageItem(row.title, *row.page, icon(row), row.subtitle));
        if (pageText(*row.page) == current) list_->setCurrentRow(list_->count() - 1);
    }
}

QPixmap SettingsSidebar::icon(const SettingsContent::SidebarRow& row) {
    switch (row.page->kind) {
        case Page::Kind::stats: return AppGlyph::chart();
        case Page::Kind::newSites: return AppGlyph::defaults();
        case Page::Kind::daysOff: return AppGlyph::calendar();
        case Page::Kind::site: break;
    }
    if (!row.appBundleID) return AppGlyph::site(row.title);
    std::shared_ptr<const AppIcon> known = model_.appIcons().icon(*row.appBundleID);
    if (known && iconImage_) {
        QImage picture = iconImage_(*known);
        if (!picture.isNull()) return QPixmap::fromImage(std::move(picture));
    }
    return AppGlyph::app(row.title, *row.appBundleID, known != nullptr);
}

void SettingsSidebar::fillAddArea() {
    SettingsContent::AddArea area = SettingsContent::addArea(model_);
    for (auto [button, offered] : {std::pair{addFrontSite_, &area.frontSite}, std::pair{addApp_, &area.app}}) {
        button->setVisible(offered->has_value());
        if (!*offered) continue;
        button->setText(Form::qt((*offered)->title));
        button->setToolTip(Form::qt((*offered)->toolTip));
    }
    const QString typed = Form::qt(model_.newHost());
    if (newHost_->text() != typed) newHost_->setText(typed);
    message_->setText(Form::qt(model_.addMessage().value_or("")));
    message_->setVisible(model_.addMessage().has_value());
}

}  // namespace ashview
