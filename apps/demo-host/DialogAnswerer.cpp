#include "DialogAnswerer.h"

#include "ContainerDialog.h"
#include "PushButtonImpl.h"

#include <QDebug>
#include <QPushButton>

namespace {

// Set on a dialog once its answer is on its way.
const char* const scheduledProperty = "demoAnswerScheduled";
constexpr int lookIntervalMs = 50;

} // namespace

DialogAnswerer::DialogAnswerer(QWidget* desktop, int delayMs)
    : QObject(desktop)
    , m_desktop(desktop)
    , m_delayMs(delayMs)
{
    connect(&m_look, &QTimer::timeout, this, &DialogAnswerer::lookForDialogs);
    m_look.start(lookIntervalMs);
    qDebug() << "UserInterface - Demo host - dialogs are answered with their first button after" << delayMs << "ms";
}

void DialogAnswerer::lookForDialogs()
{
    if (!m_desktop)
        return;
    const QList<ContainerDialog*> dialogs =
        m_desktop->findChildren<ContainerDialog*>(QStringLiteral("ContainerDialog"), Qt::FindDirectChildrenOnly);
    for (ContainerDialog* dialog : dialogs) {
        if (!dialog->isVisible() || dialog->property(scheduledProperty).toBool())
            continue;
        dialog->setProperty(scheduledProperty, true);
        const QPointer<ContainerDialog> guard(dialog);
        QTimer::singleShot(m_delayMs, this, [guard] {
            if (!guard)
                return;
            guard->setProperty(scheduledProperty, false);
            auto* first = guard->findChild<Lumaro::gui::PushButtonImpl*>();
            if (!first || !guard->isVisible())
                return;
            qDebug() << "UserInterface - Demo host - answering dialog" << guard->getWindowTitle() << "with"
                     << first->button()->objectName();
            first->button()->click();
        });
    }
}
