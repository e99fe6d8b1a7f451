#pragma once

#include "store/database.h"
#include "store/schema.h"

#include <QDate>
#include <QHash>
#include <QString>

#include <vector>

namespace reports {

// Years and dates as they are read on paper: in the form of the era that covers the year, in Western form where none
// does. Says nothing about it, and holds nothing of the register open.
class EraForms {
  public:
    explicit EraForms(store::Database& database);

    // "令和9年（2027年）", a change-over year with both its eras: "昭和64年・平成1年（1989年）".
    QString year(int year);
    // "令和9年2月12日"; empty for an absent date. A change-over year belongs wholly to its newer era.
    QString date(QDate date);
    // The same, but in the era form given beside the date where that is the same day: "昭和64年1月5日".
    QString date(QDate date, const QString& era, std::optional<std::int16_t> eraYear);

  private:
    struct Form {
        QString era;
        int eraYear;
        QString text; // 令和9年
    };
    const std::vector<Form>& formsOf(int year);

    std::vector<store::tbl_nengo> eras_; // by first year
    QHash<int, std::vector<Form>> known_;
};

} // namespace reports
