#include <QApplication>
#include <QFrame>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QFrame desktop;
    desktop.setWindowTitle(QStringLiteral("Orvanth Touch Interface System"));
    desktop.setObjectName(QStringLiteral("TopWindow"));
    desktop.setStyleSheet(QStringLiteral("QFrame#TopWindow {    background-color: #000;}"));
    desktop.resize(800, 480);
    desktop.show();
    return app.exec();
}
