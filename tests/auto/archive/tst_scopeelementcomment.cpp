// SPDX-License-Identifier: GPL-3.0-or-later
#include "iniparser.h"
#include "scopearchivecodec.h"
#include "scopecompositionarchive.h"
#include "scopecompositionarchiveimplementation.h"
#include "scopeelementcomment.h"
#include "scopeelementcommentdialog.h"
#include "scopeshotarchive.h"
#include "texteditwidget.h"

#include <QtCore/QPointer>
#include <QtCore/QStandardPaths>
#include <QtCore/QTimer>
#include <QtGui/QTextDocument>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include <functional>
#include <memory>

class tst_ScopeElementComment : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void isParentedToElement();
    void emptyWithoutComment();
    void isCommentEmpty_data();
    void isCommentEmpty();
    void umlautsRoundTrip();
    void storageFormat();
    void garbageReadsAsEmpty_data();
    void garbageReadsAsEmpty();
    void compositionCommentInDocument();
    void withoutArchiveNothingIsStored();
    void dialogLayout();
    void dialogAccepted();
    void dialogRefusesTooLongText();
    void dialogCancelled();
    void dialogAcceptedWithoutArchive();
    void archiveEditCommentAccepted();
    void archiveEditCommentCancelled();
    void compositionEditComment();

private:
    // Runs \a action on the comment dialog once it is shown modally.
    void whenDialogShown(std::function<void(ScopeElementCommentDialog*)> action, int attempts = 1000);
    static void accept(ScopeElementCommentDialog* dialog, const QString& html);
    static void cancel(ScopeElementCommentDialog* dialog, const QString& html);

    std::unique_ptr<ScopeShotArchive> newShot(const QString& name) const;

    QString m_seenTitle;
    QString m_seenHtml;
};

void tst_ScopeElementComment::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ScopeElementComment::whenDialogShown(std::function<void(ScopeElementCommentDialog*)> action,
                                              int attempts)
{
    QTimer::singleShot(0, this, [this, action, attempts] {
        auto* dialog = qobject_cast<ScopeElementCommentDialog*>(QApplication::activeModalWidget());
        if (!dialog) {
            if (attempts > 0) {
                whenDialogShown(action, attempts - 1);
            } else {
                // Never leave a modal loop hanging.
                for (QWidget* widget : QApplication::topLevelWidgets()) {
                    if (auto* stray = qobject_cast<QDialog*>(widget))
                        stray->reject();
                }
            }
            return;
        }
        m_seenTitle = dialog->windowTitle();
        m_seenHtml = dialog->html();
        action(dialog);
    });
}

void tst_ScopeElementComment::accept(ScopeElementCommentDialog* dialog, const QString& html)
{
    auto* editor = dialog->findChild<TextEditWidget*>(QStringLiteral("commentEdit"));
    QVERIFY(editor);
    editor->setHtml(html);
    auto* buttons = dialog->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    QVERIFY(buttons);
    QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
}

void tst_ScopeElementComment::cancel(ScopeElementCommentDialog* dialog, const QString& html)
{
    auto* editor = dialog->findChild<TextEditWidget*>(QStringLiteral("commentEdit"));
    QVERIFY(editor);
    editor->setHtml(html);
    auto* buttons = dialog->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    QVERIFY(buttons);
    QTest::mouseClick(buttons->button(QDialogButtonBox::Cancel), Qt::LeftButton);
}

std::unique_ptr<ScopeShotArchive> tst_ScopeElementComment::newShot(const QString& name) const
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    archive->fromByteArray("[Archive]\r\nID=SN_1_2_3\r\nName=" + name.toLatin1() + "\r\n\r\n[Data]\r\nChannelCount=0\r\n");
    return archive;
}

void tst_ScopeElementComment::isParentedToElement()
{
    auto shot = newShot(QStringLiteral("A"));
    QPointer<ScopeElementComment> comment = new ScopeElementComment(shot.get());
    QCOMPARE(comment->parent(), shot.get());
    shot.reset();
    QVERIFY(comment.isNull());
}

void tst_ScopeElementComment::emptyWithoutComment()
{
    auto shot = newShot(QStringLiteral("A"));
    ScopeElementComment comment(shot.get());
    QVERIFY(comment.comment().isEmpty());
    QVERIFY(comment.isCommentEmpty());
    QVERIFY(!shot->archiveSection()->contains("Comment"));
}

void tst_ScopeElementComment::isCommentEmpty_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<bool>("empty");
    QTest::newRow("nothing") << QString() << true;
    QTest::newRow("empty paragraphs") << QStringLiteral("<p></p><p></p>") << true;
    QTest::newRow("styled empty paragraphs")
        << QStringLiteral("<html><body><p style=\"margin-top:0px;\"></p><p align=\"center\"><span style=\"color:#ff0000;\"></span></p></body></html>") << true;
    QTest::newRow("markup only") << QStringLiteral("<b></b><i></i>") << true;
    QTest::newRow("empty document") << QTextDocument().toHtml() << true;
    QTest::newRow("text") << QStringLiteral("<p>x</p>") << false;
    QTest::newRow("plain") << QStringLiteral("Hallo") << false;
    QTest::newRow("entity") << QStringLiteral("<p>&auml;</p>") << false;
}

void tst_ScopeElementComment::isCommentEmpty()
{
    QFETCH(QString, html);
    QFETCH(bool, empty);
    auto shot = newShot(QStringLiteral("A"));
    ScopeElementComment comment(shot.get());
    comment.setComment(html);
    QCOMPARE(comment.comment(), html);
    QCOMPARE(comment.isCommentEmpty(), empty);
    QCOMPARE(shot->isCommentEmpty(), empty);
}

void tst_ScopeElementComment::umlautsRoundTrip()
{
    const QString html = QStringLiteral("<html><body><p>Übertemperatur am Motor – Größe ß, äöü ÄÖÜ, 5 µs</p></body></html>");
    auto shot = newShot(QStringLiteral("A"));
    ScopeElementComment(shot.get()).setComment(html);
    QCOMPARE(ScopeElementComment(shot.get()).comment(), html);

    // Also through the archive text.
    std::unique_ptr<ScopeShotArchive> loaded(ScopeShotArchive::create(nullptr));
    QVERIFY(loaded->fromByteArray(shot->toByteArray()));
    QCOMPARE(ScopeElementComment(loaded.get()).comment(), html);
    QCOMPARE(loaded->comment(), html);
}

void tst_ScopeElementComment::storageFormat()
{
    const QString html = QStringLiteral("<p>Ölstand</p>");
    auto shot = newShot(QStringLiteral("A"));
    ScopeElementComment(shot.get()).setComment(html);
    const QByteArray stored = shot->archiveSection()->value("Comment");
    QCOMPARE(stored, stored.toLower());
    QCOMPARE(stored, qCompress(html.toUtf8(), -1).toHex());
    QCOMPARE(QString::fromUtf8(qUncompress(QByteArray::fromHex(stored))), html);
}

void tst_ScopeElementComment::garbageReadsAsEmpty_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("not hex") << QByteArray("Kommentar");
    QTest::newRow("odd") << QByteArray("abc");
    QTest::newRow("forged length") << QByteArray("ffffffff789c0300000000001");
    QTest::newRow("not compressed") << QByteArray("0000000a0102030405060708090a");
}

void tst_ScopeElementComment::garbageReadsAsEmpty()
{
    QFETCH(QByteArray, value);
    auto shot = newShot(QStringLiteral("A"));
    shot->archiveSection()->setValue("Comment", value);
    QVERIFY(shot->comment().isEmpty());
    QVERIFY(shot->isCommentEmpty());
}

void tst_ScopeElementComment::compositionCommentInDocument()
{
    std::unique_ptr<ScopeCompositionArchive> composition(ScopeCompositionArchive::create(nullptr));
    ScopeElementComment comment(composition.get());
    comment.setComment(QStringLiteral("<p>Satz</p>"));
    KlIniParser::IniParser* document =
        static_cast<ScopeCompositionArchiveImplementation*>(composition.get())->iniParser();
    QCOMPARE(document->section("Archive")->value("Comment"),
             ScopeArchiveCodec::encodeComment(QStringLiteral("<p>Satz</p>")));
    QCOMPARE(composition->comment(), QStringLiteral("<p>Satz</p>"));
}

void tst_ScopeElementComment::withoutArchiveNothingIsStored()
{
    QObject element;
    ScopeElementComment comment(&element);
    comment.setComment(QStringLiteral("<p>x</p>"));
    QVERIFY(comment.comment().isEmpty());
    QVERIFY(comment.isCommentEmpty());
}

void tst_ScopeElementComment::dialogLayout()
{
    ScopeElementCommentDialog dialog(QStringLiteral("Hochlauf"), QStringLiteral("<p>vorher</p>"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Kommentar für Aufnahme \"Hochlauf\""));
    auto* editor = dialog.findChild<TextEditWidget*>(QStringLiteral("commentEdit"));
    QVERIFY(editor);
    QCOMPARE(editor->plainText(), QStringLiteral("vorher"));
    auto* buttons = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    QVERIFY(buttons);
    QCOMPARE(buttons->standardButtons(), QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
}

void tst_ScopeElementComment::dialogRefusesTooLongText()
{
    // A text that the archive could not give back stays in the open dialog.
    ScopeElementCommentDialog dialog(QStringLiteral("Hochlauf"), QString());
    auto* editor = dialog.findChild<TextEditWidget*>(QStringLiteral("commentEdit"));
    auto* label = dialog.findChild<QLabel*>(QStringLiteral("tooLongLabel"));
    QVERIFY(editor);
    QVERIFY(label);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QVERIFY(!label->isVisible());
    // Some ten thousand lines of notes, a little more than an archive holds.
    const QString line = QStringLiteral("<p>%1</p>").arg(QString(100, QLatin1Char('a')));
    QString longText;
    while (longText.size() <= ScopeArchiveCodec::MaximumCommentSize)
        longText += line;
    editor->setHtml(longText);
    QSignalSpy accepted(&dialog, &QDialog::accepted);
    dialog.accept();
    QCOMPARE(accepted.count(), 0);
    QVERIFY(dialog.isVisible());
    QVERIFY(label->isVisible());
    QVERIFY(editor->html().toUtf8().size() > ScopeArchiveCodec::MaximumCommentSize);

    // Shortened, it is accepted.
    editor->setHtml(line.repeated(10));
    dialog.accept();
    QCOMPARE(accepted.count(), 1);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void tst_ScopeElementComment::dialogAccepted()
{
    auto shot = newShot(QStringLiteral("Hochlauf 3"));
    ScopeElementComment comment(shot.get());
    comment.setComment(QStringLiteral("<p>alt</p>"));
    whenDialogShown([](ScopeElementCommentDialog* dialog) { accept(dialog, QStringLiteral("<p>Neuer Text mit Ä</p>")); });
    QVERIFY(comment.editComment());
    QCOMPARE(m_seenTitle, QStringLiteral("Kommentar für Aufnahme \"Hochlauf 3\""));
    QVERIFY(m_seenHtml.contains(QStringLiteral("alt")));
    QVERIFY(comment.comment().contains(QStringLiteral("Neuer Text mit Ä")));
    QTextDocument document;
    document.setHtml(comment.comment());
    QCOMPARE(document.toPlainText(), QStringLiteral("Neuer Text mit Ä"));
}

void tst_ScopeElementComment::dialogCancelled()
{
    auto shot = newShot(QStringLiteral("Hochlauf"));
    ScopeElementComment comment(shot.get());
    comment.setComment(QStringLiteral("<p>alt</p>"));
    const QByteArray before = shot->toByteArray();
    whenDialogShown([](ScopeElementCommentDialog* dialog) { cancel(dialog, QStringLiteral("<p>verworfen</p>")); });
    QVERIFY(!comment.editComment());
    QCOMPARE(shot->toByteArray(), before);
    QCOMPARE(comment.comment(), QStringLiteral("<p>alt</p>"));

    // Cancelling on an archive without a comment adds nothing either.
    auto bare = newShot(QStringLiteral("Leer"));
    const QByteArray bareBefore = bare->toByteArray();
    whenDialogShown([](ScopeElementCommentDialog* dialog) { cancel(dialog, QStringLiteral("x")); });
    QVERIFY(!ScopeElementComment(bare.get()).editComment());
    QCOMPARE(bare->toByteArray(), bareBefore);
}

void tst_ScopeElementComment::dialogAcceptedWithoutArchive()
{
    QObject element;
    ScopeElementComment comment(&element);
    whenDialogShown([](ScopeElementCommentDialog* dialog) { accept(dialog, QStringLiteral("<p>x</p>")); });
    QVERIFY(comment.editComment());
    QCOMPARE(m_seenTitle, QStringLiteral("Kommentar für Aufnahme \"\""));
    QVERIFY(comment.comment().isEmpty());
}

void tst_ScopeElementComment::archiveEditCommentAccepted()
{
    auto shot = newShot(QStringLiteral("Lauf"));
    QSignalSpy changed(shot.get(), &ScopeElementArchive::scopeElementChanged);
    QWidget parent;
    whenDialogShown([&parent](ScopeElementCommentDialog* dialog) {
        QCOMPARE(dialog->parentWidget(), &parent);
        accept(dialog, QStringLiteral("<p>Bremse</p>"));
    });
    QVERIFY(shot->editComment(&parent));
    QCOMPARE(changed.count(), 1);
    QVERIFY(!shot->isCommentEmpty());
    QVERIFY(shot->comment().contains(QStringLiteral("Bremse")));

    // Accepting the same text again changes nothing and signals nothing.
    const QString stored = shot->comment();
    whenDialogShown([](ScopeElementCommentDialog* dialog) {
        QVERIFY(QMetaObject::invokeMethod(dialog, "accept"));
    });
    QVERIFY(!shot->editComment(nullptr));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(shot->comment(), stored);
}

void tst_ScopeElementComment::archiveEditCommentCancelled()
{
    auto shot = newShot(QStringLiteral("Lauf"));
    shot->setComment(QStringLiteral("<p>bleibt</p>"));
    const QByteArray before = shot->toByteArray();
    QSignalSpy changed(shot.get(), &ScopeElementArchive::scopeElementChanged);
    whenDialogShown([](ScopeElementCommentDialog* dialog) { cancel(dialog, QStringLiteral("<p>weg</p>")); });
    QVERIFY(!shot->editComment(nullptr));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(shot->toByteArray(), before);
}

void tst_ScopeElementComment::compositionEditComment()
{
    std::unique_ptr<ScopeCompositionArchive> composition(ScopeCompositionArchive::create(nullptr));
    composition->setName(QStringLiteral("Satz 1"));
    QSignalSpy changed(composition.get(), &ScopeElementArchive::scopeElementChanged);
    whenDialogShown([](ScopeElementCommentDialog* dialog) { accept(dialog, QStringLiteral("<p>Vergleich</p>")); });
    QVERIFY(composition->editComment(nullptr));
    QCOMPARE(m_seenTitle, QStringLiteral("Kommentar für Aufnahme \"Satz 1\""));
    QCOMPARE(changed.count(), 1);
    std::unique_ptr<ScopeCompositionArchive> loaded(ScopeCompositionArchive::create(nullptr));
    QVERIFY(loaded->fromByteArray(composition->toByteArray()));
    QVERIFY(loaded->comment().contains(QStringLiteral("Vergleich")));
}

QTEST_MAIN(tst_ScopeElementComment)
#include "tst_scopeelementcomment.moc"
