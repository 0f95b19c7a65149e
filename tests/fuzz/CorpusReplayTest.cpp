#include "FuzzTarget.h"

#include <QDirIterator>
#include <QFile>

#include <gtest/gtest.h>

namespace lmp {

/// Every seed, and every input that once broke something, through the same functions as the fuzzers.
TEST(CorpusReplayTest, EveryInputKeepsItsPromise) {
    struct Target {
        QString folder;
        void (*run)(QByteArrayView);
    };
    for (const auto &[folder, run] :
         {Target{QStringLiteral("child_output"), fuzzChildOutput}, Target{QStringLiteral("claude"), fuzzClaude},
          Target{QStringLiteral("commands"), fuzzCommands}, Target{QStringLiteral("events"), fuzzEvents},
          Target{QStringLiteral("markdown"), fuzzMarkdown}, Target{QStringLiteral("records"), fuzzRecords}}) {
        int seen = 0;
        QDirIterator files(QStringLiteral(LMP_FUZZ_CORPUS "/") + folder, QDir::Files);
        while (files.hasNext()) {
            QFile file(files.next());
            ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
            const QByteArray bytes = file.readAll();
            run(bytes);
            // A cut input is as good a seed as a whole one.
            for (qsizetype size = 0; size < std::min<qsizetype>(bytes.size(), 64); ++size)
                run(QByteArrayView(bytes).first(size));
            ++seen;
        }
        EXPECT_GT(seen, 0) << folder.toStdString();
    }
}

} // namespace lmp
