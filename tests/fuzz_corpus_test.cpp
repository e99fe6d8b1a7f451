#include "targets.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

// Inputs that once broke a promise, or reach code that others do not. A target aborts where one is broken.
TEST(FuzzCorpus, HoldsForEveryInput) {
    for (const fuzz::Target& target : fuzz::targets) {
        const QDir corpus(QStringLiteral(FUZZ_CORPUS) + u'/' + QString::fromLatin1(target.name));
        const auto inputs = corpus.entryInfoList(QDir::Files);
        EXPECT_FALSE(inputs.isEmpty()) << target.name;
        for (const QFileInfo& input : inputs) {
            SCOPED_TRACE(input.filePath().toStdString());
            QFile file(input.filePath());
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            target.run(file.readAll());
        }
    }
}

} // namespace
