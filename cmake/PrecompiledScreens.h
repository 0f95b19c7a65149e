// What nearly every file of the screens includes and none of us changes: parsed once a target.
#pragma once
#include <QAbstractListModel>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>
#include <QVariant>
#include <QtQml/qqmlregistration.h>
#include <boost/describe.hpp>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <vector>
// The kit and the Markdown view wait for nothing, and do not link what others wait with.
#if __has_include(<QCoroTask>)
#include <QCoroTask>
#include <boost/json.hpp>
#endif
