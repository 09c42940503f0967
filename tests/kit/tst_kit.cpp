// The widget kit without any engine: the bound widget base and the push button driven
// through their attribute feed, the touch scroll bars, the labels and the text editor,
// and the Designer plug-in as Designer and form loaders see it.

#include "LanguageScope.h"

#include "GlobalImpl.h"
#include "PushButtonImpl.h"
#include "QTZScalableLabel.h"
#include "QTZStatusBar.h"
#include "QTZTextEditor.h"
#include "RotatableLabel.h"
#include "ScrollBarImpl.h"
#include "SpeechBubbleImpl.h"

#include <QBuffer>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTextBlock>
#include <QUiLoader>
#include <QtTest>

#include <memory>

using Lumaro::gui::PushButtonImpl;
using Lumaro::gui::ScrollBarImpl;

namespace {

ScrollBarImpl* scrollBar(Qt::Orientation orientation, QWidget* parent, int length)
{
    ScrollBarImpl* bar = orientation == Qt::Vertical ? static_cast<ScrollBarImpl*>(new Lumaro::gui::VerticalScrollBarImpl(parent))
                                                     : new Lumaro::gui::HorizontalScrollBarImpl(parent);
    bar->setGeometry(orientation == Qt::Vertical ? QRect(0, 0, 30, length) : QRect(0, 0, length, 30));
    return bar;
}

QPoint along(Qt::Orientation orientation, int position)
{
    return orientation == Qt::Vertical ? QPoint(15, position) : QPoint(position, 15);
}

} // namespace

class TestKit : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void feedAndTouchesDriveTheWidget_data();
    void feedAndTouchesDriveTheWidget();
    void longPressTellsTheBinding_data();
    void longPressTellsTheBinding();
    void buttonAndEngineLossFollowTheLanguage();
    void scrollBarTouchJumpsOrSteps_data();
    void scrollBarTouchJumpsOrSteps();
    void scrollBarPageStepFollowsTrackLength_data();
    void scrollBarPageStepFollowsTrackLength();
    void scalableLabelFitsItsWidth_data();
    void scalableLabelFitsItsWidth();
    void scalableLabelFitsAsSteppingDownDoes_data();
    void scalableLabelFitsAsSteppingDownDoes();
    void scalableLabelDrawsItsWholeText_data();
    void scalableLabelDrawsItsWholeText();
    void rotatableLabelDrawsAlongItsWholeDegrees_data();
    void rotatableLabelDrawsAlongItsWholeDegrees();
    void editorGutterFitsTheLineNumbers_data();
    void editorGutterFitsTheLineNumbers();
    void editorHighlightsCursorLineOnlyWhenEditable();
    void designerPluginOffersTheKit();
};

void TestKit::cleanup()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    registry->releaseEntryMechanism(registry->entryMechanism());
}

void TestKit::feedAndTouchesDriveTheWidget_data()
{
    // Events: what the attribute feed reports ("bound", "bound-locked", "free" and
    // "locked" notices, "taken" and "refused" engine locks, a call that finds the engine
    // "lost", a "missing" attribute), touches ("touch", "ctrl-touch", "outside"), a
    // "press" of the push button and "other-entry" (another widget takes the entry slot).
    QTest::addColumn<bool>("button");
    QTest::addColumn<QString>("events");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* name, bool button, const char* events, const char* shown) {
        QTest::newRow(name) << button << QString(events) << QString(shown);
    };
    row("lock notices", false, "bound-locked free locked free", "bound overlay padlock locked|-|overlay padlock locked|-");
    // The button's badge, not the padlock, shows the lock.
    row("lock notices on a button", true, "bound-locked free locked", "bound overlay badge locked|-|overlay badge locked");
    row("lock taken for an entry", false, "bound taken", "bound|locked entry");
    row("lock refused", false, "locked refused", "overlay padlock locked|overlay padlock");
    // One message per loss however many calls fail; input refused until the engine is back.
    row("engine lost", false, "bound lost lost touch bound lost", "bound|lost posted|lost|lost|bound|lost posted");
    row("engine lost while locked", false, "bound-locked lost", "bound overlay padlock locked|lost posted");
    row("engine lost under a button", true, "bound-locked lost press", "bound overlay badge locked|lost posted|lost");
    row("attribute missing", false, "missing", "unbound");
    row("touches of an unbound widget", false, "outside ctrl-touch ctrl-touch touch", "-|quiet|-|entry");
    row("presses of an unbound button", true, "press other-entry press", "pressed|-|pressed");
}

void TestKit::feedAndTouchesDriveTheWidget()
{
    QFETCH(bool, button);
    QFETCH(QString, events);
    QFETCH(QString, shown);
    QWidget statusArea;
    QTZStatusBar statusBar(&statusArea);
    GlobalImpl::getInstance()->setStatusBar(&statusBar);
    QWidget window;
    window.setObjectName(QStringLiteral("TopContainerObject"));
    window.setWindowTitle(QStringLiteral("Signal Generator"));
    auto* pushButton = button ? new PushButtonImpl(&window) : nullptr;
    WidgetBaseImpl* widget = button ? pushButton : new WidgetBaseImpl(&window);
    GlobalImpl::getInstance()->setStatusBar(static_cast<QTZStatusBar*>(nullptr));
    widget->setAttributeName(QStringLiteral("RUNACTION1"));
    widget->setGeometry(20, 20, 160, 80);
    window.show();
    QWidget otherEditor;
    AttributeFeed* feed = widget->attributeFeed();
    const QHash<QString, std::function<void()>> happen{
        {"bound", [feed] { emit feed->bindingFinished(true, false); }},
        {"bound-locked", [feed] { emit feed->bindingFinished(true, true); }},
        {"free", [feed] { emit feed->lockChanged(false); }},
        {"locked", [feed] { emit feed->lockChanged(true); }},
        {"taken", [feed] { emit feed->lockTaken(true, 7); }},
        {"refused", [feed] { emit feed->lockRefused(QStringLiteral("Orvanth::LockRefused")); }},
        {"lost", [feed] { emit feed->engineLost(QStringLiteral("CORBA::TRANSIENT")); }},
        {"missing", [feed] { emit feed->attributeNotFound(); }},
        {"other-entry", [&otherEditor] { GlobalImpl::getInstance()->setEntryMechanism(&otherEditor); }},
        {"press", [pushButton] { QTest::mouseClick(pushButton->button(), Qt::LeftButton); }},
        {"touch", [widget] { QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, QPoint(10, 10)); }},
        {"ctrl-touch", [widget] { QTest::mouseClick(widget, Qt::LeftButton, Qt::ControlModifier, QPoint(10, 10)); }},
        {"outside", [widget] { QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, QPoint(400, 10)); }}};
    QStringList seen;
    for (const QString& event : events.split(QLatin1Char(' '))) {
        QSignalSpy bound(widget, &WidgetBaseImpl::bindingFinished);
        QSignalSpy posted(widget, &WidgetBaseImpl::exceptionMessage);
        std::unique_ptr<QSignalSpy> pressed(button ? new QSignalSpy(pushButton, &PushButtonImpl::clicked) : nullptr);
        happen[event]();
        const QPushButton* overlay = widget->lockOverlay();
        const QStringList state{!bound.isEmpty() ? bound.last().at(0).toBool() ? "bound" : "unbound" : "",
                                overlay->isVisible() ? "overlay" : "",
                                overlay->isVisible() && overlay->styleSheet().contains("lock.png") ? "padlock" : "",
                                button && pushButton->lockBadge()->text() == QLatin1String("Locked  ") ? "badge" : "",
                                widget->isLocked() ? "locked" : "",
                                widget->engineLostOverlay()->isVisible() ? "lost" : "",
                                GlobalImpl::getInstance()->entryMechanism() == widget ? "entry" : "",
                                widget->getSuppressDebug() ? "quiet" : "", !posted.isEmpty() ? "posted" : "",
                                pressed && !pressed->isEmpty() ? "pressed" : ""};
        const QString shownNow = QStringList(state.filter(QRegularExpression(QStringLiteral(".")))).join(' ');
        seen << (shownNow.isEmpty() ? QStringLiteral("-") : shownNow);
    }
    QCOMPARE(seen.join(QLatin1Char('|')), shown);
    // The overlay covers the widget, and keeps covering it as it grows.
    widget->resize(200, 90);
    QCOMPARE(widget->lockOverlay()->size(), QSize(200, 90));
    if (events.contains(QLatin1String("lost"))) {
        QCOMPARE(statusBar.lastText(), QStringLiteral("CORBA::TRANSIENT RUNACTION1, disconnecting from engine: Signal Generator"));
        QCOMPARE(widget->engineLostOverlay()->size(), QSize(200, 90));
        // On top of whatever the widget holds, so that touches reach nothing else.
        if (widget->attributeState() == WidgetBaseImpl::EngineLost)
            QCOMPARE(widget->childAt(100, 45), widget->engineLostOverlay());
    }
}

void TestKit::longPressTellsTheBinding_data()
{
    // The kind of widget ("base", the push "button", a "host" widget derived from the
    // base with a button of its own), what the feed reports first, how the bubble is
    // asked for (a "right" click or a press "held"), and the bubble's lines (TIME for
    // the time of the last value).
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("events");
    QTest::addColumn<QString>("gesture");
    QTest::addColumn<QString>("lines");
    const QString head = QStringLiteral("Engine module: unknown|Attribute: RUNACTION1|");
    QTest::newRow("unbound") << "base" << "" << "right" << head + "Last value: none|State: not bound";
    QTest::newRow("free") << "button" << "bound" << "held" << head + "Last value: TIME|State: live";
    QTest::newRow("locked by another") << "base" << "bound locked" << "held"
                                       << head + "Locked by: another user interface|Last value: TIME|State: locked";
    QTest::newRow("lock held here") << "base" << "bound taken" << "right"
                                    << head + "Locked by: this display|Last value: TIME|State: live";
    QTest::newRow("engine lost") << "button" << "bound lost" << "held" << head + "Last value: TIME|State: engine lost";
    QTest::newRow("host widget") << "host" << "bound" << "held" << head + "Last value: TIME|State: live";
}

void TestKit::longPressTellsTheBinding()
{
    QFETCH(QString, kind);
    QFETCH(QString, events);
    QFETCH(QString, gesture);
    QFETCH(QString, lines);
    QWidget window;
    window.resize(400, 300);
    WidgetBaseImpl* widget = nullptr;
    QPushButton* pressed = nullptr;
    if (kind == QLatin1String("button")) {
        auto* button = new PushButtonImpl(&window);
        pressed = button->button();
        widget = button;
    } else {
        widget = new WidgetBaseImpl(&window);
        if (kind == QLatin1String("host")) {
            // A child made after the base, as a host's own widget makes its parts.
            pressed = new QPushButton(QStringLiteral("Set"), widget);
            pressed->setGeometry(0, 0, 160, 80);
        }
    }
    widget->setAttributeName(QStringLiteral("RUNACTION1"));
    widget->setGeometry(20, 150, 160, 80);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    AttributeFeed* feed = widget->attributeFeed();
    for (const QString& event : events.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        if (event == QLatin1String("bound"))
            emit feed->bindingFinished(true, false);
        else if (event == QLatin1String("locked"))
            emit feed->lockChanged(true);
        else if (event == QLatin1String("taken"))
            emit feed->lockTaken(true, 7);
        else if (event == QLatin1String("lost"))
            emit feed->engineLost(QStringLiteral("CORBA::TRANSIENT"));
    }
    QWidget* const entry = GlobalImpl::getInstance()->entryMechanism();
    QSignalSpy clicked(pressed ? pressed : static_cast<QObject*>(widget), pressed ? SIGNAL(clicked()) : SIGNAL(destroyed()));
    QWidget* target = pressed ? static_cast<QWidget*>(pressed) : widget;
    const QPoint spot(30, 30);
    if (gesture == QLatin1String("right")) {
        QTest::mouseClick(target, Qt::RightButton, Qt::NoModifier, spot);
    } else {
        QTest::mousePress(target, Qt::LeftButton, Qt::NoModifier, spot);
        QTRY_VERIFY(window.findChild<SpeechBubbleImpl*>(QStringLiteral("BindingInfoBubble")));
        QTest::mouseRelease(target, Qt::LeftButton, Qt::NoModifier, spot);
    }
    auto* bubble = window.findChild<SpeechBubbleImpl*>(QStringLiteral("BindingInfoBubble"));
    QVERIFY(bubble && bubble->isVisible());
    QString text = bubble->text();
    text.replace(QRegularExpression(QStringLiteral("\\d\\d:\\d\\d:\\d\\d")), QStringLiteral("TIME"));
    QCOMPARE(text.split(QChar::LineSeparator).join(QLatin1Char('|')), lines);
    // The long press clicked nothing nor left a button pressed, and the next touch only
    // closes the bubble (its fade out starts; the status room times the whole fade).
    QCOMPARE(clicked.count(), 0);
    QVERIFY(!pressed || !pressed->isDown());
    QTest::mouseClick(target, Qt::LeftButton, Qt::NoModifier, spot);
    const int opacity = bubble->opacity();
    QTRY_VERIFY_WITH_TIMEOUT(bubble->opacity() < opacity, 1000);
    QCOMPARE(clicked.count(), 0);
    QCOMPARE(GlobalImpl::getInstance()->entryMechanism(), entry);
}

void TestKit::buttonAndEngineLossFollowTheLanguage()
{
    LanguageScope language;
    QWidget statusArea;
    QTZStatusBar statusBar(&statusArea);
    GlobalImpl::getInstance()->setStatusBar(&statusBar);
    QWidget window;
    window.setObjectName(QStringLiteral("TopContainerObject"));
    window.setWindowTitle(QStringLiteral("Signal Generator"));
    auto* button = new PushButtonImpl(&window);
    GlobalImpl::getInstance()->setStatusBar(static_cast<QTZStatusBar*>(nullptr));
    button->setAttributeName(QStringLiteral("RUNACTION1"));
    button->setButtonText(QStringLiteral("Locked"));
    // The same word from an engine, which is shown as it came.
    auto* fromEngine = new PushButtonImpl(&window);
    fromEngine->setTextTranslated(false);
    fromEngine->setButtonText(QStringLiteral("Locked"));
    window.show();
    const auto fontSize = [button] {
        button->button()->ensurePolished();
        return QFontInfo(button->button()->font()).pixelSize();
    };
    const int englishSize = fontSize();
    const auto loseEngine = [button, &statusBar] {
        emit button->attributeFeed()->engineLost(QStringLiteral("CORBA::TRANSIENT"));
        return statusBar.lastText();
    };

    for (const char* shown : {"zh_tw", "en", "zh_tw", ""}) {
        // The engine back, holding the lock, so that each round loses it anew.
        emit button->attributeFeed()->bindingFinished(true, true);
        language.switchTo(shown);
        const bool chinese = qstrcmp(shown, "zh_tw") == 0;
        const QString locked = chinese ? QStringLiteral("已鎖定") : QStringLiteral("Locked");
        QCOMPARE(button->button()->text(), locked);
        QCOMPARE(button->lockBadge()->text().trimmed(), locked);
        QCOMPARE(fromEngine->button()->text(), QStringLiteral("Locked"));
        // The smaller Chinese font, and the standard one again in English.
        QCOMPARE(fontSize() < englishSize, chinese);
        // Each report of a lost engine in the language of its moment.
        QCOMPARE(loseEngine().contains(QStringLiteral("與引擎中斷連線")), chinese);
        QCOMPARE(statusBar.lastText().startsWith(QStringLiteral("CORBA::TRANSIENT RUNACTION1")), true);
    }
}

void TestKit::scrollBarTouchJumpsOrSteps_data()
{
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::addColumn<int>("style");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("expected");
    // 420 pixels of track map the 380 between the handle's half lengths onto 0 to 100.
    for (Qt::Orientation orientation : {Qt::Vertical, Qt::Horizontal}) {
        const char* name = orientation == Qt::Vertical ? "vertical" : "horizontal";
        for (const QPair<int, int>& jump : {qMakePair(0, 0), {20, 0}, {100, 21}, {210, 50}, {400, 100}, {419, 100}})
            QTest::addRow("%s touch at %d", name, jump.first) << orientation << 0 << jump.first << jump.second;
        // The arrow button at the far end steps once instead of jumping there.
        QTest::addRow("%s arrow at the far end", name) << orientation << 1 << 410 << 1;
    }
}

void TestKit::scrollBarTouchJumpsOrSteps()
{
    QFETCH(Qt::Orientation, orientation);
    QFETCH(int, style);
    QFETCH(int, position);
    QFETCH(int, expected);
    QWidget window;
    window.resize(500, 500);
    ScrollBarImpl* bar = scrollBar(orientation, &window, 420);
    window.show();
    // As a form sets it.
    QVERIFY(bar->setProperty("Style", style));
    bar->setValue(style ? 0 : 37);
    QTest::mousePress(bar, Qt::LeftButton, Qt::NoModifier, along(orientation, position));
    QTest::mouseRelease(bar, Qt::LeftButton, Qt::NoModifier, along(orientation, position));
    QCOMPARE(bar->value(), expected);
    if (style == 0) {
        // Dragging follows the finger the same way.
        QMouseEvent move(QEvent::MouseMove, along(orientation, 210), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(bar, &move);
        QCOMPARE(bar->value(), 50);
    }
}

void TestKit::scrollBarPageStepFollowsTrackLength_data()
{
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("expected");
    // 400 pixels are 20 pages of 20 pixels.
    QTest::newRow("vertical 0 to 100") << Qt::Vertical << 100 << 5;
    QTest::newRow("vertical 0 to 10 keeps 2") << Qt::Vertical << 10 << 2;
    QTest::newRow("horizontal 0 to 10 keeps 1") << Qt::Horizontal << 10 << 1;
}

void TestKit::scrollBarPageStepFollowsTrackLength()
{
    QFETCH(Qt::Orientation, orientation);
    QFETCH(int, maximum);
    QFETCH(int, expected);
    std::unique_ptr<ScrollBarImpl> bar(scrollBar(orientation, nullptr, 400));
    bar->setRange(0, maximum);
    QCOMPARE(bar->pageStep(), 10);
    bar->setSingleStep(3);
    QCOMPARE(bar->pageStep(), expected);
    // The range and the size alone leave it as it is.
    bar->setRange(0, maximum * 10);
    bar->resize(orientation == Qt::Vertical ? QSize(30, 200) : QSize(200, 30));
    QCOMPARE(bar->pageStep(), expected);
}

void TestKit::scalableLabelFitsItsWidth_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<QString>("font");
    QTest::addColumn<int>("size");
    QTest::newRow("fits, keeps its size") << 400 << "20px" << 20;
    QTest::newRow("too wide, shrinks until it fits") << 100 << "20px" << 0;
    QTest::newRow("never below one pixel") << 4 << "20px" << 1;
    QTest::newRow("a point-sized font is left alone") << 10 << "20pt" << 20;
}

void TestKit::scalableLabelFitsItsWidth()
{
    QFETCH(int, width);
    QFETCH(QString, font);
    QFETCH(int, size);
    // As in a container, whose sheet gives the title its font.
    QWidget parent;
    parent.setStyleSheet("QLabel { font: " + font + "; }");
    auto* label = new QTZScalableLabel(&parent);
    label->setFixedSize(width, 40);
    parent.show();
    label->ensurePolished();
    QFont base = label->font();
    label->setText(QStringLiteral("Spectrum Analyzer Settings"));
    const int shown = font.endsWith(QLatin1String("pt")) ? label->font().pointSize() : label->font().pixelSize();
    const auto fits = [&](int pixels) {
        base.setPixelSize(pixels);
        return QFontMetrics(base).boundingRect(QRect(0, 0, 1000000, 40), Qt::AlignCenter, label->text()).width() <= width;
    };
    // Without a size given, the largest that fits.
    QCOMPARE(shown, size ? size : fits(shown) && !fits(shown + 1) ? shown : -1);
    // Wider again, it fits from the full size.
    label->setFixedSize(600, 40);
    QCOMPARE(font.endsWith(QLatin1String("pt")) ? label->font().pointSize() : label->font().pixelSize(), 20);
}

void TestKit::scalableLabelFitsAsSteppingDownDoes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("fullSize");
    // The demo's titles at the title fonts of the three screen shapes, and its meter reading.
    for (int size : {18, 22, 26}) {
        for (const char* text : {"Power Meter", "Spectrum 2", "System Overview", "Device Control", "\u529F\u7387\u8A08"})
            QTest::addRow("%s at %dpx", text, size) << QString::fromUtf8(text) << size;
    }
    QTest::newRow("meter reading") << "-12.734 dBm" << 44;
}

void TestKit::scalableLabelFitsAsSteppingDownDoes()
{
    QFETCH(QString, text);
    QFETCH(int, fullSize);
    QWidget parent;
    parent.setStyleSheet(QStringLiteral("QLabel { font: %1px; margin-left: 1px; }").arg(fullSize));
    auto* label = new QTZScalableLabel(&parent);
    parent.show();
    label->ensurePolished();
    QFont font = label->font();
    label->setText(text);
    for (int width = 8; width <= 320; width += 3) {
        label->setFixedSize(width, 40);
        // Down from the full size to the first at which the text fits, less half an "x".
        int expected = fullSize + 1;
        do
            font.setPixelSize(--expected);
        while (expected > 1
               && QFontMetrics(font).boundingRect(QRect(0, 0, width, 40), Qt::AlignCenter, text).width()
                      > label->contentsRect().width() - QFontMetrics(font).horizontalAdvance(QLatin1Char('x')) / 2);
        QVERIFY2(label->font().pixelSize() == expected, qPrintable(QStringLiteral("width %1").arg(width)));
    }
}

void TestKit::scalableLabelDrawsItsWholeText_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<int>("alignment");
    // A container's title: the margin gives the label a frame, and QLabel then draws
    // aligned text half an "x" in from its edge.
    QTest::newRow("container title") << "margin-left: 1px;" << int(Qt::AlignLeft | Qt::AlignVCenter);
    QTest::newRow("right-aligned with a border") << "border: 2px solid black;" << int(Qt::AlignRight | Qt::AlignVCenter);
    QTest::newRow("plain") << "" << int(Qt::AlignLeft | Qt::AlignVCenter);
}

void TestKit::scalableLabelDrawsItsWholeText()
{
    QFETCH(QString, sheet);
    QFETCH(int, alignment);
    QWidget parent;
    parent.setStyleSheet("QLabel { font: 26px; color: white; background: black; " + sheet + " }");
    auto* label = new QTZScalableLabel(&parent);
    label->setAlignment(Qt::Alignment(alignment));
    label->setFixedSize(114, 48);
    parent.show();
    label->setText(QStringLiteral("Engine Controls"));
    QVERIFY(label->font().pixelSize() < 26);
    // No stroke of the text reaches the label's left or right edge inside its frame.
    const QImage image = label->grab().toImage();
    const int inner = label->contentsRect().left();
    for (int x : {inner, label->contentsRect().right()}) {
        for (int y = label->contentsRect().top(); y <= label->contentsRect().bottom(); ++y)
            QVERIFY2(qGray(image.pixel(x, y)) < 128, qPrintable(QStringLiteral("text at %1,%2").arg(x).arg(y)));
    }
}

void TestKit::rotatableLabelDrawsAlongItsWholeDegrees_data()
{
    QTest::addColumn<double>("degrees");
    QTest::addColumn<double>("kept");
    QTest::addColumn<bool>("horizontal");
    QTest::newRow("0.4") << 0.4 << 0.0 << true;
    QTest::newRow("-90.9") << -90.9 << -90.0 << false;
    QTest::newRow("180.7") << 180.7 << 180.0 << true;
}

void TestKit::rotatableLabelDrawsAlongItsWholeDegrees()
{
    QFETCH(double, degrees);
    QFETCH(double, kept);
    QFETCH(bool, horizontal);
    RotatableLabel label;
    label.resize(240, 240);
    label.setProperty("FontColor", QStringLiteral("#ffffff"));
    label.setProperty("FontSize", 24);
    QVERIFY(label.setProperty("Degrees", degrees));
    QCOMPARE(label.degrees(), kept);
    label.setText(QString(12, QChar(0x2588)));
    QImage image(label.size(), QImage::Format_RGB32);
    image.fill(Qt::black);
    label.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    // Ink along the centre lines, leaving out the square around the centre both share.
    int across = 0;
    int down = 0;
    for (int i = 0; i < 240; ++i) {
        if (qAbs(i - 120) > 15) {
            across += qGray(image.pixel(i, 120)) > 100;
            down += qGray(image.pixel(120, i)) > 100;
        }
    }
    QVERIFY2((horizontal ? across : down) > 60, qPrintable(QString::number(horizontal ? across : down)));
    QCOMPARE(horizontal ? down : across, 0);
}

void TestKit::editorGutterFitsTheLineNumbers_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("digits");
    QTest::newRow("empty") << 0 << 1;
    QTest::newRow("10") << 10 << 2;
    QTest::newRow("1000") << 1000 << 4;
}

void TestKit::editorGutterFitsTheLineNumbers()
{
    QFETCH(int, lines);
    QFETCH(int, digits);
    QTZTextEditor editor;
    editor.resize(300, 200);
    editor.show();
    QVERIFY(QTest::qWaitForWindowExposed(&editor));
    // Set after showing, so the gutter has to follow a growing document without a resize.
    QStringList text;
    for (int i = 1; i <= lines; ++i)
        text << QString::number(i % 10);
    editor.setPlainText(text.join(QLatin1Char('\n')));
    QCoreApplication::processEvents();
    const int width = 10 + digits * editor.fontMetrics().horizontalAdvance(QLatin1Char('9'));
    auto* gutter = editor.findChild<QWidget*>(QStringLiteral("TextLineNumberArea"));
    const QRect contents = editor.contentsRect();
    QCOMPARE(gutter->geometry(), QRect(contents.left(), contents.top(), width, contents.height()));
    QCOMPARE(editor.viewport()->geometry().left(), contents.left() + width);
}

void TestKit::editorHighlightsCursorLineOnlyWhenEditable()
{
    QTZTextEditor editor;
    editor.setPlainText(QStringLiteral("1\n2\n3\n4"));
    editor.setTextCursor(QTextCursor(editor.document()->findBlockByNumber(2)));
    const QList<QTextEdit::ExtraSelection> selections = editor.extraSelections();
    QCOMPARE(selections.size(), 1);
    QCOMPARE(selections.first().format.background().color(), QColor(Qt::yellow).lighter(160));
    editor.setReadOnly(true);
    editor.setTextCursor(QTextCursor(editor.document()->findBlockByNumber(1)));
    QVERIFY(editor.extraSelections().isEmpty());
}

void TestKit::designerPluginOffersTheKit()
{
    const QStringList classes{"Lumaro::gui::PushButtonImpl", "RotatableLabel", "Lumaro::gui::HorizontalScrollBarImpl",
                              "Lumaro::gui::VerticalScrollBarImpl"};
    // A form that uses the kit loads, its properties (a kit enumeration included) set.
    QByteArray ui = "<ui version=\"4.0\"><widget class=\"QWidget\" name=\"Form\">"
                    "<widget class=\"Lumaro::gui::PushButtonImpl\" name=\"w0\"><property name=\"EngineLostPreview\">"
                    "<bool>true</bool></property></widget>"
                    "<widget class=\"RotatableLabel\" name=\"w1\"><property name=\"LabelText\"><string>Power</string>"
                    "</property></widget><widget class=\"Lumaro::gui::HorizontalScrollBarImpl\" name=\"w2\"/>"
                    "<widget class=\"Lumaro::gui::VerticalScrollBarImpl\" name=\"w3\"><property name=\"Style\">"
                    "<enum>Lumaro::gui::ScrollBarImpl::WITH_SCROLL_ARROWS</enum></property></widget></widget></ui>";
    QBuffer buffer(&ui);
    QUiLoader loader;
    loader.clearPluginPaths();
    loader.addPluginPath(QStringLiteral(TZ_DESIGNER_PLUGIN_DIR));
    std::unique_ptr<QWidget> loaded(loader.load(&buffer));
    QVERIFY2(loaded, qPrintable(loader.errorString()));
    for (int i = 0; i < classes.size(); ++i)
        QCOMPARE(loaded->findChild<QWidget*>(QStringLiteral("w%1").arg(i))->metaObject()->className(),
                 qPrintable(classes.at(i)));
    QCOMPARE(loaded->findChild<QWidget*>("w1")->property("LabelText").toString(), QStringLiteral("Power"));
    // A designer previews the lost look; the widget's state stays its own.
    auto* previewed = loaded->findChild<WidgetBaseImpl*>("w0");
    QVERIFY(!previewed->engineLostOverlay()->isHidden());
    QCOMPARE(previewed->attributeState(), WidgetBaseImpl::Unbound);
    QCOMPARE(loaded->findChild<QWidget*>("w3")->property("Style").toInt(), int(ScrollBarImpl::WITH_SCROLL_ARROWS));
}

QTEST_MAIN(TestKit)
#include "tst_kit.moc"
