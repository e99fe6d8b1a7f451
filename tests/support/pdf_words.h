#pragma once

#include <QProcess>
#include <QRegularExpression>
#include <QString>

#include <gtest/gtest.h>

#include <vector>

// A piece of text of a PDF where poppler finds it, in millimetres from the top left corner of its page.
struct Word {
    int page;
    double left;
    double top;
    double right;
    QString text;
};

inline std::vector<Word> wordsOf(const QString& pdf) {
    QProcess reader;
    reader.start(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), pdf, QStringLiteral("-")});
    EXPECT_TRUE(reader.waitForFinished()) << "pdftotext (poppler-utils) is needed";
    const QString output = QString::fromUtf8(reader.readAllStandardOutput());
    static const QRegularExpression element(
        QStringLiteral("<page|<word xMin=\"([^\"]*)\" yMin=\"([^\"]*)\" xMax=\"([^\"]*)\"[^>]*>([^<]*)"));
    const auto millimetres = [](const QString& points) { return points.toDouble() / 72 * 25.4; };
    std::vector<Word> words;
    int page = 0;
    for (auto found = element.globalMatch(output); found.hasNext();) {
        const auto match = found.next();
        if (match.captured(1).isEmpty())
            ++page;
        else
            words.push_back({page, millimetres(match.captured(1)), millimetres(match.captured(2)),
                             millimetres(match.captured(3)), match.captured(4)});
    }
    return words;
}
