// Writes the manual pages and the completion scripts while the program is built.

#include "link/runtime_failure.h"
#include "manual/completion.h"
#include "manual/man_page.h"
#include "map/product.h"

#include <QCoreApplication>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using namespace kavro;
namespace fs = std::filesystem;

struct Page {
    const char* Name;
    const char* Summary; ///< nothing: a program's page, which has its own
    std::vector<PageSection> Sections;
};

const Page Pages[] = {
    {"kavro",
     nullptr,
     {{"FILES", "settings.md", "Where things are kept"},
      {"DIAGNOSTICS", "user-guide.md", "When something is wrong"},
      {"SEE ALSO", "settings.md", "See also"}}},
    {"kavroctl",
     nullptr,
     {{"EXAMPLES", "user-guide.md", "The command line"},
      {"EXIT STATUS", "user-guide.md", "Exit codes"},
      {"SERVICE", "site.md", "A line"},
      {"RECORDINGS", "user-guide.md", "Record a line and play it again"},
      {"FILES", "settings.md", "Where things are kept"},
      {"SEE ALSO", "settings.md", "See also"}}},
    {"kavrosim",
     nullptr,
     {{"EXAMPLES", "simulated-line.md", "The simulated line"},
      {"RECORDINGS", "simulated-line.md", "A recorded line"},
      {"SEE ALSO", "settings.md", "See also"}}},
    {"kavro-settings",
     "the settings of kavro and kavroctl: COM.CFG, ports.ini, settings.ini",
     {{"DESCRIPTION", "settings.md", nullptr}}},
    {"kavro-formats",
     "files of kavro and kavroctl that other programs may read",
     {{"DESCRIPTION", "formats.md", nullptr}}},
    {"kavro-line",
     "simulated lines that kavrosim reads",
     {{"DESCRIPTION", "simulated-line.md", "A line of your own"}}},
};

std::string FileText(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw RuntimeFailure("The file " + path.string() + " cannot be read.");
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteText(const fs::path& path, const std::string& text) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << text << std::flush;
    if (!file)
        throw RuntimeFailure("The file " + path.string() + " cannot be written.");
}

void WriteAll(const fs::path& sources, const fs::path& output, const std::vector<std::string>& programs) {
    const Documents documents = [&](const std::string& name) { return FileText(sources / "docs" / name); };
    for (const Page& page : Pages)
        if (page.Summary != nullptr)
            WriteText(output / (std::string(page.Name) + ".5"),
                      DocumentPage({page.Name, 5, page.Summary, ProductVersion}, page.Sections, documents));
    WriteText(output / "COM.CFG.5", ".so man5/kavro-settings.5\n");
    for (const std::string& path : programs) {
        const ProgramHelp help = ReadProgramHelp(path);
        for (const Page& page : Pages)
            if (help.Name == page.Name)
                WriteText(output / (help.Name + ".1"),
                          ProgramPage(help, ProductVersion, page.Sections, documents));
        for (const char* shell : {"bash", "zsh", "fish"})
            WriteText(output / shell / help.Name,
                      Completion(shell,
                                 FileText(sources / "packaging/completions" / (std::string(shell) + ".in")),
                                 help));
    }
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc < 3) {
        std::fputs("Usage: kavro_manual SOURCES OUTPUT PROGRAM...\n", stderr);
        return 2;
    }
    try {
        WriteAll(argv[1], argv[2], {argv + 3, argv + argc});
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kavro_manual: %s\n", failure.what());
        return 1;
    }
    return 0;
}
