#pragma once

#include "store/draft.h"
#include "store/records.h"
#include "store/upgrade.h"

#include <QString>

#include <functional>
#include <optional>

namespace store {

// A copy of the register, or what a deletion took (kept_deletion.h), open for reading. The file itself is never written
// to: one of an older layout, or with a journal beside it, is copied beside it first, readable by its owner alone, and
// brought to the newest layout there.
class CopySource {
  public:
    // Told the percent done of a run; its false stops it.
    using Step = std::function<bool(int)>;

    // Throws Error, in words about a copy, where the file is missing, damaged, newer or neither of the two, and when
    // step stopped the copying of an older one.
    explicit CopySource(
        const QString& path, const UpgradeSteps& steps = upgradeSteps(), const Step& step = [](int) { return true; });

    Database& database() { return *database_; }
    // What belongs to a household, or one record by its rowid with what is its own (recordIn). Of what a deletion took,
    // as far as that took it.
    Records household(std::int16_t number);
    Records record(RecordKind kind, qint64 rowid);

    // What a deletion took, and not a whole register.
    bool isDeletion() const { return deletion_; }
    const QString& path() const { return path_; }
    // Where the copy is to be read from: itself, or its draft.
    QString readPath() const { return draft_ ? draft_->path() : path_; }

    // Runs what reads the source; a failure because the file is damaged is thrown in words about a copy.
    template <class Work> auto reading(const Work& work) {
        try {
            return work();
        } catch (const SQLite::Exception& failure) {
            refuseDamaged(failure);
            throw;
        }
    }
    // Runs work likewise, and step(percent) every few milliseconds of it; false when that stopped it.
    bool run(const Step& step, const int& percent, const std::function<void()>& work);
    // Looks the whole file over; throws where it is damaged. Takes seconds with a full register; false when stopped.
    bool prove(const Step& step);

  private:
    void copyAndUpgrade(const UpgradeSteps& steps, const Step& step);
    // Throws where the failure is one of this file's damage.
    void refuseDamaged(const SQLite::Exception& failure);

    QString path_;
    bool deletion_ = false;
    std::optional<Draft> draft_;
    std::optional<Database> database_;
};

} // namespace store
