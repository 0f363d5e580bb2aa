#include "Core/Circuit/CircuitFileWriter.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/ComponentFactory.h"
#include "Core/Simulation/Net.h"
#include "Core/Simulation/Port.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

#include <algorithm>
#include <cctype>
#include <ctime>
#include <filesystem>
#include <limits>

using Morvane::Dir;

namespace {

// The order in which directions are written, pins and ports alike.
constexpr Dir directions[] = {Morvane::Input, Morvane::Output, Morvane::Inout};

const char* direction_name(Dir dir)
{
    switch (dir) {
    case Morvane::Input:
        return "Input";
    case Morvane::Output:
        return "Output";
    case Morvane::Inout:
        break;
    }
    return "Inout";
}

/// Closes the file on every way out of a save.
class FileCloser
{
public:
    explicit FileCloser(FILE*& file) : _file(file) {}
    ~FileCloser()
    {
        fclose(_file);
        _file = nullptr;
    }
    FileCloser(const FileCloser&) = delete;
    FileCloser& operator=(const FileCloser&) = delete;

private:
    FILE*& _file;  // the writer's stream
};

}  // namespace

CircuitFileWriter::CircuitFileWriter(const Circuit* circuit) : _circuit(circuit) {}

void CircuitFileWriter::write_circuit(const std::string& filename, bool with_banner)
{
    // A directory of that name stays: the open below then fails.
    std::error_code ignored;
    if (!std::filesystem::is_directory(filename, ignored))
        std::filesystem::remove(filename, ignored);
    _file = fopen(filename.c_str(), "wb");
    if (_file == nullptr)
        throw Error("Cannot save file '%s'", filename.c_str());
    FileCloser closer(_file);
    if (with_banner) {
        time_t now = time(nullptr);
        // ctime ends its text with the line feed of the second line.
        _output(std::string("#\n# File generated at ") + ctime(&now) + "#\n\n");
    }
    _save_body();
}

void CircuitFileWriter::_output(const std::string& text)
{
    fwrite(text.data(), 1, text.size(), _file);
}

void CircuitFileWriter::_output_indent()
{
    for (int i = 0; i < _indent; ++i)
        fputs("   ", _file);
}

void CircuitFileWriter::_output_line(const std::string& text)
{
    _output_indent();
    _output(text);
    fputc('\n', _file);
}

void CircuitFileWriter::_output_list_line(const std::string& head, const std::vector<std::string>& names)
{
    _output_indent();
    _output(head);
    for (const std::string& name : names)
        _output(" " + name);
    _output_empty_line();
}

void CircuitFileWriter::_output_empty_line()
{
    fputc('\n', _file);
}

void CircuitFileWriter::_output_comment(const std::string& text)
{
    for (const std::string& piece : split(text, '\n'))
        _output_line("# " + piece);
}

void CircuitFileWriter::_save_body()
{
    _save_meta_data();
    _save_file_comments();
    _save_import_paths();
    _save_circuit_declarations();
    _save_pins();
    _save_ports();
    _save_components();
    _save_nets();
}

void CircuitFileWriter::_save_meta_data()
{
    std::vector<std::string> keys = _circuit->get_meta_data_keys();
    for (const std::string& key : keys)
        _save_meta_data_lines(key, _circuit->get_meta_data_vector(key));
    if (!keys.empty())
        _output_empty_line();
}

void CircuitFileWriter::_save_meta_data_lines(const std::string& key, const std::vector<std::string>& values)
{
    for (const std::string& value : values)
        _output_line("MetaData " + key + " " + escape_string(value));
}

void CircuitFileWriter::_save_file_comments()
{
    // The empty line after each block is what makes it a block of its own for the reader.
    for (const Comment* comment : _circuit->circuit_comments()) {
        _output_comment(comment->text());
        _output_empty_line();
    }
}

void CircuitFileWriter::_save_import_paths()
{
    bool written = false;
    for (const std::string& path : _circuit->import_paths()) {
        if (path == "./")
            continue;
        _output_line("ImportPath \"" + path + "\"");
        written = true;
    }
    if (written)
        _output_empty_line();
}

void CircuitFileWriter::_save_circuit_declarations()
{
    bool written = false;
    for (const Circuit* declaration : _circuit->circuit_declarations()) {
        if (_count_instances(declaration->type_name(), _circuit) == 0)
            continue;
        if (declaration->is_parent_defined_subcircuit())
            _output_local_declaration(declaration);
        else
            _output_file_declaration(declaration);
        written = true;
    }
    if (written)
        _output_empty_line();
}

void CircuitFileWriter::_output_local_declaration(const Circuit* declaration)
{
    _output_line("Circuit " + declaration->type_name() + " {");
    const Circuit* holder = _circuit;
    ++_indent;
    _circuit = declaration;
    _save_body();
    _circuit = holder;
    --_indent;
    _output_line("}");
}

void CircuitFileWriter::_output_file_declaration(const Circuit* declaration)
{
    // The declaration's file is named relative to its parent's; a parent file without a directory
    // gives the prefix "/" alone, which takes the first "/" out of the name.
    std::string prefix;
    if (declaration->parent() != nullptr)
        prefix = std::filesystem::path(declaration->parent()->filename()).parent_path().string() + "/";
    std::string name = declaration->filename();
    if (!prefix.empty()) {
        std::size_t at = name.find(prefix);
        if (at != std::string::npos)
            name.erase(at, prefix.size());
    }
    _output_line("Circuit " + declaration->type_name() + " \"" + name + "\"");
}

bool CircuitFileWriter::_sort_ports(Dir dir, bool pins, std::vector<const Port*>& commented,
                                    std::vector<const Port*>& plain) const
{
    bool any = false;
    for (const Port* port : _circuit->ports()) {
        // A port of width 0 or below is neither.
        bool wanted = pins ? port->size() == 1 : static_cast<int>(port->size()) >= 2;
        if (!wanted || port->dir() != dir)
            continue;
        any = true;
        (port->has_blank_comment() ? plain : commented).push_back(port);
    }
    return any;
}

void CircuitFileWriter::_save_pins()
{
    bool any = false;
    for (Dir dir : directions) {
        std::vector<const Port*> commented;
        std::vector<const Port*> plain;
        any = _sort_ports(dir, true, commented, plain) || any;
        _save_pin_line_with_comment(dir, commented);
        std::vector<std::string> names;
        for (const Port* port : plain)
            names.push_back(port->name());
        _save_pin_line(dir, names);
    }
    if (any)
        _output_empty_line();
}

void CircuitFileWriter::_save_pin_line(Dir dir, const std::vector<std::string>& names)
{
    if (!names.empty())
        _output_list_line(std::string("Pin ") + direction_name(dir), names);
}

void CircuitFileWriter::_save_pin_line_with_comment(Dir dir, const std::vector<const Port*>& ports)
{
    for (const Port* port : ports) {
        _output_comment(port->comment_text());
        _output_line(std::string("Pin ") + direction_name(dir) + " " + port->name());
    }
}

void CircuitFileWriter::_save_ports()
{
    bool any = false;
    for (Dir dir : directions) {
        std::vector<const Port*> commented;
        std::vector<const Port*> plain;
        any = _sort_ports(dir, false, commented, plain) || any;
        _save_port_lines_with_comment(dir, commented);
        std::map<int, std::vector<std::string>> names_by_size;
        for (const Port* port : plain)
            names_by_size[static_cast<int>(port->size())].push_back(port->name());
        _save_port_lines(dir, names_by_size);
    }
    if (any)
        _output_empty_line();
}

void CircuitFileWriter::_save_port_lines(Dir dir,
                                         const std::map<int, std::vector<std::string>>& names_by_size)
{
    for (const auto& [size, names] : names_by_size)
        _output_list_line(fmt("Port %s %d", direction_name(dir), size), names);
}

void CircuitFileWriter::_save_port_lines_with_comment(Dir dir, const std::vector<const Port*>& ports)
{
    for (const Port* port : ports) {
        _output_comment(port->comment_text());
        _output_line(fmt("Port %s %d ", direction_name(dir), static_cast<int>(port->size())) + port->name());
    }
}

void CircuitFileWriter::_save_components()
{
    std::vector<const Component*> commented;
    NamesByKey names_by_type;
    std::map<std::string, ArrayExtent> arrays;
    for (const Component* component : _circuit->components()) {
        const std::string& type = component->type_name();
        std::string base;
        int index = 0;
        if (_is_an_array_name(component->instance_name(), base, index)) {
            // An element's own comment and parameters are not kept: the array is written as a whole.
            ArrayExtent& extent = arrays[base];
            extent.highest = std::max(extent.highest, index);
            extent.type = type;
        } else if (!component->has_blank_comment()) {
            commented.push_back(component);
        } else {
            ParaMap defaults = ComponentFactory::default_parameters(type);
            names_by_type[type].push_back(component->instance_name() +
                                          component->get_diff_parameter_string(defaults));
        }
    }
    _add_array_names_to_component_list(arrays, names_by_type);
    _save_component_lines_with_comment(commented);
    _save_component_lines(names_by_type);
    if (!commented.empty() || !names_by_type.empty())
        _output_empty_line();
}

void CircuitFileWriter::_save_component_lines(const NamesByKey& names_by_type)
{
    for (const auto& [type, names] : names_by_type)
        _output_list_line("Unit " + type, names);
}

void CircuitFileWriter::_save_component_lines_with_comment(const std::vector<const Component*>& components)
{
    for (const Component* component : components) {
        _output_comment(component->comment_text());
        _output_line("Unit " + component->type_name() + " " + component->instance_spec());
    }
}

void CircuitFileWriter::_add_array_names_to_component_list(const std::map<std::string, ArrayExtent>& arrays,
                                                           NamesByKey& names_by_type)
{
    for (const auto& [base, extent] : arrays)
        names_by_type[extent.type].push_back(base + "[" + std::to_string(extent.highest + 1) + "]");
}

bool CircuitFileWriter::_is_an_array_name(const std::string& name, std::string& base, int& index)
{
    std::size_t open = name.find('[');
    base = name.substr(0, open);
    if (open == std::string::npos)
        return false;
    std::size_t at = open + 1;
    if (at < name.size() && isdigit(static_cast<unsigned char>(name[at]))) {
        // Held below the largest int, so that the count written (one more) still is one.
        long long number = 0;
        for (; at < name.size() && isdigit(static_cast<unsigned char>(name[at])); ++at)
            number = std::min<long long>(number * 10 + (name[at] - '0'), std::numeric_limits<int>::max() - 1);
        index = static_cast<int>(number);
    }
    return at < name.size() && name[at] == ']';
}

int CircuitFileWriter::_count_instances(const std::string& type, const Circuit* circuit)
{
    return static_cast<int>(std::count_if(circuit->components().begin(), circuit->components().end(),
                                          [&](const Component* c) { return c->type_name() == type; }));
}

void CircuitFileWriter::_save_nets()
{
    const std::vector<Net*>& nets = _circuit->nets();
    for (const Net* net : nets) {
        if (net->ports().empty())
            continue;
        if (!net->has_blank_comment())
            _output_comment(net->comment_text());
        std::vector<std::string> paths;
        for (Port* port : net->ports())
            paths.push_back(_circuit->find_port_path(port));
        _output_list_line("Net " + net->name(), paths);
    }
    if (!nets.empty())
        _output_empty_line();
}
