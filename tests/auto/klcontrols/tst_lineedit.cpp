// SPDX-License-Identifier: GPL-3.0-or-later
#include "lineedit.h"

#include <QtGui/QIntValidator>
#include <QtTest/QtTest>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

class tst_LineEdit : public QObject
{
    Q_OBJECT

private:
    // A window with the edit and a second widget that can take the focus.
    struct Window
    {
        QWidget window;
        LineEdit* edit = nullptr;
        QPushButton* other = nullptr;
    };

    void makeWindow(Window& w)
    {
        auto* layout = new QVBoxLayout(&w.window);
        w.edit = new LineEdit(&w.window);
        w.other = new QPushButton(QStringLiteral("other"), &w.window);
        w.other->setFocusPolicy(Qt::StrongFocus);
        layout->addWidget(w.edit);
        layout->addWidget(w.other);
        w.window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w.window));
        w.window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&w.window));
        w.edit->setFocus(Qt::OtherFocusReason);
        QTRY_VERIFY(w.edit->hasFocus());
    }

    void moveFocusAway(Window& w)
    {
        w.other->setFocus(Qt::TabFocusReason);
        QTRY_VERIFY(w.other->hasFocus());
    }

private Q_SLOTS:
    void returnCommitsTypedText_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::newRow("Return") << int(Qt::Key_Return) << Qt::KeyboardModifiers(Qt::NoModifier);
        QTest::newRow("Enter") << int(Qt::Key_Enter) << Qt::KeyboardModifiers(Qt::KeypadModifier);
    }

    void returnCommitsTypedText()
    {
        QFETCH(int, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        Window w;
        makeWindow(w);
        QSignalSpy spy(w.edit, &LineEdit::textCommited);
        QTest::keyClicks(w.edit, QStringLiteral("10 ms"));
        QCOMPARE(spy.count(), 0);
        QTest::keyClick(w.edit, Qt::Key(key), modifiers);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("10 ms"));
    }

    void returnWithoutChangeStillCommits()
    {
        Window w;
        makeWindow(w);
        w.edit->setText(QStringLiteral("5"));
        QSignalSpy spy(w.edit, &LineEdit::textCommited);
        QTest::keyClick(w.edit, Qt::Key_Return);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("5"));
    }

    void focusOutAfterChangeCommitsOnce()
    {
        Window w;
        makeWindow(w);
        QSignalSpy spy(w.edit, &LineEdit::textCommited);
        QTest::keyClicks(w.edit, QStringLiteral("abc"));
        moveFocusAway(w);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("abc"));

        // Coming back and leaving again without typing commits nothing.
        w.edit->setFocus(Qt::OtherFocusReason);
        QTRY_VERIFY(w.edit->hasFocus());
        moveFocusAway(w);
        QCOMPARE(spy.count(), 1);
    }

    void focusOutWithoutChangeCommitsNothing()
    {
        Window w;
        makeWindow(w);
        QSignalSpy spy(w.edit, &LineEdit::textCommited);
        moveFocusAway(w);
        QCOMPARE(spy.count(), 0);
    }

    void programmaticTextIsNoUserChange()
    {
        Window w;
        makeWindow(w);
        QSignalSpy spy(w.edit, &LineEdit::textCommited);
        w.edit->setText(QStringLiteral("from code"));
        moveFocusAway(w);
        QCOMPARE(spy.count(), 0);
    }

    void rewriteWithBlockedSignalsDropsPendingChange()
    {
        // The owner rewrites the text with the edit's signals blocked (as a
        // view refreshing its field); the user's unfinished entry is gone.
        Window w;
        makeWindow(w);
        QSignalSpy spy(w.edit, &LineEdit::textCommited);
        QTest::keyClicks(w.edit, QStringLiteral("12"));
        {
            const QSignalBlocker blocker(w.edit);
            w.edit->setText(QStringLiteral("10.00 ms/div"));
        }
        moveFocusAway(w);
        QCOMPARE(spy.count(), 0);
        QCOMPARE(w.edit->text(), QStringLiteral("10.00 ms/div"));
    }

    void returnThenFocusOutCommitsOnce()
    {
        Window w;
        makeWindow(w);
        QSignalSpy spy(w.edit, &LineEdit::textCommited);
        QTest::keyClicks(w.edit, QStringLiteral("7"));
        QTest::keyClick(w.edit, Qt::Key_Return);
        moveFocusAway(w);
        QCOMPARE(spy.count(), 1);
    }

    void editingAfterCommitCommitsAgain()
    {
        Window w;
        makeWindow(w);
        QSignalSpy spy(w.edit, &LineEdit::textCommited);
        QTest::keyClicks(w.edit, QStringLiteral("1"));
        QTest::keyClick(w.edit, Qt::Key_Return);
        QTest::keyClicks(w.edit, QStringLiteral("2"));
        moveFocusAway(w);
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy.at(1).at(0).toString(), QStringLiteral("12"));
    }

    void invalidInputIsNotCommitted()
    {
        Window w;
        makeWindow(w);
        w.edit->setValidator(new QIntValidator(10, 99, w.edit));
        QSignalSpy spy(w.edit, &LineEdit::textCommited);
        QTest::keyClicks(w.edit, QStringLiteral("5"));
        QTest::keyClick(w.edit, Qt::Key_Return);
        QCOMPARE(spy.count(), 0);
        QTest::keyClicks(w.edit, QStringLiteral("5"));
        QTest::keyClick(w.edit, Qt::Key_Return);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("55"));
    }

    void otherKeysDoNotCommit()
    {
        Window w;
        makeWindow(w);
        QSignalSpy spy(w.edit, &LineEdit::textCommited);
        QTest::keyClicks(w.edit, QStringLiteral("xy"));
        QTest::keyClick(w.edit, Qt::Key_Backspace);
        QTest::keyClick(w.edit, Qt::Key_Left);
        QTest::keyClick(w.edit, Qt::Key_Escape);
        QCOMPARE(spy.count(), 0);
        QCOMPARE(w.edit->text(), QStringLiteral("x"));
    }
};

QTEST_MAIN(tst_LineEdit)
#include "tst_lineedit.moc"
