#include "Core/Components/ComponentOptions.h"

#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

#include <iterator>
#include <vector>

ComponentOptions::ComponentOptions(const std::string& text, const std::string& comment)
    : CommentableObject(comment)
{
    size_t open = text.find('(');
    if (open == std::string::npos)
        throw Error("Parse error: component options must have an opening parenthesis");
    _name = text.substr(0, open);
    size_t close = text.rfind(')');
    // A ")" only ahead of the "(" closes nothing.
    if (close == std::string::npos || close < open)
        throw Error("Parse error: component options must have an closing parenthesis");
    _parse_options(text.substr(open + 1, close - open - 1));
}

void ComponentOptions::_parse_options(const std::string& text)
{
    for (const std::string& item : split(text, ',')) {
        std::vector<std::string> pieces = split(item, '=');
        if (pieces.size() > 2)
            throw Error("Too many equal signs in options string: '%s'", item.c_str());
        if (pieces.size() == 2)
            _options[trim(pieces[0])] = trim(pieces[1]);
        else if (pieces.size() == 1)
            _options[trim(pieces[0])] = "true";
        // An empty item between two commas sets nothing.
    }
}

std::string ComponentOptions::get_key(int i) const
{
    if (i < 0 || i >= nof_options())
        return "";
    return std::next(_options.begin(), i)->first;
}

std::string ComponentOptions::get_value(int i) const
{
    if (i < 0 || i >= nof_options())
        return "";
    return std::next(_options.begin(), i)->second;
}

std::string ComponentOptions::get_value(const std::string& key) const
{
    auto it = _options.find(key);
    return it == _options.end() ? "" : it->second;
}

std::string ComponentOptions::get_options_string() const
{
    std::string text;
    for (const auto& [key, value] : _options) {
        if (!text.empty())
            text += ",";
        text += key + "=" + value;
    }
    return text;
}

PortAssignment::PortAssignment(const std::string& text, const std::string& comment)
    : CommentableObject(comment)
{
    std::vector<std::string> pieces = split(text, '=');
    if (pieces.size() < 2)
        throw Error("Too few equal signs in port assignment: '%s'", text.c_str());
    if (pieces.size() > 2)
        throw Error("Too many equal signs in port assignment: '%s'", text.c_str());
    _port_name = trim(pieces[0]);
    _value = trim(pieces[1]);
}
