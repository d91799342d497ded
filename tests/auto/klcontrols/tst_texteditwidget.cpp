// SPDX-License-Identifier: GPL-3.0-or-later
#include "texteditwidget.h"

#include <QtGui/QAction>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QTextEdit>
#include <QtWidgets/QToolButton>

class tst_TextEditWidget : public QObject
{
    Q_OBJECT

private:
    struct Parts
    {
        QTextEdit* edit = nullptr;
        QToolButton* bold = nullptr;
        QToolButton* italic = nullptr;
        QToolButton* underline = nullptr;
        QToolButton* bullets = nullptr;
        QToolButton* color = nullptr;
    };

    static Parts parts(TextEditWidget& widget)
    {
        Parts p;
        p.edit = widget.findChild<QTextEdit*>(QStringLiteral("textEdit"));
        p.bold = widget.findChild<QToolButton*>(QStringLiteral("boldButton"));
        p.italic = widget.findChild<QToolButton*>(QStringLiteral("italicButton"));
        p.underline = widget.findChild<QToolButton*>(QStringLiteral("underlineButton"));
        p.bullets = widget.findChild<QToolButton*>(QStringLiteral("bulletListButton"));
        p.color = widget.findChild<QToolButton*>(QStringLiteral("textColorButton"));
        return p;
    }

    static void showAndFocus(TextEditWidget& widget, const Parts& p)
    {
        widget.resize(400, 300);
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        widget.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&widget));
        p.edit->setFocus();
        QTRY_VERIFY(p.edit->hasFocus());
    }

    // Selects the characters [from, to) of the editor's text.
    static void select(QTextEdit* edit, int from, int to)
    {
        QTextCursor cursor(edit->document());
        cursor.setPosition(from);
        cursor.setPosition(to, QTextCursor::KeepAnchor);
        edit->setTextCursor(cursor);
    }

    static void placeCursor(QTextEdit* edit, int position)
    {
        QTextCursor cursor(edit->document());
        cursor.setPosition(position);
        edit->setTextCursor(cursor);
    }

    // The text of the HTML fragment that follows a span with the given style.
    static bool htmlHasStyledText(const QString& html, const QString& style, const QString& text)
    {
        const QRegularExpression re(QStringLiteral("<span style=\"[^\"]*%1[^\"]*\">%2</span>")
                                        .arg(QRegularExpression::escape(style), QRegularExpression::escape(text)));
        return re.match(html).hasMatch();
    }

private Q_SLOTS:
    void hasAllToolButtons()
    {
        TextEditWidget widget;
        const Parts p = parts(widget);
        QVERIFY(p.edit);
        QVERIFY(p.bold);
        QVERIFY(p.italic);
        QVERIFY(p.underline);
        QVERIFY(p.bullets);
        QVERIFY(p.color);
        QVERIFY(!p.color->icon().isNull());
    }

    void typingChangesTextAndSignals()
    {
        TextEditWidget widget;
        const Parts p = parts(widget);
        showAndFocus(widget, p);
        QSignalSpy spy(&widget, &TextEditWidget::textChanged);
        QTest::keyClicks(p.edit, QStringLiteral("Hallo Welt"));
        QCOMPARE(widget.plainText(), QStringLiteral("Hallo Welt"));
        QCOMPARE(spy.count(), 10);
        QVERIFY(widget.html().contains(QStringLiteral("Hallo Welt")));
    }

    void setHtmlRoundTrips()
    {
        TextEditWidget widget;
        QSignalSpy spy(&widget, &TextEditWidget::textChanged);
        widget.setHtml(QStringLiteral("<p>eins <b>zwei</b></p>"));
        QVERIFY(spy.count() >= 1);
        QCOMPARE(widget.plainText(), QStringLiteral("eins zwei"));
        const QString html = widget.html();
        QVERIFY2(htmlHasStyledText(html, QStringLiteral("font-weight:700"), QStringLiteral("zwei")), qPrintable(html));

        TextEditWidget copy;
        copy.setHtml(html);
        QCOMPARE(copy.html(), html);
    }

    void emptyAndMalformedHtml()
    {
        TextEditWidget widget;
        widget.setHtml(QString());
        QCOMPARE(widget.plainText(), QString());
        QTextDocument document;
        document.setHtml(widget.html());
        QVERIFY(document.isEmpty());

        widget.setHtml(QStringLiteral("<b><i>offen <span style=\"color:"));
        QCOMPARE(widget.plainText(), QStringLiteral("offen "));
    }

    void boldOnSelection_data()
    {
        QTest::addColumn<QString>("buttonName");
        QTest::addColumn<QString>("style");
        QTest::newRow("bold") << QStringLiteral("boldButton") << QStringLiteral("font-weight:700");
        QTest::newRow("italic") << QStringLiteral("italicButton") << QStringLiteral("font-style:italic");
        QTest::newRow("underline") << QStringLiteral("underlineButton")
                                   << QStringLiteral("text-decoration: underline");
    }

    void boldOnSelection()
    {
        QFETCH(QString, buttonName);
        QFETCH(QString, style);
        TextEditWidget widget;
        Parts p = parts(widget);
        showAndFocus(widget, p);
        QTest::keyClicks(p.edit, QStringLiteral("eins zwei drei"));
        select(p.edit, 5, 9);
        auto* button = widget.findChild<QToolButton*>(buttonName);
        QVERIFY(button);
        QVERIFY(!button->isChecked());
        QSignalSpy spy(&widget, &TextEditWidget::textChanged);
        QTest::mouseClick(button, Qt::LeftButton);
        QVERIFY(spy.count() >= 1);
        QVERIFY(button->isChecked());
        QString html = widget.html();
        QVERIFY2(htmlHasStyledText(html, style, QStringLiteral("zwei")), qPrintable(html));
        QVERIFY2(!html.contains(style + QStringLiteral(";\">eins")), qPrintable(html));
        QCOMPARE(widget.plainText(), QStringLiteral("eins zwei drei"));

        // The button follows the cursor: off in plain text, on inside "zwei".
        placeCursor(p.edit, 2);
        QVERIFY(!button->isChecked());
        placeCursor(p.edit, 7);
        QVERIFY(button->isChecked());

        // Toggling again on the same selection removes the format.
        select(p.edit, 5, 9);
        QTest::mouseClick(button, Qt::LeftButton);
        QVERIFY(!button->isChecked());
        html = widget.html();
        QVERIFY2(!html.contains(style), qPrintable(html));
    }

    void boldWithoutSelectionAppliesToTyping()
    {
        TextEditWidget widget;
        Parts p = parts(widget);
        showAndFocus(widget, p);
        QTest::keyClicks(p.edit, QStringLiteral("a"));
        QTest::mouseClick(p.bold, Qt::LeftButton);
        QVERIFY(p.bold->isChecked());
        QTRY_VERIFY(p.edit->hasFocus());
        QTest::keyClicks(p.edit, QStringLiteral("b"));
        const QString html = widget.html();
        QVERIFY2(htmlHasStyledText(html, QStringLiteral("font-weight:700"), QStringLiteral("b")), qPrintable(html));
        QCOMPARE(widget.plainText(), QStringLiteral("ab"));
    }

    void shortcutTogglesBold()
    {
        TextEditWidget widget;
        Parts p = parts(widget);
        showAndFocus(widget, p);
        QTest::keyClicks(p.edit, QStringLiteral("fett"));
        select(p.edit, 0, 4);
        // Through the window, so that the shortcut map sees the key.
        QTest::keyClick(widget.windowHandle(), Qt::Key_B, Qt::ControlModifier);
        QVERIFY(p.bold->isChecked());
        QVERIFY(htmlHasStyledText(widget.html(), QStringLiteral("font-weight:700"), QStringLiteral("fett")));
    }

    void buttonsReflectLoadedFormat()
    {
        TextEditWidget widget;
        Parts p = parts(widget);
        showAndFocus(widget, p);
        widget.setHtml(QStringLiteral("<p>n <b>b</b> <i>i</i> <u>u</u></p><ul><li>x</li></ul>"));
        placeCursor(p.edit, 3); // after "n b"
        QVERIFY(p.bold->isChecked());
        QVERIFY(!p.italic->isChecked());
        placeCursor(p.edit, 5);
        QVERIFY(p.italic->isChecked());
        QVERIFY(!p.bold->isChecked());
        placeCursor(p.edit, 7);
        QVERIFY(p.underline->isChecked());
        QVERIFY(!p.bullets->isChecked());
        placeCursor(p.edit, 9);
        QVERIFY(p.bullets->isChecked());
        QVERIFY(!p.underline->isChecked());
    }

    void bulletListToggles()
    {
        TextEditWidget widget;
        Parts p = parts(widget);
        showAndFocus(widget, p);
        QTest::keyClicks(p.edit, QStringLiteral("Punkt"));
        QTest::mouseClick(p.bullets, Qt::LeftButton);
        QVERIFY(p.bullets->isChecked());
        QVERIFY(widget.html().contains(QStringLiteral("<ul")));
        QTRY_VERIFY(p.edit->hasFocus());
        QTest::keyClick(p.edit, Qt::Key_Return);
        QTest::keyClicks(p.edit, QStringLiteral("zwei"));
        QCOMPARE(widget.html().count(QStringLiteral("<li")), 2);

        select(p.edit, 0, widget.plainText().size());
        QTest::mouseClick(p.bullets, Qt::LeftButton);
        QVERIFY(!p.bullets->isChecked());
        QVERIFY(!widget.html().contains(QStringLiteral("<li")));
        QCOMPARE(widget.plainText(), QStringLiteral("Punkt\nzwei"));
    }

    void textColourFromDialog_data()
    {
        QTest::addColumn<bool>("accept");
        QTest::newRow("accepted") << true;
        QTest::newRow("cancelled") << false;
    }

    void textColourFromDialog()
    {
        QFETCH(bool, accept);
        TextEditWidget widget;
        Parts p = parts(widget);
        showAndFocus(widget, p);
        QTest::keyClicks(p.edit, QStringLiteral("rot"));
        select(p.edit, 0, 3);
        const QIcon iconBefore = p.color->icon();

        bool dialogSeen = false;
        QTimer::singleShot(0, this, [&]() {
            auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            dialogSeen = true;
            dialog->setCurrentColor(QColor(255, 0, 0));
            if (accept)
                dialog->accept();
            else
                dialog->reject();
        });
        QTest::mouseClick(p.color, Qt::LeftButton);
        QVERIFY(dialogSeen);
        const QString html = widget.html();
        QCOMPARE(htmlHasStyledText(html, QStringLiteral("color:#ff0000"), QStringLiteral("rot")), accept);
        QCOMPARE(p.color->icon().cacheKey() != iconBefore.cacheKey(), accept);
    }
};

QTEST_MAIN(tst_TextEditWidget)
#include "tst_texteditwidget.moc"
