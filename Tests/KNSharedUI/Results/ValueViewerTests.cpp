#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/ResultTesting.h"
#include "Support/WatchedApplication.h"
#include "Support/WindowTesting.h"
#include "UI/Results/KNValueViewer.h"

#include <QComboBox>
#include <QFile>
#include <QPointer>
#include <QTemporaryDir>

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
