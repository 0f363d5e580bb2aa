#include "Core/Circuit/Dict.h"

#include "Core/Support/Error.h"
#include "Core/Support/TLog.h"

Dict::Dict(const Dict* other)
{
    _copy_data_structures_from_other(*other);
}

Dict::Dict(const Dict& other)
{
    _copy_data_structures_from_other(other);
}

Dict& Dict::operator=(const Dict& other)
{
    if (this != &other)
        _copy_data_structures_from_other(other);
    return *this;
}

Dict::~Dict()
{
    if (_data) {
        for (Dict* owned : _data->owned_dicts)
            delete owned;
    }
}

Dict::Data& Dict::_w()
{
    if (!_data)
        _data = std::make_unique<Data>();
    return *_data;
}

const Dict::Data& Dict::_empty_data()
{
    static const Data empty;
    return empty;
}

double& Dict::get_double(const std::string& key, bool create)
{
    auto& doubles = _w().doubles;
    auto it = doubles.find(key);
    if (it != doubles.end())
        return it->second;
    if (!create)
        throw Error("No such double: '%s'", key.c_str());
    return doubles[key] = 0.0;
}

bool& Dict::get_bool(const std::string& key, bool create)
{
    auto& bools = _w().bools;
    auto it = bools.find(key);
    if (it != bools.end())
        return it->second;
    if (!create)
        throw Error("No such bool: '%s'", key.c_str());
    return bools[key] = false;
}

std::string& Dict::get_string(const std::string& key, bool create)
{
    auto& strings = _w().strings;
    auto it = strings.find(key);
    if (it != strings.end())
        return it->second;
    if (!create)
        throw Error("No such string: '%s'", key.c_str());
    return strings[key];
}

Dict* Dict::make_dict(const std::string& key)
{
    Dict* dict = new Dict();
    _w().owned_dicts.insert(dict);
    _w().dicts[key] = dict;
    return dict;
}

Dict* Dict::assure_dict_exists(const std::string& key)
{
    auto it = _r().dicts.find(key);
    return it != _r().dicts.end() ? it->second : make_dict(key);
}

Dict* Dict::get_dict(const std::string& key, bool create)
{
    auto it = _r().dicts.find(key);
    if (it != _r().dicts.end())
        return it->second;
    if (!create)
        throw Error("No such dict: '%s'", key.c_str());
    return make_dict(key);
}

Dict* Dict::get_dict2(const std::string& key) const
{
    auto it = _r().dicts.find(key);
    if (it == _r().dicts.end())
        throw Error("No such dict: '%s'", key.c_str());
    return it->second;
}

Dict::List& Dict::make_empty_dict_list(const std::string& key)
{
    List& list = _w().dict_lists[key];
    list.clear();
    return list;
}

Dict::List& Dict::get_dict_list(const std::string& key, bool create)
{
    auto& lists = _w().dict_lists;
    auto it = lists.find(key);
    if (it != lists.end())
        return it->second;
    if (!create)
        throw Error("No such list: '%s'", key.c_str());
    return lists[key];
}

Dict* Dict::make_dict_in_list(const std::string& key)
{
    Dict* dict = new Dict();
    _w().owned_dicts.insert(dict);
    _w().dict_lists[key].push_back(dict);
    return dict;
}

Dict* Dict::_find_in_list(const List& list, const std::string& name)
{
    for (Dict* entry : list) {
        auto it = entry->_r().strings.find("name");
        if (it != entry->_r().strings.end() && it->second == name)
            return entry;
    }
    return nullptr;
}

bool Dict::has_dict_in_list(const std::string& key, const std::string& name) const
{
    auto it = _r().dict_lists.find(key);
    return it != _r().dict_lists.end() && _find_in_list(it->second, name) != nullptr;
}

Dict* Dict::get_dict_in_list(const std::string& key, const std::string& name, bool create)
{
    List& list = get_dict_list(key, create);
    if (Dict* found = _find_in_list(list, name))
        return found;
    if (!create)
        throw Error("No such dict with name='%s' in list '%s'", name.c_str(), key.c_str());
    Dict* entry = make_dict_in_list(key);
    entry->set_string("name", name);
    return entry;
}

bool Dict::is_empty() const
{
    const Data& d = _r();
    return d.doubles.empty() && d.bools.empty() && d.strings.empty() && d.dicts.empty() &&
           d.dict_lists.empty();
}

void Dict::print() const
{
    _print_strings();
    _print_doubles();
    _print_dicts();
    _print_arrays();
}

void Dict::_print_strings() const
{
    TLog log;
    for (const auto& [key, value] : _r().strings)
        log("%s: '%s'", key.c_str(), value.c_str());
}

void Dict::_print_doubles() const
{
    TLog log;
    for (const auto& [key, value] : _r().doubles)
        log("%s: %5.1f", key.c_str(), value);
}

void Dict::_print_bools() const
{
    TLog log;
    for (const auto& [key, value] : _r().bools)
        log("%s: %d", key.c_str(), value ? 1 : 0);
}

void Dict::_print_dicts() const
{
    TLog log;
    for (const auto& [key, dict] : _r().dicts) {
        log("%s:", key.c_str());
        // Its own sections open one level below this heading.
        dict->print();
    }
}

void Dict::_print_arrays() const
{
    TLog log;
    for (const auto& [key, list] : _r().dict_lists) {
        log("%s (%d):", key.c_str(), static_cast<int>(list.size()));
        for (size_t i = 0; i < list.size(); ++i) {
            log("[%d]", static_cast<int>(i));
            list[i]->print();
        }
    }
}

void Dict::_copy_data_structures_from_other(const Dict& other)
{
    // Copying nothing onto nothing leaves both without contents.
    if (!other._data && !_data)
        return;
    const Data& theirs = other._r();
    Data& mine = _w();
    mine.doubles = theirs.doubles;
    mine.bools = theirs.bools;
    mine.strings = theirs.strings;

    // Foreign pointers of `other` are copied too, so that nothing is shared.
    mine.dicts.clear();
    for (const auto& [key, dict] : theirs.dicts)
        make_dict(key)->_copy_data_structures_from_other(*dict);

    mine.dict_lists.clear();
    for (const auto& [key, list] : theirs.dict_lists) {
        make_empty_dict_list(key);
        for (const Dict* entry : list)
            make_dict_in_list(key)->_copy_data_structures_from_other(*entry);
    }
}
