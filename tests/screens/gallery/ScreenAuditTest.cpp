// What the gallery finds wrong with a screen, on screens that have exactly that wrong with them.

#include "screens/gallery/ScreenAudit.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>

#include <gmock/gmock.h>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

struct Case {
    const char *name;
    QString fault; ///< the beginning of it; empty for a screen that is all right
    QString body;  ///< of an item of 200 x 100
};

void PrintTo(const Case &one, std::ostream *out) {
    *out << one.name;
}

class ScreenAuditTest : public ::testing::TestWithParam<Case> {};

TEST_P(ScreenAuditTest, findsWhatIsWrong) {
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData("import QtQuick\nimport QtQuick.Templates as T\nItem { width: 200; height: 100; clip: true\n" +
                          GetParam().body.toUtf8() + "}",
                      {});
    const std::unique_ptr<QObject> object(component.create());
    ASSERT_TRUE(object) << component.errorString().toStdString();
    auto *item = qobject_cast<QQuickItem *>(object.get());
    QQuickWindow window;
    window.resize(200, 100);
    item->setParentItem(window.contentItem());
    window.show();
    // The size reaches what the window holds only through an event.
    QCoreApplication::processEvents();
    static_cast<void>(window.grabWindow()); // lays it out

    const QStringList faults = ScreenAudit::faults(window, 1.0);
    item->setParentItem(nullptr);
    const auto all = faults.join(u'\n').toStdString();
    if (GetParam().fault.isEmpty())
        EXPECT_TRUE(faults.isEmpty()) << all;
    else {
        ASSERT_EQ(faults.size(), 1) << all;
        EXPECT_TRUE(faults.first().startsWith(GetParam().fault)) << all;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Screens, ScreenAuditTest,
    ::testing::Values(
        Case{"wrapped", {}, u"Text { width: 100; wrapMode: Text.Wrap; text: '一二三四五六七八九十一二三四五' }"_s},
        Case{"elided", {}, u"Text { width: 60; elide: Text.ElideRight; text: '一二三四五六七八九十' }"_s},
        Case{"invisible", {}, u"Text { visible: false; width: 20; text: '一二三四五六七八九十' }"_s},
        Case{"tooWide", u"wider"_s, u"Text { width: 60; text: '一二三四五六七八九十' }"_s},
        Case{"tooHigh", u"higher"_s,
             u"Text { width: 60; height: 20; wrapMode: Text.Wrap; text: '一二三四五六七八九十' }"_s},
        Case{"tooManyLines", u"cut off"_s,
             u"Text { width: 60; maximumLineCount: 1; wrapMode: Text.Wrap; text: '一二三四五六七八九十' }"_s},
        Case{"outAtTheSide", u"hidden at the side"_s, u"Text { x: 180; text: '一二三四五' }"_s},
        Case{"outBelow", u"hidden above or below"_s, u"Text { y: 92; text: '一二三四五' }"_s},
        Case{"scrolledOut",
             {},
             u"Flickable { anchors.fill: parent; contentHeight: 400; Text { y: 92; text: '一二三四五' } }"_s},
        Case{"onOtherText", u"lies on other text"_s, u"Text { text: '一二三' } Text { y: 4; text: '四五六' }"_s},
        Case{"besideOtherText", {}, u"Column { Text { text: '一二三' } Text { text: '四五六' } }"_s},
        Case{"coveredOnPurpose", {}, u"Text { text: '一二三' } Item { z: 1; Text { text: '四五六' } }"_s},
        Case{"smallTarget", u"too small"_s,
             u"T.Button { implicitWidth: 20; implicitHeight: 20; Accessible.name: '关' }"_s},
        Case{"noName", u"has no name"_s, u"T.Button { implicitWidth: 40; implicitHeight: 40 }"_s},
        Case{"named", {}, u"T.Button { implicitWidth: 40; implicitHeight: 40; Accessible.name: '关' }"_s}),
    [](const auto &info) { return std::string(info.param.name); });

} // namespace
} // namespace lmp

int main(int argc, char **argv) {
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
