#pragma once

#include "core/AuthService.h"
#include "core/Json.h"
#include "support/Await.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace lmp {

/// A sandbox of the test's own, as a process, with its state in a folder of its own.
class SandboxFixture : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    /// What the sandbox finds in its environment: no model, unless a test has one.
    virtual QProcessEnvironment sandboxEnvironment() const;

    /// Replaces all faults by this one; an empty text leaves none.
    void fault(const QByteArray &rule);
    /// Signs in by code and gives the session token.
    QString signIn(const QString &phone);
    /// What GET of a path below the site's root answers.
    boost::json::value look(const QString &path, const QString &token = {});
    APIClient client(const QString &token = {}) const;

    QTemporaryDir m_folder;
    QUrl m_site;
    QProcess m_sandbox;
};

} // namespace lmp
