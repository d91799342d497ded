// SPDX-License-Identifier: GPL-3.0-or-later
// Archives from drives, colleagues and e-mail: whatever a document holds, it
// loads or is rejected quickly, in bounded memory, and the view that shows it
// keeps working.
#include "iniparser.h"
#include "scopearchivecodec.h"
#include "scopemarker.h"
#include "scopescene.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopestripeswidget.h"
#include "scopetrace.h"
#include "scopetracefilter.h"
#include "scopewidget.h"
#include "scopelayout.h"
#include "zoombar.h"

#include <QtCore/QRandomGenerator>
#include <QtCore/QStandardPaths>
#include <QtGui/QImage>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtTest/QTest>
#include <QtWidgets/QVBoxLayout>

#include <malloc.h>
#include <zlib.h>

#include <atomic>
#include <cerrno>

#include <ctime>
#include <functional>
#include <limits>
#include <memory>

#if defined(__SANITIZE_ADDRESS__)
#define OVSCOPE_UNDER_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define OVSCOPE_UNDER_SANITIZER 1
#endif
#endif

namespace {

constexpr qint64 Int64Max = std::numeric_limits<qint64>::max();
constexpr qint64 Int64Min = std::numeric_limits<qint64>::min();

#ifdef OVSCOPE_UNDER_SANITIZER
// Instrumented code is several times slower and keeps freed memory in
// quarantine: time is given more room and memory is not measured.
constexpr qint64 TimeBudgetNs = 1000 * 1000 * 1000;
#else
constexpr qint64 TimeBudgetNs = 100 * 1000 * 1000;
#endif
constexpr qint64 MemoryBudgetKiB = 16 * 1024;

qint64 threadCpuNs()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return qint64(now.tv_sec) * 1000000000 + now.tv_nsec;
}

#ifndef OVSCOPE_UNDER_SANITIZER
// Heap accounting: this program's malloc family forwards to glibc's and keeps
// the bytes in use and their peak, so that the memory a load needs is
// measured exactly, whatever the heap held before. (The sanitizers bring
// their own allocator; there memory is not measured.)
std::atomic<qint64> heapInUse {0};
std::atomic<qint64> heapPeak {0};

void countAllocation(void* pointer)
{
    if (!pointer)
        return;
    const qint64 now = heapInUse.fetch_add(qint64(malloc_usable_size(pointer))) + qint64(malloc_usable_size(pointer));
    qint64 peak = heapPeak.load();
    while (now > peak && !heapPeak.compare_exchange_weak(peak, now)) { }
}

void countRelease(void* pointer)
{
    if (pointer)
        heapInUse.fetch_sub(qint64(malloc_usable_size(pointer)));
}
#endif

} // namespace

#ifndef OVSCOPE_UNDER_SANITIZER
extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void __libc_free(void*);
void* __libc_memalign(size_t, size_t);

void* malloc(size_t size)
{
    void* pointer = __libc_malloc(size);
    countAllocation(pointer);
    return pointer;
}

void* calloc(size_t count, size_t size)
{
    void* pointer = __libc_calloc(count, size);
    countAllocation(pointer);
    return pointer;
}

void* realloc(void* old, size_t size)
{
    countRelease(old);
    void* pointer = __libc_realloc(old, size);
    // A failed realloc keeps the old block.
    countAllocation(pointer ? pointer : (size ? old : nullptr));
    return pointer;
}

void free(void* pointer)
{
    countRelease(pointer);
    __libc_free(pointer);
}

void* memalign(size_t alignment, size_t size)
{
    void* pointer = __libc_memalign(alignment, size);
    countAllocation(pointer);
    return pointer;
}

void* aligned_alloc(size_t alignment, size_t size)
{
    return memalign(alignment, size);
}

int posix_memalign(void** result, size_t alignment, size_t size)
{
    void* pointer = memalign(alignment, size);
    if (!pointer)
        return ENOMEM;
    *result = pointer;
    return 0;
}
}
#endif

namespace {

struct Cost {
    qint64 cpuNs = 0;
    qint64 extraKiB = -1; // -1: not measured
};

// CPU time of this thread (the machine may be busy: wall time would measure
// the others) and the peak of the heap in use above where it stood before.
Cost measure(const std::function<void()>& work)
{
    Cost cost;
#ifndef OVSCOPE_UNDER_SANITIZER
    const qint64 before = heapInUse.load();
    heapPeak.store(before);
#endif
    const qint64 start = threadCpuNs();
    work();
    cost.cpuNs = threadCpuNs() - start;
#ifndef OVSCOPE_UNDER_SANITIZER
    cost.extraKiB = (heapPeak.load() - before) / 1024;
#endif
    return cost;
}

#define VERIFY_COST(cost)                                                                          \
    do {                                                                                           \
        qInfo("cost: %.1f ms CPU, %lld KiB heap", double((cost).cpuNs) / 1e6, (cost).extraKiB);   \
        QVERIFY2((cost).cpuNs < TimeBudgetNs,                                                      \
                 qPrintable(QStringLiteral("took %1 ms of CPU").arg(double((cost).cpuNs) / 1e6))); \
        if ((cost).extraKiB >= 0) {                                                               \
            QVERIFY2((cost).extraKiB < MemoryBudgetKiB,                                            \
                     qPrintable(QStringLiteral("needed %1 KiB more").arg((cost).extraKiB)));       \
        }                                                                                          \
    } while (false)

QByteArray channel(int index, const QByteArray& extra = QByteArray())
{
    return "\r\n[ScopeChannel_" + QByteArray::number(index)
        + "]\r\nSourceType=1\r\nName=Kanal\r\nMeasure=V\r\nPhysicalDatatype=7\r\nDecimalPlaces=2\r\nParameterKind=0\r\n"
        + extra;
}

// An archive with the given counts, time base, rows and additions.
QByteArray document(const QByteArray& channels, const QByteArray& frames, const QByteArray& trigger,
                    const QByteArray& timeBase, const QByteArray& rows, int channelSections = 2,
                    const QByteArray& more = QByteArray())
{
    QByteArray text = ";type=\"ovx-scope-shot-archive\" version=\"0\"\r\n\r\n"
                      "[Archive]\r\nID=SN_1_2_3\r\nName=Feindlich\r\nIsPublic=1\r\n\r\n"
                      "[Data]\r\nChannelCount="
        + channels + "\r\nFrameCount=" + frames + "\r\nTriggerIndex=" + trigger + "\r\n" + rows
        + "\r\n[ScopeShot]\r\nTimeBase=" + timeBase + "\r\n";
    for (int c = 0; c < channelSections; ++c)
        text += channel(c);
    return text + more;
}

QByteArray threeRows()
{
    return QByteArrayLiteral("Data_0=0;1;2\r\nData_1=1;1.5;2.5\r\nData_2=2;2;3\r\n");
}

// A qCompress block: 4-byte big-endian length header, then a zlib stream.
QByteArray compressedBlock(quint32 header, const QByteArray& payload)
{
    uLongf size = compressBound(uLong(payload.size()));
    QByteArray block(4 + qsizetype(size), Qt::Uninitialized);
    block[0] = char(header >> 24);
    block[1] = char(header >> 16);
    block[2] = char(header >> 8);
    block[3] = char(header);
    if (compress2(reinterpret_cast<Bytef*>(block.data() + 4), &size,
                  reinterpret_cast<const Bytef*>(payload.constData()), uLong(payload.size()), 9) != Z_OK)
        return QByteArray();
    block.resize(4 + qsizetype(size));
    return block;
}

// The view parts that show one recording: a stripe over a zoom bar, with the
// scene reading its slider and markers from the archive.
struct View {
    QWidget window;
    ZoomBar* zoomBar = nullptr;
    ScopeScene scene;
    ScopeStripesWidget* stripes = nullptr;
    QSharedPointer<ScopeShot> shot;

    explicit View(ScopeShotArchive* archive)
    {
        auto* layout = new QVBoxLayout(&window);
        stripes = new ScopeStripesWidget;
        zoomBar = new ZoomBar;
        layout->addWidget(stripes, 1);
        layout->addWidget(zoomBar);
        scene.setZoomBar(zoomBar);
        stripes->setScene(&scene);
        stripes->setZoomBar(zoomBar);
        shot.reset(new ScopeShot);
        shot->setArchive(archive);
        if (shot->load())
            scene.addShot(shot);
        scene.readSection(archive->sceneSection(), archive->shotSection());
        stripes->setStripeLayout(archive->sceneSection(), {shot.data()});
        if (stripes->scopeWidgets().isEmpty())
            stripes->addStripe();
        window.resize(800, 500);
    }

    ScopeWidget* plot() const { return stripes->scopeWidgets().value(0); }
};

// Rows whose recording reaches further from the trigger than 64-bit
// nanoseconds can hold: trigger index and time base near 2^31 each. Their
// times saturate instead of wrapping around.
bool timeOverflows()
{
    static const QList<QByteArray> tags = {"trigger far out, longest time base",
                                           "trigger at 64 bits, longest time base",
                                           "everything at the limits, longest time base"};
    return tags.contains(QByteArray(QTest::currentDataTag()));
}

void sendMouse(QWidget* widget, QEvent::Type type, const QPoint& position, Qt::MouseButton button,
               Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QMouseEvent event(type, QPointF(position), QPointF(widget->mapToGlobal(position)), button, buttons, modifiers);
    QCoreApplication::sendEvent(widget, &event);
}

void sendWheel(QWidget* widget, const QPoint& position, int delta, Qt::KeyboardModifiers modifiers)
{
    QWheelEvent event(QPointF(position), QPointF(widget->mapToGlobal(position)), QPoint(), QPoint(0, delta),
                      Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(widget, &event);
}

// Paints, zooms, pans, drags across the plot and paints again; the plot's
// window stays ordered and the zoom bar's slider inside its range.
void exercise(View& view)
{
    ScopeWidget* plot = view.plot();
    QVERIFY(plot);
    QImage image(view.window.size(), QImage::Format_ARGB32);
    view.window.render(&image);
    const QRect area = plot->rect();
    const QPoint middle = area.center();
    for (int notch = 0; notch < 70; ++notch)
        sendWheel(plot, middle, 120, Qt::ControlModifier);
    for (int notch = 0; notch < 140; ++notch)
        sendWheel(plot, QPoint(area.left() + 1, middle.y()), -120, Qt::ControlModifier);
    for (int notch = 0; notch < 20; ++notch)
        sendWheel(plot, middle, notch % 2 ? 120 : -120, Qt::NoModifier);
    // Drags at the edges, where markers may sit, and across the whole plot.
    const QList<int> columns = {area.left(), area.left() + 1, middle.x(), area.right() - 1, area.right()};
    for (int from : columns) {
        const QPoint start(from, middle.y());
        sendMouse(plot, QEvent::MouseButtonPress, start, Qt::LeftButton, Qt::LeftButton);
        sendMouse(plot, QEvent::MouseMove, QPoint(area.right() + 50, middle.y()), Qt::NoButton, Qt::LeftButton);
        sendMouse(plot, QEvent::MouseMove, QPoint(area.left() - 50, middle.y()), Qt::NoButton, Qt::LeftButton);
        sendMouse(plot, QEvent::MouseButtonRelease, QPoint(area.left() - 50, middle.y()), Qt::LeftButton, Qt::NoButton);
        sendMouse(plot, QEvent::MouseButtonPress, start, Qt::RightButton, Qt::RightButton);
        sendMouse(plot, QEvent::MouseButtonRelease, start, Qt::RightButton, Qt::NoButton);
    }
    view.window.render(&image);
    // Without a recording that spans time (none, or a single frame) the
    // plot may show an empty window.
    const bool spansTime = view.shot && !view.scene.shots().isEmpty() && view.shot->startTime() < view.shot->endTime();
    QVERIFY2(spansTime ? plot->leftIndex() < plot->rightIndex() : plot->leftIndex() <= plot->rightIndex(),
             qPrintable(QStringLiteral("plot shows %1 .. %2").arg(plot->leftIndex()).arg(plot->rightIndex())));
    QVERIFY(view.zoomBar->sliderLeft() <= view.zoomBar->sliderRight());
    QVERIFY(view.zoomBar->minimum() <= view.zoomBar->sliderLeft());
    QVERIFY(view.zoomBar->sliderRight() <= view.zoomBar->maximum());
    for (ScopeMarker* marker : view.scene.markers()) {
        (void)marker->position(0);
        (void)marker->position(1);
    }
}

} // namespace

class tst_HostileArchives : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void loadsQuickly_data();
    void loadsQuickly();
    void fiftyMegabyteLine_data();
    void fiftyMegabyteLine();
    void forgedComment_data();
    void forgedComment();
    void randomTimestamps();
    void choiceMapOfHundredThousand();
    void missingRowsKeepTheirZeros();
    void viewAtTheLimits_data();
    void viewAtTheLimits();
};

void tst_HostileArchives::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_HostileArchives::loadsQuickly_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("builds"); // 1 builds a shot, 0 does not, -1 either

    QTest::newRow("four billion frames, a million channels, three rows")
        << document("1000000", "4000000000", "0", "1", threeRows()) << 1;
    QTest::newRow("counts at the ends of 64 bits")
        << document("18446744073709551615", "18446744073709551615", "18446744073709551615", "1", threeRows()) << -1;
    QTest::newRow("negative channel count") << document("-1", "3", "0", "1", threeRows()) << 0;
    QTest::newRow("negative frame count") << document("2", "-3", "0", "1", threeRows()) << 1;
    QTest::newRow("negative trigger index") << document("2", "3", "-2", "1", threeRows()) << 1;
    QTest::newRow("non-numeric channel count") << document("zwei", "3", "0", "1", threeRows()) << 0;
    QTest::newRow("non-numeric frame count") << document("2", "drei", "0", "1", threeRows()) << 1;
    QTest::newRow("hex counts") << document("0x2", "0x3", "0x1", "1", threeRows()) << 0;
    QTest::newRow("trigger index beyond the frames") << document("2", "3", "4000000000", "1", threeRows()) << 1;
    QTest::newRow("trigger far out, longest time base")
        << document("2", "3", "4000000000", "214748364.7", threeRows()) << 1;
    QTest::newRow("trigger far out, time base of 32 bits")
        << document("2", "3", "4000000000", "429496729.5", threeRows()) << -1;
    QTest::newRow("trigger at 64 bits, longest time base")
        << document("2", "3", "18446744073709551615", "214748364.7", threeRows()) << 1;
    QTest::newRow("time base nan") << document("2", "3", "0", "nan", threeRows()) << 0;
    QTest::newRow("time base inf") << document("2", "3", "0", "inf", threeRows()) << -1;
    QTest::newRow("time base -inf") << document("2", "3", "0", "-inf", threeRows()) << -1;
    QTest::newRow("time base -5") << document("2", "3", "0", "-5", threeRows()) << -1;
    QTest::newRow("time base 1e308") << document("2", "3", "0", "1e308", threeRows()) << -1;
    QTest::newRow("time base beyond 32 bits") << document("2", "3", "0", "429496729.6", threeRows()) << -1;
    QTest::newRow("time base below 0.1 us") << document("2", "3", "0", "0.09", threeRows()) << 0;

    QByteArray wide = "Data_0=0";
    for (int i = 1; i < 10000; ++i)
        wide += ';' + QByteArray::number(i);
    QTest::newRow("a row of 10000 fields") << document("2", "1", "0", "1", wide + "\r\n") << 1;
    QTest::newRow("10000 fields, 10000 channels, two sections")
        << document("10000", "1", "0", "1", wide + "\r\n") << 1;

    QByteArray many;
    for (int i = 0; i < 20000; ++i)
        many += "Data_" + QByteArray::number(i) + "=0;1\r\n";
    QTest::newRow("rows far beyond the frame count") << document("1", "2", "0", "1", many, 1) << 1;
    QTest::newRow("row keys far beyond the frame count")
        << document("1", "3", "0", "1", "Data_99999999999999999999=0;1\r\nData_4294967296=0;1\r\n", 1) << 1;
    QTest::newRow("marker positions at 9e18")
        << document("2", "3", "1", "1", threeRows(), 2,
                    "\r\n[ScopeScene]\r\nMarkerPosition_0A=9000000000000000000\r\nMarkerPosition_0B=-9000000000000000000\r\n")
        << 1;
    QTest::newRow("empty") << QByteArray() << 0;
    QTest::newRow("only brackets") << QByteArray(100000, '[') << 0;
}

void tst_HostileArchives::loadsQuickly()
{
    QFETCH(QByteArray, text);
    QFETCH(int, builds);

    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    std::unique_ptr<ScopeShot> shot(new ScopeShot);
    bool loaded = false;
    bool built = false;
    const Cost cost = measure([&] {
        loaded = archive->fromByteArray(text);
        shot->setArchive(archive.get());
        built = shot->load();
    });
    VERIFY_COST(cost);
    QCOMPARE(loaded, !text.isEmpty() && text.contains("[Archive]"));
    if (builds >= 0)
        QCOMPARE(built, builds == 1);
    if (built && timeOverflows()) {
        ScopeTrace* trace = shot->trace(shot->channelNumbers().value(0));
        QVERIFY(trace);
        QVERIFY(trace->startTime() <= 0 && trace->startTime() <= trace->endTime());
    }
    if (built) {
        QVERIFY(shot->timeBase() > 0);
        QVERIFY(shot->startTime() <= 0);
        QVERIFY(shot->endTime() >= 0);
        const QList<int> numbers = shot->channelNumbers();
        for (int number : numbers) {
            ScopeTrace* trace = shot->trace(number);
            QVERIFY(trace);
            QVERIFY(trace->samples().size() <= 20000);
        }
    }
    shot.reset();

    // The view shows it and stays usable.
    View view(archive.get());
    view.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view.window));
    const Cost viewCost = measure([&] { exercise(view); });
    if (QTest::currentTestFailed())
        return;
    QVERIFY2(viewCost.cpuNs < 10 * TimeBudgetNs,
             qPrintable(QStringLiteral("view took %1 ms of CPU").arg(double(viewCost.cpuNs) / 1e6)));
}

void tst_HostileArchives::fiftyMegabyteLine_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<char>("fill");

    QTest::newRow("a line without '='") << QByteArray() << 'x';
    QTest::newRow("one field of digits") << QByteArray("Data_1=1;") << '7';
    QTest::newRow("fifty million fields") << QByteArray("Data_1=1") << ';';
    QTest::newRow("a comment line") << QByteArray(";") << 'c';
    QTest::newRow("a section name") << QByteArray("[") << 'S';
    QTest::newRow("a key") << QByteArray() << 'k';
}

void tst_HostileArchives::fiftyMegabyteLine()
{
    QFETCH(QByteArray, prefix);
    QFETCH(char, fill);

    const qsizetype size = 50 * 1024 * 1024;
    QByteArray line = prefix + QByteArray(size - prefix.size(), fill);
    if (QByteArray(QTest::currentDataTag()) == "a key")
        line += "=1";
    // A row takes the line's place inside the data; other lines go to the
    // end, where a broken section line cannot hide the rows.
    const bool isRow = prefix.startsWith("Data_");
    QByteArray text = document("2", "3", "0", "1",
                               "Data_0=0;1;2\r\n" + (isRow ? line + "\r\n" : QByteArray("Data_1=1;2;3\r\n"))
                                   + "Data_2=2;3;4\r\n");
    if (!isRow)
        text += "\r\n" + line + "\r\n";
    line.clear();
    line.squeeze();

    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    ScopeShot shot;
    bool built = false;
    const Cost cost = measure([&] {
        QVERIFY(archive->fromByteArray(text));
        shot.setArchive(archive.get());
        built = shot.load();
    });
    VERIFY_COST(cost);
    QVERIFY(built);
    QVERIFY(shot.trace(0));
    QCOMPARE(shot.trace(0)->samples().size(), qsizetype(3));
    QCOMPARE(shot.trace(0)->samples().at(0), 1.0);
    QCOMPARE(shot.trace(0)->samples().at(2), 3.0);
}

void tst_HostileArchives::forgedComment_data()
{
    QTest::addColumn<QByteArray>("hex");
    QTest::addColumn<int>("decodedSize"); // 0: read as empty

    const int largest = int(ScopeArchiveCodec::MaximumCommentSize);
    QTest::newRow("length header FFFFFFFF") << ScopeArchiveCodec::toHex(compressedBlock(0xffffffffu, "<p>x</p>")) << 0;
    QTest::newRow("length header FFFFFFFF, no stream") << QByteArray("ffffffff") << 0;
    QTest::newRow("header 10, inflates to 64 MiB")
        << ScopeArchiveCodec::toHex(compressedBlock(10, QByteArray(64 * 1024 * 1024, 'a'))) << 0;
    QTest::newRow("honest header, 64 MiB")
        << ScopeArchiveCodec::toHex(compressedBlock(64 * 1024 * 1024, QByteArray(64 * 1024 * 1024, 'a'))) << 0;
    QTest::newRow("honest header, 12 MiB")
        << ScopeArchiveCodec::toHex(compressedBlock(12 * 1024 * 1024, QByteArray(12 * 1024 * 1024, 'a'))) << 0;
    QTest::newRow("honest header, one byte over the largest comment")
        << ScopeArchiveCodec::toHex(compressedBlock(quint32(largest) + 1, QByteArray(largest + 1, 'a'))) << 0;
    QTest::newRow("header 0, inflates to 1 MiB")
        << ScopeArchiveCodec::toHex(compressedBlock(0, QByteArray(1024 * 1024, 'a'))) << 0;
    QTest::newRow("truncated stream") << ScopeArchiveCodec::toHex(compressedBlock(8, "<p>x</p>").left(9)) << 0;
    QTest::newRow("odd hex") << QByteArray("abc") << 0;
    QTest::newRow("not hex") << QByteArray("zz00zz00") << 0;
    QTest::newRow("uppercase hex of garbage") << QByteArray("DEADBEEFDEADBEEF") << 0;
    // The largest comment that is read is a deflate bomb of 1000:1 too; it is
    // decoded within the same budget.
    QTest::newRow("largest comment, honest header")
        << ScopeArchiveCodec::toHex(compressedBlock(quint32(largest), QByteArray(largest, 'a'))) << largest;
}

void tst_HostileArchives::forgedComment()
{
    QFETCH(QByteArray, hex);
    QFETCH(int, decodedSize);
    const QByteArray text = document("2", "3", "0", "1", threeRows());
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray(text));
    archive->archiveSection()->setValue("Comment", hex);

    QString comment;
    bool empty = false;
    const Cost cost = measure([&] {
        comment = archive->comment();
        empty = archive->isCommentEmpty();
    });
    VERIFY_COST(cost);
    QCOMPARE(comment.size(), decodedSize);
    QCOMPARE(empty, decodedSize == 0);
    // Whatever it holds, the stored value is kept as it is.
    QCOMPARE(archive->archiveSection()->value("Comment"), hex);
}

void tst_HostileArchives::randomTimestamps()
{
    // Random bytes of the nine-byte length that a stored date-time has, and
    // of other lengths, as hex and raw.
    QRandomGenerator random(20261121);
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray(document("2", "3", "0", "1", threeRows())));
    const Cost cost = measure([&] {
        for (int i = 0; i < 2000; ++i) {
            QByteArray bytes(i % 3 == 0 ? 9 : qsizetype(random.bounded(0, 40)), Qt::Uninitialized);
            for (char& byte : bytes)
                byte = char(random.bounded(256));
            const QByteArray value = i % 2 ? ScopeArchiveCodec::toHex(bytes) : bytes;
            archive->archiveSection()->setValue("ReadOutTimestamp", value);
            const QDateTime time = archive->timestamp();
            if (time.isValid())
                QVERIFY(!time.toString(Qt::ISODate).isEmpty());
        }
    });
    VERIFY_COST(cost);
}

void tst_HostileArchives::choiceMapOfHundredThousand()
{
    QByteArray map;
    for (int i = 0; i < 100000; ++i)
        map += (i ? "," : "") + QByteArray::number(i - 50000) + ":Zustand " + QByteArray::number(i);
    // A repeated section continues the first one.
    const QByteArray text = document("2", "3", "0", "1", "Data_0=0;1;2\r\nData_1=1;-50000;49999\r\nData_2=2;7;3\r\n")
        + "\r\n[ScopeChannel_0]\r\nParameterKind=2\r\nChoiceMap=" + map + "\r\n";
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    ScopeShot shot;
    bool built = false;
    const Cost cost = measure([&] {
        QVERIFY(archive->fromByteArray(text));
        shot.setArchive(archive.get());
        built = shot.load();
    });
    QVERIFY(cost.cpuNs < TimeBudgetNs);
    if (cost.extraKiB >= 0) {
        QVERIFY2(cost.extraKiB < MemoryBudgetKiB, qPrintable(QStringLiteral("needed %1 KiB more").arg(cost.extraKiB)));
    }
    QVERIFY(built);
    QVERIFY(shot.trace(0));
    QCOMPARE(shot.trace(0)->choiceMap().size(), qsizetype(100000));
    QCOMPARE(shot.trace(0)->choiceMap().value(-50000), QStringLiteral("Zustand 0"));
}

void tst_HostileArchives::missingRowsKeepTheirZeros()
{
    // A recording whose first row got lost: the other rows keep their
    // places and the lost one reads as zeros.
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray(document("2", "3", "0", "1", "Data_1=1;1;2\r\nData_2=2;2;3\r\n")));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QVERIFY(shot.trace(0));
    QCOMPARE(shot.trace(0)->samples(), QVector<double>({0.0, 1.0, 2.0}));
}

void tst_HostileArchives::viewAtTheLimits_data()
{
    QTest::addColumn<QByteArray>("scene");
    QTest::addColumn<QByteArray>("timeBase");
    QTest::addColumn<QByteArray>("trigger");

    const QByteArray max = QByteArray::number(Int64Max);
    const QByteArray min = QByteArray::number(Int64Min);
    const QByteArray sliders = "ViewSliderLeft=" + min + "\r\nViewSliderRight=" + max + "\r\n";
    QTest::newRow("sliders at the limits") << sliders << QByteArray("1") << QByteArray("1");
    QTest::newRow("sliders reversed")
        << "ViewSliderLeft=" + max + "\r\nViewSliderRight=" + min + "\r\n" << QByteArray("1") << QByteArray("1");
    QTest::newRow("markers at the limits")
        << "MarkerPosition_0A=" + min + "\r\nMarkerPosition_0B=" + max + "\r\n" << QByteArray("1") << QByteArray("1");
    QTest::newRow("markers reversed at the limits")
        << "MarkerPosition_0A=" + max + "\r\nMarkerPosition_0B=" + min + "\r\n" << QByteArray("1") << QByteArray("1");
    QTest::newRow("markers at 9e18")
        << QByteArray("MarkerPosition_0A=-9000000000000000000\r\nMarkerPosition_0B=9000000000000000000\r\n")
        << QByteArray("1") << QByteArray("1");
    QTest::newRow("everything at the limits, longest time base")
        << sliders + "MarkerPosition_0A=" + min + "\r\nMarkerPosition_0B=" + max + "\r\n"
        << QByteArray("214748364.7") << QByteArray("4000000000");
    QTest::newRow("limits, time base too long for a shot")
        << sliders + "MarkerPosition_0A=" + min + "\r\nMarkerPosition_0B=" + max + "\r\n"
        << QByteArray("429496729.5") << QByteArray("4000000000");
    QTest::newRow("sliders beyond 64 bits")
        << QByteArray("ViewSliderLeft=-99999999999999999999\r\nViewSliderRight=99999999999999999999\r\n")
        << QByteArray("1") << QByteArray("1");
}

void tst_HostileArchives::viewAtTheLimits()
{
    QFETCH(QByteArray, scene);
    QFETCH(QByteArray, timeBase);
    QFETCH(QByteArray, trigger);

    QByteArray text = document("2", "3", trigger, timeBase, threeRows(), 2, "\r\n[ScopeScene]\r\n" + scene);
    // The sliders are also read from the shot section.
    text.replace("TimeBase=" + timeBase + "\r\n", "TimeBase=" + timeBase + "\r\n" + scene);
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray(text));
    View view(archive.get());
    view.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view.window));
    exercise(view);

    // Time labels and marker texts are drawn without overflow; saving the
    // view writes values that load again.
    view.scene.writeSection(archive->sceneSection(), archive->shotSection());
    std::unique_ptr<ScopeShotArchive> again(ScopeShotArchive::create(nullptr));
    QVERIFY(again->fromByteArray(archive->toByteArray()));
    View reloaded(again.get());
    exercise(reloaded);
}

QTEST_MAIN(tst_HostileArchives)
#include "tst_hostilearchives.moc"
