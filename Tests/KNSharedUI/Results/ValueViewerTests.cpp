#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/ResultTesting.h"
#include "Support/WatchedApplication.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNScintilla.h"
#include "UI/Results/KNValueFindBar.h"
#include "UI/Results/KNValueViewer.h"

#include <QBuffer>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QPointer>
#include <QTemporaryDir>
#include <QtEndian>

using namespace ResultTesting;
using namespace WindowTesting;

namespace {

/// A viewer on the screen with one value.
class Viewer
{
public:
    explicit Viewer(const KNValue &value)
        : viewer(new KNValueViewer(result({QStringLiteral("a")}, {{value}}), 0, 0, {}, nullptr))
    {
        viewer->show();
        EXPECT_TRUE(waitFor([&] { return !viewer->isLoading(); }));
    }
    ~Viewer() { delete viewer; }

    QString form() const { return viewer->findChild<QComboBox *>()->currentText(); }
    void choose(int form)
    {
        auto *const forms = viewer->findChild<QComboBox *>();
        forms->setCurrentIndex(form);
        Q_EMIT forms->activated(form);
        EXPECT_TRUE(waitFor([&] { return !viewer->isLoading(); }));
    }

    QPointer<KNValueViewer> viewer;
};

} // namespace

TEST(ValueText, IndentsJsonAndChangesNothingElse)
{
    EXPECT_EQ(
        KNValueText::indentedJson(QStringLiteral("{\"b\":1.10,\"a\":[1,{}],\"e\":[],\"t\":\"{[,:]}\\\"\"}")),
        QStringLiteral("{\n  \"b\": 1.10,\n  \"a\": [\n    1,\n    {}\n  ],\n  \"e\": [],\n"
                       "  \"t\": \"{[,:]}\\\"\"\n}"));
    EXPECT_TRUE(KNValueText::indentedJson(QStringLiteral("{\"a\":")).isNull());
    EXPECT_EQ(KNValueText::indentedJson(QStringLiteral(" [ ] ")), QStringLiteral("[]"));
}

TEST(ValueText, IndentsXmlAndSequencesOfElements)
{
    EXPECT_EQ(KNValueText::indentedXml(QStringLiteral("<a x=\"1\"><b>t</b><c/></a>")),
              QStringLiteral("<a x=\"1\">\n  <b>t</b>\n  <c/>\n</a>"));
    EXPECT_TRUE(KNValueText::indentedXml(QStringLiteral("<a/><b/>")).contains(QStringLiteral("<a/>\n")));
    EXPECT_TRUE(KNValueText::indentedXml(QStringLiteral("<a><b></a>")).isNull());
    EXPECT_TRUE(KNValueText::indentedXml(QStringLiteral("<?xml version=\"1.0\"?><a/>"))
                    .contains(QStringLiteral("<a/>")));
}

TEST(ValueText, DumpsBytes)
{
    EXPECT_EQ(KNValueText::hexDump(QByteArray("0123456789abcdef\0\xff", 18)),
              QStringLiteral("00000000  30 31 32 33 34 35 36 37  38 39 61 62 63 64 65 66  0123456789abcdef\n"
                             "00000010  00 FF                                             ..\n"));
    EXPECT_EQ(KNValueText::hexDump({}), QString());
}

TEST(ValueText, DetectsKindOfValue)
{
    using Form = KNValueText::Form;
    EXPECT_EQ(KNValueText::formOf(text("  {\"a\": 1}")), Form::Json);
    EXPECT_EQ(KNValueText::formOf(text("[broken")), Form::Text);
    EXPECT_EQ(KNValueText::formOf(text("<a/>")), Form::Xml);
    EXPECT_EQ(KNValueText::formOf(text("< 5")), Form::Text);
    EXPECT_EQ(KNValueText::formOf(text("")), Form::Text);
    EXPECT_EQ(KNValueText::formOf(KNValue(QByteArray("{}"))), Form::Hex);
    EXPECT_EQ(KNValueText::formOf(KNValue(5)), Form::Text);
}

TEST(ValueText, BreaksLinesThatAreTooLongForAnEditor)
{
    bool wasBroken = true;
    EXPECT_EQ(KNValueText::withShortLines(QStringLiteral("abc\ndef"), 4, &wasBroken),
              QStringLiteral("abc\ndef"));
    EXPECT_FALSE(wasBroken);
    EXPECT_EQ(KNValueText::withShortLines(QStringLiteral("abcdef\ng"), 4, &wasBroken),
              QStringLiteral("abcd\nef\ng"));
    EXPECT_TRUE(wasBroken);
    EXPECT_EQ(KNValueText::withShortLines(QStringLiteral("abc🐘d"), 4, &wasBroken), QStringLiteral("abc\n🐘d"));
}

TEST(ValueViewer, ShowsEachValueInTheFormThatSuitsIt)
{
    EXPECT_EQ(Viewer(text("plain\ntext")).viewer->text(), QStringLiteral("plain\ntext"));
    const Viewer json(text("{\"a\":1}"));
    EXPECT_EQ(json.form(), QStringLiteral("JSON"));
    EXPECT_EQ(json.viewer->text(), QStringLiteral("{\n  \"a\": 1\n}"));
    const Viewer xml(text("<a><b/></a>"));
    EXPECT_EQ(xml.form(), QStringLiteral("XML"));
    EXPECT_EQ(xml.viewer->text(), QStringLiteral("<a>\n  <b/>\n</a>"));
    const Viewer bytes(KNValue(QByteArray("\x01\x02")));
    EXPECT_EQ(bytes.form(), QStringLiteral("Hexadecimal"));
    EXPECT_TRUE(bytes.viewer->text().startsWith(QStringLiteral("00000000  01 02")));
    const Viewer date(KNValue(KNDateTime{.ticks = 1, .fractionDigits = 7}));
    EXPECT_EQ(date.viewer->text(), QStringLiteral("1900-01-01 00:00:00.0000001"));
    const Viewer null{KNValue()};
    EXPECT_EQ(null.viewer->remark(), QStringLiteral("The value is NULL."));
}

TEST(ValueViewer, ShowsAnotherFormWhenItIsChosen)
{
    Viewer viewer(text("{\"a\":1}"));
    viewer.choose(0);
    EXPECT_EQ(viewer.viewer->text(), QStringLiteral("{\"a\":1}"));
    viewer.choose(3);
    EXPECT_TRUE(viewer.viewer->text().startsWith(QStringLiteral("00000000  7B 22")));
    viewer.choose(2);
    EXPECT_EQ(viewer.viewer->text(), QStringLiteral("{\"a\":1}")) << "it is no XML";
}

TEST(ValueViewer, OpensAHugeValueAtOnceAndSavesItWhole)
{
    const auto huge = result({QStringLiteral("a")}, {{KNValue(QString(100'000'000, QLatin1Char('x')))}});
    WatchedApplication::instance().beginWatch();
    QPointer<KNValueViewer> viewer;
    WatchedApplication::instance().watch("opening", [&] {
        viewer = new KNValueViewer(huge, 0, 0, {}, nullptr);
        viewer->show();
    });
    ASSERT_TRUE(waitFor([&] { return !viewer->isLoading(); }));
    EXPECT_LT(WatchedApplication::instance().longestCall().milliseconds, WatchedApplication::LongestAllowed);
    EXPECT_EQ(viewer->text().count(QLatin1Char('x')), KNValueViewer::LargestShown);
    EXPECT_TRUE(viewer->remark().startsWith(QStringLiteral("The first 1024 KB of 97656 KB are shown.")))
        << viewer->remark().toStdString();
    const QTemporaryDir folder;
    RecordingFilePanels::install().answer = {folder.filePath(QStringLiteral("value.txt"))};
    viewer->saveToFile();
    ASSERT_TRUE(settle());
    EXPECT_EQ(QFile(folder.filePath(QStringLiteral("value.txt"))).size(), 100'000'000);
    delete viewer;
}

TEST(ValueViewer, SavesBytesAndReportsWriteFailure)
{
    const QTemporaryDir folder;
    RecordingAlerts &alerts = RecordingAlerts::install();
    RecordingFilePanels &panels = RecordingFilePanels::install();
    panels.answer = {folder.filePath(QStringLiteral("value.bin"))};
    const Viewer viewer(KNValue(QByteArray("\0\xff\n", 3)));
    viewer.viewer->saveToFile();
    ASSERT_TRUE(settle());
    QFile file(panels.answer.first());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("\0\xff\n", 3));
    panels.answer = {QStringLiteral("/nonexistent/value.bin")};
    viewer.viewer->saveToFile();
    EXPECT_TRUE(waitFor([&] { return alerts.errors.size() == 1; }));
}

namespace {

/// A file of a red image.
QByteArray imageFile(const char *format, QSize size = {30, 20})
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray file;
    QBuffer buffer(&file);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format));
    return file;
}

} // namespace

TEST(ValueImage, IsRecognisedByItsBytes)
{
    EXPECT_EQ(KNValueImage::formatOf(imageFile("png")), QByteArray("png"));
    EXPECT_EQ(KNValueImage::formatOf(imageFile("jpg")), QByteArray("jpeg"));
    EXPECT_EQ(KNValueImage::formatOf(imageFile("bmp")), QByteArray("bmp"));
    EXPECT_EQ(KNValueImage::formatOf(QByteArray("GIF89a")), QByteArray("gif"));
    EXPECT_EQ(KNValueImage::formatOf(QByteArray("BMW and other cars.")), QByteArray());
    EXPECT_EQ(KNValueImage::formatOf(QByteArray("<svg/>")), QByteArray());
    EXPECT_EQ(KNValueImage::formatOf({}), QByteArray());
}

TEST(ValueImage, HasLimits)
{
    QByteArray huge = imageFile("bmp");
    const quint32 side = qToLittleEndian<quint32>(5'000);
    huge.replace(18, 4, reinterpret_cast<const char *>(&side), 4);
    huge.replace(22, 4, reinterpret_cast<const char *>(&side), 4);
    EXPECT_EQ(KNValueImage::decoded(huge, "bmp").problem,
              QStringLiteral("The image is not shown: 5000 × 5000 pixels are too many."));
    const QByteArray large = imageFile("png") + QByteArray(KNValueImage::LargestFile, 'x');
    EXPECT_EQ(KNValueImage::decoded(large, "png").problem,
              QStringLiteral("The image is not shown: it has more than 32 MB."));
    const KNValueImage wide = KNValueImage::decoded(imageFile("png", {4000, 100}), "png");
    EXPECT_EQ(wide.size, QSize(4000, 100));
    EXPECT_EQ(wide.image.size(), QSize(2048, 51));
}

TEST(ValueImage, SurvivesDamagedFiles)
{
    for (const char *const format : {"png", "jpg", "bmp"}) {
        const QByteArray whole = imageFile(format);
        const QByteArray name = KNValueImage::formatOf(whole);
        for (qsizetype size = 0; size < whole.size(); size += 7) {
            const KNValueImage part = KNValueImage::decoded(whole.first(size), name);
            EXPECT_TRUE(part.image.isNull() != part.problem.isEmpty());
        }
    }
    EXPECT_FALSE(
        KNValueImage::decoded(QByteArray("GIF89a\xff\xff\xff\xff\0\0", 12), "gif").problem.isEmpty());
}

TEST(ValueViewer, ShowsImagesAndTheirBytes)
{
    Viewer viewer(KNValue(imageFile("png")));
    EXPECT_EQ(viewer.form(), QStringLiteral("Image"));
    EXPECT_EQ(viewer.viewer->image().size(), QSize(30, 20));
    EXPECT_EQ(viewer.viewer->image().pixelColor(5, 5), QColor(Qt::red));
    EXPECT_EQ(viewer.viewer->remark(), QStringLiteral("PNG image of 30 × 20 pixels."));
    viewer.viewer->copyValue();
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), QSize(30, 20));
    viewer.choose(3);
    EXPECT_TRUE(viewer.viewer->image().isNull());
    EXPECT_TRUE(viewer.viewer->text().startsWith(QStringLiteral("00000000  89 50 4E 47")));
    viewer.choose(4);
    EXPECT_FALSE(viewer.viewer->image().isNull());
    EXPECT_EQ(Viewer(KNValue(QByteArray("no image"))).viewer->findChild<QComboBox *>()->count(), 4);
}

TEST(ValueViewer, SaysWhyAnImageIsNotShown)
{
    const Viewer viewer(KNValue(imageFile("png").first(40)));
    EXPECT_TRUE(viewer.viewer->image().isNull());
    EXPECT_TRUE(viewer.viewer->remark().startsWith(QStringLiteral("The image cannot be shown: ")))
        << viewer.viewer->remark().toStdString();
}

TEST(ValueViewer, SaysTypeAndLength)
{
    const auto description = [](const KNValue &value) {
        const Viewer viewer(value);
        EXPECT_TRUE(settle());
        return viewer.viewer->description();
    };
    EXPECT_EQ(description(text("äb🐘")), QStringLiteral("text, 3 characters, 7 bytes in UTF-8"));
    EXPECT_EQ(description(text("x")), QStringLiteral("text, 1 character, 1 byte in UTF-8"));
    EXPECT_EQ(description(KNValue(QByteArray(1234, 'x'))), QStringLiteral("binary, 1,234 bytes"));
    EXPECT_EQ(description(KNValue(5)), QStringLiteral("number"));
    EXPECT_EQ(description(KNValue()), QStringLiteral("NULL"));
}

TEST(ValueViewer, FindsTextAndWrapsAround)
{
    const Viewer viewer(text("one two\nTwo three"));
    auto &editor = *viewer.viewer->findChild<QsciScintilla *>();
    QApplication::setActiveWindow(viewer.viewer);
    editor.setFocus();
    QTest::keyClick(&editor, Qt::Key_F, Qt::ControlModifier);
    KNValueFindBar &bar = *viewer.viewer->findBar();
    ASSERT_TRUE(bar.isVisible());
    QTest::keyClicks(bar.field(), QStringLiteral("two"));
    const auto selected = [&] {
        int line = 0, start = 0, lastLine = 0, end = 0;
        editor.getSelection(&line, &start, &lastLine, &end);
        return QPair<int, int>(line, start);
    };
    EXPECT_EQ(selected(), (QPair<int, int>(0, 4)));
    QTest::keyClick(bar.field(), Qt::Key_Return);
    EXPECT_EQ(selected(), (QPair<int, int>(1, 0)));
    bar.findNext();
    EXPECT_EQ(selected(), (QPair<int, int>(0, 4)));
    QTest::keyClick(&editor, Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(selected(), (QPair<int, int>(1, 0)));
    bar.field()->setText(QStringLiteral("four"));
    EXPECT_EQ(bar.message(), QStringLiteral("No matches"));
    QTest::keyClick(bar.field(), Qt::Key_Escape);
    EXPECT_FALSE(bar.isVisible());
    EXPECT_TRUE(viewer.viewer->isVisible());
}

TEST(ValueViewer, ClosesWithEscapeFromItsEditor)
{
    const Viewer viewer(text("x"));
    QPointer<KNValueViewer> watched = viewer.viewer;
    QTest::keyClick(watched->findChild<QsciScintilla *>(), Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return !watched; }));
}

TEST(ValueViewer, CopiesTheWholeValue)
{
    const Viewer viewer(KNValue(QString(3'000'000, QLatin1Char('x'))));
    viewer.viewer->copyValue();
    ASSERT_TRUE(settle());
    EXPECT_EQ(QGuiApplication::clipboard()->text().size(), 3'000'000);
    EXPECT_EQ(namelessWidgets(*viewer.viewer), QStringList());
}
