#include "project/module_writing.h"

#include "config/config_exchange.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/list_line.h"

#include <algorithm>

namespace kavro {

namespace {

// A first round may lose something again, and a counter module that is to measure frequencies counts first.
constexpr int MostRounds = 5;
constexpr int MostTries = 3;     // to read it on a poor line
constexpr int MostUnchanged = 2; // a command that noise has destroyed is worth another try

// Keeps what is told but for the success of each part.
class ToldTexts : public Messages {
public:
    explicit ToldTexts(std::vector<std::string>& texts) : texts_(texts) {}

    void Show(const std::string& text, const std::string& /*title*/) override {
        if (text != ConfigCompleteText && std::ranges::find(texts_, text) == texts_.end())
            texts_.push_back(text);
    }

private:
    std::vector<std::string>& texts_;
};

// The wanted values into the settings, as far as they can be given.
void Take(NamedConfig& config, const std::vector<LineDifference>& differences, Messages& messages) {
    for (const LineDifference& each : differences) {
        try {
            TakeValue(*FindSetting(config, each.Setting), each.File.Value);
        } catch (const RuntimeFailure& failure) {
            messages.Show(failure.what());
        }
    }
}

// Settings that are written only while the module counts: it counts first, then.
void Unlock(NamedConfig& config, const std::vector<LineDifference>& differences) {
    const bool locked = std::ranges::any_of(differences, [&](const LineDifference& each) {
        return each.When == Writable::Always && !FindSetting(config, each.Setting)->Locked().empty();
    });
    NamedSetting* const type = FindSetting(config, "type");
    if (locked && type && FindSetting(config, "gate-mode")->Locked() != "")
        type->Take("counter");
}

struct Writer {
    const LineWork& Work;
    const WriteTarget& Target;
    const WriteAround& Around;
    WrittenModule& Written;
    ToldTexts Told{Written.Told};

    bool InInitialisation() const { return Target.Way.Address == 0; }

    bool IsOtherModel() {
        const std::string model = Trim(ShownModel(Work.Session.ModuleTable[0].Model));
        if (model == Target.Wanted.Model)
            return false;
        Told.Show("The module is now a " + model + "; it was left alone.", {});
        return true;
    }

    bool CanBeWritten(const LineDifference& difference) const {
        return difference.When == Writable::Always ||
               (difference.When == Writable::Initialising && InInitialisation());
    }

    std::optional<NamedConfig> ReadPatiently() {
        std::optional<NamedConfig> config;
        for (int tries = 0; tries < MostTries && !config; ++tries)
            config = ReadConfigTwice(Work.Session, Target.Way, {Told, Work.Tell.Words});
        return config;
    }

    // Reads the module and what it has otherwise; nothing, with the reason told, when it cannot be read.
    std::optional<NamedConfig> Read(std::vector<LineDifference>& differences) {
        auto config = ReadPatiently();
        if (!config || IsOtherModel())
            return std::nullopt;
        Written.Entry = Work.Session.ModuleTable[0];
        const SavedModule present = SavedModuleOf(Work.Session.ModuleTable[0], *config);
        Written.NotTaken = InInitialisation() ? AllDifferences(Target.Wanted, present)
                                              : DifferencesBetween(Target.Wanted, present);
        differences = Written.NotTaken;
        std::erase_if(differences, [&](const LineDifference& each) { return !CanBeWritten(each); });
        return config;
    }

    void Run() {
        std::vector<LineDifference> before;
        int unchanged = 0; // rounds in a row
        for (int round = 0; round < MostRounds; ++round) {
            std::vector<LineDifference> differences;
            auto config = Read(differences);
            Written.Readable = config.has_value();
            if (!config || differences.empty())
                return;
            unchanged = round > 0 && SameSettings(differences, before) ? unchanged + 1 : 0;
            if (unchanged == MostUnchanged)
                return; // it does not take them
            before = differences;
            Write(*config, differences);
        }
    }

    static bool SameSettings(const std::vector<LineDifference>& left,
                             const std::vector<LineDifference>& right) {
        return std::ranges::equal(left, right, {}, &LineDifference::Setting, &LineDifference::Setting);
    }

    void Write(NamedConfig& config, const std::vector<LineDifference>& differences) {
        Take(config, differences, Told);
        Unlock(config, differences);
        Written.Sent = true;
        Around(Target.Wanted.Address, [&] { WriteConfig(Work.Session, config, Told); });
    }
};

} // namespace

WrittenModule WriteModule(const LineWork& work, const WriteTarget& target, const WriteAround& around) {
    WrittenModule written{target.Wanted};
    Writer{work, target, around, written}.Run();
    if (written.AsWanted())
        written.Told.clear(); // an acknowledgement was lost, or a round before failed
    return written;
}

} // namespace kavro
