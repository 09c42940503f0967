// The plain-text editor: the gutter's width and numbers, and the current-line highlight.

#include "QTZTextEditor.h"

#include <QImage>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QtTest>

namespace {

QString linesOfText(int count)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines << QStringLiteral("line %1").arg(i + 1);
    return lines.join(QLatin1Char('\n'));
}

QWidget* gutterOf(QTZTextEditor& editor)
{
    return editor.findChild<QWidget*>(QStringLiteral("TextLineNumberArea"));
}

bool isDark(QRgb pixel)
{
    return qGray(pixel) < 96;
}

} // namespace

class TestQTZTextEditor : public QObject
{
    Q_OBJECT

private slots:
    void gutterWidthFollowsDigitsOfLineCount_data();
    void gutterWidthFollowsDigitsOfLineCount();
    void numbersArePaintedRightAlignedInBlack();
    void highlightsCursorLineOnlyWhenEditable();
};

void TestQTZTextEditor::gutterWidthFollowsDigitsOfLineCount_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("digits");
    QTest::newRow("empty") << 0 << 1;
    QTest::newRow("1") << 1 << 1;
    QTest::newRow("9") << 9 << 1;
    QTest::newRow("10") << 10 << 2;
    QTest::newRow("1000") << 1000 << 4;
}

void TestQTZTextEditor::gutterWidthFollowsDigitsOfLineCount()
{
    QFETCH(int, lines);
    QFETCH(int, digits);
    QTZTextEditor editor;
    editor.resize(300, 200);
    editor.show();
    QVERIFY(QTest::qWaitForWindowExposed(&editor));
    QWidget* gutter = gutterOf(editor);
    QVERIFY(gutter);
    QCOMPARE(gutter->styleSheet(),
             QStringLiteral("QFrame#TextLineNumberArea {    background-color: rgb(204,204,204);    "
                            "border-top-left-radius: 12px;    border-bottom-left-radius: 12px;    border: none;}"));

    // Set after showing, so the gutter has to follow a growing document without a resize.
    editor.setPlainText(linesOfText(lines));
    QCoreApplication::processEvents();

    const int expected = 10 + digits * editor.fontMetrics().horizontalAdvance(QLatin1Char('9'));
    QCOMPARE(editor.lineNumberAreaWidth(), expected);
    QCOMPARE(gutter->sizeHint(), QSize(expected, 0));
    const QRect contents = editor.contentsRect();
    QCOMPARE(gutter->geometry(), QRect(contents.left(), contents.top(), expected, contents.height()));
    // The text starts right of the gutter.
    QCOMPARE(editor.viewport()->geometry().left(), contents.left() + expected);
}

void TestQTZTextEditor::numbersArePaintedRightAlignedInBlack()
{
    QTZTextEditor editor;
    editor.setPlainText(linesOfText(3));
    editor.resize(300, 200);
    editor.show();
    QVERIFY(QTest::qWaitForWindowExposed(&editor));
    QWidget* gutter = gutterOf(editor);
    const QImage image = gutter->grab().toImage();
    const int lineHeight = editor.fontMetrics().height();
    const int digitWidth = editor.fontMetrics().horizontalAdvance(QLatin1Char('9'));
    // One-digit numbers stand in the last digit's slot before the 5-pixel right margin.
    const int slotLeft = gutter->width() - 5 - digitWidth - 1;

    auto darkColumnsInBand = [&](int top, int bottom) {
        QSet<int> columns;
        for (int y = std::max(top, 0); y < std::min(bottom, image.height()); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (isDark(image.pixel(x, y)))
                    columns.insert(x);
        return columns;
    };

    for (int line = 0; line < 3; ++line) {
        const QTextBlock block = editor.document()->findBlockByNumber(line);
        const QRect band = editor.cursorRect(QTextCursor(block));
        const QSet<int> columns = darkColumnsInBand(band.top(), band.top() + lineHeight);
        QVERIFY2(!columns.isEmpty(), qPrintable(QStringLiteral("no number on line %1").arg(line + 1)));
        for (int x : columns)
            QVERIFY2(x >= slotLeft && x < gutter->width() - 5, qPrintable(QStringLiteral("x %1").arg(x)));
    }
    // Nothing below the last line.
    const QRect last = editor.cursorRect(QTextCursor(editor.document()->lastBlock()));
    QVERIFY(darkColumnsInBand(last.top() + lineHeight + 2, image.height()).isEmpty());
}

void TestQTZTextEditor::highlightsCursorLineOnlyWhenEditable()
{
    QTZTextEditor editor;
    editor.setPlainText(linesOfText(4));
    QTextCursor cursor(editor.document()->findBlockByNumber(2));
    editor.setTextCursor(cursor);

    const QList<QTextEdit::ExtraSelection> selections = editor.extraSelections();
    QCOMPARE(selections.size(), 1);
    QCOMPARE(selections.first().format.background().color(), QColor(Qt::yellow).lighter(160));
    QVERIFY(selections.first().format.property(QTextFormat::FullWidthSelection).toBool());
    QCOMPARE(selections.first().cursor.blockNumber(), 2);
    QVERIFY(!selections.first().cursor.hasSelection());

    editor.setReadOnly(true);
    editor.setTextCursor(QTextCursor(editor.document()->findBlockByNumber(1)));
    QVERIFY(editor.extraSelections().isEmpty());
}

QTEST_MAIN(TestQTZTextEditor)
#include "tst_qtztexteditor.moc"
