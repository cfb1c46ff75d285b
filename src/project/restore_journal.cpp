#include "project/restore_journal.h"

#include "link/json_object.h"
#include "link/json_text.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "link/utc_text.h"
#include "map/product.h"
#include "project/file_content.h"
#include "project/module_reading.h"
#include "project/saved_json.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace kavro {

namespace {

constexpr std::string_view Format = "kavro-restore-journal";
constexpr int Version = 1;
constexpr int HighestVersion = 2'000'000'000;
constexpr int HighestAddress = 255;
constexpr std::string_view Unreadable = "unreadable reply";

std::string Head(const Line& line, const CutOffRestore& begun) {
    std::vector<std::string> modules;
    for (const SavedModule& module : begun.Wanted)
        modules.push_back(SavedModuleJson(module, -1));
    JsonObject head(-1);
    head.Add("format", JsonText(Format));
    head.Add("version", std::to_string(Version));
    head.Add("time", JsonText(UtcText(line.Time().UtcMicroseconds())));
    head.Add("program", JsonText(ProductVersion));
    head.Add("modules", JsonList(modules, -1));
    return head.Text() + "\n";
}

std::string Entry(const char* event, int address) {
    return "{\"event\": \"" + std::string(event) + "\", \"address\": " + std::to_string(address);
}

std::string SendEntry(int address, const std::string& command) {
    return Entry("send", address) + ", \"command\": " + JsonText(command);
}

std::string OutcomeEntry(int address, const std::string& outcome) {
    return Entry("outcome", address) + ", \"outcome\": " + JsonText(outcome);
}

// A journal that begins with what a run before has left of a module.
std::string JournalText(const Line& line, const CutOffRestore& begun) {
    std::string text = Head(line, begun);
    if (!begun.InWork)
        return text;
    text += Entry("begin", *begun.InWork) + "}\n";
    if (!begun.LastCommand.empty())
        text += SendEntry(*begun.InWork, begun.LastCommand) + "}\n";
    if (!begun.LastOutcome.empty())
        text += OutcomeEntry(*begun.InWork, begun.LastOutcome) + "}\n";
    return text;
}

// How the configuration dialogs tell an acknowledgement from a refusal.
std::string OutcomeOf(const LineTraffic& traffic) {
    const std::string reply = traffic.Received.substr(traffic.Echo ? traffic.Sent.size() : 0);
    if (reply.empty())
        return "no reply";
    if (traffic.Outcome != TrafficOutcome::Complete)
        return std::string(Unreadable);
    return reply.starts_with('!') ? "accepted" : reply.starts_with('?') ? "refused" : std::string(Unreadable);
}

// Is told of the line's exchanges as long as it lives.
class Listening {
public:
    Listening(Line& line, LineListener& listener) : line_(line), listener_(listener) {
        line_.Listeners.push_back(&listener_);
    }
    ~Listening() { std::erase(line_.Listeners, &listener_); }
    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;

private:
    Line& line_;
    LineListener& listener_;
};

[[noreturn]] void ThrowReason(const std::string& path, const char* what, const std::error_code& error) {
    throw RuntimeFailure("The journal \"" + path + "\" cannot be " + what + ": " + error.message() +
                         ". Look at the folder and its free space, then try again.");
}

void ReadHead(const JsonNode& head, CutOffRestore& cutOff) {
    const JsonNode* const format = head.Member("format");
    const JsonNode* const modules = head.Member("modules");
    if (!format || format->Text != Format || !modules || modules->Is != JsonNode::Kind::List)
        FailAt(head, "this is no journal of a restore.");
    if (WholeIn(head, "version", 1, HighestVersion) > Version)
        FailAt(head, "a newer version of this program wrote it. Update the program to go on.");
    for (const JsonNode& module : modules->Within)
        cutOff.Wanted.push_back(ReadSavedModule(module));
}

void ReadEntry(const JsonNode& entry, CutOffRestore& cutOff) {
    const int address = WholeIn(entry, "address", 0, HighestAddress);
    const std::string event = TextIn(entry, "event");
    if (event == "begin") {
        cutOff.InWork = address;
        cutOff.LastCommand.clear();
    } else if (event == "send") {
        cutOff.LastCommand = TextIn(entry, "command");
        cutOff.LastOutcome.clear();
    } else if (event == "outcome") {
        cutOff.LastOutcome = TextIn(entry, "outcome");
    } else if (event == "end") {
        const JsonNode* const asWanted = entry.Member("as_wanted");
        (asWanted && asWanted->On ? cutOff.Done : cutOff.NotDone).push_back(address);
        cutOff.InWork.reset();
    }
}

std::string InWorkText(const CutOffRestore& cutOff) {
    const auto found = std::ranges::find(cutOff.Wanted, *cutOff.InWork, &SavedModule::Address);
    const std::string module =
        found == cutOff.Wanted.end() ? "module at " + std::to_string(*cutOff.InWork) : ShownModule(*found);
    std::string text = " The " + module + " was being written";
    if (cutOff.LastCommand.empty())
        return text + "; nothing had been sent to it.";
    text += "; last it was sent " + cutOff.LastCommand;
    return text + (cutOff.LastOutcome.empty() ? ", and what came of that is not known."
                                              : " (" + cutOff.LastOutcome + ").");
}

} // namespace

std::string JournalPath(const std::string& path) {
    return path + ".journal";
}

RestoreJournal::RestoreJournal(Session& session, const std::string& path, const CutOffRestore& begun)
    : session_(session), path_(path) {
    session_.ReplaceFile(path_, JournalText(session_.Line, begun));
    OpenedFile opened = session_.OpenFile(path_, OpenAs::Existing);
    if (!opened.File)
        ThrowReason(path_, "written", opened.Error);
    file_ = std::move(opened.File);
}

void RestoreJournal::Write(const std::string& line) {
    if (const std::error_code error = WriteThrough(*file_, line + "}\n"))
        ThrowReason(path_, "written", error);
}

void RestoreJournal::Writing(int address, const std::function<void()>& write) {
    Write(Entry("begin", address));
    Line& line = session_.Line;
    address_ = address;
    const auto before = line.BeforeCommand;
    const BeforeEachCommand journal(line, [&](const std::string& command) {
        if (before)
            before(command);
        if (!failure_.empty())
            throw RuntimeFailure(failure_);
        Write(SendEntry(address_, command));
    });
    const Listening listening(line, *this);
    write();
    if (!failure_.empty())
        throw RuntimeFailure(failure_);
}

void RestoreJournal::Done(int address, bool asWanted) {
    Write(Entry("end", address) + ", \"as_wanted\": " + (asWanted ? "true" : "false"));
}

void RestoreJournal::Finish(const CutOffRestore& left) {
    file_.reset();
    if (left.Wanted.empty())
        DiscardJournal(path_);
    else
        session_.ReplaceFile(path_, JournalText(session_.Line, left));
}

void RestoreJournal::Passed(const LineTraffic& traffic) {
    if (traffic.Outcome == TrafficOutcome::Stray || !failure_.empty())
        return;
    try {
        Write(OutcomeEntry(address_, OutcomeOf(traffic)));
    } catch (const RuntimeFailure& failure) {
        failure_ = failure.what();
    }
}

std::optional<CutOffRestore> ReadJournal(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::exists(std::filesystem::u8path(path), error))
        return std::nullopt;
    const auto fail = [&path](const std::string& what) {
        throw RuntimeFailure("The journal \"" + path + "\" cannot be used: " + what);
    };
    std::string text;
    try {
        text = FileContent(path);
    } catch (const RuntimeFailure& failure) {
        fail(failure.what());
    }
    CutOffRestore cutOff;
    int number = 0;
    // What was cut off in the middle of a line is passed over.
    for (std::size_t start = 0, end = 0; (end = text.find('\n', start)) != std::string::npos;
         start = end + 1) {
        ++number;
        try {
            const JsonNode node = ReadJson(std::string_view(text).substr(start, end - start));
            number == 1 ? ReadHead(node, cutOff) : ReadEntry(node, cutOff);
        } catch (const RuntimeFailure& failure) {
            const std::string what = failure.what(); // "line 1: ..." of its own line
            fail("line " + std::to_string(number) + what.substr(what.find(':')));
        }
    }
    return cutOff;
}

std::string CutOffText(const CutOffRestore& cutOff) {
    if (cutOff.Wanted.empty())
        return "A restore of this line was cut off before anything was sent.";
    const std::size_t read = cutOff.Done.size() + cutOff.NotDone.size();
    std::string text = "A restore of this line was cut off: " + std::to_string(read) + " of " +
                       std::to_string(cutOff.Wanted.size()) + " modules were written and read back";
    if (!cutOff.NotDone.empty())
        text += ", " + std::to_string(cutOff.NotDone.size()) + " of them without having everything";
    return text + "." + (cutOff.InWork ? InWorkText(cutOff) : "");
}

void DiscardJournal(const std::string& path) {
    namespace fs = std::filesystem;
    const fs::path journal = fs::u8path(path);
    std::error_code error;
    if (fs::is_directory(fs::symlink_status(journal, error))) // which would go, too, when it is empty
        ThrowReason(path, "removed", make_error_code(std::errc::is_a_directory));
    fs::remove(journal, error);
    if (error)
        ThrowReason(path, "removed", error);
}

} // namespace kavro
