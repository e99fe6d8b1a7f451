// What a screen does about the record that it shows: drafts of what was typed, the bar, the accent of its buttons.
#include "ui/screen.h"

#include "store/database.h"
#include "ui/notice_bar.h"
#include "ui/workplace.h"
#include "values/numbers.h"

#include <QApplication>
#include <QPushButton>
#include <QScreen>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

// Whether two texts of one box stand for the same.
bool same(const QString& one, const QString& other, bool numeric) {
    if (one == other)
        return true;
    const auto number = [](const QString& text) { return text.isEmpty() ? 0 : values::readWhole(text); };
    return numeric && number(one) && number(one) == number(other);
}

// The one quiet accent of a screen.
void wearAccent(QPushButton* button, bool worn) {
    if (!button)
        return;
    QPalette palette = QApplication::palette(button);
    if (worn)
        palette.setColor(QPalette::Button, QColor(214, 228, 240));
    button->setPalette(palette);
}

} // namespace

void Screen::onIdleBar(std::function<QString()> text, std::function<void()> pressed) {
    idleText_ = std::move(text);
    idlePressed_ = std::move(pressed);
}

// The boxes in which something else stands than what filling them showed. Those that name the record do not count.
QStringList Screen::typedBoxes() const {
    QStringList names;
    if (!subject_.record)
        return names;
    for (const Binding& binding : bindings_) {
        const QString name = binding.widget->objectName();
        if (binding.typed && !binding.namesRecord && baseline_.contains(name) &&
            !same(binding.typed(), baseline_.value(name), binding.numeric))
            names << name;
    }
    return names;
}

// Whether the boxes that name the record name another one than it was filled from: a screen that looks up by them then
// holds input for a new record.
bool Screen::namesOther() const {
    return subject_.lookUp && std::ranges::any_of(bindings_, [this](const Binding& binding) {
               return binding.namesRecord && binding.typed &&
                      !same(binding.typed(), baseline_.value(binding.widget->objectName()), binding.numeric);
           });
}

Draft Screen::draftOf(const QStringList& typed) const {
    const desk::Record& record = subject_.record();
    Draft draft{objectName(), windowTitle(), record.key(), record.label(), record.isNew(), kept_, {}, {}, typed};
    if (!record.isNew() && namesOther()) {
        const desk::AskedRecord other = desk::Record::newRecord({});
        draft.key = other.key;
        draft.label = other.label;
        draft.ofNew = true;
    }
    draft.context.endHandOver();
    draft.context.allForgot();
    if (const auto& lead = subject_.name ? subject_.name : subject_.publish)
        lead(draft.context);
    for (const Binding& binding : bindings_) {
        if (binding.typed)
            (binding.namesRecord ? draft.recordBoxes : draft.boxes)[binding.widget->objectName()] = binding.typed();
    }
    return draft;
}

std::optional<Draft> Screen::currentDraft() const {
    const QStringList typed = typedBoxes();
    if (typed.isEmpty())
        return {};
    return draftOf(typed);
}

void Screen::takeBaseline() {
    baseline_.clear();
    for (Binding& binding : bindings_) {
        binding.restored = false;
        if (binding.typed)
            baseline_[binding.widget->objectName()] = binding.typed();
    }
}

// After an operation: what was typed for a record that is shown no more becomes a draft; a save or deletion ends it.
void Screen::settle(const std::optional<Draft>& before) {
    if (!subject_.record)
        return;
    const desk::Record& record = subject_.record();
    const bool ended = record.ending() > ending_;
    const bool filled = record.showing() > showing_;
    if (ended) {
        workplace_.drafts.end(objectName(), record.key());
        if (before)
            workplace_.drafts.endSaved(objectName(), before->boxes);
    } else if (filled && before) {
        Draft draft = *before;
        for (const Binding& binding : bindings_) {
            if (binding.control && binding.control->question)
                draft.typed.removeAll(binding.widget->objectName());
        }
        if (!draft.typed.isEmpty())
            workplace_.drafts.keep(std::move(draft));
    }
    if (ended || filled) {
        takeBaseline();
        standing_ = desk::Standing::asRead;
        asked_.reset();
        strayKey_.clear();
    }
    for (const Binding& binding : bindings_) {
        if (!binding.control || !std::exchange(binding.control->question, false))
            continue;
        // A number or name typed to look something up is not unsaved input, whether it was found or not.
        if (binding.typed)
            baseline_[binding.widget->objectName()] = binding.typed();
    }
    ending_ = std::max(ending_, record.ending());
    showing_ = std::max(showing_, record.showing());
    showAccent();
}

void Screen::showAccent() {
    const bool shown = subject_.record && !subject_.record().isNew();
    wearAccent(registers_, !shown || !updates_);
    wearAccent(updates_, shown || !registers_);
}

void Screen::load(const desk::ScreenContext& named, const QHash<QString, QString>& recordBoxes) {
    if (busy_)
        return;
    readForm();
    if (auto draft = currentDraft())
        workplace_.drafts.keep(std::move(*draft));
    takeBaseline();
    // A press in the bar leaves the keyboard where it is, even if the loading operation asks for it.
    const QPointer<QWidget> keyboard = isVisible() ? focusWidget() : nullptr;
    operate([&] {
        workplace_.context = named;
        workplace_.context.endHandOver();
        const auto putBack = emptyForm();
        const auto askedBefore = std::exchange(asked_, std::nullopt);
        const auto listedBefore = std::exchange(listed_, {});
        try {
            if (subject_.lookUp) {
                if (load_)
                    load_();
                for (const Binding& binding : bindings_) {
                    if (binding.namesRecord)
                        binding.type(recordBoxes.value(binding.widget->objectName()));
                }
                subject_.lookUp();
            } else {
                subject_.load();
            }
        } catch (...) {
            // Where the register cannot be read now, the screen stays as it was.
            putBack();
            asked_ = askedBefore;
            listed_ = listedBefore;
            throw;
        }
    });
    if (keyboard)
        keyboard->setFocus(Qt::OtherFocusReason);
}

void Screen::showFor(const Draft& draft) {
    const bool shown = isVisible();
    if (!shown)
        applyTabOrder();
    if (!shown || subject_.record().key() != draft.key)
        load(draft.context, draft.recordBoxes);
    if (subject_.record().key() != draft.key)
        strayKey_ = draft.key;
    refreshBar();
    if (!shown)
        takeSize();
}

// The key of the draft that the bar offers: of the record shown, or of one that is gone.
QString Screen::offeredKey() const {
    return strayKey_.isEmpty() ? subject_.record().key() : strayKey_;
}

void Screen::askedAgain(const desk::ScreenContext& context) {
    asked_.reset();
    if (subject_.asked) {
        const auto record = subject_.asked(context);
        if (record && record->key != (subject_.record ? subject_.record().key() : listed_.key))
            asked_ = Asked{*record, context};
    }
    refreshBar();
}

void Screen::restore(const Draft& draft) {
    readForm();
    std::optional<Draft> typedOver = currentDraft();
    if (typedOver) {
        // Keep what would be overwritten as a draft of its own.
        typedOver->typed.removeIf([&](const QString& box) {
            return !draft.boxes.contains(box) || !(draft.ofNew || draft.typed.contains(box)) ||
                   draft.boxes.value(box) == typedOver->boxes.value(box);
        });
        if (!typedOver->typed.isEmpty())
            workplace_.drafts.keep(std::move(*typedOver));
    }
    for (Binding& binding : bindings_) {
        const QString name = binding.widget->objectName();
        const bool typed = draft.typed.contains(name);
        if (!binding.type)
            continue;
        // A new record is named by boxes of its own.
        if (binding.namesRecord && draft.ofNew && subject_.lookUp)
            binding.type(draft.recordBoxes.value(name));
        if (binding.namesRecord || !(typed || draft.ofNew) || !draft.boxes.contains(name))
            continue;
        binding.type(draft.boxes.value(name));
        binding.restored = typed;
    }
    strayKey_.clear();
    showForm();
    refreshBar();
}

// Asks without waiting for a lock: a bar that cannot tell now tells later.
void Screen::lookAtFile() {
    standing_ = desk::Standing::asRead;
    if (!subject_.record || subject_.record().isNew())
        return;
    try {
        store::Database database;
        database.engine().setBusyTimeout(0);
        standing_ = subject_.record().standing(database);
        replaced_ = standing_ != desk::Standing::asRead && subject_.record().registerReplaced();
    } catch (const std::exception&) {
        // The next operation says what is wrong with the register.
    }
}

void Screen::say(const QString& text) {
    informed_ = text;
    offers_.clear();
    about_.clear();
    refreshBar();
}

void Screen::refreshBar() {
    using enum NoticeAction;
    const bool was = bar_->isVisibleTo(this);
    const Draft* draft = subject_.record && !busy_ ? workplace_.drafts.find(objectName(), offeredKey()) : nullptr;
    const QString idle = idleText_ ? idleText_() : QString();
    // A message box is about to open: what is told now belongs to it.
    if (busy_ && !informed_.isEmpty())
        bar_->tell(informed_, {}, offers_);
    else if (standing_ != desk::Standing::asRead && replaced_)
        bar_->tell(u"登録簿が入れ替わりました。画面を開き直して下さい"_s);
    else if (standing_ == desk::Standing::gone)
        bar_->tell(u"この記録はほかの画面で削除されています。"_s);
    else if (standing_ == desk::Standing::twice)
        bar_->tell(
            u"同じ番号・名前の記録が二つあります。端末で「hoshiren-db check」を実行して、登録簿を確認して下さい。"_s);
    else if (standing_ != desk::Standing::asRead)
        bar_->tell(u"この記録はほかの画面で変更されています。"_s, {読み直す});
    else if (asked_)
        bar_->tell(u"「%1」を表示しています。「%2」を開くには「表示する」を押して下さい。"_s.arg(
                       subject_.record ? subject_.record().label() : listed_.label, asked_->record.label),
                   {表示する});
    else if (!about_.empty()) // of what is typed now: nearer than what was typed before
        bar_->tell(informed_, {}, offers_);
    else if (draft && !strayKey_.isEmpty())
        bar_->tell(u"「%1」の記録はもうありません。前に入力した内容が残っています"_s.arg(draft->label), {戻す, 捨てる});
    else if (draft)
        bar_->tell(u"前に入力した内容が残っています"_s, {戻す, 捨てる});
    else if (!informed_.isEmpty())
        bar_->tell(informed_, {}, offers_);
    else if (!idle.isEmpty())
        bar_->tell(idle, {表示する});
    else
        bar_->clear();
    if (bar_->isVisibleTo(this) != was)
        fitBar();
}

// The bar takes no room from the fields where the screen has room for both.
void Screen::fitBar() {
    if (!isVisible() || isMaximized() || !screen())
        return;
    if (!bar_->isVisibleTo(this)) {
        giveSize({width(), height() - std::exchange(grownBy_, 0)});
        return;
    }
    const int needed = bar_->sizeHint().height();
    const QRect room = screen()->availableGeometry();
    // At the lower edge it grows upwards: the fields stay where they are.
    const int up = std::max(0, frameGeometry().bottom() + needed - room.bottom());
    if (frameGeometry().top() - up < room.top())
        return;
    grownBy_ = needed;
    giveSize({width(), height() + needed});
    if (up > 0)
        move(pos() - QPoint(0, up));
}

void Screen::barPressed(NoticeAction action) {
    if (busy_)
        return;
    switch (action) {
    case NoticeAction::読み直す: {
        // Look up by the values that the boxes were filled with, not by what is typed in them now.
        readForm();
        load(draftOf({}).context, baseline_);
        break;
    }
    case NoticeAction::表示する:
        if (asked_) {
            const desk::ScreenContext context = asked_->context;
            load(context, {});
        } else if (idlePressed_) {
            idlePressed_();
        }
        break;
    case NoticeAction::戻す:
        if (const auto draft = workplace_.drafts.take(objectName(), offeredKey()))
            restore(*draft);
        break;
    case NoticeAction::捨てる:
        workplace_.drafts.take(objectName(), offeredKey());
        strayKey_.clear();
        refreshBar();
        break;
    }
}

void Screen::offerTaken(const Operation& run) {
    const int shown = subject_.record ? subject_.record().showing() : 0;
    QString offeredWith = informed_;
    std::vector<desk::Offer> offers = offers_;
    auto about = about_;
    const int writes = store::writesCommitted();
    if (!operate(run) && store::writesCommitted() == writes) {
        // It was not carried out: it can be tried again.
        informed_ = std::move(offeredWith);
        offers_ = std::move(offers);
        about_ = std::move(about);
        refreshBar();
        return;
    }
    if (!subject_.record || subject_.record().showing() == shown)
        return;
    // The record stands again, or as it was: it is read anew with all that the screen shows of it.
    const QString told = informed_;
    load(draftOf({}).context, baseline_);
    if (informed_.isEmpty())
        say(told);
}

} // namespace ui
