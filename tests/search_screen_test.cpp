#include "app/screens.h"
#include "search/register_finder.h"
#include "store/embedded_data.h"
#include "support/screen_fixture.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <QFile>
#include <QLabel>
#include <QTabWidget>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr int enough = 30'000; // ms

class Search : public ScreenFixture {
  protected:
    Search() {
        execute(uR"(
            INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, tbldnk_toshuk,
              tbldnk_yubin, tbldnk_jyusho1, tbldnk_jyusho2, tbldnk_tel, tbldnk_fax, tbldnk_chiku, tbldnk_bikou) VALUES
              (1, 0, '佐藤', 'サトウ', '佐藤　一郎', 'サトウ イチロウ', '100-0013', '霞ヶ関1-2', '', '03-1234-5678', '', '東町', '護持会'),
              (2, 0, '齋藤', 'サイトウ', '齋藤　実', 'サイトウ ミノル', '380-0001', '寺前2丁目', 'ハイツA', '026(234)5670', '', '西町', ''),
              (2, 1, '齋藤', 'サイトウ', '齋藤　分', 'サイトウ ワケル', '380-0002', '山手3', '', '026-999-0000', '', '', ''),
              (3, 0, '髙橋', 'ﾀｶﾊｼ', '髙橋　清', 'ﾀｶﾊｼ ｷﾖｼ', '', '', '', '', '', '', '100%_''"'),
              (4, 0, '渡邉', 'わたなべ', '渡邉　学', 'わたなべ　まなぶ', '', '', '', '', '', '', ''),
              (5, 0, '佐藤山', 'サトウヤマ', '', '', '', '', '', '', '', '', ''),
              (6, 0, '大佐藤', 'オオサトウ', '', '', '', '', '', '', '', '', '');
            INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_namek, tblkzk_seishikbn,
              tblkzk_yubin, tblkzk_jusho1, tblkzk_tel, tblkzk_chiku, tblkzk_bikou) VALUES
              (1, '佐藤', '佐藤　花子', 'サトウ ハナコ', '0', '100-0013', '霞ヶ関1-2', '03-1234-5678', '東町', ''),
              (1, '佐藤', '佐藤　次郎', 'サトウ ジロウ', '0', '', '', '090-1111-2222', '', '京都に住む'),
              (1, '佐藤', '佐藤　キヨ', 'サトウ キヨ', '1', '', '', '', '', ''),
              (3, '髙橋', '髙橋　古', 'ﾀｶﾊｼ ﾌﾙ', '1', '', '', '', '', '');
            INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg, tblkak_zokunamek, tblkak_kaimyoug,
              tblkak_kaimyouk, tblkak_mei_ymd) VALUES
              (1, '佐藤', '佐藤　キヨ', 'サトウ キヨ', '慈光院德雲大姉', 'ジコウイントクウンダイシ', '2020-01-02');
            INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_bohyo_mei, tblhak_biko)
              VALUES (11, '東1', '0003', 1, '佐藤家之墓', ''), (12, '西', '7', 0, '', '角地'),
                     (13, '東2', '0001', 3, '髙橋家', '');)"_s);
        workplace->finder =
            std::make_unique<search::RegisterFinder>(std::function<bool()>(), std::chrono::milliseconds(0));
        wait(u"佐藤"_s, [](const desk::FoundList& found) { return !found.lines.empty(); });
    }
    ~Search() override { workplace->finder.reset(); }

    static QString shown(const desk::FoundList& found) {
        QStringList rows;
        for (const desk::FoundLine& line : found.lines)
            rows << line.what + line.number + u' ' + line.name;
        if (found.more)
            rows << u"ほか %1"_s.arg(found.more);
        return rows.join(u" | "_s);
    }
    QString found(const QString& typed) { return shown(workplace->finder->find(typed)); }
    bool wait(const QString& typed, const std::function<bool(const desk::FoundList&)>& good) {
        return QTest::qWaitFor([&] { return good(workplace->finder->find(typed)); }, enough);
    }
    bool waitFor(const QString& typed, const QString& rows) {
        return wait(typed, [&](const desk::FoundList& list) { return shown(list) == rows; });
    }
    // As the input method hands over what it has composed.
    static void write(QLineEdit& box, const QString& text) {
        QInputMethodEvent event;
        event.setCommitString(text);
        QApplication::sendEvent(&box, &event);
    }
    // As another program does.
    void elsewhere(const char* sql) {
        SQLite::Database other(QFile::encodeName(store::Database::registerPath()).constData(), SQLite::OPEN_READWRITE);
        other.exec(sql);
    }

    const QString sato = u"檀家1 佐藤（佐藤　一郎）"_s;
    const QString hanako = u"家族1 佐藤　花子"_s;
    const QString kiyo = u"過去帳1 佐藤　キヨ（慈光院德雲大姉）"_s;
    const QString grave = u"お墓11 佐藤家之墓（東1 0003）"_s;
    const QString saito = u"檀家2 齋藤（齋藤　実）"_s;
    const QString branch = u"檀家2-1 齋藤（齋藤　分）"_s;
    const QString takahashi = u"檀家3 髙橋（髙橋　清）"_s;
};

} // namespace

TEST_F(Search, FindsWhatIsMeantInTheOrderThatIsExpected) {
    const QString jiro = u"家族1 佐藤　次郎"_s;
    const QString furu = u"家族（故人）3 髙橋　古"_s;
    const QString takahashiGrave = u"お墓13 髙橋家（東2 0001）"_s;
    const QString watanabe = u"檀家4 渡邉（渡邉　学）"_s;
    const QString vacant = u"お墓12 （西 7）"_s;
    const struct {
        QString typed;
        QStringList rows;
    } cases[] = {
        // Whole, beginning, inside; the living, graves, the dead; the reading.
        {u"佐藤"_s, {sato, jiro, hanako, kiyo, u"檀家5 佐藤山"_s, grave, u"檀家6 大佐藤"_s}},
        {u"サトウ"_s, {sato, jiro, hanako, kiyo, u"檀家5 佐藤山"_s, u"檀家6 大佐藤"_s}},
        {u"さとう はなこ"_s, {sato, hanako}},
        {u"ｻﾄｳﾊﾅ"_s, {hanako}},
        {u"佐藤花"_s, {hanako}},
        {u"花子"_s, {hanako}},
        // Variants, both ways.
        {u"斉藤"_s, {saito, branch}},
        {u"斎藤　わける"_s, {branch}},
        {u"高橋"_s, {takahashi, furu, takahashiGrave}},
        {u"たかはし"_s, {takahashi, furu}},
        {u"渡辺"_s, {watanabe}},
        {u"ワタナベ"_s, {watanabe}},
        {u"霞ケ関"_s, {sato}},
        {u"徳雲"_s, {kiyo}},
        {u"とくうん"_s, {kiyo}},
        // Numbers.
        {u"5678"_s, {sato}},
        {u"０３ー１２３４"_s, {sato}},
        {u"0312345678"_s, {sato}},
        {u"026-234-5670"_s, {saito}},
        {u"0902222"_s, {}},
        {u"2222"_s, {jiro}},
        {u"1000013"_s, {sato}},
        {u"11"_s, {grave, jiro}},
        // Other fields.
        {u"護持"_s, {sato}},
        {u"東町"_s, {sato}},
        {u"はいつａ"_s, {saito}},
        {u"西"_s, {vacant, saito}},
        {u"京都"_s, {jiro}},
        // Words of one household, whichever of its rows they stand in.
        {u"佐藤 東1"_s, {sato, grave}},
        {u"東1 佐藤 佐藤"_s, {sato, grave}},
        {u"花子 慈光"_s, {sato, hanako, kiyo}},
        {u"佐藤 高橋"_s, {}},
        {u"齋藤 寺前"_s, {saito}},
        // What is nothing, and what means something elsewhere.
        {u"%"_s, {takahashi}},
        {u"_'\""_s, {takahashi}},
        {u"'"_s, {takahashi}},
        {u"*"_s, {}},
        {u" -　ー\n"_s, {}},
        {u"佐藤\n花子"_s, {sato, hanako}},
        {QString(200, u'あ'), {}},
        {QString(100, u'サ') + QString(100, u' ').replace(u' ', u"ト "_s), {}},
        {u"\U000E0100\u3099"_s, {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(found(c.typed), c.rows.join(u" | "_s)) << c.typed.toStdString();
    const auto matched = [this](const QString& typed) { return workplace->finder->find(typed).lines.at(0).matched; };
    EXPECT_EQ(matched(u"さとう 東1"_s), u"カナ：サトウ、区画：東1"_s);
    EXPECT_EQ(matched(u"026234"_s), u"電話番号：026(234)5670"_s);
    EXPECT_EQ(matched(u"たかはし"_s), u"カナ：ﾀｶﾊｼ"_s);
}

TEST_F(Search, TheTableOfVariantsNamesEachCharacterOnce) {
    QString seen;
    int lines = 0;
    for (const QString& line : QString::fromUtf8(store::embedded_variants).split(u'\n', Qt::SkipEmptyParts)) {
        if (line.startsWith(u'#'))
            continue;
        ++lines;
        for (const char32_t c : line.toUcs4()) {
            const QString one = QString::fromUcs4(&c, 1);
            EXPECT_EQ(one.normalized(QString::NormalizationForm_KC), one) << line.toStdString();
            EXPECT_FALSE(seen.contains(one)) << line.toStdString();
            seen += one;
        }
    }
    EXPECT_GT(lines, 100);
}

TEST_F(Search, TwoHundredRowsAndHowManyMore) {
    execute(
        u"INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg) WITH RECURSIVE n(i) AS (VALUES (100) UNION ALL "
        "SELECT i + 1 FROM n WHERE i < 349) SELECT i, 0, '多' || i FROM n"_s);
    ASSERT_TRUE(wait(u"多"_s, [](const desk::FoundList& list) { return !list.lines.empty(); }));
    const auto list = workplace->finder->find(u"多"_s);
    ASSERT_EQ(list.lines.size(), 200U);
    EXPECT_EQ(list.more, 50);
    EXPECT_EQ(list.lines[199].number, u"299"_s);
}

TEST_F(Search, OwnChangesAreFoundAtTheNextKey) {
    execute(u"UPDATE tbl_danka SET tbldnk_nameg = '新' WHERE tbldnk_no1 = 6"_s);
    EXPECT_EQ(found(u"大佐藤"_s), u""_s);
    EXPECT_EQ(found(u"新"_s), u"檀家6 新"_s);
    // A grave goes from nobody to a household, another one the other way; a member moves.
    execute(u"UPDATE tbl_ohaka SET tblhak_dnk_no = 13 - tblhak_no WHERE tblhak_no > 11"_s);
    EXPECT_EQ(found(u"佐藤 西"_s), sato + u" | お墓12 （西 7）"_s);
    EXPECT_EQ(found(u"高橋 東2"_s), u"お墓13 髙橋家（東2 0001）"_s);
    execute(u"UPDATE tbl_kazoku SET tblkzk_no1 = 6 WHERE tblkzk_nameg = '佐藤　花子'"_s);
    EXPECT_EQ(found(u"花子"_s), u"家族6 佐藤　花子"_s);
    execute(u"DELETE FROM tbl_kakocho"_s); // every row, which the engine does not tell one by one
    EXPECT_TRUE(waitFor(u"慈光"_s, {}));
    {
        store::Database database;
        store::Write undone(database);
        store::remove(database, store::idxdnk_no, std::int16_t{1}, std::int16_t{0});
    }
    EXPECT_TRUE(found(u"護持"_s).startsWith(sato));
}

TEST_F(Search, ChangesOfOthersAreFoundWithoutAnyDoing) {
    elsewhere("UPDATE tbl_danka SET tbldnk_nameg = '甲' WHERE tbldnk_no1 = 6");
    EXPECT_TRUE(waitFor(u"甲"_s, u"檀家6 甲"_s));
    SQLite::Database log(QFile::encodeName(store::Database::registerPath()).constData(), SQLite::OPEN_READWRITE);
    log.exec("PRAGMA journal_mode = WAL");
    for (const QString& name : {u"乙"_s, u"丙"_s}) {
        log.exec("UPDATE tbl_danka SET tbldnk_nameg = '" + name.toStdString() + "' WHERE tbldnk_no1 = 6");
        EXPECT_TRUE(waitFor(name, u"檀家6 "_s + name));
    }
    log.exec("PRAGMA journal_mode = DELETE");
    // Nobody who writes is kept from it, nor is the search kept waiting.
    log.exec("BEGIN EXCLUSIVE");
    EXPECT_EQ(found(u"丙"_s), u"檀家6 丙"_s);
    log.exec("UPDATE tbl_danka SET tbldnk_nameg = '戊' WHERE tbldnk_no1 = 6");
    QTest::qWait(300);
    log.exec("COMMIT");
    EXPECT_TRUE(waitFor(u"戊"_s, u"檀家6 戊"_s));
}

TEST_F(Search, ARegisterThatIsReplacedRemovedOrUnreadable) {
    const QString name = store::Database::registerPath();
    const auto note = [this](const QString& beginning) {
        return wait(u"佐藤"_s,
                    [&](const desk::FoundList& list) { return list.lines.empty() && list.note.startsWith(beginning); });
    };
    ASSERT_TRUE(QFile::rename(name, path(u"away"_s)));
    EXPECT_EQ(found(u"佐藤"_s), u""_s);
    EXPECT_TRUE(note(u"登録簿ファイルを開けません。"_s));
    store::createRegister(name);
    EXPECT_TRUE(note(u"見つかりません。"_s));
    ASSERT_TRUE(QFile::remove(name));
    ASSERT_TRUE(QFile::rename(path(u"away"_s), name));
    EXPECT_TRUE(wait(u"佐藤"_s, [](const desk::FoundList& list) { return !list.lines.empty(); }));

    // A text that is none; then a page that holds no rows.
    execute(u"UPDATE tbl_danka SET tbldnk_nameg = CAST(x'E4FF' AS TEXT), tbldnk_bikou = '読' WHERE tbldnk_no1 = 5"_s);
    EXPECT_EQ(found(u"読"_s), u"檀家5 \uFFFD\uFFFD"_s);
    const qint64 page = query(u"SELECT rootpage - 1 FROM sqlite_master WHERE name = 'tbl_kakocho'"_s).toLongLong() *
                        query(u"PRAGMA page_size"_s).toLongLong();
    {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(page));
        file.write(QByteArray(64, '\xff'));
    }
    elsewhere("UPDATE tbl_danka SET tbldnk_nameg = '己' WHERE tbldnk_no1 = 6");
    EXPECT_TRUE(wait(u"己"_s, [](const desk::FoundList& list) {
        return list.note.contains(u"読めない"_s) || list.note.contains(u"壊れて"_s);
    }));
}

TEST_F(Search, TheBoxOnTheMenu) {
    const QString menu = u"メニュー"_s;
    const QString results = u"さがす結果"_s;
    open(menu);
    auto& box = control<QLineEdit>(menu, u"さがす"_s);
    box.setText(u"佐藤"_s);
    auto& table = control<QTableView>(menu, results);
    const auto enter = [&box](const QString& typed) {
        box.clear();
        write(box, typed);
        QTest::keyClick(&box, Qt::Key_Return);
    };
    const struct {
        QString typed;
        QString screen;
        QString box;
        QString holds;
        int down = 0;
    } cases[] = {
        {u"5678"_s, u"檀家登"_s, u"frm01_toshug"_s, u"佐藤　一郎"_s},
        {u"花子"_s, u"家族登"_s, u"frm12_namek"_s, u"サトウ ハナコ"_s},
        {u"徳雲"_s, u"過去登"_s, u"frm11_zoknameg"_s, u"佐藤　キヨ"_s},
        {u"東1 さとう"_s, u"お墓登"_s, u"frm13_bohyo"_s, u"佐藤家之墓"_s, 1},
        {u"角地"_s, u"お墓新"_s, u"frm13_haka_no"_s, u"12"_s},
        {u"わける"_s, u"檀家登"_s, u"frm01_eno"_s, u"1"_s},
        {u"さいとう"_s, u"檀家登"_s, u"frm01_tel"_s, u"026-999-0000"_s, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed.toStdString());
        box.clear();
        EXPECT_FALSE(table.isVisible());
        write(box, c.typed);
        EXPECT_TRUE(table.isVisible());
        for (int i = 0; i < c.down; ++i)
            QTest::keyClick(&box, Qt::Key_Down);
        QTest::keyClick(&box, Qt::Key_Return);
        ASSERT_NE(workplace->find(c.screen), nullptr);
        EXPECT_EQ(text(c.screen, c.box), c.holds);
        EXPECT_FALSE(table.isVisible());
        // From any screen the keyboard comes back to the box.
        ASSERT_TRUE(QTest::qWaitForWindowActive(&screen(c.screen)));
        QTest::keyClick(&screen(c.screen), Qt::Key_F3);
        EXPECT_EQ(screen(menu).focusWidget(), &box);
        EXPECT_TRUE(table.isVisible());
        EXPECT_EQ(box.selectedText(), c.typed);
        close(c.screen);
    }
    // A screen that is open on another record asks.
    enter(u"5678"_s);
    enter(u"髙橋"_s);
    EXPECT_EQ(text(u"檀家登"_s, u"frm01_no"_s), u"1"_s);
    press(u"檀家登"_s, u"表示する"_s);
    EXPECT_EQ(text(u"檀家登"_s, u"frm01_no"_s), u"3"_s);
    close(u"檀家登"_s);

    box.clear();
    write(box, u"佐藤"_s);
    clickCell(menu, results, 3);
    EXPECT_EQ(text(u"家族登"_s, u"frm12_nameg"_s), u"佐藤　花子"_s);
    close(u"家族登"_s);
    // The row has gone before Enter.
    box.clear();
    write(box, u"大佐藤"_s);
    elsewhere("DELETE FROM tbl_danka WHERE tbldnk_no1 = 6");
    expect(u"この記録は変更されたか、削除されています。もう一度探して下さい。"_s, u"さがす"_s);
    QTest::keyClick(&box, Qt::Key_Return);

    QTest::keyClick(&box, Qt::Key_Escape);
    EXPECT_EQ(box.text(), u""_s);
    EXPECT_FALSE(table.isVisible());
    box.setText(u"佐藤\nはな"_s);
    EXPECT_EQ(box.text(), u"佐藤 はな"_s);
    EXPECT_EQ(cell(menu, results, 2, 2), u"佐藤　花子"_s);
}

TEST_F(Search, TheBoxAboveTheTabs) {
    open(u"メニュー"_s);
    auto& list = open(u"檀家一覧"_s);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&list));
    EXPECT_EQ(list.focusWidget(), control<QTabWidget>(u"檀家一覧"_s, u"SSTab1"_s).focusProxy());
    QTest::keyClick(&list, Qt::Key_F3);
    auto& box = control<QLineEdit>(u"檀家一覧"_s, u"さがす"_s);
    EXPECT_EQ(QApplication::focusWidget(), &box);
    write(box, u"さとうはな"_s);
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_EQ(text(u"家族登"_s, u"frm12_nameg"_s), u"佐藤　花子"_s);
}

TEST_F(Search, ComposingIsLeftAloneAndTheSearchRestsUnderAModalScreen) {
    auto& menu = open(u"メニュー"_s);
    auto& box = control<QLineEdit>(u"メニュー"_s, u"さがす"_s);
    box.setText(u"佐藤"_s);
    auto& table = control<QTableView>(u"メニュー"_s, u"さがす結果"_s);
    QInputMethodEvent composing(u"はな"_s, {});
    QApplication::sendEvent(&box, &composing);
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Return, Qt::Key_Escape})
        QTest::keyClick(&box, key);
    EXPECT_EQ(box.text(), u"佐藤"_s);
    EXPECT_TRUE(table.isVisible());
    EXPECT_EQ(workplace->find(u"家族登"_s), nullptr);
    QInputMethodEvent done;
    done.setCommitString(u" 花子"_s);
    QApplication::sendEvent(&box, &done);
    EXPECT_EQ(cell(u"メニュー"_s, u"さがす結果"_s, 2, 2), u"佐藤　花子"_s);

    workplace->open(u"マスター登"_s, &menu, desk::Opening::modal);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&screen(u"マスター登"_s)));
    QTest::keyClick(&screen(u"マスター登"_s), Qt::Key_F3);
    EXPECT_NE(QApplication::activeWindow(), &menu);
}
