#pragma once

#include <QProcess>
#include <QStringList>

#include <gtest/gtest.h>

// Runs the database tool in a folder; its exit status and all that it printed.
inline std::pair<int, QString> runDatabaseTool(const QString& folder, const QStringList& arguments) {
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(HOSHIREN_DB), arguments);
    EXPECT_TRUE(process.waitForFinished());
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}
