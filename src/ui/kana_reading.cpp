#include "ui/kana_reading.h"

#include <QInputMethodEvent>
#include <QLineEdit>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

bool isLetters(const QString& text) {
    const QString plain = text.normalized(QString::NormalizationForm_KC);
    return std::ranges::all_of(plain, [](QChar c) { return c > u' ' && c.unicode() < 0x7f; });
}

} // namespace

KanaReading::KanaReading(QLineEdit* name, QLineEdit* kana) : QObject(kana), name_(name), kana_(kana) {
    name_->installEventFilter(this);
    connect(kana_, &QLineEdit::textEdited, this, [this] { own_.reset(); });
    connect(name_, &QLineEdit::textEdited, this, [this](const QString& text) {
        // A name that is taken back takes its reading along.
        if (text.isEmpty() && mine()) {
            kana_->clear();
            own_.reset();
        }
    });
}

void KanaReading::goOn() {
    own_ = kana_->text();
}

bool KanaReading::mine() const {
    return kana_->text().isEmpty() || own_ == kana_->text();
}

void KanaReading::append(const QString& text) {
    if (text.isEmpty() || !mine())
        return;
    own_ = kana_->text() + text;
    kana_->setText(*own_);
}

std::optional<QString> KanaReading::katakana(const QString& composed) {
    QString text = composed.normalized(QString::NormalizationForm_KC);
    if (text.endsWith(u'n') && text.size() > 1)
        text.replace(text.size() - 1, 1, u"ン"_s);
    for (QChar& c : text) {
        const bool hiragana = (c >= u'ぁ' && c <= u'ゖ') || c == u'ゝ' || c == u'ゞ';
        if (hiragana)
            c = QChar(c.unicode() + (u'ァ' - u'ぁ'));
        else if (!(c >= u'ァ' && c <= u'ヾ'))
            return {};
    }
    return text;
}

void KanaReading::compose(const QInputMethodEvent& event) {
    const auto seen = katakana(event.preeditString());
    if (!event.commitString().isEmpty()) {
        // Letters that were composed as kana and turned back into letters have no reading.
        if (isLetters(event.commitString()))
            reading_.clear();
        // What is committed without a composition, a blank between two names or kana, is its own reading.
        if (reading_.isEmpty())
            reading_ = event.commitString().trimmed().isEmpty() ? event.commitString()
                                                                : katakana(event.commitString()).value_or(QString());
        // A first clause can be committed while the composition goes on with the next one's kana.
        const QString rest = seen.value_or(QString());
        append(!rest.isEmpty() && reading_.endsWith(rest) ? reading_.chopped(rest.size()) : reading_);
        reading_ = rest;
    } else if (seen) {
        reading_ = *seen;
    }
}

bool KanaReading::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::InputMethod)
        compose(*static_cast<QInputMethodEvent*>(event));
    return QObject::eventFilter(watched, event);
}

} // namespace ui
