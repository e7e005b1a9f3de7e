// The help of qinventur-cli, overall and per command, as a process: German, with the
// call, the options, the exit codes and examples; and the refusals of command lines
// that can't be run (exit code 2).

#include "CliFixture.h"

#include "CommandLine.h"
#include "ExitCodes.h"

#include <algorithm>

namespace qi::test {
namespace {

using namespace qi::cli;

/// The line of the help that lists an exit code: the number right-aligned, two blanks, the meaning.
std::string codeLine(const ExitCodeInfo& info)
{
    return (info.code < 10 ? "   " : "  ") + std::to_string(info.code) + "  " + std::string(info.meaning) + "\n";
}

/// Words an English help would use.
void expectGerman(const std::string& text)
{
    for (const char* english : {"Usage", "usage", "Options", "options", "Exit", "exit code", "Example", "Commands",
                                "Default", "default", "file", "order", "Error"})
        EXPECT_EQ(text.find(english), std::string::npos) << english << " in\n" << text;
    for (const char* german : {"Aufruf:", "Rückgabewerte:", "Beispiel"})
        EXPECT_NE(text.find(german), std::string::npos) << german << " missing in\n" << text;
}

class CliHelpTest : public CliFixture {};

TEST_F(CliHelpTest, OverallHelpNamesEveryCommandAndEveryExitCode)
{
    for (const std::vector<std::string>& args : {std::vector<std::string>{"--help"}, {"-h"}, {"hilfe"}}) {
        const CliRun r = expectCli(0, args);
        EXPECT_TRUE(r.err.empty()) << r.err;
        expectGerman(r.out);
        EXPECT_NE(r.out.find("qinventur-cli [--projekt ORDNER] BEFEHL [ARGUMENTE] [OPTIONEN]"), std::string::npos);
        for (const CommandInfo& c : commands())
            EXPECT_NE(r.out.find("  " + std::string(c.name) + " "), std::string::npos) << c.name;
        for (const ExitCodeInfo& info : kExitCodes)
            EXPECT_NE(r.out.find(codeLine(info)), std::string::npos) << info.code;
    }
}

TEST_F(CliHelpTest, EveryCommandHasItsOwnGermanHelpWithItsExitCodes)
{
    for (const CommandInfo& c : commands()) {
        SCOPED_TRACE(std::string(c.name));
        const std::string name(c.name);
        const CliRun r = expectCli(0, {name, "--help"});
        EXPECT_TRUE(r.err.empty()) << r.err;
        expectGerman(r.out);
        EXPECT_EQ(r.out.rfind("qinventur-cli " + name + ": " + std::string(c.summary) + "\n", 0), 0u) << r.out;
        EXPECT_NE(r.out.find("qinventur-cli [--projekt ORDNER] " + std::string(c.synopsis)), std::string::npos);
        for (std::string_view option : c.valueOptions)
            EXPECT_NE(r.out.find("  " + std::string(option) + " "), std::string::npos) << option;
        for (std::string_view flag : c.flags)
            EXPECT_NE(r.out.find("  " + std::string(flag) + " "), std::string::npos) << flag;
        // Success, failure, a wrong call and an unusable project can end every command.
        for (ExitCode code : {kSuccess, kFailure, kBadArguments, kProjectUnusable})
            EXPECT_NE(std::find(c.exitCodes.begin(), c.exitCodes.end(), code), c.exitCodes.end()) << code;
        for (const ExitCodeInfo& info : kExitCodes) {
            const bool listed = std::find(c.exitCodes.begin(), c.exitCodes.end(), info.code) != c.exitCodes.end();
            EXPECT_EQ(r.out.find(codeLine(info)) != std::string::npos, listed) << info.code;
        }
        for (std::string_view example : c.examples)
            EXPECT_NE(r.out.find("  " + std::string(example) + "\n"), std::string::npos) << example;
        // The same help, asked for in other ways.
        EXPECT_EQ(cli({"hilfe", name}).out, r.out);
        EXPECT_EQ(cli({"-h", name}).out, r.out);
    }
}

TEST_F(CliHelpTest, CommandsThatStopOnAConflictSayHowToDecide)
{
    for (const char* name : {"hinzufuegen", "entfernen", "neu-einlesen"}) {
        const CliRun r = expectCli(0, {name, "--help"});
        EXPECT_NE(r.out.find("--konflikt behalten|verwerfen"), std::string::npos) << name;
        EXPECT_NE(r.out.find("  13  Objekt in zwei Räumen eingescannt und kein --konflikt angegeben\n"),
                  std::string::npos)
            << name;
    }
}

struct BadCall {
    const char* label;
    std::vector<std::string> args;
    std::string message;
    std::string hint;
};

std::ostream& operator<<(std::ostream& os, const BadCall& b) { return os << b.label; }

class BadCalls : public CliFixture, public ::testing::WithParamInterface<BadCall> {};

TEST_P(BadCalls, EndWithExitCodeTwoAndSayWhy)
{
    const BadCall& b = GetParam();
    const auto before = treeDigest(root.path());
    const CliRun r = expectCli(2, b.args);
    EXPECT_EQ(r.err, "[qinventur-cli] " + b.message + "\n" + b.hint);
    EXPECT_TRUE(r.out.empty()) << r.out;
    // The project was not even opened.
    EXPECT_EQ(treeDigest(root.path()), before);
}

const std::string kHelp = "Hilfe: qinventur-cli --help\n";
std::string hintFor(const std::string& command)
{
    return "Aufruf: qinventur-cli " + std::string(findCommand(command)->synopsis) + "\nHilfe: qinventur-cli " + command +
           " --help\n";
}

INSTANTIATE_TEST_SUITE_P(
    Calls, BadCalls,
    ::testing::Values(
        BadCall{"no_command", {}, "Es fehlt ein Befehl.", kHelp},
        BadCall{"unknown_command", {"liste"}, "Den Befehl 'liste' gibt es nicht.", kHelp},
        BadCall{"unknown_option", {"auftraege", "--alles"}, "Die Option --alles gibt es nicht.", hintFor("auftraege")},
        BadCall{"option_of_another_command",
                {"auftraege", "--konflikt", "behalten"},
                "Die Option --konflikt gibt es für den Befehl auftraege nicht.",
                hintFor("auftraege")},
        BadCall{"option_without_command", {"--mitarbeiter", "x"}, "Die Option --mitarbeiter gehört zu einem Befehl.",
                kHelp},
        BadCall{"missing_value", {"anlegen", "Nord", "--mitarbeiter"}, "Die Option --mitarbeiter braucht einen Wert.",
                hintFor("anlegen")},
        BadCall{"option_twice",
                {"anlegen", "Nord", "--mitarbeiter", "A", "--mitarbeiter=B"},
                "Die Option --mitarbeiter ist zweimal angegeben.",
                hintFor("anlegen")},
        BadCall{"missing_argument", {"loeschen"}, "Es fehlt ein Argument.", hintFor("loeschen")},
        BadCall{"missing_file", {"hinzufuegen", "Nord"}, "Es fehlt ein Argument.", hintFor("hinzufuegen")},
        BadCall{"too_many_arguments", {"loeschen", "Nord", "Süd"}, "Zu viele Argumente.", hintFor("loeschen")},
        BadCall{"bad_policy",
                {"hinzufuegen", "Nord", "a.dat", "--konflikt", "vielleicht"},
                "--konflikt nimmt behalten oder verwerfen, nicht 'vielleicht'.",
                ""},
        BadCall{"rooms_without_setzen", {"raeume", "Nord", "101"}, "Räume, --datei und --alle gehören zu --setzen.",
                ""},
        BadCall{"setzen_without_rooms", {"raeume", "Nord", "--setzen"},
                "Es fehlen die Räume: Raumnummern, --datei DATEI oder --alle.", ""}),
    [](const ::testing::TestParamInfo<BadCall>& info) { return std::string(info.param.label); });

} // namespace
} // namespace qi::test
