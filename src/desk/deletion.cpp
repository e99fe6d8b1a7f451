#include "desk/deletion.h"

#include "store/kept_deletion.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace desk {

namespace {

QString firstOf(const store::Records& records) {
    QString label;
    records.forEach([&label](const auto& rows) {
        if (label.isEmpty() && !rows.empty())
            label = labelled(rows.front().row);
    });
    return label;
}

QString withMore(const QString& label, const store::Records& records) {
    return records.size() > 1 ? u"%1 ほか%2件"_s.arg(label).arg(records.size() - 1) : label;
}

} // namespace

bool Deletion::write(store::Database& database, const std::function<bool(store::Records&)>& take) {
    for (;;) {
        QString failure;
        {
            store::Write write(database);
            store::Records taken = taken_;
            if (!take(taken))
                return false;
            if (label_.isEmpty())
                label_ = firstOf(taken);
            if (keeping_)
                failure = keep(database, taken);
            if (failure.isEmpty()) {
                try {
                    write.commit();
                } catch (...) {
                    // What is kept of a deletion that did not come about would do no harm, but is of no use.
                    if (taken_.size() == 0)
                        QFile::remove(path_);
                    throw;
                }
                taken_ = std::move(taken);
                if (keeping_)
                    kept_ = taken_.size();
                return true;
            }
        }
        if (!desk_->ask(u"消すものを残せませんでした。\n\n"_s + failure +
                            u"\n\n残さずに続けますか？あとで元に戻せなくなります。"_s,
                        title_, Preset::no))
            return false;
        keeping_ = false;
    }
}

QString Deletion::keep(store::Database& database, store::Records& taken) {
    try {
        taken.addHouseholds(database);
        path_ = store::keepDeletion(store::Database::registerPath(), taken, what_, withMore(label_, taken),
                                    QDateTime(desk_->today(), QTime::currentTime()), path_);
        return {};
    } catch (const std::exception& failure) {
        return store::explain(failure);
    }
}

void Deletion::offerUndo(std::function<void()> done) const {
    if (taken_.size() == 0 || path_.isEmpty())
        return;
    const auto undo = [desk = desk_, path = path_, title = title_, done = std::move(done)] {
        if (!undoDeletion(path, *desk, title).stopped)
            done();
    };
    QString told = u"%1を%2しました"_s.arg(withMore(label_, taken_), what_);
    if (taken_.size() > kept_)
        told += u"（うち%1件は元に戻せません）"_s.arg(taken_.size() - kept_);
    desk_->offer(told, {{u"元に戻す"_s, u"元に戻す"_s, u'Z', undo}});
}

} // namespace desk
