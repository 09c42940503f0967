#include "ScreenMap.h"

#include <QPushButton>

#include <algorithm>

void ScreenMap::append(const ScreenKey& key, QPushButton* button)
{
    const QObject* object = button;
    m_nodes.push_back(Node{ScreenPair{key, button}, object, m_nextSerial++});
    const Nodes::iterator node = std::prev(m_nodes.end());
    m_byKey[key].append(node);
    m_byButton[object].append(node);
}

ScreenKey ScreenMap::key(QPushButton* button) const
{
    const QObject* object = button;
    const auto found = m_byButton.constFind(object);
    if (found == m_byButton.constEnd())
        return ScreenKey();
    return found->first()->pair.key;
}

QPushButton* ScreenMap::button(const ScreenKey& key) const
{
    const auto found = m_byKey.constFind(key);
    if (found == m_byKey.constEnd())
        return nullptr;
    return found->first()->pair.button;
}

void ScreenMap::remove(const ScreenKey& key, QPushButton* button)
{
    const auto found = m_byKey.constFind(key);
    if (found == m_byKey.constEnd())
        return;
    for (const Nodes::iterator& node : *found) {
        if (node->pair.button == button) {
            erase(node);
            return;
        }
    }
}

void ScreenMap::removeButton(const QObject* object)
{
    const auto found = m_byButton.constFind(object);
    if (found != m_byButton.constEnd())
        erase(found->first());
}

void ScreenMap::replaceButton(QPushButton* from, QPushButton* to)
{
    const QObject* fromObject = from;
    const auto found = m_byButton.find(fromObject);
    if (found == m_byButton.end())
        return;
    const Nodes::iterator node = found->first();
    found->remove(0);
    if (found->isEmpty())
        m_byButton.erase(found);
    node->pair.button = to;
    node->object = to;
    insertOrdered(m_byButton[node->object], node);
}

QList<ScreenPair> ScreenMap::pairs() const
{
    QList<ScreenPair> result;
    result.reserve(int(m_nodes.size()));
    for (const Node& node : m_nodes)
        result.append(node.pair);
    return result;
}

void ScreenMap::insertOrdered(Index& index, Nodes::iterator node)
{
    const auto position = std::lower_bound(index.begin(), index.end(), node,
                                           [](Nodes::iterator a, Nodes::iterator b) { return a->serial < b->serial; });
    index.insert(position, node);
}

void ScreenMap::erase(Nodes::iterator node)
{
    auto unlist = [node](auto& hash, const auto& indexKey) {
        const auto found = hash.find(indexKey);
        if (found == hash.end())
            return;
        if (const int at = found->indexOf(node); at >= 0)
            found->remove(at);
        if (found->isEmpty())
            hash.erase(found);
    };
    unlist(m_byKey, node->pair.key);
    unlist(m_byButton, node->object);
    m_nodes.erase(node);
}
