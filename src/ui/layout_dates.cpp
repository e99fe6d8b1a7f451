// Date groups and date ranges.
#include "ui/flow_layout.h"
#include "ui/key_button.h"
#include "ui/layout.h"
#include "ui/live_label.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QTimer>

#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

// The key of 今日, and the spreading when the keyboard leaves the era box for another control.
class DateKeys : public QObject {
  public:
    DateKeys(Screen& screen, const std::vector<QWidget*>& boxes, QPushButton* today, std::function<bool()> spread)
        : QObject(boxes.front()), screen_(screen), era_(boxes.front()), today_(today), spread_(std::move(spread)) {
        for (QWidget* box : boxes)
            box->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F2 &&
            !watched->property("composing").toBool()) {
            today_->click();
            return true;
        }
        if (event->type() == QEvent::FocusOut && watched == era_) {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            // After the event, when the input method has given what it composed.
            if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason)
                QTimer::singleShot(0, this, [this] { leave(); });
        }
        return false;
    }

  private:
    void leave() {
        if (screen_.operating())
            return;
        screen_.readForm();
        if (spread_())
            screen_.showForm();
    }

    Screen& screen_;
    QWidget* era_;
    QPushButton* today_;
    std::function<bool()> spread_;
};

} // namespace

Layout& Layout::dates(const DateNames& names, desk::DateGroup& value, desk::DateHelp help) {
    const QString what = rowName_;
    combo(names.era, value.era, 4).named(what + u"　元号"_s);
    QWidget* era = last_;
    era->setToolTip(u"令8.11.20、8.11.20、20261120 のように、日付をまとめて入れることもできます"_s);
    // A date is not torn apart.
    const auto part = [&](const QString& name, desk::Combo& box, const QString& unitName) {
        items_->keepNextTogether();
        combo(name, box, 2).numeric().named(what + u'　' + unitName).unit(unitName);
        return last_;
    };
    const std::vector<QWidget*> boxes{era, part(names.year, value.year, u"年"_s),
                                      part(names.month, value.month, u"月"_s), part(names.day, value.day, u"日"_s)};
    note(u"西暦"_s).shown(names.western, value.western, 6).named(what + u"　西暦"_s);

    // Nothing that Enter could reach on its way from box to box: it would put today over the date just typed.
    auto* today = new KeyButton(u"今日"_s, Qt::Key_F2);
    today->setObjectName(names.era + u"今日"_s);
    today->setAccessibleName(what + u"　今日"_s);
    today->setToolTip(u"今日の日付を入れます。日付の欄で F2 を押しても同じです"_s);
    today->setFocusPolicy(Qt::NoFocus);
    today->setAutoDefault(false);
    fixWidth(today, 3, 8); // four groups of a screen have one each
    QObject::connect(today, &QPushButton::clicked, &screen_,
                     [screen = &screen_, run = help.today] { screen->operate(run); });
    // In a line of their own: behind the boxes they would make each frame with a date wider. What the screen declares
    // next still stands behind the boxes.
    const auto behind = std::pair(items_, label_);
    row();
    place(today);
    items_->keepNextTogether();
    live(
        names.era + u"曜日"_s, [hint = help.hint] { return LiveText{hint()}; },
        {names.era, names.year, names.month, names.day}, 14);
    new DateKeys(screen_, boxes, today, help.spread);
    screen_.beforeOperations(help.spread);
    std::tie(items_, label_) = behind;
    rowName_ = what;
    last_ = era;
    return *this;
}

Layout& Layout::live(const QString& name, std::function<LiveText()> text, const std::vector<QString>& controls,
                     int width, int lines) {
    auto* label = new LiveLabel(screen_, name, std::move(text));
    fixWidth(label, width);
    label->setWordWrap(lines > 1);
    screen_.sized([label, lines] { label->setMinimumHeight(label->fontMetrics().lineSpacing() * lines); });
    place(label);
    last_ = label;
    followed_.emplace_back(label, controls);
    return *this;
}

Layout& Layout::range(const QString& fromName, desk::Text& from, const QString& toName, desk::Text& to,
                      const RangeEvents& events) {
    text(fromName, from, 10).onLeave(events.fromLeft);
    note(u"～"_s).text(toName, to, 10).onLeave(events.toLeft).named(u"検索終了日"_s);
    screen_.onEnter(last_, events.entered);
    return *this;
}

} // namespace ui
