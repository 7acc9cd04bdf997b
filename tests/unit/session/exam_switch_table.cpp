// The table of switches: every row reaches the status display, the saved settings and the manual.
#include "language/language_modes.h"
#include "language/symbols.h"
#include "matrix/matrix_modes.h"
#include "numbers/display_modes.h"
#include "poly/poly_modes.h"
#include "session/save_settings.h"
#include "session/session_modes.h"
#include "session/status.h"
#include "session/switch_table.h"
#include "storage/stash.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>
using namespace tolvex;
namespace {
std::vector<const SwitchRow*> all_rows() {
    size_t count;
    const SwitchRow* rows = switch_rows(&count);
    std::vector<const SwitchRow*> all;
    for (size_t i = 0; i < count; i++) all.push_back(&rows[i]);
    return all;
}

std::string content(FILE* file) {
    std::string text;
    rewind(file);
    for (int c; (c = getc(file)) != EOF;) text += static_cast<char>(c);
    return text;
}

std::string saved() {
    FILE* file = tmpfile();
    save_settings(file);
    std::string text = content(file);
    fclose(file);
    return text;
}

/// What `what` writes on the standard output.
std::string written(const std::function<void()>& what) {
    fflush(stdout);
    FILE* file = tmpfile();
    int terminal = dup(STDOUT_FILENO);
    dup2(fileno(file), STDOUT_FILENO);
    what();
    fflush(stdout);
    dup2(terminal, STDOUT_FILENO);
    close(terminal);
    std::string text = content(file);
    fclose(file);
    return text;
}

/// The statement that brings a switch back.
std::string statement(const SwitchRow& row, int32_t value) {
    return std::string("&(") + row.letter + " = " + std::to_string(value) + ");\n";
}

/// Stores `value` as the form `&(x = v)` does.
void store(const SwitchRow& row, int32_t value) {
    if (row.at != nullptr) {
        *row.at = value;
        if (row.after != nullptr) row.after();
        return;
    }
    SwitchStore s = {&row, value, false, false, 0};
    ASSERT_TRUE(row.store(s)) << row.letter;
}

/// Another value than that of a fresh session, which the row takes.
int32_t other_value(const SwitchRow& row) {
    if (row.at != nullptr) return !row.start;
    static const std::map<std::string, int32_t> values = {{"#", 50}, {"A", 200}, {"X", 500}, {"L", 66},
                                                          {"K", 1},  {"D", 7},   {"a", 0},   {"m", 2}};
    auto found = values.find(row.letter);
    return found != values.end() ? found->second : row.start + 2;
}

class Switches : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { Output = stdout; }
    void TearDown() override {
        for (const SwitchRow* row : all_rows())
            if (is_settable(*row)) store(*row, row->start);
    }
};

TEST_F(Switches, ValuesOfAFreshSession) {
    for (const SwitchRow* row : all_rows()) EXPECT_EQ(switch_value(*row), row->start) << row->letter;
}

TEST_F(Switches, LettersAreUnique) {
    std::set<std::string> commands, forms;
    for (const SwitchRow* row : all_rows()) {
        EXPECT_TRUE(commands.insert(row->letter).second) << row->letter;
        if (row->also != nullptr) {
            EXPECT_TRUE(commands.insert(row->also).second) << row->also;
        }
        if (!is_settable(*row)) continue;
        EXPECT_TRUE(forms.insert(row->letter).second) << row->letter;
        if (row->set_letter != nullptr) {
            EXPECT_TRUE(forms.insert(row->set_letter).second) << row->set_letter;
        }
        EXPECT_EQ(find_set_switch(row->letter), row);
    }
}

TEST_F(Switches, RowsAreComplete) {
    for (const SwitchRow* row : all_rows()) {
        SCOPED_TRACE(row->letter);
        ASSERT_NE(row->meaning, nullptr);
        EXPECT_EQ(row->at == nullptr, row->value != nullptr);
        if (row->at != nullptr) {
            EXPECT_TRUE(row->on != nullptr && row->off != nullptr);
        } else {
            EXPECT_NE(row->values, nullptr);
        }
        EXPECT_EQ(row->line != StatusLine::none, row->shown != nullptr || row->show != nullptr);
        // A form that saved sessions cannot use would lose the value: `n` alone, which only reading needs.
        if (is_settable(*row) && strcmp(row->letter, "n") != 0) {
            EXPECT_NE(row->save, SavePlace::none);
        }
        if (!is_settable(*row)) {
            EXPECT_EQ(row->save, SavePlace::none);
        }
    }
}

TEST_F(Switches, StatusLinesHaveOneOwner) {
    std::map<StatusLine, int> owners;
    for (const SwitchRow* row : all_rows())
        if (row->line != StatusLine::none) owners[row->line]++;
    for (StatusLine line :
         {StatusLine::ring, StatusLine::integer_mode, StatusLine::method, StatusLine::prompt_text,
          StatusLine::files, StatusLine::polyvars, StatusLine::primes})
        owners[line]++;
    for (int32_t i = 1; i < static_cast<int32_t>(StatusLine::count); i++)
        EXPECT_EQ(owners[static_cast<StatusLine>(i)], 1) << i;
}

TEST_F(Switches, StatusFollowsTheRows) {
    std::string fresh = written(global_dump);
    for (const SwitchRow* row : all_rows()) {
        if (row->line == StatusLine::none || !is_settable(*row)) continue;
        store(*row, other_value(*row));
        EXPECT_NE(written(global_dump), fresh) << row->letter;
        store(*row, row->start);
        EXPECT_EQ(written(global_dump), fresh) << row->letter;
    }
}

TEST_F(Switches, SavedFresh) { EXPECT_EQ(saved(), "&(m = 1);\n&(a = 1);\n&(u = 0);\n"); }

TEST_F(Switches, SavedRowByRow) {
    for (const SwitchRow* row : all_rows()) {
        if (row->save == SavePlace::none) continue;
        int32_t v = other_value(*row);
        store(*row, v);
        EXPECT_NE(saved().find(statement(*row, v)), std::string::npos) << row->letter << saved();
        store(*row, row->start);
    }
}

TEST_F(Switches, SavedOrder) {
    for (const SwitchRow* row : all_rows())
        if (row->save != SavePlace::none) store(*row, other_value(*row));
    std::string text = saved();
    size_t at = 0;
    for (const char* letter : {"e", "N", "m", "a", "B", "D", "U", "_l", "t",  "V",  "W",  "_L", "u", "#",
                               "&", "A", "E", "H", "K", "X", "O", "_d", "_r", "_s", "_t", "|",  "L", "l"}) {
        size_t found = text.find(std::string("&(") + letter + " =");
        ASSERT_NE(found, std::string::npos) << letter;
        EXPECT_GE(found, at) << letter << "\n" << text;
        at = found;
    }
}

TEST_F(Switches, SavedCorners) {
    detcutoff = -7;  // defaults
    EXPECT_EQ(saved().find("&(D"), std::string::npos);
    detcutoff = 0;
    EXPECT_NE(saved().find("&(D = 0);\n"), std::string::npos);
    rat_det_method_cut = 1;
    EXPECT_LT(saved().find("&(L = 1);\n"), saved().find("&(u = 0);\n"));
    rat_det_method_cut = 66;
    EXPECT_GT(saved().find("&(L = 66);\n"), saved().find("&(u = 0);\n"));
    gauss_cutoff = 5;  // by the question; means what 0 means
    EXPECT_EQ(saved().find("&(K"), std::string::npos);
    addresser = -4;  // 5, toggled
    EXPECT_NE(saved().find("&(a = 5);\n&a;\n"), std::string::npos);
}

TEST_F(Switches, SavedPrompt) {
    strcpy(prompt, "->");
    EXPECT_NE(saved().find("&(M = '->');\n"), std::string::npos);
    strcpy(prompt, "-'");
    promptsize = 2;
    EXPECT_NE(saved().find("Array pr[2];\n[pr] := [(45, 39)];\n&(M = [pr]);\n@[pr];\n"), std::string::npos);
    strcpy(prompt, "\r");
    promptsize = 0;
    EXPECT_NE(saved().find("&(M = ' ');\n"), std::string::npos);
    strcpy(prompt, ">");
    promptsize = 1;
}
}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    open_all_stashes();
    return RUN_ALL_TESTS();
}
