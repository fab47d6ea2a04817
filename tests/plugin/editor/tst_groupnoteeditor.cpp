// The editor screen driven as a member drives it: through a navigation stack, with several
// clients of one group on the in-process service.
#include "EditorTestSupport.h"

#include "plugin/editor/ZIQGroupNoteContentView.h"
#include "plugin/editor/ZIQGroupNoteMenuView.h"
#include "plugin/editor/ZIQGroupNoteSettingView.h"
#include "plugin/editor/ZIQGroupNoteTextFieldCell.h"
#include "plugin/editor/ZIQGroupNoteViewController.h"
#include "plugin/provider/ProviderTestSupport.h"

#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/chat/ZIQChatService.h"
#include "platform/Keyboard.h"
#include "platform/MainQueue.h"
#include "platform/NavigationController.h"
#include "platform/NotificationCenter.h"

namespace {

/// A phone showing `user`'s editor over `msgID` (a new note when empty), pushed on a stack.
struct Phone
{
    /// `groupID` stands in for the group's own, as a tips row hands over its message ID.
    Phone(Scene &scene, const QString &user, const QString &msgID = {}, const QString &groupID = {})
        : root(new platform::ViewController)
        , navigation(root)
    {
        scene.group.actAs(user);
        scene.chat.sender = scene.group.client(user);
        const V2VORMessagePtr message = msgID.isEmpty() ? nullptr : scene.find(user, msgID);
        editor = new ZIQGroupNoteViewController(
            groupID.isEmpty() ? scene.group.groupID() : groupID, message, msgID.isEmpty());
        navigation.view()->resize(375, 812);
        navigation.view()->show();
        QApplication::setActiveWindow(navigation.view());
        navigation.pushViewController(editor, false);
        navigation.finishTransition();
        editor->view()->grab(); // runs the layout pass
    }

    ZIQGroupNoteTextFieldCell *row(int index) const
    {
        return qobject_cast<ZIQGroupNoteTextFieldCell *>(
            editor->contentView()->itemTableView()->cellForRow({ 0, index }));
    }
    QPushButton *addButton() const
    {
        return editor->contentView()->findChild<QPushButton *>(QStringLiteral("addButton"));
    }
    int rowCount() const { return int(editor->dataProvider()->dataList().size()); }

    platform::ViewController *root;
    platform::NavigationController navigation;
    QPointer<ZIQGroupNoteViewController> editor;
};

} // namespace

class tst_GroupNoteEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUpEditorTests(); }
    void cleanup() { ZIQThemeManager::shareManager()->applyTheme(ZIQThemeLight); }
    void anOpenEditorFollowsAnotherScreensSend()
    {
        Scene scene;
        const QString msgID = scene.post(1);
        Phone carol(scene, "carol", msgID);
        Phone bob(scene, "bob", msgID);
        QTRY_COMPARE(carol.rowCount(), 1);
        QTRY_COMPARE(bob.rowCount(), 1);
        QTest::mouseClick(bob.addButton(), Qt::LeftButton);
        QTest::mouseClick(bob.editor->submitButton(), Qt::LeftButton);
        QTRY_VERIFY((scene.clock.advance(500), bob.navigation.topViewController() == bob.root));

        QTRY_COMPARE(carol.rowCount(), 2);
        QTRY_VERIFY(carol.row(1));
        QCOMPARE(carol.row(1)->textField()->text(), scene.stored(msgID).constLast());
    }
    void aNoteCanBeComposedAndSentFromTheKeyboard()
    {
        Scene scene;
        Phone alice(scene, "alice");
        QWidget *window = alice.navigation.view();
        const auto tabTo = [&](QWidget *target) {
            for (int presses = 0; presses < 12 && QApplication::focusWidget() != target; ++presses)
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            return QApplication::focusWidget() == target;
        };
        alice.editor->contentView()->infoTextFields().at(0)->setFocus();
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Rota"));
        QVERIFY(tabTo(alice.addButton()));
        QTest::keyClick(alice.addButton(), Qt::Key_Space);
        QTRY_VERIFY((scene.clock.advance(50), alice.row(0) && alice.row(0)->textField()->hasFocus()));
        QTest::keyClicks(alice.row(0)->textField(), QStringLiteral("first shift"));
        QTest::keyClick(alice.row(0)->textField(), Qt::Key_Return);
        window->setFocus();
        QVERIFY(tabTo(alice.editor->submitButton()));
        QTest::keyClick(alice.editor->submitButton(), Qt::Key_Space);
        QTRY_VERIFY((scene.clock.advance(500), alice.navigation.topViewController() == alice.root));
    }
    void theCreatorSetsTheDeadlineThroughThePicker()
    {
        Scene scene;
        const QString msgID = scene.post(1);
        Phone alice(scene, "alice", msgID);
        QTRY_COMPARE(alice.rowCount(), 1);
        QTest::mouseClick(alice.editor->menuView()->findChildren<QPushButton *>().at(1), Qt::LeftButton);
        platform::TableViewCell *deadlineRow = alice.editor->settingView()->tableView()->cellForRow({ 0, 1 });
        QVERIFY(deadlineRow);
        QTest::mouseClick(deadlineRow, Qt::LeftButton);

        // The picker opens at the next whole minute (22:14 UTC on the test clock); three turns
        // of the minute wheel pick 22:17, which the rows show at once in the device's zone.
        QWidget *minutes = nullptr;
        QTRY_VERIFY((minutes = QApplication::activeWindow()->findChild<QWidget *>(QStringLiteral("minuteWheel"))));
        for (int turn = 0; turn < 3; ++turn)
            QTest::keyClick(minutes, Qt::Key_Down);
        const QDateTime picked(QDate(2023, 11, 14), QTime(22, 17), Qt::UTC);
        QTRY_COMPARE(alice.editor->dataProvider()->info()->setting()->deadlineTimestampInMS(),
            double(picked.toMSecsSinceEpoch()));
        deadlineRow = alice.editor->settingView()->tableView()->cellForRow({ 0, 1 });
        QCOMPARE(
            deadlineRow->findChild<QLabel *>(QStringLiteral("valueLabel"))->text(), QStringLiteral("2023-11-15 06:17"));
    }
    void joiningFromATipsRowTellsTheNotesGroup()
    {
        Scene scene;
        const QString msgID = scene.post(1);
        const V2VORMessagePtr tips = scene.join("bob", msgID, QStringLiteral("bob's line"));
        QVERIFY(tips);
        // The kit's own chat service: with no chat on screen it sends into the group a message names.
        ZIQCore::registerService(ZIQCore_ZIQChatService, ZIQChatService::instance());
        Phone carol(scene, "carol", tips->msgID(), tips->msgID());
        QTRY_COMPARE(carol.rowCount(), 2);
        QTest::mouseClick(carol.addButton(), Qt::LeftButton);
        QTest::mouseClick(carol.editor->submitButton(), Qt::LeftButton);
        QTRY_VERIFY((scene.clock.advance(500), carol.navigation.topViewController() == carol.root));

        const auto tipsFromCarol = [&] {
            const QList<V2VORMessagePtr> messages = scene.group.server()->groupMessages(scene.group.groupID());
            return std::count_if(messages.begin(), messages.end(), [](const V2VORMessagePtr &message) {
                return message->sender() == QLatin1String("carol")
                    && ZIQChatClassRegistry::businessIDOf(*message) == QLatin1String("group_note_tips");
            });
        };
        QTRY_COMPARE(tipsFromCarol(), 1);
        QCOMPARE(scene.stored(msgID).size(), 3);
    }
    void creatorComposesAndTheGroupSeesTheNote()
    {
        Scene scene;
        Phone alice(scene, "alice");
        QString postedID;
        QObject observer;
        platform::NotificationCenter::defaultCenter().addObserver(&observer,
            ZIQGroupNoteViewController::GroupNoteUpdatedNotification,
            [&](const platform::Notification &n) { postedID = n.userInfo.value(QStringLiteral("msgID")).toString(); });

        QTest::keyClicks(alice.editor->contentView()->infoTextFields().at(0), QStringLiteral("Picnic"));
        QTest::mouseClick(alice.addButton(), Qt::LeftButton);
        scene.clock.advance(300); // the new row scrolls into view and takes the focus
        QTRY_VERIFY(alice.row(0) && alice.row(0)->textField()->hasFocus());
        const QString entry = alice.row(0)->textField()->text() + QStringLiteral("Bring cake");
        QTest::keyClicks(alice.row(0)->textField(), QStringLiteral("Bring cake"));

        savePicture(alice.navigation.view(), QStringLiteral("editor-composing"));
        QTest::mouseClick(alice.editor->submitButton(), Qt::LeftButton);
        QTRY_VERIFY((scene.clock.advance(500), !postedID.isEmpty()));
        QCOMPARE(platform::ToastCenter::instance()->lastText(), localized("ZIQGroupNoteSendSucceed"));
        QTRY_VERIFY(alice.navigation.topViewController() == alice.root);

        const V2VORMessagePtr seenByBob = scene.find("bob", postedID);
        QVERIFY(seenByBob);
        QVERIFY(seenByBob->customElem() && seenByBob->customElem()->data.contains("Picnic"));
        QCOMPARE(scene.stored(postedID), QStringList { entry });
    }

    void sendIsGuardedForTwoSeconds()
    {
        Scene scene;
        Phone alice(scene, "alice");
        QTest::keyClicks(alice.editor->contentView()->infoTextFields().at(0), QStringLiteral("Rota"));
        QPushButton *send = alice.editor->submitButton();

        QTest::mouseClick(send, Qt::LeftButton);
        QTest::mouseClick(send, Qt::LeftButton);
        QVERIFY(!send->isEnabled());
        scene.clock.advance(ZIQGroupNoteViewController::SendGuardMs - 1);
        QVERIFY(!send->isEnabled());
        scene.clock.advance(1);
        QVERIFY(send->isEnabled());
        QTRY_COMPARE(scene.chat.handedOver.size(), 1);
    }

    void refusals_data()
    {
        QTest::addColumn<bool>("allowMultiSubmit");
        QTest::addColumn<bool>("pastDeadline");
        QTest::addColumn<bool>("repeat");
        QTest::addColumn<int>("taps");
        QTest::addColumn<int>("rowsAdded");
        QTest::addColumn<QString>("toast");

        const QString once = localized("ZIQGroupNoteSubmitOnce");
        const QString stopped = localized("ZIQGroupNoteExceedDeadline");
        QTest::newRow("one entry each: second add") << false << false << false << 2 << 1 << once;
        QTest::newRow("one entry each: second repeat") << false << false << true << 2 << 1 << once;
        QTest::newRow("several entries") << true << false << false << 3 << 3 << QString();
        // Adding after the deadline is left to the submission to refuse; repeating is refused here.
        QTest::newRow("add after the deadline") << true << true << false << 1 << 1 << QString();
        QTest::newRow("repeat after the deadline") << true << true << true << 1 << 0 << stopped;
    }

    void refusals()
    {
        QFETCH(bool, allowMultiSubmit);
        QFETCH(bool, pastDeadline);
        QFETCH(bool, repeat);
        QFETCH(int, taps);
        QFETCH(int, rowsAdded);
        QFETCH(QString, toast);

        Scene scene;
        const double deadline = platform::MainQueue::now() + 60'000;
        const QString msgID = scene.post(1, allowMultiSubmit, deadline);
        Phone bob(scene, "bob", msgID);
        QTRY_COMPARE(bob.rowCount(), 1);
        if (pastDeadline)
            scene.clock.advance(61'000);
        QSignalSpy toasts(platform::ToastCenter::instance(), &platform::ToastCenter::toastShown);

        for (int tap = 0; tap < taps; ++tap) {
            if (repeat)
                QTest::mouseClick(bob.row(0)->repeatButton(), Qt::LeftButton);
            else
                QTest::mouseClick(bob.addButton(), Qt::LeftButton);
        }
        QCOMPARE(bob.rowCount(), 1 + rowsAdded);
        QCOMPARE(toasts.isEmpty() ? QString() : toasts.constLast().at(0).toString(), toast);
    }

    void onlyTheCreatorSeesTabs_data()
    {
        QTest::addColumn<QString>("user");
        QTest::addColumn<bool>("tabs");
        QTest::addColumn<int>("pageTop");
        QTest::addColumn<QString>("theme");
        // The bar ends at 88 on this phone; the tabs take 50 under it.
        QTest::newRow("creator") << "alice" << true << 138 << ZIQThemeLight;
        QTest::newRow("member, dark") << "bob" << false << 88 << ZIQThemeDark;
    }

    void onlyTheCreatorSeesTabs()
    {
        QFETCH(QString, user);
        QFETCH(bool, tabs);
        QFETCH(int, pageTop);
        QFETCH(QString, theme);
        ZIQThemeManager::shareManager()->applyTheme(theme);

        Scene scene;
        const QString msgID = scene.post(2);
        Phone phone(scene, user, msgID);
        QTRY_COMPARE(phone.rowCount(), 2);
        QCOMPARE(phone.editor->menuView()->isVisible(), tabs);
        QCOMPARE(phone.editor->contentView()->geometry().top(), pageTop);
        savePicture(phone.navigation.view(), QStringLiteral("editor-existing-%1-%2").arg(user, theme));
        QVERIFY(phone.editor->settingView()->isHidden());
        if (!tabs)
            return;
        // The tapped tab is highlighted.
        const QList<QPushButton *> tabButtons = phone.editor->menuView()->findChildren<QPushButton *>();
        QTest::mouseClick(tabButtons.at(1), Qt::LeftButton);
        QVERIFY(phone.editor->contentView()->isHidden());
        QVERIFY(phone.editor->settingView()->isVisible());
        QVERIFY(!phone.editor->menuView()->isNoteHighlighted());
        QCOMPARE(tabButtons.at(1)->font().weight(), QFont::Bold);
        QTest::mouseClick(tabButtons.at(0), Qt::LeftButton);
        QVERIFY(phone.editor->settingView()->isHidden());
        QVERIFY(phone.editor->menuView()->isNoteHighlighted());
    }

    void onlyEntryFieldsMoveTheScreenForTheKeyboard()
    {
        Scene scene;
        const QString msgID = scene.post(12);
        Phone bob(scene, "bob", msgID);
        QTRY_COMPARE(bob.rowCount(), 12);
        QWidget *screen = bob.editor->view();

        // An entry near the bottom: the screen rises by what the keyboard covers beyond the free room.
        QTest::mouseClick(bob.addButton(), Qt::LeftButton);
        QTRY_VERIFY((scene.clock.advance(50), bob.row(12) && bob.row(12)->textField()->hasFocus()));
        scene.clock.advance(platform::Keyboard::AnimationDurationMs + 300);
        const float blank = bob.editor->contentView()->bottomBlankHeight();
        QVERIFY(blank < platform::Keyboard::height());
        QTRY_COMPARE(screen->y(), -qRound(platform::Keyboard::height() - blank));
        QVERIFY(bob.editor->isKeyboardVisible());
        savePicture(bob.navigation.view(), QStringLiteral("editor-entry-above-keyboard"));

        bob.row(12)->textField()->clearFocus();
        QTRY_VERIFY((scene.clock.advance(100), screen->pos() == QPoint(0, 0)));
        QVERIFY(!bob.editor->isKeyboardVisible());

        // The page's own fields never move it.
        Phone alice(scene, "alice");
        alice.editor->contentView()->infoTextFields().at(0)->setFocus();
        scene.clock.advance(platform::Keyboard::AnimationDurationMs + 300);
        QVERIFY(platform::Keyboard::instance()->isVisible());
        QCOMPARE(alice.editor->view()->pos(), QPoint(0, 0));
    }

private:
    platform::ScreenScope m_screen { QSize(375, 812) };
};

QTEST_MAIN(tst_GroupNoteEditor)
#include "tst_groupnoteeditor.moc"
