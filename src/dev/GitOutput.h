#pragma once

#include "dev/DevGit.h"

namespace lmp {

/// Reads what git prints for programs: fields that end in a zero byte, so that a name may hold anything else. Free of
/// state; what cannot be read is left out.
class GitOutput {
public:
    /// `status --porcelain=v1 --branch -z`
    static DevGit::Status status(const QByteArray &output);
    /// `diff --numstat -z`
    static QList<DevGit::NumStat> numstat(const QByteArray &output);
    /// `config --show-scope --null --get-regexp`, of filters: "filter.name" for each that the repository brings itself,
    /// but for the well-known one of large files.
    static QStringList ownFilters(const QByteArray &output);
    /// `diff`, at most `limit` characters of it.
    static QString diff(const QByteArray &output, int limit);
};

} // namespace lmp
