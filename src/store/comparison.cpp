#include "store/comparison.h"

#include <QHash>

#include <SQLiteCpp/Transaction.h>

#include <algorithm>
#include <map>

using namespace Qt::StringLiterals;

namespace store {

namespace {

using How = Difference::How;

const QHash<QByteArray, QString>& captions() {
    static const QHash<QByteArray, QString> all{
        {"tbldnk_nameg", u"檀家名"_s},
        {"tbldnk_namek", u"檀家名カナ"_s},
        {"tbldnk_dnkkbn", u"檀家区分"_s},
        {"tbldnk_yubin", u"郵便番号"_s},
        {"tbldnk_jyusho1", u"住所1"_s},
        {"tbldnk_jyusho2", u"住所2"_s},
        {"tbldnk_tel", u"電話"_s},
        {"tbldnk_fax", u"FAX"_s},
        {"tbldnk_chiku", u"地区"_s},
        {"tbldnk_bikou", u"備考"_s},
        {"tbldnk_haka_basho", u"墓所"_s},
        {"tbldnk_toshug", u"当主"_s},
        {"tbldnk_toshuk", u"当主カナ"_s},
        {"tbldnk_addymd", u"登録日"_s},
        {"tblkzk_namek", u"カナ"_s},
        {"tblkzk_dnknamek", u"檀家名カナ"_s},
        {"tblkzk_sei_ymd", u"生年月日"_s},
        {"tblkzk_zokugara", u"続柄"_s},
        {"tblkzk_dohkyokbn", u"同居"_s},
        {"tblkzk_seishikbn", u"生死"_s},
        {"tblkzk_yubin", u"郵便番号"_s},
        {"tblkzk_jusho1", u"住所1"_s},
        {"tblkzk_jusho2", u"住所2"_s},
        {"tblkzk_tel", u"電話"_s},
        {"tblkzk_fax", u"FAX"_s},
        {"tblkzk_chiku", u"地区"_s},
        {"tblkzk_bikou", u"備考"_s},
        {"tblkzk_add_ymd", u"登録日"_s},
        {"tblkak_dnknamek", u"檀家名カナ"_s},
        {"tblkak_zokunamek", u"俗名カナ"_s},
        {"tblkak_sei_ymd", u"生年月日"_s},
        {"tblkak_mei_ymd", u"命日"_s},
        {"tblkak_kyounen", u"享年"_s},
        {"tblkak_kaimyoug", u"戒名"_s},
        {"tblkak_kaimyouk", u"戒名カナ"_s},
        {"tblkak_kankeisha", u"関係者"_s},
        {"tblkak_zokugara", u"続柄"_s},
        {"tblkak_bikou", u"備考"_s},
        {"tblkak_haka_kbn", u"墓標"_s},
        {"tblkak_haka_basho", u"墓所"_s},
        {"tblkak_haka_no", u"お墓番号"_s},
        {"tblkak_haka_blk1", u"区画"_s},
        {"tblkak_haka_bch", u"番地"_s},
        {"tblkak_add_ymd", u"登録日"_s},
        {"tblhak_banchi1", u"区画"_s},
        {"tblhak_banchi2", u"番地"_s},
        {"tblhak_dnk_no", u"檀家番号"_s},
        {"tblhak_dnk_kbn", u"檀家区分"_s},
        {"tblhak_dnk_nameg", u"檀家名"_s},
        {"tblhak_dnk_namek", u"檀家名カナ"_s},
        {"tblhak_bohyo_kbn", u"墓標"_s},
        {"tblhak_bohyo_mei", u"墓標名"_s},
        {"tblhak_shiyo_stymd", u"使用開始日"_s},
        {"tblhak_shiyo_jrymd", u"使用料受領日"_s},
        {"tblhak_shiyo_ryokin", u"使用料"_s},
        {"tblhak_kanri_ryokin", u"管理費"_s},
        {"tblhak_kanri_jrymd", u"管理費受領日"_s},
        {"tblhak_kanri_nxymd", u"管理費次回請求日"_s},
        {"tblhak_haiki_kbn", u"廃棄"_s},
        {"tblhak_haiki_ymd", u"廃棄日"_s},
        {"tblhak_biko", u"備考"_s},
        {"tblhak_add_ymd", u"登録日"_s},
        {"tblhoy_danknameg", u"檀家名"_s},
        {"tblhoy_danknamek", u"檀家名カナ"_s},
        {"tblhoy_zokunamek", u"俗名カナ"_s},
        {"tblhoy_kaimyog", u"戒名"_s},
        {"tblhoy_kaimyok", u"戒名カナ"_s},
        {"tblhoy_meiymd", u"命日"_s},
        {"tblhoy_kaiki_mei", u"法要名"_s},
        {"tblhoy_kaiki_s", u"実施"_s},
        {"tblhoy_kaiki_rymd", u"予約日"_s},
        {"tblhoy_kaiki_jymd", u"実施日"_s},
        {"tblhoy_kaiki_rs", u"予約"_s},
        {"tblhoy_kaiki_ampm", u"午前・午後"_s},
        {"tblhoy_kaiki_hour", u"時"_s},
        {"tblhoy_kaiki_mint", u"分"_s},
        {"tblhoy_kaiki_basho", u"場所"_s},
        {"tblhoy_kaiki_seshug", u"施主"_s},
        {"tblhoy_zokugara", u"続柄"_s},
        {"tblhoy_tsuchi_s", u"通知"_s},
        {"tblhoy_tsuchi_ymd", u"通知日"_s},
        {"tblhoy_ofuse", u"御布施"_s},
        {"tblhoy_bikou", u"備考"_s},
        {"tblnen_snen", u"開始年"_s},
        {"tblnen_enen", u"終了年"_s},
        {"マ_名称", u"名称"_s},
        {"マ_略称", u"略称"_s},
        {"tblhoy_add_ymd", u"登録日"_s},
    };
    return all;
}

QString valueText(const QString& text) {
    return text;
}
QString valueText(QDate date) {
    return date.toString(u"yyyy/MM/dd"_s);
}
QString valueText(std::int16_t number) {
    return QString::number(number);
}
template <class T> QString valueText(const std::optional<T>& number) {
    return number ? QString::number(*number) : QString();
}

template <class Row> QString differingFields(const Row& then, const Row& now) {
    QStringList fields;
    bool others = false;
    const auto look = [&](auto field) {
        if (then.*(field.member) == now.*(field.member))
            return;
        if (const QString caption = captionOf(field.name); !caption.isEmpty())
            fields << u"%1：%2 → %3"_s.arg(caption, valueText(then.*(field.member)), valueText(now.*(field.member)));
        else
            others = true;
    };
    std::apply([&](auto... field) { (look(field), ...); }, Description<Row>::fields);
    if (fields.isEmpty() && others)
        fields << u"ほかの欄"_s;
    return fields.join(u"、"_s);
}

// The columns of a row in the file that is attached under a name, and its rowid behind them.
template <class Row> std::string selected(const std::string& file) {
    std::string text;
    std::apply([&](auto... field) { ((text += file + '.' + field.name + ", "), ...); }, Description<Row>::fields);
    return text + file + ".rowid";
}

// The condition that all the fields of a and b are the same, or that those of one are as bound.
template <class Fields> std::string equalFields(const Fields& fields) {
    std::string text;
    std::apply(
        [&](auto... field) {
            ((text += (text.empty() ? "a." : " AND a.") + std::string(field.name) + " IS b." + field.name), ...);
        },
        fields);
    return text;
}
template <class Row> std::string keysAsBound(const std::string& file) {
    std::string text;
    std::apply(
        [&](auto... field) { ((text += (text.empty() ? "" : " AND ") + file + '.' + field.name + " IS ?"), ...); },
        keyIndex<Row>.fields);
    return text;
}

template <class Row> void bindKeys(SQLite::Statement& statement, const Row& row) {
    statement.reset();
    int at = 0;
    std::apply([&](auto... field) { (bindValue(statement, ++at, row.*(field.member)), ...); }, keyIndex<Row>.fields);
}

// "main" is the copy, "now" the register. Most rows stand under the rowid that they had: what is equal there is passed
// over by the engine; only what is left is looked up by its keys.
template <class Row> void compareTable(SQLite::Database& engine, bool whole, std::vector<Difference>& differences) {
    const std::string table = Description<Row>::table;
    constexpr auto rowidAt = static_cast<int>(std::tuple_size_v<decltype(Description<Row>::fields)>);
    SQLite::Statement then(engine, "SELECT " + selected<Row>("a") + " FROM main." + table +
                                       " a WHERE NOT EXISTS (SELECT 1 FROM now." + table +
                                       " b WHERE b.rowid = a.rowid AND " + equalFields(Description<Row>::fields) + ")");
    SQLite::Statement standing(engine, "SELECT " + selected<Row>("b") + " FROM now." + table + " b WHERE " +
                                           keysAsBound<Row>("b"));
    qint64 gone = 0;
    while (then.executeStep()) {
        const Row row = readRow<Row>(then);
        std::optional<Row> other;
        bool same = false;
        bindKeys(standing, row);
        while (!same && standing.executeStep()) {
            other = readRow<Row>(standing);
            same = *other == row;
        }
        gone += other ? 0 : 1;
        if (!same)
            differences.push_back({kindOf(row), other ? How::other : How::onlyInCopy, numberOf(row), nameOf(row),
                                   other ? differingFields(row, *other) : QString(),
                                   then.getColumn(rowidAt).getInt64()});
    }
    standing.reset();
    if (!whole)
        return;
    const auto count = [&](const char* file) {
        return engine.execAndGet(std::string("SELECT count(*) FROM ") + file + '.' + table).getInt64();
    };
    // Where every row of the register has its partner, nothing has to be looked for; what was added lies at the end.
    qint64 added = count("now") - (count("main") - gone);
    if (added == 0)
        return;
    SQLite::Statement now(engine, "SELECT " + selected<Row>("b") + " FROM now." + table +
                                      " b WHERE NOT EXISTS (SELECT 1 FROM main." + table +
                                      " a WHERE a.rowid = b.rowid AND " + equalFields(keyIndex<Row>.fields) +
                                      ") ORDER BY b.rowid DESC");
    SQLite::Statement known(engine, "SELECT 1 FROM main." + table + " a WHERE " + keysAsBound<Row>("a"));
    while (added != 0 && now.executeStep()) {
        const Row row = readRow<Row>(now);
        bindKeys(known, row);
        if (known.executeStep())
            continue;
        differences.push_back({kindOf(row), How::onlyNow, numberOf(row), nameOf(row), {}, 0});
        --added;
    }
}

// A line for each household of which something differs, and on it how much.
void addHouseholds(Database& copy, std::vector<Difference>& differences) {
    struct Count {
        std::map<RecordKind, int> rows;
        bool own = false;
    };
    std::map<std::int16_t, Count> counts;
    for (const Difference& one : differences) {
        if (one.household == 0)
            continue;
        Count& count = counts[one.household];
        if (one.kind == RecordKind::household)
            count.own = true;
        else if (one.how != How::onlyNow)
            ++count.rows[one.kind];
    }
    const auto summary = [](const Count& count) {
        QStringList parts;
        for (const auto& [kind, rows] : count.rows)
            parts << u"%1 %2件"_s.arg(kindText(kind)).arg(rows);
        return parts.join(u"、"_s);
    };
    for (Difference& one : differences) {
        if (one.kind != RecordKind::household)
            continue;
        // On the first of its lines.
        if (const QString more = summary(counts[one.household]); !more.isEmpty())
            one.what += (one.what.isEmpty() ? QString() : u"、"_s) + more;
        counts[one.household].rows.clear();
    }
    for (const auto& [number, count] : counts) {
        if (count.own || count.rows.empty())
            continue;
        SQLite::Statement find(copy.engine(), "SELECT " + columnList<tbl_danka>() +
                                                  ", rowid FROM main.tbl_danka WHERE tbldnk_no1 = ? "
                                                  "ORDER BY tbldnk_no2 LIMIT 1");
        bindValue(find, 1, int{number});
        if (!find.executeStep())
            continue;
        differences.push_back({RecordKind::household, How::same, number, nameOf(readRow<tbl_danka>(find)),
                               summary(count),
                               find.getColumn(std::tuple_size_v<decltype(Description<tbl_danka>::fields)>).getInt64()});
    }
}

class Attached {
  public:
    Attached(SQLite::Database& engine, const QString& path) : engine_(engine) {
        SQLite::Statement attach(engine, "ATTACH ? AS now");
        attach.bind(1, engineAddress(path, "mode=ro").toStdString());
        attach.exec();
    }
    ~Attached() { engine_.tryExec("DETACH now"); }
    Attached(const Attached&) = delete;
    Attached& operator=(const Attached&) = delete;

  private:
    SQLite::Database& engine_;
};

} // namespace

QString captionOf(const std::string& field) {
    return captions().value(QByteArray::fromStdString(field));
}

std::optional<std::vector<Difference>> compareWithNow(CopySource& copy, const QString& registerPath,
                                                      const CopySource::Step& step) {
    // Refuses what is no register, and ends what a killed program left half done.
    const Database now(registerPath);
    SQLite::Database& engine = copy.database().engine();
    std::vector<Difference> differences;
    const Attached attached(engine, registerPath);
    // Memorials are by far the most.
    int percent = 0;
    const bool whole = !copy.isDeletion();
    const bool done = copy.run(step, percent, [&] {
        // One state of the register for all tables.
        const SQLite::Transaction reading(engine);
        compareTable<tbl_danka>(engine, whole, differences);
        percent = 5;
        compareTable<tbl_kazoku>(engine, whole, differences);
        percent = 20;
        compareTable<tbl_kakocho>(engine, whole, differences);
        percent = 27;
        compareTable<tbl_ohaka>(engine, whole, differences);
        percent = 30;
        compareTable<tbl_hohyo>(engine, whole, differences);
        percent = 95;
        compareTable<tbl_nengo>(engine, whole, differences);
        compareTable<マスタ>(engine, whole, differences);
        addHouseholds(copy.database(), differences);
    });
    if (!done)
        return {};
    std::ranges::stable_sort(differences, {}, [](const Difference& one) { return std::tie(one.household, one.kind); });
    return differences;
}

} // namespace store
