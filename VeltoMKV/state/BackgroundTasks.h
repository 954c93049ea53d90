#pragma once

#include <functional>
#include <map>
#include <memory>
#include <stop_token>
#include <thread>

#include <QObject>

namespace velto {

// Runs blocking library work (a job, a probe, a model listing, a connection test) on threads of
// its own and brings what they report back to the owner's thread as queued calls. Posting never
// waits for the owner, because the translator reports progress while holding its own lock.
// Stopping is cooperative and never joins on the owner's thread: a stopped task finishes on its
// own time, and what it posts afterwards is the owner's to ignore.
class BackgroundTasks {
public:
    using Id = quint64;
    // Queues `call` on the owner's thread; dropped once the owner is gone.
    using Post = std::function<void(std::function<void()> call)>;
    using Work = std::function<void(std::stop_token stop, const Post& post)>;

    explicit BackgroundTasks(QObject* owner);
    // Asks every task to stop and waits for them: only at shutdown, when no window is left to
    // freeze, so a cancelled mux can still remove its temporary file.
    ~BackgroundTasks();
    BackgroundTasks(const BackgroundTasks&) = delete;
    BackgroundTasks& operator=(const BackgroundTasks&) = delete;

    Id launch(Work work);
    // Asks the task to stop; it keeps running until it reaches its next suspension point.
    void stop(Id id);
    // Tasks started and not yet ended, stopped ones included.
    std::size_t running() const { return m_threads.size(); }

private:
    struct Mailbox;

    void ended(Id id);

    std::shared_ptr<Mailbox> m_mailbox;
    std::map<Id, std::jthread> m_threads;
    Id m_last = 0;
};

} // namespace velto
