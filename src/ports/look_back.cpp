#include "ports/look_back.h"

#include "link/runtime_failure.h"
#include "ports/history_columns.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

namespace kavro {

namespace {

constexpr std::chrono::seconds EndLimit{1};

} // namespace

// What both threads see. A number above that of the questions at work breaks them off.
struct LookBack::Desk {
    struct Questions {
        std::uint64_t Number = 0;
        std::vector<HistoryQuestion> Asked;
    };

    std::mutex Mutex;
    std::condition_variable Changed;
    std::optional<Questions> Next;
    bool Closing = false;
    std::atomic<std::uint64_t> Newest = 0;

    // Nothing: there will be none.
    std::optional<Questions> Await() {
        std::unique_lock lock(Mutex);
        Changed.wait(lock, [this] { return Closing || Next; });
        return Closing ? std::nullopt : std::exchange(Next, std::nullopt);
    }
};

namespace {

// With a connection for these questions alone, so that none is left to a file that has been replaced. What
// cannot be read has the reason for its answer; nobody looks at the answers when `stop` has said so.
std::vector<HistoryAnswer> Answers(const std::string& path, const std::string& line,
                                   const std::vector<HistoryQuestion>& questions,
                                   const std::function<bool()>& stop) {
    std::vector<HistoryAnswer> answers;
    const auto fail = [&](const std::string& reason) {
        answers.resize(questions.size(), {.Columns = {}, .Failure = reason});
    };
    try {
        const HistoryConnection connection(path, HistoryConnection::Access::Read);
        for (const HistoryQuestion& question : questions)
            answers.push_back({.Columns = ReadColumns(connection, line, question, stop), .Failure = {}});
    } catch (const RuntimeFailure& failure) {
        fail(failure.what());
    } catch (const SqlFailure& failure) {
        fail("The history " + path + " cannot be read: " + failure.what() + ".");
    }
    return answers;
}

} // namespace

// Whatever the thread uses is its own or on the desk, as it may be left behind; this object is touched in its
// own thread alone, by what is posted there.
LookBack::LookBack(const std::string& path, const std::string& line)
    : desk_(std::make_shared<Desk>()), thread_([this, desk = desk_, post = loop_.Post(), path, line] {
          while (const std::optional<Desk::Questions> questions = desk->Await()) {
              const auto stop = [&] { return desk->Newest != questions->Number; };
              std::vector<HistoryAnswer> answers = Answers(path, line, questions->Asked, stop);
              if (!stop())
                  post([this, number = questions->Number, answers = std::move(answers)]() mutable {
                      Answer(number, std::move(answers));
                  });
          }
      }) {}

LookBack::~LookBack() {
    {
        const std::scoped_lock lock(desk_->Mutex);
        desk_->Closing = true;
        ++desk_->Newest;
    }
    desk_->Changed.notify_one();
    thread_.EndsWithin(EndLimit);
}

void LookBack::Ask(std::vector<HistoryQuestion> questions,
                   std::function<void(std::vector<HistoryAnswer> answers)> done) {
    {
        const std::scoped_lock lock(desk_->Mutex);
        desk_->Next = {++desk_->Newest, std::move(questions)};
    }
    desk_->Changed.notify_one();
    done_ = std::move(done);
}

// The last thing that is done here, as `done` may be the end of this object.
void LookBack::Answer(std::uint64_t number, std::vector<HistoryAnswer> answers) {
    if (number != desk_->Newest)
        return;
    const auto done = std::exchange(done_, {});
    done(std::move(answers));
}

} // namespace kavro
