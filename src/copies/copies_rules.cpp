#include "copies/copies_rules.h"

#include "desk/bring_back.h"
#include "store/backup.h"
#include "store/copy_source.h"
#include "store/kept_deletion.h"
#include "store/selections.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace copies {

namespace {

using store::Difference;

const QString title = u"控え"_s;
const QString timeFormat = u"yyyy/MM/dd HH:mm"_s;

QString registered() {
    return store::Database::registerPath();
}

// Nothing for a copy that cannot be read without more ado: one of an older layout, or damaged.
QString households(const QString& path) {
    try {
        store::Database copy(path, store::Layouts::olderToo, store::FileUse::asCopy);
        return QString::number(copy.engine().execAndGet(store::householdCountSql()).getInt());
    } catch (const std::exception&) {
        return u"読めません"_s;
    }
}

void listSources(控えForm& form) {
    form.控え一覧.columns = {{u"日時"_s, 2200},
                             {u"理由"_s, 2600},
                             {u"内容"_s, 4600},
                             {u"檀家"_s, 1100, desk::Align::right, desk::Align::right},
                             {u"大きさ"_s, 1500, desk::Align::right, desk::Align::right},
                             {u"確認"_s, 1100}};
    form.控え一覧.blankRows = 10;
    form.控え一覧.rows.clear();
    form.控え一覧.highlighted = form.chosen = 0;
    form.sources.clear();
    const QLocale japanese(QLocale::Japanese);
    const auto size = [&](const QString& path) {
        return japanese.formattedDataSize(QFileInfo(path).size(), 1, QLocale::DataSizeTraditionalFormat);
    };
    for (const store::KeptDeletion& one : store::deletionsOf(registered())) {
        const QString time = one.made.toString(timeFormat);
        const QString label = one.label.isEmpty() ? u"読めません"_s : one.label;
        form.控え一覧.rows.push_back({time, one.what, label, {}, size(one.path), {}});
        form.sources.push_back({one.path, u"%1の%2（%3）"_s.arg(time, one.what, label), true, true});
    }
    for (const store::Backup& one : store::backupsOf(registered())) {
        const QString time = one.made.toString(timeFormat);
        const bool proven = store::isProven(one);
        form.控え一覧.rows.push_back({time, store::reasonText(one), u"登録簿の控え"_s, households(one.path),
                                      size(one.path), proven ? u"済み"_s : u"まだ"_s});
        form.sources.push_back({one.path, time + u"の控え"_s, false, proven});
    }
}

QString howText(Difference::How how, bool deletion) {
    switch (how) {
    case Difference::How::onlyInCopy:
        return deletion ? u"消えたまま"_s : u"控えだけ"_s;
    case Difference::How::onlyNow:
        return u"今だけ"_s;
    case Difference::How::other:
        return u"違う"_s;
    case Difference::How::same:
        break;
    }
    return u"檀家は同じ"_s;
}

const Source* chosenSource(const 控えForm& form) {
    return form.chosen > 0 ? &form.sources[static_cast<std::size_t>(form.chosen - 1)] : nullptr;
}

void clearDifferences(控えForm& form) {
    form.differences.clear();
    form.shown.clear();
    form.控え内容.rows.clear();
    form.控え内容.highlighted = 0;
    form.比較結果.text.clear();
}

void fillDifferences(控えForm& form) {
    form.控え内容.columns = {{u"種類"_s, 1000},
                             {u"番号"_s, 900, desk::Align::right, desk::Align::right},
                             {u"名前"_s, 4200},
                             {u"違い"_s, 1400},
                             {u"内容（控え → 今）"_s, 6000}};
    form.控え内容.blankRows = 12;
    form.控え内容.rows.clear();
    form.控え内容.highlighted = 0;
    form.shown.clear();
    const Source* source = chosenSource(form);
    if (!source) {
        form.比較結果.text.clear();
        return;
    }
    const QString wanted = form.絞り込み.text.trimmed();
    std::size_t found = 0;
    for (std::size_t at = 0; at < form.differences.size(); ++at) {
        const Difference& one = form.differences[at];
        const QString number = one.household == 0 ? QString() : QString::number(one.household);
        if (!wanted.isEmpty() && number != wanted && !one.name.contains(wanted))
            continue;
        if (++found > linesShown)
            continue;
        form.shown.push_back(at);
        form.控え内容.rows.push_back(
            {store::kindText(one.kind), number, one.name, howText(one.how, source->deletion), one.what});
    }
    form.比較結果.text = found == 0 ? u"%1：今の登録簿と違うところはありません"_s.arg(source->name)
                                    : u"%1：今の登録簿と違う記録 %2件"_s.arg(source->name).arg(found);
    if (found > linesShown)
        form.比較結果.text += u"（はじめの%1件を表示。「絞り込み」に番号か名前を入れて下さい）"_s.arg(linesShown);
}

// Reads the source at the line again; false where the user stopped it.
bool compare(控えForm& form, int line, desk::Desk& desk) {
    clearDifferences(form);
    form.控え一覧.highlighted = form.chosen = line;
    const Source& source = *chosenSource(form);
    const auto progress = desk.progress(title);
    bool done = true;
    {
        const auto step = [&progress](const QString& text) {
            return [&progress, text](int percent) { return progress->advance(percent, text); };
        };
        store::CopySource copy(source.path, store::upgradeSteps(), step(u"控えを読んでいます"_s));
        if (!source.proven)
            done = copy.prove(step(u"控えを確かめています"_s));
        if (done) {
            const auto differences =
                store::compareWithNow(copy, registered(), step(u"控えと今の登録簿を比べています"_s));
            done = differences.has_value();
            if (done)
                form.differences = *differences;
        }
    }
    if (!done)
        form.控え一覧.highlighted = form.chosen = 0;
    fillDifferences(form);
    return done;
}

// Runs read on the source chosen; where that cannot be read, tells it and shows what there is now.
template <class Read> void withSource(控えForm& form, desk::Desk& desk, const Read& read) {
    try {
        read();
    } catch (const store::Error& failure) {
        clearDifferences(form);
        listSources(form);
        desk.notify(failure.message(), title);
    }
}

bool noneChosen(const 控えForm& form, desk::Desk& desk) {
    if (chosenSource(form))
        return false;
    desk.notify(u"上の一覧から控えを選んで下さい"_s, title);
    return true;
}

void bringBack(控えForm& form, const store::Records& records, desk::Desk& desk) {
    store::Database database;
    const desk::BroughtBack result = desk::bringBack(database, records, desk, title);
    if (result.stopped)
        return;
    desk.notify(desk::toldOf(result), title);
    compare(form, form.chosen, desk);
}

} // namespace

void beginCopies(控えForm& form, desk::ScreenContext&, desk::Desk& desk) {
    store::removeOldDeletions(registered(), QDateTime(desk.today(), QTime::currentTime()));
    clearDifferences(form);
    listSources(form);
    fillDifferences(form);
}

void chooseSource(控えForm& form, desk::ScreenContext&, desk::Desk& desk) {
    const int line = form.控え一覧.clickedRow;
    if (line < 1 || line > static_cast<int>(form.sources.size())) {
        desk.notify(u"指示位置が有効範囲外です。"_s, title);
        return;
    }
    form.絞り込み.text.clear();
    withSource(form, desk, [&] {
        if (!compare(form, line, desk))
            desk.inform(u"比べるのを中止しました"_s);
    });
}

void narrow(控えForm& form, desk::ScreenContext&, desk::Desk&) {
    fillDifferences(form);
}

void chooseRecord(控えForm& form, desk::ScreenContext&, desk::Desk& desk) {
    const int line = form.控え内容.clickedRow;
    if (line < 1 || line > static_cast<int>(form.shown.size())) {
        desk.notify(u"指示位置が有効範囲外です。"_s, title);
        return;
    }
    form.控え内容.highlighted = line;
}

void restoreAll(控えForm& form, desk::ScreenContext&, desk::Desk& desk) {
    if (noneChosen(form, desk))
        return;
    const Source source = *chosenSource(form);
    if (source.deletion) {
        if (desk.ask(u"%1で消えたものをすべて戻します。今の記録は変わりません。よろしいですか？"_s.arg(source.name),
                     title))
            withSource(form, desk, [&] {
                store::CopySource copy(source.path);
                bringBack(form, copy.reading([&copy] { return store::takenBy(copy.database()); }), desk);
            });
        return;
    }
    bool there = false;
    withSource(form, desk, [&] {
        const store::CopySource copy(source.path);
        there = true;
    });
    if (!there || !desk.ask(u"登録簿をまるごと%1に戻します。この控えの後に入力したものは、登録簿からなくなります。"
                            "今の登録簿も控えとして残します。よろしいですか？"_s.arg(source.name),
                            title, desk::Preset::no))
        return;
    QString kept;
    {
        const auto progress = desk.progress(title);
        kept = store::restore(source.path, registered(), QDateTime(desk.today(), QTime::currentTime()),
                              [&](int percent) { progress->advance(percent, u"控えを確かめて戻しています"_s); });
    }
    const QString replaced =
        kept.isEmpty() ? QString() : u"\n置き換えた登録簿はここにあります: %1"_s.arg(QDir::toNativeSeparators(kept));
    // The program opens none but the newest layout.
    try {
        if (store::isOlder(registered()))
            store::upgradeRegister(registered(), QDateTime(desk.today(), QTime::currentTime()));
    } catch (const std::exception& failure) {
        desk.notify(u"登録簿を%1に戻しましたが、新しい版に進められませんでした。\n"_s.arg(source.name) +
                        store::explain(failure) + replaced,
                    title);
        return;
    }
    clearDifferences(form);
    listSources(form);
    fillDifferences(form);
    desk.notify(u"登録簿を%1に戻しました。"_s.arg(source.name) + replaced, title);
}

void bringBackChosen(控えForm& form, desk::ScreenContext&, desk::Desk& desk) {
    if (noneChosen(form, desk))
        return;
    if (form.控え内容.highlighted == 0) {
        desk.notify(u"下の一覧から戻す記録を選んで下さい"_s, title);
        return;
    }
    const Difference one = form.differences[form.shown[static_cast<std::size_t>(form.控え内容.highlighted - 1)]];
    if (one.how == Difference::How::onlyNow) {
        desk.notify(u"控えにはない記録です。今のまま残っています"_s, title);
        return;
    }
    const Source source = *chosenSource(form);
    withSource(form, desk, [&] {
        store::CopySource copy(source.path);
        const store::Records records = copy.reading([&] { return copy.record(one.kind, one.rowid); });
        if (records.size() == 0)
            throw store::Error(0, u"控えの中身が変わっています。一覧から選び直して下さい"_s);
        const QString more = records.size() > 1 ? u"と、それに属する%1件"_s.arg(records.size() - 1) : QString();
        const QString number = one.household == 0 ? QString() : QString::number(one.household) + u' ';
        if (desk.ask(u"%1から「%2 %3%4」%5を戻します。今の記録は変わりません。よろしいですか？"_s.arg(
                         source.name, store::kindText(one.kind), number, one.name, more),
                     title))
            bringBack(form, records, desk);
    });
}

} // namespace copies
