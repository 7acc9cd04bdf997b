// Writes docs/switches.md from the table of switches and the table of commands.
//   switch_page          on the standard output
#include "session/commands.h"
#include "session/switch_table.h"

#include <cstdio>
#include <string>
using namespace tolvex;
namespace {
/// A text of the program as the page quotes it: without line ends, "|" kept out of the columns.
std::string quoted(const char* text) {
    if (text == nullptr || *text == 0) return "";
    std::string out = "`";
    for (const char* c = text; *c != 0; c++) {
        if (*c == '\n') {
            if (c[1] != 0) out += "` `";
        } else {
            if (*c == '|') out += '\\';
            out += *c;
        }
    }
    return out + "`";
}

/// A letter in a column.
std::string letter(const char* text) { return text == nullptr ? "" : quoted(text); }

const char* kept(const SwitchRow& row) {
    switch (row.save) {
    case SavePlace::none:
        return "no";
    case SavePlace::lagrange_cut:
        return "if changed";
    default:
        return row.save_always ? "always" : "if changed";
    }
}

/// The commands `&x`: the letter of the row and its other one.
std::string asked(const SwitchRow& row) {
    std::string text = quoted((std::string("&") + row.letter).c_str());
    if (row.also != nullptr) text += ", " + quoted((std::string("&") + row.also).c_str());
    return text;
}

std::string assigned(const SwitchRow& row) {
    if (!is_settable(row)) return "";
    std::string text = quoted((std::string("&(") + row.letter + " = v)").c_str());
    if (row.set_letter != nullptr)
        text += ", " + quoted((std::string("&(") + row.set_letter + " = v)").c_str());
    return text;
}

void write_settings(bool boolean_rows) {
    size_t count;
    const SwitchRow* rows = switch_rows(&count);
    for (size_t i = 0; i < count; i++) {
        const SwitchRow& row = rows[i];
        if ((row.at != nullptr) != boolean_rows) continue;
        printf("| %s | %s | %d | %s%s%s | %s | %s |\n", asked(row).c_str(), assigned(row).c_str(), row.start,
               row.meaning, row.values != nullptr ? "; " : "", row.values != nullptr ? row.values : "",
               row.line == StatusLine::none ? "no" : "yes", kept(row));
    }
}

void write_messages() {
    size_t count;
    const SwitchRow* rows = switch_rows(&count);
    for (size_t i = 0; i < count; i++) {
        const SwitchRow& row = rows[i];
        if (row.at != nullptr)
            printf("| %s | %s | %s |\n", letter(row.letter).c_str(), quoted(row.on).c_str(),
                   quoted(row.off).c_str());
        else if (row.question != nullptr)
            printf("| %s | asks %s | |\n", letter(row.letter).c_str(), quoted(row.question).c_str());
    }
}

void write_commands() {
    const char *name, *meaning;
    for (size_t k = 0; command_help(k, &name, &meaning); k++)
        printf("| %s | %s |\n", quoted((std::string("&") + name).c_str()).c_str(), meaning);
}
}  // namespace

int main() {
    printf(
        "# Switches and commands\n\n"
        "<!-- Made by tools/switch_page.cpp from session/switch_table.cpp and session/commands.cpp. -->\n\n"
        "A switch is changed by its command, which toggles it or asks for a value, or by the form\n"
        "`&(x = v)`, which needs no dialogue. \"Shown\": in the display `&g`. \"Saved\": in a saved "
        "session.\n\n"
        "## On and off\n\n"
        "0 is off; every other value that the form takes is on.\n\n"
        "| command | form | at start | meaning when on | shown | saved |\n"
        "| --- | --- | --- | --- | --- | --- |\n");
    write_settings(true);
    printf("\n## Numbers\n\n"
           "| command | form | at start | meaning; values | shown | saved |\n"
           "| --- | --- | --- | --- | --- | --- |\n");
    write_settings(false);
    printf("\n## What the commands write\n\n| letter | on | off |\n| --- | --- | --- |\n");
    write_messages();
    printf("\n## Other commands\n\n| command | effect |\n| --- | --- |\n");
    write_commands();
}
