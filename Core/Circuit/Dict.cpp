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
    for (Dict* owned : _owned_dicts)
        delete owned;
}

double& Dict::get_double(const std::string& key, bool create)
{
    auto it = _doubles.find(key);
    if (it != _doubles.end())
        return it->second;
    if (!create)
        throw Error("No such double: '%s'", key.c_str());
    return _doubles[key] = 0.0;
}

bool& Dict::get_bool(const std::string& key, bool create)
{
    auto it = _bools.find(key);
    if (it != _bools.end())
        return it->second;
    if (!create)
        throw Error("No such bool: '%s'", key.c_str());
    return _bools[key] = false;
}

std::string& Dict::get_string(const std::string& key, bool create)
{
    auto it = _strings.find(key);
    if (it != _strings.end())
        return it->second;
    if (!create)
        throw Error("No such string: '%s'", key.c_str());
    return _strings[key];
}

Dict* Dict::make_dict(const std::string& key)
{
    Dict* dict = new Dict();
    _owned_dicts.insert(dict);
    _dicts[key] = dict;
    return dict;
}

Dict* Dict::assure_dict_exists(const std::string& key)
{
    auto it = _dicts.find(key);
    return it != _dicts.end() ? it->second : make_dict(key);
}

Dict* Dict::get_dict(const std::string& key, bool create)
{
    auto it = _dicts.find(key);
    if (it != _dicts.end())
        return it->second;
    if (!create)
        throw Error("No such dict: '%s'", key.c_str());
    return make_dict(key);
}

Dict* Dict::get_dict2(const std::string& key) const
{
    auto it = _dicts.find(key);
    if (it == _dicts.end())
        throw Error("No such dict: '%s'", key.c_str());
    return it->second;
}

Dict::List& Dict::make_empty_dict_list(const std::string& key)
{
    List& list = _dict_lists[key];
    list.clear();
    return list;
}

Dict::List& Dict::get_dict_list(const std::string& key, bool create)
{
    auto it = _dict_lists.find(key);
    if (it != _dict_lists.end())
        return it->second;
    if (!create)
        throw Error("No such list: '%s'", key.c_str());
    return _dict_lists[key];
}

Dict* Dict::make_dict_in_list(const std::string& key)
{
    Dict* dict = new Dict();
    _owned_dicts.insert(dict);
    _dict_lists[key].push_back(dict);
    return dict;
}

Dict* Dict::_find_in_list(const List& list, const std::string& name)
{
    for (Dict* entry : list) {
        auto it = entry->_strings.find("name");
        if (it != entry->_strings.end() && it->second == name)
            return entry;
    }
    return nullptr;
}

bool Dict::has_dict_in_list(const std::string& key, const std::string& name) const
{
    auto it = _dict_lists.find(key);
    return it != _dict_lists.end() && _find_in_list(it->second, name) != nullptr;
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
    return _doubles.empty() && _bools.empty() && _strings.empty() && _dicts.empty() && _dict_lists.empty();
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
    for (const auto& [key, value] : _strings)
        log("%s: '%s'", key.c_str(), value.c_str());
}

void Dict::_print_doubles() const
{
    TLog log;
    for (const auto& [key, value] : _doubles)
        log("%s: %5.1f", key.c_str(), value);
}

void Dict::_print_bools() const
{
    TLog log;
    for (const auto& [key, value] : _bools)
        log("%s: %d", key.c_str(), value ? 1 : 0);
}

void Dict::_print_dicts() const
{
    TLog log;
    for (const auto& [key, dict] : _dicts) {
        log("%s:", key.c_str());
        // Its own sections open one level below this heading.
        dict->print();
    }
}

void Dict::_print_arrays() const
{
    TLog log;
    for (const auto& [key, list] : _dict_lists) {
        log("%s (%d):", key.c_str(), static_cast<int>(list.size()));
        for (size_t i = 0; i < list.size(); ++i) {
            log("[%d]", static_cast<int>(i));
            list[i]->print();
        }
    }
}

void Dict::_copy_data_structures_from_other(const Dict& other)
{
    _doubles = other._doubles;
    _bools = other._bools;
    _strings = other._strings;

    // Foreign pointers of `other` are copied too, so that nothing is shared.
    _dicts.clear();
    for (const auto& [key, dict] : other._dicts)
        make_dict(key)->_copy_data_structures_from_other(*dict);

    _dict_lists.clear();
    for (const auto& [key, list] : other._dict_lists) {
        make_empty_dict_list(key);
        for (const Dict* entry : list)
            make_dict_in_list(key)->_copy_data_structures_from_other(*entry);
    }
}
