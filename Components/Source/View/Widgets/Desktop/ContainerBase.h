#ifndef CONTAINERBASE_H
#define CONTAINERBASE_H

#include "tzuicomponents_export.h"

#include <QFrame>
#include <QPoint>
#include <QRect>
#include <QString>

class QEvent;
class QHideEvent;
class QLayout;
class QShowEvent;
class QTZScalableLabel;

/**
 * The common base of the windows in which modules show their screens: an inner frame for
 * the module's contents, a translated and numbered title, a saved location to return to,
 * and the signals through which the desktop manager, the title-bar controls and the menu
 * entries follow the container's life.
 */
class TZUICOMPONENTS_EXPORT ContainerBase : public QFrame
{
    Q_OBJECT
    /// The title without its instance number: the name under which the registry knows
    /// the window (read by property name, so no lower layer needs this class).
    Q_PROPERTY(QString windowCaption READ getWindowTitle)

public:
    explicit ContainerBase(QWidget* parent = nullptr);
    /// Emits WindowClosed() once more, so that whoever reserved space for the container
    /// releases it.
    ~ContainerBase() override;

    /// A hook for subclasses, called by the owner once the container is set up.
    virtual void init();
    /// The frame named "ContainerFrame" that the module's form brought along, or else
    /// the inner frame.
    Q_INVOKABLE virtual QWidget* getContainerFrame();
    /// Puts \a layout on the inner frame, around the module's contents.
    virtual void setLayout(QLayout* layout);
    /// Puts \a layout on the container itself; the flag only selects this overload.
    virtual void setLayout(QLayout* layout, bool onContainer);
    Q_INVOKABLE virtual void setWindowTitle(const QString& title, int instNum);
    Q_INVOKABLE void setWindowTitle(const QString& title) { setWindowTitle(title, 0); }
    /// The title as given, neither translated nor numbered.
    QString getWindowTitle() const { return m_title; }
    /// Whether the title is shown translated (the default); a title that came from an
    /// engine is shown as it came.
    void setTitleTranslated(bool translated);
    bool isTitleTranslated() const { return m_titleTranslated; }
    Q_INVOKABLE virtual void retranslate();
    /// Whether the contents are visible, which the container's own flag does not say
    /// for subclasses that hide the inner frame.
    Q_INVOKABLE bool isVisible() const;

public slots:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    virtual void raise();
    /// Back to the saved location, then hidden.
    virtual bool close();
    virtual void saveLocation();
    virtual void restoreLocation();
    /// Makes (x, y) the saved location, at the current size, without moving.
    void setLocation(int x, int y);
    virtual void setShown(bool visible);

signals:
    void hideContainer();
    void raiseContainer();
    void WindowOpened();
    void WindowClosed();
    void contentsActive(bool active);
    void updatePosition(QWidget* container, QPoint pos);
    void changeSize(QString size);

protected:
    void changeEvent(QEvent* event) override;

    QFrame* m_baseFrame;
    QRect m_savedGeometry;
    QTZScalableLabel* m_titleLabel;
    QString m_title;
    int m_instanceNumber = 0;
    bool m_titleTranslated = true;

private:
    // Set while the Qt window title is brought in line with the container's title, so
    // that the resulting change event does not reset the instance number.
    bool m_syncingWindowTitle = false;
};

#endif
