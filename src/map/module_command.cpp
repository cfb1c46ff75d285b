#include "map/module_command.h"

#include "link/text.h"
#include "map/command_forms.h"
#include "map/identify.h"
#include "map/module_access.h"

#include <array>
#include <optional>

namespace kavro {

namespace {

std::int64_t& BelievedSince(Session& session, int index) {
    return session.BelievedSince[static_cast<std::size_t>(ModuleAddress(session, index)) % ModuleTable::Size];
}

// What the last reply is, when a good one is of this form.
Answer AnswerOf(const Session& session, int index, std::string_view form) {
    const Line& line = session.Line;
    const ReplyMeasure measure = MeasureOf(session, index);
    if (line.ReplyStatus == 0)
        return line.ReplyText.empty() ? Answer::NoReply : Answer::Garbled;
    if (IsRefusal(line.ReplyText, measure))
        return Answer::Refused;
    return FitsForm(line.ReplyText, form, measure) ? Answer::Ok : Answer::Garbled;
}

// One transaction; the line awaits silence before it.
ModuleReply Exchange(Session& session, int index, const std::string& command, std::string_view form) {
    Line& line = session.Line;
    ExchangeWithModule(session, index, command, line.ReplyTimeout);
    const Answer answer = AnswerOf(session, index, form);
    if (answer == Answer::Garbled && line.ReplyStatus != 0 && !line.ReplyIs('?'))
        line.NoteUnfit();
    if (answer != Answer::Ok)
        return {answer, {}};
    if (NamesAddress(form))
        BelievedSince(session, index) = line.IncompleteCount;
    return {Answer::Ok, ReplyData(line.ReplyText, form)};
}

ModuleReply AskRepeating(Session& session, int index, const std::string& command, std::string_view form) {
    ModuleReply reply = Exchange(session, index, command, form);
    return reply.Answer == Answer::Garbled && session.Line.AwaitSilence()
               ? Exchange(session, index, command, form)
               : reply;
}

// Makes sure that it is this module that answers; a refusal of the question is an answer of it, too.
Answer Greet(Session& session, int index) {
    if (BelievedSince(session, index) == session.Line.IncompleteCount)
        return Answer::Ok;
    const std::string model = session.ModuleTable[index].Model;
    const ModuleReply name =
        AskRepeating(session, index, CommandFor(session, index, '$', "M"), ReplyFormOf(model, '$', "M"));
    if (name.Answer == Answer::Refused)
        BelievedSince(session, index) = session.Line.IncompleteCount;
    else if (name.Answer == Answer::Ok && FixedText(name.Data, 6) != FixedText(model, 6)) {
        BelievedSince(session, index) = -1; // another module has taken its place
        return Answer::Garbled;
    }
    return name.Answer == Answer::Refused ? Answer::Ok : name.Answer;
}

} // namespace

const char* AnswerText(Answer answer) {
    constexpr std::array texts = {"ok", "no reply", "unreadable reply", "refused by the module"};
    return texts[static_cast<std::size_t>(answer)];
}

unsigned ModuleReply::Digits(std::size_t first, std::size_t count) const {
    return HexNumber(std::string_view(Data).substr(first, count)).value_or(0);
}

ReplyMeasure MeasureOf(const Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    const std::string address = AddressText(session, index);
    return {address, index == session.ScanIndex ? ToHex(record.Address, 2) : address, record.InputRange,
            record.DataFormat, record.Model};
}

Answer LastAnswer(const Session& session, int index, char lead, std::string_view tail) {
    return AnswerOf(session, index, ReplyFormOf(session.ModuleTable[index].Model, lead, tail));
}

bool ReadEntryWell(Session& session, int index) {
    const CarefulTransactions careful(session.Line);
    ModuleRecord& entry = session.ModuleTable[index];
    std::optional<ModuleRecord> before;
    for (int tries = 0; tries < 3; ++tries) {
        ConfigAnswer answer{ModuleAddress(session, index),
                            ModuleChecksum(session, index),
                            ModuleBaudCode(session, index),
                            {}};
        ModuleRecord record;
        OpenPort(session.Line);
        if (AskModuleAgain(session.Line, answer, record) != Identified::Fully ||
            record.Model != entry.Model || record.Address != entry.Address)
            return false;
        if (before && SameSetup(*before, record)) {
            entry = record;
            return true;
        }
        before = std::move(record);
    }
    return false;
}

ModuleReply AskModule(Session& session, int index, char lead, const std::string& tail) {
    const CarefulTransactions careful(session.Line);
    const std::string_view form = ReplyFormOf(session.ModuleTable[index].Model, lead, tail);
    const std::string command = CommandFor(session, index, lead, tail);
    ModuleReply reply;
    for (int tries = 0; tries == 0 || (tries < 2 && session.Line.AwaitSilence()); ++tries) {
        if (!NamesAddress(form))
            if (const Answer known = Greet(session, index); known != Answer::Ok)
                return {known, {}};
        reply = Exchange(session, index, command, form);
        if (reply.Answer != Answer::Garbled)
            break;
    }
    return reply;
}

ModuleReply AskModuleTwice(Session& session, int index, char lead, const std::string& tail) {
    ModuleReply before = AskModule(session, index, lead, tail);
    for (int tries = 0; tries < 2 && before.Answer == Answer::Ok; ++tries) {
        ModuleReply reply = AskModule(session, index, lead, tail);
        if (reply.Answer != Answer::Ok || reply.Data == before.Data)
            return reply;
        before = std::move(reply);
    }
    return before.Answer == Answer::Ok ? ModuleReply{Answer::Garbled, {}} : before;
}

Answer TellModule(Session& session, int index, char lead, const std::string& tail) {
    const CarefulTransactions careful(session.Line);
    return Exchange(session, index, CommandFor(session, index, lead, tail),
                    ReplyFormOf(session.ModuleTable[index].Model, lead, tail))
        .Answer;
}

} // namespace kavro
