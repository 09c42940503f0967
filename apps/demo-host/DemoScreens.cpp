#include "DemoScreens.h"

#include "ApplicationOptions.h"
#include "ContainerImpl.h"
#include "DemoLanguage.h"
#include "DesktopImpl.h"
#include "DesktopManagerImpl.h"
#include "FSContainer.h"
#include "GlobalImpl.h"
#include "HandheldScreens.h"
#include "QTZScalableLabel.h"
#include "QTZTextEditor.h"
#include "RotatableLabel.h"
#include "SystemModule.h"

#include <QCoreApplication>
#include <QDebug>
#include <QLabel>
#include <QVBoxLayout>

namespace {

// The screens' names: the registry and remote callers know them as they are; a container
// shows its title translated in the generic context.
const char* const powerMeter = QT_TRANSLATE_NOOP("QObject", "Power Meter");
const char* const spectrum = QT_TRANSLATE_NOOP("QObject", "Spectrum");
const char* const notes = QT_TRANSLATE_NOOP("QObject", "Notes");
const char* const systemOverview = QT_TRANSLATE_NOOP("QObject", "System Overview");
const char* const deviceControl = QT_TRANSLATE_NOOP("QObject", "Device Control");

// A label whose text follows the language.
QLabel* translatedLabel(const char* source, QWidget* parent = nullptr)
{
    auto* label = new QLabel(parent);
    DemoLanguage::follow(label, [label, source] { label->setText(QCoreApplication::translate("DemoScreens", source)); });
    return label;
}

// A module's own form: a frame named "ContainerFrame" whose minimum size is the size of
// the container's normal state.
QFrame* moduleForm(const QSize& size)
{
    auto* form = new QFrame;
    form->setObjectName(QStringLiteral("ContainerFrame"));
    form->setMinimumSize(size);
    form->setStyleSheet(QStringLiteral("QLabel { color: white; } QPlainTextEdit { background: white; }"));
    return form;
}

QSize moduleSize()
{
    // Portrait screens take one column of containers, landscape ones three to a row.
    return ApplicationOptions::isPortraitResolution() ? QSize(390, 150) : QSize(220, 130);
}

QWidget* meterScreen()
{
    QFrame* form = moduleForm(moduleSize());
    auto* layout = new QVBoxLayout(form);
    auto* reading = new QTZScalableLabel(form);
    reading->setAlignment(Qt::AlignCenter);
    // A pixel-sized font is shrunk to fit the label's width, each time the width changes.
    // The text goes first, while the font is not pixel-sized: fitted now, in the label's
    // first 100 pixels, it would load a font of every size on the way down, only to be
    // fitted again once the container lays the label out.
    reading->setText(QStringLiteral("-12.734 dBm"));
    QFont font = reading->font();
    font.setPixelSize(44);
    reading->setFont(font);
    layout->addWidget(reading);
    return form;
}

QWidget* traceScreen()
{
    QFrame* form = moduleForm(moduleSize());
    auto* layout = new QHBoxLayout(form);
    auto* axis = new RotatableLabel(form);
    axis->setText(QStringLiteral("dBm"));
    axis->setProperty("FontColor", QStringLiteral("white"));
    axis->setProperty("FontSize", 14);
    // A rotated label's size hint is that of its text lying flat: the host gives it room.
    axis->setFixedWidth(24);
    axis->setMinimumHeight(48);
    layout->addWidget(axis);
    auto* trace = new QLabel(QStringLiteral("~~/\\/\\~~/\\~~"), form);
    trace->setAlignment(Qt::AlignCenter);
    layout->addWidget(trace, 1);
    return form;
}

QWidget* notesScreen()
{
    QFrame* form = moduleForm(moduleSize());
    auto* layout = new QVBoxLayout(form);
    auto* editor = new QTZTextEditor(form);
    editor->setPlainText(QStringLiteral("Sweep 1: 10 MHz - 3 GHz\nRBW 30 kHz\nMarker at 1.575 GHz\n"));
    layout->addWidget(editor);
    return form;
}

// A module's settings for its drawer; the form's minimum width is the drawer's width.
QLayout* spectrumSettings()
{
    QFrame* form = moduleForm(QSize(260, 120));
    auto* rows = new QVBoxLayout(form);
    for (const char* line : {QT_TRANSLATE_NOOP("DemoScreens", "Span: 10 MHz"), QT_TRANSLATE_NOOP("DemoScreens", "RBW: 30 kHz"),
                             QT_TRANSLATE_NOOP("DemoScreens", "Reference: 0 dBm")})
        rows->addWidget(translatedLabel(line, form));
    auto* layout = new QVBoxLayout;
    layout->addWidget(form);
    return layout;
}

} // namespace

DemoScreens::DemoScreens(DesktopImpl* desktop)
    : m_desktop(desktop)
{
    addContainer(QLatin1String(powerMeter), 0, meterScreen());
    addContainer(QLatin1String(spectrum), 1, traceScreen());
    addContainer(QLatin1String(spectrum), 2, traceScreen());
    addContainer(QLatin1String(notes), 0, notesScreen());
    // Every container grows and shrinks on its title-bar buttons and follows a drag; the
    // meter also lands on the desktop grid when let go ("-grid"), and the notes become a
    // thumbnail after their maximized state.
    if (auto* meter = qobject_cast<ContainerImpl*>(m_containers.value(0)))
        meter->setSnapsToGrid(true);
    if (auto* notes = qobject_cast<ContainerImpl*>(m_containers.value(3)))
        notes->enableState(QStringLiteral("Thumb"));
    // The first spectrum keeps its settings in a drawer on its right.
    if (auto* spectrum = qobject_cast<ContainerImpl*>(m_containers.value(1)))
        spectrum->setDrawerLayout(spectrumSettings());
    addFullScreen();
    addDeviceControl();
}

void DemoScreens::addContainer(const QString& title, int instance, QWidget* contents)
{
    auto* container = new ContainerImpl(m_desktop);
    container->setWindowTitle(title, instance);
    auto* layout = new QVBoxLayout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(contents);
    container->setLayout(layout);
    container->init();

    GlobalImpl* registry = GlobalImpl::getInstance();
    registry->addScreen(instance > 1 ? QStringLiteral("%1 %2").arg(title).arg(instance) : title, container);
    if (DesktopManagerImpl* manager = registry->desktopManager())
        manager->registerModule(container);
    HandheldScreens::follow(container);
    // Placed by the manager when the desktop first shows it; on a handheld the other
    // screens open from the navigation bar.
    container->setVisible(HandheldScreens::opensAtStart(m_containers.isEmpty()));
    m_containers.append(container);
}

void DemoScreens::addFullScreen()
{
    m_fullScreen = new FSContainer(m_desktop);
    m_fullScreen->setWindowTitle(QLatin1String(systemOverview));
    auto* layout = new QVBoxLayout;
    QLabel* text = translatedLabel(QT_TRANSLATE_NOOP("DemoScreens", "Full-screen module: the close button returns to the desktop."));
    text->setStyleSheet(QStringLiteral("color: white; font-size: 20px;"));
    text->setAlignment(Qt::AlignCenter);
    text->setWordWrap(true);
    layout->addWidget(text);
    m_fullScreen->setLayout(layout);
    m_fullScreen->hide();
    GlobalImpl::getInstance()->addScreen(QLatin1String(systemOverview), m_fullScreen);
}

void DemoScreens::addDeviceControl()
{
    auto* container = new ContainerImpl(m_desktop);
    container->setWindowTitle(QLatin1String(deviceControl));
    QFrame* form = moduleForm(moduleSize());
    auto* rows = new QVBoxLayout(form);
    for (const char* line : {QT_TRANSLATE_NOOP("DemoScreens", "Reference: internal 10 MHz"),
                             QT_TRANSLATE_NOOP("DemoScreens", "Fan: automatic"), QT_TRANSLATE_NOOP("DemoScreens", "Display: 80 %")})
        rows->addWidget(translatedLabel(line, form));
    auto* layout = new QVBoxLayout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(form);
    container->setLayout(layout);
    container->init();
    container->hide();
    GlobalImpl::getInstance()->systemModule()->setSystemScreen(QStringLiteral("DCS"), container);
}
