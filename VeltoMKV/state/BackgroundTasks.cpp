#include "VeltoMKV/state/BackgroundTasks.h"

#include <mutex>
#include <utility>

#include <QMetaObject>

namespace velto {

// What the threads post through. The owner clears `owner` as it goes, under the lock, so a
// thread never posts to a destroyed object; calls already queued die with the object.
struct BackgroundTasks::Mailbox {
    std::mutex lock;
    QObject* owner = nullptr;

    void post(std::function<void()> call) {
        const std::scoped_lock guard(lock);
        if (owner)
            QMetaObject::invokeMethod(owner, std::move(call), Qt::QueuedConnection);
    }
};

BackgroundTasks::BackgroundTasks(QObject* owner)
    : m_mailbox(std::make_shared<Mailbox>()) {
    m_mailbox->owner = owner;
}

BackgroundTasks::~BackgroundTasks() {
    {
        const std::scoped_lock guard(m_mailbox->lock);
        m_mailbox->owner = nullptr;
    }
    for (auto& [id, thread] : m_threads)
        thread.request_stop();
    m_threads.clear();
}

BackgroundTasks::Id BackgroundTasks::launch(Work work) {
    const Id id = ++m_last;
    std::shared_ptr<Mailbox> mailbox = m_mailbox;
    // `this` is only touched on the owner's thread, in the queued call, while the owner lives.
    m_threads.emplace(
        id, std::jthread([work = std::move(work), mailbox, id, this](std::stop_token stop) mutable {
            const Post post = [mailbox](std::function<void()> call) {
                mailbox->post(std::move(call));
            };
            // What the work holds (a backend, a job) is released before the
            // task says it ended.
            std::exchange(work, {})(std::move(stop), post);
            post([this, id] { ended(id); });
        }));
    return id;
}

void BackgroundTasks::stop(Id id) {
    if (const auto found = m_threads.find(id); found != m_threads.end())
        found->second.request_stop();
}

void BackgroundTasks::ended(Id id) {
    // The thread has nothing left to do after posting this, so the join is immediate.
    m_threads.erase(id);
}

} // namespace velto
