// A nested dictionary of typed values that any named object can carry.
#ifndef MORVANE_CORE_CIRCUIT_DICT_H
#define MORVANE_CORE_CIRCUIT_DICT_H

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

/// Doubles, bools, strings, nested dictionaries and lists of them, each keyed by name.
/// A Dict deletes only the dictionaries it allocated itself; set_dict and add_dict_to_list store
/// foreign pointers. Copies are deep and own everything they hold.
class Dict
{
public:
    using List = std::vector<Dict*>;

    Dict() = default;
    explicit Dict(const Dict* other);
    Dict(const Dict& other);
    Dict& operator=(const Dict& other);
    virtual ~Dict();

    bool has_double(const std::string& key) const { return _r().doubles.count(key) != 0; }
    bool has_bool(const std::string& key) const { return _r().bools.count(key) != 0; }
    bool has_string(const std::string& key) const { return _r().strings.count(key) != 0; }
    void set_double(const std::string& key, double value) { _w().doubles[key] = value; }
    void set_bool(const std::string& key, bool value) { _w().bools[key] = value; }
    void set_string(const std::string& key, const std::string& value) { _w().strings[key] = value; }
    /// A missing key throws Error, or with `create` is inserted with 0.0, false or "".
    double& get_double(const std::string& key, bool create);
    bool& get_bool(const std::string& key, bool create);
    std::string& get_string(const std::string& key, bool create);

    std::map<std::string, double>& doubles() { return _w().doubles; }
    const std::map<std::string, double>& doubles() const { return _r().doubles; }
    std::map<std::string, bool>& bools() { return _w().bools; }
    const std::map<std::string, bool>& bools() const { return _r().bools; }
    std::map<std::string, std::string>& strings() { return _w().strings; }
    const std::map<std::string, std::string>& strings() const { return _r().strings; }
    std::map<std::string, Dict*>& dicts() { return _w().dicts; }
    const std::map<std::string, Dict*>& dicts() const { return _r().dicts; }
    std::map<std::string, List>& dict_lists() { return _w().dict_lists; }
    const std::map<std::string, List>& dict_lists() const { return _r().dict_lists; }

    bool has_dict(const std::string& key) const { return _r().dicts.count(key) != 0; }
    /// Forgets the entry; an owned Dict lives on until this one dies.
    void remove_dict(const std::string& key) { _w().dicts.erase(key); }
    /// A new owned Dict under `key`, replacing any entry there.
    Dict* make_dict(const std::string& key);
    Dict* assure_dict_exists(const std::string& key);
    /// Stores a foreign pointer without taking ownership.
    void set_dict(const std::string& key, Dict* dict) { _w().dicts[key] = dict; }
    /// A missing key throws Error, or with `create` gets a new owned Dict.
    Dict* get_dict(const std::string& key, bool create);
    /// A missing key throws Error.
    Dict* get_dict2(const std::string& key) const;

    bool has_dict_list(const std::string& key) const { return _r().dict_lists.count(key) != 0; }
    /// The list under `key`, made or emptied.
    List& make_empty_dict_list(const std::string& key);
    List& assure_dict_list_exists(const std::string& key) { return _w().dict_lists[key]; }
    /// A missing list throws Error, or with `create` is made empty.
    List& get_dict_list(const std::string& key, bool create);
    /// Appends a foreign pointer without taking ownership.
    void add_dict_to_list(const std::string& key, Dict* dict) { _w().dict_lists[key].push_back(dict); }
    /// Appends a new owned Dict.
    Dict* make_dict_in_list(const std::string& key);
    /// List entries are told apart by their string "name"; the first match wins.
    bool has_dict_in_list(const std::string& key, const std::string& name) const;
    /// A missing list or entry throws Error, or with `create` is made; a new entry gets the "name".
    Dict* get_dict_in_list(const std::string& key, const std::string& name, bool create);

    /// True with no entries of any kind; an owned Dict that was removed doesn't count.
    bool is_empty() const;
    /// Strings, doubles, nested dictionaries and lists through TLog, a level deeper each; bools are
    /// left out. An empty section prints no line.
    void print() const;

protected:
    void _print_strings() const;
    void _print_doubles() const;
    void _print_bools() const;
    void _print_dicts() const;
    void _print_arrays() const;
    void _copy_data_structures_from_other(const Dict& other);

private:
    /// The entry of a list whose string "name" is `name`; null if none.
    static Dict* _find_in_list(const List& list, const std::string& name);

    // The contents, made on the first write: most ports, nets and parts never carry any, and
    // six empty maps in each of them made every port take 800 bytes.
    struct Data
    {
        std::map<std::string, double> doubles;       // numbers by key
        std::map<std::string, bool> bools;           // flags by key
        std::map<std::string, std::string> strings;  // texts by key
        std::map<std::string, Dict*> dicts;          // nested dictionaries, owned or foreign
        std::map<std::string, List> dict_lists;      // lists of dictionaries, owned or foreign
        std::set<Dict*> owned_dicts;                 // everything this Dict allocated and deletes
    };

    Data& _w();
    const Data& _r() const { return _data ? *_data : _empty_data(); }
    static const Data& _empty_data();

    std::unique_ptr<Data> _data;  // null while nothing was written
};

#endif  // MORVANE_CORE_CIRCUIT_DICT_H
