// The start-up benchmark's baseline: a bare Qt Widgets program that shows one label of
// the given size and closes on a timer, as the demo host does with -quit-after, stamping
// its first frame as the host does with -first-frame.
//
// Built a second time as tz-bench-startup-transports, it first starts what every host of
// the library starts before it shows anything: the process's ORB and its DDS participant.
//
//   tz-bench-startup-bare [-res WxH] [-quit-after MS]

#include "FirstFrameStamp.h"

#ifdef TZ_BARE_WITH_TRANSPORTS
#include "DDS_BaseObj.h"
#include "ORB_base.h"
#endif

#include <QApplication>
#include <QLabel>
#include <QTimer>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QSize size(800, 480);
    int quitAfterMs = 100;
    const QStringList arguments = application.arguments();
    for (int i = 1; i + 1 < arguments.size(); ++i) {
        if (arguments[i] == QLatin1String("-res")) {
            const QStringList parts = arguments[++i].split(QLatin1Char('x'));
            if (parts.size() == 2)
                size = QSize(parts[0].toInt(), parts[1].toInt());
        } else if (arguments[i] == QLatin1String("-quit-after")) {
            quitAfterMs = arguments[++i].toInt();
        }
    }
#ifdef TZ_BARE_WITH_TRANSPORTS
    ORB_base::start();
    Orvanth::DDS_BaseObj::DdsBase();
#endif
    QLabel label(QStringLiteral("Orvanth Touch Interface System"));
    label.setAlignment(Qt::AlignCenter);
    label.setFixedSize(size);
    new FirstFrameStamp(&label);
    label.show();
    QTimer::singleShot(quitAfterMs, &label, &QWidget::close);
    const int code = application.exec();
#ifdef TZ_BARE_WITH_TRANSPORTS
    Orvanth::DDS_BaseObj::shutdownDds();
    ORB_base::destroyProcessOrb();
#endif
    return code;
}
