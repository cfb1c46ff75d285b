#include "traffic/module_check.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr std::size_t MostTexts = 64; // kept of a command whose replies keep changing

std::size_t CommonStart(std::string_view first, std::string_view second) {
    return static_cast<std::size_t>(std::ranges::mismatch(first, second).in1 - first.begin());
}

// The text with all digits, hexadecimal ones too, and all signs alike: what does not change with the values.
std::string ShapeOf(std::string text) {
    constexpr std::string_view Digits = "0123456789ABCDEF";
    for (char& character : text)
        character = Digits.find(character) != std::string_view::npos ? '0'
                    : character == '-'                               ? '+'
                                                                     : character;
    return text;
}

void CountText(std::map<std::string, int>& texts, const std::string& text) {
    if (texts.size() < MostTexts || texts.contains(text))
        ++texts[text];
}

// Never what the list lets expect, but mostly of one other form. Chance damages a reply in many ways.
bool HasAnotherForm(const CommandTally& tally) {
    constexpr int Fewest = 2;
    constexpr double Mostly = 0.6;
    int most = 0;
    for (const auto& [shape, count] : tally.OtherShapes)
        most = std::max(most, count);
    return tally.Complete == 0 && most >= Fewest && most >= Mostly * tally.Garbled;
}

void NoteGarbled(CommandTally& tally, const std::string& text, bool checksum) {
    if (++tally.Garbled == 1)
        tally.GarbledText = text;
    else
        tally.CommonStart = std::min(tally.CommonStart, CommonStart(tally.GarbledText, text));
    tally.Overlong += text.size() >= LongestReply(tally.Command.Form, checksum) + 2 ? 1 : 0;
    tally.Unclean += IsClean(text) ? 0 : 1;
}

// The value that this share of them does not exceed.
double Quantile(const std::vector<std::int64_t>& sorted, double share) {
    const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(sorted.size())));
    return static_cast<double>(sorted[std::max<std::size_t>(rank, 1) - 1]) / 1000;
}

} // namespace

void ModuleCheck::Note(std::size_t command, const JudgedReply& reply) {
    CommandTally& tally = Tallies[command];
    ++Sent;
    ++tally.Asked;
    tally.Answered += reply.Verdict == Verdict::Silent ? 0 : 1;
    switch (reply.Verdict) {
    case Verdict::Silent:
        ++Silent;
        return;
    case Verdict::Refused:
        ++Refused;
        return;
    case Verdict::Complete:
        ++Complete;
        ++tally.Complete;
        tally.Other += reply.AsListed ? 0 : 1;
        if (tally.Command.Lasting)
            CountText(tally.Good, reply.Text);
        return;
    case Verdict::Damaged:
        break;
    }
    ++Damaged;
    ++Damages[static_cast<std::size_t>(reply.Damage)];
    if (reply.Damage == Damage::Cut || reply.Damage == Damage::OtherForm || reply.Damage == Damage::Garbled)
        NoteGarbled(tally, reply.Text, Checksum);
    if (reply.Damage == Damage::OtherForm) {
        ++tally.OtherForm;
        CountText(tally.OtherShapes, ShapeOf(reply.Text));
    }
}

bool ModuleCheck::IsAnother() const {
    return std::ranges::any_of(Tallies, &CommandTally::TellsAnother) ||
           std::ranges::any_of(Tallies, HasAnotherForm);
}

std::optional<ReplyMs> TimesOf(const ModuleCheck& module) {
    if (module.TimesUs.empty())
        return std::nullopt;
    std::vector<std::int64_t> sorted = module.TimesUs;
    std::ranges::sort(sorted);
    return ReplyMs{Quantile(sorted, 0), Quantile(sorted, 0.5), Quantile(sorted, 0.95), Quantile(sorted, 1)};
}

} // namespace kavro
