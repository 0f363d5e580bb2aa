#include "Wave/WaveJsonWriter.h"

#include "Core/Simulation/ValueHistory.h"
#include "Core/Support/StringUtils.h"

#include <cstdint>
#include <cstdio>

namespace {

/// One period: its wave character and, for a bus value, its text.
struct Sample
{
    char wave;
    std::string data;

    bool operator==(const Sample&) const = default;
};

Sample sample(const Value& value)
{
    const char* letters = value.c_str();
    if (value.size() == 1) {
        switch (letters[0]) {
        case 'n':
        case 'N':
            return {'d', ""};
        case 'p':
        case 'P':
            return {'u', ""};
        default:
            return {vcd_state(letters[0]), ""};
        }
    }
    std::string digits;
    unsigned nibble = 0;
    bool binary = true;
    bool floating = true;
    for (unsigned i = 0; i < value.size(); ++i) {
        char state = vcd_state(letters[i]);
        binary = binary && (state == '0' || state == '1');
        floating = floating && state == 'z';
        nibble = (nibble << 1) | (state == '1' ? 1 : 0);
        // Digits are grouped from the least significant bit, as the table prints them.
        if ((value.size() - i - 1) % 4 == 0) {
            if (!digits.empty() || nibble != 0 || i + 1 == value.size())
                digits += "0123456789abcdef"[nibble];
            nibble = 0;
        }
    }
    if (floating)
        return {'z', ""};
    if (!binary)
        return {'x', ""};
    return {'=', digits};
}

std::string json_string(const std::string& text)
{
    std::string quoted = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        if (static_cast<unsigned char>(c) < 0x20)
            quoted += fmt("\\u%04x", c);
        else
            quoted += c;
    }
    return quoted + '"';
}

}  // namespace

bool WaveWindow::parse(const std::string& text)
{
    char rest = 0;
    if (sscanf(text.c_str(), "%d:%d:%d%c", &from, &to, &step, &rest) != 3)
        return false;
    return from >= 0 && from <= to && step > 0;
}

void write_wavejson(std::ostream& out, const std::string& title, const std::vector<WaveSignal>& signals,
                    const WaveWindow& window)
{
    out << "{\"signal\": [\n";
    for (std::size_t i = 0; i < signals.size(); ++i) {
        std::string wave;
        std::vector<std::string> data;
        Sample last{0, ""};
        // In 64 bits, so that a window reaching the largest time ends.
        for (std::int64_t t = window.from; t <= window.to; t += window.step) {
            Sample now = sample(signals[i].history->value(static_cast<int>(t)));
            if (now == last) {
                wave += '.';
                continue;
            }
            wave += now.wave;
            if (now.wave == '=')
                data.push_back(json_string(now.data));
            last = now;
        }
        out << "  {\"name\": " << json_string(signals[i].path) << ", \"wave\": \"" << wave << '"';
        if (!data.empty()) {
            out << ", \"data\": [";
            for (std::size_t d = 0; d < data.size(); ++d)
                out << (d == 0 ? "" : ", ") << data[d];
            out << ']';
        }
        out << '}' << (i + 1 < signals.size() ? "," : "") << '\n';
    }
    out << "],\n \"head\": {\"text\": "
        << json_string(
               fmt("%s, %d to %d ns, %d ns a period", title.c_str(), window.from, window.to, window.step))
        << "}}\n";
}
