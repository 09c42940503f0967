#ifndef WIDGETBASEIMPL_H
#define WIDGETBASEIMPL_H

#include "tzuicomponents_export.h"

#include "AttributeFeed.h"

#include <Orvanth.hh>

#include <QDateTime>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <chrono>
#include <functional>
#include <memory>

class BindingInfoBubble;
class EngineLostOverlay;
class QLabel;
class QPushButton;

/**
 * The base of every widget that operates one engine attribute: binds the attribute by
 * name, covers the widget with a padlock overlay while another locker holds it, takes
 * the engine's control lock and the registry's data-entry slot on a touch, and reports a
 * lost engine to the log and the status bar.
 *
 * The widget's AttributeFeed makes every remote call (finding, narrowing and subscribing,
 * Lock, Unlock, MayAccess) on the global thread pool and hands the outcomes back to the
 * GUI thread; the GUI thread never waits for an engine. So bindAttribute() and a touch
 * return at once, and the binding's outcome is announced by bindingFinished().
 *
 * A bound widget always shows how its data stands (attributeState()): free, locked (the
 * padlock overlay) or engine lost (dimmed behind a dashed outline, refusing input, with
 * one log line and one status-bar message for each loss). A lost widget binds again by
 * itself when its engine is back. A long press or a right click opens a bubble that
 * tells what the widget is bound to.
 */
class TZUICOMPONENTS_EXPORT WidgetBaseImpl : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString AttributeName READ getAttributeName WRITE setAttributeName)
    Q_PROPERTY(QString LabelText READ getLabel WRITE setLabel)
    Q_PROPERTY(int UpdateDelay READ getUpdateDelay WRITE setUpdateDelay)
    Q_PROPERTY(bool SuppressReceiveDebug READ getSuppressDebug WRITE setSuppressDebug)
    Q_PROPERTY(AttributeState attributeState READ attributeState NOTIFY attributeStateChanged)
    // For screen designers: shows the engine-lost look on a form; never saved with it.
    Q_PROPERTY(bool EngineLostPreview READ engineLostPreview WRITE setEngineLostPreview DESIGNABLE true STORED false)

public:
    /// How the widget's data stands.
    enum AttributeState {
        Unbound,   ///< no attribute bound (yet)
        Free,      ///< bound, and this user interface may operate it
        Locked,    ///< bound, another locker holds it
        EngineLost ///< the engine stopped answering; waiting for its return
    };
    Q_ENUM(AttributeState)

    /// How long one call on a bound attribute may take before it fails with
    /// CORBA::TIMEOUT: a hung engine holds a pool thread no longer than this.
    static constexpr std::chrono::milliseconds EngineCallTimeout = AttributeFeed::CallTimeout;

    explicit WidgetBaseImpl(QWidget* parent = nullptr);
    /// Gives back an engine lock the widget holds (on the pool) and ends its
    /// subscriptions; waits for no engine.
    ~WidgetBaseImpl() override;

    QString getAttributeName() const;
    /// The name bindAttributeByName() looks for; set it (and UpdateDelay) before binding.
    void setAttributeName(const QString& name);

    /**
     * Binds \a reading (the widget keeps its own reference; nil unbinds): narrows it to a
     * lockable attribute, subscribes to its lock topic with the update delay as minimum
     * separation and shows its lock state. The remote part runs on the pool;
     * bindingFinished() follows. Each binding adds a subscription that stays until the
     * widget goes.
     */
    virtual void bindAttribute(Orvanth::EngineReadingBase_ptr reading);
    /**
     * Finds AttributeName among the engine modules module discovery has loaded and binds
     * the first match, off the GUI thread. A name no module has is logged and
     * bindingFinished(false) follows; the widget then tries again whenever discovery
     * announces a module, as it does after a lost engine.
     */
    Q_INVOKABLE void bindAttributeByName();

    /// Whether a reading is stored (it may not be narrowed yet).
    bool hasReading() const;
    /// Whether a lockable attribute is bound.
    bool isBound() const;
    /// A new reference to the stored reading, or nil.
    Orvanth::EngineReadingBase_var reading() const;

    Q_INVOKABLE virtual void setLabel(const QString& label);
    virtual QString getLabel() const;
    /// Milliseconds between two lock notices at most; read when binding.
    virtual void setUpdateDelay(int milliseconds);
    virtual int getUpdateDelay() const;

    QLabel* getLabelWidget() const { return m_label; }
    QWidget* desktop() const { return m_desktop; }
    void setDesktop(QWidget* desktop);
    bool getSuppressDebug() const { return m_suppressReceiveDebug; }
    void setSuppressDebug(bool suppress);

    /// Whether the attribute counts as locked: set by lock notices, by a touch that took
    /// the engine lock and by a lost engine; cleared by releaseLock().
    Q_INVOKABLE bool isLocked() const { return m_locked; }
    /// The handle of the engine lock last taken by a touch.
    CORBA::Long lockHandle() const { return m_lockHandle; }
    /// The transparent button that covers the widget while it is locked.
    QPushButton* lockOverlay() const { return m_lockOverlay; }
    /// What dims the widget while its engine is lost.
    QWidget* engineLostOverlay() const;

    AttributeState attributeState() const { return m_state; }
    bool engineLostPreview() const { return m_engineLostPreview; }
    void setEngineLostPreview(bool preview);
    /// The text of the binding bubble: engine module, attribute, lock holder when locked,
    /// time of the last value and the state, one per line, translated.
    QString bindingDescription() const;
    /// Opens the binding bubble above \a globalPosition, as a long press does.
    void showBindingInfo(const QPoint& globalPosition);
    /// Where the widget's engine values come from; its signals drive the widget, so a
    /// test or a host can feed values through them without an engine.
    AttributeFeed* attributeFeed() const { return m_feed.get(); }

    /// Logs the loss, unbinds the widget (its subscriptions stay) and posts the reason
    /// to the status bar. GUI thread only; work on the pool reaches it through
    /// EngineHandle::reportDisconnect().
    virtual void disconnectCORBA(const QString& reason);

public slots:
    /// Shows (true) or hides the overlay; does not change isLocked().
    void setWidgetLocked(bool isLocked);
    void setWidgetLocked() { setWidgetLocked(false); }
    /// Gives the engine lock back (on the pool) and frees the registry's entry slot.
    void releaseLock();
    // No meaning in the base; subclasses give them one.
    virtual void raise();
    virtual void changeSize(const QString& size);
    virtual void retranslate();
    virtual void setLockImageVisible(const bool& visible);

signals:
    void CloseEntryMechanism();
    /// The widget took the registry's entry slot after a touch.
    void DisplayEntryMechanism();
    void SetLocked(bool lock);
    /// A failure meant for the status bar's message list.
    void exceptionMessage(QString message);
    void suppressDebug(bool suppress);
    /// A binding attempt has ended: \a bound tells whether an attribute is bound now.
    void bindingFinished(bool bound);
    void attributeStateChanged(WidgetBaseImpl::AttributeState state);

protected:
    /// What work on another thread may use of the widget's engine binding; its
    /// reportDisconnect() reaches disconnectCORBA() in the GUI thread.
    using EngineHandle = AttributeFeed::CallHandle;

    EngineHandle engineHandle() const;
    /// Runs \a call on the pool after the widget's engine calls already queued.
    void runEngineCall(std::function<void(const EngineHandle&)> call);

    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    /// A change of language shows the caption anew and calls retranslate().
    void changeEvent(QEvent* event) override;

    /// The subclass's caption, named "Label".
    void setLabelWidget(QLabel* label);
    /// Takes the engine lock (when bound) and then the registry's entry slot.
    void acquireLock();
    /// For a subclass that shows the attribute's value: one has arrived now.
    void noteValueReceived();

private:
    void connectToStatusBar();
    void connectToFeed();
    void finishBinding(bool bound, bool locked);
    void attributeNotFound();
    void applyLockAnswer(bool locked);
    void engineLost(const QString& reason);
    void setAttributeState(AttributeState state);
    void showEngineLostLook();
    void lockTaken(bool taken, CORBA::Long handle);
    void lockRefused(const QString& reason);
    void offerEntry();

    QWidget* m_desktop = nullptr;
    bool m_suppressReceiveDebug = false;
    std::unique_ptr<AttributeFeed> m_feed;
    QPushButton* m_lockOverlay;
    QString m_attributeName;
    QLabel* m_label = nullptr;
    // The caption as given, before translation.
    QString m_labelSource;
    int m_updateDelay = 0;
    CORBA::Long m_lockHandle = 0;
    bool m_locked = false;
    AttributeState m_state = Unbound;
    bool m_engineLostPreview = false;
    EngineLostOverlay* m_engineLostOverlay;
    QPointer<BindingInfoBubble> m_bubble;
    QDateTime m_lastValue;
};

#endif
