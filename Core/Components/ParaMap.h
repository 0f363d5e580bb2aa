// The text parameters of a part, as in "Type(key=value,...)".
#ifndef MORVANE_CORE_COMPONENTS_PARAMAP_H
#define MORVANE_CORE_COMPONENTS_PARAMAP_H

#include <map>
#include <string>
#include <vector>

/// Key to value, both text, in key order. Values are read as numbers only by get_value.
class ParaMap
{
public:
    ParaMap() = default;
    ParaMap(const std::map<std::string, std::string>& data) : _data(data) {}
    explicit ParaMap(const std::string& text) { add_params(text); }
    virtual ~ParaMap() = default;

    /// Merges "(key=value,...)". The outer chars are dropped unseen; a value in double quotes may hold
    /// commas and keeps its quotes. All pairs but the last are trimmed; the last is stored as written.
    /// An unterminated quote throws Error.
    void add_params(const std::string& text);

    /// A missing key is created with an empty value.
    std::string& operator[](const std::string& key) { return _data[key]; }
    /// A missing key throws std::out_of_range.
    const std::string& operator[](const std::string& key) const { return _data.at(key); }
    size_t size() const { return _data.size(); }
    std::map<std::string, std::string>& data() { return _data; }
    const std::map<std::string, std::string>& data() const { return _data; }
    void clear() { _data.clear(); }
    bool has_key(const std::string& key) const { return _data.count(key) != 0; }
    std::vector<std::string> get_keys() const;

    // A missing key leaves the target as it was.
    /// Any number form of str_to_number, cut to int; -1 for text without a number.
    void get_value(const std::string& key, int& target) const;
    /// strtod of the text.
    void get_value(const std::string& key, float& target) const;
    /// yes/1/true and no/0/false in any case and with white space; other text leaves the target.
    void get_value(const std::string& key, bool& target) const;

    /// "(k1=v1,k2=v2)", or "" for an empty map.
    std::string to_string() const;
    /// The same form over the keys whose value `other` lacks or differs from; "" if none.
    std::string diff_string(const ParaMap& other) const;

private:
    std::map<std::string, std::string> _data;  // values as written, quotes included
};

#endif  // MORVANE_CORE_COMPONENTS_PARAMAP_H
