// One parsed statement of a circuit file, with the checks that need no more than its own line.
#ifndef MORVANE_CORE_CIRCUIT_LINE_H
#define MORVANE_CORE_CIRCUIT_LINE_H

#include "Core/Circuit/BaseObject.h"

#include <string>
#include <vector>

/// Where a statement stood. The comment is the text gathered ahead of the statement and on its line.
/// Constructors take the statement's tokens with the keyword as token 0 and throw Error on a bad line.
class Line : public CommentableObject
{
public:
    Line(int line, std::string file);
    ~Line() override = default;

    int line_number;       // 1-based, as the reader counted it
    std::string filename;  // the file named in messages about this line
};

/// MetaData <key> "<value>".
class MetaDataLine : public Line
{
public:
    MetaDataLine(const std::string& key_text, const std::string& value_text, int line, std::string file);

    std::string key;    // token 1 as written, quotes and all
    std::string value;  // the quoted text without its quotes
};

/// Net <name> <port>...: a net joining ports given as dotted paths. One port only is accepted with a
/// warning on standard error, since it usually means a forgotten net name.
class NetLine : public Line
{
public:
    /// Removes tokens 0 and 1 from `tokens`.
    NetLine(std::vector<std::string>& tokens, int line, std::string file);

    /// The first of this line's ports that `other` names too, by exact text; "" if none.
    std::string first_common_pin_name(const NetLine& other) const;

    std::string name;                // the net's name
    std::vector<std::string> ports;  // port paths in file order, no two alike
};

/// Pin <direction> <name>...: one-bit ports. The direction is checked when the circuit is built.
class PinLine : public Line
{
public:
    PinLine(std::vector<std::string>& tokens, int line, std::string file);

    std::vector<std::string> names;  // as written, options such as a(ztr=off) included
    std::string direction;           // as written
};

/// Port <direction> <size> <name>...: ports all of one width.
class PortLine : public Line
{
public:
    PortLine(std::vector<std::string>& tokens, int line, std::string file);

    std::vector<std::string> names;  // as written
    std::string direction;           // Input, Output or Inout
    std::string size;                // bits, the decimal text as written; "-1" passes
};

/// Unit <type> <name>...: instances of a part or sub-circuit. A name base[n] stands for base[0] up to
/// base[n-1].
class UnitLine : public Line
{
public:
    UnitLine(std::vector<std::string> tokens, int line, std::string file);

    std::string type;                // part type or declared circuit name
    std::vector<std::string> names;  // instance names after array expansion, in order

    /// More instances than this in one array name is refused rather than exhausting memory.
    static constexpr int max_array_size = 1000000;
};

#endif  // MORVANE_CORE_CIRCUIT_LINE_H
