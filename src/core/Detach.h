#pragma once

#include "platform/Log.h"

#include <QCoroTask>

#include <exception>

namespace lmp {

/// Lets a task run with nobody waiting. What it throws is logged: a dropped task would swallow it.
///
/// @param what names the task in the log; a string literal
inline void detach(QCoro::Task<> task, const char *what) {
    [](QCoro::Task<> running, const char *name) -> QCoro::Task<> {
        try {
            co_await running;
        } catch (const std::exception &error) {
            qCCritical(logPlatform) << name << "ended with an exception:" << error.what();
        } catch (...) {
            qCCritical(logPlatform) << name << "ended with an exception of an unknown kind";
        }
    }(std::move(task), what);
}

} // namespace lmp
