#ifndef SCREENMAP_H
#define SCREENMAP_H

#include "ScreenPair.h"
#include "tzuicomponents_export.h"

#include <QHash>
#include <QList>
#include <QVarLengthArray>

#include <list>

class QObject;

/**
 * The navigation bar's record of its entries: (key, button) pairs in the order they
 * were appended. Lookups by key and by button answer the first matching pair; both are
 * indexed, so a bar of thousands of entries finds one without walking the list.
 */
class TZUICOMPONENTS_EXPORT ScreenMap
{
public:
    ScreenMap() = default;
    ScreenMap(const ScreenMap&) = delete;
    ScreenMap& operator=(const ScreenMap&) = delete;

    void append(const ScreenKey& key, QPushButton* button);
    /// The key of the first pair holding \a button, or a default key.
    ScreenKey key(QPushButton* button) const;
    /// The button of the first pair whose key equals \a key, or null.
    QPushButton* button(const ScreenKey& key) const;
    bool contains(const ScreenKey& key) const { return m_byKey.contains(key); }
    /// Removes the first pair whose key is \a key and whose button is \a button.
    void remove(const ScreenKey& key, QPushButton* button);
    /// Removes the first pair holding \a object. Compares addresses only, so it serves
    /// for a button that is being destroyed.
    void removeButton(const QObject* object);
    /// The first pair holding \a from holds \a to from now on, under the same key.
    void replaceButton(QPushButton* from, QPushButton* to);

    QList<ScreenPair> pairs() const;
    int size() const { return int(m_nodes.size()); }

private:
    struct Node
    {
        ScreenPair pair;
        // The button as a QObject, taken while it was alive: destroyed() reports that.
        const QObject* object;
        quint64 serial;
    };
    using Nodes = std::list<Node>;
    // Each index lists its nodes in map order (by serial). Nearly every key and button
    // has one node, which the index holds without an allocation of its own.
    using Index = QVarLengthArray<Nodes::iterator, 1>;

    static void insertOrdered(Index& index, Nodes::iterator node);
    void erase(Nodes::iterator node);

    Nodes m_nodes;
    QHash<ScreenKey, Index> m_byKey;
    QHash<const QObject*, Index> m_byButton;
    quint64 m_nextSerial = 0;
};

#endif
