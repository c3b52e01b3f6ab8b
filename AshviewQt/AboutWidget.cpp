#include "AshviewQt/AboutWidget.h"

#include "AshviewQt/Form.h"

namespace ashview {

namespace {

QString link(const AboutPage::Source& source) {
    return "<a href=\"" + Form::qt(source.url).toHtmlEscaped() + "\">" + Form::qt(source.id).toHtmlEscaped() + "</a>";
}

}  // namespace

AboutWidget::AboutWidget(const AboutPage& page, std::function<void(const std::string&)> openURL, QWidget* parent)
    : QScrollArea(parent) {
    setWindowTitle(AboutPage::windowTitle);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* content = new Form::Page;
    content->layout()->setContentsMargins(28, 24, 28, 28);

    // Plain texts become selectable; rich ones also carry links.
    auto selectable = [&](QLabel* label) {
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse);
        label->setOpenExternalLinks(false);
        QObject::connect(label, &QLabel::linkActivated, label,
                         [openURL](const QString& url) { openURL(url.toStdString()); });
        content->add(label);
        return label;
    };
    auto rich = [&](const QString& html, Form::TextStyle style) {
        QLabel* label = Form::label("", style);
        label->setTextFormat(Qt::RichText);
        label->setText(html);
        return selectable(label);
    };

    selectable(Form::label(AboutPage::name, Form::TextStyle::largeTitle));
    selectable(Form::label(AboutPage::tagline, Form::TextStyle::title));
    selectable(Form::label(page.version, Form::TextStyle::caption));
    content->layout()->addSpacing(10);
    selectable(Form::label(page.opening));
    for (const AboutPage::Section& section : page.sections) {
        content->layout()->addSpacing(12);
        selectable(Form::label(section.head, Form::TextStyle::head));
        for (const AboutPage::Paragraph& paragraph : section.paragraphs) {
            QString html = Form::qt(paragraph.text).toHtmlEscaped();
            QStringList cited;
            for (const AboutPage::Source& source : paragraph.cites) cited << link(source);
            if (!cited.isEmpty()) html += " " + cited.join(", ");
            rich(html, Form::TextStyle::body);
        }
        for (const AboutPage::Source& source : section.sources) {
            content->layout()->addSpacing(4);
            rich(link(source), Form::TextStyle::body);
            selectable(Form::label(source.note, Form::TextStyle::caption));
        }
    }
    content->addStretch();
    setWidget(content);
    resize(540, 640);
}

}  // namespace ashview
