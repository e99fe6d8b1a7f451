// hoshiren-db: makes a register, looks it over, copies it and puts copies back, brings an older one over.
#include "commands.h"
#include "store/consistency.h"
#include "store/database.h"
#include "store/name_copies.h"
#include "store/row_rules.h"
#include "store/selections.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr int usageStatus = 2;
constexpr auto usage =
    u"使い方:\n"
    u"  hoshiren-db create ファイル    新しい登録簿を作ります\n"
    u"  hoshiren-db check ファイル     登録簿に損傷や矛盾がないかを調べます\n"
    u"  hoshiren-db info ファイル      登録簿の内容の概要を示します\n"
    u"  hoshiren-db upgrade [ファイル] 控えを作り、古い版の登録簿を今の版に進めます\n"
    u"  hoshiren-db convert ファイル   以前の形式（Jet データベース）から新しい登録簿を隣に作ります\n"
    u"今の場所にある登録簿 Hoshiren.mdb について:\n"
    u"  hoshiren-db backup             控えを作ります\n"
    u"  hoshiren-db list               控えの一覧を示します\n"
    u"  hoshiren-db restore ファイル   登録簿を控えに戻します。今の登録簿も残します\n"
    u"  hoshiren-db bring-back         控えと、削除したものの一覧を示します\n"
    u"  hoshiren-db bring-back ファイル\n"
    u"                                 控えと今の登録簿の違いを示します\n"
    u"  hoshiren-db bring-back ファイル 檀家番号 [名前]\n"
    u"                                 その檀家と属するもの、又はその名前の記録だけを控えから戻します\n"
    u"  hoshiren-db bring-back ファイル お墓 お墓番号\n"
    u"                                 そのお墓を控えから戻します\n"
    u"  hoshiren-db bring-back ファイル 全部\n"
    u"                                 削除したものをすべて戻します\n"
    u"  hoshiren-db names              檀家名の写しが檀家と異なる行を示します\n"
    u"  hoshiren-db names --write      控えを作り、檀家名の写しを檀家に合わせます\n";

int create(const QString& path) {
    store::createRegister(path);
    say(stdout, u"新しい登録簿を作りました: %1"_s.arg(QDir::toNativeSeparators(path)));
    return 0;
}

int check(const QString& path) {
    store::Database database(path);
    QStringList faults;
    try {
        store::findFaults(database, faults);
    } catch (const std::exception& failure) {
        faults += store::explain(failure);
    }
    for (const QString& fault : faults)
        say(stdout, fault);
    say(stdout, faults.isEmpty() ? u"異常はありません。"_s : u"%1 件の異常が見つかりました。"_s.arg(faults.size()));
    return faults.isEmpty() ? 0 : 1;
}

// What the register holds: a label and the statement that counts it.
struct Figure {
    const char16_t* label;
    std::string statement;
};

std::string lastNumber(const QString& kind) {
    return "SELECT tblno_sumino FROM tbl_hatsuban WHERE tblno_key1 = 0 AND tblno_key2 = " + store::literal(kind);
}

const Figure figures[] = {
    {u"形式の版", "PRAGMA user_version"},
    {u"檀家（分家を除く）", store::householdCountSql()},
    {u"檀家（分家）",
     "SELECT count(*) FROM tbl_danka WHERE tbldnk_no2 <> " + store::literal(store::codes::mainHousehold)},
    {u"家族（存命）", "SELECT count(*) FROM tbl_kazoku WHERE " + store::isLiving.sql()},
    {u"家族（死亡）", "SELECT count(*) FROM tbl_kazoku WHERE NOT " + store::isLiving.sql()},
    {u"過去帳", "SELECT count(*) FROM tbl_kakocho"},
    {u"お墓（使用中）", "SELECT count(*) FROM tbl_ohaka WHERE " + store::isInUse.sql()},
    {u"お墓（廃棄）", "SELECT count(*) FROM tbl_ohaka WHERE NOT " + store::isInUse.sql()},
    {u"法要", "SELECT count(*) FROM tbl_hohyo"},
    {u"法要（予約中）", "SELECT count(*) FROM tbl_hohyo WHERE " + store::isAwaited.sql()},
    {u"法要（実施済み）", "SELECT count(*) FROM tbl_hohyo WHERE " + store::isHeld.sql()},
    {u"年号", "SELECT count(*) FROM tbl_nengo"},
    {u"マスター（続柄・地区・場所）", "SELECT count(*) FROM マスタ"},
    {u"最後に発番した檀家番号", lastNumber(store::codes::householdNumbers)},
    {u"最後に発番したお墓番号", lastNumber(store::codes::graveNumbers)},
};

int info(const QString& path) {
    store::Database database(path);
    say(stdout, u"登録簿: %1（%2 バイト）"_s.arg(QDir::toNativeSeparators(path)).arg(QFile(path).size()));
    for (const auto& [label, statement] : figures) {
        SQLite::Statement count(database.engine(), statement);
        say(stdout, u"%1: %2"_s.arg(QString::fromUtf16(label),
                                    count.executeStep() ? QString::number(count.getColumn(0).getInt()) : u"なし"_s));
    }
    const auto copies = store::findNameCopies(database);
    for (const QString& kind : store::kindsOfNameCopies())
        say(stdout, u"檀家名の写しが今と異なる%1: %2"_s.arg(kind).arg(
                        std::ranges::count(copies, kind, &store::NameCopy::kind)));
    return 0;
}

constexpr qsizetype any = -1;

struct Command {
    QString name;
    QStringList options; // all that it takes, each given
    qsizetype arguments;
    std::function<int(const QStringList&)> run;
};

template <int (*run)(const QString&)> int withOne(const QStringList& arguments) {
    return run(arguments.constFirst());
}

template <int (*run)()> int alone(const QStringList&) {
    return run();
}

// The last one is the tool's own: what convert runs in another process.
const Command commands[] = {
    {u"create"_s, {}, 1, withOne<create>},
    {u"check"_s, {}, 1, withOne<check>},
    {u"info"_s, {}, 1, withOne<info>},
    {u"convert"_s, {}, 1, withOne<convertRegister>},
    {u"upgrade"_s, {}, 1, withOne<upgrade>},
    {u"upgrade"_s, {}, 0, [](const QStringList&) { return upgrade(store::Database::registerPath()); }},
    {u"backup"_s, {}, 0, alone<backUp>},
    {u"list"_s, {}, 0, alone<listBackups>},
    {u"restore"_s, {}, 1, withOne<restoreRegister>},
    {u"names"_s, {}, 0, alone<showNames>},
    {u"names"_s, {u"write"_s}, 0, alone<writeNames>},
    {u"bring-back"_s, {}, any, bringBack},
    {u"convert-apart"_s, {}, 2, [](const QStringList& files) { return convertInto(files[0], files[1]); }},
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption help = parser.addHelpOption();
    parser.addOption({u"write"_s, u"names"_s});
    const bool understood = parser.parse(QCoreApplication::arguments());
    if (understood && parser.isSet(help)) {
        QTextStream(stdout) << QStringView(usage);
        return 0;
    }
    QStringList arguments = parser.positionalArguments();
    const QString name = arguments.isEmpty() ? QString() : arguments.takeFirst();
    try {
        for (const Command& command : commands)
            if (understood && name == command.name && parser.optionNames() == command.options &&
                (command.arguments == any || arguments.size() == command.arguments))
                if (const int status = command.run(arguments); status != usageStatus)
                    return status;
    } catch (const std::exception& failure) {
        say(stderr, store::explain(failure));
        return 1;
    }
    QTextStream(stderr) << QStringView(usage);
    return usageStatus;
}
