// tz-designer-form: loads a form drawn in Qt Designer with the kit's widgets, as the
// Designer plug-in creates them, and binds its engine widgets to the engines' attributes
// when a naming service is given.
//   tz-designer-form [--form FILE.ui] [--plugin-dir DIR] [-ORBInitRef NameService=...]
//                    [-quit-after MS]

#include "ApplicationOptions.h"
#include "GlobalImpl.h"
#include "NamingServiceImpl.h"
#include "WidgetBaseImpl.h"

#include <QApplication>
#include <QFile>
#include <QFutureWatcher>
#include <QTimer>
#include <QUiLoader>
#include <QtConcurrent>

#include <cstdio>
#include <memory>

namespace {

QString argumentAfter(const QStringList& arguments, const QString& name, const QString& fallback)
{
    const int at = arguments.indexOf(name);
    return at >= 0 && at + 1 < arguments.size() ? arguments.at(at + 1) : fallback;
}

void print(const QString& line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

// Finds the engines through module discovery, off the GUI thread, then binds every
// engine widget of \a form to the attribute its AttributeName names.
void bindToEngines(QWidget* form, NamingServiceImpl* discovery)
{
    auto* startUp = new QFutureWatcher<void>(form);
    QObject::connect(startUp, &QFutureWatcher<void>::finished, form, [form, discovery] {
        print(QStringLiteral("tz-designer-form: %1 engine module(s) found").arg(discovery->guiAbleLoaded()));
        for (WidgetBaseImpl* widget : form->findChildren<WidgetBaseImpl*>()) {
            QObject::connect(widget, &WidgetBaseImpl::bindingFinished, form, [widget](bool bound) {
                print(QStringLiteral("tz-designer-form: %1 %2 %3")
                          .arg(widget->objectName(), bound ? QStringLiteral("bound to") : QStringLiteral("not bound to"),
                               widget->getAttributeName()));
            });
            widget->bindAttributeByName();
        }
    });
    startUp->setFuture(QtConcurrent::run([discovery] {
        discovery->initialize();
        discovery->postInit();
    }));
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    const ApplicationOptions::Parsed options = ApplicationOptions::parse(app.arguments());
    ApplicationOptions::apply(options, &app);
    GlobalImpl* registry = GlobalImpl::getInstance();

    // QUiLoader looks for custom widgets in the "designer" folders of Qt's plug-in paths
    // (QT_PLUGIN_PATH among them) and in the folders added here.
    QUiLoader loader;
    loader.addPluginPath(argumentAfter(options.rest, QStringLiteral("--plugin-dir"), QStringLiteral(DESIGNER_PLUGIN_DIR)));
    QFile file(argumentAfter(options.rest, QStringLiteral("--form"), QStringLiteral(FORM_FILE)));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "tz-designer-form: cannot read %s\n", qPrintable(file.fileName()));
        return 2;
    }
    std::unique_ptr<QWidget> form(loader.load(&file));
    if (!form) {
        std::fprintf(stderr, "tz-designer-form: %s\n", qPrintable(loader.errorString()));
        return 2;
    }
    // What the plug-in made: a widget of a kit class was created by it, anything the
    // loader could not create is missing or a plain placeholder.
    for (QWidget* widget : form->findChildren<QWidget*>()) {
        if (!widget->objectName().isEmpty() && !widget->objectName().startsWith(QLatin1String("qt_")))
            print(QStringLiteral("tz-designer-form: %1 %2").arg(QLatin1String(widget->metaObject()->className()),
                                                                widget->objectName()));
    }

    std::unique_ptr<NamingServiceImpl> discovery;
    if (!ApplicationOptions::orbInitRef().isEmpty() || !qEnvironmentVariableIsEmpty("ORBInitRef")) {
        discovery = std::make_unique<NamingServiceImpl>();
        registry->setNamingService(discovery.get());
        bindToEngines(form.get(), discovery.get());
    }

    form->show();
    const int quitAfterMs = argumentAfter(options.rest, QStringLiteral("-quit-after"), QStringLiteral("-1")).toInt();
    if (quitAfterMs >= 0)
        QTimer::singleShot(quitAfterMs, &app, &QCoreApplication::quit);
    const int code = app.exec();
    // The widgets give their engine locks back before discovery and the registry go.
    form.reset();
    QThreadPool::globalInstance()->waitForDone();
    discovery.reset();
    delete GlobalImpl::existingInstance();
    return code;
}
