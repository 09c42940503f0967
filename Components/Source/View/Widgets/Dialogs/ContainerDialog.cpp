#include "ContainerDialog.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "CorbaFailure.h"
#include "GlobalImpl.h"
#include "PushButtonImpl.h"

#include <QGuiApplication>
#include <QEventLoop>
#include <QFontInfo>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>

namespace {

const char containerDialogSource[] = "Components/Source/View/Widgets/ContainerDialog";

QString dialogRules()
{
    const QString border = CSS::border();
    return QStringLiteral("ContainerDialog { background: transparent; border: none; }"
                          "QLabel#dialog_text { border-radius: 10px; border: 2px solid %1; background-color: #fff;"
                          " color: #000; font-size: 20px; }"
                          "QFrame#dialog_text { border-radius: 10px; border: 2px solid %1; background-color: #fff; }"
                          "QFrame#dialog_text QLabel { background: transparent; border-radius: 10px; color: #000;"
                          " font-size: 20px; padding: 10px; }"
                          "QFrame#dialog_text QScrollArea { background: transparent; border: none; }"
                          "QFrame#dialog_text Lumaro--gui--VerticalScrollBarImpl { background: transparent; }"
                          "QLabel#labelText { background: transparent; border: none; font-size: 20px;"
                          " min-height: 28px; max-height: 28px; color: #fff; }"
                          "QLineEdit#lineEdit { font-size: 20px; background: transparent; border: 2px solid %1;"
                          " color: #fff; }")
        .arg(border);
}

QRect screenArea()
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->geometry() : QRect(0, 0, 800, 480);
}

} // namespace

ContainerDialog::ContainerDialog(QWidget* parent)
    : ContainerImpl(parent)
{
    setObjectName(QStringLiteral("ContainerDialog"));
    updateStyle();
    if (QWidget* close = findChild<QWidget*>(QStringLiteral("ContainerClose")))
        close->hide();

    if (ApplicationOptions::resolution() == QSize(480, 800))
        m_dialogWidth = 400;
    m_minSize = QSize(m_dialogWidth, m_dialogHeight);
    m_savedGeometry.setSize(m_minSize);
    restore();
    setMinimumSize(m_dialogWidth, m_dialogHeight);

    const GlobalImpl* registry = GlobalImpl::existingInstance();
    const QPoint last = registry ? registry->dialogLastPosition() : QPoint();
    if (!last.isNull()) {
        m_position = last;
    } else {
        const QRect area = parent ? parent->rect() : screenArea();
        m_position = QPoint(area.width() / 2 - m_dialogWidth / 2, area.height() / 2 - m_dialogHeight / 2);
    }
    ContainerImpl::move(m_position);
    saveLocation();
    hide();

    if (!parent) {
        setWindowFlags(windowFlags() | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
        setAttribute(Qt::WA_OpaquePaintEvent);
        setAttribute(Qt::WA_NoSystemBackground);
    }
    init();
}

ContainerDialog::~ContainerDialog()
{
    if (m_loop) {
        m_waiting = false;
        m_resultCode = CancelCode;
        m_loop->quit();
    }
}

int ContainerDialog::exec(bool)
{
    try {
        show();
        m_waiting = true;
        // A local loop rather than a poll: the desktop, and further remote requests,
        // are served while the user decides, and an answer ends the wait at once.
        // Dialogs opened meanwhile nest their own loops inside this one.
        QEventLoop loop;
        m_loop = &loop;
        const QPointer<ContainerDialog> self(this);
        loop.exec();
        if (!self)
            return CancelCode;
        m_loop = nullptr;
        hide();
    } catch (...) {
        CorbaFailure::logException(containerDialogSource, "exec", __LINE__);
    }
    return m_resultCode;
}

void ContainerDialog::done(int code)
{
    m_waiting = false;
    m_resultCode = code;
    if (m_loop)
        m_loop->quit();
}

void ContainerDialog::cancelDialog()
{
    done(CancelCode);
}

void ContainerDialog::buttonClicked(const QString& code)
{
    done(code.toInt());
}

void ContainerDialog::show()
{
    ContainerImpl::move(m_position);
    ContainerImpl::show();
    raise();
}

void ContainerDialog::setLayout(QLayout* layout)
{
    ContainerBase::setLayout(layout);
}

void ContainerDialog::updateStyle()
{
    ContainerImpl::updateStyle();
    const QString rules = dialogRules();
    const QString sheet = styleSheet();
    if (!sheet.contains(rules))
        setStyleSheet(sheet + rules);
}

void ContainerDialog::mouseReleaseEvent(QMouseEvent* event)
{
    // The container ends the drag inside the desktop; a dialog never snaps to the grid.
    ContainerImpl::mouseReleaseEvent(event);
    m_position = pos();
    if (GlobalImpl* registry = GlobalImpl::existingInstance())
        registry->setDialogLastPosition(m_position);
}

QHBoxLayout* ContainerDialog::createButtonLayout(QWidget* parent, const QString& buttons, long& count)
{
    const QVector<Button> parsed = parseButtons(buttons);
    count = parsed.size();
    return createButtonLayout(parent, parsed);
}

QVector<ContainerDialog::Button> ContainerDialog::parseButtons(const QString& buttons, QStringList* skipped)
{
    QVector<Button> parsed;
    const QStringList entries = buttons.split(QLatin1Char('|'));
    for (const QString& entry : entries) {
        const QStringList parts = entry.split(QLatin1Char(','));
        if (parts.size() == 2)
            parsed.append({parts.at(0), parts.at(1)});
        else if (skipped)
            skipped->append(entry);
    }
    return parsed;
}

QHBoxLayout* ContainerDialog::createButtonLayout(QWidget* parent, const QVector<Button>& buttons,
                                                 LabelTranslation labels)
{
    auto* layout = new QHBoxLayout;
    auto* dialog = parent && qstrcmp(parent->metaObject()->className(), "ContainerDialog") == 0
        ? static_cast<ContainerDialog*>(parent)
        : nullptr;
    for (const Button& entry : buttons) {
        auto* button = new Lumaro::gui::PushButtonImpl(parent);
        button->setTextTranslated(labels == TranslatedLabels);
        button->setButtonText(entry.label);
        button->setButtonObjectName(entry.code);
        button->setMinimumWidth(entry.label.size() * QFontInfo(button->font()).pixelSize());
        layout->addWidget(button);
        if (dialog)
            connect(button, &Lumaro::gui::PushButtonImpl::buttonPressed, dialog, &ContainerDialog::buttonClicked);
    }
    if (!buttons.isEmpty())
        layout->insertStretch(0, 1);
    return layout;
}
