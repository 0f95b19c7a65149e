#pragma once

#include "identity/ChapterDTO.h"
#include "screens/memory/MemoryItemsModel.h"

#include <QStringList>

namespace lmp {

/// A chapter as a list shows it.
struct ChapterRow {
    QString chapterId;
    QString heading;
    QString date;
    QString real;
    QString story;
    QString evidence; ///< one a line
    bool pending = false;
    bool busy = false; ///< a request about it is under way
    bool operator==(const ChapterRow &) const = default;

    static ChapterRow of(const ChapterDTO &chapter) {
        return {.chapterId = chapter.id,
                .heading = QStringLiteral("第 %1 章 · ").arg(chapter.n) + chapter.title,
                .date = MemoryItemsModel::dateText(chapter.date),
                .real = chapter.real,
                .story = chapter.story,
                .evidence = QStringList(chapter.evidence).join(u'\n'),
                .pending = chapter.pending.value_or(false)};
    }
};
BOOST_DESCRIBE_STRUCT(ChapterRow, (), (chapterId, heading, date, real, story, evidence, pending, busy))

} // namespace lmp
