// The button description of a remote dialog ("label,code|label,code"), as the receiver
// of DisplayDialog builds the dialog's button row from it; every button is pressed and
// must answer its own code.

#include "FuzzDesktop.h"

#include "ContainerDialog.h"
#include "CorbaText.h"
#include "DesktopImpl.h"
#include "PushButtonImpl.h"

#include <QCoreApplication>
#include <QDebug>
#include <QHBoxLayout>
#include <QPushButton>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

ContainerDialog* dialog = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    dialog = new ContainerDialog(FuzzDesktop::instance().desktop());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // A CORBA string ends at its first NUL.
    const std::string description(reinterpret_cast<const char*>(data), size);
    long count = -1;
    QHBoxLayout* row = ContainerDialog::createButtonLayout(dialog, CorbaText::fromCorba(description.c_str()), count);
    const QList<Lumaro::gui::PushButtonImpl*> buttons = dialog->findChildren<Lumaro::gui::PushButtonImpl*>();
    if (count != buttons.size() || row->count() != (count > 0 ? count + 1 : 0)) {
        qWarning() << count << "buttons counted," << buttons.size() << "made," << row->count() << "in the row";
        std::abort();
    }
    for (Lumaro::gui::PushButtonImpl* button : buttons) {
        const QString code = button->button()->objectName();
        button->button()->click();
        if (dialog->result() != code.toInt()) {
            qWarning() << "button" << code << "answered" << dialog->result();
            std::abort();
        }
    }
    qDeleteAll(buttons);
    delete row;
    // What the buttons posted goes with them; left queued, it slows every later input.
    QCoreApplication::sendPostedEvents();
    return 0;
}
