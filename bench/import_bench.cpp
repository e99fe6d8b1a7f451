// The import of a full household file beside the sqlite3 shell's own of the same rows.
//
//     import_bench REGISTER
#include "compare.h"

#include "store/table.h"
#include "transfer/household_transfer_rules.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

void require(bool good, const char* what) {
    if (!good)
        throw std::runtime_error(what);
}

// Says Yes to everything and shows nothing.
class QuietDesk : public desk::Desk {
  public:
    void notify(const QString&, const QString&, desk::Icon) override {}
    bool ask(const QString&, const QString&, desk::Preset) override { return true; }
    void inform(const QString&) override {}
    QDate today() const override { return {2026, 11, 22}; }
    void open(const QString&, desk::Opening, std::function<void()>) override {}
    void close() override {}
    std::unique_ptr<desk::Progress> progress(const QString&) override { return std::make_unique<NoProgress>(); }

  private:
    struct NoProgress : desk::Progress {
        bool advance(int, const QString&) override { return true; }
    };
};

void shell(const QStringList& arguments, const QString& output = QProcess::nullDevice()) {
    QProcess process;
    process.setStandardOutputFile(output);
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(u"sqlite3"_s, arguments);
    require(process.waitForFinished(-1) && process.exitCode() == 0, "sqlite3");
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fputs("import_bench REGISTER\n", stderr);
        return 2;
    }
    try {
        // In the register's own folder: the same disk for all.
        const QString full = QString::fromLocal8Bit(argv[1]);
        QTemporaryDir folder(full + u"-XXXXXX"_s);
        const QString csv = folder.filePath(u"in.csv"_s);
        const QString errors = folder.filePath(u"errors.csv"_s);
        const QString rows = folder.filePath(u"rows.csv"_s);
        const QString empty = folder.filePath(u"empty.mdb"_s);
        const QString target = folder.filePath(u"Hoshiren.mdb"_s);
        const QString byHand = folder.filePath(u"byhand.db"_s);
        QuietDesk desk;

        store::Database::setRegisterPath(full);
        const int households = transfer::ExportHouseholds(csv, desk);
        shell({full, u"-csv"_s, u"SELECT * FROM tbl_danka"_s}, rows);
        // One record in a hundred is wrong besides, for the error file.
        {
            QFile file(csv);
            require(file.open(QIODevice::ReadOnly), "in.csv");
            QByteArray bytes;
            for (int line = 0; !file.atEnd(); ++line) {
                bytes += file.readLine();
                if (line % 100 == 0)
                    bytes += "\"1\",\"0\",\"\",\"x\",\"1\",\"\",\"1\",\"1\",\"\",\"1\",\"\",\"\",\"1\",\"1\",\"1\","
                             "\"\",\"\"\r\n";
            }
            file.close();
            require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), "in.csv");
        }
        store::createRegister(empty);
        shell({empty, u"SELECT sql || ';' FROM sqlite_master WHERE tbl_name = 'tbl_danka' AND type <> 'view'"_s},
              folder.filePath(u"schema.sql"_s));
        shell({folder.filePath(u"emptybyhand.db"_s), u".read "_s + folder.filePath(u"schema.sql"_s)});
        store::Database::setRegisterPath(target);

        const auto prepare = [&] {
            QFile::remove(target);
            QFile::remove(byHand);
            require(QFile::copy(empty, target) && QFile::copy(folder.filePath(u"emptybyhand.db"_s), byHand), "copy");
        };
        const auto shellImport = [&] { shell({byHand, u".import --csv "_s + rows + u" tbl_danka"_s}); };
        const auto import = [&](bool numbered) {
            const auto counts = transfer::ImportHouseholds(csv, errors, {.numbered = numbered, .update = false}, desk);
            require(counts && counts->read - counts->rejected == households, "not every household was stored");
        };
        constexpr int rounds = 9;
        bench::compare(
            "import of all households, numbers from the file", 4.0, rounds, 1, [&] { import(true); }, shellImport,
            prepare);
        bench::compare(
            "import of all households, automatic numbers", 4.0, rounds, 1, [&] { import(false); }, shellImport,
            prepare);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", store::explain(failure).toLocal8Bit().constData());
        return 1;
    }
}
