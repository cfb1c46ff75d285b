#include "traffic/module_check.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr std::size_t MostTexts = 64; // kept of a command whose replies keep changing

std::size_t CommonStart(std::string_view first, std::string_view second) {
    return static_cast<std::size_t>(std::ranges::mismatch(first, second).in1 - first.begin());
}

bool HasUncleanCharacter(std::string_view text) {
    return std::ranges::any_of(text, [](char character) { return character < ' ' || character > '~'; });
}

void NoteGarbled(CommandTally& tally, const std::string& text, bool checksum) {
    if (++tally.Garbled == 1)
        tally.GarbledText = text;
    else
        tally.CommonStart = std::min(tally.CommonStart, CommonStart(tally.GarbledText, text));
    tally.Overlong += text.size() >= LongestReply(tally.Command.Form, checksum) + 2 ? 1 : 0;
    tally.Unclean += HasUncleanCharacter(text) ? 1 : 0;
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
        if (tally.Command.Lasting && (tally.Good.size() < MostTexts || tally.Good.contains(reply.Text)))
            ++tally.Good[reply.Text];
        return;
    case Verdict::Damaged:
        break;
    }
    ++Damaged;
    ++Damages[static_cast<std::size_t>(reply.Damage)];
    if (reply.Damage == Damage::Cut || reply.Damage == Damage::OtherForm || reply.Damage == Damage::Garbled)
        NoteGarbled(tally, reply.Text, Checksum);
}

std::optional<ReplyMs> TimesOf(const ModuleCheck& module) {
    if (module.TimesUs.empty())
        return std::nullopt;
    std::vector<std::int64_t> sorted = module.TimesUs;
    std::ranges::sort(sorted);
    return ReplyMs{Quantile(sorted, 0), Quantile(sorted, 0.5), Quantile(sorted, 0.95), Quantile(sorted, 1)};
}

} // namespace kavro
