#pragma once

#include "desk/finder.h"
#include "search/register_reader.h"
#include "store/register_state.h"

#include <QObject>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace search {

// Keeps the register's texts and finds in them. They are read in a thread of its own, which shares nothing but the
// finished texts; what this program writes itself is read at once, before the next search. Looks at the file a few
// times a second, without a standing connection, and reads it anew when it has changed.
class RegisterFinder : public desk::Finder {
  public:
    static constexpr int mostLines = 200;

    // The first reading begins after `wait`. While `resting` says so, nothing is read: the user does something that
    // takes long, and nobody searches.
    explicit RegisterFinder(std::function<bool()> resting,
                            std::chrono::milliseconds wait = std::chrono::milliseconds(50));
    ~RegisterFinder() override;

    desk::FoundList find(const QString& typed) override;
    int revision() const override { return revision_; }
    void open(const desk::FoundLine& line, desk::ScreenContext& context, desk::Desk& desk) override;

    // Whether the texts are those of the file, as far as is known.
    bool ready() const { return texts_ != nullptr; }
    std::size_t bytes() const { return texts_ ? texts_->bytes() : 0; }
    const Texts* texts() const { return texts_.get(); }

  private:
    struct Outcome {
        std::optional<Reading> reading;
        store::RegisterState state; // when the reading began
        QString failure;
        bool again = false; // it may go better next time
    };

    void look();
    void read();
    void take(Outcome outcome);
    void forgetReplaced();
    void followOwnChanges();
    desk::FoundLine lineOf(const Texts& texts, std::uint32_t record, const std::vector<std::u16string>& words) const;

    std::function<bool()> resting_;
    QObject receiver_; // of what the thread has read
    QTimer timer_;
    std::thread thread_;
    std::atomic<bool> stopped_ = false;
    bool reading_ = false;
    std::uint64_t readingUpTo_ = 0; // this program's own changes when the last reading began
    bool readAtOnce_ = false;

    std::shared_ptr<const Texts> texts_;
    store::RegisterState state_;         // that the last reading began with
    std::uint64_t changesUpTo_ = 0;      // this program's own that are in texts_ or newer_
    std::vector<int> changedOwners_;     // since texts_ were read
    std::shared_ptr<const Texts> newer_; // theirs
    std::vector<bool> leftOut_;          // their units in texts_
    int unreadable_ = 0;
    QString failure_;
    int revision_ = 0;
};

} // namespace search
