#include "support/screen_fixture.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QProgressDialog>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

const QString householdTitle = u"檀家一括登録"_s;
const QString graveTitle = u"お墓一括登録"_s;

// A folder 寺 with the folder 書類, the program started in 寺.
class TransferScreens : public ScreenFixture {
  protected:
    TransferScreens() {
        const QDir folder(QDir(directory.path()).canonicalPath());
        folder.mkpath(u"寺/書類/控え"_s);
        QFile::copy(QStringLiteral(TEST_DATA "/households.csv"), path(u"寺/書類/檀家.csv"_s));
        QFile::copy(QStringLiteral(TEST_DATA "/graves.csv"), path(u"寺/書類/お墓.csv"_s));
        QFile(path(u"寺/書類/読んで.txt"_s)).open(QIODevice::WriteOnly);
        before_ = QDir::currentPath();
        QDir::setCurrent(folder.filePath(u"寺"_s));
    }
    ~TransferScreens() override { QDir::setCurrent(before_); }

    QStringList list(const QString& screenName, const QString& name) {
        auto& box = control<QListWidget>(screenName, name);
        QStringList lines;
        for (int i = 0; i < box.count(); ++i)
            lines << box.item(i)->text();
        return lines;
    }
    // Clicks the folder of this name, whatever its depth.
    void clickFolder(const QString& screenName, const QString& name, const QString& folder) {
        const QStringList lines = list(screenName, name).filter(QRegularExpression(u"^　*%1$"_s.arg(folder)));
        ASSERT_EQ(lines.size(), 1) << folder.toStdString();
        clickLine(screenName, name, lines[0]);
    }

  private:
    QString before_;
};

TEST_F(TransferScreens, PickersLeadToTheFile) {
    const QString name = u"檀家一括"_s;
    open(name);
    EXPECT_EQ(control<QListWidget>(name, u"INDir"_s).currentItem()->text().trimmed(), u"寺"_s);
    EXPECT_EQ(list(name, u"INFile"_s), QStringList());
    clickFolder(name, u"INDir"_s, u"書類"_s);
    EXPECT_EQ(list(name, u"INFile"_s), QStringList({u"お墓.csv"_s, u"檀家.csv"_s, u"読んで.txt"_s}));
    EXPECT_EQ(list(name, u"OUTFile"_s), QStringList()) << "the other picker stays where it is";
    clickLine(name, u"INFile"_s, u"檀家.csv"_s);
    EXPECT_EQ(text(name, u"入力File"_s), u"檀家.csv"_s);
    auto& folders = control<QListWidget>(name, u"INDir"_s);
    EXPECT_EQ(folders.currentItem()->text().trimmed(), u"書類"_s);
    EXPECT_EQ(list(name, u"INDir"_s).filter(u"控え"_s).size(), 1) << "the folders in it are listed below";

    // Another drive, and back to where this one was left.
    auto& drives = control<QComboBox>(name, u"INDrive"_s);
    const QString drive = drives.currentText();
    const auto choose = [&](int line) {
        drives.setCurrentIndex(line);
        drives.activated(line);
    };
    const int other = drives.currentIndex() == 0 ? 1 : 0;
    ASSERT_GT(drives.count(), 1);
    choose(other);
    EXPECT_NE(folders.currentItem()->text().trimmed(), u"書類"_s);
    choose(drives.findText(drive));
    EXPECT_EQ(folders.currentItem()->text().trimmed(), u"書類"_s);
    EXPECT_EQ(list(name, u"INFile"_s).size(), 3);

    open(u"檀家出力"_s);
    clickFolder(u"檀家出力"_s, u"OUTDir"_s, u"書類"_s);
    EXPECT_EQ(list(u"檀家出力"_s, u"OUTFile"_s), QStringList({u"お墓.csv"_s, u"檀家.csv"_s}));
}

TEST_F(TransferScreens, TheFileDialogIsASecondWay) {
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    open(u"お墓一括"_s);
    QTimer::singleShot(0, [this] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        dialog->selectFile(path(u"寺/書類/お墓.csv"_s));
        QMetaObject::invokeMethod(dialog, "accept");
    });
    press(u"お墓一括"_s, u"IN参照"_s);
    EXPECT_EQ(text(u"お墓一括"_s, u"入力File"_s), u"お墓.csv"_s);
    EXPECT_EQ(control<QListWidget>(u"お墓一括"_s, u"INDir"_s).currentItem()->text().trimmed(), u"書類"_s);
    EXPECT_EQ(control<QListWidget>(u"お墓一括"_s, u"INFile"_s).currentItem()->text(), u"お墓.csv"_s);
}

// Import, export, import of the export with 更新: nothing changes but the dates written.
TEST_F(TransferScreens, AnExportComesBackAsItWas) {
    const struct {
        QString import, importTitle, export_, input, option, importReport, exportReport, again, table, date;
        int rows;
    } cases[] = {
        {u"檀家一括"_s, householdTitle, u"檀家出力"_s, u"檀家.csv"_s, u"入力"_s,
         u"檀家さん 1000 件中 64 がエラーで登録されませんでした"_s, u"檀家さん 936 件を出力しました"_s,
         u"檀家さん 936 件を登録しました"_s, u"tbl_danka"_s, u"tbldnk_addymd"_s, 936},
        {u"お墓一括"_s, graveTitle, u"お墓出力"_s, u"お墓.csv"_s, QString(),
         u"お墓登録 600 件中 42 がエラーで登録されませんでした"_s, u"お墓登録情報 558 件を出力しました"_s,
         u"お墓登録 558 件を登録しました"_s, u"tbl_ohaka"_s, u"tblhak_add_ymd"_s, 558},
    };
    for (const auto& c : cases) {
        open(c.import);
        clickFolder(c.import, u"INDir"_s, u"書類"_s);
        clickLine(c.import, u"INFile"_s, c.input);
        type(c.import, u"出力File"_s, u"エラー.csv"_s);
        if (!c.option.isEmpty())
            press(c.import, c.option);
        press(c.import, u"エラー"_s);
        expect(c.importReport, c.importTitle);
        press(c.import, u"確定"_s);
        EXPECT_TRUE(QFile::exists(path(u"寺/エラー.csv"_s)));
        // Texts that no file of the code page holds, and a row from another day.
        execute(u"UPDATE tbl_danka SET tbldnk_nameg = '𠮷田\"', tbldnk_bikou = 'O''Hara, &#x41;' WHERE tbldnk_no1 = 5; "
                "UPDATE tbl_ohaka SET tblhak_bohyo_mei = 'ﾊﾗ \"家\"', tblhak_biko = '﨑, ''' WHERE tblhak_no = 5; "
                "UPDATE %1 SET %2 = '2001-02-03'"_s.arg(c.table, c.date));
        const QString all = query(u"SELECT * FROM %1 ORDER BY rowid"_s.arg(c.table));
        open(c.export_);
        clickFolder(c.export_, u"OUTDir"_s, u"書類"_s);
        type(c.export_, u"出力File"_s, u"控え.csv"_s);
        expect(c.exportReport, c.export_);
        if (c.rows == 936)
            expect(u"次の 1 件にはシフトJISにない文字又は改行があります。文字参照（&#x5409; の形）で出力しました。\n\n"
                   "5-0 𠮷田\""_s,
                   c.export_);
        press(c.export_, u"確定"_s);

        type(c.import, u"入力File"_s, u"控え.csv"_s);
        press(c.import, u"エラー"_s);
        press(c.import, u"更新"_s);
        expect(c.again, c.importTitle);
        press(c.import, u"確定"_s);
        EXPECT_EQ(control<QLabel>(c.import, u"お知らせ文"_s).text(),
                  u"新しい記録 0 件、書き換えた記録 %1 件"_s.arg(c.rows));
        EXPECT_EQ(query(u"SELECT count(*) FROM %1 WHERE %2 = '2026-11-22'"_s.arg(c.table, c.date)),
                  QString::number(c.rows));
        execute(u"UPDATE %1 SET %2 = '2001-02-03'"_s.arg(c.table, c.date));
        EXPECT_TRUE(query(u"SELECT * FROM %1 ORDER BY rowid"_s.arg(c.table)) == all) << c.table.toStdString();
    }
}

TEST_F(TransferScreens, ALongRunShowsItsProgressAndCanBeStopped) {
    QFile big(path(u"寺/大.csv"_s));
    ASSERT_TRUE(big.open(QIODevice::WriteOnly));
    const QByteArray record = "1,0,\"\x8C\xB4\",\"\xCA\xD7\",1,,1,1,,1,,,1,1,1,,\r\n";
    for (int i = 0; i < 100'000; ++i)
        big.write(record);
    big.close();
    const QString name = u"檀家一括"_s;
    open(name);
    type(name, u"入力File"_s, u"大.csv"_s);
    type(name, u"出力File"_s, u"エラー.csv"_s);
    press(name, u"入力"_s);
    press(name, u"更新"_s);
    int shown = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        auto* progress = QApplication::activeModalWidget() ? screen(name).findChild<QProgressDialog*>() : nullptr;
        if (!progress || !progress->isVisible() || ++shown > 1)
            return;
        const QRegularExpressionMatch text =
            QRegularExpression(u"^登録 (\\d+) 件　エラー 0 件$"_s).match(progress->labelText());
        EXPECT_TRUE(text.hasMatch()) << progress->labelText().toStdString();
        const int counted = text.captured(1).toInt();
        expect(u"途中で中止しました。\n檀家さん %1 件を登録しました"_s.arg(counted), householdTitle);
        EXPECT_FALSE(screen(name).close()) << "not from under its run";
        progress->findChild<QPushButton*>()->click();
    });
    watch.start(5);
    press(name, u"確定"_s);
    EXPECT_GT(shown, 0);
}

} // namespace
