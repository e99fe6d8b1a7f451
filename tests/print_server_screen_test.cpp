#include "printing/label_painter.h"
#include "support/print_server.h"
#include "support/screen_fixture.h"

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class PrintServer : public RegisterFixture {
  protected:
    ~PrintServer() override { qunsetenv("LPDEST"); }

    // Prints sixty labels. What goes wrong is told in `failure`.
    printing::PrintedJob print(std::chrono::milliseconds patience = printing::serverPatience) {
        failure.clear();
        const auto printer = printing::defaultPrinter(nullptr, today, patience);
        printing::LabelRun run(printer->font());
        for (int i = 0; i < 60; ++i)
            run.printLabel({u"100-00%1"_s.arg(i), u"山田　太郎"_s, u"寺前1丁目2-3"_s, u"川端荘%1号"_s.arg(i)});
        try {
            return printer->print(run);
        } catch (const printing::PrintFailure& told) {
            failure = told.message;
        }
        return {};
    }

    // Does something with a window of this name as soon as it is there.
    void onWindow(const QString& name, const std::function<void(QWidget&)>& act) {
        auto* look = new QTimer(&watcher);
        QObject::connect(look, &QTimer::timeout, &watcher, [=] {
            for (QWidget* window : QApplication::topLevelWidgets()) {
                if (window->objectName() != name || !window->isVisible())
                    continue;
                look->stop();
                act(*window);
                return;
            }
        });
        look->start(20ms);
    }

    QObject watcher;
    QString failure;
};

TEST_F(PrintServer, TakesThePdfWholeAndPrintsItAsItIs) {
    // The queue's own defaults would scale, turn and gather the sheets; no folder for temporary files is there.
    const TestPrintServer server({{"labels", "prints",
                                   "Option number-up 2\nOption fit-to-page true\nOption print-scaling fit\n"
                                   "Option sides two-sided-long-edge\nOption orientation-requested 4\n"
                                   "Option media na_letter_8.5x11in\nOption copies 2\nJobSheets standard none\n"}});
    qputenv("TMPDIR", "/nonexistent");
    const printing::PrintedJob job = print();
    qunsetenv("TMPDIR");
    EXPECT_EQ(failure, QString());
    EXPECT_EQ(job.file + job.waiting, QString());
    const QByteArray pdf = server.document("labels");
    EXPECT_TRUE(pdf.startsWith("%PDF-") && pdf.trimmed().endsWith("%%EOF"));
    const QByteArrayList arguments = server.arguments("labels");
    ASSERT_GE(arguments.size(), 5);
    EXPECT_EQ(arguments[2], "Hoshiren labels");
    EXPECT_EQ(arguments[3], "1");
    const QByteArrayList options = arguments[4].split(' ');
    for (const char* option : {"media=iso_a4_210x297mm", "print-scaling=none", "number-up=1", "sides=one-sided",
                               "orientation-requested=3", "nofit-to-page"})
        EXPECT_TRUE(options.contains(option)) << option << " is not in " << arguments[4].constData();
    EXPECT_FALSE(arguments[4].contains("two-sided") || arguments[4].contains("letter"));
}

TEST_F(PrintServer, TellsWhatBecomesOfAJob) {
    const TestPrintServer server({{"closed", "prints", "Accepting No\n"},
                                  {"torn", "fails"},
                                  {"jammed", "fails", "ErrorPolicy stop-printer\n"},
                                  {"paperless", "lacks paper"},
                                  {"stopped", "prints", "State Stopped\nStateMessage cleaning\n"}});
    struct {
        QByteArray queue;
        QString failure; // its second line begins so; else the job waits
        QString waiting;
    } const cases[] = {
        {"closed", u"理由：このプリンターは印刷を受け付けない設定になっています。"_s, {}},
        {"torn", u"理由：印刷サーバーが印刷を取り消しました。"_s, {}},
        {"jammed", {}, u"理由：プリンターが止まっています。"_s},
        {"paperless", {}, u"理由：用紙がありません。"_s},
        {"stopped", {}, u"理由：プリンターが止まっています。（cleaning）"_s},
    };
    for (const auto& each : cases) {
        qputenv("LPDEST", each.queue);
        const printing::PrintedJob job = print();
        const QString line = (each.failure.isEmpty() ? job.waiting : failure).section(u'\n', 1, 1);
        EXPECT_TRUE(line.startsWith(each.failure.isEmpty() ? each.waiting : each.failure))
            << each.queue.constData() << ": " << failure.toStdString() << job.waiting.toStdString();
        EXPECT_EQ(job.file, QString());
    }
    EXPECT_EQ(server.openJobs(), 3); // those that wait
}

TEST_F(PrintServer, CountsNothingThatTheServerDoesNotHoldWhole) {
    {
        const TestPrintServer server({{"labels"}}, 8192); // no room for the document
        print();
        EXPECT_TRUE(failure.contains(u"ディスクの空きを確認して下さい。"_s)) << failure.toStdString();
        EXPECT_EQ(server.openJobs(), 0);
    }
    for (const auto fault : {FaultyWire::Fault::breaksWithinDocument, FaultyWire::Fault::breaksBeforeAnswer}) {
        const TestPrintServer server({{"labels"}});
        FaultyWire wire(server.port(), fault);
        print();
        EXPECT_GE(wire.broken, 1);
        // An answer that is lost is asked for again.
        const bool whole = fault == FaultyWire::Fault::breaksBeforeAnswer;
        EXPECT_EQ(failure.isEmpty(), whole) << failure.toStdString();
        EXPECT_EQ(server.document("labels").isEmpty(), !whole);
        EXPECT_EQ(server.openJobs(), 0);
    }
}

TEST_F(PrintServer, TellsOfAJobThatIsLostAfterItWasTaken) {
    TestPrintServer server({{"held", "prints", "Option job-hold-until indefinite\n"}});
    // Some time after the server has the job, however long that took.
    const auto later = [&server](const std::function<void()>& act) {
        return [&server, act](QWidget& window) {
            auto* poll = new QTimer(&window);
            QObject::connect(poll, &QTimer::timeout, &window, [&server, &window, act, poll] {
                if (server.openJobs() == 0)
                    return;
                poll->stop();
                QTimer::singleShot(700ms, &window, act);
            });
            poll->start(100ms);
        };
    };
    onWindow(u"印刷中"_s, later([&] { server.forgetJobs("held"); }));
    print();
    EXPECT_TRUE(failure.contains(u"宛名が印刷サーバーから消えました。"_s)) << failure.toStdString();
    EXPECT_TRUE(print().waiting.contains(u"印刷サーバーで保留になっています。"_s)) << failure.toStdString();
    onWindow(u"印刷中"_s, later([&] { server.stop(); }));
    print();
    EXPECT_TRUE(failure.contains(u"印刷サーバーとの接続が切れました。"_s)) << failure.toStdString();
    EXPECT_TRUE(failure.endsWith(u"それを捨てて、もう一度印刷して下さい。"_s)) << failure.toStdString();
}

TEST_F(PrintServer, TakesAJobBackWhenTheServerFallsSilent) {
    const TestPrintServer::Queue queue{"paperless", "lacks paper"};
    const TestPrintServer server({queue});
    FaultyWire wire(server.port(), FaultyWire::Fault::silentAfterDocument);
    print(1500ms);
    EXPECT_TRUE(failure.startsWith(u"印刷サーバーの返事がありません。"_s)) << failure.toStdString();
    EXPECT_TRUE(QTest::qWaitFor([&server] { return server.openJobs() == 0; }));
}

TEST_F(PrintServer, StaysAwakeBesideAServerThatDoesNotAnswer) {
    TestPrintServer server({{"labels"}});
    server.freeze();
    QElapsedTimer beat;
    qint64 longest = 0;
    QTimer pulse;
    QObject::connect(&pulse, &QTimer::timeout, [&] {
        if (beat.isValid())
            longest = std::max(longest, beat.elapsed());
        beat.start();
    });
    pulse.start(10ms);
    onWindow(u"印刷中"_s, [](QWidget& window) { EXPECT_FALSE(window.close()); });
    QElapsedTimer whole;
    whole.start();
    print(1500ms);
    EXPECT_TRUE(failure.startsWith(u"印刷サーバーの返事がありません。"_s)) << failure.toStdString();
    EXPECT_GE(whole.elapsed(), 1500);
    // A window that waited for the server itself would stand still for all of that.
    EXPECT_LT(longest, 1200);
    onWindow(u"印刷中"_s, [](QWidget& window) { window.findChild<QPushButton*>(u"中止"_s)->click(); });
    print();
    EXPECT_TRUE(failure.startsWith(u"印刷を中止しました。"_s)) << failure.toStdString();
    // What nobody waits for any more is not printed when the server wakes up.
    server.thaw();
    QTest::qWait(500);
    EXPECT_TRUE(QTest::qWaitFor([&server] { return server.openJobs() == 0; }));
    EXPECT_TRUE(server.document("labels").isEmpty());
}

TEST_F(PrintServer, TakesTheQueueThatIsMeantAndAsksOnce) {
    const auto jobs = [](const TestPrintServer& server, const QByteArray& queue) {
        return server.document(queue).isEmpty() ? 0 : server.arguments(queue).front().toInt();
    };
    const TestPrintServer server({{"first", "prints", "Accepting No\n"}, {"second"}, {"third"}});
    int asked = 0;
    const auto choose = [&](bool go) {
        onWindow(u"プリンター選択"_s, [&asked, go](QWidget& window) {
            ++asked;
            auto* list = window.findChild<QListWidget*>(u"プリンター一覧"_s);
            EXPECT_EQ(list->currentRow(), 1);
            EXPECT_EQ(list->item(0)->text(), u"Printer first（受け付け停止中）"_s);
            list->setCurrentRow(2);
            window.findChild<QPushButton*>(go ? u"印刷"_s : u"キャンセル"_s)->click();
        });
    };
    choose(false);
    print();
    EXPECT_TRUE(failure.startsWith(u"印刷を中止しました。"_s)) << failure.toStdString();
    choose(true);
    print();
    EXPECT_EQ(jobs(server, "third"), 1);
    print(); // chosen already
    EXPECT_EQ(jobs(server, "third"), 2);
    EXPECT_EQ(asked, 2);
    qputenv("LPDEST", "second"); // the default goes first
    print();
    EXPECT_EQ(jobs(server, "second"), 3);
    qunsetenv("LPDEST");
    QSettings(u"hoshiren"_s, u"hoshiren"_s).setValue(u"printing/queue"_s, u"first"_s);
    print();
    EXPECT_TRUE(failure.endsWith(u"次に印刷するときは、プリンターを選び直せます。"_s)) << failure.toStdString();
    choose(true);
    print();
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(jobs(server, "third"), 4);
}

TEST_F(PrintServer, WritesAPdfWhereNoPrinterIs) {
    {
        const TestPrintServer server({});
        EXPECT_EQ(print().file, path(u"宛名_20261122.pdf"_s));
    }
    EXPECT_EQ(print().file, path(u"宛名_20261122_2.pdf"_s));
    qputenv("CUPS_SERVER", "127.0.0.1:1");
    EXPECT_EQ(print().file, path(u"宛名_20261122_3.pdf"_s));
    EXPECT_EQ(failure, QString());
}

class PrintedNotices : public ScreenFixture {};

TEST_F(PrintedNotices, AreMarkedOnlyWhenTheServerHoldsThem) {
    {
        store::Database database;
        store::Table(database, store::idxdnk_no).insert(sampleHousehold(1));
    }
    execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_kaiki_yymd, tblhoy_kaiki_s, tblhoy_kaiki_rs, tblhoy_tsuchi_s, "
            "tblhoy_zokunameg) VALUES (1, '2026-12-01', 0, 0, 0, '山田　キヨ')"_s);
    const TestPrintServer server({{"closed", "prints", "Accepting No\n"}, {"open"}});
    open(u"法要通"_s);
    qputenv("LPDEST", "closed");
    expectBeginning(u"プリンター「Printer closed」に印刷できません。"_s, u"宛名印刷"_s);
    press(u"法要通"_s, u"通知"_s);
    EXPECT_EQ(query(u"SELECT tblhoy_tsuchi_s FROM tbl_hohyo"_s), u"0"_s);
    qputenv("LPDEST", "open");
    press(u"法要通"_s, u"通知"_s);
    qunsetenv("LPDEST");
    EXPECT_EQ(query(u"SELECT tblhoy_tsuchi_s FROM tbl_hohyo"_s), u"1"_s);
    EXPECT_FALSE(server.document("open").isEmpty());
}

} // namespace
