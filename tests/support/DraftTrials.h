#pragma once

#include <QString>

namespace lmp {

/// What becomes of drafts when programs are killed, systems refuse and many write at once; each trial in a folder of
/// its own, as often as it is told. The tests run few of each, the figures many.
///
/// Programs are forked from this one, so it must have no thread but the one that calls.
class DraftTrials {
public:
    struct Kills {
        int kills = 0;
        int midSave = 0;         ///< of them, in the middle of a save
        qint64 acknowledged = 0; ///< saves that had come back
        int lost = 0;            ///< acknowledged, and not what the file holds
        int torn = 0;            ///< files that could not be read, or not as they were written
        int leftBeside = 0;      ///< files of killed writers that a listing did not clear away
        qint64 looks = 0;        ///< how often all files were looked at meanwhile
        qint64 open = 0;         ///< files that others could have read then
    };
    /// Kills a program with SIGKILL again and again while it saves.
    static Kills kill(const QString &folder, int kills);

    struct Sends {
        int kills = 0;
        qint64 typed = 0; ///< sentences that were said to be on disk, and then sent
        int lost = 0;     ///< of them, those that are neither in an input's file nor in a conversation's
        int both = 0;     ///< of them, those that are in both: between the one and the other
    };
    /// Kills a program with SIGKILL again and again while it types and sends, a sentence after another.
    static Sends killSends(const QString &folder, int kills);

    struct Grid {
        int cells = 0;
        int reported = 0;    ///< the failure was reported, and the old content is as it was
        int survived = 0;    ///< the save landed whole in spite of it, as it may with that call
        QString wrong;       ///< each cell that did neither
        unsigned widest = 0; ///< bits beyond the owner's that a file was made with
    };
    /// Lets every system call of a save, a first save and a removal fail in every way there is.
    static Grid grid(const QString &folder);

    struct Race {
        qint64 saves = 0, landed = 0, changedElsewhere = 0;
        qint64 failed = 0;      ///< neither
        qint64 lostUpdates = 0; ///< landed, and not in the file at the end
        double seconds = 0;
    };
    /// Programs that all save one draft, each going on from what it read last.
    static Race race(const QString &folder, int writers, int saves);
};

} // namespace lmp
