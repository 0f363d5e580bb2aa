// Identity and annotation: the name and id of ports, nets and components, and their comments.
#ifndef MORVANE_CORE_CIRCUIT_BASEOBJECT_H
#define MORVANE_CORE_CIRCUIT_BASEOBJECT_H

#include "Core/Circuit/Dict.h"

#include <string>
#include <utility>

/// A name and an id. Ids come from the unseeded rand(), so a run gives the same ids each time;
/// nothing checks that they are unique.
class BaseObject : public Dict
{
public:
    explicit BaseObject(const std::string& name);
    /// Copies the Dict part, the name and the id: a copy bears its source's id.
    explicit BaseObject(const BaseObject* other);
    ~BaseObject() override = default;

    /// Called by set_name before the new name is stored, also when it doesn't change.
    virtual void rename_callback(const std::string& old_name, const std::string& new_name);

    const std::string& name() const { return _name; }
    void set_name(const std::string& name);
    std::string id() const { return _id; }
    void set_id(std::string id) { _id = std::move(id); }
    void generate_random_id();

private:
    std::string _name;  // instance, port or net name; compared case-sensitively
    std::string _id;    // two rand() results in hex, the second first
};

/// A text that a file attached to something.
class Comment : public Dict
{
public:
    explicit Comment(const std::string& text = "") : _text(text) {}
    ~Comment() override = default;

    std::string& text() { return _text; }
    const std::string& text() const { return _text; }
    void set_text(const std::string& text) { _text = text; }

private:
    std::string _text;  // as written, newlines included
};

/// Mix-in that gives its holder one comment.
class CommentableObject
{
public:
    explicit CommentableObject(const std::string& text = "") : _comment(text) {}
    virtual ~CommentableObject() = default;

    Comment& comment() { return _comment; }
    const Comment& comment() const { return _comment; }
    std::string comment_text() const { return _comment.text(); }
    void set_comment_text(const std::string& text) { _comment.set_text(text); }
    /// True only for the empty text; blanks count as a comment.
    bool has_blank_comment() const { return _comment.text().empty(); }

private:
    Comment _comment;  // empty when the file gave none
};

#endif  // MORVANE_CORE_CIRCUIT_BASEOBJECT_H
