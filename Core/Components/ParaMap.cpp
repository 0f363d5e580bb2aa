#include "Core/Components/ParaMap.h"

#include "Core/Support/Error.h"
#include "Core/Support/NumberText.h"
#include "Core/Support/StringUtils.h"

#include <cstdlib>

void ParaMap::add_params(const std::string& text)
{
    if (text.size() < 3)
        return;
    std::string key;
    std::string value;
    bool in_value = false;
    bool in_quotes = false;
    for (char c : text.substr(1, text.size() - 2)) {
        if (!in_value) {
            if (c == ',') {
                _data[trim(key)] = "";
                key.clear();
            } else if (c == '=') {
                in_value = true;
            } else {
                key += c;
            }
        } else if (c == '"') {
            in_quotes = !in_quotes;
            value += c;
        } else if (c == ',' && !in_quotes) {
            _data[trim(key)] = trim(value);
            key.clear();
            value.clear();
            in_value = false;
        } else {
            value += c;
        }
    }
    if (in_quotes)
        throw Error("Parameters malformed: '%s': unterminated string.", text.c_str());
    // The last pair is kept as written, blanks and all, unlike the ones before it.
    _data[key] = value;
}

std::vector<std::string> ParaMap::get_keys() const
{
    std::vector<std::string> keys;
    keys.reserve(_data.size());
    for (const auto& entry : _data)
        keys.push_back(entry.first);
    return keys;
}

void ParaMap::get_value(const std::string& key, int& target) const
{
    auto it = _data.find(key);
    if (it != _data.end())
        target = static_cast<int>(str_to_number(it->second));
}

void ParaMap::get_value(const std::string& key, float& target) const
{
    auto it = _data.find(key);
    if (it != _data.end())
        target = static_cast<float>(std::strtod(it->second.c_str(), nullptr));
}

void ParaMap::get_value(const std::string& key, bool& target) const
{
    auto it = _data.find(key);
    if (it == _data.end())
        return;
    std::string text = it->second;
    to_lower(trim(text));
    if (text == "yes" || text == "1" || text == "true")
        target = true;
    else if (text == "no" || text == "0" || text == "false")
        target = false;
}

namespace {

std::string list_pairs(const std::map<std::string, std::string>& pairs)
{
    if (pairs.empty())
        return std::string();
    std::string text = "(";
    bool first = true;
    for (const auto& [key, value] : pairs) {
        if (!first)
            text += ',';
        first = false;
        text += key;
        text += '=';
        text += value;
    }
    return text + ")";
}

}  // namespace

std::string ParaMap::to_string() const
{
    return list_pairs(_data);
}

std::string ParaMap::diff_string(const ParaMap& other) const
{
    std::map<std::string, std::string> differing;
    for (const auto& [key, value] : _data) {
        auto it = other._data.find(key);
        if (it == other._data.end() || it->second != value)
            differing.insert({key, value});
    }
    return list_pairs(differing);
}
