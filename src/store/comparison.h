#pragma once

#include "store/copy_source.h"
#include "store/records.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace store {

// A record that stands in a copy otherwise than in the register.
struct Difference {
    enum class How { onlyInCopy, onlyNow, other, same };

    RecordKind kind = RecordKind::household;
    How how = How::other;
    std::int16_t household = 0; // its number; 0 of a grave without one
    QString name;               // as the user knows it, the number apart
    QString what; // fields that are other, "電話：03-1 → 03-2"; of a household also how many rows of its own differ
    qint64 rowid = 0; // in the copy; 0 where only the register has it
};

// The records that differ, by household number; a household's own line comes first, also where it is the
// same and only what belongs to it differs. Of what a deletion took, only what it holds is looked at. step is told the
// percent done; its false stops the run, and nothing is given. Throws as reading does.
std::optional<std::vector<Difference>> compareWithNow(
    CopySource& copy, const QString& registerPath, const CopySource::Step& step = [](int) { return true; });

// What a field is called where the user reads of it; empty of those that only follow from others.
QString captionOf(const std::string& field);

} // namespace store
