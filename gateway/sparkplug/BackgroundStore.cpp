#include "gateway/sparkplug/BackgroundStore.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <iterator>
#include <mutex>
#include <utility>

#include <pthread.h>

namespace harvlink::gateway::sparkplug {

namespace {

constexpr std::chrono::milliseconds EndLimit{500};
constexpr std::size_t ReadAtOnce = 512; ///< records
constexpr std::uint64_t WriteAtOnce =
    128U << 10; ///< bytes: less than any store holds, so that it drops none of them unwritten

struct Appended {
    recording::Microseconds time = 0;
    std::string record;

    std::uint64_t Bytes() const { return SizeOf(record); }
    /// In memory, and no less than what a store makes of it.
    static std::uint64_t SizeOf(std::string_view record) {
        constexpr std::uint64_t Overhead = 64;
        return record.size() + Overhead;
    }
};

/// What the thread has to do next.
struct Work {
    std::vector<Appended> appended;
    std::uint64_t removeBefore = 0;
    std::uint64_t readFrom = 0; ///< 0: nothing is to be read
    bool mustCommit = false;

    bool IsNone() const { return removeBefore == 0 && readFrom == 0 && !mustCommit; }
};

} // namespace

/// The mutex is never held while the disk works.
struct BackgroundStore::Shared {
    // Of the thread alone.
    std::unique_ptr<Store> store;
    std::deque<Appended> backlog; ///< what the store has not been given yet
    std::uint64_t given = 0; ///< bytes that it was given and has not committed

    std::uint64_t mostBytes = 0;
    std::mutex mutex;
    std::condition_variable hasWork;
    std::condition_variable hasEnded;
    Work work;
    std::uint64_t bytes = 0; ///< appended and not committed
    std::uint64_t next = 1; ///< id of the next record
    std::uint64_t removedBefore = 0;
    StoreStatistics statistics; ///< after the last work
    std::deque<StoredRecord> ready; ///< that were read, from readyFrom up to readyNext
    std::uint64_t readyFrom = 0;
    std::uint64_t readyNext = 0;
    bool mustEnd = false;
    bool isOver = false;

    void Do(Work& todo);
    std::uint64_t Write();
    StoredRun TakeReady(std::size_t most);
    void AskFor(std::uint64_t id) {
        work.readFrom = id;
        hasWork.notify_one();
    }
};

BackgroundStore::BackgroundStore(std::unique_ptr<Store> store, std::uint64_t mostBytes)
    : shared_(std::make_shared<Shared>()) {
    shared_->statistics = store->Statistics();
    shared_->next = shared_->statistics.next;
    shared_->mostBytes = mostBytes;
    shared_->store = std::move(store);
    thread_ = std::thread([shared = shared_] { Run(shared); });
}

BackgroundStore::~BackgroundStore() {
    std::unique_lock lock(shared_->mutex);
    shared_->mustEnd = true;
    shared_->hasWork.notify_one();
    bool const isOver = shared_->hasEnded.wait_for(lock, EndLimit, [&] { return shared_->isOver; });
    lock.unlock();
    if (isOver) {
        thread_.join();
    } else {
        thread_.detach();
    }
}

bool BackgroundStore::Append(recording::Microseconds time, std::string_view record) {
    std::scoped_lock const lock(shared_->mutex);
    if (record.size() > MostRecordBytes || shared_->bytes + Appended::SizeOf(record) > shared_->mostBytes) {
        return false;
    }
    shared_->work.appended.push_back({time, std::string(record)});
    shared_->bytes += Appended::SizeOf(record);
    ++shared_->next;
    return true;
}

StoredRun BackgroundStore::Read(std::uint64_t id, std::size_t most) {
    std::scoped_lock const lock(shared_->mutex);
    if (id < shared_->readyFrom || id >= shared_->readyNext) {
        shared_->AskFor(id);
        return {.records = {}, .next = id};
    }
    while (!shared_->ready.empty() && shared_->ready.front().id < id) {
        shared_->ready.pop_front();
    }
    StoredRun run = shared_->TakeReady(most);
    if (run.next == shared_->readyNext) {
        shared_->AskFor(run.next); // it will be asked for, and then it is there
    }
    return run;
}

StoredRun BackgroundStore::Shared::TakeReady(std::size_t most) {
    StoredRun run;
    while (!ready.empty() && run.records.size() < most) {
        run.records.push_back(std::move(ready.front()));
        ready.pop_front();
    }
    run.next = ready.empty() ? readyNext : ready.front().id;
    readyFrom = run.next;
    return run;
}

void BackgroundStore::RemoveBefore(std::uint64_t id) {
    std::scoped_lock const lock(shared_->mutex);
    shared_->removedBefore = std::max(shared_->removedBefore, id);
    shared_->work.removeBefore = shared_->removedBefore;
}

void BackgroundStore::Commit() {
    std::scoped_lock const lock(shared_->mutex);
    shared_->work.mustCommit = true;
    shared_->hasWork.notify_one();
}

StoreStatistics BackgroundStore::Statistics() const {
    std::scoped_lock const lock(shared_->mutex);
    StoreStatistics statistics = shared_->statistics;
    statistics.first = std::max(statistics.first, std::min(shared_->removedBefore, shared_->next));
    statistics.next = shared_->next;
    return statistics;
}

void BackgroundStore::Run(std::shared_ptr<Shared> const& shared) {
    sigset_t all; // signals are for the program
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    std::unique_lock lock(shared->mutex);
    while (!shared->isOver) {
        shared->hasWork.wait(lock, [&] { return !shared->work.IsNone() || shared->mustEnd; });
        bool const isLast = shared->mustEnd;
        Work todo = std::exchange(shared->work, {});
        todo.mustCommit = todo.mustCommit || isLast;
        lock.unlock();
        shared->Do(todo);
        if (isLast) {
            shared->store.reset(); // another may have its folder now
        }
        lock.lock();
        shared->isOver = isLast;
    }
    shared->hasEnded.notify_all();
}

/// Returns how many bytes are committed now. While the disk takes nothing, the store is given nothing more.
std::uint64_t BackgroundStore::Shared::Write() {
    std::uint64_t committed = 0;
    bool isLast = false;
    while (!isLast) {
        while (!backlog.empty() && given < WriteAtOnce) {
            given += backlog.front().Bytes();
            store->Append(backlog.front().time, backlog.front().record);
            backlog.pop_front();
        }
        isLast = backlog.empty();
        store->Commit();
        if (!store->Statistics().problem.empty()) {
            break;
        }
        committed += std::exchange(given, 0);
    }
    return committed;
}

void BackgroundStore::Shared::Do(Work& todo) {
    std::move(todo.appended.begin(), todo.appended.end(), std::back_inserter(backlog));
    if (todo.removeBefore != 0) {
        store->RemoveBefore(todo.removeBefore);
    }
    std::uint64_t const committed = todo.mustCommit ? Write() : 0;
    StoredRun run;
    if (todo.readFrom != 0) {
        run = store->Read(todo.readFrom, ReadAtOnce);
    }
    StoreStatistics state = store->Statistics();
    std::scoped_lock const lock(mutex);
    bytes -= committed;
    statistics = std::move(state);
    if (todo.readFrom != 0) {
        ready.assign(std::move_iterator(run.records.begin()), std::move_iterator(run.records.end()));
        readyFrom = todo.readFrom;
        readyNext = run.next;
    }
}

} // namespace harvlink::gateway::sparkplug
