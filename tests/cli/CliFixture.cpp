#include "CliFixture.h"

#include "FileSystem.h"
#include "ReportLinks.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <sstream>

namespace qi::test {

std::vector<std::string> splitFields(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::string part;
    std::istringstream in(text);
    while (std::getline(in, part, separator))
        parts.push_back(part);
    if (!text.empty() && text.back() == separator)
        parts.emplace_back();
    return parts;
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

namespace fs = std::filesystem;

namespace {

std::vector<char*> argvOf(const std::string& program, const std::vector<std::string>& args)
{
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const std::string& a : args)
        argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    return argv;
}

int exitCodeOf(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

} // namespace

CliRun runProgram(const std::string& program, const std::vector<std::string>& args)
{
    TempDir io;
    const std::string outFile = io.file("out"), errFile = io.file("err");
    std::vector<char*> argv = argvOf(program, args);
    const pid_t pid = fork();
    if (pid == 0) {
        const int out = ::open(outFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int err = ::open(errFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int in = ::open("/dev/null", O_RDONLY);
        if (out < 0 || err < 0 || in < 0)
            _exit(126);
        dup2(in, 0);
        dup2(out, 1);
        dup2(err, 2);
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return {exitCodeOf(status), readFile(outFile), readFile(errFile)};
}

std::string runOnTerminal(const std::string& program, const std::vector<std::string>& args, int& code)
{
    std::vector<char*> argv = argvOf(program, args);
    int master = -1;
    const pid_t pid = forkpty(&master, nullptr, nullptr, nullptr);
    if (pid == 0) {
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    std::string output;
    char buffer[4096];
    for (;;) {
        const ssize_t n = ::read(master, buffer, sizeof buffer);
        if (n > 0) {
            output.append(buffer, std::size_t(n));
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        break; // EIO once the program has ended
    }
    ::close(master);
    int status = 0;
    waitpid(pid, &status, 0);
    code = exitCodeOf(status);
    return output;
}

void CliFixture::SetUp()
{
    programDir = root.file("QInventur");
    demoDir = programDir + "/Demo";
    fs::create_directories(programDir);
    program = programDir + "/qinventur-cli";
    // The program finds its folder from where it was started: a link of its own in the test's folder.
    std::error_code ec;
    fs::create_hard_link(QI_CLI, program, ec);
    if (ec)
        fs::copy_file(QI_CLI, program);
    fs::copy(fs::path(QI_PROGRAM_DIR) / "Leeres Projekt", fs::path(programDir) / "Leeres Projekt",
             fs::copy_options::recursive);
    createReportDatabase(programDir + "/QInventurRpt.mdb");
    demo::writeDemoProject(demo::smallSizes(), demoDir, std::string(QI_SOURCE_DIR) + "/resources/reports");
    demo::writeQuarnIni(programDir + "/Quarn.ini", demo::projectValueFor(programDir + "/Quarn.ini", demoDir));
    inst = demo::buildInstallation(demo::smallSizes());
}

CliRun CliFixture::cli(const std::vector<std::string>& args) { return runProgram(program, args); }

CliRun CliFixture::expectCli(int code, const std::vector<std::string>& args)
{
    CliRun r = cli(args);
    std::string call;
    for (const std::string& a : args)
        call += " " + a;
    EXPECT_EQ(r.code, code) << "qinventur-cli" << call << "\nstdout:\n" << r.out << "stderr:\n" << r.err;
    return r;
}

void CliFixture::prepareOrder(const std::string& name)
{
    expectCli(0, {"anlegen", name, "--mitarbeiter", "Meier"});
    std::vector<std::string> args = {"raeume", name, "--setzen"};
    for (const std::string& nr : orderRooms())
        args.push_back(nr);
    expectCli(0, args);
    // The conflict within the first file keeps the first scan, the one across the files takes the second.
    expectCli(0, {"hinzufuegen", name, scanFile("Scan_EG_Teil1.dat"), "--konflikt", "behalten"});
    expectCli(0, {"hinzufuegen", name, scanFile("Scan_EG_Teil2.dat"), "--konflikt", "verwerfen"});
}

std::string CliFixture::orderFile(const std::string& name) const { return demoDir + "/Inventur/" + name + ".mdb"; }

std::unique_ptr<Database> CliFixture::read(const std::string& file) const { return Database::open(file, true); }

std::int64_t CliFixture::count(const std::string& file, const std::string& sql) const
{
    return toLong(read(file)->scalar(sql));
}

std::vector<std::string> CliFixture::orderRooms() const
{
    for (const demo::Node& n : inst.nodes)
        if (n.typ == 3) {
            std::vector<std::string> rooms;
            for (const demo::Room* r : inst.roomsOfFloor(n.id))
                rooms.push_back(r->nr);
            return rooms;
        }
    return {};
}

std::vector<std::string> CliFixture::registeredOrders() const
{
    std::vector<std::string> names;
    const Recordset rs = read(demoDir + "/QInventur.mdb")->query("SELECT stBezeichung FROM T_Auftrag ORDER BY lID");
    for (const auto& row : rs.rows())
        names.push_back(toText(row[0]));
    return names;
}

} // namespace qi::test
