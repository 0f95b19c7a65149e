#include "MemoryLedgerFixture.h"
#include "support/NothingLeftOver.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

void qml_register_types_Lumenpair_Kit();
void qml_register_types_Lumenpair_Memory();

namespace lmp {

using namespace Qt::StringLiterals;

/// What the keyboard does in the ledger's lists.
class MemoryKeysTest : public MemoryLedgerFixture {
protected:
    MemoryKeysTest() {
        static void (*const volatile modules[])() = {qml_register_types_Lumenpair_Kit,
                                                     qml_register_types_Lumenpair_Memory};
        for (const auto &module : modules)
            static_cast<void>(module);
        engine.addImportPath(u"qrc:/qt/qml"_s);
        window.resize(500, 300);
    }
    /// Shows what `qml` makes, with the ledger, and gives it the keyboard.
    QQuickItem *show(const QByteArray &qml) {
        QQmlComponent component(&engine);
        component.setData("import QtQuick\nimport Lumenpair.Kit\nimport Lumenpair.Memory\n" + qml, {});
        EXPECT_TRUE(component.isReady()) << component.errorString().toStdString();
        if (!component.isReady())
            return nullptr;
        made.reset(qobject_cast<QQuickItem *>(component.createWithInitialProperties({{u"ledger"_s, asVariant()}})));
        made->setParentItem(window.contentItem());
        window.show();
        window.requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        return made.get();
    }
    QVariant asVariant() const { return QVariant::fromValue(ledger.get()); }
    void press(std::initializer_list<Qt::Key> keys) {
        for (const auto key : keys)
            QTest::keyClick(&window, key);
    }

    QQmlEngine engine;
    QQuickWindow window;
    std::unique_ptr<QQuickItem> made;
};

TEST_F(MemoryKeysTest, ACardTallerThanTheListIsReadToItsEnd) {
    auto *list = show(R"(MemoryCardList {
        width: 500; height: 300; model: [80, 1000, 80]
        delegate: MemoryCard { required property int modelData; Item { width: 1; height: modelData } }
    })");
    ASSERT_TRUE(list);
    ASSERT_TRUE(eventually([&] { return list->property("count").toInt() == 3; }));
    QMetaObject::invokeMethod(list, "go", Q_ARG(int, 0), Q_ARG(bool, false));
    const auto current = [&] {
        return list->property("currentIndex").toInt();
    };
    const auto edge = [&](bool end) {
        const auto *card = list->property("currentItem").value<QQuickItem *>();
        const qreal top = card->y() - list->property("contentY").toReal();
        return end ? top + card->height() - list->height() : top;
    };
    press({Qt::Key_Down});
    ASSERT_EQ(current(), 1);
    EXPECT_NEAR(edge(false), 0, 1) << "from its beginning";
    int steps = 0;
    bool seen = false;
    for (; current() == 1 && steps < 20; ++steps) {
        seen = edge(true) <= 1;
        press({Qt::Key_Down});
    }
    EXPECT_TRUE(seen) << "not left before its end";
    EXPECT_GT(steps, 3) << "no step goes over what was not seen";
    EXPECT_EQ(current(), 2);
    press({Qt::Key_Up, Qt::Key_Up});
    ASSERT_EQ(current(), 1);
    EXPECT_LT(edge(false), -300) << "from its end";
    press({Qt::Key_PageUp, Qt::Key_PageUp, Qt::Key_PageUp, Qt::Key_PageUp, Qt::Key_PageUp});
    EXPECT_EQ(current(), 0);
    press({Qt::Key_PageDown, Qt::Key_PageDown});
    EXPECT_EQ(current(), 1);
    press({Qt::Key_End});
    EXPECT_EQ(current(), 2);
}

TEST_F(MemoryKeysTest, AReadingAndADeedLeaveTheKeyboardInItsCard) {
    open();
    auto *list = show("MemoryItemList { width: 500; height: 300; delegate: MemoryItemCard {} }");
    ASSERT_TRUE(list);
    ASSERT_TRUE(eventually([&] { return list->property("count").toInt() == 3; }));
    QMetaObject::invokeMethod(list, "go", Q_ARG(int, 1), Q_ARG(bool, false));
    const auto focused = [this] {
        const QQuickItem *item = window.activeFocusItem();
        while (item && !item->property("memoryId").isValid())
            item = item->parentItem();
        return item ? item->property("memoryId").toString() : QString();
    };
    ASSERT_EQ(focused(), u"m2"_s);
    // One more in front, one gone, and one that has another place.
    server.on(ledgerPath, StubServer::reply(200, R"({"items":[)" + item("m0", "新的") + "," + item("m3", "搬了") + "," +
                                                     item("m2", "住在东边") + R"(],"candidates":[],"chapters":[]})"));
    open();
    EXPECT_EQ(shown(), (QStringList{u"m0"_s, u"m3"_s, u"m2"_s}));
    EXPECT_EQ(role(u"m2"_s, MemoryItemsModel::ContentRole), u"住在东边"_s);
    EXPECT_EQ(focused(), u"m2"_s);

    press({Qt::Key_Tab, Qt::Key_Tab});
    const auto *button = window.activeFocusItem();
    ASSERT_EQ(focused(), u"m2"_s);
    hold("/api/app/memory/freeze");
    ledger->setFrozen(u"m2"_s, true);
    settle();
    EXPECT_TRUE(role(u"m2"_s, MemoryItemsModel::BusyRole).toBool());
    EXPECT_EQ(window.activeFocusItem(), button);
    release(200, "{}");
    EXPECT_TRUE(eventually([this] { return role(u"m2"_s, MemoryItemsModel::FrozenRole).toBool(); }));
    EXPECT_EQ(window.activeFocusItem(), button);
}

TEST_F(MemoryKeysTest, LettersThatAreComposedHaveTheArrowsToThemselves) {
    open();
    auto *head = show("MemoryHead { width: 500; property int downs: 0; onDownPressed: ++downs }");
    ASSERT_TRUE(head);
    QMetaObject::invokeMethod(head, "focusFind");
    ASSERT_TRUE(window.activeFocusItem());
    QInputMethodEvent composing(u"jiang"_s, {});
    QCoreApplication::sendEvent(window.activeFocusItem(), &composing);
    press({Qt::Key_Down});
    EXPECT_EQ(head->property("downs").toInt(), 0);
    QInputMethodEvent composed;
    composed.setCommitString(u"江"_s);
    QCoreApplication::sendEvent(window.activeFocusItem(), &composed);
    press({Qt::Key_Down});
    EXPECT_EQ(head->property("downs").toInt(), 1);
}

} // namespace lmp

int main(int argc, char **argv) {
    qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new lmp::NothingLeftOver);
    return RUN_ALL_TESTS();
}
