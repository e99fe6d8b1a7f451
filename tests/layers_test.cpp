// The order of the rooms in docs/architecture.md is the order of the includes.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

const QString root = QStringLiteral(HOSHIREN_SOURCES);

QString read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// Each room's place in the order; rooms between two arrows share one.
QMap<QString, int> documentedOrder() {
    static const QRegularExpression line(u"^ {4}values ←.*$"_s, QRegularExpression::MultilineOption);
    const QString order = line.match(read(root + u"/docs/architecture.md"_s)).captured();
    QMap<QString, int> places;
    const QStringList groups = order.split(u'←');
    for (qsizetype at = 0; at < groups.size(); ++at)
        for (const QString& room : groups[at].split(u','))
            places[room.trimmed()] = static_cast<int>(at);
    return places;
}

bool isScreen(const QString& file) {
    static const QRegularExpression name(u"_(screens?|painter|server)\\.(h|cpp)$"_s);
    return name.match(file).hasMatch();
}

// What is wrong with an include of one file by another, both as "room/file"; empty when nothing is.
QString objection(const QString& from, const QString& to, const QMap<QString, int>& order) {
    const QString room = from.section(u'/', 0, 0);
    const QString other = to.section(u'/', 0, 0);
    if (!order.contains(room) || !order.contains(other))
        return u"a room without a place in the order"_s;
    if (room == u"app")
        return {};
    if (room != other && order[other] >= order[room])
        return u"against the order of the rooms"_s;
    if (!isScreen(from) && room != u"ui" && (other == u"ui" || isScreen(to)))
        return u"a rule that knows a screen"_s;
    if (room != other && isScreen(to) && !to.endsWith(u"_painter.h"))
        return u"a screen that knows another room's"_s;
    return {};
}

TEST(Layers, IncludesFollowTheOrderOfTheRooms) {
    const QMap<QString, int> order = documentedOrder();
    static const QRegularExpression include(u"^#include \"([^\"]+)\""_s, QRegularExpression::MultilineOption);
    const QDir sources(root + u"/src"_s);
    ASSERT_EQ(order.keys(), sources.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name));
    QStringList wrong;
    int seen = 0;
    for (QDirIterator files(sources.path(), {u"*.h"_s, u"*.cpp"_s}, QDir::Files, QDirIterator::Subdirectories);
         files.hasNext();) {
        const QString from = sources.relativeFilePath(files.next());
        for (const auto& found : include.globalMatch(read(sources.filePath(from)))) {
            ++seen;
            const QString to = QDir::cleanPath(found.captured(1));
            if (const QString why = objection(from, to, order); !why.isEmpty())
                wrong << u"%1 includes %2: %3"_s.arg(from, to, why);
        }
    }
    EXPECT_GT(seen, 100);
    EXPECT_TRUE(wrong.isEmpty()) << wrong.join(u'\n').toStdString();
}

TEST(Layers, AnArrowAgainstTheOrderIsSeen) {
    const QMap<QString, int> order = documentedOrder();
    const struct {
        QString from, to;
        bool allowed;
    } cases[] = {
        {u"family/death_registration_rules.cpp"_s, u"memorials/schedule_rules.h"_s, true},
        {u"memorials/schedule_rules.cpp"_s, u"family/registration_rules.h"_s, false},
        {u"graves/registration_rules.cpp"_s, u"households/registration_rules.h"_s, false},
        {u"store/table.h"_s, u"desk/form.h"_s, false},
        {u"desk/held.cpp"_s, u"ui/screen.h"_s, false},
        {u"graves/registration_rules.cpp"_s, u"ui/layout.h"_s, false},
        {u"graves/registration_rules.cpp"_s, u"graves/grave_screens.h"_s, false},
        {u"graves/registration_screen.cpp"_s, u"ui/layout.h"_s, true},
        {u"graves/fee_notice_screen.cpp"_s, u"printing/label_painter.h"_s, true},
        {u"graves/fee_notice_rules.cpp"_s, u"printing/label_painter.h"_s, false},
        {u"family/registration_screen.cpp"_s, u"masters/master_screen.h"_s, false},
        {u"ui/screen.cpp"_s, u"calendar/eras.h"_s, false},
        {u"app/screens.cpp"_s, u"masters/master_screen.h"_s, true},
        {u"ui/screen.cpp"_s, u"app/screens.h"_s, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(objection(c.from, c.to, order).isEmpty(), c.allowed) << c.from.toStdString() << c.to.toStdString();
}

} // namespace
