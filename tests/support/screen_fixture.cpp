#include "support/screen_fixture.h"

#include "app/application.h"

#include <QApplication>

ScreenFixture::ScreenFixture() : ScreenDriver([](const QString& failure) { ADD_FAILURE() << failure.toStdString(); }) {
    workplace->today = [this] { return today; };
}

ScreenFixture::~ScreenFixture() {
    allShown();
    workplace.reset();
}

int main(int argc, char* argv[]) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Nothing is printed on the printer of whoever runs the tests.
    qputenv("CUPS_SERVER", "/nonexistent");
    QApplication application(argc, argv);
    app::prepare(application);
    return RUN_ALL_TESTS();
}
