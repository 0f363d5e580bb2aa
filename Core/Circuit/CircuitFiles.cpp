// Where a circuit stands in the tree of files: file names, import paths and paths of data files.
#include "Core/Circuit/Circuit.h"
#include "Core/Circuit/CircuitSpec.h"
#include "Core/Support/FileUtils.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

std::string parent_directory(const std::string& file)
{
    return fs::path(file).parent_path().string();
}

}  // namespace

std::string Circuit::filename() const
{
    if (_filename.empty() && _circuit_spec != nullptr)
        return _circuit_spec->filename();
    return _filename;
}

bool Circuit::_is_relative_to_circuit_path(const std::string& path) const
{
    // A plain text test: "dirx/..." counts as under "dir" too.
    return path.starts_with(parent_directory(filename()));
}

std::string Circuit::_strip_to_be_circuit_relative(const std::string& path) const
{
    std::string stripped = path;
    const std::string directory = parent_directory(filename());
    if (!directory.empty()) {
        std::size_t at = stripped.find(directory);
        if (at == std::string::npos)
            return "";
        stripped.erase(at, directory.size());
    }
    if (stripped.empty())
        stripped = "./";
    if (stripped.front() == '/')
        stripped.erase(0, 1);
    return stripped;
}

bool Circuit::is_parent_defined_subcircuit() const
{
    return parent() != nullptr && _filename.empty() && !ComponentFactory::handles_the_type(type_name());
}

bool Circuit::is_imported() const
{
    if (is_root())
        return false;
    const Circuit* c = this;
    while (c->_filename.empty() && !ComponentFactory::handles_the_type(c->type_name())) {
        if (c->parent() == nullptr)
            return false;
        c = c->parent();
    }
    return c->parent() != nullptr;
}

bool Circuit::is_decendent_of(const Circuit* circuit) const
{
    for (const Circuit* c = this; c != nullptr; c = c->parent()) {
        if (c == circuit)
            return true;
    }
    return false;
}

const Circuit* Circuit::file_circuit() const
{
    const Circuit* c = this;
    while (c->parent() != nullptr && c->_filename.empty() &&
           !ComponentFactory::handles_the_type(c->type_name()))
        c = c->parent();
    return c;
}

Circuit* Circuit::file_circuit()
{
    return const_cast<Circuit*>(static_cast<const Circuit*>(this)->file_circuit());
}

std::vector<std::string> Circuit::get_circuit_hierarchy_path() const
{
    std::vector<std::string> names;
    for (const Circuit* c = this; c->parent() != nullptr; c = c->parent())
        names.push_back(c->instance_name());
    std::reverse(names.begin(), names.end());
    return names;
}

std::string Circuit::filepath() const
{
    const Circuit* c = file_circuit();
    std::string result;
    // An importing file in the working directory leaves a lone "/" in front.
    if (c->parent() != nullptr)
        result = parent_directory(c->parent()->file_circuit()->filepath()) + "/";
    return result + c->filename();
}

std::string Circuit::find_file_path(const std::string& name) const
{
    std::string directory = parent_directory(filepath());
    return directory.empty() ? name : directory + "/" + name;
}

std::string Circuit::hierachical_filepath(const std::string& name) const
{
    const Circuit* home = file_circuit();
    std::vector<std::string> files;  // the importing files, innermost first
    for (const Circuit* c = home; c->parent() != nullptr;) {
        c = c->parent();
        while (c->parent() != nullptr && c->_filename.empty() &&
               !ComponentFactory::handles_the_type(c->type_name()))
            c = c->parent();
        files.push_back(c->filename());
        // An absolute file ends the chain: nothing above it changes where it is.
        if (fs::path(files.back()).has_root_directory())
            break;
    }
    fs::path path;
    for (auto it = files.rbegin(); it != files.rend(); ++it)
        path /= fs::path(*it).parent_path();
    path /= home->filename();
    return (path.parent_path() / name).string();
}

void Circuit::update_circuit_declaration_paths(const std::string& new_file)
{
    for (Circuit* d : _circuit_declarations) {
        if (d->is_parent_defined_subcircuit())
            continue;
        std::string old_place = parent_directory(filename()) + "/" + d->filename();
        d->_filename = relative_file_path(old_place, parent_directory(new_file)).string();
    }
}
