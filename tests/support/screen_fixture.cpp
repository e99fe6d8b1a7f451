#include "support/screen_fixture.h"

#include "app/application.h"
#include "app/screens.h"

#include <QApplication>
#include <QSettings>

#include <utility>

using namespace Qt::StringLiterals;

ScreenFixture::ScreenFixture() : ScreenDriver([](const QString& failure) { ADD_FAILURE() << failure.toStdString(); }) {
    workplace->today = [this] { return today; };
}

ScreenFixture::~ScreenFixture() {
    allShown();
    workplace.reset();
}

void ScreenFixture::openEvery(const std::function<void(ui::Screen& shown)>& look) {
    if (!std::exchange(filled_, true)) {
        store::Database database;
        store::Table(database, store::idxdnk_no).insert(sampleHousehold(1));
        execute(uR"(
            INSERT INTO tbl_ohaka (tblhak_no, tblhak_bohyo_mei) VALUES (1, '山田家');
            INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_sei_ymd) VALUES
              (1, '山田', '山田　二', '1990-01-01');
            INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg, tblkak_mei_ymd) VALUES
              (1, '山田', '山田　一', '2026-01-01');
            INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_yymd) VALUES
              (1, '山田', '山田　一', '2027-01-01'))"_s);
    }
    for (const QString& name : app::screens().keys()) {
        SCOPED_TRACE(name.toStdString());
        workplace->context.publishHousehold(1);
        workplace->context.nameDeceased(u"山田"_s, u"山田　一"_s);
        workplace->context.hoy_kaiki_yymd = QDate(2027, 1, 1);
        ui::Screen& shown = open(name);
        EXPECT_EQ(shown.objectName(), name);
        look(shown);
        close(name);
    }
}

int main(int argc, char* argv[]) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Nothing is printed on the printer of whoever runs the tests.
    qputenv("CUPS_SERVER", "/nonexistent");
    QApplication application(argc, argv);
    // The letters are not as large as the machine's user wants them.
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    app::prepare(application);
    return RUN_ALL_TESTS();
}
