// The labels of a year of memorial notices, from the register to the PDF.
//
//     labels_bench REGISTER                the labels of the first 12,000 memorials due
//     labels_bench REGISTER DAY            those of the memorials due until DAY
//     labels_bench REGISTER MOST CSV       makes none: writes the addresses of the first MOST for another label program
//                                          and prints the day of the last one
//
// bench/labels measures one beside this.
#include "printing/address_label_rules.h"
#include "printing/label_painter.h"
#include "store/table.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

namespace {

class QuietDesk : public desk::Desk {
  public:
    void notify(const QString&, const QString&, desk::Icon) override {} // the name of the file
    bool ask(const QString&, const QString&, desk::Preset) override { return false; }
    void inform(const QString&) override {}
    QDate today() const override { return QDate(2026, 11, 22); }
    void open(const QString&, desk::Opening, std::function<void()>) override {}
    void close() override {}
    std::unique_ptr<desk::Progress> progress(const QString&) override { return {}; }
};

const char* const due = "FROM tbl_hohyo JOIN tbl_danka ON tbldnk_no1 = tblhoy_no AND tbldnk_no2 = 0 "
                        "WHERE tblhoy_kaiki_yymd >= '2026-11-22' AND tblhoy_kaiki_s = 0 AND tblhoy_kaiki_rs = 0 "
                        "AND tblhoy_tsuchi_s = 0 ORDER BY tblhoy_kaiki_yymd LIMIT ?";

// The day on which so many labels are reached.
QDate lastDay(int most) {
    store::Database database;
    SQLite::Statement days(database.engine(),
                           std::string("SELECT max(day) FROM (SELECT tblhoy_kaiki_yymd AS day ") + due + ")");
    days.bind(1, most);
    days.executeStep();
    return QDate::fromString(QString::fromUtf8(days.getColumn(0).getText()), Qt::ISODate);
}

void writeAddresses(const QString& path, int most) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw std::runtime_error("the addresses cannot be written");
    file.write("yubin,toshug,jyusho1,jyusho2\n");
    store::Database database;
    SQLite::Statement rows(database.engine(),
                           std::string("SELECT tbldnk_yubin, tbldnk_toshug, tbldnk_jyusho1, tbldnk_jyusho2 ") + due);
    rows.bind(1, most);
    while (rows.executeStep()) {
        QByteArrayList cells;
        for (int i = 0; i < 4; ++i)
            cells << '"' + QByteArray(rows.getColumn(i).getText()).replace('"', "\"\"") + '"';
        file.write(cells.join(',') + '\n');
    }
}

} // namespace

int main(int argc, char** argv) {
    const QApplication app(argc, argv);
    if (argc < 2) {
        std::fputs("labels_bench REGISTER [DAY | MOST CSV]\n", stderr);
        return 2;
    }
    try {
        store::Database::setRegisterPath(QString::fromLocal8Bit(argv[1]));
        if (argc > 3) {
            const int most = std::atoi(argv[2]);
            writeAddresses(QString::fromLocal8Bit(argv[3]), most);
            std::puts(qPrintable(lastDay(most).toString(Qt::ISODate)));
            return 0;
        }
        const QDate last = argc > 2 ? QDate::fromString(QString::fromLocal8Bit(argv[2]), Qt::ISODate) : lastDay(12000);
        if (!last.isValid())
            throw std::runtime_error("no such day");
        QTemporaryDir folder;
        QuietDesk desk;
        QElapsedTimer clock;
        clock.start();
        const auto printer = printing::pdfFile(folder.path(), QStringLiteral("labels"));
        if (printing::宛名出力({2026, 11, 22}, last, printing::LabelMode::memorials, *printer, desk) !=
            printing::LabelOutcome::handedOver)
            throw std::runtime_error("nothing was printed");
        std::printf("labels of memorials due to %s: %.2f s, %lld bytes of PDF\n",
                    qPrintable(last.toString(Qt::ISODate)), static_cast<double>(clock.elapsed()) / 1000.0,
                    static_cast<long long>(QFileInfo(folder.filePath(QStringLiteral("labels.pdf"))).size()));
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
