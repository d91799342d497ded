// SPDX-License-Identifier: GPL-3.0-or-later
// The icons ship inside the shared library: loading it registers them.
#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtGui/QImage>
#include <QtTest/QTest>

#include <set>

class tst_ScopeResources : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void icons_data();
    void icons();

private:
    QLibrary m_library;
};

void tst_ScopeResources::initTestCase()
{
    QVERIFY(!QFile::exists(QStringLiteral(":/Resources/Scope.png")));
    m_library.setFileName(QStringLiteral(OVSCOPE_LIBRARY_FILE));
    QVERIFY2(m_library.load(), qPrintable(m_library.errorString()));
}

void tst_ScopeResources::icons_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("size");
    const std::pair<const char*, int> icons[] = {
        {":/Resources/ScopeSetting.png", 24},
        {":/Resources/General/Information_16x16.png", 16},
        {":/Resources/ScopeImport.png", 24},
        {":/Resources/Scope/Scope.png", 16},
        {":/Resources/Scope.png", 24},
        {":/Resources/keyTimeScaleDown.png", 24},
        {":/Resources/keyTimeScaleUp.png", 24},
        {":/Resources/keyMoveLeft.png", 24},
        {":/Resources/keyMoveRight.png", 24},
        {":/Resources/Scope/TraceMoveUp.png", 16},
        {":/Resources/Scope/TraceMoveDown.png", 16},
        {":/Resources/Scope/TraceScaleUp.png", 16},
        {":/Resources/Scope/TraceScaleDown.png", 16},
        {":/Resources/Scope/TraceGround.png", 16},
        {":/Resources/Scope/TraceOff.png", 16},
        {":/Resources/Scope/TraceInvert.png", 16},
        {":/Resources/Scope/TraceBinary.png", 16},
        {":/Resources/Scope/TraceColor.png", 16},
    };
    for (const auto& icon : icons)
        QTest::newRow(icon.first) << QString::fromLatin1(icon.first) << icon.second;
}

void tst_ScopeResources::icons()
{
    QFETCH(QString, path);
    QFETCH(int, size);
    const QImage image(path);
    QVERIFY2(!image.isNull(), qPrintable(path));
    QCOMPARE(image.size(), QSize(size, size));
    // A drawing, not a blank placeholder: a good share of covered pixels in
    // several colours, with some transparency around the shape.
    int covered = 0;
    int transparent = 0;
    std::set<QRgb> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qAlpha(pixel) > 128) {
                ++covered;
                colours.insert(pixel);
            } else if (qAlpha(pixel) == 0) {
                ++transparent;
            }
        }
    }
    const int pixels = size * size;
    QVERIFY2(covered >= pixels / 8, qPrintable(QStringLiteral("%1 covered pixels").arg(covered)));
    QVERIFY2(transparent >= 1, "no transparent pixel");
    QVERIFY2(colours.size() >= 4, qPrintable(QStringLiteral("%1 colours").arg(colours.size())));
}

QTEST_GUILESS_MAIN(tst_ScopeResources)
#include "tst_scoperesources.moc"
