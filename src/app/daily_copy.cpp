#include "app/daily_copy.h"

#include "ui/message_box.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace app {

namespace {

constexpr std::chrono::milliseconds betweenParts{5};
constexpr std::chrono::hours aDay{24};

} // namespace

DailyCopy::DailyCopy(ui::Workplace& workplace, std::chrono::milliseconds wait, std::chrono::milliseconds betweenLooks)
    : workplace_(workplace), betweenLooks_(betweenLooks) {
    timer_.callOnTimeout([this] { goOn(); });
    timer_.start(wait);
}

void DailyCopy::goOn() {
    // A part in the middle of an operation would meet what that has open.
    if (workplace_.operating())
        return;
    try {
        if (!copy_) {
            begin();
        } else if (!copy_->advance()) {
            copy_.reset();
            doneOn_ = day_;
            done_.start();
            told_ = Told::nothing;
        }
    } catch (const store::RegisterFault& fault) {
        copy_.reset();
        tell(Told::registerFault, fault.message());
    } catch (const std::exception& failure) {
        copy_.reset();
        tell(Told::noCopy,
             u"今日の控えを作れませんでした。このまま仕事は続けられます。\n\n"_s + store::explain(failure));
    }
    timer_.start(copy_ ? betweenParts : betweenLooks_);
}

void DailyCopy::begin() {
    const QString path = store::Database::registerPath();
    const QDate today = workplace_.today();
    // A clock that stands still does not stop the copies of a program that is left open.
    if ((doneOn_ == today && !done_.hasExpired(std::chrono::milliseconds(aDay).count())) || !QFileInfo::exists(path))
        return;
    day_ = today;
    copy_.emplace(path, store::BackupKind::daily, QDateTime(today, QTime::currentTime()));
}

void DailyCopy::tell(Told what, const QString& text) {
    if (told_ >= what)
        return;
    told_ = what;
    timer_.stop();
    ui::showMessage(workplace_.find(u"メニュー"_s), text, u"メニュー"_s, desk::Icon::exclamation);
}

} // namespace app
