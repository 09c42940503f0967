#include "GUIManagerReceiver.h"

#include "ContainerDialog.h"
#include "ContainerImpl.h"
#include "GUIManagerImpl.h"
#include "GUIManagerServer.h"
#include "GlobalImpl.h"
#include "MenuBar.h"
#include "OpenDialogRecord.h"
#include "PushButtonImpl.h"
#include "VerticalScrollBarImpl.h"

#include <QDebug>
#include <QDir>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {

const char titleProperty[] = "remoteTitle";
const char kindProperty[] = "remoteKind";
const char blockingProperty[] = "remoteBlocking";
const char rootPathProperty[] = "remoteRootPath";
const char givenRootPathProperty[] = "remoteGivenRootPath";
const char offeredPathProperty[] = "remoteOfferedPath";
const char offeredFilenameProperty[] = "remoteOfferedFilename";

// Remote texts in log lines: a long one is shortened.
QString forLog(const QString& text)
{
    constexpr int shown = 80;
    return text.size() <= shown ? text : text.left(shown) + QStringLiteral("...");
}

QLabel* plainLabel(const QString& text)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

void setButtonText(ContainerDialog* dialog, const QString& code, const QString& text)
{
    for (auto* button : dialog->findChildren<Lumaro::gui::PushButtonImpl*>()) {
        if (button->button()->objectName() == code)
            button->setButtonText(text);
    }
}

void setLabelText(ContainerDialog* dialog, const char* name, const QString& text)
{
    if (auto* label = dialog->findChild<QLabel*>(QLatin1String(name)))
        label->setText(text);
}

} // namespace

GUIManagerServer* GUIManagerReceiver::serve(QWidget* desktop)
{
    auto* server = new GUIManagerServer(desktop);
    install(server, desktop);
    GlobalImpl::getInstance()->setGUIManagerServer(server);
    server->start();
    return server;
}

GUIManagerReceiver* GUIManagerReceiver::install(GUIManagerServer* server, QWidget* desktop)
{
    auto* receiver = new GUIManagerReceiver(desktop);
    server->setResponseSource(receiver);
    if (server->manager())
        receiver->connectTo(server->manager());
    server->initialize();
    return receiver;
}

GUIManagerReceiver::GUIManagerReceiver(QWidget* desktop)
    : m_desktop(desktop)
    , m_record(std::make_shared<OpenDialogRecord>())
{
    setObjectName(QStringLiteral("GUIManagerReceiver"));
    // Dialogs still open when the desktop closes are cancelled, so that their callers return.
    if (GlobalImpl* registry = GlobalImpl::existingInstance())
        connect(registry, &QObject::destroyed, this, [this] { closeDialog(QString()); });
}

GUIManagerReceiver::~GUIManagerReceiver()
{
    for (const QPointer<ContainerDialog>& dialog : qAsConst(m_dialogs)) {
        if (dialog && !dialog->property(blockingProperty).toBool())
            delete dialog.data();
    }
}

void GUIManagerReceiver::connectTo(Lumaro::gui::GUIManagerImpl* manager)
{
    using Manager = Lumaro::gui::GUIManagerImpl;
    connect(manager, &Manager::showAlert, this, &GUIManagerReceiver::showAlert);
    connect(manager, &Manager::showSimpleDialog, this, &GUIManagerReceiver::showSimpleDialog);
    connect(manager, &Manager::showImageDialog, this, &GUIManagerReceiver::showImageDialog);
    connect(manager, &Manager::showDialogWithParams, this, &GUIManagerReceiver::showDialogWithParams);
    connect(manager, &Manager::showDataEntryDialog, this, &GUIManagerReceiver::showDataEntryDialog);
    connect(manager, &Manager::closeDialog, this, &GUIManagerReceiver::closeDialog);
    // The remote call returns what these slots answered, so it waits for them.
    const auto blocking = Qt::BlockingQueuedConnection;
    connect(manager, &Manager::showSimpleDialogBlocking, this, &GUIManagerReceiver::showSimpleDialogBlocking, blocking);
    connect(manager, &Manager::showImageDialogBlocking, this, &GUIManagerReceiver::showImageDialogBlocking, blocking);
    connect(manager, &Manager::showDialogWithParamsBlocking, this, &GUIManagerReceiver::showDialogWithParamsBlocking,
            blocking);
    connect(manager, &Manager::showDataEntryDialogBlocking, this, &GUIManagerReceiver::showDataEntryDialogBlocking, blocking);
    connect(manager, &Manager::showFileSelectDialog, this, &GUIManagerReceiver::showFileSelectDialog, blocking);
    connect(manager, &Manager::isDialogActive, this, &GUIManagerReceiver::isDialogActive, blocking);

    connect(manager, &Manager::showScreen, this, &GUIManagerReceiver::showScreen);
    connect(manager, &Manager::hideScreen, this, &GUIManagerReceiver::hideScreen);
    connect(manager, &Manager::showScreenExtra, this, &GUIManagerReceiver::showScreenExtra);
    connect(manager, &Manager::hideScreenExtra, this, &GUIManagerReceiver::hideScreenExtra);
    connect(manager, &Manager::moveScreen, this, &GUIManagerReceiver::moveScreen);
    connect(manager, &Manager::setScreenState, this, &GUIManagerReceiver::setScreenState);
    connect(manager, &Manager::showMenuBar, this, &GUIManagerReceiver::showMenuBar);
    manager->setDialogRecord(m_record);
}

std::shared_ptr<const OpenDialogRecord> GUIManagerReceiver::openDialogRecord() const
{
    return m_record;
}

QList<ContainerDialog*> GUIManagerReceiver::dialogs() const
{
    QList<ContainerDialog*> open;
    for (const QPointer<ContainerDialog>& dialog : m_dialogs) {
        if (dialog)
            open.append(dialog);
    }
    return open;
}

ContainerDialog* GUIManagerReceiver::alertBox() const
{
    return m_alertBox;
}

int GUIManagerReceiver::alertCount() const
{
    return m_alertBox ? m_alertCount : 0;
}

GUIManagerReceiver::Request GUIManagerReceiver::message(const QString& title, const QString& msg, const QString& buttons)
{
    Request request;
    request.title = title;
    request.message = msg;
    request.buttons = buttons;
    return request;
}

GUIManagerReceiver::Request GUIManagerReceiver::dataEntry(const QString& title, const QString& msg, const QString& buttons,
                                          const QString& offered)
{
    Request request = message(title, msg, buttons);
    request.kind = Request::DataEntry;
    request.entry = offered;
    return request;
}

void GUIManagerReceiver::showAlert(const QString& msg, bool)
{
    if (m_alertBox) {
        addToAlertBox(msg);
        return;
    }
    // "Alert" names the box for remote callers in every language; it shows translated.
    Request request = message(QStringLiteral("Alert"), msg, QStringLiteral("OK,1"));
    request.kind = Request::Alert;
    m_alertBox = open(request, false);
    m_alertCount = 1;
}

void GUIManagerReceiver::addToAlertBox(const QString& msg)
{
    ++m_alertCount;
    // Shown from the second alert on, so always more than one.
    setLabelText(m_alertBox, "alertCount", alertCountText(m_alertCount));
    if (QLabel* count = m_alertBox->findChild<QLabel*>(QStringLiteral("alertCount")))
        count->show();
    if (QLabel* text = m_alertBox->findChild<QLabel*>(QStringLiteral("dialogMessage")))
        text->setText(msg);
    m_alertBox->raise();
}

void GUIManagerReceiver::showSimpleDialog(const QString& title, const QString& msg, const QString& button, bool, bool)
{
    open(message(title, msg, button), false);
}

void GUIManagerReceiver::showImageDialog(const QString& title, const QString& msg, const QString& imageFile,
                                 const QString& button, bool, bool)
{
    Request request = message(title, msg, button);
    request.imageFile = imageFile;
    open(request, false);
}

void GUIManagerReceiver::showDialogWithParams(const QString& title, const QString& msg, const QStringList& params,
                                      const QString& button, bool, bool)
{
    Request request = message(title, msg, button);
    request.parameters = params;
    open(request, false);
}

void GUIManagerReceiver::showDataEntryDialog(const QString& title, const QString& msg, const QString& button,
                                     const QString& data, bool, bool)
{
    open(dataEntry(title, msg, button, data), false);
}

void GUIManagerReceiver::showSimpleDialogBlocking(const QString& title, const QString& msg, const QString& button, bool)
{
    open(message(title, msg, button), true);
}

void GUIManagerReceiver::showImageDialogBlocking(const QString& title, const QString& msg, const QString& imageFile,
                                         const QString& button, bool)
{
    Request request = message(title, msg, button);
    request.imageFile = imageFile;
    open(request, true);
}

void GUIManagerReceiver::showDialogWithParamsBlocking(const QString& title, const QString& msg, const QStringList& params,
                                              const QString& button, bool)
{
    Request request = message(title, msg, button);
    request.parameters = params;
    open(request, true);
}

void GUIManagerReceiver::showDataEntryDialogBlocking(const QString& title, const QString& msg, const QString& button,
                                             const QString& data, bool)
{
    open(dataEntry(title, msg, button, data), true);
}

void GUIManagerReceiver::showFileSelectDialog(const QString& title, const QString& rootpath, const QString& path,
                                      const QString& filename)
{
    Request request = message(title, QString(), QStringLiteral("Open,1|Cancel,0"));
    request.kind = Request::FileSelect;
    request.rootPath = rootpath;
    request.entry = path;
    request.filename = filename;
    open(request, true);
}

ContainerDialog* GUIManagerReceiver::open(const Request& request, bool wait)
{
    ContainerDialog* dialog = nullptr;
    if (!m_desktop || !GlobalImpl::existingInstance())
        qDebug() << "UserInterface - GUIManager receiver - desktop closing, remote dialog not shown:" << forLog(request.title);
    else
        dialog = build(request);
    if (!dialog) {
        switch (request.kind) {
        case Request::DataEntry:
            emit retResponse(long(ContainerDialog::CancelCode), request.entry);
            break;
        case Request::FileSelect:
            emit retResponse(long(ContainerDialog::CancelCode), request.entry, request.filename);
            break;
        case Request::Message:
        case Request::Alert:
            emit retResponse(long(ContainerDialog::CancelCode));
            break;
        }
        return nullptr;
    }

    m_dialogs.append(dialog);
    m_record->enter(dialog, request.title);
    // A dialog deleted by someone else leaves the record as well.
    connect(dialog, &QObject::destroyed, [record = m_record, dialog] { record->remove(dialog); });
    qDebug() << "UserInterface - GUIManager receiver - remote dialog shown:" << forLog(request.title);
    if (!wait) {
        // Nobody waits in exec(): a press answers and closes the dialog here.
        for (Lumaro::gui::PushButtonImpl* button : dialog->findChildren<Lumaro::gui::PushButtonImpl*>()) {
            connect(button, &Lumaro::gui::PushButtonImpl::buttonPressed, this, [this, dialog](const QString& code) {
                answer(dialog, code.toLong());
                forget(dialog);
            });
        }
        dialog->show();
        return dialog;
    }

    dialog->setProperty(blockingProperty, true);
    const QPointer<GUIManagerReceiver> self(this);
    const QPointer<ContainerDialog> guard(dialog);
    const int code = dialog->exec(true);
    if (self && guard) {
        answer(dialog, code);
        forget(dialog);
    }
    return nullptr;
}

ContainerDialog* GUIManagerReceiver::build(const Request& request)
{
    auto* dialog = new ContainerDialog(m_desktop);
    dialog->setTitleTranslated(false);
    dialog->setWindowTitle(request.title, 0);
    dialog->setProperty(titleProperty, request.title);
    dialog->setProperty(kindProperty, int(request.kind));

    // The message and what comes with it scroll inside the dialog's text frame.
    auto* textFrame = new QFrame;
    textFrame->setObjectName(QStringLiteral("dialog_text"));
    auto* frameLayout = new QVBoxLayout(textFrame);
    auto* scrollArea = new QScrollArea;
    scrollArea->setWidgetResizable(true);
    scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea->setVerticalScrollBar(new Lumaro::gui::VerticalScrollBarImpl);
    auto* contents = new QWidget;
    auto* contentsLayout = new QVBoxLayout(contents);
    if (request.kind == Request::Alert) {
        // Shown once a second alert joins the box.
        QLabel* count = plainLabel(QString());
        count->setObjectName(QStringLiteral("alertCount"));
        count->hide();
        contentsLayout->addWidget(count);
    }
    QLabel* text = plainLabel(request.message);
    text->setObjectName(QStringLiteral("dialogMessage"));
    contentsLayout->addWidget(text);
    for (const QString& parameter : request.parameters)
        contentsLayout->addWidget(plainLabel(parameter));
    if (!request.imageFile.isEmpty()) {
        const QPixmap image(request.imageFile);
        if (image.isNull()) {
            qDebug() << "UserInterface - GUIManager receiver - remote dialog image not readable:" << forLog(request.imageFile);
            QLabel* missing = plainLabel(QString());
            missing->setObjectName(QStringLiteral("imageMissing"));
            contentsLayout->addWidget(missing);
        } else {
            auto* picture = new QLabel;
            picture->setObjectName(QStringLiteral("dialog_image"));
            picture->setPixmap(image.scaled(QSize(320, 160), Qt::KeepAspectRatio, Qt::SmoothTransformation));
            picture->setAlignment(Qt::AlignCenter);
            contentsLayout->addWidget(picture);
        }
    }
    contentsLayout->addStretch(1);
    scrollArea->setWidget(contents);
    frameLayout->addWidget(scrollArea);

    auto* layout = new QVBoxLayout;
    layout->addWidget(textFrame, 1);
    if (request.kind == Request::DataEntry) {
        auto* caption = new QLabel;
        caption->setObjectName(QStringLiteral("labelText"));
        auto* entry = new QLineEdit(request.entry);
        entry->setObjectName(QStringLiteral("lineEdit"));
        layout->addWidget(caption);
        layout->addWidget(entry);
    } else if (request.kind == Request::FileSelect) {
        const QDir root(request.rootPath);
        if (!root.exists())
            qDebug() << "UserInterface - GUIManager receiver - remote file selection: no folder" << forLog(request.rootPath);
        auto* files = new QListWidget;
        files->setObjectName(QStringLiteral("fileList"));
        files->addItems(root.exists() ? root.entryList(QDir::Files, QDir::Name) : QStringList());
        const QList<QListWidgetItem*> offered = files->findItems(request.filename, Qt::MatchExactly);
        if (!offered.isEmpty())
            files->setCurrentItem(offered.first());
        layout->addWidget(files);
        dialog->setProperty(rootPathProperty, root.absolutePath());
        dialog->setProperty(givenRootPathProperty, request.rootPath);
        dialog->setProperty(offeredPathProperty, request.entry);
        dialog->setProperty(offeredFilenameProperty, request.filename);
    }

    // The description is read once; its faults are the caller's, so they are logged here.
    QStringList skipped;
    const QVector<ContainerDialog::Button> buttons = ContainerDialog::parseButtons(request.buttons, &skipped);
    if (!skipped.isEmpty())
        qDebug() << "UserInterface - GUIManager receiver - remote dialog" << forLog(request.title) << "-" << skipped.size()
                 << "of" << skipped.size() + buttons.size() << "button entries are not \"label,code\":"
                 << forLog(request.buttons);
    for (const ContainerDialog::Button& button : buttons) {
        bool numeric = false;
        button.code.toLong(&numeric);
        if (!numeric)
            qDebug() << "UserInterface - GUIManager receiver - remote dialog" << forLog(request.title) << "- button"
                     << button.label << "has no numeric code, it answers 0:" << forLog(button.code);
    }
    layout->addLayout(ContainerDialog::createButtonLayout(dialog, buttons, ContainerDialog::VerbatimLabels));
    dialog->setLayout(layout);
    showOwnTexts(dialog);
    dialog->installEventFilter(this);

    if (buttons.isEmpty()) {
        // Nothing could ever answer it, and its caller would wait for ever.
        qDebug() << "UserInterface - GUIManager receiver - remote dialog" << forLog(request.title)
                 << "has no button; answered" << long(ContainerDialog::CancelCode) << "without showing it";
        delete dialog;
        return nullptr;
    }
    return dialog;
}

QString GUIManagerReceiver::alertCountText(int count)
{
    return tr("%n alerts, the latest:", "", count);
}

void GUIManagerReceiver::showOwnTexts(ContainerDialog* dialog)
{
    switch (Request::Kind(dialog->property(kindProperty).toInt())) {
    case Request::Alert:
        dialog->setWindowTitle(tr("Alert"), 0);
        setButtonText(dialog, QStringLiteral("1"), tr("OK"));
        if (dialog == m_alertBox && m_alertCount > 1)
            setLabelText(dialog, "alertCount", alertCountText(m_alertCount));
        break;
    case Request::FileSelect:
        setLabelText(dialog, "dialogMessage",
                     tr("Choose a file in %1").arg(dialog->property(givenRootPathProperty).toString()));
        setButtonText(dialog, QStringLiteral("1"), tr("Open"));
        setButtonText(dialog, QStringLiteral("0"), tr("Cancel"));
        break;
    case Request::DataEntry:
        setLabelText(dialog, "labelText", tr("Entry"));
        break;
    case Request::Message:
        break;
    }
    setLabelText(dialog, "imageMissing", tr("(image not available)"));
}

bool GUIManagerReceiver::eventFilter(QObject* watched, QEvent* event)
{
    // Before the dialog and its buttons handle the change, which shows their texts as
    // they are: the remote ones as they came, these in the new language.
    if (event->type() == QEvent::LanguageChange) {
        if (auto* dialog = qobject_cast<ContainerDialog*>(watched))
            showOwnTexts(dialog);
    }
    return QObject::eventFilter(watched, event);
}

void GUIManagerReceiver::answer(ContainerDialog* dialog, long code)
{
    qDebug() << "UserInterface - GUIManager receiver - remote dialog answered:" << forLog(dialog->property(titleProperty).toString())
             << code;
    switch (Request::Kind(dialog->property(kindProperty).toInt())) {
    case Request::DataEntry: {
        const QLineEdit* entry = dialog->findChild<QLineEdit*>(QStringLiteral("lineEdit"));
        emit retResponse(code, entry ? entry->text() : QString());
        break;
    }
    case Request::FileSelect: {
        const QListWidget* files = dialog->findChild<QListWidget*>(QStringLiteral("fileList"));
        const QListWidgetItem* chosen = files ? files->currentItem() : nullptr;
        if (code > 0 && chosen)
            emit retResponse(code, dialog->property(rootPathProperty).toString(), chosen->text());
        else
            emit retResponse(code, dialog->property(offeredPathProperty).toString(),
                             dialog->property(offeredFilenameProperty).toString());
        break;
    }
    case Request::Message:
    case Request::Alert:
        emit retResponse(code);
        break;
    }
}

void GUIManagerReceiver::forget(ContainerDialog* dialog)
{
    m_dialogs.removeAll(dialog);
    m_record->remove(dialog);
    // The next alert opens a box of its own, even before this one is deleted.
    if (dialog == m_alertBox)
        m_alertBox = nullptr;
    dialog->hide();
    dialog->deleteLater();
}

void GUIManagerReceiver::closeDialog(const QString& dialog)
{
    const QList<QPointer<ContainerDialog>> open = m_dialogs;
    for (const QPointer<ContainerDialog>& candidate : open) {
        if (!candidate || (!dialog.isNull() && candidate->property(titleProperty).toString() != dialog))
            continue;
        qDebug() << "UserInterface - GUIManager receiver - remote dialog closed:"
                 << forLog(candidate->property(titleProperty).toString());
        if (candidate->property(blockingProperty).toBool()) {
            // Its exec() returns the cancel, and the waiting call gets it.
            candidate->cancelDialog();
        } else {
            answer(candidate, long(ContainerDialog::CancelCode));
            forget(candidate);
        }
    }
}

void GUIManagerReceiver::isDialogActive(const QString& dialog)
{
    bool open = false;
    for (const QPointer<ContainerDialog>& candidate : qAsConst(m_dialogs))
        open = open || (candidate && candidate->property(titleProperty).toString() == dialog);
    emit retResponse(long(open ? 1 : 0));
}

bool GUIManagerReceiver::isRegisteredScreen(QWidget* screen)
{
    GlobalImpl* registry = GlobalImpl::existingInstance();
    return registry && registry->isScreen(screen);
}

void GUIManagerReceiver::showScreen(QWidget* screen)
{
    if (!isRegisteredScreen(screen)) {
        qDebug() << "UserInterface - GUIManager receiver - remote: that screen is gone";
        return;
    }
    screen->show();
    screen->raise();
    qDebug() << "UserInterface - GUIManager receiver - remote: screen shown" << screen->objectName();
}

void GUIManagerReceiver::hideScreen(QWidget* screen)
{
    if (!isRegisteredScreen(screen)) {
        qDebug() << "UserInterface - GUIManager receiver - remote: that screen is gone";
        return;
    }
    screen->hide();
    qDebug() << "UserInterface - GUIManager receiver - remote: screen hidden" << screen->objectName();
}

void GUIManagerReceiver::showScreenExtra(QWidget* screen, const QString& extra)
{
    if (!isRegisteredScreen(screen)) {
        qDebug() << "UserInterface - GUIManager receiver - remote: no screen for" << forLog(extra);
        return;
    }
    screen->show();
    if (extra == QLatin1String("back"))
        screen->lower();
    else if (extra == QLatin1String("front"))
        screen->raise();
    else
        qDebug() << "UserInterface - GUIManager receiver - remote: unknown screen extra" << forLog(extra);
}

void GUIManagerReceiver::hideScreenExtra(QWidget* screen, const QString& extra)
{
    if (!isRegisteredScreen(screen)) {
        qDebug() << "UserInterface - GUIManager receiver - remote: that screen is gone";
        return;
    }
    if (extra == QLatin1String("back")) {
        screen->lower();
        return;
    }
    qDebug() << "UserInterface - GUIManager receiver - remote: unknown screen extra" << forLog(extra);
    screen->hide();
}

void GUIManagerReceiver::moveScreen(QWidget* screen, int x, int y)
{
    if (!isRegisteredScreen(screen)) {
        qDebug() << "UserInterface - GUIManager receiver - remote: that screen is gone";
        return;
    }
    if (auto* container = qobject_cast<ContainerImpl*>(screen)) {
        container->move(x, y);
        // Where "Min" returns to from now on.
        container->saveLocation();
    } else {
        screen->move(x, y);
    }
}

void GUIManagerReceiver::setScreenState(ContainerImpl* container, const QString& size)
{
    if (!isRegisteredScreen(container)) {
        qDebug() << "UserInterface - GUIManager receiver - remote: that screen is gone";
        return;
    }
    container->setState(size);
}

void GUIManagerReceiver::showMenuBar(bool visible)
{
    GlobalImpl* registry = GlobalImpl::existingInstance();
    MenuBar* menuBar = registry ? registry->topNavMenu() : nullptr;
    if (!menuBar) {
        qDebug() << "UserInterface - GUIManager receiver - remote: no navigation bar to show or hide";
        return;
    }
    menuBar->showMenuBar(visible);
}
