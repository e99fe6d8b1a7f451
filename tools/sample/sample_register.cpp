#include "sample/sample_register.h"

#include "sample/people.h"

#include "memorials/schedule_rules.h"
#include "store/codes.h"
#include "store/table.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sample {

namespace {

namespace codes = store::codes;

// Totals of a full register; smaller ones hold their share.
constexpr qint64 mostLiving = 90'000;
constexpr qint64 mostDead = 60'000;

constexpr const char16_t* sections[] = {u"東1", u"東2", u"東3", u"西1", u"西2",  u"西3",  u"南1",  u"南2",
                                        u"南3", u"北1", u"北2", u"北3", u"上段", u"中段", u"下段", u"新区画"};

struct Relation {
    const char16_t* relationship;
    bool woman;
    int older; // years older than the head, at least
};

constexpr Relation livingRelations[] = {
    {u"本人", false, 0}, {u"妻", true, -4}, {u"長男", false, -32}, {u"長女", true, -35}};
constexpr Relation deadRelations[] = {{u"父", false, 24}, {u"母", true, 20}, {u"祖父", false, 48}};

// Shares out a total over the households, one by one, with neighbours a little apart.
class Shares {
  public:
    Shares(qint64 total, int households) : total_(total), households_(households) {}
    int next(Chance& chance) {
        const auto upTo = [this](qint64 household) { return total_ * household / households_; };
        const int even = static_cast<int>(upTo(given_ + 1) - upTo(given_));
        ++given_;
        // What one household gets more, the next one gets less.
        const int more = owed_ ? -owed_ : (given_ < households_ && chance.percent(40) ? 1 : 0);
        owed_ = owed_ ? 0 : more;
        return even + more;
    }

  private:
    qint64 total_;
    qint64 households_;
    qint64 given_ = 0;
    int owed_ = 0;
};

class Maker {
  public:
    Maker(store::Database& database, int households, QDate today)
        : today_(today), danka_(database, store::idxdnk_no), kazoku_(database, store::idxkzk_kazoku),
          kakocho_(database, store::idxkak_kakochou), ohaka_(database, store::idxhak_no),
          hohyo_(database, store::idxhoy_hohyo), living_(mostLiving * households / mostHouseholds, households),
          dead_(mostDead * households / mostHouseholds, households),
          eras_(store::selectAll<store::tbl_nengo>(database, "ORDER BY tblnen_snen")) {}

    void make(std::int16_t number) {
        household_ = {};
        grave_ = {};
        const int living = living_.next(chance_);
        const int dead = dead_.next(chance_);
        prepareHousehold(number);
        prepareGrave(number);
        taken_.clear();
        headBirth_ = today_.addYears(-chance_.between(38, 78)).addDays(-chance_.below(365));
        for (int i = 0; i < living; ++i)
            addMember(livingRelations[i], false);
        household_.tbldnk_haka_basho = grave_.tblhak_dnk_no ? codes::withinGrounds : codes::outsideGrounds;
        danka_.insert(household_);
        ohaka_.insert(grave_);
        for (int i = 0; i < dead; ++i)
            addDeath(addMember(deadRelations[i], true), deadRelations[i]);
    }

  private:
    struct EraDate {
        QString era;
        std::int16_t year;
        std::int16_t month;
        std::int16_t day;
    };

    // A change-over year belongs to the newer era.
    EraDate eraOf(QDate date) const {
        const auto newer =
            std::find_if(eras_.begin(), eras_.end(), [&](const auto& era) { return era.tblnen_snen > date.year(); });
        if (newer == eras_.begin())
            throw store::Error(0, u"年号の表に %1 年の年号がありません。"_s.arg(date.year()));
        const auto& era = *std::prev(newer);
        return {era.tblnen_nengo, static_cast<std::int16_t>(date.year() - era.tblnen_snen + 1),
                static_cast<std::int16_t>(date.month()), static_cast<std::int16_t>(date.day())};
    }

    QDate somewhereIn(QDate from, QDate to) {
        return from.addDays(chance_.below(static_cast<int>(from.daysTo(to)) + 1));
    }

    void prepareHousehold(std::int16_t number) {
        family_ = familyName(chance_);
        const Address where = address(chance_);
        household_.tbldnk_no1 = number;
        household_.tbldnk_nameg = family_.kanji;
        household_.tbldnk_namek = family_.kana;
        household_.tbldnk_dnkkbn = chance_.percent(88) ? codes::parishioner : codes::nonParishioner;
        household_.tbldnk_yubin = where.postalCode;
        household_.tbldnk_jyusho1 = where.line1;
        household_.tbldnk_jyusho2 = where.line2;
        household_.tbldnk_tel = where.telephone;
        household_.tbldnk_fax = chance_.percent(20) ? where.telephone : QString();
        household_.tbldnk_chiku = where.district;
        household_.tbldnk_bikou = chance_.percent(6) ? u"護持会役員"_s : QString();
        household_.tbldnk_kanaidx = store::kanaIndex(family_.kana);
        household_.tbldnk_oyano = std::int16_t{0};
        household_.tbldnk_bunkekbn = codes::noBranchFamily;
        household_.tbldnk_addymd = somewhereIn(today_.addYears(-15), today_);
    }

    // Nine of ten graves belong to the household of their number; the rest are vacant or were given back.
    void prepareGrave(std::int16_t number) {
        constexpr int sectionCount = static_cast<int>(std::size(sections));
        grave_.tblhak_no = number;
        grave_.tblhak_banchi1 = QString::fromUtf16(sections[(number - 1) % sectionCount]);
        grave_.tblhak_banchi2 = u"%1"_s.arg((number - 1) / sectionCount + 1, 4, 10, QChar(u'0'));
        grave_.tblhak_shiyo_ryokin = 1000 * chance_.between(10, 30);
        grave_.tblhak_kanri_ryokin = 1000 * chance_.between(3, 12);
        grave_.tblhak_kanaidx = u""_s;
        grave_.tblhak_bohyo_kbn = codes::vacantGrave;
        grave_.tblhak_add_ymd = somewhereIn(today_.addYears(-15), today_);
        if (const int fate = chance_.below(100); fate >= 90) {
            if (fate >= 97) {
                grave_.tblhak_haiki_kbn = codes::yes;
                grave_.tblhak_haiki_ymd = somewhereIn(today_.addYears(-10), today_);
            }
            return;
        }
        grave_.tblhak_dnk_no = number;
        grave_.tblhak_dnk_kbn = household_.tbldnk_dnkkbn;
        grave_.tblhak_dnk_nameg = family_.kanji;
        grave_.tblhak_dnk_namek = family_.kana;
        grave_.tblhak_kanaidx = household_.tbldnk_kanaidx;
        const bool single = chance_.percent(10);
        grave_.tblhak_bohyo_kbn = single ? codes::individualGrave : codes::familyGrave;
        grave_.tblhak_bohyo_mei = family_.kanji + (single                ? u"氏之墓"_s
                                                   : chance_.percent(50) ? u"家之墓"_s
                                                                         : u"家先祖代々之墓"_s);
        grave_.tblhak_shiyo_stymd = somewhereIn(today_.addYears(-60), today_.addYears(-1));
        grave_.tblhak_shiyo_jrymd = grave_.tblhak_shiyo_stymd;
        // The yearly fee falls due on the first of April; most have paid the last one.
        const QDate lastApril(today_.month() >= 4 ? today_.year() : today_.year() - 1, 4, 1);
        grave_.tblhak_kanri_nxymd = lastApril.addYears(chance_.percent(85) ? 1 : 0);
        grave_.tblhak_kanri_jrymd = std::min(today_, grave_.tblhak_kanri_nxymd.addYears(-1).addDays(chance_.below(60)));
        grave_.tblhak_biko = chance_.percent(5) ? u"角地"_s : QString();
    }

    store::tbl_kazoku addMember(const Relation& relation, bool dead) {
        const bool head = &relation == livingRelations;
        // Without a living husband the head is a widow.
        const bool woman = head ? chance_.percent(15) : relation.woman;
        const Name given = givenName(chance_, woman, taken_);
        store::tbl_kazoku member;
        member.tblkzk_no1 = household_.tbldnk_no1;
        member.tblkzk_no2 = std::int16_t{0};
        member.tblkzk_dnknameg = family_.kanji;
        member.tblkzk_dnknamek = family_.kana;
        member.tblkzk_nameg = family_.kanji + u'　' + given.kanji;
        member.tblkzk_namek = family_.kana + u' ' + given.kana;
        const QDate birth = head ? headBirth_ : headBirth_.addYears(-relation.older).addDays(-chance_.below(3000));
        member.tblkzk_sei_ymd = std::min(birth, today_);
        const EraDate era = eraOf(member.tblkzk_sei_ymd);
        member.tblkzk_sei_gname = era.era;
        member.tblkzk_sei_gyy = era.year;
        member.tblkzk_sei_gmm = era.month;
        member.tblkzk_sei_gdd = era.day;
        member.tblkzk_zokugara = QString::fromUtf16(relation.relationship);
        if (!head && !dead && woman == headIsWoman_ && member.tblkzk_zokugara == u"妻"_s)
            member.tblkzk_zokugara = u"妹"_s;
        member.tblkzk_dohkyokbn = codes::inHouse;
        member.tblkzk_seishikbn = dead ? codes::deceased : codes::living;
        member.tblkzk_yubin = household_.tbldnk_yubin;
        member.tblkzk_jusho1 = household_.tbldnk_jyusho1;
        member.tblkzk_jusho2 = household_.tbldnk_jyusho2;
        member.tblkzk_tel = household_.tbldnk_tel;
        member.tblkzk_chiku = household_.tbldnk_chiku;
        if (!dead && relation.older < -30 && chance_.percent(40)) {
            const Address own = address(chance_);
            member.tblkzk_dohkyokbn = codes::elsewhere;
            member.tblkzk_yubin = own.postalCode;
            member.tblkzk_jusho1 = own.line1;
            member.tblkzk_jusho2 = own.line2;
            member.tblkzk_tel = own.telephone;
            member.tblkzk_chiku = own.district;
        }
        member.tblkzk_kanaidx = household_.tbldnk_kanaidx;
        member.tblkzk_add_ymd = household_.tbldnk_addymd;
        if (head) {
            headIsWoman_ = woman;
            household_.tbldnk_toshug = member.tblkzk_nameg;
            household_.tbldnk_toshuk = member.tblkzk_namek;
        }
        kazoku_.insert(member);
        return member;
    }

    void addDeath(const store::tbl_kazoku& member, const Relation& relation) {
        store::tbl_kakocho death;
        death.tblkak_no = member.tblkzk_no1;
        death.tblkak_dnknameg = member.tblkzk_dnknameg;
        death.tblkak_dnknamek = member.tblkzk_dnknamek;
        death.tblkak_zokunameg = member.tblkzk_nameg;
        death.tblkak_zokunamek = member.tblkzk_namek;
        death.tblkak_sei_gname = member.tblkzk_sei_gname;
        death.tblkak_sei_gyy = member.tblkzk_sei_gyy;
        death.tblkak_sei_gmm = member.tblkzk_sei_gmm;
        death.tblkak_sei_gdd = member.tblkzk_sei_gdd;
        death.tblkak_sei_ymd = member.tblkzk_sei_ymd;
        QDate day = member.tblkzk_sei_ymd.addYears(chance_.between(60, 95)).addDays(chance_.below(365));
        if (day > today_)
            day = today_.addDays(-chance_.below(3650));
        const EraDate era = eraOf(day);
        death.tblkak_mei_gname = era.era;
        death.tblkak_mei_gyy = era.year;
        death.tblkak_mei_gmm = era.month;
        death.tblkak_mei_gdd = era.day;
        death.tblkak_mei_ymd = day;
        death.tblkak_kyounen = static_cast<std::int16_t>(day.year() - member.tblkzk_sei_ymd.year());
        const Name posthumous = posthumousName(chance_, relation.woman);
        death.tblkak_kaimyoug = posthumous.kanji;
        death.tblkak_kaimyouk = posthumous.kana;
        death.tblkak_kankeisha = household_.tbldnk_toshug;
        death.tblkak_zokugara = member.tblkzk_zokugara;
        death.tblkak_haka_no = std::int16_t{0};
        if (grave_.tblhak_dnk_no) {
            death.tblkak_haka_kbn = grave_.tblhak_bohyo_kbn;
            death.tblkak_haka_no = grave_.tblhak_no;
            death.tblkak_haka_blk1 = grave_.tblhak_banchi1;
            death.tblkak_haka_bch = grave_.tblhak_banchi2;
        } else {
            death.tblkak_haka_kbn = codes::noGrave;
        }
        death.tblkak_haka_basho = household_.tbldnk_haka_basho;
        death.tblkak_kanaidx = household_.tbldnk_kanaidx;
        death.tblkak_add_ymd = std::min(today_, day.addDays(7));
        kakocho_.insert(death);
        for (const memorials::Anniversary& anniversary : memorials::AnniversaryTable)
            addMemorial(death, anniversary);
    }

    void addMemorial(const store::tbl_kakocho& death, const memorials::Anniversary& anniversary) {
        store::tbl_hohyo memorial;
        memorial.tblhoy_no = death.tblkak_no;
        memorial.tblhoy_danknameg = death.tblkak_dnknameg;
        memorial.tblhoy_danknamek = death.tblkak_dnknamek;
        memorial.tblhoy_zokunameg = death.tblkak_zokunameg;
        memorial.tblhoy_zokunamek = death.tblkak_zokunamek;
        memorial.tblhoy_kaimyog = death.tblkak_kaimyoug;
        memorial.tblhoy_kaimyok = death.tblkak_kaimyouk;
        memorial.tblhoy_meiymd = death.tblkak_mei_ymd;
        memorial.tblhoy_kaiki_mei = QString::fromUtf16(anniversary.label);
        memorial.tblhoy_kaiki_yymd = memorials::anniversaryDate(anniversary, death.tblkak_mei_ymd);
        memorial.tblhoy_kaiki_ampm = codes::morning;
        memorial.tblhoy_kaiki_hour = std::int16_t{0};
        memorial.tblhoy_kaiki_mint = std::int16_t{0};
        memorial.tblhoy_ofuse = 0;
        memorial.tblhoy_kanaidx = death.tblkak_kanaidx;
        memorial.tblhoy_add_ymd = death.tblkak_add_ymd;
        // What fell due while this register was kept was mostly held; of what lies ahead some is announced or booked.
        const qint64 ahead = today_.daysTo(memorial.tblhoy_kaiki_yymd);
        if (ahead > -3650 && ahead <= 0 && chance_.percent(80)) {
            book(memorial);
            memorial.tblhoy_kaiki_s = codes::yes;
            memorial.tblhoy_kaiki_jymd = memorial.tblhoy_kaiki_rymd = std::min(today_, memorial.tblhoy_kaiki_rymd);
            memorial.tblhoy_ofuse = 10'000 * chance_.between(1, 10);
        } else if (ahead > 0 && ahead < 90) {
            if (chance_.percent(50)) {
                memorial.tblhoy_tsuchi_s = codes::yes;
                memorial.tblhoy_tsuchi_ymd = today_.addDays(-chance_.between(1, 30));
            }
            if (chance_.percent(40))
                book(memorial);
        }
        hohyo_.insert(memorial);
    }

    void book(store::tbl_hohyo& memorial) {
        static constexpr const char16_t* places[] = {u"本堂", u"本堂", u"自宅", u"墓前", u"会館"};
        const bool afternoon = chance_.percent(40);
        memorial.tblhoy_kaiki_rs = codes::yes;
        memorial.tblhoy_kaiki_rymd = memorial.tblhoy_kaiki_yymd.addDays(-chance_.below(10));
        if (memorial.tblhoy_kaiki_rymd < memorial.tblhoy_meiymd)
            memorial.tblhoy_kaiki_rymd = memorial.tblhoy_kaiki_yymd;
        memorial.tblhoy_kaiki_ampm = afternoon ? codes::afternoon : codes::morning;
        memorial.tblhoy_kaiki_hour =
            static_cast<std::int16_t>(afternoon ? chance_.between(1, 3) : chance_.between(9, 11));
        memorial.tblhoy_kaiki_mint = static_cast<std::int16_t>(30 * chance_.below(2));
        memorial.tblhoy_kaiki_basho = QString::fromUtf16(chance_.of(places));
        memorial.tblhoy_kaiki_seshug = household_.tbldnk_toshug;
        memorial.tblhoy_zokugara = u"長男"_s;
    }

    QDate today_;
    Chance chance_{20080301};
    store::Table<store::tbl_danka, std::int16_t, std::int16_t> danka_;
    store::Table<store::tbl_kazoku, std::int16_t, QString, QString> kazoku_;
    store::Table<store::tbl_kakocho, std::int16_t, QString, QString> kakocho_;
    store::Table<store::tbl_ohaka, std::int16_t> ohaka_;
    store::Table<store::tbl_hohyo, std::int16_t, QString, QDate> hohyo_;
    Shares living_;
    Shares dead_;
    std::vector<store::tbl_nengo> eras_;
    Name family_;
    std::set<QString> taken_;
    QDate headBirth_;
    bool headIsWoman_ = false;
    store::tbl_danka household_;
    store::tbl_ohaka grave_;
};

void addDistricts(store::Database& database) {
    store::Table master(database, store::key_マスタ);
    std::int16_t number = 0;
    for (const QString& district : districts()) {
        store::マスタ row;
        row.マ_区分 = 2;
        row.マ_NO = ++number;
        row.マ_名称 = row.マ_略称 = district;
        master.insert(row);
    }
}

void setCounters(store::Database& database, int last) {
    SQLite::Statement counters(database.engine(), "UPDATE tbl_hatsuban SET tblno_sumino = ?");
    counters.bind(1, last);
    counters.exec();
}

} // namespace

void makeRegister(const QString& path, int households, QDate today) {
    if (QFileInfo::exists(path))
        throw store::Error(0, u"「%1」は既にあります。上書きはしません。"_s.arg(QDir::toNativeSeparators(path)));
    const QString draft = path + u".draft"_s;
    QFile::remove(draft);
    store::createRegister(draft);
    try {
        {
            store::Database database(draft);
            // A draft that is thrown away when anything fails needs no journal.
            database.engine().exec("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA cache_size = -200000");
            database.engine().exec("BEGIN");
            addDistricts(database);
            {
                Maker maker(database, households, today);
                for (int number = 1; number <= households; ++number)
                    maker.make(static_cast<std::int16_t>(number));
            }
            setCounters(database, households);
            database.engine().exec("COMMIT");
        }
        if (!QFile::rename(draft, path))
            throw store::Error(
                0, u"「%1」を作れません。書き込みの許可を確認して下さい。"_s.arg(QDir::toNativeSeparators(path)));
    } catch (...) {
        QFile::remove(draft);
        throw;
    }
}

} // namespace sample
