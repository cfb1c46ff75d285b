#include "traffic/reply_verdict.h"

#include "link/line.h"

#include <algorithm>
#include <optional>

namespace kavro {

namespace {

constexpr std::size_t ClassLength = 1;
constexpr std::size_t AddressEnd = 3;
constexpr std::size_t ChecksumLength = 2;
constexpr std::size_t LongestLine = 128; // of a reply with a checksum; far beyond any module's

// What a reply is measured by.
struct Ruler {
    bool Checksum;
    std::string_view Form;
    const ReplyMeasure& Measure;

    // The reply without its checksum; nothing when that is wrong.
    std::optional<std::string_view> Bare(std::string_view text) const {
        if (!Checksum)
            return text;
        if (text.size() < ChecksumLength || text.size() > LongestLine)
            return std::nullopt;
        const std::string_view bare = text.substr(0, text.size() - ChecksumLength);
        if (ChecksumOf(std::string(bare)) != text.substr(bare.size()))
            return std::nullopt;
        return bare;
    }

    bool Fits(std::string_view bare) const { return FitsForm(bare, Form, Measure); }
    bool Answers(std::string_view bare) const { return Fits(bare) || IsRefusal(bare, Measure); }

    // A good reply, or a refusal, behind anything.
    bool EndsWithAnswer(std::string_view text) const {
        text = text.substr(text.size() - std::min(text.size(), LongestReply(Form, Checksum)));
        for (; !text.empty(); text.remove_prefix(1))
            if (const auto bare = Bare(text); bare && Answers(*bare))
                return true;
        return false;
    }
};

// It would be good if the module had the address that it names.
bool NamesAnother(std::string_view bare, const Ruler& ruler) {
    if (bare.size() < AddressEnd)
        return false;
    ReplyMeasure measure = ruler.Measure;
    measure.Address = measure.OwnAddress = bare.substr(ClassLength, AddressEnd - ClassLength);
    const Ruler other{ruler.Checksum, ruler.Form, measure};
    return IsClean(bare) && (IsRefusal(bare, measure) || (NamesAddress(ruler.Form) && other.Fits(bare)));
}

Damage DamageOf(std::string_view text, bool whole, const Ruler& ruler) {
    if (text.size() > LongestLine)
        return Damage::Endless;
    if (!whole)
        return Damage::Cut;
    if (ruler.EndsWithAnswer(text))
        return Damage::NoiseInFront;
    const auto bare = ruler.Bare(text);
    if (bare)
        return NamesAnother(*bare, ruler) ? Damage::WrongAddress
               : IsClean(*bare)           ? Damage::OtherForm
                                          : Damage::Garbled;
    const bool summed = text.size() > ChecksumLength;
    return summed && ruler.Answers(text.substr(0, text.size() - ChecksumLength)) ? Damage::WrongChecksum
                                                                                 : Damage::Garbled;
}

std::size_t LongestData(std::string_view places) {
    switch (places.size() == 1 ? places.front() : '\0') {
    case 'C':
        return 2;
    case 'M':
        return 6;
    case 'T':
    case 'W':
        return 8;
    case 'V':
    case 'O':
    case 'P':
        return 7;
    default:
        return places.size();
    }
}

} // namespace

JudgedReply JudgeReply(const LineTraffic& traffic, bool checksum, std::string_view form,
                       const ReplyMeasure& measure) {
    std::string_view text = traffic.Received;
    if (traffic.Echo)
        text.remove_prefix(std::min(text.size(), traffic.Sent.size()));
    if (text.empty())
        return {};
    const Ruler ruler{checksum, form, measure};
    const bool whole = text.back() == '\r';
    text.remove_suffix(whole ? 1 : 0);
    if (const auto bare = whole ? ruler.Bare(text) : std::nullopt; bare && ruler.Answers(*bare))
        return {ruler.Fits(*bare) ? Verdict::Complete : Verdict::Refused, {}, std::string(*bare)};
    return {Verdict::Damaged, DamageOf(text, whole, ruler), std::string(text)};
}

bool IsClean(std::string_view text) {
    return std::ranges::all_of(text, [](char character) { return character >= ' ' && character <= '~'; });
}

bool HoldsReply(std::string_view characters, bool checksum, std::string_view form,
                const ReplyMeasure& measure) {
    const Ruler ruler{checksum, form, measure};
    while (!characters.empty()) {
        const std::size_t end = characters.find('\r');
        if (end == std::string_view::npos)
            return false;
        if (ruler.EndsWithAnswer(characters.substr(0, end)))
            return true;
        characters.remove_prefix(end + 1);
    }
    return false;
}

std::size_t LongestReply(std::string_view form, bool checksum) {
    const std::size_t start = NamesAddress(form) ? AddressEnd : ClassLength;
    return start + LongestData(form.substr(start)) + (checksum ? ChecksumLength : 0);
}

} // namespace kavro
