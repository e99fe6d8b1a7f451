#pragma once

#include "desk/desk.h"
#include "store/database.h"

#include <functional>
#include <optional>
#include <vector>

// What the exports of households and of graves have in common.
namespace transfer {

struct ExportJob {
    QString title;
    QString subject; // what the closing message counts, with what stands between it and the number
    QString none;    // the message where there is nothing to write
    QString path;
};

struct ExportRecord {
    QString name; // as the user knows it
    std::vector<QString> fields;
};

// Writes the records that next gives until it gives none, and reports them under the title; a second message lists the
// records with characters that the code page does not hold; the bar tells of look-alikes written in their place. Gives
// the number written: 0, and no file, when there is none, when the user cancels, or when the path is one of the
// register's own files or lies among its copies. An existing file is replaced when the new one is whole; store::Error
// is thrown where that fails, and the old one stays.
int exportRecords(const ExportJob& job, qint64 expected, desk::Desk& desk,
                  const std::function<std::optional<ExportRecord>()>& next);

qint64 rowCount(store::Database& database, const std::string& table);

} // namespace transfer
