// The composite component: parts, the nets between them, own ports and sub-circuit types.
#ifndef MORVANE_CORE_CIRCUIT_CIRCUIT_H
#define MORVANE_CORE_CIRCUIT_CIRCUIT_H

#include "Core/Circuit/NameIndex.h"
#include "Core/Components/Component.h"
#include "Core/Components/ComponentFactory.h"
#include "Core/Simulation/Net.h"
#include "Core/Support/Error.h"
#include "Core/Support/SimLog.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

class CircuitSpec;
class Line;
class MetaDataLine;
class NetLine;
class PinLine;
class PortLine;
class TLog;
class UnitLine;

/// Where a net lookup by path ended.
struct NetLookup
{
    std::string circuit_name;    // the last path element walked
    std::string net_name;        // the last part of the path
    Circuit* circuit = nullptr;  // where the search ended; null if the walk failed
    Net* net = nullptr;          // the result, or null
};

/// A part that a lookup could not find; the loader turns it into a message with the file and line.
class ComponentNotFound : public Error
{
public:
    explicit ComponentNotFound(const std::string& name);
    const std::string& name() const { return _name; }

private:
    std::string _name;  // the instance name looked for
};

/// Holds its parts in the order they were added, the nets between them, its own ports (each with an
/// inside net here and an outside net in the holder), the types of its sub-circuits, meta data, file
/// comments and import paths. A hierarchy is never flattened: a sub-circuit instance is a Circuit
/// among the parts, and dotted paths of instance names reach into it.
///
/// Lookups by name answer as a scan from the front would (from the back for nets), but through an
/// index. Parts report renames themselves; rename nets that stand here through rename_net.
///
/// Owns its component and net factories, and thereby everything made through them; the vectors only
/// point. Failures throw Error and keep what earlier steps of the call did.
class Circuit : public Component
{
public:
    /// For classes that derive from Circuit: the type name follows from the class name.
    Circuit(const std::string& class_name, const std::string& instance_name, Circuit* parent);
    /// Nested sub-circuit instances multiply; a file that builds more parts than this is refused. Not
    /// const only so that a test can reach the limit without building that many parts.
    static int max_nof_parts;

    /// A plain circuit, of type "Circuit".
    Circuit(const std::string& instance_name, Circuit* parent);
    /// A deep copy of `other` under `parent`: parts, nets rebuilt by path, declarations, file comments
    /// and import paths; no meta data.
    Circuit(const Circuit* other, Circuit* parent);
    /// Disconnects every own port and part before the factories free them.
    ~Circuit() override;

    // Component hooks.
    /// Passes the call on to every part, naming this circuit.
    void circuit_connect_callback(Circuit* circuit) override;
    /// Clears every net's history, then resets every part in order.
    void reset() override;
    void init(int end_time) override;
    /// Hands the value of each connected input across to its inside net, at the same time.
    void evaluate(int time) override;
    void evaluate_port(int time, Port* port) override;
    std::vector<std::string> get_valid_param_keys() override { return {}; }
    /// Asks for its own evaluation at the same time; the values are not looked at.
    void port_changed_value(Port* port, const Value& old_value, const Value& new_value, int time) override;
    void disconnect() override;
    void update_after_param_change() override {}
    /// With a parent, the parent's sink if it has one; the sink nearest the root wins.
    SimLog* sim_log() const override;

    /// What ComponentFactory::duplicate calls to copy a circuit of this class.
    virtual Circuit* copy_allocator(const Circuit* source, Circuit* parent) const;
    /// A declaration built from a child scope of a file.
    virtual Circuit* spec_allocator(const CircuitSpec* spec, Circuit* parent) const;
    /// The first declaration of that type name; null if none.
    virtual Circuit* find_circuit_declaration(const std::string& type) const;

    // Parts.
    const std::vector<Component*>& components() const { return _components.items(); }
    int nof_components() const { return static_cast<int>(_components.size()); }
    ComponentFactory& component_factory() { return _component_factory; }
    const ComponentFactory& component_factory() const { return _component_factory; }
    /// The first part of that instance name, or null. No dots are followed here.
    Component* find_component(const std::string& name) const;
    bool has_component(const std::string& name) const { return find_component(name) != nullptr; }
    int count_components_with_instance_name(const std::string& name) const;
    /// Null for a type the factory does not know.
    Component* create_factory_component(const std::string& type, const std::string& name);
    /// A factory part, or a copy of a declaration; not yet added. A type that is neither throws Error.
    Component* create_component(const std::string& type, const std::string& name);
    /// create_component and append, with no check of the name.
    Component* add_component(const std::string& type, const std::string& name);
    /// Appends and places the part here. A taken instance name or another parent throws Error; with
    /// `update_declarations` a circuit of an undeclared type leaves its declaration here.
    void add(Component* component, bool update_declarations);
    /// The same with the file and line of `line` in the duplicate-name message; null is allowed.
    void add(Component* component, const UnitLine* line);
    /// Takes the part from its parent, if any, and adds it here.
    void adopt(Component* component);
    /// Disconnects the part and takes it out; it stays allocated.
    void remove(Component* component);

    // Nets.
    const std::vector<Net*>& nets() const { return _nets.items(); }
    /// Joins the ports into one net of that name: own ports by their inside, parts' ports by their
    /// outside; nets the ports already hang on are merged. A taken name throws Error.
    Net* make_net(const std::string& name, const std::vector<Port*>& ports);
    /// Named after the first port; null for no ports.
    Net* make_net(const std::vector<Port*>& ports);
    void rename_net(Net* net, const std::string& name);
    /// `new_net` takes the place at the end and the name of `old_net`; no port moves.
    void replace_net(Net* old_net, Net* new_net);
    /// Detaches every port and forgets the net; the next garbage collection frees it.
    void remove(Net* net);
    /// Drops nets with fewer than `n` ports, here and in every sub-circuit.
    void remove_nets_with_fewer_ports_than(unsigned n);

    /// Kept at the root only, after the load.
    void set_simlog(SimLog* log) { _sim_log = log; }

    // Meta data: keys sorted, values in the order of adding.
    void add_meta_data(const std::string& key, const std::string& value);
    void set_meta_data(const std::string& key, const std::string& value);
    void remove_meta_data(const std::string& key);
    /// The first value; "" for an unknown key.
    std::string get_meta_data_string(const std::string& key) const;
    std::vector<std::string> get_meta_data_vector(const std::string& key) const;
    std::vector<std::string> get_meta_data_keys() const;

    // File comment blocks (not the comment of the circuit as an object). Indexes are not checked.
    Comment* add_comment(const std::string& text);
    /// Deletes it; null does nothing.
    void remove_comment(Comment* comment);
    int nof_comments() const { return static_cast<int>(_comments.size()); }
    Comment* get_comment(int index) { return _comments[static_cast<std::size_t>(index)]; }
    const Comment* get_comment(int index) const { return _comments[static_cast<std::size_t>(index)]; }
    void set_comment_text(int index, const std::string& text);
    using CommentableObject::set_comment_text;
    const std::vector<Comment*>& circuit_comments() const { return _comments; }

    // Import paths; "./" from construction on.
    /// A path under this circuit's own directory is stored relative to it.
    void add_import_path(const std::string& path);
    void remove_import_path(const std::string& path) { _import_paths.erase(path); }
    const std::set<std::string>& import_paths() const { return _import_paths; }

    void print_tree(TLog&) {}

    // Dotted paths into the hierarchy: every name but the last is an instance name.
    /// Null if any step is missing; "x.p" with a plain part x gives its port p.
    Port* find_port(const std::string& path);
    /// The part the last element names; null if a step is missing or a plain part stands mid-path.
    Component* find_component_recursive(const std::string& path);
    /// Null if missing; if two nets share the name, the later one.
    Net* find_net(const std::string& path);
    bool has_net(const std::string& path) { return find_net(path) != nullptr; }
    /// Throws Error naming the nets of the circuit reached, or the circuit that was not.
    Net* find_net_throw_error(const std::string& path, const std::string& file, int line);
    // Object to path, relative to this circuit; "" (or an empty list) for what is not inside it.
    std::string find_port_path(Port* port) const;
    std::string find_net_path(Net* net) const;
    std::string find_port_path_by_id(const std::string& id) const;
    std::string find_net_path_by_id(const std::string& id) const;
    std::string get_component_path_by_id(const std::string& id);
    std::vector<std::string> find_component_path(Component* component);
    /// Looks into the first sub-circuit of each level only, unlike the overload for any part.
    std::vector<std::string> find_component_path(Circuit* circuit);

    /// Warns through the sink of every unconnected input of every part, at every level below.
    void check_connections();
    /// The parts, declarations, ports, nets and dictionary, indented through TLog.
    void print(bool recursive);

    // Declarations of sub-circuit types, looked up by type name.
    bool has_circuit_declaration(const std::string& type) const
    {
        return find_circuit_declaration(type) != nullptr;
    }
    bool has_circuit_declaration(const Circuit* declaration) const;
    const std::vector<Circuit*>& circuit_declarations() const { return _circuit_declarations; }
    /// A type declared already throws Error.
    void add_circuit_declaration(Circuit* declaration);
    /// Forgets it; nothing is deleted.
    void remove_circuit_declaration(Circuit* declaration);
    void add_copy_of_circuit_as_declaration(Circuit* circuit);
    /// A copy without parent, named `name` or "<declaration>_copy"; null for an unknown type.
    Circuit* copy_circuit_declaration(const std::string& type, const std::string& name);
    /// Declares the type of an added circuit here if it isn't yet.
    void update_circuit_declarations(Circuit* circuit);
    /// `circuit` becomes the definition of its type, and every other instance here a fresh copy.
    void update_other_instances_of_same_type(Circuit* circuit);
    /// A copy of `model` in the place, name and outside connections of `old_instance`.
    Circuit* replace_subcircuit_with_copy(Circuit* old_instance, const Circuit* model);
    /// Moves the outside connections of equally named ports over; the new part goes to the end.
    void substitute_component(Component* old_component, Component* new_component);

    // Place in the tree and in the files.
    bool is_root() const { return parent() == nullptr; }
    /// An instance or declaration of a `Circuit <name> {` block.
    bool is_parent_defined_subcircuit() const;
    bool is_an_import_root() const { return parent() != nullptr && !_filename.empty(); }
    bool is_imported() const;
    /// True for this circuit itself too.
    bool is_decendent_of(const Circuit* circuit) const;
    /// The circuit standing for the file this one lives in.
    Circuit* file_circuit();
    const Circuit* file_circuit() const;
    /// Only valid while the spec lives, that is during the load.
    const CircuitSpec* circuit_spec() const { return _circuit_spec; }
    /// The own file name, else that of the spec.
    std::string filename() const;
    void set_filename(const std::string& filename) { _filename = filename; }
    void mark_as_internal_definition() { _filename.clear(); }
    /// Instance names below the root down to this circuit.
    std::vector<std::string> get_circuit_hierarchy_path() const;
    /// The file of this circuit as seen from the working directory.
    std::string filepath() const;
    std::string find_file_path(const std::string& name) const;
    /// A file named by a part, resolved relative to the file holding it through every import.
    std::string hierachical_filepath(const std::string& name) const;
    /// Keeps the declarations' files where they are when this circuit's file moves.
    void update_circuit_declaration_paths(const std::string& new_file);

    /// Builds the whole circuit from a parsed file, declarations first.
    void build_from_spec(const CircuitSpec* spec);
    /// Drops the pointer to the spec here and below, for when the spec is destroyed. Locally declared
    /// declarations then have no file name.
    void forget_circuit_spec();

protected:
    /// Joins `nets` (not empty) into the first of them, which gets the name.
    Net* _merge_nets(const std::string& name, const std::set<Net*>& nets);
    /// Appends the net under `name` (or its own name); a taken name throws Error.
    void _add_net(Net* net, const std::string& name);
    /// A port of this circuit, its name spec carrying options as in "a(ztr=off)".
    Port* _create_port(const std::string& name_spec, int size, Morvane::Dir dir, const std::string& file,
                       int line);
    /// The bare name; options go to `params`. A spec outside the pattern gives "".
    static std::string _parse_name_and_params(const std::string& spec, ParaMap& params);
    /// Null throws Error with the line's file and number.
    Port* _get_port_with_diag(const std::string& path, const Line& line);
    bool _is_relative_to_circuit_path(const std::string& path) const;
    std::string _strip_to_be_circuit_relative(const std::string& path) const;

    static std::pair<std::vector<std::string>, std::string> _split_port_path(const std::string& path);
    static std::vector<std::string> _split_path(const std::string& path);
    NetLookup _find_net(const std::string& path);

    void _build(const CircuitSpec* spec);
    void _add_circuit_declaration(const CircuitSpec* spec);
    void _create_components(const UnitLine& line);
    void _check_room_for_parts(const UnitLine& line, int nof_parts) const;
    Component* _make_component_from_circuit(const UnitLine& line, const std::string& name);
    void _add_circuit_port(const PortLine& line);
    void _add_circuit_pin(const PinLine& line);
    void _add_net(const NetLine& line);
    void _add_metadata(const MetaDataLine& line);
    /// Replaces every instance of the circuit's type but the circuit itself by a copy of the
    /// declaration; an undeclared type throws Error.
    void _update_instances_of(Circuit* circuit);

private:
    friend class Component;  // reports renames of parts

    /// A part listed here is about to change its name.
    void _component_renamed(Component* component);
    /// What the destructor does, also for a copy that fails half-way.
    void _tear_down();
    void _add_default_import_path() { _import_paths.insert("./"); }
    /// Own ports attach by their inside, everything else by its outside.
    std::set<Net*> _find_nets_of_ports(const std::vector<Port*>& ports) const;
    void _forget_net(Net* net);
    /// Every port below this circuit and its path, in the order find_port_path walks.
    void _collect_port_paths(const std::string& prefix,
                             std::unordered_map<const Port*, std::string>& paths) const;
    void _replace_declaration_with_copy_of(Circuit* circuit);

    std::string _filename;                                       // as the naming file wrote it; "" if none
    const CircuitSpec* _circuit_spec = nullptr;                  // during the load only; not owned
    NameIndex<Component, false> _components;                     // in order of adding; not owned
    NameIndex<Net, true> _nets;                                  // in order of adding; not owned
    std::map<std::string, std::vector<std::string>> _meta_data;  // values in order of adding
    std::vector<Comment*> _comments;                             // file comment blocks; owned
    ComponentFactory _component_factory;                         // owns the parts made and copied here
    NetFactory _net_factory;                                     // owns the nets made here
    std::vector<std::unique_ptr<Circuit>> _allocated;            // built for files: declarations, instances
    std::set<std::string> _import_paths;                         // directories to search
    std::vector<Circuit*> _circuit_declarations;                 // one per sub-circuit type; parent is this
    SimLog* _sim_log = nullptr;                                  // report sink; not owned
    int _nof_parts_within = 0;  // parts and declarations made from files here and below, recursively
};

#endif  // MORVANE_CORE_CIRCUIT_CIRCUIT_H
