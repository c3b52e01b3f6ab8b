// The pieces the settings pages are built of, in the look of a grouped Mac
// form: section heads, white rounded groups of rows with hairlines between
// them, footers, labelled rows, segmented pickers, radio groups, menus and
// steppers. Their look comes from the theme's style sheet, by object name
// and property ("group", "segment", "role"), so that no widget parses a
// style of its own. Each control is named (objectName) after its label, so that
// focus can be found again after a page is rebuilt. Main thread only.
#pragma once

#include <QBoxLayout>
#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QSpinBox>
#include <QWidget>

#include <functional>
#include <string>
#include <vector>

namespace ashview::Form {

enum class TextStyle { body, secondary, head, title, largeTitle, caption, lead };

QString qt(const std::string& text);
/// A one-point line between rows.
QWidget* hairline(QWidget* parent);
QLabel* label(const std::string& text, TextStyle style = TextStyle::body, QWidget* parent = nullptr);

/// A white rounded group of rows.
class Group final : public QFrame {
public:
    explicit Group(QWidget* parent = nullptr);
    /// A row of its own widget, full width.
    void addRow(QWidget* content);
    /// A row with a label on the left and `trailing` on the right.
    void addRow(const std::string& label, QWidget* trailing);
    /// A row with a label and a secondary value on the right.
    void addValueRow(const std::string& label, const std::string& value);

private:
    QVBoxLayout* rows_;
};

/// A page of sections, top to bottom, with the usual margins.
class Page final : public QWidget {
public:
    explicit Page(QWidget* parent = nullptr);
    /// A head (may be empty), a new group, and a footer (may be empty)
    /// added after the group once it is filled: call `footer` afterwards.
    Group* section(const std::string& head);
    void footer(const std::string& text);
    void add(QWidget* widget);
    void addStretch();
    QVBoxLayout* layout() { return column_; }

private:
    QVBoxLayout* column_;
};

/// One choice of a picker: its words and whether it is the one shown.
struct Choice final {
    std::string title;
    bool selected = false;
};

/// Buttons side by side, one of them down; `choose` gets the index clicked.
QWidget* segmented(const std::string& name, const std::vector<Choice>& choices, std::function<void(int)> choose);
/// Radio buttons one under the other.
QWidget* radios(const std::string& name, const std::vector<Choice>& choices, std::function<void(int)> choose);
/// A pop-up menu.
QComboBox* menu(const std::string& name, const std::vector<Choice>& choices, std::function<void(int)> choose);
/// A stepper over [minimum, maximum] by 1 showing "{value}{suffix}";
/// `step` gets each value the user sets.
QSpinBox* stepper(const std::string& name, std::int64_t value, std::int64_t minimum, std::int64_t maximum,
                  const std::string& suffix, std::function<void(std::int64_t)> step);
/// A push button; `prominent` in the accent colour, `destructive` in red.
enum class ButtonRole { normal, prominent, destructive };
QWidget* button(const std::string& title, ButtonRole role, std::function<void()> press);

/// Runs `refresh` once from the event loop, however many changes ask for it
/// before then: `pending` is the owner's flag, set until the redraw runs.
void refreshLater(QObject* owner, bool& pending, std::function<void()> refresh);

}  // namespace ashview::Form
