#include "Core/Circuit/CircuitSpec.h"

#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unordered_map>

namespace {

bool exists(const std::string& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

// Two spellings of one file must compare equal for the import cycle guard.
std::string canonical_key(const std::string& path)
{
    std::error_code error;
    std::filesystem::path canonical = std::filesystem::weakly_canonical(path, error);
    return error ? path : canonical.string();
}

}  // namespace

CircuitSpec::CircuitSpec(const std::string& filename) : _name(filename), _filename(filename), _current(this)
{
    try {
        load_from_file(filename);
    } catch (...) {
        _delete_children();
        throw;
    }
}

CircuitSpec::CircuitSpec(CircuitSpec* parent, const std::string& name)
    : _name(name),
      _line_number(parent->_line_number),
      _parent(parent)
{
}

CircuitSpec::~CircuitSpec()
{
    _delete_children();
}

void CircuitSpec::_delete_children()
{
    // A worklist rather than recursion, so that deep nesting cannot exhaust the stack.
    std::vector<CircuitSpec*> doomed;
    doomed.swap(_circuits);
    while (!doomed.empty()) {
        CircuitSpec* spec = doomed.back();
        doomed.pop_back();
        doomed.insert(doomed.end(), spec->_circuits.begin(), spec->_circuits.end());
        spec->_circuits.clear();
        delete spec;
    }
}

const std::string& CircuitSpec::filename() const
{
    for (const CircuitSpec* spec = this; spec; spec = spec->_parent) {
        if (!spec->_filename.empty())
            return spec->_filename;
    }
    return _filename;
}

int CircuitSpec::nof_units() const
{
    size_t count = 0;
    for (const UnitLine& unit : _units)
        count += unit.names.size();
    return static_cast<int>(count);
}

void CircuitSpec::load_from_file(const std::string& filename)
{
    std::string found = _find_file(filename);
    std::ifstream in(found);
    if (!in)
        throw Error("Error: File not found: '%s'.", filename.c_str());
    // An import that reaches a file still being read would recurse without end.
    std::string key = canonical_key(found);
    if (std::find(_files_being_read.begin(), _files_being_read.end(), key) != _files_being_read.end())
        throw Error("Error: Circular import of '%s': the file is already being read.", filename.c_str());
    _files_being_read.push_back(key);
    try {
        std::string line;
        while (std::getline(in, line)) {
            remove_any_carrige_returns(line);
            _interpret(line);
        }
        _current->_check_for_net_common_pins();
    } catch (...) {
        _files_being_read.pop_back();
        throw;
    }
    _files_being_read.pop_back();
}

void CircuitSpec::_interpret(std::string& line)
{
    CircuitSpec* scope = _current;
    ++scope->_line_number;
    // Only a line of length zero ends a comment block; one of blanks does not.
    bool zero_length = line.empty();
    std::string comment;
    if (preprocess_line(line, comment))
        scope->_current_comment += comment + "\n";
    if (line.empty()) {
        if (zero_length)
            _process_empty_line();
        return;
    }
    _process_line(line);
}

void CircuitSpec::_process_line(std::string& line)
{
    std::vector<std::string> tokens = _split(line);
    const std::string keyword = tokens[0];
    if (keyword == "Import")
        _process_import(line);
    else if (keyword == "ImportPath")
        _process_import_path(line);
    else if (keyword == "Unit")
        _add_unit(tokens);
    else if (keyword == "Net")
        _add_net(tokens);
    else if (keyword == "Port")
        _add_port(tokens);
    else if (keyword == "Pin")
        _add_pin(tokens);
    else if (keyword == "MetaData")
        _add_metadata(tokens, line);
    else if (keyword == "Circuit")
        _add_circuit(tokens, line);
    else if (keyword == "}")
        _close_circuit(tokens);
    else
        throw Error("Error in %s:%d: Illegal keyword: '%s'.", _filename.c_str(), _line_number,
                    keyword.c_str());
}

std::vector<std::string> CircuitSpec::_split(const std::string& line) const
{
    std::vector<std::string> tokens;
    std::string token;
    bool in_string = false;
    for (char c : line) {
        if (c == '"') {
            in_string = !in_string;
            token += c;
        } else if ((c == ' ' || c == '\t') && !in_string) {
            if (!token.empty())
                tokens.push_back(std::move(token));
            token.clear();
        } else {
            token += c;
        }
    }
    if (!token.empty())
        tokens.push_back(std::move(token));
    if (in_string)
        throw Error("Error in %s:%d: Unterminated string.", _filename.c_str(), _line_number);
    return tokens;
}

void CircuitSpec::_push_circuit(const std::string& name, const std::string& filename)
{
    auto child = std::make_unique<CircuitSpec>(_current, name);
    if (!filename.empty())
        child->_filename = filename;
    _current->_circuits.push_back(child.get());
    _current = child.release();
}

void CircuitSpec::_pop_circuit()
{
    CircuitSpec* scope = _current;
    scope->_check_for_net_common_pins();
    if (!scope->_parent)
        throw Error("Error in %s:%d: '}' without an open Circuit block.", _filename.c_str(),
                    scope->_line_number);
    _current = scope->_parent;
}

void CircuitSpec::_close_circuit(const std::vector<std::string>& tokens)
{
    _push_file_comment_block_if_any();
    if (tokens.size() > 1)
        throw Error("Unrecognized field following } keyword in %s:%d: '%s'", _current->_filename.c_str(),
                    _current->_line_number, tokens[1].c_str());
    _pop_circuit();
}

void CircuitSpec::_add_circuit(const std::vector<std::string>& tokens, const std::string& line)
{
    _push_file_comment_block_if_any();
    CircuitSpec* enclosing = _current;
    if (tokens.size() < 3)
        throw Error("Circuit syntax error in %s:%d.", enclosing->_filename.c_str(), enclosing->_line_number);
    if (tokens[2][0] == '{') {
        _push_circuit(tokens[1], "");
        return;
    }
    if (tokens[2][0] != '"')
        throw Error("Unrecognized field following Circuit keyword in %s:%d: '%s'",
                    enclosing->_filename.c_str(), enclosing->_line_number, tokens[2].c_str());
    // The child keeps the path as written, relative to the file that names it.
    std::string raw = _extract_import_path(line);
    std::string path = _construct_file_path(raw);
    _push_circuit(tokens[1], raw);
    CircuitSpec* child = _current;
    _process_import_core(path);
    child->_check_for_net_common_pins();
    _current = enclosing;
}

void CircuitSpec::_add_unit(std::vector<std::string>& tokens)
{
    CircuitSpec* scope = _current;
    scope->_units.emplace_back(tokens, scope->_line_number, _filename);
    scope->_units.back().set_comment_text(scope->_current_comment);
    _clear_current_comment();
}

void CircuitSpec::_add_net(std::vector<std::string>& tokens)
{
    CircuitSpec* scope = _current;
    scope->_nets.emplace_back(tokens, scope->_line_number, _filename);
    scope->_nets.back().set_comment_text(scope->_current_comment);
    _clear_current_comment();
}

void CircuitSpec::_add_port(std::vector<std::string>& tokens)
{
    CircuitSpec* scope = _current;
    scope->_ports.emplace_back(tokens, scope->_line_number, _filename);
    scope->_ports.back().set_comment_text(scope->_current_comment);
    _clear_current_comment();
}

void CircuitSpec::_add_pin(std::vector<std::string>& tokens)
{
    CircuitSpec* scope = _current;
    scope->_pins.emplace_back(tokens, scope->_line_number, _filename);
    scope->_pins.back().set_comment_text(scope->_current_comment);
    _clear_current_comment();
}

void CircuitSpec::_add_metadata(const std::vector<std::string>& tokens, const std::string& line)
{
    // Comment text ahead of MetaData belongs to the file; the line keeps only a blank remainder.
    _push_file_comment_block_if_any();
    std::string value = _extract_import_path(line);
    CircuitSpec* scope = _current;
    scope->_meta_data.emplace_back(tokens.size() > 1 ? tokens[1] : "", value, scope->_line_number, _filename);
    scope->_meta_data.back().set_comment_text(scope->_current_comment);
    _clear_current_comment();
}

void CircuitSpec::_process_import(const std::string& line)
{
    _push_file_comment_block_if_any();
    std::string path = _construct_file_path(_extract_import_path(line));
    _process_import_core(path);
}

void CircuitSpec::_process_import_core(const std::string& path)
{
    // The imported file counts its own lines and names itself in messages; the importer's place returns.
    CircuitSpec* scope = _current;
    std::string saved_filename = scope->_filename;
    int saved_line_number = scope->_line_number;
    scope->_filename = path;
    scope->_line_number = 0;
    load_from_file(path);
    _current->_filename = saved_filename;
    _current->_line_number = saved_line_number;
}

void CircuitSpec::_process_import_path(const std::string& line)
{
    _push_file_comment_block_if_any();
    _import_paths.push_back(_extract_import_path(line));
}

std::string CircuitSpec::_extract_import_path(const std::string& line) const
{
    size_t open = line.find_first_of("\"'");
    size_t close = open == std::string::npos ? open : line.find(line[open], open + 1);
    if (close == std::string::npos)
        throw Error("Error in %s:%d: Syntax error in path specification statement.", _filename.c_str(),
                    _current->_line_number);
    return line.substr(open + 1, close - open - 1);
}

std::string CircuitSpec::_construct_file_path(const std::string& path) const
{
    const std::string& own = _current->_filename;
    size_t slash = own.rfind('/');
    if (slash == std::string::npos)
        return path;
    return own.substr(0, slash) + "/" + path;
}

std::string CircuitSpec::_find_file(const std::string& path) const
{
    if (exists(path))
        return path;
    // Only the last component of the path is looked for in the import paths.
    size_t slash = path.rfind('/');
    std::string last = slash == std::string::npos ? path : path.substr(slash + 1);
    for (const std::string& directory : _import_paths) {
        std::string candidate = directory + "/" + last;
        if (exists(candidate))
            return candidate;
    }
    return path;
}

void CircuitSpec::_push_file_comment_block_if_any()
{
    CircuitSpec* scope = _current;
    if (scope->_current_comment.find_first_not_of(white_space) == std::string::npos)
        return;
    scope->_file_comments.push_back(scope->_current_comment);
    _clear_current_comment();
}

bool CircuitSpec::_current_comment_is_not_empty() const
{
    return !_current->_current_comment.empty();
}

void CircuitSpec::_check_for_net_common_pins() const
{
    // The first pair in file order, as comparing every earlier net with every later one would find it,
    // in one pass: each repeated path pairs the net that named it last with the net naming it now, and
    // the wanted pair is the one with the earliest first net, then the earliest second.
    size_t nof_ports = 0;
    for (const NetLine& net : _nets)
        nof_ports += net.ports.size();
    std::unordered_map<std::string_view, size_t> last_net_of_port;
    last_net_of_port.reserve(nof_ports);
    size_t first = _nets.size();
    size_t second = _nets.size();
    for (size_t n = 0; n < _nets.size(); ++n) {
        for (const std::string& port : _nets[n].ports) {
            auto [entry, is_new] = last_net_of_port.try_emplace(port, n);
            if (!is_new && (entry->second < first || (entry->second == first && n < second))) {
                first = entry->second;
                second = n;
            }
            entry->second = n;
        }
    }
    if (first == _nets.size())
        return;
    const NetLine& earlier = _nets[first];
    std::string pin = earlier.first_common_pin_name(_nets[second]);
    throw Error("Error in line %s:%d: net '%s' and net '%s' shares the pin '%s'.", earlier.filename.c_str(),
                earlier.line_number, earlier.name.c_str(), _nets[second].name.c_str(), pin.c_str());
}
