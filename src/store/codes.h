#pragma once

#include <QString>

#include <cstdint>

// The values that stand for something in the register's fields: the one place where they are written down.
namespace store::codes {

// Category of a household: tbldnk_dnkkbn, tblhak_dnk_kbn.
inline const QString parishioner = QStringLiteral("檀家");
inline const QString nonParishioner = QStringLiteral("一般");

// Place of a grave: tbldnk_haka_basho, tblkak_haka_basho.
inline const QString withinGrounds = QStringLiteral("境内");
inline const QString outsideGrounds = QStringLiteral("境外");

// Kind of a grave or of its marker: tblhak_bohyo_kbn, tblkak_haka_kbn.
inline const QString familyGrave = QStringLiteral("家");
inline const QString individualGrave = QStringLiteral("個");
inline const QString noGrave = QStringLiteral("無");     // of a deceased
inline const QString vacantGrave = QStringLiteral("空"); // of a plot

// Relationship of a household's head, among those of the master list: tblkzk_zokugara.
inline const QString head = QStringLiteral("本人");

// tblkzk_seishikbn
inline const QString living = QStringLiteral("0");
inline const QString deceased = QStringLiteral("1");

// tblkzk_dohkyokbn
inline const QString inHouse = QStringLiteral("0");
inline const QString elsewhere = QStringLiteral("1");

// tbldnk_bunkekbn
inline const QString noBranchFamily = QStringLiteral("0");

// Half of the day: tblhoy_kaiki_ampm.
inline const QString morning = QStringLiteral("1");
inline const QString afternoon = QStringLiteral("2");

// What a counter counts: tblno_key2.
inline const QString householdNumbers = QStringLiteral("檀家");
inline const QString graveNumbers = QStringLiteral("お墓");

// Flags: tblhoy_kaiki_s (held), tblhoy_kaiki_rs (reserved), tblhoy_tsuchi_s (notified), tblhak_haiki_kbn (disposed).
inline constexpr std::int16_t no = 0;
inline constexpr std::int16_t yes = 1;

// Branch number of the household that is no branch: tbldnk_no2.
inline constexpr std::int16_t mainHousehold = 0;

// Household number of a grave that belongs to none: tblhak_dnk_no.
inline constexpr std::int16_t noHousehold = 0;

} // namespace store::codes
