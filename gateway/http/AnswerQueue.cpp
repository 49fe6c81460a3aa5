#include "gateway/http/AnswerQueue.h"

#include <utility>

namespace harvlink::gateway {

namespace {

/// Requests with the same one get the same answer.
std::string KeyOf(Request const& request) {
    std::string key = request.method;
    key += request.path;
    for (auto const& [name, value] : request.query) {
        key.append("\n").append(name).append("\n").append(value);
    }
    return key;
}

} // namespace

bool AnswerQueue::Put(std::shared_ptr<Exchange> const& exchange) {
    Request const& request = exchange->request;
    bool const isQuick = Api::EffortOf(request) != Effort::Disk;
    std::string key = KeyOf(request);
    if (!isQuick || request.method != "GET") {
        key +=
            '\n' + std::to_string(++unique_); // its answer may be a file, which is read once, or it changes something
    }
    {
        std::scoped_lock const lock(mutex_);
        auto const [same, isNew] = waiting_.try_emplace(key);
        same->second.push_back(exchange);
        if (!isNew) {
            return true; // it has not begun yet, so it is not too old for this request
        }
    }
    bool const isTaken =
        (isQuick ? quick_ : slow_).Put([this, key](std::stop_token const& stop) { Answer(key, stop); });
    if (!isTaken) {
        std::scoped_lock const lock(mutex_);
        waiting_.erase(key);
    }
    return isTaken;
}

void AnswerQueue::Answer(std::string const& key, std::stop_token const& stop) {
    Answered answered;
    {
        std::scoped_lock const lock(mutex_);
        answered.exchanges = std::move(waiting_.extract(key).mapped());
    }
    answered.response = std::make_shared<Response>(api_.Answer(answered.exchanges.front()->request, stop));
    {
        std::scoped_lock const lock(mutex_);
        answers_.push_back(std::move(answered));
    }
    wake_();
}

std::vector<AnswerQueue::Answered> AnswerQueue::TakeAll() {
    std::scoped_lock const lock(mutex_);
    return std::exchange(answers_, {});
}

} // namespace harvlink::gateway
