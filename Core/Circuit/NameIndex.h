// An ordered list of named objects with a name lookup that stays fast as the list grows.
#ifndef MORVANE_CORE_CIRCUIT_NAMEINDEX_H
#define MORVANE_CORE_CIRCUIT_NAMEINDEX_H

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

/// Keeps the objects in the order of appending and answers "which one of that name" as a scan of
/// the list from the front (or, with `last_wins`, from the back) would, without scanning. The map is
/// kept in step with appends; erasing or renaming a listed object marks it stale, and the next lookup
/// rebuilds it in one pass. A hit whose name no longer matches also rebuilds, which catches a rename
/// that nobody reported; a rename into a name that nobody reported is the one thing it cannot see.
/// Erasing only forgets the object; the list closes its gaps when it is next read, so that freeing
/// many objects one by one stays linear. An erased object is never dereferenced.
template <class T, bool last_wins> class NameIndex
{
public:
    const std::vector<T*>& items() const
    {
        _compact();
        return _items;
    }
    std::size_t size() const { return items().size(); }
    bool contains(const T* item) const { return _counts.find(item) != _counts.end(); }

    void append(T* item)
    {
        // A freed object's address may come back: its old places must be gone first.
        _compact();
        _items.push_back(item);
        ++_counts[item];
        if (!_valid)
            return;
        if (last_wins)
            _by_name[item->name()] = item;
        else
            _by_name.try_emplace(item->name(), item);
    }

    /// Every occurrence; an object not listed is ignored.
    void erase(const T* item)
    {
        if (_counts.erase(item) == 0)
            return;
        _has_gaps = true;
        _valid = false;
    }

    /// Every object for which `pred` holds, in one pass.
    template <class Pred> void erase_if(Pred pred)
    {
        _compact();
        std::erase_if(_items, [this, &pred](T* item) {
            if (!pred(item))
                return false;
            _counts.erase(item);
            return true;
        });
        _valid = false;
    }

    void clear()
    {
        _items.clear();
        _counts.clear();
        _by_name.clear();
        _valid = true;
        _has_gaps = false;
    }

    /// Call when a listed object is about to change its name.
    void invalidate() { _valid = false; }

    /// The first (or last) object of that name; null if none has it.
    T* find(const std::string& name) const
    {
        if (!_valid)
            _rebuild();
        auto it = _by_name.find(name);
        if (it == _by_name.end())
            return nullptr;
        if (it->second->name() == name)
            return it->second;
        _rebuild();
        it = _by_name.find(name);
        return it != _by_name.end() ? it->second : nullptr;
    }

private:
    void _compact() const
    {
        if (!_has_gaps)
            return;
        std::erase_if(_items, [this](const T* item) { return !contains(item); });
        _has_gaps = false;
    }

    void _rebuild() const
    {
        _by_name.clear();
        for (T* item : items()) {
            if (last_wins)
                _by_name[item->name()] = item;
            else
                _by_name.try_emplace(item->name(), item);
        }
        _valid = true;
    }

    mutable std::vector<T*> _items;                        // in order of appending; not owned
    std::unordered_map<const T*, int> _counts;             // how often each listed object stands there
    mutable std::unordered_map<std::string, T*> _by_name;  // the winner of each name
    mutable bool _valid = true;                            // false: _by_name is stale
    mutable bool _has_gaps = false;                        // _items still holds erased objects
};

#endif  // MORVANE_CORE_CIRCUIT_NAMEINDEX_H
