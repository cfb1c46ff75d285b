#include "map/exchange_words.h"

#include "link/codes.h"
#include "link/line.h"
#include "link/text.h"
#include "map/command_forms.h"
#include "map/module_access.h"
#include "map/reply_forms.h"
#include "map/word_fields.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr std::size_t LongestUnderstood = 64; // far more than any command or reply has
constexpr std::size_t HeadLength = 3;         // class or lead, and address
constexpr std::size_t ClassLength = 1;
constexpr std::size_t ChecksumLength = 2;
constexpr std::size_t WrittenSetup = 8; // new address, range, rate and format

// What passed, without echo and carriage returns.
struct Texts {
    std::string_view Command;
    std::string_view Reply; // empty when nothing came, or it was cut
};

bool DropEnd(std::string_view& line) {
    const bool ended = line.ends_with('\r');
    line.remove_suffix(ended ? 1 : 0);
    return ended;
}

Texts TextsOf(std::string_view sent, std::string_view received) {
    const bool ended = DropEnd(sent);
    if (received.starts_with(sent)) {
        received.remove_prefix(sent.size());
        received.remove_prefix(received.starts_with('\r') ? 1 : 0);
    }
    const bool cut = !DropEnd(received) && ended;
    return {sent, cut ? std::string_view() : received};
}

// Without an address in front of them, the last two characters are the address itself, or a part of it.
bool HasCommandChecksum(const Texts& texts) {
    return texts.Command.size() >= HeadLength + ChecksumLength && HasChecksum(texts.Command);
}

std::string_view WithoutChecksum(std::string_view text) {
    return text.substr(0, text.size() - std::min(text.size(), ChecksumLength));
}

// A module that gets a new address answers with it, and one in its initialisation state with its own.
std::string NamedAddress(const Texts& texts, int address, const ModuleRecord* record) {
    if (texts.Command.front() == '%')
        return std::string(texts.Command.substr(HeadLength, 2));
    if (address != 0)
        return std::string(texts.Command.substr(1, 2));
    return record ? ToHex(record->Address, 2) : Middle(texts.Reply, 2, 2);
}

// What a form's single letter means in words.
std::string_view LetterWords(std::string_view data) {
    constexpr std::pair<char, std::string_view> words[] = {
        {'V', "{V}"}, {'E', "{E}"}, {'O', "{O}"}, {'P', "{P}"}, {'W', "{W}"}, {'C', "channels: {m2}"},
        {'K', "{K}"}, {'S', "{T}"}, {'M', "{T}"}, {'T', "{T}"}};
    if (data.empty())
        return "done";
    const auto* found = std::ranges::find(words, data.front(), &std::pair<char, std::string_view>::first);
    return data.size() == 1 && found != std::end(words) ? found->second : std::string_view();
}

// One exchange with what is known of its module.
class Explainer {
public:
    Explainer(const Texts& texts, int address, const KnownModules& known)
        : texts_(texts), context_{texts.Command.substr(1, 2), known.Model(address), known.Record(address)} {
        measure_.Address = context_.Address;
        measure_.OwnAddress = NamedAddress(texts, address, context_.Record);
        measure_.Model = context_.Model;
        if (context_.Record) {
            measure_.InputRange = context_.Record->InputRange;
            measure_.DataFormat = context_.Record->DataFormat;
        }
    }

    bool Refused() const { return IsRefusal(texts_.Reply, measure_); }

    // Words on which all rows agree that the command can be of; false when there are none.
    bool Explain(ExchangeWords& words) const {
        std::string asked;
        std::string answered;
        bool answersDiffer = false;
        bool fits = texts_.Reply.empty();
        const std::string_view tail = texts_.Command.substr(HeadLength);
        for (const CommandForm* row : RowsOf(context_.Model, texts_.Command.front(), tail)) {
            const auto asks = FilledIn(row->Asks, WrittenPart(*row, tail), context_);
            if (!asks || asks->empty())
                continue;
            if (!asked.empty() && asked != *asks)
                return false;
            asked = *asks;
            const auto fitting = AnswerOf(*row);
            const std::string answer = fitting.value_or("");
            fits = fits || fitting;
            answersDiffer |= !answer.empty() && !answered.empty() && answer != answered;
            answered = answer.empty() ? answered : answer;
        }
        if (asked.empty())
            return false;
        words.Asked = std::string(context_.Address) + ": " + asked;
        words.Answered = answersDiffer ? "" : answered;
        words.Unexpected = !fits;
        return true;
    }

private:
    // Nothing when the reply is none to the row's command.
    std::optional<std::string> AnswerOf(const CommandForm& row) const {
        const std::size_t head = NamesAddress(row.Reply) ? HeadLength : ClassLength;
        const std::string_view data = row.Reply.substr(head);
        // Where the range or the model is not known, the fields alone tell what is good.
        const bool needsRange = data == "V" || data == "E" || data == "O";
        const bool needsModel = data == "W" || data == "C";
        const bool loose = (needsRange && !context_.Record) || (needsModel && context_.Model.empty());
        const std::string form = std::string(row.Reply.substr(0, head)) + (loose ? "T" : std::string(data));
        ReplyMeasure measure = measure_;
        if (row.Lead == '%')
            measure.Address = measure.OwnAddress; // the old one names a module that has not moved
        if (!FitsForm(texts_.Reply, form, measure))
            return std::nullopt;
        const std::string_view pattern = row.Answers.empty() ? LetterWords(data) : row.Answers;
        return FilledIn(pattern, texts_.Reply.substr(head), context_).value_or("");
    }

    Texts texts_;
    WordContext context_;
    ReplyMeasure measure_;
};

bool Explain(const Texts& texts, const KnownModules& known, ExchangeWords& words) {
    const Explainer explainer(texts, *words.Address, known);
    const bool understood = explainer.Explain(words);
    if (explainer.Refused()) {
        words.Answered = "refused by " + Middle(texts.Reply, 2, 2);
        words.Unexpected = false;
    }
    return understood;
}

} // namespace

KnownModules::KnownModules(const Session& session) {
    for (int index = session.ModuleCount - 1; index >= 0; --index) // of two at one address the first counts
        records_[static_cast<std::size_t>(ModuleAddress(session, index)) % ModuleTable::Size] =
            session.ModuleTable[index];
}

void KnownModules::Learn(std::string_view sent, std::string_view received) {
    if (sent.size() <= HeadLength || (sent[0] != '%' && sent[0] != '$') ||
        (sent[0] == '$' && sent[HeadLength] != 'M' && sent[HeadLength] != '2'))
        return;
    Texts texts = TextsOf(sent, received);
    if (HasCommandChecksum(texts) && HasChecksum(texts.Reply))
        texts = {WithoutChecksum(texts.Command), WithoutChecksum(texts.Reply)};
    const auto address = AddressIn(texts.Command);
    if (!address)
        return;
    const std::string_view tail = texts.Command.substr(HeadLength);
    const std::string own = NamedAddress(texts, *address, nullptr);
    const ReplyMeasure measure{texts.Command[0] == '%' ? own : std::string(texts.Command.substr(1, 2)), own};
    const bool tells = texts.Command[0] == '$';
    if (tells && tail == "M" && FitsForm(texts.Reply, "!AAM", measure))
        LearnModel(*address, ReplyData(texts.Reply, "!AAM"));
    else if (tells && tail == "2" && FitsForm(texts.Reply, "!AAhhhhhh", measure))
        LearnSetup(*address, ReplyData(texts.Reply, "!AAhhhhhh"));
    else if (!tells && tail.size() == WrittenSetup && FitsForm(texts.Reply, "!AA", measure))
        LearnSetup(*address, tail.substr(2));
}

void KnownModules::LearnModel(int address, const std::string& model) {
    const auto index = static_cast<std::size_t>(address);
    if (records_[index] && Trim(records_[index]->Model) == model)
        return;
    records_[index].reset();
    learned_[index] = model;
}

// What contradicts the map makes its range nothing to go by. Codes are "TTCCFF".
void KnownModules::LearnSetup(int address, std::string_view codes) {
    const auto index = static_cast<std::size_t>(address);
    if (!records_[index])
        return;
    const ModuleRecord& record = *records_[index];
    const bool counts = ModuleFamily(record.Model) == CounterFrequency; // whose format is its gate time
    const auto type = HexNumber(codes.substr(0, 2));
    const auto format = HexNumber(codes.substr(4, 2));
    if (type && format && static_cast<int>(*type) == record.InputRange &&
        (counts || static_cast<int>(*format & 3U) == record.DataFormat))
        return;
    learned_[index] = Trim(record.Model);
    records_[index].reset();
}

const ModuleRecord* KnownModules::Record(int address) const {
    const auto& record = records_[static_cast<std::size_t>(address) % records_.size()];
    return record ? &*record : nullptr;
}

std::string_view KnownModules::Model(int address) const {
    const ModuleRecord* record = Record(address);
    const std::string_view model =
        record ? record->Model : learned_[static_cast<std::size_t>(address) % learned_.size()];
    return model.substr(0, model.find_last_not_of(' ') + 1);
}

ExchangeWords WordsOf(std::string_view sent, std::string_view received, const KnownModules& known) {
    const Texts texts = TextsOf(sent, received);
    ExchangeWords words{.Address = AddressIn(texts.Command), .Asked = {}, .Answered = {}};
    if (!words.Address || texts.Command.size() > LongestUnderstood || texts.Reply.size() > LongestUnderstood)
        return words;
    const bool checked = HasCommandChecksum(texts);
    const std::string_view command = checked ? WithoutChecksum(texts.Command) : texts.Command;
    if (checked && (texts.Reply.empty() || HasChecksum(texts.Reply))) {
        Explain({command, WithoutChecksum(texts.Reply)}, known,
                words); // else a checksum would be read as data
        return words;
    }
    const bool understood = Explain(texts, known, words);
    if (!checked || (understood && !words.Answered.empty()))
        return words; // what looks like a checksum is none, as the reply tells
    ExchangeWords asked{.Address = words.Address, .Asked = {}, .Answered = {}};
    if (!Explain({command, {}}, known, asked))
        return words;
    asked.Unexpected = false; // the reply is damaged, its checksum wrong or missing
    return asked;
}

} // namespace kavro
